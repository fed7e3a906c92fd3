// The vector elementary functions against the long double library, over their stated ranges.
#include "green/vecmath.hpp"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace quelor;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

// Both signs, every decade from 1e-12 to `largest`, and a dense uniform sweep.
std::vector<double> arguments(double largest, bool negative) {
    std::vector<double> x;
    for (double v = 1e-12; v < largest; v *= 1.0173)
        x.push_back(v);
    for (int i = 1; i <= 20000; ++i)
        x.push_back(largest * i / 20000.0);
    const std::size_t n = x.size();
    for (std::size_t i = 0; negative && i < n; ++i)
        x.push_back(-x[i]);
    return x;
}

using Loop = void (*)(std::size_t, const double*, double*);
QUELOR_CLONES void exp_loop(std::size_t n, const double* x, double* y) {
    for (std::size_t i = 0; i < n; ++i)
        y[i] = vec_exp(x[i]);
}
QUELOR_CLONES void log_loop(std::size_t n, const double* x, double* y) {
    for (std::size_t i = 0; i < n; ++i)
        y[i] = vec_log(x[i]);
}
QUELOR_CLONES void sin_loop(std::size_t n, const double* x, double* y) {
    for (std::size_t i = 0; i < n; ++i)
        y[i] = vec_sincos(x[i]).sin;
}
QUELOR_CLONES void cos_loop(std::size_t n, const double* x, double* y) {
    for (std::size_t i = 0; i < n; ++i)
        y[i] = vec_sincos(x[i]).cos;
}
QUELOR_CLONES void atan_loop(std::size_t n, const double* x, double* y) {
    for (std::size_t i = 0; i < n; ++i)
        y[i] = vec_atan(x[i]);
}
QUELOR_CLONES void atan2_loop(std::size_t n, const double* x, double* y) { // atan2(x, 1 - x)
    for (std::size_t i = 0; i < n; ++i)
        y[i] = vec_atan2(x[i], 1.0 - x[i]);
}

// Largest error of a loop, relative to the value plus `floor`.
double largest_error(Loop loop, const std::vector<double>& x,
                     const std::function<long double(double)>& exact, long double floor) {
    std::vector<double> y(x.size());
    loop(x.size(), x.data(), y.data());
    long double largest = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const long double value = exact(x[i]);
        const long double error = std::abs(y[i] - value) / (std::abs(value) + floor);
        if (!(error <= largest)) largest = error;
    }
    return static_cast<double>(largest);
}

TEST(Vecmath, agrees_with_the_library_to_the_stated_errors) {
    const auto exp_l = [](double x) { return std::exp(static_cast<long double>(x)); };
    const auto log_l = [](double x) { return std::log(static_cast<long double>(x)); };
    const auto sin_l = [](double x) { return std::sin(static_cast<long double>(x)); };
    const auto cos_l = [](double x) { return std::cos(static_cast<long double>(x)); };
    const auto atan_l = [](double x) { return std::atan(static_cast<long double>(x)); };
    const auto atan2_l = [](double x) {
        return std::atan2(static_cast<long double>(x), static_cast<long double>(1.0 - x));
    };
    EXPECT_LT(largest_error(exp_loop, arguments(707.0, true), exp_l, 0), 1e-14);
    EXPECT_LT(largest_error(log_loop, arguments(1e300, false), log_l, 0), 1e-15);
    EXPECT_LT(largest_error(log_loop, arguments(2.0, false), log_l, 0), 1e-15);
    for (const double largest : {2.0, 20.0, 1e4, 1e6}) {
        EXPECT_LT(largest_error(sin_loop, arguments(largest, true), sin_l, 1), 2e-15);
        EXPECT_LT(largest_error(cos_loop, arguments(largest, true), cos_l, 1), 2e-15);
    }
    for (const double largest : {2.0, 1e10}) {
        EXPECT_LT(largest_error(atan_loop, arguments(largest, true), atan_l, 0), 1e-15);
        EXPECT_LT(largest_error(atan2_loop, arguments(largest, true), atan2_l, 0), 1e-15);
    }
}

TEST(Vecmath, the_vector_loop_and_the_single_call_give_the_same_bits) {
    const auto x = arguments(700.0, true);
    std::vector<double> y(x.size());
    exp_loop(x.size(), x.data(), y.data());
    for (std::size_t i = 0; i < x.size(); ++i)
        ASSERT_EQ(y[i], vec_exp(x[i]));
    sin_loop(x.size(), x.data(), y.data());
    for (std::size_t i = 0; i < x.size(); ++i)
        ASSERT_EQ(y[i], vec_sincos(x[i]).sin);
    atan2_loop(x.size(), x.data(), y.data());
    for (std::size_t i = 0; i < x.size(); ++i)
        ASSERT_EQ(y[i], vec_atan2(x[i], 1.0 - x[i]));
}

TEST(Vecmath, the_ends_of_the_ranges_are_limits_and_never_nonsense) {
    EXPECT_EQ(vec_exp(-infinity), 0.0);
    EXPECT_EQ(vec_exp(-709.0), 0.0);
    EXPECT_EQ(vec_exp(infinity), infinity);
    EXPECT_TRUE(std::isnan(vec_exp(nan)));
    EXPECT_EQ(vec_log(0.0), -infinity);
    EXPECT_EQ(vec_log(infinity), infinity);
    EXPECT_TRUE(std::isnan(vec_log(-1.0)));
    EXPECT_TRUE(std::isnan(vec_log(nan)));
    EXPECT_DOUBLE_EQ(vec_atan(infinity), std::numbers::pi / 2);
    EXPECT_DOUBLE_EQ(vec_atan(-infinity), -std::numbers::pi / 2);
    EXPECT_TRUE(std::isnan(vec_atan(nan)));
    EXPECT_EQ(vec_atan2(0.0, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(vec_atan2(0.0, -2.0), std::numbers::pi);
    EXPECT_DOUBLE_EQ(vec_atan2(-3.0, 0.0), -std::numbers::pi / 2);
}

} // namespace
