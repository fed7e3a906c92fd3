// Export of the finite-element model to graphics programs.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> export_to_graphics_rows();

} // namespace quelor
