#include "elements/element_family.hpp"

#include "kernel/require.hpp"
#include "numeric/finite.hpp"

#include <vector>

namespace quelor {

ElementCounts read_element_counts() {
    ElementCounts counts;
    get_int_par(" m=", counts.materials);
    get_int_par(" n=", counts.elements);
    return counts;
}

bool count_is_possible(std::string_view name, int n, int lowest) {
    if (lowest <= n && n <= most_elements) return true;
    print_both(" \n\tNumber of elements or materials not possible-" + std::string(name) + "\n");
    return false;
}

void require_number(std::int32_t n, int limit, std::string_view message) {
    if (n < 1 || n > limit) shutdown_with(message);
}

void require_finite(std::span<const double> values, std::string_view what) {
    if (all_finite(values)) return;
    shutdown_with(" \n\tA value of " + std::string(what) + " is not a finite number\n");
}

std::int32_t advanced_node(std::int32_t n, std::int32_t inc, std::int64_t steps) {
    if (n == 0) return 0;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(n + steps * inc, std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::max()));
}

ArrayRef element_array(std::string_view message, std::string_view array, TypeCode type, int rows,
                       int cols) {
    const ArrayRef ref = find_array(array);
    if (!ref.is(type) || ref.ndim() > 2 || (rows != any_size && ref.rows() != rows) ||
        (cols != any_size && ref.cols() != cols))
        shutdown_with(message);
    return ref;
}

void add_all_column_heights(Matrix<const std::int32_t> el, int nodes, std::span<const int> dofs) {
    const Equations equations = open_equations();
    ColumnHeights heights = open_column_heights(equations);
    std::vector<std::int32_t> list(as_size(nodes) * dofs.size());
    for (int e = 1; e <= el.cols; ++e) {
        element_equations(equations, el.col(e).first(as_size(nodes)), dofs, list);
        add_column_heights(heights, list);
    }
}

std::int32_t largest_in_row(Matrix<const std::int32_t> el, int row) {
    std::int32_t largest = 0;
    for (int e = 1; e <= el.cols; ++e)
        largest = std::max(largest, el(row, e));
    return largest;
}

std::string_view trial_or_state(std::string_view trial, std::string_view state) {
    return array_exists(trial) ? trial : state;
}

Matrix<double> trial_array(std::string_view trial, int rows, int cols) {
    const ArrayRef old = find_array(trial);
    if (old.is(type_real) && old.rows() == rows && old.cols() == std::max(cols, 1))
        return as_matrix<double>(old);
    return create_matrix<double>(trial, rows, cols);
}

void commit_state(std::string_view trial, std::string_view state) {
    if (array_exists(trial)) move_array(trial, state);
}

std::string replaced(std::string_view text, std::string_view mark, std::string_view by) {
    std::string result(text);
    for (auto at = result.find(mark); at != std::string::npos;
         at = result.find(mark, at + by.size()))
        result.replace(at, mark.size(), by);
    return result;
}

Matrix<const double> require_coordinates() {
    return require_matrix<double>(xyz, 3);
}

Vec3 element_node(Matrix<const double> x, std::int32_t n) {
    if (n < 1) return {0, 0, 0};
    if (n > x.cols) shutdown_with(" \n\tNode number out of range\n");
    return {x(1, n), x(2, n), x(3, n)};
}

} // namespace quelor
