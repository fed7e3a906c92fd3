// Between the elements and the global arrays: equation lists, assembly of matrices and vectors,
// gathering of displacements. A worker opens what it needs once, before its loop over the elements;
// what it opened refers to arrays of the store and lives no longer than the pass.
//
// A list of equations holds those of an element's degrees of freedom in the element's order: above
// 0 an equation, 0 restrained, -k the k-th nodal constraint. Each service checks the numbers before
// it uses them (the fatal path when one is not possible) and expands the constraints.
#pragma once

#include "fem/constraint.hpp"
#include "kernel/dbfgen.hpp"

namespace quelor {

using EquationList = std::span<const std::int32_t>;

/// The equations of the model.
struct Equations {
    Matrix<const std::int32_t> of_node; ///< (degrees of freedom, nodes): `.node_eqs`
    int count = 0;                      ///< `.#eqs`
    Constraints constraints;

    /// What the entry -k of a list stands for; the fatal path when there is no such constraint.
    std::span<const ConstraintTerm> terms_of(std::int32_t entry) const;
};
/// The fatal path when the equations have not been numbered.
Equations open_equations();

/// Degrees of freedom of nodes, for element_equations.
inline constexpr std::array<int, 3> translations{1, 2, 3};
inline constexpr std::array<int, 6> all_six{1, 2, 3, 4, 5, 6};

/// The list of an element with the same degrees of freedom at each node, node after node; a node
/// number below 1 gives zeros, one that does not exist the fatal path.
/// list  out  nodes.size() * dofs.size()
void element_equations(const Equations& equations, std::span<const std::int32_t> nodes,
                       std::span<const int> dofs, std::span<std::int32_t> list);

// --- matrices -----------------------------------------------------------------------------------

/// A global matrix: a profile vector, or a diagonal vector when `loc` is empty.
struct GlobalMatrix {
    const Equations* equations = nullptr;
    std::span<double> values;
    std::span<const std::int32_t> loc;

    // An element matrix with its constraints expanded.
    struct Entry {
        int column;
        double factor;
    };
    std::vector<Entry> entries;           ///< of L row by row
    std::vector<std::size_t> row_end;     ///< of each row in `entries`
    std::vector<std::int32_t> equation;   ///< of each column of L
    std::vector<double> element, product; ///< Ke made full; L^T Ke L
};
GlobalMatrix open_stiffness(const Equations& equations);
GlobalMatrix open_mass(const Equations& equations);
GlobalMatrix open_damping(const Equations& equations);

/// ke  in  (n, n), n the length of the list; symmetric
void add_stiffness(GlobalMatrix& k, EquationList list, Matrix<const double> ke);
/// A full element matrix; it is lumped for a diagonal global matrix: with u a vector of ones and
/// s the sum of the diagonal, entry i is (u^T me u / s) me(i,i). Nothing is added when s is 0.
void add_mass(GlobalMatrix& m, EquationList list, Matrix<const double> me);
/// A diagonal element matrix.
void add_mass(GlobalMatrix& m, EquationList list, std::span<const double> diagonal);
inline void add_damping(GlobalMatrix& c, EquationList list, Matrix<const double> ce) {
    add_mass(c, list, ce);
}
inline void add_damping(GlobalMatrix& c, EquationList list, std::span<const double> diagonal) {
    add_mass(c, list, diagonal);
}

// --- vectors ------------------------------------------------------------------------------------

/// A global vector, or several side by side.
struct GlobalVector {
    const Equations* equations = nullptr;
    Matrix<double> values; ///< (.#eqs, number)
};
GlobalVector open_internal_force(const Equations& equations); ///< `.f_internal`
GlobalVector open_load_patterns(const Equations& equations);  ///< `.load_pat`

void add_internal_force(GlobalVector& f, EquationList list, std::span<const double> fe);
/// A pattern out of range gives the fatal path.
void add_element_load(GlobalVector& loads, int pattern, EquationList list,
                      std::span<const double> fe);

/// A vector of zeros that exists for a pass, unless there is an array of that name.
class ZeroWhereAbsent {
public:
    ZeroWhereAbsent(std::string_view name, int n) : name_(array_exists(name) ? "" : name) {
        if (!name_.empty()) create_matrix<double>(name_, n, 0);
    }
    ~ZeroWhereAbsent() {
        if (!name_.empty()) delete_array(name_);
    }
    ZeroWhereAbsent(const ZeroWhereAbsent&) = delete;
    ZeroWhereAbsent& operator=(const ZeroWhereAbsent&) = delete;

private:
    std::string_view name_;
};

/// The displacements of a pass: `.disp` (its first column) and `$ddisp`.
struct Displacements {
    const Equations* equations = nullptr;
    std::span<const double> total, increment;
};
Displacements open_displacements(const Equations& equations);

/// ue := the element's `.disp` + `$ddisp`, in the order of the list; 0 where restrained.
void element_displacements(const Displacements& u, EquationList list, std::span<double> ue);
/// x += the same: coordinates node after node, and the list of their translations.
void element_add_displacement(const Displacements& u, EquationList list, std::span<double> x);
/// ve := the element's part of one global vector (.#eqs).
void element_vector_by_equations(const Equations& equations, std::span<const double> vector,
                                 EquationList list, std::span<double> ve);

// --- profile and connectivity -------------------------------------------------------------------

struct ColumnHeights {
    const Equations* equations = nullptr;
    std::span<std::int32_t> heights; ///< `.k_colhite`
};
ColumnHeights open_column_heights(const Equations& equations);
/// Makes room for an element: each column reaches up to the lowest equation of the list.
void add_column_heights(ColumnHeights& heights, EquationList list);
/// The same for every nodal constraint; the last step of the pass of column heights.
void constraint_column_heights();

/// Nodes of all elements, element after element.
struct Connectivity {
    std::vector<std::int32_t> end; ///< element e: nodes end[e-2] (0 for the first) to end[e-1]
    std::vector<std::int32_t> nodes;
};
/// Adds one element, its positive node numbers, to the connectivity.
void write_element_nodes(std::span<const std::int32_t> nodes);
/// Adds all elements of a table, one column an element, node numbers in the first rows.
void elem_conn0(Matrix<const std::int32_t> el, int nodes);
/// What has been collected; the next collection starts empty.
Connectivity take_connectivity();

} // namespace quelor
