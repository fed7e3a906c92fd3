// Nonlinear static solution of small models against their closed forms.
#include "../support/session.hpp"

#include "fem/formkm.hpp"
#include "fem/pdisp.hpp"
#include "kernel/project.hpp"
#include "solvers/nsolve.hpp"

#include <cmath>
#include <numbers>

namespace quelor {

namespace {

class Nsolve : public Session {
protected:
    Nsolve() {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
    }
    void expect_fatal(const std::string& lines, const char* message) {
        const auto fails = [&] {
            detach();
            give_input(lines + "\n");
            obey();
        };
        std::filesystem::remove("job.db");
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), message);
        EXPECT_TRUE(std::filesystem::exists("job.db"));
    }
    static Matrix<double> matrix(std::string_view name) {
        return as_matrix<double>(find_array(name));
    }
};

// Two bars of half span 10 and rise 1, EA = 1e5, a unit load downward at the crown.
const std::string shallow_truss =
    "nodes #=3\nn=1\nn=2 x=10 z=1\nn=3 x=20\n\n"
    "bcid r=1,1,1,1,1,1\nn=2 r=0,1,0,1,1,1\n\n"
    "ntruss m=1 n=2\nm=1 e=1e5 a=1\nn=1 nodes=1,2 mat=1 gen=1 inc=1\n\n"
    "nodef\nn=2 p=1 f=0,0,-1\n\nform_k\n";
/// The load at a deflection w: P = 2 EA (h - w) (1/L - 1/Lo).
double truss_load(double w) {
    return 2e5 * (1 - w) * (1 / std::hypot(10, 1 - w) - 1 / std::hypot(10, 1));
}

bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

// Over both limit points and the unloaded snap-through position to the stable branch beyond. The
// unbalance, below 1e-9, is the error of the load.
TEST_F(Nsolve, displacement_control_follows_a_shallow_truss_through_its_limit_points) {
    for (const char* k : {"k=-1", "k=-2", "k=2"}) {
        db_clear();
        type(shallow_truss + "disp_cntl\nn=2 dof=3 f=-1\n\n");
        type("nsolve steps=13 tol=1e-9,1e-9 maxit=40 control=1 gdisp=0.17 " + std::string(k));
        const auto history = matrix(dispcntl_history), u = matrix(disp_history);
        ASSERT_EQ(history.cols, 13) << k;
        double highest = 0, lowest = 0;
        for (int step = 1; step <= 13; ++step) {
            const double w = 0.17 * step;
            EXPECT_NEAR(history(4, step), truss_load(w), 1e-8) << k << " step " << step;
            EXPECT_NEAR(history(3, step), w, 1e-12);
            EXPECT_NEAR(u(4, step), -w, 1e-12);
            EXPECT_EQ(u(2, step), step);
            highest = std::max(highest, history(4, step));
            lowest = std::min(lowest, history(4, step));
        }
        EXPECT_GT(highest, 35) << "no limit point was passed";
        EXPECT_LT(lowest, -35);
        EXPECT_GT(history(4, 13), 0);
        EXPECT_NEAR(matrix(f_total)(2), -history(4, 13), 1e-8);
        EXPECT_FALSE(find_array(ddisp));
    }
}

TEST_F(Nsolve, load_steps_add_up_and_a_second_run_goes_on) {
    type(shallow_truss);
    type("input load_comb r=1 c=1\n8\nnsolve steps=2 tol=1e-9,1e-9 maxit=20 k=-1 state=1");
    const std::string screen = type("nsolve steps=2 tol=1e-9,1e-9 maxit=99 k=0");
    const auto history = matrix(disp_history);
    ASSERT_EQ(history.cols, 4);
    for (int j = 1; j <= 4; ++j) {
        EXPECT_EQ(history(1, j), (j + 1) / 2);
        EXPECT_NEAR(truss_load(-history(4, j)), 8 * j, 1e-8);
    }
    // Newton's method reforms in every iteration but the first of a step, k=0 once in the run.
    EXPECT_TRUE(holds(screen, "Stiffness reformed"));
    EXPECT_EQ(screen.find("Stiffness reformed"), screen.rfind("Stiffness reformed"));
    EXPECT_TRUE(holds(screen, "Load Increment    2 Step    2 Iteration"));
    EXPECT_TRUE(holds(type("pndisp n=2"), "    1    1    0.000E+00"));
}

// The first increment would be about 8/197 = 0.04: four steps of 0.01 at least are taken before it.
TEST_F(Nsolve, limited_increments_reach_the_same_end) {
    type(shallow_truss + "input load_comb r=1 c=1\n8\n");
    const std::string screen = type("nsolve steps=1 tol=1e-9,1e-9 maxit=20 k=-1 dlim=0.01,1");
    EXPECT_NEAR(truss_load(-matrix(disp)(2)), 8, 1e-8);
    EXPECT_TRUE(holds(screen, "Iteration    5"));
    EXPECT_TRUE(holds(screen, "Displ Ratio................ 2.5000E-01")); // 0.01/0.04
}

// Bent by an end moment EI 2 pi/L the beams close to a circle of chords: end and start meet, and
// the end has turned once. Halfway the end is a diameter 2 L/pi off; that of the chords is larger
// by (pi/40)^2/6 of it, 7e-4.
TEST_F(Nsolve, a_cantilever_rolls_up_into_a_circle) {
    type("nodes #=21\nn=1\nn=21 x=1 lgen=1\n\nbcid r=0,1,0,1,0,1\nn=1 r=1,1,1,1,1,1\n\n"
         "nbeam2d m=1 n=20 -xz\nm=1 e=1e4 a=1 i=1e-4\nn=1 nodes=1,2 mat=1 gen=19 inc=1\n\n");
    type("nodef\nn=21 p=1 f=0,0,0,0," + std::to_string(0.2 * std::numbers::pi) + "\n\nform_k\n");
    type("nsolve steps=10 tol=1e-6,1e-6 maxit=50 k=-1");
    const auto u = matrix(disp);
    ASSERT_EQ(u.rows, 60);
    EXPECT_NEAR(u(58), -1, 1e-3);
    EXPECT_NEAR(u(59), 0, 1e-3);
    EXPECT_NEAR(std::abs(u(60)), 2 * std::numbers::pi, 1e-3);
    EXPECT_NEAR(std::abs(matrix(disp_history)(2 + 59, 5)), 2 / std::numbers::pi, 1e-3);
}

TEST_F(Nsolve, bad_input_gives_its_message_and_leaves_the_displacements) {
    const std::string good = "nsolve steps=1 tol=1,1 maxit=9";
    create_int_scalar(".#eqs", 2);
    EXPECT_TRUE(holds(type(good), "Array .node_eqs not found. See command bcid."));
    db_clear();
    type(shallow_truss);
    EXPECT_TRUE(holds(type("nsolve"), "must be given and be above 0"));
    EXPECT_TRUE(holds(type(good + " control=1 gdisp=1"), ".disp_cntl_vec not found. See command"));
    EXPECT_TRUE(holds(type(good + " control=1"), "gdisp= must be given"));
    EXPECT_TRUE(holds(type(good + " control=7"), "control= must be 0 or 1"));
    EXPECT_TRUE(holds(type(good + " -morison"), "not available"));
    EXPECT_TRUE(holds(type("disp_cntl\n2 9 1\n2 2 1\n\n"), "Illegal DOF; data ignored"));
    EXPECT_FALSE(find_array(disp_cntl_vec));
    create_matrix<double>("load_comb", 2, 1);
    EXPECT_TRUE(holds(type(good), "load_comb are incompatible"));
    delete_array("load_comb");
    EXPECT_FALSE(find_array(disp));
    type("rm .kstr");
    EXPECT_TRUE(holds(type(good), ".kstr not found"));
}

TEST_F(Nsolve, what_does_not_converge_takes_the_fatal_path) {
    type(shallow_truss);
    expect_fatal("disp_cntl\nn=4 dof=1 f=1\n", "Node number out of range");
    expect_fatal("nsolve steps=1 tol=1e-9,1e-9 maxit=1", "NO CONVERGENCE: EXECUTION TERMINATED");
    // The sway of the crown does not take part in the symmetric deflection.
    expect_fatal("disp_cntl\n2 1 1\n\nnsolve steps=1 tol=1,1 maxit=9 control=1 gdisp=1",
                 "may be orthogonal to generalized displ");
}

} // namespace quelor
