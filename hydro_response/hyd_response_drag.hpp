// Command hyd_analysis_response_drag: response with linearised drag on the structure, one heading
// at a time.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_response_drag_rows();

} // namespace quelor
