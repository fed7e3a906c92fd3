// The elastic catenary: position of the end of a line of several segments for a given force at its
// start, the derivative of that position, and the force that makes the end land on a given point. A
// numeric kernel.
//
// Strains are small, the weight acts per unstretched length. A force T of a segment is the one that
// the segment receives at its start; at its end it receives T2 = -(T + L w). A line that pulls its
// start towards its end therefore has T pointing away from the end. Lengths, forces and weights are
// in any consistent units, vectors in global axes.   Source: [Irvine 1981, sec. 2.2]
#pragma once

#include "numeric/small_matrix.hpp"

#include <optional>

namespace quelor {

/// A piece of line with the same properties all along.
struct CatenarySegment {
    double length; ///< unstretched
    double ea;     ///< modulus times area
    Vec3 w;        ///< weight per length, a vector
};

/// What is missing where a segment has no frame of its own.
enum class CatenaryLack { nothing, load, tension, both };

/// The local axes of a segment are the rows of R: z along the load w, or against the tension where
/// there is none; y along T x w, out of the plane of the line; x = y x z. Where T is along z, y is
/// the global axis least aligned with z, made normal to it. Zero when both are missing.
struct CatenaryFrame {
    SmallMatrix<3> R;
    CatenaryLack lack = CatenaryLack::nothing;
};
CatenaryFrame cable_transf(const Vec3& w, const Vec3& T);

/// A segment under the force T at its start.
struct CatenaryState {
    Vec3 delta{}; ///< from its start to its end
    double elongation = 0;
    Vec3 T2{};        ///< force that it receives at its end
    SmallMatrix<3> F; ///< d delta / d T, symmetric
    CatenaryLack lack = CatenaryLack::nothing;
};
CatenaryState cable_segment(const CatenarySegment& segment, const Vec3& T);

/// Segments one after the other from x1 on, T the force at the start of the first.
struct CatenaryChain {
    Vec3 end{};       ///< position of the end of the last
    Vec3 T2{};        ///< force at the end of the last
    SmallMatrix<3> F; ///< d end / d T
    CatenaryLack lack = CatenaryLack::nothing;
};
CatenaryChain cable_chain(std::span<const CatenarySegment> segments, const Vec3& x1, const Vec3& T);

/// A line between x1 and x2. Newton's iteration on T, each step halved up to 30 times until the end
/// comes nearer to x2; it ends when the distance is not above `tolerance`. T is the last one for
/// which the chain is finite and has an invertible F; when there is none, it is `start` and F is
/// zero.
struct CatenaryLine {
    Vec3 T{};            ///< force that the line receives at x1
    CatenaryChain chain; ///< for this T
    bool converged = false;
};
CatenaryLine cable_shoot(std::span<const CatenarySegment> segments, const Vec3& x1, const Vec3& x2,
                         const Vec3& start, double tolerance, int maxiter);

/// A force to start from: half of the weight of the line, along the line from its end to its start;
/// straight against the weight when the two coincide. A line without weight: the force that
/// stretches it to the distance, or a small one when it is slack.
Vec3 cable_estimate(std::span<const CatenarySegment> segments, const Vec3& x1, const Vec3& x2);

/// The inverse; nothing when a number is not finite or the matrix is singular.
std::optional<SmallMatrix<3>> inverse(const SmallMatrix<3>& m);

} // namespace quelor
