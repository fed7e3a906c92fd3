// Roots and weights of the dispersion relation.
#include "green/eigwno.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

using namespace quelor;

namespace {

constexpr double depths[] = {1e-8, 1e-4, 0.002, 0.05, 0.3, 1.0, 2.5, 5.0, 10.0, 20.0, 300.0, 1e8};

TEST(Eigwno, the_roots_satisfy_the_dispersion_relation_from_the_shallowest_to_the_deepest_water) {
    for (const double H : depths) {
        WaveRoots roots;
        ASSERT_EQ(eigwno(H, roots), RootStatus::found) << H;
        // 1e-13: the residual at a root that is good to the last bits
        EXPECT_NEAR(roots.x0 * std::tanh(roots.x0) / H, 1.0, 1e-13) << H;
        EXPECT_DOUBLE_EQ(roots.k0 * H, roots.x0);
        for (int m = 1; m <= evanescent_modes; ++m) {
            const double y = roots.k[static_cast<std::size_t>(m - 1)] * H;
            EXPECT_NEAR((y * std::sin(y) + H * std::cos(y)) / std::hypot(y, H), 0.0, 1e-13 * y)
                << H;
            EXPECT_GT(y, (m - 0.5) * std::numbers::pi * (1.0 - 1e-15)) << H;
            EXPECT_LE(y, m * std::numbers::pi) << H;
        }
    }
}

TEST(Eigwno, the_weights_are_the_residues_of_the_integrand) {
    for (const double H : {0.002, 0.3, 1.0, 2.5, 5.0, 10.0, 20.0}) {
        WaveRoots roots;
        eigwno(H, roots);
        // c0 = -res/2, res = 1/d/dk [((k-1) exp(2kH) - (k+1))/(k+1)] by a central difference
        const auto pole = [H, &roots](double k) {
            return (k - 1.0) / (k + 1.0) * std::exp(2.0 * (k - roots.k0) * H) -
                   std::exp(-2.0 * roots.k0 * H);
        };
        const double step = 1e-5 * roots.k0;
        const double slope = (pole(roots.k0 + step) - pole(roots.k0 - step)) / (2.0 * step);
        EXPECT_NEAR(roots.c0, -0.5 / slope, 1e-6 * std::abs(roots.c0)) << H;
        for (std::size_t i = 0; i < roots.k.size(); ++i) {
            // c times int_0^H cos(k z)^2 dz is 2
            const double norm = 0.5 * H + std::sin(2.0 * roots.k[i] * H) / (4.0 * roots.k[i]);
            EXPECT_NEAR(roots.c[i] * norm, 2.0, 1e-10) << H << " " << i;
        }
    }
}

} // namespace
