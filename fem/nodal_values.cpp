// Reads `.node_eqs`, the arrays of the nodal constraints, `$th_vel`.
#include "fem/nodal_values.hpp"

#include "fem/nodes.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>

namespace quelor {

double NodalValues::at(std::span<const double> vector, int dof, int node) const {
    const std::int32_t q = eqs(dof, node);
    if (q > 0) return vector[nth(q)];
    double sum = 0;
    if (q < 0)
        for (const ConstraintTerm& term : constraints.of(-q))
            sum += term.factor * vector[nth(term.equation)];
    return sum;
}

std::array<double, 6> NodalValues::six(std::span<const double> vector, int node) const {
    std::array<double, 6> values{};
    for (int dof = 1; dof <= std::min(dofs(), 6); ++dof)
        values[nth(dof)] = at(vector, dof, node);
    return values;
}

bool NodalValues::fit(int n) {
    constraints = read_constraints(eqs, n);
    const auto possible = [&](std::int32_t q) {
        return q >= 0 ? q <= n : q >= -constraints.count() && constraints.valid[nth(-q)];
    };
    if (std::ranges::all_of(eqs.all(), possible)) return true;
    return print_both(" \n\tEquation number not possible\n"), false;
}

std::optional<NodalValues> open_nodal_values() {
    const ArrayRef ref = find_array(node_eqs);
    if (!ref.is(type_integer)) return print_both(" \n\tArray .node_eqs not found\n"), std::nullopt;
    return NodalValues{as_matrix<const std::int32_t>(ref), {}};
}

bool nodal_velocities(std::span<const std::int32_t> nodes, Matrix<double> velocities) {
    auto values = open_nodal_values();
    if (!values) return false;
    const ArrayRef ref = find_array(th_vel);
    if (!ref.is(type_real)) return not_found(th_vel), false;
    if (!values->fit(ref.rows())) return false;
    const auto vector = as_matrix<const double>(ref).col(1);
    int row = 0;
    for (const std::int32_t n : nodes) {
        if (!node_in_range(n, values->eqs.cols)) return false;
        ++row;
        int column = 0;
        for (const double v : values->six(vector, n))
            velocities(row, ++column) = v;
    }
    return true;
}

} // namespace quelor
