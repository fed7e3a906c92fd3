// Nanoseconds a point of the finite-depth Green function, value and gradient, by bands of R/h: the
// batch kernel, and the scalar routine of the same formulas (which gives the second derivatives
// too).
//
//     green_finite_bench        items_per_second is points a second
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <vector>

#include "green/finred_f.hpp"

using namespace quelor;

namespace {

constexpr int points = 4000;

struct Band {
    std::vector<double> R, d1, d2;
};

/// Points with R/h between the two arguments of the benchmark, in tenths.
Band band(const benchmark::State& state, double h) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const double low = 0.1 * static_cast<double>(state.range(0));
    const double high = 0.1 * static_cast<double>(state.range(1));
    Band result;
    for (int i = 0; i < points; ++i) {
        result.R.push_back(h * (low + (high - low) * unit(random)));
        result.d1.push_back(h * unit(random));
        result.d2.push_back(h * unit(random));
    }
    return result;
}

void batch(benchmark::State& state) {
    const double h = 1.5;
    const DepthCache cache = prepare_depth(h);
    const Band p = band(state, h);
    std::array<std::vector<double>, 8> o;
    for (auto& row : o)
        row.resize(points);
    const WaveTerms out{o[0].data(), o[1].data(), o[2].data(), o[3].data(),
                        o[4].data(), o[5].data(), o[6].data(), o[7].data()};
    for (auto _ : state) {
        finite_wave_terms(p.R, p.d1, p.d2, cache, out);
        benchmark::DoNotOptimize(o[0].data());
    }
    state.SetItemsProcessed(state.iterations() * points);
}

void values(benchmark::State& state) {
    const double h = 1.5;
    const DepthCache cache = prepare_depth(h);
    const Band p = band(state, h);
    std::vector<double> re(points), im(points);
    for (auto _ : state) {
        finite_wave_values(p.R, p.d1, p.d2, cache, re.data(), im.data());
        benchmark::DoNotOptimize(re.data());
    }
    state.SetItemsProcessed(state.iterations() * points);
}

void scalar(benchmark::State& state) {
    const double h = 1.5;
    DepthCache cache = prepare_depth(h);
    const Band p = band(state, h);
    GreenValue f;
    for (auto _ : state)
        for (std::size_t i = 0; i < points; ++i) {
            benchmark::DoNotOptimize(finred_f(p.R[i], p.d1[i], p.d2[i], h, SurfaceTerms::none,
                                              BottomTerm::removed, cache, f));
            benchmark::DoNotOptimize(f);
        }
    state.SetItemsProcessed(state.iterations() * points);
}

void setup_of_a_depth(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(prepare_depth(0.1 * static_cast<double>(state.range(0))));
}

BENCHMARK(batch)->Args({0, 5})->Args({5, 6})->Args({5, 10})->Args({10, 20})->Args({20, 100});
BENCHMARK(values)->Args({0, 5})->Args({5, 6})->Args({5, 10})->Args({10, 20})->Args({20, 100});
BENCHMARK(scalar)->Args({0, 5})->Args({5, 6})->Args({5, 10})->Args({10, 20})->Args({20, 100});
BENCHMARK(setup_of_a_depth)->Arg(1)->Arg(15)->Arg(100);

} // namespace
