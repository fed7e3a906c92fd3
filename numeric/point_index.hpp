// Finding points that (nearly) coincide. A numeric kernel.
//
// Points are ordered by their projection on a skew line, on which the points of regular meshes do
// not fall together as they do on the axes; near points are then neighbours in that order.
#pragma once

#include "numeric/vectors.hpp"

#include <limits>
#include <map>

namespace quelor {

class PointIndex {
public:
    /// Adds point n; one that is not finite is left out, for it lies near no other.
    void add(int n, const Vec3& p) {
        if (is_finite(p)) by_projection_.emplace(dot_product(p, skew_), n);
    }

    /// Calls visit(n) for a set of points that holds every n with |x_n - x|, |y_n - y| and
    /// |z_n - z| not above tol; the caller tests the coordinates.
    template <class F> void visit_candidates(const Vec3& p, const Vec3& tol, F visit) const {
        if (!is_finite(p)) return;
        const Vec3 magnitude{std::abs(p[0]), std::abs(p[1]), std::abs(p[2])};
        const double rounding = 8 * std::numeric_limits<double>::epsilon();
        const double reach =
            (1 + rounding) * dot_product(tol, skew_) + rounding * dot_product(magnitude, skew_);
        const double middle = dot_product(p, skew_);
        const auto last = by_projection_.upper_bound(middle + reach);
        for (auto at = by_projection_.lower_bound(middle - reach); at != last; ++at)
            visit(at->second);
    }

private:
    static constexpr Vec3 skew_{0.66237, 0.57741, 0.47733};
    std::multimap<double, int> by_projection_;
};

/// True when each coordinate of a and b differs by no more than its tolerance.
inline bool within(const Vec3& a, const Vec3& b, const Vec3& tol) {
    return std::abs(a[0] - b[0]) <= tol[0] && std::abs(a[1] - b[1]) <= tol[1] &&
           std::abs(a[2] - b[2]) <= tol[2];
}

} // namespace quelor
