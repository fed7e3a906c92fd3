// Vectors in space: the small algebra of elements and panels. A numeric kernel.
#pragma once

#include <array>
#include <cmath>

namespace quelor {

using Vec3 = std::array<double, 3>;

/// A vector and its length.
struct VectorLength {
    Vec3 vector;
    double length;
};

constexpr double dot_product(const Vec3& a, const Vec3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline double vector_length(const Vec3& a) {
    return std::sqrt(dot_product(a, a));
}
constexpr Vec3 difference(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
/// a + f b
constexpr Vec3 add_scaled(const Vec3& a, double f, const Vec3& b) {
    return {a[0] + f * b[0], a[1] + f * b[1], a[2] + f * b[2]};
}
/// f a
constexpr Vec3 scaled(const Vec3& a, double f) {
    return {a[0] * f, a[1] * f, a[2] * f};
}
inline bool is_finite(const Vec3& a) {
    return std::isfinite(a[0]) && std::isfinite(a[1]) && std::isfinite(a[2]);
}

/// a x b and its length.
inline VectorLength cross_product(const Vec3& a, const Vec3& b) {
    const Vec3 c{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    return {c, vector_length(c)};
}

/// The vector times length / |vector|; as it is when its length is 0 or already the wanted one.
inline Vec3 scale_to_length(const Vec3& a, double length) {
    const double present = vector_length(a);
    if (present == 0 || present == length) return a;
    return scaled(a, length / present);
}

/// From p1 to p2: the unit vector and the distance; the zero vector when the points coincide.
inline VectorLength direction_cosines(const Vec3& p1, const Vec3& p2) {
    const Vec3 d = difference(p2, p1);
    const double length = vector_length(d);
    if (!(length > 0)) return {d, length};
    return {{d[0] / length, d[1] / length, d[2] / length}, length};
}

} // namespace quelor
