// Gmsh mesh files, text format version 2.2 [Gmsh 2.2]: the writers of their sections. The exporting
// command opens unit_gmsh.
#pragma once

#include "fem/elemutil.hpp"
#include "fem/node_family.hpp"

namespace quelor {

inline constexpr int unit_gmsh = 98;
/// integer (1): element numbers used so far by the types that have written their lines. Exists
/// while the elements are written.
inline constexpr std::string_view gmsh_eshift = "$Gmsh_eshift";

/// The section "$MeshFormat".
void gmsh_write_format();
/// The section "$Nodes": number and coordinates of each active node.
void gmsh_write_nodes(const NodeSet& nodes);
/// Opens the section "$Elements" of `count` lines and sets `$Gmsh_eshift` to 0; closes it.
void gmsh_begin_elements(int count);
void gmsh_end_elements();

// Gmsh's element types; triangles have three nodes, or six with those between them.
inline constexpr int gmsh_line = 1, gmsh_triangle = 2, gmsh_quadrilateral = 3, gmsh_triangle6 = 9;
/// Lines of all elements of a type: `$Gmsh_eshift` + number, type, number of tags, tags, nodes.
/// Among quadrilaterals those with node 4 equal to node 3 are triangles, which follow the others.
/// The next type's numbers follow after the number of elements or, when they have numbers of their
/// own, the largest of these.
void gmsh_write_elements(const ElementTable& table);

/// A section "$NodeData": a displaced shape.
/// step  in  from 1;   time  in  its label;   u  in  (3, nodes) translations
void gmsh_write_node_data(int step, double time, const NodeSet& nodes, Matrix<const double> u);

} // namespace quelor
