// Potentials, pressures and displacements of a box, from the files that the commands write.
#include "../support/arrays.hpp"
#include "../support/files.hpp"
#include "../support/mesh_text.hpp"

#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/project.hpp"

#include <cmath>
#include <cstring>
#include <map>
#include <numbers>
#include <sstream>

namespace quelor {
namespace {

constexpr double depth = 15, g = 9.80665, rho = 1025, degree = std::numbers::pi / 180;
constexpr std::array heading{35 * degree, 250 * degree, 100 * degree};
constexpr std::size_t table = 64; ///< rows of a table: panels of the whole box

/// A row of a panel table: where the panel is, the signs of its reflection, the complex values.
struct Row {
    double x, y, z, sx, sy;
    int panel;
    Complexes values;
};
using Table = std::vector<Row>;

double largest(const Table& rows, std::size_t column) {
    double most = 0;
    for (const Row& row : rows)
        if (column < row.values.size()) most = std::max(most, std::abs(row.values[column]));
    return most;
}

class PostResponse : public ArraySession {
protected:
    PostResponse() { set_project_name("job"); }

    /// A box 16 x 10 x 3 m, whole, half or a quarter, its analysis and response for three headings.
    static void analyse(int symmetry, const std::string& periods) {
        db_clear();
        MeshText mesh;
        mesh.add({symmetry == 2 ? 0.0 : -8.0, 8, symmetry == 0 ? -5.0 : 0.0, 5, 3,
                  symmetry == 2 ? 3 : 6, symmetry == 0 ? 4 : 2, 2},
                 symmetry == 2, symmetry != 0);
        const int n = mesh.panel_count();
        type("hyd_parameters h=15 symmetry=" + std::to_string(symmetry) +
             "\nhyd_coordaxs zcg=-1\nhyd_wave nbeta=3 nfreq=" +
             std::to_string(std::ranges::count(periods, ' ') + 1) + "\n35 250 100\n" + periods +
             "\nhyd_nodes #=" + std::to_string(4 * n) + "\n" + mesh.nodes() +
             "hyd_panel n=" + std::to_string(n) + "\n" + mesh.panels() +
             "hyd_rigid_modes\nhyd_rmass\n4e5 0 0 0 -4e5 0\n0 4e5 0 4e5 0 0\n0 0 4e5 0 0 0\n"
             "0 4e5 0 4e6 0 0\n-4e5 0 0 0 9e6 0\n0 0 0 0 0 9e6\nhyd_analysis\n"
             "hyd_analysis_response");
    }
    /// The rows of all tables of a file, one table after the other.
    static Table rows_of(const std::string& file) {
        const std::map<std::string, std::array<double, 2>> signs{{"   ", {1, 1}},
                                                                 {"R  ", {1, -1}},
                                                                 {"R2 ", {1, -1}},
                                                                 {"R3 ", {-1, 1}},
                                                                 {"R4 ", {-1, -1}}};
        const auto map = elements<std::int32_t>(hyd_panel_map);
        const auto c = as_matrix<const double>(find_array(hyd_xyzc));
        Table rows;
        std::ifstream lines(file);
        for (std::string line; std::getline(lines, line);) {
            const auto sign = signs.find(line.substr(0, 3));
            if (line.size() < 10 || sign == signs.end() || !std::isdigit(line[8])) continue;
            std::istringstream numbers(line.substr(3));
            int e = 0;
            numbers >> e;
            const auto [sx, sy] = sign->second;
            const int p = map[nth(e)];
            rows.push_back({sx * c(p, 1), sy * c(p, 2), c(p, 3), sx, sy, p, {}});
            for (double re = 0, im = 0; numbers >> re >> im;)
                rows.back().values.emplace_back(re, im);
        }
        return rows;
    }
    static Table rows_after(const std::string& command, const std::string& file) {
        type(command);
        return rows_of(file);
    }
    /// The generalised coordinates of frequency f and heading b, from 0, of nfreq frequencies.
    static Complexes coordinates(std::size_t f, std::size_t b, std::size_t nfreq) {
        const auto q = std::span<const Complex8>(as_span<Complex8>(find_array(hyd_gencor)));
        const auto at = q.subspan(6 * (f + nfreq * b), 6);
        return {at.begin(), at.end()};
    }
    /// Motion of the point (x, y, z).
    static Complexes motion(const Complexes& q, double x, double y, double z) {
        return {q[0] + q[4] * z - q[5] * y, q[1] + q[5] * x - q[3] * z, q[2] + q[3] * y - q[4] * x};
    }
};

TEST_F(PostResponse, full_half_and_quarter_meshes_agree_at_every_place) {
    // One mesh, reflected: the single precision of the panel equations is all that differs, and a
    // unit of the fifth digit in files that have no more.
    const auto place = [](const Row& r) {
        return std::array{std::lround(1e6 * r.x), std::lround(1e6 * r.y), std::lround(1e6 * r.z)};
    };
    std::map<std::string, Table> expected;
    for (const int symmetry : {0, 1, 2}) {
        analyse(symmetry, "6");
        type("hyd_postresponse -pressure -potential\nhyd_modal_pressure digits=9");
        for (const std::string file : {"job.prs", "job.pot", "job.hpr", "job.prs2"}) {
            Table rows = rows_of(file);
            const double tolerance = file == "job.prs2" ? 1e-5 : 1e-4;
            for (auto at = rows.begin(); at != rows.end(); at += table)
                std::ranges::sort(at, at + table, {}, place);
            if (symmetry == 0) expected[file] = rows;
            const Table& full = expected[file];
            ASSERT_EQ(rows.size(), full.size()) << file;
            for (std::size_t i = 0; i < rows.size(); ++i) {
                ASSERT_EQ(place(rows[i]), place(full[i]));
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
    // 17 digits give the doubles back; the sums run in another order. The normals of surge, sway
    // and heave reflect as vectors do.
    const double omega = 2 * std::numbers::pi / 5;
    for (const int symmetry : {0, 1, 2}) {
        analyse(symmetry, "5");
        const Table rows = rows_after("hyd_modal_pressure digits=17", "job.prs2");
        const auto area = elements<double>(hyd_panela), A = elements<double>(hyd_addm),
                   B = elements<double>(hyd_damp);
        const auto un = as_matrix<const double>(find_array(hyd_un));
        const auto fi = elements<Complex8>(hyd_fi), fd = elements<Complex8>(hyd_fd);
        for (std::size_t i = 0; i < 3; ++i) {
            Complexes force(9); // of the waves of each heading, of the motion in each mode
            for (std::size_t r = 0; r < rows.size(); ++r) {
                const std::array sign{rows[r].sx, rows[r].sy, 1.0};
                const double n =
                    un(static_cast<int>(i) + 1, rows[r].panel) * sign[i] * area[nth(rows[r].panel)];
                for (std::size_t j = 0; j < rows[r].values.size(); ++j)
                    force[r < table ? j : j + 3] += n * rows[r].values[j];
            }
            for (const std::size_t b : {i, i + 6, i + 12})
                EXPECT_LT(std::abs(force[b / 6] - (fi[b] + fd[b])), 1e-12 * std::abs(fi[2] + fd[2]))
                    << symmetry << i;
            for (std::size_t j = 0; j < 6; ++j) {
                const Complex8 expected(omega * omega * A[i + 6 * j], -omega * B[i + 6 * j]);
                EXPECT_LT(std::abs(force[j + 3] - expected),
                          1e-12 * omega * omega * A[7 * j] + 1e-9)
                    << symmetry << i << j;
            }
        }
    }
}

TEST_F(PostResponse, on_a_body_held_fixed_long_waves_press_as_if_it_were_not_there) {
    // The diffracted part is of order k times half the length of the box, which falls with k.
    analyse(1, "20 40");
    const Table rows = rows_after("hyd_modal_pressure digits=12", "job.prs2");
    std::array<double, 2> error{};
    for (std::size_t f = 0; f < 2; ++f) {
        const double K = std::pow(elements<double>(hyd_freq)[f], 2) / g;
        double k = std::sqrt(K / depth);
        for (int i = 0; i < 500; ++i) // k tanh(k depth) = K
            k = std::sqrt(k * K / std::tanh(k * depth));
        for (std::size_t r = 0; r < table; ++r) {
            const Row& row = rows[2 * f * table + r];
            const double along = row.x * std::cos(heading[0]) + row.y * std::sin(heading[0]);
            const Complex8 incoming = rho * g * std::cosh(k * (row.z + depth)) /
                                      std::cosh(k * depth) * std::polar(1.0, -k * along);
            error[f] = std::max(error[f], std::abs(row.values[0] - incoming) / (rho * g * k * 8));
        }
        EXPECT_LT(error[f], 1) << f;
    }
    EXPECT_NEAR(error[1], error[0], 0.3 * error[0]);
}

TEST_F(PostResponse, displacements_and_hydrostatic_change_are_those_of_a_rigid_body) {
    analyse(2, "5 8");
    const Table rows = rows_after("hyd_postresponse -disp -pressure", "job.hpr");
    const auto x = as_matrix<const double>(find_array(".hyd_xyz"));
    // project.res: frequencies, within them headings: omega, heading, six complex numbers a node.
    const std::string bytes = file_bytes("job.res");
    ASSERT_EQ(bytes.size(), 6 * 8 * (2 + 12 * as_size(x.cols)));
    Reals numbers(bytes.size() / 8);
    std::memcpy(numbers.data(), bytes.data(), bytes.size());
    const double* at = numbers.data();
    for (const std::size_t f : {0U, 1U})
        for (const std::size_t b : {0U, 1U, 2U}) {
            const Complexes q = coordinates(f, b, 2);
            for (std::size_t r = f * table; r < (f + 1) * table; ++r)
                EXPECT_LT(std::abs(rows[r].values[b] +
                                   rho * g * motion(q, rows[r].x, rows[r].y, rows[r].z)[2]),
                          1e-4 * largest(rows, b)); // 5 digits
            EXPECT_EQ(*at++, elements<double>(hyd_freq)[f]);
            EXPECT_DOUBLE_EQ(*at++, heading[b]);
            for (int n = 1; n <= x.cols; ++n) {
                const Complexes u = motion(q, x(1, n), x(2, n), x(3, n));
                for (std::size_t i = 0; i < 6; ++i, at += 2)
                    EXPECT_LT(std::abs(Complex8(at[0], at[1]) - (i < 3 ? u[i] : q[i])), 1e-13);
            }
        }
}

TEST_F(PostResponse, totals_are_those_of_the_waves_and_of_the_motion_in_each_mode) {
    analyse(1, "4 7");
    const Table modal = rows_after("hyd_modal_pressure digits=12", "job.prs2");
    const auto expect_total = [&](const std::string& command, double waves, std::size_t headings) {
        const Table rows = rows_after(command + " -pressure -potential", "job.prs"),
                    potentials = rows_of("job.pot");
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
    expect_total("hyd_postresponse", 1, 3);
    type("input hyd_Peiwt r=1 c=6\n1e5 2e5 3e5 4e6 5e6 6e6\nhyd_analysis_response_P");
    expect_total("hyd_postresponse_P", 0, 1);
    EXPECT_FALSE(array_exists(hyd_potincm) || array_exists(hyd_potdiff));
    expect_total("hyd_postresponse_P", 0, 1);
}

TEST_F(PostResponse, missing_and_misshapen_inputs_are_told_and_leave_the_files_without_numbers) {
    analyse(1, "5");
    const auto expect = [](const std::string& line, const std::string& message,
                           const std::string& file, std::size_t rows) {
        EXPECT_NE(type(line).find(message), std::string::npos) << line << message;
        EXPECT_EQ(rows_of(file).size(), rows) << line << message;
    };
    create_array3<Complex8>(hyd_potdiff, table, 2, 1);
    expect("hyd_postresponse -pressure", ".hyd_potdiff is of the wrong type", "job.prs", 0);
    for (const auto name : {hyd_potdiff, hyd_potincm, hyd_potrad})
        delete_array(name);
    expect("hyd_postresponse -potential", "No potential arrays could not be", "job.pot", 0);
    expect("hyd_modal_pressure", ".hyd_potrad not found", "job.prs2", 0);
    create_matrix<Complex8>(hyd_gencor, 6, 1); // two dimensions are one heading, the first
    expect("hyd_postresponse -pressure", "Calculating hydrostatic", "job.hpr", table);
    as_span<std::int32_t>(find_array(hyd_modesym))[2] = 3;
    expect("hyd_postresponse -pressure", "Hydrostatic pressures cannot be", "job.hpr", 0);
    delete_array(hyd_thx);
    expect("hyd_postresponse -disp", ".hyd_thx not found", "job.res", 0);
    create_array3<Complex8>(hyd_gencor, 6, 1, 1);
    expect("hyd_postresponse -pressure", ".hyd_gencor is of the wrong type", "job.hpr", 0);
}

} // namespace
} // namespace quelor
