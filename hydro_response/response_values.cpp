#include "hydro_response/response_values.hpp"

#include "hydro_analysis/symmetry.hpp"
#include "numeric/blas_memory.hpp"
#include "numeric/dense_products.hpp"
#include "numeric/lapack.hpp"

#include <algorithm>

namespace quelor {

void nodal_displacements(std::span<const Matrix<const double>> modes, std::span<const Complex8> q,
                         std::span<Complex8> disp) {
    std::ranges::fill(disp, Complex8{});
    for (std::size_t c = 0; c < modes.size(); ++c)
        for (int m = 1; m <= modes[c].cols; ++m) {
            const auto mode = modes[c].col(m);
            for (std::size_t n = 0; n < mode.size(); ++n)
                disp[modes.size() * n + c] += mode[n] * q[nth(m)];
        }
}

void add_potential(Array3<const Complex8> phi, int ifreq, Matrix<Complex8> table) {
    for (int j = 1; j <= phi.n3; ++j) {
        const Complex8* const column = &phi(1, ifreq, j);
        for (int p = 1; p <= phi.n1; ++p)
            table(j, p) += column[nth(p)];
    }
}

void radiation_potential(Array3<const Complex8> potrad, Array3<const Complex8> q, int ifreq,
                         Matrix<Complex8> table) {
    require_blas_memory();
    // Columns of a slice at one frequency lie n1 n2 apart.
    const std::int32_t rows_q = q.n1 * q.n2, rows_phi = potrad.n1 * potrad.n2;
    const Complex8 one = 1, zero = 0;
    if (q.n3 > 2) { // for one or two headings the product with a vector is up to twice as fast
        zgemm_("T", "T", &table.rows, &table.cols, &potrad.n3, &one, &q(1, ifreq, 1), &rows_q,
               &potrad(1, ifreq, 1), &rows_phi, &zero, table.data, &table.rows, 1, 1);
        return;
    }
    const std::int32_t step = 1;
    for (int b = 1; b <= q.n3; ++b)
        zgemv_("N", &potrad.n1, &potrad.n3, &one, &potrad(1, ifreq, 1), &rows_phi, &q(1, ifreq, b),
               &step, &zero, &table(b, 1), &table.rows, 1);
}

void potential_to_pressure(double omega, double rho, std::span<Complex8> phi) {
    const double factor = omega * rho;
    for (Complex8& z : phi)
        z = {factor * z.imag(), -factor * z.real()};
}

void expand_vertical_displacement(int symmetry, std::span<const std::int32_t> modesym,
                                  Matrix<const double> uz, Matrix<double> uz_full) {
    for (int m = 1; m <= image_count(symmetry); ++m)
        for (int p = 1; p <= uz.cols; ++p)
            for (int j = 1; j <= uz.rows; ++j)
                uz_full(j, p + (m - 1) * uz.cols) =
                    class_sign(symmetry, modesym[nth(j)], m) * uz(j, p);
}

void hydrostatic_change(double rhog, Matrix<const double> uz, Array3<const Complex8> q, int ifreq,
                        Matrix<double> weights, Matrix<Complex8> table) {
    for (int b = 1; b <= q.n3; ++b)
        for (int m = 1; m <= q.n1; ++m) {
            weights(m, 2 * b - 1) = -rhog * q(m, ifreq, b).real();
            weights(m, 2 * b) = -rhog * q(m, ifreq, b).imag();
        }
    // The parts of a complex column of the table are two rows of a real one.
    mat_mult(weights, uz, {reinterpret_cast<double*>(table.data), 2 * table.rows, table.cols},
             true);
}

} // namespace quelor
