// The commands that compute on whole matrices, and what their files share.
#pragma once

#include "kernel/command.hpp"
#include "kernel/utilities.hpp"

#include <type_traits>

namespace quelor {

/// `add`, `sub`, `subcol`, `scale`, `mult_elem`
std::span<const Command> algebra_elements_rows();
/// `sumcol`, `norm`, `max`, `min`
std::span<const Command> algebra_columns_rows();
/// `mult`, `tmult`, `mult_col`, `diag_mult`
std::span<const Command> algebra_products_rows();
/// `invert`, `gauss`
std::span<const Command> algebra_solve_rows();

/// The array named by an argument of the command line; an absent one gets the not-found line. The
/// `_2d` form warns of more than two dimensions, of which the first two are then seen.
ArrayRef find_argument(int n);
ArrayRef find_argument_2d(int n);
/// The same for two arguments; false when one is absent.
struct ArrayPair {
    ArrayRef a, b;
    explicit operator bool() const { return a && b; }
};
ArrayPair find_arguments(int i, int k);
ArrayPair find_arguments_2d(int i, int k);

bool same_dims(const ArrayRef& a, const ArrayRef& b);
/// Integer, real or complex(8).
bool is_numeric(const ArrayRef& array);

/// Arithmetic of the three types: integers wrap around at 32 bits, complex products and quotients
/// are formed from their parts.
std::int32_t plus(std::int32_t x, std::int32_t y);
std::int32_t minus(std::int32_t x, std::int32_t y);
std::int32_t times(std::int32_t x, std::int32_t y);
/// Truncated; y is not 0.
std::int32_t over(std::int32_t x, std::int32_t y);
inline double plus(double x, double y) {
    return x + y;
}
inline double minus(double x, double y) {
    return x - y;
}
inline double times(double x, double y) {
    return x * y;
}
inline double over(double x, double y) {
    return x / y;
}
inline Complex8 plus(Complex8 x, Complex8 y) {
    return x + y;
}
inline Complex8 minus(Complex8 x, Complex8 y) {
    return x - y;
}
inline Complex8 times(Complex8 x, Complex8 y) {
    return {x.real() * y.real() - x.imag() * y.imag(), x.real() * y.imag() + x.imag() * y.real()};
}
Complex8 over(Complex8 x, Complex8 y);

/// Calls f(std::type_identity<T>) with the element type T of a numeric array.
template <class F> void with_type(std::int32_t type, F f) {
    if (type == type_integer)
        f(std::type_identity<std::int32_t>{});
    else if (type == type_real)
        f(std::type_identity<double>{});
    else if (type == type_complex8)
        f(std::type_identity<Complex8>{});
}

/// Name of results until they are placed.
inline constexpr std::string_view algebra_work = "$algebra";

} // namespace quelor
