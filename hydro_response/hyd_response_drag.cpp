// Command hyd_analysis_response_drag. Reads what hyd_analysis_response reads, `.#eqs`, `.xyz`,
// `.node_eqs` and two arrays that the user names; changes one heading of `.hyd_gencor`. Workspaces
// `$u_old`, `$u_new`, `$v_incoming`, `$Cd*(v-u)`, `$Pm` (.#eqs), `$nodes_incoming_vel` and those of
// MotionEquations.
#include "hydro_response/hyd_response_drag.hpp"

#include "fem/nodes.hpp"
#include "hydro_analysis/hyd_reports.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_response/drag.hpp"
#include "hydro_response/hyd_response.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace quelor {

namespace {

// --- arguments

/// What stands on the command line, checked. The two arrays are copied: they may bear the name of
/// one that the command makes anew.
struct DragArguments {
    std::vector<double> cd;    ///< (neq) coefficients
    std::vector<double> T;     ///< (neq,nmode) displacements of the equations in each mode
    std::int32_t beta = 0;     ///< heading number
    double conv = 0, wave = 1; ///< convergence limit; wave amplitude
    std::int32_t maxit = 10;   ///< most iterations a frequency
    bool each = false;         ///< every frequency is iterated until it converges
    DragVelocity velocity = DragVelocity::relative;
};

/// The real parts of argument 1; empty after a message.
std::vector<double> read_coefficients(int neq) {
    const auto name = get_arg(1);
    const ArrayRef ref = is_blank(name) ? ArrayRef{} : find_array(name);
    std::vector<double> cd;
    if (is_blank(name)) {
        print_both(" \n\tTwo arguments are required\n");
    } else if (!ref) {
        print_both(" \nDrag matrix not found\n");
    } else if (ref.size() != neq) {
        print_both(" \n\tVector of diagonal drag coefficients is incorrect size\n");
    } else if (ref.is(type_real)) {
        const auto values = as_span<const double>(ref);
        cd.assign(values.begin(), values.end());
    } else if (ref.is(type_complex8)) {
        for (const Complex8 value : as_span<const Complex8>(ref))
            cd.push_back(value.real());
    } else {
        print_both(" \n\tDrag coefficients must be either real(8) or complex(8)\n");
    }
    return cd;
}

/// Argument 2; empty after a message.
std::vector<double> read_transformation(int neq, int nmode) {
    const auto name = get_arg(2);
    const ArrayRef ref = is_blank(name) ? ArrayRef{} : find_array(name);
    if (is_blank(name)) {
        print_both(" \n\tTwo arguments are required\n");
    } else if (!ref) {
        print_both(" \nTransformation matrix not found\n");
    } else if (!ref.is(type_real) || ref.ndim() > 2 || ref.rows() != neq || ref.cols() != nmode) {
        print_both(" \n\tTransformation matrix is the wrong size\n");
    } else {
        const auto values = as_span<const double>(ref);
        return {values.begin(), values.end()};
    }
    return {};
}

/// Number of structural equations; 0 after a message when the model lacks what the drag acts on.
int structural_equations() {
    const ArrayRef eqs = find_array(num_eqs);
    const int neq = eqs.is(type_integer) ? as_span<const std::int32_t>(eqs)[0] : 0;
    if (neq < 1)
        print_both(" \n\tCan not find number of structural equations, .#eqs\n");
    else if (!array_exists(xyz))
        print_both(" \nStructural nodal coordinates not found\n");
    else if (!array_exists(node_eqs))
        print_both(" \nStructural equation numbers not found\n");
    else
        return neq;
    return 0;
}

DragVelocity read_velocity() {
    if (has_flag(" -wave_velocity_only")) return DragVelocity::wave;
    if (has_flag(" -structure_velocity_only")) return DragVelocity::structure;
    return DragVelocity::relative;
}

/// Nothing, after a message, when an argument does not serve.
std::optional<DragArguments> read_arguments(const HydSize& size, int neq) {
    DragArguments a;
    a.cd = read_coefficients(neq);
    if (a.cd.empty()) return {};
    a.T = read_transformation(neq, size.nmode);
    if (a.T.empty()) return {};
    if (!all_finite(a.cd) || !all_finite(a.T)) {
        print_both(" \n\tDrag coefficients and transformation matrix must be finite numbers\n");
        return {};
    }
    get_int_par(" beta=", a.beta);
    get_real_par(" conv=", a.conv);
    get_int_par(" maxit=", a.maxit);
    get_real_par(" wave=", a.wave);
    if (a.maxit < 1) a.maxit = 10;
    if (!(a.wave > 0)) a.wave = 1;
    a.each = has_flag(" -each");
    a.velocity = read_velocity();
    if (a.beta < 1 || a.beta > size.nbeta)
        print_both(" \n\tbeta out of range\n");
    else if (!(a.conv > 0))
        print_both(" \n\tconv must be greater than 0\n");
    else if (std::isinf(a.wave))
        print_both(" \n\twave must be a finite number\n");
    else
        return a;
    return {};
}

// --- nodes in the waves

/// The wet nodes of the structure, and the equations of their translations, 0 for none.
struct WetNodes {
    std::vector<Vec3> points;
    std::vector<std::array<std::int32_t, 3>> equations;
};

/// Nothing, after a message, when a node lies below the sea bed or has an equation out of range.
std::optional<WetNodes> find_wet_nodes(Matrix<const double> x, Matrix<const std::int32_t> eqs,
                                       int neq, double depth) {
    WetNodes wet;
    for (int n = 1; n <= std::min(x.cols, eqs.cols); ++n) {
        const Vec3 p{x(1, n), x(2, n), x(3, n)};
        if (!is_finite(p) || p[2] < -depth) {
            print_both(" \n\tStructural node " + std::to_string(n) +
                       " lies below the sea bed; check its coordinates and the water depth\n");
            return {};
        }
        std::array<std::int32_t, 3> list{};
        for (int i = 1; i <= std::min(eqs.rows, 3); ++i)
            list[nth(i)] = std::max(eqs(i, n), 0);
        if (std::ranges::max(list) > neq) {
            print_both(" \n\tEquation number of structural node " + std::to_string(n) +
                       " is larger than .#eqs; number the equations again\n");
            return {};
        }
        if (p[2] > 0 || std::ranges::max(list) == 0) continue;
        wet.points.push_back(p);
        wet.equations.push_back(list);
    }
    return wet;
}

/// Velocity of the incoming wave at the wet nodes, and of each equation, zero elsewhere.
void set_incoming_velocities(const WetNodes& nodes, const IncomingWave& wave, double grav,
                             double amplitude, Matrix<Complex8> velocities, std::span<Complex8> v) {
    std::ranges::fill(v, Complex8{});
    for (std::size_t n = 0; n < nodes.points.size(); ++n) {
        const auto velocity = incoming_velocity(wave, grav, nodes.points[n]);
        const auto column = velocities.col(static_cast<int>(n) + 1);
        std::ranges::copy(velocity, column.begin());
        for (std::size_t i = 0; i < 3; ++i)
            if (const int eq = nodes.equations[n][i]; eq > 0) v[nth(eq)] = amplitude * column[i];
    }
}

// --- the iteration

/// What one frequency of the run left behind.
struct Iteration {
    int count;
    double change; ///< of the last iteration, in the units of the displacements
};

class DragResponse {
public:
    DragResponse(const DragArguments& arguments, const HydSize& size, const WetNodes& nodes,
                 const WaveForces& forces, MotionEquations& equations)
        : arguments_(arguments), size_(size), nodes_(nodes), forces_(forces), equations_(equations),
          neq_(static_cast<int>(arguments.cd.size())), T_{arguments.T.data(), neq_, size.nmode},
          scaled_(arguments.T.size()), product_(as_size(size.nmode) * as_size(size.nmode)),
          u_old_("$u_old", neq_, 0), u_new_("$u_new", neq_, 0), v_("$v_incoming", neq_, 0),
          load_("$Pm", neq_, 0), damping_("$Cd*(v-u)", neq_, 0),
          velocities_("$nodes_incoming_vel", 3, std::max(static_cast<int>(nodes.points.size()), 1)),
          drag_(std::ranges::any_of(arguments.cd, [](double c) { return c != 0; })) {}

    /// The response at a frequency. The start values are the displacements of the last one.
    Iteration solve_frequency(int ifreq, double omega, double beta);
    bool converged() const { return converged_; }

private:
    void form_drag(double omega);
    void add_drag_load();

    const DragArguments& arguments_;
    const HydSize& size_;
    const WetNodes& nodes_;
    const WaveForces& forces_;
    MotionEquations& equations_;
    int neq_;
    Matrix<const double> T_;
    std::vector<double> scaled_, product_;
    Temporary<Complex8> u_old_, u_new_, v_, load_;
    Temporary<double> damping_;
    Temporary<Complex8> velocities_;
    bool drag_; ///< without a coefficient the equations stay those without drag, bit for bit
    bool converged_ = false;
};

void DragResponse::form_drag(double omega) {
    drag_damping(arguments_.velocity, omega, arguments_.cd, v_.view.all(), u_old_.view.all(),
                 damping_.view.all());
    if (arguments_.velocity == DragVelocity::wave) return;
    add_modal_damping(T_, damping_.view.all(), {scaled_.data(), neq_, T_.cols},
                      {product_.data(), T_.cols, T_.cols}, equations_.damping());
}

void DragResponse::add_drag_load() {
    if (arguments_.velocity == DragVelocity::structure) return;
    std::ranges::transform(damping_.view.all(), v_.view.all(), load_.view.data,
                           [](double c, Complex8 v) { return c * v; });
    add_modal_load(T_, load_.view.all(), equations_.rhs());
}

Iteration DragResponse::solve_frequency(int ifreq, double omega, double beta) {
    const double k = hyd_wave_number(omega, size_.depth, size_.grav).k;
    const IncomingWave wave{omega, k, size_.depth, beta, k * size_.depth >= size_.deep_water};
    set_incoming_velocities(nodes_, wave, size_.grav, arguments_.wave, velocities_.view,
                            v_.view.all());
    write_both("('    Solving equation of motion')");
    if (arguments_.each) converged_ = false;
    Iteration done{};
    do {
        ++done.count;
        equations_.take_frequency(ifreq);
        if (drag_) form_drag(omega);
        equations_.factor(omega);
        wave_load(forces_, arguments_.beta, ifreq, arguments_.wave, equations_.rhs());
        if (drag_) add_drag_load();
        equations_.solve(ifreq, arguments_.beta);
        physical_displacements(T_, equations_.rhs(), u_new_.view.all());
        done.change = largest_change(u_new_.view.all(), u_old_.view.all());
        converged_ |= done.change <= arguments_.conv;
        std::ranges::copy(u_new_.view.all(), u_old_.view.data);
    } while (!converged_ && done.count < arguments_.maxit);
    if (converged_)
        write_both("(12x, 'Converged in ', i4, ' iterations')", {done.count});
    else
        write_both("(12x, 'Warning: convergence not achieved -- continuing')");
    return done;
}

// --- the command

void write_summary(const HydSize& size, double hdamp, const DragArguments& a, double beta,
                   std::span<const double> freq, bool symmetrize) {
    write_summary_head(size, hdamp);
    write_both(
        "(2x, 'Wave heading number.................................', i10, /, 2x, 'Wave heading in degrees')",
        {a.beta});
    write_both("(4x, f9.4)", {beta * degrees});
    write_wave_frequencies(1, freq);
    write_both(
        "(/, 2x, 'Convergence tolerance.............................', 1pe12.4, /, 2x, 'Maximum number of iteations.........................', i10)",
        {a.conv, a.maxit});
    if (a.wave != 1)
        write_both("(2x, 'Wave amplitude......................................', 1pe10.3)",
                   {a.wave});
    if (a.velocity == DragVelocity::wave)
        write_both("(/, 'Warning: Drag term will include wave velocity only.')");
    if (a.velocity == DragVelocity::structure)
        write_both("(/, 'Warning: Drag term will include structural velocity only.')");
    write_symmetrize_line(symmetrize);
}

/// Creates what does not stand in the shape that is needed.
void make_response_arrays(const HydSize& s) {
    const auto stands = [](std::string_view name, int n1, int n2, int n3) {
        const ArrayRef ref = find_array(name);
        return ref.is(type_complex8) && ref.ndim() <= 3 && ref.rows() == n1 && ref.cols() == n2 &&
               ref.dim(3) == n3;
    };
    if (!stands(hyd_dynk, s.nmode, s.nmode, 1)) create_matrix<Complex8>(hyd_dynk, s.nmode, s.nmode);
    if (!stands(hyd_rhs, s.nmode, 1, 1)) create_matrix<Complex8>(hyd_rhs, s.nmode, 0);
    if (stands(hyd_gencor, s.nmode, s.nfreq, s.nbeta)) return;
    if (array_exists(hyd_gencor))
        print_both(
            " \n\tArray .hyd_gencor has another type or shape than this analysis; it is replaced, and its other headings are zero.\n");
    create_array3<Complex8>(hyd_gencor, s.nmode, s.nfreq, s.nbeta);
}

/// All frequencies of the heading; then what the kept convergence flag has left undone.
void solve_frequencies(DragResponse& response, const DragArguments& a, std::span<const double> freq,
                       double beta) {
    int unfinished = 0;
    double largest = 0;
    for (std::size_t i = 0; i < freq.size(); ++i) {
        const int ifreq = static_cast<int>(i) + 1;
        write_frequency_line(ifreq, freq[i]);
        write_heading_line(a.beta, beta);
        const Iteration done = response.solve_frequency(ifreq, freq[i], beta);
        if (!response.converged() || done.change <= a.conv) continue;
        ++unfinished;
        if (!(done.change <= largest)) largest = done.change; // not a number, too
    }
    if (unfinished > 0)
        write_both(
            "(/, 4x, 'Warning:', i5, ' frequencies were left after one iteration with a change above conv.', /, 4x, 'The largest such change is', 1pe12.4, '. Use -each to iterate every frequency.')",
            {unfinished, largest});
}

void cmd_hyd_analysis_response_drag(std::string_view) {
    if (!hyd_check_green_function()) return;
    const HydSize s = hyd_get_problem_size();
    const int neq = structural_equations();
    if (neq == 0) return;
    const auto arguments = read_arguments(s, neq);
    if (!arguments || !check_finite_structure()) return;
    ResponseOptions options = hyd_response_options();
    options.residual = false;

    Inputs inputs;
    const auto beta = inputs.vector<double>(hyd_beta, s.nbeta);
    const auto freq = inputs.vector<double>(hyd_freq, s.nfreq);
    const FluidMatrices fluid{inputs.array3<double>(hyd_addm, s.nmode, s.nmode, s.nfreq),
                              inputs.array3<double>(hyd_damp, s.nmode, s.nmode, s.nfreq),
                              inputs.matrix<double>(hyd_kf, s.nmode, s.nmode),
                              inputs.real(hyd_hysdamp)};
    const WaveForces forces{inputs.array3<Complex8>(hyd_fi, s.nmode, s.nbeta, s.nfreq),
                            inputs.array3<Complex8>(hyd_fd, s.nmode, s.nbeta, s.nfreq)};
    const auto x = inputs.matrix<double>(xyz, 3);
    const auto eqs = inputs.matrix<std::int32_t>(node_eqs);
    if (!inputs) return;
    const auto nodes = find_wet_nodes(x, eqs, neq, s.depth);
    if (!nodes) return;

    const CorFile cor;
    const double heading = beta[nth(arguments->beta)];
    write_summary(s, fluid.hdamp, *arguments, heading, freq, options.symmetrize);
    make_response_arrays(s);
    print_trace_title();
    hyd_check_structure(s.nmodef, s.nmode);
    {
        MotionEquations equations(fluid, options);
        DragResponse response(*arguments, s, *nodes, forces, equations);
        solve_frequencies(response, *arguments, freq, heading);
    }
    hyd_write_cor(freq, beta, as_array3<const Complex8>(find_array(hyd_gencor)));
}

constexpr Command rows[] = {
    {.words = {"hyd_analysis_response_drag"},
     .run = cmd_hyd_analysis_response_drag,
     .summary = "response with linearised drag, one heading",
     .help =
         "Command Syntax\n\thyd_analysis_response_drag  arg1  arg2  beta=?  conv=?  [maxit=?]   &\n\t       [wave=?]  [symmetrize=on|off]  [-each]\n\n"
         "Command to determine the response in generalized coordinates with a linearised drag "
         "force on the structure, for one wave heading; it is repeated for each heading. The drag "
         "is found by iteration. Once one frequency has converged, every later one goes through "
         "one iteration only, which starts from the displacements of the frequency before it, and "
         "counts as converged. Near a resonance such a response can be wrong by half its value. "
         "With -each every frequency is iterated until it converges by itself; use it unless the "
         "earlier results are to be repeated. Without it the command says at its end how many "
         "frequencies were left with a change above conv.\n\n"
         "The drag on equation k is cd |w| w, w being the amplitude of the velocity of the water "
         "relative to the structure in that equation alone. There is no factor 8/(3 pi) in it: for "
         "the drag rho Cd A |w| w / 2 of a projected area A, arg1 holds 8/(3 pi) times "
         "rho Cd A / 2. The velocity of the water is that of the incoming wave at the structural "
         "nodes on or below the still-water plane; restrained translations and those of nodal "
         "constraints have none. Where the drag is most of the damping, the iteration swings about "
         "its limit and needs many rounds.\n\n"
         "arg1\n\tVector of the coefficients cd, one for each structural equation, real or complex; "
         "of complex numbers the real parts count.\n"
         "arg2\n\tReal (neq,nmode): displacements of the structural equations in each mode.\n"
         "beta\n\tNumber of the wave heading, 1 to nbeta.\n"
         "conv\n\tA frequency has converged when no displacement of a structural equation changes "
         "by more than conv, in the units of the displacements.\n"
         "maxit\n\tMaximum number of iterations; default 10.\n"
         "wave\n\tWave amplitude; default 1. The generalized coordinates are those for waves of "
         "this amplitude, not of unit amplitude; those of other headings stay as they are.\n"
         "symmetrize=on|off\n\tWith on, added mass and damping are symmetrized before use. The "
         "default is off.\n"
         "-each\n\tEvery frequency is iterated until it converges.\n\n"
         "Needs\n\tThe results of hyd_analysis, the matrices of hyd_analysis_response, and a "
         "finite-element model with numbered equations (form_k or num_eqs).\n\n"
         "Created\n\tOne heading of .hyd_gencor (nmode,nfreq,nbeta), and the file "
         "project_name.cor of all headings.\n\n"
         "Example\n\thyd_analysis_response_drag cd psi beta=1 conv=1e-4 wave=2.5 -each\n\n"
         "See Also\n\thyd_analysis, hyd_analysis_response, hyd_tf\n"},
};

} // namespace

std::span<const Command> hyd_response_drag_rows() {
    return rows;
}

} // namespace quelor
