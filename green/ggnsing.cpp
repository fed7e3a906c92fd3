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

static GreenPoint operator-(const GreenPoint& a, const GreenPoint& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
static double dot(const GreenPoint& a, const GreenPoint& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
static GreenPoint cross(const GreenPoint& a, const GreenPoint& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
static GreenPoint scaled(const GreenPoint& a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}

FlatPanel flat_panel(const std::array<GreenPoint, 4>& corners, bool triangle) {
    FlatPanel panel;
    panel.edges = triangle ? 3 : 4;
    const GreenPoint c = cross(corners[2] - corners[0], corners[3] - corners[1]);
    panel.normal = scaled(c, 1.0 / std::sqrt(dot(c, c)));
    for (std::size_t k = 0; k < 4; ++k) {
        panel.x[k] = corners[k].x;
        panel.y[k] = corners[k].y;
        panel.z[k] = corners[k].z;
    }
    const auto n = as_size(panel.edges);
    for (std::size_t k = 0; k < n; ++k) {
        const GreenPoint edge = corners[(k + 1) % n] - corners[k];
        panel.s[k] = std::sqrt(dot(edge, edge));
        panel.size = std::max(panel.size, panel.s[k]);
        panel.centre.x += corners[k].x / panel.edges;
        panel.centre.y += corners[k].y / panel.edges;
        panel.centre.z += corners[k].z / panel.edges;
    }
    for (std::size_t k = 0; k < n; ++k) {
        if (panel.s[k] <= 1e-8 * panel.size) {
            panel.s[k] = 0;
            continue;
        }
        const GreenPoint edge = corners[(k + 1) % n] - corners[k];
        const GreenPoint m = scaled(cross(edge, panel.normal), 1.0 / panel.s[k]);
        panel.mx[k] = m.x;
        panel.my[k] = m.y;
        panel.mz[k] = m.z;
    }
    return panel;
}

// Integral over the panel as it stands; `side` is the side of the limit for points in the plane: +1
// the side the normal points away from, -1 the other.
static RankineIntegral panel_integral(const GreenPoint& p, const FlatPanel& panel, double side) {
    const auto n = as_size(panel.edges);
    const double height = dot(panel.normal, p - panel.centre);
    const bool in_plane = std::abs(height) < 1e-8 * panel.size;
    const double zeta = std::abs(height);
    const double zeta_angle = in_plane ? 0.0 : zeta;
    const double smallest = 1e-28 * panel.size * panel.size;

    GreenPoint corner[5];
    double d[5];
    for (std::size_t k = 0; k <= n; ++k) {
        corner[k] = GreenPoint{panel.x[k % n], panel.y[k % n], panel.z[k % n]} - p;
        d[k] = std::sqrt(dot(corner[k], corner[k]));
    }
    RankineIntegral sum;
    double omega = 0;
    for (std::size_t k = 0; k < n; ++k) {
        const GreenPoint m = {panel.mx[k], panel.my[k], panel.mz[k]};
        const double s = panel.s[k];
        const double distance = dot(m, corner[k]);
        const double ab = dot(corner[k], corner[k + 1]);
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
        sum.x -= m.x * lambda;
        sum.y -= m.y * lambda;
        sum.z -= m.z * lambda;
    }
    // In the plane omega is 0 outside, 2 pi inside, the inner angle on the border.
    if (in_plane) omega = std::abs(omega) > 1e-3 ? 2 * std::numbers::pi : 0.0;
    sum.value -= zeta * omega;
    const double normal = in_plane ? side * omega : height > 0 ? -omega : omega;
    sum.x += normal * panel.normal.x;
    sum.y += normal * panel.normal.y;
    sum.z += normal * panel.normal.z;
    return sum;
}

// Reflecting the panel or the point gives the same distances; the gradient is reflected back. An
// odd number of reflections turns the fluid side of the panel over.
RankineIntegral ggnsing(const GreenPoint& p, const FlatPanel& panel, const PanelImage& image) {
    const GreenPoint reflected = {image.sign_x * p.x, image.sign_y * p.y,
                                  image.sign * (p.z + image.shift)};
    RankineIntegral result =
        panel_integral(reflected, panel, image.sign_x * image.sign_y * image.sign);
    result.x *= image.sign_x;
    result.y *= image.sign_y;
    result.z *= image.sign;
    return result;
}

RankineIntegral rankine_terms(const GreenPoint& p, const SourcePanel& source, double sign_x,
                              double sign_y, double depth) {
    const double dx = p.x - sign_x * source.centroid.x;
    const double dy = p.y - sign_y * source.centroid.y;
    const double R2 = dx * dx + dy * dy;
    const PanelImage images[] = {
        {sign_x, sign_y, 1, 0}, {sign_x, sign_y, -1, 0}, {sign_x, sign_y, -1, 2 * depth}};
    const double heights[] = {p.z - source.centroid.z, p.z + source.centroid.z,
                              p.z + source.centroid.z + 2 * depth};
    RankineIntegral sum;
    for (int term = 0; term < 3; ++term) {
        const double dz = heights[term];
        const double d = std::sqrt(R2 + dz * dz);
        RankineIntegral part;
        if (d > source.L) {
            const double inverse = 1.0 / d;
            const double factor = -source.area * inverse * inverse * inverse;
            part = {source.area * inverse, factor * dx, factor * dy, factor * dz};
        } else {
            part = ggnsing(p, source.flat, images[term]);
        }
        sum.value += part.value;
        sum.x += part.x;
        sum.y += part.y;
        sum.z += part.z;
    }
    return sum;
}

} // namespace quelor
