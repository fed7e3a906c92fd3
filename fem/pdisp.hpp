// Printing and extraction of nodal displacements.
#pragma once

#include "kernel/command.hpp"
#include "kernel/format.hpp"

namespace quelor {

/// real (.#eqs + 2, converged steps): increment, step, displacements. Written by `nsolve`.
inline constexpr std::string_view disp_history = ".disp_history";

enum class NodalVector { displacements, loads };
/// Prints the values of a vector over the equations at the nodes that are printed, under a heading,
/// on the output file. A message when the arrays of the nodes are absent or do not agree.
void print_nodal_vector(const Format& heading, NodalVector kind, std::span<const double> vector);

std::span<const Command> pdisp_rows();

} // namespace quelor
