// The source strengths that `hyd_analysis` keeps with -source: files of sequential records, checked
// as a whole against the model before the first strength is used, then read frequency by frequency.
//
// `.rad`: (omega, strengths (np,nmode)) for each frequency. `.dif`: (omega, heading, strengths
// (np)) for each frequency and, within it, each heading. Of a symmetric model there is a record a
// class.
#pragma once

#include "numeric/types.hpp"

#include <string>

namespace quelor {

struct SourceFileKind {
    int unit;
    std::string_view extension;
    bool by_heading;                ///< a record for each heading, which stands in it
    std::string_view mixed_classes; ///< message for the file of a symmetric model
};
inline constexpr SourceFileKind radiation_file{
    28, ".rad", false,
    " \n\tSymmetry in project does not agree with symmetry code in file *.rad.\n"};
inline constexpr SourceFileKind diffraction_file{
    27, ".dif", true,
    " \n\tSymmetry in project does not agree with symmetry code in file *.dif.\n"};

/// What the records must agree with.
struct SourceModel {
    int np, columns; ///< of the strengths of one record: modes, or 1
    std::span<const double> freq, beta;
};

/// Opens the file and checks all its records; an empty name is the project's file. False, and the
/// unit closed, after a message: `other_size` for another number or length of records. The file of
/// a symmetric model takes the fatal path.
bool open_sources(const SourceFileKind& kind, std::string name, const SourceModel& model,
                  std::string_view other_size);

/// Strengths of the next frequency, (np,nmode) or (np,nbeta).
void read_sources(const SourceFileKind& kind, Matrix<Complex4> strengths);

} // namespace quelor
