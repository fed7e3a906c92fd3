#include "matrix/print.hpp"

#include <array>
#include <gtest/gtest.h>

namespace quelor {
namespace {

TEST(Print, counts_more_tables_than_an_int_can_hold) {
    const std::array<std::int32_t, 5> dims{2, 3, 65536, 65537, 4};
    const std::int64_t tables[] = {1, 1, 65536, 65536LL * 65537, 1};
    for (std::size_t n = 1; n <= dims.size(); ++n)
        EXPECT_EQ(table_count({.dims = std::span(dims).first(n), .type = type_real}),
                  tables[n - 1]);
}

} // namespace
} // namespace quelor
