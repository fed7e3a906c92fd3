// The bar: its matrices against its forces, rigid motions, the connection at an offset, and the
// shallow two-bar truss.
#include "elements/bar.hpp"

#include "element_checks.hpp"

using namespace quelor;

namespace {

const Vec3 start{0.3, -0.2, 0.5}, finish{1.1, 0.9, -0.4};
constexpr double ea = 7, lo = 1.4; // the bar above is some 1.63 long

std::array<double, 6> stretched_force(std::span<const double> x) {
    const auto [c, length] = direction_cosines({x[0], x[1], x[2]}, {x[3], x[4], x[5]});
    return bar_force(c, stretched_tension(ea, lo, length));
}

SmallMatrix<6> tangent(const Vec3& p1, const Vec3& p2) {
    const auto [c, length] = direction_cosines(p1, p2);
    SmallMatrix<6> k = bar_stiffness(c, ea / lo);
    add_bar_geometric(k, c, stretched_tension(ea, lo, length) / length);
    return k;
}

} // namespace

TEST(Bar, tangent_is_the_derivative_of_the_force_in_tension_and_compression) {
    for (const double shrink : {1.0, 0.5}) {
        const Vec3 end = add_scaled(start, shrink, difference(finish, start));
        const SmallMatrix<6> k = tangent(start, end);
        expect_symmetric(k);
        expect_tangent(k, {start[0], start[1], start[2], end[0], end[1], end[2]}, stretched_force,
                       1e-8);
    }
}

TEST(Bar, turned_and_moved_by_any_angle_it_keeps_its_length_and_has_no_force) {
    const double length = vector_length(difference(finish, start));
    const Vec3 axis = scale_to_length({1, -2, 0.5}, 1), move{10, 20, -30};
    for (const double angle : {0.1, 1.0, 3.1, 6.0}) {
        const Vec3 p1 = add_scaled(turned(start, axis, angle), 1, move);
        const Vec3 p2 = add_scaled(turned(finish, axis, angle), 1, move);
        const double present = direction_cosines(p1, p2).length;
        EXPECT_NEAR(stretched_tension(ea, length, present), 0, 1e-13 * ea); // rounding of 30
    }
}

TEST(Bar, ends_on_rigid_arms_follow_a_rigid_motion_of_their_nodes) {
    const std::array offsets{0.2, -0.1, 0.4, -0.3, 0.6, 0.1};
    const std::vector<Vec3> nodes{start, finish};
    const Vec3 t{0.3, 0.4, -0.7}, w{0.2, -0.5, 0.9};
    const auto all = rigid_motion(nodes, t, w);
    for (const int code : {0, 1, 2, 3}) {
        std::vector<double> u(all.begin(), all.begin() + (code & 1 ? 6 : 3));
        u.insert(u.end(), all.begin() + 6, all.begin() + (code & 2 ? 12 : 9));
        const BarConnection c = connect_bar(code, offsets);
        ASSERT_EQ(static_cast<std::size_t>(c.t.cols), u.size());
        const Vec3 p1 = add_scaled(start, 1, c.offset1), p2 = add_scaled(finish, 1, c.offset2);
        u.resize(12);
        const auto ends = product(c.t, u);
        const auto wanted = rigid_motion({p1, p2}, t, w);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(ends[i], wanted[i], 1e-15) << code;
            EXPECT_NEAR(ends[i + 3], wanted[i + 6], 1e-15) << code;
        }
        const auto [d, length] = direction_cosines(p1, p2);
        EXPECT_NEAR(
            linear_tension(ea, length, d, {ends[0], ends[1], ends[2]}, {ends[3], ends[4], ends[5]}),
            0, 1e-14);
        // The forces on the nodes do the same work as those on the ends.
        const SmallMatrix<12> k = congruent(bar_stiffness(d, ea / length), c.t);
        EXPECT_EQ(k.rows, c.t.cols);
        expect_symmetric(k);
        EXPECT_LT(largest(product(k, std::span(u).first(static_cast<std::size_t>(k.cols)))), 1e-14);
    }
}

TEST(Bar, shallow_two_bar_truss_has_its_limit_load_where_the_tangent_vanishes) {
    // Two bars from (-1, 0) and (1, 0) to the apex at height h; by symmetry the apex moves down the
    // axis. Lo^2 = 1 + h^2, L^2 = 1 + z^2: P(z) = 2 E A (1 / L - 1 / Lo) z, which has its maximum
    // at L^3 = Lo. The stiffness of the apex, 2 k(3,3), is dP/dz.
    constexpr double height = 0.2;
    const double original = std::hypot(1, height);
    const double limit = std::sqrt(std::cbrt(original * original) - 1); // z where L^3 = Lo
    const auto apex = [&](double z) {
        const auto [c, length] = direction_cosines({-1, 0, 0}, {0, 0, z});
        const double tension = stretched_tension(ea, original, length);
        SmallMatrix<6> k = bar_stiffness(c, ea / original);
        add_bar_geometric(k, c, tension / length);
        return std::pair{2 * bar_force(c, tension)[5], 2 * k(6, 6)};
    };
    for (const double z : {0.15, limit, 0.05, -0.1}) {
        const double length = std::hypot(1, z);
        EXPECT_NEAR(apex(z).first, 2 * ea * (1 / original - 1 / length) * z, 1e-14);
    }
    EXPECT_NEAR(apex(limit).second, 0, 1e-13 * ea);
    EXPECT_GT(apex(1.01 * limit).second, 0);
    EXPECT_LT(apex(0.99 * limit).second, 0);
}
