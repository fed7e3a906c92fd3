// Values at the degrees of freedom of the nodes, taken from vectors over the equations.
#pragma once

#include "fem/constraint.hpp"
#include "kernel/dbfgen.hpp"

#include <array>
#include <optional>
#include <string_view>

namespace quelor {

/// real (.#eqs): velocities during a direct time history.
inline constexpr std::string_view th_vel = "$th_vel";

/// The equations of the nodes, for looking values up; refers to `.node_eqs`.
struct NodalValues {
    Matrix<const std::int32_t> eqs; ///< (degrees of freedom, nodes)
    Constraints constraints;

    int dofs() const { return eqs.rows; }
    /// Value of a degree of freedom: that of its equation, through the nodal constraint when it has
    /// one, 0 when it is restrained.
    double at(std::span<const double> vector, int dof, int node) const;
    /// The first six degrees of freedom of a node.
    std::array<double, 6> six(std::span<const double> vector, int node) const;
    /// Reads the constraints. True when a vector of n values holds every equation, and the
    /// constraints that the nodes name exist; otherwise a message.
    bool fit(int n);
};
/// The equations, not yet the constraints; nothing, after a message, when `.node_eqs` is absent.
std::optional<NodalValues> open_nodal_values();

/// Velocities of the first six degrees of freedom during a direct time history. False after a
/// message when there are none, or a node does not exist. velocities  out  (nodes.size(), 6)
bool nodal_velocities(std::span<const std::int32_t> nodes, Matrix<double> velocities);

} // namespace quelor
