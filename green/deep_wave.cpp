// Batch kernels of the deep-water Green function: sort the points by the table that serves them,
// run one vector loop a table, put the results back.
#include "green/deep_wave.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "green/deep_core.hpp"

namespace quelor {

namespace {

constexpr std::size_t block = 1024; ///< points sorted together; the workspace stays in cache
constexpr std::size_t lanes = 8;    ///< doubles of the widest vector; cells are filled up to it
constexpr int cells = 16;
constexpr std::size_t room = block + cells * lanes;

struct Workspace {
    alignas(64) std::array<double, room> R, Z, F, Fr, Fz, g1, g2;
    alignas(64) std::array<std::int32_t, room> source; ///< place in the block of a sorted point
    alignas(64) std::array<std::int64_t, block> cell;
    std::array<std::size_t, cells + 1> start;
};

/// Cells in the order of evaluation: 0, 1 the log form; 2 to 4 the steep form with R <= 3.7 and 5
/// to 7 beyond; 8 to 11 the near and 12 to 15 the far tables of the local form.
QUELOR_INLINE std::int64_t cell_of(double R, double Z) {
    const double rho2 = R * R + Z * Z;
    const std::int64_t steep = (rho2 > 14.0 * 14.0 ? 1 : 0) + (rho2 > 28.0 * 28.0 ? 1 : 0);
    const std::int64_t band = (R <= 4.0 * Z ? 1 : 0) + (R <= 2.0 * Z ? 1 : 0) + (R < Z ? 1 : 0);
    const std::int64_t inner = Z <= 4.0 ? 0 : Z <= 8.0 ? 1 : 2 + steep;
    const std::int64_t outer = R < 0.5 * Z ? 5 + steep : (R > 10.0 ? 12 : 8) + band;
    return R <= 3.7 ? inner : outer;
}

QUELOR_CLONES void find_cells(std::size_t n, const double* R, const double* Z,
                              std::int64_t* __restrict cell) {
    for (std::size_t i = 0; i < n; ++i)
        cell[i] = cell_of(R[i], Z[i]);
}

/// Counting sort of n points; each cell is filled up with copies of its first point.
void sort_points(std::size_t n, const double* R, const double* Z, Workspace& w) {
    find_cells(n, R, Z, w.cell.data());
    std::array<std::size_t, cells> count{}, next{};
    for (std::size_t i = 0; i < n; ++i)
        ++count[static_cast<std::size_t>(w.cell[i])];
    w.start[0] = 0;
    for (std::size_t c = 0; c < cells; ++c) {
        next[c] = w.start[c];
        w.start[c + 1] = w.start[c] + (count[c] + lanes - 1) / lanes * lanes;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t to = next[static_cast<std::size_t>(w.cell[i])]++;
        w.R[to] = R[i];
        w.Z[to] = Z[i];
        w.source[to] = static_cast<std::int32_t>(i);
    }
    for (std::size_t c = 0; c < cells; ++c)
        for (std::size_t to = next[c]; to < w.start[c + 1]; ++to) {
            w.R[to] = w.R[w.start[c]];
            w.Z[to] = w.Z[w.start[c]];
            w.source[to] = w.source[w.start[c]]; // written again with the same values
        }
}

QUELOR_INLINE void store(Workspace& w, std::size_t i, const DeepValue& v, double e) {
    w.F[i] = v.F;
    w.Fr[i] = v.Fr;
    w.Fz[i] = v.Fz;
    w.g1[i] = -2.0 * std::numbers::pi * v.j0 * e;
    w.g2[i] = 2.0 * std::numbers::pi * v.j1 * e;
}

template <class T> QUELOR_INLINE void log_cell(Workspace& w, std::size_t c) {
    for (std::size_t i = w.start[c]; i < w.start[c + 1]; ++i) {
        const double e = vec_exp(-w.Z[i]);
        store(w, i, deep_log_form<T>(w.R[i], w.Z[i], e), e);
    }
}

template <class T, class H> QUELOR_INLINE void local_cell(Workspace& w, std::size_t c) {
    for (std::size_t i = w.start[c]; i < w.start[c + 1]; ++i) {
        const double e = vec_exp(-w.Z[i]);
        store(w, i, deep_local_form<T, H>(w.R[i], w.Z[i], e), e);
    }
}

template <class T, class S> QUELOR_INLINE void steep_cell(Workspace& w, std::size_t c) {
    for (std::size_t i = w.start[c]; i < w.start[c + 1]; ++i) {
        const DeepValue v = deep_steep_form<T, S>(w.R[i], w.Z[i]);
        w.F[i] = v.F;
        w.Fr[i] = v.Fr;
        w.Fz[i] = v.Fz;
    }
}

QUELOR_CLONES void evaluate_cells(Workspace& w) {
    using namespace deep_tables;
    log_cell<LogNear>(w, 0);
    log_cell<LogDeep>(w, 1);
    steep_cell<Steep0, Steep0R>(w, 2);
    steep_cell<Steep1, Steep1R>(w, 3);
    steep_cell<Steep2, Steep2R>(w, 4);
    steep_cell<Steep0, Steep0R>(w, 5);
    steep_cell<Steep1, Steep1R>(w, 6);
    steep_cell<Steep2, Steep2R>(w, 7);
    local_cell<LocalNear0, HankelNear>(w, 8);
    local_cell<LocalNear1, HankelNear>(w, 9);
    local_cell<LocalNear2, HankelNear>(w, 10);
    local_cell<LocalNear3, HankelNear>(w, 11);
    local_cell<LocalFar0, HankelFar>(w, 12);
    local_cell<LocalFar1, HankelFar>(w, 13);
    local_cell<LocalFar2, HankelFar>(w, 14);
    local_cell<LocalFar3, HankelFar>(w, 15);
}

/// The imaginary part of the steep cells, whose real part needs no Bessel function. Beyond R = 10
/// exp(-Z) is below 3e-9 there, which the near table can afford.
QUELOR_CLONES void steep_waves(Workspace& w) {
    for (std::size_t i = w.start[2]; i < w.start[5]; ++i) {
        const double R = w.R[i], wave = 2.0 * std::numbers::pi * vec_exp(-w.Z[i]);
        const SmallBessel b = small_bessel(R * R);
        w.g1[i] = -wave * (1.0 - R * R * b.j0_rest);
        w.g2[i] = wave * R * b.j1_by_x;
    }
    for (std::size_t i = w.start[5]; i < w.start[8]; ++i) {
        const double wave = 2.0 * std::numbers::pi * vec_exp(-w.Z[i]);
        const Bessel b = large_bessel<deep_tables::HankelNear>(w.R[i], 1.0 / w.R[i]);
        w.g1[i] = -wave * b.j0;
        w.g2[i] = wave * b.j1;
    }
}

void put_back(const Workspace& w, std::size_t first, double* F, double* Fr, double* Fz) {
    for (std::size_t i = 0; i < w.start[cells]; ++i) {
        const std::size_t to = first + static_cast<std::size_t>(w.source[i]);
        F[to] = w.F[i];
        Fr[to] = w.Fr[i];
        Fz[to] = w.Fz[i];
    }
}

void put_back_waves(const Workspace& w, std::size_t first, double* g1, double* g2) {
    for (std::size_t i = 0; i < w.start[cells]; ++i) {
        const std::size_t to = first + static_cast<std::size_t>(w.source[i]);
        g1[to] = w.g1[i];
        g2[to] = w.g2[i];
    }
}

/// A pair that meets in the water line has no wave term.
constexpr double meeting = 1e-8;

QUELOR_CLONES void finish_terms(std::size_t n, const double* __restrict R,
                                const double* __restrict Z, const WaveTerms& out) {
    double* __restrict f1 = out.f1, * __restrict f2 = out.f2, * __restrict f3 = out.f3;
    double* __restrict f7 = out.f7, * __restrict g1 = out.g1, * __restrict g2 = out.g2;
    double* __restrict g3 = out.g3, * __restrict g7 = out.g7;
    for (std::size_t i = 0; i < n; ++i) {
        const bool apart = R[i] + Z[i] >= meeting;
        const double fz = apart ? f3[i] : 0.0, g = apart ? g1[i] : 0.0;
        f1[i] = apart ? f1[i] : 0.0;
        f2[i] = apart ? f2[i] : 0.0;
        f3[i] = fz;
        f7[i] = fz;
        g1[i] = g;
        g2[i] = apart ? g2[i] : 0.0;
        g3[i] = -g;
        g7[i] = -g;
    }
}

QUELOR_CLONES void finish_images(std::size_t n, const double* __restrict R,
                                 const double* __restrict Z, double image, double* __restrict F,
                                 double* __restrict Fr, double* __restrict Fz) {
    for (std::size_t i = 0; i < n; ++i) {
        const bool apart = R[i] + Z[i] >= meeting;
        const double p = image / std::sqrt(R[i] * R[i] + Z[i] * Z[i]), q = p * p * p;
        F[i] = apart ? F[i] + p : 0.0;
        Fr[i] = apart ? Fr[i] - R[i] * q : 0.0;
        Fz[i] = apart ? Fz[i] - Z[i] * q : 0.0;
    }
}

} // namespace

void deep_wave_terms(std::span<const double> R, std::span<const double> Z, const WaveTerms& out) {
    assert(R.size() == Z.size());
    Workspace w;
    for (std::size_t first = 0; first < R.size(); first += block) {
        const std::size_t n = std::min(block, R.size() - first);
        sort_points(n, R.data() + first, Z.data() + first, w);
        evaluate_cells(w);
        steep_waves(w);
        put_back(w, first, out.f1, out.f2, out.f3);
        put_back_waves(w, first, out.g1, out.g2);
    }
    finish_terms(R.size(), R.data(), Z.data(), out);
}

void deep_images(std::span<const double> R, std::span<const double> Z, bool with_image, double* F,
                 double* Fr, double* Fz) {
    assert(R.size() == Z.size());
    Workspace w;
    for (std::size_t first = 0; first < R.size(); first += block) {
        const std::size_t n = std::min(block, R.size() - first);
        sort_points(n, R.data() + first, Z.data() + first, w);
        evaluate_cells(w);
        put_back(w, first, F, Fr, Fz);
    }
    finish_images(R.size(), R.data(), Z.data(), with_image ? 1.0 : 0.0, F, Fr, Fz);
}

} // namespace quelor
