// The commands that move elements between arrays without computing on them, and the interpolation
// of a table.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `cp`, `cpdg`, `put`, `putdg`, `array3d_slice`, `array3d_unslice`
std::span<const Command> matrix2_copy_rows();
/// `trans`, `joinh`, `joinv`, `split`, `unsplit`, `wrap`, `unwrap`
std::span<const Command> matrix2_shape_rows();
/// `extract`, `sort`, `interpolate`
std::span<const Command> matrix2_select_rows();

} // namespace quelor
