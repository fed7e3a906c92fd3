// What holds for a model whatever its elements: balance, parts that make up the whole, values kept.
#include "element_checks.hpp"
#include "model.hpp"

#include "elements/beam3d.hpp"
#include "elements/frame.hpp"
#include "elements/interface_elem.hpp"
#include "elements/plane_beam.hpp"

using namespace quelor;

namespace {

using Elements = Model;

bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(Balance, of_the_forces_on_a_plane_beam_stretched_by_a_half) {
    const PlaneChord original = plane_chord(0, 0, 1.2, 0.5);
    const PlaneChord present = plane_chord(0.1, 0.3, 0.5, 2.2);
    const PlaneForces forces = plane_forces({210, 80, 0.5, 0.2, 0}, original, present, 0.7, 0.4);
    const auto f = plane_force_vector(forces, present.angle);
    EXPECT_NEAR(f[0] + f[3], 0, 1e-13);
    EXPECT_NEAR(f[1] + f[4], 0, 1e-13);
    EXPECT_NEAR(f[2] + f[5] + 0.4 * f[4] - 1.9 * f[3], 0, 1e-12); // of moments of some 50
}

TEST(Balance, of_a_beam_under_tension_that_is_turned) {
    SmallMatrix<12> k;
    add_frame_geometric(k, 5, 2);
    const auto f = product(k, rigid_motion({{0, 0, 0}, {2, 0, 0}}, {1, 2, 3}, {0, 0.3, 0.2}));
    const std::array<double, 6> end{0, 5 * 0.2, -5 * 0.3, 0, 0, 0}; // the tension turns with it
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_NEAR(f[i + 6], end[i], 1e-14) << i;
        EXPECT_NEAR(f[i], -end[i], 1e-14) << i;
    }
}

TEST_F(Elements, plane_beams_weigh_along_z_and_have_their_mass_along_and_across) {
    const std::string materials = "\nm=1 e=10 a=1 i=0.1 wbar=3 mxy=4,5 mI=6\n";
    for (const auto& [flag, tip, along, across] :
         {std::tuple{"-xy", "x=2", 1, 2}, {"-xz", "x=2", 1, 3}, {"-yz", "y=2", 2, 3}}) {
        script("nodes #=2\nn=1\nn=2 " + std::string(tip) + "\n\nbcid\n\nnbeam2d m=1 n=1 " + flag +
               materials + "n=1 nodes=1,2 mat=1\n\nnum_eqs\nzero .disp r=12\nstate\n");
        for (int d = 1; d <= 3; ++d)
            EXPECT_EQ(at(f_internal, d, 1) + at(f_internal, d, 2), d == 3 && across == 3 ? 6 : 0);
        EXPECT_TRUE(holds(script("form_m -diag\n"), "mx and my differ"));
        EXPECT_EQ(at(mstr, along, 2), 4);
        EXPECT_EQ(at(mstr, across, 2), 5);
    }
    expect_fatal("nodes #=2\nn=1\nn=2 x=2 z=1\n\nnbeam2d m=1 n=1" + materials +
                     "n=1 nodes=1,2 mat=1\n\n",
                 "does not lie in its plane");
}

TEST_F(Elements, a_tension_only_bar_without_tension_is_not_slack) {
    script("nodes #=2\nn=1\nn=2 x=2\n\nbcid r=0,1,1,1,1,1\nn=1 r=1,1,1,1,1,1\n\n"
           "ntruss m=1 n=1\nm=1 e=200 a=0.5 -no_compression\nn=1 nodes=1,2 mat=1\n\nform_k\n");
    EXPECT_EQ(value(kstr, 1), 50);
    expect_fatal("inputi .ntruss_el r=4 c=1\n1\n9\n1\n0\nnode_order\n",
                 "Node number of an element is out of range");
}

TEST_F(Elements, beams_have_damping_by_direction_and_cylinders_tension_by_equal_steps) {
    script("nodes #=40\nn=1\nn=2 x=6\n\nbcid\n\nbeam3d m=1 n=1\n"
           "m=1 e=1 g=1 a=1 j=1 iy=1 iz=1 cxyz=1,2,3 mI=1,2,3\nn=1 nodes=1,2 mat=1 node3=-3\n\n"
           "num_eqs\nform_c\nform_c -diag\n");
    for (int d = 1; d <= 3; ++d)
        EXPECT_EQ(at(cstr, d, 2), 3 * d); // half of the length
    EXPECT_TRUE(holds(script("form_m -diag\n"), "not valid for BEAM3D"));
    script("beam3d -cylinder mat=1 node3=-3 p1=0,0,0 p2=6,0,0 R=1,1 CxL=3,3 tension=4 "
           "tension_last=10\n");
    for (int k = 1; k <= 3; ++k)
        EXPECT_EQ(value(beam3d_st, 7, k + 1), 1 + 3 * k);
}

TEST_F(Elements, parts_of_a_parallelogram_are_parallelograms_that_keep_face_and_pressure) {
    script("nodes #=50\nn=1\nn=2 x=2 y=1\nn=3 x=3 y=3\nn=4 x=1 y=2\n\ninterface n=1 -pressure\n"
           "n=1 nodes=1,2,3,4 face=-1 print=3\n\ninterface -subdivide range=1,1 nxm=2,3\n");
    const auto el = as_matrix<std::int32_t>(find_array(interface_el));
    ASSERT_EQ(el.cols, 6);
    for (int e = 1; e <= 6; ++e) {
        const auto corner = [&](int i) { return node_coordinates(el(i, e)); };
        const Vec3 side = difference(corner(2), corner(1)),
                   other = difference(corner(3), corner(4));
        EXPECT_LT(vector_length(difference(side, other)), 1e-15);
        EXPECT_NEAR(vector_length(side), std::sqrt(5.0) / 2, 1e-15);
        EXPECT_EQ(el(6, e), -1);
        EXPECT_EQ(el(5, e), 3);
    }
    EXPECT_TRUE(holds(script("bcid\n\nform_k -loads\n"), "INTERFACE not implemented"));
}
