// The plane beam with large displacements. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp`; writes the
// arrays of nbeam2d.hpp; adds to `.kstr`, `.mstr`, `.f_internal` through the services of assembly.
#include "elements/nbeam2d.hpp"

#include "elements/element_family.hpp"
#include "elements/plane_beam.hpp"
#include "fem/formkm.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <optional>
#include <vector>

namespace quelor {

namespace {

constexpr std::string_view title = "NBEAM2D";
constexpr std::string_view missing = " \n\tNBEAM2D element information not found\n";
constexpr std::string_view bad_material = " \n\n\tMaterial number not possible\n";

/// A global coordinate plane: its two axes, 1 to 3, the degrees of freedom of a node, and whether
/// the node's rotation turns the first axis away from the second.
struct Plane {
    int a, b;
    std::array<int, 3> dofs;
    bool reversed;
};
constexpr std::array planes{Plane{1, 2, {1, 2, 6}, false}, Plane{1, 3, {1, 3, 5}, true},
                            Plane{2, 3, {2, 3, 4}, false}};

// --- input --------------------------------------------------------------------------------------

/// Number of the plane whose flag is on the record; as it was when none is.
std::int32_t get_plane(std::int32_t plane) {
    if (has_flag(" -xy")) plane = 1;
    if (has_flag(" -xz")) plane = 2;
    if (has_flag(" -yz")) plane = 3;
    return plane;
}

void read_plane_material(Matrix<double> mp, int number) {
    const auto get = [&](std::string_view key, int column) {
        get_real_par(key, mp(number, column));
    };
    const auto get_two = [&](std::string_view key, int column) {
        std::array<double, 2> v{mp(number, column), mp(number, column + 1)};
        get_real_par(key, v);
        mp(number, column) = v[0];
        mp(number, column + 1) = v[1];
    };
    get("e=", nbeam_e);
    get("g=", nbeam_g);
    get("wbar=", nbeam_weight);
    get("a=", nbeam_area);
    get("i=", nbeam_moi);
    get("as=", nbeam_as);
    get_two("mxy=", nbeam_mx);
    double density = -1;
    get_real_par("mbar=", density);
    if (!(density < 0)) mp(number, nbeam_mx) = mp(number, nbeam_my) = density;
    get("mI=", nbeam_rotary);
    get_two("Cm=", nbeam_cmx);
    get_two("Cd=", nbeam_cdx);
    if (mp(number, nbeam_g) == 0 && mp(number, nbeam_as) != 0)
        shutdown_with(" \n\tThe shear area of NBEAM2D needs the shear modulus g\n");
}

struct PlaneRecord {
    std::int32_t n = no_key;
    std::array<std::int32_t, 2> nodes{};
    std::int32_t mat = 0, print = 0, gen = 0, inc = 0, plane = 0;
    double tension = 0;
};

/// The next record; nothing at the end of the input.
std::optional<PlaneRecord> next_plane_record(std::int32_t plane) {
    next_record("Enter line of data\n");
    PlaneRecord r;
    get_int_par("n=", r.n);
    if (r.n == no_key) return std::nullopt;
    get_int_par("nodes=", r.nodes);
    get_int_par("mat=", r.mat);
    get_int_par("print=", r.print);
    get_int_par("gen=", r.gen);
    get_int_par("inc=", r.inc);
    get_real_par("tension=", r.tension);
    r.plane = get_plane(plane);
    return r;
}

/// The arrays of the elements while they are read.
struct PlaneTables {
    Matrix<std::int32_t> el;
    std::span<double> len;
    Matrix<double> st;
    std::span<std::int32_t> dir;
};

void store_plane_record(const PlaneRecord& r, int materials, const PlaneTables& t) {
    if (r.n < 1 || r.gen < 0 || std::int64_t{r.n} + r.gen > t.el.rows)
        shutdown_with("\n\tElement out of range-NBEAM2D\n");
    require_number(r.mat, materials, bad_material);
    require_finite({&r.tension, 1}, "element " + std::to_string(r.n));
    for (int k = 0; k <= r.gen; ++k) {
        const int e = r.n + k;
        t.el(e, 1) = advanced_node(r.nodes[0], r.inc, k);
        t.el(e, 2) = advanced_node(r.nodes[1], r.inc, k);
        t.el(e, 3) = r.mat;
        t.el(e, 4) = r.print;
        t.st(e, 1) = r.tension;
        t.dir[nth(e)] = r.plane;
    }
}

/// The node numbers as the check wants them, one column an element.
void check_plane_nodes(Matrix<const std::int32_t> el) {
    std::vector<std::int32_t> nodes;
    nodes.reserve(2 * as_size(el.rows));
    for (int e = 1; e <= el.rows; ++e) {
        nodes.push_back(el(e, 1));
        nodes.push_back(el(e, 2));
    }
    check_element_nodes(title, {nodes.data(), 2, el.rows}, 2);
}

/// Lengths in the plane of each element; the fatal path when an element does not lie in its plane.
void set_plane_lengths(const PlaneTables& t) {
    const auto x = as_matrix<const double>(find_array(xyz));
    for (int e = 1; e <= t.el.rows; ++e) {
        const auto at = nth(e);
        if (t.el(e, 3) == 0) continue; // not entered: its length stays 0
        const Vec3 d = difference(element_node(x, t.el(e, 2)), element_node(x, t.el(e, 1)));
        const Plane& p = planes[nth(t.dir[at])];
        const auto along = [&](int axis) { return d[nth(axis)]; };
        t.len[at] = std::hypot(along(p.a), along(p.b));
        require_finite({&t.len[at], 1}, "the length of element " + std::to_string(e));
        if (std::abs(along(6 - p.a - p.b)) > 1e-6 * t.len[at] && t.len[at] > 0)
            shutdown_with(" \n\tNBEAM2D element number " + std::to_string(e) +
                          " does not lie in its plane\n");
    }
}

void read_plane_beams() {
    const auto [m, n] = read_element_counts();
    if (!count_is_possible(title, m, 1) || !count_is_possible(title, n, 1)) return;
    std::int32_t code = 2;
    get_int_par(" nl=", code);
    if (code != 1 && code != 2) return print_both(" \n\tnl must be 1 or 2\n");
    const std::int32_t plane = get_plane(1);
    for (const auto name :
         {nbeam2d_mp, nbeam2d_el, nbeam2d_len, nbeam2d_st, nbeam2d_trial, nbeam2d_dir})
        delete_array(name);
    const auto mp = create_matrix<double>(nbeam2d_mp, m, nbeam2d_columns);
    read_materials(mp, "Enter line of data\n", bad_material,
                   [&](int number) { read_plane_material(mp, number); });
    const PlaneTables tables{create_matrix<std::int32_t>(nbeam2d_el, n, 4),
                             create_matrix<double>(nbeam2d_len, n, 0).all(),
                             create_matrix<double>(nbeam2d_st, n, 4),
                             create_matrix<std::int32_t>(nbeam2d_dir, n, 0).all()};
    while (const auto record = next_plane_record(plane))
        store_plane_record(*record, m, tables);
    if (!find_array(xyz).is(type_real)) shutdown_with(" \n\tGlobal coordinates not found\n");
    check_plane_nodes(tables.el);
    set_plane_lengths(tables);
    check_element_lengths(title, tables.len);
    set_element_group(nbeam2d_slot, code);
}

// --- model --------------------------------------------------------------------------------------

/// The arrays of the type, checked against each other: material and plane numbers are safe to use.
struct PlaneModel {
    Matrix<const std::int32_t> el;
    Matrix<const double> mp;
    std::span<const double> len;
    std::span<const std::int32_t> dir;

    int count() const { return el.rows; }
    std::array<std::int32_t, 2> nodes(int e) const { return {el(e, 1), el(e, 2)}; }
    const Plane& plane(int e) const { return planes[nth(dir[nth(e)])]; }
    double property(int e, int column) const { return mp(el(e, 3), column); }
    PlaneSection section(int e) const {
        return {property(e, nbeam_e), property(e, nbeam_g), property(e, nbeam_area),
                property(e, nbeam_moi), property(e, nbeam_as)};
    }
};

PlaneModel open_plane_beams() {
    PlaneModel m;
    m.el = element_matrix<std::int32_t>(missing, nbeam2d_el, any_size, 4);
    m.mp = element_matrix<double>(missing, nbeam2d_mp, any_size, nbeam2d_columns);
    m.len = element_vector<double>(missing, nbeam2d_len, m.count());
    m.dir = element_vector<std::int32_t>(missing, nbeam2d_dir, m.count());
    for (int e = 1; e <= m.count(); ++e) {
        require_number(m.el(e, 3), m.mp.rows, bad_material);
        require_number(m.dir[nth(e)], 3, missing);
    }
    return m;
}

Matrix<const double> plane_state(std::string_view array, int n) {
    return element_matrix<double>(missing, array, n, 4);
}

using PlaneList = std::array<std::int32_t, 6>;

void plane_equations(const PlaneModel& m, const Equations& equations, int e, PlaneList& list) {
    element_equations(equations, m.nodes(e), m.plane(e).dofs, list);
}

/// An element where it was and where it is, with the rotations of its ends in the sense of its
/// plane.
struct PlaneGeometry {
    PlaneChord original, present;
    double r1, r2;
};

/// u  in  displacements in the order of the list; zeros for the undeformed element
PlaneGeometry plane_geometry(const PlaneModel& m, Matrix<const double> x, int e,
                             const std::array<double, 6>& u) {
    const Plane& p = m.plane(e);
    const auto [n1, n2] = m.nodes(e);
    const Vec3 p1 = element_node(x, n1), p2 = element_node(x, n2);
    const auto a = nth(p.a), b = nth(p.b);
    PlaneGeometry g;
    g.original = plane_chord(p1[a], p1[b], p2[a], p2[b]);
    g.original.length = m.len[nth(e)];
    g.present = plane_chord(p1[a] + u[0], p1[b] + u[1], p2[a] + u[3], p2[b] + u[4]);
    if (!(g.original.length > 0) || !(g.present.length > 0))
        shutdown_with("  Zero element length in NBEAM2D");
    g.r1 = p.reversed ? 0 - u[2] : u[2];
    g.r2 = p.reversed ? 0 - u[5] : u[5];
    return g;
}

/// Displacements of a pass; the fatal path, with the message, without them.
Displacements require_displacements(const Equations& equations, std::string_view message) {
    if (!array_exists(disp) || !array_exists(ddisp)) shutdown_with(message);
    return open_displacements(equations);
}

// --- matrices -----------------------------------------------------------------------------------

void plane_column_heights() {
    const PlaneModel m = open_plane_beams();
    const Equations equations = open_equations();
    ColumnHeights heights = open_column_heights(equations);
    PlaneList list;
    for (int e = 1; e <= m.count(); ++e) {
        plane_equations(m, equations, e, list);
        add_column_heights(heights, list);
    }
}

void plane_connectivity() {
    const auto el = element_matrix<std::int32_t>(missing, nbeam2d_el, any_size, 4);
    for (int e = 1; e <= el.rows; ++e)
        write_element_nodes(std::array{el(e, 1), el(e, 2)});
}

/// code  1 linear, of the undeformed element; 2 with the geometric stiffness, at the present
///       displacements
void form_plane_stiffness(int code) {
    if (code != 1 && code != 2) return;
    const PlaneModel m = open_plane_beams();
    const auto x = require_coordinates();
    const Equations equations = open_equations();
    const auto st =
        plane_state(code == 2 ? trial_or_state(nbeam2d_trial, nbeam2d_st) : nbeam2d_st, m.count());
    const Displacements displacements =
        code == 2 ? require_displacements(equations, " \n\tDisplacements not found in NBEAM2D\n")
                  : Displacements{};
    GlobalMatrix global = open_stiffness(equations);
    PlaneList list;
    for (int e = 1; e <= m.count(); ++e) {
        plane_equations(m, equations, e, list);
        std::array<double, 6> u{};
        if (code == 2) element_displacements(displacements, list, u);
        const PlaneGeometry g = plane_geometry(m, x, e, u);
        const double tension = code == 2 ? st(e, 1) : 0;
        const auto k = plane_stiffness(m.section(e), g.original, g.present, tension);
        add_stiffness(global, list, (m.plane(e).reversed ? reversed_rotations(k) : k).view());
    }
}

/// Lumped along and across the undeformed chord.
void form_plane_mass(bool diagonal) {
    const PlaneModel m = open_plane_beams();
    const auto x = require_coordinates();
    const Equations equations = open_equations();
    GlobalMatrix global = open_mass(equations);
    PlaneList list;
    bool valid = true;
    for (int e = 1; e <= m.count(); ++e) {
        const double mx = m.property(e, nbeam_mx), my = m.property(e, nbeam_my);
        const PlaneGeometry g = plane_geometry(m, x, e, {});
        const auto mass = plane_mass(mx, my, m.property(e, nbeam_rotary), g.original);
        plane_equations(m, equations, e, list);
        if (diagonal)
            add_mass(global, list, diagonal_of(mass));
        else
            add_mass(global, list, mass.view());
        valid = valid && mx == my;
    }
    if (diagonal && !valid)
        print_both(" \n\tA diagonal mass matrix is not valid for NBEAM2D: mx and my differ\n");
}

// --- state --------------------------------------------------------------------------------------

/// Half of the weight at each node, in the planes that hold the vertical Z axis.
void add_weight(const PlaneModel& m, int e, std::array<double, 6>& force) {
    if (m.plane(e).b != 3) return;
    const double half = m.property(e, nbeam_weight) * m.len[nth(e)] / 2;
    force[1] += half;
    force[4] += half;
}

void plane_trial_state() {
    const PlaneModel m = open_plane_beams();
    const auto x = require_coordinates();
    const Equations equations = open_equations();
    const Displacements displacements =
        require_displacements(equations, " \n\tGlobal displacement arrays not found in NBEAM2D\n");
    const auto trial = trial_array(nbeam2d_trial, m.count(), 4);
    GlobalVector internal = open_internal_force(equations);
    PlaneList list;
    for (int e = 1; e <= m.count(); ++e) {
        plane_equations(m, equations, e, list);
        std::array<double, 6> u{};
        element_displacements(displacements, list, u);
        const PlaneGeometry g = plane_geometry(m, x, e, u);
        const PlaneForces f = plane_forces(m.section(e), g.original, g.present, g.r1, g.r2);
        trial(e, 1) = f.n;
        trial(e, 2) = f.v;
        trial(e, 3) = 0 - f.m1;
        trial(e, 4) = f.m2;
        auto force = plane_force_vector(f, g.present.angle);
        if (m.plane(e).reversed) force = reversed_rotations(force);
        add_weight(m, e, force);
        add_internal_force(internal, list, force);
    }
}

// --- printing -----------------------------------------------------------------------------------

void print_plane_beams() {
    const PlaneModel m = open_plane_beams();
    const auto st = plane_state(nbeam2d_st, m.count());
    write_both(
        "(' MAT', /, ' NO.', 5x, 'MODULUS', 4x, 'G-MODULUS', 8x, 'WBAR', 8x, 'AREA', 9x, 'MOI', 10x, 'AS', 10x, 'MX', 10x, 'MY', 10x, 'MI', 9x, 'CMX', 9x, 'CMY', 9x, 'CDX', 9x, 'CDY')");
    for (int i = 1; i <= m.mp.rows; ++i) {
        FormatItems items{i};
        for (int c = 1; c <= nbeam2d_columns; ++c)
            items.add(m.mp(i, c));
        write_both("(i4, 1p13e12.4)", items);
    }
    constexpr std::array<std::string_view, 3> names{"X-Y", "X-Z", "Y-Z"};
    write_both(
        "(/, ' ELEMENT  NODE-1  NODE-2    MATL   PRINT   PLANE', 6x, 'LENGTH', 5x, 'TENSION')");
    for (int e = 1; e <= m.count(); ++e) {
        const auto at = nth(e);
        write_both("(5(i6,2x), 3x, a3, 2x, 1p2e12.5)",
                   {e, m.el(e, 1), m.el(e, 2), m.el(e, 3), m.el(e, 4), names[nth(m.dir[at])],
                    m.len[at], st(e, 1)});
    }
}

/// On the output file, the elements with print code 0; signs as stored.
void print_plane_state(std::string_view array) {
    const PlaneModel m = open_plane_beams();
    const auto st = plane_state(array, m.count());
    write_unit(
        unit_output,
        "(/, '     NONLINEAR 2-D BEAM ELEMENT STATE', /, ' ELEMENT  NODE-1  NODE-2', 7x, 'AXIAL', 7x, 'SHEAR', 4x, 'MOMENT-1', 4x, 'MOMENT-2')");
    for (int e = 1; e <= m.count(); ++e)
        if (m.el(e, 4) == 0)
            write_unit(unit_output, "(3(i6,2x), 1p4e12.4)",
                       {e, m.el(e, 1), m.el(e, 2), st(e, 1), st(e, 2), st(e, 3), st(e, 4)});
}

} // namespace

// --- protocol -----------------------------------------------------------------------------------

void nbeam2d_element(Request request) {
    switch (task_of(request)) {
    case Task::input:
        return read_plane_beams();
    case Task::column_heights:
        return plane_column_heights();
    case Task::connectivity:
        return plane_connectivity();
    case Task::stiffness:
        return form_plane_stiffness(request.modifier1);
    case Task::mass:
        return form_plane_mass(false);
    case Task::mass_diagonal:
        return form_plane_mass(true);
    case Task::trial_state:
        return plane_trial_state();
    case Task::commit_state:
        return commit_state(nbeam2d_trial, nbeam2d_st);
    case Task::print_input:
        return print_plane_beams();
    case Task::print_state:
    case Task::print_response:
        return print_plane_state(nbeam2d_st);
    case Task::print_trial_state:
        return print_plane_state(trial_or_state(nbeam2d_trial, nbeam2d_st));
    default:
        return; // no work for a plane beam; mesh files do not hold this type
    }
}

// --- help ---------------------------------------------------------------------------------------

std::string_view nbeam2d_help() {
    return "Command Syntax\n\tnbeam2d  m=?  n=?  [nl=?]  [-xy]  [-xz]  [-yz]\n\t"
           "   m=matl  e=emodulus  [g=gmodulus]  [mbar=density]  [mxy=mx,my]  [mI=mI]  [wbar=wbar]  "
           "a=area  i=moi  [as=as]  [Cm=cmx,cmy]  [Cd=cdx,cdy]\n\t"
           "   n=nel  mat=mat  nodes=node1,node2  [print=print]  [gen=gen  inc=inc]  "
           "[tension=tension]  [-xy]  [-xz]  [-yz]\n\t   (blank line)\n\n"
           "Input of elastic plane beams with large displacements and small strains. Each lies in a "
           "plane parallel to one global coordinate plane.\n\n"
           "m\n\tOn the command line the number of materials, each of which takes one material "
           "record; on such a record its number, 1 to m.\n\n"
           "nl\n\tGroup code: 1 linear stiffness, 2 (the default) stiffness at the present "
           "displacements, with the geometric stiffness.\n\n"
           "-xy, -xz, -yz\n\tThe plane: on the command line of all elements (default -xy), on a "
           "record of its own.\n\n"
           "e, g, a, i\n\tModulus of elasticity, shear modulus, area, moment of inertia. Defaults are "
           "0.\n\n"
           "as\n\tShear area of the stiffness. 0 (the default) leaves the shear deformation out. The "
           "forces of the state are always those of a beam without shear deformation.\n\n"
           "mbar, mxy\n\tMass per unit length: the same in all directions, or along the element and "
           "across it. mbar wins unless it is negative. Defaults are 0. Half goes to each end; with "
           "unequal mx and my do not use form_m -diag.\n\n"
           "mI\n\tRotary inertia per unit length. Default is 0.\n\n"
           "wbar\n\tWeight per unit length, which acts along -Z in the planes X-Z and Y-Z as long as "
           "the state is found. Default is 0.\n\n"
           "Cm, Cd\n\tCoefficients of added mass and drag per unit length. Defaults are 0. They are "
           "kept with the material; wave loads are not available in this version.\n\n"
           "n\n\tOn the command line the number of elements; on a record the number of its element. A "
           "number out of range, here or of a material, ends the program; the database is saved first. "
           "A blank line ends the input.\n\n"
           "mat, nodes\n\tMaterial number and end nodes.\n\n"
           "print\n\tPrint code of the results: 0 printed (the default), otherwise not.\n\n"
           "gen, inc\n\tNumber of further elements, numbered n+1, n+2, ..., and the increment of both "
           "nodes from one to the next. Defaults are 0.\n\n"
           "tension\n\tAxial force of the first geometric stiffness, before there is a state. Default "
           "is 0.\n\n"
           "Example (a cantilever of 4 elements on nodes 1 to 5):\n\tnbeam2d m=1 n=4 -xz\n\t"
           "m=1 e=2.1e11 a=0.01 i=1e-5\n\tn=1 mat=1 nodes=1,2 gen=3 inc=1\n\t(blank line)\n\n"
           "Arrays created: .nbeam2d_mp(m,13) e, g, wbar, a, i, as, mx, my, mI, cmx, cmy, cdx, cdy; "
           ".nbeam2d_el(n,4) node1, node2, material, print code; .nbeam2d_len(n) original lengths; "
           ".nbeam2d_st(n,4) axial force, shear force, moments at node 1 and node 2; .nbeam2d_dir(n) "
           "planes, 1 X-Y, 2 X-Z, 3 Y-Z. The group code is in .elem_grp.\n\n"
           "See Also\n\tpnbeam2d\n\tbeam3d\n\tnsolve\n";
}

std::string_view pnbeam2d_help() {
    return "Command Syntax\n\tpnbeam2d\n\n"
           "Prints the materials and elements of nbeam2d: nodes, material, print code, plane, original "
           "length and axial force.\n\n"
           "The forces of a solution are printed by pstate and presponse: axial force, tension "
           "positive; shear force as it acts on node 1, to the left of the direction from node 1 to node 2; "
           "moments M1 and M2 of the section, M2 - M1 = shear force times length.\n\n"
           "Example:\n\tpnbeam2d\n\n"
           "See Also\n\tnbeam2d\n\tpstate\n";
}

} // namespace quelor
