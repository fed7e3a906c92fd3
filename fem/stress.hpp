// Stresses at nodes, averaged from stresses at points.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> stress_rows();

} // namespace quelor
