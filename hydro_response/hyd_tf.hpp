// Command hyd_tf: transfer functions of any linear combination of the modes.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// real (ncomp,nmode): response of each component in each mode; user array, default of argument 1.
inline constexpr std::string_view hyd_modemat = "hyd_modemat";
/// complex (nfreq,nbeta,ncomp): transfer functions; default of argument 2.
inline constexpr std::string_view hyd_tf = "hyd_tf";

/// tf(f,b,c) = sum over m of modemat(c,m) gencor(m,f,b), m rising.
void transfer_functions(Matrix<const double> modemat, Array3<const Complex8> gencor,
                        Array3<Complex8> tf);

enum class TableFile { opened, failed, not_named };
/// Opens the text file of a table of results: " ext=" names its extension behind the project's
/// name, or else " file=" the file, or else the default does, if there is one. A failure is
/// reported.
TableFile open_table_file(int unit, std::string_view default_extension = {});

std::span<const Command> hyd_tf_rows();

} // namespace quelor
