// Nonlinear static solution by load steps, under load or displacement control.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

// Written by `nsolve`, beside `.disp` and `.f_internal`:
/// real (.#eqs): applied load reached; applied load less internal force at the end of the last
/// iteration.
inline constexpr std::string_view f_total = ".f_total";
inline constexpr std::string_view unbal_force = ".unbal_force";
/// real (4, converged steps): increment, step, generalised displacement, load factor. Written under
/// displacement control.
inline constexpr std::string_view dispcntl_history = ".dispcntl_history";
/// real (.#eqs): factors of the displacements in the generalised displacement. Written by
/// `disp_cntl`.
inline constexpr std::string_view disp_cntl_vec = ".disp_cntl_vec";

/// `nsolve`
std::span<const Command> nsolve_rows();
/// `disp_cntl`
std::span<const Command> disp_cntl_rows();

} // namespace quelor
