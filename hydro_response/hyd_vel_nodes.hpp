// Velocities of the water: the points where they are wanted, their computation and their table.
#pragma once

#include "fem/node_family.hpp"

#include <array>

namespace quelor {

/// real (3, .hyd_#vel_nodes_tot): coordinates; a node that was not entered lies at the origin.
inline constexpr std::string_view hyd_vel_xyz = ".hyd_vel_xyz";
/// integer: highest defined node number, 1 to which all count as defined; highest that may be used.
inline constexpr std::string_view hyd_num_vel_nodes = ".hyd_#vel_nodes";
inline constexpr std::string_view hyd_num_vel_nodes_tot = ".hyd_#vel_nodes_tot";

// Written by `hyd_velocity`.
/// real (3): distances from a node to the points of the differences.
inline constexpr std::string_view hyd_vel_del = ".hyd_vel_del";
/// real (3, 6 nodes): the points about each node, +x, -x, +y, -y, +z, -z.
inline constexpr std::string_view hyd_vel6_xyz = ".hyd_vel6_xyz";
/// complex (6 nodes, nfreq, nbeta): their potentials; kept on request.
inline constexpr std::string_view hyd_vel6pot = ".hyd_vel6pot";
/// complex (3, nodes, nfreq, nbeta): the velocities for unit wave amplitude.
inline constexpr std::string_view hyd_vel_nodes = ".hyd_vel_nodes";

inline constexpr std::array hyd_vel_stale{hyd_vel_nodes, hyd_vel6_xyz, hyd_vel6pot};

/// The list of velocity nodes.
inline constexpr NodeKind hyd_velocity_points{
    "hyd_velocity_",   "points at which the velocity of the water is wanted",
    hyd_vel_xyz,       {},
    hyd_num_vel_nodes, hyd_num_vel_nodes_tot,
    hyd_vel_stale};

std::span<const Command> hyd_vel_nodes_rows();

} // namespace quelor
