// The on-line manual.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// Prints a help text on a unit; it stops after each page when `$ scroll` exists.
void help_print(int unit, std::string_view text);

/// `help`, `index`
std::span<const Command> help_rows();

} // namespace quelor
