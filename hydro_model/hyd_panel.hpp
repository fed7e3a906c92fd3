// Panels of the wetted surface: flat, constant-strength quadrilaterals and triangles.
//
// Arrays by external panel number e = 1..n hold what was entered; arrays by wet number p = 1..np
// hold what the analysis needs. The map goes from e to p, the reverse map from p to e.
#pragma once

#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/panel_input.hpp"
#include "numeric/panel_geometry.hpp"

namespace quelor {

// Written by `hyd_panel` and `hyd_convert_fea_mesh`, by external number.
/// integer (4, n): node numbers, clockwise looking from the fluid; node 4 of a triangle is node 3.
inline constexpr std::string_view hyd_panel_el = ".hyd_panel_el";
/// character (n): blank not defined or removed by symmetry, W wet, D dry, V wet but partially dry,
/// E dry but partially wet. W and V panels are in the analysis.
inline constexpr std::string_view hyd_panel_code = ".hyd_panel_code";
/// integer (n): wet number of each panel, 0 when it is not in the analysis.
inline constexpr std::string_view hyd_panel_map = ".hyd_panel_#map";
/// integer: n, the largest panel number; np, the number of wet panels.
inline constexpr std::string_view hyd_num_panels = ".hyd_#panels";
inline constexpr std::string_view hyd_num_wetpanels = ".hyd_#wetpanels";

// Written by the same commands, by wet number.
/// integer (np): 0 quadrilateral, 1 triangle.
inline constexpr std::string_view hyd_paneltype = ".hyd_paneltype";
/// real (np): area.
inline constexpr std::string_view hyd_panela = ".hyd_panela";
/// real (3, np): unit normal, out of the fluid into the body.
inline constexpr std::string_view hyd_paneln = ".hyd_paneln";
/// real (np, 4): coordinates of the corners of the flat panel.
inline constexpr std::string_view hyd_xr = ".hyd_xr";
inline constexpr std::string_view hyd_yr = ".hyd_yr";
inline constexpr std::string_view hyd_zr = ".hyd_zr";
/// real (np, 3): centroid.
inline constexpr std::string_view hyd_xyzc = ".hyd_xyzc";

/// integer (np): external number of each wet panel. Written by `hyd_panel_rmap`.
inline constexpr std::string_view hyd_panel_rmap = ".hyd_panel_rmap";

/// The table of structure panels.
inline constexpr PanelKind hyd_structure_panels{.name = "HYD_PANEL",
                                                .el = hyd_panel_el,
                                                .code = hyd_panel_code,
                                                .map = hyd_panel_map,
                                                .type = hyd_paneltype,
                                                .count = hyd_num_panels,
                                                .wet_count = hyd_num_wetpanels,
                                                .nodes = &hyd_mesh_nodes,
                                                .no_nodes = " \n\tNodal coordinates not found\n",
                                                .invalid_print =
                                                    " \n\tInvalid option for HYD_PANEL element\n"};

struct Request;
/// The element routine of slot 36, and its help texts.
void hyd_panel_element(Request request);
std::string_view hyd_panel_help();
std::string_view phyd_panel_help();

std::span<const Command> hyd_panel_rows();

/// Deletes the panel arrays of the structure and opens `<project>.pan`: the start of panel input.
void begin_panels();
/// From the filled `.hyd_panel_el` to all other panel arrays, `<project>.pan` and the summary.
void finish_panels();

/// The np wet panels; a missing or misshapen array takes the fatal path.
PanelMesh require_panel_mesh(int np);

/// External number of wet panel p, 0 when the map does not have it.
int panel_of_wet(int p);

/// Writes `.hyd_panel_rmap` from the map; the fatal path when there are no panels.
void make_panel_rmap();

} // namespace quelor
