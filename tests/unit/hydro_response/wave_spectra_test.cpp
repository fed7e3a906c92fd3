// Wave spectra and what is made of them, against closed forms and quadrature.
#include "hydro_response/wave_spectra.hpp"

#include "../green/quadrature.hpp"
#include "../support/arrays.hpp"
#include "hydro_response/hyd_irregular.hpp"
#include "hydro_response/hyd_wave_spectra.hpp"

#include <cmath>
#include <numbers>

namespace quelor {
namespace {

constexpr double g = 9.81, pi = std::numbers::pi;
// The trapezoidal rule on a geometric list with step ratio 1 + h errs by about h^2 n^2/12 of a
// function like w^n: 1e-8 for these lists. What lies beyond their ends is below 2e-7 of a moment.
constexpr double close = 1e-6;

std::vector<double> geometric(double first, double last, int n = 100'000) {
    std::vector<double> list;
    for (int i = 0; i < n; ++i)
        list.push_back(first * std::pow(last / first, double(i) / (n - 1)));
    return list;
}

std::vector<double> spectrum(const std::vector<double>& column, const std::vector<double>& omega) {
    std::vector<double> s(omega.size());
    hyd_spectrum(static_cast<int>(column[0]), column, g, omega, s);
    return s;
}

SpectrumMoments moments(const std::vector<double>& column, const std::vector<double>& omega) {
    std::vector<double> domega(omega.size()), work(omega.size());
    frequency_steps(omega, domega);
    return hyd_spectrum_moments(spectrum(column, omega), omega, domega, work);
}

void expect_close(const SpectrumMoments& m, const SpectrumMoments& expected) {
    EXPECT_NEAR(m.m0, expected.m0, close * expected.m0);
    EXPECT_NEAR(m.m1, expected.m1, close * expected.m1);
    EXPECT_NEAR(m.m2, expected.m2, close * expected.m2);
    EXPECT_NEAR(m.mm1, expected.mm1, close * expected.mm1);
}

// A w^-5 exp(-B w^-4) has the moments m0 = A/(4 B) and mn = m0 B^(n/4) Gamma(1 - n/4).
TEST(Spectrum, moments_of_the_exponential_types_are_gamma_functions) {
    const double w10 = 2 * pi / 10, w8 = 2 * pi / 8;
    const struct {
        std::vector<double> column;
        double m0, B;
    } cases[] = {
        {{1, 4, 10, 0, 0, 0}, 1, 1.25 * std::pow(w10, 4)}, // Hs = 4: m0 = Hs^2/16
        {{2, 4, 8, 0, 0, 0}, 1, 0.44 * std::pow(w8, 4)},
        {{3, 10, 1, .07, .09, .0081},
         .0081 * g * g / (5 * std::pow(w10, 4)),
         1.25 * std::pow(w10, 4)},
        {{4, 4, 1.2, 0, 0, 0}, 1, .0081 * g * g / std::pow(1.2, 4) / 4},
        {{5, 20, 0, 0, 0, 0}, .0081 / 2.96 * std::pow(20, 4) / (g * g), .74 * std::pow(g / 20, 4)},
        {{6, 4, 0, 0, 0, 0}, 1, .0324 * g * g / 16}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.column[0]);
        const double b = std::pow(c.B, 0.25);
        const SpectrumMoments m = moments(c.column, geometric(0.3 * b, 3000 * b));
        expect_close(m, {c.m0, c.m0 * b * std::tgamma(0.75), c.m0 * b * b * std::sqrt(pi),
                         c.m0 / b * std::tgamma(1.25)});
        // Zero crossings and significant amplitude in closed form.
        const SeaStatistics sea = sea_statistics(m);
        EXPECT_NEAR(sea.zero_crossing_period, 2 * pi / (b * std::pow(pi, 0.25)), close * 10);
        EXPECT_NEAR(sea.significant, 2 * std::sqrt(c.m0), close * 4);
        EXPECT_NEAR(sea.average_period * b * std::tgamma(0.75), 2 * pi, close * 10);
        EXPECT_NEAR(sea.energy_period * b, 2 * pi * std::tgamma(1.25), close * 10);
    }
}

template <class S> SpectrumMoments by_quadrature(S s, double from, double to, int panels) {
    const auto moment = [&](int n) {
        return double(quadrature::integral(
            [&](quadrature::Real w) { return std::pow(w, n) * s(w); }, from, to, panels));
    };
    return {moment(0), moment(1), moment(2), moment(-1)};
}
SpectrumMoments operator+(const SpectrumMoments& a, const SpectrumMoments& b) {
    return {a.m0 + b.m0, a.m1 + b.m1, a.m2 + b.m2, a.mm1 + b.mm1};
}

TEST(Jonswap, moments_are_those_of_quadrature_and_the_peak_is_raised_by_gamma) {
    using Real = quadrature::Real;
    const Real wm = 2 * std::numbers::pi_v<Real> / 10;
    const auto s = [&](Real w) {
        const Real tao = w > wm ? 0.09L : 0.07L, d = (w / wm - 1) / tao;
        return 0.0123L * Real(g) * Real(g) * std::pow(w, -5) *
               std::exp(-1.25L * std::pow(wm / w, 4)) * std::pow(3.3L, std::exp(-d * d / 2));
    };
    const std::vector<double> column{3, 10, 3.3, .07, .09, .0123};
    const double peak = double(wm), low = 0.3 * peak, high = 20 * peak;
    expect_close(moments(column, geometric(low, high)), by_quadrature(s, low, peak, 40) +
                                                            by_quadrature(s, peak, 2 * peak, 40) +
                                                            by_quadrature(s, 2 * peak, high, 40));
    EXPECT_NEAR(spectrum(column, {peak})[0] / spectrum({3, 10, 1, .07, .09, .0123}, {peak})[0], 3.3,
                1e-14);
}

TEST(Mitsuyasu, branches_meet_their_integrals_and_overflow_is_infinite) {
    // A weak exponential, so that the lower branch stays finite.
    const std::vector<double> column{7, 2, 200, 2, 0, 0};
    const double wo = pi, first = 0.3 * wo;
    const double B = std::pow(2, 0.31200000643730164) * 22.1 * std::pow(2 * pi * g / 200, 4);
    using Real = quadrature::Real;
    const auto lower = [&](Real w) {
        return 3.55e-9L * Real(g * g) * std::pow(w, -5) * std::exp(Real(B) / std::pow(w, 4));
    };
    expect_close(moments(column, geometric(first * (1 + 1e-12), wo * (1 - 1e-12))),
                 by_quadrature(lower, first, wo, 40));
    // Above: c w^-5, whose integral to W falls short of c/4 wo^-4 by (wo/W)^4.
    EXPECT_NEAR(moments(column, geometric(wo, 100 * wo)).m0,
                2.3 * g * g * std::pow(2, -0.308) / 4 * std::pow(wo, -4), close);
    EXPECT_EQ(spectrum(column, {0.1, 0.3 * (2 * pi / 2)}), (Reals{0, 0}));
    const auto real_sea = moments({7, 1000, 1, 8, 0, 0}, {0.3, 0.5, 1});
    EXPECT_EQ(real_sea.m0, HUGE_VAL);
}

TEST(Trapezoid, takes_steps_of_falling_lists_and_is_zero_for_one_value) {
    const std::vector<double> falling{4, 2, 1}, y{1, 3, 5};
    std::vector<double> steps(3);
    frequency_steps(falling, steps);
    EXPECT_EQ(trapezoid(steps, y), 8);
    EXPECT_EQ(trapezoid({}, std::span(y).first(1)), 0);
    EXPECT_TRUE(is_monotone(falling));
    EXPECT_FALSE(is_monotone(Reals{1, 3, 2}));
}

class IrregularSea : public ArraySession {
protected:
    IrregularSea() : ArraySession({hyd_wave_spectra_rows(), hyd_irregular_rows()}) {}
};

TEST_F(IrregularSea, of_a_flat_transfer_function_is_the_sea_itself) {
    const auto omega = geometric(0.1, 30, 20'000);
    const int n = static_cast<int>(omega.size());
    std::ranges::copy(omega, create_matrix<double>(".hyd_freq", n, 0).data);
    create_matrix<double>(".hyd_beta", 2, 0);
    const auto tf = create_array3<Complex8>("tf", n, 2, 2);
    for (int f = 1; f <= n; ++f) {
        tf(f, 1, 1) = 1;
        tf(f, 2, 1) = {0, -2};
        tf(f, 1, 2) = {3, 4};
    }
    run("hyd_wave_spectra #=2", "n=2 name=Bretschneider Hs=8 To=12\nn=1 name=ISSC Hs=4 Tv=9\n\n");
    run("hyd_irregular tf tf ext=ext"); // the result takes the place of its input
    // 3.72 Hs/4 |tf| but for the tail beyond 30 rad/s, (wm/30)^4.
    const Reals expected{3.72, 7.44, 7.44, 14.88, 18.6, 37.2, 0, 0};
    const Reals extremes = elements<double>("tf");
    ASSERT_EQ(dims("tf"), (Ints{2, 2, 2}));
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(extremes[i], expected[i], close * expected[i]) << i;
}

TEST_F(IrregularSea, gravity_is_asked_for_by_types_3_to_7_alone) {
    create_matrix<double>(".hyd_freq", 1, 0)(1) = 1;
    run("hyd_wave_spectra #=1", "n=1 name=ISSC Hs=4 Tv=9\n\n");
    EXPECT_NE(run("phyd_wave_spectra").find("Average period         =    NaN"), std::string::npos);
    run("hyd_wave_spectra #=1", "n=1 name=P-M-Hs Hs=4\n\n");
    EXPECT_EXIT(run_detached("phyd_wave_spectra"), testing::ExitedWithCode(0),
                "Spectrum requires gravity as specifed by the hyd_parameters command");
}

} // namespace
} // namespace quelor
