// Nodal masses and dampers, initial conditions, and the mass of the whole structure.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// real (7, records): node, mx, my, mz, Ixx, Iyy, Izz. Written by `mass`.
inline constexpr std::string_view mass_inp = ".mass_inp";
/// real (7, records): node, six damper components. Written by `dampers`.
inline constexpr std::string_view dampers_inp = ".dampers_inp";
/// real (6, 6): mass matrix of the rigid body; real (3, 3): centre of the mass that moves in each
/// direction, one row a direction. Written by `mass_summary -save`.
inline constexpr std::string_view mass_summary6x6 = ".mass_summary6x6";
inline constexpr std::string_view mass_summary_cg = ".mass_summaryCG";

std::span<const Command> masses_rows();

} // namespace quelor
