// Nodal constraints: a degree of freedom that depends linearly on others has no equation of its
// own, u(c) = f1 u(r1) + f2 u(r2) + ... Its entry of `.node_eqs` is minus the number of the
// constraint, and whoever assembles or gathers expands the entry into the independent equations.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

#include <cstddef>
#include <string_view>
#include <vector>

namespace quelor {

// One column a constraint; row 1 is the constrained degree of freedom, the rows after it are the
// independent ones. Written by `nodal_constraint`.
/// integer (maxnodes, constraints): node numbers, 0 in unused rows.
inline constexpr std::string_view const_nodes = ".const_nodes";
/// integer (maxnodes, constraints): degrees of freedom, 1 to 6.
inline constexpr std::string_view const_dofs = ".const_dofs";
/// real (maxnodes, constraints): 1, then the factors f1, f2, ...
inline constexpr std::string_view const_factor = ".const_factor";

/// One independent equation of a constraint.
struct ConstraintTerm {
    std::int32_t equation;
    double factor;
};

/// The constraints of the model by equation. A term without an equation or with a factor of 0 is
/// left out; terms on one equation are added up.
struct Constraints {
    std::vector<ConstraintTerm> terms;
    std::vector<std::size_t> end; ///< constraint k: terms end[k-2] (0 for the first) to end[k-1]
    std::vector<bool> valid;      ///< false: refers to a node or equation that does not exist

    int count() const { return static_cast<int>(end.size()); }
    std::span<const ConstraintTerm> of(int k) const;
};

/// The constraints by the equation numbers eqs (degrees of freedom, nodes), of which `equations`
/// exist; none when the arrays are absent or do not agree.
Constraints read_constraints(Matrix<const std::int32_t> eqs, int equations);

/// Numbers of the constraints by constrained degree of freedom.
class ConstraintNumbers {
public:
    ConstraintNumbers(); ///< from the arrays; says so when they are missing
    /// Constraint of the degree of freedom, the first of several; 0 when there is none.
    int find(int node, int dof) const;

private:
    struct Entry {
        std::int32_t node, dof, number;
    };
    std::vector<Entry> entries_; // ascending
};

/// Ties nodes to masters as type=body of `nodal_constraint` does, with its checks.
struct RigidLink {
    std::int32_t node, master;
};
void link_rigidly(std::span<const RigidLink> links);

std::span<const Command> constraint_rows();

} // namespace quelor
