// Exact integrals of 1/distance over flat panels. With P the field point, zeta its height over the
// plane, and for each edge p the signed distance of its line from the foot of P (positive inside),
// d_a, d_b the distances of its ends, s its length and m its outward normal in the plane:
//
//   integral = sum p Lambda - |zeta| Omega,   gradient = -sum m Lambda - n sign(zeta) Omega,
//   Lambda = log((d_a + d_b + s) / (d_a + d_b - s)),
//   Omega = sum 2 atan(p s / (d_a d_b + a.b + |zeta| (d_a + d_b))),   a, b = vectors from P to the
//   ends.
//
// The last line is the solid angle of the triangle (foot of P, a, b), whose vertex under P lets
// |zeta| cancel; no slope of an edge occurs in it, and it holds in the plane as it stands.
#include "green/ggnsing.hpp"

#include "numeric/index.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quelor {

SourcePanel source_panel(const Panel& panel, double K, double gauge) {
    SourcePanel source{.edges = panel.triangle ? 3 : 4,
                       .centroid = scaled(panel.centroid, K),
                       .area = panel.area * K * K};
    source.L = std::sqrt(source.area) * gauge;
    auto& corners = source.corners;
    for (std::size_t k = 0; k < 4; ++k)
        corners[k] = scaled(panel.corners[k], K);
    const auto [c, c_length] =
        cross_product(difference(corners[2], corners[0]), difference(corners[3], corners[1]));
    source.normal = scaled(c, 1.0 / c_length);
    const auto n = as_size(source.edges);
    for (std::size_t k = 0; k < n; ++k) {
        source.length[k] = vector_length(difference(corners[(k + 1) % n], corners[k]));
        source.size = std::max(source.size, source.length[k]);
        for (std::size_t i = 0; i < 3; ++i)
            source.middle[i] += corners[k][i] / source.edges;
    }
    for (std::size_t k = 0; k < n; ++k) {
        double& length = source.length[k];
        if (length <= 1e-8 * source.size) {
            length = 0;
            continue;
        }
        const Vec3 edge = difference(corners[(k + 1) % n], corners[k]);
        source.outward[k] = scaled(cross_product(edge, source.normal).vector, 1.0 / length);
    }
    return source;
}

namespace {

// Integral over the panel as it stands; `side` is the side of the limit for points in the plane: +1
// the side the normal points away from, -1 the other.
RankineIntegral panel_integral(const Vec3& p, const SourcePanel& panel, double side) {
    const auto n = as_size(panel.edges);
    const double height = dot_product(panel.normal, difference(p, panel.middle));
    const bool in_plane = std::abs(height) < 1e-8 * panel.size;
    const double zeta = std::abs(height);
    const double zeta_angle = in_plane ? 0.0 : zeta;
    const double smallest = 1e-28 * panel.size * panel.size;

    Vec3 corner[5]; // seen from p
    double d[5];
    for (std::size_t k = 0; k <= n; ++k) {
        corner[k] = difference(panel.corners[k % n], p);
        d[k] = vector_length(corner[k]);
    }
    RankineIntegral sum;
    double omega = 0;
    for (std::size_t k = 0; k < n; ++k) {
        const Vec3& m = panel.outward[k];
        const double s = panel.length[k];
        const double distance = dot_product(m, corner[k]);
        const double ab = dot_product(corner[k], corner[k + 1]);
        const double dd = d[k] * d[k + 1];
        // (d_a d_b)^2 - (a.b)^2 = s^2 (p^2 + zeta^2) replaces the sum where it would cancel;
        // d_a + d_b - s is twice the same quantity over d_a + d_b + s.
        const double q =
            ab >= 0 ? dd + ab : s * s * (distance * distance + zeta * zeta) / (dd - ab);
        const double q_log = std::max(q, smallest);
        const double lambda = std::log1p(s * (d[k] + d[k + 1] + s) / q_log);
        const double q_angle = in_plane && ab < 0 ? s * s * distance * distance / (dd - ab) : q;
        omega += 2 * std::atan2(distance * s, q_angle + zeta_angle * (d[k] + d[k + 1]));
        sum.value += distance * lambda;
        sum.gradient = add_scaled(sum.gradient, -lambda, m);
    }
    // In the plane omega is 0 outside, 2 pi inside, the inner angle on the border.
    if (in_plane) omega = std::abs(omega) > 1e-3 ? 2 * std::numbers::pi : 0.0;
    sum.value -= zeta * omega;
    const double normal = in_plane ? side * omega : height > 0 ? -omega : omega;
    sum.gradient = add_scaled(sum.gradient, normal, panel.normal);
    return sum;
}

} // namespace

// Reflecting the panel or the point gives the same distances; the gradient is reflected back. An
// odd number of reflections turns the fluid side of the panel over.
RankineIntegral ggnsing(const Vec3& p, const SourcePanel& panel, Reflection reflection, double sign,
                        double shift) {
    const Vec3 mirror{reflection.x, reflection.y, sign};
    const Vec3 reflected{mirror[0] * p[0], mirror[1] * p[1], mirror[2] * (p[2] + shift)};
    RankineIntegral result = panel_integral(reflected, panel, mirror[0] * mirror[1] * mirror[2]);
    for (std::size_t i = 0; i < 3; ++i)
        result.gradient[i] *= mirror[i];
    return result;
}

RankineIntegral rankine_terms(const Vec3& p, const SourcePanel& source, Reflection reflection,
                              double depth) {
    struct Image {
        double sign, shift;
        double dz; ///< height of p over the image's centroid
    };
    const double dx = p[0] - reflection.x * source.centroid[0];
    const double dy = p[1] - reflection.y * source.centroid[1];
    const double R2 = dx * dx + dy * dy, above = p[2] + source.centroid[2];
    RankineIntegral sum;
    for (const auto& [sign, shift, dz] : {Image{1, 0, p[2] - source.centroid[2]},
                                          {-1, 0, above},
                                          {-1, 2 * depth, above + 2 * depth}}) {
        const double d = std::sqrt(R2 + dz * dz);
        RankineIntegral part;
        if (d > source.L) {
            const double inverse = 1.0 / d;
            const double factor = -source.area * inverse * inverse * inverse;
            part = {source.area * inverse, scaled({dx, dy, dz}, factor)};
        } else {
            part = ggnsing(p, source, reflection, sign, shift);
        }
        sum.value += part.value;
        sum.gradient = add_scaled(sum.gradient, 1.0, part.gradient);
    }
    return sum;
}

} // namespace quelor
