// Look-ups of arrays without which a command cannot go on: an absent, mistyped or misshapen array
// is named on both units and the program takes the fatal path.
#pragma once

#include "kernel/dbfgen.hpp"

namespace quelor {

/// The message on both units, then the fatal path.
[[noreturn]] void shutdown_with(std::string_view message);

inline constexpr int any_size = -1;

/// The array `name` of the given type and dimensions (any_size: any); dims beyond those given count
/// as 1 when absent.
ArrayRef require_array(std::string_view name, TypeCode type, std::initializer_list<int> dims);
std::int32_t require_int(std::string_view name);
double require_real(std::string_view name);

template <class T>
Matrix<const T> require_matrix(std::string_view name, int rows = any_size, int cols = any_size) {
    return as_matrix<const T>(require_array(name, type_code<T>, {rows, cols}));
}
template <class T> std::span<const T> require_vector(std::string_view name, int n = any_size) {
    return as_span<const T>(require_array(name, type_code<T>, {n, 1}));
}

} // namespace quelor
