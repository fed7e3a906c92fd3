// Nanoseconds a point of the deep-water wave terms, value and gradient, real and imaginary part:
// the batch kernel, and a plain loop over the single-point routines with the same formulas.
#include "green/deep_wave.hpp"
#include "green/infred_f.hpp"
#include "green/spfn.hpp"

#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

using namespace quelor;

namespace {

/// n points uniform in R < r, Z < z, and room for the results.
struct Points {
    std::vector<double> R, Z;
    std::array<std::vector<double>, 8> values;

    explicit Points(const benchmark::State& state)
        : R(static_cast<std::size_t>(state.range(0))), Z(R.size()) {
        std::mt19937_64 generator(1); // NOLINT: the same points in every run
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        for (auto& r : R)
            r = unit(generator) * static_cast<double>(state.range(1));
        for (auto& z : Z)
            z = unit(generator) * static_cast<double>(state.range(2));
        for (auto& v : values)
            v.resize(R.size());
    }
    WaveTerms terms() {
        auto& v = values;
        return {v[0].data(), v[1].data(), v[2].data(), v[3].data(),
                v[4].data(), v[5].data(), v[6].data(), v[7].data()};
    }
};

void report(benchmark::State& state) {
    using benchmark::Counter;
    const auto points = static_cast<double>(state.iterations() * state.range(0));
    state.counters["s/point"] = Counter(points, Counter::kIsRate | Counter::kInvert);
}

void batch(benchmark::State& state) {
    Points points(state);
    for (auto _ : state) {
        deep_wave_terms(points.R, points.Z, points.terms());
        benchmark::ClobberMemory();
    }
    report(state);
}

void values(benchmark::State& state) {
    Points points(state);
    for (auto _ : state) {
        deep_wave_values(points.R, points.Z, points.terms().re, points.terms().im);
        benchmark::ClobberMemory();
    }
    report(state);
}

void images(benchmark::State& state) {
    Points points(state);
    const WaveTerms t = points.terms();
    for (auto _ : state) {
        deep_images(points.R, points.Z, t.re, t.re_R, t.re_1);
        benchmark::ClobberMemory();
    }
    report(state);
}

void plain_loop(benchmark::State& state) {
    Points points(state);
    const WaveTerms t = points.terms();
    for (auto _ : state) {
        for (std::size_t i = 0; i < points.R.size(); ++i) {
            const auto f = infred_f(points.R[i], points.Z[i], SurfaceTerms::none);
            const auto b = spfn_bessel(points.R[i]);
            const double wave = 2 * std::numbers::pi * std::exp(-points.Z[i]);
            t.re[i] = f.F;
            t.re_R[i] = f.Fr;
            t.re_1[i] = t.re_2[i] = f.Fz;
            t.im[i] = -wave * b.j0;
            t.im_R[i] = wave * b.j1;
            t.im_1[i] = t.im_2[i] = wave * b.j0;
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

// A small body, a long one, deep points, and a large batch.
void sizes(benchmark::internal::Benchmark* b) {
    for (const auto& size :
         {std::array{1000, 3, 3}, std::array{1000, 30, 5}, std::array{4000, 30, 5},
          std::array{4000, 300, 3}, std::array{4000, 20, 40}})
        b->Args({size[0], size[1], size[2]});
    b->ArgNames({"n", "R", "Z"});
}

} // namespace

BENCHMARK(batch)->Apply(sizes);
BENCHMARK(values)->Apply(sizes);
BENCHMARK(images)->Apply(sizes);
BENCHMARK(plain_loop)->Apply(sizes);
