// The table of the miscellaneous commands.
#include "kernel/command.hpp"

namespace quelor {

/// Words whose commands are not built yet.
static constexpr std::string_view planned[] = {
    "userf", "gauss_int", "gauss_pts", "tri_intpts", "poly", "fortran_kind", "incoming_wave",
};

const CommandTable& misc_cmd() {
    static const CommandTable table{.name = "misc_cmd",
                                    .topic = "misc",
                                    .heading = "      MISCELLANEOUS COMMANDS",
                                    .families = {},
                                    .planned = planned};
    return table;
}

} // namespace quelor
