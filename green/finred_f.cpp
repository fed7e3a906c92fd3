// Assembly of the Green function at one point. The real part is collected as a sum of a function of
// (R, B) and one of (R, D), B = 2 h - d1 - d2, D = d1 - d2, as in the batch kernel.
#include "green/finred_f.hpp"

#include <cmath>

#include "green/fineigseries.hpp"

namespace quelor {

namespace {

using finite_core::add_rankine_b;
using finite_core::add_rankine_d;
using finite_core::WaveAmplitude;

constexpr double coincident = 1e-8; // distance below which 1/r has no value

struct Point {
    double R, d1, d2, B, D, Z;
};

/// Adds sign times a function of (R, Z); dB = -dZ.
void add_surface_terms(double sign, const InfredTerms& f, SeparatedField& sum) {
    sum.v += sign * f.F;
    sum.r += sign * f.Fr;
    sum.b -= sign * f.Fz;
    sum.bb += sign * f.Fzz;
    sum.br -= sign * f.Frz;
}

/// The derivatives in d1 = (D + Z)/2 and d2 from those in B and D.
void set_real_parts(const SeparatedField& s, GreenValue& f) {
    f = {s.v, s.r, s.d - s.b, s.dr - s.br, s.bb + s.dd, s.bb - s.dd, -s.d - s.b, -s.dr - s.br};
}

/// Adds the wave of amplitude w: c0 and c1 stand for J0 and J1 times i, with the real Y0 and Y1
/// added where the wave is a term of the real part too.
void add_wave(const WaveAmplitude& w, double k0, Complex8 c0, Complex8 c1, GreenValue& f) {
    f.G += w.a * c0;
    f.G_R -= w.a * k0 * c1;
    f.G_1 += w.a1 * c0;
    f.G_R1 -= w.a1 * k0 * c1;
    f.G_11 += w.a * k0 * k0 * c0;
    f.G_12 += w.a12 * c0;
    f.G_2 += w.a2 * c0;
    f.G_R2 -= w.a2 * k0 * c1;
}

/// Adds 1/r to a field that lacks it; false where r is too small.
bool restore_direct(const Point& p, SeparatedField& sum) {
    if (std::sqrt(p.R * p.R + p.D * p.D) < coincident) return false;
    add_rankine_d<true>(1.0, p.R, p.D, sum);
    return true;
}

/// Adds 1/r2 likewise.
bool restore_bottom(const Point& p, SeparatedField& sum) {
    if (std::sqrt(p.R * p.R + p.B * p.B) < coincident) return false;
    add_rankine_b<true>(1.0, p.R, p.B, 1.0, sum);
    return true;
}

GreenStatus deep_water(const Point& p, SurfaceTerms beside, GreenValue& f) {
    if (p.Z > 1e8) return GreenStatus::out_of_range;
    SeparatedField sum;
    add_surface_terms(1.0, infred_f(p.R, p.Z, beside), sum);
    const bool complete = beside != SurfaceTerms::direct_and_image || restore_direct(p, sum);
    set_real_parts(sum, f);
    const double size = 2.0 * std::numbers::pi * vec_exp(-p.Z);
    const Bessel bessel = finite_core::propagating_bessel(p.R);
    add_wave({-size, size, size, -size}, 1.0, {0.0, bessel.j0}, {0.0, bessel.j1}, f);
    return complete ? GreenStatus::found : GreenStatus::coincident;
}

/// Evanescent modes less the Rankine terms that are to go, plus the logarithms. R >= h/2.
SeparatedField series_part(const Point& p, SurfaceTerms beside, BottomTerm bottom,
                           const DepthCache& cache) {
    SeparatedField sum = fineigseries(p.R, p.B, p.D, cache);
    if (beside != SurfaceTerms::direct_and_image) add_rankine_d<true>(-1.0, p.R, p.D, sum);
    if (!has_image(beside)) add_rankine_b<true>(-1.0, p.R, p.Z, -1.0, sum);
    if (bottom == BottomTerm::removed) add_rankine_b<true>(-1.0, p.R, p.B, 1.0, sum);
    if (beside == SurfaceTerms::log_rho || beside == SurfaceTerms::log_rho_plus_Z) {
        add_surface_terms(1.0, infred_f(p.R, p.Z, beside), sum);
        add_surface_terms(-1.0, infred_f(p.R, p.Z, SurfaceTerms::none), sum);
    }
    return sum;
}

GreenStatus finite_water(const Point& p, SurfaceTerms beside, BottomTerm bottom,
                         const DepthCache& cache, GreenValue& f) {
    const Bessel bessel = finite_core::propagating_bessel(cache.roots.k0 * p.R);
    Complex8 c0{0.0, bessel.j0}, c1{0.0, bessel.j1};
    SeparatedField sum;
    bool complete = true;
    if (p.R >= 0.5 * cache.h) {
        sum = series_part(p, beside, bottom, cache);
        c0 += bessel.y0;
        c1 += bessel.y1;
    } else {
        sum = finite_core::smooth_part<true>(cache, 1.0 / cache.h, p.R, p.d1, p.d2);
        add_surface_terms(1.0, infred_f(p.R, p.Z, beside), sum);
        if (beside == SurfaceTerms::direct_and_image) complete = restore_direct(p, sum);
        if (bottom == BottomTerm::kept) complete = restore_bottom(p, sum) && complete;
    }
    set_real_parts(sum, f);
    add_wave(finite_core::wave_amplitude(p.d1, p.d2, cache), cache.roots.k0, c0, c1, f);
    return complete ? GreenStatus::found : GreenStatus::coincident;
}

} // namespace

GreenStatus finred_f(double R, double d1, double d2, double h, SurfaceTerms beside,
                     BottomTerm bottom, DepthCache& cache, GreenValue& f) {
    f = {};
    const double Z = d1 + d2;
    if (!(R >= 0.0 && R <= 1e8) || !(Z + R >= 1e-8)) return GreenStatus::out_of_range;
    if (h <= 0.0) return deep_water({R, d1, d2, 0.0, d1 - d2, Z}, beside, f);
    if (!(h >= 1e-8 && h <= 1e8) || d1 > h || d2 > h) return GreenStatus::out_of_range;
    if (h != cache.h) cache = prepare_depth(h);
    if (cache.status != RootStatus::found) return GreenStatus::no_roots;
    return finite_water({R, d1, d2, 2.0 * h - Z, d1 - d2, Z}, beside, bottom, cache, f);
}

} // namespace quelor
