// Exponential integrals of real argument.
#pragma once

namespace quelor {

/// mode 1  Ei(x) = PV int_-inf^x exp(t)/t dt
/// mode 2  E1(x) = -Ei(-x)
/// mode 3  exp(-x) Ei(x), for every x
/// Relative error below 1e-14, close to the zero of Ei at 0.3725 too. x = 0 gives -1.79e308 (mode
/// 2: 1.79e308); in mode 1 an x above 716.35 gives 1.79e308; E1 of a large x is 0.
double expi(double x, int mode);

} // namespace quelor
