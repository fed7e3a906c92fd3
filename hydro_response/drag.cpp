#include "hydro_response/drag.hpp"

#include "numeric/complex_modulus.hpp"
#include "numeric/dense_products.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <functional>
#include <limits>

namespace quelor {

void drag_damping(DragVelocity velocity, double omega, std::span<const double> cd,
                  std::span<const Complex8> v, std::span<const Complex8> u, std::span<double> c) {
    for (std::size_t k = 0; k < c.size(); ++k) {
        Complex8 w = 0;
        if (velocity != DragVelocity::structure) w += v[k];
        if (velocity != DragVelocity::wave)
            w += Complex8(omega * u[k].imag(), -omega * u[k].real()); // -i omega u
        c[k] = cd[k] * complex_modulus(w);
    }
}

void add_modal_damping(Matrix<const double> T, std::span<const double> c, Matrix<double> scaled,
                       Matrix<double> product, Matrix<double> B) {
    for (int j = 1; j <= T.cols; ++j)
        std::ranges::transform(T.col(j), c, scaled.col(j).begin(), std::multiplies{});
    mat_mult(T, scaled, product, true);
    std::ranges::transform(B.all(), product.all(), B.data, std::plus{});
}

void add_modal_load(Matrix<const double> T, std::span<const Complex8> p, std::span<Complex8> f) {
    for (int j = 1; j <= T.cols; ++j) {
        Complex8 sum = 0;
        for (std::size_t k = 0; k < p.size(); ++k)
            sum += T.col(j)[k] * p[k];
        f[nth(j)] += sum;
    }
}

void physical_displacements(Matrix<const double> T, std::span<const Complex8> q,
                            std::span<Complex8> u) {
    std::ranges::fill(u, Complex8{});
    for (int j = 1; j <= T.cols; ++j)
        for (std::size_t k = 0; k < u.size(); ++k)
            u[k] += T.col(j)[k] * q[nth(j)];
}

double largest_change(std::span<const Complex8> a, std::span<const Complex8> b) {
    double largest = 0;
    for (std::size_t k = 0; k < a.size(); ++k) {
        const Complex8 change = a[k] - b[k];
        if (!is_finite(change)) return std::numeric_limits<double>::quiet_NaN();
        largest = std::max(largest, complex_modulus(change));
    }
    return largest;
}

} // namespace quelor
