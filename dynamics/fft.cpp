// `fft` and `fft_helper`: the columns of an array become their Fourier transforms, and transfer
// functions are applied to packed coefficients.
// Reads and writes the arrays named by the arguments; `$fft_wsave`, or `$fft_ip` and `$fft_w`, stay
// in the database for the next call; `$fft_helper` holds a result that may bear an input's name.
#include "dynamics/fft.hpp"

#include "dynamics/fft_kernels.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace quelor {

namespace {

/// Calls action(column) for each column, whatever the number of dimensions.
template <class T, class Action> void for_columns(const ArrayRef& array, Action action) {
    const auto values = as_span<T>(array);
    const std::size_t rows = as_size(array.rows());
    for (std::size_t at = 0; at < values.size(); at += rows)
        action(values.subspan(at, rows));
}

template <class T> void scale(std::span<T> values, double factor) {
    for (T& value : values)
        value *= factor;
}

/// (re, im) pairs.
std::span<double> parts(std::span<Complex8> values) {
    return {reinterpret_cast<double*>(values.data()), 2 * values.size()};
}

bool is_vector_of(const ArrayRef& array, TypeCode type, std::int64_t length) {
    return array.is(type) && array.ndim() == 1 && array.size() == length;
}

// --- the default: real, any number of rows

void fft_default(const ArrayRef& array, Direction direction) {
    if (!array.is(type_real))
        return print_both(" \n\tCommand is only implemented for double precision reals\n");
    const int n = array.rows();
    if (n > (std::numeric_limits<std::int32_t>::max() - 15) / 2)
        return print_both(" \n\tToo many rows for the work array\n");
    if (!is_vector_of(find_array(fft_wsave), type_real, 2 * std::int64_t{n} + 15))
        create_array(type_real, fft_wsave, {2 * n + 15});
    const auto wsave = as_span<double>(find_array(fft_wsave));
    const auto table = wsave.first(2 * as_size(n));
    double& rows_of_table = wsave[table.size()];
    if (rows_of_table != n) make_packed_table(table);
    rows_of_table = n;
    const auto values = as_span<double>(array);
    packed_transform(values, table, direction);
    if (direction == Direction::inverse) scale(values, 1.0 / n);
}

// --- -ferziger: complex, a power of 2

void fft_ferziger(const ArrayRef& array, Direction direction) {
    if (!array.is(type_complex8))
        return print_both(" \n\tCommand is only implemented for double precision complex\n");
    const std::size_t n = as_size(array.rows());
    if (!std::has_single_bit(n))
        return print_both(" \nThis routine requires n to be a power of 2. Returning without "
                          "calculations.\n");
    if (n == 1) return;
    std::vector<double> roots(n / 2);
    std::vector<std::int32_t> reversal(reversal_size(n));
    make_roots(roots);
    make_reversal(reversal);
    const bool inverse = direction == Direction::inverse;
    for_columns<Complex8>(array, [&](std::span<Complex8> column) {
        complex_transform(parts(column), inverse ? 1 : -1, {roots, reversal});
    });
    if (inverse) scale(as_span<Complex8>(array), 1.0 / static_cast<double>(n));
}

// --- -ooura: real or complex, a power of 2

/// The tables for N rows, of which the transform has `points`. The roots serve real and complex
/// arrays alike; the short bit reversal is made in each call.
Radix2Tables ooura_tables(int n, int points) {
    const auto ip_length = static_cast<std::int32_t>(std::sqrt(n)) + 2;
    if (!is_vector_of(find_array(fft_ip), type_integer, ip_length) ||
        !is_vector_of(find_array(fft_w), type_real, n / 2)) {
        create_array(type_integer, fft_ip, {ip_length});
        create_array(type_real, fft_w, {n / 2});
    }
    const auto ip = as_span<std::int32_t>(find_array(fft_ip));
    const auto w = as_span<double>(find_array(fft_w));
    if (ip[0] != n) make_roots(w);
    ip[0] = n;
    const auto reversal = ip.subspan(2, reversal_size(as_size(points)));
    make_reversal(reversal);
    return {w, reversal};
}

void fft_ooura_real(const ArrayRef& array, Direction direction) {
    write_both("('        Calling real fft')");
    const int n = array.rows();
    if (n == 1) return;
    const Radix2Tables tables = ooura_tables(n, n / 2);
    for_columns<double>(
        array, [&](std::span<double> column) { real_transform(column, direction, tables); });
    if (direction == Direction::inverse) scale(as_span<double>(array), 2.0 / n);
}

/// As often as there are columns it is the first column that is transformed; the others are only
/// scaled by the inverse. Command files rely on it.
void fft_ooura_complex(const ArrayRef& array, Direction direction) {
    write_both("('        Calling complex fft')");
    const int n = array.rows();
    if (n == 1) return;
    const Radix2Tables tables = ooura_tables(n, n);
    const bool inverse = direction == Direction::inverse;
    const auto first = parts(as_span<Complex8>(array).first(as_size(n)));
    for_columns<Complex8>(
        array, [&](std::span<Complex8>) { complex_transform(first, inverse ? -1 : 1, tables); });
    if (inverse) scale(as_span<Complex8>(array), 1.0 / n);
}

void fft_ooura(const ArrayRef& array, Direction direction) {
    if (!array.is(type_real) && !array.is(type_complex8))
        return print_both(" \n\tCommand is implemented for real or complex\n");
    if (!std::has_single_bit(as_size(array.rows())))
        return print_both(" \n\tThis routine requires n to be a power of 2. Returning without "
                          "calculations\n");
    return array.is(type_real) ? fft_ooura_real(array, direction)
                               : fft_ooura_complex(array, direction);
}

void cmd_fft(std::string_view) {
    const bool ferziger = has_flag(" -ferziger"), ooura = has_flag(" -ooura");
    const bool forward = has_flag(" -forward"), inverse = has_flag(" -inverse");
    if (ferziger && ooura) {
        print_both("\n\tCan only select one method\n");
        return print_both("\n\tReturning without calculations\n");
    }
    if (forward && inverse) {
        print_both(" \n\tBoth -forward and -inverse cannot be specified.\n");
        return print_both(" \n\tReturning without calculations\n");
    }
    const std::string name(get_arg(1));
    if (is_blank(name)) return print_both(" \n\tOne argument required\n");
    const ArrayRef array = find_array(name);
    if (!array) return not_found(name);
    if (name == fft_wsave || name == fft_ip || name == fft_w)
        return print_both(" \n\tA work array of fft cannot be transformed\n");
    const Direction direction = inverse ? Direction::inverse : Direction::forward;
    if (ferziger) return fft_ferziger(array, direction);
    return ooura ? fft_ooura(array, direction) : fft_default(array, direction);
}

// --- fft_helper

/// hp := h times the packed coefficients p, column by column; the imaginary parts of h at the two
/// ends count as zero.
/// h   in   (N/2 + 1, m);  p  in  N values;  hp  out  (N, m), zero on entry
void multiply_packed(Matrix<const Complex8> h, std::span<const double> p, Matrix<double> hp) {
    const int n = hp.rows;
    for (int c = 1; c <= h.cols; ++c) {
        hp(1, c) = h(1, c).real() * p.front();
        hp(n, c) = h(n / 2 + 1, c).real() * p.back();
        for (int i = 2; i <= n / 2; ++i) {
            const auto at = as_size(2 * i - 3);
            const double a = p[at], b = p[at + 1], re = h(i, c).real(), im = h(i, c).imag();
            hp(2 * i - 2, c) = re * a - im * b;
            hp(2 * i - 1, c) = re * b + im * a;
        }
    }
}

void cmd_fft_helper(std::string_view) {
    const std::string target(get_arg(3));
    if (is_blank(target)) return print_both(" \nThree arguments required\n");
    const ArrayRef h = find_array(get_arg(1)), p = find_array(get_arg(2));
    if (!h) return not_found(get_arg(1));
    if (!p) return not_found(get_arg(2));
    if (!h.is(type_complex8)) return print_both(" \nH must be complex. fft_helper quitting\n");
    if (!p.is(type_real)) return print_both(" \nP must be real. fft_helper quitting\n");
    if (p.size() != p.rows() && p.size() != p.cols()) {
        print_both(" \nP must be an N-dimensional vector");
        return print_both(" \nfft_helper quitting\n");
    }
    const auto n = static_cast<int>(p.size());
    if (h.rows() != n / 2 + 1) {
        print_both(" \nH must have N/2+1 rows and P must have N rows");
        return print_both(" \nfft_helper quitting\n");
    }
    const std::int64_t functions = h.size() / h.rows();
    if (functions > std::numeric_limits<std::int32_t>::max())
        return print_both(" \nH has too many columns. fft_helper quitting\n");
    const int m = static_cast<int>(functions);
    Result result(target, "$fft_helper");
    multiply_packed({static_cast<const Complex8*>(h.data), h.rows(), m}, as_span<const double>(p),
                    result.matrix<double>(n, m));
    result.place();
}

constexpr Command rows[] = {
    {.words = {"fft"},
     .run = cmd_fft,
     .summary = "Fourier transform of the columns of an array",
     .help =
         "Command Syntax\n\tfft arg1 [-ferziger] [-ooura] [-forward] [-inverse]\n\n"
         "Replaces each column of arg1, N equally spaced values a(0) to a(N-1), by its discrete "
         "Fourier transform, or back. A forward and an inverse transform by one method give the "
         "input.\n\n"
         "arg1\n\tthe values, (N,m)\n"
         "-ferziger\n\tradix-2 transform of a complex array, N a power of 2: A(k) is the sum of "
         "a(j) exp(-2 pi i jk/N)\n"
         "-ooura\n\ttransform of a real or complex array, N a power of 2, with exp(+2 pi i jk/N). "
         "Of a complex array only the first column is transformed, as often as there are "
         "columns. A real column then holds A(0), A(N/2) and real and imaginary part of A(1), "
         "A(2) ... A(N/2-1)\n"
         "-forward\n\tvalues to coefficients (the default)\n"
         "-inverse\n\tcoefficients to values (default: forward)\n\n"
         "Without -ferziger and -ooura arg1 is real and N any number. A(k) is the sum of a(j) "
         "exp(-2 pi i jk/N), not scaled; a column then holds A(0), real and imaginary part of "
         "A(1), A(2) ..., and for even N the real A(N/2) in the last row. This is the order "
         "that fft_helper takes.\n\n"
         "Creates $fft_wsave, with -ooura $fft_ip and $fft_w, for further calls with the same "
         "N; they must not be changed.\n\n"
         "Example\n\tseries a x=0,1 inc=0.125\n\tfft a\n\tfft a -inverse\n\n"
         "See Also\n\tfft_helper\n"},
    {.words = {"fft_helper"},
     .run = cmd_fft_helper,
     .summary = "transfer functions times packed coefficients",
     .help =
         "Command Syntax\n\tfft_helper H P HP\n\n"
         "Multiplies transfer functions with the coefficients that fft, without -ferziger and "
         "-ooura, gives for a load history; fft -inverse then gives the time histories of the "
         "response. There are no defaults.\n\n"
         "H\n\ttransfer functions, complex, (N/2+1,m): frequency 0 in the first row, N/2 in the "
         "last; imaginary parts in these two rows are not used\n"
         "P\n\tpacked coefficients, real vector of even length N\n"
         "HP\n\tthe products, created real (N,m)\n\n"
         "Example\n\tinput P r=4\n\t1\n\t2\n\t4\n\t8\n\tfft P\n\tinputc H r=3\n\t1 0\n\t0.5 0.5\n"
         "\t0 0\n\tfft_helper H P HP\n\tfft HP -inverse\n\n"
         "See Also\n\tfft\n"},
};

} // namespace

std::span<const Command> fft_rows() {
    return rows;
}

} // namespace quelor
