// K0 and K1 and the short elementary functions against the standard library.
#include "green/bessel_k.hpp"

#include <cmath>
#include <gtest/gtest.h>

#include "green/vecmath_short.hpp"

using namespace quelor;

namespace {

TEST(BesselK, both_orders_agree_with_the_library_to_2e_10) {
    for (double x = 1e-8; x < 650.0; x *= 1.013) {
        EXPECT_NEAR(k0p(x) / std::cyl_bessel_k(0.0, x), 1.0, 2e-10) << x;
        EXPECT_NEAR(k1p(x) / std::cyl_bessel_k(1.0, x), 1.0, 2e-10) << x;
    }
    EXPECT_TRUE(std::isinf(k0p(0.0)) && std::isinf(k1p(0.0)));
    EXPECT_TRUE(std::isnan(k0p(-1.0)) && std::isnan(k1p(-1.0)));
    EXPECT_EQ(k0p(1e4), 0.0);
}

// The absolute error that the tables promise together, 1e-10, once exp(-x) is applied.
template <int degree> void check_table(const BesselKTable<degree>& table) {
    for (double x = table.start; x < 100.0; x *= 1.01) {
        const BesselK scaled = bessel_k_scaled(table, 2.0 * table.start / x - 1.0);
        const double factor = std::exp(-x) / std::sqrt(x);
        EXPECT_NEAR(scaled.k0 * factor, std::cyl_bessel_k(0.0, x), 1e-10)
            << table.start << " " << x;
        EXPECT_NEAR(scaled.k1 * factor, std::cyl_bessel_k(1.0, x), 1e-10)
            << table.start << " " << x;
    }
}

TEST(BesselK, every_table_keeps_its_error_from_its_start_on) {
    check_table(bessel_k_1);
    check_table(bessel_k_2);
    check_table(bessel_k_3);
    check_table(bessel_k_4);
    check_table(bessel_k_5);
    check_table(bessel_k_6);
    check_table(bessel_k_7);
}

TEST(VecmathShort, ten_digits_over_the_stated_ranges) {
    for (double x = -707.0; x < 700.0; x += 0.0371)
        EXPECT_NEAR(vec_exp_short(x) / std::exp(x), 1.0, 6e-11) << x;
    EXPECT_LT(vec_exp_short(-1e9), 1e-300);
    for (double x = -300.0; x < 300.0; x += 0.00713) {
        const SinCos value = vec_sincos_short(x);
        EXPECT_NEAR(value.sin, std::sin(x * std::numbers::pi / 2), 6e-11) << x;
        EXPECT_NEAR(value.cos, std::cos(x * std::numbers::pi / 2), 6e-11) << x;
    }
}

} // namespace
