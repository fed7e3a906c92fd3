// Roots of the dispersion relation of water of finite depth, with the weights that they have in the
// eigenfunction series of the Green function.
#pragma once

#include <array>

namespace quelor {

/// Evanescent modes kept: enough for 1e-8 at a distance of half the depth.
inline constexpr int evanescent_modes = 14;

/// Wave numbers in units of omega^2/g, so that k0 tanh(k0 H) = 1 and k(m) tan(k(m) H) = -1.
struct WaveRoots {
    double x0 = 0;                                 ///< k0 H, the root of x tanh x = H
    double k0 = 0, c0 = 0;                         ///< propagating wave and its weight, c0 < 0
    std::array<double, evanescent_modes> k{}, c{}; ///< mode m stands at [m - 1]
};

enum class RootStatus { found, no_wave_number, no_evanescent_mode };

/// All roots and weights for the depth H > 0, depth times omega^2/g, to 1e-13 relative.
/// The weights are c0 = -(k0 + 1)(1 - E)/((1 - E)^2 + 4 H E)/2, E = exp(-2 x0), and
/// c(m) = 4 (k(m)^2 + 1)/(H (k(m)^2 + 1) - 1).   Source: [John 1950], [Wehausen 1960, eq. 13.19]
/// Returns what failed if an iteration takes more than 100 rounds; roots is then incomplete.
RootStatus eigwno(double H, WaveRoots& roots);

} // namespace quelor
