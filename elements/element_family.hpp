// What the input and the workers of the element types have in common: counts, generation, checks of
// records, look-ups of the type's arrays, state arrays.
#pragma once

#include "fem/assembly.hpp"
#include "fem/elemutil.hpp"
#include "fem/nodes.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <limits>
#include <string>

namespace quelor {

// --- input --------------------------------------------------------------------------------------

/// Most elements or materials of a type: more is a slip of the pen.
inline constexpr int most_elements = 10'000'000;

/// " m=" and " n=" of a command line.
struct ElementCounts {
    std::int32_t materials = 0, elements = 0;
};
ElementCounts read_element_counts();
/// True when lowest <= n <= most_elements; otherwise a message with the name.
bool count_is_possible(std::string_view name, int n, int lowest);

/// A whole number that is absent from a record.
inline constexpr std::int32_t no_key = std::numeric_limits<std::int32_t>::min();
/// The fatal path, with the message, when n is not in 1..limit.
void require_number(std::int32_t n, int limit, std::string_view message);
/// The fatal path when a value is not finite; `what` names the record: "element 5".
void require_finite(std::span<const double> values, std::string_view what);
/// Exactly as many records as the table of materials has rows: read(number) takes the values of the
/// current record, which must be finite; a repeated number counts. A number that is not in the
/// table gives the message and the fatal path.
template <class Read>
void read_materials(Matrix<double> mp, std::string_view prompt, std::string_view bad_number,
                    Read read) {
    for (int record = 1; record <= mp.rows; ++record) {
        std::int32_t number = 0;
        next_record(prompt);
        get_int_par("m=", number);
        require_number(number, mp.rows, bad_number);
        read(number);
        for (int c = 1; c <= mp.cols; ++c)
            require_finite({&mp(number, c), 1}, "material " + std::to_string(number));
    }
}
/// A node number on its way through a generation, n + steps * inc; 0 stays 0, and beyond the range
/// of integers it stays at the range's end, where the check of the nodes finds it.
std::int32_t advanced_node(std::int32_t n, std::int32_t inc, std::int64_t steps);

/// Appends `extra` columns of zeros to an array of `rows` rows, or makes it with them.
template <class T> Matrix<T> append_columns(std::string_view array, int rows, int extra) {
    const ArrayRef ref = find_array(array);
    const bool fits = ref.is(type_code<T>) && ref.ndim() <= 2 && ref.rows() == rows;
    const int present = fits ? ref.cols() : 0;
    Result result(array, "$append");
    const Matrix<T> wide = result.matrix<T>(rows, present + extra);
    if (fits) std::ranges::copy(as_span<T>(ref), wide.data);
    result.place();
    return wide;
}

// --- workers ------------------------------------------------------------------------------------

/// An array of the type, with the rows and columns given (any_size: any); the fatal path, with the
/// message, when it is absent or of another type or shape.
ArrayRef element_array(std::string_view message, std::string_view array, TypeCode type, int rows,
                       int cols);
template <class T>
Matrix<const T> element_matrix(std::string_view message, std::string_view array, int rows,
                               int cols) {
    return as_matrix<const T>(element_array(message, array, type_code<T>, rows, cols));
}
/// A vector of n values.
template <class T>
std::span<const T> element_vector(std::string_view message, std::string_view array, int n) {
    return element_matrix<T>(message, array, n, 1).all();
}
/// The pass of column heights of a table whose elements have the same degrees of freedom at each of
/// `nodes` nodes.
void add_all_column_heights(Matrix<const std::int32_t> el, int nodes, std::span<const int> dofs);
/// Largest value of a row, 0 when there are no columns.
std::int32_t largest_in_row(Matrix<const std::int32_t> el, int row);
/// The trial array when it exists, otherwise the committed one.
std::string_view trial_or_state(std::string_view trial, std::string_view state);
/// The trial array for a pass: the one at hand when it has the wanted shape, otherwise a new one.
/// cols = 0 makes a vector of length rows.
Matrix<double> trial_array(std::string_view trial, int rows, int cols);
/// Moves the trial state over the committed one.
void commit_state(std::string_view trial, std::string_view state);
/// The text with each mark replaced, for the help of types that share it.
std::string replaced(std::string_view text, std::string_view mark, std::string_view by);

/// Coordinates of the model's nodes; the fatal path when there are none.
Matrix<const double> require_coordinates();
/// Coordinates of node n; zeros for a number below 1, the fatal path beyond the list.
Vec3 element_node(Matrix<const double> x, std::int32_t n);
/// The same of the first N nodes of a list.
template <std::size_t N>
std::array<Vec3, N> element_coordinates(Matrix<const double> x,
                                        std::span<const std::int32_t> nodes) {
    std::array<Vec3, N> coordinates;
    for (std::size_t i = 0; i < N; ++i)
        coordinates[i] = element_node(x, nodes[i]);
    return coordinates;
}

} // namespace quelor
