#include "hydro_model/waven.hpp"

#include <cmath>
#include <gtest/gtest.h>

using quelor::waven;

TEST(Waven, the_root_satisfies_the_dispersion_relation_from_shallow_to_deep_water) {
    constexpr double depth = 7.3, grav = 9.80665;
    for (double kh = 1e-4; kh <= 1e4; kh *= 1.3) {
        const double k = kh / depth;
        const auto wave = waven(std::sqrt(grav * k * std::tanh(kh)), depth, grav);
        EXPECT_TRUE(wave.converged) << kh;
        // knu carries a rounding of 2 eps from the square root and its square; the last step is
        // below 1e-12 and Newton's error behind it far smaller.
        EXPECT_NEAR(wave.k / k, 1.0, 2e-15 + 1e-14) << kh;
        EXPECT_NEAR(wave.k * std::tanh(wave.k * depth) / wave.knu, 1.0, 1e-14) << kh;
    }
}

TEST(Waven, water_without_depth_and_a_wave_without_frequency_need_no_iteration) {
    EXPECT_EQ(waven(2.0, 0.0, 8.0).k, 0.5);
    EXPECT_EQ(waven(2.0, -1.0, 8.0).k, 0.5);
    EXPECT_EQ(waven(0.0, 10.0, 9.81).k, 0.0);
    EXPECT_TRUE(waven(0.0, 10.0, 9.81).converged);
}

TEST(Waven, a_frequency_that_is_no_number_does_not_converge) {
    EXPECT_FALSE(waven(std::nan(""), 10.0, 9.81).converged);
}
