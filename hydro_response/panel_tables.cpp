#include "hydro_response/panel_tables.hpp"

#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "hydro_response/response_values.hpp"
#include "kernel/fortfile.hpp"

#include <string>

namespace quelor {

namespace {

/// Width over a column of two values.
std::string column_width(const PanelRows& rows) {
    return std::to_string(2 * rows.digits + 14);
}

std::string_view prefix(int symmetry, int copy) {
    constexpr std::string_view twofold[]{"   ", "R2 ", "R3 ", "R4 "};
    return symmetry == 1 && copy == 2 ? "R  " : twofold[copy - 1];
}

} // namespace

void write_prefix_explanation(int unit, int symmetry) {
    if (symmetry == 1)
        write_unit(
            unit,
            "(/, 5x, 'The panel number is the number of the actual panel. If an R precedes the number, ', /, 5x, 'the results are for the reflected panel that corresponds to the actual panel.')");
    if (symmetry == 2)
        write_unit(
            unit,
            "(/, 5x, 'The panel number is the number of the actual panel. A preceding R indicates', /, 5x, 'the results are for a reflected panel that corresponds to the actual panel.', /, 5x, 'R2 is the reflected panel in quadrant x>0,y<0;', /, 5x, 'R3 is the reflected panel in quadrant x<0,y>0;', /, 5x, 'R4 is the reflected panel in quadrant x<0,y<0')");
}

void write_heading_row(int unit, const PanelRows& rows, std::span<const double> beta) {
    const std::string form =
        "('      No.', (" + std::to_string(beta.size()) + "f" + column_width(rows) + ".4))";
    FormatItems items;
    for (const double angle : beta)
        items.add(angle * degrees);
    write_unit(unit, Format::from_text(form), items);
}

void write_mode_row(int unit, const PanelRows& rows, int nmode) {
    const std::string form =
        "('      No.', (" + std::to_string(nmode) + "i" + column_width(rows) + "))";
    FormatItems items;
    for (int m = 1; m <= nmode; ++m)
        items.add(m);
    write_unit(unit, Format::from_text(form), items);
}

void write_panel_rows(int unit, const PanelRows& rows, Matrix<const Complex8> table) {
    const std::string form = "(a, i6, 1p, (" + std::to_string(2 * table.rows) + "e" +
                             std::to_string(rows.digits + 7) + "." +
                             std::to_string(rows.digits - 1) + "))";
    const Format format = Format::from_text(form);
    const int np = static_cast<int>(rows.rmap.size());
    for (int copy = 1; copy <= image_count(rows.symmetry); ++copy) {
        const int first = (image_of_copy(rows.symmetry, copy) - 1) * np;
        for (int p = 1; p <= np; ++p)
            write_unit(unit, format,
                       {prefix(rows.symmetry, copy), rows.rmap[nth(p)],
                        std::span<const Complex8>(table.col(first + p))});
    }
}

} // namespace quelor
