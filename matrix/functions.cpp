// The commands that apply a mathematical function to the elements of an array, and the constants.
// Reads the array named by the first argument; writes it or the array named by the second.
//
// A function is an object that can be called with the types it serves: int32_t, double, long double
// (types 4, 8, 9) and Complex8. Elements of type complex(4) are computed in double precision and
// rounded. Domain errors are not tested; their results are those of the C library.
#include "matrix/functions.hpp"

#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/blocks.hpp"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <numbers>

namespace quelor {

namespace {

// --- columns ------------------------------------------------------------------------------------

/// Which columns are computed: column y from column x, or with x = 0 all from column c on. In an
/// array of three dimensions the columns of every table.
struct Columns {
    std::int32_t x = 0, y = 0, c = 1;

    bool is_computed(int j) const { return x > 0 ? j == y : j >= c; }
    int source(int j) const { return x > 0 ? x : j; }
};

/// The parameters of the columns; false after a message that the array does not have them.
bool read_columns(const ArrayRef& array, Columns& columns) {
    get_int_par(" x=", columns.x);
    if (columns.x < 1) {
        columns.x = 0;
        get_int_par(" c=", columns.c);
        if (columns.c < 0) print_both(" \n\tColumn number must be nonnegative\n");
        return columns.c >= 0;
    }
    columns.y = columns.x;
    get_int_par(" y=", columns.y);
    const bool exist = std::max(columns.x, columns.y) <= array.cols() && columns.y >= 1;
    if (!exist) print_both(" \n\tInvalid column number\n");
    return exist;
}

// --- evaluation ---------------------------------------------------------------------------------

/// The type in which elements of type T are computed.
template <class T> using ComputedIn = std::conditional_t<std::same_as<T, Complex4>, Complex8, T>;
/// The type of the result's elements.
template <class F, class T>
using ResultOf =
    std::conditional_t<std::same_as<std::invoke_result_t<F, ComputedIn<T>>, ComputedIn<T>>, T,
                       std::invoke_result_t<F, ComputedIn<T>>>;

/// An element that is not computed, in the type of the result: of complex ones the real part.
template <class To, class From> To unchanged(From x) {
    if constexpr (std::same_as<From, To>)
        return x;
    else
        return static_cast<To>(x.real());
}

/// `to` may be the array's own data; `keeps_others`: the other columns of column x are taken over.
template <class T, class F>
void evaluate(F f, const ArrayRef& array, ResultOf<F, T>* to, const Columns& columns,
              bool keeps_others) {
    using To = ResultOf<F, T>;
    const auto from = as_span<const T>(array);
    const auto rows = as_size(array.rows());
    const auto compute = [&](T x) { return static_cast<To>(f(ComputedIn<T>(x))); };
    for (std::size_t first = 0; first < from.size();) {
        for (int j = 1; j <= array.cols(); ++j, first += rows) {
            const auto shift = (std::ptrdiff_t{columns.source(j)} - j) * array.rows();
            const T* const column = from.data() + first;
            if (columns.is_computed(j))
                std::transform(column + shift, column + shift + rows, to + first, compute);
            else if (keeps_others && static_cast<const void*>(to) != array.data)
                std::transform(column, column + rows, to + first, unchanged<To, T>);
        }
    }
}

/// Computes in place when the result takes the place of the array and its type fits.
template <class T, class F> void apply_to(F f, const ArrayRef& array, const Columns& columns) {
    using To = ResultOf<F, T>;
    const std::string source(get_arg(1)), target(get_arg(2));
    const bool keeps_others = columns.x == 0 || is_blank(target);
    if (std::same_as<To, T> && is_blank(target))
        return evaluate<T>(f, array, static_cast<To*>(array.data), columns, keeps_others);
    Result result(is_blank(target) ? source : target, "$function", {source});
    auto* const to = static_cast<To*>(result.create(type_code<To>, array.dims));
    evaluate<T>(f, array, to, columns, keeps_others);
    result.place();
}

/// One of the types, when the function serves it; false otherwise.
template <class T, class F> bool serve(F f, const ArrayRef& array, const Columns& columns) {
    if constexpr (std::invocable<F, ComputedIn<T>>) {
        apply_to<T>(f, array, columns);
        return true;
    }
    return false;
}

template <class F> bool serve_by_type(F f, const ArrayRef& array, const Columns& columns) {
    switch (array.type) {
    case type_integer:
        return serve<std::int32_t>(f, array, columns);
    case type_real:
        return serve<double>(f, array, columns);
    case type_real16:
        return serve<long double>(f, array, columns);
    case type_complex4:
        return serve<Complex4>(f, array, columns);
    case type_complex8:
        return serve<Complex8>(f, array, columns);
    default:
        return false;
    }
}

template <class F> void apply(F f) {
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    const ArrayRef array = find_array(get_arg(1));
    if (!array) return not_found(get_arg(1));
    if (array.is(type_integer) && !std::invocable<F, std::int32_t>)
        return print_both(" \n\tCommand not implemented for integer\n");
    if (array.ndim() > 3) return print_both(" \n\tCommand not supported for arrays larger than 3D");
    Columns columns;
    if (!read_columns(array, columns)) return;
    if (!serve_by_type(f, array, columns))
        print_both(" \n\tCommand not implemented for data type\n");
}

template <auto function> void cmd_function(std::string_view) {
    apply(function);
}

// --- functions ----------------------------------------------------------------------------------

template <class T>
concept Real = std::floating_point<T>;
template <class T>
concept Number = Real<T> || std::same_as<T, Complex8>;

constexpr auto exp_of = [](Number auto z) { return std::exp(z); };
constexpr auto log_of = [](Number auto z) { return std::log(z); };
constexpr auto log10_of = [](Number auto z) { return std::log10(z); };
constexpr auto sqrt_of = [](Number auto z) { return std::sqrt(z); };
constexpr auto sin_of = [](Number auto z) { return std::sin(z); };
constexpr auto cos_of = [](Number auto z) { return std::cos(z); };
constexpr auto tan_of = [](Number auto z) { return std::tan(z); };
constexpr auto asin_of = [](Number auto z) { return std::asin(z); };
constexpr auto acos_of = [](Number auto z) { return std::acos(z); };
constexpr auto atan_of = [](Number auto z) { return std::atan(z); };
constexpr auto sinh_of = [](Number auto z) { return std::sinh(z); };
constexpr auto cosh_of = [](Number auto z) { return std::cosh(z); };
constexpr auto tanh_of = [](Number auto z) { return std::tanh(z); };
constexpr auto erf_of = [](Real auto x) { return std::erf(x); };
constexpr auto erfc_of = [](Real auto x) { return std::erfc(x); };
constexpr auto gamma_of = [](Real auto x) { return std::tgamma(x); };

/// The absolute value that 32 bits cannot hold is the largest integer.
std::int32_t absolute(std::int32_t k) {
    return k == std::numeric_limits<std::int32_t>::min() ? std::numeric_limits<std::int32_t>::max()
                                                         : std::abs(k);
}
auto absolute(Real auto x) {
    return std::abs(x);
}
double absolute(Complex8 z) {
    return complex_modulus(z);
}
constexpr auto abs_of =
    [](auto z) requires(Number<decltype(z)> || std::same_as<decltype(z), std::int32_t>) {
    return absolute(z);
};

constexpr auto conjugate_of = [](Number auto z) {
    if constexpr (Real<decltype(z)>)
        return z;
    else
        return std::conj(z);
};

/// exp(x^2) erfc(x). Up to 26 from the product, x^2 with its rounding error taken into account;
/// beyond, where erfc(x) leaves the range of double precision, from its asymptotic series
/// 1/(x sqrt(pi)) (1 - 1/(2 x^2) + 1 3/(2 x^2)^2 - ...), whose 12th term is below 1e-26 there.
/// Errors of a few units in the last place. Source: [Abramowitz 1964, eq. 7.1.23]
template <Real T> T erfc_scaled(T x) {
    const T square = x * x;
    if (x <= 26) {
        const T scale = std::exp(square);
        if (std::isinf(scale)) return scale;
        return scale * std::erfc(x) * (1 + std::fma(x, x, -square));
    }
    T term = 1, sum = 1;
    for (int k = 1; k <= 12; ++k) {
        term *= -(2 * T(k) - 1) / (2 * square);
        sum += term;
    }
    return sum / x * std::numbers::inv_sqrtpi_v<T>;
}
constexpr auto erfc_scaled_of = [](Real auto x) { return erfc_scaled(x); };

// --- power --------------------------------------------------------------------------------------

auto to_power(Real auto x, std::int32_t p) {
    return std::pow(x, static_cast<decltype(x)>(p));
}
/// By repeated squaring, in a format whose range the intermediate powers do not leave.
Complex8 to_power(Complex8 z, std::int32_t p) {
    std::complex<long double> square(z), power(1);
    for (std::int64_t n = std::abs(std::int64_t{p}); n > 0; n /= 2, square *= square)
        if (n % 2 == 1) power *= square;
    return Complex8(p < 0 ? 1.0L / power : power);
}
auto to_power(Real auto x, double p) {
    return std::pow(x, static_cast<decltype(x)>(p));
}
Complex8 to_power(Complex8 z, double p) {
    return p == 0 ? Complex8(1) : std::exp(p * std::log(z));
}

void cmd_power(std::string_view) {
    std::int32_t whole = 2;
    double real = 2;
    get_int_par(" p=", whole);
    get_real_par(" p=", real);
    if (has_flag(" -r")) return apply([real](Number auto z) { return to_power(z, real); });
    apply([whole](Number auto z) { return to_power(z, whole); });
}

// --- Bessel functions ---------------------------------------------------------------------------

/// True when J_n(x) is below the range of T, by its bound (|x|/2)^n / n! < (e |x| / 2n)^n; the C
/// library would take time proportional to n to find that. Source: [Abramowitz 1964, eq. 9.1.62]
template <Real T> bool is_below_range(std::int32_t n, T x) {
    using Limits = std::numeric_limits<T>;
    const T order = std::abs(static_cast<T>(n));
    const T least = (Limits::min_exponent - Limits::digits) * std::numbers::ln2_v<T>;
    return order > 1000 && order * (1 + std::log(std::abs(x) / (2 * order))) < least;
}

template <Real T> T bessel_j(std::int32_t n, T x) {
    if (is_below_range(n, x)) return 0;
    if constexpr (std::same_as<T, double>)
        return jn(n, x);
    else
        return jnl(n, x);
}
template <Real T> T bessel_y(std::int32_t n, T x) {
    if constexpr (std::same_as<T, double>)
        return yn(n, x);
    else
        return ynl(n, x);
}

template <bool second_kind> void cmd_bessel(std::string_view) {
    std::int32_t n = 0;
    get_int_par(" n=", n);
    if (n == std::numeric_limits<std::int32_t>::min()) // a number cut to the range of integers
        return print_both(" \n\tThe order is out of range\n");
    apply([n](Real auto x) {
        if constexpr (second_kind)
            return bessel_y(n, x);
        else
            return bessel_j(n, x);
    });
}

// --- constants ----------------------------------------------------------------------------------

void cmd_pi(std::string_view) {
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    create_real_scalar(get_arg(1), std::numbers::pi);
}

void cmd_epsilon(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const ArrayRef array = find_array(get_arg(1));
    if (!array) return not_found(get_arg(1));
    switch (array.type) {
    case type_integer:
        return print_both(" \n\tCommand not implemented for integer\n");
    case type_real16:
        create_matrix<long double>(get_arg(2), 1, 1)(1, 1) =
            std::numeric_limits<long double>::epsilon();
        return;
    case type_complex4:
        return create_real_scalar(get_arg(2), double{std::numeric_limits<float>::epsilon()});
    case type_real:
    case type_complex8:
        return create_real_scalar(get_arg(2), std::numeric_limits<double>::epsilon());
    default:
        return print_both(" \n\tCommand not implemented for data type\n");
    }
}

// --- rows ---------------------------------------------------------------------------------------

// The help texts have their syntax and what they say of columns in common. Only literals can be
// joined where the rows are made, and only the preprocessor joins those.
#define HELP(syntax, text, parameters, example, see_also)                                          \
    "Command Syntax\n\t" syntax " [x=?] [y=?] [c=?]\n\n" text                                      \
    " arg1 has at most 3 dimensions.\n\n"                                                          \
    "arg2\n\tname of the result (default: it replaces arg1)\n" parameters                          \
    "x\n\tsingle column to work on (default: all). If x is specified and arg2 is not specified, "  \
    "the result is put in column x of arg1; the other columns of arg2 are 0.\n"                    \
    "y\n\tcolumn that gets the result when x is given (default = x)\n"                             \
    "c\n\tfirst column to work on; the columns before it are the same as in arg1 (default = 1)\n"  \
    "\nExample\n\t" example "\n\nSee Also\n\t" see_also "\n"
#define HELP_OF_FUNCTION(word, what, types, see_also)                                              \
    HELP(word " arg1 [arg2]", "Computes " what " of each element of the " types " array arg1.",    \
         "", "series a x=0.1,0.9 inc=0.2\n\t" word " a b", see_also)
#define NUMBER "real, real(16) or complex"
#define REAL "real or real(16)"

constexpr Command rows[] = {
    {.words = {"abs"},
     .run = cmd_function<abs_of>,
     .summary = "absolute value of each element",
     .help = HELP(
         "abs arg1 [arg2]",
         "Computes the absolute value of each element of the integer, real, real(16) or complex array arg1. Of a complex array the result is real, and columns that are not worked on keep their real parts.",
         "", "inputc z c=2\n\t3. 4. 0. 1.\n\tabs z b", "conjugate, norm, to_real")},
    {.words = {"conjugate"},
     .run = cmd_function<conjugate_of>,
     .summary = "complex conjugate of each element",
     .help = HELP(
         "conjugate arg1 [arg2]",
         "Computes the complex conjugate of each element of the complex array arg1. Real and real(16) arrays stay as they are.",
         "", "inputc z c=2\n\t3. 4. 0. 1.\n\tconjugate z b", "abs, trans, to_complex2")},
    {.words = {"exp"},
     .run = cmd_function<exp_of>,
     .summary = "exponential of each element",
     .help = HELP_OF_FUNCTION("exp", "the exponential", NUMBER, "log, power")},
    {.words = {"log"},
     .run = cmd_function<log_of>,
     .summary = "natural logarithm of each element",
     .help = HELP_OF_FUNCTION("log", "the natural logarithm", NUMBER, "log10, exp")},
    {.words = {"log10"},
     .run = cmd_function<log10_of>,
     .summary = "common logarithm of each element",
     .help = HELP_OF_FUNCTION("log10", "the logarithm to base 10", NUMBER, "log, power")},
    {.words = {"pi"},
     .run = cmd_pi,
     .summary = "scalar with the value of pi",
     .help = "Command Syntax\n\tpi arg1\n\n"
             "Creates the real scalar arg1 with the value of pi. There are no defaults.\n\n"
             "Example\n\tpi p\n\nSee Also\n\tsetr, epsilon\n"},
    {.words = {"power"},
     .run = cmd_power,
     .summary = "power of each element",
     .help = HELP("power arg1 [arg2] [p=?] [-r]",
                  "Raises each element of the real, real(16) or complex array arg1 to the power p.",
                  "p\n\tthe power, an integer unless -r is given (default = 2)\n"
                  "-r\n\tp is a real number (default: an integer)\n",
                  "series a x=1,5\n\tpower a b p=0.5 -r", "sqrt, exp, mult_elem")},
    {.words = {"sqrt"},
     .run = cmd_function<sqrt_of>,
     .summary = "square root of each element",
     .help = HELP_OF_FUNCTION("sqrt", "the square root", NUMBER, "power")},
    {.words = {"sin"},
     .run = cmd_function<sin_of>,
     .summary = "sine of each element",
     .help = HELP_OF_FUNCTION("sin", "the sine", NUMBER, "cos, tan, asin, sinh")},
    {.words = {"cos"},
     .run = cmd_function<cos_of>,
     .summary = "cosine of each element",
     .help = HELP_OF_FUNCTION("cos", "the cosine", NUMBER, "sin, tan, acos, cosh")},
    {.words = {"tan"},
     .run = cmd_function<tan_of>,
     .summary = "tangent of each element",
     .help = HELP_OF_FUNCTION("tan", "the tangent", NUMBER, "sin, cos, atan, tanh")},
    {.words = {"asin"},
     .run = cmd_function<asin_of>,
     .summary = "arcsine of each element",
     .help = HELP_OF_FUNCTION("asin", "the arcsine", NUMBER, "sin, acos, atan")},
    {.words = {"acos"},
     .run = cmd_function<acos_of>,
     .summary = "arccosine of each element",
     .help = HELP_OF_FUNCTION("acos", "the arccosine", NUMBER, "cos, asin, atan")},
    {.words = {"atan"},
     .run = cmd_function<atan_of>,
     .summary = "arctangent of each element",
     .help = HELP_OF_FUNCTION("atan", "the arctangent", NUMBER, "tan, asin, acos")},
    {.words = {"sinh"},
     .run = cmd_function<sinh_of>,
     .summary = "hyperbolic sine of each element",
     .help = HELP_OF_FUNCTION("sinh", "the hyperbolic sine", NUMBER, "cosh, tanh, sin")},
    {.words = {"cosh"},
     .run = cmd_function<cosh_of>,
     .summary = "hyperbolic cosine of each element",
     .help = HELP_OF_FUNCTION("cosh", "the hyperbolic cosine", NUMBER, "sinh, tanh, cos")},
    {.words = {"tanh"},
     .run = cmd_function<tanh_of>,
     .summary = "hyperbolic tangent of each element",
     .help = HELP_OF_FUNCTION("tanh", "the hyperbolic tangent", NUMBER, "sinh, cosh, tan")},
    {.words = {"bessel_j"},
     .run = cmd_bessel<false>,
     .summary = "Bessel function of the first kind",
     .help = HELP(
         "bessel_j arg1 [arg2] [n=?]",
         "Computes the Bessel function of the first kind, J of order n, of each element of the real or real(16) array arg1.",
         "n\n\torder, any integer (default = 0)\n", "series a x=0,10\n\tbessel_j a b n=1",
         "bessel_y")},
    {.words = {"bessel_y"},
     .run = cmd_bessel<true>,
     .summary = "Bessel function of the second kind",
     .help = HELP(
         "bessel_y arg1 [arg2] [n=?]",
         "Computes the Bessel function of the second kind, Y of order n, of each element of the real or real(16) array arg1; they are positive.",
         "n\n\torder, any integer (default = 0)\n", "series a x=1,10\n\tbessel_y a b n=1",
         "bessel_j")},
    {.words = {"erf"},
     .run = cmd_function<erf_of>,
     .summary = "error function of each element",
     .help = HELP_OF_FUNCTION("erf", "the error function", REAL, "erfc, erfc_scaled")},
    {.words = {"erfc"},
     .run = cmd_function<erfc_of>,
     .summary = "complementary error function",
     .help = HELP_OF_FUNCTION("erfc", "the complementary error function, 1 - erf,", REAL,
                              "erf, erfc_scaled")},
    {.words = {"erfc_scaled"},
     .run = cmd_function<erfc_scaled_of>,
     .summary = "scaled complementary error function",
     .help = HELP_OF_FUNCTION("erfc_scaled",
                              "the scaled complementary error function, exp(x^2) erfc(x),", REAL,
                              "erf, erfc")},
    {.words = {"epsilon"},
     .run = cmd_epsilon,
     .summary = "smallest number that counts beside 1",
     .help =
         "Command Syntax\n\tepsilon arg1 arg2\n\n"
         "Creates the scalar arg2 with the distance from 1 to the next number of the same real kind as the real, real(16) or complex array arg1. arg2 is real(16) for a real(16) array, otherwise real. There are no defaults.\n\n"
         "Example\n\tsetr a v=1\n\tepsilon a e\n\nSee Also\n\tpi, abs\n"},
    {.words = {"gamma"},
     .run = cmd_function<gamma_of>,
     .summary = "gamma function of each element",
     .help = HELP_OF_FUNCTION("gamma", "the gamma function", REAL, "exp, power")},
};

#undef HELP
#undef HELP_OF_FUNCTION
#undef NUMBER
#undef REAL

} // namespace

std::span<const Command> function_rows() {
    return rows;
}

} // namespace quelor
