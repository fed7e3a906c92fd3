// Text reports of hyd_analysis. Reads `.hyd_addm`, `.hyd_damp`, `.hyd_fi`, `.hyd_fd`, `.hyd_twnk`,
// `.hyd_coordaxs`, `.hyd_hysdamp`.
#include "hydro_analysis/hyd_reports.hpp"

#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "matrix/print.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace quelor {

namespace {

void write_coordinate_systems(int nbodies) {
    const auto axes = require_matrix<double>(hyd_coordaxs, 11);
    for (int body = 1; body <= axes.cols; ++body) {
        if (nbodies > 1) write_both("60(/, 2x, 'Body', i3, /)", {body});
        FormatItems items;
        items.add(axes.col(body));
        write_both("70(2x, 'Origin of input coordinate system in inertial coordinates', /, 4x, "
                   "'x, y, z...........................................', 1p3e14.4, /, 2x, "
                   "'Orientation of input coordinate system (degrees)', /, 4x, "
                   "'Angles about x, y, z...............................', 3e14.4, /, 2x, "
                   "'Origin of body-fixed coordinate system in inertial coordinates', /, 4x, "
                   "'xb, yb, zb.........................................', 3e14.4, /, 2x, "
                   "'Orientation of body-fixed coordinate system (degrees)', /, 4x, "
                   "'theta_z............................................', e14.4, /, 2x, "
                   "'Body-fixed z-coordinate of center of gravity', /, 4x, "
                   "'zcg................................................', e14.4)",
                   items);
    }
}

void write_panel_counts(const HydSize& size) {
    write_both("10(2x, 'Number of nodes.....................................',i10)", {size.nnodes});
    if (size.np == size.npanels)
        write_both("20(2x, 'Number of panels....................................',i10)", {size.np});
    else
        write_both(
            "30(2x, 'Number of wet panels.................................',i10, /, 2x, 'Total number of panels..............................',i10)",
            {size.np, size.npanels});
}

/// Real and imaginary part, modulus and phase in degrees of one force.
FormatItems force_items(int mode, Complex8 f) {
    FormatItems items;
    items.add(mode).add(f).add(complex_modulus(f)).add(std::atan2(f.imag(), f.real()) * degrees);
    return items;
}

void write_diagonal(int unit, double omega, Matrix<const double> a) {
    FormatItems first, rest;
    first.add(omega);
    for (int i = 1; i <= a.rows; ++i)
        (i <= 6 ? first : rest).add(a(i, i));
    write_unit(unit, "10(f8.4, 1p6e12.4)", first);
    if (!rest.items().empty()) write_unit(unit, "20(8x, 1p6e12.4)", rest);
}

bool has_negative_diagonal(Matrix<const double> a) {
    for (int i = 1; i <= a.rows; ++i)
        if (a(i, i) < 0) return true;
    return false;
}

void write_forces(const HydSize& size, int ifreq, double omega, std::span<const double> beta,
                  Array3<const Complex8> fi, Array3<const Complex8> fd) {
    for (int ib = 1; ib <= size.nbeta; ++ib) {
        const double angle = beta[nth(ib)] * degrees;
        write_unit(
            unit_ot2,
            "10(/,'FROUDE-KRYLOV FORCE FOR WAVE HEADING  ',f10.5,' deg.', //, 27x, 'Real', 6x, 'Imaginary', 6x, 'Amplitude', 10x, 'Phase')",
            {angle});
        for (int i = 1; i <= size.nmode; ++i)
            write_unit(unit_ot2, "20(2x, 'MODE ', i3, 3x, 'FI=', 1p4e15.6)",
                       force_items(i, fi(i, ib, ifreq)));
        write_unit(
            unit_ot2,
            "10(/,'DIFFRACTION FORCE FOR WAVE HEADING  ',f10.5,' deg.', //, 27x, 'Real', 6x, 'Imaginary', 6x, 'Amplitude', 10x, 'Phase')",
            {angle});
        for (int i = 1; i <= size.nmode; ++i)
            write_unit(unit_ot2, "20(2x, 'MODE ', i3, 3x, 'FD=', 1p4e15.6)",
                       force_items(i, fd(i, ib, ifreq)));
        write_unit(
            unit_exf,
            "15(//,'Wave frequency =', f12.6,' rad/sec',/, 'Wave heading =', f12.6, ' degrees',//, 3x, 'Mode', 12x, 'Real', 5x, 'Imaginary', 5x, 'Amplitude', 9x, 'Phase')",
            {omega, angle});
        for (int i = 1; i <= size.nmode; ++i)
            write_unit(unit_exf, "20(i6, 3x, 1p4e14.5)",
                       force_items(i, fi(i, ib, ifreq) + fd(i, ib, ifreq)));
    }
}

} // namespace

void open_coefficient_files() {
    fortopen_ext(unit_adm, ".adm", "UNKNOWN", "FORMATTED");
    fortopen_ext(unit_adp, ".adp", "UNKNOWN", "FORMATTED");
    fortopen_ext(unit_exf, ".exf", "UNKNOWN", "FORMATTED");
    fortopen_ext(unit_ot2, ".ot2", "UNKNOWN", "FORMATTED");
    write_unit(unit_adm, "10(15x,'****** DIAGONAL ADDED MASSES ******', //, 'Frequency')");
    write_unit(unit_adp, "20(15x,'****** DIAGONAL DAMPING COEFFICIENTS ******', //, 'Frequency')");
    write_unit(unit_exf, "30(15x,'****** WAVE EXCITATION ******', //)");
}

void close_coefficient_files() {
    for (const int unit : {unit_ot2, unit_adm, unit_adp, unit_exf})
        close_unit(unit);
}

void hyd_problem_summary(const HydSize& size, int first, std::span<const double> freq,
                         std::span<const double> beta) {
    write_both("5(/, '  Problem Summary', /)");
    write_panel_counts(size);
    write_both(
        "40(2x, 'Number of user-defined modes........................',i10, /, 2x, 'Number of flexible modes............................',i10, /)",
        {size.nmoder, size.nmodef});
    write_both(
        "50(2x, 'Water depth.........................................', f10.3, /, 2x, 'Nondimensional deep water limit (kh)................', f10.3, /, 2x, 'Acceleration due to gravity, g......................', 1pe10.3, /, 2x, 'Mass density of sea-water, rho......................', e10.3, /, 2x, 'Gauge factor........................................', e10.3, /, 2x, 'Structural hysteretic damping (%), hdamp............', 0pf10.2,/)",
        {size.depth, size.deep_water, size.grav, size.rho, size.gauge,
         100 * require_real(hyd_hysdamp)});
    write_coordinate_systems(require_int(hyd_nbodies));
    write_wave_lists(size, first, freq, beta);
}

void write_wave_lists(const HydSize& size, int first, std::span<const double> freq,
                      std::span<const double> beta) {
    std::vector<double> angles(beta.begin(), beta.end());
    for (double& a : angles)
        a *= degrees;
    write_both(
        "80(2x, 'Number of wave headings.............................', i10, /, 2x, 'Wave headings in degrees')",
        {size.nbeta});
    write_both("90(4x, 8f9.4)", {std::span<const double>(angles)});
    write_wave_frequencies(first, freq);
}

void write_wave_frequencies(int first, std::span<const double> freq) {
    write_both(
        "100(/, 2x, 'Number of wave frequencies..........................', i10, /, 2x, 'Wave frequencies in rad/sec')",
        {freq.size() - nth(first)});
    write_both("110(4x, 8f9.4)", {freq.subspan(nth(first))});
}

void write_coefficient_reports(const HydSize& size, std::span<const double> beta) {
    const auto addm = as_array3<const double>(
        require_array(hyd_addm, type_real, {size.nmode, size.nmode, size.nfreq}));
    const auto damp = as_array3<const double>(
        require_array(hyd_damp, type_real, {size.nmode, size.nmode, size.nfreq}));
    const auto fi = as_array3<const Complex8>(
        require_array(hyd_fi, type_complex8, {size.nmode, size.nbeta, size.nfreq}));
    const auto fd = as_array3<const Complex8>(
        require_array(hyd_fd, type_complex8, {size.nmode, size.nbeta, size.nfreq}));
    const auto twnk = require_matrix<double>(hyd_twnk, size.nfreq, 2);
    bool negative_mass = false, negative_damping = false;
    for (int i = 1; i <= size.nfreq; ++i) {
        const double period = twnk(i, 1), omega = 2 * std::numbers::pi / period;
        write_unit(
            unit_ot2,
            "10(/, '    Wave frequency', i3, 4x, /, '        Omega = ', f8.4,' rad/sec', 4x, 'Period = ', f6.2,' sec', /, '        Wave number k =', 1pe12.4,  4x, 'k * depth =', 0pf10.3)",
            {i, omega, period, twnk(i, 2), twnk(i, 2) * size.depth});
        write_diagonal(unit_adm, omega, addm.slice(i));
        write_diagonal(unit_adp, omega, damp.slice(i));
        write_unit(unit_ot2, "30(//,'ADDED MASS MATRIX',/)");
        write_matrix(unit_ot2, addm.slice(i));
        write_unit(unit_ot2, "40(/,'DAMPING COEFFICIENT MATRIX',/)");
        write_matrix(unit_ot2, damp.slice(i));
        negative_mass |= has_negative_diagonal(addm.slice(i));
        negative_damping |= has_negative_diagonal(damp.slice(i));
        write_forces(size, i, omega, beta, fi, fd);
    }
    if (negative_mass)
        write_unit(
            unit_output,
            "20('    Warning: Negative diagonal added mass coefficients found for 1 or more frequencies', /, '    Check file *.adm for details')");
    if (negative_damping)
        write_unit(
            unit_output,
            "30('    Warning: Negative diagonal hydrodynamic damping coefficients found for 1 or more frequencies', /, '    Check file *.adp for details')");
}

void print_trace_title() {
    print_both(" \n\n                    Analysis Trace\n");
}

TimedStep::TimedStep(double& slot) : slot_(slot), start_(cpu_seconds()) {}
TimedStep::~TimedStep() {
    slot_ += cpu_seconds() - start_;
}

void write_times(const AnalysisTimers& timers, double elapsed) {
    static constexpr std::array<std::string_view, timer_count> labels{
        "Allocate memory",
        "Form alpha, beta",
        "Factor beta",
        "Backsubstitute for source strengths",
        "Obtain radiation potentials",
        "Obtain added mass and damping",
        "Compute Froude-Krylov forces",
        "Compute diffraction forces"};
    double total = 0;
    for (const double t : timers.seconds)
        total += std::max(t, 0.0);
    if (elapsed < total)
        print_both(" \n\tWarning: The times reported below may not be correct\n");
    else
        total = elapsed;
    write_both("(/, ' Summary of Analysis Times (seconds)', /)");
    for (std::size_t i = 0; i < labels.size(); ++i) {
        std::string label(1, ' ');
        label += labels[i];
        label.resize(43, '.');
        write_both("(a, f10.3)", {std::string_view(label), timers.seconds[i]});
    }
    write_both("(' Total CPU time...........................', f11.3, /)", {total});
}

} // namespace quelor
