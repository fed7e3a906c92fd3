// The table of the finite-element commands.

#include "fem/bcid.hpp"
#include "fem/constraint.hpp"
#include "fem/elemutil.hpp"
#include "fem/eqns.hpp"
#include "fem/export_to_graphics.hpp"
#include "fem/formkm.hpp"
#include "fem/loads.hpp"
#include "fem/masses.hpp"
#include "fem/nodes.hpp"
#include "fem/pdisp.hpp"
#include "fem/rigid_modes.hpp"
#include "fem/state.hpp"
#include "fem/stress.hpp"
#include "solvers/lsolve.hpp"
#include "solvers/nsolve.hpp"

namespace quelor {

// clang-format off
/// One line a family of rows.
static constexpr std::initializer_list<Family> families = {
    nodes_rows,
    bcid_rows,
    elemutil_rows,
    eqns_rows,
    constraint_rows,
    formkm_rows,
    loads_rows,
    masses_rows,
    lsolve_rows,
    nsolve_rows,
    disp_cntl_rows,
    state_rows,
    stress_rows,
    pdisp_rows,
    export_to_graphics_rows,
    rigid_modes_rows,
};

/// Words whose commands are not built yet, by family.
static constexpr std::string_view planned[] = {
    "eq_direction",
    "conc_deck_loads", "distr_deck_loads", "pdeck_loads",
    "current_velocity", "pcurrentvelocity", "cp_tables", "body_frc2d", "pbody_frc2d",
    "consolidation", "water_waves",
    "el_iso_matl",
    "modal_th", "direct_th",
};
// clang-format on

const CommandTable& fem_cmd() {
    static const CommandTable table{.name = "fem_cmd",
                                    .topic = "fe_commands",
                                    .heading = "      FINITE ELEMENT COMMANDS",
                                    .families = list_of(families),
                                    .planned = planned};
    return table;
}

} // namespace quelor
