#include "hydro_model/hydrostatics.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quelor {

BodyFrame body_frame(double xb, double yb, double zb, double theta) {
    const double angle = theta * (std::numbers::pi / 4.0) / 45.0;
    return {xb, yb, zb, std::cos(angle), std::sin(angle)};
}

BodyPoint body_point(const PanelMesh& panels, int p, const BodyFrame& frame,
                     Reflection reflection) {
    const double dx = reflection.x * (panels.xyzc(p, 1) - frame.xb);
    const double dy = reflection.y * (panels.xyzc(p, 2) - frame.yb);
    const double nx = reflection.x * panels.n(1, p);
    const double ny = reflection.y * panels.n(2, p);
    const double c = frame.c, s = frame.s;
    return {c * dx + s * dy, c * dy - s * dx, panels.xyzc(p, 3) - frame.zb,
            c * nx + s * ny, c * ny - s * nx, panels.n(3, p)};
}

RigidValues rigid_normal(const BodyPoint& q) {
    return {q.nx,
            q.ny,
            q.nz,
            q.nz * q.y - q.z * q.ny,
            q.z * q.nx - q.nz * q.x,
            q.x * q.ny - q.y * q.nx};
}

RigidValues rigid_vertical(const BodyPoint& q) {
    return {0.0, 0.0, 1.0, q.y, -q.x, 0.0};
}

NodalMotion rigid_nodal_motion(const BodyFrame& frame, double dx, double dy, double dz) {
    const double c = frame.c, s = frame.s;
    return {{
        {c, -s, 0.0, s * dz, c * dz, -dy},                         // x
        {s, c, 0.0, -c * dz, s * dz, dx},                          // y
        {0.0, 0.0, 1.0, c * dy - s * dx, -(c * dx + s * dy), 0.0}, // z
        {0.0, 0.0, 0.0, c, -s, 0.0},                               // about x
        {0.0, 0.0, 0.0, s, c, 0.0},                                // about y
        {0.0, 0.0, 0.0, 0.0, 0.0, 1.0},                            // about z
    }};
}

namespace {

WaterplaneSums sums_of_copy(const PanelMesh& panels, std::span<const std::int32_t> list,
                            const BodyFrame& frame, Reflection reflection) {
    WaterplaneSums sums;
    for (const int p : list) {
        const BodyPoint q = body_point(panels, p, frame, reflection);
        const double area = panels.area[nth(p)];
        const double a = area * q.nz;
        sums.sw += a;
        sums.sx += a * q.x;
        sums.sy += a * q.y;
        sums.sxx += a * q.x * q.x;
        sums.syy += a * q.y * q.y;
        sums.sxy += a * q.x * q.y;
        sums.volume -= a * panels.xyzc(p, 3);
        sums.tx -= q.z * q.nx * q.x * area;
        sums.ty -= q.z * q.ny * q.y * area;
        sums.txy += q.z * q.ny * q.x * area;
    }
    return sums;
}

} // namespace

WaterplaneSums waterplane_sums(const PanelMesh& panels, std::span<const std::int32_t> list,
                               const BodyFrame& frame, std::span<const Reflection> copies) {
    WaterplaneSums total;
    for (const Reflection reflection : copies) {
        const WaterplaneSums sums = sums_of_copy(panels, list, frame, reflection);
        for (const auto member :
             {&WaterplaneSums::sw, &WaterplaneSums::sx, &WaterplaneSums::sy, &WaterplaneSums::sxx,
              &WaterplaneSums::syy, &WaterplaneSums::sxy, &WaterplaneSums::volume,
              &WaterplaneSums::tx, &WaterplaneSums::ty, &WaterplaneSums::txy})
            total.*member += sums.*member;
    }
    return total;
}

std::array<double, 36> rigid_stiffness(const WaterplaneSums& sums, double zcg, double rho,
                                       double grav) {
    std::array<double, 36> block{};
    const Matrix<double> k{block.data(), 6, 6};
    const auto set = [&](int i, int j, double value) { k(i, j) = k(j, i) = value * rho * grav; };
    set(3, 3, sums.sw);
    set(3, 4, sums.sy);
    set(3, 5, 0.0 - sums.sx); // 0, not -0, on a symmetric body
    set(4, 4, sums.syy + sums.ty - zcg * sums.volume);
    set(4, 5, sums.txy - sums.sxy);
    set(5, 5, sums.sxx + sums.tx - zcg * sums.volume);
    return block;
}

VolumeSums volume_sums(const PanelMesh& panels, std::span<const std::int32_t> list) {
    VolumeSums sums;
    for (const int p : list) {
        const double area = panels.area[nth(p)];
        for (int i = 1; i <= 3; ++i) {
            const double x = panels.xyzc(p, i), na = panels.n(i, p) * area;
            sums.first[nth(i)] += x * na;
            sums.second[nth(i)] += x * x * na;
        }
        sums.area += area;
    }
    return sums;
}

void pressure_stiffness(Matrix<const double> un, Matrix<const double> uz,
                        std::span<const double> area, Matrix<double> k) {
    std::ranges::fill(k.all(), 0.0);
    for (int p = 1; p <= un.cols; ++p)
        for (int j = 1; j <= k.cols; ++j) {
            const double w = uz(j, p) * area[nth(p)];
            for (int i = 1; i <= k.rows; ++i)
                k(i, j) += un(i, p) * w;
        }
}

} // namespace quelor
