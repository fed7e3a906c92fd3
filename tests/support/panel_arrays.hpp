// Wet panels as arrays of the panel mesh, made from their corners; a hemisphere, whole, half (y >
// 0) or a quarter (x > 0, y > 0).
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "hydro_analysis/influence.hpp"

namespace quelor::test {

/// Corners of one panel, clockwise as seen from the fluid; a triangle repeats the third.
using Corners = std::array<GreenPoint, 4>;

struct PanelArrays {
    int np = 0;
    std::vector<double> xyzc, n, area, xr, yr, zr;
    std::vector<std::int32_t> type;

    explicit PanelArrays(int panels)
        : np(panels), xyzc(3 * count()), n(3 * count()), area(count()), xr(4 * count()),
          yr(4 * count()), zr(4 * count()), type(count()) {}

    std::size_t count() const { return static_cast<std::size_t>(np); }

    PanelMesh view() const {
        return {{xyzc.data(), np, 3}, {n.data(), 3, np},  area, {xr.data(), np, 4},
                {yr.data(), np, 4},   {zr.data(), np, 4}, type};
    }

    // Panel p (1-based) from four coplanar corners, clockwise as seen from the fluid.
    void set(int p, const Corners& c) {
        const bool triangle = c[2].x == c[3].x && c[2].y == c[3].y && c[2].z == c[3].z;
        const auto at = static_cast<std::size_t>(p - 1);
        const FlatPanel flat = flat_panel(c, triangle);
        type[at] = triangle ? 1 : 0;
        for (std::size_t k = 0; k < 4; ++k) {
            xr[k * count() + at] = c[k].x;
            yr[k * count() + at] = c[k].y;
            zr[k * count() + at] = c[k].z;
        }
        n[3 * at] = flat.normal.x;
        n[3 * at + 1] = flat.normal.y;
        n[3 * at + 2] = flat.normal.z;
        const double a1 = triangle_area(c[0], c[1], c[3]);
        const double a2 = triangle ? 0.0 : triangle_area(c[1], c[2], c[3]);
        area[at] = a1 + a2;
        xyzc[at] =
            ((c[0].x + c[1].x + c[3].x) * a1 + (c[1].x + c[2].x + c[3].x) * a2) / 3 / area[at];
        xyzc[count() + at] =
            ((c[0].y + c[1].y + c[3].y) * a1 + (c[1].y + c[2].y + c[3].y) * a2) / 3 / area[at];
        xyzc[2 * count() + at] =
            ((c[0].z + c[1].z + c[3].z) * a1 + (c[1].z + c[2].z + c[3].z) * a2) / 3 / area[at];
    }

    static double triangle_area(const GreenPoint& a, const GreenPoint& b, const GreenPoint& c) {
        const double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z;
        const double vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
        return std::hypot(uy * vz - uz * vy, uz * vx - ux * vz, ux * vy - uy * vx) / 2;
    }
};

inline PanelArrays panel_arrays(const std::vector<Corners>& panels) {
    PanelArrays arrays(static_cast<int>(panels.size()));
    int p = 0;
    for (const Corners& corners : panels)
        arrays.set(++p, corners);
    return arrays;
}

/// rows * columns panels of a hemisphere about (x0, 0, 0), rows running down from the water line,
/// the lowest of triangles; symmetry 0 whole, 1 half, 2 a quarter of the circumference in
/// `columns`.
inline std::vector<Corners> hemisphere_panels(double radius, int rows, int columns, int symmetry,
                                              double x0 = 0) {
    std::vector<Corners> panels;
    const double turn = 2 * std::numbers::pi / (symmetry == 0 ? 1 : symmetry == 1 ? 2 : 4);
    const auto point = [&](int row, int column) -> GreenPoint {
        if (row == rows) return {x0, 0, -radius};
        const double down = std::numbers::pi / 2 * row / rows, around = turn * column / columns;
        return {x0 + radius * std::cos(down) * std::cos(around),
                radius * std::cos(down) * std::sin(around), -radius * std::sin(down)};
    };
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            panels.push_back({point(row, column), point(row, column + 1),
                              point(row + 1, column + 1), point(row + 1, column)});
    return panels;
}

inline PanelArrays hemisphere_mesh(double radius, int rows, int columns, int symmetry) {
    return panel_arrays(hemisphere_panels(radius, rows, columns, symmetry));
}

} // namespace quelor::test
