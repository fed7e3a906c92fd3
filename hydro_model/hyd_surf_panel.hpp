// Panels of the free surface, used to draw its elevation and for no calculation.
#pragma once

#include "hydro_model/hyd_surf_nodes.hpp"
#include "hydro_model/panel_input.hpp"

namespace quelor {

// Written by `hyd_surf_panel`; as for the panels of the structure, with W for every defined panel.
inline constexpr std::string_view hyd_surf_panel_el = ".hyd_surf_panel_el";
inline constexpr std::string_view hyd_surf_panel_code = ".hyd_surf_panel_code";
inline constexpr std::string_view hyd_surf_panel_map = ".hyd_surf_panel_#map";
inline constexpr std::string_view hyd_surf_paneltype = ".hyd_surf_paneltype";
inline constexpr std::string_view hyd_num_surf_panels = ".hyd_#surf_panels";
inline constexpr std::string_view hyd_num_surf_wetpanels = ".hyd_#surf_wetpanels";

/// The table of free-surface panels.
inline constexpr PanelKind hyd_surface_panels{
    .name = "HYD_SURF_PANEL",
    .el = hyd_surf_panel_el,
    .code = hyd_surf_panel_code,
    .map = hyd_surf_panel_map,
    .type = hyd_surf_paneltype,
    .count = hyd_num_surf_panels,
    .wet_count = hyd_num_surf_wetpanels,
    .nodes = &hyd_surface_nodes,
    .no_nodes = " \n\tSurface nodal coordinates not found\n",
    .invalid_print = " \n\tInvalid option for HYD_SURF_PANEL\n"};

struct Request;
/// The element routine of slot 38, and its help texts.
void hyd_surf_panel_element(Request request);
std::string_view hyd_surf_panel_help();
std::string_view phyd_surf_panel_help();

} // namespace quelor
