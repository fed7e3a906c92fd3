// Rows chosen by a value, rows in order, and the interpolation of a table.
// `extract` and `sort` read the array named by the first argument and write the one named by the
// last; `interpolate` reads three arrays and writes the fourth. A row vector counts as a column.
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/blocks.hpp"
#include "matrix/matrix2.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <vector>

namespace quelor {

namespace {

/// The array's rows as they are to be chosen or sorted.
template <class T> Matrix<const T> rows_of(const ArrayRef& array) {
    const auto matrix = as_matrix<const T>(array);
    return matrix.rows == 1 ? Matrix<const T>{matrix.data, matrix.cols, 1} : matrix;
}

/// Columns of the array as rows_of gives it.
int chosen_columns(const ArrayRef& array) {
    return array.rows() == 1 ? 1 : array.cols();
}

/// Row i of the result is row order[i] of the array.
template <class T>
void gather_rows(const Matrix<const T>& from, std::span<const std::int32_t> order, T* to) {
    for (int j = 1; j <= from.cols; ++j) {
        const auto column = from.col(j);
        for (const std::int32_t row : order)
            *to++ = column[as_size(row)];
    }
}

// --- extract ------------------------------------------------------------------------------------

enum class Comparison { lt, le, eq, ge, gt, ne };

Comparison comparison() {
    static constexpr std::string_view flags[] = {" -lt", " -le", " -eq", " -ge", " -gt", " -ne"};
    for (std::size_t i = 0; i < std::size(flags); ++i)
        if (has_flag(flags[i])) return static_cast<Comparison>(i);
    return Comparison::eq;
}

/// The value compared with, as it stands on the line in each type.
struct Value {
    std::int32_t integer = 0;
    double real = 0;
    Complex8 complex = 0;
};

Value value_par() {
    Value value;
    for (const std::string_view key : {" v=", " value="}) { // the second counts before the first
        get_int_par(key, value.integer);
        get_real_par(key, value.real);
        get_complex_par(key, {&value.complex, 1});
    }
    return value;
}

struct Criterion {
    int column = 0;
    Comparison comparison = Comparison::eq;
    double tolerance = 0;
    Value value{};
};

/// The form in which elements are compared.
template <class T> auto comparable(T x) {
    if constexpr (std::same_as<T, std::int32_t>)
        return static_cast<double>(x);
    else if constexpr (std::floating_point<T>)
        return x;
    else
        return Complex8(x);
}
/// What an order is told by: a complex number's modulus.
auto rank(auto x) {
    if constexpr (std::same_as<decltype(x), Complex8>)
        return complex_modulus(x);
    else
        return x;
}

bool compare(Comparison how, auto x, auto value) {
    switch (how) {
    case Comparison::lt:
        return x < value;
    case Comparison::le:
        return x <= value;
    case Comparison::ge:
        return x >= value;
    default:
        return x > value;
    }
}

template <class T> auto value_of(const Value& value) {
    if constexpr (std::same_as<T, std::int32_t>)
        return comparable(value.integer);
    else if constexpr (std::floating_point<T>)
        return static_cast<T>(value.real);
    else
        return value.complex;
}

/// Rows, counted from 0, whose element in the column meets the criterion.
template <class T>
std::vector<std::int32_t> matching_rows(const ArrayRef& array, const Criterion& criterion) {
    const auto column = rows_of<T>(array).col(criterion.column);
    const auto value = value_of<T>(criterion.value);
    std::vector<std::int32_t> rows;
    const auto note_if = [&](auto matches) {
        for (std::size_t i = 0; i < column.size(); ++i)
            if (matches(comparable(column[i]))) rows.push_back(static_cast<std::int32_t>(i));
    };
    const auto equal = [&](auto x) {
        return x == value || std::abs(rank(x - value)) <= criterion.tolerance;
    };
    if (criterion.comparison == Comparison::eq)
        note_if(equal);
    else if (criterion.comparison == Comparison::ne)
        note_if([&](auto x) { return !equal(x); });
    else
        note_if([&](auto x) { return compare(criterion.comparison, rank(x), rank(value)); });
    return rows;
}

template <class T> void extract(const ArrayRef& array, const Criterion& criterion, Result& result) {
    const auto rows = matching_rows<T>(array, criterion);
    if (rows.empty()) return print_both(" \nNo matches found in extract.\n");
    const auto n = static_cast<std::int32_t>(rows.size());
    void* const data = array.ndim() == 1 ? result.create(array.type, {n})
                                         : result.create(array.type, {n, chosen_columns(array)});
    gather_rows(rows_of<T>(array), rows, static_cast<T*>(data));
    result.place();
}

void cmd_extract(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string source(get_arg(1)), target(get_arg(2));
    Criterion criterion{.comparison = comparison(), .value = value_par()};
    get_int_par(" c=", criterion.column);
    get_int_par(" col=", criterion.column);
    get_real_par(" tol=", criterion.tolerance);
    const ArrayRef array = find_array(source);
    if (!array) return not_found(source);
    if (array.ndim() > 2) return print_both(" \n\tArray dimensions must be <= 2\n");
    if (criterion.column < 1 || criterion.column > chosen_columns(array))
        return print_both(" \n\tInvalid column number\n");
    Result result(target, "$extract", {source});
    switch (array.type) {
    case type_integer:
        return extract<std::int32_t>(array, criterion, result);
    case type_real:
        return extract<double>(array, criterion, result);
    case type_real16:
        return extract<long double>(array, criterion, result);
    case type_complex4:
        return extract<Complex4>(array, criterion, result);
    case type_complex8:
        return extract<Complex8>(array, criterion, result);
    default:
        return print_both(" \n\tNot implemented for array type\n");
    }
}

// --- sort ---------------------------------------------------------------------------------------

using SortKeys = std::array<std::int32_t, 3>; // column numbers, 0 none

/// Ascending, and what is not a number behind all numbers.
template <class T> bool comes_before(T a, T b) {
    if constexpr (std::floating_point<T>) {
        if (std::isnan(a) || std::isnan(b)) return !std::isnan(a) && std::isnan(b);
    }
    return a < b;
}

/// Rows, counted from 0, in the order of the keys; rows with equal keys stay in their order.
template <class T>
std::vector<std::int32_t> sorted_rows(const Matrix<const T>& from, SortKeys keys, bool reverse) {
    struct Entry {
        T key; // the first key beside the row, so that most comparisons look at nothing else
        std::int32_t row;
    };
    const auto before = [&](const Entry& a, const Entry& b) {
        if (comes_before(a.key, b.key)) return true;
        if (comes_before(b.key, a.key)) return false;
        for (const std::int32_t key : {keys[1], keys[2]}) {
            if (key == 0) continue;
            const T x = from(a.row + 1, key), y = from(b.row + 1, key);
            if (comes_before(x, y)) return true;
            if (comes_before(y, x)) return false;
        }
        return false;
    };
    std::vector<Entry> entries;
    entries.reserve(as_size(from.rows));
    for (const T& key : from.col(keys[0]))
        entries.push_back({key, static_cast<std::int32_t>(entries.size())});
    if (reverse)
        std::ranges::stable_sort(entries,
                                 [&](const Entry& a, const Entry& b) { return before(b, a); });
    else
        std::ranges::stable_sort(entries, before);
    std::vector<std::int32_t> order(entries.size());
    std::ranges::transform(entries, order.begin(), &Entry::row);
    return order;
}

template <class T> void sort(const ArrayRef& array, SortKeys keys, bool reverse, Result& result) {
    const auto from = rows_of<T>(array);
    const auto order = sorted_rows(from, keys, reverse);
    gather_rows(from, order, static_cast<T*>(result.create(array.type, array.dims)));
    result.place();
}

void cmd_sort(std::string_view) {
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    const std::string source(get_arg(1)), target(is_blank(get_arg(2)) ? source : get_arg(2));
    SortKeys keys{1, 0, 0};
    get_int_par("key=", keys);
    const bool reverse = has_flag(" -reverse");
    const ArrayRef array = find_array(source);
    if (!array) return not_found(source);
    if (array.ndim() > 2) return print_both(" \n\tArray dimensions must be <= 2\n");
    const int cols = chosen_columns(array);
    if (keys[0] < 1 || std::ranges::any_of(keys, [&](auto key) { return key < 0 || key > cols; }))
        return print_both(" \n\tInvalid sort key\n");
    Result result(target, "$sort", {source});
    switch (array.type) {
    case type_integer:
        return sort<std::int32_t>(array, keys, reverse, result);
    case type_real:
        return sort<double>(array, keys, reverse, result);
    case type_real16:
        return sort<long double>(array, keys, reverse, result);
    default:
        return print_both(" \n\tNot implemented for array type\n");
    }
}

// --- interpolate --------------------------------------------------------------------------------

/// Between which rows of the table a point lies, counted from 0, and where: the value is
/// f[row] + weight (f[row + 1] - f[row]), with a weight that is no number for a point that is none.
/// Outside the table row is `below` or `above`.
struct Location {
    std::ptrdiff_t row;
    double weight;
};
constexpr std::ptrdiff_t below = -1, above = -2;

/// The last t[k] <= x and its neighbour: t[k] <= x < t[k + 1] holds for a table in any order.
Location locate(std::span<const double> t, double x) {
    if (x < t.front()) return {below, 0};
    if (x > t.back()) return {above, 0};
    if (x == t.back()) return {std::ssize(t) - 1, 0};
    std::size_t low = 0, high = t.size() - 1;
    while (high - low > 1) {
        const std::size_t middle = low + (high - low) / 2;
        (t[middle] <= x ? low : high) = middle;
    }
    return {static_cast<std::ptrdiff_t>(low), (x - t[low]) / (t[high] - t[low])};
}

/// What stands outside the range of the table; by default its first and last values.
struct Padding {
    bool has_before = false, has_behind = false;
    Complex8 before = no_real, behind = no_real;
};

Padding padding_par() {
    Padding padding;
    get_complex_par(" prepad=", {&padding.before, 1});
    get_complex_par(" postpad=", {&padding.behind, 1});
    padding.has_before = padding.before != Complex8(no_real);
    padding.has_behind = padding.behind != Complex8(no_real);
    return padding;
}

template <class T> T padding_value(Complex8 z) {
    if constexpr (std::same_as<T, double>)
        return z.real();
    else
        return T(z);
}

template <class T>
void interpolate_column(std::span<const T> f, std::span<const Location> at, const Padding& padding,
                        T* to) {
    const T before = padding.has_before ? padding_value<T>(padding.before) : f.front();
    const T behind = padding.has_behind ? padding_value<T>(padding.behind) : f.back();
    using Weight = decltype(std::abs(T{}));
    const std::size_t last = f.size() - 1;
    for (const Location& location : at) {
        const auto row = as_size(std::max<std::ptrdiff_t>(location.row, 0));
        if (location.row == below)
            *to++ = before;
        else if (location.row == above)
            *to++ = behind;
        else if (location.weight == 0)
            *to++ = f[row]; // without the next value, which may be absent or infinite
        else
            *to++ = f[row] +
                    static_cast<Weight>(location.weight) * (f[std::min(row + 1, last)] - f[row]);
    }
}

struct Interpolation {
    ArrayRef tin, fin, tout;
    Padding padding;
};

template <class T> void interpolate(const Interpolation& table, Result& result) {
    const auto tin = as_span<const double>(table.tin), tout = as_span<const double>(table.tout);
    std::vector<Location> at(tout.size());
    std::ranges::transform(tout, at.begin(), [&](double x) { return locate(tin, x); });
    const auto fin = as_matrix<const T>(table.fin);
    auto* to = static_cast<T*>(
        result.create(table.fin.type, {static_cast<std::int32_t>(tout.size()), fin.cols}));
    for (int j = 1; j <= fin.cols; ++j, to += tout.size())
        interpolate_column(fin.col(j), at, table.padding, to);
    result.place();
}

bool is_vector(const ArrayRef& array) {
    return array.size() == std::max(array.rows(), array.cols());
}

void cmd_interpolate(std::string_view) {
    if (is_blank(get_arg(4)))
        return print_both(" \n\tFour arguments required\nInterpolate is quitting\n");
    const std::string tin(get_arg(1)), fin(get_arg(2)), tout(get_arg(3)), target(get_arg(4));
    const Interpolation table{find_array(tin), find_array(fin), find_array(tout), padding_par()};
    if (!table.tin) return not_found(tin);
    if (!table.fin) return not_found(fin);
    if (!table.tout) return not_found(tout);
    if (!table.tin.is(type_real))
        return print_both(" \nVector tin must be real\nInterpolate is quitting\n");
    if (!table.tout.is(type_real))
        return print_both(" \nVector tout must be real\nInterpolate is quitting\n");
    const bool is_complex = table.fin.is(type_complex8) || table.fin.is(type_complex4);
    if (!table.fin.is(type_real) && !is_complex)
        return print_both(" \nVector fin must be real or complex\nInterpolate is quitting\n");
    if (table.tin.size() != table.fin.rows() || !is_vector(table.tin) || table.fin.ndim() > 2)
        return print_both(" \nSize of tin and fin must be identical\nInterpolate is quitting\n");
    if (!is_vector(table.tout))
        return print_both(" \nArray tout must be a vector\nInterpolate is quitting\n");
    Result result(target, "$interpolate", {tin, fin, tout});
    if (table.fin.is(type_real)) return interpolate<double>(table, result);
    if (table.fin.is(type_complex4)) return interpolate<Complex4>(table, result);
    interpolate<Complex8>(table, result);
}

constexpr Command rows[] = {
    {.words = {"extract"},
     .run = cmd_extract,
     .summary = "rows that have a value in a column",
     .help =
         "Command Syntax\n\textract arg1 arg2 c=? v=? [tol=?] [-eq -ne -ge -gt -le -lt]\n\n"
         "Creates arg2 from the rows of arg1 whose element in column c compares as asked with the value v. arg1 is an integer, real, real(16) or complex matrix or vector; a row vector is treated as a column vector. Complex elements are compared by their absolute values, except for equality and inequality. Without a match nothing is made.\n\n"
         "c\n\tcolumn, also col= (no default)\n"
         "v\n\tvalue, also value=, in the type of arg1 (default = 0)\n"
         "tol\n\ttolerance of equality and inequality (default = 0)\n"
         "-eq\n\tequal to v within plus or minus tol (the default)\n"
         "-ne\n\tnot equal to v within plus or minus tol\n"
         "-ge -gt\n\tgreater than or equal to v, greater than v\n"
         "-le -lt\n\tless than or equal to v, less than v\n\n"
         "Example\n\tseries a x=0,1 inc=0.1\n\textract a b c=1 v=0.5 -gt\n\nSee Also\n\tsort, cp, max, min\n"},
    {.words = {"sort"},
     .run = cmd_sort,
     .summary = "sort the rows of an array",
     .help =
         "Command Syntax\n\tsort arg1 [arg2] [key=?,?,?] [-reverse]\n\n"
         "Sorts the rows of the integer, real or real(16) matrix or vector arg1 into ascending order. Rows with equal keys stay in their order; what is not a number comes behind all numbers. A row vector is treated as a column vector.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n"
         "key\n\tup to three columns; rows equal in the first are sorted by the second, and so on (default = 1)\n"
         "-reverse\n\tdescending order (default: ascending)\n\n"
         "Example\n\tinput a r=3 c=2\n\t2. 5.\n\t1. 7.\n\t2. 3.\n\tsort a b key=1,2\n\nSee Also\n\textract, max, min\n"},
    {.words = {"interpolate"},
     .run = cmd_interpolate,
     .summary = "linear interpolation of a table",
     .help =
         "Command Syntax\n\tinterpolate tin fin tout fout [prepad=?] [postpad=?]\n\n"
         "Creates fout(N,nfunc), the columns of the table fin(n,nfunc) at the N points of the vector tout, by linear interpolation between the points of the vector tin(n). tin and tout are real, tin ascending; fin is real or complex, and fout of its type.\n\n"
         "prepad\n\tvalue below the first point of tin (default: the first value of each column)\n"
         "postpad\n\tvalue above the last point of tin (default: the last value of each column)\n\n"
         "Example\n\tseries t x=0,3\n\tseries f x=0,6 inc=2\n\tseries tnew x=0,4 inc=0.5\n\tinterpolate t f tnew fnew postpad=0\n\nSee Also\n\tseries, poly\n"},
};

} // namespace

std::span<const Command> matrix2_select_rows() {
    return rows;
}

} // namespace quelor
