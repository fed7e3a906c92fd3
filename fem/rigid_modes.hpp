// Shapes of a rigid body on the finite-element nodes.
#pragma once

#include "fem/node_family.hpp"

namespace quelor {

/// Numbers of a node range that means all nodes when both are 0.
struct RigidRange {
    int first = 0, last = 0;
};

/// One rigid shape as a vector of equations: k = 1, 2, 3 a unit translation along axis k; k = 4, 5,
/// 6 a unit rotation about axis k - 3 through c, u = e x (x - c). What belongs to no node of the
/// range, or has no equation, stays. node_eqs  in      (at least 6, nodes) equations; those beyond
/// the shape's size count as none shape     in/out  one value an equation
void rigid_shape(int k, const NodeSet& nodes, Matrix<const std::int32_t> eqs, const Vec3& c,
                 RigidRange range, std::span<double> shape);

std::span<const Command> rigid_modes_rows();

} // namespace quelor
