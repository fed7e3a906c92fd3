// The wave field at free points of the water: potential of the incoming, the diffracted and the
// radiated wave, elevation of the free surface, velocity by differences. Numeric kernels.
//
// Time factor exp(+i omega t), wave of unit amplitude:
//     phi_I = (i g / omega) Zf exp(-i k (x cos beta + y sin beta))
//     phi_D + phi_R = sum over the panels of alpha sigma,  sigma = sigma_D + i omega sum over the
//                     modes of sigma_m q_m
// The linear free-surface condition eta = -(1/g) d(phi)/dt gives the elevation -(i omega/g) phi at
// z = 0, for all three parts.   Source: [Newman 1977, sec. 6.2]
#pragma once

#include "hydro_analysis/incoming_wave.hpp"
#include "hydro_analysis/influence_field.hpp"

namespace quelor {

/// phi := phi_I at the points.
void incoming_field(const IncomingWave& wave, double grav, std::span<const Vec3> points,
                    std::span<Complex8> phi);

/// sigma := sigma + i omega sum over m of src(:,m) q(m), one heading.
/// src  in  (np,nmode) strengths for unit normal velocity of each mode;   q  in  nmode
void add_radiation_sources(double omega, Matrix<const Complex4> src, std::span<const Complex8> q,
                           std::span<Complex8> sigma);

/// phi(n,ifreq,b) := phi(n,ifreq,b) + sum over p of alpha(n,p) sigma(p,b), without symmetry: every
/// pair of point and panel once, for all modes and headings. The products are in single precision,
/// as the coefficients are, and added in double precision.
/// sigma  in      (np,nbeta);   phi  in/out  (points,nfreq,nbeta)
/// Nothing is added unless the status is `formed`.
InfluenceResult add_source_field(const PanelMesh& mesh, std::span<const Vec3> points,
                                 const InfluenceParameters& parameters, DepthCache& cache,
                                 Matrix<const Complex4> sigma, int ifreq, Array3<Complex8> phi);

/// phi := -(i omega/g) phi, the elevation of the surface.
void elevation_from_potential(double omega, double grav, std::span<Complex8> phi);

/// The six points about each of n nodes, x + dx, x - dx, y + dy, ...: the node itself where the
/// point would lie above z = 0 or below z = -depth. Returns the first node, from 1, of which two
/// points that belong together coincide, or 0.
/// six  out  6 n
int six_points(std::span<const Vec3> nodes, const Vec3& del, double depth, std::span<Vec3> six);

/// velocity(:,j) := difference of the potentials of each pair over their distance.
/// six  in  6 n points;   phi  in  their potentials;   velocity  out  (3,n)
void velocity_from_potentials(std::span<const Vec3> six, std::span<const Complex8> phi,
                              Matrix<Complex8> velocity);

} // namespace quelor
