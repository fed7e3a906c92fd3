// `min4t`, the four-node Mindlin shell of four flat triangles around a virtual node (slot 10).
#pragma once

#include "fem/export_to_gmsh.hpp"

namespace quelor {

inline constexpr std::string_view min4t_missing = " \n\tMIN4T element information not found\n";

/// integer (6, n): node1 to node4, material, print code.
inline constexpr ElementTable min4t_table{
    .name = ".min4t_el", .missing = min4t_missing, .nodes = 4, .gmsh_type = gmsh_quadrilateral};

void min4t_element(Request request);
std::string_view min4t_help();
std::string_view pmin4t_help();

} // namespace quelor
