// Polynomials in one, two or three variables.
#pragma once

#include <array>
#include <span>
#include <vector>

namespace quelor {

/// Exponents of x, y and z in one term.
using Exponents = std::array<int, 3>;

/// The first n terms of a polynomial in d variables, by degree and within a degree by descending
/// powers of x, then y: 1, x, x^2 ...; 1, x, y, x^2, x y, y^2 ...; 1, x, y, z, x^2, x y, x z, y^2,
/// y z, z^2 ...
std::vector<Exponents> polynomial_terms(int d, int n);

struct PolynomialValue {
    double value = 0;
    std::array<double, 3> slope{}; ///< derivatives to x, y and z
};

/// Sum of c times term, and its derivatives, at a point.
PolynomialValue evaluate_polynomial(std::span<const Exponents> terms, std::span<const double> c,
                                    const std::array<double, 3>& point);

} // namespace quelor
