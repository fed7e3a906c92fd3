#include "solvers/matrix.hpp"

#include "../support/session.hpp"
#include "tests/unit/numeric/profile_loops.hpp"

namespace quelor {
namespace {

struct ProfileByName : Session {};

/// [4 2; 2 5] in the arrays k and loc; its factors are D = (4, 4), L(1,2) = 0.5.
void create_matrix_2() {
    const auto k = create_matrix<double>("k", 3, 0);
    std::ranges::copy(std::vector{4.0, 5.0, 2.0}, k.data);
    const auto loc = create_matrix<std::int32_t>("loc", 3, 0);
    std::ranges::copy(std::vector{1, 2, 4}, loc.data);
}

TEST_F(ProfileByName, FactorsAndSolvesInWholeOrInHalves) {
    create_matrix_2();
    EXPECT_TRUE(profile_op("k", "loc", {}, 0, default_digits));
    const auto k = as_span<const double>(find_array("k"));
    EXPECT_EQ(std::vector(k.begin(), k.end()), (std::vector{4.0, 4.0, 0.5}));
    std::vector<double> b{8, 16}, halves = b;
    EXPECT_TRUE(profile_op("k", "loc", {b.data(), 2, 1}, 1, default_digits));
    EXPECT_EQ(b, (std::vector{0.5, 3.0}));
    EXPECT_TRUE(profile_op("k", "loc", {halves.data(), 2, 1}, 2, default_digits));
    EXPECT_EQ(halves, (std::vector{8.0, 12.0}));
    EXPECT_TRUE(profile_op("k", "loc", {halves.data(), 2, 1}, 3, default_digits));
    EXPECT_EQ(halves, b);
}

TEST_F(ProfileByName, WhatDoesNotFitIsSaidAndLeftAlone) {
    create_matrix_2();
    std::vector<double> b{1, 2, 3};
    const auto refused = [&](std::string_view a, std::string_view loc, int rows, int op) {
        bool done = true;
        const auto text = screen([&] {
            done = profile_op(a, loc, {b.data(), rows, 1}, op, default_digits);
        });
        EXPECT_FALSE(done);
        return text;
    };
    EXPECT_NE(refused("none", "loc", 2, 1).find("Stiffness not found"), std::string::npos);
    EXPECT_NE(refused("k", "k", 2, 1).find("Stiffness diagonal locations not found"),
              std::string::npos);
    EXPECT_NE(refused("k", "loc", 3, 1).find("not compatible"), std::string::npos);
    EXPECT_EQ(b, (std::vector{1.0, 2.0, 3.0}));
}

} // namespace
} // namespace quelor
