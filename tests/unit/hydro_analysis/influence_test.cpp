// Influence matrices: the tiled evaluation against the Green function pair by pair, the relations
// between whole, half and quarter meshes, and meshes that have none.
#include "hydro_analysis/influence.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

#include "hydro_analysis/csolve.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "tests/support/panel_arrays.hpp"

using namespace quelor;
using test::hemisphere_mesh;
using test::PanelArrays;

namespace {

struct Matrices {
    std::vector<std::vector<Complex4>> values;
    std::vector<Matrix<Complex4>> alpha, beta;

    Matrices(int np, int ns) : values(2 * static_cast<std::size_t>(ns)) {
        for (auto& v : values)
            v.resize(static_cast<std::size_t>(np) * static_cast<std::size_t>(np));
        for (std::size_t k = 0; k < values.size(); k += 2) {
            alpha.push_back({values[k].data(), np, np});
            beta.push_back({values[k + 1].data(), np, np});
        }
    }
};

Matrices matrices(const PanelArrays& mesh, const InfluenceParameters& p) {
    Matrices m(mesh.np, image_count(p.symmetry));
    DepthCache cache;
    EXPECT_EQ(influence_matrices(mesh.view(), p, cache, m.alpha, m.beta, {}).status,
              InfluenceStatus::formed);
    return m;
}

constexpr InfluenceParameters deep{0.4, 1000, 10, 2.5, 0}, shallow{0.4, 3, 10, 2.5, 0};

InfluenceParameters with_symmetry(InfluenceParameters p, int symmetry) {
    p.symmetry = symmetry;
    return p;
}

// The class sums pair by pair, in double precision, and the sums of the moduli.
struct Sums {
    Complex8 alpha, beta;
    double alpha_size = 0, beta_size = 0;
};
Sums by_pairs(const PanelMesh& mesh, const InfluenceParameters& p, int k, int j, int i,
              DepthCache& cache) {
    Sums sums;
    const SourcePanel source = source_panel(mesh.panel(i), p.K, p.gauge);
    const Vec3 at = scaled(mesh.centroid(j), p.K);
    for (int m = 1; m <= image_count(p.symmetry); ++m) {
        const GreenInfluence g =
            ggn(at, mesh.normal(j), source, reflection_of(p.symmetry, m), p.water(), cache);
        const double sign = class_sign(p.symmetry, k, m);
        sums.alpha += sign * g.G / p.K;
        sums.beta += sign * g.dGdn;
        sums.alpha_size += std::abs(g.G) / p.K;
        sums.beta_size += std::abs(g.dGdn);
    }
    return sums;
}

void expect_close(Complex4 value, Complex8 expected, double scale, double tolerance) {
    EXPECT_LE(std::abs(Complex8(value) - expected), tolerance * scale) << value << expected;
}

} // namespace

// 112 and 98 panels: more than three tiles, the last one ragged. Rounding to single precision is
// 6e-8 of the result; both sides hold the Green function to some 1e-6 of its terms.
TEST(InfluenceMatrices, are_the_class_sums_of_the_green_function) {
    for (const InfluenceParameters& water : {deep, shallow}) {
        for (const int symmetry : {0, 1, 2}) {
            const InfluenceParameters p = with_symmetry(water, symmetry);
            const PanelArrays mesh = hemisphere_mesh(2, 7, symmetry == 0 ? 16 : 14, symmetry);
            const Matrices m = matrices(mesh, p);
            DepthCache cache;
            for (int k = 1; k <= image_count(symmetry); ++k) {
                const auto at = static_cast<std::size_t>(k - 1);
                for (int i = 1; i <= mesh.np; ++i) {
                    for (int j = 1 + i % 3; j <= mesh.np; j += 3) {
                        SCOPED_TRACE(testing::Message()
                                     << "depth " << p.depth << " symmetry " << symmetry << " " << k
                                     << " " << j << " " << i);
                        const Sums sums = by_pairs(mesh.view(), p, k, j, i, cache);
                        expect_close(m.alpha[at](j, i), sums.alpha, sums.alpha_size, 1e-6);
                        expect_close(m.beta[at](j, i), sums.beta, sums.beta_size, 1e-6);
                        if (HasFailure()) return;
                    }
                }
            }
        }
    }
}

// Without its first panels the rest of the mesh falls into different tiles. The finite-depth kernel
// picks its number of modes for a whole batch, so that values may differ by its error, 1e-7.
TEST(InfluenceMatrices, do_not_depend_on_the_tiles) {
    const PanelArrays mesh = hemisphere_mesh(2, 9, 10, 0);
    constexpr int skip = 13;
    PanelArrays part(mesh.np - skip);
    const PanelMesh all = mesh.view();
    for (int q = 1; q <= part.np; ++q) {
        part.set(q, all.panel(q + skip).corners);
    }
    for (const InfluenceParameters& water : {deep, shallow}) {
        const Matrices whole = matrices(mesh, water), some = matrices(part, water);
        const double tolerance = water.depth > 100 ? 0 : 1e-6;
        for (int i = 1; i <= part.np; ++i) {
            for (int j = 1; j <= part.np; ++j) {
                const Complex8 alpha(whole.alpha[0](j + skip, i + skip));
                const Complex8 beta(whole.beta[0](j + skip, i + skip));
                expect_close(some.alpha[0](j, i), alpha, std::abs(alpha), tolerance);
                expect_close(some.beta[0](j, i), beta, std::abs(beta), tolerance);
            }
        }
    }
}

// The image of a quarter's panel is a panel of the whole mesh: row r, column c of C has its image
// in x = 0 at column 2 C - 1 - c, in both at 2 C + c, in y = 0 at 4 C - 1 - c.
TEST(InfluenceMatrices, of_a_quarter_and_a_half_are_sums_of_those_of_the_whole) {
    constexpr int rows = 4, columns = 5;
    const Matrices whole = matrices(hemisphere_mesh(2, rows, 4 * columns, 0), shallow);
    for (const int symmetry : {1, 2}) {
        const int width = symmetry == 1 ? 2 * columns : columns;
        const PanelArrays mesh = hemisphere_mesh(2, rows, width, symmetry);
        const Matrices m = matrices(mesh, with_symmetry(shallow, symmetry));
        const auto image = [&](int p, int number) { // both 1-based
            const int row = (p - 1) / width, c = (p - 1) % width, all = 4 * columns;
            const Reflection reflection = reflection_of(symmetry, number);
            const bool in_x = reflection.x < 0, in_y = reflection.y < 0;
            const int turned =
                in_x ? (in_y ? 2 * columns + c : 2 * columns - 1 - c) : (in_y ? all - 1 - c : c);
            return 1 + row * all + turned;
        };
        for (int k = 1; k <= image_count(symmetry); ++k) {
            const auto at = static_cast<std::size_t>(k - 1);
            for (int i = 1; i <= mesh.np; ++i) {
                for (int j = 1; j <= mesh.np; ++j) {
                    Complex8 alpha, beta;
                    double size = 0, beta_size = 0;
                    for (int number = 1; number <= image_count(symmetry); ++number) {
                        const Complex8 a(whole.alpha[0](image(j, 1), image(i, number)));
                        const Complex8 b(whole.beta[0](image(j, 1), image(i, number)));
                        alpha += class_sign(symmetry, k, number) * a;
                        beta += class_sign(symmetry, k, number) * b;
                        size += std::abs(a);
                        beta_size += std::abs(b);
                    }
                    // each entry is rounded to single precision once more
                    expect_close(m.alpha[at](j, i), alpha, size, 3e-7);
                    expect_close(m.beta[at](j, i), beta, beta_size, 3e-7);
                }
            }
        }
    }
}

TEST(InfluenceMatrices, of_one_panel_have_one_entry_a_class) {
    PanelArrays mesh(1);
    mesh.set(1, {{{0, 0, -1}, {0, 1, -1}, {1, 1, -1}, {1, 0, -1}}});
    const Matrices m = matrices(mesh, with_symmetry(deep, 2));
    EXPECT_EQ(m.alpha.size(), 4U);
    // All images of class 3 have the sign +: the largest of the four potentials.
    EXPECT_GT(m.alpha[2](1, 1).real(), m.alpha[0](1, 1).real());
}

TEST(InfluenceMatrices, tell_the_panels_that_have_no_influence) {
    const PanelArrays good = hemisphere_mesh(2, 4, 8, 0);
    Matrices m(good.np, 1);
    DepthCache cache;
    const auto result = [&](const PanelArrays& mesh, const InfluenceParameters& p) {
        return influence_matrices(mesh.view(), p, cache, m.alpha, m.beta, {});
    };
    InfluenceParameters too_shallow = shallow;
    too_shallow.depth = 1.5;
    const InfluenceResult below = result(good, too_shallow);
    EXPECT_EQ(below.status, InfluenceStatus::no_green_value);
    EXPECT_GT(below.pair.d2, below.pair.h_green);

    PanelArrays bad = good;
    bad.area[4] = 0;
    EXPECT_EQ(result(bad, deep).status, InfluenceStatus::bad_panel);
    EXPECT_EQ(result(bad, deep).panel, 5);
    bad = good;
    bad.xr[2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(result(bad, deep).panel, 3);
    EXPECT_EQ(m.alpha[0](1, 1), Complex4{}) << "nothing is written on failure";
}

TEST(InfluenceMatrices, report_every_hundredth_panel_and_the_last) {
    const PanelArrays mesh = hemisphere_mesh(2, 10, 25, 0);
    Matrices m(mesh.np, 1);
    DepthCache cache;
    std::vector<int> reports;
    influence_matrices(mesh.view(), deep, cache, m.alpha, m.beta,
                       [&](int panel) { reports.push_back(panel); });
    EXPECT_EQ(reports, (std::vector<int>{100, 200, 250}));
}
