// Panel meshes of boxes as the records of hyd_nodes and hyd_panel.
#pragma once

#include <array>
#include <sstream>
#include <string>

namespace quelor {

struct Box {
    double x0, x1, y0, y1, draft = 3;
    int nx = 4, ny = 4, nz = 2;
};

/// Records of nodes and panels; each panel has four nodes of its own.
class MeshText {
public:
    void add(const Box& b, bool cut_x = false, bool cut_y = false) {
        const double hx = (b.x1 - b.x0) / b.nx, hy = (b.y1 - b.y0) / b.ny, hz = b.draft / b.nz;
        for (int i = 0; i < b.nx; ++i)
            for (int j = 0; j < b.ny; ++j)
                face({b.x0 + i * hx, b.y0 + j * hy, -b.draft}, {hx, 0, 0}, {0, hy, 0});
        for (int k = 0; k < b.nz; ++k) {
            const double z = -b.draft + k * hz;
            for (int i = 0; i < b.nx; ++i) {
                face({b.x0 + i * hx, b.y1, z}, {hx, 0, 0}, {0, 0, hz});
                if (!cut_y) face({b.x0 + i * hx, b.y0, z}, {0, 0, hz}, {hx, 0, 0});
            }
            for (int j = 0; j < b.ny; ++j) {
                face({b.x1, b.y0 + j * hy, z}, {0, 0, hz}, {0, hy, 0});
                if (!cut_x) face({b.x0, b.y0 + j * hy, z}, {0, hy, 0}, {0, 0, hz});
            }
        }
    }
    int panel_count() const { return panel_count_; }
    std::string nodes() const { return nodes_.str() + "\n"; }
    std::string panels() const { return panels_.str() + "\n"; }

private:
    using Point = std::array<double, 3>;
    /// Corners p, p + a, p + a + b, p + b; the normal is along a x b.
    void face(Point p, Point a, Point b) {
        const int first = 4 * panel_count_++;
        const double at[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        panels_ << panel_count_;
        nodes_.precision(17);
        for (int c = 0; c < 4; ++c) {
            nodes_ << first + c + 1;
            for (std::size_t i = 0; i < 3; ++i)
                nodes_ << ' ' << p[i] + at[c][0] * a[i] + at[c][1] * b[i];
            nodes_ << '\n';
            panels_ << ' ' << first + c + 1;
        }
        panels_ << '\n';
    }

    int panel_count_ = 0;
    std::ostringstream nodes_, panels_;
};

} // namespace quelor
