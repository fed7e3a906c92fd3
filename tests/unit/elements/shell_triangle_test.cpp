// The shell triangle, the virtual node of a quadrilateral, and the six-node plate: what holds for
// any geometry.
#include "elements/plate6.hpp"
#include "elements/shell_forces.hpp"
#include "elements/shell_quad.hpp"

#include "element_checks.hpp"

#include "numeric/panel_geometry.hpp"

using namespace quelor;

namespace {

const ShellMaterial orthotropic{{210, 70, 50}, {30, 20, 25}, {0.2, 0.25, 0.1}, 0.3, 0.4};
const std::array<Vec3, 3> skew{{{0.3, -0.2, 0.5}, {2.1, 0.4, 0.1}, {0.7, 1.6, 0.9}}};

ShellTriangle curved_triangle() {
    ShellTriangle t = shell_triangle(skew);
    t.rise = {0.11, 0.05, 0.17};
    return t;
}

ShellMatrix global_stiffness(const ShellTriangle& t, double drill = 0) {
    const ShellParts parts = shell_parts(t, min3s_material(orthotropic));
    return min3s_transform(shell_stiffness(parts, shell_relaxation(parts, 0.5, 1), drill), t.axes);
}

template <class A, class B> double dot(const A& a, const B& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += a[i] * b[i];
    return sum;
}

template <std::size_t N> std::array<double, N> fixed(const std::vector<double>& v) {
    std::array<double, N> a;
    std::copy_n(v.begin(), N, a.begin());
    return a;
}

/// Local values by component of a field (u, v, w, thx, thy, thz) of x and y.
template <class Field> ShellVector nodal(const ShellTriangle& t, Field field) {
    ShellVector u;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::array<double, 6> value = field(t.x[i], t.y[i]);
        for (std::size_t c = 0; c < 6; ++c)
            u[3 * c + i] = value[c];
    }
    return u;
}

std::vector<Vec3> corners_of(const std::array<Vec3, 3>& v) {
    return {v.begin(), v.end()};
}

/// Pivots of the elimination, the largest first, that are not rounding.
template <int N> int rank_of(SmallMatrix<N> k) {
    const double scale = largest(k.a);
    for (int rank = 0;; ++rank) {
        int p = 1;
        for (int i = 2; i <= N; ++i)
            if (k(i, i) > k(p, p)) p = i;
        if (k(p, p) < 1e-9 * scale) return rank;
        const SmallMatrix<N> before = k;
        for (int j = 1; j <= N; ++j)
            for (int i = 1; i <= N; ++i)
                k(i, j) -= before(i, p) * before(p, j) / before(p, p);
    }
}

constexpr ShellPoint somewhere{0.2, 0.5, 0.3};

} // namespace

TEST(ShellSection, plane_stress_of_the_compliance_whatever_the_axes) {
    const ShellSection s = min3s_material(orthotropic);
    // Strains of a tension along 1: 1/E1 and -nu12/E1, with no force along 2.
    const auto n = product(s.membrane, Vec3{1 / 210.0, -0.2 / 210, 0});
    EXPECT_NEAR(n[0], 0.3, 1e-15);
    EXPECT_NEAR(n[1], 0, 1e-15);
    EXPECT_NEAR(s.bending(1, 2) / s.membrane(1, 2), 0.4 * 0.4 * 0.4 / 12 / 0.3, 1e-15);
    EXPECT_NEAR(s.shear(1, 1), 25 * 0.3 * 5 / 6, 1e-14); // xz by G13
    EXPECT_NEAR(s.shear(2, 2), 20 * 0.3 * 5 / 6, 1e-14);
    const ShellSection quarter = turned_section(s, 0, 1); // axis 1 along y
    EXPECT_NEAR(quarter.membrane(2, 2), s.membrane(1, 1), 1e-13);
    EXPECT_NEAR(quarter.shear(2, 2), s.shear(1, 1), 1e-14);
    // The work of a strain does not depend on the axes.
    const ShellSection turned = turned_section(s, 0.6, 0.8);
    const ShellResultants strain{0.3, -0.2, 0.15, 0, 0, 0, 0.4, 0.1};
    const ShellResultants along = turned_resultants(strain, 0.6, 0.8);
    const auto work = [](const ShellSection& section, const ShellResultants& e) {
        const Vec3 m{e[0], e[1], 2 * e[2]};
        const std::array q{e[6], e[7]};
        return dot(product(section.membrane, m), m) + dot(product(section.shear, q), q);
    };
    EXPECT_NEAR(work(turned, strain), work(s, along), 1e-13);
    const ShellMaterial same = isotropic({{200, 0, 0}, {200 / 2.6, 0, 0}, {0.3, 0, 0}, 0.1, 0.1});
    const ShellSection plain = min3s_material(same), any = turned_section(plain, 0.28, 0.96);
    for (std::size_t i = 0; i < plain.membrane.a.size(); ++i)
        EXPECT_NEAR(any.membrane.a[i], plain.membrane.a[i], 1e-14);
}

TEST(ShellSection, a_compliance_without_work_is_refused) {
    EXPECT_TRUE(is_elastic(orthotropic));
    const auto with = [](auto change) {
        ShellMaterial m = orthotropic;
        change(m);
        return is_elastic(m);
    };
    EXPECT_FALSE(with([](auto& m) { m.e[2] = 0; }));
    EXPECT_FALSE(with([](auto& m) { m.thickness = -1; }));
    EXPECT_FALSE(with([](auto& m) { m.nu[0] = 1.8; })); // above the root of E1 / E2
    // Of an isotropic material -1 < nu < 1/2, which the third minor alone tells.
    EXPECT_TRUE(is_elastic(isotropic({{1, 0, 0}, {1, 0, 0}, {0.499, 0, 0}, 1, 1})));
    EXPECT_FALSE(is_elastic(isotropic({{1, 0, 0}, {1, 0, 0}, {0.501, 0, 0}, 1, 1})));
}

TEST(ShellTriangle, rigid_motions_take_no_force_flat_or_curved) {
    for (const ShellTriangle& t : {shell_triangle(skew), curved_triangle()}) {
        const ShellMatrix k = global_stiffness(t);
        expect_symmetric(k);
        const auto u = rigid_motion(corners_of(skew), {0.3, -0.2, 0.7}, {0.5, 0.1, -0.4});
        EXPECT_LT(largest(product(k, u)), 1e-13 * largest(k.a));
        const auto r = shell_resultants(t, min3s_material(orthotropic), {},
                                        shell_to_local(fixed<18>(u), t.axes), somewhere);
        EXPECT_LT(largest(r), 1e-13 * largest(k.a));
    }
}

TEST(ShellTriangle, has_no_other_motion_without_force) {
    // 18 degrees of freedom less 6 rigid motions and 3 rotations about the normal.
    EXPECT_EQ(rank_of(global_stiffness(shell_triangle(skew))), 9);
    EXPECT_EQ(rank_of(global_stiffness(curved_triangle())), 9);
}

TEST(ShellTriangle, constant_strain_and_curvature_give_their_resultants_everywhere) {
    const ShellTriangle t = shell_triangle(skew);
    const ShellSection s = min3s_material(orthotropic);
    // w = -(a x^2 + b y^2) / 2 - c x y / 2 with thy = -w,x and thx = w,y.
    const double a = 0.2, b = -0.3, c = 0.14;
    const auto u = nodal(t, [&](double x, double y) {
        return std::array{
            0.1 * x + 0.05 * y, 0.07 * x - 0.02 * y, -(a * x * x + b * y * y + c * x * y) / 2,
            -b * y - c * x / 2, a * x + c * y / 2,   0.0};
    });
    const auto r = shell_resultants(t, s, {}, u, somewhere);
    const auto n = product(s.membrane, Vec3{0.1, -0.02, 0.12});
    const auto m = product(s.bending, Vec3{a, b, c});
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(r[i], n[i], 1e-13);
        EXPECT_NEAR(r[3 + i], m[i], 1e-13);
    }
    EXPECT_NEAR(r[6], 0, 1e-14);
    EXPECT_NEAR(r[7], 0, 1e-14);
    // A shear strain alone, and the sign of its force: w = x pulls Qx up.
    const auto q = shell_resultants(
        t, s, {0.25, 1},
        nodal(t, [](double x, double) { return std::array{0., 0., x, 0., 0., 0.}; }), somewhere);
    EXPECT_NEAR(q[6], 0.25 * s.shear(1, 1), 1e-14);
    // The nodal forces do the work of the resultants: u^T K u = A (N e + M k + Q g).
    const ShellParts parts = shell_parts(t, s);
    const ShellMatrix k = shell_stiffness(parts, {}, 0);
    EXPECT_NEAR(dot(product(k, u), u),
                t.area * (dot(n, Vec3{0.1, -0.02, 0.12}) + dot(m, Vec3{a, b, c})), 1e-12);
}

TEST(ShellTriangle, membrane_strain_along_a_curved_edge_is_constant_and_has_its_mean) {
    // The mean of u' + h' w' over an edge of length l whose ends have no u is that of h' w', with
    // h = 4 r q, q = L1 L2: 0 for w = L2, and 2/3 r / l for w = l q / 2, the deflection by thy = 1
    // at the end. No point may have another.
    ShellTriangle t = shell_triangle({Vec3{0, 0, 0}, Vec3{2, 0, 0}, Vec3{0.5, 1.5, 0}});
    t.rise = {0.2, 0, 0};
    const ShellSection s = min3s_material(orthotropic);
    const auto& d = s.membrane;
    const auto strain_at = [&](int dof, double x) { // along the edge 1-2, by the membrane forces
        ShellVector u{};
        u[static_cast<std::size_t>(dof)] = 1;
        const auto r = shell_resultants(t, s, {}, u, {1 - x, x, 0});
        return (r[0] - d(1, 2) / d(2, 2) * r[1]) / (d(1, 1) - d(1, 2) * d(1, 2) / d(2, 2));
    };
    for (const double x : {0.0, 0.1, 0.5, 0.8}) {
        EXPECT_NEAR(strain_at(shell_w + 1, x), 0, 1e-14) << x;
        EXPECT_NEAR(strain_at(shell_thy + 1, x), 2. / 3 * 0.2 / 2, 1e-14) << x;
    }
}

TEST(ShellTriangle, relaxation_follows_its_coefficients_and_drilling_the_least_diagonal) {
    const ShellSection s = min3s_material(orthotropic);
    const ShellParts flat = shell_parts(shell_triangle(skew), s);
    const ShellParts curved = shell_parts(curved_triangle(), s);
    EXPECT_EQ(shell_relaxation(flat, 0, 1).shear, 1);
    EXPECT_EQ(shell_relaxation(flat, 0.5, 1).membrane, 1);
    EXPECT_LT(shell_relaxation(flat, 1e9, 1).shear, 1e-6);
    EXPECT_LT(shell_relaxation(curved, 0.5, 1).membrane, 1);
    EXPECT_EQ(shell_relaxation(curved, 0.5, 0).membrane, 1);
    EXPECT_EQ(relaxation(0.5, 3, 2), 1 / 1.75);
    EXPECT_EQ(relaxation(0.5, 3, 0), 0);
    const ShellMatrix k = shell_stiffness(flat, {0.3, 1}, 1e-3);
    double least = k(1, 1);
    for (int i = 1; i <= 15; ++i)
        least = std::min(least, k(i, i));
    for (int i = 16; i <= 18; ++i)
        for (int j = 1; j <= 18; ++j)
            EXPECT_EQ(k(i, j), i == j ? 1e-3 * least : 0);
}

TEST(ShellTriangle,
     results_in_the_plane_do_not_depend_on_the_numbering_or_the_side_of_the_element) {
    const std::array<Vec3, 3> up{{{0, 0, 0}, {2, 0.3, 0}, {0.4, 1.1, 0}}};
    const ShellSection s =
        min3s_material(isotropic({{200, 0, 0}, {200 / 2.6, 0, 0}, {0.3, 0, 0}, 0.1, 0.1}));
    const auto along_globals = [&](std::array<std::size_t, 3> order) {
        const std::array vertices{up[order[0]], up[order[1]], up[order[2]]};
        const ShellTriangle t = shell_triangle(vertices);
        ShellVector u{};
        for (std::size_t i = 0; i < 3; ++i) {
            const auto [x, y, z] = vertices[i];
            const std::array motion{0.1 * x + 0.2 * y, 0.3 * y,         0.7 * x * x + x * y,
                                    x - 2 * y,         0.4 * x - y * y, 0.0};
            std::ranges::copy(motion, u.begin() + static_cast<std::ptrdiff_t>(6 * i));
        }
        return global_resultants(
            shell_resultants(t, s, {}, shell_to_local(u, t.axes), {1. / 3, 1. / 3, 1. / 3}),
            t.axes);
    };
    const auto r = along_globals({0, 1, 2});
    for (const auto order : {std::array<std::size_t, 3>{1, 2, 0}, {0, 2, 1}, {2, 1, 0}}) {
        const auto other = along_globals(order);
        for (std::size_t i = 0; i < r.size(); ++i)
            EXPECT_NEAR(other[i], r[i], 1e-13 * largest(r)) << i;
    }
}

TEST(ShellForces, geometric_stiffness_is_the_work_of_the_membrane_forces_in_the_slopes) {
    const ShellTriangle t = shell_triangle(skew);
    const Vec3 n{3, -2, 0.7};
    ShellMatrix k;
    min3s_geometric(k, t, n);
    expect_symmetric(k);
    // u = (a x, b y, c x + d y) has these gradients everywhere.
    const double a = 0.3, b = 0.2, c = -0.4, d = 0.5;
    const auto u = nodal(
        t, [&](double x, double y) { return std::array{a * x, b * y, c * x + d * y, 0., 0., 0.}; });
    EXPECT_NEAR(dot(product(k, u), u),
                t.area * (n[0] * (a * a + c * c) + n[1] * (b * b + d * d) + 2 * n[2] * c * d),
                1e-13);
}

TEST(ShellForces, mass_is_that_of_a_plane_body) {
    const ShellTriangle t = shell_triangle(skew);
    const ShellMatrix m = min3s_transform(shell_mass(t, 4), t.axes);
    expect_symmetric(m);
    const double total = 4 * t.area;
    const auto push = rigid_motion(corners_of(skew), {0.6, 0, 0.8}, {0, 0, 0});
    EXPECT_NEAR(dot(product(m, push), push), total, 1e-13);
    // About an axis w: the integral of |w x r|^2, exact by the midpoints of the edges.
    const Vec3 w{0.5, 0.1, -0.4};
    const auto turn = rigid_motion(corners_of(skew), {0, 0, 0}, w);
    double inertia = 0;
    for (const auto& [i, j] : shell_edges) {
        const Vec3 v =
            cross_product(w, add_scaled(skew[i], 0.5, difference(skew[j], skew[i]))).vector;
        inertia += total / 3 * dot_product(v, v);
    }
    EXPECT_NEAR(dot(product(m, turn), turn), inertia, 1e-12);
}

TEST(ShellForces, loads_do_the_work_of_their_densities) {
    const ShellTriangle t = shell_triangle(skew);
    const std::array p{2.0, -1.0, 5.0};
    const ShellVector f = min3s_pressure_load(t, p);
    EXPECT_NEAR(f[shell_w] + f[shell_w + 1] + f[shell_w + 2], t.area * 2, 1e-13);
    EXPECT_NEAR(f[shell_w], (2 * p[0] + p[1] + p[2]) * t.area / 12, 1e-14);
    // w = x^2 with thy = -2 x under the constant pressure 1: the integral of x^2.
    const auto bowl =
        nodal(t, [](double x, double) { return std::array{0., 0., x * x, 0., -2 * x, 0.}; });
    double integral = 0;
    for (const auto& [i, j] : shell_edges)
        integral += t.area / 3 * std::pow((t.x[i] + t.x[j]) / 2, 2);
    EXPECT_NEAR(dot(min3s_pressure_load(t, {1, 1, 1}), bowl), integral, 1e-13);
    // Weight: total force along the acceleration, no moment about the centroid.
    const Vec3 g{0.3, -0.5, -9.8};
    const auto weight = min3s_transform(shell_weight(t, 4, g), t.axes);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(weight[i] + weight[6 + i] + weight[12 + i], 4 * t.area * g[i], 1e-12);
    const Vec3 centre = place_of(skew, {1. / 3, 1. / 3, 1. / 3});
    const auto turn = rigid_motion(
        {difference(skew[0], centre), difference(skew[1], centre), difference(skew[2], centre)},
        {0, 0, 0}, {0.2, 0.7, -0.3});
    EXPECT_NEAR(dot(weight, turn), 0, 1e-13);
}

TEST(ShellForces, hydrostatic_stiffness_is_the_change_of_the_pressure_forces) {
    // Pressure -weight z on a linear triangle whose vertices move: forces -side p n N by the
    // present vectors of the sides. Their derivatives are exact for moves without rotations, except
    // that p changes in the old area and the area under the old p.
    const double weight = 1.7;
    const auto forces = [&](std::span<const double> moves) {
        std::array<Vec3, 3> v;
        for (std::size_t i = 0; i < 3; ++i)
            v[i] = {skew[i][0] + moves[3 * i], skew[i][1] + moves[3 * i + 1],
                    skew[i][2] + moves[3 * i + 2]};
        const Vec3 area = cross_product(difference(v[1], v[0]), difference(v[2], v[0])).vector;
        std::array<double, 9> f;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t k = 0; k < 3; ++k) {
                double p = 0; // integral of p L_i over the area: (p1 + p2 + p3 + p_i) / 12
                for (std::size_t j = 0; j < 3; ++j)
                    p -= weight * v[j][2] * (i == j ? 2 : 1);
                f[3 * i + k] = p / 24 * area[k]; // minus the force on the side of +z
            }
        return f;
    };
    const ShellTriangle t = shell_triangle(skew);
    ShellMatrix local, other;
    const std::array pressure{-weight * skew[0][2], -weight * skew[1][2], -weight * skew[2][2]};
    min3s_hydrostatic(local, t, {weight, pressure, 1});
    min3s_hydrostatic(other, t, {weight, pressure, -1});
    const ShellMatrix k = min3s_transform(local, t.axes);
    constexpr double h = 1e-6;
    std::array<std::array<double, 9>, 9> tangent;
    for (std::size_t j = 0; j < 9; ++j) {
        std::array<double, 9> moves{};
        moves[j] = h;
        const auto up = forces(moves);
        moves[j] = -h;
        const auto down = forces(moves);
        for (std::size_t i = 0; i < 9; ++i)
            tangent[i][j] = (up[i] - down[i]) / (2 * h);
    }
    for (std::size_t i = 0; i < 9; ++i)
        for (std::size_t j = 0; j < 9; ++j)
            EXPECT_NEAR(k.a[i / 3 * 6 + i % 3 + 18 * (j / 3 * 6 + j % 3)],
                        (tangent[i][j] + tangent[j][i]) / 2, 1e-9)
                << i << ' ' << j;
    for (std::size_t i = 0; i < local.a.size(); ++i)
        EXPECT_EQ(local.a[i], -other.a[i]);
    ShellMatrix none;
    min3s_hydrostatic(none, t, {0, pressure, 1});
    min3s_hydrostatic(none, t, {weight, {0, 0, 0}, 1});
    EXPECT_EQ(largest(none.a), 0);
}

TEST(ShellQuad, finds_the_crossing_of_the_diagonals_and_what_cannot_be_used) {
    const std::array<Vec3, 4> warped{{{0, 0, 0.1}, {2, 0, -0.1}, {3, 2, 0.1}, {0, 1, -0.1}}};
    const ShellQuad q = shell_quad(warped);
    ASSERT_TRUE(q.valid);
    // Seen from above: x = 3 s, y = 2 s and x = 2 - 2 r, y = r meet at s = 2/7, r = 4/7.
    EXPECT_NEAR(q.part13, 2. / 7, 1e-15);
    EXPECT_NEAR(q.part24, 4. / 7, 1e-15);
    EXPECT_NEAR(q.middle[0], 6. / 7, 1e-15);
    EXPECT_NEAR(q.middle[2], 0, 1e-15);
    EXPECT_NEAR(q.warp, 0.2, 1e-15);
    EXPECT_NEAR(q.area, 0.5 * 7, 1e-14); // d13 x d24 = 3 * 1 - 2 * (-2)
    EXPECT_FALSE(shell_quad({{{0, 0, 0}, {2, 0, 0}, {0.5, 0.5, 0}, {0, 2, 0}}}).valid); // a dent
    const ShellQuad none = shell_quad({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}});
    EXPECT_EQ(none.normal, Vec3{});
    EXPECT_FALSE(none.valid);
}

TEST(ShellQuad, the_virtual_node_goes_with_rigid_motions_constant_strains_and_curvatures) {
    const std::array<Vec3, 4> warped{
        {{0.1, 0, 0.3}, {2, -0.2, -0.1}, {2.6, 1.8, 0.2}, {-0.3, 1.1, 0}}};
    std::array<Vec3, 4> flat = warped;
    for (Vec3& p : flat)
        p[2] = 0;
    for (const auto rule :
         {InnerRotation::mean, InnerRotation::first_diagonal, InnerRotation::continuous_shear}) {
        const ShellQuad q = shell_quad(warped);
        const auto with = rigid_motion({warped[0], warped[1], warped[2], warped[3], q.middle},
                                       {0.3, -0.2, 0.7}, {0.5, 0.1, -0.4});
        const auto moved = product(inner_motion(q, warped, rule), std::span(with).first(24));
        for (std::size_t i = 0; i < 30; ++i)
            EXPECT_NEAR(moved[i], with[i], 1e-14) << i;
        // w = x^2 - x y / 2 with its slopes, strains 0.1, 0.2 and a turn about z of 0.3
        std::vector<double> field;
        const ShellQuad level = shell_quad(flat);
        for (const Vec3& p : {flat[0], flat[1], flat[2], flat[3], level.middle})
            field.insert(field.end(),
                         {0.1 * p[0] - 0.3 * p[1], 0.3 * p[0] + 0.2 * p[1],
                          p[0] * p[0] - p[0] * p[1] / 2, -p[0] / 2, p[1] / 2 - 2 * p[0], 0.3});
        const auto found = product(inner_motion(level, flat, rule), std::span(field).first(24));
        for (std::size_t i = 0; i < 30; ++i)
            EXPECT_NEAR(found[i], field[i], 1e-13) << i;
    }
    double sum = 0;
    for (const double part : inner_weights(shell_quad(warped)))
        sum += part;
    EXPECT_NEAR(sum, 1, 1e-15);
}

TEST(ShellQuad, drilling_penalty_holds_the_rotation_to_half_the_curl) {
    const ShellTriangle t = shell_triangle(skew);
    ShellMatrix k;
    add_drilling_penalty(k, t, 6);
    expect_symmetric(k);
    const auto turned = [&](double thz) {
        const auto u = nodal(t, [&](double x, double y) {
            return std::array{-0.2 * y + 0.1 * x, 0.4 * x, 0., 0., 0., thz};
        });
        return dot(product(k, u), u);
    };
    EXPECT_NEAR(turned(0.3), 0, 1e-15); // (v,x - u,y) / 2
    EXPECT_NEAR(turned(0.8), 6 * t.area * 0.25, 1e-14);
}

TEST(Plate6, bends_constantly_moves_rigidly_and_has_no_other_free_motion) {
    PlateNodes nodes{{{0, 0, 0}, {2, 0.3, 0}, {0.4, 1.7, 0}, {}, {}, {}}};
    for (std::size_t k = 0; k < 3; ++k) {
        const auto [i, j] = shell_edges[k];
        nodes[3 + k] = add_scaled(nodes[i], 0.5, difference(nodes[j], nodes[i]));
    }
    const ShellSection s = min3s_material(orthotropic);
    const PlateParts parts = plate6_parts(nodes, s);
    PlateMatrix k = parts.bending;
    for (std::size_t i = 0; i < k.a.size(); ++i)
        k.a[i] += parts.shear.a[i];
    expect_symmetric(k);
    const auto field = [&](auto of) {
        PlateVector u;
        for (std::size_t a = 0; a < 6; ++a) {
            const std::array<double, 3> value = of(nodes[a][0], nodes[a][1]);
            std::ranges::copy(value, u.begin() + static_cast<std::ptrdiff_t>(3 * a));
        }
        return u;
    };
    const auto rigid = field([](double x, double y) {
        return std::array{1 + 2 * x + 3 * y, 3., -2.};
    });
    EXPECT_LT(largest(product(k, rigid)), 1e-13 * largest(k.a));
    EXPECT_EQ(rank_of(k), 15);
    const auto bent = field([](double x, double y) {
        return std::array{-(0.2 * x * x - 0.3 * y * y + 0.14 * x * y) / 2, 0.3 * y - 0.07 * x,
                          0.2 * x + 0.07 * y};
    });
    const auto state = plate6_state(nodes, s, 0.5, bent);
    const auto m = product(s.bending, Vec3{0.2, -0.3, 0.14});
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(state.resultants[i], m[i], 1e-13);
    EXPECT_NEAR(state.resultants[3], 0, 1e-13);
    EXPECT_NEAR(plate6_state(nodes, s, 0.5, field([](double, double y) {
                                 return std::array{y, 0., 0.};
                             }))
                    .resultants[4],
                0.5 * s.shear(2, 2), 1e-13);
    const double area = triangle_area(nodes[0], nodes[1], nodes[2]);
    EXPECT_NEAR(dot(product(k, bent), bent), area * dot(m, Vec3{0.2, -0.3, 0.14}), 1e-12);
    // Mass and load of the deflection: w = x has the integral of x^2, by the midpoints of the
    // edges.
    const auto slope = field([](double x, double) { return std::array{x, 0., 0.}; });
    double square = 0;
    for (std::size_t e = 3; e < 6; ++e)
        square += area / 3 * nodes[e][0] * nodes[e][0];
    EXPECT_NEAR(dot(product(plate6_mass(nodes, 3), slope), slope), 3 * square, 1e-13);
    std::array<double, 6> p;
    for (std::size_t a = 0; a < 6; ++a)
        p[a] = nodes[a][0];
    EXPECT_NEAR(dot(plate6_load(nodes, p), slope), square, 1e-13);
    EXPECT_EQ(plate6_relaxation(parts, 0), 1);
    EXPECT_LT(plate6_relaxation(parts, 0.5), 1);
    EXPECT_TRUE(plate6_is_possible(nodes));
    std::swap(nodes[3], nodes[4]); // nodes between the wrong vertices
    EXPECT_FALSE(plate6_is_possible(nodes));
}
