// Panels from the wet elements of a finite-element mesh.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_convert_fea_mesh_rows();

} // namespace quelor
