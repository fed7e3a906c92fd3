// Finite-element nodes: their commands, and the services by which element input asks for
// coordinates or adds nodes.
#pragma once

#include "fem/bcid.hpp"
#include "fem/node_family.hpp"

namespace quelor {

// Written by `nodes`, `node_gen`, `merge_nodes` and the services below.
/// real (3, .#nodes_tot): coordinates; an undefined node's column is 0.
inline constexpr std::string_view xyz = ".xyz";
/// character (.#nodes_tot): 'A' for a defined node; anything else means undefined.
inline constexpr std::string_view node_active = ".node_active";
/// integer: highest defined node number; highest node number that may ever be used.
inline constexpr std::string_view num_nodes = ".#nodes";
inline constexpr std::string_view num_nodes_tot = ".#nodes_tot";

// Written by the numbering of equations; new nodes or restraints make them invalid.
inline constexpr std::string_view node_eqs = ".node_eqs";
inline constexpr std::string_view node_eq_order = ".node_eq_order";
inline constexpr std::string_view num_eqs = ".#eqs";

/// What a new list of nodes makes invalid.
inline constexpr std::array fe_node_stale{bcid, node_eqs, node_eq_order, num_eqs};
/// The list of finite-element nodes.
inline constexpr NodeKind fe_nodes{
    "",           "nodes of the finite-element model", xyz, node_active, num_nodes, num_nodes_tot,
    fe_node_stale};

std::span<const Command> nodes_rows();

/// Coordinates of node n. The fatal path when n is not in 1..`.#nodes` or not defined.
Vec3 node_coordinates(int n);
/// Lowest-numbered node whose coordinates each differ by no more than tol; 0 when there is none,
/// and when that node is not active.
int node_find(const Vec3& p, double tol);
/// Appends a node and returns its number, 0 when there is no room or no list. With bc_node > 0 it
/// takes that node's restraints, if there are any yet.
int node_add(const Vec3& p, int bc_node);
/// Numbers of the n + 1 nodes that split p1 p2 into equal parts; existing nodes (within 1e-8) are
/// used, missing ones added. 0, after a warning, where that failed.
void node_line_chain(const Vec3& p1, const Vec3& p2, int n, std::span<std::int32_t> out);

} // namespace quelor
