#include "hydro_analysis/coefficients.hpp"

#include "hydro_analysis/symmetry.hpp"

#include <array>

namespace quelor {

namespace {

/// Sum over p of area(p) un(i,p) phi(p).
Complex8 weighted_sum(const PanelModes& modes, int i, std::span<const Complex8> phi) {
    double re = 0, im = 0;
    for (std::size_t p = 0; p < phi.size(); ++p) {
        const double w = modes.area[p] * modes.un(i, static_cast<int>(p) + 1);
        re += w * phi[p].real();
        im += w * phi[p].imag();
    }
    return {re, im};
}

} // namespace

void added_mass_and_damping(const PanelModes& modes, std::span<const Matrix<Complex8>> prad,
                            double rho, double omega, Matrix<double> addm, Matrix<double> damp) {
    const double images = image_count(modes.symmetry);
    for (int j = 1; j <= addm.cols; ++j) {
        const int k = modes.class_of(j);
        const auto phi = prad[nth(k)].col(modes.column_of(j));
        for (int i = 1; i <= addm.rows; ++i) {
            if (modes.class_of(i) != k) continue;
            const Complex8 S = weighted_sum(modes, i, phi);
            addm(i, j) = images * rho * S.real();
            damp(i, j) = -images * rho * omega * S.imag();
        }
    }
}

void generalised_force(const PanelModes& modes, std::span<const std::span<const Complex8>> phi,
                       Complex8 factor, std::span<Complex8> f) {
    for (std::size_t i = 0; i < f.size(); ++i) {
        const int mode = static_cast<int>(i) + 1;
        const auto& potential = phi[nth(modes.class_of(mode))];
        f[i] = factor * weighted_sum(modes, mode, potential);
    }
}

void expand_classes(int symmetry, Complex8 factor, std::span<Complex8> blocks) {
    const int images = image_count(symmetry);
    const std::size_t np = blocks.size() / as_size(images);
    for (std::size_t p = 0; p < np; ++p) {
        std::array<Complex8, 4> phi;
        for (int k = 1; k <= images; ++k)
            phi[nth(k)] = blocks[p + nth(k) * np];
        for (int m = 1; m <= images; ++m) {
            Complex8 sum = 0;
            for (int k = 1; k <= images; ++k)
                sum += class_sign(symmetry, k, m) * phi[nth(k)];
            blocks[p + nth(m) * np] = factor * (sum / double(images));
        }
    }
}

void reflect_class(int symmetry, int k, Complex8 factor, std::span<Complex8> blocks) {
    const int images = image_count(symmetry);
    const std::size_t np = blocks.size() / as_size(images);
    for (int m = images; m >= 1; --m) { // the first holds the quantity itself
        const Complex8 signed_factor = class_sign(symmetry, k, m) * factor;
        for (std::size_t p = 0; p < np; ++p)
            blocks[p + nth(m) * np] = signed_factor * blocks[p];
    }
}

} // namespace quelor
