// `cable`, the elastic catenary between two nodes (slot 5).
#pragma once

#include "elements/cable_records.hpp"
#include "fem/export_to_gmsh.hpp"

namespace quelor {

inline constexpr int cable_slot = 5;
inline constexpr std::string_view cable_missing = " \n\tCABLE element information not found\n";
inline constexpr ElementTable cable_table{
    .name = cable_el, .missing = cable_missing, .nodes = 2, .gmsh_type = gmsh_line};

void cable_element(Request request);
std::string_view cable_help();
std::string_view pcable_help();

} // namespace quelor
