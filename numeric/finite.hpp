// Tests for numbers that are neither infinite nor undefined.
#pragma once

#include <cmath>
#include <complex>
#include <ranges>

namespace quelor {

inline bool is_finite(double x) {
    return std::isfinite(x);
}
template <class T> bool is_finite(const std::complex<T>& z) {
    return std::isfinite(z.real()) && std::isfinite(z.imag());
}

/// True when every number of a range is finite.
template <std::ranges::range R> bool all_finite(const R& values) {
    for (const auto& x : values)
        if (!is_finite(x)) return false;
    return true;
}

} // namespace quelor
