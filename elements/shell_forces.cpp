#include "elements/shell_forces.hpp"

#include "numeric/quadrature.hpp"

#include <algorithm>

namespace quelor {

namespace {

/// Exact for the square of the deflection and for its product with a pressure.
const std::vector<TrianglePoint>& seven_points() {
    static const auto points = triangle_rule(7);
    return points;
}

ShellPoint point_of(const TrianglePoint& p) {
    return {p.l1, p.l2, p.l3};
}

/// Adds f g^T [n11, n12; n12, n22] g of the gradients dx, dy of one displacement.
template <std::size_t N>
void add_gradient_work(ShellMatrix& k, int first, double f, const Vec3& n,
                       const std::array<double, N>& dx, const std::array<double, N>& dy) {
    for (int j = 1; j <= static_cast<int>(N); ++j) {
        const double gx = n[0] * dx[nth(j)] + n[2] * dy[nth(j)];
        const double gy = n[2] * dx[nth(j)] + n[1] * dy[nth(j)];
        for (int i = 1; i <= static_cast<int>(N); ++i)
            k(first + i, first + j) += f * (dx[nth(i)] * gx + dy[nth(i)] * gy);
    }
}

constexpr int used_dofs = 15; ///< the rotations about z move no point of the surface

/// Displacements at a point by the degrees of freedom, and what of them turns and stretches it.
struct SurfaceMotion {
    std::array<double, used_dofs> u{}, v{}, w{}, slope_x{}, slope_y{}, divergence{};
};

SurfaceMotion surface_motion(const ShellTriangle& t, const ShellPoint& l) {
    SurfaceMotion m;
    for (std::size_t i = 0; i < 3; ++i) {
        m.u[shell_u + i] = m.v[shell_v + i] = l[i];
        m.divergence[shell_u + i] = t.lx[i];
        m.divergence[shell_v + i] = t.ly[i];
    }
    const ShellDeflection w = deflection_at(t, l);
    std::ranges::copy(w.value, m.w.begin() + shell_w);
    std::ranges::copy(w.dx, m.slope_x.begin() + shell_w);
    std::ranges::copy(w.dy, m.slope_y.begin() + shell_w);
    return m;
}

} // namespace

void min3s_geometric(ShellMatrix& k, const ShellTriangle& t, const Vec3& n) {
    static const auto points = triangle_rule(3);
    add_gradient_work(k, shell_u, t.area, n, t.lx, t.ly);
    add_gradient_work(k, shell_v, t.area, n, t.lx, t.ly);
    for (const TrianglePoint& p : points) {
        const ShellDeflection w = deflection_at(t, point_of(p));
        add_gradient_work(k, shell_w, p.weight * t.area, n, w.dx, w.dy);
    }
}

void min3s_hydrostatic(ShellMatrix& k, const ShellTriangle& t, const WetFace& face) {
    const auto& pressure = face.pressure;
    if (face.weight == 0 || std::ranges::all_of(pressure, [](double p) { return p == 0; })) return;
    // The global Z axis in local axes, times minus the weight.
    const Vec3 n{-face.weight * t.axes[0][2], -face.weight * t.axes[1][2],
                 -face.weight * t.axes[2][2]};
    for (const TrianglePoint& point : seven_points()) {
        const ShellPoint l = point_of(point);
        const SurfaceMotion m = surface_motion(t, l);
        const double p = l[0] * pressure[0] + l[1] * pressure[1] + l[2] * pressure[2];
        const double f = face.side * point.weight * t.area / 2;
        for (std::size_t j = 0; j < used_dofs; ++j) {
            const double change = n[0] * m.u[j] + n[1] * m.v[j] + n[2] * m.w[j];
            for (std::size_t i = 0; i < used_dofs; ++i) {
                const double kf =
                    f * (change * m.w[i] + p * (m.divergence[j] * m.w[i] - m.slope_x[j] * m.u[i] -
                                                m.slope_y[j] * m.v[i]));
                k.a[i + shell_dofs * j] += kf;
                k.a[j + shell_dofs * i] += kf;
            }
        }
    }
}

ShellMatrix shell_mass(const ShellTriangle& t, double mass_per_area) {
    ShellMatrix m;
    const double f = mass_per_area * t.area;
    for (int j = 1; j <= 3; ++j)
        for (int i = 1; i <= 3; ++i)
            m(shell_u + i, shell_u + j) = m(shell_v + i, shell_v + j) = f / (i == j ? 6 : 12);
    for (const TrianglePoint& p : seven_points()) {
        const auto w = deflection_at(t, point_of(p)).value;
        for (int j = 1; j <= 9; ++j)
            for (int i = 1; i <= 9; ++i)
                m(shell_w + i, shell_w + j) += p.weight * f * w[nth(i)] * w[nth(j)];
    }
    return m;
}

ShellVector min3s_pressure_load(const ShellTriangle& t, const std::array<double, 3>& pressure) {
    ShellVector f{};
    for (const TrianglePoint& point : seven_points()) {
        const ShellPoint l = point_of(point);
        const double p = l[0] * pressure[0] + l[1] * pressure[1] + l[2] * pressure[2];
        const auto w = deflection_at(t, l).value;
        for (std::size_t k = 0; k < w.size(); ++k)
            f[shell_w + k] += point.weight * t.area * p * w[k];
    }
    return f;
}

ShellVector shell_weight(const ShellTriangle& t, double mass_per_area, const Vec3& acceleration) {
    Vec3 force;
    for (std::size_t i = 0; i < 3; ++i)
        force[i] = mass_per_area * dot_product(t.axes[i], acceleration);
    ShellVector f = min3s_pressure_load(t, {force[2], force[2], force[2]});
    for (std::size_t i = 0; i < 3; ++i) {
        f[shell_u + i] = force[0] * t.area / 3;
        f[shell_v + i] = force[1] * t.area / 3;
    }
    return f;
}

} // namespace quelor
