// Command hyd_modal_pressure: pressures of the waves and of the motion in each mode.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

std::span<const Command> hyd_modal_pressure_rows();

} // namespace quelor
