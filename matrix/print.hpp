// The commands that show an array, `print`, `printf`, `printi` and `xprint`, and the printed form
// of a matrix in other files.
#pragma once

#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"

namespace quelor {

/// The matrix as `print` shows it: 6 columns in a block, in e12.4, every fifth row numbered, a
/// blank line behind each block.
void write_matrix(int unit, Matrix<const double> matrix);

/// Tables that an array is printed in: one for a matrix and for more than four dimensions.
std::int64_t table_count(const ArrayRef& array);

std::span<const Command> print_rows();

} // namespace quelor
