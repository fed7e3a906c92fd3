#include "matrix/print.hpp"

#include "kernel/fortfile.hpp"

#include <algorithm>

namespace quelor {

namespace {

constexpr int block_columns = 6;
constexpr int row_increment = 5;

void write_heading(int unit, int first, int last) {
    FormatItems columns;
    for (int j = first; j <= last; ++j)
        columns.add(j);
    write_unit(unit, "('  ROW/COL',i11,5i12)", columns);
}

void write_row(int unit, Matrix<const double> matrix, int i, int first, int last) {
    FormatItems items;
    const bool numbered = i == 1 || i % row_increment == 0;
    if (numbered) {
        items.add(i);
    } else {
        items.add("    *");
    }
    for (int j = first; j <= last; ++j)
        items.add(matrix(i, j));
    if (numbered) {
        write_unit(unit, "(i5,3x,1p,6e12.4)", items);
    } else {
        write_unit(unit, "(a5,3x,1p,6e12.4)", items);
    }
}

} // namespace

void write_matrix(int unit, Matrix<const double> matrix) {
    for (int first = 1; first <= matrix.cols; first += block_columns) {
        const int last = std::min(first + block_columns - 1, matrix.cols);
        write_heading(unit, first, last);
        for (int i = 1; i <= matrix.rows; ++i)
            write_row(unit, matrix, i, first, last);
        write_text(unit, "\n");
    }
}

} // namespace quelor
