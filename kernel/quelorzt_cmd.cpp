// The table of the hydrodynamic commands.

#include "hydro_analysis/hyd_anal_main.hpp"
#include "hydro_model/hyd_body_check.hpp"
#include "hydro_model/hyd_convert_fea_mesh.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/hyd_surf_nodes.hpp"
#include "hydro_response/hyd_energyloss.hpp"
#include "hydro_response/hyd_export_to_graphics.hpp"
#include "hydro_response/hyd_irregular.hpp"
#include "hydro_response/hyd_modal_pressure.hpp"
#include "hydro_response/hyd_mooring.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/hyd_response_P.hpp"
#include "hydro_response/hyd_response_drag.hpp"
#include "hydro_response/hyd_response_post.hpp"
#include "hydro_response/hyd_surf_elevation.hpp"
#include "hydro_response/hyd_tf.hpp"
#include "hydro_response/hyd_vel_nodes.hpp"
#include "hydro_response/hyd_wave_spectra.hpp"
#include "hydro_response/hyd_wet.hpp"
#include "kernel/command.hpp"

namespace quelor {

// clang-format off
/// One line a family of rows.
static constexpr std::initializer_list<Family> families = {
    hyd_input_rows,
    hyd_wave_rows,
    hyd_nodes_rows,
    hyd_surf_nodes_rows,
    hyd_panel_rows,
    hyd_convert_fea_mesh_rows,
    hyd_body_check_rows,
    hyd_rigid_modes_rows,
    hyd_rmass_rows,
    hyd_flex_modes_rows,
    hyd_genmodes_rows,
    hyd_analysis_rows,
    hyd_response_rows,
    hyd_response_P_rows,
    hyd_response_drag_rows,
    hyd_response_post_rows,
    hyd_modal_pressure_rows,
    hyd_tf_rows,
    hyd_surf_elevation_rows,
    hyd_vel_nodes_rows,
    hyd_export_to_graphics_rows,
    hyd_wave_spectra_rows,
    hyd_irregular_rows,
    hyd_wet_rows,
    hyd_energy_rows,
    hyd_mooring_rows,
};

/// Words whose commands are not built yet, by family.
static constexpr std::string_view planned[] = {
    "hyd_close_files",
};
// clang-format on

const CommandTable& quelorzt_cmd() {
    static const CommandTable table{.name = "quelorzt_cmd",
                                    .topic = "hydrodynamics",
                                    .heading = "      HYDRODYNAMIC COMMANDS",
                                    .families = list_of(families),
                                    .planned = planned};
    return table;
}

} // namespace quelor
