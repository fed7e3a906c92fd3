// Nanoseconds a pair of panels and image of the influence matrices, value and gradient, near field
// included, on a hemisphere of 2,000 panels, and how many times faster that is than the plain loop
// over `ggn` on the same mesh (every 97th pair of it, in the same run).
#include <benchmark/benchmark.h>

#include <ctime>

#include "hydro_analysis/influence.hpp"
#include "hydro_analysis/influence_field.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "tests/support/panel_arrays.hpp"

using namespace quelor;

namespace {

constexpr int rows = 25, columns = 80; // 2,000 panels
constexpr double radius = 10, K = 0.1; // K radius = 1: all regions of the wave terms occur

double seconds() { // of processor time
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Seconds a pair and image by one call of ggn each.
double scalar_time(const PanelMesh& mesh, const InfluenceParameters& p) {
    const int np = mesh.np(), ns = image_count(p.symmetry);
    DepthCache cache;
    std::vector<SourcePanel> sources;
    for (int i = 1; i <= np; ++i)
        sources.push_back(source_panel(mesh.panel(i), p.K, p.gauge));
    int count = 0;
    const double start = seconds();
    for (std::ptrdiff_t pair = 0; pair < std::ptrdiff_t{np} * np; pair += 97) {
        const int i = static_cast<int>(pair / np), j = static_cast<int>(pair % np) + 1;
        const Vec3 at = scaled(mesh.centroid(j), p.K), n = mesh.normal(j);
        for (int m = 1; m <= ns; ++m, ++count)
            benchmark::DoNotOptimize(
                ggn(at, n, sources[as_size(i)], reflection_of(p.symmetry, m), p.water(), cache));
    }
    return (seconds() - start) / count;
}

void influence(benchmark::State& state) {
    const int symmetry = static_cast<int>(state.range(0));
    const double depth = static_cast<double>(state.range(1));
    const auto mesh = test::hemisphere_mesh(radius, rows, columns, symmetry);
    const InfluenceParameters p = {K, depth, 10, 2.5, symmetry};
    const int np = mesh.np, ns = image_count(symmetry);
    const std::size_t size = mesh.count() * mesh.count();
    std::vector<std::vector<Complex4>> storage(2 * static_cast<std::size_t>(ns),
                                               std::vector<Complex4>(size));
    std::vector<Matrix<Complex4>> alpha, beta;
    for (std::size_t k = 0; k < storage.size(); k += 2) {
        alpha.push_back({storage[k].data(), np, np});
        beta.push_back({storage[k + 1].data(), np, np});
    }
    const double plain = scalar_time(mesh.view(), p);
    DepthCache cache;
    double total = 0;
    int runs = 0;
    for (auto _ : state) {
        const double start = seconds();
        benchmark::DoNotOptimize(influence_matrices(mesh.view(), p, cache, alpha, beta, {}));
        total += seconds() - start;
        ++runs;
    }
    const double each = total / (static_cast<double>(size) * ns * runs);
    state.counters["ns_per_pair"] = each * 1e9;
    state.counters["ns_scalar"] = plain * 1e9;
    state.counters["ratio"] = plain / each;
}

// The same of the free points of a square of the surface, 400 m wide, for comparison with the
// matrices: potential alone, each point its own evaluation.
void field(benchmark::State& state) {
    const int symmetry = static_cast<int>(state.range(0));
    const double depth = static_cast<double>(state.range(1));
    const auto mesh = test::hemisphere_mesh(radius, rows, columns, symmetry);
    const InfluenceParameters p = {K, depth, 10, 2.5, symmetry};
    std::vector<Vec3> points;
    for (int i = 0; i < 45; ++i)
        for (int j = 0; j < 45; ++j)
            points.push_back({-200 + 400.0 / 44 * i, -200 + 400.0 / 44 * j, 0});
    DepthCache cache;
    double total = 0;
    int runs = 0;
    for (auto _ : state) {
        const double start = seconds();
        benchmark::DoNotOptimize(
            field_influence(mesh.view(), points, p, cache,
                            [](int, auto alpha) { benchmark::DoNotOptimize(alpha[0](1, 1)); }));
        total += seconds() - start;
        ++runs;
    }
    const double pairs = static_cast<double>(points.size() * mesh.count()) * image_count(symmetry);
    state.counters["ns_per_pair"] = total / (pairs * runs) * 1e9;
}

} // namespace

BENCHMARK(field)
    ->ArgNames({"symmetry", "depth"})
    ->ArgsProduct({{0, 2}, {1000, 30}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(influence)
    ->ArgNames({"symmetry", "depth"})
    ->ArgsProduct({{0, 2}, {1000, 30}})
    ->Unit(benchmark::kMillisecond);
