// The command `eigval` on matrices put into the store, and the pieces of the subspace iteration.
#include "../support/session.hpp"
#include "pencils.hpp"

#include "dynamics/eigval.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "kernel/project.hpp"

#include <numbers>

namespace quelor {

namespace {

class Eigval : public Session {
protected:
    Eigval() : Session({eigval_rows()}) {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
    }
    /// Tridiagonal matrices as the model's: c1, d1 on and off the diagonal of K, c2, d2 of M.
    static void make_chain(int n, double c1, double d1, double c2, double d2) {
        create_int_scalar(num_eqs, n);
        const auto loc = create_matrix<std::int32_t>(kdiag_loc, n + 1, 0);
        const auto k = create_matrix<double>(kstr, 2 * n - 1, 0);
        const auto m = create_matrix<double>(mstr, 2 * n - 1, 0);
        for (int j = 1, at = 1; j <= n; ++j) {
            loc(j) = at;
            k(at) = c1;
            m(at++) = c2;
            if (j > 1) {
                k(at) = d1;
                m(at++) = d2;
            }
            loc(j + 1) = at;
        }
    }
    /// A bar of unit properties and length fixed at both ends, n + 1 linear elements; its
    /// eigenvalues are 6/h^2 (1 - cos a)/(2 + cos a), a = i pi h.
    static void make_bar(int n) {
        const double h = 1.0 / (n + 1);
        make_chain(n, 2 / h, -1 / h, 4 * h / 6, h / 6);
    }
    static double bar_eigenvalue(int i, int n) {
        const double h = 1.0 / (n + 1), s = std::sin(i * std::numbers::pi * h / 2);
        return 12 * s * s / (h * h * (3 - 2 * s * s));
    }
    static void lump_mass(int n, double value) {
        std::ranges::fill(create_matrix<double>(mstr, n, 0).all(), value);
    }
    void expect_fatal(const char* command, const char* message) {
        const auto fails = [&] {
            detach();
            set_record(command);
            find("eigval")->run("eigval");
        };
        std::filesystem::remove("job.db");
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), message) << command;
        EXPECT_TRUE(std::filesystem::exists("job.db")) << command;
    }
};

bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

// Rounding: eps |K||x| over lambda |M||x|, 4e5 eps here, is below 1e-10 for the lowest mode. The
// tolerance of an eigenvalue leaves its root in the shape; a second run, two steps at least from
// the shapes of the first, takes that out.
TEST_F(Eigval, both_methods_give_the_modes_of_a_bar) {
    const int n = 300;
    for (const std::string options :
         {"", " #=10 digits=12 ss_size=60", " #=10 digits=12 ss_size=60 -random",
          " #=10 digits=12 ss_size=60 -disk"}) {
        make_bar(n);
        const auto stiffness = values_of(kstr);
        const std::string screen = run("eigval" + options);
        if (!options.empty()) {
            copy_array(mode_shapes, eigval_init);
            run("eigval -vec_init" + options);
        }
        const auto lambda = values_of(omega2);
        Owned phi = shapes_of_modes(), k = full_array(kstr), m = full_array(mstr);
        for (int i = 1; i <= phi.cols; ++i)
            EXPECT_NEAR(lambda[static_cast<std::size_t>(i - 1)] / bar_eigenvalue(i, n), 1, 1e-10)
                << options << i;
        EXPECT_EQ(phi.cols, options.empty() ? n : 10);
        EXPECT_LT(mass_error(m, phi), 1e-10) << options;
        EXPECT_LT(residual(k, m, phi, lambda), 1e-8) << options;
        EXPECT_EQ(values_of(kstr), stiffness) << options;
        EXPECT_EQ(holds(screen, "Subspace iteration  1"), phi.cols == 10);
    }
    EXPECT_FALSE(std::filesystem::exists("$ss_korig"));
    for (NamedArray a = db_next(""); !a.name.empty(); a = db_next(a.name))
        EXPECT_NE(a.name.front(), '$') << a.name;
}

// A ring without supports would not be a profile of two diagonals; a chain of springs free at both
// ends has one mode of eigenvalue 0, which a shift makes accessible and rounding may put below 0.
TEST_F(Eigval, a_shift_serves_free_structures_and_is_taken_off) {
    const int n = 60;
    for (const double shift : {0.01, -0.0005}) {
        make_chain(n, 2, -1, 0, 0);
        lump_mass(n, 1);
        if (shift > 0) as_span<double>(find_array(kstr))[0] = 1; // free ends
        if (shift > 0) as_span<double>(find_array(kstr))[static_cast<std::size_t>(2 * n - 3)] = 1;
        const auto before = values_of(kstr);
        run("eigval #=4 digits=12 shift=" + std::to_string(shift));
        const auto lambda = values_of(omega2);
        for (int i = 1; i <= 4; ++i) {
            const double s = shift > 0 ? std::sin((i - 1) * std::numbers::pi / (2 * n))
                                       : std::sin(i * std::numbers::pi / (2 * n + 2));
            EXPECT_NEAR(lambda[static_cast<std::size_t>(i - 1)], 4 * s * s, 1e-12) << i;
            EXPECT_GE(lambda[static_cast<std::size_t>(i - 1)], 0);
        }
        if (shift > 0)
            EXPECT_EQ(values_of(kstr)[0], before[0] + shift);
        else
            EXPECT_EQ(values_of(kstr), before);
    }
}

TEST_F(Eigval, the_number_of_modes_and_the_size_of_the_subspace_choose_the_method) {
    const std::pair<const char*, const char*> cases[] = {
        {"eigval #=15", "by Jacobi"},
        {"eigval #=2147483647", "by Jacobi"},
        {"eigval #=-1", "by Jacobi"},
        {"eigval #=3", "Dimension of subspace...................................    11"},
        {"eigval #=5 ss_size=1", "Dimension of subspace...................................     5"},
        {"eigval #=5 ss_size=900",
         "Dimension of subspace...................................    20"},
    };
    for (const auto& [command, text] : cases) {
        make_bar(20);
        EXPECT_TRUE(holds(run(command), text)) << command;
    }
}

TEST_F(Eigval, the_users_vectors_start_the_iteration) {
    make_bar(50);
    auto start = create_matrix<double>(eigval_init, 50, 2);
    for (int i = 1; i <= 50; ++i)
        for (int j = 1; j <= 2; ++j)
            start(i, j) = std::sin(i * j * std::numbers::pi / 51);
    // The exact shapes of the two modes: converged as soon as two steps can be compared.
    const std::string screen = run("eigval #=2 ss_size=4 -vec_init");
    EXPECT_TRUE(holds(screen, "Starting vectors in array vec_init will be used"));
    EXPECT_TRUE(holds(screen, "Subspace iteration  2"));
    EXPECT_FALSE(holds(screen, "Subspace iteration  3"));
}

TEST_F(Eigval, a_negative_seed_continues_the_series_which_begins_with_1) {
    std::vector<std::vector<double>> shapes_of;
    for (const char* seed : {"-1", "-1", "1"}) {
        make_bar(30);
        run(std::string("eigval #=2 digits=1 -random seed=") + seed);
        shapes_of.push_back(values_of(mode_shapes));
    }
    EXPECT_EQ(shapes_of[0], shapes_of[2]);
    EXPECT_NE(shapes_of[0], shapes_of[1]);
}

TEST_F(Eigval, bad_input_gives_its_message_and_changes_nothing) {
    make_bar(20);
    const auto k = values_of(kstr);
    EXPECT_TRUE(holds(run("eigval -sparse"), "Cannot use Jacobi with sparse stiffness"));
    std::filesystem::create_directory("$ss_kreduce"); // in the way of the file
    EXPECT_TRUE(holds(run("eigval #=2 -disk"), "cannot be kept on the disk"));
    EXPECT_FALSE(std::filesystem::exists("$ss_korig"));
    EXPECT_EQ(values_of(kstr), k);
    lump_mass(20, std::nan(""));
    EXPECT_TRUE(holds(run("eigval"), "not finite"));
    lump_mass(20, 1);
    create_int_scalar(k_status, 1);
    EXPECT_TRUE(holds(run("eigval"), "factored"));
    create_int_scalar(num_eqs, 2147483647);
    EXPECT_TRUE(holds(run("eigval"), "Incorrect dimensions"));
    delete_array(mstr);
    EXPECT_TRUE(holds(run("eigval"), ".mstr not found"));
    EXPECT_EQ(values_of(kstr), k);
}

TEST_F(Eigval, what_cannot_be_solved_takes_the_fatal_path) {
    make_bar(30);
    expect_fatal("eigval #=5 -vec_init", "/n/tArray eigval_init not found or is wrong type");
    create_matrix<double>(eigval_init, 3, 1);
    expect_fatal("eigval #=5 -vec_init", "does not have neq rows");
    lump_mass(30, 0);
    as_span<double>(find_array(mstr))[2] = 1;
    expect_fatal("eigval #=5", "Only    1 out of   13 starting vectors can be created");
    expect_fatal("eigval", "nonpositive diagonal");
    lump_mass(30, -1);
    expect_fatal("eigval #=5", "nonpositive diagonal");
    lump_mass(30, 1);
    as_span<double>(find_array(kstr))[2] = 0; // row 2 of K without a diagonal and coupling
    as_span<double>(find_array(kstr))[1] = 0;
    as_span<double>(find_array(kstr))[4] = 0;
    expect_fatal("eigval #=5", "Zero diagonal");
}

} // namespace quelor
