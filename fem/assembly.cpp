// Assembly of element matrices and vectors, gathering of displacements, the pass of column heights
// and the connectivity. Reads `.node_eqs`, `.#eqs`, `.kdiag_loc`, the arrays of constraint.hpp,
// `.disp`, `$ddisp`; adds to `.kstr`, `.mstr`, `.cstr`, `.f_internal`, `.load_pat`, `.k_colhite`.
#include "fem/assembly.hpp"

#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "kernel/process_state.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/profile.hpp"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace quelor {

// --- equations ----------------------------------------------------------------------------------

namespace {

constexpr std::int32_t no_equation = std::numeric_limits<std::int32_t>::max();

/// What a list of equations holds.
struct ListRange {
    std::int32_t lowest = no_equation; ///< of the positive numbers
    bool constrained = false;
};

ListRange scan(const Equations& equations, EquationList list) {
    ListRange range;
    for (const std::int32_t e : list) {
        if (e > equations.count) shutdown_with(" \n\tEquation number not possible\n");
        if (e > 0)
            range.lowest = std::min(range.lowest, e);
        else if (e < 0)
            range.constrained = true;
    }
    return range;
}

/// Calls visit(equation, factor) for the equations that entry e of a list stands for.
template <class F> void visit_terms(const Equations& equations, std::int32_t e, F visit) {
    if (e > 0) return visit(e, 1.0);
    if (e == 0) return;
    for (const ConstraintTerm& term : equations.terms_of(e))
        visit(term.equation, term.factor);
}

} // namespace

std::span<const ConstraintTerm> Equations::terms_of(std::int32_t entry) const {
    if (constraints.count() == 0) {
        if (!array_exists(const_nodes) || !array_exists(const_dofs))
            shutdown_with(" \n\tConstraint nodes info not found\n");
        shutdown_with(" \n\tConstraint factor array not found\n");
    }
    if (entry < -constraints.count()) shutdown_with(" \n\tEquation number not possible\n");
    if (!constraints.valid[nth(-entry)])
        shutdown_with(" \n\tNode or DOF of nodal constraint " + std::to_string(-entry) +
                      " does not exist\n");
    return constraints.of(-entry);
}

Equations open_equations() {
    const auto of_node = require_matrix<std::int32_t>(node_eqs);
    if (of_node.rows < 6) shutdown_with(" \n\tArray .node_eqs is of the wrong type or size\n");
    const int count = require_int(num_eqs);
    return {of_node, count, read_constraints(of_node, count)};
}

void element_equations(const Equations& equations, std::span<const std::int32_t> nodes,
                       std::span<const int> dofs, std::span<std::int32_t> list) {
    std::size_t i = 0;
    for (const std::int32_t node : nodes) {
        if (node > equations.of_node.cols) shutdown_with(" \n\tNode number out of range\n");
        for (const int dof : dofs)
            list[i++] = node < 1 ? 0 : equations.of_node(dof, node);
    }
}

// --- matrices -----------------------------------------------------------------------------------

namespace {

GlobalMatrix open_matrix(const Equations& equations, std::string_view name, bool diagonal) {
    GlobalMatrix matrix;
    matrix.equations = &equations;
    const ArrayRef ref = require_array(name, type_real, {any_size});
    matrix.values = as_span<double>(ref);
    if (!diagonal) {
        matrix.loc = require_vector<std::int32_t>(kdiag_loc, equations.count + 1);
        if (!profile_is_valid(matrix.loc, ref.size()))
            shutdown_with(" \n\tArrays " + std::string(name) + " and .kdiag_loc do not agree\n");
    } else if (ref.size() < equations.count) {
        shutdown_with(" \n\tArray " + std::string(name) + " is of the wrong type or size\n");
    }
    return matrix;
}

/// Adds ke to the profile; no number of the list is negative.
void add_to_profile(GlobalMatrix& k, EquationList list, std::int32_t lowest,
                    Matrix<const double> ke) {
    const int n = static_cast<int>(list.size());
    for (int a = 1; a <= n; ++a) {
        const std::int32_t e = list[nth(a)];
        if (e <= 0) continue;
        const std::int32_t diagonal = k.loc[nth(e)];
        if (e - lowest >= k.loc[nth(e) + 1] - diagonal)
            shutdown_with(" \n\tElement lies outside the profile; number the equations anew\n");
        double* const column = k.values.data() + (diagonal - 1);
        for (int b = 1; b <= n; ++b) {
            const std::int32_t f = list[nth(b)];
            if (f > 0 && f <= e) column[e - f] += ke(a, b);
        }
    }
}

/// Lumps me onto a diagonal vector, keeping the sum of its entries.
void add_lumped(GlobalMatrix& m, EquationList list, Matrix<const double> me) {
    double total = 0;
    double trace = 0;
    for (int j = 1; j <= me.cols; ++j) {
        for (int i = 1; i <= me.rows; ++i)
            total += me(i, j);
        trace += me(j, j);
    }
    if (trace == 0) return;
    for (int i = 1; i <= me.rows; ++i)
        if (list[nth(i)] > 0) m.values[nth(list[nth(i)])] += total / trace * me(i, i);
}

/// The rows of L, which gives the element's degrees of freedom by distinct equations.
void form_expansion(GlobalMatrix& k, EquationList list) {
    k.entries.clear();
    k.row_end.clear();
    k.equation.clear();
    for (const std::int32_t e : list) {
        visit_terms(*k.equations, e, [&](std::int32_t equation, double factor) {
            const auto same = std::ranges::find(k.equation, equation);
            k.entries.push_back({static_cast<int>(same - k.equation.begin()) + 1, factor});
            if (same == k.equation.end()) k.equation.push_back(equation);
        });
        k.row_end.push_back(k.entries.size());
    }
}

/// k.product := L^T ke L, for the equations k.equation.
Matrix<const double> expand(GlobalMatrix& k, EquationList list, Matrix<const double> ke) {
    form_expansion(k, list);
    const int n = static_cast<int>(k.equation.size());
    k.product.assign(k.equation.size() * k.equation.size(), 0.0);
    const Matrix<double> product{k.product.data(), n, n};
    const auto row = [&](int a) {
        const std::size_t begin = a == 1 ? 0 : k.row_end[nth(a) - 1];
        return std::span(k.entries).subspan(begin, k.row_end[nth(a)] - begin);
    };
    for (int b = 1; b <= ke.cols; ++b)
        for (int a = 1; a <= ke.rows; ++a)
            for (const auto& [j, factor_b] : row(b))
                for (const auto& [i, factor_a] : row(a))
                    product(i, j) += factor_a * ke(a, b) * factor_b;
    return product;
}

/// Adds to the profile, or, lumped, to the diagonal vector.
void add_matrix(GlobalMatrix& k, EquationList list, Matrix<const double> ke) {
    ListRange range = scan(*k.equations, list);
    if (range.constrained) {
        ke = expand(k, list, ke);
        list = k.equation;
        range = scan(*k.equations, list);
    }
    if (k.loc.empty()) return add_lumped(k, list, ke);
    add_to_profile(k, list, range.lowest, ke);
}

} // namespace

GlobalMatrix open_stiffness(const Equations& equations) {
    return open_matrix(equations, kstr, false);
}

GlobalMatrix open_mass(const Equations& equations) {
    return open_matrix(equations, mstr, require_int(mstr_type) == 1);
}

GlobalMatrix open_damping(const Equations& equations) {
    return open_matrix(equations, cstr, require_int(cstr_type) == 1);
}

void add_stiffness(GlobalMatrix& k, EquationList list, Matrix<const double> ke) {
    add_matrix(k, list, ke);
}

void add_mass(GlobalMatrix& m, EquationList list, Matrix<const double> me) {
    add_matrix(m, list, me);
}

void add_mass(GlobalMatrix& m, EquationList list, std::span<const double> diagonal) {
    const bool profile = !m.loc.empty();
    if (profile && scan(*m.equations, list).constrained) {
        const int n = static_cast<int>(list.size());
        m.element.assign(list.size() * list.size(), 0.0);
        const Matrix<double> full{m.element.data(), n, n};
        for (int i = 1; i <= n; ++i)
            full(i, i) = diagonal[nth(i)];
        return add_matrix(m, list, full);
    }
    scan(*m.equations, list);
    for (std::size_t a = 0; a < list.size(); ++a)
        visit_terms(*m.equations, list[a], [&](std::int32_t e, double factor) {
            m.values[profile ? nth(m.loc[nth(e)]) : nth(e)] += factor * diagonal[a] * factor;
        });
}

// --- vectors ------------------------------------------------------------------------------------

namespace {

/// f := f + L^T fe
void add_vector(const Equations& equations, std::span<double> f, EquationList list,
                std::span<const double> fe) {
    scan(equations, list);
    for (std::size_t a = 0; a < list.size(); ++a)
        visit_terms(equations, list[a],
                    [&](std::int32_t e, double factor) { f[nth(e)] += factor * fe[a]; });
}

} // namespace

GlobalVector open_internal_force(const Equations& equations) {
    const ArrayRef ref = require_array(f_internal, type_real, {equations.count, 1});
    return {&equations, {static_cast<double*>(ref.data), equations.count, 1}};
}

GlobalVector open_load_patterns(const Equations& equations) {
    const ArrayRef ref = require_array(load_pat, type_real, {equations.count, any_size});
    return {&equations, as_matrix<double>(ref)};
}

void add_internal_force(GlobalVector& f, EquationList list, std::span<const double> fe) {
    add_vector(*f.equations, f.values.col(1), list, fe);
}

void add_element_load(GlobalVector& loads, int pattern, EquationList list,
                      std::span<const double> fe) {
    if (pattern < 1 || pattern > loads.values.cols)
        shutdown_with(" \nAttempt by element to add load out of load pattern range\n");
    add_vector(*loads.equations, loads.values.col(pattern), list, fe);
}

Displacements open_displacements(const Equations& equations) {
    const auto first_column = [&](std::string_view name) {
        return require_matrix<double>(name, equations.count).col(1);
    };
    return {&equations, first_column(disp), first_column(ddisp)};
}

void element_displacements(const Displacements& u, EquationList list, std::span<double> ue) {
    std::ranges::fill(ue, 0.0);
    element_add_displacement(u, list, ue);
}

void element_add_displacement(const Displacements& u, EquationList list, std::span<double> x) {
    scan(*u.equations, list);
    for (std::size_t a = 0; a < list.size(); ++a)
        visit_terms(*u.equations, list[a], [&](std::int32_t e, double factor) {
            x[a] += factor * (u.total[nth(e)] + u.increment[nth(e)]);
        });
}

void element_vector_by_equations(const Equations& equations, std::span<const double> vector,
                                 EquationList list, std::span<double> ve) {
    scan(equations, list);
    for (std::size_t a = 0; a < list.size(); ++a) {
        ve[a] = 0;
        visit_terms(equations, list[a],
                    [&](std::int32_t e, double factor) { ve[a] += factor * vector[nth(e)]; });
    }
}

// --- profile and connectivity -------------------------------------------------------------------

ColumnHeights open_column_heights(const Equations& equations) {
    const ArrayRef ref = require_array(k_colhite, type_integer, {equations.count});
    return {&equations, as_span<std::int32_t>(ref)};
}

void add_column_heights(ColumnHeights& heights, EquationList list) {
    scan(*heights.equations, list);
    std::int32_t lowest = no_equation;
    for (const std::int32_t e : list)
        visit_terms(*heights.equations, e,
                    [&](std::int32_t f, double) { lowest = std::min(lowest, f); });
    for (const std::int32_t e : list)
        visit_terms(*heights.equations, e, [&](std::int32_t f, double) {
            std::int32_t& height = heights.heights[nth(f)];
            height = std::max(height, f - lowest);
        });
}

void constraint_column_heights() {
    const Equations equations = open_equations();
    ColumnHeights heights = open_column_heights(equations);
    for (int k = 1; k <= equations.constraints.count(); ++k)
        if (equations.constraints.valid[nth(k)]) add_column_heights(heights, std::array{-k});
}

static Connectivity& collected() {
    return process_state<Connectivity>();
}

void write_element_nodes(std::span<const std::int32_t> nodes) {
    Connectivity& all = collected();
    for (const std::int32_t n : nodes)
        if (n > 0) all.nodes.push_back(n);
    all.end.push_back(static_cast<std::int32_t>(all.nodes.size()));
}

void elem_conn0(Matrix<const std::int32_t> el, int nodes) {
    if (nodes > 30 || nodes > el.rows) shutdown_with(" \n\tRoutine elem_conn0 failed\n");
    for (int e = 1; e <= el.cols; ++e)
        write_element_nodes(el.col(e).first(as_size(nodes)));
}

Connectivity take_connectivity() {
    return std::exchange(collected(), {});
}

} // namespace quelor
