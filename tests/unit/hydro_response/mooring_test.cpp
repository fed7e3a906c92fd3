// Mooring stiffness on a body, and lines against closed forms.
#include "hydro_response/hyd_mooring.hpp"
#include "hydro_response/mooring_cable.hpp"

#include "hydro_model/hyd_modes.hpp"
#include "tests/unit/elements/model.hpp"

#include <cmath>
#include <numeric>

using namespace quelor;

namespace {

using Mooring = Model;

const std::string modes = "hyd_parameters h=50 nmoder=12 nbodies=2\n";

} // namespace

// Work is the same by the motion of the body and by that of the attachment, v = u + theta x r seen
// in mooring axes.
TEST_F(Mooring, stiffness_on_the_body_does_the_work_of_the_attachment) {
    const double theta = 0.7, c = std::cos(theta), s = std::sin(theta);
    SmallMatrix<3> k;
    k.a = {5, 1, 2, 1, 7, 3, 2, 3, 11};
    const Vec3 r{4, -2, 3}, u{0.3, -0.1, 0.2}, rotation{0.05, 0.4, -0.6};
    const Vec3 v = add_scaled(u, 1, cross_product(rotation, r).vector);
    const Vec3 local{c * v[0] - s * v[1], s * v[0] + c * v[1], v[2]};
    const std::array q{u[0], u[1], u[2], rotation[0], rotation[1], rotation[2]};
    const auto force = product(mooring_on_body(k, mooring_rotation(theta), r), q);
    const auto at_line = product(k, local);
    EXPECT_NEAR(std::inner_product(q.begin(), q.end(), force.begin(), 0.0),
                std::inner_product(local.begin(), local.end(), at_line.begin(), 0.0), 1e-12);
}

TEST_F(Mooring, assignments_turn_add_up_and_keep_to_their_body) {
    const std::string screen =
        script(modes + "hyd_mooring_stiffness #=1\nn=1\n3 0 0\n0 5 0\n0 0 7\n\n"
                       "hyd_assign_mooring\nbody=2 mooring=1 attach=0,0,0 theta=90\n"
                       "body=2 mooring=1 attach=0,0,0\nbody=2 mooring=1 attach=0,0,2\n\n");
    // Turned by 90 degrees, body x is mooring y.
    EXPECT_NEAR(value(hyd_kstr, 7, 7), 5 + 3 + 3, 1e-12);
    EXPECT_NEAR(value(hyd_kstr, 8, 8), 3 + 5 + 5, 1e-12);
    EXPECT_NEAR(value(hyd_kstr, 9, 9), 21, 1e-12);
    EXPECT_NEAR(value(hyd_kstr, 7, 11), 3 * 2, 1e-12); // pitch moves the attachment along +x
    EXPECT_NEAR(value(hyd_kstr, 11, 11), 3 * 4, 1e-12);
    EXPECT_EQ(value(hyd_kstr, 1, 1), 0);
    EXPECT_NE(screen.find("with an angle of  90.000 degrees."), std::string::npos);
}

// A line of unit stiffness across its plane has K22 = H/x; its other entries relate the change of
// the force at the end to a movement of the end.
TEST_F(Mooring, line_stiffness_is_that_of_its_catenary) {
    const auto solve = [&](double x, double z) {
        script(modes +
               "hyd_mooring_line m=1 n=1 tol=1e-12\nm=1 e=1.e11 a=5.e-3 w=0,0,-800\n"
               "n=1 anchor=0,-60 end=" +
               std::to_string(x) + "," + std::to_string(z) + "\nseg=1 mat=1 L=290\n");
        return Vec3{value(".cable_st", 4, 1), value(".cable_st", 5, 1), value(".cable_st", 6, 1)};
    };
    const double h = 1e-3;
    const Vec3 right = solve(280 + h, -2), left = solve(280 - h, -2), up = solve(280, -2 + h),
               down = solve(280, -2 - h), middle = solve(280, -2);
    const auto k = as_array3<double>(find_array(hyd_mooring_k));
    // The second difference of a force that grows like 1/(slack)^3: 1e-7.
    const double scale = k(1, 1, 1);
    EXPECT_NEAR(k(1, 1, 1), (right[0] - left[0]) / (2 * h), 1e-6 * scale);
    EXPECT_NEAR(k(3, 1, 1), (right[2] - left[2]) / (2 * h), 1e-6 * scale);
    EXPECT_NEAR(k(1, 3, 1), (up[0] - down[0]) / (2 * h), 1e-6 * scale);
    EXPECT_NEAR(k(3, 3, 1), (up[2] - down[2]) / (2 * h), 1e-6 * scale);
    EXPECT_NEAR(k(2, 2, 1), middle[0] / 280, 1e-10 * scale);
    EXPECT_NEAR(k(1, 3, 1), k(3, 1, 1), 1e-12 * scale);
}

TEST_F(Mooring, lines_without_a_record_keep_zeros_and_are_named) {
    const std::string screen =
        script("hyd_mooring_line m=1 n=2\nm=1 e=1.e11 a=5.e-3 w=0,0,-800\nn=2 anchor=0,-60 "
               "end=0,-2\nseg=1 mat=1 L=57\n\nphyd_mooring_line\n");
    EXPECT_NE(screen.find("Mooring line 1 was not entered"), std::string::npos);
    const auto k = as_array3<double>(find_array(hyd_mooring_k));
    EXPECT_EQ(k(1, 1, 1), 0);
    // The vertical line stretches by a metre and its own weight: K33 = E A / L.
    EXPECT_NEAR(k(3, 3, 2), 5e8 / 57, 1e-9 * 5e8);
    EXPECT_NE(screen.find("TENSION AT NODES 1 AND 2"), std::string::npos);
}

TEST_F(Mooring, what_cannot_be_assigned_ends_the_program_unsaved) {
    const std::string stiffness = modes + "hyd_mooring_stiffness #=1\nn=1\n3 0 0\n0 5 0\n0 0 7\n\n";
    const auto ends = [&](const std::string& text, const std::string& message) {
        const auto fails = [&] {
            detach();
            type(text);
            std::_Exit(1);
        };
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), "") << message;
        EXPECT_FALSE(std::filesystem::exists("job.db")) << text;
        EXPECT_TRUE(std::filesystem::remove("job.rescue.db")) << text;
    };
    ends("seti a\nhyd_assign_mooring\n", "modes");
    ends(modes + "hyd_assign_mooring\n", "no stiffness");
    ends(stiffness + "hyd_assign_mooring\nbody=3 mooring=1\n", "body");
    ends(stiffness + "hyd_assign_mooring\nbody=1 mooring=2\n", "stiffness");
    script("hyd_mooring_stiffness #=0\n");
    EXPECT_NE(script("phyd_mooring_stiffness\n").find("do not exist"), std::string::npos);
}
