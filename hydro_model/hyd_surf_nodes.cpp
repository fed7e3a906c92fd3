// Commands of the nodes of the free-surface mesh; the workers are those of the panel mesh.
#include "hydro_model/hyd_surf_nodes.hpp"

#include "hydro_model/hyd_nodes.hpp"

namespace quelor {

std::span<const Command> hyd_surf_nodes_rows() {
    static const NodeHelp help = node_help(hyd_surface_nodes);
    static const std::array rows{
        Command{.words = {"hyd_surf_nodes"},
                .run = [](std::string_view) { read_nodes(hyd_surface_nodes); },
                .summary = "input of nodes of the free-surface mesh",
                .help = help.nodes},
        Command{.words = {"hyd_surf_node_gen"},
                .run = [](std::string_view) { generate_nodes(hyd_surface_nodes); },
                .summary = "generation of nodes of the free-surface mesh",
                .help = help.node_gen},
        Command{.words = {"phyd_surf_nodes"},
                .run = [](std::string_view) { print_nodes(hyd_surface_nodes); },
                .summary = "print nodes of the free-surface mesh",
                .help = help.print},
        Command{
            .words = {"hyd_surf_node_tolerance"},
            .run =
                [](std::string_view) {
                    set_nodes_on_planes(hyd_surface_nodes, HeightRule::on_surface);
                },
            .summary = "put free-surface nodes on the water plane",
            .help =
                "Command Syntax\n\thyd_surf_node_tolerance  [z_tol=?]  [x_tol=?]  [y_tol=?]\n\n"
                "Puts all nodes of the free-surface mesh on the still-water plane z = 0; a node "
                "further away than z_tol is listed. With single or double symmetry "
                "(hyd_parameters) nodes within y_tol of the plane y = 0 are put on it, and with "
                "double symmetry those within x_tol of the plane x = 0.\n\n"
                "z_tol, x_tol, y_tol\n\tTolerances. Defaults, also for values that are not above "
                "0, are 0.001.\n\n"
                "Example:\n\thyd_surf_node_tolerance z_tol=0.01\n\n"
                "Array changed: .hyd_surf_xyz.\n\n"
                "See Also\n\thyd_surf_nodes\n\thyd_surf_panel\n"},
    };
    return rows;
}

} // namespace quelor
