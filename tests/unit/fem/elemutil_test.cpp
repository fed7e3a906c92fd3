// The table of elements, and their algebra.
#include "fem/elemutil.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace quelor;

TEST(Protocol, the_table_has_every_slot_in_order_and_no_name_twice) {
    std::vector<std::string_view> names;
    for (int slot = 1; slot <= element_slots; ++slot) {
        const ElementRow& row = element_rows()[static_cast<std::size_t>(slot - 1)];
        EXPECT_EQ(row.slot, slot);
        EXPECT_FALSE(row.kind.empty());
        EXPECT_EQ(row.routine == nullptr, row.help.empty());
        if (!row.alias.empty()) names.push_back(row.alias);
    }
    EXPECT_EQ(names.size(), 34u);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST(ElemTkt, is_the_product_with_the_whole_block_diagonal_matrix) {
    constexpr int r = 2, c = 3, blocks = 2;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(-1, 1);
    std::vector<double> k(16), t(r * c), result(36), whole(4 * 6);
    for (double& x : k)
        x = value(random);
    for (double& x : t)
        x = value(random);
    const Matrix<double> K{k.data(), 4, 4}, T{t.data(), r, c}, W{whole.data(), 4, 6};
    for (int b = 0; b < blocks; ++b)
        for (int i = 1; i <= r; ++i)
            for (int j = 1; j <= c; ++j)
                W(b * r + i, b * c + j) = T(i, j);
    const Matrix<double> R{result.data(), 6, 6};
    ASSERT_TRUE(elem_tkt({k.data(), 4, 4}, {t.data(), r, c}, R));
    for (int i = 1; i <= 6; ++i)
        for (int j = 1; j <= 6; ++j) {
            double sum = 0;
            for (int p = 1; p <= 4; ++p)
                for (int q = 1; q <= 4; ++q)
                    sum += W(p, i) * K(p, q) * W(q, j);
            EXPECT_NEAR(R(i, j), sum, 1e-14); // rounding of some ten products below 1
        }
    EXPECT_FALSE(elem_tkt({k.data(), 4, 4}, {t.data(), 3, 2}, R));
    EXPECT_FALSE(elem_tkt({k.data(), 4, 4}, {t.data(), r, c}, {result.data(), 5, 5}));
}

TEST(Vectors, lengths_and_directions) {
    const auto [c, l] = direction_cosines({1, 2, 3}, {1, 5, 7});
    EXPECT_EQ(l, 5);
    EXPECT_EQ(c, (Vec3{0, 0.6, 0.8}));
    EXPECT_EQ(direction_cosines({1, 2, 3}, {1, 2, 3}).vector, (Vec3{0, 0, 0}));
    EXPECT_EQ(scale_to_length({3, 0, 4}, 10), (Vec3{6, 0, 8}));
    EXPECT_EQ(scale_to_length({0, 0, 0}, 10), (Vec3{0, 0, 0}));
}
