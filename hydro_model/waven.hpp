// Dispersion relation of linear water waves in uniform depth. A numeric kernel.
#pragma once

namespace quelor {

struct WaveNumber {
    double k;       ///< real wave number, 1/length
    double knu;     ///< omega^2 / grav, the wave number in deep water
    bool converged; ///< false: k is the last iterate
};

/// The real root k of  k tanh(k depth) = knu,  knu = omega^2 / grav, by Newton's iteration from
/// k = knu, to a relative step of 1e-12.
/// omega  in  wave frequency, rad/s;  depth  in  water depth; not above 0 means deep water, k = knu
/// grav   in  acceleration of gravity, length/s^2
/// Source: [Newman 1977, sec. 6.2]
WaveNumber waven(double omega, double depth, double grav);

} // namespace quelor
