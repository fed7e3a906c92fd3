// Reads: `.hyd_nbodies`, `.hyd_symmetry`, `.hyd_#nodes`, `.hyd_#panels`, `.hyd_#wetpanels`,
// `.hyd_xyz`, `.hyd_node_active`, `.hyd_xyzc`, `.hyd_panela`, `.hyd_paneln`, `.hyd_panel_#map`.
#include "hydro_model/mesh_part.hpp"

#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

namespace quelor {

namespace {

bool within(const std::array<std::int32_t, 2>& range, int last) {
    return 1 <= range[0] && range[0] <= range[1] && range[1] <= last;
}

} // namespace

MeshPart hyd_mesh_part() {
    const int nbodies = hyd_body_count();
    MeshPart part{};
    part.symmetry = require_int(hyd_symmetry);
    part.np = require_count(hyd_num_wetpanels, 1, most_panels);
    const int npanels = require_count(hyd_num_panels, 1, most_panels);
    part.nnodes = require_count(hyd_num_nodes, 1, most_nodes);
    part.xyz = require_matrix<double>(hyd_xyz, 3);
    part.active = require_vector<char>(hyd_node_active);
    part.panels = {require_matrix<double>(hyd_xyzc, part.np, 3),
                   require_matrix<double>(hyd_paneln, 3, part.np),
                   require_vector<double>(hyd_panela, part.np)};
    const auto map = require_vector<std::int32_t>(hyd_panel_map, npanels);

    part.body = 1;
    part.nodes = {1, part.nnodes};
    std::array<std::int32_t, 2> range{1, npanels};
    get_int_par(" body=", part.body);
    get_int_par(" nodes=", part.nodes);
    get_int_par(" panels=", range);
    if (part.symmetry < 0 || part.symmetry > 2)
        shutdown_with(" \n\tsymmetry should be 0, 1 or 2\n");
    if (part.body < 1 || part.body > nbodies) shutdown_with(" \n\tIllegal body number\n");
    const auto stored = std::min(part.xyz.cols, static_cast<int>(part.active.size()));
    if (!within(part.nodes, std::min(part.nnodes, stored)))
        shutdown_with(" \n\tIllegal node range\n");
    if (!within(range, npanels)) shutdown_with(" \n\tIllegal panel range\n");
    for (auto e = range[0]; e <= range[1]; ++e) {
        const int p = map[nth(e)];
        if (p > part.np) shutdown_with(" \n\tIllegal panel range\n");
        if (p > 0) part.list.push_back(p);
    }
    return part;
}

} // namespace quelor
