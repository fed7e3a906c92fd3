// Commands of the nodes of the panel mesh. Reads `.hyd_symmetry`; writes the arrays of
// hyd_nodes.hpp.
#include "hydro_model/hyd_nodes.hpp"

#include "hydro_model/hyd_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

namespace quelor {

namespace {

/// A tolerance of the command line; 0.001 unless it is above, or with `zero_counts` at, 0.
double tolerance(std::string_view key, bool zero_counts) {
    double tol = 0.001;
    get_real_par(key, tol);
    return tol > 0 || (zero_counts && tol == 0) ? tol : 0.001;
}

/// True when the coordinate was moved to 0: it is not there and not further away than tol.
bool snap(double& coordinate, double tol) {
    if (coordinate == 0 || !(std::abs(coordinate) <= tol)) return false;
    coordinate = 0;
    return true;
}

/// Height z by a rule.
double height_by(HeightRule rule, double z, double tol, double depth) {
    if (rule == HeightRule::on_surface || std::abs(z) <= tol) return 0;
    if (rule == HeightRule::near_surface) return z;
    return z > 0 ? 0 : z + depth <= tol ? -depth : z;
}

/// Moves a node's height; true when it was not there. Every move is reported, but for those onto
/// the free surface from within the tolerance.
bool set_height(HeightRule rule, double tol, double depth, int n, double& z) {
    const double to = height_by(rule, z, tol, depth);
    if (z == to || std::isnan(to)) return false;
    if (rule == HeightRule::in_water && to != 0)
        write_both(
            "15(4x, 'WARNING: Node', i6, ' z-coordinate is ', 1pe12.4, '; changed to', e12.4)",
            {n, z, to});
    else if (rule != HeightRule::on_surface || !(std::abs(z) <= tol))
        write_both("10(4x, 'WARNING: Node', i6, ' z-coordinate is ', 1pe12.4, '; changed to 0.0')",
                   {n, z});
    z = to;
    return true;
}

} // namespace

void set_nodes_on_planes(const NodeKind& kind, HeightRule rule) {
    if (get_int(kind.count) < 1) return print_both(" \n\tNumber nodes < 1\n");
    const NodeSet set = open_nodes(kind);
    if (!set) return;
    const int symmetry = get_int(hyd_symmetry);
    if (symmetry < 0 || symmetry > 2) return print_both(" \n\tInvalid symmetry option\n");
    const double depth = rule == HeightRule::in_water ? get_real(hyd_depth) : 0;
    if (rule == HeightRule::in_water && !(depth > 0))
        return print_both(" \n\tA positive water depth must be given\n");
    const double z_tol = tolerance("z_tol=", rule == HeightRule::in_water);
    const double x_tol = tolerance("x_tol=", rule == HeightRule::in_water);
    const double y_tol = tolerance("y_tol=", rule == HeightRule::in_water);

    bool changed = false;
    for (int n = 1; n <= set.count; ++n) {
        if (!set.is_active(n)) continue;
        const auto [x, y, z] = set.at(n);
        changed |= set_height(rule, z_tol, depth, n, set.xyz(3, n));
        if (symmetry >= 1 && snap(set.xyz(2, n), y_tol)) {
            write_both(
                "20(4x, 'WARNING: Node', i6, ' y-coordinate is ', 1pe12.4, '; changed to 0.0')",
                {n, y});
            changed = true;
        }
        if (symmetry == 2 && snap(set.xyz(1, n), x_tol)) {
            write_both(
                "30(4x, 'WARNING: Node', i6, ' x-coordinate is ', 1pe12.4, '; changed to 0.0')",
                {n, x});
            changed = true;
        }
    }
    if (!changed) write_both("40(4x, 'No nodal coordinates were modified', /)", {});
}

std::span<const Command> hyd_nodes_rows() {
    static const NodeHelp help = node_help(hyd_mesh_nodes);
    static const std::array rows{
        Command{.words = {"hyd_nodes"},
                .run = [](std::string_view) { read_nodes(hyd_mesh_nodes); },
                .summary = "input of nodes of the panel mesh",
                .help = help.nodes},
        Command{.words = {"hyd_node_gen"},
                .run = [](std::string_view) { generate_nodes(hyd_mesh_nodes); },
                .summary = "generation of nodes of the panel mesh",
                .help = help.node_gen},
        Command{.words = {"phyd_nodes"},
                .run = [](std::string_view) { print_nodes(hyd_mesh_nodes); },
                .summary = "print nodes of the panel mesh",
                .help = help.print},
        Command{
            .words = {"hyd_node_tolerance"},
            .run =
                [](std::string_view) {
                    set_nodes_on_planes(hyd_mesh_nodes, HeightRule::near_surface);
                },
            .summary = "put nodes on the planes that they are close to",
            .help =
                "Command Syntax\n\thyd_node_tolerance  [z_tol=?]  [x_tol=?]  [y_tol=?]\n\n"
                "Puts nodes of the panel mesh that lie within a tolerance of the still-water "
                "plane z = 0 on it; with single or double symmetry (hyd_parameters) likewise "
                "the plane y = 0, and with double symmetry the plane x = 0. Each node that is "
                "changed is listed.\n\n"
                "z_tol, x_tol, y_tol\n\tTolerances. Defaults, also for values that are not above "
                "0, are 0.001.\n\n"
                "Example:\n\thyd_node_tolerance z_tol=0.01\n\n"
                "Array changed: .hyd_xyz. To be given before hyd_panel.\n\n"
                "See Also\n\thyd_nodes\n\thyd_panel\n\thyd_body_check\n"},
    };
    return rows;
}

} // namespace quelor
