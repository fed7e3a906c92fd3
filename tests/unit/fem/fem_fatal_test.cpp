// Bad input to the commands of loads, masses and constraints: the message, and the database kept.
#include "../support/session.hpp"

#include "fem/constraint.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/loads.hpp"
#include "fem/masses.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

namespace quelor {

namespace {

struct Fault {
    std::vector<std::string> before; ///< commands run first
    std::string command, records, message;
};

/// Nodes 1 to 4 on the x-axis, of which 3 is not defined; node 4 is tied to node 1.
class FemFatal : public Session {
protected:
    FemFatal()
        : Session({nodes_rows(), bcid_rows(), constraint_rows(), eqns_rows(), formkm_rows(),
                   loads_rows(), masses_rows()}) {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
        run("nodes #=5", "n=1\nn=2 x=2\nn=4 x=0\n\n");
        run("bcid", "n=2 r=0,0,1\nn=4 r=-1,-1,-1,-1,-1,-1\n\n");
        create_int_scalar("kept", 7);
    }
    void expect_fatal(const Fault& fault) {
        const auto fails = [&] {
            detach();
            for (const auto& command : fault.before)
                run(command, "\n");
            give_input(fault.records + "\n");
            set_record(fault.command);
            const std::string word = get_command_word();
            find(word)->run(word);
        };
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), fault.message)
            << fault.command << ": " << fault.records;
        std::error_code none;
        EXPECT_TRUE(std::filesystem::remove("job.db", none)) << fault.command;
    }
};

} // namespace

TEST_F(FemFatal, nodes_dofs_and_patterns_out_of_range) {
    const Fault faults[] = {
        {{}, "nodes #=3", "1e300 0 0 0\n", "Invalid node number"},
        {{}, "nodes", "n=6 x=2\n", "Node number out of range"},
        {{}, "nodes", "n=2 x=nan\n", "Coordinates of node 2 are not finite numbers"},
        {{}, "mass", "n=3 m=1\n", "Illegal assignment of mass to inactive node"},
        {{}, "mass", "n=-2147483648 m=1\n", "Illegal assignment of mass"},
        {{}, "mass", "n=1 m=nan\n", "not a finite number"},
        {{}, "dampers", "n=5 c=1\n", "Illegal assignment of damper to inactive node"},
        {{"num_eqs"},
         "initial_conditions v",
         "n=9 u=1\n",
         "Illegal assignment of initial condition"},
        {{"nodef"}, "imposed_displ", "n=3 dof=1 disp=1\n", "displacement to inactive node"},
        {{}, "nodef", "n=1 p=0 f=1\n", "Pattern number out of range"},
        {{}, "nodef", "1 1 inf\n", "Load is not a finite number"},
        {{}, "nodal_pressure", "n=1,5 pat=1 p=2\n", "Node number out of range"},
        {{}, "nodal_pressure", "n=all pat=-1 p=2\n", "Pattern number out of range"},
    };
    for (const Fault& fault : faults)
        expect_fatal(fault);
}

TEST_F(FemFatal, loads_on_nodes_that_do_not_exist_when_the_patterns_are_formed) {
    for (const int node : {-1, 5, 2147483647}) {
        run("nodef", "n=" + std::to_string(node) + " f=1\n\n");
        expect_fatal({{}, "form_k", "", "Node number out of range in .load_inp"});
    }
    run("nodef", "n=1 f=1\n\n");
    as_matrix<double>(find_array(load_inp))(2, 1) = -1;
    expect_fatal({{}, "form_k", "", "Pattern number out of range in .load_inp"});
    as_matrix<double>(find_array(load_inp))(2, 1) = 1e300;
    expect_fatal({{}, "form_k", "", "Pattern number out of range in .load_inp"});
}

TEST_F(FemFatal, constraints_that_cannot_be) {
    const Fault faults[] = {
        {{}, "nodal_constraint", "type=bodies c=1 r=2\n", "Constraint type not recognized"},
        {{}, "nodal_constraint", "type=body c=3 r=1\n", "Cannot constrain an undefined node"},
        {{}, "nodal_constraint", "type=body c=1\n", "number of nodes for constraint less than 2"},
        {{}, "nodal_constraint", "type=body c=1 r=3\n", "An undefined node cannot be used"},
        {{}, "nodal_constraint", "type=body c=4 r=1\n", "constrained node is restrained node"},
        {{}, "nodal_constraint maxnodes=3", "type=body c=1 r=2\n", "maxnodes must be at least 4"},
        {{},
         "nodal_constraint",
         "type=body c=1 r=2\ntype=body c=2 r=1\n",
         "master node is node with dependent DOF"},
        {{}, "nodal_constraint", "type=general c=1 cdof=7 r=2 rdof=1\n", "DOF of constraint"},
        {{}, "nodal_constraint", "type=general c=1 cdof=1 r=2 rdof=0\n", "DOF of constraint"},
        {{},
         "nodal_constraint maxnodes=2",
         "type=general c=1 cdof=1 r=2,2 rdof=1,2\n",
         "more nodes than maxnodes"},
    };
    for (const Fault& fault : faults)
        expect_fatal(fault);
    delete_array(bcid);
    expect_fatal({{}, "nodal_constraint", "", "Array .bcid not found; see command bcid"});
    expect_fatal({{}, "num_eqs", "", "Array .bcid not found; see command bcid"});
}

TEST_F(FemFatal, refills_without_a_matrix) {
    for (auto* const form : {form_stiffness, form_mass, form_damping}) {
        const auto fails = [&] {
            detach();
            create_int_scalar(num_eqs, 3);
            form(FormMode::linear);
        };
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), "str not found");
    }
}

TEST_F(FemFatal, constraints_of_an_earlier_command_stay_unless_made_anew) {
    EXPECT_NE(
        run("nodal_constraint maxnodes=1").find("maxnodes must be greater than or equal to 2"),
        std::string::npos);
    run("nodal_constraint", "type=body_trans c=2 r=1\n\n");
    run("nodal_constraint maxnodes=5", "type=general c=2 cdof=2 r=1 rdof=3 factor=4\n\n");
    const auto nodes = as_matrix<std::int32_t>(find_array(const_nodes));
    const auto dofs = as_matrix<std::int32_t>(find_array(const_dofs));
    const auto factor = as_matrix<double>(find_array(const_factor));
    // The new one, then that of DOF 1; DOF 3 of node 2 is fixed, so its link does not stay.
    EXPECT_EQ(nodes.rows, 5);
    EXPECT_EQ(nodes.cols, 2);
    EXPECT_EQ(dofs(1, 1), 2);
    EXPECT_EQ(factor(2, 1), 4);
    EXPECT_EQ(dofs(1, 2), 1);
    const auto codes = as_matrix<std::int32_t>(find_array(bcid));
    EXPECT_EQ(codes(1, 2), 2);
    EXPECT_EQ(codes(2, 2), 2);
    EXPECT_EQ(codes(3, 2), 1);
    link_rigidly(std::array{RigidLink{2, 1}});
    EXPECT_EQ(as_matrix<std::int32_t>(find_array(const_nodes)).cols, 6);
}

} // namespace quelor
