// The table of the miscellaneous commands.
#include "kernel/command.hpp"
#include "matrix/numerics.hpp"
#include "matrix/userf.hpp"

namespace quelor {

static constexpr Family families[] = {
    userf_rows,
    numerics_rows,
};

/// Words whose commands are not built yet.
static constexpr std::string_view planned[] = {"incoming_wave"};

const CommandTable& misc_cmd() {
    static const CommandTable table{.name = "misc_cmd",
                                    .topic = "misc",
                                    .heading = "      MISCELLANEOUS COMMANDS",
                                    .families = families,
                                    .planned = planned};
    return table;
}

} // namespace quelor
