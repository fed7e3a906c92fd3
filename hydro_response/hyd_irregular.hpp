// Command hyd_irregular: short-term extreme responses in irregular seas.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// 3.72 times the root of the integral of |tf|^2 S by the trapezoidal rule: the most probable
/// maximum of a thousand amplitudes.
/// tf      in   transfer function at the n frequencies;  s  in  spectrum there
/// domega  in   n - 1 steps;  work  out  n values
double extreme_response(std::span<const Complex8> tf, std::span<const double> s,
                        std::span<const double> domega, std::span<double> work);

std::span<const Command> hyd_irregular_rows();

} // namespace quelor
