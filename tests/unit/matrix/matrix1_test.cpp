#include "matrix/matrix1.hpp"

#include "../support/arrays.hpp"
#include "kernel/utilities.hpp"

#include <cmath>

namespace quelor {
namespace {

struct Matrix1 : ArraySession {
    Matrix1()
        : ArraySession({matrix1_input_rows(), matrix1_generate_rows(), matrix1_convert_rows()}) {}
};

TEST_F(Matrix1, InputReadsRowsFromRecords) {
    quietly("input a r=2 c=2", "1 2\n3\n");
    EXPECT_EQ(elements<double>("a"), (Reals{1, 3, 2, 0}));
    quietly("input v r=3", "1\n2\n3\n");
    EXPECT_EQ(dims("v"), Ints{3});
    quietly("inputc z r=1 c=2", "1 2, 3\n");
    EXPECT_EQ(elements<Complex8>("z"), (Complexes{{1, 2}, {3, 0}}));
    quietly("input3d t r=1 c=2 t=2", "1 2\n3 4\n");
    EXPECT_EQ(dims("t"), (Ints{1, 2, 2}));
    EXPECT_EQ(elements<double>("t"), (Reals{1, 2, 3, 4}));
    quietly("input3di s", "7\n");
    EXPECT_EQ(dims("s"), (Ints{1, 1, 1}));
    quietly("input wide c=3000", "5\n");
    EXPECT_EQ(elements<double>("wide")[2999], 0);
}

TEST_F(Matrix1, InputOfTextFillsWithBlanks) {
    const auto text = [](std::string_view name) {
        const auto chars = elements<char>(name);
        return std::string(chars.begin(), chars.end());
    };
    quietly("inputch name r=1 c=6 -null", "abc\n");
    EXPECT_EQ(text("name"), std::string("abc  \0", 6));
    quietly("inputch two r=2 c=3", "abcd\nx\n");
    EXPECT_EQ(text("two"), "axb c ");
    quietly("inputch wide c=3000", "a\n");
    EXPECT_EQ(text("wide"), "a" + std::string(2999, ' '));
    quietly("setch t s='Barge in waves'");
    EXPECT_EQ(text("t"), "Barge in waves");
    quietly("setch t s=print -null");
    EXPECT_EQ(text("t"), std::string("print\0", 6));
    quietly("setch t s='" + std::string(100, 'x') + "'");
    EXPECT_EQ(text("t"), std::string(80, 'x'));
    quietly("setch none -null");
    EXPECT_FALSE(find_array("none"));
}

TEST_F(Matrix1, InputRefusesWhatIsNoShape) {
    EXPECT_EQ(run("input"), said("One arguments required"));
    for (const char* line : {"input a", "input a r=-1 c=2", "inputch a r=2 c=-1"})
        EXPECT_EQ(run(line), said("Incorrect dimensions"));
    EXPECT_EQ(run("input3d"), said("One argument required"));
    for (const char* line : {"seti", "setr", "setch"})
        EXPECT_EQ(run(line), said("One arg required"));
    EXPECT_EQ(run("input3d a r=0"), said("Number of rows cannot be less than 1"));
    EXPECT_EQ(run("input3d a c=0"), said("Number of columns cannot be less than 1"));
    EXPECT_EQ(run("input3d a t=-5"), said("Number of tables cannot be less than 1"));
    EXPECT_FALSE(find_array("a"));
    EXPECT_EQ(run("input a r=1000000", "1\n2\n"),
              said("The input file ends inside the records of an array"));
    EXPECT_EQ(elements<double>("a")[1], 2);
}

TEST_F(Matrix1, ZeroCreatesOrFills) {
    quietly("zero a r=2 c=2 v=2.5");
    EXPECT_EQ(elements<double>("a"), Reals(4, 2.5));
    quietly("zeroi k r=3 value=7");
    EXPECT_EQ(dims("k"), Ints{3});
    quietly("zero k v=2.5");
    EXPECT_EQ(elements<std::int32_t>("k"), Ints(3, 2)) << "the value in the array's own type";
    quietly("zero t r=2 t=3 v=1");
    EXPECT_EQ(dims("t"), (Ints{2, 1, 3}));
    EXPECT_EQ(elements<double>("t"), Reals(6, 1));
    create_string_array("text", "s");
    quietly("zero s v=1");
    EXPECT_EQ(as_span<char>(find_array("s"))[3], 't');
    EXPECT_EQ(run("zero none"), "      none not found\n");
    EXPECT_EQ(run("zero b r=-1 t=2"), said("Incorrect dimensions"));
    EXPECT_EQ(run("zero"), said("One argument required"));
}

TEST_F(Matrix1, IdentIsAUnitMatrix) {
    quietly("ident a r=2 c=3");
    EXPECT_EQ(elements<double>("a"), (Reals{1, 0, 0, 1, 0, 0}));
    quietly("identi k r=2");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{1, 0, 0, 1}));
    quietly("zero k v=9");
    quietly("ident k");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{1, 0, 0, 1})) << "in its own type";
    EXPECT_EQ(run("ident a r=2 c=-1"), said("Incorrect dimensions"));
    quietly("zero t t=2");
    EXPECT_EQ(run("ident t"), "     Array dimensions must be <= 2\n");
}

TEST_F(Matrix1, SeriesRunsFromTheFirstNumberToTheLast) {
    const auto is = [](const Reals& expected) {
        const Reals found = elements<double>("s");
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i)
            EXPECT_DOUBLE_EQ(found[i], expected[i]);
    };
    quietly("series s x=0,1 inc=0.3");
    is({0, 0.3, 0.6, 0.3 + 0.3 + 0.3, 1});
    EXPECT_EQ(elements<double>("s").back(), 1) << "exactly";
    EXPECT_EQ(dims("s"), Ints{5});
    quietly("series s x=5,1 inc=-2");
    is({5, 3, 1});
    quietly("series s x=0,1 inc=0.1");
    EXPECT_EQ(elements<double>("s").size(), 11U) << "0.1 has no exact form; no twelfth point";
    quietly("series s x=0,10 w=2");
    is({0, 1, 3, 7, 10});
    quietly("series s x=0,10 max=3");
    is({0, 1, 2});
    quietly("series s x=0,1e300 max=2");
    EXPECT_EQ(elements<double>("s").size(), 2U);
    const std::string inconsistent = "     \n    Values and increment are inconsistent\n";
    for (const char* line : {"series b x=1,0", "series b x=0,inf", "series b x=nan,1",
                             "series b x=-1e308,1e308 inc=nan"})
        EXPECT_EQ(run(line), inconsistent);
    EXPECT_EQ(run("series b x=1,1"), "    \n    Points are equal\n");
    EXPECT_FALSE(find_array("b"));
}

TEST_F(Matrix1, Series2dFillsAQuadrilateral) {
    quietly("series2d q p1=0,0 p2=4,0 p3=0,2 p4=4,2 n=5,3");
    ASSERT_EQ(dims("q"), (Ints{15, 2}));
    for (int i = 1; i <= 15; ++i) {
        EXPECT_DOUBLE_EQ(get_real_by_name("q", i, 1), (i - 1) % 5);
        EXPECT_DOUBLE_EQ(get_real_by_name("q", i, 2), (i - 1) / 5);
    }
    // Spacings 1, 2, 4 along the first direction: 0, 1, 3, 7.
    quietly("series2d q p2=7,0 n=4 w=2 dim=1");
    EXPECT_EQ(elements<double>("q"), (Reals{0, 1, 3, 7}));
    quietly("series2d line p1=1,1,1 p3=1,1,3 n=1,3 dim=3");
    EXPECT_EQ(elements<double>("line"), (Reals{1, 1, 1, 1, 1, 1, 1, 2, 3}));
    quietly("zero wide r=2 c=3 v=9");
    quietly("series2d wide p1=1,2 p2=3,4");
    EXPECT_EQ(elements<double>("wide"), (Reals{1, 3, 2, 4, 9, 9})) << "further columns stay";
    EXPECT_EQ(run("series2d wide n=100000,100000"), said("Incorrect dimensions"));
    EXPECT_EQ(run("series2d"), said("One argument required"));
}

TEST_F(Matrix1, ConversionsFollowTheirRules) {
    quietly("input a c=4", "2.7 -2.5 2.5 1e99\n");
    quietly("to_int a k");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{3, -3, 3, 2147483647}));
    quietly("to_int a k -trunc");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{2, -2, 2, 2147483647}));
    quietly("to_real16 a");
    quietly("to_real a a");
    EXPECT_EQ(elements<double>("a"), (Reals{2.7, -2.5, 2.5, 1e99}));
    quietly("to_complex k z");
    EXPECT_EQ(elements<Complex8>("z"), (Complexes{2, -2, 2, 2147483647}));
    quietly("zeroc z r=2 v=2.7,5");
    quietly("to_int z k");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{2, 2})) << "truncated in every case";
    quietly("to_real z");
    EXPECT_EQ(elements<double>("z"), (Reals{2.7, 2.7}));
    EXPECT_EQ(dims("z"), Ints{2});
    quietly("to_int k copy");
    EXPECT_EQ(elements<std::int32_t>("copy"), (Ints{2, 2}));
    quietly("setr $convert v=1.5");
    quietly("to_int $convert");
    EXPECT_EQ(elements<std::int32_t>("$convert"), Ints{2}) << "the work array's own name";
    create_string_array("text", "s");
    EXPECT_EQ(run("to_real s copy"), said("Cannot convert these data types"));
    EXPECT_EQ(run("to_int none"), "      none not found\n");
    EXPECT_EQ(run("to_int"), said("One argument required"));
}

TEST_F(Matrix1, ToComplex2JoinsTwoParts) {
    quietly("input re c=2", "1 2\n");
    quietly("input im c=2", "3 4\n");
    quietly("to_complex2 re im re");
    EXPECT_EQ(elements<Complex8>("re"), (Complexes{{1, 3}, {2, 4}}));
    EXPECT_EQ(run("to_complex2 re re z"), said("Arguments are complex; can not convert"));
    EXPECT_EQ(run("to_complex2 re im z"), said("Arguments 1 and 2 must be of same type"));
    quietly("zero three c=3");
    EXPECT_EQ(run("to_complex2 im three z"), said("Arguments not same dimension"));
    EXPECT_EQ(run("to_complex2 im none z"), "      none not found\n");
    EXPECT_EQ(run("to_complex2 re im"), said("Three arguments required"));
}

TEST_F(Matrix1, DimensionsAreAskedForAndReduced) {
    quietly("zero row c=4 v=3");
    quietly("to_vector row");
    EXPECT_EQ(dims("row"), Ints{4});
    EXPECT_EQ(elements<double>("row"), Reals(4, 3));
    quietly("to_vector row");
    quietly("zero a r=2 c=3");
    EXPECT_EQ(run("to_vector a"), said("Array is not a \"vector\".\n      to_vector quitting."));
    EXPECT_EQ(run("to_vector"), said("One argument required.\n      to_vector quitting."));
    EXPECT_EQ(run("to_vector none"), "      none not found\n" + said("to_vector quitting."));
    quietly("get_dim a n -rows");
    EXPECT_EQ(elements<std::int32_t>("n"), Ints{2});
    quietly("get_dim row n -cols");
    EXPECT_EQ(elements<std::int32_t>("n"), Ints{1});
    for (const char* line : {"get_dim a n", "get_dim a n -rows -cols"}) {
        quietly(line);
        EXPECT_EQ(dims("n"), Ints{2});
        EXPECT_EQ(elements<std::int32_t>("n"), (Ints{2, 3}));
    }
    quietly("input3d t r=2 t=2", "1\n2\n3\n4\n");
    quietly("get_dim t t2");
    EXPECT_EQ(elements<std::int32_t>("t2"), (Ints{2, 1, 2}));
    quietly("dim_reduce t b index=2");
    EXPECT_EQ(elements<double>("b"), (Reals{3, 4}));
    quietly("dim_reduce t t");
    EXPECT_EQ(elements<double>("t"), (Reals{1, 2}));
    EXPECT_EQ(run("dim_reduce t b"), said("arg1 must be 3-D in current implementation"));
    EXPECT_EQ(run("dim_reduce row b"), said("arg1 must be at least a 2-D array"));
    quietly("zero t t=2");
    EXPECT_EQ(run("dim_reduce t b index=3"), said("index is out of range"));
}

} // namespace
} // namespace quelor
