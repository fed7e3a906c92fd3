// Bad input to the commands of control, waves and modes: the message, and the database kept.
#include "../support/session.hpp"

#include "hydro_model/hyd_body_check.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/project.hpp"

namespace quelor {

namespace {

struct Fault {
    std::vector<std::string> before; ///< commands run first
    std::string command, records, message;
};

class HydFatal : public Session {
protected:
    HydFatal()
        : Session({hyd_input_rows(), hyd_wave_rows(), hyd_body_check_rows(), hyd_rigid_modes_rows(),
                   hyd_rmass_rows(), hyd_flex_modes_rows(), hyd_genmodes_rows()}) {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
    }
    /// One wet panel on four nodes.
    static void make_mesh() {
        create_int_scalar(hyd_num_nodes, 4);
        create_int_scalar(hyd_num_panels, 2);
        create_int_scalar(hyd_num_wetpanels, 1);
        create_matrix<double>(hyd_xyz, 3, 4);
        create_matrix<char>(hyd_node_active, 4, 0);
        create_matrix<std::int32_t>(hyd_panel_map, 2, 0)(2) = 1;
        create_matrix<std::int32_t>(hyd_panel_el, 4, 2);
        create_matrix<double>(hyd_xyzc, 1, 3);
        create_matrix<double>(hyd_paneln, 3, 1);
        create_matrix<double>(hyd_panela, 1, 0);
    }
    void expect_fatal(const Fault& fault) {
        const auto fails = [&] {
            detach();
            for (const auto& command : fault.before)
                run(command);
            give_input(fault.records + "\n");
            set_record(fault.command);
            const std::string word = get_command_word();
            find(word)->run(word);
        };
        std::filesystem::remove("job.db");
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), fault.message) << fault.command;
        EXPECT_TRUE(std::filesystem::exists("job.db")) << fault.command;
    }
};

} // namespace

TEST_F(HydFatal, control_input_out_of_range_stops_with_its_message) {
    const std::string start = "hyd_parameters h=9 nbodies=2";
    const Fault faults[] = {
        {{}, "hyd_parameters h=9 nmoder=0", "", "Number of modes cannot be zero"},
        {{}, "hyd_parameters h=9 nmodef=-1", "", "Number of modes cannot be negative"},
        {{}, "hyd_parameters h=9 nbodies=2147483647", "", "Too many modes"},
        {{}, "hyd_parameters kh=9", "", "A positive water depth must be given"},
        {{}, "hyd_parameters h=nan", "", "A positive water depth must be given"},
        {{}, "hyd_parameters h=9 grav=0", "", "grav and rho must be greater than 0"},
        {{}, "hyd_parameters h=9 gauge=nan", "", "gauge and hdamp must be numbers"},
        {{}, "hyd_coordaxs", "", ".hyd_nbodies not found"},
        {{start}, "hyd_coordaxs body=3", "", "Body number > number of bodies"},
        {{start}, "hyd_coordaxs xb=inf", "", "Coordinates and angles must be numbers"},
        {{start, "hyd_coordaxs"}, "hyd_coord_trans", "", "#nodes not found"},
        {{start}, "hyd_wave nbeta=1001", "", "Cannot input more than 1,000 frequencies or angles"},
        {{start}, "hyd_wave nfreq=-1", "", "At least one frequency and one angle"},
        {{start}, "hyd_wave", "nan\n1", "Wave angles must be numbers"},
        {{start}, "hyd_wave nfreq=2", "0\n5 0", "Periods and frequencies must be greater than 0"},
        {{start}, "hyd_wave", "0\ninf", "Program is shutting down"},
        {{start}, "hyd_wave", "0\n1e-320", "Program is shutting down"},
        {{}, "hyd_wave_dispersion", "", ".hyd_freq not found"},
    };
    for (const Fault& fault : faults)
        expect_fatal(fault);
}

TEST_F(HydFatal, mode_commands_stop_with_the_message_of_what_does_not_fit) {
    make_mesh();
    const std::string one = "hyd_parameters h=9 nmodef=1", axes = "hyd_coordaxs";
    const std::string port = "hyd_parameters h=9 nbodies=2 symmetry=1";
    const std::string quarter = "hyd_parameters h=9 nbodies=4 symmetry=2";
    const std::string rigid = "hyd_rigid_modes ";
    const Fault faults[] = {
        {{"hyd_parameters h=9 nmoder=5"}, rigid, "", "must be 6 \\* number of bodies"},
        {{one}, rigid, "", "coordaxs not found"},
        {{one, axes}, rigid + "body=2", "", "Illegal body number"},
        {{one, axes}, rigid + "nodes=1,5", "", "Illegal node range"},
        {{one, axes}, rigid + "panels=2,1", "", "Illegal panel range"},
        {{one, axes}, "hyd_body_check panels=0,1", "", "Illegal panel range"},
        {{one, axes}, "hyd_body_check body_sym=3", "", "body_sym should be 0, 1 or 2"},
        {{port, axes}, rigid + "reflected=2", "", "may not be specified"},
        {{port, axes}, rigid + "body_sym=0", "", "A reflected body number must be specified"},
        {{port, axes}, rigid + "body_sym=0 reflected=2,3", "", "Only one reflected body number"},
        {{port, axes}, rigid + "body_sym=0 reflected=3", "", "number out of range"},
        {{port, axes}, rigid + "body_sym=0 reflected=1", "", "number out of range"},
        {{quarter, axes}, rigid + "body_sym=0 reflected=2,3", "", "Three reflected body numbers"},
        {{quarter, axes}, rigid + "body_sym=0 reflected=2,3,3", "", "number out of range"},
        {{port, axes + " theta=90"}, rigid, "", "A rotated body-fixed coordinate system"},
        {{"hyd_parameters h=9 nmoder=0 nmodef=1"}, "hyd_rmass", "", "user-defined modes is zero"},
        {{one}, "hyd_rmass body=2", "", "Illegal body number"},
        {{one}, "hyd_rmass", "1 nan\n\n\n\n\n\n", "Masses must be numbers"},
        {{port}, "hyd_flex_modes", "", "Number of flexible modes must be > 0"},
        {{one}, "hyd_flex_modes", "", "Check if hyd_rigid_modes command was run."},
        {{one, axes, rigid}, "hyd_flex_modes", "6 0 0", "Mode number out of range"},
        {{one, axes, rigid}, "hyd_flex_modes", "7 2 0", "Symmetry of a mode should be 0 or 1"},
        {{one, axes, rigid}, "hyd_flex_modes", "7 0 0\n5 0 1", "Node number of a mode"},
        {{one, axes, rigid}, "hyd_flex_modes", "7 0 0\n1 nan", "displacements must be numbers"},
        {{one}, "hyd_genmodes", "", "hyd_psi not found"},
        {{port}, "hyd_genmodes 1=S/A", "", "Symmetry of mode 1 is missing or not valid"},
        {{port}, "hyd_genmodes 1=S", "", "Symmetry of mode 2 is missing or not valid"},
    };
    for (const Fault& fault : faults)
        expect_fatal(fault);
    create_matrix<double>("shapes", 3, 6);
    const Fault shapes{{one, axes, rigid}, "hyd_flex_modes shapes", "", ".node_eqs, not found"};
    expect_fatal(shapes);
    create_matrix<std::int32_t>(".node_eqs", 6, 4)(1, 1) = 1;
    create_int_scalar(".#eqs", 3);
    expect_fatal({shapes.before, shapes.command, "", "mode shapes has too few columns"});
    create_matrix<std::int32_t>(hyd_paneltype, 1, 0);
    for (const auto name : {hyd_xr, hyd_yr, hyd_zr})
        create_matrix<double>(name, 1, 4);
    expect_fatal(
        {{one, axes, rigid}, "hyd_flex_modes", "7 0 0\n\n", "Nodes of a panel out of range"});
    create_matrix<double>(hyd_psi, 6, 7);
    expect_fatal({{one}, "hyd_genmodes", "", "hyd_psi must be \\(nmode,nmode\\)"});
    create_matrix<double>(hyd_psi, 7, 7);
    create_matrix<double>(hyd_mstr, 6, 7);
    expect_fatal({{one}, "hyd_genmodes", "", "hyd_mstr must be \\(nmode,nmode\\)"});
    delete_array(hyd_mstr);
    expect_fatal({{one}, "hyd_genmodes", "", ".hyd_umx not found"});
}

TEST_F(HydFatal, panels_that_cannot_be_stop_with_their_message) {
    const std::string nodes = "hyd_parameters h=100\nhyd_nodes #=6\n1 0 0 -1\n2 1 0 -1\n"
                              "3 1 1 -1\n4 0 1 -1\n5 2 0 -1\n6 3 0 -1\n\n";
    const std::string panel = nodes + "hyd_panel n=2\n";
    const std::pair<std::string, const char*> faults[] = {
        {"hyd_parameters h=100\nhyd_panel n=5\n", "Nodal coordinates not found"},
        {panel, "There are no wet panels. This is not allowed."},
        {panel + "-1 1 2 3 4", "Panel out of range - PANEL"},
        {panel + "n=2 nodes=1,2,3,4 gen=1 inc=1,1", "Panel out of range - PANEL"},
        {panel + "n=1 nodes=1,2,3,4 gen_2d=1 inc_el=-2147483648", "Panel out of range - PANEL"},
        {panel + "1 1 2 3 4 1 1 -5", "Number of panels to generate is negative"},
        {panel + "n=1 nodes=1,2,3,4 gen=1 inc=2147483647,2147483647",
         "Nodes of HYD_PANEL number    2 out of range"},
        {panel + "1 1 2 5 6", "The area of HYD_PANEL number    1 is zero; it has no normal"},
        {nodes + "input .hyd_xyz r=3 c=6\n0 1 1 0 2 3\n0 0 nan 1 0 0\n-1 -1 -1 -1 -1 -1\n"
                 "hyd_panel n=1\n1 1 2 3 4",
         "A coordinate of HYD_PANEL number    1 is not a finite number"}};
    for (const auto& [lines, message] : faults) {
        const auto fails = [&] {
            detach();
            give_input(lines + "\n\n\n");
            obey();
        };
        std::filesystem::remove("job.db");
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), message) << lines;
        EXPECT_TRUE(std::filesystem::exists("job.db")) << lines;
    }
}

} // namespace quelor
