// Elevation of the free surface and velocity of the water about a floating box, held against what
// the field must satisfy.
#include "../support/arrays.hpp"
#include "hydro_analysis/influence_panels.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/hyd_surf_nodes.hpp"
#include "hydro_response/field_potential.hpp"
#include "hydro_response/hyd_vel_nodes.hpp"
#include "hydro_response/source_files.hpp"

#include <cmath>

namespace quelor {
namespace {

constexpr double half_length = 5, half_width = 3, draft = 2, depth = 12;

/// A plane face of na x nb panels, corners a, b, c, d clockwise as seen from the water.
struct Face {
    Vec3 a, b, c, d;
    int na, nb;
};
constexpr Vec3 corner(int x, int y, int z) {
    return {x * half_length, y * half_width, z * draft};
}

/// The box from its faces, 2 panels a metre and a half.
std::string box_commands() {
    const Face faces[] = {
        {corner(-1, 1, 0), corner(-1, 1, -1), corner(1, 1, -1), corner(1, 1, 0), 3, 14},
        {corner(-1, 1, -1), corner(-1, -1, -1), corner(1, -1, -1), corner(1, 1, -1), 8, 14},
        {corner(1, -1, 0), corner(1, 1, 0), corner(1, 1, -1), corner(1, -1, -1), 8, 3},
        {corner(-1, -1, 0), corner(-1, -1, -1), corner(-1, 1, -1), corner(-1, 1, 0), 3, 8},
        {corner(1, -1, 0), corner(1, -1, -1), corner(-1, -1, -1), corner(-1, -1, 0), 3, 14}};
    std::string nodes, quads, panels;
    const auto point = [&](int n, const Vec3& x) {
        nodes += std::to_string(n);
        for (const double v : x)
            nodes += " " + std::to_string(v);
        nodes += "\n";
    };
    int n = 0, e = 0;
    for (const Face& f : faces) {
        const int row = f.na + 1, a = n + 1, d = a + f.nb * row;
        const auto text = [](int i) { return std::to_string(i); };
        point(a, f.a);
        point(a + f.na, f.b);
        point(d, f.d);
        point(d + f.na, f.c);
        quads += "quad=" + text(a) + "," + text(a + f.na) + "," + text(d) + "," + text(d + f.na) +
                 " inc=1," + text(row) + "\n";
        panels += "n=" + text(e + 1) + " nodes=" + text(a) + "," + text(a + 1) + "," +
                  text(a + row + 1) + "," + text(a + row) + " gen=" + text(f.na - 1) +
                  " inc=1,1 gen_2d=" + text(f.nb - 1) + " inc_2d=" + text(row) + "," + text(row) +
                  " inc_el=" + text(f.na) + "\n";
        n += row * (f.nb + 1);
        e += f.na * f.nb;
    }
    return "hyd_nodes #=" + std::to_string(n) + "\n" + nodes + "\nhyd_node_gen\n" + quads +
           "\nhyd_panel n=" + std::to_string(e) + "\n" + panels + "\nhyd_rigid_modes\nhyd_rmass\n";
}

class FieldOfBox : public ArraySession {
protected:
    FieldOfBox() {
        type("hyd_parameters h=12 rho=1000 grav=9.81\nhyd_coordaxs zcg=-.5\n"
             "hyd_wave nbeta=2 nfreq=1\n0 40\n5\n" +
             box_commands() +
             "1.2e5 0 0 0 -6e4 0\n0 1.2e5 0 6e4 0 0\n0 0 1.2e5 0 0 0\n0 6e4 0 5e5 0 0\n"
             "-6e4 0 0 0 1.1e6 0\n0 0 0 0 0 1.1e6\nhyd_analysis -source\nhyd_analysis_response");
        omega = elements<double>(".hyd_freq").at(0);
    }

    static std::string records(const std::vector<Vec3>& points) {
        std::string lines;
        char line[100];
        for (std::size_t n = 0; n < points.size(); ++n) {
            std::snprintf(line, sizeof line, "%zu %.15g %.15g %.15g\n", n + 1, points[n][0],
                          points[n][1], points[n][2]);
            lines += line;
        }
        return lines + "\n";
    }
    static Complexes elevation(const std::vector<Vec3>& points, const std::string& parts = {}) {
        type("hyd_surf_nodes #=" + std::to_string(points.size()) + "\n" + records(points) +
             "hyd_surf_elevation" + parts);
        return elements<Complex8>(hyd_surf_disp);
    }
    /// Velocities (3,points,heading).
    static Complexes velocity(const std::vector<Vec3>& points, const std::string& parameters) {
        type("hyd_velocity_nodes #=" + std::to_string(points.size()) + "\n" + records(points) +
             "hyd_velocity" + parameters);
        return elements<Complex8>(hyd_vel_nodes);
    }

    double omega = 0;
};

TEST_F(FieldOfBox, scattered_wave_dies_out_as_a_cylindrical_wave) {
    // |H0(k r)|^2 pi k r/2 is 1 less 1/(8 k^2 r^2), so that four times as far away half is left;
    // the multipoles of the box, of order k a = 0.9, come on top with (k a)^2/(k r), 0.02 at 200 m.
    std::vector<Vec3> ring;
    for (const double r : {200.0, 800.0, 2e4})
        for (const double around : {0.3, 1.9, 3.5})
            ring.push_back({r * std::cos(around), r * std::sin(around), 0});
    const Complexes total = elevation(ring),
                    incoming = elevation(ring, " diffraction=0 radiation=0");
    for (std::size_t heading = 0; heading < 2; ++heading)
        for (std::size_t i = 0; i < 3; ++i) {
            const auto scattered = [&](std::size_t r) {
                const std::size_t k = 9 * heading + 3 * r + i;
                return std::abs(total[k] - incoming[k]);
            };
            EXPECT_NEAR(scattered(1) / scattered(0), 0.5, 0.01);
            EXPECT_NEAR(scattered(2) / scattered(0), 0.1, 0.004);
            EXPECT_LT(scattered(2), 0.002); // the total field tends to the incoming wave
            EXPECT_GT(scattered(0), 0.005);
        }
}

TEST_F(FieldOfBox, parts_add_up_and_serve_every_heading) {
    const std::vector<Vec3> points{{6, 0, 0}, {-9, 8, 0}};
    const Complexes all = elevation(points);
    Complexes sum(all.size());
    for (const char* part :
         {" diffraction=0 radiation=0", " incoming=0 radiation=0", " incoming=0 diffraction=0"}) {
        const Complexes one = elevation(points, part);
        for (std::size_t i = 0; i < sum.size(); ++i)
            sum[i] += one[i];
    }
    ASSERT_EQ(all.size(), 4u);
    for (std::size_t i = 0; i < all.size(); ++i) // the sums of strengths are rounded to single
        EXPECT_LT(std::abs(all[i] - sum[i]), 1e-6);
    EXPECT_EQ(elevation(points, " incoming=0 diffraction=0 radiation=0"), Complexes(4));
}

TEST_F(FieldOfBox, surface_and_bed_are_kept) {
    // v_z = d(eta)/dt at z = 0, v_z = 0 at the bed; a one-sided difference errs by del/2 of the
    // second derivative, of order k^2 phi, which two distances remove.
    const std::vector<Vec3> points{
        {7, 1, 0}, {-8, 9, 0}, {1, -5, 0}, {7, 1, -depth}, {0, 0, -depth}};
    const Complexes eta = elevation({points.begin(), points.begin() + 3});
    const Complexes far = velocity(points, " del=0.1"), near = velocity(points, " del=0.05");
    for (std::size_t heading = 0; heading < 2; ++heading)
        for (std::size_t n = 0; n < points.size(); ++n) {
            const std::size_t k = 3 * (5 * heading + n) + 2;
            const Complex8 vz = 2.0 * near[k] - far[k];
            const Complex8 wanted = n < 3 ? Complex8(0, omega) * eta[3 * heading + n] : 0.0;
            EXPECT_LT(std::abs(vz - wanted), 3e-4 * omega) << n;
        }
}

TEST_F(FieldOfBox, water_is_incompressible) {
    // Differences of the velocities over h = 0.15 m: each slope errs by h^2/6 of a third derivative
    // of the velocity, of order 1/s^2 of the slope at s = 2 m from the box; del adds as much again.
    const double h = 0.15;
    std::vector<Vec3> points;
    for (const Vec3 centre : {Vec3{7, 1, -1.5}, Vec3{0, -5.5, -3}})
        for (std::size_t axis = 0; axis < 3; ++axis)
            for (const double side : {h, -h}) {
                points.push_back(centre);
                points.back()[axis] += side;
            }
    const Complexes v = velocity(points, " del=0.1");
    for (std::size_t group = 0; group < 4; ++group) {
        const Complex8* const around = &v[18 * group];
        Complex8 divergence = 0;
        double size = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const Complex8 slope =
                (around[6 * axis + axis] - around[6 * axis + 3 + axis]) / (2 * h);
            divergence += slope;
            size = std::max(size, std::abs(slope));
        }
        EXPECT_LT(std::abs(divergence), 0.01 * size);
    }
}

TEST_F(FieldOfBox, velocity_converges_to_the_gradient_of_the_green_function) {
    // The gradient comes from its own formulas in ggn. A central difference errs by del^2/6 of the
    // third derivative, four times less for half the distance.
    const std::vector<Vec3> points{{9, 4, -2}, {-3, 9, -5}};
    const Complexes coarse = velocity(points, " del=0.4 incoming=0"),
                    fine = velocity(points, " del=0.2 incoming=0");
    const auto xyzc = elements<double>(hyd_xyzc), n = elements<double>(hyd_paneln),
               area = elements<double>(hyd_panela);
    const auto xr = elements<double>(hyd_xr), yr = elements<double>(hyd_yr),
               zr = elements<double>(hyd_zr);
    const auto kind = elements<std::int32_t>(hyd_paneltype);
    const int np = static_cast<int>(area.size());
    const PanelMesh mesh{{xyzc.data(), np, 3}, {n.data(), 3, np},  area, {xr.data(), np, 4},
                         {yr.data(), np, 4},   {zr.data(), np, 4}, kind};
    const InfluenceParameters parameters{omega * omega / 9.81, depth, 10, 40, 0};
    const auto freq = elements<double>(".hyd_freq"), beta = elements<double>(".hyd_beta");
    const auto q = elements<Complex8>(hyd_gencor);
    std::vector<Complex4> rad(6 * area.size()), dif(2 * area.size());
    ASSERT_TRUE(open_sources(radiation_file, "", {np, 6, freq, beta}, ""));
    ASSERT_TRUE(open_sources(diffraction_file, "", {np, 1, freq, beta}, ""));
    read_sources(radiation_file, {rad.data(), np, 6});
    read_sources(diffraction_file, {dif.data(), np, 2});
    close_all_units();
    DepthCache cache;
    for (std::size_t heading = 0; heading < 2; ++heading) {
        Complexes sigma(dif.begin() + np * std::ptrdiff_t(heading),
                        dif.begin() + np * std::ptrdiff_t(heading + 1));
        add_radiation_sources(omega, {rad.data(), np, 6}, std::span(q).subspan(6 * heading, 6),
                              sigma);
        for (std::size_t k = 0; k < 6; ++k) {
            Vec3 axis{};
            axis[k % 3] = 1;
            Complex8 gradient = 0;
            for (int p = 1; p <= np; ++p)
                gradient +=
                    sigma[nth(p)] * ggn(scaled(points[k / 3], parameters.K), axis,
                                        source_panel(mesh.panel(p), parameters.K, parameters.gauge),
                                        {}, parameters.water(), cache)
                                        .dGdn;
            const double first = std::abs(coarse[6 * heading + k] - gradient),
                         second = std::abs(fine[6 * heading + k] - gradient);
            EXPECT_LT(second, 1e-4 * omega);
            EXPECT_NEAR(first / second, 4, 0.1) << k;
        }
    }
}

TEST_F(FieldOfBox, water_at_the_hull_moves_with_it) {
    // Off the middle of a panel of side s by d the normal velocity errs by the order of d/s of the
    // body's; d and 2 d extrapolate that away. -d(phi)/dn of the fixed hull is part of the total.
    const auto n = elements<double>(hyd_paneln), c = elements<double>(hyd_xyzc),
               un = elements<double>(hyd_un);
    const auto q = elements<Complex8>(hyd_gencor);
    const std::size_t np = c.size() / 3, picked[] = {5, 47, 90, 170, 185, 200};
    std::vector<Vec3> points;
    const double d = 0.02;
    for (const std::size_t p : picked)
        for (const double off : {d, 2 * d})
            points.push_back({c[p] - off * n[3 * p], c[np + p] - off * n[3 * p + 1],
                              c[2 * np + p] - off * n[3 * p + 2]});
    const Complexes v = velocity(points, " del=0.01");
    double largest = 0;
    for (std::size_t heading = 0; heading < 2; ++heading)
        for (std::size_t i = 0; i < std::size(picked); ++i) {
            const std::size_t p = picked[i];
            Complex8 body = 0, water = 0;
            for (std::size_t m = 0; m < 6; ++m)
                body += Complex8(0, omega) * un[6 * p + m] * q[6 * heading + m];
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const Complex8* const at = &v[3 * (points.size() * heading + 2 * i) + axis];
                water += n[3 * p + axis] * (2.0 * at[0] - at[3]);
            }
            EXPECT_LT(std::abs(water - body), 0.01 * omega) << p;
            largest = std::max(largest, std::abs(body));
        }
    EXPECT_GT(largest, 0.3 * omega);
}

} // namespace
} // namespace quelor
