// The radiation and diffraction problems of one frequency. Workspaces: `.hyd_alpha1..4`,
// `.hyd_beta1..4`, `.hyd_bpivot`, `.hyd_src1..4`, `.hyd_prad1..4`, `.hyd_pd1..4`, `.hyd_pic1234`,
// `.hyd_ph1234`, `.hyd_modeloc`.
#include "hydro_analysis/hyd_anal1.hpp"

#include "hydro_analysis/csolve.hpp"
#include "hydro_analysis/hyd_anal_main.hpp"
#include "hydro_analysis/hyd_merge.hpp"
#include "hydro_analysis/influence.hpp"
#include "hydro_analysis/solve2.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <array>
#include <numeric>
#include <string>

namespace quelor {

namespace {

std::string class_array(std::string_view stem, int k) {
    return std::string(stem) + std::to_string(k);
}

constexpr std::string_view class_stems[] = {".hyd_alpha", ".hyd_beta", ".hyd_src"};
constexpr std::string_view potential_stems[] = {".hyd_prad", ".hyd_pd"};

/// Column of each mode within its class, and the number of modes of each class.
struct ClassColumns {
    std::vector<std::int32_t> modeloc;
    std::array<int, 4> count{};
};
ClassColumns number_modes(const HydModel& model) {
    ClassColumns c;
    c.modeloc.resize(as_size(model.size.nmode));
    if (model.size.symmetry == 0) {
        std::iota(c.modeloc.begin(), c.modeloc.end(), 1);
        c.count[0] = model.size.nmode;
        return c;
    }
    for (std::size_t i = 0; i < c.modeloc.size(); ++i) {
        const int k = model.modesym[i];
        if (k < 1 || k > image_count(model.size.symmetry))
            shutdown_with(" \n\t Symmetry code error in .hyd_modesym array\n");
        c.modeloc[i] = ++c.count[nth(k)];
    }
    return c;
}

ClassArrays create_class(int k, int np, int modes) {
    ClassArrays c;
    c.modes = modes;
    c.alpha = create_matrix<Complex4>(class_array(".hyd_alpha", k), np, np);
    c.beta = create_matrix<Complex4>(class_array(".hyd_beta", k), np, np);
    c.pd = create_matrix<Complex8>(class_array(".hyd_pd", k), np, 0);
    if (modes == 0) return c;
    c.src = create_matrix<Complex4>(class_array(".hyd_src", k), np, modes);
    c.prad = create_matrix<Complex8>(class_array(".hyd_prad", k), np, modes);
    return c;
}

AnalysisResults create_results(const HydSize& s, bool keep_potentials) {
    AnalysisResults r;
    r.addm = create_array3<double>(hyd_addm, s.nmode, s.nmode, s.nfreq);
    r.damp = create_array3<double>(hyd_damp, s.nmode, s.nmode, s.nfreq);
    r.fi = create_array3<Complex8>(hyd_fi, s.nmode, s.nbeta, s.nfreq);
    r.fd = create_array3<Complex8>(hyd_fd, s.nmode, s.nbeta, s.nfreq);
    if (!keep_potentials) return r;
    const int full = s.np * image_count(s.symmetry);
    r.potincm = create_array3<Complex8>(hyd_potincm, full, s.nfreq, s.nbeta);
    r.potdiff = create_array3<Complex8>(hyd_potdiff, full, s.nfreq, s.nbeta);
    r.potrad = create_array3<Complex8>(hyd_potrad, full, s.nfreq, s.nmode);
    return r;
}

PanelModes panel_modes(const Analysis& a) {
    return {a.model.panels.area, a.model.un, a.model.size.symmetry, a.model.modesym, a.modeloc};
}

/// All images at (ifreq, j) of a potential array; until the end of the analysis its blocks hold the
/// classes.
std::span<Complex8> potential_column(const Array3<Complex8>& potential, int ifreq, int j) {
    return {&potential(1, ifreq, j), as_size(potential.n1)};
}

std::vector<std::span<const Complex8>> class_columns(Matrix<Complex8> pic) {
    std::vector<std::span<const Complex8>> columns;
    for (int k = 1; k <= pic.cols; ++k)
        columns.push_back(pic.col(k));
    return columns;
}

std::vector<std::span<const Complex8>> diffraction_potentials(const Analysis& a) {
    std::vector<std::span<const Complex8>> columns;
    for (const ClassArrays& c : a.classes)
        columns.push_back(c.pd.col(1));
    return columns;
}

void store_classes(std::span<const std::span<const Complex8>> classes, std::span<Complex8> blocks) {
    auto next = blocks.begin();
    for (const auto& values : classes)
        next = std::ranges::copy(values, next).out;
}

/// Iterative solution of every column, in double precision.
void solve_iteratively(Matrix<const Complex4> a, Matrix<Complex4> b, double tol) {
    const int n = a.rows;
    const auto work = as_span<Complex8>(require_array(hyd_iter_work, type_complex8, {n, any_size}));
    if (work.size() < std::size_t{9} * as_size(n))
        shutdown_with(" \n\t.hyd_iter_work needs at least 9 columns\n");
    std::vector<Complex8> x(b.all().begin(), b.all().end());
    std::vector<std::int32_t> iterations(as_size(b.cols));
    const int failed = solve2(a, {x.data(), n, b.cols}, tol, work, iterations);
    for (int j = 1; j <= b.cols && j != failed; ++j)
        write_both("10(12x, 'RHS ', i5, ' converged at iteration', i5)", {j, iterations[nth(j)]});
    if (failed != 0) shutdown_with(" \n\tIterative solver did not converge\n");
    std::ranges::transform(x, b.data, [](Complex8 v) { return Complex4(v); });
}

/// b := beta^-1 b, one class.
void hyd_solve_sp(const Analysis& analysis, const ClassArrays& c, Matrix<Complex4> b) {
    if (b.cols == 0) return;
    if (analysis.iter_tol > 0)
        solve_iteratively(c.beta, b, analysis.iter_tol);
    else
        csolve_solve_sp(c.beta, b, c.pivot.col(1));
}

/// The pair for which the Green function has no value.
[[noreturn]] void report_green_failure(const GreenInfluence& at) {
    print_both(" \n\tError in ggn;ier = 1\n");
    write_unit(
        unit_screen,
        "(' r1 = ', 1pe14.6, /, ' z0 = ', e14.6, /, ' z3 = ', e14.6, /, ' z6 = ', e14.6, /, ' h_green = ', e14.6)",
        {at.R, 0.0, at.d1, at.d2, at.h_green});
    const GreenValue& f = at.f;
    write_unit(unit_screen, "(' f = ', 1p2e14.6, 7(/, 5x, 2e14.6))",
               {f.G, f.G_R, f.G_1, f.G_R1, f.G_11, f.G_12, f.G_2, f.G_R2});
    shutdown();
}

[[noreturn]] void report_influence_failure(const InfluenceResult& result, const HydModel& model,
                                           RootStatus roots) {
    if (result.status == InfluenceStatus::no_green_value) {
        const double depth = -model.panels.xyzc(result.panel, 3);
        if (depth > model.size.depth)
            write_both(
                "(/, '      Panel', i6, ' lies below the sea bottom, at a depth of', f10.3, ' in', f10.3, ' of water')",
                {panel_of_wet(result.panel), depth, model.size.depth});
        report_green_failure(result.pair);
    }
    if (result.status == InfluenceStatus::bad_panel) {
        write_both(
            "(/, '      Wet panel', i6, ' has no area or a coordinate that is not a finite number')",
            {result.panel});
        shutdown();
    }
    shutdown_with(roots == RootStatus::no_wave_number
                      ? " \n\tIteration for wave number failed\n"
                      : " \n\tIterations evanescent modes failed\n");
}

void form_influence(Analysis& a, const WaveOfFrequency& wave) {
    const HydModel& m = a.model;
    const InfluenceParameters parameters{wave.knu, m.size.depth, m.size.deep_water, m.size.gauge,
                                         m.size.symmetry};
    std::vector<Matrix<Complex4>> alpha, beta;
    for (const ClassArrays& c : a.classes) {
        alpha.push_back(c.alpha);
        beta.push_back(c.beta);
    }
    write_both("1('        Processing panel', i3, $)", {1});
    const InfluenceResult result =
        influence_matrices(m.panels, parameters, a.depth_cache, alpha, beta,
                           [](int panel) { write_both("2(i6, $)", {panel}); });
    write_both("()");
    if (result.status != InfluenceStatus::formed)
        report_influence_failure(result, m, a.depth_cache.status);
}

/// Coincident or badly distorted panels make the equations singular; the factorisation says
/// nothing.
void check_finite(std::span<const Complex8> potential) {
    if (all_finite(potential)) return;
    shutdown_with(
        " \n\tThe panel equations have no finite solution; check the mesh for coincident panels\n");
}

} // namespace

double analysis_array_bytes(const HydSize& s, bool keep_potentials) {
    const double np = s.np, ns = image_count(s.symmetry), nmode = s.nmode, nfreq = s.nfreq;
    const double nbeta = s.nbeta;
    const double matrices = 2 * ns * np * np * sizeof(Complex4);
    const double pivots = (ns * np + (ns > 1 ? nmode : 0)) * sizeof(std::int32_t);
    const double waves = 3 * ns * np * sizeof(Complex8); // pic, ph, pd
    const double sources = np * nmode * (sizeof(Complex4) + sizeof(Complex8));
    const double coefficients =
        2 * nmode * nfreq * (nmode * sizeof(double) + nbeta * sizeof(Complex8));
    const double potentials = ns * np * nfreq * (nmode + 2 * nbeta) * sizeof(Complex8);
    return matrices + pivots + waves + sources + coefficients + (keep_potentials ? potentials : 0);
}

Analysis create_analysis(const HydModel& model, bool keep_potentials) {
    Analysis a;
    TimedStep step(a.timers[Timer::allocate]);
    a.model = model;
    const int np = model.size.np, classes = image_count(model.size.symmetry);
    ClassColumns columns = number_modes(model);
    const auto pivots = create_matrix<std::int32_t>(".hyd_bpivot", np, classes == 1 ? 0 : classes);
    a.pic = create_matrix<Complex8>(".hyd_pic1234", np, classes == 1 ? 0 : classes);
    a.ph = create_matrix<Complex8>(".hyd_ph1234", np, classes == 1 ? 0 : classes);
    for (int k = 1; k <= classes; ++k) {
        a.classes.push_back(create_class(k, np, columns.count[nth(k)]));
        a.classes.back().pivot = {pivots.col(k).data(), np, 1};
    }
    if (classes > 1)
        std::ranges::copy(columns.modeloc,
                          create_matrix<std::int32_t>(".hyd_modeloc", model.size.nmode, 0).data);
    a.modeloc = std::move(columns.modeloc);
    a.results = create_results(model.size, keep_potentials);
    if (const ArrayRef tol = find_array(hyd_iter_tol); tol.is(type_real))
        a.iter_tol = get_real(hyd_iter_tol);
    return a;
}

void delete_analysis_arrays(bool keep_class_potentials) {
    for (int k = 1; k <= 4; ++k) {
        for (const auto stem : class_stems)
            delete_array(class_array(stem, k));
        if (!keep_class_potentials)
            for (const auto stem : potential_stems)
                delete_array(class_array(stem, k));
    }
    delete_array(".hyd_bpivot");
    delete_array(".hyd_ph1234");
    if (!keep_class_potentials) delete_array(".hyd_pic1234");
}

void hyd_form_coefficients(Analysis& analysis, const WaveOfFrequency& wave) {
    {
        TimedStep step(analysis.timers[Timer::influence]);
        form_influence(analysis, wave);
    }
    TimedStep step(analysis.timers[Timer::factor]);
    if (analysis.iter_tol > 0) return;
    write_both("('    Factoring coefficient matrix')");
    for (ClassArrays& c : analysis.classes) {
        std::iota(c.pivot.data, c.pivot.data + c.pivot.rows, 1);
        csolve_factor_sp(c.beta, c.pivot.col(1));
    }
}

void hyd_solve_radiation(Analysis& analysis, const WaveOfFrequency& wave) {
    const HydSize& size = analysis.model.size;
    const PanelModes modes = panel_modes(analysis);
    {
        TimedStep step(analysis.timers[Timer::radiation]);
        for (int j = 1; j <= size.nmode; ++j) {
            const auto src = analysis.classes[nth(modes.class_of(j))].src.col(modes.column_of(j));
            for (int p = 1; p <= size.np; ++p)
                src[nth(p)] = Complex4(static_cast<float>(modes.un(j, p)), 0.0F);
        }
        for (ClassArrays& c : analysis.classes) {
            hyd_solve_sp(analysis, c, c.src);
            if (analysis.write_sources) RecordWriter(unit_rad).put(wave.omega).put(c.src.all());
        }
    }
    std::vector<Matrix<Complex8>> prad;
    {
        TimedStep step(analysis.timers[Timer::potentials]);
        for (ClassArrays& c : analysis.classes) {
            if (c.modes > 0) multiply_mixed(c.alpha, c.src, c.prad);
            check_finite(c.prad.all());
            prad.push_back(c.prad);
        }
    }
    TimedStep step(analysis.timers[Timer::coefficients]);
    added_mass_and_damping(modes, prad, size.rho, wave.omega,
                           analysis.results.addm.slice(wave.index),
                           analysis.results.damp.slice(wave.index));
    if (!analysis.results.potrad) return;
    for (int j = 1; j <= size.nmode; ++j)
        std::ranges::copy(prad[nth(modes.class_of(j))].col(modes.column_of(j)),
                          potential_column(analysis.results.potrad, wave.index, j).begin());
}

namespace {

IncomingWave incoming_wave(const Analysis& analysis, const WaveOfFrequency& wave, int ibeta) {
    const HydSize& s = analysis.model.size;
    return {wave.omega, wave.k, s.depth, analysis.model.beta[nth(ibeta)],
            wave.k * s.depth > s.deep_water};
}

std::span<Complex8> force_column(const Array3<Complex8>& f, int ibeta, int ifreq) {
    return {&f(1, ibeta, ifreq), as_size(f.n1)};
}

} // namespace

void hyd_incoming_forces(Analysis& analysis, const WaveOfFrequency& wave, int ibeta) {
    TimedStep step(analysis.timers[Timer::incoming]);
    const HydSize& s = analysis.model.size;
    incoming_potential(incoming_wave(analysis, wave, ibeta), s.symmetry, analysis.model.panels.xyzc,
                       analysis.pic);
    const auto pic = class_columns(analysis.pic);
    generalised_force(panel_modes(analysis), pic, s.rho * s.grav,
                      force_column(analysis.results.fi, ibeta, wave.index));
    if (analysis.results.potincm)
        store_classes(pic, potential_column(analysis.results.potincm, wave.index, ibeta));
}

void hyd_diffraction_forces(Analysis& analysis, const WaveOfFrequency& wave, int ibeta) {
    TimedStep step(analysis.timers[Timer::diffraction]);
    const HydSize& s = analysis.model.size;
    const IncomingWave incoming = incoming_wave(analysis, wave, ibeta);
    const int images = image_count(s.symmetry);
    for (int m = 1; m <= images; ++m)
        incoming_normal_velocity(incoming, s.symmetry, m, analysis.model.panels.xyzc,
                                 analysis.model.panels.n, analysis.ph.col(m));
    std::vector<Complex4> strength(as_size(s.np));
    for (int k = 1; k <= images; ++k) {
        ClassArrays& c = analysis.classes[nth(k)];
        for (int p = 1; p <= s.np; ++p) {
            Complex8 sum = 0;
            for (int m = 1; m <= images; ++m)
                sum += class_sign(s.symmetry, k, m) * analysis.ph(p, m);
            strength[nth(p)] = Complex4(sum);
        }
        hyd_solve_sp(analysis, c, {strength.data(), s.np, 1});
        if (analysis.write_sources)
            RecordWriter(unit_dif).put(wave.omega).put(incoming.beta).put(std::span(strength));
        multiply_mixed(c.alpha, Matrix<const Complex4>{strength.data(), s.np, 1}, c.pd);
        check_finite(c.pd.all());
    }
    const auto pd = diffraction_potentials(analysis);
    generalised_force(panel_modes(analysis), pd, Complex8(0, -s.rho * wave.omega),
                      force_column(analysis.results.fd, ibeta, wave.index));
    if (analysis.results.potdiff)
        store_classes(pd, potential_column(analysis.results.potdiff, wave.index, ibeta));
}

void hyd_build_potentials(Analysis& analysis, int first) {
    const HydSize& s = analysis.model.size;
    const AnalysisResults& results = analysis.results;
    for (int i = first; i <= s.nfreq; ++i) {
        const double omega = analysis.model.freq[nth(i)];
        for (int ibeta = 1; ibeta <= s.nbeta; ++ibeta) {
            expand_classes(s.symmetry, Complex8(0, s.grav / omega),
                           potential_column(results.potincm, i, ibeta));
            expand_classes(s.symmetry, 1.0, potential_column(results.potdiff, i, ibeta));
        }
        for (int j = 1; j <= s.nmode; ++j)
            reflect_class(s.symmetry, panel_modes(analysis).class_of(j), Complex8(0, omega),
                          potential_column(results.potrad, i, j));
    }
}

} // namespace quelor
