// The two-node bar in space: stiffness, forces and the connection of its ends to nodes at an
// offset. A numeric kernel. Degrees of freedom of the bar: the translations of its start, then of
// its end.
#pragma once

#include "numeric/small_matrix.hpp"

namespace quelor {

/// Stored as the force of a tension-only bar that is slack: no force, but negative, by which the
/// next stiffness knows it.
inline constexpr double slack_force = -1e-20;

/// E A / Lo times b b^T, b = (c, -c): c is the unit vector from start to end.
SmallMatrix<6> bar_stiffness(const Vec3& c, double ea_over_length);
/// Adds the geometric stiffness, T / L times the projection on the plane normal to c, positive in
/// the diagonal blocks and negative between the ends; L is the present length.
void add_bar_geometric(SmallMatrix<6>& k, const Vec3& c, double force_over_length);
/// (-T c, +T c): what the bar's tension T holds in equilibrium.
std::array<double, 6> bar_force(const Vec3& c, double tension);

/// Tension of a stretched bar: E A (L - Lo) / Lo.
double stretched_tension(double ea, double original_length, double length);
/// The same to first order in the displacements u of the ends: E A (u2 - u1) . c / Lo.
double linear_tension(double ea, double original_length, const Vec3& c, const Vec3& u1,
                      const Vec3& u2);

/// How the ends hang on the nodes: translations of the ends = t times the displacements of the
/// nodes, to first order in the rotations.
struct BarConnection {
    SmallMatrix<6, 12> t; ///< 6, 9 or 12 columns
    Vec3 offset1{}, offset2{};
};
/// code     in  0 both ends at their nodes, 1 start offset, 2 end offset, 3 both; an end with an
///              offset takes three translations and three rotations of its node, one without the
///              translations alone
/// offsets  in  from node to end of the bar: x, y, z of the start, then of the end
BarConnection connect_bar(int code, std::span<const double> offsets);

} // namespace quelor
