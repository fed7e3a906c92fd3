// The quadrilateral shell: input, subdivision, cylinder, inner nodes. Reads `.xyz`; writes the
// arrays of min5s_kind, new nodes; workspaces `$min5sdata`, `$min5s_subdivide`.
#include "elements/min5s.hpp"

#include "elements/cylinder.hpp"
#include "elements/shell_help.hpp"
#include "elements/shell_quad.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

namespace quelor {

namespace {

constexpr int increments[] = {1, 1, 2, 2, 3};
constexpr std::string_view others[] = {".min5s_pressure", ".min5s_op", ".min5s_code"};

constexpr TriangleKind min5s_kind{
    .shell = {.slot = 9,
              .name = "min5s",
              .title = "MIN5S",
              .el = min5s_table.name,
              .mp = ".min5s_mp",
              .st = ".min5s_st",
              .trial = "$min5s_st",
              .rlx = ".min5s_rlx",
              .others = others,
              .missing = min5s_missing,
              .out_of_range = " \n\tElement out of range - MIN5S\n",
              .rows = 9,
              .nodes = 5,
              .increments = increments,
              .columns = {.axes = 12,
                          .c_s = 13,
                          .c_m = 14,
                          .iso = 15,
                          .tbending = 16,
                          .drill = 17,
                          .fdensity = 18,
                          .count = 18},
              .axes_key = " local=",
              .c_s = 0.5,
              .drill_key = true,
              .id_row = min5s_table.number_row},
    .triangles = 4,
    .midnodes = false,
    .both_faces = false,
    .pressure = ".min5s_pressure",
    .resp = {},
    .points = {},
    .average = ".min5s_op",
    .needs_pressure = " \nHydrostatic stiffness requires -pressure in min5s",
    .no_load_pressure = " \n\tNodal pressure data not found in min5s\n",
    .no_stiffness_pressure = " \n\tGlobal nodal pressures information not found in min5s_stiff\n"};

enum Row { middle_row = 5, material_row = 6, print_row = 7, face_row = 8, id_row = 9 };
constexpr QuadTable min5s_quads{.el = min5s_table.name,
                                .title = "MIN5S",
                                .missing = min5s_missing,
                                .kept = "$min5sdata",
                                .parts = "$min5s_subdivide",
                                .rows = 9,
                                .id_row = id_row,
                                .middle_row = middle_row,
                                .triangles = false};

// --- inner nodes --------------------------------------------------------------------------------

ShellQuad quad_of(Matrix<const std::int32_t> el, Matrix<const double> x, int e) {
    return shell_quad(element_coordinates<4>(x, el.col(e)));
}

/// Four different corners that enclose an area without a dent; otherwise each bad element is named,
/// and the fatal path taken.
void check_quads(Matrix<const std::int32_t> el, Matrix<const double> x) {
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        if (el(4, e) != 0 && el(4, e) != el(3, e)) continue;
        write_both("(/, 4x, 'MIN5S element ID', i10, ' is a triangle; use min3s')",
                   {el(id_row, e)});
        good = false;
    }
    end_of_shell_check(good);
    check_element_nodes_nonzero("MIN5S", el, 4);
    for (int e = 1; e <= el.cols; ++e) {
        const ShellQuad q = quad_of(el, x, e);
        if (q.valid) continue;
        name_bad_quad(min5s_kind.shell, q, el(id_row, e));
        good = false;
    }
    end_of_shell_check(good);
}

/// Finds or makes the inner nodes that are 0, and checks those that have been given.
void complete_inner_nodes(Matrix<std::int32_t> el) {
    constexpr double warped = 1e-3, wrong = 1e-6; // of the root of the area
    NodePlacer placer;
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        const ShellQuad q = quad_of(el, require_coordinates(), e);
        const double side = std::sqrt(q.area);
        if (q.warp > warped * side)
            write_both("(' Warning: element', i6, ' is warped')", {el(id_row, e)});
        std::int32_t& node = el(middle_row, e);
        if (node == 0) {
            node = placer.at(q.middle, el(1, e));
            if (node == 0) print_both(" \nInterior node generation failed; using zero\n");
        } else if (vector_length(difference(element_node(require_coordinates(), node), q.middle)) >
                   wrong * side) {
            write_both("(' Error: Element ID', i10, ' has incorrect node5 value')",
                       {el(id_row, e)});
            good = false;
        }
    }
    end_of_shell_check(good);
    check_element_nodes_nonzero("MIN5S", el, 5);
    if (placer.added() == 0) return;
    delete_array(node_eqs);
    delete_array(num_eqs);
    write_both(
        "(5x, i0, ' inner nodes of MIN5S added, with the restraints of node 1 of their elements; bcid may follow')",
        {placer.added()});
}

/// Everything about the elements that follows from the table; the state is zero.
void finish_min5s(int code) {
    const auto el = as_matrix<std::int32_t>(find_array(min5s_table.name));
    check_quads(el, require_coordinates());
    complete_inner_nodes(el);
    for (const auto name : {min5s_kind.shell.rlx, min5s_kind.shell.trial, min5s_kind.average})
        delete_array(name);
    finish_triangle_shells(min5s_kind, el.cols, code);
}

/// integer: group code that the input has asked for, also while there are no elements yet.
constexpr std::string_view min5s_code = ".min5s_code";
int present_code() {
    return array_exists(min5s_code) ? get_int(min5s_code) : shell_linear;
}

// --- input --------------------------------------------------------------------------------------

void read_min5s() {
    const auto input = begin_triangle_shells(min5s_kind, 0);
    if (!input) return;
    const auto [m, n] = input->counts;
    create_int_scalar(min5s_code, input->code);
    set_element_group(min5s_kind.shell.slot, 0);
    if (n == 0) return; // nothing to be processed until a cylinder is made
    const auto el = create_matrix<std::int32_t>(min5s_table.name, min5s_quads.rows, n);
    while (const auto record = next_shell_record(min5s_kind.shell, m))
        store_shells(min5s_kind.shell, *record, el, [&](int e) {
            el(face_row, e) = record->face;
            el(id_row, e) = e;
        });
    if (!compact_quads(min5s_quads)) return print_both(" \n\tNo elements defined - MIN5S\n");
    finish_min5s(input->code);
}

// --- subdivision --------------------------------------------------------------------------------

std::vector<std::int32_t> inner_nodes() {
    const auto el = open_quads(min5s_quads);
    std::vector<std::int32_t> nodes;
    for (int e = 1; e <= el.cols; ++e)
        nodes.push_back(el(middle_row, e));
    return nodes;
}

/// Fixes those of the nodes that no element uses any more.
void fix_unused(std::span<const std::int32_t> nodes) {
    const ArrayRef ref = find_array(bcid);
    if (!ref.is(type_integer)) return;
    elem_call({1, 0, 1}, 0);
    auto used = take_connectivity().nodes;
    std::ranges::sort(used);
    const auto codes = as_matrix<std::int32_t>(ref);
    for (const std::int32_t n : nodes)
        if (1 <= n && n <= codes.cols && !std::ranges::binary_search(used, n))
            std::ranges::replace(codes.col(n), 0, 1);
}

void subdivide_min5s() {
    const auto before = inner_nodes();
    if (!subdivide_quads(min5s_quads)) return;
    finish_min5s(present_code());
    fix_unused(before);
}

// --- cylinder -----------------------------------------------------------------------------------

/// What the command line asks for beside the shape.
struct ShellCylinder {
    Cylinder shape;
    std::int32_t n = 0, mat = 0, print = 0, face = 0;
    bool ring_stiffeners = has_flag(" -ring_stiffeners"), spine = has_flag(" -spine");
    std::int32_t ring_segments = 0;
    CylinderBeams ring{}, axis{};
};

ShellCylinder read_shell_cylinder() {
    ShellCylinder c{.shape = read_cylinder()};
    get_int_par(" n=", c.n);
    get_int_par(" mat=", c.mat);
    get_int_par(" print=", c.print);
    get_int_par(" face=", c.face);
    get_int_par(" LRseg=", c.ring_segments);
    get_int_par(" ring_mat=", c.ring.mat);
    get_int_par(" ring_node3=", c.ring.node3);
    get_int_par(" spine_mat=", c.axis.mat);
    get_int_par(" spine_node3=", c.axis.node3);
    get_real_par(" tension_first=", c.axis.tension);
    c.axis.tension_last = c.axis.tension;
    get_real_par(" tension_last=", c.axis.tension_last);
    c.ring.print = c.axis.print = c.print;
    return c;
}

/// Checks of the beams and of the new ID numbers; false after a message.
bool shell_cylinder_is_possible(const ShellCylinder& c, std::int32_t last_id) {
    if (c.n < 1 || c.n <= last_id)
        return print_both(" \n\tn must be above the ID numbers of the elements at hand\n"), false;
    const std::int64_t elements = std::int64_t{c.shape.around()} * c.shape.along();
    if (!cylinder_is_possible(c.shape, c.spine, elements)) return false;
    if (c.n + elements > most_elements)
        return print_both(" \n\tNumber of segments of cylinder not possible\n"), false;
    if (!std::isfinite(c.axis.tension + c.axis.tension_last))
        return print_both(" \n\tRadii, points or tensions of cylinder not possible\n"), false;
    if (c.ring_stiffeners && (c.ring_segments < 1 || c.shape.along() % c.ring_segments != 0))
        return print_both(" \n\tLseg must be a multiple of LRseg\n"), false;
    return true;
}

/// The third node of the axis: that of the spine, or a direction that is not along the axis.
std::int32_t start_of_rings(const ShellCylinder& c) {
    if (c.axis.node3 != 0) return c.axis.node3;
    const Vec3 axis = direction_cosines(c.shape.p1, c.shape.p2).vector;
    return std::abs(axis[2]) > 0.999 ? -1 : -3;
}

void append_min5s(const ShellCylinder& c, const Rings& rings) {
    const int around = c.shape.around(), extra = around * c.shape.along();
    const auto el = append_columns<std::int32_t>(min5s_table.name, min5s_quads.rows, extra);
    for (int i = 0; i < extra; ++i) {
        const int e = el.cols - extra + i + 1;
        std::ranges::copy(rings.quad(i / around, i % around), el.col(e).begin());
        el(material_row, e) = c.mat;
        el(print_row, e) = c.print;
        el(face_row, e) = c.face;
        el(id_row, e) = c.n + i;
    }
}

void generate_shell_cylinder() {
    const ShellCylinder c = read_shell_cylinder();
    const auto mp = element_matrix<double>(min5s_missing, min5s_kind.shell.mp, any_size,
                                           min5s_kind.shell.columns.count);
    require_number(c.mat, mp.rows, " \n\n\tMaterial number not possible\n");
    if (c.ring_stiffeners) require_beam_material(c.ring.mat);
    if (c.spine) require_beam_material(c.axis.mat);
    const bool present = array_exists(min5s_table.name);
    const int code = present_code();
    if (!shell_cylinder_is_possible(c,
                                    present ? largest_in_row(open_quads(min5s_quads), id_row) : 0))
        return;
    const LocalAxes axes = cylinder_axes(c.shape, start_of_rings(c));
    if (vector_length(axes[0]) == 0) return;
    const auto spine = c.spine ? spine_nodes(c.shape) : std::vector<std::int32_t>{};
    const Rings rings(c.shape, axes);
    append_min5s(c, rings);
    finish_min5s(code);
    if (c.spine) append_spine(c.shape, spine, rings, c.axis);
    if (c.ring_stiffeners)
        append_ring_beams(c.shape, rings, c.shape.along() / c.ring_segments, c.ring);
}

} // namespace

// --- protocol -----------------------------------------------------------------------------------

void min5s_element(Request request) {
    if (task_of(request) != Task::input) return serve_triangle_shells(min5s_kind, request);
    if (has_flag(" -subdivide")) return subdivide_min5s();
    if (has_flag(" -cylinder")) return generate_shell_cylinder();
    read_min5s();
}

// --- help ---------------------------------------------------------------------------------------

std::string_view min5s_help() {
    static const std::string text = shell_text(
        {"Command Syntax\n\tmin5s  m=?  n=?  [-pressure]  [-kg]  [-kf]\n\t   ",
         shell_material_syntax,
         "  [local=local]  [C_s=C_s]  [C_m=C_m]  [iso=iso]  [tbending=tb]  [drill=drill]  "
         "[fdensity=fdensity]\n\t"
         "   n=nel  nodes=node1,...,node4[,node5]  mat=mat  [print=print]  [face=face]  [gen=gen  "
         "inc=inc1,inc2,inc3]  [gen_2d=gen_2d  inc_2d=inc1,inc2,inc3  inc_el=inc_el]\n\t"
         "   (blank line)\n\t"
         "min5s  -subdivide  range=?,?  nxm=?,?\n\t"
         "min5s  -cylinder  n=nel  mat=mat  [print=print]  [face=face]  p1=x1,y1,z1  p2=x2,y2,z2  "
         "R=R1,R2  CxL=Cseg,Lseg  [-ring_stiffeners  LRseg=LRseg  ring_mat=ring_mat  "
         "ring_node3=ring_node3]  [-spine  spine_mat=spine_mat  spine_node3=spine_node3  "
         "tension_first=tension_first  tension_last=tension_last]\n\n"
         "Input of quadrilateral Mindlin shells. Each is made of the four flat triangles 1-2-5, 2-3-5, "
         "3-4-5 and 4-1-5 of min3s around a node 5, which has degrees of freedom like any other. Local "
         "axes are those of the first triangle: x from node 1 to node 2, z by the right hand, so that "
         "corners run counterclockwise seen from +z.\n\n",
         shell_flags_text,
         shell_materials_text,
         shell_iso_text,
         "local\n\tAxes of the results: 0 (the default) those of the element, 1 those of each triangle, "
         "which -kg and -kf need. .min5s_op then averages values in different axes.\n\n",
         shell_c_s_text,
         shell_c_m_text,
         shell_tbending_text,
         shell_drill_text,
         shell_fdensity_text,
         "n\n\tOn the command line the largest element number (ID), or 0 when a cylinder is to follow; "
         "on a record the ID of its element. IDs need not be sequential. A number out of range ends the "
         "program; the database is saved first. A blank line ends the input.\n\n"
         "nodes\n\tFour corners, and node 5 where the diagonals cross, or in the middle between them "
         "when the element is warped, which gives a warning. Where node 5 is left out, the node at its "
         "place is used or one is made with the restraints of node 1. On a support or a line of symmetry "
         "these are wrong for it, and the model is far too stiff: enter min5s before bcid. A node 5 at "
         "another place, a triangle and an element that is not convex end the program; the database is "
         "saved first.\n\n",
         shell_mat_text,
         "face\n\t0 dry (the default), 1 wet on the side of +z, -1 on the other. Pressure pushes against "
         "the wet face; -kf takes face 1 only. hyd_convert_fea_mesh makes panels of wet faces.\n\n"
         "gen, inc\n\tNumber of further elements, n+1, n+2, ..., and the increments of their nodes: inc1 "
         "of nodes 1 and 2, inc2 of 3 and 4, inc3 of 5. Defaults are 0.\n\n"
         "gen_2d, inc_2d, inc_el\n\tNumber of further such sequences, the increments of nodes from one "
         "to the next, and that of the IDs (default gen+1).\n\n"
         "Pressures must be given (nodal_pressure) when all nodes are there: after min5s and its "
         "subdivision, for the nodes inside need them too.\n\n"
         "-subdivide\n\tReplaces the elements with IDs range=first,last by n by m elements each, n in the "
         "1-2 direction and m in the 1-4 direction. Nodes that are at the place are used, missing ones "
         "are added. The first part keeps the ID, the others take the numbers after the largest in use. A "
         "former node 5 without elements is fixed.\n\n"
         "-cylinder\n\tGenerates Cseg elements around and Lseg along the axis from p1 to p2, with radii "
         "from R1 to R2, IDs from n= on; nodes 1 and 2 lie along the axis and z points inward. The rings "
         "start on local z of a beam along the axis with the third node spine_node3 (default -3, or -1 "
         "for an axis along Z). -ring_stiffeners adds beams (beam3d) around the rings that divide the "
         "length into LRseg equal parts, -spine beams along the axis, to whose nodes the rings are tied "
         "by rigid links. min5s must have been entered before, if only with n=0, as must nodes, with room "
         "for the new ones, and for the beams beam3d; for the spine bcid too.\n\n",
         shell_gravity_text,
         shell_weak_text,
         "Example (8 elements on nodes 1 to 15, 5 in a row; one edge fixed):\n\tmin5s m=1 n=8\n\t"
         "m=1 e=2.1e11 g=8.1e10 nu=0.3 t=0.01 mass=7850\n\t"
         "n=1 nodes=1,2,7,6 mat=1 gen=3 inc=1,1 gen_2d=1 inc_2d=5,5\n\t(blank line)\n\t"
         "bcid\n\tn=1 r=1,1,1,1,1,1\n\tn=5 r=1,1,1,1,1,1 inc=1\n\t(blank line)\n\n"
         "Arrays created: .min5s_mp(m,18) e, g, nu, t, mass, local, C_s, C_m, iso, tbending, drill, "
         "fdensity; .min5s_el(9,number of elements) node1 to node5, material, print code, face, ID#, one "
         "column a defined element; .min5s_pressure, .min5s_code; .min5s_rlx(8,n) factors of shear and "
         "membrane relaxation of each triangle; .min5s_st(4*n,11) state at the centroid of each triangle: "
         "x, y, z and ",
         shell_results_text,
         " .min5s_op(n,11) their mean. The group code is in .elem_grp.\n\n"
         "See Also\n\tpmin5s\n\tmin3s\n\tmin4t\n\tbeam3d\n\tnodal_pressure\n\thyd_convert_fea_mesh\n"},
        "min5s");
    return text;
}

std::string_view pmin5s_help() {
    static const std::string text =
        shell_text({shell_print_text, "See Also\n\tmin5s\n\tpstate\n\tpresponse\n"}, "min5s");
    return text;
}

} // namespace quelor
