// Wave headings and frequencies: their input, the deletion of frequencies together with all
// results that depend on them, and the report of wave lengths.
//
// Commands: hyd_wave, hyd_wave_dispersion.
// Writes: `.hyd_wave`, `.hyd_beta`, `.hyd_freq`, `.hyd_twnk`; deletes or shortens the results.
// Reads: `.hyd_depth`, `.hyd_grav`. Workspace: `$hyd_freq`, `$hyd_twnk`, `$compact_array`.
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr double two_pi = 2.0 * std::numbers::pi;
constexpr int most_waves = 1000;

/// Every result that a new list of waves makes invalid.
constexpr auto frequency_results = [] {
    std::array<FrequencyResult, 9> all{};
    auto next = std::ranges::copy(analysis_coefficients, all.begin()).out;
    next = std::ranges::copy(analysis_potentials, next).out;
    std::ranges::copy(response_results, next);
    return all;
}();
constexpr std::string_view result_files[] = {"rad", "dif",  "pot", "hpr",
                                             "prs", "prs2", "dis", "res"};

struct WaveInput {
    std::int32_t nbeta = 1, nfreq = 1;
    bool frequencies = false, descending = false;
};

WaveInput read_wave_parameters() {
    WaveInput input;
    get_int_par(" nbeta=", input.nbeta);
    get_int_par(" nfreq=", input.nfreq);
    input.frequencies = has_flag(" -freq") && !has_flag(" -period");
    input.descending = has_flag(" -descending");
    return input;
}

// --- new waves

/// A new list of waves makes every earlier result invalid.
void delete_results() {
    for (const auto name : {hyd_beta, hyd_freq, hyd_twnk})
        delete_array(name);
    for (const auto& result : frequency_results)
        delete_array(result.name);
    for (const auto extension : result_files)
        std::remove((std::string(project_name()) + "." + std::string(extension)).c_str());
}

void read_angles(int nbeta) {
    std::vector<double> degrees(as_size(nbeta));
    read_real_record("Enter wave angles in degrees\n", degrees);
    if (!all_finite(degrees)) shutdown_with(" \n\tWave angles must be numbers\n");
    std::ranges::transform(degrees, create_matrix<double>(hyd_beta, nbeta, 0).data,
                           [](double a) { return a * std::numbers::pi / 180.0; });
}

std::vector<double> read_periods_or_frequencies(int n, bool frequencies) {
    std::vector<double> values(as_size(n));
    read_real_record(
        frequencies ? "Enter wave frequencies, rad/sec\n" : "Enter wave periods (sec)\n", values);
    return values;
}

void convert_periods(std::span<double> values) {
    std::ranges::transform(values, values.begin(), [](double period) { return two_pi / period; });
}

/// Stops unless each value is a finite number above 0.
void check_positive(std::span<const double> values) {
    if (std::ranges::all_of(values, [](double v) { return std::isfinite(v) && v > 0.0; })) return;
    print_both(" \n\tPeriods and frequencies must be greater than 0\n");
    shutdown_with(" \n\tProgram is shutting down\n");
}

void read_frequencies(const WaveInput& input) {
    auto values = read_periods_or_frequencies(input.nfreq, input.frequencies);
    check_positive(values);
    if (input.descending) {
        std::ranges::sort(values, std::greater{});
    } else {
        std::ranges::sort(values);
    }
    if (!input.frequencies) convert_periods(values);
    check_positive(values); // the smallest periods have no finite frequency
    std::ranges::copy(values, create_matrix<double>(hyd_freq, input.nfreq, 0).data);
}

void input_waves() {
    const WaveInput input = read_wave_parameters();
    if (input.nbeta < 1 || input.nfreq < 1)
        shutdown_with(" \n\tAt least one frequency and one angle must be input\n");
    delete_results();
    const auto wave = create_matrix<std::int32_t>(hyd_wave, 2, 0);
    wave(1) = input.nbeta;
    wave(2) = input.nfreq;
    if (input.nbeta > most_waves || input.nfreq > most_waves)
        shutdown_with(" \n\tCannot input more than 1,000 frequencies or angles\n");
    read_angles(input.nbeta);
    read_frequencies(input);
    create_matrix<double>(hyd_twnk, input.nfreq, 2);
}

// --- deletion of frequencies

constexpr std::string_view deletion_error =
    " \n\tError in deleting frequencies; command not completed\n";

/// 0-based indices of the frequencies that no listed value matches within 0.01 %; empty when a
/// listed value has no match.
std::vector<std::size_t> frequencies_left(std::span<const double> freq,
                                          std::span<const double> listed) {
    std::vector<double> left(freq.begin(), freq.end());
    for (const double v : listed) {
        bool matched = false;
        for (double& f : left) {
            if (!(std::abs(f - v) <= 0.0001 * f)) continue;
            f = 0.0;
            matched = true;
        }
        if (!matched) return {};
    }
    std::vector<std::size_t> kept;
    for (std::size_t i = 0; i < left.size(); ++i)
        if (left[i] != 0.0) kept.push_back(i);
    return kept;
}

/// Whether every result present holds as many frequencies as the wave list.
bool results_match(int nfreq) {
    return std::ranges::all_of(frequency_results, [&](const FrequencyResult& result) {
        const ArrayRef ref = find_array(result.name);
        return !ref || ref.dim(result.axis) == nfreq;
    });
}

void compact_all(std::span<const std::size_t> kept) {
    select_frequencies(hyd_freq, 1, kept, "$hyd_freq");
    select_frequencies(hyd_twnk, 1, kept, "$hyd_twnk");
    for (const auto& result : frequency_results)
        if (array_exists(result.name))
            select_frequencies(result.name, result.axis, kept, "$compact_array");
}

void delete_frequencies() {
    const ArrayRef wave = find_array(hyd_wave), freq = find_array(hyd_freq);
    const ArrayRef twnk = find_array(hyd_twnk);
    if (!wave.is(type_integer) || wave.size() != 2 || !freq.is(type_real) || !twnk.is(type_real)) {
        print_both(" \n\tWave frequency data not found\n");
        return print_both(" \n\tCommand terminating\n");
    }
    const WaveInput input = read_wave_parameters();
    if (input.nfreq < 1) return;
    const int held = freq.rows();
    if (input.nfreq >= held) {
        print_both(" \n\tToo many frequencies specified for deletion\n");
        return print_both(" \n\tCommand terminating\n");
    }
    auto listed = read_periods_or_frequencies(input.nfreq, input.frequencies);
    if (!input.frequencies) convert_periods(listed);
    const auto kept = frequencies_left(as_span<const double>(freq), listed);
    if (std::ssize(kept) != held - input.nfreq || twnk.rows() != held || !results_match(held))
        return print_both(deletion_error);
    compact_all(kept);
    as_span<std::int32_t>(wave)[1] = held - input.nfreq;
}

void cmd_hyd_wave(std::string_view) {
    if (has_flag(" -delete")) return delete_frequencies();
    input_waves();
}

// --- report

void cmd_hyd_wave_dispersion(std::string_view) {
    const auto freq = require_vector<double>(hyd_freq);
    const double depth = require_positive(hyd_depth), grav = require_positive(hyd_grav);
    write_both(
        "10(/, '  Water Depth =', f10.3, //, '       Wave      Wave      Wave         Wave', /, '  Frequency    Period    Length       Number')",
        {depth});
    for (const double omega : freq) {
        const double k = hyd_wave_number(omega, depth, grav).k;
        write_both("20(f11.4, f10.2, f10.2, 1pe13.4)", {omega, two_pi / omega, two_pi / k, k});
    }
}

constexpr Command rows[] = {
    {.words = {"hyd_wave"},
     .run = cmd_hyd_wave,
     .summary = "wave angles and wave periods or frequencies",
     .help = "Command Syntax\n\thyd_wave  [nbeta=?]  [nfreq=?]  [-freq]  [-period]  "
             "[-descending]\n"
             "\thyd_wave  -delete  nfreq=?  [-freq]  [-period]\n\n"
             "Specifies the waves. Two records follow: the wave angles in degrees, measured from "
             "the +x axis, and then the wave periods (sec) or frequencies (rad/sec).\n\n"
             "nbeta\n\tNumber of wave angles, at most 1000; default 1.\n"
             "nfreq\n\tNumber of periods or frequencies, at most 1000; default 1.\n"
             "-period\n\tThe second record holds periods; this is the default and overrides "
             "-freq.\n"
             "-freq\n\tThe second record holds frequencies.\n"
             "-descending\n\tThe values are sorted in descending order as they were input; the "
             "default is ascending. Ascending periods are descending frequencies.\n\n"
             "The command creates .hyd_wave, .hyd_beta, .hyd_freq and .hyd_twnk. It deletes the "
             "results of an earlier analysis: .hyd_addm, .hyd_damp, .hyd_fi, .hyd_fd, "
             ".hyd_potincm, .hyd_potdiff, .hyd_potrad, .hyd_gencor, .hyd_surf_disp and the "
             "project's files rad, dif, pot, hpr, prs, prs2, dis, res.\n\n"
             "-delete\n\tDeletes nfreq frequencies and all that depends on them in the arrays "
             "above. One record follows with their periods, or frequencies with -freq; each must "
             "match one in .hyd_freq to 0.01%. At least one frequency must remain. Transfer "
             "functions are not changed; run hyd_tf again.\n\n"
             "Example: head and beam seas, three periods\n"
             "\thyd_wave nbeta=2 nfreq=3\n\t180 90\n\t6 8 10\n\n"
             "See Also\n\thyd_parameters, hyd_analysis, hyd_wave_dispersion\n"},
    {.words = {"hyd_wave_dispersion"},
     .run = cmd_hyd_wave_dispersion,
     .summary = "print period, length and number of each wave",
     .help = "Command Syntax\n\thyd_wave_dispersion\n\n"
             "Prints frequency, period, wave length and wave number of each frequency in "
             ".hyd_freq for the water depth .hyd_depth and the gravity .hyd_grav. There are no "
             "parameters, and no array is created.\n\n"
             "Example\n"
             "\thyd_parameters h=20\n\thyd_wave nfreq=2\n\t0\n\t5 10\n\thyd_wave_dispersion\n\n"
             "See Also\n\thyd_wave, hyd_parameters\n"},
};

} // namespace

WaveNumber hyd_wave_number(double omega, double depth, double grav) {
    const WaveNumber wave = waven(omega, depth, grav);
    if (!wave.converged) print_both(" \n\tWARNING: dispersion relation failed-WAVEN\n");
    return wave;
}

std::span<const Command> hyd_wave_rows() {
    return rows;
}

} // namespace quelor
