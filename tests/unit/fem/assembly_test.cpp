// Assembly and gathering with tied nodes and nodal constraints, against dense algebra.
#include "../support/session.hpp"

#include "fem/assembly.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <limits>
#include <random>
#include <vector>

namespace quelor {

namespace {

/// Four nodes of six degrees of freedom: node 1 free but for DOF 3, node 2 tied to node 1 in DOFs 4
/// to 6, node 3 a rigid link of node 1 at the distance (1, 2, 0), node 4 skew: u2 = -0.5 u1.
class Assembly : public Session {
protected:
    static constexpr int nodes = 4, dofs = 6 * nodes;

    Assembly() : Session({constraint_rows(), eqns_rows()}) {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
        new_nodes(fe_nodes, nodes);
        NodeSet set = open_nodes(fe_nodes);
        set.define(1, {1, 1, 1});
        set.define(2, {1, 1, 1});
        set.define(3, {2, 3, 1});
        set.define(4, {5, 0, 0});
        create_int_scalar(num_nodes, nodes);
        const auto codes = create_matrix<std::int32_t>(bcid, 6, nodes);
        codes(3, 1) = 1;
        for (int d = 4; d <= 6; ++d)
            codes(d, 2) = -1;
        run("nodal_constraint", "type=body c=3 r=1\n"
                                "type=general c=4 cdof=2 r=4 rdof=1 factor=-0.5\n\n");
        run("num_eqs");
        equations = open_equations();
        element_equations(equations, std::array{1, 2, 3, 4}, all_six, list);
        form_transformation();
    }

    /// The matrix of u(all DOFs) = L q(equations), from the kinematics and not from the arrays.
    void form_transformation() {
        const auto own = [&](int row, int node, int d, double f) {
            const int e = equations.of_node(d, node);
            if (e > 0) L[static_cast<std::size_t>(row)][static_cast<std::size_t>(e - 1)] += f;
        };
        for (int d = 1; d <= 6; ++d) {
            own(d - 1, 1, d, 1);
            own(6 + d - 1, d < 4 ? 2 : 1, d, 1);
            own(12 + d - 1, 1, d, 1);
            if (d != 2) own(18 + d - 1, 4, d, 1);
        }
        // u(3) = u(1) + w(1) x (1, 2, 0)
        own(12, 1, 6, -2);
        own(13, 1, 6, 1);
        own(14, 1, 4, 2);
        own(14, 1, 5, -1);
        own(19, 4, 1, -0.5);
    }
    double l(int row, int e) const {
        return L[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(e - 1)];
    }
    static std::vector<double> random(std::size_t n) {
        static std::mt19937 generator(7);
        std::uniform_real_distribution<double> value(-1, 1);
        std::vector<double> all(n);
        for (double& x : all)
            x = value(generator);
        return all;
    }
    /// A symmetric matrix over all DOFs.
    static std::vector<double> random_symmetric() {
        std::vector<double> k = random(dofs * dofs);
        const Matrix<double> K{k.data(), dofs, dofs};
        for (int i = 1; i <= dofs; ++i)
            for (int j = 1; j < i; ++j)
                K(i, j) = K(j, i);
        return k;
    }
    /// (L^T K L)(e, f)
    double reduced(Matrix<const double> K, int e, int f) const {
        double sum = 0;
        for (int i = 1; i <= dofs; ++i)
            for (int j = 1; j <= dofs; ++j)
                sum += l(i, e) * K(i, j) * l(j, f);
        return sum;
    }

    Equations equations;
    std::array<std::int32_t, dofs> list{};
    std::array<std::array<double, dofs>, dofs> L{};
};

constexpr double rounding = 1e-13; // of sums of some hundred products below 10

} // namespace

TEST_F(Assembly, of_a_matrix_is_the_product_with_the_kinematic_transformation) {
    const int size = 13 * 14 / 2; // the one element joins all equations
    create_matrix<std::int32_t>(k_colhite, 13, 0);
    ColumnHeights heights = open_column_heights(equations);
    add_column_heights(heights, list);
    for (int j = 0; j < 13; ++j)
        EXPECT_EQ(heights.heights[static_cast<std::size_t>(j)], j);
    const auto loc = create_matrix<std::int32_t>(kdiag_loc, 14, 0);
    for (int j = 1; j <= 14; ++j)
        loc(j) = 1 + j * (j - 1) / 2;
    const auto values = create_matrix<double>(kstr, size, 0);
    const auto k = random_symmetric();
    const Matrix<const double> K{k.data(), dofs, dofs};
    GlobalMatrix stiffness = open_stiffness(equations);
    add_stiffness(stiffness, list, K);
    for (int j = 1; j <= 13; ++j)
        for (int i = 1; i <= j; ++i)
            EXPECT_NEAR(values(loc(j) + j - i), reduced(K, i, j), rounding) << i << ' ' << j;

    // A diagonal element matrix is the same as the full one.
    create_int_scalar(mstr_type, 0);
    const auto mass = create_matrix<double>(mstr, size, 0);
    const auto m = random(dofs);
    std::vector<double> full(dofs * dofs);
    for (std::size_t i = 0; i < dofs; ++i)
        full[i * (dofs + 1)] = m[i];
    GlobalMatrix global_mass = open_mass(equations);
    add_mass(global_mass, list, m);
    for (int j = 1; j <= 13; ++j)
        for (int i = 1; i <= j; ++i)
            EXPECT_NEAR(mass(loc(j) + j - i), reduced({full.data(), dofs, dofs}, i, j), rounding);
}

TEST_F(Assembly, onto_a_diagonal_vector_keeps_the_sum_of_the_entries) {
    create_int_scalar(cstr_type, 1);
    const auto values = create_matrix<double>(cstr, 13, 0);
    GlobalMatrix damping = open_damping(equations);
    const auto k = random_symmetric();
    const Matrix<const double> K{k.data(), dofs, dofs};
    add_damping(damping, list, K);
    double sum = 0, lumped = 0;
    for (int i = 1; i <= 13; ++i) {
        lumped += values(i);
        for (int j = 1; j <= 13; ++j)
            sum += reduced(K, i, j);
    }
    EXPECT_NEAR(lumped, sum, rounding * 13);
    EXPECT_NEAR(values(1) / values(2), reduced(K, 1, 1) / reduced(K, 2, 2), 1e-10);

    // A diagonal one gives the diagonal of L^T m L; no mass at all adds nothing.
    std::ranges::fill(values.all(), 0.0);
    const auto m = random(dofs);
    add_damping(damping, list, m);
    for (int e = 1; e <= 13; ++e) {
        double wanted = 0;
        for (int i = 1; i <= dofs; ++i)
            wanted += l(i, e) * m[static_cast<std::size_t>(i - 1)] * l(i, e);
        EXPECT_NEAR(values(e), wanted, rounding);
    }
    const double before = values(1);
    add_damping(damping, list, Matrix<const double>{std::vector<double>(576).data(), dofs, dofs});
    EXPECT_EQ(values(1), before);
}

TEST_F(Assembly, the_work_of_forces_is_the_same_before_and_after_the_constraints) {
    const auto total = create_matrix<double>(disp, 13, 2); // the first case counts
    const auto increment = create_matrix<double>(ddisp, 13, 0);
    const auto q = random(13), dq = random(13), f = random(dofs);
    std::ranges::copy(q, total.data);
    std::ranges::copy(dq, increment.data);
    create_matrix<double>(f_internal, 13, 0);
    const auto patterns = create_matrix<double>(load_pat, 13, 2);

    const Displacements displacements = open_displacements(equations);
    std::vector<double> u(dofs), x(dofs, 1.0), v(dofs);
    element_displacements(displacements, list, u);
    element_add_displacement(displacements, list, x);
    element_vector_by_equations(equations, q, list, v);
    for (int i = 1; i <= dofs; ++i) {
        double from_q = 0, from_dq = 0;
        for (int e = 1; e <= 13; ++e) {
            from_q += l(i, e) * q[static_cast<std::size_t>(e - 1)];
            from_dq += l(i, e) * dq[static_cast<std::size_t>(e - 1)];
        }
        const auto at = static_cast<std::size_t>(i - 1);
        EXPECT_NEAR(u[at], from_q + from_dq, rounding);
        EXPECT_NEAR(x[at], 1 + from_q + from_dq, rounding);
        EXPECT_NEAR(v[at], from_q, rounding);
    }

    GlobalVector forces = open_internal_force(equations);
    GlobalVector loads = open_load_patterns(equations);
    add_internal_force(forces, list, f);
    add_element_load(loads, 2, list, f);
    double element_work = 0, global_work = 0;
    for (std::size_t i = 0; i < dofs; ++i)
        element_work += f[i] * u[i];
    for (int e = 1; e <= 13; ++e) {
        const auto at = static_cast<std::size_t>(e - 1);
        global_work += forces.values(e) * (q[at] + dq[at]);
        EXPECT_EQ(patterns(e, 2), forces.values(e));
        EXPECT_EQ(patterns(e, 1), 0);
    }
    EXPECT_NEAR(element_work, global_work, rounding);
}

TEST_F(Assembly, a_number_out_of_range_never_reaches_memory) {
    create_matrix<double>(load_pat, 13, 1);
    create_matrix<double>(kstr, 13, 0);
    const auto loc = create_matrix<std::int32_t>(kdiag_loc, 14, 0);
    for (int j = 1; j <= 14; ++j)
        loc(j) = j;
    GlobalVector loads = open_load_patterns(equations);
    GlobalMatrix stiffness = open_stiffness(equations);
    const auto fails = [](auto action, const char* message) {
        EXPECT_EXIT((detach(), action()), testing::ExitedWithCode(0), message);
    };
    const std::array f{1.0};
    const std::array<double, 4> k{1, 1, 1, 1};
    for (const std::int32_t e : {14, -8, std::numeric_limits<std::int32_t>::min()})
        fails([&] { add_element_load(loads, 1, std::array{e}, f); },
              "Equation number not possible");
    for (const int pattern : {0, 2})
        fails([&] { add_element_load(loads, pattern, std::array{1}, f); },
              "out of load pattern range");
    fails(
        [&] {
            add_stiffness(stiffness, std::array{1, 2}, {k.data(), 2, 2});
        },
        "outside the profile");
    fails([&] { element_equations(equations, std::array{5}, all_six, list); }, "out of range");
    loc(3) = 2;
    fails([&] { open_stiffness(equations); }, "do not agree");
    delete_array(const_factor);
    fails(
        [&] {
            equations = open_equations();
            add_element_load(loads, 1, std::array{-1}, f);
        },
        "Constraint factor array not found");
}

// --- numbering ----------------------------------------------------------------------------------

TEST_F(Assembly, numbering_keeps_what_exists_unless_asked_anew) {
    const auto codes = as_matrix<std::int32_t>(find_array(bcid));
    codes(1, 1) = 1;
    EXPECT_EQ(run("num_eqs"), "");
    delete_array(kdiag_loc);
    EXPECT_NE(run("num_eqs").find("Number of equations      =        13"), std::string::npos);
    EXPECT_NE(run("num_eqs -#eqs").find("Number of equations      =        12"), std::string::npos);
    EXPECT_FALSE(array_exists(k_colhite));
    // Every DOF fixed: a message, and no array of size 0.
    for (std::int32_t& code : codes.all())
        code = 1;
    EXPECT_NE(run("num_eqs -#eqs").find("(.#eqs) < 1"), std::string::npos);
    EXPECT_FALSE(array_exists(kdiag_loc));
}

TEST_F(Assembly, numbering_follows_the_node_order) {
    std::ranges::copy(std::array{4, 2, 4}, create_matrix<std::int32_t>(node_eq_order, 3, 0).data);
    as_matrix<std::int32_t>(find_array(bcid))(1, 1) = -nodes; // tied to the last node
    run("num_eqs -#eqs");
    const auto eqs = as_matrix<std::int32_t>(find_array(node_eqs));
    EXPECT_EQ(eqs(1, 4), 1);
    EXPECT_EQ(eqs(1, 1), 1);
    EXPECT_EQ(eqs(1, 2), 6);
    EXPECT_EQ(get_int(num_eqs), 8);
    EXPECT_EXIT((detach(), check_numbering()), testing::ExitedWithCode(0),
                "DOFs for node 1 have not been numbered");
}

} // namespace quelor
