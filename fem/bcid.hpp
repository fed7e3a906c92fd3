// Restraints of the finite-element nodes.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// integer (.#dofs_per_node, .#nodes_tot): code of each degree of freedom: 0 free, 1 fixed, 2 set
/// by `nodal_constraint`, -m shares the equation of node m, any other positive value fixed.
/// Written by `bcid`, `merge_nodes`.
inline constexpr std::string_view bcid = ".bcid";
/// integer (.#nodes_tot): 1 when `pdisp` prints the node, 0 when not. Written by `bcid`.
inline constexpr std::string_view bcid_print = ".bcid_print";
/// integer: degrees of freedom a node, at least 6. Written by `bcid`.
inline constexpr std::string_view num_dofs_per_node = ".#dofs_per_node";
/// integer: print code of nodes that have none of their own. Written by `bcid`.
inline constexpr std::string_view node_print = ".node_print";

std::span<const Command> bcid_rows();

} // namespace quelor
