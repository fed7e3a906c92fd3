// Nodal loads, imposed displacements and nodal pressures.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// real (2 + .#dofs_per_node, records): node, pattern, load components. Without records one column
/// of zeros, which stands for one pattern without loads. Written by `nodef`.
inline constexpr std::string_view load_inp = ".load_inp";
/// real (2 + patterns, imposed): node, degree of freedom, displacement in each pattern. Written by
/// `imposed_displ`.
inline constexpr std::string_view disp_inp = ".disp_inp";
/// real (highest active node, number): pressures at nodes, one column for each pattern that has
/// any; integer (number): the pattern of each column. Written by `nodal_pressure`.
inline constexpr std::string_view nodal_pressure = ".nodal_pressure";
inline constexpr std::string_view nodal_pressure_pat = ".nodal_pressure_pat";

/// `.load_pat` from `.load_inp`: one pattern of zeros when there is none. A node or pattern out of
/// range gives the fatal path.
void form_nodal_loads();

std::span<const Command> loads_rows();

} // namespace quelor
