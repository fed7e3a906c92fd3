// The triangular Mindlin shells: `min3s` (slot 8), flat or shallow, and `shell3` (slot 31), flat.
#pragma once

#include "elements/triangle_shells.hpp"
#include "fem/export_to_gmsh.hpp"

namespace quelor {

inline constexpr std::string_view min3s_missing = " \n\tMIN3S element information not found\n";
inline constexpr std::string_view shell3_missing = " \n\tshell3 element information not found\n";

/// integer (9, n): node1 to node6, material, print code, face.
inline constexpr ElementTable min3s_table{.name = ".min3s_el",
                                          .missing = min3s_missing,
                                          .nodes = 3,
                                          .gmsh_type = gmsh_triangle,
                                          .face_row = 9,
                                          .found = " \"wet\" min3s elements to convert to panels",
                                          .converted = "     Converted min3s elements"};

void min3s_element(Request request);
std::string_view min3s_help();
std::string_view pmin3s_help();
void shell3_element(Request request);
std::string_view shell3_help();
std::string_view pshell3_help();

} // namespace quelor
