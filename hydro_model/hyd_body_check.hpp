// Command hyd_body_check: does the mesh of a body fit its symmetry, and what does it displace.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_body_check_rows();

} // namespace quelor
