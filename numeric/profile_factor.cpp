// Profile factorisation, and the test of a profile.
#include "numeric/profile_lanes.hpp"

#include <cmath>
#include <vector>

namespace quelor {

using namespace profile_kernel;

namespace {

constexpr int groups = 2; ///< vectors of a block of columns
constexpr int block = groups * width;

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
struct ReduceBlock {
    template <int B, class T>
    QUELOR_INLINE static void run(const Profile<const T>& m, Block<T>& b) {
        int i = b.low;
        for (; i + tile <= b.first; i += tile)
            reduce_groups<B, tile>(m, i, b);
        for (; i < b.first; ++i)
            reduce_groups<B, 1>(m, i, b);
        b.finite = true;
        for (Group<T>& g : b.group)
            b.finite = divide_group<B>(m, b.first, g) && b.finite;
    }
};

/// The sums of the block's own rows over the rows above it; its columns hold L^T there. A group has
/// no use for the rows below its columns.
struct SumBlock {
    template <int B, class T>
    QUELOR_INLINE static void run(const Profile<const T>& m, Block<T>& b) {
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
};

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
        by_processor<ReduceBlock>(view, b);
        if (!b.finite) {
            factor_plainly(m, first, digits, status);
            return status;
        }
        for_stored(m, b,
                   [](T& element, Group<T>& g, int row, int k) { element = g.t[row].get(k); });
        by_processor<SumBlock>(view, b);
        if (!finish_block(m, b, digits, status)) return status;
    }
    return status;
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

} // namespace quelor
