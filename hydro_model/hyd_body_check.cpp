// Checks of a body's mesh against its symmetry, its volume by three projections, centre of
// buoyancy. Changes no array. Reads: the arrays of mesh_part.cpp, `.hyd_coordaxs`.
#include "hydro_model/hyd_body_check.hpp"

#include "hydro_model/mesh_part.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

namespace quelor {

namespace {

// --- nodes

/// Lists the active nodes on the wrong side of a plane of symmetry.
void check_nodes(const MeshPart& part, int body_sym) {
    bool headed = false;
    for (int node = part.nodes[0]; node <= part.nodes[1]; ++node) {
        if (part.active[nth(node)] != 'A') continue;
        const double x = part.xyz(1, node), y = part.xyz(2, node);
        if (!(y < 0.0) && !(body_sym == 2 && x < 0.0)) continue;
        if (!headed && body_sym == 1)
            write_both(
                "15(10x,'Warning: Possible coordinate error for single symmetry', /, 14x, ' Node  Y-coordinate')");
        if (!headed && body_sym == 2)
            write_both(
                "25(10x,'Warning: Possible coordinate error for double symmetry', /, 14x, ' Node  X-coordinate  Y-coordinate')");
        headed = true;
        if (body_sym == 1) {
            write_both("20(14x, i5, 1p2e14.4)", {node, y});
        } else {
            write_both("20(14x, i5, 1p2e14.4)", {node, x, y});
        }
    }
}

void report_nodes(const MeshPart& part, int body_sym) {
    write_both("5(6x,'Begin nodal coordinate check')");
    if (body_sym == 0) {
        write_both("10(10x, 'No restriction on nodal coordinates for zero symmetry')");
    } else {
        check_nodes(part, body_sym);
    }
    write_both("30(6x, 'End nodal coordinate check', /)");
}

// --- volume

struct BodyVolume {
    Vec3 projections; ///< volume by x, y and z projection, whole body
    double average, area;
    Vec3 buoyancy; ///< centre of buoyancy, inertial
};

/// The centre comes from the sums on the meshed part, where numerator and volume agree; in a plane
/// of symmetry its coordinate is 0.
BodyVolume body_volume(const VolumeSums& sums, int body_sym) {
    BodyVolume body{};
    for (std::size_t i = 0; i < 3; ++i)
        body.projections[i] = -sums.first[i];
    const double volume = (body.projections[0] + body.projections[1] + body.projections[2]) / 3;
    for (std::size_t i = 0; i < 3; ++i)
        body.buoyancy[i] = (0.0 - sums.second[i]) * 0.5 / volume; // 0 rather than -0
    if (body_sym >= 1) body.buoyancy[1] = 0.0;
    if (body_sym == 2) body.buoyancy[0] = 0.0;
    const double parts = body_sym == 0 ? 1.0 : body_sym == 1 ? 2.0 : 4.0;
    for (double& projection : body.projections)
        projection *= parts;
    body.average = volume * parts;
    body.area = sums.area * parts;
    return body;
}

void report_volume(const BodyVolume& body) {
    write_unit(
        unit_output,
        "10(6x, 'Volume Check', /, 10x, 'Volume by X-Projection.....................', 1pe15.4, /, 10x, 'Volume by Y-Projection.....................', 1e15.4, /, 10x, 'Volume by Z-Projection.....................', 1e15.4, /, 10x, 'Average Volume.............................', 1e15.4, //, 10x, 'Total Surface Area.........................', 1e15.4, /)",
        {body.projections[0], body.projections[1], body.projections[2], body.average, body.area});
}

void report_centers(const Vec3& buoyancy, const Vec3& gravity) {
    write_unit(
        unit_output,
        "20(6x, 'Center of Buoyancy in Inertial Coordinates', /, 10x, 'X-coordinate...............................', 1pe15.4, /, 10x, 'Y-coordinate...............................', 1e15.4, /, 10x, 'Z-coordinate...............................', 1e15.4, /)",
        {buoyancy[0], buoyancy[1], buoyancy[2]});
    write_unit(
        unit_output,
        "30(6x, 'Input Coordinates for Center of Gravity', /, 10x, 'X-coordinate...............................', 1pe15.4, /, 10x, 'Y-coordinate...............................', 1e15.4, /, 10x, 'Z-coordinate...............................', 1e15.4, /)",
        {gravity[0], gravity[1], gravity[2]});
    write_unit(
        unit_output,
        "40(6x, 'Difference Between Centers of Gravity and Buoyancy', /, 10x, 'X-difference...............................', 1pe15.4, /, 10x, 'Y-difference...............................', 1e15.4, /, 10x, 'Z-difference...............................', 1e15.4, /)",
        {gravity[0] - buoyancy[0], gravity[1] - buoyancy[1], gravity[2] - buoyancy[2]});
}

void cmd_hyd_body_check(std::string_view) {
    const MeshPart part = hyd_mesh_part();
    const BodyAxes axes = hyd_body_axes(part.body);
    std::int32_t body_sym = part.symmetry;
    get_int_par(" body_sym=", body_sym);
    if (body_sym < 0 || body_sym > 2) shutdown_with(" \n\tbody_sym should be 0, 1 or 2\n");
    write_both("10(/, '  Summary of Check for Body', i4, /)", {part.body});
    report_nodes(part, body_sym);
    const BodyVolume body = body_volume(volume_sums(part.panels, part.list), body_sym);
    report_volume(body);
    if (body.average == 0.0)
        return print_both(" \n\tThe volume is zero; there is no center of buoyancy\n");
    report_centers(body.buoyancy, {axes.xb, axes.yb, axes.zb + axes.zcg});
}

constexpr Command rows[] = {
    {.words = {"hyd_body_check"},
     .run = cmd_hyd_body_check,
     .summary = "checks on a body: mesh, volume, buoyancy",
     .help = "Command Syntax\n\thyd_body_check  [body=?]  [nodes=?,?]  [panels=?,?]  "
             "[body_sym=?]\n\n"
             "Perform some checks on the panel mesh. Nodes that do not fit the symmetry are "
             "listed; the volume by X-, Y- and Z-projection, the surface area, the center of "
             "buoyancy and its distance from the center of gravity are written to the output "
             "file. The three volumes of a closed mesh agree.\n\n"
             "body\n\tBody number; default 1.\n"
             "nodes\n\tFirst and last node of the body; default all nodes.\n"
             "panels\n\tFirst and last panel of the body; default all panels.\n"
             "\tbody_sym: 0 for a mesh of the entire body, 1 for half, 2 for a quarter of it; "
             "default the symmetry of hyd_parameters.\n\n"
             "For a single body no parameters are needed. For several bodies there is one command "
             "for each body with a mesh of its own. Volume and area are those of the entire body. "
             "No array is created or changed.\n\n"
             "Example: body 2 has panels 201 to 400 on nodes 251 to 500\n"
             "\thyd_body_check body=2 nodes=251,500 panels=201,400\n\n"
             "See Also\n\thyd_panel, hyd_coordaxs, hyd_rigid_modes\n"},
};

} // namespace

std::span<const Command> hyd_body_check_rows() {
    return rows;
}

} // namespace quelor
