// The catenary element. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp` and the arrays of the cable
// records; adds to `.kstr` and `.f_internal`. The trial forces stand in `$cable_st`.
#include "elements/cable.hpp"

#include "elements/element_family.hpp"
#include "fem/formkm.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>

namespace quelor {

namespace {

/// real (6, n): trial forces at the ends.
constexpr std::string_view cable_trial = "$cable_st";

CableModel open_cables() {
    auto model = find_cables();
    if (!model) shutdown_with(cable_missing);
    return std::move(*model);
}

void keep_forces(const CatenaryLine& line, std::span<double> column) {
    std::ranges::copy(line.T, column.begin());
    std::ranges::copy(line.chain.T2, column.subspan(3).begin());
}

// --- input --------------------------------------------------------------------------------------

/// Forces and flexibilities without displacements.
void solve_as_entered() {
    const CableModel m = open_cables();
    const auto x = require_coordinates();
    for (int e = 1; e <= m.lines(); ++e) {
        const Vec3 x1 = element_node(x, m.el(1, e)), x2 = element_node(x, m.el(2, e));
        keep_forces(solve_cable(m, e, x1, x2, m.start_force(e, x1, x2)), m.st.col(e));
    }
}

void read_cable() {
    if (has_flag(" -restart")) {
        if (!find_cables()) return print_both(" \n\tCable data not found\n");
    } else {
        auto input = read_cable_counts("CABLE");
        if (!input) return;
        delete_cables();
        delete_array(cable_trial);
        read_cable_materials(*input);
        read_cable_lines(*input, "Enter element data: n  nodes  #segs  tension\n",
                         [](CableLineInput& line) { get_int_par("nodes=", line.nodes); });
        for (std::size_t i = 0; i < input->lines.size(); ++i)
            if (!input->lines[i].entered)
                shutdown_with(" \n\tCABLE element number " + std::to_string(i + 1) +
                              " has not been entered\n");
        store_cable_lines(*input);
    }
    if (!array_exists(xyz)) {
        not_found(xyz);
        shutdown();
    }
    check_element_nodes_nonzero("CABLE", open_cables().el, 2);
    solve_as_entered();
    set_element_group(cable_slot, 1);
}

// --- matrices and state -------------------------------------------------------------------------

void cable_stiffness() {
    const CableModel m = open_cables();
    const Equations equations = open_equations();
    GlobalMatrix global = open_stiffness(equations);
    std::array<std::int32_t, 6> list{};
    for (int e = 1; e <= m.lines(); ++e) {
        const auto s = inverse(cable_flexibility(m, e));
        if (!s) continue; // no solution that gives a stiffness; the solution has told
        SmallMatrix<6> k;
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) {
                k(i, j) = k(i + 3, j + 3) = -(*s)(i, j);
                k(i, j + 3) = k(i + 3, j) = (*s)(i, j);
            }
        element_equations(equations, m.el.col(e).first(2), translations, list);
        add_stiffness(global, list, k.view());
    }
}

void cable_trial_state() {
    const CableModel m = open_cables();
    const auto x = require_coordinates();
    if (!array_exists(disp) || !array_exists("$ddisp"))
        shutdown_with(" \n\tLoad or displ. not found by CABLE\n");
    const Equations equations = open_equations();
    const Displacements u = open_displacements(equations);
    const auto trial = trial_array(cable_trial, 6, m.lines());
    GlobalVector internal = open_internal_force(equations);
    std::array<std::int32_t, 6> list{};
    for (int e = 1; e <= m.lines(); ++e) {
        const auto nodes = m.el.col(e).first(2);
        element_equations(equations, nodes, translations, list);
        const Vec3 p1 = element_node(x, nodes[0]), p2 = element_node(x, nodes[1]);
        std::array ends{p1[0], p1[1], p1[2], p2[0], p2[1], p2[2]};
        element_add_displacement(u, list, ends);
        const Vec3 x1{ends[0], ends[1], ends[2]}, x2{ends[3], ends[4], ends[5]};
        keep_forces(solve_cable(m, e, x1, x2, m.start_force(e, x1, x2)), trial.col(e));
        add_internal_force(internal, list, trial.col(e));
    }
}

void print_cable(std::string_view state) {
    const auto m = find_cables();
    if (!m) return print_both(" \n\tCable data not found\n");
    const auto force = element_matrix<double>(cable_missing, state, 6, m->lines());
    print_cable_materials(*m);
    write_both("(/, ' ELEMENT  NODE-1  NODE-2', 5x, 'TENSION AT NODES 1 AND 2')");
    for (int e = 1; e <= m->lines(); ++e) {
        const auto f = force.col(e);
        const Vec3 T1{f[0], f[1], f[2]}, T2{f[3], f[4], f[5]};
        write_both(
            "(i6, 2i8, 5x, 1pe10.3, ' (', e10.3, 2(',', e10.3), ')', /, 27x, e10.3, ' (', e10.3, 2(',', e10.3), ')')",
            {e, m->el(1, e), m->el(2, e), vector_length(T1), std::span<const double>(T1),
             vector_length(T2), std::span<const double>(T2)});
    }
    print_cable_segments(*m);
}

} // namespace

void cable_element(Request request) {
    switch (task_of(request)) {
    case Task::input:
        return read_cable();
    case Task::column_heights:
        return add_all_column_heights(open_cables().el, 2, translations);
    case Task::connectivity:
        return elem_conn0(open_cables().el, 2);
    case Task::stiffness:
        return cable_stiffness();
    case Task::trial_state:
        return cable_trial_state();
    case Task::commit_state:
        return commit_state(cable_trial, cable_st);
    case Task::print_input:
    case Task::print_state:
        return print_cable(cable_st);
    case Task::print_trial_state:
        return print_cable(trial_or_state(cable_trial, cable_st));
    default:
        return; // no mass, no loads: the weight is part of the state
    }
}

// --- help ---------------------------------------------------------------------------------------

std::string_view cable_help() {
    static const std::string text =
        "Command Syntax\n\tcable  m=?  n=?  [maxiter=?]  [tol=?]  [-restart]\n\t"
        "   m=seg_prop  e=emodulus  a=area  w=wx,wy,wz\n\t"
        "   n=nel  nodes=node1,node2  [#segs=#segs]  [tension=tenX,tenY,tenZ]\n\t"
        "      seg=seg  mat=seg_prop  L=length\n\n"
        "Input of elastic catenaries between two nodes, of segments with different properties. The "
        "element is not divided: it is solved as a whole, and its weight is part of its internal "
        "force, so no load is entered for it. It has no mass.\n\n" +
        std::string(cable_records_help()) +
        "nodes\n\tNumbers of the end nodes.\n\n"
        "-restart\n\tTakes the records from the arrays of an earlier input; needed after a database "
        "with cables has been read.\n\n"
        "The stiffness is that of the last solution. The tangent of a line that hangs straight down "
        "is that of its mean tension across it.\n\n"
        "Example:\n\tcable m=1 n=1 tol=1e-9\n\tm=1 e=2.e11 a=1e-3 w=0,0,-60\n\tn=1 nodes=1,2\n\t"
        "seg=1 mat=1 L=102\n\n"
        "Arrays created: .cable_parm(3), .cable_tolerance, .cable_el(3,n) node1, node2, number of "
        "segments; .cable_len(n) unstretched lengths; .cable_mp(5,m) area, modulus, weight vector; "
        ".cable_seg_mat, .cable_seg_len; .cable_st(6,n) forces that the line receives at its ends; "
        ".cable_flx12, .cable_flx21(3,3,n) flexibilities.\n\n"
        "See Also\n\tpcable\n\thyd_mooring_line\n\tnsolve\n";
    return text;
}

std::string_view pcable_help() {
    return "Command Syntax\n\tpcable\n\n"
           "Prints control parameters, materials, elements with the forces that they receive at "
           "their two ends, and segments. pstate prints the same.\n\n"
           "Example:\n\tpcable\n\n"
           "See Also\n\tcable\n\tpstate\n";
}

} // namespace quelor
