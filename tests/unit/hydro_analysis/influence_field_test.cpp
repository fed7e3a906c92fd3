// Influence on free points against the Green function pair by pair, and points that have none.
#include "hydro_analysis/influence_field.hpp"

#include <gtest/gtest.h>
#include <limits>

#include "hydro_analysis/influence.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "tests/support/panel_arrays.hpp"

using namespace quelor;
using test::hemisphere_mesh;

namespace {

constexpr InfluenceParameters deep{0.4, 1000, 10, 2.5, 0}, shallow{0.4, 3, 10, 2.5, 0};

InfluenceParameters with_symmetry(InfluenceParameters p, int symmetry) {
    p.symmetry = symmetry;
    return p;
}

/// On the surface in all directions, far and near; in the fluid down to the bottom; on the body.
std::vector<Vec3> field_points(const PanelMesh& mesh) {
    std::vector<Vec3> points{mesh.centroid(1), mesh.panel(2).corners[0], {0, 0, 0}, {0, 0, -3}};
    for (int i = 0; i < 130; ++i) {
        const double r = 2.05 + 0.4 * i, angle = 2.4 * i;
        points.push_back({r * std::cos(angle), r * std::sin(angle), i % 3 == 0 ? -0.02 * i : 0});
    }
    return points;
}

/// All coefficients, one matrix a class.
struct Coefficients {
    int points = 0;
    std::vector<int> firsts;
    std::vector<std::vector<Complex4>> alpha; // (points, np)

    Coefficients(const PanelMesh& mesh, std::span<const Vec3> at, const InfluenceParameters& p)
        : points(static_cast<int>(at.size())), alpha(as_size(image_count(p.symmetry))) {
        for (auto& a : alpha)
            a.resize(at.size() * as_size(mesh.np()));
        DepthCache cache;
        const auto result = field_influence(mesh, at, p, cache, [&](int first, auto blocks) {
            firsts.push_back(first);
            for (int k = 1; k <= static_cast<int>(alpha.size()); ++k)
                for (int i = 1; i <= mesh.np(); ++i)
                    for (int j = 1; j <= blocks[nth(k)].rows; ++j)
                        (*this)(k, first + j - 1, i) = blocks[nth(k)](j, i);
        });
        EXPECT_EQ(result.status, InfluenceStatus::formed);
    }
    Complex4& operator()(int k, int j, int i) {
        return alpha[nth(k)][nth(j) + as_size(points) * nth(i)];
    }
};

} // namespace

// Each side rounds its sum of images once; the coefficients are rounded to single precision, 6e-8.
TEST(FieldInfluence, is_the_class_sum_of_the_green_function) {
    for (const InfluenceParameters& water : {deep, shallow})
        for (const int symmetry : {0, 1, 2}) {
            const InfluenceParameters p = with_symmetry(water, symmetry);
            const auto arrays = hemisphere_mesh(2, 5, 8, symmetry);
            const PanelMesh mesh = arrays.view();
            const auto points = field_points(mesh);
            Coefficients c(mesh, points, p);
            EXPECT_EQ(c.firsts, (std::vector{1, 65, 129}));
            DepthCache cache;
            for (int i = 1; i <= mesh.np(); ++i) {
                const SourcePanel source = source_panel(mesh.panel(i), p.K, p.gauge);
                for (int j = 1; j <= c.points; ++j)
                    for (int k = 1; k <= image_count(symmetry); ++k) {
                        Complex8 sum = 0;
                        double size = 0;
                        for (int m = 1; m <= image_count(symmetry); ++m) {
                            const auto g = g_only(scaled(points[nth(j)], p.K), source,
                                                  reflection_of(symmetry, m), p.water(), cache);
                            sum += class_sign(symmetry, k, m) * g.G / p.K;
                            size += std::abs(g.G) / p.K;
                        }
                        ASSERT_LE(std::abs(Complex8(c(k, j, i)) - sum), 1e-7 * size)
                            << p.depth << " " << symmetry << k << " " << j << " " << i;
                    }
            }
        }
}

// At the centroids the free points see what the panels see, to the rounding of both.
TEST(FieldInfluence, at_the_centroids_is_that_of_the_influence_matrices) {
    for (const InfluenceParameters& water : {deep, shallow}) {
        const InfluenceParameters p = with_symmetry(water, 1);
        const auto arrays = hemisphere_mesh(2, 5, 8, 1);
        const PanelMesh mesh = arrays.view();
        const int np = mesh.np();
        std::vector<Vec3> centroids;
        for (int j = 1; j <= np; ++j)
            centroids.push_back(mesh.centroid(j));
        Coefficients c(mesh, centroids, p);
        std::vector<Complex4> values(4 * as_size(np) * as_size(np));
        std::vector<Matrix<Complex4>> m;
        for (std::size_t k = 0; k < 4; ++k)
            m.push_back({values.data() + k * as_size(np) * as_size(np), np, np});
        DepthCache cache;
        influence_matrices(mesh, p, cache, std::span(m).first(2), std::span(m).last(2), {});
        for (int k = 1; k <= 2; ++k)
            for (int i = 1; i <= np; ++i)
                for (int j = 1; j <= np; ++j)
                    ASSERT_LE(std::abs(c(k, j, i) - m[nth(k)](j, i)),
                              3e-7F * (std::abs(c(1, j, i)) + std::abs(c(2, j, i))));
    }
}

TEST(FieldInfluence, tells_the_point_that_lies_outside_the_water) {
    const auto arrays = hemisphere_mesh(2, 4, 8, 0);
    DepthCache cache;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Vec3& bad : {Vec3{3, 0, 0.01}, {3, 0, -3.01}, {nan, 0, 0}, {0, 1e9, 0}}) {
        const std::vector<Vec3> points{{3, 0, 0}, bad};
        const auto result = field_influence(arrays.view(), points, shallow, cache,
                                            [](int, auto) { FAIL() << "nothing is consumed"; });
        EXPECT_EQ(result.status, InfluenceStatus::bad_point);
        EXPECT_EQ(result.point, 2);
    }
    EXPECT_EQ(field_influence(arrays.view(), {}, shallow, cache, {}).status,
              InfluenceStatus::formed);
}
