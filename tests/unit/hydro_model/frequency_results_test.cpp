#include "hydro_analysis/hyd_merge.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace quelor {
namespace {

/// Coefficients and potentials that hold the frequency they belong to.
void store_results(std::span<const double> freq) {
    const int n = static_cast<int>(freq.size());
    const auto addm = create_array3<double>(hyd_addm, 2, 2, n);
    create_array3<double>(hyd_damp, 2, 2, n);
    create_array3<Complex8>(hyd_fi, 2, 1, n);
    create_array3<Complex8>(hyd_fd, 2, 1, n);
    const auto potential = create_array3<Complex8>(hyd_potrad, 3, n, 2);
    create_array3<Complex8>(hyd_potincm, 3, n, 1);
    create_array3<Complex8>(hyd_potdiff, 3, n, 1);
    for (int i = 1; i <= n; ++i) {
        const double f = freq[static_cast<std::size_t>(i - 1)];
        addm(2, 1, i) = f;
        for (int j = 1; j <= 2; ++j)
            potential(3, i, j) = Complex8(f, j);
    }
}

void store_waves(std::span<const double> freq) {
    const int n = static_cast<int>(freq.size());
    const auto wave = create_matrix<std::int32_t>(hyd_wave, 2, 0);
    wave(1) = 1;
    wave(2) = n;
    std::ranges::copy(freq, create_matrix<double>(hyd_freq, n, 0).data);
    create_matrix<double>(hyd_twnk, n, 2);
}

std::vector<double> merged(const std::vector<double>& old, const std::vector<double>& added) {
    db_clear();
    store_waves(old);
    store_results(old);
    const int first = add_frequencies(added, true);
    EXPECT_EQ(first, static_cast<int>(old.size()) + 1);
    const auto all = as_span<double>(find_array(hyd_freq));
    std::vector<double> joined(all.begin(), all.end());
    store_results(joined); // the analysis fills only the new ones; the old are taken from the old
    const auto addm = as_array3<double>(find_array(hyd_addm));
    for (int i = 1; i < first; ++i)
        addm(2, 1, i) = -1;
    merge_frequencies(first - 1);
    const auto freq = as_span<double>(find_array(hyd_freq));
    const auto mass = as_array3<double>(find_array(hyd_addm));
    const auto potential = as_array3<Complex8>(find_array(hyd_potrad));
    for (int i = 1; i <= static_cast<int>(freq.size()); ++i) {
        const double f = freq[static_cast<std::size_t>(i - 1)];
        EXPECT_EQ(mass(2, 1, i), f);
        EXPECT_EQ(potential(3, i, 1), Complex8(f, 1));
        EXPECT_EQ(potential(3, i, 2), Complex8(f, 2));
    }
    EXPECT_FALSE(array_exists("$addm_orig"));
    EXPECT_FALSE(array_exists("$potrad_orig"));
    return {freq.begin(), freq.end()};
}

TEST(AddedFrequencies, take_their_sorted_places_in_every_result) {
    EXPECT_EQ(merged({0.5, 1.0, 1.5}, {1.2, 0.4}), (std::vector{0.4, 0.5, 1.0, 1.2, 1.5}));
    EXPECT_EQ(merged({1.5, 0.5}, {1.0, 2.0, 0.1}), (std::vector{2.0, 1.5, 1.0, 0.5, 0.1}));
    // One old frequency tells no direction: the list then descends.
    EXPECT_EQ(merged({1.0}, {2.0, 0.5}), (std::vector{2.0, 1.0, 0.5}));
}

TEST(AddedFrequencies, results_of_another_number_of_modes_are_not_taken_over) {
    create_array3<double>("old", 2, 2, 3);
    for (const auto& [modes, taken] : {std::pair{2, true}, {3, false}}) {
        create_array3<double>("new", modes, modes, 4);
        EXPECT_EQ(copy_leading_frequencies(find_array("old"), find_array("new"), 3), taken);
    }
}

} // namespace
} // namespace quelor
