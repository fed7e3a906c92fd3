// Response with linearised drag, to a given load and to ground motion, of models of a few modes
// made array by array.
#include "../support/arrays.hpp"

#include "fem/nodes.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/hyd_response_P.hpp"
#include "hydro_response/hyd_response_drag.hpp"
#include "kernel/project.hpp"

#include <cmath>
#include <functional>
#include <random>

namespace quelor {
namespace {

constexpr double g = 9.81, depth = 12, heading = 0.6;
constexpr Complex8 I(0, 1);

/// Element of an array, by its place in storage order from 0.
template <class T = double> T& at(std::string_view name, std::size_t i = 0) {
    return as_span<T>(find_array(name))[i];
}
void fill(std::string_view name, double value) {
    std::ranges::fill(as_span<double>(find_array(name)), value);
}
void random_array(TypeCode type, std::string_view name, std::initializer_list<std::int32_t> dims) {
    static std::mt19937 generator(11);
    std::uniform_real_distribution<double> value(0.1, 1);
    auto* const first = static_cast<double*>(create_array(type, name, dims));
    const auto n = find_array(name).size() * (type == type_complex8 ? 2 : 1);
    std::generate_n(first, n, [&] { return value(generator); });
}
void identity(std::string_view name, int n, double value) {
    const auto m = create_matrix<double>(name, n, n);
    for (int i = 1; i <= n; ++i)
        m(i, i) = value;
}

class Oscillators : public ArraySession {
protected:
    Oscillators()
        : ArraySession({hyd_response_rows(), hyd_response_P_rows(), hyd_response_drag_rows()}) {
        set_project_name("job");
    }
    /// Random coefficients, forces, drag `cd` and modes `T` of the translations of a node at
    /// (2, 0.7, -1.5); the structure has stiffness 4, mass 1 and damping 0.1.
    static void make_model(int nmode, const Reals& freq, int nbeta = 1) {
        const int nfreq = static_cast<int>(freq.size());
        for (const auto& [name, value] : {std::pair{hyd_symmetry, 0},
                                          {hyd_num_nodes, 1},
                                          {hyd_nmoder, nmode},
                                          {hyd_nmodef, 0},
                                          {num_eqs, 3}})
            create_int_scalar(name, value);
        for (const auto& [name, value] : {std::pair{hyd_gauge, 2.5},
                                          {hyd_depth, depth},
                                          {hyd_deep_water, 10.0},
                                          {hyd_grav, g},
                                          {hyd_fluid_rho, 1025.0},
                                          {hyd_hysdamp, 0.0}})
            create_real_scalar(name, value);
        create_matrix<std::int32_t>(hyd_panel_map, 1, 0)(1) = 1;
        create_matrix<double>(hyd_coordaxs, axes_rows, 1);
        std::ranges::copy(Ints{nbeta, nfreq}, create_matrix<std::int32_t>(hyd_wave, 2, 0).data);
        std::ranges::copy(freq, create_matrix<double>(hyd_freq, nfreq, 0).data);
        create_matrix<double>(hyd_beta, nbeta, 0);
        fill(hyd_beta, heading);
        for (const auto name : {hyd_addm, hyd_damp})
            random_array(type_real, name, {nmode, nmode, nfreq});
        for (const auto name : {hyd_fi, hyd_fd})
            random_array(type_complex8, name, {nmode, nbeta, nfreq});
        random_array(type_real, hyd_kf, {nmode, nmode});
        random_array(type_real, hyd_Peiwt, {nmode});
        identity(hyd_mstr, nmode, 1);
        identity(hyd_cstr, nmode, 0.1);
        identity(hyd_kstr, nmode, 4);
        std::ranges::copy(Reals{2, 0.7, -1.5}, create_matrix<double>(xyz, 3, 1).data);
        std::ranges::copy(Ints{1, 2, 3}, create_matrix<std::int32_t>(node_eqs, 6, 1).data);
        random_array(type_real, "T", {3, nmode});
        random_array(type_real, "cd", {3});
    }
    static Complexes gencor() { return elements<Complex8>(hyd_gencor); }

    /// Row i of D q of the first frequency, q the solution, without drag.
    static Complex8 product(std::size_t i, const Complexes& q) {
        const double w = at(hyd_freq);
        Complex8 sum = 0;
        for (std::size_t j = 0, n = q.size(); j < n; ++j) {
            const auto a = [&](std::string_view name) { return at(name, i + n * j); };
            sum += q[j] * Complex8(a(hyd_kstr) + a(hyd_kf) - w * w * (a(hyd_mstr) + a(hyd_addm)),
                                   w * (a(hyd_cstr) + a(hyd_damp)));
        }
        return sum;
    }
    /// Velocity of the water at the node, from the textbook. k tanh(k depth) = omega^2 / g.
    static Complexes water_velocity(double w) {
        double k = w * w / g;
        for (int i = 0; i < 200; ++i)
            k = w * w / g / std::tanh(k * depth);
        const Complex8 a = g * k / w / std::cosh(k * depth) *
                           std::polar(1.0, -k * (2 * std::cos(heading) + 0.7 * std::sin(heading)));
        const double up = k * (depth - 1.5);
        return {a * std::cosh(up) * std::cos(heading), a * std::cosh(up) * std::sin(heading),
                I * a * std::sinh(up)};
    }
    /// Largest residual of the equations of motion with the drag of the solution itself.
    static double residual(const Complexes& q, double amplitude, bool of_water, bool of_structure) {
        const double w = at(hyd_freq);
        Complexes loads(3); // of the drag, on the equations
        for (std::size_t k = 0; k < 3; ++k) {
            const Complex8 v = amplitude * water_velocity(w)[k];
            Complex8 u = 0;
            for (std::size_t j = 0; j < q.size(); ++j)
                u += at("T", k + 3 * j) * q[j];
            const Complex8 relative = (of_water ? v : 0.0) - (of_structure ? I * w * u : 0.0);
            loads[k] = at("cd", k) * std::abs(relative) * relative;
        }
        double most = 0;
        for (std::size_t i = 0; i < q.size(); ++i) {
            Complex8 r =
                product(i, q) - amplitude * (at<Complex8>(hyd_fi, i) + at<Complex8>(hyd_fd, i));
            for (std::size_t k = 0; k < 3; ++k)
                r -= at("T", k + 3 * i) * loads[k];
            most = std::max(most, std::abs(r));
        }
        return most;
    }
};

const std::string start = "hyd_analysis_response_drag cd T ";

TEST_F(Oscillators, drag_of_one_and_of_several_modes_solves_its_fixed_point_equation) {
    // The last change is below 1e-13 and the next ones fall as a series of ratio below 0.9.
    for (const int nmode : {1, 2}) {
        make_model(nmode, {1.4});
        for (const double a : {1.0, 1.5}) {
            const std::string line =
                start + "beta=1 conv=1e-13 maxit=300 wave=" + std::to_string(a);
            run(line);
            EXPECT_LT(residual(gencor(), a, true, true), 1e-11);
            run(line + " -structure_velocity_only -wave_velocity_only"); // the first of them counts
            EXPECT_LT(residual(gencor(), a, true, false), 1e-11);
            run(line + " -structure_velocity_only");
            EXPECT_LT(residual(gencor(), a, false, true), 1e-11);
        }
    }
}

TEST_F(Oscillators, zero_drag_gives_the_response_without_drag_to_the_bit) {
    make_model(4, {0.5, 1.3, 2.0}, 2);
    run("hyd_analysis_response symmetrize=on");
    const Complexes expected = gencor();
    fill("cd", 0);
    delete_array(hyd_gencor);
    for (const char* const option : {"", " -each", " -wave_velocity_only"}) {
        run(start + "beta=1 conv=1e-9 symmetrize=on" + option);
        run(start + "beta=2 conv=1e-9 symmetrize=on" + option);
        EXPECT_EQ(gencor(), expected) << option;
    }
}

TEST_F(Oscillators, the_flag_each_iterates_every_frequency_and_its_lack_is_told) {
    // One mode over its resonance, where one iteration from the frequency before leaves the
    // response wrong by a fifth and more. F = D q with the drag of q itself.
    make_model(1, {1.0, 1.5, 2.0, 2.5, 3.0});
    for (const auto name : {hyd_addm, hyd_damp, hyd_kf})
        fill(name, 0);
    const auto forces = as_span<Complex8>(find_array(hyd_fi));
    std::ranges::transform(forces, as_span<Complex8>(find_array(hyd_fd)).begin(),
                           [](Complex8 f) { return 1.0 - f; });
    std::ranges::copy(Reals{1, 0, 0}, &at("T"));
    at("cd") = 0.4;
    const std::string line = start + "beta=1 conv=1e-10 maxit=200 -structure_velocity_only";
    const std::string once = run(line);
    const Complexes kept = gencor();
    EXPECT_EQ(run(line + " -each").find("were left"), std::string::npos);
    const Complexes each = gencor();
    double largest = 0;
    for (std::size_t i = 0; i < each.size(); ++i) {
        const double w = at(hyd_freq, i), a = std::abs(each[i]);
        EXPECT_NEAR(a * std::hypot(4 - w * w, w * (0.1 + 0.4 * w * a)), 1, 1e-8) << i;
        if (i > 0) largest = std::max(largest, std::abs(kept[i] - kept[i - 1]));
    }
    EXPECT_EQ(kept[0], each[0]);
    EXPECT_GT(std::abs(std::abs(kept[2]) / std::abs(each[2]) - 1), 0.2);
    for (const std::string& part : {std::string("Converged in    1 iterations"),
                                    std::string("    4 frequencies were left after one iteration"),
                                    "change is " + edit_scientific(largest, 11, 4, 1)})
        EXPECT_NE(once.find(part), std::string::npos) << part;
}

TEST_F(Oscillators, drag_starts_from_a_structure_at_rest_and_spares_other_headings) {
    make_model(2, {1.4}, 2);
    create_matrix<double>(hyd_gencor, 3, 0);
    create_matrix<double>(hyd_dynk, 1, 0);
    at(xyz, 2) = 0.1; // above the water: no incoming velocity
    const std::string told = run(start + "beta=2 conv=1e-13 maxit=1 wave=-3");
    for (const char* const part : {".hyd_gencor has another type or shape", "not achieved"})
        EXPECT_NE(told.find(part), std::string::npos) << part;
    const Complexes second = gencor();
    EXPECT_EQ(dims(hyd_gencor), (Ints{2, 1, 2}));
    EXPECT_EQ(second[0], Complex8());
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_LT(std::abs(product(i, {second[2], second[3]}) - at<Complex8>(hyd_fi, 2 + i) -
                           at<Complex8>(hyd_fd, 2 + i)),
                  1e-13);
    // The coefficients may bear the name of an array that the command makes anew.
    move_array("cd", hyd_cstr);
    run("hyd_analysis_response_drag hyd_cstr T beta=1 conv=1e-6");
    EXPECT_EQ(dims(hyd_cstr), (Ints{2, 2}));
    EXPECT_EQ(gencor()[3], second[3]);
    EXPECT_NE(gencor()[0], Complex8());
}

TEST_F(Oscillators, a_body_without_restoring_stays_at_rest_while_the_ground_moves) {
    // A ground acceleration of 1 moves the ground by -1/omega^2; relative to it a structure at rest
    // in space has moved by P/omega^2, whatever the water does.
    make_model(3, {0.4, 1.1, 2.3});
    for (const auto name : {hyd_kf, hyd_kstr, hyd_cstr})
        fill(name, 0);
    for (const char* const option : {" -eq", " -eq symmetrize=on"}) {
        run(std::string("hyd_analysis_response_P") + option);
        EXPECT_EQ(dims(hyd_gencor), (Ints{3, 3, 1}));
        for (std::size_t i = 0; i < 9; ++i)
            EXPECT_LT(
                std::abs(gencor()[i] * std::pow(at(hyd_freq, i / 3), 2) - at(hyd_Peiwt, i % 3)),
                1e-13);
    }
}

TEST_F(Oscillators, a_given_load_may_be_a_row_or_a_column) {
    for (const auto& shape : {Ints{2}, {2, 1}, {1, 2}}) {
        make_model(2, {1.1});
        create_array(type_real, hyd_Peiwt, shape);
        std::ranges::copy(Reals{0.7, -2}, &at(hyd_Peiwt));
        run("hyd_analysis_response_P");
        EXPECT_LT(std::abs(product(0, gencor()) - 0.7), 1e-14);
        EXPECT_LT(std::abs(product(1, gencor()) + 2.0), 1e-14);
    }
}

TEST_F(Oscillators, faults_are_told_and_change_nothing) {
    const std::string drag = start + "beta=1 conv=1e-6", word = "hyd_analysis_response_drag ";
    const std::string load = "hyd_analysis_response_P -eq";
    const struct {
        std::function<void()> spoil;
        std::string line, message;
    } faults[] = {
        {[] { create_int_scalar(num_eqs, 0); }, drag, "Can not find number of structural equat"},
        {[] { delete_array(xyz); }, drag, "Structural nodal coordinates not found"},
        {[] { delete_array(node_eqs); }, drag, "Structural equation numbers not found"},
        {[] {}, word, "Two arguments are required"},
        {[] {}, word + "none T", "Drag matrix not found"},
        {[] {}, word + "T T", "Vector of diagonal drag coefficients is incorrect size"},
        {[] { create_matrix<std::int32_t>("cd", 3, 0); }, drag, "must be either real(8) or"},
        {[] { at("cd", 1) = HUGE_VAL; }, drag, "must be finite numbers"},
        {[] {}, word + "cd", "Two arguments are required"},
        {[] {}, word + "cd none", "Transformation matrix not found"},
        {[] { create_matrix<Complex8>("T", 3, 2); }, drag, "Transformation matrix is the wrong"},
        {[] {}, start + "conv=1", "beta out of range"},
        {[] {}, start + "beta=1", "conv must be greater than 0"},
        {[] { at(xyz, 2) = -12.5; }, drag, "Structural node 1 lies below the sea bed"},
        {[] { at<std::int32_t>(node_eqs) = 4; }, drag, "Equation number of structural node 1"},
        {[] { create_int_scalar(".grnfun", 1); }, drag, "not implemented for this Green function"},
        {[] { create_matrix<double>(hyd_fd, 2, 1); }, drag, ".hyd_fd is of the wrong type or size"},
        {[] { delete_array(hyd_coordaxs); }, load, ".hyd_coordaxs not found"},
        {[] { delete_array(hyd_Peiwt); }, load, "hyd_Peiwt not found"},
        {[] { create_matrix<double>(hyd_Peiwt, 2, 2); }, load, "a real vector of size nmode"},
        {[] { create_matrix<Complex8>(hyd_Peiwt, 2, 0); }, load, "a real vector of size nmode"},
        {[] { delete_array(hyd_damp); }, load, ".hyd_damp not found"},
    };
    for (const auto& fault : faults) {
        db_clear();
        make_model(2, {0.9});
        fault.spoil();
        const std::string told = run(fault.line);
        EXPECT_NE(told.find(fault.message), std::string::npos) << fault.message << "\n" << told;
        EXPECT_FALSE(array_exists(hyd_gencor)) << fault.message;
        EXPECT_FALSE(std::filesystem::exists("job.efl")) << fault.message;
    }
}

} // namespace
} // namespace quelor
