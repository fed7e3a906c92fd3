// Arrays by rule: constants, unit matrices, series of numbers and of points.
// Writes the array named by the first argument.
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/matrix1.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace quelor {

namespace {

// --- zero ---------------------------------------------------------------------------------------

void get_par(std::string_view key, std::int32_t& value) {
    get_int_par(key, value);
}
void get_par(std::string_view key, double& value) {
    get_real_par(key, value);
}
void get_par(std::string_view key, Complex8& value) {
    get_complex_par(key, {&value, 1});
}

/// The value of " value=", or when that gives 0 of " v=".
template <class T> T fill_value() {
    T value{};
    get_par(" value=", value);
    if (value == T{}) get_par(" v=", value);
    return value;
}

/// Stores the value in every element; a fresh array is zero already.
template <class T> void fill(std::span<T> elements, bool fresh) {
    const T value = fill_value<T>();
    if (!fresh || value != T{}) std::ranges::fill(elements, value);
}

void fill_existing(const ArrayRef& array) {
    switch (array.type) {
    case type_integer:
        return fill(as_span<std::int32_t>(array), false);
    case type_real:
        return fill(as_span<double>(array), false);
    case type_complex8:
        return fill(as_span<Complex8>(array), false);
    default:
        return;
    }
}

template <class T> void cmd_zero(std::string_view) {
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne argument required\n");
    std::int32_t r = 0, c = 0, t = 0;
    get_int_par(" r=", r);
    get_int_par(" c=", c);
    get_int_par(" t=", t);
    if (t >= 1) {
        if (r < 0 || c < 0) return print_both(" \n\tIncorrect dimensions\n");
        create_array3<T>(target, std::max(r, 1), std::max(c, 1), t);
        return fill(as_span<T>(find_array(target)), true);
    }
    const Shape shape = rc_to_dims(r, c);
    if (shape.ndim > 0)
        return fill(create_matrix<T>(target, shape.rows, shape.ndim == 1 ? 0 : shape.cols).all(),
                    true);
    const ArrayRef array = find_array(target);
    if (!array) return not_found(target);
    fill_existing(array);
}

// --- ident --------------------------------------------------------------------------------------

template <class T> void set_identity(const ArrayRef& array) {
    const auto matrix = as_matrix<T>(array);
    std::ranges::fill(matrix.all(), T{});
    for (int i = 1; i <= std::min(matrix.rows, matrix.cols); ++i)
        matrix(i, i) = T{1};
}

void set_identity_by_type(const ArrayRef& array) {
    switch (array.type) {
    case type_integer:
        return set_identity<std::int32_t>(array);
    case type_real:
        return set_identity<double>(array);
    case type_real16:
        return set_identity<long double>(array);
    case type_complex4:
        return set_identity<Complex4>(array);
    case type_complex8:
        return set_identity<Complex8>(array);
    default:
        return print_both(" \n\tIncorrect argument type\n");
    }
}

template <class T> void cmd_ident(std::string_view) {
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne argument required\n");
    std::int32_t r = 0;
    get_int_par("r=", r);
    std::int32_t c = r;
    get_int_par("c=", c);
    if (r > 0) {
        if (c < 0) return print_both(" \n\tIncorrect dimensions\n");
        create_array_2d(type_code<T>, target, r, c);
    }
    const ArrayRef array = find_array(target);
    if (!array) return not_found(target);
    if (array.ndim() > 2) return print_both(" Array dimensions must be <= 2");
    set_identity_by_type(array);
}

// --- series -------------------------------------------------------------------------------------

double usable_weight(double w) {
    return w > 0 && std::isfinite(w) ? w : 1;
}

/// A run of numbers from x1 toward x2; each spacing is `weight` times the one before.
struct Series {
    double x1 = 0, x2 = 0, increment = 1, weight = 1;
    std::int32_t most = 100000; // points

    bool has_reached(double x) const { return increment > 0 ? x >= x2 : x <= x2; }
};

std::int32_t count_even(const Series& s) {
    const double points = (s.x2 - s.x1) / s.increment + 1;
    if (points >= s.most) return s.most;
    auto n = static_cast<std::int32_t>(points);
    if (std::abs(s.x1 + (n - 1) * s.increment - s.x2) > 1e-08 * std::abs(s.increment)) ++n;
    return std::min(n, s.most);
}

std::int32_t count_weighted(const Series& s) {
    std::int32_t n = 1;
    double x = s.x1, spacing = s.increment;
    for (; n < s.most && !s.has_reached(x); ++n) {
        x += spacing;
        spacing *= s.weight;
    }
    return n;
}

/// A last point nearer to x2 than the last spacing is x2 itself.
void fill_series(const Series& s, std::span<double> points) {
    double spacing = s.increment, last_spacing = 0;
    points[0] = s.x1;
    for (std::size_t i = 1; i < points.size(); ++i) {
        points[i] = points[i - 1] + spacing;
        last_spacing = spacing;
        spacing *= s.weight;
    }
    if (std::abs(points.back() - s.x2) < std::abs(last_spacing)) points.back() = s.x2;
}

Series series_parameters() {
    Series s;
    std::array<double, 2> ends{};
    get_real_par("x=", ends);
    s.x1 = ends[0];
    s.x2 = ends[1];
    get_real_par("inc=", s.increment);
    get_real_par("w=", s.weight);
    get_int_par("max=", s.most);
    if (s.increment == 0) s.increment = 1;
    s.weight = usable_weight(s.weight);
    if (s.most < 1) s.most = 100000;
    return s;
}

void cmd_series(std::string_view) {
    const std::string_view target = get_arg(1);
    if (is_blank(target)) return print_both(" \n\tOne argument required\n");
    const Series s = series_parameters();
    if (s.x1 == s.x2) return print_both("\nPoints are equal\n");
    // Not-a-number and infinite ends cannot be consistent either.
    const bool finite = std::isfinite(s.x2 - s.x1) && std::isfinite(s.increment);
    if (!finite || (s.x2 - s.x1) * s.increment < 0)
        return print_both(" \nValues and increment are inconsistent\n");
    const std::int32_t n = s.weight == 1 ? count_even(s) : count_weighted(s);
    fill_series(s, create_matrix<double>(target, n, 0).all());
}

// --- series2d -----------------------------------------------------------------------------------

/// A quadrilateral of n1 * n2 points, numbered along p1 to p2 first; no second direction with
/// n2 = 0.
struct QuadSeries {
    std::array<std::array<double, 3>, 4> corners{}; // p1, p2, p3, p4
    std::array<double, 2> weights{1, 1};
    std::int32_t n1 = 2, n2 = 0, dim = 2;
};

/// Points a + inc, a + 2 inc, ... short of b, between the values already at a and b; each spacing
/// is `weight` times the one before. The first is (x_b - x_a) / (1 + w + w^2 + ...).
void fill_between(std::span<double> x, std::size_t a, std::size_t b, std::size_t inc,
                  double weight) {
    const std::size_t between = (b - a) / inc - 1;
    double sum = static_cast<double>(between) + 1;
    if (weight != 1) {
        sum = 1;
        for (std::size_t k = 0; k < between; ++k)
            sum = sum * weight + 1;
    }
    double step = (x[b] - x[a]) / sum;
    for (std::size_t k = 1; k <= between; ++k) {
        x[a + k * inc] = x[a + (k - 1) * inc] + step;
        step *= weight;
    }
}

/// One coordinate of all points: the corners, the sides, then the lines across.
void fill_quad(const QuadSeries& quad, std::size_t coordinate, std::span<double> x) {
    const auto n1 = as_size(quad.n1);
    const auto n2 = as_size(std::max(quad.n2, 1));
    const std::size_t top = n1 * (n2 - 1);
    if (n2 > 1) {
        x[top + n1 - 1] = quad.corners[3][coordinate];
        x[top] = quad.corners[2][coordinate];
    }
    x[n1 - 1] = quad.corners[1][coordinate];
    x[0] = quad.corners[0][coordinate];
    if (n2 > 1) {
        fill_between(x, 0, top, n1, quad.weights[1]);
        if (n1 > 1) fill_between(x, n1 - 1, top + n1 - 1, n1, quad.weights[1]);
    }
    for (std::size_t line = 0; n1 > 1 && line <= top; line += n1)
        fill_between(x, line, line + n1 - 1, 1, quad.weights[0]);
}

/// Corrects the parameters; false when there are more points than an array can have.
bool check_quad(QuadSeries& quad) {
    for (double& w : quad.weights)
        w = usable_weight(w);
    if (quad.n1 < 1) quad.n1 = 2;
    if (quad.n2 < 1) quad.n2 = 0;
    if (quad.dim < 1 || quad.dim > 3) quad.dim = 2;
    return std::int64_t{quad.n1} * std::max(quad.n2, 1) <= std::numeric_limits<std::int32_t>::max();
}

QuadSeries quad_parameters() {
    static constexpr std::string_view keys[] = {" p1=", " p2=", " p3=", " p4="};
    QuadSeries quad;
    for (std::size_t i = 0; i < 4; ++i)
        get_real_par(keys[i], quad.corners[i]);
    get_real_par(" w=", quad.weights);
    std::array<std::int32_t, 2> counts{quad.n1, quad.n2};
    get_int_par("n=", counts);
    quad.n1 = counts[0];
    quad.n2 = counts[1];
    get_int_par(" dim=", quad.dim);
    return quad;
}

void cmd_series2d(std::string_view) {
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne argument required\n");
    QuadSeries quad = quad_parameters();
    if (!check_quad(quad)) return print_both(" \n\tIncorrect dimensions\n");
    const std::int32_t points = quad.n1 * std::max(quad.n2, 1);
    const ArrayRef old = find_array(target);
    const bool fits = old.is(type_real) && old.ndim() <= 2 && old.rows() == points &&
                      old.cols() >= quad.dim; // then its further columns stay
    const auto array =
        fits ? as_matrix<double>(old) : create_matrix<double>(target, points, quad.dim);
    for (int k = 1; k <= quad.dim; ++k)
        fill_quad(quad, nth(k), array.col(k));
}

// --- rows ---------------------------------------------------------------------------------------

constexpr Command rows[] = {
    {.words = {"series"},
     .run = cmd_series,
     .summary = "vector of numbers from x1 to x2",
     .help =
         "Command Syntax\n\tseries arg x=x1,x2 [inc=?] [w=?] [max=?]\n\n"
         "Creates the real vector arg of numbers that run from x1 to x2. The last number is x2, so that the last spacing may differ.\n\n"
         "x\n\tfirst and last number; they must differ\n"
         "inc\n\tfirst spacing, negative when x2 is below x1 (default = 1)\n"
         "w\n\tweight: each spacing is w times the one before (default = 1)\n"
         "max\n\tlargest number of points (default = 100000)\n\n"
         "Example\n\tseries s x=0,1 inc=0.3\n\t(gives 0, 0.3, 0.6, 0.9, 1.0)\n\nSee Also\n\tseries2d, input, zero\n"},
    {.words = {"series2d"},
     .run = cmd_series2d,
     .summary = "points of a quadrilateral or a line",
     .help =
         "Command Syntax\n\tseries2d arg p1=x1,y1,z1 p2=x2,y2,z2 p3=x3,y3,z3 p4=x4,y4,z4 [w=?,?] [n=?,?] [dim=?]\n\n"
         "Generates n1 * n2 points of a quadrilateral, one a row of the real array arg. p1 is point 1, p2 is point n1, p3 is point n1*(n2-1)+1 and p4 is point n1*n2:\n\n"
         "\tp3 ---- p4\n\t|        |\n\tp1 ---- p2\n\n"
         "If arg is a real array of exactly that many rows and at least dim columns, its first dim columns are overwritten and the rest stays.\n\n"
         "p1 p2 p3 p4\n\tcorners (default = 0,0,0)\n"
         "w\n\tweights along p1 to p2 and along p1 to p3: each spacing is w times the one before (default = 1,1)\n"
         "n\n\tnumbers of points along p1 to p2 and along p1 to p3 (default = 2,0); with the second 0 only the line p1 to p2 is generated\n"
         "dim\n\tnumber of coordinates of a point, 1 to 3 (default = 2)\n\n"
         "Example\n\tseries2d xy p1=0,0 p2=4,0 p3=0,2 p4=4,2 n=5,3\n\nSee Also\n\tseries, node_gen\n"},
    {.words = {"zero"},
     .run = cmd_zero<double>,
     .summary = "real array of a constant, or fill an array",
     .help =
         "Command Syntax\n\tzero arg [v=value] [r=? c=? t=?]\n\n"
         "With dimensions, creates the real array arg with every element equal to the value. Without, stores the value in every element of the existing array arg, integer, real or complex.\n\n"
         "v\n\tvalue, also value= (default = 0)\n"
         "r\n\tnumber of rows (default = 1, with c or t given)\n"
         "c\n\tnumber of columns (default: arg is a vector of length r; 1 with t given)\n"
         "t\n\tnumber of tables of a 3-D array (default: no tables)\n\n"
         "Example\n\tzero a r=3 c=3 v=2.5\n\nSee Also\n\tzeroi, zeroc, ident, input\n"},
    {.words = {"zeroc"},
     .run = cmd_zero<Complex8>,
     .summary = "complex array of a constant, or fill an array",
     .help =
         "Command Syntax\n\tzeroc arg [v=re,im] [r=? c=? t=?]\n\n"
         "With dimensions, creates the complex array arg with every element equal to the value. Without, stores the value in every element of the existing array arg, integer, real or complex.\n\n"
         "v\n\tvalue, also value= (default = 0,0)\n"
         "r\n\tnumber of rows (default = 1, with c or t given)\n"
         "c\n\tnumber of columns (default: arg is a vector of length r; 1 with t given)\n"
         "t\n\tnumber of tables of a 3-D array (default: no tables)\n\n"
         "Example\n\tzeroc z r=3 v=1,0.5\n\nSee Also\n\tzero, zeroi, identc, inputc\n"},
    {.words = {"zeroi"},
     .run = cmd_zero<std::int32_t>,
     .summary = "integer array of a constant, or fill an array",
     .help =
         "Command Syntax\n\tzeroi arg [v=value] [r=? c=? t=?]\n\n"
         "With dimensions, creates the integer array arg with every element equal to the value. Without, stores the value in every element of the existing array arg, integer, real or complex.\n\n"
         "v\n\tvalue, also value= (default = 0)\n"
         "r\n\tnumber of rows (default = 1, with c or t given)\n"
         "c\n\tnumber of columns (default: arg is a vector of length r; 1 with t given)\n"
         "t\n\tnumber of tables of a 3-D array (default: no tables)\n\n"
         "Example\n\tzeroi k r=2 c=4 v=1\n\nSee Also\n\tzero, zeroc, identi, inputi\n"},
    {.words = {"ident"},
     .run = cmd_ident<double>,
     .summary = "real unit matrix",
     .help =
         "Command Syntax\n\tident arg [r=?] [c=?]\n\n"
         "Creates the real array arg with 1 on its diagonal and 0 elsewhere. Without r the existing array arg is made so, in its own type.\n\n"
         "r\n\tnumber of rows (default: arg exists)\n"
         "c\n\tnumber of columns (default = r)\n\n"
         "Example\n\tident a r=3\n\nSee Also\n\tidenti, identc, zero, putdg\n"},
    {.words = {"identc"},
     .run = cmd_ident<Complex8>,
     .summary = "complex unit matrix",
     .help =
         "Command Syntax\n\tidentc arg [r=?] [c=?]\n\n"
         "Creates the complex array arg with 1 on its diagonal and 0 elsewhere. Without r the existing array arg is made so, in its own type.\n\n"
         "r\n\tnumber of rows (default: arg exists)\n"
         "c\n\tnumber of columns (default = r)\n\n"
         "Example\n\tidentc z r=3\n\nSee Also\n\tident, identi, zeroc\n"},
    {.words = {"identi"},
     .run = cmd_ident<std::int32_t>,
     .summary = "integer unit matrix",
     .help =
         "Command Syntax\n\tidenti arg [r=?] [c=?]\n\n"
         "Creates the integer array arg with 1 on its diagonal and 0 elsewhere. Without r the existing array arg is made so, in its own type.\n\n"
         "r\n\tnumber of rows (default: arg exists)\n"
         "c\n\tnumber of columns (default = r)\n\n"
         "Example\n\tidenti k r=3\n\nSee Also\n\tident, identc, zeroi\n"},
};

} // namespace

std::span<const Command> matrix1_generate_rows() {
    return rows;
}

} // namespace quelor
