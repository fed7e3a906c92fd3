#include "elements/plane_beam.hpp"

#include <numbers>

namespace quelor {

namespace {

constexpr BendingPlane plane{2, 3, 5, 6, 1};

/// Rows: the local axes in terms of u, v, r of one node.
SmallMatrix<6> turn_to(double angle) {
    SmallMatrix<6> t;
    const double c = std::cos(angle), s = std::sin(angle);
    for (const int i : {0, 3}) {
        t(i + 1, i + 1) = t(i + 2, i + 2) = c;
        t(i + 1, i + 2) = s;
        t(i + 2, i + 1) = -s;
        t(i + 3, i + 3) = 1;
    }
    return t;
}

/// Rotation of the chord, with the whole turns that bring it nearest to `near`.
double chord_rotation(const PlaneChord& original, const PlaneChord& present, double near) {
    constexpr double turn = 2 * std::numbers::pi;
    const double r = present.angle - original.angle;
    return r + turn * std::nearbyint((near - r) / turn);
}

} // namespace

PlaneChord plane_chord(double a1, double b1, double a2, double b2) {
    return {std::hypot(a2 - a1, b2 - b1), std::atan2(b2 - b1, a2 - a1)};
}

PlaneForces plane_forces(const PlaneSection& s, const PlaneChord& original,
                         const PlaneChord& present, double r1, double r2) {
    const double r = chord_rotation(original, present, (r1 + r2) / 2);
    const double t1 = r1 - r, t2 = r2 - r;
    const double c = 4 * s.e * s.moi / original.length;
    const double m1 = c * (t1 + t2 / 2), m2 = c * (t2 + t1 / 2);
    return {(present.length / original.length - 1) * s.e * s.area, (m1 + m2) / present.length, m1,
            m2};
}

std::array<double, 6> plane_force_vector(const PlaneForces& f, double angle) {
    const std::array local{-f.n, f.v, f.m1, f.n, -f.v, f.m2};
    return transposed_product(turn_to(angle), local);
}

SmallMatrix<6> plane_stiffness(const PlaneSection& s, const PlaneChord& original,
                               const PlaneChord& present, double tension) {
    SmallMatrix<6> k;
    add_spring(k, 1, 4, s.e * s.area / original.length);
    add_bending(k, plane, elastic_terms(s.e * s.moi, s.g * s.as, original.length));
    add_bending(k, plane, geometric_terms(tension, present.length));
    return congruent(k, turn_to(present.angle));
}

SmallMatrix<6> plane_mass(double mx, double my, double rotary, const PlaneChord& chord) {
    SmallMatrix<6> m;
    const double half = chord.length / 2;
    for (const int i : {0, 3}) {
        m(i + 1, i + 1) = mx * half;
        m(i + 2, i + 2) = my * half;
        m(i + 3, i + 3) = rotary * half;
    }
    return congruent(m, turn_to(chord.angle));
}

SmallMatrix<6> reversed_rotations(SmallMatrix<6> k) {
    for (const int r : {3, 6})
        for (int i = 1; i <= 6; ++i) {
            k(i, r) = -k(i, r);
            k(r, i) = -k(r, i);
        }
    return k;
}

std::array<double, 6> reversed_rotations(std::array<double, 6> f) {
    f[2] = -f[2];
    f[5] = -f[5];
    return f;
}

} // namespace quelor
