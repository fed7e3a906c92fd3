// The batch kernel of finite depth against the quadrature of the defining integral.
#include "green/finite_wave.hpp"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "finite_quadrature.hpp"

using namespace quelor;
using finite_quadrature::Remainder;

namespace {

struct Points {
    std::vector<double> R, d1, d2;
    void add(double r, double a, double b) {
        R.push_back(r);
        d1.push_back(a);
        d2.push_back(b);
    }
};

struct Values {
    std::array<std::vector<double>, 8> row; // re re_R re_1 re_2 im im_R im_1 im_2
    Remainder at(std::size_t i) const {
        return {{row[0][i], row[4][i]},
                {row[1][i], row[5][i]},
                {row[2][i], row[6][i]},
                {row[3][i], row[7][i]}};
    }
};

Values evaluate(const Points& points, const DepthCache& cache) {
    Values values;
    for (auto& row : values.row)
        row.assign(points.R.size(), -999.0);
    auto& row = values.row;
    finite_wave_terms(points.R, points.d1, points.d2, cache,
                      {row[0].data(), row[1].data(), row[2].data(), row[3].data(), row[4].data(),
                       row[5].data(), row[6].data(), row[7].data()});
    std::vector<double> re(points.R.size()), im(re);
    finite_wave_values(points.R, points.d1, points.d2, cache, re.data(), im.data());
    for (std::size_t i = 0; i < re.size(); ++i)
        EXPECT_TRUE((re[i] == row[0][i] && im[i] == row[4][i]) || std::isnan(re[i]))
            << "without the gradient, R " << points.R[i];
    return values;
}

/// Largest error of value and gradient, each relative to the larger of its size and that of the
/// three Rankine terms removed; below h/2, where none is computed, to the larger of its size and
/// that of the bottom image alone, 1/h and 1/h^2.
double relative_error(const Remainder& got, const Remainder& want, double R, double d1, double d2,
                      double h) {
    double rankine = 1.0 / h, slope = 1.0 / (h * h);
    if (R >= 0.5 * h) {
        rankine = slope = 0.0;
        for (const double vertical : {d1 - d2, d1 + d2, 2.0 * h - d1 - d2}) {
            const double square = R * R + vertical * vertical;
            rankine += 1.0 / std::sqrt(square);
            slope += 1.0 / square;
        }
    }
    const double gradient = std::sqrt(std::norm(want.r) + std::norm(want.d1) + std::norm(want.d2));
    const double error = std::sqrt(std::norm(got.r - want.r) + std::norm(got.d1 - want.d1) +
                                   std::norm(got.d2 - want.d2));
    return std::max(std::abs(got.v - want.v) / std::max(std::abs(want.v), rankine),
                    error / std::max(gradient, slope));
}

/// Both sides of R = h/2, the axis, the far field; surface, bottom and between.
Points grid(double h) {
    Points points;
    const std::array heights{0.0, 1e-6, 0.2, 0.5, 0.9, 1.0};
    for (const double R : {1e-6, 0.01 * h, 0.3 * h, 0.4999999 * h, 0.5 * h, 0.62 * h, 1.01 * h,
                           2.2 * h, 6.0 * h, 40.0 * h, 1e3})
        for (const double d1 : heights)
            for (const double d2 : heights)
                if (d1 + d2 > 0.0 || R > 1e-6) points.add(R, d1 * h, d2 * h);
    return points;
}

// 5e-8 where 1e-6 is required: the polynomials and the cut of the series are made for 2e-8.
TEST(FiniteWave, the_batch_agrees_with_the_defining_integral_in_all_regions) {
    for (const double h : {0.002, 0.03, 0.4, 1.0, 1.95, 4.05, 10.0, 20.0}) {
        const DepthCache cache = prepare_depth(h);
        const Points p = grid(h);
        const Values values = evaluate(p, cache);
        for (std::size_t i = 0; i < p.R.size(); ++i) {
            const auto want = finite_quadrature::finite_remainder(p.R[i], p.d1[i], p.d2[i], h);
            EXPECT_LT(relative_error(values.at(i), want, p.R[i], p.d1[i], p.d2[i], h), 5e-8)
                << "h " << h << " R/h " << p.R[i] / h << " d1/h " << p.d1[i] / h << " d2/h "
                << p.d2[i] / h;
        }
    }
}

TEST(FiniteWave, two_points_in_the_surface_keep_six_digits_of_the_logarithmic_value) {
    for (const double h : {0.002, 1.0, 10.0}) {
        const DepthCache cache = prepare_depth(h);
        Points p;
        for (const double R : {1e-6, 1e-5, 1e-3})
            p.add(R, 0.0, 0.0);
        const Values values = evaluate(p, cache);
        for (std::size_t i = 0; i < p.R.size(); ++i) {
            const auto want = finite_quadrature::finite_remainder(p.R[i], 0.0, 0.0, h);
            const Remainder got = values.at(i);
            EXPECT_LT(std::abs(got.v - want.v), 1e-6 * std::abs(want.v)) << h << " " << p.R[i];
            EXPECT_LT(std::abs(got.r - want.r), 1e-6 * std::abs(want.r)) << h << " " << p.R[i];
        }
    }
}

TEST(FiniteWave, a_point_has_the_same_bits_alone_and_in_a_long_mixed_batch) {
    const DepthCache cache = prepare_depth(1.3);
    Points p;
    for (int i = 0; i < 3001; ++i)
        p.add(std::fmod(i * 0.731, 9.0), std::fmod(i * 0.317, 1.3), std::fmod(i * 0.173, 1.3));
    const Values together = evaluate(p, cache);
    for (std::size_t i = 1; i < p.R.size(); i += 3) {
        Points single;
        single.add(p.R[i], p.d1[i], p.d2[i]);
        const Values alone = evaluate(single, cache);
        for (std::size_t row = 0; row < 8; ++row)
            EXPECT_EQ(alone.row[row][0], together.row[row][i]) << i;
    }
}

TEST(FiniteWave, a_depth_without_wave_number_is_reported) {
    for (const double h : {0.0, -1.0, std::nan(""), HUGE_VAL})
        EXPECT_EQ(prepare_depth(h).status, RootStatus::no_wave_number) << h;
}

TEST(FiniteWave, senseless_points_disturb_no_others) {
    const DepthCache cache = prepare_depth(1.0);
    const double nan = std::nan("");
    Points p;
    p.add(nan, 0.2, 0.3);
    p.add(0.3, nan, 0.3);
    p.add(0.0, 0.0, 0.0);
    p.add(0.0, 0.4, 0.6);
    p.add(2.0, 0.2, nan);
    p.add(2.0, 1.0 + 1e-12, 0.3);
    const Values values = evaluate(p, cache);
    EXPECT_TRUE(std::isnan(values.row[0][0]) && std::isnan(values.row[4][0]));
    EXPECT_TRUE(std::isnan(values.row[0][1]) && std::isnan(values.row[0][4]));
    for (std::size_t row = 0; row < 8; ++row)
        EXPECT_EQ(values.row[row][2], 0.0);
    EXPECT_EQ(values.row[1][3], 0.0); // no slope on the axis
    const Remainder axis = finite_quadrature::finite_remainder(1e-7, 0.4, 0.6, 1.0);
    const Remainder bottom = finite_quadrature::finite_remainder(2.0, 1.0, 0.3, 1.0);
    EXPECT_LT(std::abs(values.at(3).v - axis.v), 1e-8);
    EXPECT_LT(std::abs(values.at(5).v - bottom.v), 1e-8);
}

} // namespace
