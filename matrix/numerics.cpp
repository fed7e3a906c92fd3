// Quadrature and polynomials as commands, and the sizes of the data types.
// Reads and writes the arrays named by the arguments; `$gauss_int` holds a result that may bear the
// name of an input.
#include "matrix/numerics.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/polynomial.hpp"
#include "numeric/quadrature.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace quelor {

namespace {

// --- gauss_int

bool is_gauss_order(int n) {
    return n >= 1 && n <= gauss_order_limit;
}

/// Length / 2 times the weighted sum of the n values of each element.
void integrate_elements(std::span<const double> values, std::span<const double> lengths,
                        std::span<const double> weights, std::span<double> integrals) {
    for (std::size_t e = 0; e < lengths.size(); ++e) {
        double sum = 0;
        for (std::size_t i = 0; i < weights.size(); ++i)
            sum += weights[i] * values[e * weights.size() + i];
        integrals[e] = lengths[e] / 2 * sum;
    }
}

void cmd_gauss_int(std::string_view) {
    const std::string target(get_arg(3));
    int n = 0;
    get_int_par("n=", n);
    if (is_blank(target)) return print_both(" \n\tThree arguments required\n");
    const ArrayRef values = find_array(get_arg(1)), lengths = find_array(get_arg(2));
    if (!values) return not_found(get_arg(1));
    if (!lengths) return not_found(get_arg(2));
    if (!values.is(type_real) || !lengths.is(type_real))
        return print_both(" \n\tArguments 1 and 2 must be real\n");
    if (!is_gauss_order(n)) return print_both(" \n\tn must be from 1 to 10\n");
    if (lengths.rows() != lengths.size() || values.size() != n * lengths.size())
        return print_both(" \n\tArgument 1 must have n values for each element of argument 2\n");
    std::array<double, gauss_order_limit> x{}, w{};
    const auto order = as_size(n);
    gauss_legendre(std::span(x).first(order), std::span(w).first(order));
    Result result(target, "$gauss_int");
    const auto integrals = result.matrix<double>(lengths.rows(), 1);
    integrate_elements(as_span<const double>(values), as_span<const double>(lengths),
                       std::span(w).first(order), integrals.all());
    result.place();
}

// --- gauss_pts

/// Orders of " n=?,?,?": as many as there are values, one point by default; a list that is not
/// sensible gives no order, and says so.
std::vector<int> gauss_orders() {
    std::array<double, 3> given{1, 0, 0};
    get_real_par("n=", given);
    std::vector<int> orders(given.size());
    std::transform(given.begin(), given.end(), orders.begin(), truncated_int);
    while (!orders.empty() && orders.back() == 0)
        orders.pop_back();
    if (orders.empty() || !std::ranges::all_of(orders, is_gauss_order)) {
        print_both(" \n\tn must be one to three values from 1 to 10\n");
        return {};
    }
    return orders;
}

void cmd_gauss_pts(std::string_view) {
    const std::string target(get_arg(1)), weights_name(get_arg(2));
    if (is_blank(target)) return print_both(" \n\tAt least one argument required\n");
    const std::vector<int> orders = gauss_orders();
    if (orders.empty()) return;
    const auto dimensions = static_cast<int>(orders.size());
    int total = 1;
    for (const int n : orders)
        total *= n;
    const auto points = create_matrix<double>(target, total, dimensions == 1 ? 0 : dimensions);
    std::vector<double> weights(as_size(total), 1.0);
    int stride = 1; // points that lie between two values of the coordinate
    for (int j = 1; j <= dimensions; ++j) {
        const auto n = as_size(orders[nth(j)]);
        std::array<double, gauss_order_limit> x{}, w{};
        gauss_legendre(std::span(x).first(n), std::span(w).first(n));
        for (int i = 1; i <= total; ++i) {
            const auto at = as_size((i - 1) / stride) % n;
            points(i, j) = x[at];
            weights[nth(i)] *= w[at];
        }
        stride *= static_cast<int>(n);
    }
    if (is_blank(weights_name)) return;
    std::ranges::copy(weights, create_matrix<double>(weights_name, total, 0).data);
}

// --- tri_intpts

void cmd_tri_intpts(std::string_view) {
    const std::string target(get_arg(1)), weights_name(get_arg(2));
    int n = 0;
    get_int_par("n=", n);
    if (is_blank(target)) return print_both(" \n\tAt least one argument required\n");
    const std::vector<TrianglePoint> rule = triangle_rule(n);
    if (rule.empty()) return print_both(" \n\tn must be 1, 3, 4, 7, 9 or 12\n");
    const auto points = create_matrix<double>(target, n, 3);
    for (int i = 1; i <= n; ++i) {
        const TrianglePoint& point = rule[nth(i)];
        points(i, 1) = point.l1;
        points(i, 2) = point.l2;
        points(i, 3) = point.l3;
    }
    if (is_blank(weights_name)) return;
    std::ranges::transform(rule, create_matrix<double>(weights_name, n, 0).data,
                           &TrianglePoint::weight);
}

// --- poly

constexpr int poly_term_limit = 1024; // a record holds no more coefficients

/// The coefficients of "c="; without "n=" (0) up to the last one that is not 0.
std::vector<double> poly_coefficients(int n) {
    std::vector<double> c(as_size(n > 0 ? n : poly_term_limit));
    get_real_par("c=", c);
    while (n == 0 && !c.empty() && c.back() == 0)
        c.pop_back();
    return c;
}

void evaluate_rows(Matrix<double> table, int d, bool slopes, std::span<const double> c) {
    const auto terms = polynomial_terms(d, static_cast<int>(c.size()));
    for (int i = 1; i <= table.rows; ++i) {
        std::array<double, 3> point{};
        for (int j = 1; j <= d; ++j)
            point[nth(j)] = table(i, j);
        const PolynomialValue result = evaluate_polynomial(terms, c, point);
        table(i, d + 1) = result.value;
        for (int j = 1; slopes && j <= d; ++j)
            table(i, d + 1 + j) = result.slope[nth(j)];
    }
}

void cmd_poly(std::string_view) {
    int d = 1, n = 0, option = 0;
    get_int_par("d=", d);
    get_int_par("n=", n);
    get_int_par(" option=", option);
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    const ArrayRef array = find_array_2d(get_arg(1));
    if (!array) return not_found(get_arg(1));
    if (!array.is(type_real)) return print_both(" \n\tArgument 1 must be real\n");
    if (d < 1 || d > 3) return print_both(" \n\td must be 1, 2 or 3\n");
    if (option != 0 && option != 1) return print_both(" \n\toption must be 0 or 1\n");
    if (n < 0 || n > poly_term_limit)
        return print_both(" \n\tn must be from 1 to 1024 coefficients\n");
    if (array.cols() < (option == 0 ? d + 1 : 2 * d + 1))
        return print_both(" \n\tArgument 1 has too few columns for the results\n");
    evaluate_rows(as_matrix<double>(array), d, option == 1, poly_coefficients(n));
}

// --- fortran_kind

void cmd_fortran_kind(std::string_view) {
    write_both("(/, 4x, 'Number of Bytes for Standard Data Types', /)");
    for (const TypeCode type :
         {type_character, type_integer, type_real, type_real16, type_complex4, type_complex8})
        write_both("(6x, a, t22, i4)", {type_label(type), element_size(type)});
    write_both("()");
}

constexpr Command rows[] = {
    {.words = {"gauss_int"},
     .run = cmd_gauss_int,
     .summary = "integrals over elements by Gauss quadrature",
     .help =
         "Command Syntax\n\tgauss_int arg1 arg2 arg3 n=?\n\n"
         "Creates arg3(nel,1) with the integral of a function over each of nel line elements, by "
         "Gauss quadrature with n points in an element.\n\n"
         "arg1\n\tvalues of the function at the points, (n*nel,1), real; element by element, in "
         "the order of gauss_pts\n"
         "arg2\n\tlengths of the elements, (nel,1), real\n"
         "arg3\n\tthe integrals\n"
         "n\n\tnumber of points in an element, 1 to 10; there is no default\n\n"
         "Example\n\tinput f r=2 c=1\n\t0.5\n\t1.5\n\tsetr len v=2\n\tgauss_int f len q n=2\n\n"
         "See Also\n\tgauss_pts\n"},
    {.words = {"gauss_pts"},
     .run = cmd_gauss_pts,
     .summary = "points and weights of Gauss quadrature",
     .help =
         "Command Syntax\n\tgauss_pts arg1 [arg2] [n=?,?,?]\n\n"
         "Creates arg1 with the natural coordinates, -1 to 1, of n1 x n2 x n3 Gauss quadrature. "
         "The number of values in n is the number of columns of arg1: one value gives vector "
         "arg1(n1), two give arg1(n1*n2,2), three give arg1(n1*n2*n3,3). The first coordinate "
         "varies fastest; each ascends.\n\n"
         "arg1\n\tthe points\n"
         "arg2\n\tvector of the weights (default: not created)\n"
         "n\n\tpoints in each direction, 1 to 10 (default = 1)\n\n"
         "Example\n\tgauss_pts p w n=3,3\n\n"
         "See Also\n\tgauss_int, tri_intpts\n"},
    {.words = {"tri_intpts"},
     .run = cmd_tri_intpts,
     .summary = "points and weights on a triangle",
     .help =
         "Command Syntax\n\ttri_intpts arg1 [arg2] n=?\n\n"
         "Creates arg1(n,3) with the area coordinates of n integration points on a triangle. The "
         "rules of 1, 3, 4, 7, 9 and 12 points integrate polynomials of degree 1, 2, 3, 5, 5 and "
         "6.\n\n"
         "arg1\n\tthe points, a row each\n"
         "arg2\n\tvector of the weights as parts of the area, of sum 1 (default: not created)\n"
         "n\n\tnumber of points: 1, 3, 4, 7, 9 or 12; there is no default\n\n"
         "Example\n\ttri_intpts p w n=7\n\n"
         "See Also\n\tgauss_pts\n"},
    {.words = {"poly"},
     .run = cmd_poly,
     .summary = "values and derivatives of a polynomial",
     .help =
         "Command Syntax\n\tpoly arg d=? [n=?] [option=?] c=?,?,?,...\n\n"
         "Evaluates a polynomial on the points of real array arg, a row each. The first d columns "
         "hold the coordinates; the next one receives the value and, with option=1, the d columns "
         "after it the derivatives to each coordinate.\n\n"
         "arg\n\tthe points; (npts,q) with q at least d + 1, with option=1 at least 2d + 1\n"
         "d\n\tnumber of coordinates, 1 to 3 (default = 1)\n"
         "n\n\tnumber of coefficients, at most 1024 (default: those given); with option= it must be "
         "given, and before it\n"
         "option\n\t0 value, 1 value and first derivatives (default = 0)\n"
         "c\n\tcoefficients (default: zeros) in the order\n"
         "\td=1: 1, x, x^2, ...\n"
         "\td=2: 1, x, y, x^2, xy, y^2, x^3, ...\n"
         "\td=3: 1, x, y, z, x^2, xy, xz, y^2, yz, z^2, x^3, ...\n\n"
         "Example\n\tinput a r=2 c=3\n\t0.5\n\t1\n\tpoly a d=1 n=3 option=1 c=1,0,-2\n\n"
         "See Also\n\tseries, interpolate\n"},
    {.words = {"fortran_kind"},
     .run = cmd_fortran_kind,
     .summary = "prints the sizes of the data types",
     .help = "Command Syntax\n\tfortran_kind\n\n"
             "Prints the number of bytes of an element of each type of array. There are no "
             "arguments.\n\n"
             "Example\n\tfortran_kind\n\n"
             "See Also\n\tll, memory\n"},
};

} // namespace

std::span<const Command> numerics_rows() {
    return rows;
}

} // namespace quelor
