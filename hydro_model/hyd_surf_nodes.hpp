// Nodes of the free-surface mesh, which is drawn and takes no part in the analysis.
#pragma once

#include "fem/node_family.hpp"

namespace quelor {

/// real (3, .hyd_#surf_nodes_tot), character (the same), integer: as for the panel mesh.
inline constexpr std::string_view hyd_surf_xyz = ".hyd_surf_xyz";
inline constexpr std::string_view hyd_surf_node_active = ".hyd_surf_node_active";
inline constexpr std::string_view hyd_num_surf_nodes = ".hyd_#surf_nodes";
inline constexpr std::string_view hyd_num_surf_nodes_tot = ".hyd_#surf_nodes_tot";
/// complex (nodes, frequencies, headings): elevations of these nodes; a new list makes them
/// invalid.
inline constexpr std::string_view hyd_surf_disp = ".hyd_surf_disp";

inline constexpr std::array hyd_surf_stale{hyd_surf_disp};

/// The list of free-surface nodes.
inline constexpr NodeKind hyd_surface_nodes{
    "hyd_surf_",        "nodes of the free-surface mesh", hyd_surf_xyz,  hyd_surf_node_active,
    hyd_num_surf_nodes, hyd_num_surf_nodes_tot,           hyd_surf_stale};

std::span<const Command> hyd_surf_nodes_rows();

} // namespace quelor
