// Generation of nodes, and the search for points at the same place.
#include "fem/node_family.hpp"
#include "fem/point_index.hpp"

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
    EXPECT_EQ(line(9, 1, 5, 1, 0).defined(), (std::vector{1, 2, 3, 4, 5}));
    EXPECT_EQ(line(9, 1, 5, 2, 0).defined(), (std::vector{1, 3, 5}));
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

TEST(GenerateQuad, fills_a_grid_and_stops_at_the_shorter_side) {
    List grid(20);
    grid.set.define(1, {0, 0, 0});
    grid.set.define(5, {4, 0, 0});
    grid.set.define(16, {0, 3, 0});
    grid.set.define(20, {4, 3, 0});
    EXPECT_TRUE(
        generate_quad(grid.set, std::array{1, 5, 16, 20}, std::array{0, 5}, std::array{0., 0.}));
    for (int n = 1; n <= 20; ++n) {
        EXPECT_NEAR(grid.set.xyz(1, n), (n - 1) % 5, 1e-14);
        EXPECT_NEAR(grid.set.xyz(2, n), (n - 1) / 5, 1e-14);
    }
    EXPECT_EQ(grid.set.count, 20);
    // A decrement between n1 n2 and n3 n4 would run out of the list.
    EXPECT_FALSE(
        generate_quad(grid.set, std::array{1, 5, 16, 20}, std::array{1, -5}, std::array{0., 0.}));
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
