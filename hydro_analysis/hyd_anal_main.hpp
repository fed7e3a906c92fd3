// Command hyd_analysis: added mass, damping and exciting forces of a panelled structure.
#pragma once

#include "kernel/command.hpp"

#include <string_view>

namespace quelor {

/// real (nmode,nmode,nfreq): added mass and hydrodynamic damping.
inline constexpr std::string_view hyd_addm = ".hyd_addm";
inline constexpr std::string_view hyd_damp = ".hyd_damp";
/// complex (nmode,nbeta,nfreq): Froude-Krylov and diffraction forces for unit wave amplitude.
inline constexpr std::string_view hyd_fi = ".hyd_fi";
inline constexpr std::string_view hyd_fd = ".hyd_fd";
/// complex (np*ns,nfreq,nbeta): incoming and diffraction potentials of all images of the panels.
inline constexpr std::string_view hyd_potincm = ".hyd_potincm";
inline constexpr std::string_view hyd_potdiff = ".hyd_potdiff";
/// complex (np*ns,nfreq,nmode): radiation potentials for unit modal displacement.
inline constexpr std::string_view hyd_potrad = ".hyd_potrad";
/// integer scalar: selector of the Green function; 0 is the only value in use.
inline constexpr std::string_view grnfun = ".grnfun";
/// real scalar: tolerance of the iterative panel solver; not above 0 selects the direct one.
inline constexpr std::string_view hyd_iter_tol = ".hyd_iter_tol";
/// complex (np, 9 or more): work space of the iterative solver; made by the user.
inline constexpr std::string_view hyd_iter_work = ".hyd_iter_work";

std::span<const Command> hyd_analysis_rows();

} // namespace quelor
