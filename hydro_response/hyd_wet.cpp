// Command hyd_wet. Reads `hyd_mstr`, `hyd_kstr`, `.hyd_kf`, `.hyd_addm`, `.hyd_freq`, `.hyd_wave`,
// `hyd_modemat`; writes `.hyd_wet_freq`, `.hyd_wet_modes`, their cumulative forms and
// `<project>.wet`. Workspaces `$M`, `$K`, `$K0`, `$Kfsym`, `$modresp`.
//
// For the added mass A of each wave frequency:  (Kf + Ks) x = lambda (Ms + A) x, solved with the
// shift s as (Kf + Ks + s (Ms + A)) x = (lambda + s) (Ms + A) x, so that a free structure leaves no
// zero eigenvalues.   Source: [Newman 1994], [Bathe 1976]
#include "hydro_response/hyd_wet.hpp"

#include "dynamics/eigval_jacobi.hpp"
#include "hydro_analysis/hyd_reports.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/hyd_tf.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr int unit_wet = 93;
constexpr int jacobi_sweeps = 30;
constexpr double jacobi_tolerance = 1e-12;
constexpr double two_pi = 2 * std::numbers::pi;

struct WetOptions {
    double shift = 0, limit = 1e30; ///< eigenvalue shift; percent error
    std::string form;               ///< of the lines of a mode; empty: the default
};

/// A format in brackets that writes an integer and a real number; refused with a message when it is
/// in brackets but no such format.
std::string read_form() {
    std::string form;
    get_char_par("form=", form, 161);
    if (!form.starts_with('(') || !form.ends_with(')')) return {};
    const std::string fault = format_write(Format::from_text(form), {1, 1.0}).error;
    if (fault.empty()) return form;
    print_both(" \n\tFormat " + form + " is not used: " + fault + "\n");
    return {};
}

/// False after a message when the shift is not a number.
bool read_options(WetOptions& o) {
    get_real_par(" shift=", o.shift);
    get_real_par(" error=", o.limit);
    if (o.shift < 0) o.shift = 1;
    o.form = read_form();
    if (std::isfinite(o.shift)) return true;
    print_both(" \n\tshift must be a finite number\n");
    return false;
}

struct WetInputs {
    std::span<const double> freq;
    Matrix<const double> mstr, kstr, kf; ///< (nmode,nmode)
    Array3<const double> addm;           ///< (nmode,nmode,nfreq)
    Matrix<const double> modemat;        ///< (ncomp,nmode); none: modes in generalised coordinates
    int nmode = 0;
};

/// nmoder + nmodef; any_size when they are no numbers of modes.
int mode_count(int nmoder, int nmodef) {
    constexpr int most = 1'000'000;
    const bool valid =
        0 <= nmoder && nmoder <= most && 0 <= nmodef && nmodef <= most && nmoder + nmodef > 0;
    return valid ? nmoder + nmodef : any_size;
}

/// False after a message when something is absent or does not fit.
bool find_inputs(WetInputs& in) {
    Inputs inputs;
    in.freq = inputs.vector<double>(hyd_freq);
    const auto wave = inputs.vector<std::int32_t>(hyd_wave, 2);
    const int nmoder = inputs.integer(hyd_nmoder), nmodef = inputs.integer(hyd_nmodef);
    in.nmode = mode_count(nmoder, nmodef);
    in.kf = inputs.matrix<double>(hyd_kf, in.nmode, in.nmode);
    in.mstr = inputs.matrix<double>(hyd_mstr, in.nmode, in.nmode);
    in.kstr = inputs.matrix<double>(hyd_kstr, in.nmode, in.nmode);
    if (!inputs) return false;
    if (in.nmode == any_size)
        print_both(" \n\tThe numbers of modes in .hyd_nmoder and .hyd_nmodef are not valid\n");
    else if (static_cast<int>(in.freq.size()) != wave[1])
        print_both(" \n\tArrays .hyd_freq and .hyd_wave do not agree\n");
    else
        return true;
    return false;
}

/// `hyd_modemat` when it is real with nmode columns; a message when it is there and does not serve.
Matrix<const double> find_modal_matrix(int nmode) {
    const ArrayRef ref = find_array(hyd_modemat);
    if (!ref) return {};
    if (ref.cols() != nmode || ref.ndim() > 2)
        print_both(" \n\t\tArray modemat does not have nmode columns");
    else if (!ref.is(type_real))
        print_both(" \n\t\tModal matrix is not type real");
    else
        return as_matrix<const double>(ref);
    return {};
}

/// Frequencies and modes that met the limit.
struct Found {
    explicit Found(std::size_t nfreq, int nmode) : nmode_(nmode) {
        const std::size_t room = std::max<std::size_t>(2 * nfreq, 100);
        freq_.reserve(room);
        modes_.reserve(room * as_size(nmode));
    }
    void add(double omega_n, std::span<const double> mode) {
        freq_.push_back(omega_n);
        modes_.insert(modes_.end(), mode.begin(), mode.end());
    }
    void store() const {
        if (freq_.empty()) return;
        const int nconv = static_cast<int>(freq_.size());
        std::ranges::copy(freq_, create_matrix<double>(hyd_wet_freq_cumulate, nconv, 0).data);
        std::ranges::copy(modes_,
                          create_matrix<double>(hyd_wet_modes_cumulate, nmode_, nconv).data);
    }

private:
    int nmode_;
    std::vector<double> freq_, modes_;
};

/// The work arrays and results of the loop.
struct WetProblem {
    Matrix<double> M, K;
    Matrix<const double> K0; ///< stiffness without shift
    std::span<double> omega; ///< nmode wet frequencies
    Matrix<double> modes;
    std::span<double> component; ///< response of the components in one mode
};

/// M = the symmetric part of A + Ms, K = K0 + shift M.
void form_problem(const WetInputs& in, double shift, int index, const WetProblem& problem) {
    std::ranges::copy(in.addm.slice(index).all(), problem.M.data);
    symmetrize_matrix(problem.M);
    for (std::size_t i = 0; i < problem.M.all().size(); ++i) {
        double& M = problem.M.data[i];
        M += in.mstr.data[i];
        problem.K.data[i] = shift * M + problem.K0.data[i];
    }
}

bool has_negative_diagonal(Matrix<const double> a) {
    for (int i = 1; i <= a.rows; ++i)
        if (a(i, i) < 0) return true;
    return false;
}

/// False, after its line in the output file, when the frequency is to be skipped.
bool has_positive_diagonals(const WetProblem& problem) {
    if (has_negative_diagonal(problem.M)) {
        write_unit(
            unit_output,
            "(/, 'Total mass matrix not positive definite; calculation of wet frequencies skipped', /)");
        return false;
    }
    if (has_negative_diagonal(problem.K)) {
        write_unit(
            unit_output,
            "(/, 'Shifted stiffness matrix not positive definite; calculation of wet frequencies skipped', /)");
        return false;
    }
    return true;
}

void write_mode(const WetInputs& in, const Format& form, const WetProblem& problem, int j,
                double error) {
    const double omega_n = problem.omega[nth(j)];
    write_unit(
        unit_wet,
        "(/, 8x, 'Natural Frequency', i4, ':', 1pe12.4, ' rad/sec ', e12.4, ' Hz   Error:', 0pf7.3, ' percent', /)",
        {j, omega_n, omega_n / two_pi, error});
    std::span<const double> values = problem.modes.col(j);
    if (in.modemat) {
        write_unit(unit_wet, "(8x, 'Component')");
        std::ranges::fill(problem.component, 0.0);
        for (int m = 1; m <= in.nmode; ++m)
            for (int c = 1; c <= in.modemat.rows; ++c)
                problem.component[nth(c)] += in.modemat(c, m) * problem.modes(m, j);
        values = problem.component;
    } else {
        write_unit(unit_wet, "(14x, 'DOF')");
    }
    for (std::size_t i = 0; i < values.size(); ++i)
        write_unit(unit_wet, form, {i + 1, values[i]});
}

void write_table_head() {
    write_both(
        "(/, 8x, 'Estimated Wet Natural Frequencies within Specified Error', //, 8x, 'Freq.    Frequency     Frequency        Period    Percent', /, 8x, '  No.    (rad/sec)          (Hz)         (sec)      Error')");
}

/// The wet frequencies at one wave frequency; those within the limit are printed and kept.
void solve_wave_frequency(const WetInputs& in, const WetOptions& options, const Format& form,
                          int index, const WetProblem& problem, Found& found) {
    const double omega = in.freq[nth(index)];
    write_wet_frequency_line(index, omega);
    write_wet_frequency_line(unit_wet, index, omega);
    form_problem(in, options.shift, index, problem);
    if (!has_positive_diagonals(problem)) return;
    solve_pencil(problem.K, problem.M, problem.modes, problem.omega, jacobi_tolerance,
                 jacobi_sweeps);
    for (double& value : problem.omega) // an eigenvalue below the shift counts by its modulus
        value = std::sqrt(std::abs(value - options.shift));
    write_table_head();
    for (int j = 1; j <= in.nmode; ++j) {
        const double omega_n = problem.omega[nth(j)];
        const double error = std::abs(omega_n - omega) / omega * 100;
        if (error > options.limit) continue;
        found.add(omega_n, problem.modes.col(j));
        write_both("(8x, i5, 1p3e14.4, 1x, 0pf10.3)",
                   {j, omega_n, omega_n / two_pi, two_pi / omega_n, error});
        write_mode(in, form, problem, j, error);
    }
    write_both("()");
}

/// K0 = the symmetric part of Kf + Ks.
void form_stiffness(const WetInputs& in, Matrix<double> K0) {
    const Temporary<double> Kfsym("$Kfsym", in.nmode, in.nmode);
    std::ranges::copy(in.kf.all(), Kfsym.view.data);
    symmetrize_matrix(Kfsym.view);
    std::ranges::transform(Kfsym.view.all(), in.kstr.all(), K0.data, std::plus{});
}

void write_wet_title(bool components) {
    if (components)
        write_unit(unit_wet, "(//, '(Modes are based on components in hyd_modemat)', //)");
    else
        write_unit(unit_wet, "(//, '(Modes are in generalized coordinates)', //)");
}

void solve_all(const WetInputs& in, const WetOptions& options) {
    const int n = in.nmode;
    const double start = cpu_seconds();
    for (const auto name : {hyd_wet_freq_cumulate, hyd_wet_modes_cumulate})
        delete_array(name);
    const Temporary<double> M("$M", n, n), K("$K", n, n), K0("$K0", n, n),
        component("$modresp", in.modemat ? in.modemat.rows : 1, 1);
    const auto modes = create_matrix<double>(hyd_wet_modes, n, n);
    const auto omega = create_matrix<double>(hyd_wet_freq, n, 0);
    form_stiffness(in, K0.view);
    const WetProblem problem{M.view, K.view, K0.view, omega.all(), modes, component.view.all()};
    const Format form = Format::from_text(
        !options.form.empty() ? std::string_view(options.form)
                              : (in.modemat ? "(i15, 3x, 1pe14.4)" : "(i17, 1x, 1pe14.4)"));
    print_trace_title();
    Found found(in.freq.size(), n);
    for (int index = 1; index <= static_cast<int>(in.freq.size()); ++index)
        solve_wave_frequency(in, options, form, index, problem, found);
    found.store();
    write_both("(/, ' Total CPU time (seconds)................', f10.3, /)",
               {cpu_seconds() - start});
}

void cmd_hyd_wet(std::string_view) {
    if (!hyd_check_green_function()) return;
    WetOptions options;
    if (!read_options(options)) return;
    fortopen_ext(unit_wet, ".wet", "UNKNOWN", "FORMATTED");
    write_unit(unit_wet, "(15x,'****** ESTIMATED WET NATURAL FREQUENCIES AND MODES ******', //)");
    WetInputs in;
    if (!find_inputs(in)) return close_unit(unit_wet);
    in.modemat = find_modal_matrix(in.nmode);
    write_wet_title(bool(in.modemat));
    if (!array_exists(hyd_addm)) shutdown_with(" \nAdded mass not found\n");
    Inputs inputs;
    in.addm = inputs.array3<double>(hyd_addm, in.nmode, in.nmode, static_cast<int>(in.freq.size()));
    if (inputs) solve_all(in, options);
    close_unit(unit_wet);
}

constexpr Command rows[] = {
    {.words = {"hyd_wet"},
     .run = cmd_hyd_wet,
     .summary = "estimated wet natural frequencies and modes",
     .help =
         "Command Syntax\n\thyd_wet  [shift=?] [error=?] [form=format]\n\n"
         "Command to estimate the natural frequencies and modes of the structure in water. The "
         "added mass depends on the frequency, and the command does not iterate: for each wave "
         "frequency of hyd_analysis it solves one eigenproblem with the added mass of that "
         "frequency, and prints the error, the percentage by which a wet frequency differs from "
         "the wave frequency. A wet frequency is a natural frequency where the error is small; "
         "choose the wave frequencies so that they come near.\n\n"
         "shift\n\tAdded to the eigenvalues for the solution, so that a structure without "
         "restoring in some modes has no zero eigenvalues; 1 serves. A value below 0 means 1. The "
         "default is 0.\n"
         "error\n\tLargest error in percent that is reported. The default is 1e30: all.\n"
         "form\n\tFormat of the lines of a mode in the file project_name.wet, in brackets, without "
         "blanks, for the number of the component and its value. The default is "
         "(i15,3x,1pe14.4) with hyd_modemat and (i17,1x,1pe14.4) without.\n\n"
         "Needs\n\thyd_mstr, hyd_kstr (nmode,nmode), the structural mass and stiffness; their "
         "upper triangles are read. Added mass and .hyd_kf are symmetrized. If hyd_modemat "
         "(ncomp,nmode) exists, the modes in the file are given by its components, otherwise in "
         "generalized coordinates.\n\n"
         "A wave frequency is skipped, with a line in the output file, when a diagonal term of "
         "the total mass or of the shifted stiffness is below 0.\n\n"
         "Created\n\t.hyd_wet_freq (nmode), .hyd_wet_modes (nmode,nmode): frequencies (rad/sec) "
         "and modes of the last wave frequency. Modes have unit modal mass with respect to the "
         "total mass; their sign is free.\n"
         "\t.hyd_wet_freq_cumulate (nconv), .hyd_wet_modes_cumulate (nmode,nconv): all that met the "
         "error, over all wave frequencies.\n\n"
         "Example\n\thyd_analysis\n\thyd_wet shift=1 error=5 form=(i15,3x,1pe20.10)\n\n"
         "See Also\n\thyd_analysis, hyd_rmass, hyd_tf\n"},
};

} // namespace

void write_wet_frequency_line(int unit, int index, double omega) {
    write_unit(
        unit,
        "(/, '    Wave frequency',i3, 4x, 'Omega = ', f6.4,' rad/sec', 4x,'Wave period = ',f5.2,' sec')",
        {index, omega, two_pi / omega});
}

void write_wet_frequency_line(int index, double omega) {
    write_wet_frequency_line(unit_screen, index, omega);
    write_wet_frequency_line(unit_output, index, omega);
}

std::span<const Command> hyd_wet_rows() {
    return rows;
}

} // namespace quelor
