// Exponential integrals by their series and their continued fraction.
#include "green/expi.hpp"

#include <cmath>
#include <limits>
#include <numbers>

namespace quelor {

namespace {

constexpr double largest = std::numeric_limits<double>::max();

/// sum of x^k/(k k!), k >= 1, for |x| <= 40.
double power_sum(double x) {
    double sum = 0.0, term = 1.0;
    for (int k = 1; k < 200; ++k) {
        term *= x / k;
        sum += term / k;
        if (std::abs(term) < 1e-18 * std::abs(sum)) break;
    }
    return sum;
}

/// Ei close to its zero x0, where the series cancels: the integral of exp(t)/t from x0. With
/// t = x0 + d the integrand is a power series, a(k) = (exp(x0)/k! - a(k-1))/x0.
double near_zero(double x) {
    constexpr double x0 = 0.3725074107813666,
                     x0_low = 1.3140183414386028e-17; // Ei(x0 + x0_low) = 0
    const double d = (x - x0) - x0_low;
    double exp_term = std::exp(x0), a = exp_term / x0, power = d, sum = a * d;
    for (int k = 1; k < 40; ++k) {
        exp_term /= k;
        a = (exp_term - a) / x0;
        power *= d;
        sum += a * power / (k + 1);
    }
    return sum;
}

/// exp(x) E1(x), x >= 1: 1/(x + 1 - 1/(x + 3 - 4/(x + 5 - ...))) [Abramowitz 1964, 5.1.22], from
/// the front.
double scaled_e1_fraction(double x) {
    double b = x + 1.0, c = 1e300, d = 1.0 / b, value = d;
    for (int k = 1; k < 500; ++k) {
        const double a = -1.0 * k * k;
        b += 2.0;
        d = 1.0 / (a * d + b);
        c = b + a / c;
        value *= c * d;
        if (std::abs(c * d - 1.0) < 1e-16) break;
    }
    return value;
}

double scaled_e1(double x) { // exp(x) E1(x), x > 0
    if (x >= 1.0) return scaled_e1_fraction(x);
    return std::exp(x) * (-std::numbers::egamma - std::log(x) - power_sum(-x));
}

/// exp(-x) Ei(x) = sum k!/x^(k+1), x > 40: the terms fall to exp(-x).
double scaled_asymptotic(double x) {
    double sum = 0.0, term = 1.0 / x;
    for (int k = 1; std::abs(term) > 1e-18 * sum && k <= 40; ++k) {
        sum += term;
        term *= k / x;
    }
    return sum;
}

double ei_to_40(double x) { // 0 < x <= 40
    if (std::abs(x - 0.3725) < 0.037) return near_zero(x);
    return std::numbers::egamma + std::log(x) + power_sum(x);
}

double scaled_ei(double x) { // exp(-x) Ei(x)
    if (x < 0.0) return -scaled_e1(-x);
    return x > 40.0 ? scaled_asymptotic(x) : std::exp(-x) * ei_to_40(x);
}

double ei(double x) {
    if (x > 716.35) return largest;
    if (x > 0.0 && x <= 40.0) return ei_to_40(x);
    // exp(x) itself is out of range above 709 where Ei is not yet.
    return std::exp(0.5 * x) * scaled_ei(x) * std::exp(0.5 * x);
}

} // namespace

double expi(double x, int mode) {
    if (x == 0.0) return mode == 2 ? largest : -largest;
    if (mode == 2) return -ei(-x);
    return mode == 3 ? scaled_ei(x) : ei(x);
}

} // namespace quelor
