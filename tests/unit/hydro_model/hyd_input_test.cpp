#include "../support/session.hpp"

#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <cmath>
#include <numbers>

namespace quelor {

namespace {

class HydInput : public Session {
protected:
    HydInput() : Session({hyd_input_rows(), hyd_wave_rows()}) {}
};

std::vector<double> frequencies() {
    const auto f = as_span<const double>(find_array(hyd_freq));
    return {f.begin(), f.end()};
}

using Vector3 = std::array<double, 3>;

/// Rotation by an angle in degrees about axis i.
Vector3 turned(const Vector3& v, std::size_t i, double degrees) {
    const double a = degrees * std::numbers::pi / 180;
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    Vector3 w = v;
    w[j] = std::cos(a) * v[j] - std::sin(a) * v[k];
    w[k] = std::sin(a) * v[j] + std::cos(a) * v[k];
    return w;
}

} // namespace

TEST_F(HydInput, a_second_coordaxs_replaces_a_column_and_leaves_the_other_bodies) {
    run("hyd_parameters h=100 nbodies=2");
    run("hyd_coordaxs origin=1,2,3 angles=4,5,6 xb=7 yb=8 zb=9 theta=10 zcg=11");
    run("hyd_coordaxs body=2 zcg=5");
    const BodyAxes first = hyd_body_axes(1);
    EXPECT_EQ(first.origin[2], 3);
    EXPECT_EQ(first.zcg, 11);
    run("hyd_coordaxs body=0"); // body below 1 is 1
    EXPECT_EQ(hyd_body_axes(1).zcg, 0);
    EXPECT_EQ(hyd_body_axes(2).zcg, 5);
}

TEST_F(HydInput, nodes_are_turned_about_the_turned_axes_and_then_shifted) {
    run("hyd_parameters h=100");
    run("hyd_coordaxs origin=10,20,30 angles=20,-35,70");
    create_int_scalar(hyd_num_nodes, 2);
    const auto xyz = create_matrix<double>(hyd_xyz, 3, 2);
    const Vector3 v{1, -2, 3};
    std::ranges::copy(v, xyz.col(1).begin());
    std::ranges::copy(v, xyz.col(2).begin());
    run("hyd_coord_trans nodes=2,2");
    // Rotations about carried axes: the last one acts on the vector first.
    const Vector3 w = turned(turned(turned(v, 2, 70), 1, -35), 0, 20);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_NEAR(xyz(i, 2), w[static_cast<std::size_t>(i - 1)] + 10 * i, 1e-14 * 30);
        EXPECT_EQ(xyz(i, 1), v[static_cast<std::size_t>(i - 1)]);
    }
}

TEST_F(HydInput, values_are_sorted_as_input_so_ascending_periods_are_descending_frequencies) {
    run("hyd_wave nfreq=2 nbeta=2", "0 90\n10 5\n");
    EXPECT_EQ(frequencies(), (std::vector{2 * std::numbers::pi / 5, 2 * std::numbers::pi / 10}));
    EXPECT_EQ(as_span<const double>(find_array(hyd_beta))[1], std::numbers::pi / 2);
    EXPECT_EQ(find_array(hyd_twnk).rows(), 2);
    run("hyd_wave nfreq=3 -freq", "0\n.5 2 .5\n");
    EXPECT_EQ(frequencies(), (std::vector{.5, .5, 2.}));
    run("hyd_wave nfreq=2 -freq -descending", "0\n1 2\n");
    EXPECT_EQ(frequencies(), (std::vector{2., 1.}));
    run("hyd_wave nfreq=1 -freq -period", "0\n4\n");
    EXPECT_EQ(frequencies(), (std::vector{std::numbers::pi / 2}));
}

TEST_F(HydInput, deleting_frequencies_shortens_every_result_and_a_mismatch_changes_nothing) {
    run("hyd_wave nfreq=4 -freq nbeta=1", "0\n1 2 3 4\n");
    const auto addm = create_array3<double>(".hyd_addm", 2, 2, 4);
    const auto cor = create_array3<Complex8>(".hyd_gencor", 3, 4, 2);
    const auto twnk = as_matrix<double>(find_array(hyd_twnk));
    for (int f = 1; f <= 4; ++f) {
        for (int i = 1; i <= 2; ++i) {
            addm(i, 2, f) = 100 * i + f;
            cor(3, f, i) = Complex8(100 * i + f, f);
            twnk(f, i) = 10 * i + f;
        }
    }
    for (const std::string listed : {"2 3.02", "2 2", "2"}) {
        const auto text = run("hyd_wave -delete -freq nfreq=2", listed + "\n");
        EXPECT_NE(text.find("Error in deleting frequencies"), std::string::npos) << listed;
        EXPECT_EQ(frequencies(), (std::vector{1., 2., 3., 4.}));
    }
    EXPECT_NE(run("hyd_wave -delete nfreq=4").find("Too many frequencies"), std::string::npos);
    EXPECT_EQ(run("hyd_wave -delete nfreq=0"), "");

    run("hyd_wave -delete -freq nfreq=2", "3.0002,1\n"); // 0.01 % off matches
    EXPECT_EQ(frequencies(), (std::vector{2., 4.}));
    EXPECT_EQ(as_span<const std::int32_t>(find_array(hyd_wave))[1], 2);
    EXPECT_EQ(as_matrix<double>(find_array(hyd_twnk))(2, 2), 24);
    const auto left = as_array3<double>(find_array(".hyd_addm"));
    EXPECT_EQ(left.n3, 2);
    EXPECT_EQ(left(1, 2, 1), 102);
    EXPECT_EQ(left(2, 2, 2), 204);
    const auto left_cor = as_array3<Complex8>(find_array(".hyd_gencor"));
    EXPECT_EQ(left_cor.n2, 2);
    EXPECT_EQ(left_cor(3, 2, 2), Complex8(204, 4));
    EXPECT_FALSE(array_exists("$compact_array"));
}

TEST_F(HydInput, a_new_wave_list_removes_results_and_their_files) {
    create_real_scalar(".hyd_potrad", 1);
    set_project_name("job");
    std::ofstream("job.res") << "old";
    std::ofstream("job.cor") << "kept";
    run("hyd_wave", "0\n5\n");
    EXPECT_FALSE(array_exists(".hyd_potrad"));
    EXPECT_FALSE(std::filesystem::exists("job.res"));
    EXPECT_TRUE(std::filesystem::exists("job.cor"));
}

} // namespace quelor
