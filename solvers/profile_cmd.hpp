// The commands on profile matrices.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `psolve`, `psolve16`, `pmult`, `ptoful`, `ftopro`
std::span<const Command> profile_rows();

} // namespace quelor
