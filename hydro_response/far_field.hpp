// The energy that a moving structure radiates, from the wave it makes far away. A numeric kernel.
//
// Far away the motion q gives the wave whose amplitude in the direction opposite to the heading
// beta is in proportion to X(beta) = sum over j of q(j) X_j(beta), X_j the generalised exciting
// force of a wave of unit amplitude; by Haskind's relation X_j follows from the radiation potential
// of mode j on the hull, without a diffraction problem:
//     X_j = rho g sum of area zeta un_j + rho sum of area phi_j d(phi_I)/dn  over all panels,
// with the incoming wave phi_I = (i g/omega) zeta and phi_j for unit displacement of the mode. The
// energy through a distant cylinder in a period is
//     E = omega pi k/(8 pi rho g Vg) int_0^2pi |X(beta)|^2 d(beta),
// Vg the group velocity. In exact potential theory it is omega pi q^H B q, B the damping from the
// pressures on the hull; the two differ by the error of the mesh.
// Source: [Newman 1977, sec. 6.7, 6.17, 6.18]
#pragma once

#include "hydro_analysis/coefficients.hpp"
#include "hydro_analysis/incoming_wave.hpp"

#include <vector>

namespace quelor {

/// The hull as the analysis left it.
struct RadiatingHull {
    PanelModes modes;
    Matrix<const double> xyzc;     ///< (np,3) centroids of the panels
    Matrix<const double> paneln;   ///< (3,np) unit normals out of the fluid
    Array3<const Complex8> potrad; ///< (np*ns,nfreq,nmode) for unit displacement of each mode
    double rho, g;
};

/// Velocity of the energy of linear waves, d(omega)/dk; a depth not above 0 means deep water.
double group_velocity(double omega, double k, double depth);

/// Number of headings, evenly spaced, whose sum is the integral of |X|^2 to rounding: its
/// harmonics die out beyond 2 k r, r the radius of the hull's plan; at least 41.
int heading_count(double k, double radius);
/// Radius of the smallest circle about the middle of the plan's box, all images included.
double plan_radius(const RadiatingHull& hull);

/// X_j of all modes for `count` headings 2 pi (m-1)/count: (nmode,count) in storage order.
/// wave   in  its heading is not used;  ifreq  in  index of the frequency in potrad
std::vector<Complex8> haskind_forces(const RadiatingHull& hull, IncomingWave wave, int ifreq,
                                     int count);

/// E of the motion q; x as haskind_forces gives it.
double far_field_energy(const RadiatingHull& hull, const IncomingWave& wave,
                        Matrix<const Complex8> x, std::span<const Complex8> q);

} // namespace quelor
