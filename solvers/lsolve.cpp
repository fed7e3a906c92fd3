// The linear solution K U = F for all load cases. Reads `.kdiag_loc`, `.disp_inp`, `load_comb`,
// `.node_eqs`; writes `.disp`, `.k_status`, `.analysis_type`; `.kstr` ends factored, and imposed
// displacements change `.load_pat`; `$tmp1`, `$tmp2`, `$lsolve` while it works.
#include "solvers/lsolve.hpp"

#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/loads.hpp"
#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"
#include "solvers/matrix.hpp"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace quelor {

namespace {

// --- imposed displacements

/// One imposed displacement: its equation, and its column of `.disp_inp`.
struct Imposed {
    int equation, column;
};

/// The imposed displacements that have an equation; the others are named.
std::vector<Imposed> imposed_equations(Matrix<const double> input, int count) {
    const auto eqs = require_matrix<std::int32_t>(node_eqs);
    std::vector<Imposed> all;
    for (int k = 1; k <= input.cols; ++k) {
        const int node = nearest_int(input(1, k));
        const int dof = nearest_int(input(2, k));
        const bool exists = 1 <= node && node <= eqs.cols && 1 <= dof && dof <= eqs.rows;
        const int q = exists ? eqs(dof, node) : 0;
        if (1 <= q && q <= count)
            all.push_back({q, k});
        else
            write_both(
                "(/, '    Displacement not imposed: no equation for node', i8, '  DOF', i4, /)",
                {node, dof});
    }
    return all;
}

/// K(q, q) = 1, all else in row and column q zero.
void fix_equation(std::span<double> k, std::span<const std::int32_t> loc, int q) {
    const auto at = [&](int j) { return nth(loc[nth(j)]); };
    std::fill(k.begin() + static_cast<std::ptrdiff_t>(at(q)),
              k.begin() + static_cast<std::ptrdiff_t>(at(q + 1)), 0.0);
    k[at(q)] = 1.0;
    for (int j = q + 1; j < std::ssize(loc); ++j) {
        const std::size_t place = at(j) + as_size(j - q);
        if (place < at(j + 1)) k[place] = 0.0;
    }
}

/// Moves the imposed displacements u to the right side, F := F - K u with F(q) = u(q), and fixes
/// their equations in K. The values are (2 + patterns, imposed) as in `.disp_inp`.
void impose(Matrix<const double> input, Matrix<double> loads, std::span<double> k,
            std::span<const std::int32_t> loc) {
    const auto imposed = imposed_equations(input, loads.rows);
    const Temporary<double> u("$tmp1", loads.rows, loads.cols);
    const Temporary<double> ku("$tmp2", loads.rows, loads.cols);
    for (const auto& [q, column] : imposed)
        for (int p = 1; p <= loads.cols; ++p)
            u.view(q, p) = input(2 + p, column);
    profile_multiply(k, u.view, ku.view, loc);
    std::ranges::transform(loads.all(), ku.view.all(), loads.data, std::minus<>());
    for (const auto& [q, column] : imposed)
        for (int p = 1; p <= loads.cols; ++p)
            loads(q, p) = input(2 + p, column);
    for (const auto& [q, column] : imposed)
        fix_equation(k, loc, q);
}

/// False after a message, when there is no stiffness to impose them on.
bool impose_displacements(Matrix<double> loads) {
    const ArrayRef input = find_array(disp_inp);
    if (!input.is(type_real)) return true;
    if (input.rows() - 2 != loads.cols) {
        print_both(" \n\tPattern numbers in .disp_inp and .load_pat are inconsistent; specified "
                   "displacements are not being imposed.");
        return true;
    }
    const ArrayRef k = find_array(kstr);
    const ArrayRef loc_ref = find_array(kdiag_loc);
    if (!k.is(type_real)) return not_found(kstr), false;
    if (!loc_ref.is(type_integer)) return not_found(kdiag_loc), false;
    const auto loc = as_span<const std::int32_t>(loc_ref);
    if (!profile_is_valid(loc, k.size()) || std::ssize(loc) != loads.rows + 1)
        return print_both(" \n\tDimensions of arrays not compatible\n"), false;
    impose(as_matrix<const double>(input), loads, as_span<double>(k), loc);
    return true;
}

// --- the command

struct Options {
    std::int32_t k = 0, digits = default_digits;
};

Options read_options() {
    Options options;
    get_int_par("k=", options.k);
    get_int_par("digits=", options.digits);
    if (options.digits < 1) options.digits = default_digits;
    return options;
}

void report_options(const Options& options) {
    write_both(
        "10(/,5x, 'Linear Solution Summary', /, 10x,     'Number of equations.....................................',i6, /, 10x,     'Stiffness code..........................................',i6, /, 12x,     '= 0 -> form stiffness', /, 12x,     '= 1 -> use existing, unfactored stiffness', /, 12x,     '= 2 -> use existing, factored stiffness', /, 10x,     'Stiffness storage code..................................',i6, /, 12x,     '= 0 -> use profile storage', /, 12x,     '= 1 -> use sparse storage', /, 10x,     'Warn if precision loss in diagonal .ge. (profile only)..',i6)",
        {get_int(num_eqs), options.k, 0, options.digits});
}

/// The loads by pattern, and the factors by case (none: the patterns are the cases).
struct Loads {
    Matrix<double> patterns;
    Matrix<const double> factors;
    explicit operator bool() const { return static_cast<bool>(patterns); }
};

/// False after a message.
Loads find_loads() {
    const ArrayRef patterns = find_array(load_pat);
    const ArrayRef factors = find_array(load_comb);
    if (factors)
        print_both(" \n      Load patterns are defined in .load_pat and load pattern\n      "
                   "combination factors are defined in load_comb.");
    else
        print_both(" \n      Load cases are defined in .load_pat.");
    if (!patterns.is(type_real)) return not_found(load_pat), Loads{};
    if (!factors) return {as_matrix<double>(patterns), {}};
    if (factors.type != type_real || factors.rows() != patterns.cols())
        return print_both(" \n\tDimensions of .load_ptrn and load_comb are incompatible\n"),
               Loads{};
    return {as_matrix<double>(patterns), as_matrix<const double>(factors)};
}

int case_count(const Loads& loads) {
    return loads.factors ? loads.factors.cols : loads.patterns.cols;
}
/// The right sides of the cases, u zero on entry.
void fill_cases(const Loads& loads, Matrix<double> u) {
    if (!loads.factors) {
        std::ranges::copy(loads.patterns.all(), u.data);
        return;
    }
    for (int c = 1; c <= u.cols; ++c)
        for (int p = 1; p <= loads.patterns.cols; ++p)
            for (int e = 1; e <= u.rows; ++e)
                u(e, c) += loads.patterns(e, p) * loads.factors(p, c);
}

/// Says so when `.kstr` is not what the user says it is; it is used all the same.
void check_status(int k) {
    const ArrayRef ref = find_array(k_status);
    if (k == 0 || !ref.is(type_integer)) return;
    const bool factored = as_span<const std::int32_t>(ref)[0] == 1;
    if (k == 1 && factored)
        print_both(" \n\tWarning -- the existing stiffness has been factored already\n");
    if (k >= 2 && !factored)
        print_both(" \n\tWarning -- the existing stiffness has not been factored\n");
}

void form_again() {
    write_both("10(15x, 'Form stiffness')");
    const double start = cpu_seconds();
    form_stiffness(FormMode::linear);
    write_both("15(20x, 'Time to form stiffness (sec).............', f11.2)",
               {cpu_seconds() - start});
}

bool factor(int digits) {
    write_both("20(15x, 'Factor stiffness matrix')");
    const double start = cpu_seconds();
    if (!profile_op(kstr, kdiag_loc, {}, 0, digits)) return false;
    write_both("25(20x, 'Total time to factor (sec)...............', f11.2)",
               {cpu_seconds() - start});
    create_int_scalar(k_status, 1);
    return true;
}

/// The first equation whose solution is not finite in some case, from 0; their number when all are.
std::size_t first_unsolved(Matrix<const double> u) {
    std::size_t first = as_size(u.rows);
    for (int c = 1; c <= u.cols; ++c)
        first = std::min(first, first_not_finite(u.col(c)));
    return first;
}

void report_zero_stiffness(int equation) {
    std::string text = " \n\tZero stiffness in equation " + std::to_string(equation);
    const ArrayRef ref = find_array(node_eqs);
    if (!ref.is(type_integer)) return print_both(text + "\n");
    const auto eqs = as_matrix<const std::int32_t>(ref);
    const auto at = std::ranges::find(eqs.all(), equation) - eqs.all().begin();
    if (at < std::ssize(eqs.all()))
        text += ", node " + std::to_string(at / eqs.rows + 1) + ", degree of freedom " +
                std::to_string(at % eqs.rows + 1);
    print_both(text + "\n");
}

/// False after a message. The factorisation does not test its first equation.
bool solve(Matrix<double> u, int digits) {
    write_both("30(15x, 'Solve for displacements')");
    const double start = cpu_seconds();
    if (!profile_op(kstr, kdiag_loc, u, 1, digits)) return false;
    const std::size_t unsolved = first_unsolved(u);
    if (unsolved < as_size(u.rows))
        return report_zero_stiffness(static_cast<int>(unsolved) + 1), false;
    write_both("35(20x, 'Time to solve (sec)......................', f11.2,/)",
               {cpu_seconds() - start});
    return true;
}

void cmd_lsolve(std::string_view) {
    if (has_flag(" -sparse"))
        return print_both(" \n\tSparse storage is not available in this version\n");
    const Options options = read_options();
    report_options(options);
    create_int_scalar(analysis_type, 0);
    const Loads loads = find_loads();
    if (!loads) return;
    print_both("      The solution is in .disp.\n ");
    write_both("5(10x, 'Solution of Equations')");
    check_status(options.k);
    if (options.k == 0) form_again();
    if (options.k < 2 && !impose_displacements(loads.patterns)) return;
    Result result(disp, "$lsolve");
    const auto u = result.matrix<double>(loads.patterns.rows, case_count(loads));
    fill_cases(loads, u);
    if (options.k < 2 && !factor(options.digits)) return;
    if (solve(u, options.digits)) result.place();
}

constexpr Command rows[] = {
    {.words = {"lsolve"},
     .run = cmd_lsolve,
     .summary = "linear static solution",
     .help =
         "Command Syntax\n\tlsolve  [k=?]  [digits=?]  [-sparse]\n\n"
         "Solves for the displacements of all load cases.\n\n"
         "k\n\t0 (default): form the stiffness, linear for all element types. 1: use the existing "
         "stiffness, which is not factored. 2: use the existing stiffness, which is factored. For "
         "geometric stiffness give form_k, then lsolve k=1.\n\n"
         "digits\n\tWarn when a diagonal loses this many digits in the factorization. Default is "
         "7.\n\n"
         "-sparse\tUse sparse storage. Not available in this version.\n\n"
         "The load cases are the load patterns of form_k, or, when the matrix load_comb (patterns by "
         "cases) exists, its combinations of them. Imposed displacements (imposed_displ) are applied "
         "to the stiffness and to .load_pat with k=0 and k=1; give form_k -loads before another such "
         "solution.\n\n"
         "Must follow form_k.\n\n"
         "Example (the sum of two patterns, and the first one alone):\n\tinput load_comb r=2 c=2\n\t"
         "1 1\n\t1 0\n\tform_k\n\tlsolve\n\n"
         "Arrays created: .disp(.#eqs, cases); .analysis_type = 0. .kstr holds the factors, and "
         ".k_status is 1.\n\n"
         "See Also\n\tform_k\n\tnodef\n\timposed_displ\n\tpdisp\n"},
};

} // namespace

std::span<const Command> lsolve_rows() {
    return rows;
}

} // namespace quelor
