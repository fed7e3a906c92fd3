#include "fem/export_to_gmsh.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

namespace {

void write_line(std::string_view text) {
    write_unit(unit_gmsh, "(a)", {text});
}

int active_nodes(const NodeSet& nodes) {
    return static_cast<int>(std::ranges::count(nodes.active.first(as_size(nodes.count)), 'A'));
}

/// One line of three values for each active node.
template <class ValueAt> void write_vectors(const NodeSet& nodes, ValueAt value_at) {
    write_unit(unit_gmsh, "(i0)", {active_nodes(nodes)});
    for (int n = 1; n <= nodes.count; ++n) {
        if (!nodes.is_active(n)) continue;
        const Vec3 v = value_at(n);
        write_unit(unit_gmsh, "10(i10, 1p3e13.4)", {n, v[0], v[1], v[2]});
    }
}

} // namespace

void gmsh_write_format() {
    write_line("$MeshFormat");
    write_line("2.2   0   8");
    write_line("$EndMeshFormat");
}

void gmsh_write_nodes(const NodeSet& nodes) {
    write_line("$Nodes");
    write_vectors(nodes, [&](int n) { return nodes.at(n); });
    write_line("$EndNodes");
}

void gmsh_begin_elements(int count) {
    create_int_scalar(gmsh_eshift, 0);
    write_line("$Elements");
    write_unit(unit_gmsh, "(i0)", {count});
}

void gmsh_end_elements() {
    write_line("$EndElements");
    delete_array(gmsh_eshift);
}

namespace {

/// Line of one element: its number, Gmsh's type, the tags, the nodes.
void write_element(std::int32_t number, int type, std::span<const std::int32_t> nodes) {
    // Two tags, Gmsh's physical and geometrical entity.
    FormatItems items{number, type, 2, 99, 2, nodes};
    // Numbers of six digits would run into each other.
    if (std::max(number, std::ranges::max(nodes)) > 99999)
        write_unit(unit_gmsh, "(50i11)", items);
    else
        write_unit(unit_gmsh, "(50i6)", items);
}

} // namespace

void gmsh_write_elements(const ElementTable& table) {
    const auto el = require_elements(table);
    const std::int32_t shift = require_int(gmsh_eshift);
    const auto number = [&](int e) { return table.number_row > 0 ? el(table.number_row, e) : e; };
    const auto is_triangle = [&](int e) {
        return table.gmsh_type == gmsh_quadrilateral && el(3, e) == el(4, e);
    };
    const auto write = [&](bool triangles, int type, int nodes) {
        for (int e = 1; e <= el.cols; ++e)
            if (is_triangle(e) == triangles)
                write_element(shift + number(e), type, el.col(e).first(as_size(nodes)));
    };
    write(false, table.gmsh_type, table.nodes);
    write(true, gmsh_triangle, 3);
    std::int32_t last = 0;
    for (int e = 1; e <= el.cols; ++e)
        last = std::max(last, number(e));
    create_int_scalar(gmsh_eshift, shift + last);
}

void gmsh_write_node_data(int step, double time, const NodeSet& nodes, Matrix<const double> u) {
    write_line("$NodeData");
    write_line("  1");
    // Without quotes, so that Gmsh takes the shapes for the steps of one view.
    write_unit(unit_gmsh, "(\"Displacement Step\", i10)", {step});
    write_line("  1");
    write_unit(unit_gmsh, "(1pe12.4)", {time});
    write_line("   3");
    write_unit(unit_gmsh, "(i0)", {step});
    write_line("   3");
    write_vectors(nodes, [&](int n) { return Vec3{u(1, n), u(2, n), u(3, n)}; });
    write_line("$EndNodeData");
}

} // namespace quelor
