// One array to a file and back.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `read`, `write`
std::span<const Command> fileio_rows();

} // namespace quelor
