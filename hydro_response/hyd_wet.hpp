// Command hyd_wet: estimated natural frequencies and modes of the structure in water.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// real (nmode) and (nmode,nmode): frequencies, rad/s, and modes, a column each, of the last wave
/// frequency that was solved; unit modal mass with respect to the total mass.
inline constexpr std::string_view hyd_wet_freq = ".hyd_wet_freq";
inline constexpr std::string_view hyd_wet_modes = ".hyd_wet_modes";
/// real (nconv) and (nmode,nconv): those of all wave frequencies that met the limit of error, in
/// order of finding; absent when there are none.
inline constexpr std::string_view hyd_wet_freq_cumulate = ".hyd_wet_freq_cumulate";
inline constexpr std::string_view hyd_wet_modes_cumulate = ".hyd_wet_modes_cumulate";

/// The line of one wave frequency on a unit, and on both.
void write_wet_frequency_line(int unit, int index, double omega);
void write_wet_frequency_line(int index, double omega);

std::span<const Command> hyd_wet_rows();

} // namespace quelor
