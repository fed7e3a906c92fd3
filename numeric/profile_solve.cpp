// Solution with a factored profile matrix, and the product with a matrix.
#include "numeric/profile_lanes.hpp"

#include <vector>

namespace quelor {

using namespace profile_kernel;

namespace {

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
struct SolveRows {
    template <int bytes, class T, class R>
    QUELOR_INLINE static void run(const Profile<const T>& m, R* u, ProfileMode mode) {
        constexpr int B = bytes_of_lanes<R>(bytes);
        if (mode != ProfileMode::backward) forward<B>(m, u);
        if (mode != ProfileMode::forward) backward<B>(m, u);
    }
};
struct MultiplyRows {
    template <int bytes, class T, class R>
    QUELOR_INLINE static void run(const Profile<const T>& m, const R* b, R* c) {
        multiply<bytes_of_lanes<R>(bytes)>(m, b, c);
    }
};

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
        by_processor<SolveRows>(m, u.data(), mode);
        unpack(u, b, first, count);
    });
}

template <class T> void product(std::span<const T> a, Matrix<const T> b, Matrix<T> c, Loc loc) {
    const auto m = profile_of(a, loc);
    for_groups(b.cols, [&](int first, auto lane_count, int count) {
        std::vector<Row<T, decltype(lane_count)::value>> u, v(as_size(b.rows));
        pack(b, first, count, u);
        by_processor<MultiplyRows>(m, u.data(), v.data());
        unpack(v, c, first, count);
    });
}

} // namespace

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
