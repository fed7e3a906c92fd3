// The four-node shell. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp`, `gravity`; writes the arrays
// of min4t_kind; adds to `.kstr`, `.mstr`, `.load_pat` through the services of assembly.
#include "elements/min4t.hpp"

#include "elements/shell_family.hpp"
#include "elements/shell_forces.hpp"
#include "elements/shell_help.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

namespace quelor {

namespace {

// --- type ---------------------------------------------------------------------------------------

/// real (3, n): the virtual node.
constexpr std::string_view min4t_node5 = ".min4t_node5";
/// real (5, n): load pattern, pressures at the nodes along +z; pattern 0: none.
constexpr std::string_view min4t_q = ".min4t_q";
/// real (m): stiffness of the rotations about the normal.
constexpr std::string_view min4t_gamma = ".min4t_gamma";
/// integer: version; constraint, an InnerRotation.
constexpr std::string_view min4t_ver = ".min4t_ver";
constexpr std::string_view min4t_const = ".min4t_const";
/// real (5 n, 6): x, y, z, Nx, Ny, Nxy of the four triangles and their mean; committed and trial.
constexpr std::string_view min4t_stm = ".min4t_stm";
constexpr std::string_view min4t_stm_trial = "$min4t_stm";

constexpr int increments[] = {1, 1, 2, 2};
constexpr std::string_view others[] = {min4t_node5, min4t_q,   min4t_gamma,    min4t_ver,
                                       min4t_const, min4t_stm, min4t_stm_trial};
constexpr ShellKind min4t_kind{.slot = 10,
                               .name = "min4t",
                               .title = "MIN4T",
                               .el = min4t_table.name,
                               .mp = ".min4t_mp",
                               .st = ".min4t_stb",
                               .trial = "$min4t_stb",
                               .rlx = ".min4t_rlx",
                               .others = others,
                               .missing = min4t_missing,
                               .out_of_range = " \n\tElement out of range - MIN4T\n",
                               .rows = 6,
                               .nodes = 4,
                               .increments = increments,
                               .columns = {.axes = 12, .c_s = 13, .iso = 14, .count = 14},
                               .axes_key = " local=",
                               .c_s = 0.6,
                               .drill_key = false};

constexpr int relax_triangles = 1, relax_by_corners = 3; ///< versions
constexpr int parts = 4;
constexpr int state_rows = parts + 1, bending_columns = 8, membrane_columns = 6;

// --- input --------------------------------------------------------------------------------------

void read_gamma(int number) {
    double& gamma = as_matrix<double>(find_array(min4t_gamma))(number);
    const double standard = 1e-4 * as_matrix<double>(find_array(min4t_kind.mp))(number, 4);
    gamma = standard;
    get_real_par(" gamma=", gamma);
    if (gamma < 0) gamma = standard;
    require_finite({&gamma, 1}, "material " + std::to_string(number));
}

/// Makes the virtual nodes; the fatal path when an element has no area or a dent.
void make_virtual_nodes(Matrix<const std::int32_t> el) {
    const auto x = require_coordinates();
    const auto node5 = create_matrix<double>(min4t_node5, 3, el.cols);
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        const ShellQuad q = shell_quad(element_coordinates<4>(x, el.col(e)));
        std::ranges::copy(q.middle, node5.col(e).begin());
        if (q.valid) continue;
        name_bad_quad(min4t_kind, q, e);
        good = false;
    }
    end_of_shell_check(good);
}

/// version= and constraint=; false after a message.
bool read_versions(std::int32_t& version, std::int32_t& constraint) {
    get_int_par(" version=", version);
    get_int_par(" constraint=", constraint);
    if (version < 1 || version > 3 || constraint < 1 || constraint > 3)
        return print_both(" \n\tversion and constraint of MIN4T must be 1, 2 or 3\n"), false;
    if (version == 2) {
        print_both(" \n\tVersion 2 of MIN4T is not available; using version 1\n");
        version = relax_triangles;
    }
    return true;
}

void read_min4t() {
    const auto counts = read_element_counts();
    std::int32_t version = relax_triangles, constraint = 1;
    if (!shell_counts_are_possible(min4t_kind, counts, 1) || !read_versions(version, constraint))
        return;
    const auto pressures = find_node_pressures();
    if (!pressures) return;
    const int n = counts.elements;
    delete_shells(min4t_kind);
    create_int_scalar(min4t_ver, version);
    create_int_scalar(min4t_const, constraint);
    create_matrix<double>(min4t_gamma, counts.materials, 0);
    read_shell_materials(min4t_kind, counts.materials, read_gamma);
    const auto el = create_matrix<std::int32_t>(min4t_kind.el, min4t_kind.rows, n);
    const auto q = create_matrix<double>(min4t_q, min4t_kind.nodes + 1, n);
    while (const auto record = next_shell_record(min4t_kind, counts.materials)) {
        const PressureKeys keys = read_pressure_keys(min4t_kind);
        store_shells(min4t_kind, *record, el, [&](int e) {
            store_pressure(min4t_kind, keys, *pressures, el.col(e), q.col(e));
        });
    }
    check_shell_nodes(min4t_kind, el, 4);
    make_virtual_nodes(el);
    create_matrix<double>(min4t_kind.st, state_rows * n, bending_columns);
    create_matrix<double>(min4t_stm, state_rows * n, membrane_columns);
    set_element_group(min4t_kind.slot, 1);
}

// --- elements -----------------------------------------------------------------------------------

/// One element: its triangles, and how its virtual node moves.
struct QuadShell {
    std::array<Vec3, 5> points;
    ShellQuad quad;
    std::array<ShellTriangle, parts> triangles;
    InnerMotion motion;

    std::array<Vec3, 3> vertices(std::size_t part) const {
        const auto& nodes = shell_quarters[part];
        return {points[nodes[0]], points[nodes[1]], points[nodes[2]]};
    }
};

QuadShell quad_shell(const ShellModel& m, int e, InnerRotation rotation) {
    const auto vertices = element_coordinates<4>(m.x, m.el.col(e));
    QuadShell s{.points = {}, .quad = shell_quad(vertices), .triangles = {}, .motion = {}};
    if (!s.quad.valid) refuse_flat_shell(min4t_kind, e);
    std::ranges::copy(vertices, s.points.begin());
    s.points[4] = s.quad.middle;
    for (std::size_t part = 0; part < parts; ++part)
        s.triangles[part] = shell_triangle(s.vertices(part));
    s.motion = inner_motion(s.quad, vertices, rotation);
    return s;
}

ShellSection section_of(const QuadShell& s, std::size_t part, const ShellProperties& p) {
    return section_in(p, s.triangles[part].axes, s.triangles[0].axes[0]);
}

/// A triangle's matrix by the degrees of freedom of the corners.
QuadMatrix by_corners(const QuadShell& s, std::size_t part, const ShellMatrix& local) {
    WithInner k;
    add_quarter(k, part, min3s_transform(local, s.triangles[part].axes));
    return congruent(k, s.motion);
}

/// The factor of a triangle's shear stiffness.
double shear_factor(const QuadShell& s, std::size_t part, const ShellParts& of_part, double c_s,
                    int version) {
    if (version == relax_triangles) return shell_relaxation(of_part, c_s, 0).shear;
    const auto sum = [&](int first, const auto& k) {
        ShellMatrix whole;
        add_part(whole, first, 1, k);
        return rotation_trace(by_corners(s, part, whole), s.quad.normal);
    };
    return relaxation(c_s, sum(shell_w, of_part.shear), sum(shell_thx, of_part.bending));
}

using QuadList = std::array<std::int32_t, 24>;

/// What the workers open before their loop.
struct Min4tModel {
    ShellModel shells = open_shells(min4t_kind);
    Equations equations = open_equations();
    InnerRotation rotation;
    int version;

    Min4tModel() {
        const auto scalar = [](std::string_view name) {
            return element_matrix<std::int32_t>(min4t_missing, name, 1, 1)(1);
        };
        const std::int32_t constraint = scalar(min4t_const);
        version = scalar(min4t_ver);
        if (constraint < 1 || constraint > 3) shutdown_with(min4t_missing);
        rotation = static_cast<InnerRotation>(constraint);
    }
    int count() const { return shells.el.cols; }
    QuadShell shell(int e) const { return quad_shell(shells, e, rotation); }
    void list(int e, QuadList& out) const {
        element_equations(equations, shells.el.col(e).first(4), all_six, out);
    }
};

// --- matrices and loads -------------------------------------------------------------------------

void form_stiffness_of_min4t() {
    const Min4tModel m;
    const auto gamma = element_vector<double>(min4t_missing, min4t_gamma,
                                              static_cast<int>(m.shells.materials.size()));
    GlobalMatrix global = open_stiffness(m.equations);
    const auto rlx = trial_array(min4t_kind.rlx, parts * m.count(), 0);
    QuadList list;
    for (int e = 1; e <= m.count(); ++e) {
        const ShellProperties& p = m.shells.properties(e);
        const double penalty = gamma[nth(m.shells.el(m.shells.material_row, e))] * p.thickness;
        const QuadShell s = m.shell(e);
        WithInner k;
        for (std::size_t part = 0; part < parts; ++part) {
            const ShellTriangle& t = s.triangles[part];
            const ShellParts of_part = shell_parts(t, section_of(s, part, p));
            const double phi = shear_factor(s, part, of_part, p.c_s, m.version);
            ShellMatrix local = shell_stiffness(of_part, {phi, 1}, 0);
            add_drilling_penalty(local, t, penalty);
            add_quarter(k, part, min3s_transform(local, t.axes));
            rlx(parts * (e - 1) + static_cast<int>(part) + 1) = phi;
        }
        m.list(e, list);
        add_stiffness(global, list, congruent(k, s.motion).view());
    }
}

void form_mass_of_min4t(bool diagonal) {
    const Min4tModel m;
    GlobalMatrix global = open_mass(m.equations);
    QuadList list;
    for (int e = 1; e <= m.count(); ++e) {
        const double mass = m.shells.properties(e).mass_per_area;
        const QuadShell s = m.shell(e);
        m.list(e, list);
        WithInner full;
        std::array<double, 5> lumped{};
        for (std::size_t part = 0; part < parts; ++part) {
            const ShellTriangle& t = s.triangles[part];
            add_quarter(full, part, min3s_transform(shell_mass(t, mass), t.axes));
            for (const std::size_t node : shell_quarters[part])
                lumped[node] += t.area * mass / 3;
        }
        if (!diagonal) {
            add_mass(global, list, congruent(full, s.motion).view());
            continue;
        }
        QuadVector diagonal_mass{};
        const auto weights = inner_weights(s.quad);
        for (std::size_t node = 0; node < 4; ++node)
            for (std::size_t i = 0; i < 3; ++i)
                diagonal_mass[6 * node + i] = lumped[node] + weights[node] * lumped[4];
        add_mass(global, list, diagonal_mass);
    }
}

/// Forces at the corners: load(t) of each triangle, in its local axes.
template <class Load> auto corner_forces(const QuadShell& s, Load load) {
    std::array<double, 30> f{};
    for (std::size_t part = 0; part < parts; ++part) {
        const ShellTriangle& t = s.triangles[part];
        add_quarter(f, part, min3s_transform(load(part, t), t.axes));
    }
    return transposed_product(s.motion, f);
}

void form_loads_of_min4t() {
    const Min4tModel m;
    const auto q = element_matrix<double>(min4t_missing, min4t_q, min4t_kind.nodes + 1, m.count());
    const auto gravity = find_gravity();
    GlobalVector loads = open_load_patterns(m.equations);
    QuadList list;
    for (int e = 1; e <= m.count(); ++e) {
        const int pattern = nearest_int(q(1, e));
        const double mass = m.shells.properties(e).mass_per_area;
        if (pattern == 0 && !(gravity && mass != 0)) continue;
        const QuadShell s = m.shell(e);
        m.list(e, list);
        if (pattern != 0) {
            std::array<double, 5> p{};
            const auto weights = inner_weights(s.quad);
            for (std::size_t i = 0; i < 4; ++i) {
                p[i] = q(static_cast<int>(i) + 2, e);
                p[4] += weights[i] * p[i];
            }
            add_element_load(
                loads, pattern, list,
                corner_forces(s, [&](std::size_t part, const ShellTriangle& t) {
                    const auto& nodes = shell_quarters[part];
                    return min3s_pressure_load(t, {p[nodes[0]], p[nodes[1]], p[nodes[2]]});
                }));
        }
        if (gravity && mass != 0)
            add_element_load(loads, gravity->pattern, list,
                             corner_forces(s, [&](std::size_t, const ShellTriangle& t) {
                                 return shell_weight(t, mass, gravity->acceleration);
                             }));
    }
}

// --- state --------------------------------------------------------------------------------------

/// The mean of the four rows before `row`.
void store_mean(Matrix<double> out, int row) {
    for (int c = 1; c <= out.cols; ++c) {
        out(row, c) = 0;
        for (int k = 1; k <= parts; ++k)
            out(row, c) += out(row - k, c) / parts;
    }
}

void form_state_of_min4t() {
    const Min4tModel m;
    const Displacements u = open_displacements(m.equations);
    const ArrayRef rlx = find_array(min4t_kind.rlx);
    const bool stored = rlx.is(type_real) && rlx.size() == parts * m.count();
    const auto bending = trial_array(min4t_kind.trial, state_rows * m.count(), bending_columns);
    const auto membrane = trial_array(min4t_stm_trial, state_rows * m.count(), membrane_columns);
    constexpr ShellPoint centroid{1.0 / 3, 1.0 / 3, 1.0 / 3};
    QuadList list;
    QuadVector corners;
    for (int e = 1; e <= m.count(); ++e) {
        const ShellProperties& p = m.shells.properties(e);
        const QuadShell s = m.shell(e);
        m.list(e, list);
        element_displacements(u, list, corners);
        const auto all = product(s.motion, corners);
        const int before = state_rows * (e - 1);
        for (std::size_t part = 0; part < parts; ++part) {
            const ShellTriangle& t = s.triangles[part];
            const ShellSection section = section_of(s, part, p);
            const double phi =
                stored ? as_span<double>(rlx)[as_size(parts * (e - 1)) + part]
                       : shear_factor(s, part, shell_parts(t, section), p.c_s, m.version);
            ShellResultants r = shell_resultants(
                t, section, {phi, 1}, shell_to_local(quarter_of(all, part), t.axes), centroid);
            if (!p.other_axes) {
                const auto [cosine, sine] = turn_of(t.axes, s.triangles[0].axes[0]);
                r = turned_resultants(r, cosine, sine);
            }
            const int row = before + static_cast<int>(part) + 1;
            const Vec3 place = place_of(s.vertices(part), centroid);
            store_shell_result(membrane, row, place, std::span(r).first(3));
            store_shell_result(bending, row, place, std::span(r).subspan(3));
        }
        store_mean(membrane, before + state_rows);
        store_mean(bending, before + state_rows);
    }
}

/// Membrane and bending side by side.
void print_state_of_min4t(std::string_view bending_name, std::string_view membrane_name) {
    const int rows = state_rows * open_shell_table(min4t_kind).cols;
    const auto bending = element_matrix<double>(min4t_missing, bending_name, rows, bending_columns);
    const auto membrane =
        element_matrix<double>(min4t_missing, membrane_name, rows, membrane_columns);
    constexpr int columns = membrane_columns + bending_columns - 3;
    std::vector<double> storage(as_size(rows) * columns);
    const Matrix<double> both{storage.data(), rows, columns};
    for (int row = 1; row <= rows; ++row)
        for (int c = 1; c <= columns; ++c)
            both(row, c) =
                c <= membrane_columns ? membrane(row, c) : bending(row, c - membrane_columns + 3);
    print_shell_results(min4t_kind, "STATE", shell_columns, both);
}

} // namespace

// --- protocol -----------------------------------------------------------------------------------

void min4t_element(Request request) {
    const Task task = task_of(request);
    if (serve_shell(min4t_kind, task)) return;
    switch (task) {
    case Task::input:
        return read_min4t();
    case Task::column_heights:
        return add_all_column_heights(open_shell_table(min4t_kind), 4, all_six);
    case Task::stiffness:
        return form_stiffness_of_min4t();
    case Task::loads:
        return form_loads_of_min4t();
    case Task::mass:
    case Task::mass_diagonal:
        return form_mass_of_min4t(task == Task::mass_diagonal);
    case Task::trial_state:
        return form_state_of_min4t();
    case Task::commit_state:
        commit_state(min4t_kind.trial, min4t_kind.st);
        return commit_state(min4t_stm_trial, min4t_stm);
    case Task::print_state:
    case Task::print_response:
        return print_state_of_min4t(min4t_kind.st, min4t_stm);
    case Task::print_trial_state:
        return print_state_of_min4t(trial_or_state(min4t_kind.trial, min4t_kind.st),
                                    trial_or_state(min4t_stm_trial, min4t_stm));
    default:
        return; // no response, no damping
    }
}

// --- help ---------------------------------------------------------------------------------------

std::string_view min4t_help() {
    static const std::string text = shell_text(
        {"Command Syntax\n\tmin4t  m=?  n=?  [q=q_vec]  [version=version#]  "
         "[constraint=constraint#]\n\t   ",
         shell_material_syntax,
         "  [local=local]  [C_s=C_s]  [iso=iso]  [gamma=gamma]\n\t"
         "   n=nel  nodes=node1,node2,node3,node4  mat=mat  [print=print]  [pat=pat]  "
         "[q=q1,q2,q3,q4]  [gen=gen  inc=inc1,inc2]  [gen_2d=gen_2d  inc_2d=inc1,inc2  "
         "inc_el=inc_el]\n\t   (blank line)\n\n"
         "Input of quadrilateral Mindlin shells without a node inside. Each is made of four flat "
         "triangles around a virtual node where the diagonals cross (of a warped element, in the middle "
         "between them), which goes with the corners. Local axes: x from node 1 to node 2, z by the "
         "right hand, so that corners run counterclockwise seen from +z.\n\n",
         shell_materials_text, shell_iso_text, shell_local_text, shell_c_s_text,
         "gamma\n\tStiffness of the rotations about the normal against half the curl of the "
         "displacements in the surface. Default is g12 * 1.e-4; a negative value stands for it.\n\n"
         "version\n\t1 (the default): the shear of each triangle is relaxed by its own stiffness; 3: by "
         "its stiffness for the degrees of freedom of the corners. 2 is not available.\n\n"
         "constraint\n\tRotations of the virtual node: 1 (the default) least squares of the linear "
         "interpolations along both diagonals, 2 that along 1-3, 3 along each diagonal that of its own "
         "component, by which the shear strain along it is constant.\n\n",
         shell_n_text,
         "nodes\n\tFour corners. inc1 is the increment of nodes 1 and 2, inc2 of 3 and 4. An element "
         "that is not convex ends the program; the database is saved first.\n\n",
         shell_mat_text, shell_q_text, shell_generation_text, shell_gravity_text, shell_weak_text,
         "Example (8 elements on nodes 1 to 15, 5 in a row, under pressure):\n\tmin4t m=1 n=8\n\t"
         "m=1 e=2.1e11 g=8.1e10 nu=0.3 t=0.01 mass=7850\n\t"
         "n=1 nodes=1,2,7,6 mat=1 q=1e3,1e3,1e3,1e3 gen=3 inc=1,1 gen_2d=1 inc_2d=5,5\n\t"
         "(blank line)\n\n"
         "Arrays created: .min4t_mp(m,14) e, g, nu, t, mass, local, C_s, iso; .min4t_gamma(m); "
         ".min4t_el(6,n) node1 to node4, material, print code; .min4t_node5(3,n) virtual nodes; "
         ".min4t_q(5,n) pattern, pressures; .min4t_ver, .min4t_const; .min4t_rlx(4*n) factors of shear "
         "relaxation; .min4t_stb(5*n,8) state of the four triangles and their mean: x, y, z, Mx, My, "
         "Mxy, Qx, Qy; .min4t_stm(5*n,6) x, y, z, Nx, Ny, Nxy. ",
         shell_results_text,
         " The group code is in .elem_grp.\n\n"
         "See Also\n\tpmin4t\n\tmin5s\n\tmin3s\n"},
        "min4t", "0.6");
    return text;
}

std::string_view pmin4t_help() {
    static const std::string text =
        shell_text({shell_print_text, "See Also\n\tmin4t\n\tpstate\n"}, "min4t");
    return text;
}

} // namespace quelor
