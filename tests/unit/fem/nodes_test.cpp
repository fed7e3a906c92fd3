// Generation of nodes, and the search for points at the same place.
#include "fem/bcid.hpp"
#include "fem/elemutil.hpp"
#include "fem/nodes.hpp"
#include "kernel/utilities.hpp"
#include "numeric/point_index.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

using namespace quelor;

namespace {

/// A list of nodes on storage of its own.
struct List {
    explicit List(int n)
        : x(static_cast<std::size_t>(3 * n)),
          active(static_cast<std::size_t>(n), ' '), set{{x.data(), 3, n}, active, 0, n} {}
    std::vector<int> defined() const {
        std::vector<int> all;
        for (int n = 1; n <= set.total; ++n)
            if (set.is_active(n)) all.push_back(n);
        return all;
    }
    std::vector<double> x;
    std::vector<char> active;
    NodeSet set;
};

List line(int total, int a, int b, int inc, double w) {
    List list(total);
    list.set.define(a, {0, 0, 0});
    list.set.define(b, {1, 10, 0});
    generate_line(list.set, a, b, inc, w);
    return list;
}

} // namespace

TEST(GenerateLine, makes_the_nodes_strictly_between) {
    EXPECT_EQ(line(9, 1, 4, 2, 0).defined(), (std::vector{1, 3, 4}));
    EXPECT_EQ(line(9, 5, 1, -1, 0).defined(), (std::vector{1, 2, 3, 4, 5}));
    EXPECT_EQ(line(9, 1, 5, -1, 0).defined(), (std::vector{1, 5}));
    EXPECT_EQ(line(9, 1, 5, 0, 0).defined(), (std::vector{1, 2, 3, 4, 5}));
    EXPECT_EQ(line(9, 1, 5, 2147483647, 0).defined(), (std::vector{1, 5}));
}

TEST(GenerateLine, spaces_equally_or_by_the_weight) {
    const List equal = line(5, 1, 5, 1, -3);
    for (int n = 1; n <= 5; ++n)
        EXPECT_DOUBLE_EQ(equal.set.xyz(1, n), (n - 1) / 4.0);
    const List doubled = line(5, 1, 5, 1, 2); // steps of 1, 2, 4 and 8 fifteenths
    EXPECT_DOUBLE_EQ(doubled.set.xyz(1, 2), 1 / 15.0);
    EXPECT_DOUBLE_EQ(doubled.set.xyz(1, 3), 3 / 15.0);
    EXPECT_DOUBLE_EQ(doubled.set.xyz(2, 4), 70 / 15.0);
    // A remainder: the spacing is that of the nodes made, so node 4 stays where it is.
    EXPECT_DOUBLE_EQ(line(5, 1, 4, 2, 0).set.xyz(1, 3), 0.5);
}

TEST(PointIndex, finds_the_same_pairs_as_a_search_of_all) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> step(0, 9);
    std::vector<Vec3> points; // places with rounding noise, many of them shared
    for (int i = 0; i < 500; ++i)
        points.push_back({1e5 + step(random) * 0.1, step(random) * 0.1, -step(random) * 0.1});
    points.push_back({NAN, 0, 0});
    const Vec3 tol{1e-9, 0, 0.1000001};
    PointIndex index;
    std::set<std::pair<int, int>> found, wanted;
    for (int i = 0; i < std::ssize(points); ++i) {
        const Vec3& p = points[static_cast<std::size_t>(i)];
        index.visit_candidates(p, tol, [&](int j) {
            if (within(p, points[static_cast<std::size_t>(j)], tol)) found.emplace(j, i);
        });
        index.add(i, p);
        for (int j = 0; j < i; ++j)
            if (within(p, points[static_cast<std::size_t>(j)], tol)) wanted.emplace(j, i);
    }
    EXPECT_GT(wanted.size(), 100u);
    EXPECT_EQ(found, wanted);
}

namespace {

/// A model of 8 nodes at most, with 1, 2 and 4 defined.
class Services : public testing::Test {
protected:
    Services() {
        new_nodes(fe_nodes, 8);
        NodeSet set = open_nodes(fe_nodes);
        set.define(1, {0, 0, 0});
        set.define(2, {2, 0, 0});
        set.define(4, {0, 2, 0});
        create_int_scalar(num_nodes, 4);
    }
    ~Services() override { db_clear(); }
};

} // namespace

TEST_F(Services, the_lowest_node_within_the_tolerance_is_found_if_it_is_active) {
    EXPECT_EQ(node_find({2, 1e-9, 0}, 1e-8), 2);
    EXPECT_EQ(node_find({2, 1e-7, 0}, 1e-8), 0);
    EXPECT_EQ(node_coordinates(4), (Vec3{0, 2, 0}));
    // Node 3 is not defined and stands at the origin: it hides nothing behind node 1, but an
    // inactive first match is not passed over.
    as_span<char>(find_array(node_active))[0] = ' ';
    EXPECT_EQ(node_find({0, 0, 0}, 1e-8), 0);
}

TEST_F(Services, a_node_is_added_behind_the_last_with_the_restraints_of_another) {
    const auto codes = create_matrix<std::int32_t>(bcid, 6, 8);
    codes(3, 2) = 1;
    EXPECT_EQ(node_add({9, 9, 9}, 2), 5);
    EXPECT_EQ(codes(3, 5), 1);
    EXPECT_EQ(get_int(num_nodes), 5);
    EXPECT_EQ(node_add({9, 9, 9}, 6), 0); // no such node to copy from
    for (int n = 6; n <= 8; ++n)
        EXPECT_EQ(node_add({0, 0, 1.0 * n}, -1), n);
    EXPECT_EQ(node_add({0, 0, 9}, -1), 0); // full
}

TEST_F(Services, a_chain_uses_the_nodes_at_hand_and_ends_exactly) {
    std::array<std::int32_t, 4> chain{};
    node_line_chain({0, 0, 0}, {2, 0, 0}, 2, chain);
    EXPECT_EQ(chain, (std::array<std::int32_t, 4>{1, 5, 2, 0}));
    EXPECT_EQ(node_coordinates(5), (Vec3{1, 0, 0}));
    node_line_chain({0, 0, 0}, {0.1, 0.2, 0.7}, 3, chain);
    EXPECT_EQ(node_coordinates(chain[3]), (Vec3{0.1, 0.2, 0.7}));
}

TEST_F(Services, errors_add_up_and_are_divided_by_their_sum) {
    create_real_scalar(fem_error, -1);
    add_element_error(3);
    add_element_error(5);
    EXPECT_EQ(get_real(fem_error), 8);
    std::array errors{3.0, 5.0};
    scale_element_errors(errors);
    EXPECT_EQ(errors, (std::array{0.375, 0.625}));
    create_real_scalar(fem_error, 0);
    scale_element_errors(errors);
    EXPECT_EQ(errors[0], 0.375);
}
