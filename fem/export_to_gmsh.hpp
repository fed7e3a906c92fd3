// Gmsh mesh files, text format version 2.2 [Gmsh 2.2]: the writers of their sections. The exporting
// command opens unit_gmsh.
#pragma once

#include "fem/elemutil.hpp"
#include "fem/node_family.hpp"

#include <vector>

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
/// Lines of the panels of a mesh in the same way, in their order: nodes 1 to 4, of which the last
/// two of a triangle agree, and the panel's number in five rows. entity  in  physical and
/// geometrical entity;   last  in  largest number that a panel can have
void gmsh_write_panels(Matrix<const std::int32_t> panels, std::int32_t entity, int last);

/// A section "$NodeData": a displaced shape.
/// step  in  from 1;   time  in  its label;   u  in  (3, nodes) translations
void gmsh_write_node_data(int step, double time, const NodeSet& nodes, Matrix<const double> u);

/// A section of the given kind, "NodeData" or "ElementData": a step of the scalar view `title`.
/// numbers  in  of the nodes or elements;   values  in  one for each
struct GmshScalars {
    std::string_view kind, title;
    std::span<const std::int32_t> numbers;
    std::span<const double> values;
};
void gmsh_write_scalars(int step, double time, const GmshScalars& view);

// --- what the exporting commands have in common -------------------------------------------------

/// False when the command line holds a flag, a word with "-" in front, that is none of these.
bool gmsh_is_target(std::span<const std::string_view> flags);
/// False, after a message, for a number of frames that cannot be meant.
bool gmsh_steps_in_range(std::int32_t steps);
/// Labels of `count` steps: the real vector of this name, or 1, 2, ... without a name. Empty after
/// a message, which for another length is `wrong_size`.
std::vector<double> gmsh_step_times(std::string_view name, int count, std::string_view wrong_size);

/// exp(2 pi i k / n), 0 <= k, exact at the quarters of a turn.
Complex8 phase_of_turn(std::int64_t k, std::int64_t n);

} // namespace quelor
