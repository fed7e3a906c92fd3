// The influence matrices of the panel equations for one wave frequency: every pair of wet panels,
// every image, summed over the symmetry classes.
#pragma once

#include <functional>

#include "hydro_analysis/influence_panels.hpp"

namespace quelor {

/// alpha_k(j,i) and beta_k(j,i): potential and normal derivative at the centroid of panel j for a
/// source of unit strength on panel i and its images, G = 1/r + ..., without 1/(4 pi), summed with
/// the signs of class k. alpha has the unit of length, beta none; the normal points out of the
/// fluid.
///
/// cache        in/out  for finite depth; ignored in deep water
/// alpha, beta  out     one (np,np) matrix a class: 1, 2 or 4 of them for symmetry 0, 1, 2
/// progress     in      is told every hundredth source panel and the last; may be empty
///
/// Beyond the matrices the memory is some 400 bytes a panel and 1 MB.
InfluenceResult influence_matrices(const PanelMesh& mesh, const InfluenceParameters& parameters,
                                   DepthCache& cache, std::span<const Matrix<Complex4>> alpha,
                                   std::span<const Matrix<Complex4>> beta,
                                   const std::function<void(int)>& progress);

} // namespace quelor
