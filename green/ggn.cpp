// Green function of a source panel: selection of near and far field.
#include "green/ggn.hpp"

#include <cmath>

namespace quelor {

namespace {

// G and, if wanted, its derivative; the distances as in the batch kernel of the analysis.
GreenInfluence influence(const Vec3& p, const Vec3* normal, const SourcePanel& source,
                         Reflection reflection, const GreenWater& water, DepthCache& cache) {
    const double dx = p[0] - reflection.x * source.centroid[0];
    const double dy = p[1] - reflection.y * source.centroid[1];
    const double dz = p[2] - source.centroid[2];
    const double R2 = dx * dx + dy * dy;
    const double r = std::sqrt(R2 + dz * dz);
    const bool far = r > source.L;

    GreenInfluence result;
    result.R = std::sqrt(R2);
    result.d1 = -p[2];
    result.d2 = -source.centroid[2];
    result.h_green = water.h_green;
    const GreenStatus status =
        finred_f(result.R, result.d1, result.d2, water.h_green,
                 far ? SurfaceTerms::direct_and_image : SurfaceTerms::none,
                 far ? BottomTerm::kept : BottomTerm::removed, cache, result.f);
    const bool found = status == GreenStatus::found;
    if (!found) result.f = {}; // in the near field: a point and its own image in the water line
    if (far && !found) {
        result.status = status;
        return result;
    }
    RankineIntegral I;
    if (!far) I = rankine_terms(p, source, reflection, water.hnd);
    result.G = source.area * result.f.G + I.value;
    if (normal == nullptr) return result;
    const Complex8 h = result.R > 1e-6 ? (source.area / result.R) * result.f.G_R : 0.0;
    const auto& [nx, ny, nz] = *normal;
    result.dGdn = nx * (dx * h + I.gradient[0]) + ny * (dy * h + I.gradient[1]) +
                  nz * (I.gradient[2] - source.area * result.f.G_1);
    return result;
}

} // namespace

GreenInfluence ggn(const Vec3& p, const Vec3& n, const SourcePanel& source, Reflection reflection,
                   const GreenWater& water, DepthCache& cache) {
    return influence(p, &n, source, reflection, water, cache);
}

GreenInfluence g_only(const Vec3& p, const SourcePanel& source, Reflection reflection,
                      const GreenWater& water, DepthCache& cache) {
    return influence(p, nullptr, source, reflection, water, cache);
}

} // namespace quelor
