// Values that commands take from their record, and their powers of ten.
#include "../support/session.hpp"

#include "kernel/utilities.hpp"

#include <cmath>
#include <cstring>

namespace quelor {

using Values = Session;

TEST_F(Values, exponents_of_the_powers_of_ten_are_their_own) {
    for (int k = -300; k <= 300; ++k)
        EXPECT_EQ(exponent10(std::pow(10.0, k)), k);
}

TEST_F(Values, words_of_a_real_array_have_single_precision_as_complex_parameter) {
    create_matrix<double>("a", 1, 2)(1, 1) = 0.1; // the words 0x9999999a and 0x3fb99999
    std::array<Complex8, 2> z{};
    set_record("x v=~a");
    get_complex_par("v=", z);
    EXPECT_EQ(z[0], static_cast<double>(static_cast<float>(static_cast<std::int32_t>(0x9999999a))));
    EXPECT_EQ(z[1], static_cast<double>(static_cast<float>(0x3fb99999)));
}

TEST_F(Values, a_comment_needs_no_blank_before_it) {
    set_record("add a b/* c d");
    EXPECT_EQ(get_arg(2), "b");
    EXPECT_EQ(get_arg(3), " ");
}

} // namespace quelor
