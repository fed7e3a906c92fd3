// Geometry of flat panels against closed forms and identities.
#include "numeric/panel_geometry.hpp"

#include <gtest/gtest.h>

#include <numbers>

using namespace quelor;

namespace {

void expect_near(const Vec3& a, const Vec3& b, double tol) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(a[i], b[i], tol) << "component " << i;
}

} // namespace

TEST(FlatPanel, of_a_rectangle_leaves_the_nodes) {
    // Sides 3 and 5 in the plane spanned by (1,2,2)/3 and (2,1,-2)/3, whose normal is (-2,2,-1)/3.
    const Vec3 u{1 / 3., 2 / 3., 2 / 3.}, v{2 / 3., 1 / 3., -2 / 3.}, o{7, -8, 9};
    const auto at = [&](double a, double b) { return add_scaled(add_scaled(o, a, u), b, v); };
    const std::array nodes{at(0, 0), at(3, 0), at(3, 5), at(0, 5)};
    const Panel panel = flat_panel(nodes, false);
    EXPECT_TRUE(has_area(panel) && is_convex(panel));
    EXPECT_EQ(panel.corners, nodes);
    EXPECT_NEAR(panel.area, 15, 1e-13);
    expect_near(panel.centroid, at(1.5, 2.5), 1e-14);
    expect_near(panel.normal, {-2 / 3., 2 / 3., -1 / 3.}, 1e-14);
}

TEST(FlatPanel, of_a_warped_quadrilateral_is_flat_and_lies_between_its_nodes) {
    const std::array<Vec3, 4> nodes{{{0, 0, .2}, {2, .1, 0}, {2.5, 2, .3}, {-.2, 1.8, -.1}}};
    const Panel panel = flat_panel(nodes, false);
    double shift = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        // Corners move along the normal by the same distance, up and down in turn, into one plane.
        const Vec3 moved = difference(panel.corners[i], nodes[i]);
        const double d = dot_product(moved, panel.normal);
        expect_near(moved, add_scaled({0, 0, 0}, d, panel.normal), 1e-15);
        EXPECT_NEAR(d, (i % 2 == 0 ? 1 : -1) * (i == 0 ? d : shift), 1e-15);
        if (i == 0) shift = d;
        EXPECT_NEAR(dot_product(difference(panel.corners[i], panel.centroid), panel.normal), 0,
                    1e-15);
    }
    EXPECT_GT(std::abs(shift), 0.05);
    // Area and centroid do not depend on which diagonal divides the flat panel.
    const auto& p = panel.corners;
    const double a1 = triangle_area(p[0], p[1], p[2]), a2 = triangle_area(p[0], p[2], p[3]);
    EXPECT_NEAR(panel.area, a1 + a2, 1e-14);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(panel.centroid[i] * 3 * (a1 + a2),
                    a1 * (p[0][i] + p[1][i] + p[2][i]) + a2 * (p[0][i] + p[2][i] + p[3][i]), 1e-13);
}

TEST(FlatPanel, of_a_closed_sphere_have_no_resultant_and_the_volume_of_the_polyhedron) {
    // Panels between parallels and meridians are plane, so the divergence theorem is exact: the
    // sum of a n is zero, and the sum of a n . c / 3 is minus the volume (normals point inward).
    constexpr int rows = 8, columns = 16;
    const auto at = [](int i, int j) {
        const double t = std::numbers::pi * i / rows, f = 2 * std::numbers::pi * j / columns;
        return Vec3{std::sin(t) * std::cos(f), std::sin(t) * std::sin(f), std::cos(t)};
    };
    Vec3 resultant{};
    double volume = 0, wanted = 0;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < columns; ++j) {
            const bool triangle = i == 0 || i == rows - 1;
            std::array nodes{at(i, j), at(i, j + 1), at(i + 1, j + 1), at(i + 1, j)};
            if (i == 0) nodes = {nodes[0], nodes[2], nodes[3], nodes[3]};
            if (i == rows - 1) nodes = {nodes[0], nodes[1], nodes[2], nodes[2]};
            const Panel panel = flat_panel(nodes, triangle);
            resultant = add_scaled(resultant, panel.area, panel.normal);
            volume -= panel.area * dot_product(panel.normal, panel.centroid) / 3;
            EXPECT_LT(dot_product(panel.normal, panel.centroid), 0);
        }
    // Frusta of regular polygons: height (A1 + A2 + sqrt(A1 A2)) / 3.
    for (int i = 0; i < rows; ++i) {
        const auto area = [&](int k) {
            const double r = std::sin(std::numbers::pi * k / rows);
            return columns / 2.0 * r * r * std::sin(2 * std::numbers::pi / columns);
        };
        const double h =
            std::cos(std::numbers::pi * i / rows) - std::cos(std::numbers::pi * (i + 1) / rows);
        wanted += h / 3 * (area(i) + area(i + 1) + std::sqrt(area(i) * area(i + 1)));
    }
    expect_near(resultant, {0, 0, 0}, 1e-14);
    EXPECT_NEAR(volume, wanted, 1e-14);
}

TEST(FlatPanel, without_area_is_not_valid_and_out_of_order_is_not_simple) {
    EXPECT_FALSE(has_area(flat_panel({{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}}}, false)));
    EXPECT_FALSE(has_area(flat_panel({{{0, 0, 0}, {1e-11, 1, 0}, {0, 2, 0}, {0, 2, 0}}}, true)));
    EXPECT_FALSE(has_area(flat_panel({{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}}, true)));
    EXPECT_FALSE(has_area(flat_panel({{{NAN, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}}, false)));
    EXPECT_FALSE(
        has_area(flat_panel({{{1e200, 0, 0}, {0, 1e200, 0}, {-1e200, 0, 0}, {0, 0, 1}}}, false)));
    EXPECT_FALSE(is_convex(flat_panel({{{0, 0, 0}, {1, .1, 0}, {0, 1, 0}, {1.3, 1.2, 0}}}, false)));
}

TEST(TriangleArea, keeps_its_digits_for_slender_triangles) {
    // Base 1, height 1e-4. Rounding of a side by 1e-16 changes the height by 1e-16 / 1e-4, a part
    // of 1e-8 of it.
    EXPECT_NEAR(triangle_area({0, 0, 0}, {1, 0, 0}, {0.5, 1e-4, 0}), 0.5e-4, 0.5e-4 * 3e-8);
}
