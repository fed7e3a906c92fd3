// Type codes of the array store and the views through which routines see array data.
#pragma once

#include "numeric/index.hpp"

#include <cassert>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace quelor {

/// Element types of the array store; the numbers are part of the database file.
enum TypeCode : std::int32_t {
    type_void = 0,
    type_character = 1,
    type_pointer = 3,
    type_integer = 4,
    type_unnamed = 7,
    type_real = 8,
    type_real16 = 9,
    type_complex4 = 15, ///< pairs of 32-bit reals, the panel equations only
    type_complex8 = 16  ///< pairs of 64-bit reals, every other complex array
};

using Complex4 = std::complex<float>;
using Complex8 = std::complex<double>;

/// Type code of an element type: type_code<double> is 8.
template <class T> inline constexpr TypeCode type_code = type_void;
template <> inline constexpr TypeCode type_code<char> = type_character;
template <> inline constexpr TypeCode type_code<std::int32_t> = type_integer;
template <> inline constexpr TypeCode type_code<double> = type_real;
template <> inline constexpr TypeCode type_code<long double> = type_real16;
template <> inline constexpr TypeCode type_code<Complex4> = type_complex4;
template <> inline constexpr TypeCode type_code<Complex8> = type_complex8;

/// Column-major view of a block of rows x cols; 1-based with round brackets; owns nothing.
template <class T> struct Matrix {
    T* data = nullptr;
    int rows = 0, cols = 0;

    T& operator()(int i, int j = 1) const {
        assert(1 <= i && i <= rows && 1 <= j && j <= cols);
        return data[(i - 1) + std::ptrdiff_t{j - 1} * rows];
    }
    std::span<T> col(int j) const { return {data + std::ptrdiff_t{j - 1} * rows, as_size(rows)}; }
    std::span<T> all() const { return {data, as_size(rows) * as_size(cols)}; }
    explicit operator bool() const { return data != nullptr; }
    operator Matrix<const T>() const requires(!std::is_const_v<T>) { return {data, rows, cols}; }
};

/// View of a three-dimensional array, third index outermost.
template <class T> struct Array3 {
    T* data = nullptr;
    int n1 = 0, n2 = 0, n3 = 0;

    T& operator()(int i, int j, int k) const {
        assert(1 <= i && i <= n1 && 1 <= j && j <= n2 && 1 <= k && k <= n3);
        return data[(i - 1) + n1 * (std::ptrdiff_t{j - 1} + std::ptrdiff_t{n2} * (k - 1))];
    }
    Matrix<T> slice(int k) const { return {&(*this)(1, 1, k), n1, n2}; }
    explicit operator bool() const { return data != nullptr; }
    operator Array3<const T>() const requires(!std::is_const_v<T>) { return {data, n1, n2, n3}; }
};

} // namespace quelor
