// Sums, products and quotients element by element.
// Reads the arrays named by the arguments; changes the first in place, or creates the last under a
// temporary name, so that it may bear the name of an input.
#include "matrix/algebra.hpp"

#include "kernel/gencom.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

namespace quelor {

namespace {

/// All elements of an array as columns, whatever its number of dimensions.
template <class T> Matrix<T> columns_of(const ArrayRef& ref, void* data) {
    return {static_cast<T*>(data), ref.rows(),
            static_cast<int>(ref.size() / std::max(ref.rows(), 1))};
}
template <class T> Matrix<T> columns_of(const ArrayRef& ref) {
    return columns_of<T>(ref, ref.data);
}

// --- add, sub ---

/// n rows and m columns of a matrix from row r, column c on.
struct Region {
    std::int32_t r = 1, c = 1, n = 0, m = 0;
};

/// The region of a that b is added to; of arrays with more than two dimensions the whole.
Region region_of(const ArrayRef& a, const ArrayRef& b) {
    const auto all = columns_of<const std::byte>(a);
    if (a.ndim() > 2) return {1, 1, all.rows, all.cols};
    Region region{1, 1, b.rows(), b.cols()};
    get_int_par(" c=", region.c);
    get_int_par(" m=", region.m);
    get_int_par(" r=", region.r);
    get_int_par(" n=", region.n);
    return region;
}

bool begins_inside(const Region& region, const ArrayRef& a) {
    return region.r >= 1 && region.r <= a.rows() && region.c >= 1 &&
           (a.ndim() > 2 || region.c <= a.cols()) && region.n >= 1 && region.m >= 1;
}

/// result = a op b on the region, whose size the two arrays cut.
template <class T, class Op>
void combine(Matrix<const T> a, Matrix<const T> b, Matrix<T> result, const Region& region, Op op) {
    const int rows = std::min({region.n, b.rows, a.rows - region.r + 1});
    const int cols = std::min({region.m, b.cols, a.cols - region.c + 1});
    for (int j = 1; j <= cols; ++j) {
        const T* const x = &a(region.r, region.c + j - 1);
        const T* const y = &b(1, j);
        T* const z = &result(region.r, region.c + j - 1);
        for (int i = 0; i < rows; ++i)
            z[i] = op(x[i], y[i]);
    }
}

template <class T, bool subtract>
void add_region(const ArrayRef& a, const ArrayRef& b, void* result, const Region& region) {
    Matrix<const T> y = columns_of<const T>(b);
    std::vector<T> copy;
    if (a.data == b.data && a.data == result) { // a region would overtake its own source
        copy.assign(y.data, y.data + b.size());
        y.data = copy.data();
    }
    const auto x = columns_of<const T>(a);
    const auto z = columns_of<T>(a, result);
    combine(x, y, z, region, [](T p, T q) { return subtract ? minus(p, q) : plus(p, q); });
}

template <bool subtract> void cmd_add(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tAt least two arguments required\n");
    const std::string target(get_arg(3));
    const ArrayPair arrays = find_arguments(1, 2);
    if (!arrays) return;
    const ArrayRef a = arrays.a, b = arrays.b;
    if (a.type != b.type || !is_numeric(a)) return print_both(" \n\tIncorrect types\n");
    if ((a.ndim() > 2 || b.ndim() > 2) && !same_dims(a, b))
        return print_both(" \n\tDimensions are incompatible\n");
    const Region region = region_of(a, b);
    if (!begins_inside(region, a)) return print_both(" \n\tRow or column is out of range\n");
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        if (is_blank(target)) return add_region<T, subtract>(a, b, a.data, region);
        Result result(target, algebra_work);
        add_region<T, subtract>(a, b, result.create(a.type, a.dims), region);
        result.place();
    });
}

// --- subcol ---

template <class T>
void subtract_columns(const ArrayRef& a, const ArrayRef& b, int first, void* data) {
    const auto x = columns_of<const T>(a);
    const auto y = columns_of<const T>(b);
    const auto z = columns_of<T>(a, data);
    for (int j = 1; j <= x.cols; ++j)
        for (int i = 1; i <= x.rows; ++i)
            z(i, j) = j < first ? x(i, j) : x(i, j) - y(i, j);
}

void cmd_subcol(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const std::string target(get_arg(3));
    std::int32_t c = 1;
    get_int_par(" c=", c);
    const ArrayPair arrays = find_arguments(1, 2);
    if (!arrays) return;
    const ArrayRef a = arrays.a, b = arrays.b;
    if (c < 1) return print_both(" \n\tColumn number must be positive\n");
    if (a.type != b.type) return print_both(" \n\tIncompatible types\n");
    if (a.is(type_integer)) return print_both(" \n\tCommand not implemented for integers\n");
    if (!is_numeric(a)) return print_both(" \n\tCommand not implemented for data type\n");
    if (!same_dims(a, b)) return print_both(" \n\tDimensions are incompatible\n");
    Result result(target, algebra_work);
    void* const data = result.create(a.type, a.dims);
    if (a.is(type_real))
        subtract_columns<double>(a, b, c, data);
    else
        subtract_columns<Complex8>(a, b, c, data);
    result.place();
}

// --- mult_elem ---

template <class T>
void combine_elements(const ArrayRef& a, const ArrayRef& b, void* data, bool divide) {
    const auto x = as_span<const T>(a), y = as_span<const T>(b);
    T* const z = static_cast<T*>(data);
    if (divide)
        std::ranges::transform(x, y, z, [](T p, T q) { return over(p, q); });
    else
        std::ranges::transform(x, y, z, [](T p, T q) { return times(p, q); });
}

void cmd_mult_elem(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string target(get_arg(3));
    const bool divide = has_flag("-inv");
    const ArrayPair arrays = find_arguments(1, 2);
    if (!arrays) return;
    const ArrayRef a = arrays.a, b = arrays.b;
    if (a.type != b.type) return print_both(" \n\tIncompatible types\n");
    if (!same_dims(a, b)) return print_both(" \n\tDimensions are incompatible\n");
    if (!is_numeric(a)) return print_both(" \n\tNot implemented for array types\n");
    if (divide && a.is(type_integer) && std::ranges::count(as_span<const std::int32_t>(b), 0))
        return print_both(" \n\tDivision by zero\n");
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        if (is_blank(target)) return combine_elements<T>(a, b, a.data, divide);
        Result result(target, algebra_work);
        combine_elements<T>(a, b, result.create(a.type, a.dims), divide);
        result.place();
    });
}

// --- scale ---

void get_value(std::int32_t& value) {
    get_int_par(" v=", value);
}
void get_value(double& value) {
    get_real_par(" v=", value);
}
void get_value(Complex8& value) {
    get_complex_par(" v=", {&value, 1});
}

template <class T> void scale_by(const ArrayRef& a, T factor) {
    if (has_flag("-inv")) {
        if (factor == T{}) return print_both(" \n\tDivision by zero\n");
        factor = over(T{1}, factor);
    }
    for (T& x : as_span<T>(a))
        x = times(x, factor);
}

void cmd_scale(std::string_view) {
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    const ArrayRef a = find_argument(1);
    if (!a) return;
    const bool by_array = !is_blank(get_arg(2));
    const ArrayRef b = by_array ? find_argument(2) : ArrayRef{};
    if (by_array && !b) return;
    if (by_array && a.type != b.type) return print_both(" \n\tIncompatible types\n");
    if (!is_numeric(a)) return print_both(" \n\tNot implemented for this type\n");
    std::array<std::int32_t, 2> e{1, 1};
    get_int_par("e=", e);
    const int row = e[0], col = e[1] == 0 ? 1 : e[1];
    if (by_array && (row < 1 || row > b.rows() || col < 1 || col > b.cols()))
        return print_both(" \n\tElement is out of range\n");
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        T factor{1};
        if (by_array)
            factor = as_matrix<const T>(b)(row, col);
        else
            get_value(factor);
        scale_by(a, factor);
    });
}

constexpr Command rows[] = {
    {.words = {"add"},
     .run = cmd_add<false>,
     .summary = "sum of two arrays",
     .help =
         "Command Syntax\n\tadd arg1 arg2 [arg3] [r=?] [c=?] [n=?] [m=?]\n\n"
         "Adds arg2 to a block of arg1. Both must have the same type: integer, real or complex. Arrays of more than two dimensions are added whole; they must have the same dimensions, and the parameters are ignored.\n\n"
         "arg3\n\tarray created for the result, with the dimensions of arg1; it is zero outside the block (default: the result replaces the block of arg1)\n"
         "r\n\tfirst row of the block in arg1 (default = 1)\n"
         "c\n\tfirst column of the block in arg1 (default = 1)\n"
         "n\n\tnumber of rows (default: the rows of arg2; cut to fit into arg1)\n"
         "m\n\tnumber of columns (default: the columns of arg2; cut to fit into arg1)\n\n"
         "Example\n\tzero a r=3 c=3\n\tident b r=2 c=2\n\tadd a b r=2 c=2\n\n"
         "See Also\n\tsub, subcol, sumcol, put, scale\n"},
    {.words = {"sub"},
     .run = cmd_add<true>,
     .summary = "difference of two arrays",
     .help =
         "Command Syntax\n\tsub arg1 arg2 [arg3] [r=?] [c=?] [n=?] [m=?]\n\n"
         "Subtracts arg2 from a block of arg1. Both must have the same type: integer, real or complex. Arrays of more than two dimensions are subtracted whole; they must have the same dimensions, and the parameters are ignored.\n\n"
         "arg3\n\tarray created for the result, with the dimensions of arg1; it is zero outside the block (default: the result replaces the block of arg1)\n"
         "r\n\tfirst row of the block in arg1 (default = 1)\n"
         "c\n\tfirst column of the block in arg1 (default = 1)\n"
         "n\n\tnumber of rows (default: the rows of arg2; cut to fit into arg1)\n"
         "m\n\tnumber of columns (default: the columns of arg2; cut to fit into arg1)\n\n"
         "Example\n\tzero a r=2 c=2 v=3\n\tident b r=2 c=2\n\tsub a b d\n\n"
         "See Also\n\tadd, subcol\n"},
    {.words = {"subcol"},
     .run = cmd_subcol,
     .summary = "difference of the last columns of two arrays",
     .help =
         "Command Syntax\n\tsubcol arg1 arg2 arg3 [c=?]\n\n"
         "Creates arg3 = arg1 - arg2, but for the first c - 1 columns, which are those of arg1. The two must have the same dimensions and the same type, real or complex.\n\n"
         "c\n\tfirst column that is subtracted (default = 1)\n\n"
         "Example\n\tzero a r=2 c=3 v=5\n\tzero b r=2 c=3 v=1\n\tsubcol a b d c=2\n\n"
         "See Also\n\tsub, sumcol\n"},
    {.words = {"mult_elem"},
     .run = cmd_mult_elem,
     .summary = "multiply or divide element by element",
     .help =
         "Command Syntax\n\tmult_elem arg1 arg2 [arg3] [-inv]\n\n"
         "Multiplies each element of arg1 by that of arg2. Both must have the same dimensions and the same type: integer, real or complex.\n\n"
         "arg3\n\tarray created for the result (default: it replaces arg1)\n"
         "-inv\n\tdivide by the elements of arg2 (default: multiply); integer quotients are truncated\n\n"
         "Example\n\tzero a r=2 c=2 v=3\n\tident b r=2 c=2\n\tmult_elem a b d\n\n"
         "See Also\n\tmult, mult_col, scale\n"},
    {.words = {"scale"},
     .run = cmd_scale,
     .summary = "multiply an array by a number",
     .help =
         "Command Syntax\n\tscale arg1 [arg2 e=?,?] [v=?] [-inv]\n\n"
         "Multiplies the integer, real or complex array arg1 by a number; nothing is created.\n\n"
         "arg2\n\tarray of the type of arg1 that holds the number (default: v is taken)\n"
         "e\n\trow and column of the number in arg2 (default = 1,1)\n"
         "v\n\tthe number, when there is no arg2; two values for a complex array (default = 1)\n"
         "-inv\n\tmultiply by 1 divided by the number (default: by the number)\n\n"
         "Example\n\tident a r=2 c=2\n\tscale a v=3\n\n"
         "See Also\n\tadd, mult_elem\n"},
};

} // namespace

std::span<const Command> algebra_elements_rows() {
    return rows;
}

} // namespace quelor
