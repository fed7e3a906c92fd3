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

void gmsh_write_elements(Matrix<const std::int32_t> el, int id_row, int nodes, int type,
                         std::span<const std::int32_t> tags) {
    const std::int32_t shift = require_int(gmsh_eshift);
    std::vector<std::int32_t> line{0, type, static_cast<std::int32_t>(tags.size())};
    line.insert(line.end(), tags.begin(), tags.end());
    const std::size_t head = line.size();
    line.resize(head + as_size(nodes));
    for (int e = 1; e <= el.cols; ++e) {
        line[0] = shift + (id_row > 0 ? el(id_row, e) : e);
        std::ranges::copy(el.col(e).first(as_size(nodes)),
                          line.begin() + static_cast<std::ptrdiff_t>(head));
        FormatItems items;
        items.add(std::span<const std::int32_t>(line));
        // Numbers of six digits would run into each other.
        if (std::ranges::max(line) > 99999)
            write_unit(unit_gmsh, "(50i11)", items);
        else
            write_unit(unit_gmsh, "(50i6)", items);
    }
}

void gmsh_count_elements(int count) {
    create_int_scalar(gmsh_eshift, require_int(gmsh_eshift) + count);
}

void gmsh_write_line_elements(Matrix<const std::int32_t> el) {
    constexpr int two_node_line = 1;
    constexpr std::int32_t tags[] = {99, 2}; // Gmsh's physical and geometrical entity
    gmsh_write_elements(el, -1, 2, two_node_line, tags);
    gmsh_count_elements(el.cols);
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
