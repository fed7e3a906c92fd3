// Six-node Mindlin plates in the X-Y plane: `min6` (slot 25) and `isomin6` (slot 26), the same
// without relaxation.
#pragma once

#include "fem/export_to_gmsh.hpp"

namespace quelor {

inline constexpr std::string_view min6_missing = " \n\tMIN6 element information not found\n";

/// integer (8, n): node1 to node6, material, print code.
inline constexpr ElementTable min6_table{
    .name = ".min6_el", .missing = min6_missing, .nodes = 6, .gmsh_type = gmsh_triangle6};

void min6_element(Request request);
std::string_view min6_help();
std::string_view pmin6_help();
void isomin6_element(Request request);
std::string_view isomin6_help();
std::string_view pisomin6_help();

} // namespace quelor
