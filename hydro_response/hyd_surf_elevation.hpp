// Command hyd_surf_elevation: elevation of the free surface about the structure.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_surf_elevation_rows();

} // namespace quelor
