// The analysis as commands run it, on half of a box of one panel a side.
#include "../support/session.hpp"

#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "kernel/utilities.hpp"

#include <cmath>
#include <vector>

namespace quelor {

namespace {

class AnalysisCommand : public Session {
protected:
    /// One frequency of 1.5 rad/s at 60 degrees in a depth of 5: K h = 1.15, k h = 1.32.
    static void analyse(const std::string& parameters, const std::string& modes,
                        const std::string& options = {}) {
        db_clear();
        type("hyd_parameters h=5 symmetry=1 " + parameters +
             "\nhyd_coordaxs\nhyd_wave -freq\n60\n1.5\n"
             "hyd_nodes #=8\n1 -2\n2 -2 1\n3 -2 0 -1\n4 -2 1 -1\n5 2\n6 2 1\n7 2 0 -1\n8 2 1 -1\n\n"
             "hyd_panel n=4\n1 3 7 8 4\n2 4 8 6 2\n3 7 5 6 8\n4 3 4 2 1\n\n" +
             modes + "\nhyd_analysis " + options + "\n");
    }
    static std::vector<Complex8> potentials(std::string_view name) {
        const auto all = as_span<Complex8>(find_array(name));
        return {all.begin(), all.end()};
    }
};

} // namespace

TEST_F(AnalysisCommand, incoming_wave_is_that_of_deep_water_above_the_limit_of_k_h) {
    for (const bool deep : {false, true}) {
        analyse(deep ? "kh=1.2" : "kh=1.5", "hyd_rigid_modes");
        const double k = as_matrix<double>(find_array(hyd_twnk))(1, 2), grav = get_real(hyd_grav);
        EXPECT_NEAR(k * std::tanh(5 * k) * grav, 1.5 * 1.5, 1e-12);
        const double decay = deep ? std::exp(-k) : std::cosh(4 * k) / std::cosh(5 * k);
        EXPECT_NEAR(std::abs(potentials(hyd_potincm)[0]), grav / 1.5 * decay, 1e-12);
    }
}

// The waves that the body scatters do not know in which modes it moves.
TEST_F(AnalysisCommand, diffraction_needs_no_mode_in_a_class_of_symmetry) {
    analyse("", "hyd_rigid_modes");
    const auto all_classes = potentials(hyd_potdiff);
    std::string heave = "hyd_flex_modes\n1 0\n";
    for (int n = 1; n <= 8; ++n)
        heave += std::to_string(n) + " 0 0 1\n";
    analyse("nmoder=0 nmodef=1", heave);
    EXPECT_EQ(potentials(hyd_potdiff), all_classes);
    EXPECT_EQ(all_classes.size(), 8u);
}

// In exact arithmetic n iterations solve n equations, unsymmetric complex ones, too; what takes
// more ends the program.
TEST_F(AnalysisCommand, as_many_iterations_as_panels_give_the_direct_solution) {
    analyse("", "hyd_rigid_modes");
    const auto direct = potentials(hyd_fd);
    analyse("", "hyd_rigid_modes\nzeroc .hyd_iter_work r=4 c=9", "tol=1e-6");
    for (std::size_t i = 0; i < 6; ++i) // the matrices have single precision
        EXPECT_NEAR(std::abs(potentials(hyd_fd)[i] - direct[i]), 0, 1e-5 * std::abs(direct[2]));
}

} // namespace quelor
