#include "matrix/matrix2.hpp"

#include "../support/arrays.hpp"
#include "kernel/utilities.hpp"
#include "matrix/matrix1.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace quelor {
namespace {

struct Matrix2 : ArraySession {
    Matrix2()
        : ArraySession({matrix2_copy_rows(), matrix2_shape_rows(), matrix2_select_rows(),
                        matrix1_input_rows(), matrix1_generate_rows(), matrix1_convert_rows()}) {}

    /// The line prints the message and leaves no array of the name "new".
    void refused(std::string_view line, const std::string& message) {
        EXPECT_EQ(run(line), said(message)) << line;
        EXPECT_FALSE(find_array("new")) << line;
    }
    /// An array whose elements are 1, 2, 3, ... in storage order.
    template <class T> static void count_up(std::string_view name, const Ints& shape) {
        create_array(type_code<T>, name, shape);
        T value{};
        for (T& element : as_span<T>(find_array(name)))
            element = value = static_cast<T>(value + T(1));
    }
};

TEST_F(Matrix2, TransposesEveryTypeAndSizeOfElement) {
    const auto check = [&]<class T>(T) {
        count_up<T>("a", {70, 45}); // more than one tile each way
        quietly("trans a b");
        const auto a = as_matrix<T>(find_array("a")), b = as_matrix<T>(find_array("b"));
        ASSERT_EQ(dims("b"), (Ints{45, 70}));
        for (int i = 1; i <= 70; ++i)
            for (int j = 1; j <= 45; ++j)
                ASSERT_EQ(a(i, j), b(j, i));
        quietly("trans b");
        EXPECT_EQ(elements<T>("b"), elements<T>("a"));
    };
    check(char{});
    check(std::int32_t{});
    check(double{});
    check(static_cast<long double>(0));
    count_up<double>("v", {3});
    quietly("trans v v");
    EXPECT_EQ(dims("v"), (Ints{1, 3}));
    EXPECT_EQ(elements<double>("v"), (Reals{1, 2, 3}));
}

TEST_F(Matrix2, JoinsSideBySideAndOnTop) {
    count_up<std::int32_t>("a", {2, 2});
    count_up<std::int32_t>("v", {2});
    quietly("joinh a v b");
    EXPECT_EQ(elements<std::int32_t>("b"), (Ints{1, 2, 3, 4, 1, 2}));
    quietly("trans v");
    quietly("joinv v a v");
    EXPECT_EQ(dims("v"), (Ints{3, 2}));
    EXPECT_EQ(elements<std::int32_t>("v"), (Ints{1, 1, 2, 2, 3, 4}));
    count_up<char>("s", {2});
    quietly("joinv s s s");
    EXPECT_EQ(dims("s"), Ints{4});
    EXPECT_EQ(elements<char>("s"), (std::vector<char>{1, 2, 1, 2}));
    refused("joinh a v new", "Dimensions are incompatible");
    refused("joinv a s new", "Incompatible types");
    refused("joinv a a", "Three arguments required");
    EXPECT_EQ(run("joinv a none new"), "      none not found\n");
}

TEST_F(Matrix2, SplitsAndWrapsThereAndBack) {
    count_up<double>("a", {10, 8});
    const Reals a = elements<double>("a");
    quietly("split a b c=4");
    EXPECT_EQ(dims("b"), (Ints{20, 4}));
    EXPECT_EQ(get_real_by_name("b", 11, 1), 41);
    quietly("unsplit b r=10");
    EXPECT_EQ(elements<double>("b"), a);
    quietly("split a b c=3");
    EXPECT_EQ(dims("b"), (Ints{30, 3}));
    const Reals split = elements<double>("b");
    EXPECT_EQ(std::count(split.begin(), split.end(), 0), 10);
    EXPECT_EQ(Reals(split.end() - 10, split.end()), Reals(10, 0))
        << "the last rows of the last column";
    quietly("wrap a b c=4");
    EXPECT_EQ(dims("b"), (Ints{20, 4}));
    EXPECT_EQ(get_real_by_name("b", 2, 1), 41) << "the second half of the first row";
    quietly("unwrap b b r=10");
    EXPECT_EQ(elements<double>("b"), a);
    quietly("wrap a b c=5");
    EXPECT_EQ(get_real_by_name("b", 4, 3), 72);
    EXPECT_EQ(get_real_by_name("b", 4, 4), 0);
    for (const char* line :
         {"split a b c=8", "unsplit a b r=99", "wrap a b c=9", "unwrap a b r=10"}) {
        quietly(line);
        EXPECT_EQ(dims("b"), (Ints{10, 8}));
        EXPECT_EQ(elements<double>("b"), a) << line;
    }
    EXPECT_EQ(run("unwrap a new r=3"), "     \n    Incorrect dimensions for unwrap\n");
    refused("split a new c=0", "Dimensions are incompatible");
}

TEST_F(Matrix2, CopiesArraysAndBlocks) {
    count_up<double>("t", {2, 3, 4});
    quietly("cp t b");
    EXPECT_EQ(dims("b"), (Ints{2, 3, 4}));
    quietly("copy b b");
    EXPECT_EQ(elements<double>("b"), elements<double>("t")) << "onto itself";
    quietly("cp t b r=2 c=2 table=3");
    EXPECT_EQ(dims("b"), (Ints{1, 2}));
    EXPECT_EQ(elements<double>("b"), (Reals{16, 18}));
    count_up<double>("v", {5});
    quietly("cp v v r=2 n=3");
    EXPECT_EQ(dims("v"), Ints{3});
    EXPECT_EQ(elements<double>("v"), (Reals{2, 3, 4}));
    refused("cp t new r=1", "Parameter table is out of range.\n      cp is quitting.");
    refused("cp t new table=5", "Parameter table is out of range.\n      cp is quitting.");
    for (const char* line : {"cp v new r=2 n=3", "cp v new r=0", "cp v new m=2", "cp v new n=-1",
                             "cp v new r=2147483647 n=2147483647"})
        refused(line, "Dimensions are incompatible");
    EXPECT_EQ(run("cp none new"), "     Copy failed\n");
    count_up<double>("four", {1, 1, 1, 2});
    quietly("cp four f");
    EXPECT_EQ(dims("f").size(), 4U);
    EXPECT_EQ(run("cp four new r=1"), "     \n    Array dimension > 3.\n      cp quitting.\n");
}

TEST_F(Matrix2, PutsBlocksAndDiagonals) {
    count_up<double>("a", {3, 4});
    quietly("cpdg a d r=2");
    EXPECT_EQ(dims("d"), Ints{2});
    EXPECT_EQ(elements<double>("d"), (Reals{5, 9}));
    quietly("zero z r=3 c=3");
    quietly("putdg d z r=2");
    EXPECT_EQ(elements<double>("z"), (Reals{0, 0, 0, 0, 5, 0, 0, 0, 9}));
    quietly("put d z r=2 c=1");
    EXPECT_EQ(elements<double>("z"), (Reals{0, 5, 9, 0, 5, 0, 0, 0, 9}));
    for (const char* line : {"put d z r=3", "put d z c=4", "put d z r=0", "putdg d z r=3",
                             "putdg a z", "put a z", "cpdg a new n=4", "cpdg a new r=-1"})
        refused(line, "Dimensions are incompatible");
    quietly("seti k v=1");
    refused("put k z", "Incompatible types");
    EXPECT_EQ(elements<double>("z"), (Reals{0, 5, 9, 0, 5, 0, 0, 0, 9})) << "nothing was changed";
}

TEST_F(Matrix2, PlanesOf3dArraysAreTakenAndPutBack) {
    count_up<double>("t", {2, 3, 4});
    const Reals before = elements<double>("t");
    quietly("array3d_slice t s r=2");
    EXPECT_EQ(dims("s"), (Ints{3, 4}));
    EXPECT_EQ(elements<double>("s")[4], 10) << "t(2,2,2)";
    for (const char* plane : {" r=2", " c=3", " t=4"}) {
        quietly(std::string("array3d_slice t s") + plane);
        quietly("zero t");
        quietly(std::string("array3d_unslice s t") + plane);
        const Reals after = elements<double>("t"), s = elements<double>("s");
        for (std::size_t i = 0; i < after.size(); ++i)
            EXPECT_TRUE(after[i] == 0 || after[i] == before[i]);
        EXPECT_EQ(std::reduce(after.begin(), after.end()), std::reduce(s.begin(), s.end()));
        count_up<double>("t", {2, 3, 4});
    }
    EXPECT_EQ(run("array3d_slice t new c=4"),
              "     \n    Invalid value for c.\n      Command quitting.\n");
    EXPECT_EQ(run("array3d_slice s new c=1"),
              "     \n    First argument must be a 3-D array.\n      Command quitting.\n");
    refused("array3d_unslice t t r=1", "Command failed: First argument must be a 2-D matrix");
    refused("array3d_unslice s s r=1", "Command failed: Second argument must be a 3-D array");
    refused("array3d_unslice s t r=1", "Command failed: Incompatible dimensions");
    refused("array3d_unslice s t t=5", "Command failed: Incompatible dimensions");
    refused("array3d_unslice s t", "Command failed: One of r, c, or t must be specified");
    quietly("array3d_slice t t t=1");
    EXPECT_EQ(elements<double>("t"), (Reals{1, 2, 3, 4, 5, 6}));
}

TEST_F(Matrix2, ExtractsRowsByAValue) {
    quietly("input a r=4 c=2", "1. 10.\n2. 20.\n2.005 30.\n3. 40.\n");
    const auto second_column = [&](const std::string& options) {
        quietly("extract a b " + options);
        const Reals b = elements<double>("b");
        return Reals(b.begin() + std::ssize(b) / 2, b.end());
    };
    EXPECT_EQ(second_column("c=1 v=2"), Reals{20});
    EXPECT_EQ(second_column("c=1 v=2 tol=0.01 -eq"), (Reals{20, 30}));
    EXPECT_EQ(second_column("col=1 value=2 -ge"), (Reals{20, 30, 40}));
    EXPECT_EQ(second_column("c=1 v=2 -gt tol=5"), (Reals{30, 40}));
    EXPECT_EQ(second_column("c=2 v=20 -le"), (Reals{10, 20}));
    EXPECT_EQ(second_column("c=2 v=20 -lt"), Reals{10});
    EXPECT_EQ(second_column("c=1 v=2 tol=0.01 -ne"), (Reals{10, 40}));
    quietly("inputc z c=3", "3 4, 0 5, 6 0\n");
    quietly("extract z zb c=1 v=0,5");
    EXPECT_EQ(elements<Complex8>("zb"), Complexes({{0, 5}}));
    quietly("extract z z c=1 v=0,5 -le");
    EXPECT_EQ(dims("z"), (Ints{2, 1})) << "a row counts as a column; by absolute value";
    EXPECT_EQ(run("extract a new c=1 v=7"), "     \n    No matches found in extract.\n");
    refused("extract a new c=3 v=1", "Invalid column number");
    refused("extract a new v=1", "Invalid column number");
    count_up<char>("s", {2});
    refused("extract s new c=1", "Not implemented for array type");
}

TEST_F(Matrix2, SortsRowsByUpToThreeColumns) {
    quietly("inputi k r=4 c=3", "2 1 1\n1 5 2\n2 0 3\n1 5 0\n");
    quietly("sort k s key=1,2,3");
    EXPECT_EQ(elements<std::int32_t>("s"), (Ints{1, 1, 2, 2, 5, 5, 0, 1, 0, 2, 3, 1}));
    quietly("sort k -reverse");
    EXPECT_EQ(elements<std::int32_t>("k"), (Ints{2, 2, 1, 1, 1, 0, 5, 5, 1, 3, 2, 0}))
        << "rows with equal keys stay in their order";
    quietly("input row c=4", "3 nan 1 2\n");
    quietly("sort row");
    EXPECT_EQ(dims("row"), (Ints{1, 4}));
    const Reals row = elements<double>("row");
    EXPECT_EQ(Reals(row.begin(), row.begin() + 3), (Reals{1, 2, 3}));
    EXPECT_TRUE(std::isnan(row[3]));
    for (const char* line : {"sort k key=4", "sort k key=0", "sort k key=1,-1"})
        refused(line, "Invalid sort key");
    quietly("zeroc z r=2");
    refused("sort z new", "Not implemented for array type");
}

TEST_F(Matrix2, InterpolatesATable) {
    quietly("series t x=0,3");
    quietly("input f r=4 c=2", "0 10\n2 20\n4 40\n6 80\n");
    quietly("input x r=5", "-1\n0.5\n2\n2.25\n4\n");
    quietly("interpolate t f x y");
    EXPECT_EQ(dims("y"), (Ints{5, 2}));
    EXPECT_EQ(elements<double>("y"), (Reals{0, 1, 4, 4.5, 6, 10, 15, 40, 50, 80}));
    quietly("to_complex f");
    quietly("interpolate t f x f prepad=0,1 postpad=0");
    const Complexes y = elements<Complex8>("f");
    EXPECT_EQ(Complexes(y.begin(), y.begin() + 5), (Complexes{{0, 1}, 1, 4, 4.5, 0}));
    quietly("input x r=1", "3\n");
    quietly("input f r=4", "0\n0\n1e17\n1\n");
    quietly("interpolate t f x y");
    EXPECT_EQ(elements<double>("y"), Reals{1}) << "the last value itself";
    quietly("to_complex f");
    const std::string quitting = "\n    Interpolate is quitting\n";
    EXPECT_EQ(run("interpolate t x x new"),
              "     \n    Size of tin and fin must be identical" + quitting);
    EXPECT_EQ(run("interpolate f f x new"), "     \n    Vector tin must be real" + quitting);
    EXPECT_EQ(run("interpolate t f f new"), "     \n    Vector tout must be real" + quitting);
    quietly("zeroi k r=4");
    EXPECT_EQ(run("interpolate t k x new"),
              "     \n    Vector fin must be real or complex" + quitting);
    EXPECT_EQ(run("interpolate t k x"), "     \n      Four arguments required" + quitting);
    EXPECT_FALSE(find_array("new"));
}

} // namespace
} // namespace quelor
