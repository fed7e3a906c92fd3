#include "hydro_model/hydrostatics.hpp"

#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

using namespace quelor;

namespace {

/// Wet panels given by centroid, normal into the body, and area.
struct Mesh {
    struct Panel {
        double x, y, z, nx, ny, nz, area;
    };
    std::vector<Panel> added;
    std::vector<double> xyzc, n, area;
    std::vector<std::int32_t> list;

    PanelMesh view() {
        const int np = static_cast<int>(added.size());
        for (auto* const v : {&xyzc, &n, &area, &xyzc})
            v->clear();
        for (const auto member : {&Panel::x, &Panel::y, &Panel::z})
            for (const auto& p : added)
                xyzc.push_back(p.*member);
        for (const auto& p : added) {
            n.insert(n.end(), {p.nx, p.ny, p.nz});
            area.push_back(p.area);
        }
        list.resize(added.size());
        std::iota(list.begin(), list.end(), 1);
        return {{xyzc.data(), np, 3}, {n.data(), 3, np}, area};
    }
};

struct Box {
    double x0, x1, y0, y1, draft;
    int nx = 6, ny = 4, nz = 3;
};

/// Bottom and sides; a side that lies in a plane of symmetry the caller cuts at is left out.
Mesh box_mesh(const Box& b, bool cut_x = false, bool cut_y = false) {
    Mesh mesh;
    const double hx = (b.x1 - b.x0) / b.nx, hy = (b.y1 - b.y0) / b.ny, hz = b.draft / b.nz;
    for (int i = 0; i < b.nx; ++i)
        for (int j = 0; j < b.ny; ++j)
            mesh.added.push_back(
                {b.x0 + (i + .5) * hx, b.y0 + (j + .5) * hy, -b.draft, 0, 0, 1, hx * hy});
    for (int k = 0; k < b.nz; ++k) {
        const double z = -(k + .5) * hz;
        for (int i = 0; i < b.nx; ++i) {
            const double x = b.x0 + (i + .5) * hx;
            if (!cut_y) mesh.added.push_back({x, b.y0, z, 0, 1, 0, hx * hz});
            mesh.added.push_back({x, b.y1, z, 0, -1, 0, hx * hz});
        }
        for (int j = 0; j < b.ny; ++j) {
            const double y = b.y0 + (j + .5) * hy;
            if (!cut_x) mesh.added.push_back({b.x0, y, z, 1, 0, 0, hy * hz});
            mesh.added.push_back({b.x1, y, z, -1, 0, 0, hy * hz});
        }
    }
    return mesh;
}

constexpr double rho = 1025, grav = 9.80665;
constexpr Reflection self{1, 1}, in_y{1, -1}, in_x{-1, 1}, in_both{-1, -1};

std::array<double, 36> stiffness(Mesh mesh, const BodyFrame& frame, double zcg,
                                 std::vector<Reflection> copies = {self}) {
    const PanelMesh panels = mesh.view();
    return rigid_stiffness(waterplane_sums(panels, mesh.list, frame, copies), zcg, rho, grav);
}

double entry(const std::array<double, 36>& k, int i, int j) {
    return k[static_cast<std::size_t>((i - 1) + 6 * (j - 1))];
}

} // namespace

TEST(Hydrostatics, a_box_has_the_stiffness_of_its_waterplane_and_volume) {
    const double length = 20, breadth = 8, draft = 3, zb = -1, zcg = 0.7;
    const Box box{-12, 8, -4, 4, draft}; // waterplane centred at x = -2
    const auto k = stiffness(box_mesh(box), body_frame(-5, 0, zb, 0), zcg);
    const double area = length * breadth, volume = area * draft;
    const double to_g = -draft / 2 - (zb + zcg); // centre of buoyancy above that of gravity
    // One-point quadrature of y^2 on n equal strips gives (1 - 1/n^2) of the exact moment; all
    // else is at most linear on a panel.
    const double iyy = length * breadth * breadth * breadth / 12 * (1 - 1.0 / (box.ny * box.ny));
    const double ixx = breadth * length * length * length / 12 * (1 - 1.0 / (box.nx * box.nx));
    EXPECT_NEAR(entry(k, 3, 3), rho * grav * area, 1e-12 * rho * grav * area);
    EXPECT_NEAR(entry(k, 3, 5), -rho * grav * area * 3, 1e-12 * rho * grav * area);
    EXPECT_NEAR(entry(k, 4, 4), rho * grav * (iyy + volume * to_g), 1e-10 * rho * grav * iyy);
    EXPECT_NEAR(entry(k, 5, 5), rho * grav * (ixx + area * 9 + volume * to_g),
                1e-10 * rho * grav * ixx);
    for (const auto& [i, j] : {std::pair{3, 4}, {4, 5}})
        EXPECT_NEAR(entry(k, i, j), 0, 1e-10 * rho * grav * area);
    for (int i = 1; i <= 6; ++i)
        for (int j = 1; j <= 6; ++j) {
            EXPECT_EQ(entry(k, i, j), entry(k, j, i));
            if (i < 3 || i > 5 || j < 3 || j > 5) {
                EXPECT_EQ(entry(k, i, j), 0);
            }
        }
}

TEST(Hydrostatics, quarter_meshes_and_reflected_bodies_have_the_stiffness_of_the_whole) {
    const BodyFrame frame = body_frame(0, 0, -1, 0);
    const auto whole = stiffness(box_mesh({-10, 10, -4, 4, 3, 12, 8, 3}), frame, 0.5);
    const auto quarter = stiffness(box_mesh({0, 10, 0, 4, 3, 6, 4, 3}, true, true), frame, 0.5,
                                   {self, in_y, in_x, in_both});
    const auto mirrored =
        stiffness(box_mesh({2, 10, 1, 4, 3}), body_frame(5, 2, 0, 0), 0.5, {in_both});
    const auto there = stiffness(box_mesh({-10, -2, -4, -1, 3}), body_frame(-5, -2, 0, 0), 0.5);
    const double scale = entry(whole, 5, 5);
    for (std::size_t i = 0; i < 36; ++i) {
        EXPECT_NEAR(quarter[i], whole[i], 1e-13 * scale);
        EXPECT_NEAR(mirrored[i], there[i], 1e-13 * scale);
    }
    EXPECT_EQ(entry(quarter, 3, 4), 0); // what is odd cancels exactly
    EXPECT_EQ(entry(quarter, 3, 5), 0);
}

// rho g times the sum of un_i uz_j area, less the weight's zcg V in roll and pitch: whatever the
// panels are, of a closed body or not.
TEST(Hydrostatics, stiffness_is_the_work_of_the_pressure_in_the_rigid_modes) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-1, 1);
    Mesh mesh;
    std::vector<double> un, uz;
    for (int p = 0; p < 9; ++p)
        mesh.added.push_back({9 * value(random), 4 * value(random), -2 + value(random),
                              value(random), value(random), value(random), 2 + value(random)});
    const PanelMesh panels = mesh.view();
    const BodyFrame frame = body_frame(0.3, 0.7, -2, 35);
    for (const int p : mesh.list) {
        const BodyPoint point = body_point(panels, p, frame);
        std::ranges::copy(rigid_normal(point), std::back_inserter(un));
        std::ranges::copy(rigid_vertical(point), std::back_inserter(uz));
    }
    std::array<double, 36> work;
    pressure_stiffness({un.data(), 6, 9}, {uz.data(), 6, 9}, mesh.area, {work.data(), 6, 6});
    const auto k = stiffness(mesh, frame, 0.8);
    const double weight = 0.8 * -volume_sums(panels, mesh.list).first[2];
    for (int i = 3; i <= 5; ++i)
        for (int j = i; j <= 5; ++j)
            EXPECT_NEAR(entry(k, i, j) / (rho * grav),
                        entry(work, i, j) - (i == j && i > 3 ? weight : 0), 1e-11)
                << i << j; // sums of some 1e3
}

TEST(Hydrostatics, normals_are_the_nodal_motion_of_the_panel_centre_along_the_normal) {
    Mesh mesh;
    mesh.added = {{3, -2, -1.5, 0.48, -0.6, 0.64, 1}, {-4, 1, -0.2, 0, 0.8, 0.6, 1}};
    const PanelMesh panels = mesh.view();
    const BodyFrame frame = body_frame(0.3, 0.7, -2, 35);
    for (const int p : mesh.list) {
        const auto& q = mesh.added[static_cast<std::size_t>(p - 1)];
        const auto motion =
            rigid_nodal_motion(frame, q.x - frame.xb, q.y - frame.yb, q.z - frame.zb);
        const BodyPoint point = body_point(panels, p, frame);
        const auto un = rigid_normal(point), uz = rigid_vertical(point);
        for (std::size_t m = 0; m < 6; ++m) {
            EXPECT_NEAR(un[m], motion[0][m] * q.nx + motion[1][m] * q.ny + motion[2][m] * q.nz,
                        1e-14);
            EXPECT_NEAR(uz[m], motion[2][m], 1e-14);
        }
    }
}

TEST(Hydrostatics, the_three_projections_give_the_volume_and_its_centre) {
    Mesh mesh = box_mesh({-2, 10, -3, 4, 5});
    const PanelMesh panels = mesh.view();
    const VolumeSums sums = volume_sums(panels, mesh.list);
    const double volume = 12 * 7 * 5;
    const std::array<double, 3> centre{4, 0.5, -2.5};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(-sums.first[i], volume, 1e-12 * volume);
        EXPECT_NEAR(-sums.second[i] / (2 * volume), centre[i], 1e-12);
    }
    EXPECT_NEAR(sums.area, 12 * 7 + 2 * 5 * (12 + 7), 1e-12);
}
