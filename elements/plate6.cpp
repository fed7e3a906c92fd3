#include "elements/plate6.hpp"

#include "numeric/quadrature.hpp"

#include <vector>

namespace quelor {

namespace {

using SixValues = std::array<double, plate6_nodes>;

/// Shape functions at a point with their derivatives in x and y, and the area that belongs to a
/// weight of 1.
struct PlateShape {
    SixValues n, dx, dy;
    double area;
};

/// L_i (2 L_i - 1) of the vertices, 4 L_i L_j of the edges.
PlateShape plate_shape(const PlateNodes& nodes, const std::array<double, 3>& l) {
    constexpr std::array<std::array<std::size_t, 2>, 3> edges{{{0, 1}, {1, 2}, {0, 2}}};
    std::array<SixValues, 3> dl{}; // by each area coordinate, as if they were independent
    PlateShape s{};
    for (std::size_t i = 0; i < 3; ++i) {
        s.n[i] = l[i] * (2 * l[i] - 1);
        dl[i][i] = 4 * l[i] - 1;
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const auto [i, j] = edges[k];
        s.n[3 + k] = 4 * l[i] * l[j];
        dl[i][3 + k] = 4 * l[j];
        dl[j][3 + k] = 4 * l[i];
    }
    // Derivatives by L1 and L2 with L3 = 1 - L1 - L2.
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (std::size_t a = 0; a < plate6_nodes; ++a) {
        x1 += (dl[0][a] - dl[2][a]) * nodes[a][0];
        x2 += (dl[1][a] - dl[2][a]) * nodes[a][0];
        y1 += (dl[0][a] - dl[2][a]) * nodes[a][1];
        y2 += (dl[1][a] - dl[2][a]) * nodes[a][1];
    }
    const double determinant = x1 * y2 - x2 * y1;
    for (std::size_t a = 0; a < plate6_nodes; ++a) {
        const double d1 = dl[0][a] - dl[2][a], d2 = dl[1][a] - dl[2][a];
        s.dx[a] = (d1 * y2 - d2 * y1) / determinant;
        s.dy[a] = (d2 * x1 - d1 * x2) / determinant;
    }
    s.area = determinant / 2;
    return s;
}

/// Curvatures thy,x; -thx,y; thy,y - thx,x.
SmallMatrix<3, plate6_dofs> plate_curvature(const PlateShape& s) {
    SmallMatrix<3, plate6_dofs> b;
    for (int a = 1; a <= plate6_nodes; ++a) {
        const int thx = 3 * a - 1, thy = 3 * a;
        b(1, thy) = s.dx[nth(a)];
        b(2, thx) = -s.dy[nth(a)];
        b(3, thx) = -s.dx[nth(a)];
        b(3, thy) = s.dy[nth(a)];
    }
    return b;
}

/// Shear strains w,x + thy; w,y - thx.
SmallMatrix<2, plate6_dofs> plate_shear(const PlateShape& s) {
    SmallMatrix<2, plate6_dofs> b;
    for (int a = 1; a <= plate6_nodes; ++a) {
        const int w = 3 * a - 2, thx = 3 * a - 1, thy = 3 * a;
        b(1, w) = s.dx[nth(a)];
        b(2, w) = s.dy[nth(a)];
        b(1, thy) = s.n[nth(a)];
        b(2, thx) = -s.n[nth(a)];
    }
    return b;
}

/// Visits the points of a rule: visit(shape, area of the point).
template <class Visit>
void for_each_point(const std::vector<TrianglePoint>& rule, const PlateNodes& nodes, Visit visit) {
    for (const TrianglePoint& p : rule) {
        const PlateShape s = plate_shape(nodes, {p.l1, p.l2, p.l3});
        visit(s, p.weight * std::abs(s.area));
    }
}

const std::vector<TrianglePoint>& seven_points() {
    static const auto points = triangle_rule(7);
    return points;
}

template <int N> void add_times(SmallMatrix<N>& k, double f, const SmallMatrix<N>& part) {
    for (std::size_t i = 0; i < k.a.size(); ++i)
        k.a[i] += f * part.a[i];
}

} // namespace

bool plate6_is_possible(const PlateNodes& nodes) {
    constexpr double flat = 1e-12; // of the square of the longest side
    double longest = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Vec3 side = difference(nodes[(i + 1) % 3], nodes[i]);
        longest = std::max(longest, dot_product(side, side));
    }
    bool positive = true, negative = true;
    for (const TrianglePoint& p : seven_points()) {
        const double area = plate_shape(nodes, {p.l1, p.l2, p.l3}).area;
        positive = positive && area > flat * longest;
        negative = negative && area < -flat * longest;
    }
    return (positive || negative) && std::isfinite(longest);
}

PlateParts plate6_parts(const PlateNodes& nodes, const ShellSection& s) {
    static const auto three_points = triangle_rule(3);
    PlateParts parts;
    for_each_point(seven_points(), nodes, [&](const PlateShape& shape, double area) {
        add_times(parts.bending, area, congruent(s.bending, plate_curvature(shape)));
    });
    for_each_point(three_points, nodes, [&](const PlateShape& shape, double area) {
        add_times(parts.shear, area, congruent(s.shear, plate_shear(shape)));
    });
    return parts;
}

double plate6_relaxation(const PlateParts& parts, double c_s) {
    const auto sum = [](const PlateMatrix& k) {
        double total = 0;
        for (int i = 1; i <= plate6_dofs; ++i)
            if (i % 3 != 1) total += k(i, i);
        return total;
    };
    return relaxation(c_s, sum(parts.shear), sum(parts.bending));
}

PlateMatrix plate6_mass(const PlateNodes& nodes, double mass_per_area) {
    PlateMatrix m;
    for_each_point(seven_points(), nodes, [&](const PlateShape& shape, double area) {
        for (int b = 1; b <= plate6_nodes; ++b)
            for (int a = 1; a <= plate6_nodes; ++a)
                m(3 * a - 2, 3 * b - 2) += area * mass_per_area * shape.n[nth(a)] * shape.n[nth(b)];
    });
    return m;
}

PlateVector plate6_load(const PlateNodes& nodes, const SixValues& pressure) {
    PlateVector f{};
    for_each_point(seven_points(), nodes, [&](const PlateShape& shape, double area) {
        double p = 0;
        for (std::size_t a = 0; a < plate6_nodes; ++a)
            p += shape.n[a] * pressure[a];
        for (std::size_t a = 0; a < plate6_nodes; ++a)
            f[3 * a] += area * p * shape.n[a];
    });
    return f;
}

PlateState plate6_state(const PlateNodes& nodes, const ShellSection& s, double phi,
                        const PlateVector& u) {
    const PlateShape shape = plate_shape(nodes, {1.0 / 3, 1.0 / 3, 1.0 / 3});
    PlateState state{};
    for (std::size_t a = 0; a < plate6_nodes; ++a)
        state.place = add_scaled(state.place, shape.n[a], nodes[a]);
    const auto m = product(s.bending, product(plate_curvature(shape), u));
    const auto q = product(s.shear, product(plate_shear(shape), u));
    state.resultants = {m[0], m[1], m[2], phi * q[0], phi * q[1]};
    return state;
}

} // namespace quelor
