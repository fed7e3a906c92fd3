// Ordering of nodes on graphs whose order is known.
#include "fem/node_ordering.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace quelor;

namespace {

using Nodes = std::vector<std::int32_t>;

NodeOrdering order(const std::vector<Nodes>& elements, int count, bool reverse = false) {
    Nodes end, nodes;
    for (const Nodes& element : elements) {
        nodes.insert(nodes.end(), element.begin(), element.end());
        end.push_back(static_cast<std::int32_t>(nodes.size()));
    }
    return order_nodes(end, nodes, count, reverse);
}

} // namespace

TEST(NodeOrder, takes_neighbours_by_degree_and_elements_as_cliques) {
    // Node 1 (degree 3) joins 2, 3 and 4; 2 has the further neighbours 5, 6, 3 the further one 7.
    const std::vector<Nodes> tree{{1, 2}, {1, 3}, {1, 4}, {2, 5}, {2, 6}, {3, 7}};
    // Start: 4, the lowest of degree 1; then 1; of 2 (degree 3) and 3 (degree 2) the latter first.
    EXPECT_EQ(order(tree, 7).order, (Nodes{4, 1, 3, 2, 7, 5, 6}));
    // A quadrilateral and a triangle on one edge: degrees 3, 4, 4, 3, 2.
    EXPECT_EQ(order({{1, 2, 3, 4}, {2, 3, 5}}, 5).order, (Nodes{5, 2, 3, 1, 4}));
}

TEST(NodeOrder, names_a_node_of_the_second_part) {
    const NodeOrdering ordering = order({{1, 3}, {3, 2}, {6, 5}, {7, 8}, {4}}, 9);
    EXPECT_EQ(ordering.parts, 3);
    EXPECT_EQ(ordering.second_part, 5);
    EXPECT_EQ(ordering.order, (Nodes{1, 3, 2}));
    EXPECT_EQ(order({{1}, {}}, 3).parts, 0);
}

TEST(NodeOrder, makes_a_shuffled_grid_as_narrow_as_the_grid_is) {
    constexpr int nx = 40, ny = 7;
    Nodes number(nx * ny);
    for (std::size_t i = 0; i < number.size(); ++i)
        number[i] = static_cast<std::int32_t>(i + 1);
    std::shuffle(number.begin(), number.end(), std::mt19937(2));
    const auto at = [&](int i, int j) { return number[static_cast<std::size_t>(i * ny + j)]; };
    std::vector<Nodes> elements;
    for (int i = 0; i + 1 < nx; ++i)
        for (int j = 0; j + 1 < ny; ++j)
            elements.push_back({at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)});
    const Nodes ordered = order(elements, nx * ny, true).order;
    std::vector<int> place(number.size() + 1);
    for (std::size_t r = 0; r < ordered.size(); ++r)
        place[static_cast<std::size_t>(ordered[r])] = static_cast<int>(r);
    int widest = 0;
    for (const Nodes& element : elements)
        for (const auto a : element)
            for (const auto b : element)
                widest = std::max(widest, place[static_cast<std::size_t>(a)] -
                                              place[static_cast<std::size_t>(b)]);
    // Levels from a corner are L-shaped, at most 2 ny nodes of two neighbouring levels apart.
    EXPECT_LE(widest, 2 * ny);
}

TEST(ExchangeOrder, leaves_ties_as_the_exchange_sort_does) {
    std::mt19937 random(5);
    for (const std::size_t n : {1u, 2u, 65u, 70u, 300u}) {
        for (const int degrees : {1, 2, 3, 10, 1000}) {
            Nodes list(n), degree(n);
            for (std::size_t i = 0; i < n; ++i) {
                list[i] = static_cast<std::int32_t>(i + 1);
                degree[i] = std::uniform_int_distribution<int>(1, degrees)(random);
            }
            std::shuffle(list.begin(), list.end(), random);
            Nodes wanted = list;
            const auto of = [&](std::int32_t node) {
                return degree[static_cast<std::size_t>(node - 1)];
            };
            for (std::size_t i = 0; i < n; ++i)
                for (std::size_t j = i + 1; j < n; ++j)
                    if (of(wanted[j]) < of(wanted[i])) std::swap(wanted[i], wanted[j]);
            exchange_order(list, degree);
            EXPECT_EQ(list, wanted) << n << ' ' << degrees;
        }
    }
}
