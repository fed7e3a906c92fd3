// Command hyd_analysis_response_P: response to a given harmonic load or to ground motion.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// real (nmode) or (1,nmode): modal load; with -eq the load of a unit ground acceleration on the
/// structural mass. User array.
inline constexpr std::string_view hyd_Peiwt = "hyd_Peiwt";

/// Effective load of a ground acceleration on a structure of unit modal masses. The structural mass
/// moves with the ground, P = psi^T Ms r; the fluid resists the total motion, so that its mass and
/// damping act on that of the ground too:
///     load = -(I + A) P + (i / omega) B P
/// A, B  in  (nmode,nmode) added mass and damping;  P  in  nmode;  load  out  nmode
/// Source: [Clough 1975]
void ground_motion_load(double omega, Matrix<const double> A, Matrix<const double> B,
                        std::span<const double> P, std::span<Complex8> load);

std::span<const Command> hyd_response_P_rows();

} // namespace quelor
