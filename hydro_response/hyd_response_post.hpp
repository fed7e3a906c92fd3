// Commands hyd_postresponse and hyd_postresponse_P: displacements, potentials and pressures from
// the generalised coordinates.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_response_post_rows();

} // namespace quelor
