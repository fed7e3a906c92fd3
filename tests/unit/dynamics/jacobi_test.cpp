// The generalised Jacobi method and the command `jacobi`.
#include "../support/session.hpp"
#include "pencils.hpp"

#include "dynamics/eigval_jacobi.hpp"
#include "dynamics/jacobif.hpp"
#include "kernel/project.hpp"

#include <limits>
#include <numbers>

namespace quelor {

namespace {

struct Modes {
    Owned phi;
    std::vector<double> lambda;
    JacobiResult result;
};
Modes solve(Owned k, Owned m, double tol = 1e-8, int maxit = 30) {
    const int n = k.rows;
    Modes modes{Owned(n, n), std::vector<double>(static_cast<std::size_t>(n)), {}};
    modes.result = jacobi_pencil(k.view(), m.view(), modes.phi.view(), modes.lambda, tol, maxit);
    return modes;
}

Owned matrix2(double a, double b, double c) {
    Owned m(2, 2);
    m.data = {a, b, b, c};
    return m;
}

} // namespace

// LAPACK's eigenvalues are good to n eps times the condition of M (below 1e4 here) relative to the
// largest one; the ratio of the extreme eigenvalues is below 1e4 too.
TEST(Jacobi, agrees_with_lapack_on_random_pencils) {
    std::mt19937 random(3);
    for (const int n : {1, 2, 5, 50, 200}) {
        Owned k = random_definite(n, random, 1), m = random_definite(n, random, 1);
        Modes modes = solve(k, m);
        const auto expected = lapack_eigenvalues(k, m);
        ASSERT_EQ(modes.result.status, JacobiStatus::converged) << n;
        ASSERT_EQ(expected.size(), modes.lambda.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(modes.lambda[i] / expected[i], 1, 1e-10) << n << " mode " << i;
        EXPECT_TRUE(std::ranges::is_sorted(modes.lambda));
        EXPECT_LT(mass_error(m, modes.phi), 1e-10) << n;
        EXPECT_LT(residual(k, m, modes.phi, modes.lambda), 1e-8) << n;
    }
}

// Chain of equal springs, fixed at one end, unit masses: lambda = 4 sin^2((2i - 1) pi/(4n + 2)).
// Scaling the matrices to the ends of the range of numbers changes nothing.
TEST(Jacobi, chain_of_springs_at_any_scale) {
    const int n = 12;
    for (const double scale : {1.0, 1e-200, 1e200}) {
        Owned k(n, n), m(n, n);
        for (int i = 1; i <= n; ++i) {
            k(i, i) = i < n ? 2 * scale : scale;
            if (i < n) k(i, i + 1) = k(i + 1, i) = -scale;
            m(i, i) = scale;
        }
        const Modes modes = solve(k, m);
        for (int i = 1; i <= n; ++i) {
            const double s = std::sin((2 * i - 1) * std::numbers::pi / (4 * n + 2));
            EXPECT_NEAR(modes.lambda[static_cast<std::size_t>(i - 1)], 4 * s * s, 1e-14);
        }
    }
}

TEST(Jacobi, bad_matrices_are_named) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto status = [](Owned k, Owned m) { return solve(k, m).result.status; };
    const Owned unit = matrix2(1, 0, 1);
    EXPECT_EQ(status(matrix2(1, 0, -1), unit), JacobiStatus::negative_stiffness);
    EXPECT_EQ(status(unit, matrix2(1, 0, 0)), JacobiStatus::nonpositive_mass);
    EXPECT_EQ(status(matrix2(1, nan, 1), unit), JacobiStatus::not_finite);
    EXPECT_EQ(status(unit, matrix2(1, 1, 1)), JacobiStatus::not_definite); // singular M
    // An indefinite K has a negative eigenvalue, for which the test of change never holds; the run
    // ends however many sweeps are allowed.
    const Modes modes = solve(matrix2(1, 2, 1), unit, 1e-8, 2000000000);
    EXPECT_EQ(modes.result.status, JacobiStatus::maximum_sweeps);
    EXPECT_NEAR(modes.lambda[0], -1, 1e-14);
}

class JacobiCommand : public Session {
protected:
    JacobiCommand() : Session({jacobi_rows()}) {}
    static void make(std::string_view name, const std::vector<double>& values, int rows, int cols) {
        std::ranges::copy(values, create_matrix<double>(name, rows, cols).data);
    }
};

TEST_F(JacobiCommand, results_may_take_the_names_of_the_matrices) {
    make("k", {3, 0, 0, 2}, 2, 2);
    make("m", {1, 0, 0, 8}, 2, 2);
    EXPECT_EQ(run("jacobi k m k m -freq"), "\n          1 Jacobi sweeps required\n\n");
    const auto phi = as_matrix<double>(find_array("k"));
    EXPECT_EQ(find_array("m").ndim(), 1);
    EXPECT_DOUBLE_EQ(as_span<double>(find_array("m"))[0], 0.5);
    EXPECT_DOUBLE_EQ(as_span<double>(find_array("m"))[1], std::sqrt(3.0));
    EXPECT_DOUBLE_EQ(phi(2, 1), 1 / std::sqrt(8.0));
    EXPECT_EQ(phi(1, 1), 0);
    EXPECT_TRUE(db_next("m").name.empty()) << "temporaries left";
}

TEST_F(JacobiCommand, wrong_arguments_give_their_message_and_change_nothing) {
    make("k", {3, 0, 0, 2}, 2, 2);
    make("row", {3, 0}, 1, 2);
    make("one", {3}, 1, 1);
    create_matrix<std::int32_t>("int", 2, 2);
    const std::pair<const char*, const char*> cases[] = {
        {"k k phi", "Four arguments required"}, {"row k phi l", "Matrix k not square"},
        {"k row phi l", "Matrix m not square"}, {"int k phi l", "Not implemented for this type"},
        {"k int phi l", "Incompatible types"},  {"k one phi l", "Dimensions are incompatible"},
        {"k none phi l", "none not found"}};
    for (const auto& [arguments, message] : cases)
        EXPECT_NE(run(std::string("jacobi ") + arguments).find(message), std::string::npos);
    EXPECT_FALSE(find_array("phi"));
    EXPECT_EQ(as_matrix<double>(find_array("k"))(1, 1), 3);
}

TEST_F(JacobiCommand, failure_takes_the_fatal_path) {
    testing::FLAGS_gtest_death_test_style = "fast";
    set_project_name("job");
    make("k", {3, 0, 0, 2}, 2, 2);
    make("m", {1, 0, 0, 0}, 2, 2);
    const auto fails = [&] {
        detach();
        set_record("jacobi k m phi l");
        find("jacobi")->run("jacobi");
    };
    EXPECT_EXIT(
        fails(), testing::ExitedWithCode(0),
        "Mass matrix has a nonpositive diagonal.*Jacobi reports an error; execution terminating");
    EXPECT_TRUE(std::filesystem::exists("job.db"));
}

} // namespace quelor
