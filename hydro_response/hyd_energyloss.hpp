// Command hyd_energy: the energy balance of a response.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// real (nfreq,5,nbeta): frequency, total energy, fluid + structure, percent fluid, percent
/// structure, for one wave period. Written by `hyd_energy`.
inline constexpr std::string_view hyd_dissipate = ".hyd_dissipate";
/// real (nfreq,nbeta): energy that the radiated wave carries away in a period. Written by
/// `hyd_energy -farfield`.
inline constexpr std::string_view hyd_farfield = ".hyd_farfield";

/// q^H A q of a real matrix, the sum over i of (A q)(i) conj(q(i)): the imaginary part comes from
/// the asymmetry of A alone.
Complex8 complex_form(Matrix<const double> a, std::span<const Complex8> q);
/// Its real part, the sum over i and j of A(i,j) (Re q(i) Re q(j) + Im q(i) Im q(j)).
double real_form(Matrix<const double> a, std::span<const Complex8> q);

std::span<const Command> hyd_energy_rows();

} // namespace quelor
