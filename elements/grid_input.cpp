// Reads the node list; writes the tables of quadrilaterals and new nodes; deletes `.node_eqs`,
// `.#eqs` when a subdivision may have made nodes.
#include "elements/grid_input.hpp"

namespace quelor {

// --- records ------------------------------------------------------------------------------------

std::optional<GridRecord> next_grid_record(std::string_view prompt, int nodes) {
    next_record(prompt);
    GridRecord r;
    get_int_par("n=", r.n);
    if (r.n == no_key) return std::nullopt;
    get_int_par("nodes=", std::span(r.nodes).first(as_size(nodes)));
    get_int_par("gen=", r.gen);
    get_int_par("inc=", r.inc);
    get_int_par("gen_2d=", r.gen_2d);
    get_int_par("inc_2d=", r.inc_2d);
    get_int_par("inc_el=", r.inc_el);
    return r;
}

// --- nodes by place -----------------------------------------------------------------------------

NodePlacer::NodePlacer() {
    const NodeSet set = open_nodes(fe_nodes);
    for (int n = 1; set && n <= set.count; ++n)
        if (set.is_active(n)) index_.add(n, set.at(n));
}

int NodePlacer::at(const Vec3& p, int bc_node) {
    constexpr Vec3 tol{1e-8, 1e-8, 1e-8};
    const NodeSet set = open_nodes(fe_nodes);
    int found = 0;
    index_.visit_candidates(p, tol, [&](int n) {
        if (within(set.at(n), p, tol) && (found == 0 || n < found)) found = n;
    });
    if (found == 0 && (found = node_add(p, bc_node)) != 0) {
        index_.add(found, p);
        ++added_;
    }
    return found;
}

// --- quadrilaterals with ID numbers -------------------------------------------------------------

Matrix<const std::int32_t> open_quads(const QuadTable& table) {
    return element_matrix<std::int32_t>(table.missing, table.el, table.rows, any_size);
}

bool compact_quads(const QuadTable& table) {
    const auto el = open_quads(table);
    std::vector<int> defined;
    for (int e = 1; e <= el.cols; ++e)
        if (el(table.id_row, e) != 0) defined.push_back(e);
    if (defined.empty()) return delete_array(table.el), false;
    const int count = static_cast<int>(defined.size());
    Result result(table.el, table.kept);
    const auto kept = result.matrix<std::int32_t>(table.rows, count);
    for (int k = 1; k <= count; ++k)
        std::ranges::copy(el.col(defined[nth(k)]), kept.col(k).begin());
    result.place();
    return true;
}

namespace {

using Corners = std::array<std::int32_t, 4>;

/// Nodes (i, j) of n by m parts, i = 0..n in the 1-2 direction running fastest; bilinear.
std::vector<std::int32_t> grid_nodes(const Corners& corners, int n, int m, NodePlacer& placer) {
    const auto x = require_coordinates();
    const std::array p{element_node(x, corners[0]), element_node(x, corners[1]),
                       element_node(x, corners[2]), element_node(x, corners[3])};
    std::vector<std::int32_t> grid;
    for (int j = 0; j <= m; ++j)
        for (int i = 0; i <= n; ++i) {
            const double s = static_cast<double>(i) / n, t = static_cast<double>(j) / m;
            Vec3 q = add_scaled({0, 0, 0}, (1 - s) * (1 - t), p[0]);
            q = add_scaled(q, s * (1 - t), p[1]);
            q = add_scaled(q, s * t, p[2]);
            q = add_scaled(q, (1 - s) * t, p[3]);
            const bool corner = (i == 0 || i == n) && (j == 0 || j == m);
            const std::size_t which = j == 0 ? (i == 0 ? 0u : 1u) : (i == 0 ? 3u : 2u);
            const int node = corner ? corners[which] : placer.at(q);
            if (node == 0) print_both(" \nNode generation failed; using zero\n");
            grid.push_back(node);
        }
    return grid;
}

struct Subdivision {
    std::int32_t first, last, n, m;
    std::int64_t total; ///< elements when it is done
    bool contains(std::int32_t id) const { return first <= id && id <= last; }
};

/// What the command line asks for; nothing after a message.
std::optional<Subdivision> read_subdivision(const QuadTable& table, Matrix<const std::int32_t> el) {
    std::array<std::int32_t, 2> range{}, parts{1, 1};
    get_int_par(" range=", range);
    get_int_par(" nxm=", parts);
    Subdivision s{range[0], range[1], parts[0], parts[1], 0};
    bool has_first = false, has_last = false;
    for (int e = 1; e <= el.cols; ++e) {
        const std::int32_t id = el(table.id_row, e);
        has_first = has_first || id == s.first;
        has_last = has_last || id == s.last;
        s.total += s.contains(id) ? std::int64_t{s.n} * s.m : 1;
    }
    if (!has_first)
        return print_both(" \n\tCould not find first element in range to subdivide\n"),
               std::nullopt;
    if (!has_last || s.last < s.first)
        return print_both(" \n\tCould not find last element in range to subdivide\n"), std::nullopt;
    if (s.n < 1 || s.m < 1 || s.n > most_elements || s.m > most_elements || s.total > most_elements)
        return print_both(" \n\tNumber of parts to subdivide into not possible\n"), std::nullopt;
    return s;
}

/// The parts of the element in column e: that column, and those from `next` on.
void store_parts(const QuadTable& table, const Subdivision& s, Matrix<std::int32_t> el, int e,
                 int& next, std::int32_t& last_id, NodePlacer& placer) {
    Corners corners;
    std::copy_n(el.col(e).begin(), 4, corners.begin());
    if (table.middle_row > 0) el(table.middle_row, e) = 0;
    const auto grid = grid_nodes(corners, s.n, s.m, placer);
    const auto node = [&](int i, int j) {
        return grid[as_size(j) * as_size(s.n + 1) + as_size(i)];
    };
    for (int j = 0; j < s.m; ++j)
        for (int i = 0; i < s.n; ++i) {
            const bool own = i == 0 && j == 0;
            const int column = own ? e : next++;
            if (!own) {
                std::ranges::copy(el.col(e), el.col(column).begin());
                el(table.id_row, column) = ++last_id;
            }
            std::ranges::copy(
                Corners{node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)},
                el.col(column).begin());
        }
}

} // namespace

bool subdivide_quads(const QuadTable& table) {
    const auto old = open_quads(table);
    const auto s = read_subdivision(table, old);
    if (!s) return false;
    for (int e = 1; e <= old.cols; ++e)
        if (!table.triangles && s->contains(old(table.id_row, e)) &&
            (old(4, e) == 0 || old(4, e) == old(3, e)))
            shutdown_with(" \n\tFatal Error: triangle element in subdivide range");
    check_element_nodes_nonzero(table.title, old, 4);
    if (s->n == 1 && s->m == 1) return false;
    Result result(table.el, table.parts);
    const auto el = result.matrix<std::int32_t>(table.rows, static_cast<int>(s->total));
    std::ranges::copy(old.all(), el.data);
    std::int32_t last_id = largest_in_row(old, table.id_row);
    int next = old.cols + 1;
    NodePlacer placer;
    for (int e = 1; e <= old.cols; ++e)
        if (s->contains(el(table.id_row, e))) store_parts(table, *s, el, e, next, last_id, placer);
    result.place();
    delete_array(node_eqs); // there may be new nodes
    delete_array(num_eqs);
    return true;
}

} // namespace quelor
