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
#include "hydro_response/hyd_irregular.hpp"
#include "hydro_response/hyd_mooring.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/hyd_tf.hpp"
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
    hyd_tf_rows,
    hyd_wave_spectra_rows,
    hyd_irregular_rows,
    hyd_wet_rows,
    hyd_energy_rows,
    hyd_mooring_rows,
};

/// Words whose commands are not built yet, by family.
static constexpr std::string_view planned[] = {
    "hyd_close_files",
    "hyd_analysis_response_P", "hyd_postresponse_P",
    "hyd_analysis_response_drag",
    "hyd_postresponse", "hyd_modal_pressure",
    "hyd_surf_elevation",
    "hyd_velocity_nodes", "hyd_velocity_node_gen", "phyd_velocity_nodes", "hyd_velocity_node_tolerance",
    "hyd_velocity", "phyd_velocity",
    "hyd_export_graphics", "hyd_export_graphics_th",
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
