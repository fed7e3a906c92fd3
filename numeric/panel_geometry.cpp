#include "numeric/panel_geometry.hpp"

#include <algorithm>

namespace quelor {

namespace {

constexpr double flat_limit = 1e-10;  // of the longer diagonal: a warp below it is rounding
constexpr double area_limit = 1e-10;  // of the longer diagonal squared: an area below it is zero
constexpr double convex_limit = 1e-6; // of the area: excess of the two triangles over the diagonals

Vec3 mean(const Vec3& a, const Vec3& b, const Vec3& c) {
    return {(a[0] + b[0] + c[0]) / 3, (a[1] + b[1] + c[1]) / 3, (a[2] + b[2] + c[2]) / 3};
}

Vec3 mean(const Corners& p) {
    Vec3 m;
    for (std::size_t i = 0; i < 3; ++i)
        m[i] = (p[0][i] + p[1][i] + p[2][i] + p[3][i]) / 4;
    return m;
}

/// The product of the diagonals; half its length is the area of a convex panel.
VectorLength diagonal_product(const Corners& p) {
    return cross_product(difference(p[2], p[0]), difference(p[3], p[1]));
}

void flatten(Panel& panel, double diagonal) {
    auto& p = panel.corners;
    const double d = dot_product(panel.normal, difference(p[0], mean(p)));
    if (std::abs(d) <= flat_limit * diagonal) return;
    for (std::size_t i = 0; i < 4; ++i)
        p[i] = add_scaled(p[i], i % 2 == 0 ? -d : d, panel.normal);
}

} // namespace

double triangle_area(const Vec3& a, const Vec3& b, const Vec3& c) {
    std::array<double, 3> side{vector_length(difference(b, a)), vector_length(difference(c, b)),
                               vector_length(difference(a, c))};
    std::sort(side.begin(), side.end());
    const auto [z, y, x] = side; // x >= y >= z
    const double product = (x + (y + z)) * (z - (x - y)) * (z + (x - y)) * (x + (y - z));
    return 0.25 * std::sqrt(std::max(product, 0.0));
}

Panel flat_panel(const Corners& nodes, bool triangle) {
    Panel panel{.corners = nodes, .triangle = triangle};
    const auto [c, length] = diagonal_product(nodes);
    const double diagonal = std::max(vector_length(difference(nodes[2], nodes[0])),
                                     vector_length(difference(nodes[3], nodes[1])));
    if (!(length > area_limit * diagonal * diagonal) || !std::isfinite(length)) return panel;
    panel.normal = {c[0] / length, c[1] / length, c[2] / length};

    if (!triangle) flatten(panel, diagonal);
    const auto& p = panel.corners;
    const double area124 = triangle_area(p[0], p[1], p[3]);
    const double area234 = triangle ? 0 : triangle_area(p[1], p[2], p[3]);
    const Vec3 c124 = mean(p[0], p[1], p[3]);
    const Vec3 c234 = mean(p[1], p[2], p[3]);
    panel.area = area124 + area234;
    for (std::size_t i = 0; i < 3; ++i)
        panel.centroid[i] =
            triangle ? c124[i] : (c124[i] * area124 + c234[i] * area234) / panel.area;
    return panel;
}

bool has_area(const Panel& panel) {
    return panel.area > 0 && is_finite(panel.centroid);
}

bool is_convex(const Panel& panel) {
    return panel.triangle ||
           panel.area <= (1 + convex_limit) * diagonal_product(panel.corners).length / 2;
}

Panel PanelMesh::panel(int p) const {
    Panel panel{.triangle = type[nth(p)] == 1,
                .normal = normal(p),
                .centroid = centroid(p),
                .area = area[nth(p)]};
    for (int k = 1; k <= 4; ++k)
        panel.corners[nth(k)] = {xr(p, k), yr(p, k), zr(p, k)};
    return panel;
}

} // namespace quelor
