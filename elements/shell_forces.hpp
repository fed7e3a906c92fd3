// Of the shell triangle: geometric and hydrostatic stiffness, mass, loads. A numeric kernel; all in
// local axes, by component.
#pragma once

#include "elements/shell_triangle.hpp"

namespace quelor {

/// Adds A G^T [Nx, Nxy; Nxy, Ny] G for each displacement, G its gradient: u and v linear.
void min3s_geometric(ShellMatrix& k, const ShellTriangle& t, const Vec3& n);

/// A face under water.
struct WetFace {
    double weight;                  ///< of a unit of volume of the water
    std::array<double, 3> pressure; ///< at the vertices
    int side;                       ///< 1: on the side of +z, -1: on the other
};
/// Adds the symmetric part of what the pressure forces change by displacements, with opposite sign:
///     side * integral of (n . N_j) Nw_i + p (c_j Nw_i - a_j Nu_i - b_j Nv_i),
/// where n . N_j is the pressure by a displacement, n = -weight times the global Z axis, a_j, b_j
/// the slopes of w in x and y, c_j the in-plane divergence. Nothing when the weight or all
/// pressures are 0.
void min3s_hydrostatic(ShellMatrix& k, const ShellTriangle& t, const WetFace& face);

/// Consistent mass of the translations, without rotary inertia.
ShellMatrix shell_mass(const ShellTriangle& t, double mass_per_area);

/// Forces of a pressure along +z, linear between its values at the vertices.
ShellVector min3s_pressure_load(const ShellTriangle& t, const std::array<double, 3>& pressure);
/// Forces of mass per area under an acceleration along the global axes.
ShellVector shell_weight(const ShellTriangle& t, double mass_per_area, const Vec3& acceleration);

} // namespace quelor
