// Export of the hydrodynamic panel mesh, its motion and the free surface to graphics programs.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_export_to_graphics_rows();

} // namespace quelor
