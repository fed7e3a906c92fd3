// The wet panels as the loops of the influence coefficients need them, all lengths times K, and
// what may stand in the way of the coefficients.
#pragma once

#include <utility>
#include <vector>

#include "green/ggn.hpp"
#include "hydro_analysis/influence_tile.hpp"

namespace quelor {

struct InfluenceParameters {
    double K;                ///< omega^2 / g, 1/length
    double depth;            ///< water depth
    double deep_water_limit; ///< water counts as deep where K depth is above it
    double gauge;            ///< the exact integrals serve within gauge * sqrt(area) of a panel
    int symmetry;            ///< 0, 1, 2; see hydro_analysis/symmetry.hpp

    GreenWater water() const {
        const double hnd = K * depth;
        return {hnd, deep_water_limit >= hnd ? hnd : -1.0};
    }
};

enum class InfluenceStatus {
    formed,
    no_green_value, ///< for the pair that is described; panel: its source
    bad_panel,      ///< the panel has no area or a coordinate that is not a finite number
    bad_point,      ///< the field point lies outside the water or too far away
    no_roots        ///< of the dispersion relation; DepthCache::status tells which
};

/// Nothing has been written unless the status is `formed`.
struct InfluenceResult {
    InfluenceStatus status = InfluenceStatus::formed;
    int panel = 0, point = 0; ///< 1-based
    GreenInfluence pair{};
};

/// All panels, lengths times K: side by side for the vector loops, and one by one for the integrals
/// of the near field; 0-based. Some 400 bytes a panel.
class ScaledPanels {
public:
    ScaledPanels(const PanelMesh& mesh, const InfluenceParameters& parameters);

    int count() const { return block_.n; }
    PanelBlock block(int first, int n) const { return block_.from(first, n); }
    const SourcePanel& source(int i) const { return sources_[as_size(i)]; }

private:
    std::vector<double> values_;
    PanelBlock block_;
    std::vector<SourcePanel> sources_;
};

/// Whether the Green function may have values with a source or field point there, lengths times K:
/// not below the bottom, nor immensely far away.
bool within_reach(const Vec3& p, const GreenWater& water);

/// Makes the cache ready for the water and finds the first panel that has no influence.
InfluenceResult check_panels(const ScaledPanels& panels, const InfluenceParameters& parameters,
                             DepthCache& cache);

/// Wave terms of n pairs of points, in finite or deep water; the cache is that of the depth.
void evaluate_waves(const GreenWater& water, const DepthCache& cache, int n,
                    const PairGeometry& pairs, const WaveTerms& out);

/// The next n values of a block of memory that is cut into arrays.
inline double* cut(double*& next, std::ptrdiff_t n) {
    return std::exchange(next, next + n);
}

} // namespace quelor
