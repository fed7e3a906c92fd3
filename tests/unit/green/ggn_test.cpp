// The Green function of a source panel: gradient, subdivision, limits and failure.
#include "green/ggn.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

using namespace quelor;

namespace {

// A rectangle of 0.2 x 0.3 below the surface, sloping; its normal points up and to -x.
SourcePanel sloping(double x0 = 0, double y0 = 0, int parts = 1, double gauge = 2.5) {
    const auto point = [&](double u, double v) -> Vec3 {
        return {0.2 * u, 0.3 * v, -0.5 + 0.1 * u};
    };
    const double d = 1.0 / parts;
    const Corners c{point(x0, y0), point(x0 + d, y0), point(x0 + d, y0 + d), point(x0, y0 + d)};
    return source_panel(flat_panel(c, false), 1, gauge);
}

// In the near field the bottom image stays in deep water; so far away it does not matter.
constexpr GreenWater deep{1e9, -1}, shallow{1.5, 1.5};

} // namespace

// In either field dG/dn belongs to the G that is returned; differences over 2e-4 leave 1e-7.
TEST(PanelGreenFunction, has_the_derivative_of_its_own_potential) {
    const SourcePanel panel = sloping();
    const Vec3 n{0.36, 0.48, -0.8};
    constexpr double step = 1e-4;
    DepthCache cache;
    for (const GreenWater& water : {deep, shallow}) {
        for (const double sign_x : {1.0, -1.0}) {
            for (const Vec3& p : {Vec3{0.3, 0.1, -0.6}, {0.1, -0.1, -0.2}, {2, 1, -0.3}}) {
                const Reflection reflection{sign_x, 1};
                const auto G = [&](double t) {
                    return g_only(add_scaled(p, t, n), panel, reflection, water, cache).G;
                };
                const GreenInfluence value = ggn(p, n, panel, reflection, water, cache);
                const Complex8 slope = (G(step) - G(-step)) / (2 * step);
                EXPECT_EQ(value.G, G(0));
                EXPECT_LT(std::abs(value.dGdn - slope), 1e-6 * std::abs(slope));
            }
        }
    }
}

// The panel cut into parts. Of 20 x 20 parts each is a point as seen from the field point; of one
// or 2 x 2 the direct term is integrated, and what remains is the change over a part of the wave
// and image terms, of second order in its size.
TEST(PanelGreenFunction, is_the_sum_over_the_parts_of_the_panel) {
    DepthCache cache;
    for (const GreenWater& water : {deep, shallow}) {
        const auto sum = [&](int parts, double gauge) {
            std::array<Complex8, 2> total;
            for (int part = 0; part < parts * parts; ++part) {
                const double x = static_cast<double>(part % parts) / parts;
                const double y = static_cast<double>(part / parts) / parts;
                const GreenInfluence value = ggn({0.5, 0.2, -0.6}, {0, 0.6, 0.8},
                                                 sloping(x, y, parts, gauge), {}, water, cache);
                total[0] += value.G;
                total[1] += value.dGdn;
            }
            return total;
        };
        const auto points = sum(20, 2.5), whole = sum(1, 10), quarters = sum(2, 10);
        for (const std::size_t k : {0U, 1U}) {
            const double error = std::abs(whole[k] - points[k]);
            EXPECT_LT(error, 1e-2 * std::abs(points[k]));
            EXPECT_LT(std::abs(quarters[k] - points[k]), 0.3 * error);
        }
    }
}

TEST(PanelGreenFunction, has_no_wave_terms_at_its_own_image_and_no_value_below_the_bottom) {
    const SourcePanel lid = source_panel(
        flat_panel({{{0, 0, 0}, {0.1, 0, 0}, {0.1, 0.1, 0}, {0, 0.1, 0}}}, false), 1, 2.5);
    DepthCache cache;
    for (const GreenWater& water : {deep, shallow}) {
        const GreenInfluence self = ggn(lid.centroid, {0, 0, 1}, lid, {}, water, cache);
        EXPECT_EQ(self.status, GreenStatus::found);
        EXPECT_EQ(self.G.imag(), 0);
        // the panel and its image, and a trace of the bottom image
        EXPECT_NEAR(self.dGdn.real(), 4 * std::numbers::pi, 2e-3);
    }
    const GreenInfluence below = g_only({1, 0, -2}, sloping(), {}, shallow, cache);
    EXPECT_EQ(below.status, GreenStatus::out_of_range);
    EXPECT_EQ(below.d1, 2);
    EXPECT_EQ(below.h_green, 1.5);
}
