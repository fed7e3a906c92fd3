// The part of the panel mesh that belongs to one body, as a command names it by `body=`, `nodes=`
// and `panels=`.
#pragma once

#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hydrostatics.hpp"

#include <array>
#include <vector>

namespace quelor {

struct MeshPart {
    int body;                          ///< body number
    int symmetry;                      ///< of the system, 0 to 2
    int nnodes, np;                    ///< numbers of nodes and of wet panels of the whole mesh
    std::array<std::int32_t, 2> nodes; ///< first and last node of the body
    Matrix<const double> xyz;          ///< (3, nnodes or more)
    std::span<const char> active;      ///< 'A' for a defined node
    PanelMesh panels;                  ///< of the whole mesh, without corners
    std::vector<std::int32_t> list;    ///< wet numbers of the body's panels
};

/// Reads the parameters, by default body 1 and the whole mesh, and finds the arrays. A missing
/// array or a range outside the mesh takes the fatal path.
MeshPart hyd_mesh_part();

/// The body-fixed frame of a body.
inline BodyFrame frame_of(const BodyAxes& axes) {
    return body_frame(axes.xb, axes.yb, axes.zb, axes.theta);
}

} // namespace quelor
