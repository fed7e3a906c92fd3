// Green function of a source panel: selection of near and far field.
#include "green/ggn.hpp"

#include <cmath>

namespace quelor {

// G and, if wanted, its derivative; the distances as in the batch kernel of the analysis.
static GreenInfluence influence(const GreenPoint& p, const GreenPoint* normal,
                                const PanelSource& source, const GreenWater& water,
                                DepthCache& cache) {
    const SourcePanel& panel = source.panel;
    const double dx = p.x - source.sign_x * panel.centroid.x;
    const double dy = p.y - source.sign_y * panel.centroid.y;
    const double dz = p.z - panel.centroid.z;
    const double R2 = dx * dx + dy * dy;
    const double r = std::sqrt(R2 + dz * dz);
    const bool far = r > panel.L;

    GreenInfluence result;
    result.R = std::sqrt(R2);
    result.d1 = -p.z;
    result.d2 = -panel.centroid.z;
    result.h_green = water.h_green;
    const int ier = finred_f(result.R, result.d1, result.d2, water.h_green, far ? 0 : 2,
                             far ? 0 : 1, cache, result.f);
    if (ier != 0) result.f = {}; // in the near field: a point and its own image in the water line
    if (far && ier != 0) {
        result.ier = 1;
        return result;
    }
    RankineIntegral I;
    if (!far) I = rankine_terms(p, panel, source.sign_x, source.sign_y, water.hnd);
    result.G = panel.area * result.f[0] + I.value;
    if (normal == nullptr) return result;
    const Complex8 h = result.R > 1e-6 ? (panel.area / result.R) * result.f[1] : 0.0;
    result.dGdn = normal->x * (dx * h + I.x) + normal->y * (dy * h + I.y) +
                  normal->z * (I.z - panel.area * result.f[2]);
    return result;
}

GreenInfluence ggn(const FieldPoint& field, const PanelSource& source, const GreenWater& water,
                   DepthCache& cache) {
    return influence(field.at, &field.normal, source, water, cache);
}

GreenInfluence g_only(const GreenPoint& field, const PanelSource& source, const GreenWater& water,
                      DepthCache& cache) {
    return influence(field, nullptr, source, water, cache);
}

} // namespace quelor
