// Displacement of the middle of a panel from those of its nodes. A numeric kernel.
#pragma once

#include "numeric/panel_geometry.hpp"

namespace quelor {

/// Weights r_i of the nodes' rotations in the displacement of the middle of a panel (local
/// coordinates 0, 0), inertial components:
///   d = mean of u_i + n sum over i of r_i . theta_i
///
/// The translations are bilinear. The normal displacement is that of the four-node plate whose
/// deflection along each edge is the parabola that the end rotations bend, so a side from k to l
/// adds (x_l - x_k) . (n x (theta_k - theta_l)) / 8 at its middle and half of it at the middle of
/// the panel. On a rectangle this is the cubic plate polynomial too.   Source: [Tessler 1983]
Corners rotation_weights(const Corners& corners, const Vec3& normal);

/// d for the weights r from the translations u and rotations theta of the nodes.
Vec3 panel_displacement(const Vec3& normal, const Corners& r, const Corners& u,
                        const Corners& theta);

} // namespace quelor
