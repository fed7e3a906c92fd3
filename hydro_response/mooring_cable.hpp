// `hyd_mooring_line`, stiffness of mooring lines by catenaries (slot 37 of the element table, which
// holds the word only: the lines are no part of the finite-element model).
#pragma once

#include "fem/elemutil.hpp"

namespace quelor {

/// real (3, 2n): anchor and end of line i in columns 2i-1 and 2i, (x, 0, z). Written by
/// `hyd_mooring_line`.
inline constexpr std::string_view hyd_mooring_linexyz = ".hyd_mooring_linexyz";

void hyd_mooring_line_element(Request request);
std::string_view hyd_mooring_line_help();
std::string_view phyd_mooring_line_help();

} // namespace quelor
