// The straight two-node beam in space, linear: stiffness with shear deformation, geometric
// stiffness, lumped mass, local axes. A numeric kernel.
//
// Degrees of freedom ux, uy, uz, rx, ry, rz of node 1, then of node 2. Local x runs from node 1 to
// node 2; bending in the x-y plane takes Izz and the shear area Asy, in the x-z plane Iyy and Asz.
#pragma once

#include "elements/local_axes.hpp"

namespace quelor {

// --- bending in one plane -----------------------------------------------------------------------

/// The four different terms of a matrix of bending: transverse, transverse to rotation, a rotation
/// on itself, and one rotation on the other.
struct BendingTerms {
    double transverse, coupling, rotation, other_rotation;
};
/// Stiffness of a beam of bending stiffness ei and shear stiffness gas (0: no shear deformation).
/// f = EI / (G As L^2), Ir = I / (1 + 12 f): 12 E Ir / L^3, 6 E Ir / L^2, (1 + 3 f) 4 E Ir / L,
/// (1 - 6 f) 2 E Ir / L.   Source: [Przemieniecki 1968, ch. 5]
BendingTerms elastic_terms(double ei, double gas, double length);
/// Geometric stiffness of the tension P: 36 P / (30 L), P / 10, 2 P L / 15, -P L / 30.
/// Source: [Przemieniecki 1968, ch. 15]
BendingTerms geometric_terms(double tension, double length);

/// Numbers of the degrees of freedom of one plane, and +1 when its rotation turns x toward the
/// transverse axis, -1 when the other way.
struct BendingPlane {
    int v1, r1, v2, r2;
    double sense;
};
template <int N> void add_bending(SmallMatrix<N>& k, const BendingPlane& p, const BendingTerms& t) {
    const auto add = [&](int i, int j, double value) {
        k(i, j) += value;
        if (i != j) k(j, i) += value;
    };
    add(p.v1, p.v1, t.transverse);
    add(p.v2, p.v2, t.transverse);
    add(p.v1, p.v2, -t.transverse);
    for (const int r : {p.r1, p.r2}) {
        add(p.v1, r, p.sense * t.coupling);
        add(p.v2, r, -p.sense * t.coupling);
        add(r, r, t.rotation);
    }
    add(p.r1, p.r2, t.other_rotation);
}
/// Stiffness s between degrees of freedom i and j: s, -s, s.
template <int N> void add_spring(SmallMatrix<N>& k, int i, int j, double s) {
    k(i, i) += s;
    k(j, j) += s;
    k(i, j) -= s;
    k(j, i) -= s;
}

// --- the beam in space --------------------------------------------------------------------------

struct FrameSection {
    double e, g, area, j; ///< j: torsion constant
    double iy, iz;        ///< moments of inertia about local y and z
    double asy, asz;      ///< shear areas, 0 for no shear deformation
};

/// x along the chord; y = x cross `toward3`, the vector from node 1 to node 3; z = x cross y.
/// All zero when `toward3` is (nearly) parallel to the chord or the chord is 0.
LocalAxes frame_axes(const Vec3& chord, const Vec3& toward3);

/// Stiffness in local axes.
SmallMatrix<12> frame_stiffness(const FrameSection& s, double length);
void add_frame_geometric(SmallMatrix<12>& k, double tension, double length);

/// Half of a beam's mass (or damping) at each end: per unit length, along the local axes and about
/// them.
std::array<double, 12> frame_lumped(const Vec3& translation, const Vec3& rotation, double length);

/// A diagonal matrix of local axes in global ones.
SmallMatrix<12> frame_to_global_diagonal(const std::array<double, 12>& d, const LocalAxes& axes);

} // namespace quelor
