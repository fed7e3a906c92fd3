// Profile factorisation, solution and product. The sums of several targets run side by side, each
// in its own order: in the factorisation the targets are the columns of a block and four rows of
// them, in the solution the right-hand sides and four equations.
#include "numeric/profile.hpp"

#include <algorithm>

#include "numeric/complex_division.hpp"
#include "numeric/vecmath.hpp"

namespace quelor {

namespace {

using Loc = std::span<const std::int32_t>;

constexpr int tile = 4;   ///< rows whose sums run together
constexpr int width = 8;  ///< lanes of a vector
constexpr int groups = 2; ///< vectors of a block of columns
constexpr int block = groups * width;

/// by_processor_f(arguments...) is f<bytes>(arguments...) compiled for the processor, bytes those
/// of its vector registers; GCC splits vectors wider than the processor's own badly, so they cannot
/// be one clone's.
// NOLINTBEGIN(bugprone-macro-parentheses): f is the name of a template.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define QUELOR_BY_PROCESSOR(f)                                                                     \
    template <class... A> [[gnu::target("arch=x86-64-v4")]] void f##_v4(A&&... arguments) {        \
        f<32>(arguments...);                                                                       \
    }                                                                                              \
    template <class... A> [[gnu::target("arch=x86-64-v3")]] void f##_v3(A&&... arguments) {        \
        f<32>(arguments...);                                                                       \
    }                                                                                              \
    template <class... A> void by_processor_##f(A&&... arguments) {                                \
        if (__builtin_cpu_supports("x86-64-v4")) return f##_v4(arguments...);                      \
        if (__builtin_cpu_supports("x86-64-v3")) return f##_v3(arguments...);                      \
        f<16>(arguments...);                                                                       \
    }
#else
#define QUELOR_BY_PROCESSOR(f)                                                                     \
    template <class... A> void by_processor_##f(A&&... arguments) {                                \
        f<16>(arguments...);                                                                       \
    }
#endif
// NOLINTEND(bugprone-macro-parentheses)

// --- numbers side by side ------------------------------------------------------------------------

/// W real or complex numbers of one row in memory, real parts first: one right-hand side or column
/// in each lane.
template <class T, int W> struct alignas(8 * W) Row {
    static constexpr bool complex = std::is_same_v<T, Complex8>;
    double part[complex ? 2 : 1][W]{};

    T get(int k) const {
        if constexpr (complex)
            return {part[0][k], part[1][k]};
        else
            return part[0][k];
    }
    void set(int k, T value) {
        if constexpr (complex) {
            part[0][k] = value.real();
            part[1][k] = value.imag();
        } else {
            part[0][k] = value;
        }
    }
};

/// A vector register of so many bytes; 8 is a single number.
template <int bytes> struct VectorOf {
    typedef double type __attribute__((vector_size(bytes), aligned(16), may_alias));
};
template <> struct VectorOf<8> { using type = double; };
template <int bytes> using Vector = typename VectorOf<bytes>::type;

template <int bytes> QUELOR_INLINE void load(Vector<bytes>& v, const double* x) {
    v = *reinterpret_cast<const Vector<bytes>*>(x);
}
template <int bytes> QUELOR_INLINE void store(double* x, const Vector<bytes>& v) {
    *reinterpret_cast<Vector<bytes>*>(x) = v;
}

/// The numbers of a row in registers of B bytes.
template <class T, int W, int B> struct Lanes {
    static constexpr int count = 8 * W / B, step = B / 8;
    using V = Vector<B>;
    V re[count]{};

    Lanes() = default;
    QUELOR_INLINE explicit Lanes(const Row<T, W>& row) {
        for (int k = 0; k < count; ++k)
            load<B>(re[k], row.part[0] + k * step);
    }
    QUELOR_INLINE void store_to(Row<T, W>& row) const {
        for (int k = 0; k < count; ++k)
            store<B>(row.part[0] + k * step, re[k]);
    }
    QUELOR_INLINE void set_product(T a, const Lanes& x) {
        for (int k = 0; k < count; ++k)
            re[k] = a * x.re[k];
    }
    /// *this += x y, lane by lane
    QUELOR_INLINE void add_lane_product(const Lanes& x, const Lanes& y) {
        for (int k = 0; k < count; ++k)
            re[k] += x.re[k] * y.re[k];
    }
    QUELOR_INLINE void add(const Lanes& x) {
        for (int k = 0; k < count; ++k)
            re[k] += x.re[k];
    }
    QUELOR_INLINE void subtract(const Lanes& x) {
        for (int k = 0; k < count; ++k)
            re[k] -= x.re[k];
    }
    QUELOR_INLINE void divide(T d) {
        for (int k = 0; k < count; ++k)
            re[k] /= d;
    }
    /// sum stays 0 as long as all numbers are finite.
    QUELOR_INLINE void note_finite(V& sum) const {
        for (int k = 0; k < count; ++k)
            sum += re[k] * 0.0;
    }
};

// Real parts of products as sums: see SmithDivisor.
template <int W, int B> struct Lanes<Complex8, W, B> {
    static constexpr int count = 8 * W / B, step = B / 8;
    using V = Vector<B>;
    V re[count]{}, im[count]{};

    Lanes() = default;
    QUELOR_INLINE explicit Lanes(const Row<Complex8, W>& row) {
        for (int k = 0; k < count; ++k) {
            load<B>(re[k], row.part[0] + k * step);
            load<B>(im[k], row.part[1] + k * step);
        }
    }
    QUELOR_INLINE void store_to(Row<Complex8, W>& row) const {
        for (int k = 0; k < count; ++k) {
            store<B>(row.part[0] + k * step, re[k]);
            store<B>(row.part[1] + k * step, im[k]);
        }
    }
    QUELOR_INLINE void set_product(Complex8 a, const Lanes& x) {
        const double c = a.real(), d = a.imag();
        for (int k = 0; k < count; ++k) {
            re[k] = c * x.re[k] + d * -x.im[k];
            im[k] = c * x.im[k] + d * x.re[k];
        }
    }
    QUELOR_INLINE void add_lane_product(const Lanes& x, const Lanes& y) {
        for (int k = 0; k < count; ++k) {
            re[k] += x.re[k] * y.re[k] + x.im[k] * -y.im[k];
            im[k] += x.re[k] * y.im[k] + x.im[k] * y.re[k];
        }
    }
    QUELOR_INLINE void add(const Lanes& x) {
        for (int k = 0; k < count; ++k) {
            re[k] += x.re[k];
            im[k] += x.im[k];
        }
    }
    QUELOR_INLINE void subtract(const Lanes& x) {
        for (int k = 0; k < count; ++k) {
            re[k] -= x.re[k];
            im[k] -= x.im[k];
        }
    }
    QUELOR_INLINE void divide(Complex8 d) {
        const SmithDivisor divisor(d);
        for (int k = 0; k < count; ++k) {
            struct {
                V re, im;
            } z{re[k], im[k]};
            divisor.divide_parts(z);
            re[k] = z.re;
            im[k] = z.im;
        }
    }
    QUELOR_INLINE void note_finite(V& sum) const {
        for (int k = 0; k < count; ++k)
            sum += re[k] * 0.0 + im[k] * 0.0;
    }
};

/// y += a x, and y -= a x
template <class T, class L> QUELOR_INLINE void add_product(L& y, T a, const L& x) {
    L product;
    product.set_product(a, x);
    y.add(product);
}
template <class T, class L> QUELOR_INLINE void subtract_product(L& y, T a, const L& x) {
    L product;
    product.set_product(a, x);
    y.subtract(product);
}
template <int B, class T, int W> QUELOR_INLINE Lanes<T, W, B> lanes(const Row<T, W>& row) {
    return Lanes<T, W, B>(row);
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
/// u(r) are rows of lanes, u[0] for row low. No column of the tile may end above row high - 1.
template <int B, int count, class T, int W>
QUELOR_INLINE void tile_sums(const Profile<const T>& m, int first, int low, int high,
                             const Row<T, W>* u, Row<T, W>* sum) {
    int common = low;
    for (int q = 0; q < count; ++q)
        common = std::max(common, m.top(first + q));
    common = std::min(common, high);
    const T* column[count];
    Lanes<T, W, B> total[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        column[q] = m.column(first + q);
        for (int r = std::max(low, m.top(first + q)); r < common; ++r)
            add_product(total[q], column[q][-r], lanes<B>(u[r - low]));
    }
    for (int r = common; r < high; ++r) {
        const auto x = lanes<B>(u[r - low]);
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q)
            add_product(total[q], column[q][-r], x);
    }
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q)
        total[q].store_to(sum[q]);
}

/// u(i) -= sum of A(r, i) u(r), r = max(top(i), low)..i - 1, for `count` rows i from `first` on.
template <int B, int count, class T, int W>
QUELOR_INLINE void reduce_tile(const Profile<const T>& m, int first, int low, Row<T, W>* u) {
    Row<T, W> sum[count];
    tile_sums<B, count>(m, first, low, first, u, sum);
    for (int i = first; i < first + count; ++i) {
        const T* const column = m.column(i);
        auto total = lanes<B>(sum[i - first]);
        for (int r = std::max(first, m.top(i)); r < i; ++r)
            add_product(total, column[-r], lanes<B>(u[r - low]));
        auto x = lanes<B>(u[i - low]);
        x.subtract(total);
        x.store_to(u[i - low]);
    }
}

// --- factorisation -------------------------------------------------------------------------------

/// The columns of one vector: their elements in the rows above the block, from row `low` on.
template <class T> struct Group {
    int low;
    Row<T, width>* u;               ///< before they are divided by the pivots
    Row<T, width>* t;               ///< after it: rows of L^T
    Row<T, width> acc, sums[block]; ///< sums of t u, and of the block's own rows
};

template <class T> struct Block {
    int first, count, low; ///< columns first to first + count - 1, reaching up to row low
    Group<T> group[groups];
    bool finite; ///< all quotients are finite
};

template <int B, int count, class T>
QUELOR_INLINE void reduce_groups(const Profile<const T>& m, int i, Block<T>& b) {
    for (Group<T>& g : b.group)
        if (i >= g.low) reduce_tile<B, count>(m, i, g.low, g.u);
}

/// Divides the group's rows by the pivots and adds up t u; false when a quotient is not finite.
template <int B, class T>
QUELOR_INLINE bool divide_group(const Profile<const T>& m, int first, Group<T>& g) {
    Lanes<T, width, B> acc;
    Vector<B> unfinite{};
    for (int r = g.low; r < first; ++r) {
        const auto u = lanes<B>(g.u[r - g.low]);
        auto t = u;
        t.divide(m.diagonal(r));
        acc.add_lane_product(t, u);
        t.note_finite(unfinite);
        t.store_to(g.t[r - g.low]);
    }
    acc.store_to(g.acc);
    double sums[B / 8];
    store<B>(sums, unfinite);
    return std::ranges::all_of(sums, [](double x) { return x == 0; });
}

/// Reduces the block's elements above row `first`, divides them by the pivots, and adds up t u.
template <int B, class T> QUELOR_INLINE void reduce_block(const Profile<const T>& m, Block<T>& b) {
    int i = b.low;
    for (; i + tile <= b.first; i += tile)
        reduce_groups<B, tile>(m, i, b);
    for (; i < b.first; ++i)
        reduce_groups<B, 1>(m, i, b);
    b.finite = true;
    for (Group<T>& g : b.group)
        b.finite = divide_group<B>(m, b.first, g) && b.finite;
}

/// The sums of the block's own rows over the rows above it; its columns hold L^T there. A group has
/// no use for the rows below its columns.
template <int B, class T> QUELOR_INLINE void sum_block(const Profile<const T>& m, Block<T>& b) {
    int count = 0;
    for (Group<T>& g : b.group) {
        count = std::min(count + width, b.count);
        int k = 0;
        for (; k + tile <= count; k += tile)
            tile_sums<B, tile>(m, b.first + k, g.low, b.first, g.u, g.sums + k);
        for (; k < count; ++k)
            tile_sums<B, 1>(m, b.first + k, g.low, b.first, g.u, g.sums + k);
    }
}

QUELOR_BY_PROCESSOR(reduce_block)
QUELOR_BY_PROCESSOR(sum_block)

/// Calls action(element, group, row in it, lane) for the stored elements above the block.
template <class T, class U, class Action>
void for_stored(const Profile<T>& m, Block<U>& b, Action action) {
    for (int k = 0; k < b.count; ++k) {
        const int j = b.first + k;
        T* const column = m.column(j);
        Group<U>& g = b.group[k / width];
        for (int r = m.top(j); r < b.first; ++r)
            action(column[-r], g, r - g.low, k % width);
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
        const auto sum_of = [&](int i) {
            return b.group[k / width].sums[i - b.first].get(k % width);
        };
        const T old = m.diagonal(j);
        const T pivot = finish_column(m, j, b.first, sum_of, b.group[k / width].acc.get(k % width));
        if (!test_pivot(old, pivot, j, digits, status)) return false;
    }
    return true;
}

/// Row of the highest element in the columns first to last, at most `limit`.
template <class T> int highest_row(const Profile<T>& m, int first, int last, int limit) {
    for (int j = first; j <= last; ++j)
        limit = std::min(limit, m.top(j));
    return limit;
}

/// The shape of the block of columns from `first` on. A group begins a whole number of tiles below
/// the block, so that all groups pass through the rows in the same tiles.
template <class T> Block<T> block_from(const Profile<T>& m, int first) {
    Block<T> b{.first = first,
               .count = std::min(block, m.n - first + 1),
               .low = 0,
               .group = {},
               .finite = true};
    const int last = first + b.count - 1;
    b.low = highest_row(m, first, last, first);
    for (int g = 0; g < groups; ++g) {
        const int begin = first + g * width;
        const int low = highest_row(m, begin, std::min(begin + width - 1, last), first);
        b.group[g].low = low - (low - b.low) % tile;
    }
    return b;
}

/// Work space for the rows of one block.
template <class T> struct Workspace {
    std::vector<Row<T, width>> u[groups], t[groups];

    /// The block with its rows, those of u zero.
    void attach(Block<T>& b) {
        for (int k = 0; k < groups; ++k) {
            Group<T>& g = b.group[k];
            u[k].assign(as_size(b.first - g.low), {});
            t[k].resize(u[k].size());
            g.u = u[k].data();
            g.t = t[k].data();
        }
    }
};

template <class T> ProfileStatus factor(const Profile<T>& m, int digits) {
    const Profile<const T> view{m.a, m.loc, m.n};
    ProfileStatus status;
    Workspace<T> space;
    for (int first = 1; first <= m.n; first += block) {
        Block<T> b = block_from(m, first);
        space.attach(b);
        for_stored(view, b,
                   [](const T& element, Group<T>& g, int row, int k) { g.u[row].set(k, element); });
        by_processor_reduce_block(view, b);
        if (!b.finite) {
            factor_plainly(m, first, digits, status);
            return status;
        }
        for_stored(m, b,
                   [](T& element, Group<T>& g, int row, int k) { element = g.t[row].get(k); });
        by_processor_sum_block(view, b);
        if (!finish_block(m, b, digits, status)) return status;
    }
    return status;
}

// --- solution and product ------------------------------------------------------------------------

template <int B, class T, int W>
QUELOR_INLINE void forward(const Profile<const T>& m, Row<T, W>* u) {
    int i = 1;
    for (; i + tile <= m.n + 1; i += tile)
        reduce_tile<B, tile>(m, i, 1, u);
    for (; i <= m.n; ++i)
        reduce_tile<B, 1>(m, i, 1, u);
}

/// y += a x or y -= a x on a row in memory
template <class T, class L, int W> QUELOR_INLINE void add_to_row(Row<T, W>& row, T a, const L& x) {
    L y(row);
    add_product(y, a, x);
    y.store_to(row);
}
template <class T, class L, int W>
QUELOR_INLINE void subtract_from_row(Row<T, W>& row, T a, const L& x) {
    L y(row);
    subtract_product(y, a, x);
    y.store_to(row);
}

/// u(i) -= u(j) A(i, j), i = top(j)..j - 1, for the columns j = last down to last - count + 1.
template <int B, int count, class T, int W>
QUELOR_INLINE void backward_tile(const Profile<const T>& m, int last, Row<T, W>* __restrict u) {
    const int low = last - count + 1;
    int common = 1;
    for (int j = last; j >= low; --j) {
        common = std::max(common, m.top(j));
        for (int i = std::max(m.top(j), low); i < j; ++i)
            subtract_from_row(u[i - 1], m.column(j)[-i], lanes<B>(u[j - 1]));
    }
    common = std::min(common, low);
    const T* column[count];
    Lanes<T, W, B> x[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        column[q] = m.column(last - q);
        x[q] = lanes<B>(u[last - q - 1]);
        for (int i = m.top(last - q); i < common; ++i)
            subtract_from_row(u[i - 1], column[q][-i], x[q]);
    }
    for (int i = common; i < low; ++i) {
        auto y = lanes<B>(u[i - 1]);
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q)
            subtract_product(y, column[q][-i], x[q]);
        y.store_to(u[i - 1]);
    }
}

template <int B, class T, int W>
QUELOR_INLINE void backward(const Profile<const T>& m, Row<T, W>* u) {
    for (int i = 1; i <= m.n; ++i) {
        auto x = lanes<B>(u[i - 1]);
        x.divide(m.diagonal(i));
        x.store_to(u[i - 1]);
    }
    int j = m.n;
    for (; j >= tile; j -= tile)
        backward_tile<B, tile>(m, j, u);
    for (; j >= 1; --j)
        backward_tile<B, 1>(m, j, u);
}

/// Both products of `count` columns from `first` on: c(j) += the column times b, and the rows above
/// the diagonal c(i) += A(i, j) b(j).
template <int B, int count, class T, int W>
QUELOR_INLINE void multiply_tile(const Profile<const T>& m, int first, const Row<T, W>* b,
                                 Row<T, W>* __restrict c) {
    int common = 1;
    for (int q = 0; q < count; ++q)
        common = std::max(common, m.top(first + q));
    common = std::min(common, first);
    const T* column[count];
    Lanes<T, W, B> dot[count], x[count];
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        column[q] = m.column(first + q);
        x[q] = lanes<B>(b[first + q - 1]);
        for (int i = m.top(first + q); i < common; ++i) {
            add_product(dot[q], column[q][-i], lanes<B>(b[i - 1]));
            add_to_row(c[i - 1], column[q][-i], x[q]);
        }
    }
    for (int i = common; i < first; ++i) {
        auto y = lanes<B>(c[i - 1]);
        const auto z = lanes<B>(b[i - 1]);
#pragma GCC unroll 4
        for (int q = 0; q < count; ++q) {
            add_product(dot[q], column[q][-i], z);
            add_product(y, column[q][-i], x[q]);
        }
        y.store_to(c[i - 1]);
    }
#pragma GCC unroll 4
    for (int q = 0; q < count; ++q) {
        const int j = first + q, top = std::max(m.top(j), first);
        for (int i = top; i <= j; ++i)
            add_product(dot[q], column[q][-i], lanes<B>(b[i - 1]));
        auto y = lanes<B>(c[j - 1]);
        y.add(dot[q]);
        y.store_to(c[j - 1]);
        for (int i = top; i < j; ++i)
            add_to_row(c[i - 1], column[q][-i], x[q]);
    }
}

template <int B, class T, int W>
QUELOR_INLINE void multiply(const Profile<const T>& m, const Row<T, W>* b, Row<T, W>* c) {
    Lanes<T, W, B> first;
    first.set_product(m.diagonal(1), lanes<B>(b[0]));
    first.store_to(c[0]);
    int j = 2;
    for (; j + tile <= m.n + 1; j += tile)
        multiply_tile<B, tile>(m, j, b, c);
    for (; j <= m.n; ++j)
        multiply_tile<B, 1>(m, j, b, c);
}

/// Registers for W lanes on a processor whose vectors have so many bytes.
template <class R> constexpr int bytes_of_lanes(int bytes) {
    return sizeof(R::part[0]) == 8 ? 8 : bytes;
}
template <int bytes, class T, class R>
QUELOR_INLINE void solve_rows(const Profile<const T>& m, R* u, ProfileMode mode) {
    constexpr int B = bytes_of_lanes<R>(bytes);
    if (mode != ProfileMode::backward) forward<B>(m, u);
    if (mode != ProfileMode::forward) backward<B>(m, u);
}
template <int bytes, class T, class R>
QUELOR_INLINE void multiply_rows(const Profile<const T>& m, const R* b, R* c) {
    multiply<bytes_of_lanes<R>(bytes)>(m, b, c);
}
QUELOR_BY_PROCESSOR(solve_rows)
QUELOR_BY_PROCESSOR(multiply_rows)

/// Columns first to first + count - 1 of a matrix, row by row side by side.
template <class T, int W>
void pack(Matrix<const T> b, int first, int count, std::vector<Row<T, W>>& u) {
    u.assign(as_size(b.rows), {});
    for (int k = 0; k < count; ++k)
        for (int i = 1; i <= b.rows; ++i)
            u[nth(i)].set(k, b(i, first + k));
}
template <class T, int W>
void unpack(const std::vector<Row<T, W>>& u, Matrix<T> b, int first, int count) {
    for (int k = 0; k < count; ++k)
        for (int i = 1; i <= b.rows; ++i)
            b(i, first + k) = u[nth(i)].get(k);
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
    for_groups(b.cols, [&](int first, auto lane_count, int count) {
        std::vector<Row<T, decltype(lane_count)::value>> u;
        pack(Matrix<const T>(b), first, count, u);
        by_processor_solve_rows(m, u.data(), mode);
        unpack(u, b, first, count);
    });
}

template <class T> void product(std::span<const T> a, Matrix<const T> b, Matrix<T> c, Loc loc) {
    const auto m = profile_of(a, loc);
    for_groups(b.cols, [&](int first, auto lane_count, int count) {
        std::vector<Row<T, decltype(lane_count)::value>> u, v(as_size(b.rows));
        pack(b, first, count, u);
        by_processor_multiply_rows(m, u.data(), v.data());
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
