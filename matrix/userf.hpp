// A place for prototypes of commands.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `userf`
std::span<const Command> userf_rows();

} // namespace quelor
