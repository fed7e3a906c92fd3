// The six-node Mindlin plate triangle in the X-Y plane: deflection and rotations quadratic, as its
// geometry. A numeric kernel.
//
// Nodes 1 to 3 are the vertices, 4 to 6 lie on the edges 1-2, 2-3 and 1-3. Degrees of freedom node
// by node: w, thx, thy along and about the global axes; a point at height z moves by z thy in x and
// -z thx in y.
#pragma once

#include "elements/shell_section.hpp"

namespace quelor {

inline constexpr int plate6_nodes = 6, plate6_dofs = 18;
using PlateMatrix = SmallMatrix<plate6_dofs>;
using PlateVector = std::array<double, plate6_dofs>;
/// Coordinates of the nodes.
using PlateNodes = std::array<Vec3, plate6_nodes>;

/// True when the nodes, whichever way they run, enclose an area at every point of integration.
bool plate6_is_possible(const PlateNodes& nodes);

/// Bending by the rule of seven points; shear by that of three, with which thin plates do not lock.
struct PlateParts {
    PlateMatrix bending, shear;
};
PlateParts plate6_parts(const PlateNodes& nodes, const ShellSection& s);
/// 1 / (C_s S / B + 1), S and B the sums of the rotations' diagonal terms of shear and bending.
double plate6_relaxation(const PlateParts& parts, double c_s);

/// Consistent mass of the deflection.
PlateMatrix plate6_mass(const PlateNodes& nodes, double mass_per_area);
/// Forces of a pressure along +z by its values at the nodes.
PlateVector plate6_load(const PlateNodes& nodes, const std::array<double, plate6_nodes>& pressure);

/// Mx, My, Mxy, Qx, Qy at the point of equal area coordinates, and that point.
struct PlateState {
    Vec3 place;
    std::array<double, 5> resultants;
};
PlateState plate6_state(const PlateNodes& nodes, const ShellSection& s, double phi,
                        const PlateVector& u);

} // namespace quelor
