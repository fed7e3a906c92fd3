// Tests for numbers that are neither infinite nor undefined.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <ranges>

namespace quelor {

inline bool is_finite(double x) {
    return std::isfinite(x);
}
template <class T> bool is_finite(const std::complex<T>& z) {
    return std::isfinite(z.real()) && std::isfinite(z.imag());
}

/// Position of the first number of a range that is not finite; its length when all are.
template <std::ranges::range R> std::size_t first_not_finite(const R& values) {
    std::size_t at = 0;
    for (const auto& x : values) {
        if (!is_finite(x)) break;
        ++at;
    }
    return at;
}
/// True when every number of a range is finite.
template <std::ranges::range R> bool all_finite(const R& values) {
    for (const auto& x : values)
        if (!is_finite(x)) return false;
    return true;
}

} // namespace quelor
