// `eigval` on models of beams: both methods, LAPACK, and structures without supports.
#include "../support/session.hpp"
#include "pencils.hpp"

#include "dynamics/eigval.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"

#include <cmath>
#include <numbers>

namespace quelor {

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int frame_levels = 3; // 432 equations: the Jacobi method is slow there
#else
constexpr int frame_levels = 7; // 1008 equations
#endif

const std::string section = "m=1 e=2.1e11 g=8.1e10 a=0.02 j=4e-4 iy=2e-4 iz=1.3e-4 mbar=157 "
                            "mI=3.1,1.6,1.0\n";

class Frame : public Session {
protected:
    /// Columns on a plan of 4 by 6, clamped at the base, and beams both ways at each level; bays of
    /// all sizes, so that no two modes are alike.
    static void make_frame() {
        const auto node = [](int i, int j, int k) { return 1 + i + 4 * j + 24 * k; };
        std::string nodes, beams;
        int count = 0;
        const auto beam = [&](int n1, int n2, int direction) {
            beams += "n=" + std::to_string(++count) + " mat=1 nodes=" + std::to_string(n1) + "," +
                     std::to_string(n2) + " node3=" + std::to_string(direction) + "\n";
        };
        for (int k = 0; k <= frame_levels; ++k)
            for (int j = 0; j < 6; ++j)
                for (int i = 0; i < 4; ++i) {
                    const int n = node(i, j, k);
                    nodes += "n=" + std::to_string(n) +
                             " x=" + std::to_string(5.0 * i + 0.2 * i * i) +
                             " y=" + std::to_string(6.0 * j + 0.1 * j * j) +
                             " z=" + std::to_string(3.5 * k - 0.05 * k * k) + "\n";
                    if (k > 0) beam(node(i, j, k - 1), n, -1);
                    if (k > 0 && i > 0) beam(node(i - 1, j, k), n, -3);
                    if (k > 0 && j > 0) beam(node(i, j - 1, k), n, -3);
                }
        type("nodes #=" + std::to_string(24 * (frame_levels + 1)) + "\n" + nodes + "\n");
        type("bcid r=0,0,0,0,0,0\nn=1 r=1,1,1,1,1,1\nn=24 r=1,1,1,1,1,1 inc=1\n\n");
        type("beam3d m=1 n=" + std::to_string(count) + "\n" + section + beams + "\n");
        type("form_k\nform_m");
    }
    /// A straight beam of 12 elements along (3, 0, 4), without supports.
    static void make_free_beam() {
        type("nodes #=13\nn=1 x=1 y=2 z=3\nn=13 x=13 y=2 z=19 lgen=1\n\nbcid r=0,0,0,0,0,0\n\n");
        type("beam3d m=1 n=12\n" + section + "n=1 mat=1 nodes=1,2 node3=-2 gen=11 inc=1\n\n");
        type("form_k\nform_m");
    }
    /// Three beams in a bent line, without supports; diagonal mass.
    static void make_free_line(const std::string& properties) {
        type("nodes #=4\nn=1\nn=2 x=2 y=.5 z=.3\nn=3 x=3.5 y=2 z=.4\nn=4 x=4 y=1.5 z=2\n\n"
             "bcid r=0,0,0,0,0,0\n\nbeam3d m=1 n=3\nm=1 " +
             properties +
             "\nn=1 nodes=1,2 mat=1 node3=-1\nn=2 nodes=2,3 mat=1 node3=-1\n"
             "n=3 nodes=3,4 mat=1 node3=-1\n\nform_k\nform_m -diag");
    }
};

} // namespace

// The lowest eigenvalues of LAPACK, which first makes the matrices dense, are good to eps times the
// largest one: 1e-16 * 1e10 / 1e2.
TEST_F(Frame, both_methods_and_lapack_agree_on_the_lowest_modes) {
    make_frame();
    Owned k = full_array(kstr), m = full_array(mstr);
    ASSERT_EQ(k.rows, 144 * frame_levels);
    const auto expected = lapack_eigenvalues(k, m);
    // The tolerance of an eigenvalue leaves its root in the shape; a second run, two steps at least
    // from the shapes of the first, takes that out.
    type("eigval #=20 digits=12 ss_size=120\ncp .phi eigval_init\n"
         "eigval #=20 digits=12 ss_size=120 -vec_init");
    const auto lowest = values_of(omega2);
    Owned phi = shapes_of_modes();
    EXPECT_LT(residual(k, m, phi, lowest), 1e-8);
    EXPECT_LT(mass_error(m, phi), 1e-10);
    type("eigval");
    const auto all = values_of(omega2);
    ASSERT_EQ(all.size(), expected.size());
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_NEAR(lowest[i] / all[i], 1, 1e-8) << i;
        EXPECT_NEAR(lowest[i] / expected[i], 1, 1e-7) << i;
    }
    for (const char* start : {"", " -random", " -random seed=77", " rigid=1,1,1,0,0,1 cg=8,16,0"}) {
        type(std::string("eigval #=20") + start); // to the default tolerance
        for (std::size_t i = 0; i < 20; ++i)
            EXPECT_NEAR(values_of(omega2)[i] / lowest[i], 1, 1e-7) << start << i;
    }
}

// Half of a beam's mass stands at each of its nodes. On a simply supported beam the points are
// exact but for (pi h / L)^4 / 720 of omega^2, so halving h takes 16 from the error; at the free
// end of a cantilever the last half mass, at the tip, leaves an error of h^2.
TEST_F(Frame, frequencies_of_beams_converge_at_the_rate_of_lumped_mass) {
    const double per_length = 2.1e11 * 2e-4 / 157; // EI / m of bending in the plane X-Z, L = 1
    struct Case {
        double exact, rate; ///< (lambda L)^4 of the first mode; fall of the error for half the h
    };
    for (const Case& c : {Case{97.40909103400244, 16}, Case{12.362363368372, 4}}) {
        const bool supported = c.rate == 16;
        double before = 0;
        for (const int n : {4, 8, 16}) {
            const std::string last = std::to_string(n + 1);
            type("nodes #=" + last + "\nn=1\nn=" + last +
                 " x=1 lgen=1\n\nbcid r=0,1,0,1,0,1\nn=1 " +
                 (supported ? "r=1,1,1,1,0,1" : "r=1,1,1,1,1,1") + "\nn=" + last +
                 (supported ? " r=0,1,1,1,0,1" : " r=0,1,0,1,0,1") + "\n\n");
            type(
                "beam3d m=1 n=" + std::to_string(n) +
                "\nm=1 e=2.1e11 g=8.1e10 a=20 j=4e-4 iy=2e-4 iz=1.3e-4 mbar=157 mI=0,1e-7,0\nn=1 mat=1 "
                "nodes=1,2 node3=-3 gen=" +
                std::to_string(n - 1) + " inc=1\n\n");
            type("form_k\nform_m\neigval");
            const double error = std::abs(values_of(omega2)[0] / (per_length * c.exact) - 1);
            if (before > 0) {
                EXPECT_NEAR(before / error, c.rate, 0.15 * c.rate) << n;
            }
            before = error;
        }
    }
}

// Zero here is what rounding leaves: eps times the largest eigenvalue of about 1e10.
TEST_F(Frame, a_free_structure_has_six_modes_of_frequency_zero) {
    make_free_beam();
    Owned k = full_array(kstr), m = full_array(mstr);
    const auto expected = lapack_eigenvalues(k, m);
    for (const char* start : {" -random", " -random seed=5", " rigid=1,1,1,1,1,1 -random",
                              " rigid=1,1,1,1,1,1 cg=7,2,11 -random"}) {
        make_free_beam();
        type(std::string("eigval #=8 digits=9 shift=500") + start);
        const auto lambda = values_of(omega2);
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_NEAR(lambda[i], 0, 1e-4) << start << i;
        for (std::size_t i = 6; i < 8; ++i)
            EXPECT_NEAR(lambda[i] / expected[i], 1, 1e-7) << start << i;
    }
}

// The first solution makes all vectors rigid body modes but for one part in 1e7; in the second case
// the smallest ratios of stiffness to mass give a vector that depends on the others.
TEST_F(Frame, rigid_body_modes_start_the_modes_of_a_free_structure) {
    for (const char* properties : {"e=2e8 g=8e7 a=.1 j=.01 iy=.01 iz=.02 mbar=7850 mI=100,100,100",
                                   "e=210 g=84 a=.5 j=.3 iy=.07 iz=.07 mbar=2 mI=.3,.3,.3"}) {
        make_free_line(properties);
        Owned k = full_array(kstr), m(k.rows, k.rows);
        for (int i = 1; i <= m.rows; ++i)
            m(i, i) = values_of(mstr)[nth(i)];
        const auto expected = lapack_eigenvalues(k, m);
        type("eigval #=8 ss_size=16 shift=1.0 maxit=100 rigid=1,1,1,1,1,1 cg=2,1,1");
        const auto lambda = values_of(omega2);
        const double rounding = 1e-13 * expected.back();
        for (std::size_t i = 0; i < 8; ++i)
            EXPECT_NEAR(lambda[i], expected[i], i < 6 ? rounding : 1e-7 * expected[i])
                << properties << i;
    }
}

TEST_F(Frame, bad_ranges_of_rigid_modes_are_named) {
    testing::FLAGS_gtest_death_test_style = "fast";
    make_free_beam();
    const auto fails = [] {
        detach();
        give_input("eigval #=8 shift=100 rigid=1 node_range=5,2\n");
        obey();
    };
    EXPECT_EXIT(fails(), testing::ExitedWithCode(0), "Nodal range out of sequence");
}

} // namespace quelor
