// Equation numbers, the profile of the global matrices, and the ordering of the nodes.
#pragma once

#include "fem/nodes.hpp"
#include "kernel/command.hpp"

namespace quelor {

// Written by the numbering of equations, with `.node_eqs` and `.#eqs` of nodes.hpp: `.node_eqs` is
// integer (.#dofs_per_node, columns of `.bcid`), above 0 an equation, 0 restrained, -k the k-th
// nodal constraint; `.node_eq_order` is an integer vector of the connected nodes in the order of
// numbering.
/// integer (.#eqs): column heights above the diagonal; exists while they are collected.
inline constexpr std::string_view k_colhite = ".k_colhite";
/// integer (.#eqs + 1): position of each diagonal in a profile vector.
inline constexpr std::string_view kdiag_loc = ".kdiag_loc";
/// integer: length of a profile vector.
inline constexpr std::string_view kstr_size = ".kstr_size";

/// Numbers the equations when there are none or `anew`, and lays out the profile when there is
/// none. False, after a message, for a model without equations or one too large. Without `.bcid`
/// the fatal path.
bool number_equations(bool anew);
/// Ends the program when a free degree of freedom of an active node has no equation.
void check_numbering();

std::span<const Command> eqns_rows();

} // namespace quelor
