// Influence of the wet panels on free points of the fluid and its surface, for one wave frequency.
#pragma once

#include <functional>

#include "hydro_analysis/influence_panels.hpp"

namespace quelor {

/// Takes the coefficients of consecutive points, the first of them with the given number (1-based):
/// one matrix (points, np) a class. The matrices live until the call returns.
using FieldConsumer = std::function<void(int first, std::span<const Matrix<const Complex4>> alpha)>;

/// alpha_k(j,i): potential at point j for a source of unit strength on panel i and its images,
/// G = 1/r + ..., without 1/(4 pi), summed with the signs of class k; unit of length, rounded to
/// single precision. It is what influence_matrices gives at the centroids: the Rankine terms are
/// integrated within gauge * sqrt(area) of a panel and its images, the rest stands at the centroid.
///
/// points   in      -depth <= z <= 0; on a panel and on its edges too
/// cache    in/out  for finite depth; ignored in deep water
/// consume  in      called with some 64 points at a time, in order
///
/// With sigma_k(i) the source strengths of class k, the radiation potential of a mode of class k at
/// point j is the sum over i of alpha_k(j,i) sigma_k(i); the diffraction potential is the sum over
/// all classes of such sums, divided by their number.
///
/// Nothing is consumed unless the status is `formed`. Beyond 400 bytes a panel the memory is that
/// of the matrices of 64 points, 512 bytes a panel and class, and 100 kB.
InfluenceResult field_influence(const PanelMesh& mesh, std::span<const Vec3> points,
                                const InfluenceParameters& parameters, DepthCache& cache,
                                const FieldConsumer& consume);

} // namespace quelor
