// Large displacements in whole models: the shallow truss past its limit load, the cantilever rolled
// up into a circle.
#include "model.hpp"

#include <cmath>
#include <numbers>
#include <sstream>
#include <vector>

using namespace quelor;

namespace {

using Nonlinear = Model;

/// The numbers behind a text wherever it stands.
std::vector<double> numbers_behind(const std::string& output, const std::string& text) {
    std::vector<double> numbers;
    for (auto at = output.find(text); at != std::string::npos; at = output.find(text, at + 1))
        numbers.push_back(std::stod(output.substr(at + text.size())));
    return numbers;
}

} // namespace

TEST_F(Nonlinear, shallow_truss_follows_its_closed_form_through_both_limit_points) {
    // P(z) = 2 E A z (1 / L - 1 / Lo) downward at the height z of the apex, L^2 = 1 + z^2; from
    // z = 0.2 to -0.28 in steps of 0.02, past the limit loads near z = +-0.115.
    const std::string output = script(
        "nodes #=3\nn=1 x=-1\nn=2 x=1\nn=3 z=0.2\n\nbcid r=1,1,1,1,1,1\nn=3 r=1,1,0,1,1,1\n\n"
        "ntruss m=1 n=2\nm=1 e=200 a=0.5\nn=1 nodes=1,3 mat=1\nn=2 nodes=2,3 mat=1\n\n"
        "nodef\nn=3 f=0,0,-1\n\nform_k\ndisp_cntl\nn=3 dof=3 f=1\n\n"
        "nsolve steps=24 tol=1e-8,1e-8 maxit=30 k=-1 control=1 gdisp=-0.02\n");
    const auto factors = numbers_behind(output, "LOAD FACTOR FOR STEP");
    ASSERT_EQ(factors.size(), 24u);
    const double original = std::hypot(1, 0.2);
    double highest = 0;
    for (std::size_t step = 1; step <= factors.size(); ++step) {
        const double z = 0.2 - 0.02 * static_cast<double>(step);
        const double load = 200 * z * (1 / std::hypot(1, z) - 1 / original);
        EXPECT_NEAR(factors[step - 1], load, 1e-4 * std::abs(load) + 1e-7) << step; // 5 digits
        if (z > 0) highest = std::max(highest, factors[step - 1]); // before it snaps through
    }
    // At the limit L^3 = Lo; the nearest steps stay within a percent of it.
    const double l = std::cbrt(original),
                 limit = 200 * std::sqrt(l * l - 1) * (1 / l - 1 / original);
    EXPECT_NEAR(highest / limit, 0.995, 0.005);
    EXPECT_NEAR(at(disp, 3, 3), -0.48, 1e-9);
}

TEST_F(Nonlinear, an_end_moment_rolls_a_cantilever_up_into_a_circle) {
    // M = 2 pi E I / L; 20 elements, in the plane X-Z, where a positive moment turns X to -Z.
    constexpr double pi = std::numbers::pi;
    std::ostringstream moment;
    moment.precision(17);
    moment << 2 * pi * 210 * 0.02 / 10 / 40;
    script("nodes #=21\nn=1\nn=21 x=10 lgen=1\n\nbcid r=0,1,0,1,0,1\nn=1 r=1,1,1,1,1,1\n\n"
           "nbeam2d m=1 n=20 -xz\nm=1 e=210 a=0.5 i=0.02\nn=1 nodes=1,2 mat=1 gen=19 inc=1\n\n"
           "nodef\nn=21 f=0,0,0,0," +
           moment.str() +
           "\n\nform_k\n"
           "nsolve steps=40 tol=1e-7,1e-7 maxit=40 k=-1\n");
    EXPECT_NEAR(at(disp, 5, 21), 2 * pi, 1e-5);
    EXPECT_NEAR(at(disp, 1, 21), -10, 1e-3 * 10);
    EXPECT_NEAR(at(disp, 3, 21), 0, 1e-3 * 10);
    EXPECT_NEAR(at(disp, 3, 11), -10 / pi, 0.02 * 10 / pi); // the far side; a polygon of 20 sides
    EXPECT_NEAR(value(".nbeam2d_st", 10, 1), 0, 1e-5);
}
