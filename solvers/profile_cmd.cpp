// Profile matrices at the prompt: solution, product, and conversion from and to full matrices.
// Reads the arrays named by the arguments; `psolve` changes its first two in place, the others
// create their result under a temporary name, so that it may bear the name of an input.
#include "solvers/profile_cmd.hpp"

#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "solvers/matrix.hpp"

#include <algorithm>
#include <limits>

namespace quelor {

namespace {

using Loc = std::span<const std::int32_t>;

/// All columns of an array, whatever its number of dimensions.
template <class T> Matrix<T> columns_of(const ArrayRef& ref) {
    const auto cols = ref.size() / std::max(ref.rows(), 1);
    return {static_cast<T*>(ref.data), ref.rows(), static_cast<int>(cols)};
}

/// The array named by argument n; absent: the not-found line.
ArrayRef find_argument(int n) {
    const ArrayRef array = find_array(get_arg(n));
    if (!array) not_found(get_arg(n));
    return array;
}

template <class T> void solve_in_place(const ArrayRef& a, const ArrayRef& b, Loc loc, int digits) {
    const auto elements = as_span<T>(a);
    factor_profile(elements, loc, digits);
    profile_solve(elements, columns_of<T>(b), loc, ProfileMode::both);
}

void cmd_psolve(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    std::int32_t digits = 0;
    get_int_par("digits=", digits);
    if (digits < 1) digits = default_digits;
    const ArrayRef a = find_argument(1);
    if (!a) return;
    const ArrayRef b = find_argument(2);
    if (!b) return;
    const ArrayRef locations = find_argument(3);
    if (!locations) return;
    if (a.type != b.type) return print_both(" \n\targ1 and arg2 must be same type\n");
    if (!locations.is(type_integer)) return print_both(" \n\targ3 must be type integer\n");
    if (b.rows() != locations.size() - 1)
        return print_both(" \n\tDimensions of arrays not compatible\n");
    if (!a.is(type_real) && !a.is(type_complex8))
        return print_both(" \n\tNot implemented for array type\n");
    const auto loc = as_span<const std::int32_t>(locations);
    if (!profile_is_valid(loc, a.size()))
        return print_both(" \n\tDimensions of arrays not compatible\n");
    if (a.is(type_real)) return solve_in_place<double>(a, b, loc, digits);
    solve_in_place<Complex8>(a, b, loc, digits);
}

void cmd_psolve16(std::string_view) {
    print_both(" \n\tCompiler does not support real*16\n");
}

template <class T> void multiply(const ArrayRef& a, const ArrayRef& b, void* c, Loc loc) {
    const auto columns = columns_of<const T>(b);
    profile_multiply(as_span<const T>(a), columns, {static_cast<T*>(c), columns.rows, columns.cols},
                     loc);
}

void cmd_pmult(std::string_view) {
    if (is_blank(get_arg(4))) return print_both(" \n\tFour arguments required\n");
    const ArrayRef a = find_argument(1);
    if (!a) return;
    const ArrayRef b = find_argument(2);
    if (!b) return;
    const ArrayRef locations = find_argument(4);
    if (!locations) return;
    if (b.rows() != locations.size() - 1)
        return print_both(" \n\tDimensions of arrays not compatible\n");
    if (a.type != b.type || !locations.is(type_integer))
        return print_both(" \n\tIncompatible types\n");
    if (!a.is(type_real) && !a.is(type_complex8))
        return print_both(" \n\tNot implemented for array type\n");
    const auto loc = as_span<const std::int32_t>(locations);
    if (!profile_is_valid(loc, a.size()))
        return print_both(" \n\tDimensions of arrays not compatible\n");
    Result result(get_arg(3), "$pmult");
    void* const c = result.create(a.type, b.dims);
    if (a.is(type_real))
        multiply<double>(a, b, c, loc);
    else
        multiply<Complex8>(a, b, c, loc);
    result.place();
}

template <class T> void expand(const ArrayRef& profile, Loc loc, Result& result) {
    const int n = static_cast<int>(loc.size()) - 1;
    const auto a = as_span<const T>(profile);
    const auto full = result.matrix<T>(n, n);
    for (int j = 1; j <= n; ++j) {
        const auto diagonal = nth(loc[nth(j)]);
        const int height = loc[as_size(j)] - loc[nth(j)] - 1;
        for (int k = 0; k <= height; ++k)
            full(j - k, j) = full(j, j - k) = a[diagonal + as_size(k)];
    }
}

void cmd_ptoful(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const ArrayRef a = find_argument(1);
    if (!a) return;
    const ArrayRef locations = find_argument(3);
    if (!locations) return;
    if (!a.is(type_real) && !a.is(type_complex8))
        return print_both(" \n\tCommand not implemented for array type\n");
    if (!locations.is(type_integer)) return print_both(" \n\targ3 must be type integer\n");
    const auto loc = as_span<const std::int32_t>(locations);
    if (!profile_is_valid(loc, a.size()))
        return print_both(" \n\tDimensions of arrays not compatible\n");
    Result result(get_arg(2), "$ptoful");
    if (a.is(type_real))
        expand<double>(a, loc, result);
    else
        expand<Complex8>(a, loc, result);
    result.place();
}

/// Locations of the profile of the upper triangle; 64 bits, as they may leave the range of an
/// array.
template <class T> std::vector<std::int64_t> profile_locations(Matrix<const T> full) {
    std::vector<std::int64_t> loc{1};
    for (int j = 1; j <= full.cols; ++j) {
        int i = 1;
        while (i < j && full(i, j) == T{})
            ++i;
        loc.push_back(loc.back() + (j - i) + 1);
    }
    return loc;
}

template <class T> void to_profile(const ArrayRef& array) {
    const std::string a_name(get_arg(2)), loc_name(get_arg(3));
    const auto full = as_matrix<const T>(array);
    const auto loc = profile_locations(full);
    if (loc.back() > std::numeric_limits<std::int32_t>::max())
        return print_both(" \n\tDimensions of arrays not compatible\n");
    Result result(a_name, "$ftopro");
    const auto a = result.matrix<T>(static_cast<int>(loc.back() - 1), 0);
    for (int j = 1; j <= full.cols; ++j) {
        const auto first = loc[nth(j)], end = loc[as_size(j)];
        for (auto k = first; k < end; ++k)
            a.data[k - 1] = full(j - static_cast<int>(k - first), j);
    }
    const int n = full.cols;
    result.place();
    const auto locations = create_matrix<std::int32_t>(loc_name, n + 1, 0);
    std::ranges::transform(loc, locations.data,
                           [](std::int64_t x) { return static_cast<std::int32_t>(x); });
}

void cmd_ftopro(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const ArrayRef full = find_argument(1);
    if (!full) return;
    if (full.rows() != full.cols() || full.size() != std::int64_t{full.rows()} * full.cols())
        return print_both(" \n\tMatrix not square\n");
    if (full.is(type_real)) return to_profile<double>(full);
    if (full.is(type_complex8)) return to_profile<Complex8>(full);
    print_both(" \n\tCommand not implemented for array type\n");
}

constexpr Command rows[] = {
    {.words = {"psolve"},
     .run = cmd_psolve,
     .summary = "solve with a profile matrix",
     .help =
         "Command Syntax\n\tpsolve arg1 arg2 arg3 [digits=?]\n\n"
         "Solves A x = b for a symmetric matrix A in profile form: the columns of the upper triangle, each from the diagonal upward to its highest nonzero element. The matrix is factored, A = L D Transpose(L), without pivoting. Nothing is created: arg1 is replaced by its factors and arg2 by the solution, so a second psolve with the same arg1 factors the factors.\n\n"
         "arg1\n\tprofile matrix, real or complex (symmetric, not Hermitian)\n"
         "arg2\n\tright-hand sides, one a column, of the type of arg1\n"
         "arg3\n\tinteger vector, the positions of the diagonals in arg1, and one more for the end\n"
         "digits\n\ta warning names each equation whose diagonal loses at least this many digits; real matrices only (default = 7)\n\n"
         "A zero on the diagonal during factorization stops the program; the database is saved.\n\n"
         "Example\n\tident k r=2 c=2\n\tftopro k a loc\n\tzero x r=2 c=1 v=3\n\tpsolve a x loc\n\n"
         "See Also\n\tpmult, ptoful, ftopro, gauss, lsolve\n"},
    {.words = {"psolve16"},
     .run = cmd_psolve16,
     .summary = "solve with a profile matrix in real(16)",
     .help =
         "Command Syntax\n\tpsolve16 arg1 arg2 arg3\n\n"
         "Stands for psolve in real(16), which this version of the program does not have: a message says so. There are no defaults and nothing is created.\n\n"
         "Example\n\tpsolve16 a b loc\n\nSee Also\n\tpsolve, to_real16\n"},
    {.words = {"pmult"},
     .run = cmd_pmult,
     .summary = "product of a profile matrix and a matrix",
     .help =
         "Command Syntax\n\tpmult arg1 arg2 arg3 arg4\n\n"
         "Creates arg3 = arg1 * arg2 with the dimensions of arg2. There are no defaults.\n\n"
         "arg1\n\tsymmetric matrix in profile form, real or complex, not factored\n"
         "arg2\n\tmatrix or vector of the type of arg1\n"
         "arg3\n\tthe product\n"
         "arg4\n\tinteger vector, the positions of the diagonals in arg1, and one more for the end\n\n"
         "Example\n\tident k r=2 c=2\n\tftopro k a loc\n\tzero x r=2 c=1 v=3\n\tpmult a x y loc\n\n"
         "See Also\n\tpsolve, ptoful, ftopro, mult\n"},
    {.words = {"ptoful"},
     .run = cmd_ptoful,
     .summary = "full matrix from a profile matrix",
     .help =
         "Command Syntax\n\tptoful arg1 arg2 arg3\n\n"
         "Creates the square matrix arg2 from the symmetric matrix arg1 in profile form; both triangles are filled, and zeros stand outside the profile. There are no defaults.\n\n"
         "arg1\n\tprofile matrix, real or complex\n"
         "arg2\n\tthe full matrix\n"
         "arg3\n\tinteger vector, the positions of the diagonals in arg1, and one more for the end\n\n"
         "Example\n\tident k r=2 c=2\n\tftopro k a loc\n\tptoful a full loc\n\n"
         "See Also\n\tftopro, psolve, pmult\n"},
    {.words = {"ftopro"},
     .run = cmd_ftopro,
     .summary = "profile matrix from a full matrix",
     .help =
         "Command Syntax\n\tftopro arg1 arg2 arg3\n\n"
         "Stores the symmetric matrix arg1 in profile form: creates the vector arg2 of the columns of the upper triangle, each from the diagonal upward to its first nonzero row, and the integer vector arg3 of the positions of the diagonals. Only the upper triangle of arg1 is read. There are no defaults.\n\n"
         "arg1\n\tsquare matrix, real or complex\n"
         "arg2\n\tthe profile matrix\n"
         "arg3\n\tthe positions, one for each column and one for the end\n\n"
         "Example\n\tident k r=2 c=2\n\tftopro k a loc\n\n"
         "See Also\n\tptoful, psolve, pmult\n"},
};

} // namespace

std::span<const Command> profile_rows() {
    return rows;
}

} // namespace quelor
