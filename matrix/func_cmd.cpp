// The table of the mathematical functions.
#include "kernel/command.hpp"
#include "matrix/functions.hpp"

namespace quelor {

static constexpr Family families[] = {function_rows};

const CommandTable& func_cmd() {
    static const CommandTable table{.name = "func_cmd",
                                    .topic = "functions",
                                    .heading = "      FUNCTIONS",
                                    .families = families,
                                    .planned = {}};
    return table;
}

} // namespace quelor
