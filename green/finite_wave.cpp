// Batches of the finite-depth Green function. A block of points is sorted: first those of the
// eigenfunction series (R >= h/2), the nearest in front, so that mode m serves a leading part of
// the block; then those of the deep-water function with the polynomials. Each loop is free of
// branches.
#include "green/finite_wave.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "green/bessel_core.hpp"
#include "green/deep_wave.hpp"
#include "green/fineigseries.hpp"
#include "numeric/index.hpp"

namespace quelor {

namespace {

constexpr int lanes = 8;         // doubles of the widest vector; classes are filled up to it
constexpr int block_size = 1024; // what a block needs, 200 kB, stays in the second-level cache
constexpr int classes = evanescent_modes + 1;
constexpr int room = block_size + classes * lanes;
using Row = double[room];

/// What is wanted of the points.
enum class Wanted { value, value_and_gradient };

/// A sorted block; re to re_2 and im to im_2 as in WaveTerms. All counts are whole groups of lanes.
struct Block {
    int n = 0, series = 0;     // places; those of the series come first
    int served[classes] = {};  // places that mode m serves, at [m]
    std::uint16_t order[room]; // the point of the batch in each place
    alignas(64) Row R, d1, d2;
    alignas(64) Row inverse, inverse_root; // 1/R and R^(-1/2); for the polynomials Z in `inverse`
    alignas(64) Row b, d;                  // derivatives in B and D
    alignas(64) Row j0, j1, y0, y1;        // at k0 R
    alignas(64) Row re, re_R, re_1, re_2, im, im_R, im_1, im_2;
};

/// Modes of the series, 0 for the points below R = h/2 and for what is not a number.
int modes_needed(double R, const DepthCache& cache) {
    return R >= 0.5 * cache.h ? finite_core::series_terms(R, cache) : 0;
}

/// Counting sort by falling number of modes. Each class is filled up with copies of its first
/// point, so that no point's result depends on its neighbours.
void sort_block(const double* R, const double* d1, const double* d2, int n, const DepthCache& cache,
                Block& block) {
    std::uint8_t modes[block_size];
    int count[classes] = {}, first[classes], next[classes];
    for (int i = 0; i < n; ++i)
        ++count[modes[i] = static_cast<std::uint8_t>(modes_needed(R[i], cache))];
    block.n = 0;
    for (int m = evanescent_modes; m >= 0; --m) {
        first[m] = next[m] = block.n;
        block.n += (count[m] + lanes - 1) / lanes * lanes;
        block.served[m] = block.n;
    }
    block.series = block.served[1];
    for (int i = 0; i < n; ++i)
        block.order[next[modes[i]]++] = static_cast<std::uint16_t>(i);
    for (int m = 0; m < classes; ++m)
        while (next[m] < block.served[m])
            block.order[next[m]++] = block.order[first[m]];
    for (int place = 0; place < block.n; ++place) {
        const int i = block.order[place];
        block.R[place] = R[i];
        block.d1[place] = d1[i];
        block.d2[place] = d2[i];
    }
}

/// The sum of the series at one place. Without the gradient the compiler leaves out of its terms
/// all that serves it alone.
template <Wanted wanted> QUELOR_INLINE SeparatedField load_sum(const Block& block, int i) {
    if constexpr (wanted == Wanted::value) return {.v = block.re[i]};
    return {.v = block.re[i], .r = block.re_R[i], .b = block.b[i], .d = block.d[i]};
}
template <Wanted wanted>
QUELOR_INLINE void store_sum(const SeparatedField& sum, int i, Block& block) {
    block.re[i] = sum.v;
    if constexpr (wanted == Wanted::value) return;
    block.re_R[i] = sum.r;
    block.b[i] = sum.b;
    block.d[i] = sum.d;
}

/// Mode m of the series, added to the first `count` points.
template <Wanted wanted, int degree>
QUELOR_INLINE void add_mode_to_block(const BesselKTable<degree>& table, double k, double half_c,
                                     double h, int count, Block& block) {
    const double inverse_root_k = 1.0 / std::sqrt(k);
    for (int i = 0; i < count; ++i) {
        const double d1 = block.d1[i], d2 = block.d2[i];
        const finite_core::SeriesPoint point{block.R[i], 2.0 * h - d1 - d2, d1 - d2,
                                             block.inverse[i], block.inverse_root[i]};
        SeparatedField sum = load_sum<wanted>(block, i);
        finite_core::add_mode<false>(table, k, half_c, inverse_root_k, point, sum);
        store_sum<wanted>(sum, i, block);
    }
}

/// The Rankine terms with their sign reversed, from which the sum of the modes starts.
template <Wanted wanted> QUELOR_INLINE void start_series(double h, Block& block) {
    const int count = block.series;
    for (int i = 0; i < count; ++i) {
        const double R = block.R[i], d1 = block.d1[i], d2 = block.d2[i];
        SeparatedField sum;
        finite_core::add_rankine_d<false>(-1.0, R, d1 - d2, sum);
        finite_core::add_rankine_b<false>(-1.0, R, d1 + d2, -1.0, sum);
        finite_core::add_rankine_b<false>(-1.0, R, 2.0 * h - d1 - d2, 1.0, sum);
        store_sum<wanted>(sum, i, block);
        block.inverse[i] = 1.0 / R;
        block.inverse_root[i] = 1.0 / std::sqrt(R);
    }
}

template <Wanted wanted> QUELOR_INLINE void add_modes(const DepthCache& cache, Block& block) {
    for (int m = 1; m <= evanescent_modes && block.served[m] > 0; ++m) {
        const auto i = nth(m);
        const double k = cache.roots.k[i], half_c = 0.5 * cache.roots.c[i];
        const int count = block.served[m];
        finite_core::with_bessel_table(
            m, [&](const auto& table) __attribute__((always_inline)) {
                add_mode_to_block<wanted>(table, k, half_c, cache.h, count, block);
            });
    }
}

/// Imaginary part of point i; returns the amplitude of its propagating wave.
template <Wanted wanted>
QUELOR_INLINE finite_core::WaveAmplitude imaginary_part(const DepthCache& cache, int i,
                                                        Block& block) {
    const auto w = finite_core::wave_amplitude(block.d1[i], block.d2[i], cache);
    block.im[i] = w.a * block.j0[i];
    if constexpr (wanted == Wanted::value) return w;
    block.im_R[i] = -cache.roots.k0 * w.a * block.j1[i];
    block.im_1[i] = w.a1 * block.j0[i];
    block.im_2[i] = w.a2 * block.j0[i];
    return w;
}

/// The propagating wave: the imaginary part of every point, and of the series the last real term.
template <Wanted wanted>
QUELOR_INLINE void add_propagating_wave(const DepthCache& cache, Block& block) {
    for (int i = 0; i < block.series; ++i) {
        const auto w = imaginary_part<wanted>(cache, i, block);
        block.re[i] += w.a * block.y0[i];
        if constexpr (wanted == Wanted::value) continue;
        const double b = block.b[i], d = block.d[i];
        block.re_R[i] -= cache.roots.k0 * w.a * block.y1[i];
        block.re_1[i] = w.a1 * block.y0[i] + d - b;
        block.re_2[i] = w.a2 * block.y0[i] - d - b;
    }
    for (int i = block.series; i < block.n; ++i)
        imaginary_part<wanted>(cache, i, block);
}

/// Adds the polynomials to the deep-water function, which stands in re, re_R and re_1.
/// The local copy shows the compiler that no coefficient changes with what the loop stores.
template <Wanted wanted>
QUELOR_INLINE void add_polynomials(const DepthCache& shared, Block& block) {
    const DepthCache cache = shared;
    const double inverse_h = 1.0 / cache.h;
    const int end = block.n;
    for (int i = block.series; i < end; ++i) {
        const double d1 = block.d1[i], d2 = block.d2[i];
        const SeparatedField smooth =
            finite_core::smooth_part<false>(cache, inverse_h, block.R[i], d1, d2);
        block.re[i] += smooth.v;
        if constexpr (wanted == Wanted::value) continue;
        const double deep = block.re_1[i];
        block.re_R[i] += smooth.r;
        block.re_1[i] = deep - smooth.b + smooth.d;
        block.re_2[i] = deep - smooth.b - smooth.d;
    }
}

/// Bessel functions of one range of x = k0 R, from <= x < to, for one group of points; Y0 and Y1
/// for the series only. What is not a number counts to every range.
template <bool series, Wanted wanted, class Function>
QUELOR_INLINE void bessel_range(double k0, double from, double to, int start, Block& block,
                                const Function& function) {
    for (int i = start; i < start + lanes; ++i) {
        const double x = k0 * block.R[i], above = x < from ? from : x;
        const bool outside = x < from || x >= to;
        const Bessel bessel = function(x >= to ? to : above);
        block.j0[i] = outside ? block.j0[i] : bessel.j0;
        if constexpr (series) block.y0[i] = outside ? block.y0[i] : bessel.y0;
        if constexpr (wanted == Wanted::value) continue;
        block.j1[i] = outside ? block.j1[i] : bessel.j1;
        if constexpr (series) block.y1[i] = outside ? block.y1[i] : bessel.y1;
    }
}

/// The Bessel functions of one group from the three ranges of the tables. Through the sort most
/// groups lie in one range.
template <bool series, Wanted wanted>
QUELOR_INLINE void bessel_group(double k0, int start, Block& block) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    bool near = false, middle = false, far = false;
    for (int i = start; i < start + lanes; ++i) {
        const double x = k0 * block.R[i];
        near |= !(x >= 4.0);
        middle |= x >= 4.0 && x < 10.0;
        far |= x >= 10.0;
    }
    if (near)
        bessel_range<series, wanted>(
            k0, 0.0, 4.0, start, block,
            [](double x) __attribute__((always_inline)) { return finite_core::near_bessel(x); });
    if (middle)
        bessel_range<series, wanted>(
            k0, 4.0, 10.0, start, block, [](double x) __attribute__((always_inline)) {
                return large_bessel<deep_tables::HankelNear>(x, 1.0 / x);
            });
    if (far)
        bessel_range<series, wanted>(
            k0, 10.0, infinity, start, block, [](double x) __attribute__((always_inline)) {
                return large_bessel<deep_tables::HankelFar>(x, 1.0 / x);
            });
}

template <Wanted wanted> QUELOR_INLINE void bessel_functions(double k0, Block& block) {
    for (int start = 0; start < block.series; start += lanes)
        bessel_group<true, wanted>(k0, start, block);
    for (int start = block.series; start < block.n; start += lanes)
        bessel_group<false, wanted>(k0, start, block);
}

/// The modes of the series, and the propagating wave of all points.
template <Wanted wanted> QUELOR_INLINE void all_modes(const DepthCache& cache, Block& block) {
    bessel_functions<wanted>(cache.roots.k0, block);
    start_series<wanted>(cache.h, block);
    add_modes<wanted>(cache, block);
    add_propagating_wave<wanted>(cache, block);
}
QUELOR_CLONES void evaluate_modes(Wanted wanted, const DepthCache& cache, Block& block) {
    if (wanted == Wanted::value) return all_modes<Wanted::value>(cache, block);
    all_modes<Wanted::value_and_gradient>(cache, block);
}

QUELOR_CLONES void evaluate_polynomials(Wanted wanted, const DepthCache& cache, Block& block) {
    if (wanted == Wanted::value) return add_polynomials<Wanted::value>(cache, block);
    add_polynomials<Wanted::value_and_gradient>(cache, block);
}

/// Deep-water function of the points below R = h/2, into re, re_R and re_1.
void deep_part(Wanted wanted, Block& block) {
    const int first = block.series;
    for (int i = first; i < block.n; ++i)
        block.inverse[i] = block.d1[i] + block.d2[i];
    const auto count = as_size(block.n - first);
    const std::span<const double> R(&block.R[first], count), Z(&block.inverse[first], count);
    if (wanted == Wanted::value) return deep_wave_values(R, Z, &block.re[first], nullptr);
    deep_images(R, Z, &block.re[first], &block.re_R[first], &block.re_1[first]);
}

/// Copies one sorted row to its places in the batch.
void scatter(const Block& block, const Row& row, double* out) {
    for (int i = 0; i < block.n; ++i)
        out[block.order[i]] = row[i];
}

/// The point and its image in the water line, where the remainder counts as zero.
void clear_coincident(Block& block) {
    for (int i = block.series; i < block.n; ++i)
        if (block.R[i] + block.d1[i] + block.d2[i] < 1e-8)
            for (Row* row : {&block.re, &block.re_R, &block.re_1, &block.re_2, &block.im,
                             &block.im_R, &block.im_1, &block.im_2})
                (*row)[i] = 0.0;
}

void evaluate_block(Wanted wanted, const DepthCache& cache, Block& block) {
    evaluate_modes(wanted, cache, block);
    if (block.series == block.n) return;
    deep_part(wanted, block);
    evaluate_polynomials(wanted, cache, block);
    clear_coincident(block);
}

/// Calls put_back(block, start) with every evaluated block of the batch, which begins at `start`.
template <class PutBack>
void for_blocks(Wanted wanted, std::span<const double> R, std::span<const double> d1,
                std::span<const double> d2, const DepthCache& cache, const PutBack& put_back) {
    Block block;
    for (std::size_t start = 0; start < R.size(); start += block_size) {
        const auto n = static_cast<int>(std::min<std::size_t>(block_size, R.size() - start));
        sort_block(&R[start], &d1[start], &d2[start], n, cache, block);
        evaluate_block(wanted, cache, block);
        put_back(block, start);
    }
}

} // namespace

void finite_wave_terms(std::span<const double> R, std::span<const double> d1,
                       std::span<const double> d2, const DepthCache& cache, const WaveTerms& out) {
    for_blocks(Wanted::value_and_gradient, R, d1, d2, cache, [&](const Block& block, auto start) {
        scatter(block, block.re, out.re + start);
        scatter(block, block.re_R, out.re_R + start);
        scatter(block, block.re_1, out.re_1 + start);
        scatter(block, block.re_2, out.re_2 + start);
        scatter(block, block.im, out.im + start);
        scatter(block, block.im_R, out.im_R + start);
        scatter(block, block.im_1, out.im_1 + start);
        scatter(block, block.im_2, out.im_2 + start);
    });
}

void finite_wave_values(std::span<const double> R, std::span<const double> d1,
                        std::span<const double> d2, const DepthCache& cache, double* re,
                        double* im) {
    for_blocks(Wanted::value, R, d1, d2, cache, [&](const Block& block, auto start) {
        scatter(block, block.re, re + start);
        scatter(block, block.im, im + start);
    });
}

} // namespace quelor
