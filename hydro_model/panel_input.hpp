// Panel tables: input with generation, node checks, numbering and printing, for the panels of the
// structure and of the free surface. A table is one row of names.
#pragma once

#include "fem/node_family.hpp"
#include "numeric/panel_geometry.hpp"

#include <vector>

namespace quelor {

/// Largest table: a larger `n` is a slip of the pen, and would only exhaust the memory.
inline constexpr int most_panels = 10'000'000;

/// One panel table: the arrays that hold it and the texts that speak of it.
struct PanelKind {
    std::string_view name;          ///< "HYD_PANEL" in the messages
    std::string_view el;            ///< integer (4, n): node numbers by external number
    std::string_view code;          ///< character (n): blank, or a letter
    std::string_view map;           ///< integer (n): internal number, 0 for none
    std::string_view type;          ///< integer (np): 0 quadrilateral, 1 triangle
    std::string_view count;         ///< integer: n
    std::string_view wet_count;     ///< integer: np
    const NodeKind* nodes;          ///< list that the node numbers refer to
    std::string_view no_nodes;      ///< message for a list that is not there
    std::string_view invalid_print; ///< message for a print request that has no meaning here
};

/// The size of a new table, ` n=` of the command line; 0 after a message when it is not usable.
int read_table_size(const PanelKind& kind);
/// Reads the records of a table of n panels and stores their nodes in `.._el`. A panel number out
/// of 1..n takes the fatal path.
void read_panel_records(const PanelKind& kind, int n);

/// A panel that stands in the table, and its four nodes; node 4 of a triangle is node 3.
struct TablePanel {
    int number;
    bool triangle;
    Corners nodes;
};
/// The panels of the table in the order of their numbers, checked: a node that is repeated, out of
/// range, undefined or not finite is reported for every panel, and any takes the fatal path. A node
/// 4 of zero is set to node 3 in the table.
std::vector<TablePanel> checked_panels(const PanelKind& kind);

/// Stores codes (n), numbers the panels for which `in_mesh` holds in `.._map` and stores their
/// number; no such panel takes the fatal path. Returns the number.
int number_panels(const PanelKind& kind, std::span<const char> codes, bool (*in_mesh)(char code));
/// Types of the numbered panels, `.._type`.
void store_types(const PanelKind& kind, std::span<const TablePanel> panels);

/// Deletes what depends on earlier panels.
void delete_panels(const PanelKind& kind);
/// Prints node numbers and codes; the flag -wet_only leaves out all but W and V panels.
void print_panels(const PanelKind& kind);
/// Message and fatal path after checks that found faults.
[[noreturn]] void quit_after_bad_input();

} // namespace quelor
