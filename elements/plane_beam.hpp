// The two-node plane beam with large displacements and small strains: the forces of a linear beam
// once the rigid rotation of its chord is taken out. A numeric kernel.
//
// Degrees of freedom u, v, r of node 1, then of node 2, along the axes a and b of the plane; r
// turns a toward b.
#pragma once

#include "elements/frame.hpp"

namespace quelor {

struct PlaneSection {
    double e, g, area, moi, as; ///< as: shear area of the stiffness, 0 for no shear deformation
};

/// A chord: its length and its angle to the axis a.
struct PlaneChord {
    double length, angle;
};
/// From the end at a1, b1 to the end at a2, b2.
PlaneChord plane_chord(double a1, double b1, double a2, double b2);

/// Tension, shear force and end moments, which turn a toward b and act on the beam.
struct PlaneForces {
    double n, v, m1, m2;
};
/// N = E A (L / Lo - 1), M1 = c (t1 + t2 / 2), M2 = c (t2 + t1 / 2), c = 4 E I / Lo, V = (M1 + M2)
/// / L with the rotations t of the ends less the rotation of the chord. The chord's rotation is
/// told from its angles up to whole turns; the turns are those that bring it nearest to the mean of
/// r1 and r2.
PlaneForces plane_forces(const PlaneSection& s, const PlaneChord& original,
                         const PlaneChord& present, double r1, double r2);
/// The forces as they act on the ends, (-N, V, M1, N, -V, M2) turned by the chord's angle.
std::array<double, 6> plane_force_vector(const PlaneForces& f, double angle);

/// Tangent: the linear stiffness of the original length, turned to the chord. With P, the geometric
/// stiffness of that tension too.
SmallMatrix<6> plane_stiffness(const PlaneSection& s, const PlaneChord& original,
                               const PlaneChord& present, double tension);
/// Mass along and across the chord and about the normal, per unit length; half at each end.
SmallMatrix<6> plane_mass(double mx, double my, double rotary, const PlaneChord& chord);

/// Changes the sense of the two rotations.
SmallMatrix<6> reversed_rotations(SmallMatrix<6> k);
std::array<double, 6> reversed_rotations(std::array<double, 6> f);

} // namespace quelor
