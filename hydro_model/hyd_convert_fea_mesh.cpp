// Panels from the wet elements of a finite-element mesh. Reads `.xyz`, `.node_active` and the
// tables of the element types that have a wet face; writes the nodes of the panel mesh and
// all that `hyd_panel` writes.
#include "hydro_model/hyd_convert_fea_mesh.hpp"

#include "fem/elemutil.hpp"
#include "fem/nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <ranges>
#include <vector>

namespace quelor {

namespace {

using PanelNodes = std::array<std::int32_t, 4>;

/// The wet elements of one type, and the panel number of each within the type.
struct WetFamily {
    const ElementTable* type = nullptr;
    int wet = 0;             ///< number of wet elements
    std::int32_t panels = 0; ///< panel numbers that the type takes
    std::vector<PanelNodes> nodes;
    std::vector<std::int32_t> numbers;
};

/// Corner nodes as a panel. On the positive face they run counterclockwise, so their order turns.
PanelNodes panel_nodes(std::span<const std::int32_t> element, const ElementTable& type) {
    PanelNodes n{};
    const auto last = as_size(type.nodes);
    std::copy_n(element.begin(), last, n.begin());
    if (element[nth(type.face_row)] != 1) return n;
    std::swap(n[1], n[last - 1]);
    if (type.nodes == 4 && n[1] == n[2]) n[2] = n[3];
    return n;
}

/// The table of a type; null when it is absent or has not the rows that the type needs.
Matrix<const std::int32_t> wet_table(const ElementTable& type) {
    const ArrayRef ref = find_array(type.name);
    if (!ref.is(type_integer) || ref.rows() < std::max(type.face_row, type.number_row)) return {};
    return as_matrix<const std::int32_t>(ref);
}

/// An element without a panel number takes the one after its predecessor's.
WetFamily find_wet(const ElementTable& type) {
    WetFamily family;
    family.type = &type;
    const auto el = wet_table(type);
    std::int32_t largest = 0;
    std::int32_t previous = 0;
    for (int e = 1; e <= el.cols; ++e) {
        if (el(type.face_row, e) == 0) continue;
        const std::int32_t given = type.number_row == 0 ? 0 : el(type.number_row, e);
        largest = std::max(largest, given);
        previous = given != 0 ? given : previous + 1;
        family.numbers.push_back(previous);
        family.nodes.push_back(panel_nodes(el.col(e), type));
    }
    family.wet = static_cast<int>(family.nodes.size());
    family.panels = largest > 0 ? largest : family.wet;
    return family;
}

/// The types that may be wet in the order of the panels: interface, min5s, min3s, which is that of
/// the slots from the last to the first.
std::vector<WetFamily> find_all_wet() {
    std::vector<WetFamily> families;
    for (const ElementRow& row : element_rows() | std::views::reverse)
        if (row.table.face_row > 0) families.push_back(find_wet(row.table));
    return families;
}

/// True when there is a table of quadrilaterals that may be wet; triangles come beside them.
bool has_wet_table(std::span<const WetFamily> families) {
    return std::ranges::any_of(
        families, [](const WetFamily& f) { return f.type->nodes == 4 && wet_table(*f.type); });
}

void report_found(std::span<const WetFamily> families) {
    std::string_view lead = "Found ";
    write_both("()");
    for (const WetFamily& family : families) {
        write_both("(5x, a6, i5, a)", {lead, family.wet, family.type->found});
        lead = {};
    }
    write_both("()");
}

/// True when the panel numbers of a type lie in its range and none is used twice.
bool numbers_fit(const WetFamily& family) {
    auto sorted = family.numbers;
    std::ranges::sort(sorted);
    return sorted.empty() || (sorted.front() >= 1 && sorted.back() <= family.panels &&
                              std::ranges::adjacent_find(sorted) == sorted.end());
}

void copy_nodes(const NodeSet& from) {
    new_nodes(hyd_mesh_nodes, from.count);
    NodeSet to = open_nodes(hyd_mesh_nodes);
    for (int n = 1; n <= from.count; ++n)
        if (from.is_active(n)) to.define(n, from.at(n));
    create_int_scalar(hyd_num_nodes, from.count);
}

void convert(std::span<const WetFamily> families, std::int32_t total) {
    begin_panels();
    create_int_scalar(hyd_num_panels, total);
    const auto panels = create_matrix<std::int32_t>(hyd_panel_el, 4, total);
    std::int32_t offset = 0;
    for (const WetFamily& family : families) {
        for (std::size_t i = 0; i < family.nodes.size(); ++i)
            std::ranges::copy(family.nodes[i], panels.col(family.numbers[i] + offset).begin());
        if (family.wet > 0) write_both("(a)", {family.type->converted});
        offset += family.panels;
    }
    finish_panels();
}

void cmd_hyd_convert_fea_mesh(std::string_view) {
    const NodeSet nodes = get_int(num_nodes) < 1 ? NodeSet{} : open_nodes(fe_nodes);
    if (!nodes || nodes.count < 1)
        return print_both(" \n\tConversion failed: FEA nodal data not found\n");
    const auto families = find_all_wet();
    if (!has_wet_table(families))
        return print_both(" \n\tConversion failed: FEA element data not found\n");
    report_found(families);
    std::int64_t total = 0;
    for (const WetFamily& family : families)
        total += family.panels;
    if (std::ranges::all_of(families, [](const WetFamily& f) { return f.wet == 0; }))
        return print_both(" \n\tNo wet finite elements to convert\n");
    if (total > most_panels || !std::ranges::all_of(families, numbers_fit))
        return print_both(
            " \n\tConversion failed: panel numbers of the elements are out of range or used twice\n");
    copy_nodes(nodes);
    convert(families, static_cast<std::int32_t>(total));
}

constexpr Command rows[] = {
    {.words = {"hyd_convert_fea_mesh"},
     .run = cmd_hyd_convert_fea_mesh,
     .summary = "convert FEA mesh to a hydrodynamic panel mesh",
     .help =
         "Command Syntax\n\thyd_convert_fea_mesh\n\n"
         "Convert FEA mesh to a hydrodynamic panel mesh. All finite-element nodes become nodes of "
         "the panel mesh, and the wet elements of the types interface, min5s and min3s, in this "
         "order, become panels. An element is wet when its face is not 0: 1 for the positive face, "
         "-1 for the negative one. The nodal coordinates must be in the inertial system.\n\n"
         "A panel takes the ID number of its element, plus the largest numbers of the types before "
         "it; an element without a number takes the next one.\n\n"
         "Example:\n\thyd_convert_fea_mesh\n\n"
         "Arrays created: .hyd_xyz, .hyd_node_active, .hyd_#nodes, .hyd_#nodes_tot and the arrays "
         "of hyd_panel. Takes the place of hyd_nodes and hyd_panel. A conversion that fails leaves "
         "the panel mesh as it was.\n\n"
         "See Also\n\thyd_panel\n\tinterface\n\tmin5s\n\tmin3s\n"},
};

} // namespace

std::span<const Command> hyd_convert_fea_mesh_rows() {
    return rows;
}

} // namespace quelor
