// Element records that generate a grid of elements: their keys, the run through the grid, and the
// tables of quadrilaterals with ID numbers, which can be subdivided.
#pragma once

#include "elements/element_family.hpp"
#include "kernel/require.hpp"
#include "numeric/point_index.hpp"

#include <optional>
#include <vector>

namespace quelor {

// --- records ------------------------------------------------------------------------------------

/// An element and those generated from it: sequences of gen + 1 elements, gen_2d + 1 of them.
struct GridRecord {
    std::int32_t n = no_key;
    std::array<std::int32_t, 6> nodes{};
    std::int32_t gen = 0, gen_2d = 0, inc_el = 0;
    std::array<std::int32_t, 3> inc{}, inc_2d{}; ///< of nodes, in a sequence and between sequences
};
/// The next record, its keys n, nodes, gen, inc, gen_2d, inc_2d, inc_el; nothing at the end of the
/// input.
std::optional<GridRecord> next_grid_record(std::string_view prompt, int nodes);

/// Calls visit(e, nodes) for each element of the grid. Elements outside 1..columns give the message
/// and the fatal path.
/// which  in  for each node the increment that it goes by, 1 to 3
template <class Visit>
void generate_grid(const GridRecord& r, std::span<const int> which, int columns,
                   std::string_view out_of_range, Visit visit) {
    if (r.gen < 0 || r.gen_2d < 0) shutdown_with(out_of_range);
    const std::int64_t inc_el = r.inc_el == 0 ? std::int64_t{r.gen} + 1 : r.inc_el;
    std::vector<std::int32_t> nodes(which.size());
    for (std::int64_t sequence = 0; sequence <= r.gen_2d; ++sequence) {
        const std::int64_t first = r.n + sequence * inc_el;
        if (first < 1 || first + r.gen > columns) shutdown_with(out_of_range);
        for (std::int32_t k = 0; k <= r.gen; ++k) {
            for (std::size_t i = 0; i < nodes.size(); ++i) {
                const auto by = nth(which[i]);
                nodes[i] =
                    advanced_node(advanced_node(r.nodes[i], r.inc_2d[by], sequence), r.inc[by], k);
            }
            visit(static_cast<int>(first + k), std::span<const std::int32_t>(nodes));
        }
    }
}

// --- nodes by place -----------------------------------------------------------------------------

/// The nodes of the model by place: existing ones are found (tolerance 1e-8), missing ones added.
class NodePlacer {
public:
    NodePlacer();
    /// Number of the node at p, the lowest of several; 0 when there is none and none can be added.
    /// A new node takes the restraints of bc_node (-1: of none).
    int at(const Vec3& p, int bc_node = -1);
    int added() const { return added_; }

private:
    PointIndex index_;
    int added_ = 0;
};

// --- quadrilaterals with ID numbers -------------------------------------------------------------

/// A table of quadrilaterals, nodes 1 to 4 in its first rows; an ID number of 0 marks a column that
/// has not been entered.
struct QuadTable {
    std::string_view el, title, missing;
    std::string_view kept, parts; ///< work arrays
    int rows, id_row;
    int middle_row;        ///< row of a node inside the element, 0 for a type without one
    bool triangles = true; ///< node 4 may be node 3
};
Matrix<const std::int32_t> open_quads(const QuadTable& table);
/// Leaves the columns that have been entered; false, and no table, when there are none.
bool compact_quads(const QuadTable& table);
/// Replaces elements by n by m parts as ` range=` and ` nxm=` say: the first part keeps ID and
/// column, the others follow with the numbers after the largest in use; nodes that are at the place
/// are used, missing ones added, and the middle nodes of the parts are 0. False when nothing was
/// changed, for which there may have been a message.
bool subdivide_quads(const QuadTable& table);

} // namespace quelor
