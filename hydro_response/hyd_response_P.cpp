// Command hyd_analysis_response_P. Reads `hyd_Peiwt` and what hyd_analysis_response reads, the wave
// forces and headings excepted; writes `.hyd_gencor` (nmode,nfreq,1), `.hyd_dynk`, `.hyd_rhs`.
// Workspaces are those of MotionEquations.
#include "hydro_response/hyd_response_P.hpp"

#include "hydro_analysis/hyd_reports.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_response/hyd_response.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace quelor {

namespace {

constexpr int unit_efl = 92;

/// The modal load; empty after a message when it does not serve.
std::span<const double> find_load(int nmode) {
    const ArrayRef ref = find_array(hyd_Peiwt);
    if (!ref)
        not_found(hyd_Peiwt);
    else if (!ref.is(type_real) || ref.size() != nmode || ref.rows() + ref.cols() != nmode + 1)
        print_both(" \nhyd_Peiwt must be a real vector of size nmode\n");
    else
        return as_span<const double>(ref);
    return {};
}

/// True when `hyd_mstr`, if it is there, differs from the identity by more than 1e-6.
bool modal_masses_differ_from_one(int nmode) {
    const ArrayRef ref = find_array(hyd_mstr);
    if (!ref.is(type_real) || ref.rows() != nmode || ref.cols() != nmode) return false;
    const auto mass = as_matrix<const double>(ref);
    for (int j = 1; j <= nmode; ++j)
        for (int i = 1; i <= nmode; ++i)
            if (!(std::abs(mass(i, j) - (i == j ? 1 : 0)) <= 1e-6)) return true;
    return false;
}

void write_summary(const HydSize& size, double hdamp, std::span<const double> freq,
                   const ResponseOptions& options) {
    write_summary_head(size, hdamp);
    write_both(
        "(2x, 'Number of frequencies..........................', i10, /, 2x, 'Frequencies in rad/sec')",
        {size.nfreq});
    write_both("(4x, 8f9.4)", {freq});
    if (options.eq) {
        write_both("(/, '\"Earthquake\" (ground motion) response.')");
        if (modal_masses_differ_from_one(size.nmode))
            write_both(
                "('Warning: unit modal masses are assumed, but hyd_mstr is not the identity matrix.')");
    }
    write_symmetrize_line(options.symmetrize);
}

void write_effective_load(double omega, std::span<const Complex8> load) {
    write_unit(
        unit_efl,
        "(//, 'EFFECTIVE LOAD FROM GROUND ACCELERATION - FREQUENCY ', 1pd10.4, //, //, '  MODE', 13x, 'Real', 5x, 'Imaginary', 5x, 'Amplitude', 9x, 'Phase')",
        {omega});
    for (std::size_t i = 0; i < load.size(); ++i)
        write_unit(
            unit_efl, "(i6, 3x, 1p4e14.5)",
            {i + 1, load[i], complex_modulus(load[i]), std::atan2(load[i].imag(), load[i].real())});
}

void solve_frequency(MotionEquations& equations, int ifreq, double omega, bool eq,
                     std::span<const double> P) {
    write_both(
        "(/, 'Frequency',i3, 4x, 'Omega = ', f7.4,' rad/sec', 4x,'     Period = ',f6.2,' sec')",
        {ifreq, omega, 2 * std::numbers::pi / omega});
    write_both("('    Forming equations of motion')");
    equations.take_frequency(ifreq);
    equations.factor(omega);
    if (eq) {
        ground_motion_load(omega, equations.added_mass(), equations.damping(), P, equations.rhs());
        write_effective_load(omega, equations.rhs());
    } else {
        std::ranges::copy(P, equations.rhs().begin());
    }
    write_both("('    Calculating response')");
    equations.solve(ifreq, 1);
}

void analyse(const ResponseOptions& options) {
    if (!array_exists(hyd_coordaxs)) return not_found(hyd_coordaxs);
    if (!check_finite_structure()) return;
    const HydSize s = hyd_get_problem_size();
    const auto P = find_load(s.nmode);
    if (P.empty()) return;
    Inputs inputs;
    const auto freq = inputs.vector<double>(hyd_freq, s.nfreq);
    const FluidMatrices fluid{inputs.array3<double>(hyd_addm, s.nmode, s.nmode, s.nfreq),
                              inputs.array3<double>(hyd_damp, s.nmode, s.nmode, s.nfreq),
                              inputs.matrix<double>(hyd_kf, s.nmode, s.nmode),
                              inputs.real(hyd_hysdamp)};
    if (!inputs) return;
    write_summary(s, fluid.hdamp, freq, options);
    hyd_response_arrays(s.nfreq, 1, s.nmode);
    print_trace_title();
    hyd_check_structure(s.nmodef, s.nmode);
    if (options.eq) fortopen_ext(unit_efl, ".efl", "UNKNOWN", "FORMATTED");
    MotionEquations equations(fluid, options);
    for (int ifreq = 1; ifreq <= s.nfreq; ++ifreq)
        solve_frequency(equations, ifreq, freq[nth(ifreq)], options.eq, P);
    close_unit(unit_efl);
    constexpr std::array heading{0.0};
    hyd_write_cor(freq, heading, as_array3<const Complex8>(find_array(hyd_gencor)));
}

void cmd_hyd_analysis_response_P(std::string_view) {
    if (!hyd_check_green_function()) return;
    const ResponseOptions options = hyd_response_options();
    const CorFile cor;
    analyse(options);
}

constexpr Command rows[] = {
    {.words = {"hyd_analysis_response_P"},
     .run = cmd_hyd_analysis_response_P,
     .summary = "response to a given load or ground motion",
     .help =
         "Command Syntax\n\thyd_analysis_response_P [-eq] [-residual] [symmetrize=on|off]\n\n"
         "Command to determine the response in generalized coordinates to a harmonic load that "
         "does not depend on the frequency, or to an earthquake, at the frequencies of hyd_wave. "
         "It uses the added mass and the damping of hyd_analysis, for which one wave heading, 0 "
         "degrees for example, is enough; wave exciting forces are ignored.\n\n"
         "-eq\n\tThe effective load of a unit ground acceleration: -(I + A) P + (i/omega) B P, A "
         "and B being added mass and damping. The generalized structural mass is assumed to be the "
         "identity matrix. The hydrodynamic damping is part of the load because it depends on the "
         "total velocity; viscous structural damping (hyd_cstr) is taken on the velocity relative "
         "to the ground. The load is written to the file project_name.efl.\n"
         "-residual\n\tThe residual of every solution is computed and reported.\n"
         "symmetrize=on|off\n\tWith on, added mass and damping are symmetrized before use. The "
         "default is off.\n\n"
         "Needs\n\thyd_Peiwt, real vector of size nmode: the modal load P. With -eq it is "
         "psi^T Ms r, psi being the modes, Ms the mass of the structure and r the influence vector "
         "(the displacements of a rigid unit motion of the ground). hyd_mstr, hyd_kstr and "
         "hyd_cstr as in hyd_analysis_response.\n"
         "\tThe error of r in the modes is r - psi (Ms*)^-1 psi^T Ms r, Ms* being the generalized "
         "mass; the more modes there are, the smaller it is.\n\n"
         "Created\n\t.hyd_gencor (nmode,nfreq,1), complex, and the file project_name.cor.\n\n"
         "Example\n\tinput hyd_Peiwt r=6 c=1\n\t0\n\t0\n\t1e6\n\t0\n\t0\n\t0\n"
         "\thyd_analysis_response_P\n\n"
         "See Also\n\thyd_analysis_response, hyd_postresponse_P\n"},
};

} // namespace

void ground_motion_load(double omega, Matrix<const double> A, Matrix<const double> B,
                        std::span<const double> P, std::span<Complex8> load) {
    for (int i = 1; i <= A.rows; ++i) {
        double inertia = P[nth(i)], damping = 0;
        for (int j = 1; j <= A.cols; ++j) {
            inertia += A(i, j) * P[nth(j)];
            damping += B(i, j) * P[nth(j)];
        }
        load[nth(i)] = {0 - inertia, damping / omega}; // no negative zero for an idle mode
    }
}

std::span<const Command> hyd_response_P_rows() {
    return rows;
}

} // namespace quelor
