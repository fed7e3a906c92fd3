// Displacements and velocities by node: the binary file, and the look-up through restraints and
// constraints.
#include "fem/nodal_values.hpp"
#include "fem/nodes.hpp"
#include "fem/pdisp.hpp"
#include "kernel/project.hpp"
#include "tests/unit/support/session.hpp"

#include <numeric>

using namespace quelor;

namespace {

/// Three nodes of 7 degrees of freedom. Node 1 is fixed, node 3 follows node 2 by the constraint
/// u1(3) = 2 u1(2) - u3(2) and has its last rotation on equation 8.
class NodalResults : public Session {
protected:
    NodalResults() : Session({nodes_rows(), bcid_rows(), pdisp_rows()}) {
        set_project_name("job");
        run("nodes #=3", "1\n2\n3\n\n");
        run("bcid #=7", "\n");
        const auto eqs = create_matrix<std::int32_t>(node_eqs, 7, 3);
        std::iota(eqs.col(2).begin(), eqs.col(2).end(), 1);
        eqs(1, 3) = -1;
        eqs(7, 3) = 8;
        create_matrix<std::int32_t>(const_nodes, 3, 1);
        create_matrix<std::int32_t>(const_dofs, 3, 1);
        create_matrix<double>(const_factor, 3, 1);
        set(const_nodes, {3, 2, 2});
        set(const_dofs, {1, 1, 3});
        const auto factor = as_matrix<double>(find_array(const_factor));
        factor(1) = 1;
        factor(2) = 2;
        factor(3) = -1;
    }
    static void set(std::string_view name, const std::vector<std::int32_t>& values) {
        std::ranges::copy(values, as_span<std::int32_t>(find_array(name)).begin());
    }
    /// u(i) = first + i - 1
    static void vector(std::string_view name, int n, double first) {
        const auto u = create_matrix<double>(name, n, 1).all();
        std::iota(u.begin(), u.end(), first);
    }
    /// Node number and 7 values of each record.
    static std::vector<std::vector<double>> file_records() {
        std::ifstream in("job.dis", std::ios::binary);
        std::vector<std::vector<double>> records;
        std::int32_t node = 0;
        double u = 0;
        while (in.read(reinterpret_cast<char*>(&node), sizeof node)) {
            records.push_back({static_cast<double>(node)});
            for (int i = 0; i < 7 && in.read(reinterpret_cast<char*>(&u), sizeof u); ++i)
                records.back().push_back(u);
        }
        return records;
    }
};

TEST_F(NodalResults, the_file_has_a_record_for_each_printed_node) {
    vector(".disp", 8, 10);
    const std::vector<double> one{1, 0, 0, 0, 0, 0, 0, 0}, two{2, 10, 11, 12, 13, 14, 15, 16},
        three{3, 20 - 12, 0, 0, 0, 0, 0, 17};
    run("pdisp -file");
    EXPECT_EQ(file_records(), (std::vector{one, two, three}));
    run("pdisp nodes=2,3 -file");
    EXPECT_EQ(file_records(), (std::vector{two, three}));
    set(bcid_print, {1, 0, 1});
    run("pdisp -file -append");
    EXPECT_EQ(file_records(), (std::vector{two, three, one, three}));
}

TEST_F(NodalResults, titles_and_rows_follow_the_number_of_degrees_of_freedom) {
    vector(".disp", 8, 10);
    EXPECT_EQ(
        run("pdisp nodes=3,3 -screen"),
        "\n                                  NODAL DISPLACEMENTS\n\n"
        " NODE        DOF  1      DOF  2      DOF  3      DOF  4      DOF  5      DOF  6      "
        "DOF  7\n\n"
        "    3     8.000E+00   0.000E+00   0.000E+00   0.000E+00   0.000E+00   0.000E+00   "
        "1.700E+01\n");
}

TEST_F(NodalResults, velocities_have_the_first_six_degrees_of_freedom) {
    std::vector<double> storage(12, -1);
    const Matrix<double> v{storage.data(), 2, 6};
    const std::int32_t nodes[] = {3, 2};
    EXPECT_FALSE(nodal_velocities(nodes, v));
    vector(th_vel, 8, 1);
    EXPECT_TRUE(nodal_velocities(nodes, v));
    EXPECT_EQ(storage, (std::vector<double>{-1, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6}));
    const std::int32_t none[] = {4};
    EXPECT_FALSE(nodal_velocities(none, v));
}

TEST_F(NodalResults, numbers_out_of_range_are_refused) {
    auto values = open_nodal_values();
    ASSERT_TRUE(values);
    EXPECT_TRUE(values->fit(8));
    EXPECT_FALSE(values->fit(7));
    set(const_dofs, {1, 1, 9});
    EXPECT_FALSE(values->fit(8));
    delete_array(const_nodes);
    EXPECT_FALSE(values->fit(8));
}

} // namespace
