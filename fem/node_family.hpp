// Node lists: input, generation along lines and in quadrilaterals, and printing, for every list of
// nodes of the system (finite-element, panel mesh, free surface). A list is one row of names.
#pragma once

#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"
#include "numeric/vectors.hpp"

#include <string>

namespace quelor {

/// Longest list: a larger `#` is a slip of the pen, and would only exhaust the memory.
inline constexpr int most_nodes = 10'000'000;

/// One node list: the arrays that hold it and the words that speak of it.
struct NodeKind {
    std::string_view prefix;  ///< of its commands: "hyd_" for `hyd_nodes`, `phyd_nodes`
    std::string_view meaning; ///< for the help texts: "nodes of the panel mesh"
    std::string_view xyz;     ///< real (3, total): coordinates
    std::string_view active;  ///< character (total): 'A' for a defined node, blank otherwise;
                              ///< without a name every node up to the count is defined
    std::string_view count;   ///< integer: highest defined node number
    std::string_view total;   ///< integer: highest node number that may be used
    std::span<const std::string_view> stale; ///< arrays that a new list makes invalid
};

/// The arrays of a list, checked against each other: numbers 1..total are safe to use.
struct NodeSet {
    Matrix<double> xyz;
    std::span<char> active; ///< empty: all nodes up to the count are defined
    int count = 0, total = 0;

    explicit operator bool() const { return static_cast<bool>(xyz); }
    bool is_active(int n) const { return active.empty() || active[nth(n)] == 'A'; }
    Vec3 at(int n) const { return {xyz(1, n), xyz(2, n), xyz(3, n)}; }
    void define(int n, const Vec3& p);
};

/// The arrays of a list; an empty set after a message when one is absent or they do not agree.
NodeSet open_nodes(const NodeKind& kind);
/// A new list of `total` nodes, none of them defined; the stale arrays go.
void new_nodes(const NodeKind& kind, int total);

/// Equal or weighted spacing between nodes a and b, exclusive: nodes a + inc, a + 2 inc, ... Every
/// step is w times the one before it; a w that is not positive, or 1, spaces equally; inc 0 means
/// 1. Coordinates are built by adding to the previous node, so rounding runs along the line.
void generate_line(NodeSet& set, int a, int b, int inc, double w);
/// Generates the sides of n1 n2 n3 n4 (n1 n2 and n3 n4 by inc1, the others by inc2) and the lines
/// between them. False after a message when the increments lead out of the list.
bool generate_quad(NodeSet& set, std::span<const std::int32_t> corners,
                   std::span<const std::int32_t> inc, std::span<const double> w);

/// True when 1 <= n <= limit; otherwise a message.
bool node_in_range(int n, int limit);

/// The key nodes= of a printing command, by default 1 to count: first is not below 1, last is in
/// first..count. Nothing is to be printed when first is above count.
struct NodeRange {
    int first, last;
};
NodeRange read_node_range(int count);

// The commands of a list.
void read_nodes(const NodeKind& kind);
void generate_nodes(const NodeKind& kind);
void print_nodes(const NodeKind& kind);

/// Help of a list's commands, with its own words in the places of a common text.
struct NodeHelp {
    std::string nodes, node_gen, print;
};
NodeHelp node_help(const NodeKind& kind);
/// The text with each "@" replaced by the prefix and each "%" by the meaning.
std::string family_text(std::string_view text, const NodeKind& kind);

} // namespace quelor
