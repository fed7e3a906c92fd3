// Rigid body shapes: their motion, and what the command refuses.
#include "fem/nodes.hpp"
#include "fem/rigid_modes.hpp"
#include "tests/unit/support/session.hpp"

#include <algorithm>

using namespace quelor;

namespace {

class RigidModes : public Session {
protected:
    RigidModes() : Session({nodes_rows(), rigid_modes_rows()}) {
        run("nodes #=6", "1 0 0 0\n2 4 0 1\n3 1 3 -2\n5 -2 5 7\n\n");
    }
    /// Equations of the defined nodes in order, 6 a node; those of `fixed` (dof, node) left out.
    static void number(std::initializer_list<std::pair<int, int>> fixed = {}) {
        const auto eqs = create_matrix<std::int32_t>(node_eqs, 6, 6);
        std::int32_t count = 0;
        for (const int n : {1, 2, 3, 5})
            for (int dof = 1; dof <= 6; ++dof)
                if (std::ranges::find(fixed, std::pair(dof, n)) == fixed.end())
                    eqs(dof, n) = ++count;
        create_int_scalar(num_eqs, count);
    }
    static Matrix<const double> result(std::string_view name) {
        return as_matrix<const double>(find_array(name));
    }
};

Vec3 moved(Matrix<const double> u, Matrix<const std::int32_t> eqs, int mode, int node, int first) {
    return {u(eqs(first, node), mode), u(eqs(first + 1, node), mode),
            u(eqs(first + 2, node), mode)};
}

TEST_F(RigidModes, are_unit_translations_and_unit_rotations_about_the_centre) {
    number();
    run("rigid_modes psi cg=0.5,-1,2");
    const auto u = result("psi");
    ASSERT_EQ(u.rows, 24);
    ASSERT_EQ(u.cols, 6);
    const auto eqs = as_matrix<const std::int32_t>(find_array(node_eqs));
    const auto x = as_matrix<const double>(find_array(xyz));
    for (int mode = 1; mode <= 6; ++mode)
        for (const int n : {1, 2, 3, 5}) {
            Vec3 shift{}, turn{};
            (mode <= 3 ? shift : turn)[static_cast<std::size_t>((mode - 1) % 3)] = 1;
            const Vec3 r{x(1, n) - 0.5, x(2, n) + 1, x(3, n) - 2}; // without rounding
            EXPECT_EQ(moved(u, eqs, mode, n, 4), turn);
            EXPECT_EQ(moved(u, eqs, mode, n, 1),
                      add_scaled(shift, 1, cross_product(turn, r).vector));
        }
}

TEST_F(RigidModes, leave_out_what_has_no_equation_or_is_not_asked_for) {
    number({{2, 2}, {6, 3}});
    run("rigid_modes psi rigid=0,1,0,0,0,1 node_range=2,3");
    const auto u = result("psi");
    ASSERT_EQ(u.rows, 22);
    ASSERT_EQ(u.cols, 2);
    // Node 2 has the equations 7 (x), 8 to 11; node 3 has 12 to 16.
    for (int q = 1; q <= 22; ++q) {
        EXPECT_EQ(u(q, 1), q == 13 ? 1 : 0) << q;
        const double yaw = q == 11 ? 1 : q == 12 ? -3 : q == 13 ? 1 : 0;
        EXPECT_EQ(u(q, 2), yaw) << q;
    }
}

TEST_F(RigidModes, faults_leave_the_database_as_it_was) {
    create_int_scalar("psi", 7);
    EXPECT_NE(run("rigid_modes psi").find("Set .#eqs to the number"), std::string::npos);
    create_int_scalar(num_eqs, 24);
    EXPECT_NE(run("rigid_modes psi").find("Arrays .xyz and .node_eqs required"), std::string::npos);
    number();
    EXPECT_NE(run("rigid_modes").find("Name of matrix required"), std::string::npos);
    EXPECT_NE(run("rigid_modes psi rigid=0").find("create is 0"), std::string::npos);
    EXPECT_NE(run("rigid_modes psi node_range=3,2").find("out of sequence"), std::string::npos);
    EXPECT_TRUE(find_array("psi").is(type_integer));
    create_int_scalar(num_eqs, 5); // fewer than `.node_eqs` has: what does not fit is left out
    run("rigid_modes psi");
    EXPECT_EQ(result("psi").rows, 5);
}

} // namespace
