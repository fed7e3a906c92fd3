// Fourier transforms of arrays.
#pragma once

#include "kernel/command.hpp"

#include <string_view>

namespace quelor {

/// real (2 N + 15): tables of the default transform of N rows, then N, kept for the next one.
inline constexpr std::string_view fft_wsave = "$fft_wsave";
/// integer (sqrt N + 2): the N for which `$fft_w` is made, a number not used, bit reversal.
inline constexpr std::string_view fft_ip = "$fft_ip";
/// real (N/2): cosines and sines of the transforms by -ooura.
inline constexpr std::string_view fft_w = "$fft_w";

/// `fft`, `fft_helper`
std::span<const Command> fft_rows();

} // namespace quelor
