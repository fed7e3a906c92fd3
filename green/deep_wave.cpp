// Batch kernels of the deep-water Green function: sort the points by the table that serves them,
// run one vector loop a table, put the results back.
#include "green/deep_wave.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "green/deep_core.hpp"

namespace quelor {

namespace {

constexpr std::size_t block = 1024; ///< points sorted together; the workspace stays in cache
constexpr std::uint32_t lanes = 8;  ///< doubles of the widest vector; cells are filled up to it
constexpr std::size_t cells = 16;
constexpr std::size_t room = block + cells * lanes;

struct Workspace {
    alignas(64) std::array<double, room> R, Z, F, Fr, Fz, im, im_R;
    alignas(64) std::array<std::uint32_t, room> source; ///< place in the block of a sorted point
    alignas(64) std::array<std::uint64_t, block> cell;
    std::array<std::uint32_t, cells + 1> start;
    std::uint64_t meetings; ///< pairs of the block that meet in the water line
};

/// Cells in the order of evaluation: 0, 1 the log form; 2 to 4 the steep form with R <= 3.7 and 5
/// to 7 beyond; 8 to 11 the near and 12 to 15 the far tables of the local form.
QUELOR_INLINE std::uint64_t cell_of(double R, double Z) {
    const double rho2 = R * R + Z * Z;
    const std::uint64_t steep = (rho2 > 14.0 * 14.0 ? 1 : 0) + (rho2 > 28.0 * 28.0 ? 1 : 0);
    const std::uint64_t band = (R <= 4.0 * Z ? 1 : 0) + (R <= 2.0 * Z ? 1 : 0) + (R < Z ? 1 : 0);
    const std::uint64_t inner = Z <= 4.0 ? 0 : Z <= 8.0 ? 1 : 2 + steep;
    const std::uint64_t outer = R < 0.5 * Z ? 5 + steep : (R > 10.0 ? 12 : 8) + band;
    return R <= 3.7 ? inner : outer;
}

/// A pair that meets in the water line has no wave term.
QUELOR_INLINE bool meets(double R, double Z) {
    return R + Z < 1e-8;
}

/// Cells of n points; returns how many pairs meet.
QUELOR_CLONES std::uint64_t find_cells(std::size_t n, const double* R, const double* Z,
                                       std::uint64_t* __restrict cell) {
    std::uint64_t meetings = 0;
    for (std::size_t i = 0; i < n; ++i) {
        cell[i] = cell_of(R[i], Z[i]);
        meetings += meets(R[i], Z[i]) ? 1 : 0;
    }
    return meetings;
}

/// Counting sort of n points; each cell is filled up with copies of its last point. Points take two
/// counters a cell in turn, so that a run of points in one cell does not wait for one counter.
void sort_points(std::size_t n, const double* R, const double* Z, Workspace& w) {
    w.meetings = find_cells(n, R, Z, w.cell.data());
    std::array<std::uint32_t, 2 * cells> next{};
    for (std::size_t i = 0; i < n; ++i)
        ++next[2 * w.cell[i] + i % 2];
    w.start[0] = 0;
    for (std::size_t c = 0; c < cells; ++c) {
        const std::uint32_t even = next[2 * c], odd = next[2 * c + 1];
        next[2 * c] = w.start[c];
        next[2 * c + 1] = w.start[c] + even;
        w.start[c + 1] = w.start[c] + (even + odd + lanes - 1) / lanes * lanes;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t to = next[2 * w.cell[i] + i % 2]++;
        w.R[to] = R[i];
        w.Z[to] = Z[i];
        w.source[to] = static_cast<std::uint32_t>(i);
    }
    for (std::size_t c = 0; c < cells; ++c)
        for (std::uint32_t to = next[2 * c + 1]; to < w.start[c + 1]; ++to) {
            w.R[to] = w.R[to - 1];
            w.Z[to] = w.Z[to - 1];
            w.source[to] = w.source[to - 1]; // written again with the same values
        }
}

/// Without the gradient the compiler leaves out of the form all that serves it alone.
template <bool gradient> QUELOR_INLINE void store(Workspace& w, std::size_t i, const DeepValue& v) {
    w.F[i] = v.F;
    if constexpr (!gradient) return;
    w.Fr[i] = v.Fr;
    w.Fz[i] = v.Fz;
}

template <bool gradient>
QUELOR_INLINE void store_wave(Workspace& w, std::size_t i, const DeepValue& v, double e) {
    w.im[i] = -2.0 * std::numbers::pi * v.j0 * e;
    if constexpr (gradient) w.im_R[i] = 2.0 * std::numbers::pi * v.j1 * e;
}

template <bool gradient, class T> QUELOR_INLINE void log_cell(Workspace& w, std::size_t c) {
    for (std::size_t i = w.start[c]; i < w.start[c + 1]; ++i) {
        const double e = vec_exp(-w.Z[i]);
        const DeepValue v = deep_log_form<T>(w.R[i], w.Z[i], e);
        store<gradient>(w, i, v);
        store_wave<gradient>(w, i, v, e);
    }
}

template <bool gradient, class T, class H>
QUELOR_INLINE void local_cell(Workspace& w, std::size_t c) {
    for (std::size_t i = w.start[c]; i < w.start[c + 1]; ++i) {
        const double e = vec_exp(-w.Z[i]);
        const DeepValue v = deep_local_form<T, H>(w.R[i], w.Z[i], e);
        store<gradient>(w, i, v);
        store_wave<gradient>(w, i, v, e);
    }
}

template <bool gradient, class T, class S>
QUELOR_INLINE void steep_cell(Workspace& w, std::size_t c) {
    for (std::size_t i = w.start[c]; i < w.start[c + 1]; ++i)
        store<gradient>(w, i, deep_steep_form<T, S>(w.R[i], w.Z[i]));
}

template <bool gradient> QUELOR_INLINE void all_cells(Workspace& w) {
    using namespace deep_tables;
    log_cell<gradient, LogNear>(w, 0);
    log_cell<gradient, LogDeep>(w, 1);
    steep_cell<gradient, Steep0, Steep0R>(w, 2);
    steep_cell<gradient, Steep1, Steep1R>(w, 3);
    steep_cell<gradient, Steep2, Steep2R>(w, 4);
    steep_cell<gradient, Steep0, Steep0R>(w, 5);
    steep_cell<gradient, Steep1, Steep1R>(w, 6);
    steep_cell<gradient, Steep2, Steep2R>(w, 7);
    local_cell<gradient, LocalNear0, HankelNear>(w, 8);
    local_cell<gradient, LocalNear1, HankelNear>(w, 9);
    local_cell<gradient, LocalNear2, HankelNear>(w, 10);
    local_cell<gradient, LocalNear3, HankelNear>(w, 11);
    local_cell<gradient, LocalFar0, HankelFar>(w, 12);
    local_cell<gradient, LocalFar1, HankelFar>(w, 13);
    local_cell<gradient, LocalFar2, HankelFar>(w, 14);
    local_cell<gradient, LocalFar3, HankelFar>(w, 15);
}

QUELOR_CLONES void evaluate_cells(Workspace& w) {
    all_cells<true>(w);
}
QUELOR_CLONES void evaluate_values(Workspace& w) {
    all_cells<false>(w);
}

/// The imaginary part of the steep cells, whose real part needs no Bessel function. Beyond R = 10
/// exp(-Z) is below 3e-9 there, which the near table can afford.
QUELOR_CLONES void steep_waves(Workspace& w) {
    for (std::size_t i = w.start[2]; i < w.start[5]; ++i) {
        const double R = w.R[i], wave = 2.0 * std::numbers::pi * vec_exp(-w.Z[i]);
        const SmallBessel b = small_bessel(R * R);
        w.im[i] = -wave * (1.0 - R * R * b.j0_rest);
        w.im_R[i] = wave * R * b.j1_by_x;
    }
    for (std::size_t i = w.start[5]; i < w.start[8]; ++i) {
        const double wave = 2.0 * std::numbers::pi * vec_exp(-w.Z[i]);
        const Bessel b = large_bessel<deep_tables::HankelNear>(w.R[i], 1.0 / w.R[i]);
        w.im[i] = -wave * b.j0;
        w.im_R[i] = wave * b.j1;
    }
}

/// Sorted values and where they go.
struct Sorted {
    const std::array<double, room>& values;
    double* out;
};

template <std::size_t n> void put_back(const Workspace& w, const Sorted (&arrays)[n]) {
    for (std::size_t i = 0; i < w.start[cells]; ++i) {
        const std::uint32_t to = w.source[i];
        for (const auto& [values, out] : arrays)
            out[to] = values[i];
    }
}

/// Zeros for the few pairs that meet.
void clear_meetings(std::size_t n, const double* R, const double* Z,
                    std::initializer_list<double*> terms) {
    for (std::size_t i = 0; i < n; ++i)
        if (meets(R[i], Z[i]))
            for (double* term : terms)
                term[i] = 0.0;
}

/// What deep water has twice.
QUELOR_CLONES void copy_twins(std::size_t n, const double* re_1, const double* im,
                              double* __restrict re_2, double* __restrict im_1,
                              double* __restrict im_2) {
    for (std::size_t i = 0; i < n; ++i) {
        re_2[i] = re_1[i];
        im_1[i] = -im[i];
        im_2[i] = -im[i];
    }
}

} // namespace

void deep_wave_terms(std::span<const double> R, std::span<const double> Z, const WaveTerms& out) {
    assert(R.size() == Z.size());
    Workspace w;
    for (std::size_t first = 0; first < R.size(); first += block) {
        const std::size_t n = std::min(block, R.size() - first);
        const double *r = R.data() + first, *z = Z.data() + first;
        double *re = out.re + first, *re_R = out.re_R + first, *re_1 = out.re_1 + first;
        double *im = out.im + first, *im_R = out.im_R + first;
        sort_points(n, r, z, w);
        evaluate_cells(w);
        steep_waves(w);
        put_back(w, {{w.F, re}, {w.Fr, re_R}, {w.Fz, re_1}});
        put_back(w, {{w.im, im}, {w.im_R, im_R}});
        if (w.meetings > 0) clear_meetings(n, r, z, {re, re_R, re_1, im, im_R});
        copy_twins(n, re_1, im, out.re_2 + first, out.im_1 + first, out.im_2 + first);
    }
}

void deep_wave_values(std::span<const double> R, std::span<const double> Z, double* re,
                      double* im) {
    assert(R.size() == Z.size());
    Workspace w;
    for (std::size_t first = 0; first < R.size(); first += block) {
        const std::size_t n = std::min(block, R.size() - first);
        const double *r = R.data() + first, *z = Z.data() + first;
        sort_points(n, r, z, w);
        evaluate_values(w);
        put_back(w, {{w.F, re + first}});
        if (w.meetings > 0) clear_meetings(n, r, z, {re + first});
        if (im == nullptr) continue;
        steep_waves(w);
        put_back(w, {{w.im, im + first}});
        if (w.meetings > 0) clear_meetings(n, r, z, {im + first});
    }
}

void deep_images(std::span<const double> R, std::span<const double> Z, double* F, double* Fr,
                 double* Fz) {
    assert(R.size() == Z.size());
    Workspace w;
    for (std::size_t first = 0; first < R.size(); first += block) {
        const std::size_t n = std::min(block, R.size() - first);
        const double *r = R.data() + first, *z = Z.data() + first;
        sort_points(n, r, z, w);
        evaluate_cells(w);
        put_back(w, {{w.F, F + first}, {w.Fr, Fr + first}, {w.Fz, Fz + first}});
        if (w.meetings > 0) clear_meetings(n, r, z, {F + first, Fr + first, Fz + first});
    }
}

} // namespace quelor
