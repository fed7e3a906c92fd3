// Printed form of a matrix: blocks of columns under a heading, rows with a number now and then.
#pragma once

#include "kernel/types.hpp"

namespace quelor {

/// The matrix as `print` shows it: 6 columns in a block, in e12.4, every fifth row numbered, a
/// blank line behind each block.
void write_matrix(int unit, Matrix<const double> matrix);

} // namespace quelor
