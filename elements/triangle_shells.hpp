// Shells made of triangles whose nodes are nodes of the model: `min3s`, `shell3` (one triangle) and
// `min5s` (four). They differ by a TriangleKind and share these workers.
#pragma once

#include "elements/shell_family.hpp"
#include "elements/shell_triangle.hpp"

namespace quelor {

/// Group codes: what a stiffness by the group's code holds beyond the linear one.
enum ShellCode { shell_linear = 1, shell_with_kg = 2, shell_with_kf = 3 };

struct TriangleKind {
    ShellKind shell;
    int triangles;             ///< of an element: 1, or 4 with node 5 in the middle
    bool midnodes;             ///< nodes 4 to 6 lie between the vertices and give the rises
    bool both_faces;           ///< the hydrostatic stiffness knows face -1 too
    std::string_view pressure; ///< integer: 1 with -pressure. Written by the input.
    std::string_view resp;     ///< real (points * n, 11): the response; empty: none
    std::string_view points;   ///< real (points, 3): area coordinates of the response, of the user
    std::string_view average;  ///< real (n, 11): mean state of an element; empty: none
    std::string_view needs_pressure, no_load_pressure, no_stiffness_pressure; ///< messages
};

/// The state of a triangle: x, y, z of its centroid and the resultants.
inline constexpr int shell_state_columns = 11;

/// One triangle of an element.
struct ShellPiece {
    int part; ///< 1 to kind.triangles
    std::array<std::int32_t, 3> nodes;
    std::array<Vec3, 3> vertices;
    ShellTriangle geometry;
    LocalAxes element_axes; ///< those of the element's first triangle
};
ShellPiece shell_piece(const TriangleKind& kind, Matrix<const std::int32_t> el,
                       Matrix<const double> x, int e, int part);
/// Flags, counts and materials of the input command; then the arrays are made. Nothing after a
/// message.
struct ShellInput {
    ElementCounts counts;
    bool pressure;
    int code; ///< ShellCode
};
std::optional<ShellInput> begin_triangle_shells(const TriangleKind& kind, int fewest);
/// The arrays of the n elements that the state needs, and the group code.
void finish_triangle_shells(const TriangleKind& kind, int n, int code);
/// The whole input of a type with one triangle an element.
void read_triangle_shells(const TriangleKind& kind);

/// All requests but the input.
void serve_triangle_shells(const TriangleKind& kind, Request request);

} // namespace quelor
