#include "kernel/gencom.hpp"

#include "../support/session.hpp"
#include "kernel/utilities.hpp"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace quelor {
namespace {

struct Record : Session {};

std::string arg(std::string_view line, int n) {
    set_record(line);
    return std::string(get_arg(n));
}

template <std::size_t n> std::array<double, n> reals(std::string_view line, std::string_view key) {
    std::array<double, n> values;
    values.fill(99);
    set_record(line);
    get_real_par(key, values);
    return values;
}

template <std::size_t n>
std::array<std::int32_t, n> integers(std::string_view line, std::string_view key) {
    std::array<std::int32_t, n> values;
    values.fill(99);
    set_record(line);
    get_int_par(key, values);
    return values;
}

std::string text_of(std::string_view line, std::size_t capacity = 80) {
    std::string text = "default";
    set_record(line);
    get_char_par(" s=", text, capacity);
    return text;
}

template <std::size_t n> using Ints = std::array<std::int32_t, n>;
template <std::size_t n> using Reals = std::array<double, n>;

TEST_F(Record, ArgumentsAreTheTokensThatAreNeitherFlagsNorParameters) {
    EXPECT_EQ(arg("  mult a -f  r=2 b   c ", 0), "mult");
    EXPECT_EQ(arg("mult a -f  r=2 b   c ", 1), "a");
    EXPECT_EQ(arg("mult a -f  r=2 b   c ", 3), "c");
    EXPECT_EQ(arg("mult a -f  r=2 b   c ", 4), " ");
    EXPECT_EQ(arg("", 0), " ");
    EXPECT_EQ(arg("a\tb", 1), "b") << "tabs are blanks";
    EXPECT_EQ(arg("a b /* c", 2), " ") << "a comment is cut";
}

TEST_F(Record, QuotesJoinWhatStandsBetweenThem) {
    EXPECT_EQ(arg("term 'cp a  b' c", 1), "cp a  b");
    EXPECT_EQ(arg("term 'cp a  b' c", 2), "c");
    EXPECT_EQ(arg("x 'a=b' c", 1), "c") << "a quoted token with = is no argument";
    EXPECT_EQ(arg("x y'a b' c", 1), "y'a b'") << "quotes inside a token stay";
    EXPECT_EQ(arg("x 'a b", 2), "b") << "no closing quote";
    EXPECT_EQ(arg("x '' b", 1), " ") << "an empty text is a blank argument";
    EXPECT_EQ(arg("x '' b", 2), "b");
    EXPECT_EQ(arg("x 'a''b' c", 2), "b") << "the closing quote takes the place behind it, too";
    EXPECT_EQ(arg("''", 0), "''");
}

TEST_F(Record, ATildeStandsForTheTextOfAnArray) {
    create_string_array("print", "cmd");
    create_matrix<char>("open", 1, 2)(1, 1) = 'x';
    create_matrix<char>("rows", 2, 2)(1, 1) = 'r';
    std::memcpy(create_array_2d(type_character, "full", 1, 3), "abc", 3);
    EXPECT_EQ(arg("a ~cmd", 1), "print");
    EXPECT_EQ(arg("a ~full", 1), "~full") << "no NUL, no text";
    EXPECT_EQ(arg("a ~none", 1), "~none");
    set_record("~cmd a");
    EXPECT_EQ(get_command_word(), "print");
    set_record("~full a");
    EXPECT_EQ(get_command_word(), "abc");
    set_record("~none a");
    EXPECT_EQ(get_command_word(), "");
    set_record(std::string(40, 'x') + " a");
    EXPECT_EQ(get_command_word(), std::string(32, 'x'));
}

TEST_F(Record, IntegerParameters) {
    EXPECT_EQ(integers<1>("a b=3", "r="), Ints<1>{99});
    EXPECT_EQ(integers<1>("a ptr=5", "r="), Ints<1>{5}) << "a key is a plain substring";
    EXPECT_EQ(integers<1>("a ptr=5", " r="), Ints<1>{99});
    EXPECT_EQ(integers<1>("a r= 5", "r="), Ints<1>{0});
    EXPECT_EQ(integers<1>("a r=1 r=2", "r="), Ints<1>{1}) << "the first one counts";
    EXPECT_EQ((integers<3>("a r=1,-2,+3", "r=")), (Ints<3>{1, -2, 3}));
    EXPECT_EQ((integers<2>("a r=1 5", "r=")), (Ints<2>{1, 5})) << "reads on behind the blank";
    EXPECT_EQ((integers<3>("a r=1 5 7", "r=")), (Ints<3>{1, 5, 5}));
    EXPECT_EQ((integers<2>("a r=1,,2", "r=")), (Ints<2>{1, 0}));
    EXPECT_EQ((integers<2>("a r=1 n=2", "r=")), (Ints<2>{1, 0}));
    EXPECT_EQ(integers<1>("a r=12abc", "r="), Ints<1>{12});
    EXPECT_EQ(integers<1>("a r=99999999999", "r="),
              Ints<1>{std::numeric_limits<std::int32_t>::max()});
}

TEST_F(Record, RealParameters) {
    EXPECT_EQ((reals<2>("a r=1 5", "r=")), (Reals<2>{1, 0})) << "a blank ends the list";
    EXPECT_EQ((reals<3>("a r=1, 5,7", "r=")), (Reals<3>{1, 0, 0}));
    EXPECT_EQ((reals<3>("a r=1.5,2e3,-.5", "r=")), (Reals<3>{1.5, 2000, -0.5}));
    EXPECT_EQ((reals<2>("a r=,2", "r=")), (Reals<2>{0, 2}));
    EXPECT_EQ((reals<2>("a r=1d3,2", "r=")), (Reals<2>{1, 2})) << "d is no exponent";
    EXPECT_EQ((reals<2>("a r=0x1p4,inf", "r=")), (Reals<2>{16, INFINITY})) << "as atof reads";
    EXPECT_TRUE(std::isnan(reals<1>("a r=nan", "r=")[0]));
    EXPECT_EQ(reals<1>("a r=1e999", "r="), Reals<1>{INFINITY});
}

TEST_F(Record, ParametersFromArrays) {
    const auto a = create_matrix<double>("a", 1, 3);
    a(1, 1) = 1.5, a(1, 2) = -2.5, a(1, 3) = 1e20;
    create_int_scalar("k", 7);
    EXPECT_EQ((integers<4>("x r=~a", "r=")),
              (Ints<4>{2, -3, std::numeric_limits<std::int32_t>::max(), 0}));
    EXPECT_EQ((integers<2>("x r=~none b", "r=")), (Ints<2>{0, 0}));
    EXPECT_EQ((reals<2>("x r=~k y", "r=")), (Reals<2>{7, 0}));
    create_string_array("abc", "s");
    EXPECT_EQ((reals<1>("x r=~s y", "r=")), Reals<1>{0});
}

TEST_F(Record, ComplexParameters) {
    std::array<Complex8, 2> z{};
    set_record("x v=1,2,3");
    get_complex_par("v=", z);
    EXPECT_EQ(z[0], Complex8(1, 2));
    EXPECT_EQ(z[1], Complex8(3, 0));
    create_matrix<Complex8>("z", 1, 1)(1, 1) = {4, 5};
    set_record("x v=~z");
    get_complex_par("v=", z);
    EXPECT_EQ(z[0], Complex8(4, 5));
    EXPECT_EQ(z[1], Complex8(0, 0));
    // The words of 1.0: 0x00000000, 0x3ff00000; one element gives one word.
    const auto a = create_matrix<double>("a", 2, 1);
    a(1, 1) = 1;
    set_record("x v=~a");
    get_complex_par("v=", z);
    EXPECT_EQ(z[0], Complex8(0, 0));
    EXPECT_EQ(z[1], Complex8(0x3ff00000, 0));
}

TEST_F(Record, CharacterParameters) {
    EXPECT_EQ(text_of("x s=print -null"), "print");
    EXPECT_EQ(text_of("x s='hello world' b"), "hello world");
    EXPECT_EQ(text_of("x s='  a b'"), "a b");
    EXPECT_EQ(text_of("x s=''"), "");
    EXPECT_EQ(text_of("x s='ab'cd"), "ab cd");
    EXPECT_EQ(text_of("x s="), "");
    EXPECT_EQ(text_of("x y"), "default");
    EXPECT_EQ(text_of("x s=abcdef", 4), "abc");
    create_string_array("text", "t");
    EXPECT_EQ(text_of("x s=~t", 4), "tex");
    EXPECT_EQ(text_of("x s=~none"), "");
}

TEST_F(Record, FlagsReadAsZero) {
    const auto flag = [](std::string_view line) {
        set_record(line);
        return has_flag(" -f");
    };
    EXPECT_TRUE(flag("x -f a"));
    EXPECT_TRUE(flag("x -foo"));
    EXPECT_FALSE(flag("x a-f"));
    EXPECT_FALSE(flag("-f"));
}

/// The records of a file, one by one, as the reader joins them.
std::vector<std::string> records(const std::string& text, std::size_t count) {
    std::ofstream("input") << text;
    open_input_file("input", false);
    std::vector<std::string> list(count);
    for (auto& record : list) {
        next_record("");
        record = record_text();
    }
    close_all_inputs();
    return list;
}

TEST_F(Record, LinesAreJoinedAtTheLastAmpersand) {
    using List = std::vector<std::string>;
    EXPECT_EQ(records("abc &\ndef\nabc&\ndef\n", 2), (List{"abc def", "abcdef"}));
    EXPECT_EQ(records("a & /* c\nb\n", 2), (List{"a & ", "b"})) << "not the last character";
    EXPECT_EQ(records("x = 1 /* note &\nlost\nnext\n", 2), (List{"x = 1 ", "next"}));
    EXPECT_EQ(records("a &   \n &\nb\n", 1), (List{"a  b"}));
    EXPECT_EQ(records("a & b&cd\ne & b&c\nf\n", 2), (List{"a & b&cd", "e & bf"}))
        << "the look-ahead of the second & starts past the blanks of the first";
    EXPECT_EQ(records("  'a & b' &\nc\nd\n", 2), (List{"'a & b' c", "d"}))
        << "beyond the end of the line there is nothing either";
    EXPECT_EQ(records("last", 3), (List{"last", "return", "return"}));
}

TEST_F(Record, DataRecordsAreSplitAtBlanksAndCommas) {
    give_input(" 1, 2,,3 /* 4\n\n5 abc 7.9 8\n~a b\n");
    Reals<4> x{};
    read_real_record("", x);
    EXPECT_EQ(x, (Reals<4>{1, 2, 3, 0}));
    read_real_record("", x);
    EXPECT_EQ(x, (Reals<4>{}));
    Ints<3> k{};
    read_int_record("", k);
    EXPECT_EQ(k, (Ints<3>{5, 0, 7}));
    std::array<char, 6> text{};
    read_char_record("", text);
    EXPECT_EQ(std::string(text.data(), 6), "~a b  ");
}

TEST_F(Record, MayHave2048BytesAndNoMore) {
    const std::string most(2048, 'x');
    EXPECT_EQ(records(most + "\n", 1).front(), most);
    EXPECT_EQ(records(most.substr(0, 2000) + "&\n" + std::string(48, 'x') + "\n", 1).front(), most);
    for (const std::string& text :
         {most + "x\n", most + "&\n1\n", std::string(3000, 'x') + "&\n", std::string(1 << 17, 'y')})
        EXPECT_EXIT(
            {
                detach();
                records(text, 1);
            },
            testing::ExitedWithCode(0), "FATAL ERROR - INPUT LINE > 2048 characters");
}

TEST_F(Record, AnyBytesCanBeAskedAnything) {
    std::mt19937 random(11);
    static constexpr char likely[] = " '~=&-,/*ar1.e\t\0\xff";
    create_matrix<double>("a", 2, 2);
    for (int round = 0; round < 3000; ++round) {
        std::string line(random() % 60, ' ');
        for (char& c : line)
            c = random() % 4 == 0 ? static_cast<char>(random() % 256)
                                  : likely[random() % (sizeof likely - 1)];
        set_record(line);
        for (int n = 0; n < 5; ++n)
            EXPECT_FALSE(get_arg(n).empty());
        EXPECT_LE(get_command_word().size(), 32U);
        for (const char* key : {"r=", " -", "a", "'", "~", ""}) {
            Ints<3> k{};
            Reals<3> x{};
            std::array<Complex8, 2> z{};
            std::string text = "'";
            get_int_par(key, k);
            get_real_par(key, x);
            get_complex_par(key, z);
            get_char_par(key, text, 5);
            EXPECT_LT(text.size(), 5U);
        }
    }
}

} // namespace
} // namespace quelor
