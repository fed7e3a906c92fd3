// Points and weights of quadrature on an interval and on a triangle.
#pragma once

#include <span>
#include <vector>

namespace quelor {

inline constexpr int gauss_order_limit = 10;

/// Gauss-Legendre quadrature on -1 to 1, exact for polynomials of degree 2 n - 1.
/// x, w  out  n points, ascending, and weights, whose sum is 2; each correct to rounding
/// Newton's iteration on the Legendre polynomial.   Source: [Abramowitz 1964, 25.4.29, 22.7.10]
void gauss_legendre(std::span<double> x, std::span<double> w);

/// A point in area coordinates l1 + l2 + l3 = 1; weights are parts of the area.
struct TrianglePoint {
    double l1, l2, l3, weight;
};

/// Rule of 1, 3, 4, 7, 9 or 12 points, exact for polynomials of degree 1, 2, 3, 5, 5, 6; empty for
/// another number. The weights sum to 1; that of the centroid in the rule of 4 points is negative.
std::vector<TrianglePoint> triangle_rule(int n);

} // namespace quelor
