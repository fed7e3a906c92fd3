// Hydrostatics and rigid motion of a panelled body. A numeric kernel.
//
// Normals point out of the fluid into the body, z is upward from the still water. Body axes: origin
// (xb, yb, zb), turned by theta about the vertical; a prime marks a component in them.
#pragma once

#include "numeric/panel_geometry.hpp"

namespace quelor {

struct BodyFrame {
    double xb, yb, zb; ///< inertial coordinates of the body origin
    double c, s;       ///< cosine and sine of theta
};
/// theta in degrees.
BodyFrame body_frame(double xb, double yb, double zb, double theta);

/// Position relative to the body origin, and normal, in body axes.
struct BodyPoint {
    double x, y, z, nx, ny, nz;
};
BodyPoint body_point(const PanelMesh& panels, int p, const BodyFrame& frame,
                     Reflection reflection = {});

/// Six values: surge, sway, heave, roll, pitch, yaw.
using RigidValues = std::array<double, 6>;
/// Displacement along the normal in unit motion of each mode; upward displacement.
RigidValues rigid_normal(const BodyPoint& point);
RigidValues rigid_vertical(const BodyPoint& point);
/// Translations (rows 1 to 3) and rotations (4 to 6), inertial axes, of a node in unit motion of
/// each mode; dx, dy, dz: the node relative to the body origin, inertial axes.
using NodalMotion = std::array<RigidValues, 6>;
NodalMotion rigid_nodal_motion(const BodyFrame& frame, double dx, double dy, double dz);

/// Integrals over the wet surface, dA = area:
///   sw = int nz, sx = int nz x', sy, sxx, syy, sxy likewise; volume = -int nz z;
///   tx = -int dz nx' x', ty = -int dz ny' y', txy = int dz ny' x'.
struct WaterplaneSums {
    double sw = 0, sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
    double volume = 0, tx = 0, ty = 0, txy = 0;
};
/// Over the listed wet panels (1-based numbers), as they stand in each of the copies. The copies
/// are summed one by one, so that what is odd in a reflection cancels exactly.
WaterplaneSums waterplane_sums(const PanelMesh& panels, std::span<const std::int32_t> list,
                               const BodyFrame& frame, std::span<const Reflection> copies);

/// Hydrostatic stiffness of a rigid body, column by column: buoyancy and weight at zcg above the
/// body origin, for a body whose weight equals its displacement.
/// With B the centre of buoyancy, G that of gravity: K44 = rho grav (int y'^2 dS + V (zB - zG)).
/// Source: [Newman 1977, sec. 6.16]
std::array<double, 36> rigid_stiffness(const WaterplaneSums& sums, double zcg, double rho,
                                       double grav);

/// Sums of x_i n_i a and x_i^2 n_i a over the listed panels, i = x, y, z, and their area.
/// Gauss: the volume is minus each first sum, its centroid -second / (2 volume).
struct VolumeSums {
    Vec3 first{}, second{};
    double area = 0;
};
VolumeSums volume_sums(const PanelMesh& panels, std::span<const std::int32_t> list);

/// k(i,j) = sum over panels of un(i,p) uz(j,p) area(p): the fluid's part of the stiffness, without
/// rho grav.
/// un, uz  in  (nmode,np);  area  in  np;  k  out  (nmode,nmode), overwritten
void pressure_stiffness(Matrix<const double> un, Matrix<const double> uz,
                        std::span<const double> area, Matrix<double> k);

} // namespace quelor
