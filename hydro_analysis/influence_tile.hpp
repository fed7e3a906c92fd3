// The vector loops of the influence matrices: one row of a tile, that is one source panel i (or an
// image of it) with the field panels j of a block, and at once each pair's mirror, source panel j
// with the field panel i. The two have the same horizontal distance and the same two depths, so
// that they share the wave terms; only the two derivatives in depth change places.
//
// All lengths are times K. Values are for a source panel of unit area.
#pragma once

#include <cstddef>

#include "green/wave_terms.hpp"
#include "numeric/panel_geometry.hpp"

namespace quelor {

/// n points side by side.
struct PointBlock {
    int n = 0;
    const double *x = nullptr, *y = nullptr, *z = nullptr;

    Vec3 at(int j) const { return {x[j], y[j], z[j]}; }
};

/// Centroids, normals, areas and lengths L of consecutive panels; 0-based.
struct PanelBlock : PointBlock {
    const double *nx = nullptr, *ny = nullptr, *nz = nullptr, *area = nullptr, *L = nullptr;

    Vec3 normal(int j) const { return {nx[j], ny[j], nz[j]}; }
    PanelBlock from(int first, int count) const {
        return {{count, x + first, y + first, z + first},
                nx + first,
                ny + first,
                nz + first,
                area + first,
                L + first};
    }
};

/// What the wave terms depend on: horizontal distance R, depth sum Z and the depths d1 of j, d2 of
/// i.
struct PairGeometry {
    double *R, *Z, *d1, *d2;

    PairGeometry from(int k) const { return {R + k, Z + k, d1 + k, d2 + k}; }
};
/// The points of the block and the first of the row, which is reflected.
void pair_geometry(const PointBlock& block, const PointBlock& row, Reflection reflection,
                   const PairGeometry& out);

/// Green function G and normal derivative D of a pair and of its mirror pair (G of which differs in
/// the near field only). r is the distance of the centroids.
struct PairValues {
    double *G, *G_mirror, *G_im, *D, *D_im, *D_mirror, *D_mirror_im, *r;

    PairValues from(std::ptrdiff_t k) const {
        return {G + k,    G_mirror + k, G_im + k,        D + k,
                D_im + k, D_mirror + k, D_mirror_im + k, r + k};
    }
};

/// Far field of the block and the first panel of the row: the wave terms plus 1/r, 1/r1 and, for
/// twice_depth > 0, 1/r2, all from the centroids; the panel that is the source is reflected.
/// No horizontal gradient below R = 1e-6. Returns how many pairs have r within the larger of the
/// two lengths L; their values are to be replaced.
int far_row(const PanelBlock& block, const PanelBlock& row, Reflection reflection,
            double twice_depth, const double* R, const WaveTerms& wave, const PairValues& out);

/// Sums over the images with the signs of one class, times the area of the source.
/// values           in   the first image; image m lies (m - 1) * stride further
/// sign             in   (ns) signs of the images
/// inverse_K        in   1 / K, which makes G dimensional
/// alpha, beta      out  source i: n values each
/// alpha_mirror, beta_mirror  out  source j: n values each
struct ClassRow {
    Complex4 *alpha, *beta, *alpha_mirror, *beta_mirror;
};
void class_row(const PanelBlock& block, double area, const PairValues& values,
               std::ptrdiff_t stride, int ns, const double* sign, double inverse_K,
               const ClassRow& out);

/// Potential alone at the points of the block for the first panel of the row, reflected, far field:
/// re, the real part of the wave terms, plus the Rankine terms as in far_row. Returns how many
/// points have r within the panel's length L; their values are to be replaced.
int far_potential(const PointBlock& block, const PanelBlock& row, Reflection reflection,
                  double twice_depth, const double* re, double* G, double* r);

/// alpha = factor * sum over the images of sign (G + i im), n values; image m lies (m - 1) * stride
/// further.
void class_potential(int n, double factor, const double* G, const double* im, std::ptrdiff_t stride,
                     int ns, const double* sign, Complex4* alpha);

} // namespace quelor
