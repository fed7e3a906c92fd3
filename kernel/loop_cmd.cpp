// The table of the loop commands.

#include "kernel/condit.hpp"

namespace quelor {

static constexpr std::initializer_list<Family> families = {
    loop_rows,
};

/// In `index` the loops continue the general commands, hence no heading.
const CommandTable& loop_cmd() {
    static const CommandTable table{.name = "loop_cmd",
                                    .topic = "general",
                                    .heading = "",
                                    .families = list_of(families),
                                    .planned = {}};
    return table;
}

} // namespace quelor
