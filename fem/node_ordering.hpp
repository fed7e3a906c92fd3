// Reordering of the nodes of a mesh for a small profile. A numeric kernel.
#pragma once

#include "numeric/types.hpp"

#include <vector>

namespace quelor {

/// A mesh ordered part by part.
struct NodeOrdering {
    std::vector<std::int32_t> order; ///< nodes of the first part, in the order of numbering
    int parts = 0; ///< parts of the mesh that no element joins; lone nodes not counted
    std::int32_t second_part = 0; ///< lowest node of another part than the first, 0 for none
};

/// Cuthill-McKee ordering: from the node of smallest degree, the lowest of several, each node in
/// turn is followed by its neighbours that are not yet numbered, by ascending degree. The degree is
/// the number of other nodes that share an element with the node; nodes of degree 0 get no place.
/// end    in   element e has nodes[end[e-1]] to nodes[end[e]-1], 0-based
/// nodes  in   node numbers, 1 to count
/// count  in   nodes of the model
/// reverse  in the order is reversed, which never makes the profile larger
/// The neighbours are found through the node's elements in ascending order and sorted by
/// exchange_order. Time is linear in the squares of the elements' numbers of nodes.
/// Source: [Cuthill 1969]; the reversal [George 1981, section 4.3]
NodeOrdering order_nodes(std::span<const std::int32_t> end, std::span<const std::int32_t> nodes,
                         int count, bool reverse);

/// Sorts a list of nodes into ascending degree, with ties in the order in which the exchange sort
/// (for i, for j > i: swap when the degree of j is below that of i) leaves them.
/// degree  in  by node, entry 0 is node 1
/// Time k^2 for short lists, k log k for long ones.
void exchange_order(std::span<std::int32_t> list, std::span<const std::int32_t> degree);

} // namespace quelor
