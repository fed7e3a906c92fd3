// Arrays from arrays: other element types, other dimensions, and the dimensions themselves.
// Reads the array named by the first argument (`to_complex2` also the second); writes it or the
// array named by the last. A result that may bear the name of an input is built under a temporary
// name first.
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/matrix1.hpp"

#include <algorithm>
#include <numeric>
#include <vector>

namespace quelor {

namespace {

// --- to_int, to_real, to_real16, to_complex -----------------------------------------------------

std::int32_t truncated_real_part(Complex8 z) {
    return truncated_int(z.real());
}
double real_part(Complex8 z) {
    return z.real();
}
template <class To, class From> To same_value(From x) {
    return static_cast<To>(x);
}

/// Stores rule(x) of every element; both arrays have the same number of elements.
template <class To, class From, To (*rule)(From)>
void convert_elements(const ArrayRef& from, void* to) {
    std::ranges::transform(as_span<const From>(from), static_cast<To*>(to), rule);
}

struct Conversion {
    TypeCode target, source;
    void (*run)(const ArrayRef& from, void* to);
};

constexpr Conversion conversions[] = {
    {type_integer, type_real, convert_elements<std::int32_t, double, nearest_int>},
    {type_integer, type_complex8, convert_elements<std::int32_t, Complex8, truncated_real_part>},
    {type_real, type_integer, convert_elements<double, std::int32_t, same_value>},
    {type_real, type_real16, convert_elements<double, long double, same_value>},
    {type_real, type_complex8, convert_elements<double, Complex8, real_part>},
    {type_real16, type_real, convert_elements<long double, double, same_value>},
    {type_complex8, type_integer, convert_elements<Complex8, std::int32_t, same_value>},
    {type_complex8, type_real, convert_elements<Complex8, double, same_value>},
};
constexpr Conversion truncation{type_integer, type_real,
                                convert_elements<std::int32_t, double, truncated_int>};

/// Null when the pair of types is not supported.
const Conversion* find_conversion(TypeCode target, std::int32_t source) {
    if (target == type_integer && source == type_real && has_flag(" -trunc")) return &truncation;
    const auto* const found = std::ranges::find_if(conversions, [&](const Conversion& entry) {
        return entry.target == target && entry.source == source;
    });
    return found == std::end(conversions) ? nullptr : found;
}

template <TypeCode target_type> void cmd_convert(std::string_view) {
    const std::string source(get_arg(1));
    if (is_blank(source)) return print_both(" \n\tOne argument required\n");
    const std::string target(is_blank(get_arg(2)) ? source : get_arg(2));
    const ArrayRef from = find_array(source);
    if (!from) return not_found(source);
    if (from.type == target_type) {
        if (target != source) copy_array(source, target);
        return;
    }
    const Conversion* const conversion = find_conversion(target_type, from.type);
    if (!conversion) return print_both(" \n\tCannot convert these data types\n");
    Result result(target, "$convert");
    conversion->run(from, result.create(target_type, from.dims));
    result.place();
}

// --- to_complex2 --------------------------------------------------------------------------------

template <class T>
void join_parts(const ArrayRef& real, const ArrayRef& imaginary, std::span<Complex8> result) {
    const auto re = as_span<const T>(real), im = as_span<const T>(imaginary);
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = {static_cast<double>(re[i]), static_cast<double>(im[i])};
}

void join_by_type(const ArrayRef& real, const ArrayRef& imaginary, std::span<Complex8> result) {
    switch (real.type) {
    case type_integer:
        return join_parts<std::int32_t>(real, imaginary, result);
    case type_real:
        return join_parts<double>(real, imaginary, result);
    default:
        return join_parts<long double>(real, imaginary, result);
    }
}

void cmd_to_complex2(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const ArrayRef real = find_array(get_arg(1)), imaginary = find_array(get_arg(2));
    if (!real) return not_found(get_arg(1));
    if (!imaginary) return not_found(get_arg(2));
    if (real.type != imaginary.type)
        return print_both(" \n\tArguments 1 and 2 must be of same type\n");
    if (real.is(type_complex8) || real.is(type_complex4))
        return print_both(" \n\tArguments are complex; can not convert\n");
    if (!real.is(type_integer) && !real.is(type_real) && !real.is(type_real16))
        return print_both(" \n\tCannot convert these data types\n");
    if (real.rows() != imaginary.rows() || real.cols() != imaginary.cols() ||
        real.size() != imaginary.size())
        return print_both(" \n\tArguments not same dimension\n");
    Result result(get_arg(3), "$to_complex2");
    auto* const data = static_cast<Complex8*>(result.create(type_complex8, real.dims));
    join_by_type(real, imaginary, {data, as_size(real.size())});
    result.place();
}

// --- dimensions ---------------------------------------------------------------------------------

void cmd_to_vector(std::string_view) {
    const std::string_view name = get_arg(1);
    if (is_blank(name)) return print_both(" \n\tOne argument required.\n\tto_vector quitting.");
    const ArrayRef array = find_array(name);
    if (!array) {
        not_found(name);
        return print_both(" \n\tto_vector quitting.");
    }
    if (array.ndim() == 1) return;
    const std::int32_t length = *std::ranges::max_element(array.dims);
    if (array.size() != length)
        return print_both(" \n\tArray is not a \"vector\".\n\tto_vector quitting.\n");
    make_vector(name, length);
}

void cmd_get_dim(std::string_view) {
    const std::string_view name = get_arg(1), target = get_arg(2);
    if (is_blank(target)) return print_both(" \n\tTwo arguments required\n");
    const ArrayRef array = find_array(name);
    if (!array) return not_found(name);
    const bool rows = has_flag(" -rows"), cols = has_flag(" -cols");
    if (rows && !cols) return create_int_scalar(target, array.rows());
    if (cols && !rows) return create_int_scalar(target, array.cols());
    const std::vector<std::int32_t> dims(array.dims.begin(), array.dims.end());
    const auto vector = create_matrix<std::int32_t>(target, array.ndim(), 0);
    std::ranges::copy(dims, vector.data);
}

void cmd_dim_reduce(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string name(get_arg(1)), target(get_arg(2));
    std::int32_t index = 1;
    get_int_par(" index=", index);
    const ArrayRef array = find_array(name);
    if (!array) return not_found(name);
    if (array.ndim() < 2) return print_both(" \n\targ1 must be at least a 2-D array\n");
    if (array.ndim() != 3) return print_both(" \n\targ1 must be 3-D in current implementation\n");
    if (index < 1 || index > array.dim(3)) return print_both(" \n\tindex is out of range\n");
    Result result(target, "$dim_reduce");
    const auto bytes = array_byte_size(array.type, array.dims.first(2));
    void* const table = result.create(array.type, {array.rows(), array.cols()});
    if (!table) return; // a type that cannot be created; said already
    const auto* const tables = static_cast<const std::byte*>(array.data);
    std::copy_n(tables + bytes * static_cast<std::uint64_t>(index - 1), bytes,
                static_cast<std::byte*>(table));
    result.place();
}

constexpr Command rows[] = {
    {.words = {"to_int"},
     .run = cmd_convert<type_integer>,
     .summary = "convert an array to integer",
     .help =
         "Command Syntax\n\tto_int arg1 [arg2] [-trunc]\n\n"
         "Converts a real or complex array to integer. Reals are rounded to the nearest integer, halves away from zero; of a complex array the real part is truncated.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n"
         "-trunc\n\ttruncate reals (default: round)\n\n"
         "Example\n\tto_int a k -trunc\n\nSee Also\n\tto_real, to_complex, to_vector\n"},
    {.words = {"to_real"},
     .run = cmd_convert<type_real>,
     .summary = "convert an array to real",
     .help =
         "Command Syntax\n\tto_real arg1 [arg2]\n\n"
         "Converts an integer, real(16) or complex array to real; of a complex array the real part is kept.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n\n"
         "Example\n\tto_real k a\n\nSee Also\n\tto_int, to_real16, to_complex\n"},
    {.words = {"to_real16"},
     .run = cmd_convert<type_real16>,
     .summary = "convert a real array to real(16)",
     .help = "Command Syntax\n\tto_real16 arg1 [arg2]\n\n"
             "Converts a real array to real(16).\n\n"
             "arg2\n\tname of the result (default: it replaces arg1)\n\n"
             "Example\n\tto_real16 a a16\n\nSee Also\n\tto_real, psolve16\n"},
    {.words = {"to_complex"},
     .run = cmd_convert<type_complex8>,
     .summary = "convert an array to complex",
     .help = "Command Syntax\n\tto_complex arg1 [arg2]\n\n"
             "Converts an integer or real array to complex, with imaginary parts 0.\n\n"
             "arg2\n\tname of the result (default: it replaces arg1)\n\n"
             "Example\n\tto_complex a z\n\nSee Also\n\tto_complex2, to_real, conjugate\n"},
    {.words = {"to_complex2"},
     .run = cmd_to_complex2,
     .summary = "complex array from real and imaginary part",
     .help =
         "Command Syntax\n\tto_complex2 arg1 arg2 arg3\n\n"
         "Creates the complex array arg3 with arg1 as real part and arg2 as imaginary part. Both must have the same type, not complex, and the same dimensions. There are no defaults.\n\n"
         "Example\n\tto_complex2 re im z\n\nSee Also\n\tto_complex, inputc\n"},
    {.words = {"to_vector"},
     .run = cmd_to_vector,
     .summary = "make a row or column a vector",
     .help =
         "Command Syntax\n\tto_vector arg1\n\n"
         "Changes arg1, an array with one dimension above 1 at most, to a vector: A(N,1) and A(1,N) become A(N). The data stays in its place. There are no defaults.\n\n"
         "Example\n\tto_vector a\n\nSee Also\n\tget_dim, dim_reduce, trans\n"},
    {.words = {"get_dim"},
     .run = cmd_get_dim,
     .summary = "dimensions of an array",
     .help =
         "Command Syntax\n\tget_dim arg1 arg2 [-rows] [-cols]\n\n"
         "Creates arg2 from the dimensions of arg1: an integer vector of all of them.\n\n"
         "-rows\n\targ2 is an integer scalar, the number of rows (default: all dimensions)\n"
         "-cols\n\targ2 is an integer scalar, the number of columns (default: all dimensions)\n\n"
         "With both flags arg2 holds all dimensions.\n\n"
         "Example\n\tget_dim a n -rows\n\nSee Also\n\tls, to_vector\n"},
    {.words = {"dim_reduce"},
     .run = cmd_dim_reduce,
     .summary = "matrix of a 3-D array at an index",
     .help =
         "Command Syntax\n\tdim_reduce arg1 arg2 index=?\n\n"
         "Drops the last dimension of the 3-D array arg1: creates the matrix arg2 of its elements at that index.\n\n"
         "index\n\tindex in the last dimension (default = 1)\n\n"
         "Example\n\tdim_reduce a b index=2\n\nSee Also\n\tarray3d_slice, get_dim\n"},
};

} // namespace

std::span<const Command> matrix1_convert_rows() {
    return rows;
}

} // namespace quelor
