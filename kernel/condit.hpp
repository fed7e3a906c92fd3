// Conditionals and loops.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `if`, `else`, `endif`
std::span<const Command> condition_rows();
/// `while`, `end_while`, `do`, `end_do`, `break_loop`
std::span<const Command> loop_rows();

} // namespace quelor
