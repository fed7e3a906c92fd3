// The picture of hull and sea as a Gmsh file [Gmsh 2.2]: the panels of the structure and, behind
// them in the numbers of nodes and panels, those of the free surface; vectors at the nodes, and
// numbers at nodes and panels, as steps of views.
#pragma once

#include "fem/export_to_gmsh.hpp"
#include "hydro_model/panel_input.hpp"

namespace quelor {

/// The panels of one mesh that are drawn, in the order of their numbers.
struct DrawnPanels {
    std::vector<std::int32_t> values; ///< five each: nodes 1 to 4 and the panel's number
    int last = 0;                     ///< largest number that a panel of the mesh can have

    Matrix<const std::int32_t> table() const {
        return {values.data(), 5, static_cast<int>(values.size() / 5)};
    }
};

struct PictureMesh {
    std::vector<double> xyz;  ///< (3, nodes) of the hull, then of the sea
    std::vector<char> active; ///< 'A' for a defined node
    int hull_nodes = 0;       ///< highest node number of the hull
    DrawnPanels hull, sea;

    int nodes() const { return static_cast<int>(active.size()); }
    int sea_nodes() const { return nodes() - hull_nodes; }
};

enum class DrawnPart { all, wet };

/// Adds the nodes of a mesh, and to `panels` those of its panels that are drawn. False, after a
/// message, when an array is absent or does not fit, or when there is no panel to draw.
bool add_mesh(const PanelKind& kind, DrawnPart part, PictureMesh& picture, DrawnPanels& panels);

/// The sections before the data: format, nodes, elements. The physical and geometrical entity is 1
/// for the hull, 2 for the sea.
void write_picture_mesh(PictureMesh& picture);

/// One frame: translations (3, nodes) of the picture's nodes.
void write_picture_frame(PictureMesh& picture, int step, double time, Matrix<const double> u);

/// Re(z e) of every number, without negative zeros: the instant at which exp(i omega t) is e.
void real_parts_at(Complex8 e, std::span<const Complex8> z, std::span<double> out);

} // namespace quelor
