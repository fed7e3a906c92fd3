// The vector elementary functions against the long double library, over their stated ranges.
#include "numeric/vecmath.hpp"

#include <cmath>
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

// Largest error of f, relative to the value of `exact` in long double plus `floor`.
template <class F, class Exact>
double largest_error(F f, const std::vector<double>& arguments, Exact exact, long double floor) {
    long double largest = 0;
    for (const double x : arguments) {
        const long double value = exact(static_cast<long double>(x));
        const long double error = std::abs(f(x) - value) / (std::abs(value) + floor);
        if (!(error <= largest)) largest = error;
    }
    return static_cast<double>(largest);
}

TEST(Vecmath, agrees_with_the_library_to_the_stated_errors) {
    using Real = long double;
    // Always inlined, so they have no address.
    const auto exp_v = [](double x) { return vec_exp(x); };
    const auto log_v = [](double x) { return vec_log(x); };
    const auto log_l = [](Real x) { return std::log(x); };
    const auto sin_v = [](double x) { return vec_sincos(x).sin; };
    const auto cos_v = [](double x) { return vec_sincos(x).cos; };
    EXPECT_LT(largest_error(
                  exp_v, arguments(707.0, true), [](Real x) { return std::exp(x); }, 0),
              1e-14);
    EXPECT_LT(largest_error(log_v, arguments(1e300, false), log_l, 0), 1e-15);
    EXPECT_LT(largest_error(log_v, arguments(2.0, false), log_l, 0), 1e-15);
    for (const double largest : {2.0, 20.0, 1e4, 1e6}) {
        const auto x = arguments(largest, true);
        EXPECT_LT(largest_error(
                      sin_v, x, [](Real v) { return std::sin(v); }, 1),
                  2e-15);
        EXPECT_LT(largest_error(
                      cos_v, x, [](Real v) { return std::cos(v); }, 1),
                  2e-15);
    }
}

QUELOR_CLONES void all_loops(std::size_t n, const double* x, double* e, double* s) {
    for (std::size_t i = 0; i < n; ++i)
        e[i] = vec_exp(x[i]);
    for (std::size_t i = 0; i < n; ++i)
        s[i] = vec_sincos(x[i]).sin;
}

TEST(Vecmath, the_vector_loop_and_the_single_call_give_the_same_bits) {
    const auto x = arguments(700.0, true);
    std::vector<double> e(x.size()), s(x.size());
    all_loops(x.size(), x.data(), e.data(), s.data());
    for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_EQ(e[i], vec_exp(x[i]));
        ASSERT_EQ(s[i], vec_sincos(x[i]).sin);
    }
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
}

} // namespace
