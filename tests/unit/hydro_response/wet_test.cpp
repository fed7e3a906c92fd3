// Wet frequencies against LAPACK and against the resonance of the response.
#include "hydro_response/hyd_wet.hpp"

#include "../dynamics/pencils.hpp"
#include "../support/arrays.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_response/hyd_response.hpp"

namespace quelor {
namespace {

class WetFrequencies : public ArraySession {
protected:
    WetFrequencies() : ArraySession({hyd_input_rows(), hyd_response_rows(), hyd_wet_rows()}) {}

    static void store(std::string_view name, Owned& a) {
        std::ranges::copy(a.data, create_matrix<double>(name, a.rows, a.cols).data);
    }
    /// Control arrays of a model of n flexible modes without a mesh, at these frequencies.
    void begin(int n, const Reals& freq) {
        run("hyd_parameters h=100 nmoder=0 nmodef=" + std::to_string(n));
        const auto wave = create_matrix<std::int32_t>(".hyd_wave", 2, 0);
        wave(1) = 1;
        wave(2) = static_cast<int>(freq.size());
        std::ranges::copy(freq, create_matrix<double>(".hyd_freq", wave(2), 0).data);
        create_matrix<double>(".hyd_beta", 1, 0);
        create_int_scalar(".hyd_#nodes", 1);
        create_matrix<std::int32_t>(".hyd_panel_#map", 1, 0)(1) = 1;
    }
};

// Both solvers are good to rounding over the distance between eigenvalues: 1e-8 leaves room for
// distances of 1e-7, which random matrices do not have.
TEST_F(WetFrequencies, are_those_of_lapack_with_and_without_shift) {
    constexpr int n = 9, nfreq = 3;
    std::mt19937 random(11);
    const Reals freq{0.4, 0.8, 1.6};
    begin(n, freq);
    Owned mass = random_definite(n, random, 2), stiffness = random_definite(n, random, 0);
    Owned fluid = random_definite(n, random, 1);
    fluid(2, 5) += 0.3; // an asymmetry that is to be averaged away
    store("hyd_mstr", mass);
    store("hyd_kstr", stiffness);
    store(".hyd_kf", fluid);
    const auto addm = create_array3<double>(".hyd_addm", n, n, nfreq);
    std::vector<Owned> total;
    for (int f = 1; f <= nfreq; ++f) {
        Owned added = random_definite(n, random, 1);
        total.push_back(mass);
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j) {
                addm(i, j, f) = added(i, j) + 0.1 * (i - j); // asymmetric
                total.back()(i, j) += added(i, j);
            }
    }
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j)
            stiffness(i, j) += (fluid(i, j) + fluid(j, i)) / 2;
    for (const char* command : {"hyd_wet", "hyd_wet shift=3.5", "hyd_wet shift=-2"}) {
        run(command);
        const Reals omega = elements<double>(".hyd_wet_freq_cumulate");
        Reals modes = elements<double>(".hyd_wet_modes_cumulate");
        ASSERT_EQ(omega.size(), std::size_t{n * nfreq});
        for (std::size_t f = 0; f < nfreq; ++f) {
            Owned vectors = stiffness, M = total[f];
            const auto lambda = lapack_pencil("V", vectors, M);
            for (std::size_t j = 0; j < n; ++j) {
                EXPECT_NEAR(omega[f * n + j], std::sqrt(lambda[j]), 1e-8 * omega[f * n + j]);
                double* const mode = &modes[(f * n + j) * n];
                const double sign = std::copysign(1.0, mode[0] * vectors.data[j * n]); // it is free
                for (std::size_t i = 0; i < n; ++i)
                    EXPECT_NEAR(mode[i], sign * vectors.data[j * n + i], 1e-8) << command << f << j;
            }
        }
    }
    // None within the limit: no arrays, not those of before either.
    run("hyd_wet error=0");
    EXPECT_FALSE(array_exists(".hyd_wet_freq_cumulate"));
    EXPECT_EQ(dims(".hyd_wet_modes"), (Ints{n, n}));
}

TEST_F(WetFrequencies, a_self_consistent_one_is_where_the_response_peaks) {
    // Two coupled modes, added mass that falls with the frequency, 0.1 % of critical damping. The
    // reciprocal of |q|^2 is then a parabola near its least value, which damping moves by the
    // square of its ratio, 1e-6; the grid step of 5e-4 adds its square, 3e-7.
    Reals freq;
    for (int i = 0; i < 201; ++i)
        freq.push_back(1.15 + 5e-4 * i);
    begin(2, freq);
    const int nfreq = static_cast<int>(freq.size());
    const auto mass = create_matrix<double>("hyd_mstr", 2, 2),
               stiffness = create_matrix<double>("hyd_kstr", 2, 2),
               fluid = create_matrix<double>(".hyd_kf", 2, 2);
    mass(1, 1) = 2;
    mass(2, 2) = 1;
    mass(1, 2) = mass(2, 1) = 0.2;
    stiffness(1, 1) = 3;
    stiffness(2, 2) = 20;
    fluid(1, 1) = 1.5;
    const auto addm = create_array3<double>(".hyd_addm", 2, 2, nfreq),
               damp = create_array3<double>(".hyd_damp", 2, 2, nfreq);
    create_array3<Complex8>(".hyd_fd", 2, 1, nfreq);
    const auto force = create_array3<Complex8>(".hyd_fi", 2, 1, nfreq);
    for (int f = 1; f <= nfreq; ++f) {
        addm(1, 1, f) = 2 / (1 + freq[nth(f)]);
        damp(1, 1, f) = 0.007;
        force(1, 1, f) = 1;
    }
    run("hyd_wet");
    const Reals wet = elements<double>(".hyd_wet_freq_cumulate");
    std::size_t at = 0; // the last frequency below its own wet frequency
    while (wet[2 * (at + 1)] > freq[at + 1])
        ++at;
    const double below = wet[2 * at] - freq[at], above = wet[2 * at + 2] - freq[at + 1];
    const double natural = freq[at] + 5e-4 * below / (below - above);

    run("hyd_analysis_response");
    const Complexes q = elements<Complex8>(".hyd_gencor");
    Reals inverse;
    for (std::size_t f = 0; f < freq.size(); ++f)
        inverse.push_back(1 / std::norm(q[2 * f]));
    const auto peak = as_size(std::ranges::min_element(inverse) - inverse.begin());
    const double a = inverse[peak - 1], b = inverse[peak], c = inverse[peak + 1];
    const double resonance = freq[peak] + 5e-4 * 0.5 * (a - c) / (a - 2 * b + c);
    EXPECT_NEAR(resonance, natural, 3e-6 * natural);
}

TEST_F(WetFrequencies, zero_mass_and_missing_added_mass_are_fatal) {
    begin(1, {1});
    for (const char* name : {"hyd_mstr", "hyd_kstr", ".hyd_kf"})
        create_matrix<double>(name, 1, 1);
    const auto expect_fatal = [&](const char* message) {
        EXPECT_EXIT(run_detached("hyd_wet"), testing::ExitedWithCode(0), message);
    };
    expect_fatal("Added mass not found");
    create_array3<double>(".hyd_addm", 1, 1, 1);
    expect_fatal("Jacobi reports an error; execution terminating");
}

} // namespace
} // namespace quelor
