// Stiffness of mooring lines at their attachment, and its place in the rigid-body modes of a body.
#pragma once

#include "kernel/command.hpp"
#include "numeric/small_matrix.hpp"

namespace quelor {

/// real (3, 3, nstiff): stiffness of displacements and forces at the connection, in mooring axes.
/// Written by `hyd_mooring_stiffness` and `hyd_mooring_line`.
inline constexpr std::string_view hyd_mooring_k = ".hyd_mooring_K";

/// Turns body axes to mooring axes, `angle` (radians) from mooring x to body x about z:
/// T = [c, -s, 0; s, c, 0; 0, 0, 1].
SmallMatrix<3> mooring_rotation(double angle);

/// The stiffness on the six rigid-body displacements of the body: G^T (T^T K T) G, where G maps
/// them to the displacement of the attachment (x, y, z), u + theta x r. What the tension of the
/// line itself adds to the rotations is not in it.
SmallMatrix<6> mooring_on_body(const SmallMatrix<3>& k, const SmallMatrix<3>& T,
                               const Vec3& attachment);

/// `hyd_mooring_stiffness`, `phyd_mooring_stiffness`, `hyd_assign_mooring`
std::span<const Command> hyd_mooring_rows();

} // namespace quelor
