// Printing and extraction of nodal displacements.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// real (.#eqs + 2, converged steps): increment, step, displacements. Written by `nsolve`.
inline constexpr std::string_view disp_history = ".disp_history";

std::span<const Command> pdisp_rows();

} // namespace quelor
