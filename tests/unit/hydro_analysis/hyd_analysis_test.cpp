// The command hyd_analysis on a raft of one panel: what it refuses, and the memory it reckons with.
#include "tests/support/bodies.hpp"
#include "tests/unit/support/session.hpp"

#include "kernel/project.hpp"

namespace quelor {

namespace {

constexpr const char* raft = "hyd_parameters h=9 nmodef=1\nhyd_coordaxs\nhyd_wave\n0\n8\n"
                             "hyd_nodes #=4\n1 0 0 -1\n2 0 1 -1\n3 1 1 -1\n4 1 0 -1\n\n"
                             "hyd_panel n=1\n1 1 2 3 4\n\nhyd_rigid_modes\nhyd_flex_modes\n7\n\n";

class HydAnalysis : public Session {
protected:
    HydAnalysis() {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
    }
    static void expect_fatal(const std::string& lines, const std::string& message) {
        const auto fails = [&] {
            detach();
            give_input(lines + "\n");
            obey();
        };
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), message) << lines;
    }
};

} // namespace

TEST_F(HydAnalysis, values_changed_by_hand_are_refused_where_they_are_read) {
    type(std::string(raft) + "hyd_analysis\n");
    const std::string positive = "must be greater than 0", most = "2147483647";
    const std::string changes[][3] = {
        {"setr .hyd_depth v=-9", "hyd_analysis", ".hyd_depth holds -9.0000E.00; it " + positive},
        {"setr .hyd_depth v=nan", "hyd_wave_dispersion", positive},
        {"setr .hyd_grav v=nan", "hyd_analysis", ".hyd_grav holds"},
        {"setr .hyd_grav v=-1", "hyd_rigid_modes", ".hyd_grav holds"},
        {"setr .hyd_fluid_rho v=inf", "hyd_flex_modes\n7\n", ".hyd_fluid_rho holds"},
        {"setr .hyd_deep_water v=nan", "hyd_analysis", ".hyd_deep_water holds"},
        {"setr .hyd_gauge v=nan", "hyd_analysis", ".hyd_gauge does not hold a number"},
        {"zeroc .hyd_depth r=1 c=1", "hyd_analysis", ".hyd_depth is of the wrong type or size"},
        {"seti .hyd_nmoder v=" + most, "hyd_analysis", ".hyd_nmoder holds " + most},
        {"seti .hyd_nmodef v=46340", "hyd_genmodes", "numbers of modes .* are not valid"},
        {"seti .hyd_nmodef v=-1", "hyd_rmass", "it must be a number from 0 to 46340"},
        {"seti .hyd_nbodies v=" + most, "hyd_coordaxs", ".hyd_nbodies holds " + most},
        {"seti .hyd_nbodies v=" + most, "hyd_rigid_modes", ".hyd_nbodies holds " + most},
        {"seti .hyd_#nodes v=-1", "hyd_analysis", ".hyd_#nodes holds -1"},
        {"seti .hyd_#nodes v=" + most, "hyd_flex_modes", ".hyd_#nodes holds " + most},
        {"seti .hyd_#wetpanels v=-1", "hyd_body_check", ".hyd_#wetpanels holds -1"},
        {"seti .hyd_#panels v=-1", "hyd_body_check", ".hyd_#panels holds -1"},
        {"inputi .hyd_wave r=2\n1\n-1", "hyd_analysis", "headings and frequencies in .hyd_wave"},
        {"inputi .hyd_wave r=2\n1\n" + most, "hyd_analysis #added_freqs=1\n2", "in .hyd_wave"},
        {"inputi .hyd_wave r=3\n1\n1\n1", "hyd_analysis", ".hyd_wave is of the wrong type or size"},
        {"setr .hyd_freq v=nan\nto_vector .hyd_freq", "hyd_analysis", "frequency in .hyd_freq"},
        {"setr .hyd_beta v=nan\nto_vector .hyd_beta", "hyd_analysis", "heading in .hyd_beta"},
    };
    for (const auto& [change, command, message] : changes)
        expect_fatal(change + "\n" + command + "\n", message);
}

TEST_F(HydAnalysis, a_panel_below_the_sea_bottom_is_named_when_it_is_made_and_when_it_fails) {
    EXPECT_EQ(type(raft).find("sea bottom"), std::string::npos);
    EXPECT_NE(type("hyd_parameters h=.5 nmodef=1\nhyd_panel n=3\n3 1 2 3 4\n\n")
                  .find("WARNING: Panel     3 reaches below the sea bottom"),
              std::string::npos);
    expect_fatal("hyd_rigid_modes\nhyd_flex_modes\n7\n\nhyd_analysis\n",
                 "Panel     3 lies below the sea bottom, at a depth of     1.000 in     0.500 of "
                 "water\n *\n *Error in ggn;ier = 1");
}

TEST_F(HydAnalysis, potentials_are_announced_before_they_are_built_and_only_then) {
    const std::string announced = "Calculating velocity potential\n";
    const std::string output = type(std::string(raft) + "hyd_analysis\n");
    EXPECT_LT(output.find("Calculating diffraction potential"), output.find(announced));
    EXPECT_LT(output.find(announced), output.find("Summary of Analysis Times"));
    EXPECT_EQ(type("hyd_analysis -no_pot\n").find(announced), std::string::npos);
}

TEST_F(HydAnalysis, the_memory_reckoned_with_is_that_of_the_arrays_made) {
    for (const int symmetry : {0, 1, 2})
        for (const bool keep_potentials : {true, false}) {
            test::Body body = test::box(1.0, 0.6, 0.5, 3, symmetry);
            body.freq = {1.0, 2.0, 3.0};
            body.beta = {0.0, 0.5};
            db_clear();
            const Analysis analysis = create_analysis(body.model(9), keep_potentials);
            EXPECT_EQ(static_cast<double>(db_memory()),
                      analysis_array_bytes(analysis.model.size, keep_potentials));
        }
}

} // namespace quelor
