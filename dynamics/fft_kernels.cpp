// Fourier transforms: the packed real transform by FFTW, those of a power of 2 by radix-2 passes.
#include "dynamics/fft_kernels.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fftw3.h>
#include <numbers>
#include <utility>

namespace quelor {

namespace {

// The library orders a transform as re(0), re(1), ..., im(2), im(1).

void pack(std::span<const double> halves, std::span<double> packed) {
    const std::size_t n = packed.size();
    packed[0] = halves[0];
    for (std::size_t k = 1; 2 * k < n; ++k) {
        packed[2 * k - 1] = halves[k];
        packed[2 * k] = halves[n - k];
    }
    if (n % 2 == 0) packed[n - 1] = halves[n / 2];
}

void unpack(std::span<const double> packed, std::span<double> halves) {
    const std::size_t n = packed.size();
    halves[0] = packed[0];
    for (std::size_t k = 1; 2 * k < n; ++k) {
        halves[k] = packed[2 * k - 1];
        halves[n - k] = packed[2 * k];
    }
    if (n % 2 == 0) halves[n / 2] = packed[n - 1];
}

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

} // namespace

void packed_transform(Matrix<double> a, std::span<double> work, Direction direction) {
    assert(work.size() == as_size(a.rows));
    const bool forward = direction == Direction::forward;
    // Estimated plans do not depend on the load of the machine, so neither do the results.
    fftw_plan_s* const plan = fftw_plan_r2r_1d(a.rows, work.data(), work.data(),
                                               forward ? FFTW_R2HC : FFTW_HC2R, FFTW_ESTIMATE);
    for (int j = 1; j <= a.cols; ++j) {
        if (forward) {
            std::ranges::copy(a.col(j), work.begin());
        } else {
            unpack(a.col(j), work);
        }
        fftw_execute(plan);
        if (forward) {
            pack(work, a.col(j));
        } else {
            std::ranges::copy(work, a.col(j).begin());
        }
    }
    fftw_destroy_plan(plan);
}

bool is_power_of_2(std::int64_t n) {
    return n > 0 && std::has_single_bit(static_cast<std::uint64_t>(n));
}

int reversal_size(std::int64_t n) {
    return 1 << (std::countr_zero(static_cast<std::uint64_t>(n)) / 2);
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
    const bool forward = direction == Direction::forward;
    if (forward && a.size() > 2) {
        complex_transform(a, 1, tables);
        join_halves(a, tables.roots.data());
    }
    const double sum = a[0] + a[1], difference = a[0] - a[1];
    a[0] = forward ? sum : sum / 2;
    a[1] = forward ? difference : difference / 2;
    if (!forward && a.size() > 2) {
        split_halves(a, tables.roots.data());
        complex_transform(a, -1, tables);
    }
}

} // namespace quelor
