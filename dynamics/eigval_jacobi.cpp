// The command `jacobi`: eigenvalues and vectors of a pair of full matrices.
// Reads and overwrites the arrays named by the first two arguments; writes those named by the third
// and fourth. Workspace: $jac_phip, $lam_temp.
#include "dynamics/eigval_jacobi.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quelor {

namespace {

std::string_view message_of(JacobiStatus status) {
    switch (status) {
    case JacobiStatus::negative_stiffness:
        return "\n         Stiffness matrix has a negative diagonal.\n";
    case JacobiStatus::nonpositive_mass:
        return "\n         Mass matrix has a nonpositive diagonal.\n";
    case JacobiStatus::not_definite:
        return "\n         Matrices not positive definite.\n";
    case JacobiStatus::not_finite:
        return "\n         Numbers in the matrices are not finite or out of range.\n";
    default:
        return {};
    }
}

struct JacobiInput {
    std::int32_t digits = 8, maxit = 30;
    bool frequencies = false;
};

JacobiInput read_input() {
    JacobiInput input;
    get_int_par(" d=", input.digits);
    get_int_par(" digits=", input.digits);
    get_int_par(" maxit=", input.maxit);
    if (input.maxit < 1) input.maxit = 30;
    input.frequencies = has_flag(" -freq");
    return input;
}

/// False after a message when the two arrays are not such a pair of matrices.
bool check_pair(const ArrayRef& k, const ArrayRef& m) {
    std::string_view fault;
    if (k.rows() != k.cols())
        fault = " \n\tMatrix k not square\n";
    else if (m.rows() != m.cols())
        fault = " \n\tMatrix m not square\n";
    else if (!k.is(type_real))
        fault = " \n\tNot implemented for this type\n";
    else if (m.type != k.type)
        fault = " \n\tIncompatible types\n";
    else if (m.rows() != k.rows())
        fault = " \n\tDimensions are incompatible\n";
    if (!fault.empty()) print_both(fault);
    return fault.empty();
}

void cmd_jacobi(std::string_view) {
    const std::string phi(get_arg(3)), lambda(get_arg(4));
    if (is_blank(lambda)) return print_both(" \n\tFour arguments required\n");
    const JacobiInput input = read_input();
    const ArrayRef k_array = find_array_2d(get_arg(1)), m_array = find_array_2d(get_arg(2));
    if (!k_array) return not_found(get_arg(1));
    if (!m_array) return not_found(get_arg(2));
    if (!check_pair(k_array, m_array)) return;
    const auto k = as_matrix<double>(k_array);
    auto m = as_matrix<double>(m_array);
    std::vector<double> copy; // `jacobi a a phi lambda`: two matrices all the same
    if (m.data == k.data) {
        copy.assign(m.all().begin(), m.all().end());
        m.data = copy.data();
    }
    Result vectors(phi, "$jac_phip"), values(lambda, "$lam_temp");
    const auto shapes = vectors.matrix<double>(k.rows, k.rows);
    const auto eigenvalues = values.matrix<double>(k.rows, 0).all();
    solve_pencil(k, m, shapes, eigenvalues, tolerance_of(input.digits), input.maxit);
    if (input.frequencies) {
        clear_negative(eigenvalues);
        for (double& value : eigenvalues)
            value = std::sqrt(value);
    }
    vectors.place();
    values.place();
}

constexpr Command rows[] = {
    {.words = {"jacobi"},
     .run = cmd_jacobi,
     .summary = "eigenvalues of full symmetric matrices",
     .help =
         "Command Syntax\n\tjacobi k m phi lambda [digits=?] [maxit=?] [-freq]\n\n"
         "Solves the eigenproblem k phi = lambda m phi by the generalised Jacobi method. k and m are real symmetric matrices of the same order n; m is positive definite and k has no negative eigenvalue. Both are overwritten, so use copies if they are still needed.\n\n"
         "phi\n\treal (n,n), created: one eigenvector in each column, scaled so that phi' m phi = 1\n"
         "lambda\n\treal vector (n), created: the eigenvalues, ascending\n"
         "digits\n\tThe tolerance is 10 to the power -digits, for the eigenvalues and for the terms off the diagonals (default = 8). d= is the same.\n"
         "maxit\n\tlargest number of sweeps (default = 30); a run that reaches it goes on with what it has\n"
         "-freq\n\tlambda holds the square roots of the eigenvalues, radian frequencies (default: eigenvalues)\n\n"
         "Example\n\tinput k r=2 c=2\n\t2 -1\n\t-1 1\n\tident m r=2\n\tjacobi k m phi lambda\n\tprint lambda\n\n"
         "See Also\n\teigval, tmult, gauss\n"},
};

} // namespace

void solve_pencil(Matrix<double> k, Matrix<double> m, Matrix<double> phi, std::span<double> lambda,
                  double tol, int maxit) {
    report_jacobi(jacobi_pencil(k, m, phi, lambda, tol, maxit));
}

void report_jacobi(const JacobiResult& result) {
    if (has_failed(result.status)) {
        print_both(message_of(result.status));
        shutdown_with(" \n\tJacobi reports an error; execution terminating");
    }
    write_both("10(/, '          ', i0, ' Jacobi sweeps required', /)", {result.sweeps});
}

void clear_negative(std::span<double> lambda) {
    int i = 0;
    for (double& value : lambda) {
        ++i;
        if (value >= 0) continue;
        write_both("20(10x, 'Note: Eigenvalue ',i4, ' = ', 1pe12.4, '  set to 0.')", {i, value});
        value = 0;
    }
}

double tolerance_of(int digits) {
    return static_cast<double>(std::pow(10.0F, -static_cast<float>(digits)));
}

std::span<const Command> jacobi_rows() {
    return rows;
}

} // namespace quelor
