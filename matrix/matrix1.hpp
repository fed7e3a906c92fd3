// The commands that put data into the database: from records, from a parameter, by rule, or by
// converting an array.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `input`, `inputi`, `inputc`, `inputch`, `input3d`, `input3di`, `input3dc`, `seti`, `setr`,
/// `setch`
std::span<const Command> matrix1_input_rows();
/// `zero`, `zeroi`, `zeroc`, `ident`, `identi`, `identc`, `series`, `series2d`
std::span<const Command> matrix1_generate_rows();
/// `to_int`, `to_real`, `to_real16`, `to_complex`, `to_complex2`, `to_vector`, `get_dim`,
/// `dim_reduce`
std::span<const Command> matrix1_convert_rows();

} // namespace quelor
