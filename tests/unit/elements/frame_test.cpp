// The beam in space: rigid motions, closed forms with and without shear deformation, its axes.
#include "elements/frame.hpp"

#include "element_checks.hpp"

using namespace quelor;

namespace {

const FrameSection slender{210, 80, 0.5, 0.3, 0.07, 0.11, 0, 0};
const FrameSection stocky{210, 80, 0.5, 0.3, 0.07, 0.11, 0.2, 0.3};
const Vec3 p1{0.4, 1.2, -0.3}, p2{2.5, -0.1, 0.9};

LocalAxes skew_axes() {
    return frame_axes(difference(p2, p1), {0.3, 0.1, 2});
}

} // namespace

TEST(Frame, a_rigid_motion_in_any_direction_gives_no_force) {
    const double length = vector_length(difference(p2, p1));
    const auto u = rigid_motion({p1, p2}, {0.3, -0.2, 0.7}, {0.5, 0.1, -0.4});
    for (const FrameSection& s : {slender, stocky}) {
        const SmallMatrix<12> k = to_global(frame_stiffness(s, length), skew_axes());
        expect_symmetric(k);
        EXPECT_LT(largest(product(k, u)), 1e-13 * largest(k.a));
    }
    // Turning a beam that carries a tension needs the moment of its end forces alone.
    SmallMatrix<12> kg;
    add_frame_geometric(kg, 5, length);
    expect_symmetric(kg);
    const auto turn = rigid_motion({{0, 0, 0}, {length, 0, 0}}, {1, 2, 3}, {0, 0, 0.2});
    const auto f = product(kg, turn);
    EXPECT_NEAR(f[7], 5 * 0.2, 1e-14); // P w, across the beam
    EXPECT_NEAR(f[1], -5 * 0.2, 1e-14);
    EXPECT_NEAR(f[5], 0, 1e-14);
}

TEST(Frame, cantilever_and_fixed_beam_meet_their_closed_forms) {
    constexpr double length = 1.7, load = 3;
    const std::vector<int> tip_free{-1, -1, -1, -1, -1, -1, 0, 1, 2, 3, 4, 5};
    const std::vector<int> tip_slides{-1, -1, -1, -1, -1, -1, -1, 0, 1, -1, -1, -1};
    for (const FrameSection& s : {slender, stocky}) {
        const SmallMatrix<12> k = frame_stiffness(s, length);
        const double shear_y = s.asy != 0 ? load * length / (s.g * s.asy) : 0;
        const double shear_z = s.asz != 0 ? load * length / (s.g * s.asz) : 0;
        const double cube = load * length * length * length;
        SmallSystem cantilever(6);
        cantilever.add(tip_free, k);
        cantilever.f = {load, load, load, load, 0, 0};
        const auto u = cantilever.solve();
        EXPECT_NEAR(u[0] * s.e * s.area / (load * length), 1, 1e-13);
        EXPECT_NEAR(u[1] / (cube / (3 * s.e * s.iz) + shear_y), 1, 1e-12);
        EXPECT_NEAR(u[2] / (cube / (3 * s.e * s.iy) + shear_z), 1, 1e-12);
        EXPECT_NEAR(u[3] * s.g * s.j / (load * length), 1, 1e-13);
        EXPECT_NEAR(u[5] / (load * length * length / (2 * s.e * s.iz)), 1, 1e-12);
        EXPECT_NEAR(u[4] / (-load * length * length / (2 * s.e * s.iy)), 1, 1e-12);
        // End that only slides: w = P L^3 / (12 E I) + P L / (G As)
        SmallSystem fixed(2);
        fixed.add(tip_slides, k);
        fixed.f = {load, load};
        const auto slid = fixed.solve();
        EXPECT_NEAR(slid[0] / (cube / (12 * s.e * s.iz) + shear_y), 1, 1e-12);
        EXPECT_NEAR(slid[1] / (cube / (12 * s.e * s.iy) + shear_z), 1, 1e-12);
    }
}

TEST(Frame, local_axes_are_those_of_the_third_node) {
    const LocalAxes a = frame_axes({3, 0, 0}, {1, 0, -2});
    EXPECT_EQ(a[0], (Vec3{1, 0, 0}));
    EXPECT_NEAR(a[1][1], 1, 1e-15); // x cross toward -Z is +Y
    EXPECT_NEAR(a[2][2], 1, 1e-15);
    const LocalAxes skew = skew_axes();
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            EXPECT_NEAR(dot_product(skew[i], skew[j]), i == j ? 1 : 0, 1e-15);
    EXPECT_NEAR(dot_product(cross_product(skew[0], skew[1]).vector, skew[2]), 1, 1e-15);
    EXPECT_EQ(frame_axes({0, 0, 3}, {0, 0, -1}), LocalAxes{});
    EXPECT_EQ(frame_axes({0, 0, 0}, {0, 0, -1}), LocalAxes{});
}

TEST(Frame, vectors_and_matrices_turn_alike) {
    const LocalAxes axes = skew_axes();
    const auto u = rigid_motion({p1, p2}, {1, 0.2, 0.3}, {0.1, 0.7, -0.2});
    std::array<double, 12> global{};
    std::ranges::copy(u, global.begin());
    const auto local = to_local(global, axes);
    const auto back = to_global(local, axes);
    const SmallMatrix<12> k = frame_stiffness(stocky, 2);
    const auto f = to_global(product(k, local), axes);
    const auto g = product(to_global(k, axes), global);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_NEAR(back[i], global[i], 1e-15);
        EXPECT_NEAR(f[i], g[i], 1e-13 * largest(k.a));
    }
    // The sum of the translational mass is the beam's whole mass in every direction.
    const auto lumped = frame_lumped({2, 3, 4}, {0, 0, 0}, 5);
    const auto m = frame_to_global_diagonal(lumped, axes);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(lumped[i] + lumped[i + 6], 5.0 * (2 + static_cast<double>(i)), 1e-14);
    expect_symmetric(m);
    EXPECT_NEAR(m(1, 1) + m(2, 2) + m(3, 3), 2.5 * (2 + 3 + 4), 1e-13);
}
