// The table of the mathematical functions.
#include "kernel/command.hpp"

namespace quelor {

/// Words whose commands are not built yet.
static constexpr std::string_view planned[] = {
    "abs",  "conjugate", "exp",      "log",  "log10", "pi",          "power",   "sqrt",
    "sin",  "cos",       "tan",      "asin", "acos",  "atan",        "sinh",    "cosh",
    "tanh", "bessel_j",  "bessel_y", "erf",  "erfc",  "erfc_scaled", "epsilon", "gamma",
};

const CommandTable& func_cmd() {
    static const CommandTable table{.name = "func_cmd",
                                    .topic = "functions",
                                    .heading = "      FUNCTIONS",
                                    .families = {},
                                    .planned = planned};
    return table;
}

} // namespace quelor
