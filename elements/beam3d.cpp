// The linear beam in space. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp`; writes the arrays of
// beam3d.hpp; adds to `.kstr`, `.mstr`, `.cstr`, `.f_internal` through the services of assembly.
#include "elements/beam3d.hpp"

#include "elements/element_family.hpp"
#include "elements/frame.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <optional>

namespace quelor {

namespace {

constexpr std::string_view title = "BEAM3D";

// --- material records ---------------------------------------------------------------------------

void read_beam_material(Matrix<double> mp, int number) {
    const auto get = [&](std::string_view key, int column) {
        get_real_par(key, mp(number, column));
    };
    const auto get_three = [&](std::string_view key, int column) {
        std::array<double, 3> v{mp(number, column), mp(number, column + 1), mp(number, column + 2)};
        get_real_par(key, v);
        for (int i = 0; i < 3; ++i)
            mp(number, column + i) = v[as_size(i)];
    };
    const auto fill_three = [&](double value, int column) {
        for (int i = 0; i < 3; ++i)
            mp(number, column + i) = value;
    };
    get("e=", beam_e);
    get("g=", beam_g);
    get("a=", beam_area);
    get("j=", beam_j);
    get("iy=", beam_iy);
    get("iz=", beam_iz);
    get("asy=", beam_asy);
    get("asz=", beam_asz);
    get_three("mI=", beam_mi);
    get_three("mxyz=", beam_mass);
    get_three("cxyz=", beam_damping);
    double density = -1;
    get_real_par("mbar=", density);
    if (!(density < 0)) fill_three(density, beam_mass);
    double& cdense = mp(number, beam_cdense);
    cdense = -1;
    get_real_par("cbar=", cdense);
    if (!(cdense < 0)) fill_three(cdense, beam_damping);
    if (mp(number, beam_g) == 0 && (mp(number, beam_asy) != 0 || mp(number, beam_asz) != 0))
        shutdown_with(" \n\tA shear area of BEAM3D needs the shear modulus g\n");
}

// --- element records ----------------------------------------------------------------------------

struct BeamRecord {
    std::int32_t n = no_key;
    std::array<std::int32_t, 2> nodes{};
    std::int32_t mat = 0, node3 = 0, print = 0, gen = 0, inc = 0, inc2 = 0;
    double tension = 0, tension_last = 0;
};

/// The next record; nothing at the end of the input.
std::optional<BeamRecord> next_beam_record() {
    next_record("Enter element data\n");
    BeamRecord r;
    get_int_par("n=", r.n);
    if (r.n == no_key) return std::nullopt;
    get_int_par("nodes=", r.nodes);
    get_int_par("mat=", r.mat);
    get_int_par("node3=", r.node3);
    get_int_par("print=", r.print);
    get_int_par("gen=", r.gen);
    get_int_par("inc=", r.inc);
    r.inc2 = r.inc;
    get_int_par("inc2=", r.inc2);
    get_real_par("tension=", r.tension);
    r.tension_last = r.tension;
    get_real_par("tension_last=", r.tension_last);
    return r;
}

void store_beam_record(const BeamRecord& r, int materials, Matrix<std::int32_t> el,
                       Matrix<double> st) {
    if (r.n < 1 || r.gen < 0 || std::int64_t{r.n} + r.gen > el.cols)
        shutdown_with(" \nElement out of range\n");
    require_number(r.mat, materials, beam3d_bad_material);
    require_finite(std::array{r.tension, r.tension_last}, "element " + std::to_string(r.n));
    const double step = r.gen > 0 ? (r.tension_last - r.tension) / r.gen : 0;
    for (int k = 0; k <= r.gen; ++k) {
        const int e = r.n + k;
        // A direction code in the place of node 3 stays as it is.
        const std::int32_t node3 = r.node3 < 0 ? r.node3 : advanced_node(r.node3, r.inc2, k);
        const std::array row{advanced_node(r.nodes[0], r.inc, k),
                             advanced_node(r.nodes[1], r.inc, k),
                             r.mat,
                             r.print,
                             node3,
                             e};
        std::ranges::copy(row, el.col(e).begin());
        set_beam_tension(st, e, r.tension + k * step);
    }
}

void read_beams() {
    const auto [m, n] = read_element_counts();
    if (!count_is_possible(title, m, 1) || !count_is_possible(title, n, 0)) return;
    const bool kg = has_flag(" -kg");
    for (const auto name : {beam3d_el, beam3d_mp, beam3d_len, beam3d_st, beam3d_trial, beam3d_kg})
        delete_array(name);
    create_int_scalar(beam3d_kg, kg ? 1 : 0);
    const auto mp = create_matrix<double>(beam3d_mp, m, beam3d_columns);
    read_materials(mp, "Enter material data\n", beam3d_bad_material,
                   [&](int number) { read_beam_material(mp, number); });
    Matrix<std::int32_t> el;
    Matrix<double> st;
    if (n > 0) {
        el = create_matrix<std::int32_t>(beam3d_el, 6, n);
        st = create_matrix<double>(beam3d_st, 12, n);
        create_matrix<double>(beam3d_len, n, 0);
    }
    while (const auto record = next_beam_record())
        store_beam_record(*record, m, el, st);
    if (n > 0)
        finish_beams(1);
    else
        set_element_group(beam3d_slot, 0); // nothing to be processed until a cylinder is made
}

// --- model --------------------------------------------------------------------------------------

/// The arrays of the type, checked against each other: material numbers are safe to use.
struct BeamModel {
    Matrix<const std::int32_t> el;
    Matrix<const double> mp;
    std::span<const double> len;
    bool geometric;

    std::span<const std::int32_t> nodes(int e) const { return el.col(e).first(2); }
    Vec3 three(int e, int column) const {
        const int mat = el(3, e);
        return {mp(mat, column), mp(mat, column + 1), mp(mat, column + 2)};
    }
};

BeamModel open_beams() {
    BeamModel m;
    m.el = element_matrix<std::int32_t>(beam3d_missing, beam3d_el, 6, any_size);
    m.mp = element_matrix<double>(beam3d_missing, beam3d_mp, any_size, beam3d_columns);
    m.len = element_vector<double>(beam3d_missing, beam3d_len, m.el.cols);
    m.geometric = element_matrix<std::int32_t>(beam3d_missing, beam3d_kg, 1, 1)(1) == 1;
    for (int e = 1; e <= m.el.cols; ++e)
        require_number(m.el(3, e), m.mp.rows, beam3d_bad_material);
    return m;
}

Matrix<const double> beam_state(std::string_view array, int n) {
    return element_matrix<double>(beam3d_missing, array, 12, n);
}

FrameSection section_of(const BeamModel& m, int e) {
    const int mat = m.el(3, e);
    return {.e = m.mp(mat, beam_e),
            .g = m.mp(mat, beam_g),
            .area = m.mp(mat, beam_area),
            .j = m.mp(mat, beam_j),
            .iy = m.mp(mat, beam_iy),
            .iz = m.mp(mat, beam_iz),
            .asy = m.mp(mat, beam_asy),
            .asz = m.mp(mat, beam_asz)};
}

double length_of(const BeamModel& m, int e) {
    const double length = m.len[nth(e)];
    if (!(length > 0)) shutdown_with(" \n\tZero element length-BEAM3D\n");
    return length;
}

/// Local axes of element e; the fatal path when its third node does not set them.
FrameAxes axes_of(Matrix<const std::int32_t> el, Matrix<const double> x, int e) {
    const Vec3 p1 = element_node(x, el(1, e));
    const std::int32_t code = el(5, e);
    Vec3 toward3{};
    if (code >= 1)
        toward3 = difference(element_node(x, code), p1);
    else if (code >= -3 && code <= -1)
        toward3[nth(-code)] = -1;
    const FrameAxes axes = frame_axes(difference(element_node(x, el(2, e)), p1), toward3);
    if (vector_length(axes[1]) == 0)
        shutdown_with(" \n\tNode 3 of BEAM3D element number " + std::to_string(e) +
                      " does not give the element's local axes\n");
    return axes;
}

/// Stiffness in local axes, with the tension of the state when there is a geometric stiffness.
SmallMatrix<12> local_stiffness(const BeamModel& m, Matrix<const double> st, int e) {
    const double length = length_of(m, e);
    SmallMatrix<12> k = frame_stiffness(section_of(m, e), length);
    if (m.geometric) add_frame_geometric(k, st(7, e), length);
    return k;
}

using BeamList = std::array<std::int32_t, 12>;

// --- matrices -----------------------------------------------------------------------------------

void beam_stiffness() {
    const BeamModel m = open_beams();
    const auto x = require_coordinates();
    const auto st = beam_state(beam3d_st, m.el.cols);
    const Equations equations = open_equations();
    GlobalMatrix global = open_stiffness(equations);
    BeamList list;
    for (int e = 1; e <= m.el.cols; ++e) {
        const FrameAxes axes = axes_of(m.el, x, e);
        element_equations(equations, m.nodes(e), all_six, list);
        add_stiffness(global, list, frame_to_global(local_stiffness(m, st, e), axes).view());
    }
}

bool all_equal(const Vec3& v) {
    return v[0] == v[1] && v[0] == v[2];
}

/// Mass or damping, lumped in local axes.
/// rotary  in  first column of the rotary terms, 0 for none
void beam_lumped(GlobalMatrix (*open)(const Equations&), int translation, int rotary,
                 bool diagonal) {
    const BeamModel m = open_beams();
    const auto x = require_coordinates();
    const Equations equations = open_equations();
    GlobalMatrix global = open(equations);
    BeamList list;
    bool valid = true;
    for (int e = 1; e <= m.el.cols; ++e) {
        const Vec3 t = m.three(e, translation);
        const Vec3 r = rotary != 0 ? m.three(e, rotary) : Vec3{};
        const auto matrix =
            frame_to_global_diagonal(frame_lumped(t, r, length_of(m, e)), axes_of(m.el, x, e));
        element_equations(equations, m.nodes(e), all_six, list);
        if (diagonal)
            add_mass(global, list, diagonal_of(matrix));
        else
            add_mass(global, list, matrix.view());
        valid = valid && all_equal(t) && all_equal(r);
    }
    if (diagonal && !valid)
        print_both(
            " \n\tA diagonal mass or damping matrix is not valid for BEAM3D: values differ by direction\n");
}

// --- state --------------------------------------------------------------------------------------

void beam_trial_state() {
    const BeamModel m = open_beams();
    const auto x = require_coordinates();
    const auto st = beam_state(beam3d_st, m.el.cols);
    const Equations equations = open_equations();
    const Displacements u = open_displacements(equations);
    const auto trial = trial_array(beam3d_trial, 12, m.el.cols);
    GlobalVector internal = open_internal_force(equations);
    BeamList list;
    std::array<double, 12> ue{};
    for (int e = 1; e <= m.el.cols; ++e) {
        const FrameAxes axes = axes_of(m.el, x, e);
        element_equations(equations, m.nodes(e), all_six, list);
        element_displacements(u, list, ue);
        const auto force = product(local_stiffness(m, st, e), frame_to_local(ue, axes));
        std::ranges::copy(force, trial.col(e).begin());
        add_internal_force(internal, list, frame_to_global(force, axes));
    }
}

// --- printing -----------------------------------------------------------------------------------

void print_beam_materials(Matrix<const double> mp) {
    const auto put = [&](const Format& row, int i, std::initializer_list<int> columns) {
        FormatItems items{i};
        for (const int c : columns)
            items.add(mp(i, c));
        write_both(row, items);
    };
    write_both(
        "(' MAT', /, ' NO.', 5x, 'MODULUS', 4x, 'G-MODULUS', 8x, 'AREA', 11x, 'J', 10x, 'IY', 10x, 'IZ', 9x, 'ASY', 9x, 'ASZ')");
    for (int i = 1; i <= mp.rows; ++i)
        put("(i4, 1p8e12.4)", i, {1, 2, 4, 5, 6, 7, 8, 9});
    write_both(
        "(/, ' MAT', /, ' NO.', 10x, 'MX', 10x, 'MY', 10x, 'MZ', 8x, 'MIXX', 8x, 'MIYY', 8x, 'MIZZ', 10x, 'CX', 10x, 'CY', 10x, 'CZ')");
    for (int i = 1; i <= mp.rows; ++i)
        put("(i4, 1p9e12.4)", i, {13, 14, 15, 10, 11, 12, 17, 18, 19});
}

void print_beams() {
    if (!array_exists(beam3d_el)) shutdown_with(beam3d_none);
    const BeamModel m = open_beams();
    const auto st = beam_state(beam3d_st, m.el.cols);
    print_beam_materials(m.mp);
    write_both(
        "(/, ' ELEMENT  NODE-1  NODE-2    MATL   PRINT  NODE-3     ID#', 6x, 'LENGTH', 5x, 'TENSION')");
    for (int e = 1; e <= m.el.cols; ++e)
        write_both("(7(i6,2x), 1p2e12.5)", {e, m.el.col(e), m.len[nth(e)], st(7, e)});
}

/// On the output file, the elements with print code 0. Tension positive; shear force positive along
/// the local axis at node 1; torque and moments as they act on the section toward node 2.
void print_beam_state(std::string_view array) {
    const BeamModel m = open_beams();
    const auto st = beam_state(array, m.el.cols);
    write_unit(
        unit_output,
        "(/, '     LINEAR BEAM ELEMENT STATE', /, ' ELEMENT    NODE', 7x, 'AXIAL', 10x, 'VY', 10x, 'VZ', 6x, 'TORQUE', 10x, 'MY', 10x, 'MZ')");
    const auto reversed = [&](int i, int e) { return 0 - st(i, e); }; // a zero stays positive
    for (int e = 1; e <= m.el.cols; ++e) {
        if (m.el(4, e) != 0) continue;
        write_unit(unit_output, "(2(i6,2x), 1p6e12.4)",
                   {e, m.el(1, e), reversed(1, e), st(2, e), st(3, e), reversed(4, e),
                    reversed(5, e), reversed(6, e)});
        write_unit(unit_output, "(8x, i6, 2x, 1p6e12.4)",
                   {m.el(2, e), st(7, e), reversed(8, e), reversed(9, e), st(10, e), st(11, e),
                    st(12, e)});
    }
}

} // namespace

// --- services of the generation -----------------------------------------------------------------

void set_beam_tension(Matrix<double> st, int e, double tension) {
    st(1, e) = 0 - tension;
    st(7, e) = tension;
}

void finish_beams(int first) {
    const ArrayRef nodes = find_array(xyz);
    if (!nodes.is(type_real)) shutdown_with(" \n\tGlobal coordinates not found\n");
    const auto el = as_matrix<std::int32_t>(find_array(beam3d_el));
    check_element_nodes(title, el, 2);
    const auto x = as_matrix<const double>(nodes);
    const auto len = as_span<double>(find_array(beam3d_len));
    for (int e = first; e <= el.cols; ++e)
        len[nth(e)] =
            vector_length(difference(element_node(x, el(2, e)), element_node(x, el(1, e))));
    require_finite(len, "the element lengths");
    check_element_lengths(title, len);
    for (int e = first; e <= el.cols; ++e) {
        if (el(5, e) >= 1) node_coordinates(el(5, e)); // must be defined
        axes_of(el, x, e);
    }
    set_element_group(beam3d_slot, 1);
}

// --- protocol -----------------------------------------------------------------------------------

void beam3d_element(Request request) {
    const Task task = task_of(request);
    switch (task) {
    case Task::input:
        return has_flag(" -cylinder") ? generate_cylinder() : read_beams();
    case Task::column_heights:
        return add_all_column_heights(open_beams().el, 2, all_six);
    case Task::connectivity:
        return elem_conn0(element_matrix<std::int32_t>(beam3d_missing, beam3d_el, 6, any_size), 2);
    case Task::stiffness:
        return beam_stiffness();
    case Task::mass:
    case Task::mass_diagonal:
        return beam_lumped(open_mass, beam_mass, beam_mi, task == Task::mass_diagonal);
    case Task::damping:
    case Task::damping_diagonal:
        return beam_lumped(open_damping, beam_damping, 0, task == Task::damping_diagonal);
    case Task::trial_state:
        return beam_trial_state();
    case Task::commit_state:
        return commit_state(beam3d_trial, beam3d_st);
    case Task::print_input:
        return print_beams();
    case Task::print_state:
    case Task::print_response:
        return print_beam_state(beam3d_st);
    case Task::print_trial_state:
        return print_beam_state(trial_or_state(beam3d_trial, beam3d_st));
    default:
        return; // no work for a beam
    }
}

// --- help ---------------------------------------------------------------------------------------

std::string_view beam3d_help() {
    return "Command Syntax\n\tbeam3d  m=?  n=?  [-kg]\n\t"
           "   m=matl  e=emodulus  g=gmodulus  a=area  j=jsec  iy=iyy  iz=izz  [asy=asy  asz=asz]  "
           "[mbar=density  mxyz=mx,my,mz]  [mI=mIxx,mIyy,mIzz]  [cbar=cdense  cxyz=cx,cy,cz]\n\t"
           "   n=nel  mat=mat  nodes=node1,node2  node3=node3  [print=print]  [gen=gen  inc=inc  "
           "inc2=inc2]  [tension=tension  tension_last=tension_last]\n\t   (blank line)\n\t"
           "beam3d  -cylinder  mat=mat  node3=node3  [print=print]  p1=x1,y1,z1  p2=x2,y2,z2  "
           "R=R1,R2  CxL=Cseg,Lseg  [face=face]  [tension=tension_first]  "
           "[tension_last=tension_last]\n\n"
           "Input of linear two-node beams in space. Local x runs from node 1 to node 2, y is normal "
           "to x and to the direction from node 1 to node 3, z = x cross y: node 3 lies in the local "
           "x-z plane.\n\n"
           "m\n\tOn the command line the number of materials, each of which takes one material "
           "record; on such a record its number, 1 to m.\n\n"
           "-kg\n\tWith the geometric stiffness of the axial force in .beam3d_st, which is tension= "
           "until state replaces it.\n\n"
           "e, g, a, j\n\tModulus of elasticity, shear modulus, area, torsion constant. Defaults are "
           "0.\n\n"
           "iy, iz\n\tMoments of inertia about local y and z. Defaults are 0.\n\n"
           "asy, asz\n\tShear areas of forces along local y and z. 0 (the default) leaves the shear "
           "deformation out.\n\n"
           "mbar, mxyz\n\tMass per unit length: the same in all directions, or along local x, y, z. "
           "mbar wins unless it is negative. Defaults are 0.\n\n"
           "mI\n\tRotary inertia per unit length about local x, y, z. Defaults are 0.\n\n"
           "cbar, cxyz\n\tDamping per unit length, likewise.\n\n"
           "Half of mass and damping goes to each end. Where the values differ by direction the matrix "
           "is not diagonal in global axes: do not use form_m -diag or form_c -diag.\n\n"
           "n\n\tOn the command line the number of elements; on a record the number of its element. A "
           "number out of range, here or of a material, ends the program; the database is saved first. "
           "A blank line ends the input.\n\n"
           "mat, nodes\n\tMaterial number and end nodes.\n\n"
           "node3\n\tNumber of the third node; -1, -2 or -3 means a vector along the negative global "
           "X, Y or Z axis. It must not point along the element.\n\n"
           "print\n\tPrint code of the results: 0 printed (the default), otherwise not.\n\n"
           "gen, inc, inc2\n\tNumber of further elements, numbered n+1, n+2, ..., the increment of the "
           "end nodes from one to the next, and that of node3 (default inc; a direction code stays as "
           "it is).\n\n"
           "tension, tension_last\n\tAxial force of the first and, by linear steps, of the last "
           "generated element. Defaults are 0 and tension. Used with -kg alone.\n\n"
           "-cylinder\n\tGenerates Lseg beams from p1 to p2 and around each a ring of Cseg interface "
           "elements, with radii from R1 to R2, whose nodes are tied to the beam nodes by rigid links. "
           "face is the code of the interface elements. beam3d must have been entered before, if only "
           "with n=0, as must nodes, with room for the new ones, and bcid.\n\n"
           "Example (4 elements on nodes 1 to 5, not vertical):\n\tbeam3d m=1 n=4\n\t"
           "m=1 e=2.1e11 g=8.1e10 a=0.02 j=4e-4 iy=2e-4 iz=2e-4 mbar=157\n\t"
           "n=1 mat=1 nodes=1,2 node3=-3 gen=3 inc=1\n\t(blank line)\n\n"
           "Arrays created: .beam3d_mp(m,19) e, g, not used, a, j, iy, iz, asy, asz, mIxx, mIyy, mIzz, "
           "mx, my, mz, cbar, cx, cy, cz; .beam3d_el(6,n) node1, node2, material, print code, node3, "
           "ID#; .beam3d_len(n) lengths; .beam3d_st(12,n) end forces in local axes; .beam3d_kg. The "
           "group code is in .elem_grp.\n\n"
           "See Also\n\tpbeam3d\n\tinterface\n\tnodal_constraint\n\tnbeam2d\n\tform_k\n";
}

std::string_view pbeam3d_help() {
    return "Command Syntax\n\tpbeam3d\n\n"
           "Prints the materials and elements of beam3d: nodes, material, print code, third node, ID "
           "number, length and axial force.\n\n"
           "The forces of a solution are printed by pstate and presponse, at both ends in local axes: "
           "axial force, tension positive; shear forces, positive along the local axis where they act "
           "on node 1; torque and moments as they act on the section toward node 2, about the local "
           "axes.\n\n"
           "Example:\n\tpbeam3d\n\n"
           "See Also\n\tbeam3d\n\tpstate\n";
}

} // namespace quelor
