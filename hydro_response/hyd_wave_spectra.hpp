// Commands hyd_wave_spectra and phyd_wave_spectra: the list of wave spectra and its statistics.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// real (6,nspectra): a spectrum a column, type code and parameters (wave_spectra.hpp); a column of
/// zeros was not entered. Written by `hyd_wave_spectra`.
inline constexpr std::string_view hyd_wave_spectra = ".hyd_wave_spectra";

/// The array, or none after a message: `missing`, or one on its type or shape.
Matrix<const double> find_wave_spectra(std::string_view missing);

/// Spectrum of column i at omega into s; a column of unknown type leaves s as it is. Its type. The
/// types that need gravity take the fatal path when `.hyd_grav` is not above 0.
int evaluate_wave_spectrum(Matrix<const double> spectra, int i, std::span<const double> omega,
                           std::span<double> s);

/// Whether `.hyd_freq` rises or falls throughout; a message when it does not.
bool check_frequency_order(std::span<const double> omega);

std::span<const Command> hyd_wave_spectra_rows();

} // namespace quelor
