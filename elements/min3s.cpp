// The rows of the triangular shells, and their help.
#include "elements/min3s.hpp"

#include "elements/shell_help.hpp"

#include <string>

namespace quelor {

namespace {

constexpr ShellColumns columns{
    .axes = 12, .c_s = 13, .c_m = 14, .tbending = 15, .drill = 16, .fdensity = 17, .count = 17};
constexpr int min3s_increments[] = {1, 1, 3, 1, 2, 2};
constexpr int shell3_increments[] = {1, 1, 2};
constexpr std::string_view min3s_others[] = {".min3s_pressure", ".min3s_resp", ".min3s_xst",
                                             ".min3s_ruser",    ".min3s_err",  ".min3s_elerr"};
constexpr std::string_view shell3_others[] = {".shell3_pressure", ".shell3_resp"};

constexpr TriangleKind min3s_kind{
    .shell = {.slot = 8,
              .name = "min3s",
              .title = "MIN3S",
              .el = min3s_table.name,
              .mp = ".min3s_mp",
              .st = ".min3s_st",
              .trial = "$min3s_st",
              .rlx = ".min3s_rlx",
              .others = min3s_others,
              .missing = min3s_missing,
              .out_of_range = " \n\tElement out of range - MIN3S\n",
              .rows = 9,
              .nodes = 6,
              .increments = min3s_increments,
              .columns = columns,
              .axes_key = " global=",
              .c_s = 0.5,
              .drill_key = true},
    .triangles = 1,
    .midnodes = true,
    .both_faces = true,
    .pressure = ".min3s_pressure",
    .resp = ".min3s_resp",
    .points = "min3s_lc",
    .average = {},
    .needs_pressure = " \nHydrostatic stiffness requires -pressure in min3s",
    .no_load_pressure = " \n\tNodal pressure data not found in min3s\n",
    .no_stiffness_pressure = " \n\tGlobal nodal pressures information not found in min3s_stiff\n"};

constexpr TriangleKind shell3_kind{
    .shell = {.slot = 31,
              .name = "shell3",
              .title = "SHELL3",
              .el = ".shell3_el",
              .mp = ".shell3_mp",
              .st = ".shell3_st",
              .trial = "$shell3_st",
              .rlx = ".shell3_rlx",
              .others = shell3_others,
              .missing = shell3_missing,
              .out_of_range = " \n\tElement out of range - SHELL3\n",
              .rows = 6,
              .nodes = 3,
              .increments = shell3_increments,
              .columns = columns,
              .axes_key = " global=",
              .c_s = 0.5,
              .drill_key = false},
    .triangles = 1,
    .midnodes = false,
    .both_faces = true,
    .pressure = ".shell3_pressure",
    .resp = ".shell3_resp",
    .points = "shell3_lc",
    .average = {},
    .needs_pressure = " \nHydrostatic stiffness requires -pressure in shell3",
    .no_load_pressure = " \n\tNodal pressure data not found in shell3\n",
    .no_stiffness_pressure = " \n\tGlobal nodal pressures information not found in shell3_stiff\n"};

void serve(const TriangleKind& kind, Request request) {
    if (task_of(request) == Task::input) return read_triangle_shells(kind);
    serve_triangle_shells(kind, request);
}

} // namespace

void min3s_element(Request request) {
    serve(min3s_kind, request);
}

void shell3_element(Request request) {
    serve(shell3_kind, request);
}

// --- help ---------------------------------------------------------------------------------------

namespace {

constexpr std::string_view global_text =
    "global\n\t1: results along the global axes, which is right in the X-Y plane only. Default is 0. "
    "-kg and -kf need 0.\n\n";

constexpr std::string_view results_arrays_text =
    "; .@_rlx(2,n) factors of shear and membrane relaxation; .@_st(n,11) state at the centroid: x, y, "
    "z and ";

constexpr std::string_view response_text =
    "Where a real array @_lc(points,3) of area coordinates exists, response gives the same at these "
    "points of each element, .@_resp(points*n,11). The group code is in .elem_grp.\n\n";

} // namespace

std::string_view min3s_help() {
    static const std::string text = shell_text(
        {"Command Syntax\n\tmin3s  m=?  n=?  [-pressure]  [-kg]  [-kf]\n\t   ",
         shell_material_syntax,
         "  [global=global]  [C_s=C_s]  [C_m=C_m]  [tbending=tb]  [drill=drill]  "
         "[fdensity=fdensity]\n\t"
         "   n=nel  nodes=node1,...,node6  mat=mat  [print=print]  [face=face]  [gen=gen  "
         "inc=inc1,inc2,inc3]  [gen_2d=gen_2d  inc_2d=inc1,inc2,inc3  inc_el=inc_el]\n\t"
         "   (blank line)\n\n"
         "Input of triangular Mindlin shells, flat or shallow.\n\n",
         shell_axes_text,
         shell_flags_text,
         shell_materials_text,
         global_text,
         shell_c_s_text,
         shell_c_m_text,
         "On coarse meshes of curved elements C_m=1 is far too soft and C_m=0 too stiff: refine until "
         "both agree, or use C_m=0.\n\n",
         shell_tbending_text,
         shell_drill_text,
         shell_fdensity_text,
         shell_n_text,
         "nodes\n\tThe vertices 1 to 3, and for a curved element the nodes 4 to 6 on the surface over "
         "the middles of the edges 1-2, 2-3 and 1-3. They carry no degrees of freedom: restrain them "
         "(bcid). An element is curved when node 4 is not 0; a node 5 or 6 that is 0 then means an edge "
         "without rise. Rises count as positive: number the vertices so that z points to the side to "
         "which the surface bulges; a warning tells how many nodes lie on the other. inc1 is the "
         "increment of nodes 1, 2 and 4, inc2 of 5 and 6, inc3 of 3.\n\n",
         shell_mat_text,
         shell_face_text,
         shell_generation_text,
         shell_gravity_text,
         shell_weak_text,
         "Example (8 flat triangles on nodes 1 to 10, 5 in a row):\n\tmin3s m=1 n=8\n\t"
         "m=1 e=2.1e11,2.1e11,2.1e11 g=8.1e10,8.1e10,8.1e10 nu=0.3,0.3,0.3 t=0.01 mass=7850\n\t"
         "n=1 nodes=1,2,7 mat=1 gen=3 inc=1,0,1\n\tn=5 nodes=1,7,6 mat=1 gen=3 inc=1,0,1\n\t"
         "(blank line)\n\n"
         "Arrays created: .@_mp(m,17) e, g, nu, t, mass, global, C_s, C_m, tbending, drill, fdensity; "
         ".@_el(9,n) node1 to node6, material, print code, face; .@_pressure",
         results_arrays_text,
         shell_results_text,
         " ",
         response_text,
         "See Also\n\tpmin3s\n\tmin5s\n\tshell3\n\tnodal_pressure\n\thyd_convert_fea_mesh\n"},
        "min3s");
    return text;
}

std::string_view shell3_help() {
    static const std::string text = shell_text(
        {"Command Syntax\n\tshell3  m=?  n=?  [-pressure]  [-kg]  [-kf]\n\t   ",
         shell_material_syntax,
         "  [global=global]  [C_s=C_s]  [C_m=C_m]  [tbending=tb]  [fdensity=fdensity]\n\t"
         "   n=nel  nodes=node1,node2,node3  mat=mat  [print=print]  [face=face]  [gen=gen  "
         "inc=inc1,inc2]  [gen_2d=gen_2d  inc_2d=inc1,inc2  inc_el=inc_el]\n\t"
         "   (blank line)\n\n"
         "Input of triangular Mindlin shells: the element of min3s without its nodes between the "
         "vertices. It is always flat, so that C_m has no effect, is not drawn, and its wet faces do "
         "not become panels. The rotations about the normal are held as by drill=1.e-5 of min3s.\n\n",
         shell_axes_text,
         shell_flags_text,
         shell_materials_text,
         global_text,
         shell_c_s_text,
         shell_tbending_text,
         shell_fdensity_text,
         shell_n_text,
         "nodes\n\tThe vertices. inc1 is the increment of nodes 1 and 2, inc2 of node 3.\n\n",
         shell_mat_text,
         shell_face_text,
         shell_generation_text,
         shell_gravity_text,
         shell_weak_text,
         "Example (4 triangles on nodes 1 to 10, 5 in a row):\n\tshell3 m=1 n=4\n\t"
         "m=1 e=2.1e11,2.1e11,2.1e11 g=8.1e10,8.1e10,8.1e10 nu=0.3,0.3,0.3 t=0.01 mass=7850\n\t"
         "n=1 nodes=1,2,6 mat=1 gen=3 inc=1,1\n\t(blank line)\n\n"
         "Arrays created: .@_mp(m,17) e, g, nu, t, mass, global, C_s, C_m, tbending, drill, fdensity; "
         ".@_el(6,n) node1 to node3, material, print code, face; .@_pressure",
         results_arrays_text,
         shell_results_text,
         " ",
         response_text,
         "See Also\n\tpshell3\n\tmin3s\n\tmin5s\n\tnodal_pressure\n"},
        "shell3");
    return text;
}

std::string_view pmin3s_help() {
    static const std::string text =
        shell_text({shell_print_text, "See Also\n\tmin3s\n\tpstate\n\tpresponse\n"}, "min3s");
    return text;
}

std::string_view pshell3_help() {
    static const std::string text =
        shell_text({shell_print_text, "See Also\n\tshell3\n\tpstate\n\tpresponse\n"}, "shell3");
    return text;
}

} // namespace quelor
