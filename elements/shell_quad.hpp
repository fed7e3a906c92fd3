// Quadrilaterals of four shell triangles around an inner point: their geometry, and the inner point
// as a virtual node that goes with the corners. A numeric kernel.
#pragma once

#include "elements/shell_triangle.hpp"

namespace quelor {

// --- geometry -----------------------------------------------------------------------------------

/// The place of the inner point: where the diagonals cross, or of a warped quadrilateral the middle
/// of their common perpendicular.
struct ShellQuad {
    Vec3 normal; ///< unit normal of the two diagonals
    Vec3 middle; ///< the inner point
    double part13,
        part24;  ///< of each diagonal from vertex 1, or 2, to the foot of the perpendicular
    double area; ///< half the product of the diagonals and the sine between them
    double warp; ///< distance of the diagonals
    bool valid;  ///< false: no area, or not convex; then there is no inner point
};
ShellQuad shell_quad(const std::array<Vec3, 4>& vertices);

/// Nodes of the four triangles, counted from 0; 4 is the inner one.
inline constexpr std::array<std::array<std::size_t, 3>, 4> shell_quarters{
    {{0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}}};

// --- the inner point as a virtual node ----------------------------------------------------------

/// How the two rotations of the inner point about axes in the surface follow from the corners.
enum class InnerRotation {
    mean = 1,         ///< least squares of their linear interpolations along the two diagonals
    first_diagonal,   ///< that of the diagonal 1-3
    continuous_shear, ///< along each diagonal its own: then the shear strain along it is constant
};

using QuadMatrix = SmallMatrix<24>; ///< corners, six degrees of freedom a node, global axes
using WithInner = SmallMatrix<30>;  ///< with the inner node
using QuadVector = std::array<double, 24>;
using InnerMotion = SmallMatrix<30, 24>; ///< displacements of the five nodes by those of four

/// Displacements by those of the corners; of the inner point, with ends a and b of a diagonal of
/// length l along s, n the normal and L the area coordinates on the diagonal, the mean over both of
///     L_a u_a + L_b u_b + 1/2 L_a L_b l n (th_b - th_a) . (n x s),
/// the deflection with constant shear strain along the diagonal. Linear displacements, rigid
/// motions of warped elements among them, and constant curvatures are reproduced.
InnerMotion inner_motion(const ShellQuad& q, const std::array<Vec3, 4>& vertices,
                         InnerRotation rotation);
/// Parts of the corners in a value at the inner point that is linear along the diagonals.
std::array<double, 4> inner_weights(const ShellQuad& q);

/// k += the matrix of a triangle, in global axes, at the places of its nodes.
void add_quarter(WithInner& k, std::size_t quarter, const ShellMatrix& of_triangle);
/// Nodal values of a triangle out of those of the five nodes, and the sum the other way.
ShellVector quarter_of(const std::array<double, 30>& u, std::size_t quarter);
void add_quarter(std::array<double, 30>& f, std::size_t quarter, const ShellVector& of_triangle);

/// Sum of the diagonal terms of the corners' rotations about axes in the surface.
double rotation_trace(const QuadMatrix& k, const Vec3& normal);

/// Stiffness gamma t A of the rotation about the normal against half of v,x - u,y, exactly
/// integrated; in local axes by component.
void add_drilling_penalty(ShellMatrix& k, const ShellTriangle& t, double gamma_t);

} // namespace quelor
