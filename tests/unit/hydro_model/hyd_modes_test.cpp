#include "../support/mesh_text.hpp"
#include "../support/session.hpp"

#include "fem/elemutil.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"

#include <numeric>
#include <random>

namespace quelor {

namespace {

std::vector<double> reals(std::string_view name) {
    const auto span = as_span<const double>(find_array(name));
    return {span.begin(), span.end()};
}
Matrix<double> matrix(std::string_view name) {
    return as_matrix<double>(find_array(name));
}

void expect_near(std::span<const double> a, std::span<const double> b, double tolerance) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        EXPECT_NEAR(a[i], b[i], tolerance) << i;
}

/// Values that are all different.
void fill_random(std::string_view name, int rows, int cols) {
    std::mt19937 generator(static_cast<unsigned>(name.size() * 7) +
                           static_cast<unsigned char>(name.back()));
    std::uniform_real_distribution<double> value(-1, 1);
    for (double& x : create_matrix<double>(name, rows, cols).all())
        x = value(generator);
}

constexpr Command panel_input[] = {{.words = {"hyd_panel"},
                                    .run =
                                        [](std::string_view) {
                                            hyd_panel_element({0, 0, 0});
                                        },
                                    .summary = "",
                                    .help = ""}};

class HydModes : public Session {
protected:
    HydModes()
        : Session({hyd_input_rows(), hyd_nodes_rows(), panel_input, hyd_rigid_modes_rows(),
                   hyd_rmass_rows(), hyd_flex_modes_rows(), hyd_genmodes_rows()}) {}

    void make_mesh(const MeshText& mesh) {
        const std::string nodes = std::to_string(4 * mesh.panel_count());
        run("hyd_nodes #=" + nodes, mesh.nodes());
        run("hyd_panel n=" + std::to_string(mesh.panel_count()), mesh.panels());
    }
    /// `.hyd_kf` of bodies meshed one after the other, without symmetry.
    std::vector<double> stiffness_of(const std::vector<Box>& boxes,
                                     const std::vector<std::string>& axes) {
        MeshText mesh;
        std::vector<int> last{0};
        for (const Box& box : boxes) {
            mesh.add(box);
            last.push_back(mesh.panel_count());
        }
        run("hyd_parameters h=50 nbodies=" + std::to_string(boxes.size()));
        for (std::size_t i = 0; i < axes.size(); ++i)
            run("hyd_coordaxs body=" + std::to_string(i + 1) + " " + axes[i]);
        make_mesh(mesh);
        for (std::size_t i = 0; i < boxes.size(); ++i)
            run("hyd_rigid_modes body=" + std::to_string(i + 1) +
                " panels=" + std::to_string(last[i] + 1) + "," + std::to_string(last[i + 1]) +
                " nodes=" + std::to_string(4 * last[i] + 1) + "," +
                std::to_string(4 * last[i + 1]));
        return reals(hyd_kf);
    }
    /// The same from the mesh of one body and the command that names its reflections.
    std::vector<double> reflected_stiffness(const MeshText& mesh, int symmetry,
                                            const std::vector<std::string>& axes,
                                            const std::string& command) {
        run("hyd_parameters h=50 symmetry=" + std::to_string(symmetry) +
            " nbodies=" + std::to_string(axes.size()));
        for (std::size_t i = 0; i < axes.size(); ++i)
            run("hyd_coordaxs body=" + std::to_string(i + 1) + " " + axes[i]);
        make_mesh(mesh);
        run(command);
        return reals(hyd_kf);
    }
};

} // namespace

TEST_F(HydModes, reflected_bodies_have_the_stiffness_of_bodies_with_a_mesh_of_their_own) {
    const double tolerance = 1e-12 * 1025 * 9.81 * 2e3; // of the largest entry
    const std::vector<std::string> four{"xb=9 yb=6 zcg=.5", "xb=-9 yb=-6 zcg=.1",
                                        "xb=9 yb=-6 zcg=.2", "xb=-9 yb=6 zcg=.3"};
    MeshText one;
    one.add({6, 11, 4, 9});
    expect_near(
        reflected_stiffness(one, 2, four, "hyd_rigid_modes body_sym=0 reflected=2,3,4"),
        stiffness_of({{6, 11, 4, 9}, {-11, -6, -9, -4}, {6, 11, -9, -4}, {-11, -6, 4, 9}}, four),
        tolerance);

    // Half of a body that the x-z plane cuts, reflected in the y-z plane.
    const std::vector<std::string> row{"xb=9 zb=-1", "xb=-9 zb=-1"};
    MeshText half;
    half.add({6, 11, 0, 4}, false, true);
    expect_near(reflected_stiffness(half, 2, row, "hyd_rigid_modes body_sym=1 reflected=2"),
                stiffness_of({{6, 11, -4, 4, 3, 4, 8}, {-11, -6, -4, 4, 3, 4, 8}}, row), tolerance);
}

// The centre of gravity at the origin of the body: no weight term.
TEST_F(HydModes, rigid_motion_given_as_flexible_modes_is_that_of_the_rigid_modes) {
    constexpr std::array parities{"0 1", "1 0", "0 0", "1 0", "0 1", "1 1"}; // odd: 1
    for (const int symmetry : {0, 1, 2}) {
        MeshText mesh;
        mesh.add({symmetry == 2 ? 0.0 : -8, 12, symmetry == 0 ? -4.0 : 0, 4, 3, 4, 8},
                 symmetry == 2, symmetry > 0);
        run("hyd_parameters h=50 nmodef=6 symmetry=" + std::to_string(symmetry));
        run("hyd_coordaxs zb=-1");
        make_mesh(mesh);
        run("hyd_rigid_modes");
        std::ostringstream records;
        for (std::size_t m = 0; m < 6; ++m) {
            records << m + 7 << ' ' << parities[m] << '\n';
            for (int n = 1; n <= 4 * mesh.panel_count(); ++n) {
                records << n;
                for (const auto name : nodal_mode_arrays)
                    records << ' ' << matrix(name)(n, static_cast<int>(m) + 1);
                records << '\n';
            }
            records << '\n';
        }
        run("hyd_flex_modes", records.str());
        const auto un = matrix(hyd_un), uz = matrix(hyd_uz), kf = matrix(hyd_kf);
        const auto code = as_matrix<std::int32_t>(find_array(hyd_modesym));
        for (int m = 1; m <= 6; ++m) {
            EXPECT_EQ(code(m + 6), code(m)) << m;
            for (int p = 1; p <= un.cols; ++p) {
                EXPECT_NEAR(un(m + 6, p), un(m, p), 1e-13);
                EXPECT_NEAR(uz(m + 6, p), uz(m, p), 1e-13);
            }
        }
        for (int i = 3; i <= 5; ++i)
            for (int j = 3; j <= 5; ++j) {
                EXPECT_NEAR(kf(i + 6, j + 6), kf(i, j), 1e-12 * kf(5, 5));
                EXPECT_NEAR(kf(i, j + 6), kf(i, j), 1e-12 * kf(5, 5));
                EXPECT_TRUE(code(i) == code(j) || kf(i + 6, j + 6) == 0);
            }
        const auto before = reals(hyd_kf); // and from the arrays as they are, without records
        kf(9, 9) = -1;
        run("hyd_flex_modes -noread");
        EXPECT_EQ(reals(hyd_kf), before);
    }
}

TEST_F(HydModes, mode_shapes_of_the_structure_skip_the_rigid_columns_and_follow_constraints) {
    MeshText mesh;
    mesh.add({-8, 12, -4, 4, 3, 1, 1, 1});
    run("hyd_parameters h=50 nmoder=0 nmodef=2");
    run("hyd_coordaxs");
    make_mesh(mesh);
    const int nn = 4 * mesh.panel_count();
    create_int_scalar(".#eqs", 3 * nn);
    const auto eqs = create_matrix<std::int32_t>(".node_eqs", 6, nn);
    for (int n = 1; n <= nn; ++n)
        for (int d = 1; d <= 3; ++d)
            eqs(d, n) = 3 * (n - 1) + d;
    eqs(3, 2) = -1; // follows z of node 1 and, doubled, x of node 3
    const std::int32_t masters[] = {2, 1, 3}, dofs[] = {3, 3, 1};
    const double factors[] = {1, 1, 2};
    std::ranges::copy(masters, create_matrix<std::int32_t>(".const_nodes", 3, 1).data);
    std::ranges::copy(dofs, create_matrix<std::int32_t>(".const_dofs", 3, 1).data);
    std::ranges::copy(factors, create_matrix<double>(".const_factor", 3, 1).data);
    fill_random("shapes", 3 * nn, 2);
    run("hyd_flex_modes shapes");
    const auto shapes = matrix("shapes");
    const auto umx = matrix(hyd_umx), umz = matrix(hyd_umz);
    for (int m = 1; m <= 2; ++m) {
        EXPECT_EQ(umx(4, m), shapes(10, m));
        EXPECT_EQ(umz(3, m), shapes(9, m));
        EXPECT_EQ(umz(2, m), shapes(3, m) + 2 * shapes(7, m));
        EXPECT_EQ(matrix(hyd_thx)(1, m), 0);
        // The first panel is the bottom, nodes 1 to 4, and the rotations are 0.
        const double mean = (umz(1, m) + umz(2, m) + umz(3, m) + umz(4, m)) / 4;
        EXPECT_NEAR(matrix(hyd_un)(m, 1), mean, 1e-15);
    }
    EXPECT_NE(run("hyd_flex_modes absent").find("Can't find mode shapes"), std::string::npos);
}

TEST_F(HydModes, generalised_coordinates_describe_the_same_motion) {
    constexpr int nmode = 5, np = 7, nn = 9;
    run("hyd_parameters h=50 symmetry=2 nmoder=3 nmodef=2");
    for (const auto name : {hyd_mstr, hyd_kstr, hyd_kf, hyd_psi})
        fill_random(name, nmode, nmode);
    for (const auto name : nodal_mode_arrays)
        fill_random(name, nn, nmode);
    fill_random(hyd_un, nmode, np);
    fill_random(hyd_uz, nmode, np);
    const auto mass = reals(hyd_mstr), kf = reals(hyd_kf), un = reals(hyd_un), thz = reals(hyd_thz);
    const auto text = run("hyd_genmodes 1=S/A 2=A/S 3=S/S 4=A/A 5=S/A");
    EXPECT_NE(text.find("    Transformed hyd_mstr\n"), std::string::npos);
    EXPECT_NE(text.find("hyd_cstr not found"), std::string::npos);

    const std::array<double, nmode> u{0.3, -1.2, 0.8, 0.5, -0.4};
    std::array<double, nmode> d{};
    const auto psi = matrix(hyd_psi);
    for (int i = 1; i <= nmode; ++i)
        for (int j = 1; j <= nmode; ++j)
            d[static_cast<std::size_t>(i - 1)] += psi(i, j) * u[static_cast<std::size_t>(j - 1)];
    const auto form = [](std::span<const double> a, const std::array<double, nmode>& v) {
        double sum = 0;
        for (std::size_t i = 0; i < nmode; ++i)
            for (std::size_t j = 0; j < nmode; ++j)
                sum += v[i] * a[i + nmode * j] * v[j];
        return sum;
    };
    EXPECT_NEAR(form(reals(hyd_mstr), u), form(mass, d), 1e-13);
    EXPECT_NEAR(form(reals(hyd_kf), u), form(kf, d), 1e-13);
    const auto new_un = reals(hyd_un), new_thz = reals(hyd_thz);
    const auto column = [&](const std::vector<double>& a, std::size_t p) {
        return a.begin() + static_cast<std::ptrdiff_t>(nmode * p);
    };
    for (std::size_t p = 0; p < np; ++p)
        EXPECT_NEAR(std::inner_product(u.begin(), u.end(), column(new_un, p), 0.0),
                    std::inner_product(d.begin(), d.end(), column(un, p), 0.0), 1e-14);
    for (std::size_t n = 0; n < nn; ++n) {
        double before = 0, after = 0;
        for (std::size_t j = 0; j < nmode; ++j) {
            before += thz[n + nn * j] * d[j];
            after += new_thz[n + nn * j] * u[j];
        }
        EXPECT_NEAR(after, before, 1e-14);
    }
    const auto codes = as_span<const std::int32_t>(find_array(hyd_modesym));
    EXPECT_EQ(std::vector(codes.begin(), codes.end()), (std::vector{1, 2, 3, 4, 1}));
    EXPECT_FALSE(array_exists("$tmp"));
}

} // namespace quelor
