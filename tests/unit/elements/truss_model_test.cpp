// Trusses in a model: input, solution, state, slack elements, offsets.
#include "model.hpp"

#include <cmath>

using namespace quelor;

namespace {

using Truss = Model;

/// Nodes 1 to 4 on the x-axis, 2 apart; only the x-direction is free, and node 1 is fixed.
const std::string line =
    "nodes #=6\nn=1\nn=4 x=6 lgen=1\n\nbcid r=0,1,1,1,1,1\nn=1 r=1,1,1,1,1,1\n\n";

} // namespace

TEST_F(Truss, generated_bars_in_a_row_stretch_by_force_times_length_over_stiffness) {
    script(line + "truss m=1 n=3\nm=1 e=200 a=0.5\nn=1 nodes=1,2 mat=1 gen=2 inc=1\n\n"
                  "nodef\nn=4 f=7\n\nform_k\nlsolve\nstate\n");
    for (int e = 1; e <= 3; ++e) {
        EXPECT_EQ(integer(".truss_el", 1, e), e);
        EXPECT_EQ(integer(".truss_el", 2, e), e + 1);
        EXPECT_NEAR(at(disp, 1, e + 1), 7.0 * 2 * e / (200 * 0.5), 1e-12);
        EXPECT_NEAR(value(".truss_st", e), 7, 1e-11);
    }
    EXPECT_NEAR(at(f_internal, 1, 4), 7, 1e-11);
    EXPECT_NEAR(at(f_internal, 1, 2), 0, 1e-11);
    EXPECT_FALSE(array_exists("$truss_st"));
}

TEST_F(Truss, unstretched_length_sets_the_tension_and_overrides_the_given_one) {
    script(line + "ntruss m=1 n=2\nm=1 e=200 a=0.5\nn=1 nodes=1,2 mat=1 tension=3\n"
                  "n=2 nodes=2,3 mat=1 tension=3 Lo=1.6\n\n");
    EXPECT_EQ(value(".ntruss_st", 1), 3);
    EXPECT_EQ(value(".ntruss_len", 1), 2);
    EXPECT_NEAR(value(".ntruss_st", 2), 100 * (2 / 1.6 - 1), 1e-12);
    EXPECT_EQ(value(".ntruss_len", 2), 1.6);
    script("ntruss m=1 n=1\nm=1 e=200 a=0.5\nn=1 nodes=1,2 mat=1 tension=3 Lo=2\n\n");
    EXPECT_EQ(value(".ntruss_st", 1), 0);
}

TEST_F(Truss, a_slack_tension_only_bar_has_no_stiffness_until_it_is_stretched_again) {
    script(line +
           "ntruss m=1 n=1\nm=1 e=200 a=0.5 -no_compression\nn=1 nodes=1,2 mat=1 tension=1\n\n"
           "num_eqs\nzero .disp r=3\n");
    const int e2 = as_matrix<std::int32_t>(find_array(node_eqs))(1, 2);
    double& u = as_matrix<double>(find_array(disp))(e2);
    u = -0.1;
    script("state\nform_k -stiff\n");
    EXPECT_EQ(value(".ntruss_st", 1), -1e-20);
    EXPECT_EQ(at(f_internal, 1, 2), 0);
    EXPECT_EQ(value(kstr, e2), 0);
    u = 0.1;
    script("state\nform_k -stiff\n");
    EXPECT_NEAR(value(".ntruss_st", 1), 5, 1e-12);
    EXPECT_NEAR(at(f_internal, 1, 2), 5, 1e-12);
    EXPECT_NEAR(value(kstr, e2), 50, 1e-12);
}

TEST_F(Truss, an_offset_gives_the_bar_a_lever_arm_and_stops_its_mass) {
    // Node 2 turns about z; the bar ends half a length unit above it: M = (E A / L) arm^2 rz.
    const std::string lever =
        "nodes #=2\nn=1\nn=2 x=2 y=-0.5\n\nbcid r=1,1,1,1,1,0\nn=1 r=1,1,1,1,1,1\n\n"
        "ntruss m=1 n=1 nl=1\nm=1 e=200 a=0.5 mbar=1\nn=1 nodes=1,2 mat=1 ecc2=0,0.5,0\n\n";
    script(lever + "nodef\nn=2 f=0,0,0,0,0,3\n\nform_k\nlsolve\n");
    EXPECT_EQ(integer(".ntruss_ecc", 1), 2);
    EXPECT_EQ(value(".ntruss_len", 1), 2);
    EXPECT_NEAR(at(disp, 6, 2), 3 / (50 * 0.25), 1e-13);
    expect_fatal(lever + "form_k\nform_m\n",
                 "Eccentricity of ntruss element not implemented for mass matrix");
}

TEST_F(Truss, half_of_the_mass_goes_to_each_end) {
    script(line + "truss m=1 n=3\nm=1 e=1 a=1 mbar=5\nn=1 nodes=1,2 mat=1 gen=2 inc=1\n\n"
                  "num_eqs\nform_m -diag\n");
    EXPECT_EQ(at(mstr, 1, 2), 10);
    EXPECT_EQ(at(mstr, 1, 4), 5);
}

TEST_F(Truss, bad_records_take_the_fatal_path) {
    const std::string truss = line + "truss m=1 n=2\n", material = "m=1 e=1 a=1\n";
    expect_fatal(truss + "m=2 e=1\n", "Material number not possible");
    expect_fatal(truss + "m=1 e=nan\n", "not a finite number");
    expect_fatal(truss + material + "n=2 nodes=1,2 mat=1 gen=1\n", "out of range-TRUSS");
    expect_fatal(truss + material + "n=0 nodes=1,2 mat=1\n", "out of range-TRUSS");
    expect_fatal(truss + material + "n=1 nodes=1,2 mat=1 gen=2147483647\n", "out of range-TRUSS");
    expect_fatal(truss + material + "n=1 nodes=1,2 mat=2\n", "Material number not possible");
    expect_fatal(truss + material + "n=1 nodes=1,2 mat=1\nn=2 nodes=1,9 mat=1\n\n",
                 "out of range 0");
    expect_fatal(truss + material + "n=1 nodes=2,2147483647 mat=1 gen=1 inc=2147483647\n\n",
                 "Nodes of TRUSS element number");
    expect_fatal(truss + material + "n=1 nodes=1,2 mat=1\n\n",
                 "Length of TRUSS element number    2");
    expect_fatal("truss m=1 n=1\n" + material + "n=1 nodes=1,2 mat=1\n\n",
                 "Global coordinates not found");
    expect_fatal(line + "elem_grp e=1 code=1\nform_k\n", "NTRUSS element information not found");
    // A table changed by hand.
    expect_fatal(truss + material +
                     "n=1 nodes=1,2 mat=1 gen=1 inc=1\n\ninput .truss_el r=4 c=2 -i\n"
                     "1 2\n2 3\n1 7\n0 0\nform_k\n",
                 "TRUSS element information not found|Material number not possible");
    EXPECT_NE(script("truss m=0 n=2\n").find("not possible-TRUSS"), std::string::npos);
    EXPECT_NE(script("ntruss m=1 n=2 nl=3\n").find("nl must be 1 or 2"), std::string::npos);
}
