// Small numerical tools.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `gauss_int`, `gauss_pts`, `tri_intpts`, `poly`, `fortran_kind`
std::span<const Command> numerics_rows();

} // namespace quelor
