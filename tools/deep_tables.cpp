// Makes green/deep_tables.hpp, the fitted tables of the deep-water Green function and of the
// Bessel and Struve functions. Needs the long double Bessel functions of the GNU C library:
//     c++ -O2 -std=gnu++20 tools/deep_tables.cpp -o deep_tables && ./deep_tables >
//     green/deep_tables.hpp
//
// Every fit is an interpolation at Chebyshev nodes in long double, cut where the coefficients fall
// below the tolerance, turned into powers and rounded to double. The error printed beside a table
// is measured with the rounded table in double arithmetic at points between the nodes.
//
// With V = asinh(Z/R), from t = R sinh v in the integrals over the depth:
//     N = 2 int_0^inf exp(-u)/sqrt(R^2 + (Z - u)^2) du = 2 int_-inf^V exp(R sinh v - Z) dv
//     dN/dR = -(2/R) int_-inf^V exp(R sinh v - Z) sech(v)^2 dv
// whose integrands are entire. The wave term is F = -2 pi Y0(R) exp(-Z) - N.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace {

using Real = long double;
using Vector = std::vector<Real>;
constexpr Real pi = std::numbers::pi_v<Real>;
constexpr int nodes = 36;

struct Value {
    Real value, d_dR;
};

struct GaussRule {
    Vector x, w;
};

GaussRule gauss_legendre(int n) {
    GaussRule rule;
    for (int i = 0; i < n; ++i) {
        Real z = std::cos(pi * (i + 0.75L) / (n + 0.5L)), slope = 1;
        for (int pass = 0; pass < 20; ++pass) {
            Real p = 1, previous = 0;
            for (int j = 0; j < n; ++j) {
                const Real next = ((2 * j + 1) * z * p - j * previous) / (j + 1);
                previous = p;
                p = next;
            }
            slope = n * (z * p - previous) / (z * z - 1);
            z -= p / slope;
        }
        rule.x.push_back(z);
        rule.w.push_back(2 / ((1 - z * z) * slope * slope));
    }
    return rule;
}

// N/2 and -(dN/dR)/2, by Gauss panels in w = V - v that widen away from the end w = 0.
Value half_local_part(Real R, Real Z) {
    static const GaussRule gauss = gauss_legendre(20);
    const Real V = std::asinh(Z / R), length = V - std::asinh(Z / R - 48 / R);
    Value sum{0, 0};
    Real width = std::min(1.0L, 3 / std::hypot(R, Z));
    for (Real a = 0; a < length; width = std::min(1.0L, 1.5L * width)) {
        const Real b = std::min(a + width, length), half = (b - a) / 2;
        for (std::size_t i = 0; i < gauss.x.size(); ++i) {
            const Real w = a + half * (1 + gauss.x[i]);
            const Real part =
                half * gauss.w[i] * std::exp(-2 * R * std::cosh(V - w / 2) * std::sinh(w / 2));
            sum.value += part;
            sum.d_dR += part / (R * std::cosh(V - w) * std::cosh(V - w));
        }
        a = b;
    }
    return sum;
}

Value wave_term(Real R, Real Z) {
    const Value half = half_local_part(R, Z);
    const Real e = std::exp(-Z);
    return {-2 * pi * y0l(R) * e - 2 * half.value, 2 * pi * y1l(R) * e + 2 * half.d_dR};
}

// A(R^2, Z) of F = -2 exp(-Z) (y1/2 + J0 log(rho + Z) + rho A): the sum of P_n/n!, where
// rho P_n is the part of int_0^Z t^n/sqrt(R^2 + t^2) dt free of logarithms.
Real log_form(Real R2, Real Z) {
    Real sum = 1, older = 0, old = 1, factor = 1, power = 1;
    for (int n = 2; n < 140; ++n) {
        factor /= n;
        power *= Z;
        const Real next = (power - (n - 1) * R2 * older) / n;
        sum += next * factor;
        older = old;
        old = next;
    }
    return sum;
}

// Chebyshev coefficients of values at the nodes, the constant term halved.
Vector chebyshev(const Vector& values) {
    const int n = static_cast<int>(values.size());
    Vector c(values.size(), 0);
    for (int k = 0; k < n; ++k) {
        for (int i = 0; i < n; ++i)
            c[k] += values[i] * std::cos(pi * k * (i + 0.5L) / n);
        c[k] *= (k == 0 ? 1.0L : 2.0L) / n;
    }
    return c;
}

// sum c_k T_k(t), t = a + b s, as powers of s.
Vector to_powers(const Vector& c, Real a, Real b) {
    const std::size_t n = c.size();
    Vector sum(n, 0), old(n, 0), current(n, 0);
    old[0] = 1;
    if (n > 1) current = {}, current.resize(n, 0), current[0] = a, current[1] = b;
    for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t i = 0; i < n; ++i)
            sum[i] += c[k] * old[i];
        Vector next(n, 0);
        for (std::size_t i = 0; i < n; ++i)
            next[i] = 2 * (a * current[i] + (i > 0 ? b * current[i - 1] : 0)) - old[i];
        old = current;
        current = next;
    }
    return sum;
}

Real node(int i) {
    return std::cos(pi * (i + 0.5L) / nodes);
}

void print_numbers(const std::vector<double>& values) {
    for (std::size_t i = 0; i < values.size(); ++i)
        std::printf("%s%.16e,", i % 4 == 0 ? "\n        " : " ", values[i]);
}

struct Range {
    Real from, to;
    Real at(Real t) const { return (from + to) / 2 + (to - from) / 2 * t; }
};

// Function of one variable, as powers of the variable itself.
void fit_line(const std::string& name, const std::string& about, Range x, Real tolerance,
              const std::function<Real(Real)>& f, bool inside = false) {
    Vector values;
    for (int i = 0; i < nodes; ++i)
        values.push_back(f(x.at(node(i))));
    Vector c = chebyshev(values);
    std::size_t n = c.size();
    while (n > 1 && std::abs(c[n - 1]) < tolerance / 2)
        --n;
    c.resize(n);
    const Vector powers = to_powers(c, -(x.from + x.to) / (x.to - x.from), 2 / (x.to - x.from));
    const std::vector<double> table(powers.begin(), powers.end());
    Real largest = 0;
    for (int i = 0; i < 1000; ++i) {
        const double at = static_cast<double>(x.at(i / 500.0L - 0.999L));
        double sum = 0;
        for (std::size_t k = n; k-- > 0;)
            sum = sum * at + table[k];
        largest = std::max(largest, std::abs(sum - f(at)));
    }
    std::printf("\n/// %s Largest error %.1Le.\n%s constexpr double %s[] = {", about.c_str(),
                largest, inside ? "static" : "inline", name.c_str());
    print_numbers(table);
    std::printf("\n};\n");
}

using Surface = std::vector<Vector>; // row k: powers of v with u^k

// Rows of Chebyshev coefficients in v for T_k(u), cut at the tolerance; a derivative in u that
// matters with the weight `slope` makes high rows count for more.
Surface cut_fit(const std::vector<Vector>& values, Real tolerance, Real slope) {
    std::vector<Vector> columns;
    for (int j = 0; j < nodes; ++j) {
        Vector column;
        for (int i = 0; i < nodes; ++i)
            column.push_back(values[i][j]);
        columns.push_back(chebyshev(column));
    }
    Surface rows;
    for (int k = 0; k < nodes; ++k) {
        Vector row;
        for (int j = 0; j < nodes; ++j)
            row.push_back(columns[j][k]);
        row = chebyshev(row);
        std::size_t n = row.size();
        while (n > 0 && std::abs(row[n - 1]) * (1 + slope * k * k) < tolerance / 6)
            --n;
        row.resize(n);
        rows.push_back(row);
    }
    while (rows.back().empty())
        rows.pop_back();
    return rows;
}

Surface surface_powers(const Surface& chebyshev_rows) {
    std::size_t width = 1;
    for (const auto& row : chebyshev_rows)
        width = std::max(width, row.size());
    const std::size_t n = chebyshev_rows.size();
    Surface powers(n, Vector(width, 0));
    for (std::size_t j = 0; j < width; ++j) { // u for each T_j(v)
        Vector column(n, 0);
        for (std::size_t k = 0; k < n; ++k)
            if (j < chebyshev_rows[k].size()) column[k] = chebyshev_rows[k][j];
        column = to_powers(column, 0, 1);
        for (std::size_t k = 0; k < n; ++k)
            powers[k][j] = column[k];
    }
    for (auto& row : powers) { // then v; the zero tail of a row stays zero
        while (row.size() > 1 && row.back() == 0)
            row.pop_back();
        row = to_powers(row, 0, 1);
    }
    return powers;
}

double evaluate(const Surface& rows, double u, double v) {
    double sum = 0;
    for (std::size_t k = rows.size(); k-- > 0;) {
        double row = 0;
        for (std::size_t l = rows[k].size(); l-- > 0;)
            row = row * v + static_cast<double>(rows[k][l]);
        sum = sum * u + row;
    }
    return sum;
}

// Function of (x, y): struct of the scaling to u, v in [-1, 1], the row lengths and the powers.
void fit_surface(const std::string& name, const char* about, Range x, Range y, Real tolerance,
                 Real slope, const std::function<Real(Real, Real)>& f) {
    std::vector<Vector> values;
    for (int i = 0; i < nodes; ++i) {
        values.emplace_back();
        for (int j = 0; j < nodes; ++j)
            values.back().push_back(f(x.at(node(i)), y.at(node(j))));
    }
    const Surface rows = surface_powers(cut_fit(values, tolerance, slope));
    Real largest = 0;
    for (int i = 0; i < 40; ++i)
        for (int j = 0; j < 40; ++j) {
            const double u = (2 * i + 1) / 40.0 - 1, v = (2 * j + 1) / 40.0 - 1;
            largest = std::max(largest, std::abs(evaluate(rows, u, v) - f(x.at(u), y.at(v))));
        }
    std::printf("\n/// %s\n/// x in [%.5Lg, %.5Lg], y in [%.5Lg, %.5Lg]; largest error %.1Le.\n",
                about, x.from, x.to, y.from, y.to, largest);
    std::printf("struct %s {\n    static constexpr Scaling x{%.17Lg, %.17Lg}, y{%.17Lg, %.17Lg};\n",
                name.c_str(), -(x.from + x.to) / (x.to - x.from), 2 / (x.to - x.from),
                -(y.from + y.to) / (y.to - y.from), 2 / (y.to - y.from));
    std::printf("    static constexpr int lengths[] = {");
    std::vector<double> numbers;
    for (const auto& row : rows) {
        std::printf("%zu, ", row.size());
        for (const Real c : row)
            numbers.push_back(static_cast<double>(c));
    }
    std::printf("};\n    static constexpr double powers[] = {");
    print_numbers(numbers);
    std::printf("\n    };\n};\n");
}

void bessel_tables() {
    const Range small{0, 16}, far{0, 1.0L / 16};
    const Real euler = 0.577215664901532860606512090082402431L;
    const auto series = [](Real t, int nu, bool psi) { // sum (-t/4)^k/(k! (k+nu)!) [psi terms]
        Real sum = 0, term = 1, harmonic = 0, shifted = nu == 1 ? 1 : 0;
        for (int k = 0; k < 60; ++k) {
            sum += term * (psi ? harmonic + shifted : 1);
            harmonic += 1.0L / (k + 1);
            shifted += 1.0L / (k + 1 + nu);
            term *= -t / 4 / ((k + 1) * (k + 1.0L + nu));
        }
        return sum;
    };
    const auto struve = [](Real t, Real first, Real a, Real b) { // sum of (-t)^k/((a..)(b..))
        Real sum = 0, term = first;
        for (int k = 1; k < 80; ++k) {
            sum += term;
            term *= -t / ((a + 2 * k) * (b + 2 * k));
        }
        return sum;
    };
    fit_line("bessel_j0", "(1 - J0(x))/x^2 in powers of x^2, 0 <= x <= 4.", small, 4e-12L,
             [&](Real t) {
                 Real sum = 0, term = 0.25L;
                 for (int k = 2; k < 60; ++k)
                     sum += term, term *= -t / (4.0L * k * k);
                 return sum;
             });
    fit_line("bessel_j1", "J1(x)/x in powers of x^2, 0 <= x <= 4.", small, 4e-12L,
             [&](Real t) { return series(t, 1, false) / 2; });
    fit_line("neumann_y0", "pi Y0(x) - 2 J0(x) log(x) in powers of x^2, 0 <= x <= 4.", small,
             4e-11L, [&](Real t) {
                 return 2 * (euler - std::log(2.0L)) * series(t, 0, false) - series(t, 0, true);
             });
    fit_line("neumann_y1", "(pi Y1(x) - 2 J1(x) log(x) + 2/x)/x in powers of x^2, 0 <= x <= 4.",
             small, 4e-11L, [&](Real t) {
                 return (euler - std::log(2.0L)) * series(t, 1, false) - series(t, 1, true) / 2;
             });
    fit_line("struve_h0", "pi H0(x)/x in powers of x^2, 0 <= x <= 4.", small, 4e-11L,
             [&](Real t) { return struve(t, 2, 1, 1); });
    fit_line("struve_h1", "pi H1(x)/x^2 in powers of x^2, 0 <= x <= 4.", small, 4e-11L,
             [&](Real t) { return struve(t, 2.0L / 3, 1, 3); });
    const auto modulus = [](Real v, int nu, bool quadrature) {
        const Real x = 1 / std::sqrt(v), chi = x - (2 * nu + 1) * pi / 4;
        const Real j = nu == 0 ? j0l(x) : j1l(x), y = nu == 0 ? y0l(x) : y1l(x);
        const Real a = std::sqrt(pi * x / 2);
        return quadrature ? a * (y * std::cos(chi) - j * std::sin(chi))
                          : a * (j * std::cos(chi) + y * std::sin(chi));
    };
    const auto hankel = [&](const std::string& set, const std::string& where, Range v) {
        std::printf("\n/// The Hankel form, %s, in powers of v = 1/x^2.\nstruct %s {\n",
                    where.c_str(), set.c_str());
        for (const int nu : {0, 1}) {
            const std::string n = std::to_string(nu);
            const Real q = nu == 0 ? -0.125L : 0.375L;
            fit_line(
                "p" + n, "(P" + n + " - 1)/v.", v, 2e-9L,
                [&](Real t) { return (modulus(t, nu, false) - 1) / t; }, true);
            fit_line(
                "q" + n, nu == 0 ? "(x Q0 + 1/8)/v." : "(x Q1 - 3/8)/v.", v, 6e-9L,
                [&](Real t) { return (modulus(t, nu, true) / std::sqrt(t) - q) / t; }, true);
        }
        std::printf("};\n");
    };
    hankel("HankelNear", "3.7 <= x <= 10 (errors below 1e-6 beyond)", {0.01L, 1 / (3.7L * 3.7L)});
    hankel("HankelFar", "x >= 10", {0, 0.01L});
    fit_line("struve_far_0", "pi x (H0(x) - Y0(x))/2 in powers of 1/x^2, x >= 4.", far, 1e-10L,
             [](Real v) { return half_local_part(1 / std::sqrt(v), 0).value / std::sqrt(v); });
    // H1 - Y1 = 2/pi - d(H0 - Y0)/dx
    fit_line("struve_far_1", "pi (H1(x) - Y1(x))/2 in powers of 1/x^2, x >= 4.", far, 1e-10L,
             [](Real v) { return 1 + half_local_part(1 / std::sqrt(v), 0).d_dR; });
}

void wave_tables() {
    const Real r = 3.7L, end = 1 / r;
    const char* about_log = "A of the form with the logarithm; x = R^2, y = Z.";
    fit_surface("LogNear", about_log, {0, r * r}, {0, 4}, 3e-10L, 0.5L, log_form);
    fit_surface("LogDeep", about_log, {0, r * r}, {4, 8}, 3e-9L, 0.5L, log_form);

    const char* about_local = "(N/2 - 1/rho) rho^2; x = 1/R, y = Z/R.";
    const auto local = [](Real x, Real y) {
        const Real R = 1 / x, p = x / std::sqrt(1 + y * y);
        return (half_local_part(R, y * R).value - p) / (p * p);
    };
    const Range bands[] = {{0, 0.25L}, {0.25L, 0.5L}, {0.5L, 1}, {1, 2}};
    for (int band = 0; band < 4; ++band)
        fit_surface("LocalNear" + std::to_string(band), about_local, {0.1L, end}, bands[band],
                    5e-9L, 0.3L, local);
    for (int band = 0; band < 4; ++band)
        fit_surface("LocalFar" + std::to_string(band), about_local, {0, 0.1L}, bands[band], 5e-9L,
                    0.1L, local);

    const Real lowest = 0.8944L; // c = 2/sqrt(5) at R = Z/2
    const Range shells[] = {{1 / 14.0L, 1 / 8.0L}, {1 / 28.0L, 1 / 14.0L}, {0, 1 / 28.0L}};
    const auto place = [](Real x, Real c) { return wave_term(std::sqrt(1 - c * c) / x, c / x); };
    for (int shell = 0; shell < 3; ++shell) {
        const std::string name = "Steep" + std::to_string(shell);
        fit_surface(name, "-(F/2 + 1/rho) rho^2; x = 1/rho, y = Z/rho.", shells[shell], {lowest, 1},
                    5e-9L, 0,
                    [&](Real x, Real c) { return -(place(x, c).value / 2 + x) / (x * x); });
        fit_surface(name + "R", "dF/dR rho^3/(2 R); x = 1/rho, y = Z/rho.", shells[shell],
                    {lowest, 1}, 5e-9L, 0, [&](Real x, Real c) {
                        return place(x, c).d_dR / (2 * x * x * std::sqrt(1 - c * c));
                    });
    }
}

} // namespace

int main() {
    std::printf(
        "// Fitted tables of the deep-water Green function and of the Bessel and Struve\n"
        "// functions, lowest power first. Made by tools/deep_tables.cpp: change them there.\n"
        "#pragma once\n\n"
        "// clang-format off\n"
        "namespace quelor::deep_tables {\n\n"
        "struct Scaling {\n    double offset, factor; ///< the fit is in offset + factor * variable\n};\n");
    bessel_tables();
    wave_tables();
    std::printf("\n} // namespace quelor::deep_tables\n// clang-format on\n");
}
