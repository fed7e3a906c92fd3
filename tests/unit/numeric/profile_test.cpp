#include "numeric/complex_division.hpp"
#include "numeric/profile.hpp"

#include "tests/unit/numeric/profile_loops.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace quelor {
namespace {

using namespace loops;

ProfileStatus factor(Skyline<double>& m, int digits = 7) {
    return profile_factor(m.a, m.loc, digits);
}
ProfileStatus factor(Skyline<Complex8>& m, int = 7) {
    return profile_factor(m.a, m.loc);
}

template <class T>::testing::AssertionResult same_bits(std::span<const T> x, std::span<const T> y) {
    for (std::size_t i = 0; i < x.size(); ++i)
        if (std::memcmp(&x[i], &y[i], sizeof(T)) != 0)
            return ::testing::AssertionFailure() << "element " << i << ": " << x[i] << ", " << y[i];
    return ::testing::AssertionResult(x.size() == y.size());
}

/// Shapes with every kind of raggedness: dense, banded, diagonal, random heights, long columns
/// among short ones.
template <class T> std::vector<Skyline<T>> shapes() {
    Random random(5);
    const auto any = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    std::vector<Skyline<T>> all;
    for (const int n : {1, 2, 3, 5, 16, 17, 61})
        all.push_back(random_skyline<T>(n, random, [](int j) { return j; }));
    all.push_back(random_skyline<T>(40, random, [](int) { return 0; }));
    all.push_back(random_skyline<T>(150, random, [](int) { return 37; }));
    all.push_back(random_skyline<T>(150, random, [&](int) { return any(60); }));
    all.push_back(random_skyline<T>(150, random, [&](int) { return any(4) ? any(3) : any(150); }));
    all.push_back(random_skyline<T>(150, random, [](int j) { return j % 19 == 0 ? j : 2; }));
    return all;
}

template <class T> struct ProfileKernels : testing::Test {};
using Numbers = testing::Types<double, Complex8>;
TYPED_TEST_SUITE(ProfileKernels, Numbers);

TYPED_TEST(ProfileKernels, FactorHasTheBitsOfTheLoops) {
    for (auto& m : shapes<TypeParam>()) {
        auto expected = m;
        EXPECT_EQ(expected.factor(), 0);
        EXPECT_EQ(factor(m).zero_pivot, 0);
        EXPECT_TRUE(same_bits<TypeParam>(m.a, expected.a)) << "order " << m.n();
    }
}

TYPED_TEST(ProfileKernels, SolutionHasTheBitsOfTheLoopsForAnyNumberOfColumns) {
    Random random(6);
    for (auto& m : shapes<TypeParam>()) {
        const auto n = static_cast<std::size_t>(m.n());
        m.factor();
        for (const int cols : {1, 2, 8, 9, 21}) {
            const auto b = random_numbers<TypeParam>(n * static_cast<std::size_t>(cols), random);
            for (const auto mode :
                 {ProfileMode::both, ProfileMode::forward, ProfileMode::backward}) {
                auto x = b, expected = b;
                profile_solve(std::span<const TypeParam>(m.a), {x.data(), m.n(), cols}, m.loc,
                              mode);
                for (auto rest = std::span(expected); !rest.empty(); rest = rest.subspan(n)) {
                    if (mode != ProfileMode::backward) m.forward(rest.first(n));
                    if (mode != ProfileMode::forward) m.backward(rest.first(n));
                }
                EXPECT_TRUE(same_bits<TypeParam>(x, expected)) << "order " << n << ", " << cols;
            }
        }
    }
}

TYPED_TEST(ProfileKernels, ProductHasTheBitsOfTheLoopsAndIsTheProduct) {
    Random random(7);
    for (auto& m : shapes<TypeParam>()) {
        const auto n = static_cast<std::size_t>(m.n());
        for (const int cols : {1, 3, 10}) {
            auto b = random_numbers<TypeParam>(n * static_cast<std::size_t>(cols), random);
            b[0] = TypeParam(-0.0);
            std::vector<TypeParam> c(b.size(), TypeParam(9.0)), expected;
            profile_multiply(std::span<const TypeParam>(m.a), {b.data(), m.n(), cols},
                             {c.data(), m.n(), cols}, m.loc);
            for (auto rest = std::span<const TypeParam>(b); !rest.empty(); rest = rest.subspan(n)) {
                const auto column = m.product(rest.first(n));
                expected.insert(expected.end(), column.begin(), column.end());
            }
            EXPECT_TRUE(same_bits<TypeParam>(c, expected)) << "order " << n << ", " << cols;
        }
        const auto x = random_numbers<TypeParam>(n, random);
        const auto y = m.product(x);
        for (int i = 1; i <= m.n(); ++i) {
            TypeParam sum{};
            for (int j = 1; j <= m.n(); ++j)
                sum += m.element(i, j) * x[static_cast<std::size_t>(j - 1)];
            // n products of at most 200 in size
            EXPECT_NEAR(std::abs(sum - y[static_cast<std::size_t>(i - 1)]), 0, 1e-12);
        }
    }
}

TYPED_TEST(ProfileKernels, FactorsAndSolutionReproduceTheRightHandSide) {
    Random random(8);
    for (auto& m : shapes<TypeParam>()) {
        auto factored = m;
        const auto b = random_numbers<TypeParam>(static_cast<std::size_t>(m.n()), random);
        auto x = b;
        factor(factored);
        profile_solve(std::span<const TypeParam>(factored.a), {x.data(), m.n(), 1}, m.loc,
                      ProfileMode::both);
        const auto back = m.product(x);
        for (std::size_t i = 0; i < b.size(); ++i) // diagonals dominate: rounding alone
            EXPECT_NEAR(std::abs(back[i] - b[i]), 0, 1e-13);
    }
}

TYPED_TEST(ProfileKernels, NumbersThatAreNotFiniteStayInTheColumnsThatUseThem) {
    Random random(9);
    auto m = random_skyline<TypeParam>(120, random, [](int j) { return j % 3 ? 5 : j % 40; });
    for (const int bad : {1, 30, 70}) {
        auto broken = m;
        broken(bad, bad) =
            bad == 1 ? TypeParam{} : TypeParam(std::numeric_limits<double>::infinity());
        broken(bad + 1, bad + 2) = TypeParam(1e308);
        auto expected = broken;
        factor(broken);
        expected.factor();
        for (std::size_t i = 0; i < m.a.size(); ++i) {
            if (std::isnan(std::abs(expected.a[i])))
                EXPECT_TRUE(std::isnan(std::abs(broken.a[i]))) << i;
            else
                EXPECT_EQ(broken.a[i], expected.a[i]) << i;
        }
    }
}

TYPED_TEST(ProfileKernels, AZeroPivotStopsTheFactorisation) {
    Random random(10);
    for (const int zero : {2, 16, 17, 40}) {
        auto m = random_skyline<TypeParam>(50, random, [](int) { return 0; });
        m(zero, zero) = TypeParam{};
        m(1, 1) = TypeParam{}; // never tested
        EXPECT_EQ(factor(m).zero_pivot, zero);
    }
}

TEST(ProfileFactor, LostDigitsAreListedByEquation) {
    Skyline<double> m{{1, 1, 0.995, 5, 0.1, 0.995}, {1, 2, 4, 7}};
    auto coarse = m;
    const auto losses = factor(m, 1).losses;
    ASSERT_EQ(losses.size(), 1u);
    EXPECT_EQ(losses[0].equation, 2);
    EXPECT_EQ(losses[0].digits, 3); // 1 - 0.990025 = 0.009975
    EXPECT_TRUE(factor(coarse, 4).losses.empty());
}

TEST(ProfileIsValid, LocationsThatLeaveTheArrayAreRefused) {
    using Loc = std::vector<std::int32_t>;
    EXPECT_TRUE(profile_is_valid(Loc{1, 2, 4, 7}, 6));
    EXPECT_TRUE(profile_is_valid(Loc{1, 2}, 1));
    for (const Loc& loc : {Loc{}, Loc{1}, Loc{2, 3}, Loc{1, 1, 2}, Loc{1, 3, 4}, Loc{1, 2, 5},
                           Loc{1, 2, 4, 8}, Loc{1, 2, 0}, Loc{1, 2147483647, -2147483647}})
        EXPECT_FALSE(profile_is_valid(loc, 6));
    EXPECT_FALSE(profile_is_valid(Loc{1, 2, 4, 7}, 5));
}

TEST(SmithDivisor, LargeAndSmallDenominatorsDoNotOverflow) {
    for (const Complex8 z :
         {Complex8{3e200, 4e200}, Complex8{4e200, -3e200}, Complex8{1e-200, 2e-200}}) {
        const Complex8 q = SmithDivisor(z).divide(z * Complex8{2, 1});
        EXPECT_NEAR(std::abs(q - Complex8(2, 1)), 0, 1e-15);
    }
}

} // namespace
} // namespace quelor
