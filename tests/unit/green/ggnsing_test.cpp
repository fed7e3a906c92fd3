// The Rankine integrals against quadrature, closed forms and the flux through a closed surface.
#include "green/ggnsing.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "quadrature.hpp"

using namespace quelor;

namespace {

constexpr double pi = std::numbers::pi;
using quadrature::Function;
using quadrature::Real;

// Adaptive integration: Gauss points on the whole against the two halves.
Real integrate(const Function& f, Real tolerance, Real a = 0, Real b = 1, int depth = 45) {
    const Real c = (a + b) / 2;
    const Real halves = quadrature::integral(f, a, c) + quadrature::integral(f, c, b);
    if (depth == 0 || std::abs(halves - quadrature::integral(f, a, b)) < tolerance) return halves;
    return integrate(f, tolerance, a, c, depth - 1) + integrate(f, tolerance, c, b, depth - 1);
}

SourcePanel source(const Corners& corners, bool triangle = false, double gauge = 2.5) {
    return source_panel(flat_panel(corners, triangle), 1, gauge);
}

// Panel in the plane z = 0 turned into space by a rotation about two axes.
Vec3 turned(double x, double y, double z) {
    const double a = 0.7, b = -1.1;
    const double x1 = std::cos(a) * x - std::sin(a) * y, y1 = std::sin(a) * x + std::cos(a) * y;
    return {std::cos(b) * x1 + std::sin(b) * z + 0.3, y1 - 0.2,
            -std::sin(b) * x1 + std::cos(b) * z - 2};
}

struct Plane {
    double x, y;
};

// Integrals of 1/r and of the gradient's components in the frame of the panel for the point
// (px, py, pz) over the panel z = 0: along rays from the foot of the point in closed form, over the
// edge that they end on by quadrature. The components along the panel are line integrals.
struct Quadrature {
    std::vector<Plane> corner;
    double px, py, pz;

    RankineIntegral integrals() const {
        RankineIntegral q;
        for (std::size_t k = 0; k < corner.size(); ++k) {
            const Plane a = corner[k], b = corner[(k + 1) % corner.size()];
            const double ax = a.x - px, ay = a.y - py, dx = b.x - a.x, dy = b.y - a.y;
            const auto over_edge = [&](auto f) { // f of the distance r to its points
                return static_cast<double>(integrate(
                    [&](Real v) { return f(std::hypot(ax + v * dx, ay + v * dy, Real(pz))); },
                    1e-13L));
            };
            const double twice_area = ax * dy - ay * dx, h = std::abs(pz);
            if (std::abs(twice_area) > 1e-15) {
                // int_0^1 u/rho du and int_0^1 u/rho^3 du, rho^2 = u^2 (r^2 - h^2) + h^2
                q.value += twice_area * over_edge([h](Real r) { return 1 / (r + h); });
                if (h > 0)
                    q.gradient[2] -= twice_area * (pz / h) *
                                     over_edge([h](Real r) { return 1 / (r * (r + h)); });
            }
            const double line = over_edge([](Real r) { return 1 / r; });
            q.gradient[0] -= dy * line;
            q.gradient[1] += dx * line;
        }
        return q;
    }
};

const std::vector<Plane> quadrilateral = {{-0.6, -0.4}, {0.5, -0.5}, {0.7, 0.4}, {-0.4, 0.6}};
const std::vector<Plane> triangle = {{-0.5, -0.3}, {0.6, -0.2}, {0.1, 0.7}};
const std::vector<Plane> sliver = {{-1.0, -0.01}, {1.0, -0.02}, {1.0, 0.01}, {-1.0, 0.01}};

SourcePanel in_space(const std::vector<Plane>& c) {
    Corners corners;
    for (std::size_t k = 0; k < 4; ++k) {
        const Plane& p = c[std::min(k, c.size() - 1)];
        corners[k] = turned(p.x, p.y, 0);
    }
    return source(corners, c.size() == 3);
}

void compare(const std::vector<Plane>& c, double x, double y, double z, bool gradient_in_plane) {
    const RankineIntegral exact = ggnsing(turned(x, y, z), in_space(c));
    const RankineIntegral q = Quadrature{c, x, y, z}.integrals();
    const Vec3 o = turned(0, 0, 0), e1 = turned(1, 0, 0), e2 = turned(0, 1, 0),
               e3 = turned(0, 0, 1);
    const auto along = [&](const Vec3& e) { return dot_product(exact.gradient, difference(e, o)); };
    const auto& [qx, qy, qz] = q.gradient;
    const double scale = vector_length(q.gradient);
    SCOPED_TRACE(testing::Message() << "point " << x << " " << y << " " << z);
    EXPECT_NEAR(exact.value, q.value, 1e-10 * q.value);
    if (z != 0) {
        EXPECT_NEAR(along(e3), qz, 1e-10 * scale);
    }
    if (!gradient_in_plane) return;
    EXPECT_NEAR(along(e1), qx, 1e-10 * scale);
    EXPECT_NEAR(along(e2), qy, 1e-10 * scale);
}

} // namespace

TEST(RankineIntegral, agrees_with_quadrature_near_and_far) {
    const double points[][3] = {{0.1, 0.2, 0.4},     {0.1, 0.2, -0.01}, {0.3, -0.1, 1e-4},
                                {0.9, 0.3, 0.05},    {-2, 1.5, -0.7},   {0.5, -0.5, 0.02},
                                {0.05, -0.46, 1e-3}, {30, -20, 15},     {0, 0, 300}};
    for (const auto* panel : {&quadrilateral, &triangle, &sliver}) {
        for (const auto& p : points)
            compare(*panel, p[0], p[1], p[2], true);
    }
}

TEST(RankineIntegral, agrees_with_quadrature_in_the_plane) {
    for (const auto* panel : {&quadrilateral, &triangle, &sliver}) {
        for (const auto& p : {Plane{0.1, 0.2}, {0, 0}, {0.9, 0.3}, {-3, 0.1}, {0.2, 0.0099}}) {
            compare(*panel, p.x, p.y, 0, true);
        }
    }
}

// On a border the gradient along the panel is infinite and only the integral itself has a limit.
TEST(RankineIntegral, has_its_limits_on_edges_and_corners) {
    for (const auto* panel : {&quadrilateral, &triangle}) {
        const Plane a = (*panel)[0], b = (*panel)[1];
        const SourcePanel flat = in_space(*panel);
        for (const double t : {0.0, 0.3, 1.0, 1.7}) {
            const Plane p = {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
            compare(*panel, p.x, p.y, 0, t > 1);
            const RankineIntegral on = ggnsing(turned(p.x, p.y, 0), flat);
            const RankineIntegral by = ggnsing(turned(p.x, p.y, 1e-10), flat);
            EXPECT_NEAR(on.value, by.value, 1e-8) << "continuous with slope 2 pi log";
            EXPECT_TRUE(is_finite(on.gradient));
        }
    }
}

TEST(RankineIntegral, has_the_closed_form_at_the_centre_of_a_square) {
    const SourcePanel square = source({{{0, 0, -1}, {0, 2, -1}, {2, 2, -1}, {2, 0, -1}}});
    const RankineIntegral self = ggnsing({1, 1, -1}, square);
    EXPECT_NEAR(self.value, 8 * std::log(1 + std::sqrt(2.0)), 1e-14);
    EXPECT_EQ(square.normal[2], -1);
    EXPECT_EQ(self.gradient[2], -2 * pi) << "the fluid lies above: normal derivative + 2 pi";
    EXPECT_NEAR(ggnsing({1, 1, -1 + 1e-7}, square).gradient[2], -2 * pi, 1e-6) << "from the fluid";
    EXPECT_NEAR(ggnsing({1, 1, -1 - 1e-7}, square).gradient[2], 2 * pi, 1e-6) << "from the body";
    EXPECT_EQ(ggnsing({2.1, 1, -1}, square).gradient[2], 0);
}

TEST(RankineIntegral, of_an_image_is_that_of_the_mirrored_corners) {
    const Corners corners = {
        {{0.2, 0.1, -0.4}, {0.2, 0.9, -0.4}, {1.0, 0.9, -0.1}, {1.0, 0.1, -0.1}}};
    const SourcePanel panel = source(corners);
    const Vec3 p = {0.4, -0.3, -0.5};
    struct Image {
        Reflection reflection;
        double sign, shift;
    };
    for (const auto& [reflection, sign, shift] :
         {Image{{1, -1}, 1, 0}, {{-1, 1}, -1, 0}, {{-1, -1}, -1, 3.0}}) {
        Corners mirrored = corners;
        for (auto& [x, y, z] : mirrored) {
            x *= reflection.x;
            y *= reflection.y;
            z = sign * z - shift;
        }
        const RankineIntegral a = ggnsing(p, panel, reflection, sign, shift),
                              b = ggnsing(p, source(mirrored));
        EXPECT_NEAR(a.value, b.value, 1e-14);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(a.gradient[i], b.gradient[i], 1e-14);
    }
}

TEST(RankineIntegral, of_a_panel_in_a_mirror_plane_keeps_the_limit_from_the_fluid) {
    const SourcePanel lid = source({{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}});
    EXPECT_EQ(lid.normal[2], 1);
    EXPECT_EQ(ggnsing({0.5, 0.5, 0}, lid).gradient[2], 2 * pi);
    EXPECT_EQ(ggnsing({0.5, 0.5, 0}, lid, {}, -1).gradient[2], 2 * pi);
    const SourcePanel wall = source({{{0, 0, 0}, {0, 0, -1}, {1, 0, -1}, {1, 0, 0}}});
    EXPECT_EQ(ggnsing({0.5, 0, -0.5}, wall, {1, -1}).gradient[1], 2 * pi * wall.normal[1]);
}

TEST(RankineTerms, are_exact_within_the_length_and_concentrated_beyond) {
    const SourcePanel panel =
        source({{{0, 0, -1}, {0, 1, -1}, {1, 1, -1}, {1, 0, -1}}}, false, 1.5);
    const Vec3 p = {0.5, 0.5, -0.5}; // 0.5, 1.5 and 4.5 from the three centroids
    const RankineIntegral sum = rankine_terms(p, panel, {}, 3);
    const RankineIntegral direct = ggnsing(p, panel), surface = ggnsing(p, panel, {}, -1);
    EXPECT_NEAR(sum.value, direct.value + surface.value + 1 / 4.5, 1e-14);
    EXPECT_NEAR(sum.gradient[2], direct.gradient[2] + surface.gradient[2] - 1 / (4.5 * 4.5), 1e-14);
    EXPECT_LT(direct.gradient[2], 0);
    EXPECT_GT(surface.gradient[2], 0);
}
