// Gmsh mesh files, text format version 2.2 [Gmsh 2.2]: the writers of their sections. The exporting
// command opens unit_gmsh; the elements answer its mesh_export request with gmsh_write_elements and
// gmsh_count_elements.
#pragma once

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

/// Lines of elements with node numbers in rows 1 to `nodes` of their columns: `$Gmsh_eshift` + id,
/// type, number of tags, tags, nodes.
/// el      in  one column an element
/// id_row  in  row of the element's number; -1: its column
/// type    in  Gmsh's element type: 1 line, 2 triangle, 3 quadrilateral
void gmsh_write_elements(Matrix<const std::int32_t> el, int id_row, int nodes, int type,
                         std::span<const std::int32_t> tags);
/// Lines of panels in the same way: nodes 1 to 4, of which the last two of a triangle agree, and
/// the panel's number in five rows.
void gmsh_write_panels(Matrix<const std::int32_t> panels, std::span<const std::int32_t> tags);
/// An element type has written its lines: the next type's numbers follow after its `count`, the
/// number of elements or, when they have numbers of their own, the largest of these.
void gmsh_count_elements(int count);

/// All elements of a type of lines between two nodes, in rows 1 and 2: both of the above.
void gmsh_write_line_elements(Matrix<const std::int32_t> el);

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
