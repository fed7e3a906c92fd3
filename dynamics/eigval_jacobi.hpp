// The generalised Jacobi method with its reports, for `jacobi` and for the commands that solve
// projected or expanded eigenproblems; the command `jacobi`.
#pragma once

#include "dynamics/jacobif.hpp"
#include "kernel/command.hpp"

namespace quelor {

/// jacobi_pencil with its report.
void solve_pencil(Matrix<double> k, Matrix<double> m, Matrix<double> phi, std::span<double> lambda,
                  double tol, int maxit);
/// The number of sweeps on both units; a failure is named and takes the fatal path.
void report_jacobi(const JacobiResult& result);
/// Negative eigenvalues become 0, each with a note on both units.
void clear_negative(std::span<double> lambda);
/// 10^-digits in single precision.
double tolerance_of(int digits);

/// `jacobi`
std::span<const Command> jacobi_rows();

} // namespace quelor
