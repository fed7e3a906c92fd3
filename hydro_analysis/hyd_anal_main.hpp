// Command hyd_analysis: added mass, damping and exciting forces of a panelled structure.
#pragma once

#include "kernel/command.hpp"

#include <string_view>

namespace quelor {

/// integer scalar: selector of the Green function; 0 is the only value in use.
inline constexpr std::string_view grnfun = ".grnfun";
/// real scalar: tolerance of the iterative panel solver; not above 0 selects the direct one.
inline constexpr std::string_view hyd_iter_tol = ".hyd_iter_tol";
/// complex (np, 9 or more): work space of the iterative solver; made by the user.
inline constexpr std::string_view hyd_iter_work = ".hyd_iter_work";

std::span<const Command> hyd_analysis_rows();

} // namespace quelor
