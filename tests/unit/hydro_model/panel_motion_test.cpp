#include "hydro_model/panel_motion.hpp"

#include <gtest/gtest.h>

using namespace quelor;

namespace {

Vec3 cross(const Vec3& a, const Vec3& b) {
    return cross_product(a, b).vector;
}

Vec3 mean(const Corners& v) {
    Vec3 m{};
    for (const auto& corner : v)
        for (std::size_t i = 0; i < 3; ++i)
            m[i] += corner[i] / 4;
    return m;
}

} // namespace

TEST(PanelMotion, a_rigid_rotation_moves_the_middle_like_a_point_of_the_body) {
    const Vec3 omega{0.3, -0.7, 1.1};
    const Corners quadrilateral{{{0, 0, 0}, {3, 0.2, 0}, {2.5, 2, 0}, {-0.4, 1.7, 0}}};
    const Corners triangle{{{0, 0, 0}, {3, 0.2, 0}, {2.5, 2, 0}, {2.5, 2, 0}}};
    for (const auto& corners : {quadrilateral, triangle}) {
        Corners u, theta;
        for (std::size_t k = 0; k < 4; ++k) {
            u[k] = cross(omega, corners[k]);
            theta[k] = omega;
        }
        const Vec3 n{0, 0, -1};
        const auto d = panel_displacement(n, rotation_weights(corners, n), u, theta);
        const auto expected = cross(omega, mean(corners));
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(d[i], expected[i], 1e-15);
    }
}

TEST(PanelMotion,
     quadratic_deflections_of_a_parallelogram_are_met_whatever_the_side_of_the_normal) {
    // w = 1 + 0.5 x - y + 0.7 x^2 - 0.4 x y + 0.9 y^2; theta_x = dw/dy, theta_y = -dw/dx
    const auto w = [](double x, double y) {
        return 1 + 0.5 * x - y + 0.7 * x * x - 0.4 * x * y + 0.9 * y * y;
    };
    const Corners corners{{{1, -1, 0}, {4, -0.5, 0}, {4.6, 1.5, 0}, {1.6, 1, 0}}};
    Corners u, theta;
    for (std::size_t k = 0; k < 4; ++k) {
        const double x = corners[k][0], y = corners[k][1];
        u[k] = {0, 0, w(x, y)};
        theta[k] = {-1 - 0.4 * x + 1.8 * y, -(0.5 + 1.4 * x - 0.4 * y), 0};
    }
    const auto middle = mean(corners);
    for (const double nz : {1.0, -1.0}) {
        const Vec3 n{0, 0, nz};
        const auto d = panel_displacement(n, rotation_weights(corners, n), u, theta);
        EXPECT_NEAR(d[2], w(middle[0], middle[1]), 1e-14);
        EXPECT_EQ(d[0], 0);
    }
}
