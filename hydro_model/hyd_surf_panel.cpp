// Panels of the free surface: input, subdivision and printing. Writes the arrays of
// hyd_surf_panel.hpp; subdivision adds to the nodes of the free-surface mesh.
#include "hydro_model/hyd_surf_panel.hpp"

#include "fem/elemutil.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/point_index.hpp"

#include <algorithm>

namespace quelor {

namespace {

/// From the filled table to codes, map and types.
void finish_surface_panels() {
    const auto panels = checked_panels(hyd_surface_panels);
    std::vector<char> codes(as_size(get_int(hyd_num_surf_panels)), ' ');
    for (const TablePanel& panel : panels)
        codes[nth(panel.number)] = 'W';
    number_panels(hyd_surface_panels, codes, [](char code) { return code == 'W'; });
    store_types(hyd_surface_panels, panels);
}

void read_surface_panels() {
    const int n = read_table_size(hyd_surface_panels);
    if (n == 0) return;
    delete_panels(hyd_surface_panels);
    read_panel_records(hyd_surface_panels, n);
    finish_surface_panels();
}

// --- subdivision --------------------------------------------------------------------------------

constexpr std::int64_t most_parts = 1'000'000; // beyond it the numbers of parts are a mistake
constexpr double same_place = 1e-8;

struct Division {
    int first = 0, last = 0; // panels to divide
    int parts12 = 0;         // parts in the direction from node 1 to node 2
    int parts14 = 0;         // parts in the direction from node 1 to node 4
};

/// Nodes by number, the new ones behind those of the list; a place is looked up before it is used.
struct GrowingNodes {
    std::vector<Vec3> x;
    PointIndex index;

    int number_at(const Vec3& p) {
        const Vec3 tol{same_place, same_place, same_place};
        int found = 0;
        index.visit_candidates(p, tol, [&](int n) {
            if (within(x[nth(n)], p, tol) && (found == 0 || n < found)) found = n;
        });
        if (found != 0) return found;
        x.push_back(p);
        index.add(static_cast<int>(x.size()), p);
        return static_cast<int>(x.size());
    }
};

/// Point of the bilinear patch of four corners; s runs from corner 1 to 2, t from corner 1 to 4.
Vec3 patch_point(const Corners& c, double s, double t) {
    Vec3 p;
    for (std::size_t i = 0; i < 3; ++i)
        p[i] = (1 - t) * ((1 - s) * c[0][i] + s * c[1][i]) + t * ((1 - s) * c[3][i] + s * c[2][i]);
    return p;
}

/// Node numbers of the parts of one panel, four a part, in rows along 1-2.
std::vector<std::array<std::int32_t, 4>> parts_of(const TablePanel& panel,
                                                  std::span<const std::int32_t> corners,
                                                  const Division& d, GrowingNodes& nodes) {
    const auto at = [&](int i, int j) -> std::int32_t {
        const bool end12 = i == 0 || i == d.parts12;
        const bool end14 = j == 0 || j == d.parts14;
        if (end12 && end14) return corners[j == 0 ? (i == 0 ? 0u : 1u) : (i == 0 ? 3u : 2u)];
        return nodes.number_at(patch_point(panel.nodes, static_cast<double>(i) / d.parts12,
                                           static_cast<double>(j) / d.parts14));
    };
    std::vector<std::array<std::int32_t, 4>> parts;
    for (int j = 0; j < d.parts14; ++j)
        for (int i = 0; i < d.parts12; ++i)
            parts.push_back({at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)});
    return parts;
}

/// The keys of the command line, checked; parts12 is 0 after a message.
Division read_division(int n) {
    std::array<std::int32_t, 2> range{1, n};
    std::array<std::int32_t, 2> parts{1, 1};
    get_int_par(" range=", range);
    get_int_par(" nxm=", parts);
    if (range[0] < 1 || range[0] > n)
        return print_both(" \n\tCould not find first element in range to subdivide\n"), Division{};
    if (range[1] < range[0] || range[1] > n)
        return print_both(" \n\tCould not find last element in range to subdivide\n"), Division{};
    if (parts[0] < 1 || parts[1] < 1)
        return print_both(" \n\tNumbers of parts (nxm) must be greater than 0\n"), Division{};
    return {range[0], range[1], parts[0], parts[1]};
}

/// Stores the nodes behind the first `count`; the list grows when it has no room for them.
void store_new_nodes(const GrowingNodes& nodes, int count) {
    const int n = static_cast<int>(nodes.x.size());
    if (n == count) return;
    if (n > get_int(hyd_num_surf_nodes_tot)) {
        const NodeSet old = open_nodes(hyd_surface_nodes);
        const std::vector<char> active(old.active.begin(), old.active.begin() + count);
        Result xyz(hyd_surf_xyz, "$hyd_surf_xyz");
        std::copy_n(old.xyz.data, std::ptrdiff_t{3} * count, xyz.matrix<double>(3, n).data);
        new_nodes(hyd_surface_nodes, n);
        xyz.place();
        std::ranges::copy(active, open_nodes(hyd_surface_nodes).active.begin());
    }
    NodeSet set = open_nodes(hyd_surface_nodes);
    for (int k = count + 1; k <= n; ++k)
        set.define(k, nodes.x[nth(k)]);
    create_int_scalar(hyd_num_surf_nodes, n);
    delete_array(hyd_surf_disp);
}

/// Divides each panel of the range. The first part keeps its panel's number; the others take the
/// numbers after the largest, in order.
void divide_panels(const Division& d, std::span<const TablePanel> panels) {
    const auto el = as_matrix<std::int32_t>(find_array(hyd_surf_panel_el));
    const NodeSet set = open_nodes(hyd_surface_nodes);
    GrowingNodes nodes;
    for (int k = 1; k <= set.count; ++k) {
        nodes.x.push_back(set.at(k));
        if (set.is_active(k)) nodes.index.add(k, set.at(k));
    }
    std::vector<std::array<std::int32_t, 4>> added;
    std::vector<std::array<std::int32_t, 4>> table(as_size(el.cols));
    for (int e = 1; e <= el.cols; ++e)
        std::ranges::copy(el.col(e), table[nth(e)].begin());
    for (const TablePanel& panel : panels) {
        if (panel.number < d.first || panel.number > d.last) continue;
        const auto parts = parts_of(panel, el.col(panel.number), d, nodes);
        table[nth(panel.number)] = parts.front();
        added.insert(added.end(), parts.begin() + 1, parts.end());
    }
    table.insert(table.end(), added.begin(), added.end());

    store_new_nodes(nodes, set.count);
    const int n = static_cast<int>(table.size());
    Result result(hyd_surf_panel_el, "$hyd_surf_panel_subdivide");
    const auto divided = result.matrix<std::int32_t>(4, n);
    for (int e = 1; e <= n; ++e)
        std::ranges::copy(table[nth(e)], divided.col(e).begin());
    delete_panels(hyd_surface_panels);
    result.place();
    create_int_scalar(hyd_num_surf_panels, n);
    finish_surface_panels();
}

void subdivide_surface_panels() {
    const ArrayRef ref = find_array(hyd_surf_panel_el);
    if (!ref.is(type_integer) || ref.rows() != 4)
        shutdown_with(" \n\tHYD_SURF_PANEL element information not found\n");
    const Division d = read_division(ref.cols());
    if (d.parts12 == 0) return;
    const auto panels = checked_panels(hyd_surface_panels);
    const auto in_range = std::ranges::count_if(panels, [&](const TablePanel& panel) {
        return d.first <= panel.number && panel.number <= d.last;
    });
    if (in_range * d.parts12 > most_parts / d.parts14)
        return print_both(" \n\tToo many panels to generate\n");
    divide_panels(d, panels);
}

} // namespace

void hyd_surf_panel_element(Request request) {
    switch (task_of(request)) {
    case Task::input:
        return has_flag(" -subdivide") ? subdivide_surface_panels() : read_surface_panels();
    case Task::print_input:
        return print_panels(hyd_surface_panels);
    case Task::print_state:
    case Task::print_response:
        return print_both(hyd_surface_panels.invalid_print);
    default:
        return;
    }
}

std::string_view hyd_surf_panel_help() {
    return "Command Syntax\n\thyd_surf_panel  n=?\n\t"
           "   n=nel  nodes=node1,node2,node3,node4  [gen=gen  inc=inc1,inc2]  [gen_2d=gen_2d  "
           "inc_2d=inc1_2d,inc2_2d  inc_el=inc_el]\n\t   (blank line)\n\t"
           "hyd_surf_panel  -subdivide  range=?,?  nxm=?,?\n\n"
           "Input of the panels of the free surface. They are only used when exporting the surface "
           "elevation to graphics programs for visualization. They are not used for any "
           "calculations.\n\n"
           "n\n\tOn the command line the largest panel number (required); on a record the number of "
           "its panel. A blank line ends the input.\n\n"
           "nodes\n\tNumbers of the corner nodes (hyd_surf_nodes), clockwise looking at the surface "
           "from above. For a triangle node4 is 0 or equal to node3.\n\n"
           "gen, inc, gen_2d, inc_2d, inc_el\n\tGeneration, as for hyd_panel. Defaults are 0; inc_el "
           "defaults to gen+1.\n\n"
           "-subdivide\n\tDivide each panel of a range of those at hand into smaller ones. Nodes that "
           "already lie at the corners of the parts are used, others are added. The first part "
           "keeps the number of its panel; the others follow the largest number.\n\n"
           "range\n\tFirst and last panel to divide. Default is all panels.\n\n"
           "nxm\n\tNumbers of parts in the direction from node 1 to node 2, and from node 1 to node 4. "
           "Defaults are 1.\n\n"
           "Example:\n\thyd_surf_panel n=1\n\tn=1 nodes=1,2,3,4\n\t(blank line)\n\t"
           "hyd_surf_panel -subdivide range=1,1 nxm=10,5\n\n"
           "Arrays created: .hyd_surf_panel_el(4,n), .hyd_surf_panel_code(n), "
           ".hyd_surf_panel_#map(n), .hyd_#surf_panels, .hyd_#surf_wetpanels, "
           ".hyd_surf_paneltype.\n\n"
           "See Also\n\thyd_surf_nodes\n\tphyd_surf_panel\n\thyd_surf_elevation\n";
}

std::string_view phyd_surf_panel_help() {
    return "Command Syntax\n\tphyd_surf_panel  [-wet_only]\n\n"
           "Prints the nodes of each panel of the free surface; the code of all is W.\n\n"
           "-wet_only\n\tPrint only panels with code W or V.\n\n"
           "Example:\n\tphyd_surf_panel\n\n"
           "See Also\n\thyd_surf_panel\n\tphyd_surf_nodes\n";
}

} // namespace quelor
