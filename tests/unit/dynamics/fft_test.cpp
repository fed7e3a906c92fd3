// Transforms against their defining sums. Rounding errors of a fast transform grow as the root of
// log N: 1e-14 of the norm is some 50 units in the last place.
#include "dynamics/fft.hpp"

#include "../support/arrays.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace quelor {
namespace {

using Wide = std::complex<long double>;

constexpr double tolerance = 1e-14;

struct Fft : Session {
    Fft() : Session({fft_rows()}) {}

    std::mt19937_64 random{1};

    Reals random_reals(std::size_t n) {
        Reals values(n);
        for (double& value : values)
            value = std::uniform_real_distribution<>(-1, 1)(random);
        return values;
    }
    Complexes random_complexes(std::size_t n) {
        const Reals re = random_reals(n), im = random_reals(n);
        Complexes values;
        for (std::size_t i = 0; i < n; ++i)
            values.emplace_back(re[i], im[i]);
        return values;
    }
};

template <class T>
void put(std::string_view name, const std::vector<T>& values, std::size_t cols = 1) {
    std::ranges::copy(values, create_matrix<T>(name, static_cast<int>(values.size() / cols),
                                               static_cast<int>(cols))
                                  .data);
}
/// exp(sign 2 pi i k / n) for k < n.
std::vector<Wide> roots_of_unity(std::size_t n, int sign) {
    std::vector<Wide> roots;
    for (std::size_t k = 0; k < n; ++k)
        roots.push_back(std::polar(1.0L, sign * 2 * std::numbers::pi_v<long double> *
                                             static_cast<long double>(k) /
                                             static_cast<long double>(n)));
    return roots;
}
/// Sum of a(j) exp(sign 2 pi i j k / N) in long double.
template <class T>
Complex8 coefficient(const std::vector<T>& a, const std::vector<Wide>& roots, std::size_t k) {
    Wide sum = 0;
    for (std::size_t j = 0; j < a.size(); ++j)
        sum += Wide(a[j]) * roots[j * k % a.size()];
    return Complex8(sum);
}
template <class T> Complexes defining_sum(const std::vector<T>& a, int sign) {
    const auto roots = roots_of_unity(a.size(), sign);
    Complexes sums;
    for (std::size_t k = 0; k < a.size(); ++k)
        sums.push_back(coefficient(a, roots, k));
    return sums;
}

/// A(0), re and im of A(1), ..., A(N/2).
Reals packed(const Complexes& sums) {
    Reals values{sums[0].real()};
    for (std::size_t k = 1; 2 * k <= sums.size(); ++k) {
        values.push_back(sums[k].real());
        if (2 * k < sums.size()) values.push_back(sums[k].imag());
    }
    return values;
}

template <class T> double norm(const std::vector<T>& values) {
    double sum = 0;
    for (const T& value : values)
        sum += std::norm(value);
    return std::sqrt(sum);
}

/// Norm of the difference over that of the expected values.
template <class T> double error(const std::vector<T>& found, const std::vector<T>& expected) {
    if (found.size() != expected.size()) return HUGE_VAL;
    std::vector<T> difference(expected.size());
    std::ranges::transform(found, expected, difference.begin(), std::minus<>());
    return norm(difference) / norm(expected);
}

TEST_F(Fft, DefaultIsTheDefiningSumForAnyNumberOfRows) {
    for (const std::size_t n : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 16u, 97u, 100u, 529u, 1024u, 1026u}) {
        const Reals a = random_reals(2 * n);
        put("a", a, 2);
        EXPECT_EQ(run("fft a"), "");
        Reals expected;
        for (const std::size_t column : {0u, 1u}) {
            const auto* const first = a.data() + column * n;
            const Reals sums = packed(defining_sum(Reals(first, first + n), -1));
            expected.insert(expected.end(), sums.begin(), sums.end());
        }
        EXPECT_LT(error(elements<double>("a"), expected), tolerance) << n;
        EXPECT_EQ(run("fft a -inverse"), "");
        EXPECT_LT(error(elements<double>("a"), a), tolerance) << n;
        EXPECT_EQ(elements<double>(fft_wsave).size(), 2 * n + 15);
    }
}

// Three coefficients by their sums, the others by Parseval's identity and by that of a delay:
// a(j-1) has the coefficients A(k) exp(-2 pi i k/N).
TEST_F(Fft, DefaultTransformsALargePrimeNumberOfRows) {
    const Reals a = random_reals(999983);
    Reals both = a;
    both.push_back(a.back());
    both.insert(both.end(), a.begin(), a.end() - 1);
    put("a", both, 2);
    EXPECT_EQ(run("fft a -forward"), "");
    const auto found = as_matrix<const double>(find_array("a"));
    const auto coefficient_of = [&](int column, std::size_t k) {
        const int row = static_cast<int>(2 * k);
        return k == 0 ? found(1, column) : Complex8(found(row, column), found(row + 1, column));
    };
    const auto roots = roots_of_unity(a.size(), -1);
    const double size = norm(a) * std::sqrt(static_cast<double>(a.size()));
    for (const std::size_t k : {1u, 777u, 499991u})
        EXPECT_LT(std::abs(coefficient_of(1, k) - coefficient(a, roots, k)), tolerance * size) << k;
    double power = 0, delayed = 0;
    for (std::size_t k = 0; 2 * k < a.size(); ++k) {
        const int times = k == 0 ? 1 : 2;
        power += times * std::norm(coefficient_of(1, k));
        delayed +=
            times * std::norm(coefficient_of(2, k) - coefficient_of(1, k) * Complex8(roots[k]));
    }
    EXPECT_NEAR(std::sqrt(power) / size, 1, tolerance);
    EXPECT_LT(std::sqrt(delayed), tolerance * size);
}

TEST_F(Fft, WorkArrayOfTheUserIsReplaced) {
    const Reals a = random_reals(6), expected = packed(defining_sum(a, -1));
    create_matrix<std::int32_t>(fft_wsave, 27, 0); // of the length that six rows take
    for (const bool real : {false, true}) {
        if (real) create_matrix<double>(fft_wsave, 27, 0);
        put("a", a);
        EXPECT_EQ(run("fft a"), "");
        EXPECT_EQ(elements<double>(fft_wsave).size(), 27u);
        EXPECT_LT(error(elements<double>("a"), expected), tolerance);
    }
}

TEST_F(Fft, FerzigerTransformsEachColumnOfAComplexArray) {
    for (const std::size_t n : {1u, 2u, 4u, 8u, 32u, 1024u}) {
        const Complexes first = random_complexes(n), second = random_complexes(n);
        Complexes a = first;
        a.insert(a.end(), second.begin(), second.end());
        put("a", a, 2);
        EXPECT_EQ(run("fft a -ferziger"), "");
        Complexes expected = defining_sum(first, -1);
        const Complexes other = defining_sum(second, -1);
        expected.insert(expected.end(), other.begin(), other.end());
        EXPECT_LT(error(elements<Complex8>("a"), expected), tolerance) << n;
        EXPECT_EQ(run("fft a -ferziger -inverse"), "");
        EXPECT_LT(error(elements<Complex8>("a"), a), tolerance) << n;
    }
}

TEST_F(Fft, OouraOfARealArrayIsTheSumWithPositiveExponent) {
    for (const std::size_t n : {1u, 2u, 4u, 8u, 16u, 32u, 1024u}) {
        const Reals a = random_reals(n);
        put("a", a);
        EXPECT_EQ(run("fft a -ooura"), "        Calling real fft\n");
        const Complexes sums = defining_sum(a, 1);
        Reals expected{sums[0].real()};
        if (n > 1) expected.push_back(sums[n / 2].real());
        for (std::size_t k = 1; 2 * k < n; ++k) {
            expected.push_back(sums[k].real());
            expected.push_back(sums[k].imag());
        }
        EXPECT_LT(error(elements<double>("a"), expected), tolerance) << n;
        run("fft a -ooura -inverse");
        EXPECT_LT(error(elements<double>("a"), a), tolerance) << n;
    }
}

TEST_F(Fft, OouraOfAComplexArrayActsOnTheFirstColumnOnly) {
    const Complexes first = random_complexes(16), second = random_complexes(16);
    Complexes a = first;
    a.insert(a.end(), second.begin(), second.end());
    put("a", a, 2);
    EXPECT_EQ(run("fft a -ooura"), "        Calling complex fft\n");
    Complexes expected = defining_sum(defining_sum(first, 1), 1);
    expected.insert(expected.end(), second.begin(), second.end());
    EXPECT_LT(error(elements<Complex8>("a"), expected), tolerance);
    put("a", first);
    run("fft a -ooura");
    EXPECT_LT(error(elements<Complex8>("a"), defining_sum(first, 1)), tolerance);
    run("fft a -ooura -inverse");
    EXPECT_LT(error(elements<Complex8>("a"), first), tolerance);
    put("a", a, 2);
    run("fft a -ooura -inverse");
    EXPECT_EQ(elements<Complex8>("a").back(), second.back() * (1.0 / 16));
}

TEST_F(Fft, OouraTablesServeRealAndComplexArraysInAnyOrder) {
    const Reals a = random_reals(64);
    const Complexes z = random_complexes(64);
    const Complexes sums = defining_sum(z, 1);
    for (const bool spoilt : {false, true}) { // the next call mends the tables
        put("a", a);
        put("z", z);
        run("fft a -ooura");
        if (spoilt) as_span<std::int32_t>(find_array(fft_ip))[3] = 1 << 30;
        run("fft z -ooura");
        EXPECT_LT(error(elements<Complex8>("z"), sums), tolerance);
        run("fft a -ooura -inverse");
        EXPECT_LT(error(elements<double>("a"), a), tolerance);
    }
}

TEST_F(Fft, IntegersAndTheWorkArraysAreRefused) {
    create_int_scalar("k", 1);
    EXPECT_NE(run("fft k -ooura").find("implemented for real or complex"), std::string::npos);
    put("b", random_reals(4));
    run("fft b -ooura");
    EXPECT_NE(run("fft $fft_w -ooura").find("work array of fft"), std::string::npos);
}

TEST_F(Fft, HelperConvolvesALoadWithAnImpulseResponse) {
    // The product of the transforms of two sequences is that of their cyclic convolution.
    const std::size_t n = 12;
    const Reals load = random_reals(n), impulse = random_reals(n);
    const Complexes sums = defining_sum(impulse, -1);
    put("p", load);
    put("h", Complexes(sums.begin(), sums.begin() + n / 2 + 1));
    run("fft p");
    EXPECT_EQ(run("fft_helper h p p"), ""); // the result may replace an input
    run("fft p -inverse");
    Reals expected(n);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            expected[(i + j) % n] += load[i] * impulse[j];
    EXPECT_LT(error(elements<double>("p"), expected), tolerance);
}

TEST_F(Fft, HelperTakesEachColumnAndDropsTheImaginaryPartsOfTheEnds) {
    put("h", Complexes{{2, 9}, {0, 1}, {3, 9}, {1, 0}, {1, 1}, {1, 0}}, 2);
    put("p", Reals{1, 2, 3, 4});
    EXPECT_EQ(run("fft_helper h p q"), "");
    EXPECT_EQ(elements<double>("q"), (Reals{2, -3, 2, 12, 1, -1, 5, 4}));
    put("row", Reals{1, 2, 3, 4, 5}, 5); // odd: the row before the last stays zero
    EXPECT_EQ(run("fft_helper h row q"), "");
    EXPECT_EQ(elements<double>("q"), (Reals{2, -3, 2, 0, 15, 1, -1, 5, 0, 5}));
}

} // namespace
} // namespace quelor
