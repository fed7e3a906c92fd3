// The format engine against the fields that a Fortran run-time library wrote
// (tests/data/format_cases.txt, whose head describes its lines), and the rules of the literals.
#include "kernel/format.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <sstream>

namespace quelor {
namespace {

struct Statement {
    std::string format;
    FormatItems items;
};
struct Case {
    std::string group, name;
    std::deque<std::string> texts; // a deque keeps the items' views valid
    std::deque<Statement> statements;
    std::string expected;
    bool fails = false;
};

std::string between_bars(const std::string& line) {
    const std::size_t first = line.find('|');
    return line.substr(first + 1, line.rfind('|') - first - 1);
}

void read_values(Case& test, const std::string& line) {
    FormatItems& items = test.statements.back().items;
    if (line[2] == 'c') {
        items.add(std::string_view(test.texts.emplace_back(between_bars(line))));
        return;
    }
    std::istringstream words(line.substr(3));
    for (std::string word; words >> word;) {
        if (line[2] == 'i')
            items.add(std::strtoll(word.c_str(), nullptr, 10));
        else if (line[2] == 'r')
            items.add(std::strtod(word.c_str(), nullptr));
        else
            items.add(word == "T");
    }
}

std::deque<Case> read_cases() {
    std::deque<Case> cases;
    std::ifstream file(TEST_DATA "/format_cases.txt");
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == 'C') {
            std::istringstream words(line.substr(2));
            Case& test = cases.emplace_back();
            words >> test.group >> test.name;
            test.name += " at line " + std::to_string(number);
            continue;
        }
        Case& test = cases.back();
        if (line[0] == 'F')
            test.statements.push_back({between_bars(line), {}});
        else if (line[0] == 'V')
            read_values(test, line);
        else if (line[0] == 'O')
            test.expected += between_bars(line) + '\n';
        else if (line[0] == 'N')
            test.expected.pop_back();
        else
            test.fails = true;
    }
    return cases;
}

TEST(Format, AgreesWithTheReferenceLibraryByteForByte) {
    const std::deque<Case> cases = read_cases();
    ASSERT_EQ(cases.size(), 1720u);
    int compared = 0;
    for (const Case& test : cases) {
        if (test.group == "quirk") // where that library leaves the standard
            continue;
        std::string text, error;
        for (const Statement& statement : test.statements) {
            const FormatResult result =
                format_write(Format::from_text(statement.format), statement.items);
            text += result.text;
            error += result.error;
        }
        const std::string where = test.group + " " + test.name + " " + test.statements[0].format;
        EXPECT_EQ(!error.empty(), test.fails) << where << "\n" << error;
        EXPECT_EQ(test.fails ? test.expected : text, test.expected) << where;
        ++compared;
    }
    EXPECT_EQ(compared, 1712);
}

// Literals are checked by the compiler; these are the same checks as values.
static_assert(check_format("10(/, 15x, 'Table', i6)").empty());
static_assert(check_format("(i5,3x,1p6e12.4)").empty());
static_assert(!check_format("(i5,3x,1p6e12.4").empty());
static_assert(!check_format("(i5,,i5)").empty());
static_assert(!check_format("('abc)").empty());
static_assert(!check_format("(f8)").empty());
static_assert(!check_format("(99999999999i5)").empty());

TEST(Format, BracedListsMixNumbersTextsComplexValuesAndSpans) {
    const std::vector<double> reals{1.5, 2.5};
    const std::array<std::int32_t, 2> integers{7, 8};
    const std::string text = "abc";
    const FormatItems items{std::span(integers), text, "de", Complex8(1, -2), reals, 3.0F, true,
                            std::size_t{9}};
    EXPECT_EQ(format_write("20(2i3, 2a4, 5f6.1, l2, i2)", items).text,
              "  7  8 abc  de   1.0  -2.0   1.5   2.5   3.0 T 9\n");
}

TEST(Format, HostileFormatsEndWithAMessage) {
    const FormatItems one{1};
    for (const char* text : {"(9999(9999(1x)),i5)", "(9999(9999(/)))", "(99999(99999x),i5)",
                             "(9999999999i5)", "(i99999999999)", "(f20.99999)", "((((((((((",
                             "(9999(9999()))", "(9999p,f8.2)", "\0", "(i5\t)"})
        EXPECT_NE(format_write(Format::from_text(text), one).error, "") << text;
    // what was written before the failure is kept, for the reader to see where it happened
    EXPECT_EQ(format_write("('row', i3, f5.1)", {1, 2}).text, "row  1");
}

TEST(Format, ScaledFixedFieldsAreRoundedOnceFromTheBinaryValue) {
    // 2500 and 3500 lie half way at 10^3; 0.5 below and above them decides where it is looked at
    EXPECT_EQ(edit_fixed(2500, 6, 0, -3), "    2.");
    EXPECT_EQ(edit_fixed(2500.0000000001, 6, 0, -3), "    3.");
    EXPECT_EQ(edit_fixed(1e22, 8, 0, -20), "    100.");
    EXPECT_EQ(edit_scientific(9.99995e-5, 10, 4, 1), "9.9999E-05"); // binary value below the tie
    EXPECT_EQ(edit_scientific(1.0, 10, 4, 7), "**********");
    EXPECT_EQ(edit_integer(INT64_MIN, 20), "-9223372036854775808");
    EXPECT_EQ(edit_text("abcdef", 3) + edit_text("a", 3), "abc  a");
}

} // namespace
} // namespace quelor
