// Influence on free points by tiles: a block of points, and as many source panels as fill a batch
// of the wave kernels.
#include "hydro_analysis/influence_field.hpp"

#include <algorithm>
#include <array>

#include "green/deep_wave.hpp"
#include "hydro_analysis/symmetry.hpp"

namespace quelor {

namespace {

constexpr int block_points = 64; // rows of the matrices that are consumed at a time
constexpr int batch = 1024;      // pairs of a tile; what it needs stays in the second-level cache
// Distance of the arrays of a tile. With a power of two their elements would share few cache sets.
constexpr std::ptrdiff_t plane = batch + 24;

// Everything a tile needs; 0-based.
struct FieldTiles {
    const ScaledPanels& panels;
    int symmetry, ns;
    GreenWater water;
    double K;
    const DepthCache& cache;

    std::vector<double> numbers{};
    double *x = nullptr, *y = nullptr, *z = nullptr; // points of the block, times K
    PairGeometry geometry{};
    double *re = nullptr, *r = nullptr; // wave terms, real part; distance of the centroid
    double *G = nullptr, *im = nullptr; // per unit area of the source; image m at (m - 1) * plane
    std::vector<Complex4> values{};
};

FieldTiles make_tiles(const ScaledPanels& panels, const InfluenceParameters& parameters,
                      const DepthCache& cache) {
    const int ns = image_count(parameters.symmetry);
    FieldTiles t{panels, parameters.symmetry, ns, parameters.water(), parameters.K, cache};
    t.numbers.resize(as_size(plane) * (6 + 2 * as_size(ns)) + 3 * as_size(block_points));
    t.values.resize(as_size(block_points) * as_size(panels.count()) * as_size(ns));
    double* next = t.numbers.data();
    for (double** pointer :
         {&t.geometry.R, &t.geometry.Z, &t.geometry.d1, &t.geometry.d2, &t.re, &t.r})
        *pointer = cut(next, plane);
    for (double** pointer : {&t.G, &t.im})
        *pointer = cut(next, plane * ns);
    for (double** pointer : {&t.x, &t.y, &t.z})
        *pointer = cut(next, block_points);
    return t;
}

PointBlock load_points(const FieldTiles& t, std::span<const Vec3> points) {
    for (std::size_t j = 0; j < points.size(); ++j) {
        t.x[j] = t.K * points[j][0];
        t.y[j] = t.K * points[j][1];
        t.z[j] = t.K * points[j][2];
    }
    return {static_cast<int>(points.size()), t.x, t.y, t.z};
}

void evaluate_wave_values(const FieldTiles& t, int n, double* im) {
    const std::size_t count = as_size(n);
    if (t.water.h_green > 0)
        finite_wave_values({t.geometry.R, count}, {t.geometry.d1, count}, {t.geometry.d2, count},
                           t.cache, t.re, im);
    else
        deep_wave_values({t.geometry.R, count}, {t.geometry.Z, count}, t.re, im);
}

// Potentials of all pairs of a tile for image m.
void evaluate_image(const FieldTiles& t, int m, const PointBlock& points, int first, int count) {
    const Reflection reflection = reflection_of(t.symmetry, m);
    for (int a = 0; a < count; ++a)
        pair_geometry(points, t.panels.block(first + a, 1), reflection,
                      t.geometry.from(a * points.n));
    evaluate_wave_values(t, count * points.n, t.im + (m - 1) * plane);
    const double twice_depth = t.water.h_green > 0 ? 2 * t.water.hnd : 0.0;
    for (int a = 0; a < count; ++a) {
        const std::ptrdiff_t offset = std::ptrdiff_t{a} * points.n;
        const SourcePanel& source = t.panels.source(first + a);
        const double *re = t.re + offset, *r = t.r + offset;
        double* G = t.G + (m - 1) * plane + offset;
        if (far_potential(points, t.panels.block(first + a, 1), reflection, twice_depth, re, G,
                          t.r + offset) == 0)
            continue;
        for (int j = 0; j < points.n; ++j)
            if (r[j] <= source.L)
                G[j] = re[j] + rankine_terms(points.at(j), source, reflection, t.water.hnd).value /
                                   source.area;
    }
}

// The coefficients of one block of points with all panels, into `alpha`.
void evaluate_block(const FieldTiles& t, const PointBlock& points,
                    std::span<const Matrix<Complex4>> alpha) {
    const int rows = std::max(batch / points.n, 1), np = t.panels.count();
    for (int first = 0; first < np; first += rows) {
        const int count = std::min(rows, np - first);
        for (int m = 1; m <= t.ns; ++m)
            evaluate_image(t, m, points, first, count);
        for (int k = 1; k <= t.ns; ++k) {
            std::array<double, 4> sign{};
            for (int m = 1; m <= t.ns; ++m)
                sign[nth(m)] = class_sign(t.symmetry, k, m);
            for (int a = 0; a < count; ++a) {
                const double area = t.panels.source(first + a).area;
                const std::ptrdiff_t offset = std::ptrdiff_t{a} * points.n;
                class_potential(points.n, area / t.K, t.G + offset, t.im + offset, plane, t.ns,
                                sign.data(), alpha[nth(k)].col(first + a + 1).data());
            }
        }
    }
}

bool in_water(const Vec3& p, const InfluenceParameters& parameters) {
    return is_finite(p) && p[2] <= 0 && p[2] >= -parameters.depth &&
           within_reach(scaled(p, parameters.K), parameters.water());
}

} // namespace

InfluenceResult field_influence(const PanelMesh& mesh, std::span<const Vec3> points,
                                const InfluenceParameters& parameters, DepthCache& cache,
                                const FieldConsumer& consume) {
    const ScaledPanels panels(mesh, parameters);
    const InfluenceResult result = check_panels(panels, parameters, cache);
    if (result.status != InfluenceStatus::formed) return result;
    for (std::size_t j = 0; j < points.size(); ++j)
        if (!in_water(points[j], parameters))
            return {.status = InfluenceStatus::bad_point, .point = static_cast<int>(j) + 1};
    FieldTiles t = make_tiles(panels, parameters, cache);
    for (std::size_t start = 0; start < points.size(); start += block_points) {
        const auto n = std::min<std::size_t>(block_points, points.size() - start);
        const PointBlock block = load_points(t, points.subspan(start, n));
        std::array<Matrix<Complex4>, 4> alpha;
        for (int k = 1; k <= t.ns; ++k)
            alpha[nth(k)] = {t.values.data() + nth(k) * n * as_size(panels.count()), block.n,
                             panels.count()};
        evaluate_block(t, block, std::span(alpha).first(as_size(t.ns)));
        const std::array<Matrix<const Complex4>, 4> formed{alpha[0], alpha[1], alpha[2], alpha[3]};
        consume(static_cast<int>(start) + 1, std::span(formed).first(as_size(t.ns)));
    }
    return {};
}

} // namespace quelor
