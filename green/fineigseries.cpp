// The eigenfunction series at one point, with all second derivatives.
#include "green/fineigseries.hpp"

#include "numeric/index.hpp"

#include <cstddef>

namespace quelor {

SeparatedField fineigseries(double R, double B, double D, const DepthCache& cache) {
    const finite_core::SeriesPoint point{R, B, D, 1.0 / R, 1.0 / std::sqrt(R)};
    SeparatedField sum;
    const int terms = finite_core::series_terms(R, cache);
    for (int m = 1; m <= terms; ++m) {
        const auto i = nth(m);
        const double k = cache.roots.k[i], c = cache.roots.c[i];
        finite_core::with_bessel_table(m, [&](const auto& table) {
            finite_core::add_mode<true>(table, k, 0.5 * c, 1.0 / std::sqrt(k), point, sum);
        });
    }
    return sum;
}

} // namespace quelor
