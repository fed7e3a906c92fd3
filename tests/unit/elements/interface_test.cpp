// Interface elements: tables, subdivision, and the cylinder around a spine of beams.
#include "model.hpp"

#include "elements/interface_elem.hpp"
#include "fem/constraint.hpp"

#include <cmath>
#include <set>

using namespace quelor;

namespace {

using Interface = Model;

/// Two unit squares side by side: nodes 1 2 3 below, 4 5 6 above.
const std::string squares = "nodes #=100\nn=1\nn=3 x=2 lgen=1\nn=4 y=1\nn=6 x=2 y=1 lgen=1\n\n";

std::vector<std::int32_t> row(int i) {
    const auto el = as_matrix<std::int32_t>(find_array(interface_el));
    std::vector<std::int32_t> values;
    for (int e = 1; e <= el.cols; ++e)
        values.push_back(el(i, e));
    return values;
}

} // namespace

TEST_F(Interface, table_holds_the_defined_elements_and_their_ids) {
    script(squares +
           "interface n=20\nn=9 nodes=2,3,6,5 face=1\nn=5 nodes=1,2,5 print=1 face=-1\n\n");
    EXPECT_EQ(row(7), (std::vector{5, 9}));
    EXPECT_EQ(row(4), (std::vector{5, 5}));
    EXPECT_EQ(row(3), (std::vector{5, 6}));
    EXPECT_EQ(row(5), (std::vector{1, 0}));
    EXPECT_EQ(row(6), (std::vector{-1, 1}));
    script("interface n=20\nn=1 nodes=1,2,5,4 gen=1 inc=1,1\n\n");
    EXPECT_EQ(row(1), (std::vector{1, 2}));
    EXPECT_EQ(row(4), (std::vector{4, 5}));
    script("interface n=20\nn=2 nodes=1,2,5,4 gen_2d=1 inc_2d=1,1 inc_el=7\n\n");
    EXPECT_EQ(row(7), (std::vector{2, 9}));
    EXPECT_EQ(row(3), (std::vector{5, 6}));
    expect_fatal("interface n=2\nn=2 nodes=1,2,5,4 gen=1\n", "Element out of range - INTERFACE");
    expect_fatal(squares + "interface n=2\nn=1 nodes=1,2,5,9\n\n", "Nodes of INTERFACE");
    expect_fatal(squares + "interface n=2\nn=1 nodes=1,2,0,4\n\n", "Nodes of INTERFACE");
}

TEST_F(Interface, neighbours_share_the_nodes_of_their_common_edge_after_a_subdivision) {
    script(squares + "interface n=9\nn=4 nodes=1,2,5,4 face=1\nn=9 nodes=2,3,6,5\n\n"
                     "interface -subdivide range=4,9 nxm=2,3\n");
    EXPECT_EQ(get_int(num_nodes), 5 * 4);
    EXPECT_EQ(row(7), (std::vector{4, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}));
    EXPECT_EQ(row(6), (std::vector{1, 0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}));
    double area = 0;
    const auto el = as_matrix<std::int32_t>(find_array(interface_el));
    for (int e = 1; e <= el.cols; ++e) {
        const Vec3 a = node_coordinates(el(1, e)), b = node_coordinates(el(2, e));
        const Vec3 d = node_coordinates(el(4, e));
        const auto normal = cross_product(difference(b, a), difference(d, a)).vector;
        EXPECT_NEAR(normal[2], 1.0 / 6, 1e-14); // in the sense of the parent
        area += normal[2];
    }
    EXPECT_NEAR(area, 2, 1e-13);
    script("interface -subdivide range=4,4 nxm=1,1\n");
    EXPECT_EQ(row(7).size(), 12u);
    EXPECT_NE(script("interface -subdivide range=3,9 nxm=2,2\n").find("find first element"),
              std::string::npos);
    EXPECT_NE(script("interface -subdivide range=4,30 nxm=2,2\n").find("find last element"),
              std::string::npos);
    EXPECT_NE(script("interface -subdivide range=4,9 nxm=0,2\n").find("not possible"),
              std::string::npos);
}

TEST_F(Interface, cylinder_ties_a_skin_to_a_spine_of_beams) {
    const std::string spine = "nodes #=40\nn=1 x=1 y=2 z=3\n\nbcid\n\n"
                              "beam3d m=1 n=0\nm=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.07\n\n";
    script(spine +
           "beam3d -cylinder mat=1 node3=-2 p1=1,2,3 p2=1,2,9 R=2,1 CxL=8,3 face=-1 tension=4\n");
    EXPECT_EQ(get_int(num_nodes), 4 + 8 * 4);
    EXPECT_EQ(find_array(".beam3d_el").cols(), 3);
    EXPECT_EQ(integer(".beam3d_el", 1, 1), 1); // the node that was there
    EXPECT_EQ(value(".beam3d_st", 7, 3), 4);
    EXPECT_EQ(find_array(const_nodes).cols(), 6 * 8 * 4);
    const auto el = as_matrix<std::int32_t>(find_array(interface_el));
    ASSERT_EQ(el.cols, 24);
    for (int e = 1; e <= el.cols; ++e) {
        const Vec3 a = node_coordinates(el(1, e)), b = node_coordinates(el(2, e));
        const Vec3 d = node_coordinates(el(4, e));
        EXPECT_NEAR(std::hypot(a[0] - 1, a[1] - 2), 2 - (a[2] - 3) / 6, 1e-14);
        EXPECT_NEAR(b[2] - a[2], 2, 1e-14); // local x along the axis
        const auto z = cross_product(difference(b, a), difference(d, a)).vector;
        EXPECT_LT(z[0] * (a[0] - 1) + z[1] * (a[1] - 2), 0); // positive face inside
        EXPECT_EQ(el(6, e), -1);
    }
    EXPECT_EQ(std::set<int>(el.col(1).begin(), el.col(1).begin() + 4).size(), 4u);
    // Ring nodes a quarter turn apart lie on the axes of the section to the last bit.
    const Vec3 top = node_coordinates(5), quarter = node_coordinates(7);
    EXPECT_TRUE((top[0] == 1) != (top[1] == 2));
    EXPECT_TRUE((quarter[0] == 1) != (quarter[1] == 2));
    // A load on the skin bends the spine: the numbering and the links hold together.
    script("nodef\nn=36 f=1\n\nform_k\n");
    EXPECT_GT(get_int(num_eqs), 0);
    EXPECT_NE(script(spine + "beam3d -cylinder mat=1 node3=-2 p1=1,2,3 p2=1,2,9 R=2,1 CxL=8,9\n")
                  .find("Not enough node numbers"),
              std::string::npos);
    EXPECT_NE(script(spine + "beam3d -cylinder mat=1 node3=-3 p1=1,2,3 p2=1,2,9 R=2,1 CxL=8,3\n")
                  .find("do not give local axes"),
              std::string::npos);
    expect_fatal(spine + "beam3d -cylinder mat=2\n", "BEAM3D material number out of range");
    expect_fatal("rm .beam3d_mp\nbeam3d -cylinder mat=1\n", "No BEAM3D element information found");
}
