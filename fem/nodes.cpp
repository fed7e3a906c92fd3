#include "fem/nodes.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/point_index.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

// --- services -----------------------------------------------------------------------------------

Vec3 node_coordinates(int n) {
    const ArrayRef coordinates = find_array(xyz);
    const ArrayRef active = find_array(node_active);
    if (n < 1 || n > get_int(num_nodes) || !coordinates.is(type_real) || coordinates.rows() != 3 ||
        n > coordinates.cols())
        shutdown_with(" \n\tError in getting nodal coordinates\n");
    if (!active.is(type_character) || n > active.size() || as_span<char>(active)[nth(n)] != 'A')
        shutdown_with(" \n\tAttempt to use undefined node\n");
    const auto x = as_matrix<double>(coordinates);
    return {x(1, n), x(2, n), x(3, n)};
}

int node_find(const Vec3& p, double tol) {
    if (get_int(num_nodes) < 1) return 0;
    const NodeSet set = open_nodes(fe_nodes);
    for (int n = 1; set && n <= set.count; ++n)
        if (within(set.at(n), p, {tol, tol, tol})) return set.is_active(n) ? n : 0;
    return 0;
}

int node_add(const Vec3& p, int bc_node) {
    const int count = get_int(num_nodes);
    if (count < 1 || get_int(num_nodes_tot) <= count || bc_node > count) return 0;
    if (!array_exists(xyz)) return print_both(" \n\tNodal coordinate array not found\n"), 0;
    NodeSet set = open_nodes(fe_nodes);
    if (!set) return 0;
    const int n = count + 1;
    set.define(n, p);
    const ArrayRef restraints = find_array(bcid);
    if (bc_node > 0 && restraints.is(type_integer) && restraints.cols() >= n) {
        const auto codes = as_matrix<std::int32_t>(restraints);
        std::ranges::copy(codes.col(bc_node), codes.col(n).begin());
    }
    create_int_scalar(num_nodes, n);
    return n;
}

void node_line_chain(const Vec3& p1, const Vec3& p2, int n, std::span<std::int32_t> out) {
    for (int k = 0; k <= n; ++k) {
        const Vec3 p = k == n ? p2 : add_scaled(p1, static_cast<double>(k) / n, difference(p2, p1));
        int node = node_find(p, 1e-8);
        if (node == 0) node = node_add(p, -1);
        if (node == 0) print_both("\n Warning -- node generation failed\n");
        out[as_size(k)] = node;
    }
}

// --- merge_nodes --------------------------------------------------------------------------------

/// Ties every node to the lowest-numbered unmerged node that lies within the tolerances.
/// merged  in/out  one entry a node, 0; 1 for a node that has been tied
/// Returns the number of nodes tied; `report` prints each.
static int merge_coincident(const NodeSet& set, Matrix<std::int32_t> codes, const Vec3& tol,
                            std::span<std::int32_t> merged, bool report) {
    PointIndex index;
    for (int n = 1; n <= set.count; ++n)
        if (set.is_active(n)) index.add(n, set.at(n));
    const auto is_merged = [&](int n) { return merged[nth(n)] != 0; };
    const int dofs = std::min(codes.rows, 6);
    int total = 0;
    std::vector<int> near;
    for (int i = 1; i < set.count; ++i) {
        if (!set.is_active(i) || is_merged(i)) continue;
        near.clear();
        index.visit_candidates(set.at(i), tol, [&](int j) {
            if (j > i && !is_merged(j) && within(set.at(i), set.at(j), tol)) near.push_back(j);
        });
        std::ranges::sort(near);
        for (const int j : near) {
            merged[nth(j)] = 1;
            for (int dof = 1; dof <= dofs; ++dof)
                codes(dof, j) = -i;
            if (report) write_both("10('     Node', i6, ' merged with node', i6)", {j, i});
            ++total;
        }
    }
    return total;
}

static void cmd_merge_nodes(std::string_view) {
    if (get_int(num_nodes) < 1) return print_both(" \n\tNumber of nodes < 1\n");
    if (!array_exists(xyz)) return print_both(" \n\tCoordinate array not found\n");
    const ArrayRef restraints = find_array(bcid);
    if (!restraints.is(type_integer)) return print_both(" \n\tArray .bcid not found\n");
    const NodeSet set = open_nodes(fe_nodes);
    if (!set) return;
    if (restraints.cols() < set.count) return print_both(" /n/tIncorrect dimension of .bcid/n");
    delete_array(node_eqs);
    delete_array(num_eqs);

    double tol = -1;
    get_real_par(" tol=", tol);
    if (!(tol >= 0)) tol = 1e-8;
    Vec3 each{-1, -1, -1};
    get_real_par("xtol=", each[0]);
    get_real_par("ytol=", each[1]);
    get_real_par("ztol=", each[2]);
    for (double& t : each)
        if (!(t >= 0)) t = tol;
    const bool report = !has_flag(" -print");
    const Temporary<std::int32_t> merged("$merge_indx", set.count, 0);
    const int total =
        merge_coincident(set, as_matrix<std::int32_t>(restraints), each, merged.view.all(), report);
    if (report && total > 0)
        write_both("20(/, '     Total number of merged nodes =', i6, /)", {total});
}

// --- rows ---------------------------------------------------------------------------------------

std::span<const Command> nodes_rows() {
    static const NodeHelp help = node_help(fe_nodes);
    static const std::array rows{
        Command{.words = {"nodes"},
                .run = [](std::string_view) { read_nodes(fe_nodes); },
                .summary = "input of nodal coordinates",
                .help = help.nodes},
        Command{.words = {"node_gen"},
                .run = [](std::string_view) { generate_nodes(fe_nodes); },
                .summary = "nodes on lines and in quadrilaterals",
                .help = help.node_gen},
        Command{.words = {"pnodes"},
                .run = [](std::string_view) { print_nodes(fe_nodes); },
                .summary = "print nodal coordinates",
                .help = help.print},
        Command{.words = {"merge_nodes"},
                .run = cmd_merge_nodes,
                .summary = "tie nodes that lie at the same place",
                .help =
                    "Command Syntax\n\tmerge_nodes  [tol=?] [xtol=?] [ytol=?] [ztol=?] [-print]\n\n"
                    "Ties nodes at the same place to the lowest-numbered of them: their first six "
                    "degrees of freedom share its equations. Earlier restraints of the tied nodes "
                    "are overwritten.\n\n"
                    "tol\n\tLargest difference of a coordinate. Default is 1e-8.\n\n"
                    "xtol, ytol, ztol\n\tThe same for one coordinate. Default is tol.\n\n"
                    "-print\n\tDo not print the nodes that are tied.\n\n"
                    "Example:\n\tmerge_nodes tol=0.001\n\n"
                    "The array .bcid is changed; .node_eqs and .#eqs are deleted, so equations are "
                    "numbered anew. Must follow bcid.\n\n"
                    "See Also\n\tnodes\n\tbcid\n"},
    };
    return rows;
}

} // namespace quelor
