// Frequencies added to an earlier analysis: the lists before the run, and the merge of old and new
// results into one sorted set after it.
#pragma once

#include <span>

namespace quelor {

/// Appends the values (rad/s, sorted in the direction of the old list when there are several) to
/// `.hyd_freq` and `.hyd_twnk`, raises `.hyd_wave`(2), and sets the results aside under
/// `$..._orig`. Returns the index of the first added frequency. Stops when there is no earlier
/// analysis.
int add_frequencies(std::span<const double> added, bool keep_potentials);

/// Joins the results set aside with the new ones and sorts all by frequency, in the direction of
/// the first two old ones (descending when there was one). `nold`: number of old frequencies.
void merge_frequencies(int nold);

/// Record units of the source strengths, open only with -source.
inline constexpr int unit_dif = 27, unit_rad = 28;

/// Source-strength files `.rad` and `.dif`: deletes them (no -source), or sets the old ones aside
/// as
/// `.radO`, `.difO` when frequencies are added. False after a message when a file cannot be
/// renamed; both then have their names.
bool prepare_source_files(bool source, bool adding);
/// Combines old and new source strengths in the order of the merged `.hyd_freq`.
/// records_rad, records_dif: records of one frequency in each file. When a combined file cannot
/// take its name, a message says so and both parts stay beside it.
void merge_source_files(std::span<const double> freq, int records_rad, int records_dif);

} // namespace quelor
