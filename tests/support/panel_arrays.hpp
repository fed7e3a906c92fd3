// Wet panels as arrays of the panel mesh, made from their corners; a hemisphere, whole, half (y >
// 0) or a quarter (x > 0, y > 0).
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "numeric/panel_geometry.hpp"

namespace quelor::test {

struct PanelArrays {
    int np = 0;
    std::vector<double> xyzc, n, area, xr, yr, zr;
    std::vector<std::int32_t> type;

    explicit PanelArrays(int panels)
        : np(panels), xyzc(3 * count()), n(3 * count()), area(count()), xr(4 * count()),
          yr(4 * count()), zr(4 * count()), type(count()) {}

    std::size_t count() const { return as_size(np); }

    PanelMesh view() const {
        return {{xyzc.data(), np, 3}, {n.data(), 3, np},  area, {xr.data(), np, 4},
                {yr.data(), np, 4},   {zr.data(), np, 4}, type};
    }

    // Panel p (1-based) from four coplanar corners, clockwise as seen from the fluid; a triangle
    // repeats the third.
    void set(int p, const Corners& c) {
        const Panel panel = flat_panel(c, c[2] == c[3]);
        const auto at = nth(p);
        type[at] = panel.triangle ? 1 : 0;
        area[at] = panel.area;
        for (std::size_t k = 0; k < 4; ++k) {
            xr[k * count() + at] = panel.corners[k][0];
            yr[k * count() + at] = panel.corners[k][1];
            zr[k * count() + at] = panel.corners[k][2];
        }
        for (std::size_t i = 0; i < 3; ++i) {
            n[3 * at + i] = panel.normal[i];
            xyzc[i * count() + at] = panel.centroid[i];
        }
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
    const auto point = [&](int row, int column) -> Vec3 {
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
