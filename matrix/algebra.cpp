// What the files of the dense algebra commands share: arguments and arithmetic.
#include "matrix/algebra.hpp"

#include "kernel/gencom.hpp"
#include "numeric/complex_division.hpp"

#include <algorithm>

namespace quelor {

ArrayRef find_argument(int n) {
    const ArrayRef array = find_array(get_arg(n));
    if (!array) not_found(get_arg(n));
    return array;
}
ArrayRef find_argument_2d(int n) {
    const ArrayRef array = find_array_2d(get_arg(n));
    if (!array) not_found(get_arg(n));
    return array;
}

ArrayPair find_arguments(int i, int k) {
    ArrayPair pair{find_argument(i), {}};
    if (pair.a) pair.b = find_argument(k);
    return pair;
}
ArrayPair find_arguments_2d(int i, int k) {
    ArrayPair pair{find_argument_2d(i), {}};
    if (pair.a) pair.b = find_argument_2d(k);
    return pair;
}

bool same_dims(const ArrayRef& a, const ArrayRef& b) {
    const int ndim = std::max(a.ndim(), b.ndim());
    for (int i = 1; i <= ndim; ++i)
        if (a.dim(i) != b.dim(i)) return false;
    return true;
}

bool is_numeric(const ArrayRef& array) {
    return array.is(type_integer) || array.is(type_real) || array.is(type_complex8);
}

std::int32_t plus(std::int32_t x, std::int32_t y) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(x) + static_cast<std::uint32_t>(y));
}
std::int32_t minus(std::int32_t x, std::int32_t y) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(x) - static_cast<std::uint32_t>(y));
}
std::int32_t times(std::int32_t x, std::int32_t y) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(x) * static_cast<std::uint32_t>(y));
}
std::int32_t over(std::int32_t x, std::int32_t y) {
    return static_cast<std::int32_t>(std::int64_t{x} / y);
}
Complex8 over(Complex8 x, Complex8 y) {
    return SmithDivisor(y).divide(x);
}

} // namespace quelor
