// Values and derivatives of polynomials from their terms.
#include "matrix/polynomial.hpp"

#include <cstddef>

namespace quelor {

namespace {

/// x^n for n >= 0 by repeated squaring; 0^0 is 1.
double integer_power(double x, int n) {
    double power = 1;
    for (; n > 0; n /= 2, x *= x) {
        if (n % 2 == 1) power *= x;
    }
    return power;
}

/// The term after this one of a polynomial in d variables.
Exponents next_term(Exponents e, int d) {
    if (d == 3 && e[1] > 0) return {e[0], e[1] - 1, e[2] + 1};
    if (d > 1 && e[0] > 0) return {e[0] - 1, e[1] + e[2] + 1, 0};
    return {e[0] + e[1] + e[2] + 1, 0, 0};
}

} // namespace

std::vector<Exponents> polynomial_terms(int d, int n) {
    std::vector<Exponents> terms;
    Exponents term{};
    for (int k = 0; k < n; ++k, term = next_term(term, d))
        terms.push_back(term);
    return terms;
}

PolynomialValue evaluate_polynomial(std::span<const Exponents> terms, std::span<const double> c,
                                    const std::array<double, 3>& point) {
    PolynomialValue sum;
    for (std::size_t k = 0; k < terms.size(); ++k) {
        std::array<double, 3> power{}, slope{};
        for (std::size_t i = 0; i < 3; ++i) {
            const int e = terms[k][i];
            const double below = integer_power(point[i], e > 0 ? e - 1 : 0);
            power[i] = e > 0 ? below * point[i] : 1;
            slope[i] = e * below;
        }
        sum.value += c[k] * power[0] * power[1] * power[2];
        sum.slope[0] += c[k] * slope[0] * power[1] * power[2];
        sum.slope[1] += c[k] * power[0] * slope[1] * power[2];
        sum.slope[2] += c[k] * power[0] * power[1] * slope[2];
    }
    return sum;
}

} // namespace quelor
