#include "hydro_analysis/influence_panels.hpp"

#include <cmath>

#include "green/deep_wave.hpp"
#include "hydro_analysis/symmetry.hpp"

namespace quelor {

ScaledPanels::ScaledPanels(const PanelMesh& mesh, const InfluenceParameters& parameters)
    : values_(8 * as_size(mesh.np())) {
    double* next = values_.data();
    const auto column = [&] { return cut(next, mesh.np()); };
    double *x = column(), *y = column(), *z = column(), *nx = column(), *ny = column(),
           *nz = column(), *area = column(), *L = column();
    block_ = {{mesh.np(), x, y, z}, nx, ny, nz, area, L};
    sources_.reserve(as_size(mesh.np()));
    for (int i = 0; i < mesh.np(); ++i) {
        const Panel panel = mesh.panel(i + 1);
        const SourcePanel& source =
            sources_.emplace_back(source_panel(panel, parameters.K, parameters.gauge));
        x[i] = source.centroid[0];
        y[i] = source.centroid[1];
        z[i] = source.centroid[2];
        nx[i] = panel.normal[0];
        ny[i] = panel.normal[1];
        nz[i] = panel.normal[2];
        area[i] = source.area;
        L[i] = source.L;
    }
}

namespace {

bool has_numbers(const SourcePanel& s, const Vec3& normal) {
    for (const Vec3& corner : s.corners)
        if (!is_finite(corner)) return false;
    return is_finite(s.normal) && is_finite(s.centroid) && is_finite(normal);
}

GreenInfluence pair_by_ggn(const ScaledPanels& panels, int j, int i, Reflection reflection,
                           const GreenWater& water, DepthCache& cache) {
    const PanelBlock field = panels.block(j, 1);
    return ggn(field.at(0), field.normal(0), panels.source(i), reflection, water, cache);
}

// The first pair of source panel i that has no Green function. One below the bottom has none with
// any panel; the near field, which does not ask, must not hide it.
InfluenceResult check_source(const ScaledPanels& panels, int i,
                             const InfluenceParameters& parameters, DepthCache& cache) {
    const GreenWater water = parameters.water();
    const auto pair = [&](int j, int m) {
        return pair_by_ggn(panels, j, i, reflection_of(parameters.symmetry, m), water, cache);
    };
    const auto failed = [&](const GreenInfluence& at) -> InfluenceResult {
        return {.status = InfluenceStatus::no_green_value, .panel = i + 1, .pair = at};
    };
    for (int j = 0; j < panels.count(); ++j) {
        for (int m = 1; m <= image_count(parameters.symmetry); ++m) {
            const GreenInfluence at = pair(j, m);
            if (at.status != GreenStatus::found) return failed(at);
        }
    }
    const bool below = water.h_green > 0 && -panels.source(i).centroid[2] > water.h_green;
    return below ? failed(pair(i, 1)) : InfluenceResult{};
}

} // namespace

bool within_reach(const Vec3& p, const GreenWater& water) {
    const double deepest = water.h_green > 0 ? water.h_green : 4e7, farthest = 2e7;
    return -p[2] <= deepest && std::abs(p[0]) <= farthest && std::abs(p[1]) <= farthest;
}

InfluenceResult check_panels(const ScaledPanels& panels, const InfluenceParameters& parameters,
                             DepthCache& cache) {
    const GreenWater water = parameters.water();
    if (water.h_green > 0) {
        if (cache.h != water.h_green) cache = prepare_depth(water.h_green);
        if (cache.status != RootStatus::found) return {.status = InfluenceStatus::no_roots};
    }
    for (int p = 0; p < panels.count(); ++p) {
        const SourcePanel& source = panels.source(p);
        if (!(source.area > 0) || !std::isfinite(source.area) ||
            !has_numbers(source, panels.block(p, 1).normal(0)))
            return {.status = InfluenceStatus::bad_panel, .panel = p + 1};
    }
    for (int p = 0; p < panels.count(); ++p) {
        if (within_reach(panels.source(p).centroid, water)) continue;
        const InfluenceResult result = check_source(panels, p, parameters, cache);
        if (result.status != InfluenceStatus::formed) return result;
    }
    return {};
}

void evaluate_waves(const GreenWater& water, const DepthCache& cache, int n,
                    const PairGeometry& pairs, const WaveTerms& out) {
    const std::size_t count = as_size(n);
    if (water.h_green > 0) {
        finite_wave_terms({pairs.R, count}, {pairs.d1, count}, {pairs.d2, count}, cache, out);
    } else {
        deep_wave_terms({pairs.R, count}, {pairs.Z, count}, out);
    }
}

} // namespace quelor
