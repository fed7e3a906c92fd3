// The elevation of the free surface: 10,000 points of the surface about a hemisphere of 2,000
// panels, three headings at once, against the influence matrices of the same panels in the same
// run. Printed are nanoseconds a pair of point and panel, a pair of panels, and their ratio.
#include "hydro_analysis/influence.hpp"
#include "hydro_response/field_potential.hpp"
#include "tests/support/panel_arrays.hpp"

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace quelor;

namespace {

constexpr int rows = 25, columns = 80; // 2,000 panels
constexpr int side = 100, headings = 3;
constexpr double radius = 10, K = 0.1; // K radius = 1: all regions of the wave terms occur

/// The shortest of five runs, seconds of processor time.
template <class Action> double shortest_time(Action action) {
    double best = 1e30;
    for (int run = 0; run < 5; ++run) {
        const std::clock_t start = std::clock();
        action();
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

void compare(double depth, double width) {
    const auto mesh = test::hemisphere_mesh(radius, rows, columns, 0);
    const InfluenceParameters parameters{K, depth, 10, 2.5, 0};
    const std::size_t np = mesh.count();
    std::vector<Complex4> alpha(np * np), beta(np * np), sigma(np * headings, Complex4(1, 1));
    std::vector<Vec3> points;
    for (int i = 0; i < side; ++i)
        for (int j = 0; j < side; ++j)
            points.push_back(
                {width * (i / (side - 1.0) - 0.5), width * (j / (side - 1.0) - 0.5), 0});
    std::vector<Complex8> phi(points.size() * headings);
    const Matrix<Complex4> a{alpha.data(), mesh.np, mesh.np}, b{beta.data(), mesh.np, mesh.np};
    DepthCache cache;
    const double matrices = shortest_time([&] {
        influence_matrices(mesh.view(), parameters, cache, {&a, 1}, {&b, 1}, {});
    });
    const double field = shortest_time([&] {
        add_source_field(mesh.view(), points, parameters, cache, {sigma.data(), mesh.np, headings},
                         1, {phi.data(), side * side, 1, headings});
    });
    const double pair = matrices / static_cast<double>(np * np);
    const double at_point = field / static_cast<double>(np * points.size());
    std::printf(
        "depth %6g, square of %4g m: %5.1f ns a point and panel, %5.1f ns a pair of panels, ratio %.2f\n",
        depth, width, at_point * 1e9, pair * 1e9, at_point / pair);
}

} // namespace

int main() {
    for (const double depth : {1000.0, 30.0})
        for (const double width : {100.0, 400.0})
            compare(depth, width);
}
