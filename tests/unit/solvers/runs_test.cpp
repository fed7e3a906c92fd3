// Runs of the solvers that follow each other, and what they ask before they begin.
#include "../support/session.hpp"

#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "solvers/nsolve.hpp"

#include <cmath>

namespace quelor {

namespace {

struct SolverRuns : Session {};

/// Two bars of half span 10 and EA = 1e5 that meet at a height, a load of 8 downward there.
std::string two_bars(double height) {
    return "nodes #=3\nn=1\nn=2 x=10 z=" + std::to_string(height) +
           "\nn=3 x=20\n\nbcid r=1,1,1,1,1,1\nn=2 r=0,1,0,1,1,1\n\n"
           "ntruss m=1 n=2\nm=1 e=1e5 a=1\nn=1 nodes=1,2 mat=1 gen=1 inc=1\n\n"
           "nodef\nn=2 p=1 f=0,0,-8\n\nform_k\n";
}
bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

// Forces in balance are not enough: the displacements must have stopped, too.
TEST_F(SolverRuns, a_first_iteration_is_never_the_last) {
    type(two_bars(1));
    const std::string screen = type("nsolve steps=1 tol=1e9,0.5 maxit=9 k=-1");
    EXPECT_TRUE(holds(screen, "Iteration    2"));
    EXPECT_FALSE(holds(screen, "Iteration    3"));
}

TEST_F(SolverRuns, displacement_control_goes_on_from_the_load_that_was_reached) {
    type(two_bars(1));
    type("nsolve steps=2 tol=1e-9,1e-9 maxit=20 k=-1");
    type("disp_cntl\nn=2 dof=3 f=-1\n\n");
    type("nsolve steps=1 tol=1e-9,1e-9 maxit=20 k=-1 control=1 gdisp=0.05");
    const auto history = as_matrix<double>(find_array(dispcntl_history));
    const double left = 1 - history(3, 1); // of the height
    EXPECT_NEAR(8 * history(4, 1), 2e5 * left * (1 / std::hypot(10, left) - 1 / std::hypot(10, 1)),
                1e-8);
}

// An end moment turns a beam by M L / EI = 0.1 about any axis, in steps of 0.01 at most.
TEST_F(SolverRuns, the_limit_of_rotations_holds_about_each_axis) {
    for (const auto& [plane, axis, moment] : {std::tuple{"-xy", "x", "0,0,0,0,0,1"},
                                              {"-xz", "x", "0,0,0,0,1"},
                                              {"-yz", "y", "0,0,0,1"}}) {
        db_clear();
        type("nodes #=2\nn=1\nn=2 " + std::string(axis) +
             "=1\n\nbcid\nn=1 r=1,1,1,1,1,1\n\nnbeam2d m=1 n=1 " + plane +
             "\nm=1 e=100 a=1 i=0.1\nn=1 nodes=1,2 mat=1\n\nnodef\nn=2 f=" + moment +
             "\n\nform_k\ncheck_diag .kstr .kdiag_loc -noprint\n");
        const std::string screen = type("nsolve steps=1 tol=1e-6,1e-6 maxit=30 k=30 dlim=9,0.01");
        EXPECT_TRUE(holds(screen, "Iteration   10")) << plane;
    }
}

// The middle of two equal bars follows either end, one held and one moved, by half.
TEST_F(SolverRuns, an_imposed_displacement_leaves_no_coupling_behind) {
    for (const int moved : {1, 3}) {
        db_clear();
        type(
            "nodes #=3\nn=1\nn=3 x=2 lgen=1\n\nbcid r=0,1,1,1,1,1\nn=" + std::to_string(4 - moved) +
            " r=1,1,1,1,1,1\n\ntruss m=1 n=2\nm=1 e=9 a=1\nn=1 nodes=1,2 mat=1 gen=1 inc=1\n\n"
            "nodef\nn=2 f=0\n\nimposed_displ\nn=" +
            std::to_string(moved) + " dof=1 disp=0.5\n\nform_k\nlsolve\n");
        const auto u = as_span<double>(find_array(disp));
        EXPECT_DOUBLE_EQ(u[0] + u[1], 0.75) << moved;
    }
}

TEST_F(SolverRuns, the_generalised_displacement_follows_constraints) {
    type("nodes #=2\nn=1\nn=2 x=1\n\nbcid r=0,1,1,1,1,1\n\nnodal_constraint\n"
         "type=general c=2 cdof=1 r=1 rdof=1 factor=2.5\n\nnum_eqs\n"
         "disp_cntl\nn=2 dof=1 f=-3\nn=1 dof=1 f=1\n\n");
    EXPECT_EQ(as_span<double>(find_array(disp_cntl_vec))[0], 1 - 2.5 * 3);
}

TEST_F(SolverRuns, displacements_are_not_imposed_on_a_profile_that_does_not_fit_the_loads) {
    type(two_bars(1) + "imposed_displ\nn=2 dof=3 disp=1\n\n");
    std::ranges::copy(std::array{1, 2}, create_matrix<std::int32_t>(kdiag_loc, 2, 0).data);
    const double before = as_span<double>(find_array(kstr))[0];
    EXPECT_TRUE(holds(type("lsolve k=1"), "Dimensions of arrays not compatible"));
    EXPECT_EQ(as_span<double>(find_array(kstr))[0], before);
}

} // namespace quelor
