#!/usr/bin/env python3
"""Makes the fitted tables of green/bessel_k.hpp and green/vecmath_short.hpp.

bessel_k: exp(x) sqrt(x) K0(x) and the same of K1 for x >= start, as a Chebyshev expansion in
v = 2 start/x - 1, -1 < v <= 1, cut at the given degree and rewritten in powers of v.  Each table is
printed with its largest relative error on a fine grid.  vecmath_short: exp, sin and cos likewise.
About a minute.  Needs mpmath.
"""
from mpmath import (besselk, chebyfit, chebyt, chop, cos, exp, log, mp, mpf, pi, polyval, sin, sqrt,
                    taylor)

mp.dps = 40
NODES = 48
# Degrees so that the error times exp(-start) stays near 1e-10: the terms of the series that use a
# later start are smaller by that factor.
TABLES = [("0.75", 16), ("2.25", 10), ("3.75", 8), ("5.25", 6), ("6.75", 5), ("9.75", 3), ("12.75", 2)]


def scaled(order, x):
    return besselk(order, x) * exp(x) * sqrt(x)


def powers(order, start, degree):
    """Coefficients in powers of v, the constant first."""
    angles = [pi * (k + mpf(1) / 2) / NODES for k in range(NODES)]
    values = [scaled(order, 2 * start / (cos(a) + 1)) for a in angles]
    result = [mpf(0)] * (degree + 1)
    for n in range(degree + 1):
        c = sum(f * cos(n * a) for f, a in zip(values, angles)) * (2 if n else 1) / NODES
        for power, t in enumerate(taylor(lambda v: chebyt(n, v), 0, n)):
            result[power] += c * chop(t)
    return result


def largest_error(order, start, coefficients):
    worst = 0
    for k in range(150):
        v = cos(pi * (k + mpf(1) / 2) / 150)
        exact = scaled(order, 2 * start / (v + 1))
        worst = max(worst, abs(polyval(coefficients[::-1], v) / exact - 1))
    return worst


for number, (text, degree) in enumerate(TABLES, 1):
    tables = [powers(order, mpf(text), degree) for order in (0, 1)]
    errors = [largest_error(order, mpf(text), tables[order]) for order in (0, 1)]
    print(f"/// Largest relative errors {float(errors[0]):.1e} (K0) and {float(errors[1]):.1e} (K1).")
    print(f"inline constexpr BesselKTable<{degree}> bessel_k_{number} = {{")
    print(f"    {text},")
    for table in tables:
        print("    {" + ", ".join(repr(float(c)) for c in table) + "},")
    print("};")

SMALLEST = mpf(10) ** -30
for name, function, low, high, degree in [
    ("exp_short", exp, -log(2) / 2, log(2) / 2, 7),
    ("sin_quarter", lambda z: sin(pi / 2 * sqrt(z)) / sqrt(z), SMALLEST, mpf(1) / 4, 4),
    ("cos_quarter", lambda z: cos(pi / 2 * sqrt(z)), mpf(0), mpf(1) / 4, 4),
]:
    powers_down, error = chebyfit(function, [low, high], degree + 1, error=True)
    print(f"/// Largest error {float(error):.1e}.")
    print(f"inline constexpr double {name}[] = {{")
    print("    " + ", ".join(repr(float(c)) for c in powers_down[::-1]) + "};")
