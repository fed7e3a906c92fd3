// Tables of complex values at the panel centres, for the text files of the post-processing
// commands.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// The panels of the full set, as the rows of a table name them.
struct PanelRows {
    int symmetry;
    std::span<const std::int32_t> rmap; ///< (np) number of each wet panel as it was entered
    int digits = 5;                     ///< significant digits of a value
};

/// What the prefixes of the rows mean; nothing without symmetry.
void write_prefix_explanation(int unit, int symmetry);

/// The row of headings or of mode numbers over the columns.
void write_heading_row(int unit, const PanelRows& rows, std::span<const double> beta);
void write_mode_row(int unit, const PanelRows& rows, int nmode);
/// A row for each panel of each copy: prefix, number, real and imaginary parts.
/// table  in  (columns,np*ns), blocks of panels in the order of the images
void write_panel_rows(int unit, const PanelRows& rows, Matrix<const Complex8> table);

} // namespace quelor
