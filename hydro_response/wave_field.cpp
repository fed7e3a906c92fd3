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

void WaveField::add_incoming(int ifreq, std::span<const Vec3> points, Array3<Complex8> phi) const {
    const double omega = freq_[nth(ifreq)];
    const double k = hyd_wave_number(omega, size_.depth, size_.grav).k;
    const bool deep = k * size_.depth >= size_.deep_water;
    for (int b = 1; b <= size_.nbeta; ++b)
        incoming_field({omega, k, size_.depth, beta_[nth(b)], deep}, size_.grav, points,
                       column_of(phi, ifreq, b));
}

/// Strengths (np,nbeta) of the panels, of all modes and both kinds together.
std::vector<Complex4> WaveField::read_strengths(int ifreq) const {
    std::vector<Complex4> record(as_size(size_.np) * as_size(std::max(size_.nmode, size_.nbeta)));
    std::vector<Complex8> sum(as_size(size_.np) * as_size(size_.nbeta));
    const Matrix<Complex8> sigma{sum.data(), size_.np, size_.nbeta};
    if (parts_.diffraction) {
        write_both("(a)", {kind_.diffraction});
        read_sources(diffraction_file, {record.data(), size_.np, size_.nbeta});
        std::copy_n(record.begin(), sum.size(), sum.begin());
    }
    if (parts_.radiation) {
        write_both("(a)", {kind_.radiation});
        const Matrix<Complex4> strengths{record.data(), size_.np, size_.nmode};
        read_sources(radiation_file, strengths);
        for (int b = 1; b <= size_.nbeta; ++b)
            add_radiation_sources(freq_[nth(ifreq)], strengths,
                                  {&gencor_(1, ifreq, b), as_size(size_.nmode)}, sigma.col(b));
    }
    return {sum.begin(), sum.end()};
}

void WaveField::report(const InfluenceResult& result) const {
    if (result.status == InfluenceStatus::bad_point)
        print_both(" \n\tNode " + std::to_string((result.point - 1) / kind_.points_per_node + 1) +
                   " lies outside the water or too far away\n");
    else
        print_both(" \n\tThe panels have no influence coefficients; run hyd_analysis again\n");
}

bool WaveField::add_sources(int ifreq, std::span<const Vec3> points, Array3<Complex8> phi) {
    write_both("('    Calculating influence coefficients')");
    const std::vector<Complex4> sigma = read_strengths(ifreq);
    const double omega = freq_[nth(ifreq)];
    const InfluenceParameters parameters{omega * omega / size_.grav, size_.depth, size_.deep_water,
                                         kind_.gauge * size_.gauge, 0};
    const InfluenceResult result = add_source_field(
        mesh_, points, parameters, cache_, {sigma.data(), size_.np, size_.nbeta}, ifreq, phi);
    if (result.status == InfluenceStatus::formed) return true;
    report(result);
    return false;
}

bool WaveField::potentials(std::span<const Vec3> points, Array3<Complex8> phi) {
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
