#include "kernel/utilities.hpp"

#include "../support/session.hpp"
#include "kernel/help_print.hpp"

#include <cmath>
#include <limits>

namespace quelor {
namespace {

struct Utilities : Session {};

TEST_F(Utilities, GettersAnswerASentinelForAbsentNamesAndOtherTypes) {
    create_int_scalar("i", 5);
    create_real_scalar("r", 2.5);
    EXPECT_EQ(get_int("i"), 5);
    EXPECT_EQ(get_real("r"), 2.5);
    std::int32_t i = 0;
    double x = 0;
    EXPECT_EQ(screen([&] { i = get_int("r"); }), "     \n      Incorrect type in get_int\n");
    EXPECT_EQ(i, -999999);
    EXPECT_EQ(screen([&] { x = get_real("name"); }), "      name not found\n");
    EXPECT_EQ(x, -9.99999e-94);
    EXPECT_EQ(screen([&] { x = get_real_by_name("i", 1, 1); }),
              "     \n      Incorrect type in get_real_by_name\n");
    EXPECT_EQ(x, no_real);
}

TEST_F(Utilities, GettersOfOneElementCountByTheFirstDimension) {
    const auto a = create_matrix<double>("a", 2, 3);
    a(2, 3) = 7;
    EXPECT_EQ(get_real_by_name("a", 2, 3), 7);
    EXPECT_EQ(get_real_by_name("a", 6, 1), 7) << "i and j are not held against the dimensions";
    create_string_array("abc", "s");
    EXPECT_EQ(get_char_by_name("s", 1, 2), 'b');
    EXPECT_EQ(find_array("s").cols(), 4);
    EXPECT_EQ(get_char_by_name("s", 1, 4), '\0');
}

TEST_F(Utilities, NumbersKeepTheirBounds) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(nearest_int(2.5), 3);
    EXPECT_EQ(truncated_int(-2.9), -2);
    EXPECT_EQ(nearest_int(1e300), most);
    EXPECT_EQ(nearest_int(-INFINITY), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(nearest_int(NAN), 0);
    EXPECT_EQ(exponent10(0), 0);
    for (const auto& [x, k] : {std::pair{9.99, 0}, {-1000.0, 3}, {0.099, -2}, {2e-300, -300}})
        EXPECT_EQ(exponent10(x), k) << x;
    EXPECT_DOUBLE_EQ(complex_modulus({3e200, -4e200}), 5e200); // no overflow on the way
    const Point2 p = line_intersect({0, 0}, {2, 2}, {0, 4}, {1, 3});
    EXPECT_DOUBLE_EQ(p.x, 2);
    EXPECT_DOUBLE_EQ(p.y, 2);
    EXPECT_EQ(char_index("abcb", 'b', 4), 2);
    EXPECT_EQ(char_index({"a\0b", 3}, 'b', -1), 0);
    EXPECT_EQ(char_index({"a\0b", 3}, 'b', 3), 3);
}

TEST_F(Utilities, ListsAreTypedByAPattern) {
    const std::int32_t integers[] = {1, -2};
    const double reals[] = {1.5};
    EXPECT_EQ(screen([&] { print_typed_list(integers, reals, "IRxIL"); }),
              "       1   1.5000E+00      -2\n");
}

/// The text on the screen; `lines` counts what was printed.
std::string wrapped(std::string_view text, int& lines, int page_length) {
    flush_unit(unit_screen);
    testing::internal::CaptureStdout();
    wrap_print(unit_screen, text, lines, page_length);
    flush_unit(unit_screen);
    return testing::internal::GetCapturedStdout();
}
std::string wrapped(std::string_view text) {
    int lines = 0;
    return wrapped(text, lines, 999999);
}

TEST_F(Utilities, TextsAreIndentedByTheirTabsAndWrappedAtBlanks) {
    EXPECT_EQ(wrapped(" \n\tOne arg required\n"), "     \n      One arg required\n");
    EXPECT_EQ(wrapped("a\n\n\n\t\tb\nc\t\t"), "    a\n\n\n        b\n    c\n");
    EXPECT_EQ(wrapped(""), "");
    const std::string word(30, 'w'), line = word + " " + word + " ";
    EXPECT_EQ(wrapped(line + word), "    " + word + " " + word + "\n    " + word + "\n");
    EXPECT_EQ(wrapped("\t" + line + word), "      " + word + " " + word + "\n      " + word + "\n");
    EXPECT_EQ(wrapped(std::string(75, 'x')), "    " + std::string(75, 'x') + "\n");
    EXPECT_EQ(wrapped(std::string(76, 'x')), "    " + std::string(75, 'x') + "\n    x\n");
    EXPECT_EQ(wrapped(std::string(1000, '\t') + "x"), std::string(2004, ' ') + "x\n");
}

TEST_F(Utilities, PagesStopUntilTheUserGoesOn) {
    int lines = 0;
    give_input("record\n"); // is not an answer
    give_console("\nq\n");
    EXPECT_EQ(wrapped("1\n2\n3\n4\n5\n6\n", lines, 2),
              "    1\n    2\n--q to quit--    3\n    4\n--q to quit--");
    EXPECT_EQ(wrapped("text", lines, 0), "");
}

} // namespace
} // namespace quelor
