// Vector loops over the pairs of a tile row. Selections instead of branches, no calls.
#include "hydro_analysis/influence_tile.hpp"

#include <cmath>

#include "numeric/vecmath.hpp"

// The arrays of a loop are distinct; there are too many of them to be checked at run time.
#ifdef __clang__
#define QUELOR_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#else
#define QUELOR_INDEPENDENT _Pragma("GCC ivdep")
#endif

namespace quelor {

QUELOR_CLONES
void pair_geometry(const PointBlock& block, const PointBlock& row, Reflection reflection,
                   const PairGeometry& out) {
    const double xs = reflection.x * row.x[0], ys = reflection.y * row.y[0];
    const double depth = row.z[0] < 0 ? -row.z[0] : 0.0;
    const double* __restrict x = block.x, * __restrict y = block.y, * __restrict z = block.z;
    double* __restrict R = out.R, * __restrict Z = out.Z;
    double* __restrict d1 = out.d1, * __restrict d2 = out.d2;
    QUELOR_INDEPENDENT
    for (int j = 0; j < block.n; ++j) {
        const double dx = x[j] - xs, dy = y[j] - ys;
        const double d = z[j] < 0 ? -z[j] : 0.0;
        R[j] = std::sqrt(dx * dx + dy * dy);
        d1[j] = d;
        d2[j] = depth;
        Z[j] = d + depth;
    }
}

namespace {

// With S the sum of 1/r^3 over the Rankine terms, the gradient at j for the source i is
// horizontally (dx, dy) (re_R/R - S) and vertically -re_1 - sum dz/r^3. In the mirror pair dx and
// dy change sign where the image keeps theirs, dz changes sign in 1/r alone, and re_2 stands for
// re_1.
template <bool finite>
QUELOR_INLINE int far_row_of(const PanelBlock& block, const PanelBlock& row, Reflection reflection,
                             double twice_depth, const double* __restrict R, const WaveTerms& wave,
                             const PairValues& out) {
    const double xs = reflection.x * row.x[0], ys = reflection.y * row.y[0], zs = row.z[0];
    const double nx_mirror = -reflection.x * row.nx[0], ny_mirror = -reflection.y * row.ny[0];
    const double nz = row.nz[0], L = row.L[0];
    const double* __restrict x = block.x, * __restrict y = block.y, * __restrict z = block.z;
    const double* __restrict nxj = block.nx, * __restrict nyj = block.ny, * __restrict nzj = block.nz;
    const double* __restrict Lj = block.L;
    const double* __restrict re = wave.re, * __restrict re_R = wave.re_R, * __restrict re_1 = wave.re_1;
    const double* __restrict re_2 = wave.re_2, * __restrict im = wave.im, * __restrict im_R = wave.im_R;
    const double* __restrict im_1 = wave.im_1, * __restrict im_2 = wave.im_2;
    double* __restrict G = out.G, * __restrict G_mirror = out.G_mirror, * __restrict G_im = out.G_im;
    double* __restrict D = out.D, * __restrict D_im = out.D_im, * __restrict r_out = out.r;
    double* __restrict D_mirror = out.D_mirror, * __restrict D_mirror_im = out.D_mirror_im;
    std::int64_t near = 0;
    QUELOR_INDEPENDENT
    for (int j = 0; j < block.n; ++j) {
        const double dx = x[j] - xs, dy = y[j] - ys, dz = z[j] - zs, sum_z = z[j] + zs;
        const double R2 = dx * dx + dy * dy;
        const double r = std::sqrt(R2 + dz * dz);
        const double p = 1.0 / r, p3 = p * p * p;
        const double q = 1.0 / std::sqrt(R2 + sum_z * sum_z), q3 = q * q * q;
        double potential = p + q, cubes = p3 + q3, vertical = -sum_z * q3;
        if constexpr (finite) {
            const double bottom_z = sum_z + twice_depth;
            const double b = 1.0 / std::sqrt(R2 + bottom_z * bottom_z), b3 = b * b * b;
            potential += b;
            cubes += b3;
            vertical -= bottom_z * b3;
        }
        const double direct = dz * p3;
        const bool apart = R[j] > 1e-6;
        const double Rinv = 1.0 / (apart ? R[j] : 1.0);
        const double h = apart ? re_R[j] * Rinv - cubes : 0.0;
        const double h_im = apart ? im_R[j] * Rinv : 0.0;
        const double along = nxj[j] * dx + nyj[j] * dy;
        const double along_mirror = nx_mirror * dx + ny_mirror * dy;
        G[j] = re[j] + potential;
        G_mirror[j] = re[j] + potential;
        G_im[j] = im[j];
        D[j] = along * h + nzj[j] * (vertical - direct - re_1[j]);
        D_im[j] = along * h_im - nzj[j] * im_1[j];
        D_mirror[j] = along_mirror * h + nz * (vertical + direct - re_2[j]);
        D_mirror_im[j] = along_mirror * h_im - nz * im_2[j];
        r_out[j] = r;
        const double reach = L > Lj[j] ? L : Lj[j];
        near += r <= reach ? 1 : 0;
    }
    return static_cast<int>(near);
}

template <int ns>
QUELOR_INLINE void class_row_of(const PanelBlock& block, double area, const PairValues& values,
                                std::ptrdiff_t stride, const double* sign, double inverse_K,
                                const ClassRow& out) {
    const double* __restrict area_j = block.area;
    Complex4* __restrict alpha = out.alpha, * __restrict beta = out.beta;
    Complex4* __restrict alpha_mirror = out.alpha_mirror, * __restrict beta_mirror =
                                                              out.beta_mirror;
    const double area_K = area * inverse_K;
    QUELOR_INDEPENDENT
    for (int j = 0; j < block.n; ++j) {
        double G = 0, G_mirror = 0, G_im = 0, D = 0, D_im = 0, D_mirror = 0, D_mirror_im = 0;
#pragma GCC unroll 4
        for (int m = 0; m < ns; ++m) {
            const std::ptrdiff_t k = j + m * stride;
            G += sign[m] * values.G[k];
            G_mirror += sign[m] * values.G_mirror[k];
            G_im += sign[m] * values.G_im[k];
            D += sign[m] * values.D[k];
            D_im += sign[m] * values.D_im[k];
            D_mirror += sign[m] * values.D_mirror[k];
            D_mirror_im += sign[m] * values.D_mirror_im[k];
        }
        const double a = area_j[j], a_K = a * inverse_K;
        alpha[j] = {static_cast<float>(area_K * G), static_cast<float>(area_K * G_im)};
        beta[j] = {static_cast<float>(area * D), static_cast<float>(area * D_im)};
        alpha_mirror[j] = {static_cast<float>(a_K * G_mirror), static_cast<float>(a_K * G_im)};
        beta_mirror[j] = {static_cast<float>(a * D_mirror), static_cast<float>(a * D_mirror_im)};
    }
}

template <bool finite>
QUELOR_INLINE int far_potential_of(const PointBlock& block, const PanelBlock& row,
                                   Reflection reflection, double twice_depth,
                                   const double* __restrict re, double* __restrict G,
                                   double* __restrict r_out) {
    const double xs = reflection.x * row.x[0], ys = reflection.y * row.y[0], zs = row.z[0];
    const double L = row.L[0];
    const double* __restrict x = block.x, * __restrict y = block.y, * __restrict z = block.z;
    std::int64_t near = 0;
    QUELOR_INDEPENDENT
    for (int j = 0; j < block.n; ++j) {
        const double dx = x[j] - xs, dy = y[j] - ys, dz = z[j] - zs, sum_z = z[j] + zs;
        const double R2 = dx * dx + dy * dy;
        const double r = std::sqrt(R2 + dz * dz);
        double potential = 1.0 / r + 1.0 / std::sqrt(R2 + sum_z * sum_z);
        if constexpr (finite) {
            const double bottom_z = sum_z + twice_depth;
            potential += 1.0 / std::sqrt(R2 + bottom_z * bottom_z);
        }
        G[j] = re[j] + potential;
        r_out[j] = r;
        near += r <= L ? 1 : 0;
    }
    return static_cast<int>(near);
}

template <int ns>
QUELOR_INLINE void class_potential_of(int n, double factor, const double* __restrict G,
                                      const double* __restrict im, std::ptrdiff_t stride,
                                      const double* __restrict sign, Complex4* __restrict alpha) {
    QUELOR_INDEPENDENT
    for (int j = 0; j < n; ++j) {
        double real = 0, imaginary = 0;
#pragma GCC unroll 4
        for (int m = 0; m < ns; ++m) {
            real += sign[m] * G[j + m * stride];
            imaginary += sign[m] * im[j + m * stride];
        }
        alpha[j] = {static_cast<float>(factor * real), static_cast<float>(factor * imaginary)};
    }
}

} // namespace

QUELOR_CLONES
int far_row(const PanelBlock& block, const PanelBlock& row, Reflection reflection,
            double twice_depth, const double* R, const WaveTerms& wave, const PairValues& out) {
    if (twice_depth > 0) return far_row_of<true>(block, row, reflection, twice_depth, R, wave, out);
    return far_row_of<false>(block, row, reflection, twice_depth, R, wave, out);
}

QUELOR_CLONES
void class_row(const PanelBlock& block, double area, const PairValues& values,
               std::ptrdiff_t stride, int ns, const double* sign, double inverse_K,
               const ClassRow& out) {
    if (ns == 1) return class_row_of<1>(block, area, values, stride, sign, inverse_K, out);
    if (ns == 2) return class_row_of<2>(block, area, values, stride, sign, inverse_K, out);
    class_row_of<4>(block, area, values, stride, sign, inverse_K, out);
}

QUELOR_CLONES
int far_potential(const PointBlock& block, const PanelBlock& row, Reflection reflection,
                  double twice_depth, const double* re, double* G, double* r) {
    if (twice_depth > 0)
        return far_potential_of<true>(block, row, reflection, twice_depth, re, G, r);
    return far_potential_of<false>(block, row, reflection, twice_depth, re, G, r);
}

QUELOR_CLONES
void class_potential(int n, double factor, const double* G, const double* im, std::ptrdiff_t stride,
                     int ns, const double* sign, Complex4* alpha) {
    if (ns == 1) return class_potential_of<1>(n, factor, G, im, stride, sign, alpha);
    if (ns == 2) return class_potential_of<2>(n, factor, G, im, stride, sign, alpha);
    class_potential_of<4>(n, factor, G, im, stride, sign, alpha);
}

} // namespace quelor
