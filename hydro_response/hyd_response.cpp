// Command hyd_analysis_response. Reads `hyd_mstr`, `hyd_cstr`, `hyd_kstr`, `.hyd_kf`, `.hyd_addm`,
// `.hyd_damp`, `.hyd_fi`, `.hyd_fd`, `.hyd_hysdamp`, `.hyd_freq`, `.hyd_beta`, `.hyd_wave`; writes
// `.hyd_gencor`, `.hyd_dynk`, `.hyd_rhs`. Workspaces `$add_mass`, `$add_damp`, `$hyd_rindx`,
// `$hyd_dynkcp`, `$hyd_rhscp`, `$resp`.
#include "hydro_response/hyd_response.hpp"

#include "hydro_analysis/csolve.hpp"
#include "hydro_analysis/hyd_anal_main.hpp"
#include "hydro_analysis/hyd_reports.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace quelor {

namespace {

bool is_square(std::string_view name, int n) {
    const ArrayRef ref = find_array(name);
    return ref.is(type_real) && ref.ndim() <= 2 && ref.rows() == n && ref.cols() == n;
}

/// Index of the largest modulus; the first of equals.
std::size_t largest(std::span<const Complex8> v) {
    return as_size(std::ranges::max_element(v, {}, complex_modulus) - v.begin());
}

template <class T> Array3<const T> require_array3(std::string_view name, int n1, int n2, int n3) {
    return as_array3<const T>(require_array(name, type_code<T>, {n1, n2, n3}));
}

void cmd_hyd_analysis_response(std::string_view) {
    if (!check_finite_structure()) return;
    const ResponseOptions options = hyd_response_options();
    const CorFile cor;
    const HydSize s = hyd_get_problem_size();
    const auto beta = require_vector<double>(hyd_beta, s.nbeta);
    const auto freq = require_vector<double>(hyd_freq, s.nfreq);
    write_summary_head(s, require_real(hyd_hysdamp));
    write_wave_lists(s, 1, freq, beta);
    write_symmetrize_line(options.symmetrize);
    const auto addm = require_array3<double>(hyd_addm, s.nmode, s.nmode, s.nfreq);
    const auto damp = require_array3<double>(hyd_damp, s.nmode, s.nmode, s.nfreq);
    const auto fi = require_array3<Complex8>(hyd_fi, s.nmode, s.nbeta, s.nfreq);
    const auto fd = require_array3<Complex8>(hyd_fd, s.nmode, s.nbeta, s.nfreq);
    const auto kf = require_matrix<double>(hyd_kf, s.nmode, s.nmode);
    hyd_response_arrays(s.nfreq, s.nbeta, s.nmode);
    print_trace_title();
    hyd_check_structure(s.nmodef, s.nmode);
    MotionEquations equations({addm, damp, kf, require_real(hyd_hysdamp)}, options);
    for (int ifreq = 1; ifreq <= s.nfreq; ++ifreq) {
        const double omega = freq[nth(ifreq)];
        write_frequency_line(ifreq, omega);
        equations.take_frequency(ifreq);
        equations.factor(omega);
        for (int ibeta = 1; ibeta <= s.nbeta; ++ibeta) {
            write_heading_line(ibeta, beta[nth(ibeta)]);
            wave_load({fi, fd}, ibeta, ifreq, 1.0, equations.rhs());
            write_both("('    Solving equation of motion')");
            equations.solve(ifreq, ibeta);
            write_both("('    Response calculated')");
        }
    }
    hyd_write_cor(freq, beta, as_array3<const Complex8>(find_array(hyd_gencor)));
}

constexpr Command rows[] = {
    {.words = {"hyd_analysis_response"},
     .run = cmd_hyd_analysis_response,
     .summary = "response in generalized coordinates",
     .help =
         "Command Syntax\n\thyd_analysis_response [-residual] [symmetrize=on|off]\n\n"
         "Command to determine the response in generalized coordinates, for waves of unit "
         "amplitude, at the frequencies and headings of hyd_analysis, which it follows. It can be "
         "repeated, for instance with another mass matrix, without repeating hyd_analysis.\n\n"
         "-residual\n\tThe residual of every solution is computed and reported.\n"
         "symmetrize=on|off\n\tWith on, added mass and damping are symmetrized before use; the "
         "stored arrays are not changed. The default is off.\n\n"
         "Needs\n\thyd_mstr, the structural mass; hyd_kstr, the structural stiffness, if there are "
         "flexible modes; hyd_cstr, the viscous structural damping, is optional. All are "
         "(nmode,nmode).\n\n"
         "Created\n\t.hyd_gencor (nmode,nfreq,nbeta), complex, and the file project_name.cor; "
         "phases in it are in radians. .hyd_dynk and .hyd_rhs hold the factors and the solution "
         "of the last frequency and heading.\n\n"
         "Example\n\thyd_analysis_response symmetrize=on\n\n"
         "See Also\n\thyd_analysis, hyd_rmass, hyd_tf\n"},
};

} // namespace

bool hyd_check_green_function() {
    if (!array_exists(grnfun)) create_int_scalar(grnfun, 0);
    if (get_int(grnfun) == 0) return true;
    print_both(" \n\t\tThis command is not implemented for this Green function\n");
    return false;
}

bool check_finite_structure() {
    for (const auto name : {hyd_mstr, hyd_cstr, hyd_kstr}) {
        const ArrayRef ref = find_array(name);
        if (!ref.is(type_real)) continue;
        const auto values = as_span<const double>(ref);
        const std::size_t at = first_not_finite(values), rows = as_size(ref.rows());
        if (at == values.size()) continue;
        print_both(" \n\t" + std::string(name) + "(" + std::to_string(at % rows + 1) + "," +
                   std::to_string(at / rows + 1) +
                   ") is not a finite number; define the matrix again\n");
        return false;
    }
    return true;
}

ResponseOptions hyd_response_options() {
    ResponseOptions o;
    std::string text;
    o.residual = has_flag(" -residual");
    get_char_par(" symmetrize=", text, 5);
    o.symmetrize = text == "on";
    o.eq = has_flag(" -eq");
    return o;
}

CorFile::CorFile() {
    fortopen_ext(unit_cor, ".cor", "UNKNOWN", "FORMATTED");
    write_unit(unit_cor, "(10x,8('*'),' GENERALIZED COORDINATES ', 2x, 8('*'))");
}
CorFile::~CorFile() {
    close_unit(unit_cor);
}

void write_summary_head(const HydSize& size, double hdamp) {
    write_both("(/, '  Problem Summary', /)");
    write_both("(2x, 'Number of nodes.....................................',i10)", {size.nnodes});
    write_both("(2x, 'Number of user-defined modes........................',i10)", {size.nmoder});
    write_both("(2x, 'Number of flexible modes............................',i10)", {size.nmodef});
    write_both("(2x, 'Structural hysteretic damping (%), hdamp............', 0pf10.2,/)",
               {100 * hdamp});
}

void write_symmetrize_line(bool symmetrize) {
    if (symmetrize)
        write_both("(/, 'Added mass and hydrodynamic damping will be symmetrized.', /)");
    else
        write_both("(/, 'Added mass and hydrodynamic damping will not be symmetrized.', /)");
}

void write_frequency_line(int ifreq, double omega) {
    write_both(
        "(/, '    Wave frequency',i3, 4x, 'Omega = ', f7.4,' rad/sec', 4x,'Wave period = ',f5.2,' sec')",
        {ifreq, omega, 2 * std::numbers::pi / omega});
}

void write_heading_line(int ibeta, double beta) {
    write_both("(/, 6x, 'Wave heading', i3, ' at ', f7.2,' degrees')", {ibeta, beta * degrees});
}

void hyd_response_arrays(int nfreq, int nbeta, int nmode) {
    for (const auto name : {hyd_dynk, hyd_gencor, hyd_rhs})
        delete_array(name);
    create_matrix<Complex8>(hyd_dynk, nmode, nmode);
    create_matrix<Complex8>(hyd_rhs, nmode, 0);
    create_array3<Complex8>(hyd_gencor, nmode, nfreq, nbeta);
}

void hyd_check_structure(int nmodef, int nmode) {
    if (!is_square(hyd_mstr, nmode))
        shutdown_with(" \n\tStructural mass (hyd_mstr) not found or is the wrong size.\n");
    if (!is_square(hyd_cstr, nmode)) {
        print_both(
            " \n\tStructural viscous damping (hyd_cstr) not found or is the wrong size.\n\tIt will be created with zero damping.\n");
        create_matrix<double>(hyd_cstr, nmode, nmode);
    }
    if (is_square(hyd_kstr, nmode)) return;
    if (nmodef != 0)
        shutdown_with(" \n\tStructural stiffness (hyd_kstr) not found or is the wrong size.\n");
    print_both(
        " \n\tStructural stiffness (hyd_kstr) not found or is the wrong size.\n\tIt will be created with zero stiffness.\n");
    create_matrix<double>(hyd_kstr, nmode, nmode);
}

void symmetrize_matrix(Matrix<double> a) {
    for (int j = 2; j <= a.cols; ++j)
        for (int i = 1; i < j; ++i)
            a(i, j) = a(j, i) = (a(i, j) + a(j, i)) * 0.5;
}

void hyd_assemble_dynk(double omega, const MotionMatrices& m, Matrix<Complex8> dynk) {
    const double omega2 = omega * omega;
    for (int j = 1; j <= dynk.cols; ++j)
        for (int i = 1; i <= dynk.rows; ++i) {
            const double Ks = m.stiffness(i, j);
            const double re =
                Ks - (m.mass(i, j) + m.added_mass(i, j)) * omega2 + m.hydrostatic(i, j);
            double im = (m.viscous(i, j) + m.damping(i, j)) * omega;
            if (m.loss != 0) im += m.loss * Ks;
            dynk(i, j) = {re, im};
        }
}

void hyd_residual_report(Matrix<const Complex8> dynk, std::span<const Complex8> rhs,
                         std::span<const Complex8> x) {
    const Temporary<Complex8> resp("$resp", dynk.rows, 0);
    const auto r = resp.view.col(1);
    for (int j = 1; j <= dynk.cols; ++j)
        for (int i = 1; i <= dynk.rows; ++i)
            r[nth(i)] += dynk(i, j) * x[nth(j)];
    for (std::size_t i = 0; i < r.size(); ++i)
        r[i] = rhs[i] - r[i];
    const std::size_t worst = largest(r), load = largest(rhs);
    write_both(
        "(8x, 'Maximum residual error occurs at DOF', i7, /, 8x, 'Error        =', 1p2e14.5, ' with amplitude', e14.5, /, 8x, 'Load         =', 2e14.5, ' with amplitude', e14.5, /, 8x, 'Maximum load =', 2e14.5, ' with amplitude', e14.5)",
        {static_cast<int>(worst) + 1, r[worst], complex_modulus(r[worst]), rhs[worst],
         complex_modulus(rhs[worst]), rhs[load], complex_modulus(rhs[load])});
}

void wave_load(const WaveForces& forces, int ibeta, int ifreq, double amplitude,
               std::span<Complex8> load) {
    for (int i = 1; i <= forces.diffraction.n1; ++i)
        load[nth(i)] = amplitude * (forces.froude_krylov(i, ibeta, ifreq) +
                                    forces.diffraction(i, ibeta, ifreq));
}

MotionEquations::MotionEquations(const FluidMatrices& fluid, const ResponseOptions& options)
    : fluid_(fluid), symmetrize_(options.symmetrize),
      mass_("$add_mass", fluid.hydrostatic.rows, fluid.hydrostatic.rows),
      damping_("$add_damp", fluid.hydrostatic.rows, fluid.hydrostatic.rows),
      pivot_("$hyd_rindx", fluid.hydrostatic.rows, 0) {
    const int nmode = fluid.hydrostatic.rows;
    if (options.residual) {
        unfactored_.emplace("$hyd_dynkcp", nmode, nmode);
        load_.emplace("$hyd_rhscp", nmode, 0);
    }
    motion_ = {mass_.view,
               damping_.view,
               require_matrix<double>(hyd_mstr, nmode, nmode),
               require_matrix<double>(hyd_cstr, nmode, nmode),
               require_matrix<double>(hyd_kstr, nmode, nmode),
               fluid.hydrostatic,
               2 * fluid.hdamp};
    dynk_ = as_matrix<Complex8>(find_array(hyd_dynk));
    rhs_ = as_span<Complex8>(find_array(hyd_rhs));
    gencor_ = as_array3<Complex8>(find_array(hyd_gencor));
}

void MotionEquations::take_frequency(int ifreq) {
    checkpoint(); // between two frequencies
    std::ranges::copy(fluid_.added_mass.slice(ifreq).all(), mass_.view.data);
    std::ranges::copy(fluid_.damping.slice(ifreq).all(), damping_.view.data);
    if (!symmetrize_) return;
    symmetrize_matrix(mass_.view);
    symmetrize_matrix(damping_.view);
}

void MotionEquations::factor(double omega) {
    hyd_assemble_dynk(omega, motion_, dynk_);
    if (unfactored_) std::ranges::copy(dynk_.all(), unfactored_->view.data);
    std::ranges::fill(pivot_.view.all(), 0);
    csolve_factor(dynk_, pivot_.view.all());
}

void MotionEquations::solve(int ifreq, int ibeta) {
    if (load_) std::ranges::copy(rhs_, load_->view.data);
    csolve_solve(dynk_, {rhs_.data(), dynk_.rows, 1}, pivot_.view.all());
    if (load_) hyd_residual_report(unfactored_->view, load_->view.col(1), rhs_);
    std::ranges::copy(rhs_, &gencor_(1, ifreq, ibeta));
}

void hyd_write_cor(std::span<const double> freq, std::span<const double> beta,
                   Array3<const Complex8> gencor) {
    for (int f = 1; f <= gencor.n2; ++f)
        for (int b = 1; b <= gencor.n3; ++b) {
            write_unit(
                unit_cor,
                "(//, 'Wave frequency =', f9.6, ' rad/sec', 5x, 'Wave heading   =', f12.6, ' degrees', //, 'Frequency', 3x, 'Mode', 10x, 'Real', 5x, 'Imaginary', 5x, 'Amplitude', 9x, 'Phase')",
                {freq[nth(f)], beta[nth(b)] * degrees});
            for (int i = 1; i <= gencor.n1; ++i) {
                const Complex8 q = gencor(i, f, b);
                write_unit(
                    unit_cor, "(f8.5, i7, 1x, 1p4e14.5)",
                    {freq[nth(f)], i, q, complex_modulus(q), std::atan2(q.imag(), q.real())});
            }
        }
}

std::span<const Command> hyd_response_rows() {
    return rows;
}

} // namespace quelor
