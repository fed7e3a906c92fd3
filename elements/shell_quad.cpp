#include "elements/shell_quad.hpp"

#include "numeric/quadrature.hpp"

#include <algorithm>

namespace quelor {

// --- geometry -----------------------------------------------------------------------------------

ShellQuad shell_quad(const std::array<Vec3, 4>& vertices) {
    constexpr double flat = 1e-12; // of the square of the longer diagonal: no area
    const Vec3 d13 = difference(vertices[2], vertices[0]);
    const Vec3 d24 = difference(vertices[3], vertices[1]);
    const Vec3 side = difference(vertices[1], vertices[0]);
    const auto [normal, twice_area] = cross_product(d13, d24);
    ShellQuad q{};
    q.area = twice_area / 2;
    const double longest = std::max(dot_product(d13, d13), dot_product(d24, d24));
    if (!(twice_area > flat * longest) || !std::isfinite(longest)) return q;
    q.normal = scale_to_length(normal, 1);
    q.warp = std::abs(dot_product(side, q.normal));
    // x1 + part13 d13 and x2 + part24 d24 differ along the normal alone.
    q.part13 = dot_product(cross_product(side, d24).vector, q.normal) / twice_area;
    q.part24 = dot_product(cross_product(side, d13).vector, q.normal) / twice_area;
    const auto inside = [](double part) { return part > 0 && part < 1; };
    q.valid = inside(q.part13) && inside(q.part24);
    const Vec3 foot13 = add_scaled(vertices[0], q.part13, d13);
    const Vec3 foot24 = add_scaled(vertices[1], q.part24, d24);
    q.middle = add_scaled(foot13, 0.5, difference(foot24, foot13));
    return q;
}

// --- the inner point as a virtual node ----------------------------------------------------------

std::array<double, 4> inner_weights(const ShellQuad& q) {
    return {(1 - q.part13) / 2, (1 - q.part24) / 2, q.part13 / 2, q.part24 / 2};
}

namespace {

constexpr int inner = 24; ///< degrees of freedom before those of the inner node

/// Adds to the rows first + 1 to first + 3 the product left right^T times the vector of three
/// degrees of freedom from column + 1 on.
void add_dyad(InnerMotion& c, int first, int column, double f, const Vec3& left,
              const Vec3& right) {
    for (int j = 1; j <= 3; ++j)
        for (int i = 1; i <= 3; ++i)
            c(first + i, column + j) += f * left[nth(i)] * right[nth(j)];
}

/// The same with the unit matrix for the product.
void add_unit(InnerMotion& c, int first, int column, double f) {
    for (int i = 1; i <= 3; ++i)
        c(first + i, column + i) += f;
}

struct Diagonal {
    int a, b;    ///< corners, from 0
    double part; ///< from a to the inner point
    double length;
    Vec3 across; ///< n x s: a turn about it is the slope along the diagonal
};

} // namespace

InnerMotion inner_motion(const ShellQuad& q, const std::array<Vec3, 4>& vertices,
                         InnerRotation rotation) {
    InnerMotion c;
    for (int i = 1; i <= inner; ++i)
        c(i, i) = 1;
    const auto diagonal = [&](int a, int b, double part) {
        const auto [s, length] = direction_cosines(vertices[as_size(a)], vertices[as_size(b)]);
        return Diagonal{a, b, part, length, cross_product(q.normal, s).vector};
    };
    const std::array diagonals{diagonal(0, 2, q.part13), diagonal(1, 3, q.part24)};
    const Vec3& n = q.normal;
    const Vec3 m13 = diagonals[0].across, m24 = diagonals[1].across;
    // Vectors in the surface that belong to the products with m13 and m24.
    const double sine = dot_product(m13, cross_product(m24, n).vector);
    const std::array<Vec3, 2> dual{cross_product(m24, n).vector, cross_product(n, m13).vector};
    constexpr int turn = inner + 3;
    for (std::size_t d = 0; d < 2; ++d) {
        const Diagonal& g = diagonals[d];
        const double bulge = g.part * (1 - g.part) * g.length / 4;
        for (const bool end : {false, true}) {
            const int u = 6 * (end ? g.b : g.a), th = u + 3;
            const double l = end ? g.part : 1 - g.part;
            add_unit(c, inner, u, l / 2);
            add_dyad(c, inner, th, end ? bulge : -bulge, n, g.across);
            switch (rotation) {
            case InnerRotation::mean:
                add_unit(c, turn, th, l / 2);
                break;
            case InnerRotation::first_diagonal:
                if (d == 0) add_unit(c, turn, th, l);
                add_dyad(c, turn, th, d == 0 ? -l / 2 : l / 2, n, n);
                break;
            case InnerRotation::continuous_shear:
                add_dyad(c, turn, th, l / sine, dual[d], g.across);
                add_dyad(c, turn, th, l / 2, n, n);
                break;
            }
        }
    }
    return c;
}

namespace {

/// Place among the 30 of degree of freedom i of a triangle; both from 0.
std::size_t place_in_quad(std::size_t quarter, std::size_t i) {
    return 6 * shell_quarters[quarter][i / 6] + i % 6;
}

} // namespace

void add_quarter(WithInner& k, std::size_t quarter, const ShellMatrix& of_triangle) {
    for (std::size_t j = 0; j < shell_dofs; ++j)
        for (std::size_t i = 0; i < shell_dofs; ++i)
            k.a[place_in_quad(quarter, i) + 30 * place_in_quad(quarter, j)] +=
                of_triangle.a[i + shell_dofs * j];
}

ShellVector quarter_of(const std::array<double, 30>& u, std::size_t quarter) {
    ShellVector result;
    for (std::size_t i = 0; i < shell_dofs; ++i)
        result[i] = u[place_in_quad(quarter, i)];
    return result;
}

void add_quarter(std::array<double, 30>& f, std::size_t quarter, const ShellVector& of_triangle) {
    for (std::size_t i = 0; i < shell_dofs; ++i)
        f[place_in_quad(quarter, i)] += of_triangle[i];
}

double rotation_trace(const QuadMatrix& k, const Vec3& normal) {
    double sum = 0;
    for (int th = 3; th < inner; th += 6)
        for (int j = 1; j <= 3; ++j)
            for (int i = 1; i <= 3; ++i)
                sum += ((i == j ? 1 : 0) - normal[nth(i)] * normal[nth(j)]) * k(th + i, th + j);
    return sum;
}

void add_drilling_penalty(ShellMatrix& k, const ShellTriangle& t, double gamma_t) {
    static const auto points = triangle_rule(3); // exact: the rotation is linear
    for (const TrianglePoint& p : points) {
        const ShellPoint l{p.l1, p.l2, p.l3};
        ShellVector b{};
        for (std::size_t i = 0; i < 3; ++i) {
            b[shell_u + i] = t.ly[i] / 2;
            b[shell_v + i] = -t.lx[i] / 2;
            b[shell_thz + i] = l[i];
        }
        for (std::size_t j = 0; j < shell_dofs; ++j)
            for (std::size_t i = 0; i < shell_dofs; ++i)
                k.a[i + shell_dofs * j] += gamma_t * p.weight * t.area * b[i] * b[j];
    }
}

} // namespace quelor
