// Influence matrices by tiles of source and field panels. Each unordered pair of panels is
// evaluated once: the wave terms of (field j, source i) serve (field i, source j) too, image by
// image, since a reflection is its own inverse. A pair is always taken with i <= j, so that the
// result does not depend on the size of the tiles.
#include "hydro_analysis/influence.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "green/deep_wave.hpp"
#include "hydro_analysis/influence_tile.hpp"
#include "hydro_analysis/symmetry.hpp"

namespace quelor {

namespace {

constexpr int tile = 32; // a tile's buffers stay in the second-level cache
// Distance of the arrays of a tile. With a power of two their elements would share few cache sets.
constexpr std::ptrdiff_t plane = tile * tile + 24;

// All panels, lengths times K; 0-based.
struct ScaledMesh {
    int np;
    std::vector<double> values;
    PanelBlock block;
    std::vector<SourcePanel> source;
};

// Everything a tile needs; 0-based.
struct Tiles {
    const ScaledMesh& mesh;
    int symmetry, ns;
    double hnd;     // K depth
    double h_green; // the same, or -1 for deep water
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

} // namespace

SourcePanel source_panel(const PanelMesh& mesh, int p, double K, double gauge) {
    std::array<GreenPoint, 4> corners;
    for (int k = 1; k <= 4; ++k) {
        corners[nth(k)] = {K * mesh.xr(p, k), K * mesh.yr(p, k), K * mesh.zr(p, k)};
    }
    const double area = mesh.area[nth(p)] * K * K;
    return {flat_panel(corners, mesh.type[nth(p)] == 1),
            {K * mesh.xyzc(p, 1), K * mesh.xyzc(p, 2), K * mesh.xyzc(p, 3)},
            area,
            std::sqrt(area) * gauge};
}

static ScaledMesh scaled_mesh(const PanelMesh& mesh, const InfluenceParameters& parameters) {
    const int np = mesh.xyzc.rows;
    ScaledMesh scaled{np, std::vector<double>(8 * as_size(np)), {}, {}};
    double* v = scaled.values.data();
    const auto column = [&](int k) { return v + std::ptrdiff_t{k} * np; };
    scaled.source.reserve(as_size(np));
    for (int p = 1; p <= np; ++p) {
        const SourcePanel source = source_panel(mesh, p, parameters.K, parameters.gauge);
        const double row[] = {source.centroid.x, source.centroid.y, source.centroid.z, mesh.n(1, p),
                              mesh.n(2, p),      mesh.n(3, p),      source.area,       source.L};
        for (int k = 0; k < 8; ++k)
            column(k)[p - 1] = row[k];
        scaled.source.push_back(source);
    }
    scaled.block = {np,        column(0), column(1), column(2), column(3),
                    column(4), column(5), column(6), column(7)};
    return scaled;
}

static Tiles make_tiles(const ScaledMesh& mesh, const InfluenceParameters& parameters,
                        const DepthCache& cache, std::span<const Matrix<Complex4>> alpha,
                        std::span<const Matrix<Complex4>> beta) {
    const int ns = image_count(parameters.symmetry);
    const double hnd = parameters.K * parameters.depth;
    Tiles t{mesh,
            parameters.symmetry,
            ns,
            hnd,
            parameters.deep_water_limit >= hnd ? hnd : -1.0,
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
         {&t.geometry.R, &t.geometry.Z, &t.geometry.d1, &t.geometry.d2, &t.wave.f1, &t.wave.f2,
          &t.wave.f3, &t.wave.f7, &t.wave.g1, &t.wave.g2, &t.wave.g3, &t.wave.g7}) {
        *pointer = next;
        next += plane;
    }
    for (double** pointer :
         {&t.values.G, &t.values.G_mirror, &t.values.G_im, &t.values.D, &t.values.D_im,
          &t.values.D_mirror, &t.values.D_mirror_im, &t.values.r}) {
        *pointer = next;
        next += plane * ns;
    }
    return t;
}

static RowPanel row_panel(const Tiles& t, int i, int m) {
    const PanelBlock& b = t.mesh.block;
    return {b.x[i],
            b.y[i],
            b.z[i],
            b.nx[i],
            b.ny[i],
            b.nz[i],
            b.area[i],
            b.L[i],
            image_sign_x(t.symmetry, m),
            image_sign_y(t.symmetry, m)};
}

// Potential and normal derivative at panel j for source i, near field, per unit area of the source.
static void near_pair(const Tiles& t, int j, int i, const RowPanel& row, double R, double f1,
                      double f2, double f3, double& G, double& D) {
    const PanelBlock& b = t.mesh.block;
    const SourcePanel& source = t.mesh.source[as_size(i)];
    const RankineIntegral I =
        rankine_terms({b.x[j], b.y[j], b.z[j]}, source, row.sign_x, row.sign_y, t.hnd);
    const double dx = b.x[j] - row.sign_x * b.x[i], dy = b.y[j] - row.sign_y * b.y[i];
    const double h = R > 1e-6 ? f2 / R : 0.0;
    const double area = source.area;
    G = f1 + I.value / area;
    D = b.nx[j] * (dx * h + I.x / area) + b.ny[j] * (dy * h + I.y / area) +
        b.nz[j] * (I.z / area - f3);
}

// Replaces the values of the pairs of row i that lie within the length of their source.
static void near_row(const Tiles& t, const RowPanel& row, int i, Range columns, int offset,
                     const PairValues& v) {
    for (int k = 0; k < columns.n; ++k) {
        const int j = columns.first + k, w = offset + k;
        if (v.r[k] <= row.L) {
            near_pair(t, j, i, row, t.geometry.R[w], t.wave.f1[w], t.wave.f2[w], t.wave.f3[w],
                      v.G[k], v.D[k]);
        }
        if (v.r[k] <= t.mesh.block.L[j]) {
            near_pair(t, i, j, row, t.geometry.R[w], t.wave.f1[w], t.wave.f2[w], t.wave.f7[w],
                      v.G_mirror[k], v.D_mirror[k]);
        }
    }
}

static void evaluate_wave(const Tiles& t, int n) {
    const std::size_t count = as_size(n);
    if (t.h_green > 0) {
        finite_wave_terms({t.geometry.R, count}, {t.geometry.d1, count}, {t.geometry.d2, count},
                          t.cache, t.wave);
    } else {
        deep_wave_terms({t.geometry.R, count}, {t.geometry.Z, count}, t.wave);
    }
}

// Values of all pairs of a tile for image m.
static void evaluate_image(const Tiles& t, int m, Range rows, Range columns) {
    const PanelBlock block = t.mesh.block.from(columns.first, columns.n);
    for (int a = 0; a < rows.n; ++a) {
        pair_geometry(block, row_panel(t, rows.first + a, m), t.geometry.from(a * columns.n));
    }
    evaluate_wave(t, rows.n * columns.n);
    const double twice_depth = t.h_green > 0 ? 2 * t.hnd : 0.0;
    for (int a = 0; a < rows.n; ++a) {
        const int offset = a * columns.n;
        const RowPanel row = row_panel(t, rows.first + a, m);
        const PairValues values = t.values.from((m - 1) * plane + offset);
        const WaveTerms& w = t.wave;
        const WaveTerms wave = {w.f1 + offset, w.f2 + offset, w.f3 + offset, w.f7 + offset,
                                w.g1 + offset, w.g2 + offset, w.g3 + offset, w.g7 + offset};
        if (far_row(block, row, twice_depth, t.geometry.R + offset, wave, values) > 0) {
            near_row(t, row, rows.first + a, columns, offset, values);
        }
    }
}

// Every stride-th of n values. Copied as 8 bytes; as complex numbers they would go part by part.
static void copy_column(int n, int stride, const Complex4* from, Complex4* to) {
    for (int a = 0; a < n; ++a)
        std::memcpy(to + a, from + std::ptrdiff_t{a} * stride, sizeof *to);
}

// Class sums of a tile into the columns of its sources, and those of the mirror pairs, which arrive
// row by row, into the columns of theirs. A tile on the diagonal holds each pair twice: of its
// mirror pairs none is needed, of its pairs only those with i <= j; the rest come by their mirrors.
static void write_class(Tiles& t, int k, Range rows, Range columns) {
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
        class_row(t.mesh.block.from(j, columns.n - first), t.mesh.block.area[i],
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

static bool finite_panel(const SourcePanel& s, const PanelBlock& b, int p) {
    double sum = s.area + s.flat.normal.x + s.flat.normal.y + s.flat.normal.z + b.nx[p] + b.ny[p] +
                 b.nz[p] + s.centroid.x + s.centroid.y + s.centroid.z;
    for (std::size_t k = 0; k < 4; ++k)
        sum += s.flat.x[k] + s.flat.y[k] + s.flat.z[k];
    return std::isfinite(sum) && s.area > 0;
}

static GreenInfluence pair_by_ggn(const Tiles& t, int j, int i, int m, DepthCache& cache) {
    const PanelBlock& b = t.mesh.block;
    return ggn(
        {{b.x[j], b.y[j], b.z[j]}, {b.nx[j], b.ny[j], b.nz[j]}},
        {t.mesh.source[as_size(i)], image_sign_x(t.symmetry, m), image_sign_y(t.symmetry, m)},
        {t.hnd, t.h_green}, cache);
}

// The first pair of source panel i that has no Green function. One below the bottom has none with
// any panel; the near field, which does not ask, must not hide it.
static InfluenceStatus check_source(const Tiles& t, int i, DepthCache& cache) {
    for (int j = 0; j < t.mesh.np; ++j) {
        for (int m = 1; m <= t.ns; ++m) {
            const GreenInfluence pair = pair_by_ggn(t, j, i, m, cache);
            if (pair.ier != 0) return {1, i + 1, pair};
        }
    }
    const bool below = t.h_green > 0 && -t.mesh.block.z[i] > t.h_green;
    if (!below) return {};
    GreenInfluence self = pair_by_ggn(t, i, i, 1, cache);
    self.ier = 1;
    return {1, i + 1, self};
}

// Only panels below the bottom or immensely far away can lack a Green function.
static InfluenceStatus check_panels(const Tiles& t, DepthCache& cache) {
    const PanelBlock& b = t.mesh.block;
    for (int p = 0; p < b.n; ++p) {
        if (!finite_panel(t.mesh.source[as_size(p)], b, p)) return {2, p + 1, {}};
    }
    const double deepest = t.h_green > 0 ? t.h_green : 4e7, farthest = 2e7;
    for (int p = 0; p < b.n; ++p) {
        if (-b.z[p] <= deepest && std::abs(b.x[p]) <= farthest && std::abs(b.y[p]) <= farthest) {
            continue;
        }
        const InfluenceStatus status = check_source(t, p, cache);
        if (status.ier != 0) return status;
    }
    return {};
}

InfluenceStatus influence_matrices(const PanelMesh& mesh, const InfluenceParameters& parameters,
                                   DepthCache& cache, std::span<const Matrix<Complex4>> alpha,
                                   std::span<const Matrix<Complex4>> beta,
                                   const std::function<void(int)>& progress) {
    const ScaledMesh scaled = scaled_mesh(mesh, parameters);
    const int np = scaled.np;
    Tiles t = make_tiles(scaled, parameters, cache, alpha, beta);
    if (t.h_green > 0 && cache.h != t.h_green) cache = prepare_depth(t.h_green);
    if (t.h_green > 0 && cache.status != RootStatus::found) return {3, 0, {}};
    const InfluenceStatus status = check_panels(t, cache);
    if (status.ier != 0) return status;
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
