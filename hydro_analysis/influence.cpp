// Influence matrices by tiles of source and field panels. Each unordered pair of panels is
// evaluated once: the wave terms of (field j, source i) serve (field i, source j) too, image by
// image, since a reflection is its own inverse. A pair is always taken with i <= j, so that the
// result does not depend on the size of the tiles.
#include "hydro_analysis/influence.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "hydro_analysis/symmetry.hpp"

namespace quelor {

namespace {

constexpr int tile = 32; // a tile's buffers stay in the second-level cache
// Distance of the arrays of a tile. With a power of two their elements would share few cache sets.
constexpr std::ptrdiff_t plane = tile * tile + 24;

// Everything a tile needs; 0-based.
struct Tiles {
    const ScaledPanels& panels;
    int symmetry, ns;
    GreenWater water;
    double K;
    const DepthCache& cache;
    std::span<const Matrix<Complex4>> alpha, beta;

    std::vector<double> numbers;
    PairGeometry geometry;
    WaveTerms wave;
    PairValues values;              // image m at (m - 1) * plane
    std::vector<Complex4> mirrored; // alpha, then beta of the mirror pairs of one class
};

struct Range {
    int first, n;
};

Tiles make_tiles(const ScaledPanels& panels, const InfluenceParameters& parameters,
                 const DepthCache& cache, std::span<const Matrix<Complex4>> alpha,
                 std::span<const Matrix<Complex4>> beta) {
    const int ns = image_count(parameters.symmetry);
    Tiles t{panels,
            parameters.symmetry,
            ns,
            parameters.water(),
            parameters.K,
            cache,
            alpha,
            beta,
            std::vector<double>((12 + 8 * as_size(ns)) * as_size(plane)),
            {},
            {},
            {},
            std::vector<Complex4>(2 * as_size(plane))};
    double* next = t.numbers.data();
    for (double** pointer :
         {&t.geometry.R, &t.geometry.Z, &t.geometry.d1, &t.geometry.d2, &t.wave.re, &t.wave.re_R,
          &t.wave.re_1, &t.wave.re_2, &t.wave.im, &t.wave.im_R, &t.wave.im_1, &t.wave.im_2})
        *pointer = cut(next, plane);
    for (double** pointer :
         {&t.values.G, &t.values.G_mirror, &t.values.G_im, &t.values.D, &t.values.D_im,
          &t.values.D_mirror, &t.values.D_mirror_im, &t.values.r})
        *pointer = cut(next, plane * ns);
    return t;
}

// Potential and normal derivative at panel j for source i, near field, per unit area of the source.
void near_pair(const Tiles& t, int j, int i, Reflection reflection, double R, double re,
               double re_R, double re_depth, double& G, double& D) {
    const PanelBlock field = t.panels.block(j, 1);
    const SourcePanel& source = t.panels.source(i);
    const Vec3 p = field.at(0), n = field.normal(0);
    const auto [value, gradient] = rankine_terms(p, source, reflection, t.water.hnd);
    const double dx = p[0] - reflection.x * source.centroid[0];
    const double dy = p[1] - reflection.y * source.centroid[1];
    const double h = R > 1e-6 ? re_R / R : 0.0;
    const double area = source.area;
    G = re + value / area;
    D = n[0] * (dx * h + gradient[0] / area) + n[1] * (dy * h + gradient[1] / area) +
        n[2] * (gradient[2] / area - re_depth);
}

// Replaces the values of the pairs of row i that lie within the length of their source.
void near_row(const Tiles& t, int i, Reflection reflection, Range columns,
              const PairGeometry& pairs, const WaveTerms& wave, const PairValues& v) {
    const double L = t.panels.source(i).L;
    for (int k = 0; k < columns.n; ++k) {
        const int j = columns.first + k;
        if (v.r[k] <= L)
            near_pair(t, j, i, reflection, pairs.R[k], wave.re[k], wave.re_R[k], wave.re_1[k],
                      v.G[k], v.D[k]);
        if (v.r[k] <= t.panels.source(j).L)
            near_pair(t, i, j, reflection, pairs.R[k], wave.re[k], wave.re_R[k], wave.re_2[k],
                      v.G_mirror[k], v.D_mirror[k]);
    }
}

// Values of all pairs of a tile for image m.
void evaluate_image(const Tiles& t, int m, Range rows, Range columns) {
    const PanelBlock block = t.panels.block(columns.first, columns.n);
    const Reflection reflection = reflection_of(t.symmetry, m);
    for (int a = 0; a < rows.n; ++a)
        pair_geometry(block, t.panels.block(rows.first + a, 1), reflection,
                      t.geometry.from(a * columns.n));
    evaluate_waves(t.water, t.cache, rows.n * columns.n, t.geometry, t.wave);
    const double twice_depth = t.water.h_green > 0 ? 2 * t.water.hnd : 0.0;
    for (int a = 0; a < rows.n; ++a) {
        const int i = rows.first + a, offset = a * columns.n;
        const PairGeometry pairs = t.geometry.from(offset);
        const WaveTerms wave = t.wave.from(offset);
        const PairValues values = t.values.from((m - 1) * plane + offset);
        if (far_row(block, t.panels.block(i, 1), reflection, twice_depth, pairs.R, wave, values) >
            0)
            near_row(t, i, reflection, columns, pairs, wave, values);
    }
}

// Every stride-th of n values. Copied as 8 bytes; as complex numbers they would go part by part.
void copy_column(int n, int stride, const Complex4* from, Complex4* to) {
    for (int a = 0; a < n; ++a)
        std::memcpy(to + a, from + std::ptrdiff_t{a} * stride, sizeof *to);
}

// Class sums of a tile into the columns of its sources, and those of the mirror pairs, which arrive
// row by row, into the columns of theirs. A tile on the diagonal holds each pair twice: of its
// mirror pairs none is needed, of its pairs only those with i <= j; the rest come by their mirrors.
void write_class(Tiles& t, int k, Range rows, Range columns) {
    std::array<double, 4> sign{};
    for (int m = 1; m <= t.ns; ++m)
        sign[nth(m)] = class_sign(t.symmetry, k, m);
    const Matrix<Complex4>&alpha = t.alpha[nth(k)], &beta = t.beta[nth(k)];
    Complex4* alpha_mirror = t.mirrored.data();
    Complex4* beta_mirror = alpha_mirror + plane;
    const bool diagonal = rows.first == columns.first;
    for (int a = 0; a < rows.n; ++a) {
        const int first = diagonal ? a : 0, offset = a * columns.n + first;
        const int i = rows.first + a, j = columns.first + first;
        class_row(t.panels.block(j, columns.n - first), t.panels.source(i).area,
                  t.values.from(offset), plane, t.ns, sign.data(), 1.0 / t.K,
                  {&alpha(j + 1, i + 1), &beta(j + 1, i + 1), alpha_mirror + offset,
                   beta_mirror + offset});
    }
    for (int b = 0; b < columns.n; ++b) {
        const int count = diagonal ? b : rows.n;
        if (count == 0) continue;
        copy_column(count, columns.n, alpha_mirror + b,
                    &alpha(rows.first + 1, columns.first + b + 1));
        copy_column(count, columns.n, beta_mirror + b,
                    &beta(rows.first + 1, columns.first + b + 1));
    }
}

} // namespace

InfluenceResult influence_matrices(const PanelMesh& mesh, const InfluenceParameters& parameters,
                                   DepthCache& cache, std::span<const Matrix<Complex4>> alpha,
                                   std::span<const Matrix<Complex4>> beta,
                                   const std::function<void(int)>& progress) {
    const ScaledPanels panels(mesh, parameters);
    const int np = panels.count();
    const InfluenceResult result = check_panels(panels, parameters, cache);
    if (result.status != InfluenceStatus::formed) return result;
    Tiles t = make_tiles(panels, parameters, cache, alpha, beta);
    for (int i = 0; i < np; i += tile) {
        const Range rows = {i, std::min(tile, np - i)};
        for (int j = i; j < np; j += tile) {
            const Range columns = {j, std::min(tile, np - j)};
            for (int m = 1; m <= t.ns; ++m)
                evaluate_image(t, m, rows, columns);
            for (int k = 1; k <= t.ns; ++k)
                write_class(t, k, rows, columns);
        }
        for (int p = i + 1; progress && p <= i + rows.n; ++p) {
            if (p % 100 == 0 || p == np) progress(p);
        }
    }
    return {};
}

} // namespace quelor
