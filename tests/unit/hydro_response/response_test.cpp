#include "hydro_analysis/csolve.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/hyd_tf.hpp"
#include "kernel/fortfile.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace quelor {
namespace {

Matrix<const double> scalar(const double& v) {
    return {&v, 1, 1};
}

TEST(EquationOfMotion, of_one_mode_is_the_damped_oscillator) {
    // q = F / (k - m omega^2 + i c omega); hysteresis adds i 2 hdamp Ks and leaves Kf alone.
    const double A = 2, B = 0.3, M = 5, C = 0.1, Ks = 40, Kf = 7, omega = 1.7, hdamp = 0.02;
    const MotionMatrices m{scalar(A),  scalar(B),  scalar(M), scalar(C),
                           scalar(Ks), scalar(Kf), 2 * hdamp};
    Complex8 dynk;
    hyd_assemble_dynk(omega, m, {&dynk, 1, 1});
    EXPECT_DOUBLE_EQ(dynk.real(), Ks + Kf - (M + A) * omega * omega);
    EXPECT_DOUBLE_EQ(dynk.imag(), (C + B) * omega + 0.04 * Ks);
}

TEST(EquationOfMotion, is_solved_to_a_residual_of_rounding) {
    // Random systems of the size of two bodies with flexible modes.
    constexpr int n = 20;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<Complex8> matrix(n * n), load(n);
    for (Complex8& v : matrix)
        v = {uniform(random), uniform(random)};
    for (Complex8& v : load)
        v = {uniform(random), uniform(random)};
    std::vector<Complex8> factors = matrix, x = load;
    std::vector<std::int32_t> pivot(n);
    csolve_factor({factors.data(), n, n}, pivot);
    csolve_solve({factors.data(), n, n}, {x.data(), n, 1}, pivot);
    for (int i = 0; i < n; ++i) {
        Complex8 r = load[static_cast<std::size_t>(i)];
        for (int j = 0; j < n; ++j)
            r -= matrix[static_cast<std::size_t>(i + n * j)] * x[static_cast<std::size_t>(j)];
        EXPECT_LT(std::abs(r), 1e-12);
    }
    // The report says so.
    testing::internal::CaptureStdout();
    hyd_residual_report({matrix.data(), n, n}, load, x);
    flush_unit(unit_screen);
    const std::string report = testing::internal::GetCapturedStdout();
    const auto amplitude = report.find("amplitude");
    ASSERT_NE(amplitude, std::string::npos);
    EXPECT_LT(std::stod(report.substr(amplitude + 9)), 1e-12);
}

TEST(Symmetrizing, averages_the_pairs_and_leaves_the_diagonal) {
    std::array<double, 9> a{1, 2, 3, 4, 5, 6, 7, 8, 9};
    symmetrize_matrix({a.data(), 3, 3});
    EXPECT_EQ(a, (std::array<double, 9>{1, 3, 5, 3, 5, 7, 5, 7, 9}));
}

TEST(TransferFunction, combines_the_modes_with_the_frequency_fastest) {
    std::vector<Complex8> q; // (nmode = 2, nfreq = 2, nbeta = 2)
    for (int i = 1; i <= 8; ++i)
        q.emplace_back(i, -i);
    const std::array<double, 6> modemat{1, 0, 2, 0, 1, -1}; // (3,2)
    std::vector<Complex8> tf(12);
    transfer_functions({modemat.data(), 3, 2}, {q.data(), 2, 2, 2}, {tf.data(), 2, 2, 3});
    // tf(f,b,3) = 2 q(1,f,b) - q(2,f,b)
    EXPECT_EQ(tf[8], 2.0 * q[0] - q[1]);
    EXPECT_EQ(tf[9], 2.0 * q[2] - q[3]);
    EXPECT_EQ(tf[10], 2.0 * q[4] - q[5]);
    EXPECT_EQ(tf[3], q[6]);
}

} // namespace
} // namespace quelor
