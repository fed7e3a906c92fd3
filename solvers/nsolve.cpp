// The command `nsolve`: load steps of a nonlinear static analysis, each brought to equilibrium by
// iteration of the Newton kind on the profile stiffness.
// Reads .load_pat, load_comb, .node_eqs, .kdiag_loc, .disp_cntl_vec; writes .kstr, .k_status,
// .disp, .f_internal, .f_total, .unbal_force, .disp_history, .dispcntl_history, .analysis_type and
// the states of the elements. Workspace: $ddisp, $rhs_equ, $load_step, $rhs0, $history.
//
// Displacement control follows [Powell 1981]: the increment of an iteration is du + dl du0 with
// K du = unbalance and K du0 = load increment, where dl is such that the generalised displacement
// v^T u grows by the prescribed amount in the first iteration of a step and stays in the others.
#include "solvers/nsolve.hpp"

#include "fem/elemutil.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/nodal_values.hpp"
#include "fem/nodes.hpp"
#include "fem/pdisp.hpp"
#include "fem/state.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "solvers/lsolve.hpp"
#include "solvers/matrix.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quelor {

namespace {

using Vector = std::span<double>;
using ConstVector = std::span<const double>;

// --- options and checks --------------------------------------------------------------------------

struct Options {
    std::int32_t steps = 0, maxit = 0, k = 0, control = 0;
    std::array<double, 2> tol{}, dlim{};
    double gdisp = 0;
    std::int32_t print_disp = 0, print_forces = 0, state = 0;
};

Options read_options() {
    Options o;
    get_int_par("steps=", o.steps);
    get_real_par("tol=", o.tol);
    get_int_par("maxit=", o.maxit);
    get_int_par(" k=", o.k);
    get_int_par("control=", o.control);
    get_real_par("dlim=", o.dlim);
    get_real_par("gdisp=", o.gdisp);
    get_int_par("dprin=", o.print_disp);
    get_int_par("fprin=", o.print_forces);
    get_int_par("state=", o.state);
    return o;
}

/// The message for options that no analysis can be made with; empty when there is none.
std::string_view fault_of(const Options& o) {
    if (has_flag(" -morison")) return " \n\t-morison is not available in this version\n";
    if (o.steps < 1 || o.maxit < 1 || !(o.tol[0] > 0) || !(o.tol[1] > 0))
        return " \n\tsteps=, tol= (two values) and maxit= must be given and be above 0\n";
    if (o.control != 0 && o.control != 1) return " \n\tcontrol= must be 0 or 1\n";
    if (o.control == 1 && (o.gdisp == 0 || !std::isfinite(o.gdisp)))
        return " \n\tgdisp= must be given for displacement control\n";
    return {};
}

/// False after a message when an array that the analysis stands on is absent or does not fit n.
bool check_arrays(const Options& o, int n) {
    if (!find_array(node_eqs).is(type_integer))
        return print_both("\n\t\tArray .node_eqs not found. See command bcid.\n"), false;
    if (o.control == 1 && !find_array(disp_cntl_vec).is(type_real))
        return print_both("\n\t\tArray .disp_cntl_vec not found. See command disp_cntl.\n"), false;
    if (!find_array(kstr).is(type_real)) return not_found(kstr), false;
    if (!find_array(kdiag_loc).is(type_integer)) return not_found(kdiag_loc), false;
    const ArrayRef loads = find_array(load_pat), factors = find_array(load_comb);
    if (!loads.is(type_real)) return not_found(load_pat), false;
    if (factors && (!factors.is(type_real) || factors.rows() != loads.cols()))
        return print_both(" \n\tDimensions of .load_ptrn and load_comb are incompatible\n"), false;
    const auto loc = as_span<const std::int32_t>(find_array(kdiag_loc));
    if (loads.rows() == n && std::ssize(loc) == n + 1 &&
        profile_is_valid(loc, find_array(kstr).size()) &&
        (o.control == 0 || find_array(disp_cntl_vec).size() == n))
        return true;
    return print_both(" \n\tDimensions of arrays not compatible\n"), false;
}

// --- the arrays of a run -------------------------------------------------------------------------

/// What a run works on. The vectors lie in the store, which keeps them in their place.
struct Run {
    Options options;
    int n = 0;
    ConstVector load;          ///< increment of a load step: $load_step
    ConstVector control;       ///< v of the generalised displacement, empty under load control
    Vector u, increment;       ///< .disp, $ddisp
    Vector applied, unbalance; ///< .f_total, .unbal_force
    Matrix<double> du, du0;    ///< of an iteration; of the load increment: $rhs_equ, $rhs0
    NodalValues nodes;
    double factor = 0; ///< of the load reached
    int number = 1;    ///< of the run: the increment of the histories
};

double dot(ConstVector a, ConstVector b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}
double largest(ConstVector a) {
    double m = 0;
    for (const double x : a)
        if (!(std::abs(x) <= m)) m = std::abs(x); // keeps what is not a number
    return m;
}
void add(Vector a, double factor, ConstVector b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i] += factor * b[i];
}

bool has_size(std::string_view name, int rows) {
    const ArrayRef array = find_array(name);
    return array.is(type_real) && array.rows() == rows;
}

/// The vector of that name: its first column when it exists with n rows, otherwise zeros.
Vector open_vector(std::string_view name, int n) {
    if (!has_size(name, n)) return create_matrix<double>(name, n, 0).all();
    if (find_array(name).size() > n) {
        Result first(name, "$nsolve");
        std::ranges::copy(as_matrix<const double>(find_array(name)).col(1),
                          first.matrix<double>(n, 0).data);
        first.place();
    }
    return as_span<double>(find_array(name));
}

/// load := the load patterns combined by the first column of `load_comb`, or the first pattern.
void combine_loads(Vector load) {
    const auto patterns = as_matrix<const double>(find_array(load_pat));
    const ArrayRef factors = find_array(load_comb);
    for (int p = 1; p <= (factors ? patterns.cols : 1); ++p)
        add(load, factors ? as_matrix<const double>(factors)(p, 1) : 1.0, patterns.col(p));
}

/// Begins where the arrays stand, or anew without displacements.
void open_run(Run& run) {
    const bool anew = !has_size(disp, run.n);
    if (anew)
        for (const auto name : {f_internal, f_total, disp_history, dispcntl_history})
            delete_array(name);
    run.u = open_vector(disp, run.n);
    open_vector(f_internal, run.n);
    run.applied = open_vector(f_total, run.n);
    run.unbalance = open_vector(unbal_force, run.n);
    run.increment = create_matrix<double>(ddisp, run.n, 0).all();
    const double size = dot(run.load, run.load);
    if (size > 0) run.factor = dot(run.applied, run.load) / size;
    if (!has_size(disp_history, run.n + 2)) return delete_array(disp_history);
    const auto history = as_matrix<const double>(find_array(disp_history));
    run.number = nearest_int(history(1, history.cols)) + 1;
}

/// Appends a column to a table; `first` and `rest` are its values.
void append_column(std::string_view name, std::initializer_list<double> first, ConstVector rest) {
    const int rows = static_cast<int>(first.size() + rest.size());
    const ArrayRef old = has_size(name, rows) ? find_array(name) : ArrayRef{};
    Result result(name, "$history");
    const auto table = result.matrix<double>(rows, old.cols() * (old ? 1 : 0) + 1);
    if (old) std::ranges::copy(as_span<const double>(old), table.data);
    const auto column = table.col(table.cols);
    std::ranges::copy(rest, std::ranges::copy(first, column.begin()).out);
    result.place();
}

// --- stiffness -----------------------------------------------------------------------------------

void solve(Matrix<double> b) {
    if (!profile_op(kstr, kdiag_loc, b, 1, default_digits)) shutdown();
}

/// Factors the stiffness if it is not, and solves for the load increment.
void factor(Run& run) {
    const ArrayRef status = find_array(k_status);
    if (!status.is(type_integer) || as_span<const std::int32_t>(status)[0] == 0) {
        if (!profile_op(kstr, kdiag_loc, {}, 0, default_digits)) shutdown();
        create_int_scalar(k_status, 1);
    }
    if (run.options.control == 0) return;
    std::ranges::copy(run.load, run.du0.data);
    solve(run.du0);
    const double v_du0 = dot(run.control, run.du0.all());
    const double size =
        std::sqrt(dot(run.control, run.control) * dot(run.du0.all(), run.du0.all()));
    if (!(std::abs(v_du0) > 1e-8 * size))
        print_both(" \n\tWarning -- incremental displ. may be orthogonal to generalized displ.\n");
    if (v_du0 == 0 || !std::isfinite(v_du0))
        shutdown_with(" \n\tNO CONVERGENCE: EXECUTION TERMINATED\n");
}

void reform(Run& run) {
    print_both(" Stiffness reformed");
    form_stiffness(FormMode::group_codes);
    factor(run);
}

// --- iteration -----------------------------------------------------------------------------------

/// du *= the factor that keeps translations and rotations within their limits.
void limit_increment(const Run& run) {
    const auto [translation, rotation] = run.options.dlim;
    if (run.options.control != 0 || !(translation > 0) || !(rotation > 0)) return;
    const auto du = run.du.all();
    double scale = 1;
    for (int node = 1; node <= run.nodes.eqs.cols; ++node)
        for (int dof = 1; dof <= std::min(run.nodes.dofs(), 6); ++dof) {
            const double limit = dof <= 3 ? translation : rotation;
            const double size = std::abs(run.nodes.at(du, dof, node));
            if (size > limit) scale = std::min(scale, limit / size);
        }
    if (scale < 1)
        for (double& x : du)
            x *= scale;
}

/// Completes du under displacement control and adds to the load; returns the load's increment.
double control_increment(Run& run) {
    const double wanted = run.options.gdisp - dot(run.control, run.increment);
    const double scale =
        (wanted - dot(run.control, run.du.all())) / dot(run.control, run.du0.all());
    add(run.du.all(), scale, run.du0.all());
    add(run.applied, scale, run.load);
    run.factor += scale;
    return scale;
}

/// unbalance := applied load - internal force of the last state pass
void find_unbalance(Run& run) {
    const auto internal = as_span<const double>(find_array(f_internal));
    std::ranges::transform(run.applied, internal, run.unbalance.begin(), std::minus());
}

/// The largest |du| relative to the largest |$ddisp|; equations that hardly move do not count.
double displacement_ratio(const Run& run) {
    const auto du = run.du.all();
    const auto at =
        std::ranges::max_element(run.increment, {}, [](double x) { return std::abs(x); });
    const double m = std::abs(*at);
    if (m == 0) return 0;
    double ratio = std::abs(du[as_size(at - run.increment.begin())]) / m;
    for (const double x : du)
        if (std::abs(x) > 0.0001 * m) ratio = std::max(ratio, std::abs(x) / m);
    return ratio;
}

void print_iteration(const Run& run) {
    if (run.options.print_disp >= 2) {
        std::vector<double> u(run.u.begin(), run.u.end());
        add(u, 1, run.increment);
        print_nodal_vector("5(/,34x, 'NODAL DISPLACEMENTS', /)", NodalVector::displacements, u);
    }
    if (run.options.print_forces >= 2) print_element_state(StateKind::trial);
}

/// One iteration; true when the step has converged.
bool iterate(Run& run, int step, int iteration) {
    std::ranges::copy(run.unbalance, run.du.data);
    solve(run.du);
    if (run.options.control == 1) {
        const double scale = control_increment(run);
        if (iteration == 1) write_both("5(/,'LOAD FACTOR FOR INCREMENT', 1pe12.4)", {scale});
    }
    limit_increment(run);
    add(run.increment, 1, run.du.all());
    element_state(StatePass::trial);
    find_unbalance(run);
    const double load = largest(run.unbalance), ratio = displacement_ratio(run);
    write_both("20(/,5x,'Load Increment',i5,' Step',i5,' Iteration',i5)",
               {run.number, step, iteration});
    write_both("25(5x,  'Load Unbalance.............', 1pe11.4)", {load});
    write_both("30(5x,'Displ Ratio................', 1pe11.4)", {ratio});
    print_iteration(run);
    return run.options.tol[0] > load && run.options.tol[1] > ratio;
}

/// Iterates to equilibrium; false when maxit iterations do not suffice.
bool find_equilibrium(Run& run, int step) {
    const std::int64_t inner = run.options.k == 0 ? std::int64_t{run.options.maxit}
                                                  : std::abs(std::int64_t{run.options.k});
    for (int iteration = 1; iteration <= run.options.maxit; ++iteration) {
        if (iteration > 1 && (iteration - 1) % inner == 0) reform(run);
        if (iterate(run, step, iteration)) return true;
    }
    return false;
}

/// Makes the converged step final, reports and records it.
void commit_step(Run& run, int step) {
    element_state(StatePass::commit);
    add(run.u, 1, run.increment);
    std::ranges::fill(run.increment, 0.0);
    const double number = run.number, row = step;
    append_column(disp_history, {number, row}, run.u);
    if (run.options.control == 1) {
        write_both("40(/, 5x,'LOAD FACTOR FOR STEP  ', 1pe11.4)", {run.factor});
        append_column(dispcntl_history, {number, row, dot(run.control, run.u), run.factor}, {});
        if (run.options.print_disp >= 1)
            print_nodal_vector("10(/,'TOTAL APPLIED LOADS REQUIRED')", NodalVector::loads,
                               run.applied);
    }
    if (run.options.print_disp >= 1)
        print_nodal_vector("5(/,34x, 'NODAL DISPLACEMENTS', /)", NodalVector::displacements, run.u);
    if (run.options.print_forces >= 1) print_element_state(StateKind::committed);
}

void run_steps(Run& run) {
    if (run.options.state == 1) element_state(StatePass::trial);
    if (run.options.k <= 0)
        reform(run);
    else
        factor(run);
    for (int step = 1; step <= run.options.steps; ++step) {
        if (run.options.control == 0) {
            add(run.applied, 1, run.load);
            run.factor += 1;
        }
        find_unbalance(run);
        if (!find_equilibrium(run, step))
            shutdown_with(" \n\tNO CONVERGENCE: EXECUTION TERMINATED\n");
        commit_step(run, step);
        checkpoint();
    }
}

// --- the command ---------------------------------------------------------------------------------

void cmd_nsolve(std::string_view) {
    Run run;
    run.options = read_options();
    const auto fault = fault_of(run.options);
    if (!fault.empty()) return print_both(fault);
    run.n = get_int(num_eqs);
    if (run.n < 1) return print_both(" \n\tSet .#eqs to the number of equations\n");
    if (!check_arrays(run.options, run.n)) return;
    auto nodes = open_nodal_values();
    if (!nodes || !nodes->fit(run.n)) return;
    run.nodes = *nodes;
    name_types_without_forces();
    create_int_scalar(analysis_type, 0);
    Temporary<double> load("$load_step", run.n, 0), du("$rhs_equ", run.n, 0),
        du0("$rhs0", run.n, 0);
    combine_loads(load.view.all());
    run.load = load.view.all();
    run.du = du.view;
    run.du0 = du0.view;
    if (run.options.control == 1) run.control = as_span<const double>(find_array(disp_cntl_vec));
    open_run(run);
    run_steps(run);
    delete_array(ddisp);
}

constexpr Command rows[] = {
    {.words = {"nsolve"},
     .run = cmd_nsolve,
     .summary = "nonlinear static solution",
     .help =
         "Command Syntax\n\tnsolve  steps=?  tol=?,?  maxit=?  [k=?]  [control=?]  [dlim=?,?]  "
         "[gdisp=?]  [dprin=?]  [fprin=?]  [state=?]  [-morison]\n\n"
         "Nonlinear static solution by load steps, with iteration to equilibrium in each. Every "
         "step adds the load increment: the load patterns combined by the first column of "
         "load_comb if that array exists, otherwise the first pattern.\n\n"
         "steps\n\tNumber of load steps. There is no default.\n\n"
         "tol\n\tA step has converged when the largest unbalanced force is below the first value, "
         "and the largest change of a displacement, relative to the largest displacement of the "
         "step, is below the second. There is no default.\n\n"
         "maxit\n\tLargest number of iterations in a step. There is no default.\n\n"
         "k\n\tIterations with constant stiffness. Below 0: form the tangent stiffness and use it "
         "for |k| iterations, then form it again; -1 is Newton's method. 0 (default): form the "
         "stiffness once, before the first step. Above 0: use the existing stiffness for k "
         "iterations, then form it again.\n\n"
         "control\n\t0 (default): load control. 1: displacement control; each step changes the "
         "generalized displacement of disp_cntl by gdisp, and the load that this requires is found. "
         "Limit points can be passed so. The strategy is that of Powell and Simons, Improved "
         "Iteration Strategy for Nonlinear Structures (1981).\n\n"
         "dlim\n\tLargest change of a translation and of a rotation in an iteration, for load "
         "control; used when both are above 0. Default is 0,0.\n\n"
         "gdisp\n\tChange of the generalized displacement in a step, for displacement control. "
         "There is no default.\n\n"
         "dprin, fprin\n\tPrint displacements, element forces: 0 never (default), 1 in each step, "
         "2 in each iteration. They go to the output file.\n\n"
         "state\n\t1: determine the state of the elements before the first step. Default is 0.\n\n"
         "-morison\n\tIncoming current velocities for drag. Not available in this version.\n\n"
         "Must follow form_k. The analysis goes on from .disp and .f_total if they exist; remove "
         ".disp to begin anew. Imposed displacements are not used.\n\n"
         "Example (20 steps of 0.1 through a limit point):\n\tform_k\n\tdisp_cntl\n\tn=2 dof=3 "
         "f=-1\n\t(blank line)\n\tnsolve steps=20 tol=1e-6,1e-6 maxit=20 k=-1 control=1 gdisp=0.1\n\n"
         "Arrays created: .disp and .f_internal(.#eqs); .f_total(.#eqs), the applied load; "
         ".unbal_force(.#eqs); .disp_history(.#eqs+2, steps): increment (number of the nsolve "
         "command), step, displacements; under displacement control .dispcntl_history(4, steps): "
         "increment, step, generalized displacement, load factor; .analysis_type = 0.\n\n"
         "See Also\n\tdisp_cntl\n\tform_k\n\tpndisp\n\tstate\n\tlsolve\n"},
};

} // namespace

std::span<const Command> nsolve_rows() {
    return rows;
}

} // namespace quelor
