// Linear static solution.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// integer: what is being solved, for elements that ask: 0 static. Written by the solvers.
inline constexpr std::string_view analysis_type = ".analysis_type";
/// real (patterns, cases): factors of the load patterns in each case. An array of the user.
inline constexpr std::string_view load_comb = "load_comb";

std::span<const Command> lsolve_rows();

} // namespace quelor
