// Nodes of the panel mesh: a list of their own, apart from the finite-element nodes.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// real (3, .hyd_#nodes_tot): coordinates; a column that no node uses is 0. Written by `hyd_nodes`,
/// `hyd_node_gen`, `hyd_node_tolerance`, `hyd_coord_trans` and `hyd_convert_fea_mesh`.
inline constexpr std::string_view hyd_xyz = ".hyd_xyz";
/// character (.hyd_#nodes_tot): 'A' for a defined node, blank otherwise.
inline constexpr std::string_view hyd_node_active = ".hyd_node_active";
/// integer: highest defined node number; highest node number that may be used.
inline constexpr std::string_view hyd_num_nodes = ".hyd_#nodes";
inline constexpr std::string_view hyd_num_nodes_tot = ".hyd_#nodes_tot";

std::span<const Command> hyd_nodes_rows();

} // namespace quelor
