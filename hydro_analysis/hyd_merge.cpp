// Frequencies added to an earlier analysis. Reads and writes `.hyd_freq`, `.hyd_twnk`, `.hyd_wave`,
// the coefficients and the potentials; workspaces `$freq`, `$twnk`, `$..._orig`, `$merge`.
#include "hydro_analysis/hyd_merge.hpp"

#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <numbers>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace quelor {

namespace {

/// Name of a result while it is set aside: ".hyd_addm" becomes "$addm_orig".
std::string aside(std::string_view name) {
    return "$" + std::string(name.substr(std::string_view(".hyd_").size())) + "_orig";
}

/// Old results become the leading entries of the new ones; then `order` sorts them all.
void merge_result(const FrequencyResult& result, std::span<const std::size_t> order) {
    const std::string old_name = aside(result.name);
    const ArrayRef old = db_find(old_name), now = db_find(result.name);
    if (!old || !now) return;
    if (!copy_leading_frequencies(old, now, result.axis))
        shutdown_with(" \n\tArray " + std::string(result.name) +
                      " of the earlier analysis does not fit the added frequencies\n");
    delete_array(old_name);
    select_frequencies(result.name, result.axis, order, "$merge");
}

bool ascending(std::span<const double> freq, int nold) {
    return nold >= 2 && freq[1] - freq[0] > 0;
}

void set_results_aside(bool keep_potentials) {
    for (const auto& result : analysis_coefficients) {
        require_array(result.name,
                      result.name == hyd_addm || result.name == hyd_damp ? type_real
                                                                         : type_complex8,
                      {any_size, any_size, any_size});
        move_array(result.name, aside(result.name));
    }
    if (!array_exists(hyd_potrad)) return;
    if (!keep_potentials) print_both(" \n\tExisting potential arrays will be deleted.\n");
    for (const auto& result : analysis_potentials) {
        if (!keep_potentials)
            delete_array(result.name);
        else if (array_exists(result.name))
            move_array(result.name, aside(result.name));
    }
}

std::string project_file(std::string_view extension) {
    return std::string(project_name()) + std::string(extension);
}

} // namespace

int add_frequencies(std::span<const double> added, bool keep_potentials) {
    if (!array_exists(hyd_addm))
        shutdown_with(" /nCannot add frequencies without first running hyd_analysis");
    const int nold = hyd_wave_counts().nfreq, nfreq = nold + static_cast<int>(added.size());
    const auto old_freq = require_vector<double>(hyd_freq, nold);
    const auto old_twnk = require_matrix<double>(hyd_twnk, nold, 2);
    set_results_aside(keep_potentials);

    std::vector<double> values(added.begin(), added.end());
    std::ranges::sort(values);
    if (!ascending(old_freq, nold)) std::ranges::reverse(values);
    Result new_freq(hyd_freq, "$freq"), new_twnk(hyd_twnk, "$twnk");
    const auto freq = new_freq.matrix<double>(nfreq, 0), twnk = new_twnk.matrix<double>(nfreq, 2);
    for (int i = 1; i <= nfreq; ++i) {
        freq(i) = i <= nold ? old_freq[nth(i)] : values[nth(i - nold)];
        twnk(i, 1) = i <= nold ? old_twnk(i, 1) : 2 * std::numbers::pi / freq(i);
        twnk(i, 2) = i <= nold ? old_twnk(i, 2) : 0.0;
    }
    new_freq.place();
    new_twnk.place();
    as_span<std::int32_t>(require_array(hyd_wave, type_integer, {2, 1}))[1] = nfreq;
    return nold + 1;
}

void merge_frequencies(int nold) {
    const auto freq = require_vector<double>(hyd_freq);
    std::vector<std::size_t> order(freq.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const bool up = ascending(freq, nold);
    std::ranges::stable_sort(order, [&](std::size_t i, std::size_t j) {
        return up ? freq[i] < freq[j] : freq[i] > freq[j];
    });
    for (const auto& result : analysis_coefficients)
        merge_result(result, order);
    for (const auto& result : analysis_potentials)
        merge_result(result, order);
    select_frequencies(hyd_freq, 1, order, "$merge");
    select_frequencies(hyd_twnk, 1, order, "$merge");
}

// --- source-strength files ----------------------------------------------------------------------

namespace {

namespace fs = std::filesystem;

/// False after a message; the file then keeps its name.
bool rename_file(const std::string& from, const std::string& to) {
    std::error_code fault;
    fs::rename(from, to, fault);
    if (fault)
        print_both(" \n\tFile " + from + " could not be renamed " + to + ": " + fault.message() +
                   "\n");
    return !fault;
}

/// Records of one file, read one frequency at a time; each begins with its omega.
struct StrengthFile {
    int unit;
    std::vector<char> record;
    std::optional<double> omega; ///< of the record held; none at the end of the file

    void next() {
        omega.reset();
        double value = 0;
        if (!read_record_bytes(unit, record) || record.size() < sizeof value) return;
        std::memcpy(&value, record.data(), sizeof value);
        omega = value;
    }
};

struct StrengthKind {
    std::string_view extension;
    int unit, unit_old, unit_merged;
    std::string_view failure;

    std::string now_name() const { return project_file(extension); }
    std::string old_name() const { return now_name() + "O"; }
    std::string merged_name() const {
        return project_file(".$") + std::string(extension.substr(1));
    }
};
constexpr StrengthKind radiation{
    ".rad", unit_rad, 81, 82,
    " \n\tRadiation source strength files could not be opened; program is terminating\n"};
constexpr StrengthKind diffraction{
    ".dif", unit_dif, 83, 84,
    " \n\tDiffraction source strength files could not be opened; program is terminating\n"};

void copy_frequency(StrengthFile& from, int unit, int records) {
    for (int i = 0; i < records && from.omega; ++i) {
        RecordWriter(unit).put(std::span<const char>(from.record));
        from.next();
    }
}

void merge_strengths(const StrengthKind& kind, std::span<const double> freq, int records) {
    if (fortopen_name(kind.unit, kind.now_name(), "OLD", "UNFORMATTED") != 0 ||
        fortopen_name(kind.unit_old, kind.old_name(), "OLD", "UNFORMATTED") != 0 ||
        fortopen_name(kind.unit_merged, kind.merged_name(), "REPLACE", "UNFORMATTED") != 0)
        shutdown_with(kind.failure);
    StrengthFile old{kind.unit_old, {}, {}}, now{kind.unit, {}, {}};
    old.next();
    now.next();
    const int nfreq = static_cast<int>(freq.size());
    for (int i = 1; i <= nfreq; ++i) {
        const double omega = freq[nth(i)];
        if (old.omega != omega && now.omega != omega) {
            write_both(
                "10(/, ' ifreq =', i5, /, ' nfreq =', i5, /, ' omega(ifreq)=', 1pe12.4, /, ' omega1 =', e12.4, /, ' omega2 =', e12.4)",
                {i, nfreq, omega, old.omega.value_or(0.0), now.omega.value_or(0.0)});
            shutdown_with(" \n\tError combining source strength files; program quitting.\n");
        }
        copy_frequency(old.omega == omega ? old : now, kind.unit_merged, records);
    }
    for (const int unit : {kind.unit_merged, kind.unit, kind.unit_old})
        close_unit(unit);
    std::error_code ignored;
    if (rename_file(kind.merged_name(), kind.now_name())) fs::remove(kind.old_name(), ignored);
}

} // namespace

bool prepare_source_files(bool source, bool adding) {
    std::error_code ignored;
    if (!source)
        for (const auto& kind : {radiation, diffraction})
            fs::remove(kind.now_name(), ignored);
    if (!source || !adding) return true;
    for (const auto& kind : {radiation, diffraction})
        if (!fs::exists(kind.now_name(), ignored))
            shutdown_with(
                " \n\tError opening source strength files. They may not exist. The -source option must be specified on all hyd_analysis commands or on none. Program is quitting.\n");
    if (!rename_file(radiation.now_name(), radiation.old_name())) return false;
    if (rename_file(diffraction.now_name(), diffraction.old_name())) return true;
    rename_file(radiation.old_name(), radiation.now_name());
    return false;
}

void merge_source_files(std::span<const double> freq, int records_rad, int records_dif) {
    merge_strengths(radiation, freq, records_rad);
    merge_strengths(diffraction, freq, records_dif);
}

} // namespace quelor
