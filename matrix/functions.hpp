// The commands that apply a mathematical function to the elements of an array.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `abs` to `gamma`: every word of the dispatcher `func_cmd`
std::span<const Command> function_rows();

} // namespace quelor
