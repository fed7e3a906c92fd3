// The six-node plates. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp`, `gravity`; writes the arrays
// of a PlateKind; adds to `.kstr`, `.mstr`, `.load_pat` through the services of assembly.
#include "elements/min6.hpp"

#include "elements/plate6.hpp"
#include "elements/shell_family.hpp"
#include "elements/shell_help.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/require.hpp"

namespace quelor {

namespace {

// --- types --------------------------------------------------------------------------------------

struct PlateKind {
    ShellKind shell;
    std::string_view q; ///< real (7, n): load pattern, pressures at the nodes; pattern 0: none
};

constexpr int increments[] = {1, 1, 3, 1, 2, 2};
constexpr std::string_view min6_others[] = {".min6_q"}, isomin6_others[] = {".isomin6_q"};

constexpr PlateKind min6_kind{.shell = {.slot = 25,
                                        .name = "min6",
                                        .title = "MIN6",
                                        .el = min6_table.name,
                                        .mp = ".min6_mp",
                                        .st = ".min6_st",
                                        .trial = "$min6_st",
                                        .rlx = ".min6_rlx",
                                        .others = min6_others,
                                        .missing = min6_missing,
                                        .out_of_range = " \n\tElement out of range - MIN6\n",
                                        .rows = 8,
                                        .nodes = plate6_nodes,
                                        .increments = increments,
                                        .columns = {.axes = 12, .c_s = 13, .iso = 14, .count = 14},
                                        .axes_key = " local=",
                                        .c_s = 0,
                                        .drill_key = false},
                              .q = ".min6_q"};
constexpr PlateKind isomin6_kind{
    .shell = {.slot = 26,
              .name = "isomin6",
              .title = "ISOMIN6",
              .el = ".isomin6_el",
              .mp = ".isomin6_mp",
              .st = ".isomin6_st",
              .trial = "$isomin6_st",
              .rlx = ".isomin6_rlx",
              .others = isomin6_others,
              .missing = " \n\tISOMIN6 element information not found\n",
              .out_of_range = " \n\tElement out of range - ISOMIN6\n",
              .rows = 8,
              .nodes = plate6_nodes,
              .increments = increments,
              .columns = {.axes = 12, .iso = 13, .count = 13},
              .axes_key = " local=",
              .c_s = 0,
              .drill_key = false},
    .q = ".isomin6_q"};

constexpr std::array plate_freedoms{3, 4, 5}; ///< w, thx, thy
constexpr int state_columns = 8;
constexpr std::string_view state_names[] = {"X", "Y", "Z", "MX", "MY", "MXY", "QX", "QY"};

// --- geometry -----------------------------------------------------------------------------------

PlateNodes plate_nodes(Matrix<const std::int32_t> el, Matrix<const double> x, int e) {
    return element_coordinates<plate6_nodes>(x, el.col(e));
}

/// Local axes, those of an orthotropic material: x from node 1 to node 2, z = Z.
Turn axis1_of(const PlateNodes& nodes) {
    return turn_of({Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}}, difference(nodes[1], nodes[0]));
}

/// The section in global axes.
ShellSection section_of(const PlateNodes& nodes, const ShellProperties& p) {
    if (!p.own_axes) return p.section;
    const auto [cosine, sine] = axis1_of(nodes);
    return turned_section(p.section, cosine, sine);
}

/// All nodes of each element at one height, around an area; otherwise each bad one is named and the
/// fatal path taken.
void check_plates(const PlateKind& kind, Matrix<const std::int32_t> el) {
    const auto x = require_coordinates();
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        const PlateNodes nodes = plate_nodes(el, x, e);
        const double size = vector_length(difference(nodes[1], nodes[0]));
        const bool level = std::ranges::all_of(
            nodes, [&](const Vec3& p) { return std::abs(p[2] - nodes[0][2]) <= 1e-8 * size; });
        if (level && plate6_is_possible(nodes)) continue;
        good = false;
        if (level)
            name_flat_shell(kind.shell, e);
        else
            write_both("(/, 4x, a, ' element number', i5, ' does not lie in the X-Y plane')",
                       {kind.shell.title, e});
    }
    end_of_shell_check(good);
}

// --- input --------------------------------------------------------------------------------------

void read_plates(const PlateKind& kind) {
    const ShellKind& shell = kind.shell;
    const auto counts = read_element_counts();
    if (!shell_counts_are_possible(shell, counts, 1)) return;
    const auto pressures = find_node_pressures();
    if (!pressures) return;
    const int n = counts.elements;
    delete_shells(shell);
    read_shell_materials(shell, counts.materials, nullptr);
    const auto el = create_matrix<std::int32_t>(shell.el, shell.rows, n);
    const auto q = create_matrix<double>(kind.q, plate6_nodes + 1, n);
    while (const auto record = next_shell_record(shell, counts.materials)) {
        const PressureKeys keys = read_pressure_keys(shell);
        store_shells(shell, *record, el,
                     [&](int e) { store_pressure(shell, keys, *pressures, el.col(e), q.col(e)); });
    }
    check_shell_nodes(shell, el, plate6_nodes);
    check_plates(kind, el);
    create_matrix<double>(shell.st, n, state_columns);
    set_element_group(shell.slot, 1);
}

// --- workers ------------------------------------------------------------------------------------

using PlateList = std::array<std::int32_t, plate6_dofs>;

void list_of_plate(const Equations& equations, const ShellModel& m, int e, PlateList& list) {
    element_equations(equations, m.el.col(e).first(plate6_nodes), plate_freedoms, list);
}

void form_stiffness_of(const PlateKind& kind) {
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    GlobalMatrix global = open_stiffness(equations);
    const auto rlx = trial_array(kind.shell.rlx, m.el.cols, 0);
    PlateList list;
    for (int e = 1; e <= m.el.cols; ++e) {
        const ShellProperties& p = m.properties(e);
        const PlateNodes nodes = plate_nodes(m.el, m.x, e);
        if (!plate6_is_possible(nodes)) refuse_flat_shell(kind.shell, e);
        const PlateParts parts = plate6_parts(nodes, section_of(nodes, p));
        PlateMatrix k = parts.bending;
        rlx(e) = plate6_relaxation(parts, p.c_s);
        for (std::size_t i = 0; i < k.a.size(); ++i)
            k.a[i] += rlx(e) * parts.shear.a[i];
        list_of_plate(equations, m, e, list);
        add_stiffness(global, list, k.view());
    }
}

void form_mass_of(const PlateKind& kind) {
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    GlobalMatrix global = open_mass(equations);
    PlateList list;
    for (int e = 1; e <= m.el.cols; ++e) {
        list_of_plate(equations, m, e, list);
        add_mass(global, list,
                 plate6_mass(plate_nodes(m.el, m.x, e), m.properties(e).mass_per_area).view());
    }
}

void form_loads_of(const PlateKind& kind) {
    const ShellModel m = open_shells(kind.shell);
    const auto q = element_matrix<double>(kind.shell.missing, kind.q, plate6_nodes + 1, m.el.cols);
    const auto gravity = find_gravity();
    const Equations equations = open_equations();
    GlobalVector loads = open_load_patterns(equations);
    PlateList list;
    for (int e = 1; e <= m.el.cols; ++e) {
        const PlateNodes nodes = plate_nodes(m.el, m.x, e);
        const double mass = m.properties(e).mass_per_area;
        std::array<double, plate6_nodes> p;
        list_of_plate(equations, m, e, list);
        if (const int pattern = nearest_int(q(1, e)); pattern != 0) {
            std::ranges::copy(q.col(e).subspan(1), p.begin());
            add_element_load(loads, pattern, list, plate6_load(nodes, p));
        }
        if (gravity && mass != 0) {
            p.fill(mass * gravity->acceleration[2]);
            add_element_load(loads, gravity->pattern, list, plate6_load(nodes, p));
        }
    }
}

void form_state_of(const PlateKind& kind) {
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    const Displacements u = open_displacements(equations);
    const ArrayRef rlx = find_array(kind.shell.rlx);
    const bool stored = rlx.is(type_real) && rlx.size() == m.el.cols;
    const auto trial = trial_array(kind.shell.trial, m.el.cols, state_columns);
    PlateList list;
    PlateVector ue;
    for (int e = 1; e <= m.el.cols; ++e) {
        const ShellProperties& p = m.properties(e);
        const PlateNodes nodes = plate_nodes(m.el, m.x, e);
        const ShellSection section = section_of(nodes, p);
        const double phi = stored ? as_span<double>(rlx)[nth(e)]
                                  : plate6_relaxation(plate6_parts(nodes, section), p.c_s);
        list_of_plate(equations, m, e, list);
        element_displacements(u, list, ue);
        const auto [place, r] = plate6_state(nodes, section, phi, ue);
        ShellResultants full{0, 0, 0, r[0], r[1], r[2], r[3], r[4]};
        if (p.other_axes) {
            const auto [cosine, sine] = axis1_of(nodes);
            full = turned_resultants(full, cosine, sine);
        }
        store_shell_result(trial, e, place, std::span(full).subspan(3));
    }
}

void print_state_of(const PlateKind& kind, std::string_view array) {
    print_shell_results(kind.shell, "STATE", state_names,
                        element_matrix<double>(kind.shell.missing, array,
                                               open_shell_table(kind.shell).cols, state_columns));
}

// --- protocol -----------------------------------------------------------------------------------

void serve(const PlateKind& kind, Request request) {
    const ShellKind& shell = kind.shell;
    const Task task = task_of(request);
    if (serve_shell(shell, task)) return;
    switch (task) {
    case Task::input:
        return read_plates(kind);
    case Task::column_heights:
        return add_all_column_heights(open_shell_table(shell), plate6_nodes, plate_freedoms);
    case Task::stiffness:
        return form_stiffness_of(kind);
    case Task::loads:
        return form_loads_of(kind);
    case Task::mass:
    case Task::mass_diagonal: // lumped by the service
        return form_mass_of(kind);
    case Task::trial_state:
        return form_state_of(kind);
    case Task::commit_state:
        return commit_state(shell.trial, shell.st);
    case Task::print_state:
    case Task::print_response:
        return print_state_of(kind, shell.st);
    case Task::print_trial_state:
        return print_state_of(kind, trial_or_state(shell.trial, shell.st));
    default:
        return; // no response, no damping
    }
}

// --- help ---------------------------------------------------------------------------------------

constexpr std::string_view plate_syntax =
    "   n=nel  nodes=node1,...,node6  mat=mat  [print=print]  [pat=pat]  [q=q1,...,q6]  [gen=gen  "
    "inc=inc1,inc2,inc3]  [gen_2d=gen_2d  inc_2d=inc1,inc2,inc3  inc_el=inc_el]\n\t"
    "   (blank line)\n\n";

constexpr std::string_view plate_local_text =
    "iso\n\t0 (the default): the same in all directions, by E1, G12 (as typed) and nu12; otherwise "
    "orthotropic, axis 1 from node 1 to node 2.\n\n"
    "local\n\tAxes of the results: 0 (the default) the global ones, 1 x from node 1 to node 2.\n\n";

constexpr std::string_view plate_nodes_text =
    "nodes\n\tThe vertices 1 to 3 and the nodes on the edges 1-2, 2-3 and 1-3, all at one height: an "
    "element out of the X-Y plane ends the program; the database is saved first. inc1 is the increment "
    "of nodes 1, 2 and 4, inc2 of 5 and 6, inc3 of 3.\n\n";

constexpr std::string_view plate_end_text =
    "Where a real array gravity(4) exists (load pattern, gx, gy, gz), form_k adds the weight of all "
    "elements with mass to that pattern, as far as it acts along Z.\n\n"
    "The displacements in the plane and the rotation about Z have no stiffness: restrain them (bcid). "
    "The type forms no internal forces, so it takes no part in nsolve.\n\n"
    "Example (nodes 1 to 15, 5 in a row; two triangles):\n\t@ m=1 n=2\n\t"
    "m=1 e=2.1e11 g=8.1e10 nu=0.3 t=0.01 mass=7850\n\t"
    "n=1 nodes=1,3,13,2,8,7 mat=1 q=1e3,1e3,1e3,1e3,1e3,1e3\n\tn=2 nodes=1,13,11,7,12,6 mat=1\n\t"
    "(blank line)\n\n"
    "Arrays created: .@_mp; .@_el(8,n) node1 to node6, material, print code; .@_q(7,n) pattern, "
    "pressures; .@_rlx(n) factors of shear relaxation; .@_st(n,8) state at the centroid: x, y, z, Mx, "
    "My, Mxy, Qx, Qy per unit length; a positive moment pulls the +z face. The group code is in "
    ".elem_grp.\n\n";

} // namespace

void min6_element(Request request) {
    serve(min6_kind, request);
}

void isomin6_element(Request request) {
    serve(isomin6_kind, request);
}

std::string_view min6_help() {
    static const std::string text = shell_text(
        {"Command Syntax\n\tmin6  m=?  n=?  [q=q_vec]\n\t   ", shell_material_syntax,
         "  [local=local]  [C_s=C_s]  [iso=iso]\n\t", plate_syntax,
         "Input of six-node triangular Mindlin plates in the X-Y plane, with quadratic deflection and "
         "rotations.\n\n",
         shell_materials_text, plate_local_text, shell_c_s_text,
         "On coarse meshes thin plates are too stiff without it: C_s=0.3 is then better.\n\n",
         shell_n_text, plate_nodes_text, shell_mat_text, shell_q_text, shell_generation_text,
         plate_end_text, "See Also\n\tpmin6\n\tisomin6\n\tmin3s\n"},
        "min6", "0");
    return text;
}

std::string_view isomin6_help() {
    static const std::string text = shell_text(
        {"Command Syntax\n\tisomin6  m=?  n=?  [q=q_vec]\n\t   ", shell_material_syntax,
         "  [local=local]  [iso=iso]\n\t", plate_syntax,
         "Input of six-node triangular Mindlin plates in the X-Y plane: the element of min6 without "
         "relaxation of its shear stiffness. It is not drawn.\n\n",
         shell_materials_text, plate_local_text, shell_n_text, plate_nodes_text, shell_mat_text,
         shell_q_text, shell_generation_text, plate_end_text,
         "See Also\n\tpisomin6\n\tmin6\n\tmin3s\n"},
        "isomin6");
    return text;
}

std::string_view pmin6_help() {
    static const std::string text =
        shell_text({shell_print_text, "See Also\n\tmin6\n\tpstate\n"}, "min6");
    return text;
}

std::string_view pisomin6_help() {
    static const std::string text =
        shell_text({shell_print_text, "See Also\n\tisomin6\n\tpstate\n"}, "isomin6");
    return text;
}

} // namespace quelor
