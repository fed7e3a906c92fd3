// Nodes of the panel mesh: a list of their own, apart from the finite-element nodes.
#pragma once

#include "fem/node_family.hpp"

namespace quelor {

/// real (3, .hyd_#nodes_tot): coordinates; a column that no node uses is 0. Written by `hyd_nodes`,
/// `hyd_node_gen`, `hyd_node_tolerance`, `hyd_coord_trans` and `hyd_convert_fea_mesh`.
inline constexpr std::string_view hyd_xyz = ".hyd_xyz";
/// character (.hyd_#nodes_tot): 'A' for a defined node, blank otherwise.
inline constexpr std::string_view hyd_node_active = ".hyd_node_active";
/// integer: highest defined node number; highest node number that may be used.
inline constexpr std::string_view hyd_num_nodes = ".hyd_#nodes";
inline constexpr std::string_view hyd_num_nodes_tot = ".hyd_#nodes_tot";

/// The list of nodes of the panel mesh.
inline constexpr NodeKind hyd_mesh_nodes{
    "hyd_",        "nodes of the panel mesh", hyd_xyz, hyd_node_active,
    hyd_num_nodes, hyd_num_nodes_tot,         {}};

std::span<const Command> hyd_nodes_rows();

/// Where a tolerance command puts a node in height.
enum class HeightRule {
    near_surface, ///< within the tolerance of z = 0: on it
    on_surface,   ///< always on z = 0, with a warning beyond the tolerance
    in_water ///< outside -depth <= z <= 0, or within the tolerance of either plane: on the plane
};
/// Puts nodes that lie near the still-water plane or a plane of symmetry exactly on it: the command
/// of a list of nodes.
void set_nodes_on_planes(const NodeKind& kind, HeightRule rule);

} // namespace quelor
