// Displacement of the middle of a panel from those of its nodes. A numeric kernel.
#pragma once

#include <array>

namespace quelor {

using Vector3 = std::array<double, 3>;
using Corners = std::array<Vector3, 4>; ///< four vectors, one a corner node

/// Interpolation at the middle of a panel (local coordinates 0, 0), inertial components:
///   d = mean of u_i + n sum over i of rotation_i . theta_i
struct PanelShape {
    Vector3 normal;
    Corners rotation;
};

/// The translations are bilinear. The normal displacement is that of the four-node plate whose
/// deflection along each edge is the parabola that the end rotations bend, so a side from k to l
/// adds (x_l - x_k) . (n x (theta_k - theta_l)) / 8 at its middle and half of it at the middle of
/// the panel. On a rectangle this is the cubic plate polynomial too.   Source: [Tessler 1983]
/// corners  in  corners of the flat panel in order round it; the last two agree on a triangle
/// normal   in  its unit normal
PanelShape panel_shape(const Corners& corners, const Vector3& normal);

/// u, theta: translations and rotations of the nodes.
Vector3 panel_displacement(const PanelShape& shape, const Corners& u, const Corners& theta);

} // namespace quelor
