// `interface`, a surface element without stiffness and mass (slot 28): a quadrilateral or triangle
// that marks a surface of the structure, for drawing and as the wet surface of a fluid mesh.
#pragma once

#include "fem/export_to_gmsh.hpp"

namespace quelor {

inline constexpr int interface_slot = 28;

/// integer (8, n): node1 to node4 (node4 = node3 for a triangle), print code, face (0 dry, -1
/// pressure on the negative face, +1 on the positive one), ID number, not used; one column a
/// defined element. Written by the input, the subdivision and the generation of a cylinder.
inline constexpr std::string_view interface_el = ".interface_el";
inline constexpr std::string_view interface_missing =
    " \n\tINTERFACE element information not found\n";
inline constexpr ElementTable interface_table{
    .name = interface_el,
    .missing = interface_missing,
    .nodes = 4,
    .gmsh_type = gmsh_quadrilateral,
    .number_row = 7,
    .face_row = 6,
    .found = " \"wet\" interface elements to convert to panels",
    .converted = "     Converted interface elements"};
/// integer: 1 with pressure, otherwise 0. Written by the input.
inline constexpr std::string_view interface_pressure = ".interface_pressure";

/// One column of `.interface_el`.
struct InterfaceElement {
    std::array<std::int32_t, 4> nodes{};
    std::int32_t print = 0, face = 0;
};
/// Appends elements; their ID numbers follow the largest one in use.
void append_interfaces(std::span<const InterfaceElement> elements);

void interface_element(Request request);
std::string_view interface_help();
std::string_view pinterface_help();

} // namespace quelor
