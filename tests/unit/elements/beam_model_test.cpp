// Beams in a model against closed forms: cantilever and fixed beam in any direction, portal frame,
// beam under tension, and the plane beam in each of its planes.
#include "model.hpp"

#include <cmath>

using namespace quelor;

namespace {

using Beam = Model;

/// Relative to the closed form.
void expect_ratio(double value, double wanted, double tolerance) {
    EXPECT_NEAR(value / wanted, 1, tolerance) << value << " for " << wanted;
}

const std::string section = "m=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.11 asy=0.2 asz=0.3 mbar=2\n";

} // namespace

TEST_F(Beam, skew_timoshenko_cantilever_of_unequal_elements_meets_its_closed_form) {
    // Along (2, 1, 2), length 6, node 3 in the direction -Z; local y = x cross -Z = (-1, 2, 0) /
    // sqrt 5.
    script("nodes #=3\nn=1\nn=2 x=1 y=0.5 z=1\nn=3 x=4 y=2 z=4\n\nbcid\nn=1 r=1,1,1,1,1,1\n\n"
           "beam3d m=1 n=2\n" +
           section +
           "n=1 nodes=1,2 mat=1 node3=-3 gen=1 inc=1\n\n"
           "nodef\nn=3 f=-1,2,0\n\nform_k\nlsolve\nstate\n");
    const double load = std::sqrt(5.0), length = 6;
    const double w =
        load * length * length * length / (3 * 210 * 0.11) + load * length / (80 * 0.2);
    expect_ratio(at(disp, 1, 3), -w / std::sqrt(5.0), 1e-10);
    expect_ratio(at(disp, 2, 3), 2 * w / std::sqrt(5.0), 1e-10);
    EXPECT_NEAR(at(disp, 3, 3), 0, 1e-10 * w);
    // End forces: the load across the second element, and the support's moment that holds it.
    expect_ratio(value(".beam3d_st", 8, 2), load, 1e-10);
    expect_ratio(value(".beam3d_st", 6, 1), -load * length, 1e-10);
    EXPECT_NEAR(at(f_internal, 2, 3), 2, 1e-9);
    EXPECT_NEAR(at(f_internal, 6, 2), 0, 1e-9);
}

TEST_F(Beam, fixed_beam_with_a_load_in_the_middle) {
    script("nodes #=3\nn=1\nn=3 x=4 lgen=1\n\nbcid r=1,1,1,1,1,1\nn=2 r=0,0,0,0,0,0\n\n"
           "beam3d m=1 n=2\nm=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.11\n"
           "n=1 nodes=1,2 mat=1 node3=-3 gen=1 inc=1\n\n"
           "nodef\nn=2 f=0,3,5\n\nform_k\nlsolve\n");
    expect_ratio(at(disp, 2, 2), 3 * 64 / (192 * 210 * 0.11), 1e-12);
    expect_ratio(at(disp, 3, 2), 5 * 64 / (192 * 210 * 0.07), 1e-12);
}

TEST_F(Beam, portal_frame_with_its_heads_tied_sways_as_the_closed_form_says) {
    // Columns of height h, a beam of length l, all of one section; the heads share the x-direction
    // and do not go down. With k = h / l: sway = P h^3 / (24 E I) (4 + 6 k) / (1 + 6 k).
    script(
        "nodes #=4\nn=1\nn=2 z=3\nn=3 x=5 z=3\nn=4 x=5\n\n"
        "bcid r=0,1,1,1,0,1\nn=1 r=1,1,1,1,1,1\nn=4 r=1,1,1,1,1,1\nn=3 r=-2,1,1,1,0,1\n\n"
        "beam3d m=1 n=3\nm=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.07\n"
        "n=1 nodes=1,2 mat=1 node3=-1\nn=2 nodes=2,3 mat=1 node3=-3\nn=3 nodes=3,4 mat=1 node3=-1\n\n"
        "nodef\nn=2 f=7\n\nform_k\nlsolve\n");
    const double h = 3, k = h / 5;
    expect_ratio(at(disp, 1, 2), 7 * h * h * h / (24 * 210 * 0.07) * (4 + 6 * k) / (1 + 6 * k),
                 1e-12);
    EXPECT_EQ(at(disp, 1, 3), at(disp, 1, 2));
}

TEST_F(Beam, tension_stiffens_a_cantilever_only_with_kg) {
    // Tip load H under the tension P, k^2 = P / EI: w = H / P (L - tanh(k L) / k). The cubic shape
    // functions converge with h^4: some 1e-7 at 16 elements and k L = 2.
    const auto tip = [](const std::string& flag) {
        script("nodes #=17\nn=1\nn=17 x=2 lgen=1\n\nbcid r=1,0,1,1,1,0\nn=1 r=1,1,1,1,1,1\n\n"
               "beam3d m=1 n=16 " +
               flag +
               "\nm=1 e=10 g=1 a=1 j=1 iy=1 iz=0.1\n"
               "n=1 nodes=1,2 mat=1 node3=-3 gen=15 inc=1 tension=1\n\n"
               "nodef\nn=17 f=0,1\n\nform_k\nlsolve k=1\n");
        return at(disp, 2, 17);
    };
    expect_ratio(tip("-kg"), 2 - std::tanh(2.0), 2e-6);
    expect_ratio(tip(""), 8.0 / 3, 1e-11);
}

TEST_F(Beam, generated_beams_take_tensions_by_equal_steps_and_keep_a_direction_code) {
    script("nodes #=6\nn=1\nn=5 x=4 lgen=1\nn=6 z=1\n\n"
           "beam3d m=1 n=4\n" +
           section +
           "n=1 nodes=1,2 mat=1 node3=-3 gen=2 inc=1 tension=1 tension_last=5\n"
           "n=4 nodes=4,5 mat=1 node3=6 print=1\n\n");
    for (int e = 1; e <= 3; ++e) {
        EXPECT_EQ(value(".beam3d_st", 7, e), 2 * e - 1);
        EXPECT_EQ(value(".beam3d_st", 1, e), 1 - 2 * e);
        EXPECT_EQ(integer(".beam3d_el", 5, e), -3);
        EXPECT_EQ(integer(".beam3d_el", 6, e), e);
    }
    EXPECT_EQ(integer(".beam3d_el", 5, 4), 6);
    EXPECT_EQ(integer(".elem_grp", 3), 1);
}

TEST_F(Beam, mass_that_differs_by_direction_makes_no_diagonal_matrix) {
    const std::string frame = "nodes #=2\nn=1\nn=2 x=3 y=4\n\nbcid\nn=1 r=1,1,1,1,1,1\n\n"
                              "beam3d m=1 n=1\nm=1 e=1 g=1 a=1 j=1 iy=1 iz=1 mxyz=2,4,6\n"
                              "n=1 nodes=1,2 mat=1 node3=-3\n\nnum_eqs\n";
    EXPECT_NE(script(frame + "form_m -diag\n").find("not valid for BEAM3D"), std::string::npos);
    EXPECT_NEAR(at(mstr, 1, 2), 2.5 * (0.36 * 2 + 0.64 * 4), 1e-14);
    EXPECT_NEAR(at(mstr, 3, 2), 2.5 * 6, 1e-14);
    EXPECT_EQ(script("form_m\n").find("not valid"), std::string::npos);
    EXPECT_NEAR(value(mstr, 3), 2.5 * 0.48 * (2 - 4), 1e-14); // between x and y
}

TEST_F(Beam, bad_beam_records_take_the_fatal_path) {
    const std::string nodes = "nodes #=3\nn=1\nn=2 x=3\nn=3 z=1\n\n";
    const std::string beam = nodes + "beam3d m=1 n=1\n", material = "m=1 e=1 g=1 a=1\n";
    expect_fatal(beam + "m=0\n", "BEAM3D material number out of range");
    expect_fatal(beam + "m=1 e=1 asy=1\n", "needs the shear modulus");
    expect_fatal(beam + material + "n=2 nodes=1,2 mat=1 node3=3\n", "Element out of range");
    expect_fatal(beam + material + "n=1 nodes=1,2 mat=7 node3=3\n", "BEAM3D material number");
    expect_fatal(beam + material + "n=1 nodes=1,2 mat=1 node3=-1\n\n",
                 "does not give the element's");
    expect_fatal(beam + material + "n=1 nodes=1,2 mat=1\n\n", "does not give the element's");
    expect_fatal(beam + material + "n=1 nodes=1,2 mat=1 node3=9\n\n", "getting nodal coordinates");
    expect_fatal(beam + material + "n=1 nodes=2,2 mat=1 node3=3\n\n", "Length of BEAM3D");
    expect_fatal(nodes + "pbeam3d\n", "No BEAM3D element information found");
    expect_fatal(nodes + "nbeam2d m=1 n=1\nm=1 e=1\nn=1 nodes=1,3 mat=1\n\n",
                 "Length of NBEAM2D|does not lie in its plane");
    expect_fatal(nodes + "nbeam2d m=1 n=1 -xz\nm=1 e=1\nn=1 nodes=1,2 mat=1 gen=1\n",
                 "out of range-NBEAM2D");
}

TEST_F(Beam, plane_beam_bends_by_the_right_hand_rule_in_each_plane) {
    // A small load at the tip, across the beam along the second axis of the plane.
    struct Case {
        std::string flag, tip, load;
        int dof, rotation;
        double sense;
    };
    const Case cases[] = {{"-xy", "x=2", "0,1e-9", 2, 6, 1},
                          {"-xz", "x=2", "0,0,1e-9", 3, 5, -1},
                          {"-yz", "y=2", "0,0,1e-9", 3, 4, 1}};
    for (const Case& c : cases) {
        script("nodes #=3\nn=1\nn=3 " + c.tip +
               " lgen=1\n\nbcid\nn=1 r=1,1,1,1,1,1\n\n"
               "nbeam2d m=1 n=2 nl=2 " +
               c.flag +
               "\nm=1 e=10 a=1 i=0.1\n"
               "n=1 nodes=1,2 mat=1 gen=1 inc=1\n\nnodef\nn=3 f=" +
               c.load +
               "\n\n"
               "form_k\ncheck_diag .kstr .kdiag_loc -noprint\nlsolve k=1\nstate\n");
        expect_ratio(at(disp, c.dof, 3), 8e-9 / 3, 1e-10);
        expect_ratio(at(disp, c.rotation, 3), c.sense * 2e-9, 1e-10);
        // Forces at the displaced nodes: what remains is of the second order in displacements of
        // 1e-9.
        expect_ratio(at(f_internal, c.dof, 3), 1e-9, 1e-7);
        EXPECT_NEAR(at(f_internal, c.rotation, 3), 0, 1e-15);
        // Forces of the section, M2 - M1 = V L: the support holds the moment 2 of the load 1.
        expect_ratio(value(".nbeam2d_st", 1, 3), 2e-9, 1e-6);
        expect_ratio(value(".nbeam2d_st", 1, 4), 1e-9, 1e-6);
        expect_ratio(value(".nbeam2d_st", 1, 2), -1e-9, 1e-6);
    }
}

TEST_F(Beam, weight_of_the_plane_beam_pulls_down_in_the_vertical_planes_only) {
    for (const auto& [flag, weight] : {std::pair{"-xy", 0.0}, std::pair{"-xz", 3.0}}) {
        script(
            "nodes #=2\nn=1\nn=2 x=2\n\nbcid\n\nnbeam2d m=1 n=1 " + std::string(flag) +
            "\nm=1 e=10 a=1 i=0.1 wbar=3\nn=1 nodes=1,2 mat=1\n\nnum_eqs\nzero .disp r=12\nstate\n");
        EXPECT_EQ(at(f_internal, 3, 1), weight);
        EXPECT_EQ(at(f_internal, 3, 2), weight);
    }
}
