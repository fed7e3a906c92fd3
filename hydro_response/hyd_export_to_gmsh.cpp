#include "hydro_response/hyd_export_to_gmsh.hpp"

#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>

namespace quelor {

namespace {

NodeSet node_set(PictureMesh& picture) {
    const int n = picture.nodes();
    return {{picture.xyz.data(), 3, n}, picture.active, n, n};
}

/// False, after a message, when a panel has a node that the mesh does not define.
bool nodes_defined(std::span<const std::int32_t> corners, std::span<const char> active) {
    const auto defined = [&](std::int32_t n) {
        return 1 <= n && as_size(n) <= active.size() && active[nth(n)] == 'A';
    };
    if (std::ranges::all_of(corners, defined)) return true;
    print_both(" \n\tPanels have nodes that are not defined; enter the panels again\n");
    return false;
}

/// The nodes of a mesh, added to the picture. False after a message.
bool add_nodes(const NodeKind& kind, PictureMesh& picture) {
    Inputs inputs;
    const int count = inputs.integer(kind.count);
    const auto xyz = inputs.matrix<double>(kind.xyz, 3);
    const auto active = inputs.vector<char>(kind.active);
    if (!inputs) return false;
    if (count < 1) return print_both(" \n\tNumber nodes < 1\n"), false;
    if (xyz.cols < count || active.size() < as_size(count))
        return print_both(" \n\tNodal arrays do not agree in size\n"), false;
    picture.xyz.insert(picture.xyz.end(), xyz.data, xyz.data + std::ptrdiff_t{3} * count);
    picture.active.insert(picture.active.end(), active.begin(), active.begin() + count);
    return true;
}

} // namespace

bool add_mesh(const PanelKind& kind, DrawnPart part, PictureMesh& picture, DrawnPanels& panels) {
    const int behind = picture.nodes();
    if (!add_nodes(*kind.nodes, picture)) return false;
    panels.last = get_int(kind.count);
    if (panels.last < 1) return print_both(" \n\tNumber of panels < 1\n"), false;
    Inputs inputs;
    const auto el = inputs.matrix<std::int32_t>(kind.el, 4, panels.last);
    const auto code = inputs.vector<char>(kind.code, panels.last);
    if (!inputs) return false;
    const auto active = std::span<const char>(picture.active).subspan(as_size(behind));
    for (int e = 1; e <= panels.last; ++e) {
        const char c = code[nth(e)];
        if (c == ' ' || (part == DrawnPart::wet && c != 'W' && c != 'V')) continue;
        if (!nodes_defined(el.col(e), active)) return false;
        for (const std::int32_t n : el.col(e))
            panels.values.push_back(behind + n);
        panels.values.push_back(e);
    }
    if (!panels.values.empty()) return true;
    print_both(" \n\tNumber of panels < 1\n");
    return false;
}

void write_picture_mesh(PictureMesh& picture) {
    gmsh_write_format();
    gmsh_write_nodes(node_set(picture));
    gmsh_begin_elements(picture.hull.table().cols + picture.sea.table().cols);
    gmsh_write_panels(picture.hull.table(), 1, picture.hull.last);
    gmsh_write_panels(picture.sea.table(), 2, picture.sea.last);
    gmsh_end_elements();
}

void write_picture_frame(PictureMesh& picture, int step, double time, Matrix<const double> u) {
    gmsh_write_node_data(step, time, node_set(picture), u);
}

void real_parts_at(Complex8 e, std::span<const Complex8> z, std::span<double> out) {
    for (std::size_t i = 0; i < z.size(); ++i)
        out[i] = z[i].real() * e.real() - z[i].imag() * e.imag() + 0.0;
}

} // namespace quelor
