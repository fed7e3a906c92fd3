// `min5s`, the quadrilateral Mindlin shell of four triangles around a node of its own (slot 9).
#pragma once

#include "elements/triangle_shells.hpp"
#include "fem/export_to_gmsh.hpp"

namespace quelor {

inline constexpr std::string_view min5s_missing = " \n\tMIN5S element information not found\n";

/// integer (9, n): node1 to node4, node5 inside, material, print code, face, ID number; one column
/// a defined element.
inline constexpr ElementTable min5s_table{.name = ".min5s_el",
                                          .missing = min5s_missing,
                                          .nodes = 4,
                                          .gmsh_type = gmsh_quadrilateral,
                                          .number_row = 9,
                                          .face_row = 8,
                                          .found = " \"wet\" min5s elements to convert to panels ",
                                          .converted = "     Converted min5s elements"};

void min5s_element(Request request);
std::string_view min5s_help();
std::string_view pmin5s_help();

} // namespace quelor
