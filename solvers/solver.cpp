// Profile factorisation, solution and product. The sums of several targets run side by side, each
// in its own order: in the factorisation the targets are the columns of a block and four rows of
// them, in the solution the right-hand sides and four equations.
#include "solvers/solver.hpp"

#include <algorithm>

#include "green/vecmath.hpp"

namespace quelor {

namespace {

using Loc = std::span<const std::int32_t>;

constexpr int tile = 4;   ///< rows whose sums run together
constexpr int width = 8;  ///< lanes of a vector
constexpr int groups = 2; ///< vectors of a block of columns
constexpr int block = groups * width;

// --- numbers side by side ------------------------------------------------------------------------

// No more alignment than memory has that knows nothing of the vectors of the clones.
template <int W> struct VectorOf {
    typedef double type __attribute__((vector_size(8 * W), aligned(16)));
};
template <> struct VectorOf<1> { using type = double; };
template <int W> using Vector = typename VectorOf<W>::type;

/// W real or complex numbers: one right-hand side or column in each lane.
template <class T, int W> struct Lanes { Vector<W> v{}; };
template <int W> struct Lanes<Complex8, W> { Vector<W> re{}, im{}; };

template <int W>
QUELOR_INLINE void set_product(Lanes<double, W>& y, double a, const Lanes<double, W>& x) {
    y.v = a * x.v;
}
// The real part as a sum: see SmithDivisor.
template <int W>
QUELOR_INLINE void set_product(Lanes<Complex8, W>& y, Complex8 a, const Lanes<Complex8, W>& x) {
    const double re = a.real(), im = a.imag(), minus_im = -im;
    const Vector<W> real = re * x.re + minus_im * x.im;
    y.im = re * x.im + im * x.re;
    y.re = real;
}
template <int W> QUELOR_INLINE void subtract(Lanes<double, W>& x, const Lanes<double, W>& y) {
    x.v -= y.v;
}
template <int W> QUELOR_INLINE void subtract(Lanes<Complex8, W>& x, const Lanes<Complex8, W>& y) {
    x.re -= y.re;
    x.im -= y.im;
}
template <int W> QUELOR_INLINE void add(Lanes<double, W>& x, const Lanes<double, W>& y) {
    x.v += y.v;
}
template <int W> QUELOR_INLINE void add(Lanes<Complex8, W>& x, const Lanes<Complex8, W>& y) {
    x.re += y.re;
    x.im += y.im;
}
/// sum += a x, and y -= a x
template <class T, int W>
QUELOR_INLINE void add_product(Lanes<T, W>& sum, T a, const Lanes<T, W>& x) {
    Lanes<T, W> product;
    set_product(product, a, x);
    add(sum, product);
}
template <class T, int W>
QUELOR_INLINE void subtract_product(Lanes<T, W>& y, T a, const Lanes<T, W>& x) {
    Lanes<T, W> product;
    set_product(product, a, x);
    subtract(y, product);
}
template <int W> QUELOR_INLINE void divide(Lanes<double, W>& x, double d) {
    x.v /= d;
}
template <int W> QUELOR_INLINE void divide(Lanes<Complex8, W>& x, Complex8 d) {
    SmithDivisor(d).divide_parts(x);
}
/// sum += x y lane by lane
template <int W>
QUELOR_INLINE void add_lane_product(Lanes<double, W>& sum, const Lanes<double, W>& x,
                                    const Lanes<double, W>& y) {
    sum.v += x.v * y.v;
}
template <int W>
QUELOR_INLINE void add_lane_product(Lanes<Complex8, W>& sum, const Lanes<Complex8, W>& x,
                                    const Lanes<Complex8, W>& y) {
    sum.re += x.re * y.re + -x.im * y.im;
    sum.im += x.re * y.im + x.im * y.re;
}
/// sum stays 0 as long as all numbers are finite
template <int W> QUELOR_INLINE void note_finite(Vector<W>& sum, const Lanes<double, W>& x) {
    sum += x.v * 0.0;
}
template <int W> QUELOR_INLINE void note_finite(Vector<W>& sum, const Lanes<Complex8, W>& x) {
    sum += x.re * 0.0 + x.im * 0.0;
}

// Lane k of vectors in memory; a lane is never read from a register.
inline double lane(const Lanes<double, width>& x, int k) {
    return x.v[k];
}
inline Complex8 lane(const Lanes<Complex8, width>& x, int k) {
    return {x.re[k], x.im[k]};
}
inline double lane(const Lanes<double, 1>& x, int) {
    return x.v;
}
inline Complex8 lane(const Lanes<Complex8, 1>& x, int) {
    return {x.re, x.im};
}
inline void set_lane(Lanes<double, width>& x, int k, double value) {
    x.v[k] = value;
}
inline void set_lane(Lanes<Complex8, width>& x, int k, Complex8 value) {
    x.re[k] = value.real();
    x.im[k] = value.imag();
}
inline void set_lane(Lanes<double, 1>& x, int, double value) {
    x.v = value;
}
inline void set_lane(Lanes<Complex8, 1>& x, int, Complex8 value) {
    x.re = value.real();
    x.im = value.imag();
}

// --- the matrix ----------------------------------------------------------------------------------

/// A profile matrix; T is const where it is only read.
template <class T> struct Profile {
    T* a;
    const std::int32_t* loc;
    int n;

    QUELOR_INLINE int top(int j) const { return j - (loc[j] - loc[j - 1] - 1); }
    /// column(j)[-i] is the element (i, j).
    QUELOR_INLINE T* column(int j) const { return a + (std::ptrdiff_t{loc[j - 1]} - 1 + j); }
    QUELOR_INLINE T& diagonal(int j) const { return a[loc[j - 1] - 1]; }
};

template <class T> Profile<T> profile_of(std::span<T> a, Loc loc) {
    return {a.data(), loc.data(), static_cast<int>(loc.size()) - 1};
}

/// The sums of `count` columns of the matrix, first to first + count - 1, over the rows low to
/// high - 1: sum[q] = sum of A(r, first + q) u(r), r ascending from the column's top or low.
/// u(r) are vectors, u[0] for row low. No column of the tile may end above row high - 1.
template <int count, class T, int W>
QUELOR_INLINE void tile_sums(const Profile<const T>& m, int first, int low, int high,
                             const Lanes<T, W>* u, Lanes<T, W>* sum) {
    int common = low;
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q)
        common = std::max(common, m.top(first + q));
    common = std::min(common, high);
    const T* column[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        column[q] = m.column(first + q);
        Lanes<T, W> head;
        for (int r = std::max(low, m.top(first + q)); r < common; ++r)
            add_product(head, column[q][-r], u[r - low]);
        sum[q] = head;
    }
    Lanes<T, W> total[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q)
        total[q] = sum[q];
    for (int r = common; r < high; ++r) {
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q)
            add_product(total[q], column[q][-r], u[r - low]);
    }
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q)
        sum[q] = total[q];
}

/// u(i) -= sum of A(r, i) u(r), r = max(top(i), low)..i - 1, for `count` rows i from `first` on.
template <int count, class T, int W>
QUELOR_INLINE void reduce_tile(const Profile<const T>& m, int first, int low, Lanes<T, W>* u) {
    Lanes<T, W> sum[count];
    tile_sums<count>(m, first, low, first, u, sum);
    for (int i = first; i < first + count; ++i) {
        const T* const column = m.column(i);
        Lanes<T, W> total = sum[i - first];
        for (int r = std::max(first, m.top(i)); r < i; ++r)
            add_product(total, column[-r], u[r - low]);
        subtract(u[i - low], total);
    }
}

// --- factorisation -------------------------------------------------------------------------------

/// The rows above a block of columns, each group of lanes by itself: row r of group g stands at
/// g * rows + r - low.
template <class T> struct Block {
    int first, count, low; ///< columns first to first + count - 1, reaching up to row low
    std::ptrdiff_t rows;   ///< first - low
    Lanes<T, width>* u;    ///< elements before they are divided by the pivots
    Lanes<T, width>* t;    ///< after it: rows of L^T
    Lanes<T, width> acc[groups], sums[block][groups];
};

/// Reduces the block's elements above row `first`, divides them by the pivots, and adds up t u.
/// False when a quotient is not finite.
template <class T> QUELOR_INLINE bool reduce_block(const Profile<const T>& m, Block<T>& b) {
    int i = b.low;
    for (; i + tile <= b.first; i += tile)
        for (int g = 0; g < groups; ++g)
            reduce_tile<tile>(m, i, b.low, b.u + g * b.rows);
    for (; i < b.first; ++i)
        for (int g = 0; g < groups; ++g)
            reduce_tile<1>(m, i, b.low, b.u + g * b.rows);
    Vector<width> unfinite{};
    for (int g = 0; g < groups; ++g) {
        Lanes<T, width> acc;
        for (int r = b.low; r < b.first; ++r) {
            const Lanes<T, width> u = b.u[g * b.rows + r - b.low];
            Lanes<T, width> t = u;
            divide(t, m.diagonal(r));
            add_lane_product(acc, t, u);
            note_finite<width>(unfinite, t);
            b.t[g * b.rows + r - b.low] = t;
        }
        b.acc[g] = acc;
    }
    double sum = 0;
    for (int k = 0; k < width; ++k)
        sum += unfinite[k];
    return sum == 0;
}

/// sums(i, j) of the block's own rows i over the rows above it; its columns hold L^T there.
template <class T> QUELOR_INLINE void sum_block(const Profile<const T>& m, Block<T>& b) {
    for (int q = 0; q < b.count; q += tile) {
        for (int g = 0; g < groups; ++g) {
            Lanes<T, width> sum[tile];
            if (q + tile <= b.count) {
                tile_sums<tile>(m, b.first + q, b.low, b.first, b.u + g * b.rows, sum);
            } else {
                for (int k = q; k < b.count; ++k)
                    tile_sums<1>(m, b.first + k, b.low, b.first, b.u + g * b.rows, sum + k - q);
            }
            for (int k = q; k < std::min(q + tile, b.count); ++k)
                b.sums[k][g] = sum[k - q];
        }
    }
}

QUELOR_CLONES bool reduce_block_of(const Profile<const double>& m, Block<double>& b) {
    return reduce_block(m, b);
}
QUELOR_CLONES bool reduce_block_of(const Profile<const Complex8>& m, Block<Complex8>& b) {
    return reduce_block(m, b);
}
QUELOR_CLONES void sum_block_of(const Profile<const double>& m, Block<double>& b) {
    sum_block(m, b);
}
QUELOR_CLONES void sum_block_of(const Profile<const Complex8>& m, Block<Complex8>& b) {
    sum_block(m, b);
}

/// Calls action(element, place of its vector, lane) for the stored elements above the block.
template <class T, class Action>
void for_stored(const Profile<T>& m, const Block<std::remove_const_t<T>>& b, Action action) {
    for (int k = 0; k < b.count; ++k) {
        const int j = b.first + k;
        T* const column = m.column(j);
        const std::ptrdiff_t base = (k / width) * b.rows - b.low;
        for (int r = m.top(j); r < b.first; ++r)
            action(column[-r], base + r, k % width);
    }
}

inline double quotient(double x, double d) {
    return x / d;
}
inline Complex8 quotient(Complex8 x, Complex8 d) {
    return SmithDivisor(d).divide(x);
}
/// sum + a x, in the arithmetic of the vectors
inline double plus_product(double sum, double a, double x) {
    return sum + a * x;
}
inline Complex8 plus_product(Complex8 sum, Complex8 a, Complex8 x) {
    return {sum.real() + (a.real() * x.real() + -a.imag() * x.imag()),
            sum.imag() + (a.real() * x.imag() + a.imag() * x.real())};
}

/// Ends column j: rows from `first` on, with the sums of rows above `first` given by sum_of(i) and
/// acc. Returns the pivot.
template <class T, class SumOf>
T finish_column(const Profile<T>& m, int j, int first, SumOf sum_of, T acc) {
    T* const target = m.column(j);
    const int top = std::max(first, m.top(j));
    for (int i = top; i < j; ++i) {
        const T* const column = m.column(i);
        T sum = sum_of(i);
        for (int r = std::max(top, m.top(i)); r < i; ++r)
            sum = plus_product(sum, column[-r], target[-r]);
        target[-i] -= sum;
    }
    for (int i = top; i < j; ++i) {
        const T t = quotient(target[-i], m.diagonal(i));
        acc = plus_product(acc, t, target[-i]);
        target[-i] = t;
    }
    return m.diagonal(j) -= acc;
}

int decimal_exponent(double x) {
    return x == 0 || !std::isfinite(x) ? 0 : static_cast<int>(std::floor(std::log10(std::abs(x))));
}

/// Tests pivot j formed from the diagonal `old`; false when it is zero.
bool test_pivot(double old, double pivot, int j, int digits, ProfileStatus& status) {
    if (pivot == 0) {
        status.zero_pivot = j;
        return false;
    }
    const int lost = decimal_exponent(old) - decimal_exponent(pivot);
    if (lost >= digits) status.losses.push_back({j, lost});
    return true;
}
bool test_pivot(Complex8, Complex8 pivot, int j, int, ProfileStatus& status) {
    if (pivot == 0.0) status.zero_pivot = j;
    return status.zero_pivot == 0;
}

/// Column by column; where numbers are not finite the zeros that fill the lanes of a block would
/// spread them over its columns.
template <class T>
void factor_plainly(const Profile<T>& m, int first, int digits, ProfileStatus& status) {
    for (int j = std::max(first, 2); j <= m.n; ++j) {
        const T old = m.diagonal(j);
        const T pivot = finish_column(
            m, j, 1, [](int) { return T{}; }, T{});
        if (!test_pivot(old, pivot, j, digits, status)) return;
    }
}

/// Columns of a block by its sums; false when a pivot is zero.
template <class T>
bool finish_block(const Profile<T>& m, const Block<T>& b, int digits, ProfileStatus& status) {
    for (int k = 0; k < b.count; ++k) {
        const int j = b.first + k;
        if (j == 1) continue;
        const auto sum_of = [&](int i) { return lane(b.sums[i - b.first][k / width], k % width); };
        const T old = m.diagonal(j);
        const T pivot = finish_column(m, j, b.first, sum_of, lane(b.acc[k / width], k % width));
        if (!test_pivot(old, pivot, j, digits, status)) return false;
    }
    return true;
}

/// Row of the highest element in `count` columns from `first`, at most `first`.
template <class T> int highest_row(const Profile<T>& m, int first, int count) {
    int low = first;
    for (int j = first; j < first + count; ++j)
        low = std::min(low, m.top(j));
    return low;
}

template <class T> ProfileStatus factor(const Profile<T>& m, int digits) {
    const Profile<const T> view{m.a, m.loc, m.n};
    ProfileStatus status;
    int highest = 0; // most rows above a block
    for (int first = 1; first <= m.n; first += block) {
        const int count = std::min(block, m.n - first + 1);
        highest = std::max(highest, first - highest_row(m, first, count));
    }
    std::vector<Lanes<T, width>> u(static_cast<std::size_t>(highest) * groups), t(u.size());
    for (int first = 1; first <= m.n; first += block) {
        Block<T> b{.first = first,
                   .count = std::min(block, m.n - first + 1),
                   .low = 0,
                   .rows = 0,
                   .u = u.data(),
                   .t = t.data(),
                   .acc = {},
                   .sums = {}};
        b.low = highest_row(m, first, b.count);
        b.rows = first - b.low;
        std::fill_n(b.u, b.rows * groups, Lanes<T, width>{});
        for_stored(view, b, [&](const T& element, std::ptrdiff_t place, int k) {
            set_lane(b.u[place], k, element);
        });
        if (!reduce_block_of(view, b)) {
            factor_plainly(m, first, digits, status);
            return status;
        }
        for_stored(m, b,
                   [&](T& element, std::ptrdiff_t place, int k) { element = lane(b.t[place], k); });
        sum_block_of(view, b);
        if (!finish_block(m, b, digits, status)) return status;
    }
    return status;
}

// --- solution and product ------------------------------------------------------------------------

template <class T, int W> QUELOR_INLINE void forward(const Profile<const T>& m, Lanes<T, W>* u) {
    int i = 1;
    for (; i + tile <= m.n + 1; i += tile)
        reduce_tile<tile>(m, i, 1, u);
    for (; i <= m.n; ++i)
        reduce_tile<1>(m, i, 1, u);
}

/// u(i) -= u(j) A(i, j), i = top(j)..j - 1, for the columns j = last down to last - count + 1.
template <int count, class T, int W>
QUELOR_INLINE void backward_tile(const Profile<const T>& m, int last, Lanes<T, W>* __restrict u) {
    const int low = last - count + 1;
    int common = 1;
    for (int j = last; j >= low; --j) {
        common = std::max(common, m.top(j));
        for (int i = std::max(m.top(j), low); i < j; ++i)
            subtract_product(u[i - 1], m.column(j)[-i], u[j - 1]);
    }
    common = std::min(common, low);
    const T* column[count];
    Lanes<T, W> x[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        column[q] = m.column(last - q);
        x[q] = u[last - q - 1];
        for (int i = m.top(last - q); i < common; ++i)
            subtract_product(u[i - 1], column[q][-i], x[q]);
    }
    for (int i = common; i < low; ++i) {
        Lanes<T, W> y = u[i - 1];
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q)
            subtract_product(y, column[q][-i], x[q]);
        u[i - 1] = y;
    }
}

template <class T, int W> QUELOR_INLINE void backward(const Profile<const T>& m, Lanes<T, W>* u) {
    for (int i = 1; i <= m.n; ++i)
        divide(u[i - 1], m.diagonal(i));
    int j = m.n;
    for (; j >= tile; j -= tile)
        backward_tile<tile>(m, j, u);
    for (; j >= 1; --j)
        backward_tile<1>(m, j, u);
}

/// Both products of `count` columns from `first` on: c(j) += the column times b, and the rows above
/// the diagonal c(i) += A(i, j) b(j).
template <int count, class T, int W>
QUELOR_INLINE void multiply_tile(const Profile<const T>& m, int first, const Lanes<T, W>* b,
                                 Lanes<T, W>* __restrict c) {
    int common = 1;
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q)
        common = std::max(common, m.top(first + q));
    common = std::min(common, first);
    const T* column[count];
    Lanes<T, W> dot[count], x[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        column[q] = m.column(first + q);
        x[q] = b[first + q - 1];
        for (int i = m.top(first + q); i < common; ++i) {
            add_product(dot[q], column[q][-i], b[i - 1]);
            add_product(c[i - 1], column[q][-i], x[q]);
        }
    }
    for (int i = common; i < first; ++i) {
        Lanes<T, W> y = c[i - 1];
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q) {
            add_product(dot[q], column[q][-i], b[i - 1]);
            add_product(y, column[q][-i], x[q]);
        }
        c[i - 1] = y;
    }
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        const int j = first + q, top = std::max(m.top(j), first);
        for (int i = top; i <= j; ++i)
            add_product(dot[q], column[q][-i], b[i - 1]);
        add(c[j - 1], dot[q]);
        for (int i = top; i < j; ++i)
            add_product(c[i - 1], column[q][-i], x[q]);
    }
}

template <class T, int W>
QUELOR_INLINE void multiply(const Profile<const T>& m, const Lanes<T, W>* b, Lanes<T, W>* c) {
    set_product(c[0], m.diagonal(1), b[0]);
    int j = 2;
    for (; j + tile <= m.n + 1; j += tile)
        multiply_tile<tile>(m, j, b, c);
    for (; j <= m.n; ++j)
        multiply_tile<1>(m, j, b, c);
}

template <class T, int W>
QUELOR_INLINE void solve_lanes(const Profile<const T>& m, Lanes<T, W>* u, ProfileMode mode) {
    if (mode != ProfileMode::backward) forward(m, u);
    if (mode != ProfileMode::forward) backward(m, u);
}

#define QUELOR_LANE_ROUTINES(T, W)                                                                 \
    QUELOR_CLONES void solve_of(const Profile<const T>& m, Lanes<T, W>* u, ProfileMode mode) {     \
        solve_lanes(m, u, mode);                                                                   \
    }                                                                                              \
    QUELOR_CLONES void multiply_of(const Profile<const T>& m, const Lanes<T, W>* b,                \
                                   Lanes<T, W>* c) {                                               \
        multiply(m, b, c);                                                                         \
    }
QUELOR_LANE_ROUTINES(double, 1)
QUELOR_LANE_ROUTINES(double, width)
QUELOR_LANE_ROUTINES(Complex8, 1)
QUELOR_LANE_ROUTINES(Complex8, width)
#undef QUELOR_LANE_ROUTINES

/// Columns first to first + count - 1 of a matrix, row by row side by side.
template <class T, int W>
void pack(Matrix<const T> b, int first, int count, std::vector<Lanes<T, W>>& u) {
    u.assign(static_cast<std::size_t>(b.rows), {});
    for (int k = 0; k < count; ++k)
        for (int i = 1; i <= b.rows; ++i)
            set_lane(u[static_cast<std::size_t>(i - 1)], k, b(i, first + k));
}
template <class T, int W>
void unpack(const std::vector<Lanes<T, W>>& u, Matrix<T> b, int first, int count) {
    for (int k = 0; k < count; ++k)
        for (int i = 1; i <= b.rows; ++i)
            b(i, first + k) = lane(u[static_cast<std::size_t>(i - 1)], k);
}

/// Calls action(first column, number of columns, lanes) for groups of columns; a single one runs
/// in a lane of its own.
template <class Action> void for_groups(int cols, Action action) {
    for (int first = 1; first <= cols; first += width) {
        const int count = std::min(width, cols - first + 1);
        if (count == 1)
            action(first, std::integral_constant<int, 1>{}, 1);
        else
            action(first, std::integral_constant<int, width>{}, count);
    }
}

template <class T> void solve(std::span<const T> a, Matrix<T> b, Loc loc, ProfileMode mode) {
    const auto m = profile_of(a, loc);
    for_groups(b.cols, [&](int first, auto lanes, int count) {
        std::vector<Lanes<T, decltype(lanes)::value>> u;
        pack(Matrix<const T>(b), first, count, u);
        solve_of(m, u.data(), mode);
        unpack(u, b, first, count);
    });
}

template <class T> void product(std::span<const T> a, Matrix<const T> b, Matrix<T> c, Loc loc) {
    const auto m = profile_of(a, loc);
    for_groups(b.cols, [&](int first, auto lanes, int count) {
        std::vector<Lanes<T, decltype(lanes)::value>> u, v(static_cast<std::size_t>(b.rows));
        pack(b, first, count, u);
        multiply_of(m, u.data(), v.data());
        unpack(v, c, first, count);
    });
}

} // namespace

bool profile_is_valid(Loc loc, std::int64_t size) {
    if (loc.size() < 2 || loc[0] != 1) return false;
    for (std::size_t j = 1; j < loc.size(); ++j) {
        const std::int64_t length = std::int64_t{loc[j]} - loc[j - 1];
        if (length < 1 || length > static_cast<std::int64_t>(j)) return false;
    }
    return loc.back() - 1 <= size;
}

ProfileStatus profile_factor(std::span<double> a, Loc loc, int digits) {
    return factor(profile_of(a, loc), digits);
}
ProfileStatus profile_factor(std::span<Complex8> a, Loc loc) {
    return factor(profile_of(a, loc), 0);
}

void profile_solve(std::span<const double> a, Matrix<double> b, Loc loc, ProfileMode mode) {
    solve(a, b, loc, mode);
}
void profile_solve(std::span<const Complex8> a, Matrix<Complex8> b, Loc loc, ProfileMode mode) {
    solve(a, b, loc, mode);
}

void profile_multiply(std::span<const double> a, Matrix<const double> b, Matrix<double> c,
                      Loc loc) {
    product(a, b, c, loc);
}
void profile_multiply(std::span<const Complex8> a, Matrix<const Complex8> b, Matrix<Complex8> c,
                      Loc loc) {
    product(a, b, c, loc);
}

} // namespace quelor
