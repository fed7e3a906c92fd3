// Services on profile matrices in the store: factorisation and solution by array names, and the
// messages of a factorisation.
#pragma once

#include "numeric/profile.hpp"

#include <string_view>

namespace quelor {

/// Warns of lost digits from this number on unless the user gives another.
inline constexpr int default_digits = 7;

/// profile_factor with its messages on both units: lost digits, and the zero pivot that ends the
/// program by the fatal path. Complex matrices are not tested for lost digits.
void factor_profile(std::span<double> a, std::span<const std::int32_t> loc, int digits);
void factor_profile(std::span<Complex8> a, std::span<const std::int32_t> loc, int digits);

/// Factors the real profile matrix `a` with the locations `loc`, both names of arrays, in place
/// (op 0), or solves for b (n, any number of columns) with the factors: 1 both halves, 2 forward
/// only, 3 backward only. False after a message: an array is absent, or does not fit the others.
bool profile_op(std::string_view a, std::string_view loc, Matrix<double> b, int op, int digits);

} // namespace quelor
