#include "elements/frame.hpp"

namespace quelor {

// --- bending in one plane -----------------------------------------------------------------------

BendingTerms elastic_terms(double ei, double gas, double length) {
    const double f = gas != 0 ? ei / (gas * length * length) : 0;
    const double reduced = ei / (1 + 12 * f);
    return {12 * reduced / (length * length * length), 6 * reduced / (length * length),
            (1 + 3 * f) * 4 * reduced / length, (1 - 6 * f) * 2 * reduced / length};
}

BendingTerms geometric_terms(double tension, double length) {
    return {36 * tension / (30 * length), 0.1 * tension, 2 * tension * length / 15,
            -tension * length / 30};
}

// --- the beam in space --------------------------------------------------------------------------

namespace {

constexpr BendingPlane plane_xy{2, 6, 8, 12, 1};
constexpr BendingPlane plane_xz{3, 5, 9, 11, -1};

} // namespace

LocalAxes frame_axes(const Vec3& chord, const Vec3& toward3) {
    constexpr double nearly_parallel = 1e-10; // sine of the angle
    const Vec3 x = direction_cosines({0, 0, 0}, chord).vector;
    const Vec3 v = direction_cosines({0, 0, 0}, toward3).vector;
    const auto [normal, sine] = cross_product(x, v);
    if (!(sine > nearly_parallel)) return {};
    const Vec3 y = scale_to_length(normal, 1);
    return {x, y, cross_product(x, y).vector};
}

SmallMatrix<12> frame_stiffness(const FrameSection& s, double length) {
    SmallMatrix<12> k;
    add_spring(k, 1, 7, s.e * s.area / length);
    add_spring(k, 4, 10, s.g * s.j / length);
    add_bending(k, plane_xy, elastic_terms(s.e * s.iz, s.g * s.asy, length));
    add_bending(k, plane_xz, elastic_terms(s.e * s.iy, s.g * s.asz, length));
    return k;
}

void add_frame_geometric(SmallMatrix<12>& k, double tension, double length) {
    const BendingTerms terms = geometric_terms(tension, length);
    add_bending(k, plane_xy, terms);
    add_bending(k, plane_xz, terms);
}

std::array<double, 12> frame_lumped(const Vec3& translation, const Vec3& rotation, double length) {
    std::array<double, 12> d{};
    for (std::size_t i = 0; i < 3; ++i) {
        d[i] = d[i + 6] = translation[i] * length / 2;
        d[i + 3] = d[i + 9] = rotation[i] * length / 2;
    }
    return d;
}

SmallMatrix<12> frame_to_global_diagonal(const std::array<double, 12>& d, const LocalAxes& axes) {
    SmallMatrix<12> local;
    for (int i = 1; i <= 12; ++i)
        local(i, i) = d[nth(i)];
    return to_global(local, axes);
}

} // namespace quelor
