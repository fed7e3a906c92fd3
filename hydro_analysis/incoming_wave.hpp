// The incoming wave of unit amplitude on the wet panels: its potential and its normal velocity, as
// sums over the symmetry images of each panel.
//
// phi_I = (i g / omega) Zf(z) exp(-i k (x cos beta + y sin beta)), time factor exp(+i omega t), z
// upward from the still water.   Source: [Newman 1977, sec. 6.2 and 6.3]
#pragma once

#include "numeric/types.hpp"
#include "numeric/vectors.hpp"

namespace quelor {

struct IncomingWave {
    double omega; ///< rad/s
    double k;     ///< wave number, 1/length
    double depth;
    double beta; ///< heading from the x axis, radians
    bool deep; ///< k depth above the limit: exp(k z) stands for the ratios of hyperbolic functions
};

/// cosh(k (z + depth)) / cosh(k depth), or exp(k z); never overflows.
double depth_decay(const IncomingWave& wave, double z);

/// Class sums of Zf exp(-i k (x cos beta + y sin beta)) over the images of each panel.
/// xyzc  in   (np,3) centroids
/// pic   out  (np,ns) one column a class; ns = 1, 2, 4 for symmetry 0, 1, 2
void incoming_potential(const IncomingWave& wave, int symmetry, Matrix<const double> xyzc,
                        Matrix<Complex8> pic);

/// -d(phi_I)/dn at image m of each panel, evaluated with the image's own normal.
/// xyzc  in   (np,3) centroids;  n  in  (3,np) unit normals out of the fluid
/// h     out  np values
void incoming_normal_velocity(const IncomingWave& wave, int symmetry, int m,
                              Matrix<const double> xyzc, Matrix<const double> n,
                              std::span<Complex8> h);

/// Velocity of the water at a point: the gradient of phi_I, Zf taken to be that of `deep`.
std::array<Complex8, 3> incoming_velocity(const IncomingWave& wave, double grav, const Vec3& x);

} // namespace quelor
