// What the kernels of profile matrices share: several numbers side by side in the registers of the
// processor, the matrix, and the reduction of rows by the columns above them. The sums of several
// targets run side by side, each in its own order: in the factorisation the targets are the columns
// of a block and four rows of them, in the solution the right-hand sides and four equations.
#pragma once

#include "numeric/complex_division.hpp"
#include "numeric/profile.hpp"
#include "numeric/vecmath.hpp"

#include <algorithm>

namespace quelor::profile_kernel {

using Loc = std::span<const std::int32_t>;

inline constexpr int tile = 4;  ///< rows whose sums run together
inline constexpr int width = 8; ///< lanes of a vector

/// by_processor<Kernel>(arguments...) is Kernel::run<bytes>(arguments...) compiled for the
/// processor, bytes those of its vector registers; GCC splits vectors wider than the processor's
/// own badly, so they cannot be one clone's. Kernel::run is QUELOR_INLINE and has no target of its
/// own: only so does it take its caller's.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
template <class Kernel, class... A>
[[gnu::target("arch=x86-64-v4")]] void run_v4(A&&... arguments) {
    Kernel::template run<32>(arguments...);
}
template <class Kernel, class... A>
[[gnu::target("arch=x86-64-v3")]] void run_v3(A&&... arguments) {
    Kernel::template run<32>(arguments...);
}
template <class Kernel, class... A> void by_processor(A&&... arguments) {
    if (__builtin_cpu_supports("x86-64-v4")) return run_v4<Kernel>(arguments...);
    if (__builtin_cpu_supports("x86-64-v3")) return run_v3<Kernel>(arguments...);
    Kernel::template run<16>(arguments...);
}
#else
template <class Kernel, class... A> void by_processor(A&&... arguments) {
    Kernel::template run<16>(arguments...);
}
#endif

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

} // namespace quelor::profile_kernel
