// Input of shells: generation, inner nodes, subdivision, cylinders, refusals; states and responses.
#include "model.hpp"

#include "fem/constraint.hpp"
#include "fem/export_to_gmsh.hpp"

#include <cmath>
#include <set>

using namespace quelor;

namespace {

using ShellInput = Model;

/// Nodes 1 to 15: 5 in a row, unit squares; room for 60.
const std::string grid = "nodes #=60\nn=1\nn=5 x=4 lgen=1\nn=6 y=1\nn=10 x=4 y=1 lgen=1\nn=11 y=2\n"
                         "n=15 x=4 y=2 lgen=1\n\n";
const std::string steel = "m=1 e=200,200,200 g=80,80,80 nu=0.25,0.25,0.25 t=0.1 mass=5\n";

std::vector<std::int32_t> column(std::string_view array, int e) {
    const auto el = as_matrix<std::int32_t>(find_array(array));
    const auto c = el.col(e);
    return {c.begin(), c.end()};
}

using Column = std::vector<std::int32_t>;

bool says(const std::string& text, const std::string& words) {
    return text.find(words) != std::string::npos;
}

} // namespace

TEST_F(ShellInput, each_node_goes_by_its_own_increment) {
    script(grid + "min3s m=1 n=4\n" + steel +
           "n=1 nodes=1,3,13,2,8,7 mat=1 print=3 face=-1 gen=1 inc=1,2,0\n"
           "n=3 nodes=1,2,6 mat=1 gen_2d=1 inc_2d=1,0,5\n\n");
    EXPECT_EQ(column(".min3s_el", 1), (Column{1, 3, 13, 2, 8, 7, 1, 3, -1}));
    EXPECT_EQ(column(".min3s_el", 2), (Column{2, 4, 13, 3, 10, 9, 1, 3, -1}));
    EXPECT_EQ(column(".min3s_el", 4), (Column{2, 3, 11, 0, 0, 0, 1, 0, 0})); // zero stays zero
    script("shell3 m=1 n=2\n" + steel + "n=1 nodes=1,2,6 mat=1 gen=1 inc=1,2\n\n");
    EXPECT_EQ(column(".shell3_el", 2), (Column{2, 3, 8, 1, 0, 0}));
    EXPECT_EQ(value(".shell3_mp", 1, 16), 1e-5);
    script("min4t m=1 n=4\n" + steel +
           "n=1 nodes=1,2,7,6 mat=1 gen=1 inc=1,1 gen_2d=1 inc_2d=5,5\n\n");
    EXPECT_EQ(column(".min4t_el", 4), (Column{7, 8, 13, 12, 1, 0}));
    EXPECT_EQ(value(".min4t_node5", 2, 3), 1.5);
    script("min6 m=1 n=1\n" + steel + "n=1 nodes=1,3,13,2,8,7 mat=1 pat=2 q=1,2,3,4,5,6\n\n");
    EXPECT_EQ(value(".min6_q", 1, 1), 2);
    EXPECT_EQ(value(".min6_q", 7, 1), 6);
}

TEST_F(ShellInput, material_defaults_are_taken_for_negative_values_and_by_some_keys_for_zero) {
    script(grid +
           "min3s m=2 n=1\nm=1 e=2,2,2 g=1,1,1 nu=0.1,0.1,0.1 t=0.5\n"
           "m=2 e=2,2,2 g=1,1,1 nu=0.1,0.1,0.1 t=0.5 C_s=0 C_m=-1 tbending=0 drill=0 global=1\n"
           "n=1 nodes=1,2,6 mat=1\n\n");
    const auto row = [](int m) {
        std::vector<double> values;
        for (int c = 12; c <= 17; ++c)
            values.push_back(value(".min3s_mp", m, c));
        return values;
    };
    EXPECT_EQ(row(1), (std::vector<double>{0, 0.5, 1, 0.5, 1e-5, 0}));
    EXPECT_EQ(row(2), (std::vector<double>{1, 0, 1, 0.5, 1e-5, 0}));
    script("min4t m=1 n=1\nm=1 e=2 g=1 nu=0.1 t=0.5\nn=1 nodes=1,2,7,6 mat=1\n\n");
    EXPECT_EQ(value(".min4t_mp", 1, 13), 0.6);
    EXPECT_EQ(value(".min4t_gamma", 1), 1e-4);
}

TEST_F(ShellInput, inner_nodes_are_found_or_made_and_checked) {
    const std::string min5s = "min5s m=1 n=20\nm=1 e=200 g=80 nu=0.25 t=0.1\n";
    std::string said = script(grid + "bcid r=0,0,0,0,0,1\n\n" + min5s +
                              "n=7 nodes=1,2,7,6 mat=1\nn=3 nodes=1,3,13,11 mat=1\n\n");
    // Element 3 has node 7 in its middle; 7 gets node 16 with the restraints of node 1.
    EXPECT_EQ(column(".min5s_el", 1), (Column{1, 3, 13, 11, 7, 1, 0, 0, 3}));
    EXPECT_EQ(column(".min5s_el", 2), (Column{1, 2, 7, 6, 16, 1, 0, 0, 7}));
    EXPECT_TRUE(says(said, "1 inner nodes of MIN5S added")) << said;
    EXPECT_EQ(node_coordinates(16), (Vec3{0.5, 0.5, 0}));
    EXPECT_EQ(integer(bcid, 6, 16), 1);
    EXPECT_EQ(integer(bcid, 1, 16), 0);
    script("num_eqs\n" + min5s + "n=1 nodes=1,2,7,6,16 mat=1\n\n");
    EXPECT_TRUE(array_exists(node_eqs)); // no node was made
    script(min5s + "n=1 nodes=2,3,8,7 mat=1\n\n");
    EXPECT_FALSE(array_exists(node_eqs));
    expect_fatal(grid + min5s + "n=4 nodes=1,2,7,6,13 mat=1\n\n",
                 "Error: Element ID         4 has incorrect node5 value");
    expect_fatal(grid + min5s + "n=4 nodes=1,2,7,7 mat=1\n\n", "ID         4 is a triangle");
    expect_fatal(grid + min5s + "n=4 nodes=1,2,7 mat=1\n\n", "ID         4 is a triangle");
    expect_fatal(grid + min5s + "n=4 nodes=1,5,7,11 mat=1\n\n", "number    4 is not convex");
    expect_fatal(grid + min5s + "n=4 nodes=1,2,4,3 mat=1\n\n",
                 "Area of MIN5S element number    4 = 0");
    expect_fatal(grid + min5s + "n=21 nodes=1,2,7,6 mat=1\n", "Element out of range - MIN5S");
    expect_fatal("nodes #=4\nn=1\nn=2 x=1\nn=3 x=1 y=1\nn=4 y=1\n\n" + min5s +
                     "n=1 nodes=1,2,3,4 mat=1\n\n",
                 "Interior node generation failed; using zero");
    // Warped: node 5 halfway between the diagonals.
    said = script("nodes #=9\nn=1 z=0.1\nn=2 x=1\nn=3 x=1 y=1 z=0.1\nn=4 y=1\n\n" + min5s +
                  "n=1 nodes=1,2,3,4 mat=1\n\n");
    EXPECT_TRUE(says(said, "Warning: element     1 is warped")) << said;
    EXPECT_EQ(node_coordinates(5), (Vec3{0.5, 0.5, 0.05}));
    EXPECT_TRUE(says(script(min5s + "\n"), "No elements defined - MIN5S"));
}

TEST_F(ShellInput, subdivision_keeps_the_plate_and_fixes_inner_nodes_out_of_use) {
    script(grid + "min5s m=1 n=9 -kg\nm=1 e=200 g=80 nu=0.25 t=0.1 mass=5 local=1\n"
                  "n=1 nodes=1,2,7,6 mat=1 face=1\nn=9 nodes=2,3,8,7 mat=1\n\nbcid\n\n");
    EXPECT_EQ(integer(".min5s_el", 5, 1), 16);
    script("min5s -subdivide range=1,1 nxm=2,3\ninput gravity r=4 c=1\n1\n0\n0\n-3\nform_k\n");
    const auto el = as_matrix<std::int32_t>(find_array(".min5s_el"));
    ASSERT_EQ(el.cols, 7);
    EXPECT_EQ(integer(elem_grp, 9), 2); // the code of the input
    EXPECT_EQ(find_array(".min5s_st").rows(), 28);
    std::set<int> inner;
    for (int e = 1; e <= 7; ++e) {
        EXPECT_EQ(el(8, e), e == 2 ? 0 : 1);
        EXPECT_EQ(el(9, e), e <= 2 ? (e == 1 ? 1 : 9) : 7 + e);
        inner.insert(el(5, e));
    }
    EXPECT_EQ(inner.size(), 7u);
    // With an even number of parts across, the old middle lies on a side and is nobody's node.
    EXPECT_EQ(inner.count(16), 0u);
    for (int dof = 1; dof <= 6; ++dof)
        EXPECT_EQ(integer(bcid, dof, 16), 1);
    double weight = 0; // of two squares of mass 0.5, wherever the nodes are
    for (int n = 1; n <= get_int(num_nodes); ++n)
        weight += at(load_pat, 3, n);
    EXPECT_NEAR(weight, -2 * 0.5 * 3, 1e-13);
    expect_fatal(
        "min5s -subdivide range=1,1 nxm=2,2\nrm .min5s_el\nmin5s -subdivide range=1,1 nxm=2,2\n",
        "MIN5S element information not found");
    as_matrix<std::int32_t>(find_array(".min5s_el"))(4, 1) = 0; // data from elsewhere
    expect_fatal("min5s -subdivide range=1,1 nxm=2,2\n", "triangle element in subdivide range");
}

TEST_F(ShellInput, cylinder_of_shells_with_rings_and_spine) {
    const std::string start = "nodes #=200\nn=1 x=-9\n\nbcid\n\nbeam3d m=1 n=0\n"
                              "m=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.07\n\n"
                              "min5s m=1 n=0 -kg\nm=1 e=200 g=80 nu=0.25 t=0.1 local=1\n\n";
    script(start + "min5s -cylinder n=11 mat=1 face=-1 p1=0,0,0 p2=6,0,0 R=2,1 CxL=8,4 "
                   "-ring_stiffeners LRseg=2 ring_mat=1 ring_node3=1 -spine spine_mat=1 "
                   "spine_node3=-3 tension_first=3 tension_last=9\n");
    const auto el = as_matrix<std::int32_t>(find_array(".min5s_el"));
    ASSERT_EQ(el.cols, 32);
    EXPECT_EQ(integer(elem_grp, 9), 2);
    EXPECT_EQ(get_int(num_nodes), 1 + 5 + 8 * 5 + 32);
    for (int e = 1; e <= 32; ++e) {
        EXPECT_EQ(el(9, e), 10 + e);
        const Vec3 a = node_coordinates(el(1, e)), b = node_coordinates(el(2, e));
        const Vec3 d = node_coordinates(el(4, e));
        EXPECT_NEAR(std::hypot(a[1], a[2]), 2 - a[0] / 6, 1e-14);
        EXPECT_NEAR(b[0] - a[0], 1.5, 1e-14);
        const auto z = cross_product(difference(b, a), difference(d, a)).vector;
        EXPECT_LT(z[1] * a[1] + z[2] * a[2], 0);
    }
    EXPECT_EQ(node_coordinates(el(1, 1)), (Vec3{0, 0, 2})); // on local z
    ASSERT_EQ(find_array(".beam3d_el").cols(), 4 + 3 * 8);  // spine, rings at the ends and middle
    EXPECT_EQ(value(".beam3d_st", 7, 2), 5);
    EXPECT_EQ(node_coordinates(integer(".beam3d_el", 1, 13))[0], 3);
    EXPECT_EQ(find_array(const_nodes).cols(), 6 * 8 * 5);
    script("nodef\nn=10 f=1\n\nform_k\n");
    const std::string cylinder = "min5s -cylinder n=1 mat=1 p1=0,0,0 p2=0,0,6 R=2,2 CxL=8,4";
    EXPECT_TRUE(says(script(start + cylinder + " -ring_stiffeners LRseg=3 ring_mat=1\n"),
                     "Lseg must be a multiple of LRseg"));
    EXPECT_FALSE(array_exists(".min5s_el"));
    script(cylinder + "\n"); // no third node: X for an axis along Z
    EXPECT_NEAR(node_coordinates(integer(".min5s_el", 1, 1))[0], 2, 1e-14);
    EXPECT_TRUE(says(script(cylinder + "\n"), "n must be above the ID numbers"));
    expect_fatal("rm .min5s_mp\n" + cylinder + "\n", "MIN5S element information not found");
    expect_fatal("rm .beam3d_mp\n" + start.substr(start.find("min5s")) + cylinder +
                     " -spine spine_mat=1\n",
                 "No BEAM3D element information found");
}

TEST_F(ShellInput, bad_records_take_the_fatal_path) {
    const std::string min3s = grid + "min3s m=1 n=2\n";
    const std::string one = "n=1 nodes=1,2,6 mat=1\n";
    expect_fatal(min3s + "m=2 e=1\n", "Material number not possible");
    expect_fatal(min3s + steel + "n=1 nodes=1,2,6 mat=2\n", "Material number not possible");
    expect_fatal(min3s + steel + "n=3 nodes=1,2,6 mat=1\n", "Element out of range - MIN3S");
    expect_fatal(min3s + steel + "n=1 nodes=1,2,6 mat=1 face=2\n", "must be -1, 0 or 1");
    expect_fatal(min3s + steel + "n=1 nodes=1,2,6 mat=1 gen=2\n", "Element out of range - MIN3S");
    expect_fatal(min3s + steel + one + "\n", "MIN3S element number    2 has not been entered");
    expect_fatal(min3s + steel + one + "n=2 nodes=1,2 mat=1\n\n",
                 "A vertex of MIN3S element number    2 = 0");
    expect_fatal(min3s + steel + one + "n=2 nodes=1,2,3 mat=1\n\n",
                 "Area of MIN3S element number    2 = 0");
    expect_fatal(min3s + steel + one + "n=2 nodes=1,2,6,40 mat=1\n\n", "Nodes of MIN3S element");
    expect_fatal(min3s + "m=1 e=1,1,1 g=1,1,1 nu=0.6,0.6,0.6 t=1\n",
                 "Material 1 of MIN3S is not elastic");
    expect_fatal(min3s + "m=1 e=1,1,1 g=1,1,1 t=0\n", "Material 1 of MIN3S is not elastic");
    expect_fatal(min3s + "m=1 e=1 g=1,1,1 t=1\n", "Material 1 of MIN3S is not elastic");
    expect_fatal(min3s + "m=1 e=1,1,1 g=1,1,1 t=1e200\n", "not elastic|not a finite number");
    expect_fatal(grid + "min3s m=1 n=1 -kf\n", "Hydrostatic stiffness requires -pressure in min3s");
    expect_fatal(grid + "min3s m=1 n=1 -kg\nm=1 e=1,1,1 g=1,1,1 t=1 global=1\n", "global=0");
    expect_fatal(grid + "min5s m=1 n=1 -kg\nm=1 e=1 g=1 t=1\n", "local=1");
    expect_fatal(grid + "min3s m=1 n=1 -pressure\n" + steel + one + "\nbcid\n\nform_k\n",
                 "Nodal pressure data not found in min3s");
    expect_fatal(grid + "min3s m=1 n=1 -pressure -kf\n" + steel + one + "\nbcid\n\nform_k -stiff\n",
                 "Global nodal pressures information not found in min3s_stiff");
    expect_fatal(grid + "min3s m=1 n=1\n" + steel + one + "\nbcid\n\nrm .min3s_mp\nform_k\n",
                 "MIN3S element information not found");
    expect_fatal(grid + "elem_grp e=31 code=1\nbcid\n\nform_k\n",
                 "shell3 element information not found");
    expect_fatal(grid + "min4t m=1 n=1\n" + steel + "n=1 nodes=1,5,7,11 mat=1\n\n",
                 "MIN4T element number    1 is not convex");
    expect_fatal(
        "nodes #=9\nn=1\nn=2 x=1\nn=3 x=2\nn=4 x=1 y=1\nn=5 y=2\nn=6 y=1 z=0.1\n\nmin6 m=1 n=1\n" +
            steel + "n=1 nodes=1,3,5,2,4,6 mat=1\n\n",
        "MIN6 element number    1 does not lie in the X-Y plane");
    expect_fatal(grid + "input gravity r=4 c=1\n2\n0\n0\n-1\nmin3s m=1 n=1\n" + steel + one +
                     "\nbcid\n\nform_k\n",
                 "add load out of load pattern range");
    EXPECT_TRUE(says(script(grid + "min3s m=0 n=1\n"), "not possible-MIN3S"));
    EXPECT_TRUE(says(script("min4t m=1 n=1 constraint=4\n"), "must be 1, 2 or 3"));
    EXPECT_TRUE(says(script("min4t m=1 n=1 q=none\n"), "Vector of pressures none must be real"));
    EXPECT_TRUE(says(script("min4t m=1 n=1 version=2\n" + steel + "n=1 nodes=1,2,7,6 mat=1\n\n"),
                     "using version 1"));
}

TEST_F(ShellInput, state_and_response_hold_a_constant_moment_also_without_stored_relaxation) {
    // One square, halved, bent to a cylinder by the moments of its nodes: Mx = 3 everywhere.
    script(grid + "min3s m=1 n=2\n" + steel +
           "n=1 nodes=1,2,7 mat=1\nn=2 nodes=7,6,1 mat=1 print=1\n\n"
           "bcid r=1,1,1,1,1,1\nn=2 r=1,1,0,0,0,1\nn=7 r=1,1,0,0,0,1\n\n"
           "nodef\nn=2 f=0,0,0,0,1.5\nn=7 f=0,0,0,0,1.5\n\nform_k\nlsolve\nstate\n");
    // Clamped at two nodes only: the moment varies a little with Poisson's ratio.
    const double mean = (value(".min3s_st", 1, 7) + value(".min3s_st", 2, 7)) / 2;
    EXPECT_NEAR(mean, 3, 0.01);
    const double qx = value(".min3s_st", 1, 10);
    EXPECT_EQ(integer(".min3s_el", 8, 2), 1);
    script("rm .min3s_rlx\nstate\n");
    EXPECT_NEAR(value(".min3s_st", 1, 10), qx, 1e-12);
    EXPECT_TRUE(
        says(script("response\n"), "Response at global coordinates for element MIN3S not yet"));
    script("input min3s_lc r=2 c=3\n1 0 0\n0.2 0.3 0.5\nresponse\n");
    const auto resp = as_matrix<double>(find_array(".min3s_resp"));
    ASSERT_EQ(resp.rows, 4);
    EXPECT_EQ(resp(1, 1), 0);            // vertex 1 of element 1
    EXPECT_NEAR(resp(2, 1), 0.8, 1e-15); // 0.3 + 0.5 along x
    EXPECT_NEAR(resp(4, 7), value(".min3s_st", 2, 7), 1e-12);
    EXPECT_TRUE(says(script("fem_error\n"), "Error estimation of MIN3S is not available"));
    // What nsolve cannot hold it says, and ends without convergence.
    expect_fatal("input load_comb r=1 c=1\n1\nnsolve steps=1 tol=1e-6,1e-6 maxit=3\n",
                 "Elements of type min3s form no internal forces");
}
