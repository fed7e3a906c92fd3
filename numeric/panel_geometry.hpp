// Geometry of one panel: the flat panel that stands for four nodes, its area, centroid and normal.
// A numeric kernel.
#pragma once

#include "numeric/vectors.hpp"

namespace quelor {

struct FlatPanel {
    std::array<Vec3, 4> corners; ///< of the flat panel; corner 4 of a triangle is corner 3
    Vec3 normal;                 ///< unit normal, out of the fluid for nodes clockwise seen from it
    Vec3 centroid;
    double area;
    bool valid;  ///< false: the area is zero or a coordinate not finite, and the normal undefined
    bool simple; ///< false: a quadrilateral that is not convex, or whose sides cross
};

/// The flat panel of four nodes, clockwise looking from the fluid; node 4 of a triangle is node 3.
///
/// The normal is that of the diagonals, n = d1 x d2 / |d1 x d2|. With C the mean of the nodes and
/// D = n . (P1 - C), the corners P1 - D n, P2 + D n, P3 - D n, P4 + D n lie in one plane, for C
/// halves the distance of the two diagonals.   Source: [Hess 1967]
/// Area and centroid are those of the triangles 1,2,4 and 2,3,4. A warp D below 1e-10 of the
/// diagonals is rounding and taken as none.
FlatPanel flat_panel(const std::array<Vec3, 4>& nodes, bool triangle);

/// Area of a triangle by Heron's formula, in the order of operations that keeps slender triangles
/// accurate.   Source: [Kahan 2014]
double triangle_area(const Vec3& a, const Vec3& b, const Vec3& c);

} // namespace quelor
