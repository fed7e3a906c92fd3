// `userf`: routines of users under a number, before they become commands. A routine takes its
// arguments and parameters from the record like a command and is one line of `routines`.
#include "matrix/userf.hpp"

#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <string>

namespace quelor {

namespace {

/// Running integral of y over t by the trapezoidal rule, for each column of y; 0 in the first row.
void running_integral(std::span<const double> t, Matrix<const double> y, Matrix<double> integral) {
    for (int j = 1; j <= y.cols; ++j) {
        for (int i = 2; i <= y.rows; ++i) {
            const double step = t[nth(i)] - t[as_size(i - 2)];
            integral(i, j) = integral(i - 1, j) + step * (y(i - 1, j) + y(i, j)) / 2;
        }
    }
}

void userf_running_integral() {
    const std::string target(get_arg(3));
    if (is_blank(target)) return print_both(" \n\tThree arguments required\n");
    const ArrayRef t = find_array(get_arg(1)), y = find_array(get_arg(2));
    if (!t) return not_found(get_arg(1));
    if (!y) return not_found(get_arg(2));
    if (!t.is(type_real) || !y.is(type_real))
        return print_both(" \n\tArguments 1 and 2 must be real\n");
    if (t.size() != y.rows() || y.size() != std::int64_t{y.rows()} * y.cols())
        return print_both(" \n\tDimensions are incompatible\n");
    Result result(target, "$userf");
    running_integral(as_span<const double>(t), as_matrix<const double>(y),
                     result.matrix<double>(y.rows(), y.cols()));
    result.place();
}

struct UserRoutine {
    int f;
    void (*run)();
};

constexpr UserRoutine routines[] = {
    {1, userf_running_integral},
};

void cmd_userf(std::string_view) {
    int f = 0;
    get_int_par(" f=", f);
    const auto* const found = std::ranges::find(routines, f, &UserRoutine::f);
    if (found == std::end(routines)) return print_both(" \n\tNo user routine of this number\n");
    found->run();
}

constexpr Command rows[] = {
    {.words = {"userf"},
     .run = cmd_userf,
     .summary = "runs a user routine",
     .help =
         "Command Syntax\n\tuserf f=? [arg1] [arg2] ...\n\n"
         "Runs a user routine: a prototype that is compiled into the program. The arguments and "
         "parameters are those of the routine.\n\n"
         "f\n\tnumber of the routine; there is no default\n"
         "\t1: userf f=1 t y q creates q, of the dimensions of y, with the running integral over "
         "t of each column of y by the trapezoidal rule; t is a real vector, y real with as many "
         "rows\n\n"
         "Example\n\tseries t x=0,1 inc=0.25\n\tuserf f=1 t t q\n\n"
         "See Also\n\tgauss_int\n"},
};

} // namespace

std::span<const Command> userf_rows() {
    return rows;
}

} // namespace quelor
