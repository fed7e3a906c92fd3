// Potentials, pressures and displacements of a box, from the files that the commands write.
#include "../support/arrays.hpp"
#include "../support/files.hpp"
#include "../support/mesh_text.hpp"

#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/waven.hpp"
#include "kernel/project.hpp"

#include <cmath>
#include <cstring>
#include <map>
#include <numbers>
#include <sstream>

namespace quelor {
namespace {

constexpr double depth = 15, g = 9.80665, rho = 1025, degree = std::numbers::pi / 180;
constexpr std::array heading{35 * degree, 250 * degree};

/// A row of a panel table: where the panel is, the signs of its reflection, the complex values.
struct Row {
    double x, y, z, sx, sy;
    int number;
    Complexes values;
};

class PostResponse : public ArraySession {
protected:
    PostResponse() { set_project_name("job"); }

    /// A box 16 x 10 x 3 m, whole, half or a quarter, and its analysis and response.
    static void analyse(int symmetry, const std::string& periods) {
        MeshText mesh;
        mesh.add({symmetry == 2 ? 0.0 : -8.0, 8, symmetry == 0 ? -5.0 : 0.0, 5, 3,
                  symmetry == 2 ? 3 : 6, symmetry == 0 ? 4 : 2, 2},
                 symmetry == 2, symmetry != 0);
        const std::string panels = std::to_string(mesh.panel_count());
        const auto periods_given = std::ranges::count(periods, ' ') + 1;
        type("hyd_parameters h=15 symmetry=" + std::to_string(symmetry) +
             "\nhyd_coordaxs zcg=-1\nhyd_wave nbeta=2 nfreq=" + std::to_string(periods_given) +
             "\n35 250\n" + periods + "\nhyd_nodes #=" + std::to_string(4 * mesh.panel_count()) +
             "\n" + mesh.nodes() + "hyd_panel n=" + panels + "\n" + mesh.panels() +
             "hyd_rigid_modes\nhyd_rmass\n4e5 0 0 0 -4e5 0\n0 4e5 0 4e5 0 0\n0 0 4e5 0 0 0\n"
             "0 4e5 0 4e6 0 0\n-4e5 0 0 0 9e6 0\n0 0 0 0 0 9e6\nhyd_analysis\n"
             "hyd_analysis_response");
    }
    /// The rows of the tables of a file, one table after the other.
    static std::vector<Row> rows_of(const std::string& file) {
        const std::map<std::string, std::array<double, 2>> signs{{"   ", {1, 1}},
                                                                 {"R  ", {1, -1}},
                                                                 {"R2 ", {1, -1}},
                                                                 {"R3 ", {-1, 1}},
                                                                 {"R4 ", {-1, -1}}};
        const auto map = elements<std::int32_t>(hyd_panel_map);
        const auto c = as_matrix<const double>(find_array(hyd_xyzc));
        std::vector<Row> rows;
        std::ifstream lines(file);
        for (std::string line; std::getline(lines, line);) {
            if (line.size() < 10 || !signs.contains(line.substr(0, 3)) || !std::isdigit(line[8]))
                continue;
            const auto [sx, sy] = signs.at(line.substr(0, 3));
            std::istringstream numbers(line.substr(3));
            int e = 0;
            numbers >> e;
            const int p = map[nth(e)];
            Row row{sx * c(p, 1), sy * c(p, 2), c(p, 3), sx, sy, p, {}};
            for (double re = 0, im = 0; numbers >> re >> im;)
                row.values.emplace_back(re, im);
            rows.push_back(row);
        }
        return rows;
    }
    static std::vector<Row> rows_after(const std::string& command, const std::string& file) {
        type(command);
        return rows_of(file);
    }
    /// The same rows in the order of their places, table by table of `count` rows.
    static std::vector<Row> in_order(std::vector<Row> rows, std::ptrdiff_t count) {
        const auto place = [](const Row& r) {
            return std::array{std::lround(1e6 * r.x), std::lround(1e6 * r.y),
                              std::lround(1e6 * r.z)};
        };
        for (auto at = rows.begin(); at != rows.end(); at += count)
            std::ranges::sort(at, at + count, {}, place);
        return rows;
    }
    static constexpr std::ptrdiff_t whole = 2 * 2 * (6 + 4) + 6 * 4; ///< panels of the whole box

    /// The generalised coordinates of frequency f and heading b, from 0, of nfreq frequencies.
    static Complexes coordinates(std::size_t f, std::size_t b, std::size_t nfreq) {
        const auto q = elements<Complex8>(hyd_gencor);
        const auto first = q.begin() + static_cast<std::ptrdiff_t>(6 * (f + nfreq * b));
        return {first, first + 6};
    }
    /// Motion of the point (x, y, z).
    static std::array<Complex8, 3> motion(std::span<const Complex8> q, double x, double y,
                                          double z) {
        return {q[0] + q[4] * z - q[5] * y, q[1] + q[5] * x - q[3] * z, q[2] + q[3] * y - q[4] * x};
    }
};

double largest(const std::vector<Row>& rows, std::size_t column) {
    double most = 0;
    for (const Row& row : rows)
        if (column < row.values.size()) most = std::max(most, std::abs(row.values[column]));
    return most;
}

TEST_F(PostResponse, full_half_and_quarter_meshes_agree_at_every_place) {
    // One mesh, reflected: the single precision of the panel equations is all that differs, and a
    // unit of the fifth digit in files that have no more.
    std::map<std::string, std::vector<Row>> expected;
    for (const int symmetry : {0, 1, 2}) {
        db_clear();
        analyse(symmetry, "6");
        type("hyd_postresponse -pressure -potential\nhyd_modal_pressure digits=9");
        for (const std::string file : {"job.prs", "job.pot", "job.hpr", "job.prs2"}) {
            const auto rows = in_order(rows_of(file), whole);
            const double tolerance = file == "job.prs2" ? 1e-5 : 1e-4;
            if (symmetry == 0) expected[file] = rows;
            const auto& full = expected[file];
            ASSERT_EQ(rows.size(), full.size()) << file;
            for (std::size_t i = 0; i < rows.size(); ++i) {
                EXPECT_NEAR(std::hypot(rows[i].x - full[i].x, rows[i].y - full[i].y), 0, 1e-9);
                ASSERT_EQ(rows[i].values.size(), full[i].values.size());
                for (std::size_t j = 0; j < rows[i].values.size(); ++j)
                    EXPECT_LT(std::abs(rows[i].values[j] - full[i].values[j]),
                              tolerance * largest(full, j))
                        << file << symmetry << i;
            }
        }
    }
}

TEST_F(PostResponse, forces_from_the_stored_pressures_are_those_of_the_analysis) {
    // 17 digits give the doubles back; sums of 64 to 256 terms in another order. The normals of
    // surge, sway and heave reflect as vectors do.
    for (const int symmetry : {0, 1, 2}) {
        db_clear();
        analyse(symmetry, "5");
        const auto rows = rows_after("hyd_modal_pressure digits=17", "job.prs2");
        const auto area = elements<double>(hyd_panela), A = elements<double>(hyd_addm),
                   B = elements<double>(hyd_damp);
        const auto un = as_matrix<const double>(find_array(hyd_un));
        const auto fi = elements<Complex8>(hyd_fi), fd = elements<Complex8>(hyd_fd);
        const double omega = 2 * std::numbers::pi / 5;
        for (std::size_t i = 0; i < 3; ++i) {
            Complexes force(8); // of the waves, and of the motion in each mode
            for (std::size_t r = 0; r < rows.size(); ++r) {
                const auto& row = rows[r];
                const double n = un(static_cast<int>(i) + 1, row.number) *
                                 (i == 0   ? row.sx
                                  : i == 1 ? row.sy
                                           : 1.0) *
                                 area[nth(row.number)];
                for (std::size_t j = 0; j < row.values.size(); ++j)
                    force[r < as_size(whole) ? j : j + 2] += n * row.values[j];
            }
            for (const std::size_t b : {i, i + 6}) // two headings
                EXPECT_LT(std::abs(force[b / 6] - (fi[b] + fd[b])), 1e-12 * std::abs(fi[2] + fd[2]))
                    << symmetry << i;
            for (std::size_t j = 0; j < 6; ++j) {
                const std::size_t ij = i + 6 * j;
                EXPECT_LT(std::abs(force[j + 2] - Complex8(omega * omega * A[ij], -omega * B[ij])),
                          1e-12 * omega * omega * A[7 * j] + 1e-9)
                    << symmetry << i << j;
            }
        }
    }
}

TEST_F(PostResponse, on_a_body_held_fixed_long_waves_press_as_if_it_were_not_there) {
    // The diffracted part is of order k times the size of the body.
    analyse(1, "20 40");
    const auto rows = rows_after("hyd_modal_pressure digits=12", "job.prs2");
    std::array<double, 2> error{};
    for (std::size_t f = 0; f < 2; ++f) {
        const double omega = elements<double>(hyd_freq)[f], k = waven(omega, depth, g).k;
        for (std::size_t r = 0; r < as_size(whole); ++r) {
            const Row& row = rows[2 * f * as_size(whole) + r];
            const double along = row.x * std::cos(heading[0]) + row.y * std::sin(heading[0]);
            const Complex8 incoming = rho * g * std::cosh(k * (row.z + depth)) /
                                      std::cosh(k * depth) * std::polar(1.0, -k * along);
            error[f] = std::max(error[f], std::abs(row.values[0] - incoming) / (rho * g * k * 8));
        }
        EXPECT_LT(error[f], 1) << f; // times k and half the length of the box
    }
    EXPECT_NEAR(error[1], error[0], 0.3 * error[0]);
}

TEST_F(PostResponse, displacements_and_hydrostatic_change_are_those_of_a_rigid_body) {
    analyse(2, "5 8");
    const auto rows = rows_after("hyd_postresponse -disp -pressure", "job.hpr");
    const auto x = as_matrix<const double>(find_array(".hyd_xyz"));
    // project.res: frequencies, within them headings: omega, heading, six complex numbers a node.
    const std::string bytes = file_bytes("job.res");
    const std::size_t record = 2 + 12 * as_size(x.cols);
    ASSERT_EQ(bytes.size(), 4 * 8 * record);
    Reals numbers(4 * record);
    std::memcpy(numbers.data(), bytes.data(), bytes.size());
    for (const std::size_t f : {0U, 1U})
        for (const std::size_t b : {0U, 1U}) {
            const Complexes q = coordinates(f, b, 2);
            for (std::size_t r = f * as_size(whole); r < (f + 1) * as_size(whole); ++r) {
                const auto u = motion(q, rows[r].x, rows[r].y, rows[r].z);
                EXPECT_LT(std::abs(rows[r].values[b] + rho * g * u[2]),
                          1e-4 * largest(rows, b)); // 5 digits
            }
            const double* at = &numbers[(2 * f + b) * record];
            EXPECT_EQ(*at++, elements<double>(hyd_freq)[f]);
            EXPECT_DOUBLE_EQ(*at++, heading[b]);
            for (int n = 1; n <= x.cols; ++n) {
                const auto u = motion(q, x(1, n), x(2, n), x(3, n));
                for (std::size_t i = 0; i < 6; ++i, at += 2)
                    EXPECT_LT(std::abs(Complex8(at[0], at[1]) - (i < 3 ? u[i] : q[i])), 1e-13);
            }
        }
}

TEST_F(PostResponse, totals_are_those_of_the_waves_and_of_the_motion_in_each_mode) {
    analyse(1, "4 7");
    const auto modal = rows_after("hyd_modal_pressure digits=12", "job.prs2");
    const auto expect_total = [&](const std::string& command, double waves, std::size_t headings) {
        const auto rows = rows_after(command + " -pressure -potential", "job.prs");
        const auto potentials = rows_of("job.pot");
        constexpr auto table = as_size(whole);
        ASSERT_EQ(rows.size(), 2 * table);
        for (std::size_t r = 0; r < rows.size(); ++r) {
            ASSERT_EQ(rows[r].values.size(), headings);
            const std::size_t f = r / table, first = 2 * f * table + r % table;
            const Complex8 factor(0, -elements<double>(hyd_freq)[f] * rho);
            for (std::size_t b = 0; b < headings; ++b) {
                const double tolerance = 1e-4 * largest(rows, b); // 5 digits
                Complex8 p = waves * modal[first].values[b];
                for (std::size_t j = 0; j < 6; ++j)
                    p += modal[first + table].values[j] * coordinates(f, b, 2)[j];
                EXPECT_LT(std::abs(rows[r].values[b] - p), tolerance) << command;
                EXPECT_LT(std::abs(factor * potentials[r].values[b] - p), tolerance) << command;
            }
        }
    };
    expect_total("hyd_postresponse", 1, 2);
    type("input hyd_Peiwt r=1 c=6\n1e5 2e5 3e5 4e6 5e6 6e6\nhyd_analysis_response_P");
    expect_total("hyd_postresponse_P", 0, 1);
    EXPECT_FALSE(array_exists(hyd_potincm) || array_exists(hyd_potdiff));
    expect_total("hyd_postresponse_P", 0, 1);
}

TEST_F(PostResponse, missing_and_misshapen_inputs_are_told_and_leave_the_files_without_numbers) {
    const auto contains = [](const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    };
    analyse(1, "5");
    const auto pressures = [&] {
        return rows_after("hyd_postresponse -pressure", "job.prs").size();
    };
    ASSERT_EQ(pressures(), as_size(whole));
    create_array3<Complex8>(hyd_potdiff, static_cast<int>(whole), 2, 1);
    EXPECT_TRUE(contains(type("hyd_postresponse -pressure"), ".hyd_potdiff is of the wrong type"));
    EXPECT_EQ(pressures(), 0U);
    for (const auto name : {hyd_potdiff, hyd_potincm, hyd_potrad})
        delete_array(name);
    EXPECT_TRUE(contains(type("hyd_postresponse -potential"), "No potential arrays could not be"));
    EXPECT_EQ(rows_after("hyd_postresponse -pressure", "job.hpr").size(), as_size(whole));
    EXPECT_TRUE(contains(type("hyd_modal_pressure"), ".hyd_potrad not found"));
    EXPECT_EQ(rows_of("job.prs2").size(), 0U);

    create_matrix<Complex8>(hyd_gencor, 6, 1); // two dimensions are one heading, the first
    EXPECT_EQ(rows_after("hyd_postresponse -pressure", "job.hpr")[0].values.size(), 1U);
    as_span<std::int32_t>(find_array(hyd_modesym))[2] = 3;
    EXPECT_TRUE(contains(type("hyd_postresponse -pressure"), "Hydrostatic pressures cannot be"));
    delete_array(hyd_thx);
    EXPECT_TRUE(contains(type("hyd_postresponse -disp"), ".hyd_thx not found"));
    EXPECT_EQ(file_bytes("job.res"), "");
    create_array3<Complex8>(hyd_gencor, 6, 1, 1);
    EXPECT_TRUE(contains(type("hyd_postresponse"), ".hyd_gencor is of the wrong type or size"));
}

} // namespace
} // namespace quelor
