// The influence matrices of the panel equations for one wave frequency: every pair of wet panels,
// every image, summed over the symmetry classes.
#pragma once

#include <functional>

#include "green/ggn.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// Wet panels, dimensional, as the panel commands leave them.
struct PanelMesh {
    Matrix<const double> xyzc;          ///< (np,3) centroids
    Matrix<const double> n;             ///< (3,np) unit normals out of the fluid
    std::span<const double> area;       ///< (np)
    Matrix<const double> xr, yr, zr;    ///< (np,4) corners of the flat panels
    std::span<const std::int32_t> type; ///< (np) 0 quadrilateral, 1 triangle
};

struct InfluenceParameters {
    double K;                ///< omega^2 / g, 1/length
    double depth;            ///< water depth
    double deep_water_limit; ///< water counts as deep where K depth is above it
    double gauge;            ///< the exact integrals serve within gauge * sqrt(area) of a panel
    int symmetry;            ///< 0, 1, 2; see hydro_analysis/symmetry.hpp
};

/// ier = 0: done. ier = 1: the Green function has no value for the pair described by `at`.
/// ier = 2: panel `panel` has no area or a coordinate that is no finite number.
/// ier = 3: a root of the dispersion relation was not found; cache.status tells which.
struct InfluenceStatus {
    int ier = 0;
    int panel = 0;
    GreenInfluence at;
};

/// alpha_k(j,i) and beta_k(j,i): potential and normal derivative at the centroid of panel j for a
/// source of unit strength on panel i and its images, G = 1/r + ..., without 1/(4 pi), summed with
/// the signs of class k. alpha has the unit of length, beta none; the normal points out of the
/// fluid.
///
/// cache        in/out  for finite depth; ignored in deep water
/// alpha, beta  out     one (np,np) matrix a class: 1, 2 or 4 of them for symmetry 0, 1, 2
/// progress     in      is told every hundredth source panel and the last; may be empty
///
/// Nothing is written unless ier is 0. Beyond the matrices the memory is some 400 bytes a panel and
/// 1 MB.
InfluenceStatus influence_matrices(const PanelMesh& mesh, const InfluenceParameters& parameters,
                                   DepthCache& cache, std::span<const Matrix<Complex4>> alpha,
                                   std::span<const Matrix<Complex4>> beta,
                                   const std::function<void(int)>& progress);

/// Panel p (1-based) as a source of the Green function, lengths times K.
SourcePanel source_panel(const PanelMesh& mesh, int p, double K, double gauge);

} // namespace quelor
