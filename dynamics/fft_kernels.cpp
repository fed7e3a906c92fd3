// Fourier transforms: those of a power of 2 by radix-2 passes, others as convolutions by these.
#include "dynamics/fft_kernels.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace quelor {

namespace {

/// x += y w and y := x - y w for the complex numbers at x and y, w = c + i s.
void butterfly(double* x, double* y, double c, double s) {
    const double re = y[0] * c - y[1] * s, im = y[0] * s + y[1] * c;
    y[0] = x[0] - re;
    y[1] = x[1] - im;
    x[0] += re;
    x[1] += im;
}

/// An index in its bits is high, middle (one bit or none) and low; high and low change places.
void reverse_order(std::span<double> z, std::span<const std::int32_t> reversal) {
    const std::size_t n = z.size() / 2, l = reversal.size(), middle = n / (l * l);
    for (std::size_t high = 0; high < l; ++high) {
        for (std::size_t mid = 0; mid < middle; ++mid) {
            for (std::size_t low = 0; low < l; ++low) {
                const std::size_t from = (high * middle + mid) * l + low;
                const std::size_t to =
                    (as_size(reversal[low]) * middle + mid) * l + as_size(reversal[high]);
                if (from < to) {
                    std::swap(z[2 * from], z[2 * to]);
                    std::swap(z[2 * from + 1], z[2 * to + 1]);
                }
            }
        }
    }
}

/// Butterflies of blocks of 2 half points, half >= 2: the root a quarter turn on is i times the
/// first. `step` is the distance of successive roots in the table.
void butterfly_pass(std::span<double> z, std::size_t half, int sign, const double* roots,
                    std::size_t step) {
    for (std::size_t block = 0; block < z.size(); block += 4 * half) {
        double* const x = z.data() + block;
        double* const y = x + 2 * half;
        for (std::size_t j = 0; j < half / 2; ++j) {
            const double c = roots[2 * j * step], s = sign * roots[2 * j * step + 1];
            butterfly(x + 2 * j, y + 2 * j, c, s);
            butterfly(x + 2 * j + half, y + 2 * j + half, -sign * s, sign * c);
        }
    }
}

/// Between Z of the N/2 complex values a(2j) + i a(2j+1) and A of the N real ones, M = N/2:
/// A(k) = E + W O and A(M - k) = conj(E - W O), W = exp(2 pi i k / N),
/// with E = (Z(k) + conj Z(M - k)) / 2 and O = (Z(k) - conj Z(M - k)) / 2i.
void join_halves(std::span<double> a, const double* roots) {
    const std::size_t m = a.size() / 2;
    for (std::size_t k = 1; 2 * k < m; ++k) {
        double *const p = a.data() + 2 * k, *const q = a.data() + 2 * (m - k);
        const double c = roots[2 * k], s = roots[2 * k + 1];
        const double e_re = (p[0] + q[0]) / 2, e_im = (p[1] - q[1]) / 2;
        const double o_re = (p[1] + q[1]) / 2, o_im = (q[0] - p[0]) / 2;
        const double re = c * o_re - s * o_im, im = s * o_re + c * o_im;
        p[0] = e_re + re;
        p[1] = e_im + im;
        q[0] = e_re - re;
        q[1] = im - e_im;
    }
}

/// Z from A: E = (A(k) + conj A(M - k)) / 2, W O = (A(k) - conj A(M - k)) / 2, Z(k) = E + i O and
/// Z(M - k) = conj(E - i O).
void split_halves(std::span<double> a, const double* roots) {
    const std::size_t m = a.size() / 2;
    for (std::size_t k = 1; 2 * k < m; ++k) {
        double *const p = a.data() + 2 * k, *const q = a.data() + 2 * (m - k);
        const double c = roots[2 * k], s = roots[2 * k + 1];
        const double e_re = (p[0] + q[0]) / 2, e_im = (p[1] - q[1]) / 2;
        const double re = (p[0] - q[0]) / 2, im = (p[1] + q[1]) / 2;
        const double o_re = c * re + s * im, o_im = c * im - s * re;
        p[0] = e_re - o_im;
        p[1] = e_im + o_re;
        q[0] = e_re + o_im;
        q[1] = o_re - e_im;
    }
}

/// The packed transform of real_transform by way of complex(z, sign), a transform of half as many
/// points.
template <class Transform>
void transform_by_halves(std::span<double> a, Direction direction, const double* roots,
                         Transform&& complex) {
    const bool forward = direction == Direction::forward;
    if (forward && a.size() > 2) {
        complex(a, 1);
        join_halves(a, roots);
    }
    const double sum = a[0] + a[1], difference = a[0] - a[1];
    a[0] = forward ? sum : sum / 2;
    a[1] = forward ? difference : difference / 2;
    if (!forward && a.size() > 2) {
        split_halves(a, roots);
        complex(a, -1);
    }
}

// --- any length ----------------------------------------------------------------------------------

/// at := cos and sin of 2 pi k / n, 0 <= k < n, to rounding: the angle that is left to the
/// functions is at most pi/4, and all before it is in integers.
void put_root(std::size_t k, std::size_t n, double* at) {
    const std::size_t quarter = 4 * k / n, rest = 4 * k % n; // of a quarter turn, in n-ths
    const bool beyond = 2 * rest > n;
    const double angle = std::numbers::pi / 2 * static_cast<double>(beyond ? n - rest : rest) /
                         static_cast<double>(n);
    double c = std::cos(angle), s = std::sin(angle);
    if (beyond) std::swap(c, s);
    const double x[] = {c, -s, -c, s}, y[] = {s, c, -s, -c};
    at[0] = x[quarter];
    at[1] = y[quarter];
}

/// Values of a table of n rows that the roots of join_halves take, and the points of the complex
/// transform behind it.
std::size_t joining_values(std::size_t n) {
    return n % 2 == 0 ? (n / 2 + 1) / 2 * 2 : 0;
}
std::size_t points_of(std::size_t n) {
    return n % 2 == 0 ? n / 2 : n;
}

/// z := z w or, with sign = -1, z conj(w); complex numbers side by side.
void multiply(std::span<double> z, std::span<const double> w, int sign) {
    for (std::size_t i = 0; i < z.size(); i += 2) {
        const double re = w[i], im = sign * w[i + 1], x = z[i], y = z[i + 1];
        z[i] = x * re - y * im;
        z[i + 1] = x * im + y * re;
    }
}

/// Transforms of n points, not scaled, as a convolution: from 2 j k = j^2 + k^2 - (k - j)^2, with
/// the chirp c(j) = exp(pi i j^2 / n),
///     sum of z(j) exp(2 pi i j k / n) = c(k) sum of z(j) c(j) conj(c(k - j)),
/// which transforms of the next power of 2 from 2 n - 1 on form.   Source: [Bluestein 1970]
class ChirpTransform {
public:
    /// chirp  -  n pairs, which must outlive the object
    explicit ChirpTransform(std::span<const double> chirp)
        : chirp_(chirp), length_(std::bit_ceil(chirp.size() - 1)), roots_(length_ / 2),
          reversal_(reversal_size(length_)), filter_(2 * length_), work_(2 * length_) {
        make_roots(roots_);
        make_reversal(reversal_);
        const double scale = 1 / static_cast<double>(length_); // a power of 2
        for (std::size_t i = 0; i < chirp.size(); i += 2) {
            const std::size_t mirrored = i == 0 ? 0 : 2 * length_ - i;
            filter_[i] = filter_[mirrored] = scale * chirp[i];
            filter_[i + 1] = filter_[mirrored + 1] = -scale * chirp[i + 1];
        }
        complex_transform(filter_, 1, {roots_, reversal_});
    }

    /// The chirp and the filter of the other sign are the conjugates: c(j) = c(-j).
    void operator()(std::span<double> z, int sign) {
        multiply(z, chirp_, sign);
        std::ranges::fill(std::ranges::copy(z, work_.begin()).out, work_.end(), 0.0);
        complex_transform(work_, 1, {roots_, reversal_});
        multiply(work_, filter_, sign);
        complex_transform(work_, -1, {roots_, reversal_});
        std::copy_n(work_.begin(), z.size(), z.begin());
        multiply(z, chirp_, sign);
    }

private:
    std::span<const double> chirp_;
    std::size_t length_;
    std::vector<double> roots_;
    std::vector<std::int32_t> reversal_;
    std::vector<double> filter_, work_;
};

// Even length: the other sign of the exponent, and the order of real_transform. Signs change by a
// subtraction, which leaves a zero without one.
template <class Transform>
void transform_even(std::span<double> packed, std::span<double> work, Direction direction,
                    const double* roots, Transform& transform) {
    const std::size_t n = packed.size();
    if (direction == Direction::forward) {
        std::ranges::copy(packed, work.begin());
        transform_by_halves(work, direction, roots, transform);
        packed[0] = work[0];
        packed[n - 1] = work[1];
        for (std::size_t k = 2; k < n; k += 2) {
            packed[k - 1] = work[k];
            packed[k] = 0 - work[k + 1];
        }
        return;
    }
    work[0] = packed[0];
    work[1] = packed[n - 1];
    for (std::size_t k = 2; k < n; k += 2) {
        work[k] = packed[k - 1];
        work[k + 1] = 0 - packed[k];
    }
    transform_by_halves(work, direction, roots, transform);
    std::ranges::transform(work, packed.begin(), [](double x) { return 2 * x; });
}

// Odd length: all points as complex numbers.
template <class Transform>
void transform_odd(std::span<double> packed, std::span<double> work, Direction direction,
                   Transform& transform) {
    const std::size_t n = packed.size();
    std::ranges::fill(work, 0.0);
    if (direction == Direction::forward) {
        for (std::size_t j = 0; j < n; ++j)
            work[2 * j] = packed[j];
        transform(work, -1);
        packed[0] = work[0];
        std::ranges::copy(work.subspan(2, n - 1), packed.begin() + 1);
        return;
    }
    work[0] = packed[0];
    for (std::size_t k = 2; k < n; k += 2) {
        work[k] = work[2 * n - k] = packed[k - 1];
        work[k + 1] = packed[k];
        work[2 * n - k + 1] = -packed[k];
    }
    transform(work, 1);
    for (std::size_t j = 0; j < n; ++j)
        packed[j] = work[2 * j];
}

template <class Transform>
void transform_columns(std::span<double> a, std::size_t n, Direction direction, const double* roots,
                       Transform transform) {
    std::vector<double> work(n % 2 == 0 ? n : 2 * n);
    for (std::size_t at = 0; at < a.size(); at += n) {
        if (n % 2 == 0) {
            transform_even(a.subspan(at, n), work, direction, roots, transform);
        } else {
            transform_odd(a.subspan(at, n), work, direction, transform);
        }
    }
}

} // namespace

std::size_t reversal_size(std::size_t n) {
    return std::size_t{1} << (std::countr_zero(n) / 2);
}

void make_roots(std::span<double> roots) {
    for (std::size_t k = 0; k < roots.size() / 2; ++k) {
        const double angle =
            std::numbers::pi * static_cast<double>(k) / static_cast<double>(roots.size());
        roots[2 * k] = std::cos(angle);
        roots[2 * k + 1] = std::sin(angle);
    }
}

void make_reversal(std::span<std::int32_t> reversal) {
    reversal[0] = 0;
    for (std::size_t known = 1; known < reversal.size(); known *= 2) {
        const auto next = static_cast<std::int32_t>(reversal.size() / (2 * known));
        for (std::size_t i = 0; i < known; ++i)
            reversal[known + i] = reversal[i] + next;
    }
}

void complex_transform(std::span<double> z, int sign, const Radix2Tables& tables) {
    reverse_order(z, tables.reversal);
    for (std::size_t at = 0; at < z.size(); at += 4)
        butterfly(z.data() + at, z.data() + at + 2, 1, 0);
    const std::size_t root_period = 2 * tables.roots.size(); // N
    for (std::size_t half = 2; 4 * half <= z.size(); half *= 2)
        butterfly_pass(z, half, sign, tables.roots.data(), root_period / (2 * half));
}

void real_transform(std::span<double> a, Direction direction, const Radix2Tables& tables) {
    transform_by_halves(a, direction, tables.roots.data(),
                        [&](std::span<double> z, int sign) { complex_transform(z, sign, tables); });
}

void make_packed_table(std::span<double> table) {
    const std::size_t n = table.size() / 2, joining = joining_values(n);
    for (std::size_t k = 0; k < joining; k += 2)
        put_root(k / 2, n, &table[k]);
    if (std::has_single_bit(n)) return;
    const std::size_t points = points_of(n);
    for (std::size_t j = 0; j < points; ++j)
        put_root(j * j % (2 * points), 2 * points, &table[joining + 2 * j]);
}

void packed_transform(std::span<double> a, std::span<const double> table, Direction direction) {
    const std::size_t n = table.size() / 2, joining = joining_values(n);
    if (n == 1) return;
    if (!std::has_single_bit(n))
        return transform_columns(a, n, direction, table.data(),
                                 ChirpTransform(table.subspan(joining, 2 * points_of(n))));
    std::vector<std::int32_t> reversal(reversal_size(points_of(n)));
    make_reversal(reversal);
    const Radix2Tables tables{table.first(joining), reversal};
    transform_columns(a, n, direction, table.data(),
                      [&](std::span<double> z, int sign) { complex_transform(z, sign, tables); });
}

} // namespace quelor
