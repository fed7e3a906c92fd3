// A panel of the wetted surface: the flat panel that stands for four nodes, with area, centroid and
// normal; and all panels of a mesh as the store holds them. A numeric kernel.
#pragma once

#include "numeric/types.hpp"
#include "numeric/vectors.hpp"

namespace quelor {

using Corners = std::array<Vec3, 4>;

/// A flat quadrilateral or triangle.
struct Panel {
    Corners corners{}; ///< clockwise seen from the fluid; corner 4 of a triangle is corner 3
    bool triangle = false;
    Vec3 normal{}; ///< unit normal, out of the fluid
    Vec3 centroid{};
    double area = 0;
};

/// The flat panel of four nodes, clockwise looking from the fluid; node 4 of a triangle is node 3.
/// Its area stays 0 when the nodes span none or a coordinate is not finite.
///
/// The normal is that of the diagonals, n = d1 x d2 / |d1 x d2|. With C the mean of the nodes and
/// D = n . (P1 - C), the corners P1 - D n, P2 + D n, P3 - D n, P4 + D n lie in one plane, for C
/// halves the distance of the two diagonals.   Source: [Hess 1967]
/// Area and centroid are those of the triangles 1,2,4 and 2,3,4. A warp D below 1e-10 of the
/// diagonals is rounding and taken as none.
Panel flat_panel(const Corners& nodes, bool triangle);

/// False: the normal is undefined, or the centroid not finite.
bool has_area(const Panel& panel);
/// False: a quadrilateral whose sides cross or that has a reentrant corner.
bool is_convex(const Panel& panel);

/// Area of a triangle by Heron's formula, in the order of operations that keeps slender triangles
/// accurate.   Source: [Kahan 2014]
double triangle_area(const Vec3& a, const Vec3& b, const Vec3& c);

/// The wet panels as the panel commands leave them in the store; p = 1..np. A command that needs no
/// corners may leave their views empty.
struct PanelMesh {
    Matrix<const double> xyzc;             ///< (np,3) centroids
    Matrix<const double> n;                ///< (3,np) unit normals out of the fluid
    std::span<const double> area;          ///< (np)
    Matrix<const double> xr{}, yr{}, zr{}; ///< (np,4) corners
    std::span<const std::int32_t> type{};  ///< (np) 0 quadrilateral, 1 triangle

    int np() const { return xyzc.rows; }
    Vec3 centroid(int p) const { return {xyzc(p, 1), xyzc(p, 2), xyzc(p, 3)}; }
    Vec3 normal(int p) const { return {n(1, p), n(2, p), n(3, p)}; }
    Panel panel(int p) const;
};

/// A mirrored copy of the mesh: signs of the x and y coordinates, or of the distances from a body's
/// origin.
struct Reflection {
    double x = 1.0, y = 1.0;
    bool operator==(const Reflection&) const = default;
};

} // namespace quelor
