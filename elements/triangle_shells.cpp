// Workers of the shells made of triangles. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp`,
// `.nodal_pressure`, `.nodal_pressure_pat`, `gravity`; writes the arrays of a TriangleKind; adds to
// `.kstr`, `.mstr`, `.load_pat` through the services of assembly.
#include "elements/triangle_shells.hpp"

#include "elements/shell_forces.hpp"
#include "elements/shell_quad.hpp"
#include "fem/formkm.hpp"
#include "fem/loads.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

namespace quelor {

// --- geometry -----------------------------------------------------------------------------------

ShellPiece shell_piece(const TriangleKind& kind, Matrix<const std::int32_t> el,
                       Matrix<const double> x, int e, int part) {
    constexpr std::array<std::size_t, 3> whole{0, 1, 2};
    const auto& rows = kind.triangles == 1 ? whole : shell_quarters[nth(part)];
    ShellPiece piece{.part = part, .nodes = {}, .vertices = {}, .geometry = {}, .element_axes = {}};
    for (std::size_t i = 0; i < 3; ++i)
        piece.nodes[i] = el.col(e)[rows[i]];
    piece.vertices = element_coordinates<3>(x, piece.nodes);
    piece.geometry = shell_triangle(piece.vertices);
    piece.element_axes =
        part == 1 ? piece.geometry.axes : shell_piece(kind, el, x, e, 1).geometry.axes;
    if (!kind.midnodes || el(4, e) == 0) return piece;
    const auto midnodes = el.col(e).subspan(3, 3);
    piece.geometry.rise = min3s_rises(piece.vertices, element_coordinates<3>(x, midnodes));
    for (std::size_t k = 0; k < 3; ++k)
        if (midnodes[k] == 0) piece.geometry.rise[k] = 0;
    return piece;
}

namespace {

/// Visits the triangles of all elements: visit(e, piece).
template <class Visit>
void for_each_piece(const TriangleKind& kind, const ShellModel& m, Visit visit) {
    for (int e = 1; e <= m.el.cols; ++e)
        for (int part = 1; part <= kind.triangles; ++part) {
            const ShellPiece piece = shell_piece(kind, m.el, m.x, e, part);
            if (!piece.geometry.valid) refuse_flat_shell(kind.shell, e);
            visit(e, piece);
        }
}

ShellSection section_of(const ShellPiece& piece, const ShellProperties& p) {
    if (piece.part == 1) return p.section;
    return section_in(p, piece.geometry.axes, piece.element_axes[0]);
}

int row_of(const TriangleKind& kind, int e, const ShellPiece& piece) {
    return (e - 1) * kind.triangles + piece.part;
}

} // namespace

// --- input --------------------------------------------------------------------------------------

namespace {

/// Results in axes other than the triangle's are no state for the geometric stiffness.
bool state_is_local(const TriangleKind& kind, Matrix<const double> mp) {
    const bool wanted = kind.triangles > 1; // local=1, where one triangle has global=0
    for (int number = 1; number <= mp.rows; ++number)
        if ((mp(number, kind.shell.columns.axes) != 0) != wanted) return false;
    return true;
}

/// Midnodes below the plane of their vertices, whose rise counts as one above it.
int count_negative_rises(const TriangleKind& kind, Matrix<const std::int32_t> el,
                         Matrix<const double> x) {
    int count = 0;
    for (int e = 1; e <= el.cols && kind.midnodes; ++e) {
        if (el(4, e) == 0) continue;
        const ShellPiece piece = shell_piece(kind, el, x, e, 1);
        for (int k = 4; k <= 6; ++k)
            if (el(k, e) != 0 &&
                dot_product(difference(element_node(x, el(k, e)), piece.vertices[0]),
                            piece.geometry.axes[2]) < -1e-9 * std::sqrt(piece.geometry.area))
                ++count;
    }
    return count;
}

void check_areas(const TriangleKind& kind, Matrix<const std::int32_t> el, Matrix<const double> x) {
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        if (shell_piece(kind, el, x, e, 1).geometry.valid) continue;
        name_flat_shell(kind.shell, e);
        good = false;
    }
    end_of_shell_check(good);
}

} // namespace

std::optional<ShellInput> begin_triangle_shells(const TriangleKind& kind, int fewest) {
    const ShellKind& shell = kind.shell;
    const bool kg = has_flag(" -kg"), kf = has_flag(" -kf");
    const ShellInput input{read_element_counts(), has_flag(" -pressure"),
                           kf   ? shell_with_kf
                           : kg ? shell_with_kg
                                : shell_linear};
    if (!shell_counts_are_possible(shell, input.counts, fewest)) return std::nullopt;
    if (kf && !input.pressure) shutdown_with(kind.needs_pressure);
    delete_shells(shell);
    create_int_scalar(kind.pressure, input.pressure ? 1 : 0);
    read_shell_materials(shell, input.counts.materials, nullptr);
    if (input.code != shell_linear &&
        !state_is_local(kind, as_matrix<const double>(find_array(shell.mp))))
        shutdown_with(kind.triangles > 1
                          ? " \n\t-kg and -kf need results in triangle axes: local=1\n"
                          : " \n\t-kg and -kf need results in the element's axes: global=0\n");
    return input;
}

void finish_triangle_shells(const TriangleKind& kind, int n, int code) {
    create_matrix<double>(kind.shell.st, n * kind.triangles, shell_state_columns);
    set_element_group(kind.shell.slot, code);
}

void read_triangle_shells(const TriangleKind& kind) {
    const ShellKind& shell = kind.shell;
    const auto input = begin_triangle_shells(kind, 1);
    if (!input) return;
    const int n = input->counts.elements;
    const auto el = create_matrix<std::int32_t>(shell.el, shell.rows, n);
    while (const auto record = next_shell_record(shell, input->counts.materials))
        store_shells(shell, *record, el, [&](int e) { el(shell.face_row(), e) = record->face; });
    check_shell_nodes(shell, el, 3);
    const auto x = require_coordinates();
    check_areas(kind, el, x);
    if (const int count = count_negative_rises(kind, el, x); count > 0)
        write_both(
            "(' Warning: ', i0, ' midnodes of ', a, ' lie on the negative side of their element; their rises count as positive')",
            {count, shell.title});
    finish_triangle_shells(kind, n, input->code);
}

// --- stiffness and mass -------------------------------------------------------------------------

namespace {

using ShellList = std::array<std::int32_t, shell_dofs>;

/// Pressures at the nodes by column 1 of `.nodal_pressure`; 0 at a node beyond its rows.
std::array<double, 3> pressures_at(std::span<const double> column, const ShellPiece& piece) {
    std::array<double, 3> p{};
    for (std::size_t i = 0; i < 3; ++i)
        if (const std::int32_t n = piece.nodes[i]; 1 <= n && n <= std::ssize(column))
            p[i] = column[nth(n)];
    return p;
}

/// `.nodal_pressure`; the fatal path, with the message, when it is absent.
Matrix<const double> require_pressures(std::string_view message) {
    return element_matrix<double>(message, nodal_pressure, any_size, any_size);
}

/// 1 or -1 when the element has a face for the hydrostatic stiffness, otherwise 0.
int wet_side(const TriangleKind& kind, const ShellModel& m, int e) {
    const std::int32_t face = m.el(kind.shell.face_row(), e);
    return face == 1 || (face == -1 && kind.both_faces) ? face : 0;
}

ShellRelaxation relaxation_of(Matrix<const double> rlx, int e, int part) {
    return {rlx(2 * part - 1, e), rlx(2 * part, e)};
}

void form_stiffness_of(const TriangleKind& kind, int code) {
    if (code < shell_linear || code > shell_with_kf) return;
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    GlobalMatrix global = open_stiffness(equations);
    Matrix<const double> st;
    if (code >= shell_with_kg)
        st = element_matrix<double>(kind.shell.missing, kind.shell.st, m.el.cols * kind.triangles,
                                    shell_state_columns);
    std::span<const double> pressure;
    if (code == shell_with_kf) pressure = require_pressures(kind.no_stiffness_pressure).col(1);
    const auto rlx = trial_array(kind.shell.rlx, 2 * kind.triangles, m.el.cols);
    ShellList list;
    for_each_piece(kind, m, [&](int e, const ShellPiece& piece) {
        const ShellProperties& p = m.properties(e);
        const ShellTriangle& t = piece.geometry;
        const ShellParts parts = shell_parts(t, section_of(piece, p));
        const ShellRelaxation phi = shell_relaxation(parts, p.c_s, p.c_m);
        ShellMatrix k = shell_stiffness(parts, phi, p.drill);
        if (const int row = row_of(kind, e, piece); code >= shell_with_kg)
            min3s_geometric(k, t, {st(row, 4), st(row, 5), st(row, 6)});
        if (const int side = wet_side(kind, m, e); code == shell_with_kf && side != 0)
            min3s_hydrostatic(k, t, {p.fdensity, pressures_at(pressure, piece), side});
        rlx(2 * piece.part - 1, e) = phi.shear;
        rlx(2 * piece.part, e) = phi.membrane;
        element_equations(equations, piece.nodes, all_six, list);
        add_stiffness(global, list, min3s_transform(k, t.axes).view());
    });
}

void form_mass_of(const TriangleKind& kind, bool diagonal) {
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    GlobalMatrix global = open_mass(equations);
    ShellList list;
    for_each_piece(kind, m, [&](int e, const ShellPiece& piece) {
        const double mass = m.properties(e).mass_per_area;
        const ShellTriangle& t = piece.geometry;
        element_equations(equations, piece.nodes, all_six, list);
        if (!diagonal)
            return add_mass(global, list, min3s_transform(shell_mass(t, mass), t.axes).view());
        ShellVector lumped{};
        for (std::size_t i = 0; i < shell_dofs; ++i)
            if (i % 6 < 3) lumped[i] = t.area * mass / 3;
        add_mass(global, list, lumped);
    });
}

void add_column_heights_of(const TriangleKind& kind) {
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    ColumnHeights heights = open_column_heights(equations);
    ShellList list;
    for_each_piece(kind, m, [&](int, const ShellPiece& piece) {
        element_equations(equations, piece.nodes, all_six, list);
        add_column_heights(heights, list);
    });
}

// --- loads --------------------------------------------------------------------------------------

/// Pressures at nodes with the pattern of each column; empty without -pressure.
struct Pressures {
    Matrix<const double> at_nodes;
    std::span<const std::int32_t> patterns;
};
Pressures open_pressures(const TriangleKind& kind) {
    if (get_int(kind.pressure) != 1) return {};
    const auto p = require_pressures(kind.no_load_pressure);
    return {p, element_vector<std::int32_t>(kind.no_load_pressure, nodal_pressure_pat, p.cols)};
}

void form_loads_of(const TriangleKind& kind) {
    const Pressures pressures = open_pressures(kind);
    const auto gravity = find_gravity();
    if (!pressures.at_nodes && !gravity) return;
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    GlobalVector loads = open_load_patterns(equations);
    ShellList list;
    for_each_piece(kind, m, [&](int e, const ShellPiece& piece) {
        const ShellTriangle& t = piece.geometry;
        const double mass = m.properties(e).mass_per_area;
        const std::int32_t face = m.el(kind.shell.face_row(), e);
        element_equations(equations, piece.nodes, all_six, list);
        const auto add = [&](int pattern, const ShellVector& f) {
            add_element_load(loads, pattern, list, min3s_transform(f, t.axes));
        };
        for (int c = 1; face != 0 && c <= pressures.at_nodes.cols; ++c) {
            auto p = pressures_at(pressures.at_nodes.col(c), piece);
            for (double& value : p)
                value *= -face;
            add(pressures.patterns[nth(c)], min3s_pressure_load(t, p));
        }
        if (gravity && mass != 0)
            add(gravity->pattern, shell_weight(t, mass, gravity->acceleration));
    });
}

// --- state and response -------------------------------------------------------------------------

/// Resultants at a point, in the axes in which the material asks for them.
ShellResultants resultants_at(const TriangleKind& kind, const ShellPiece& piece,
                              const ShellProperties& p, const ShellSection& section,
                              const ShellRelaxation& phi, const ShellVector& u,
                              const ShellPoint& l) {
    const ShellTriangle& t = piece.geometry;
    const ShellResultants r = shell_resultants(t, section, phi, u, l);
    if (kind.triangles == 1) return p.other_axes ? global_resultants(r, t.axes) : r;
    if (p.other_axes) return r;
    const auto [c, s] = turn_of(t.axes, piece.element_axes[0]);
    return turned_resultants(r, c, s);
}

/// Rows first + 1, ... of a table: place and resultants at each point of each triangle.
void form_results(const TriangleKind& kind, Matrix<double> out,
                  std::span<const ShellPoint> points) {
    const ShellModel m = open_shells(kind.shell);
    const Equations equations = open_equations();
    const ZeroWhereAbsent increment(ddisp, equations.count);
    const Displacements u = open_displacements(equations);
    const bool stored = array_exists(kind.shell.rlx);
    const auto rlx = stored ? element_matrix<double>(kind.shell.missing, kind.shell.rlx,
                                                     2 * kind.triangles, m.el.cols)
                            : Matrix<const double>{};
    ShellList list;
    ShellVector ue;
    int row = 0;
    for_each_piece(kind, m, [&](int e, const ShellPiece& piece) {
        const ShellProperties& p = m.properties(e);
        const ShellTriangle& t = piece.geometry;
        const ShellSection section = section_of(piece, p);
        const auto phi = stored ? relaxation_of(rlx, e, piece.part)
                                : shell_relaxation(shell_parts(t, section), p.c_s, p.c_m);
        element_equations(equations, piece.nodes, all_six, list);
        element_displacements(u, list, ue);
        const ShellVector local = shell_to_local(ue, t.axes);
        for (const ShellPoint& l : points) {
            const auto r = resultants_at(kind, piece, p, section, phi, local, l);
            store_shell_result(out, ++row, place_of(piece.vertices, l), r);
        }
    });
}

int count_elements(const TriangleKind& kind) {
    return open_shell_table(kind.shell).cols;
}

void form_trial_state(const TriangleKind& kind) {
    constexpr ShellPoint centroid{1.0 / 3, 1.0 / 3, 1.0 / 3};
    const int rows = count_elements(kind) * kind.triangles;
    form_results(kind, trial_array(kind.shell.trial, rows, shell_state_columns),
                 std::span(&centroid, 1));
}

/// Row e of the average is the mean of the element's rows of the state.
void form_average(const TriangleKind& kind) {
    const int n = count_elements(kind);
    const auto st = element_matrix<double>(kind.shell.missing, kind.shell.st, n * kind.triangles,
                                           shell_state_columns);
    const auto average = create_matrix<double>(kind.average, n, shell_state_columns);
    for (int c = 1; c <= shell_state_columns; ++c)
        for (int row = 1; row <= st.rows; ++row)
            average((row - 1) / kind.triangles + 1, c) += st(row, c) / kind.triangles;
}

void commit(const TriangleKind& kind) {
    commit_state(kind.shell.trial, kind.shell.st);
    if (!kind.average.empty()) form_average(kind);
}

/// The response at the points that the user has given.
void form_response(const TriangleKind& kind) {
    if (kind.resp.empty()) return;
    const ArrayRef ref = find_array(kind.points);
    if (!ref)
        return print_both(" \nResponse at global coordinates for element " +
                          std::string(kind.shell.title) + " not yet\n");
    if (!ref.is(type_real) || ref.ndim() > 2 || ref.cols() != 3)
        return print_both(" \n\tArray " + std::string(kind.points) +
                          " must be real, with a row of three area coordinates for each point\n");
    const auto given = as_matrix<const double>(ref);
    std::vector<ShellPoint> points;
    for (int i = 1; i <= given.rows; ++i)
        points.push_back({given(i, 1), given(i, 2), given(i, 3)});
    const int n = count_elements(kind);
    if (std::int64_t{n} * given.rows > most_elements)
        return print_both(" \n\tToo many points of the response\n");
    form_results(kind, create_matrix<double>(kind.resp, n * given.rows, shell_state_columns),
                 points);
}

// --- printing -----------------------------------------------------------------------------------

void print_state(const TriangleKind& kind, std::string_view array) {
    print_shell_results(kind.shell, "STATE", shell_columns,
                        element_matrix<double>(kind.shell.missing, array,
                                               count_elements(kind) * kind.triangles,
                                               shell_state_columns));
}

/// The response; the mean state, or the state, of a type or model without one.
void print_response(const TriangleKind& kind) {
    const auto name = !kind.average.empty() ? kind.average : kind.resp;
    const ArrayRef ref = find_array(name);
    if (!ref.is(type_real) || ref.cols() != shell_state_columns)
        return print_state(kind, kind.shell.st);
    print_shell_results(kind.shell, "RESPONSE", shell_columns, as_matrix<const double>(ref));
}

} // namespace

// --- protocol -----------------------------------------------------------------------------------

void serve_triangle_shells(const TriangleKind& kind, Request request) {
    const Task task = task_of(request);
    if (serve_shell(kind.shell, task)) return;
    switch (task) {
    case Task::column_heights:
        return add_column_heights_of(kind);
    case Task::stiffness:
        return form_stiffness_of(kind, request.modifier1);
    case Task::loads:
        return form_loads_of(kind);
    case Task::mass:
    case Task::mass_diagonal:
        return form_mass_of(kind, task == Task::mass_diagonal);
    case Task::trial_state:
        return form_trial_state(kind);
    case Task::commit_state:
        return commit(kind);
    case Task::response:
        return form_response(kind);
    case Task::print_state:
        return print_state(kind, kind.shell.st);
    case Task::print_trial_state:
        return print_state(kind, trial_or_state(kind.shell.trial, kind.shell.st));
    case Task::print_response:
        return print_response(kind);
    default:
        return; // no damping
    }
}

} // namespace quelor
