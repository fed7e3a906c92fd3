// Reads `.hyd_freq`, `.hyd_beta`, the arrays of the wet panels, `.hyd_gencor` and the files of
// source strengths.
#include "hydro_response/wave_field.hpp"

#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_response/field_potential.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/source_files.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

FieldParts read_field_parts() {
    FieldParts parts;
    std::int32_t incoming = 1, diffraction = 1, radiation = 1;
    get_int_par(" incoming=", incoming);
    get_int_par(" diffraction=", diffraction);
    get_int_par(" radiation=", radiation);
    parts.incoming = incoming != 0;
    parts.diffraction = diffraction != 0;
    parts.radiation = radiation != 0;
    get_char_par(" dif=", parts.dif, 133);
    get_char_par(" rad=", parts.rad, 133);
    return parts;
}

bool has_no_symmetry() {
    const int symmetry = get_int(hyd_symmetry);
    if (symmetry == 0) return true;
    if (symmetry != no_integer)
        print_both(
            " \nThis command only supports the no symmetry case (see hyd_parameters command).\n\n");
    return false;
}

WaveField::WaveField(const FieldParts& parts, const FieldKind& kind)
    : parts_(parts), kind_(kind), size_(hyd_get_problem_size()) {
    open_arrays();
    if (usable_) open_files();
}

WaveField::~WaveField() {
    close_unit(radiation_file.unit);
    close_unit(diffraction_file.unit);
}

void WaveField::open_arrays() {
    Inputs inputs;
    freq_ = inputs.vector<double>(hyd_freq, size_.nfreq);
    beta_ = inputs.vector<double>(hyd_beta, size_.nbeta);
    if (parts_.sources())
        mesh_ = {inputs.matrix<double>(hyd_xyzc, size_.np, 3),
                 inputs.matrix<double>(hyd_paneln, 3, size_.np),
                 inputs.vector<double>(hyd_panela, size_.np),
                 inputs.matrix<double>(hyd_xr, size_.np, 4),
                 inputs.matrix<double>(hyd_yr, size_.np, 4),
                 inputs.matrix<double>(hyd_zr, size_.np, 4),
                 inputs.vector<std::int32_t>(hyd_paneltype, size_.np)};
    usable_ = static_cast<bool>(inputs);
    if (!parts_.radiation) return;
    if (!array_exists(hyd_gencor)) {
        print_both(" \n\tArray .hyd_gencor not found.\n");
        usable_ = false;
        return;
    }
    gencor_ = inputs.array3<Complex8>(hyd_gencor, size_.nmode, size_.nfreq, size_.nbeta);
    usable_ = static_cast<bool>(inputs);
}

void WaveField::open_files() {
    if (parts_.radiation)
        usable_ = open_sources(radiation_file, parts_.rad, {size_.np, size_.nmode, freq_, beta_},
                               kind_.radiation_size);
    if (usable_ && parts_.diffraction)
        usable_ = open_sources(diffraction_file, parts_.dif, {size_.np, 1, freq_, beta_},
                               kind_.diffraction_size);
}

/// The n values of one frequency and heading.
static std::span<Complex8> column_of(Array3<Complex8> phi, int ifreq, int ibeta) {
    return {&phi(1, ifreq, ibeta), as_size(phi.n1)};
}

void WaveField::add_incoming(int ifreq, Matrix<const double> points, Array3<Complex8> phi) const {
    const double omega = freq_[nth(ifreq)];
    const double k = hyd_wave_number(omega, size_.depth, size_.grav).k;
    const bool deep = k * size_.depth >= size_.deep_water;
    for (int b = 1; b <= size_.nbeta; ++b)
        incoming_field({omega, k, size_.depth, beta_[nth(b)], deep}, size_.grav, points,
                       column_of(phi, ifreq, b));
}

/// Strengths of the panels for each heading, of all modes and both kinds together.
void WaveField::read_strengths(int ifreq, Matrix<Complex8> sigma) const {
    std::vector<Complex4> storage(as_size(size_.np) * as_size(std::max(size_.nmode, size_.nbeta)));
    std::ranges::fill(sigma.all(), Complex8{});
    if (parts_.diffraction) {
        write_both("(a)", {kind_.diffraction});
        const Matrix<Complex4> strengths{storage.data(), size_.np, size_.nbeta};
        read_sources(diffraction_file, strengths);
        std::ranges::copy(strengths.all(), sigma.data);
    }
    if (parts_.radiation) {
        write_both("(a)", {kind_.radiation});
        const Matrix<Complex4> strengths{storage.data(), size_.np, size_.nmode};
        read_sources(radiation_file, strengths);
        for (int b = 1; b <= size_.nbeta; ++b)
            add_radiation_sources(freq_[nth(ifreq)], strengths,
                                  {&gencor_(1, ifreq, b), as_size(size_.nmode)}, sigma.col(b));
    }
}

bool WaveField::add_sources(int ifreq, Matrix<const double> points, Array3<Complex8> phi) {
    write_both("('    Calculating influence coefficients')");
    std::vector<Complex8> storage(as_size(size_.np) * as_size(size_.nbeta));
    const Matrix<Complex8> sigma{storage.data(), size_.np, size_.nbeta};
    read_strengths(ifreq, sigma);
    const double omega = freq_[nth(ifreq)];
    const InfluenceParameters parameters{omega * omega / size_.grav, size_.depth, size_.deep_water,
                                         kind_.gauge * size_.gauge, 0};
    for (int p = 1; p <= size_.np; ++p) {
        const SourcePanel source = source_panel(mesh_.panel(p), parameters.K, parameters.gauge);
        for (int n = 1; n <= points.rows; ++n) {
            const Vec3 at = scaled({points(n, 1), points(n, 2), points(n, 3)}, parameters.K);
            const GreenInfluence g = g_only(at, source, {}, parameters.water(), cache_);
            for (int b = 1; b <= size_.nbeta; ++b)
                phi(n, ifreq, b) += g.G / parameters.K * sigma(p, b);
        }
    }
    return true;
}

bool WaveField::potentials(Matrix<const double> points, Array3<Complex8> phi) {
    for (int f = 1; f <= size_.nfreq; ++f) {
        write_frequency_line(f, freq_[nth(f)]);
        if (parts_.incoming) {
            write_both("(a)", {kind_.incoming});
            add_incoming(f, points, phi);
        }
        if (parts_.sources() && !add_sources(f, points, phi)) return false;
    }
    return true;
}

} // namespace quelor
