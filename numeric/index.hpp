// From the numbers of formulas and arrays, which count from 1 and are `int`, to those of the
// standard library, which count from 0 and have no sign.
#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>

namespace quelor {

/// Position in a span of entry i, i = 1, 2, ...
template <std::integral I> constexpr std::size_t nth(I i) {
    assert(i >= 1);
    return static_cast<std::size_t>(i - 1);
}

/// A count that is not negative as the size of a container.
template <std::integral I> constexpr std::size_t as_size(I n) {
    assert(n >= 0);
    return static_cast<std::size_t>(n);
}

} // namespace quelor
