// Records of values at nodes, with generation: nodal masses, dampers, initial conditions.
#pragma once

#include "numeric/types.hpp"

#include <array>
#include <string_view>
#include <vector>

namespace quelor {

/// The nodes that are defined. The fatal path without `.node_active`.
class ActiveNodes {
public:
    ActiveNodes();
    bool contains(int n) const;
    int highest() const; ///< 0 when there is none

private:
    std::span<const char> active_;
};

/// Six values at a node.
struct NodeValues {
    int node = 0;
    std::array<double, 6> values{};
};

/// Reads records `n=node <key>six values [inc=]` up to one without n. Between a record with inc
/// above 0 and the one before it, every inc-th node gets the values of the record with inc. A node
/// that is not active gives the message `inactive` and the fatal path; so do values that are not
/// finite, with their own.
std::vector<NodeValues> read_node_values(std::string_view prompt, std::string_view key,
                                         std::string_view inactive);
/// Prints them to the output file, or on both units: a heading, then a line a node.
void print_node_values(std::string_view heading, std::span<const NodeValues> all, bool screen);

} // namespace quelor
