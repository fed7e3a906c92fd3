#include "fem/export_to_gmsh.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <sstream>

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

/// The tags of a section of data behind its title: time, step and components of an entry.
void write_data_tags(double time, int step, int components) {
    write_line("  1");
    write_unit(unit_gmsh, "(1pe12.4)", {time});
    write_line("   3");
    write_unit(unit_gmsh, "(i0)", {step});
    write_unit(unit_gmsh, "(i4)", {components});
}

/// cos(2 pi k / n), exact at the quarters of a turn.
double cosine_of_turn(std::int64_t k, std::int64_t n) {
    constexpr double quarters[] = {1, 0, -1, 0};
    if (4 * k % n == 0) return quarters[4 * k / n % 4];
    return std::cos(2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(n));
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

/// Gmsh's physical and geometrical entity: the two tags of an element.
struct Entity {
    std::int32_t physical, geometrical;
};

/// Line of one element: its number, Gmsh's type, the tags, the nodes.
void write_element(std::int32_t number, int type, Entity entity,
                   std::span<const std::int32_t> nodes) {
    FormatItems items{number, type, 2, entity.physical, entity.geometrical, nodes};
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
                write_element(shift + number(e), type, {99, 2}, el.col(e).first(as_size(nodes)));
    };
    write(false, table.gmsh_type, table.nodes);
    write(true, gmsh_triangle, 3);
    std::int32_t last = 0;
    for (int e = 1; e <= el.cols; ++e)
        last = std::max(last, number(e));
    create_int_scalar(gmsh_eshift, shift + last);
}

void gmsh_write_panels(Matrix<const std::int32_t> panels, std::int32_t entity, int last) {
    const std::int32_t shift = require_int(gmsh_eshift);
    for (int e = 1; e <= panels.cols; ++e) {
        const bool triangle = panels(3, e) == panels(4, e);
        write_element(shift + panels(5, e), triangle ? gmsh_triangle : gmsh_quadrilateral,
                      {entity, entity}, panels.col(e).first(triangle ? 3 : 4));
    }
    create_int_scalar(gmsh_eshift, shift + last);
}

void gmsh_write_node_data(int step, double time, const NodeSet& nodes, Matrix<const double> u) {
    write_line("$NodeData");
    write_line("  1");
    // Without quotes, so that Gmsh takes the shapes for the steps of one view.
    write_unit(unit_gmsh, "(\"Displacement Step\", i10)", {step});
    write_data_tags(time, step, 3);
    write_vectors(nodes, [&](int n) { return Vec3{u(1, n), u(2, n), u(3, n)}; });
    write_line("$EndNodeData");
}

void gmsh_write_scalars(int step, double time, const GmshScalars& view) {
    const std::string kind(view.kind);
    write_line("$" + kind);
    write_line("  1");
    write_line("\"" + std::string(view.title) + "\"");
    write_data_tags(time, step, 1);
    write_unit(unit_gmsh, "(i0)", {static_cast<std::int32_t>(view.numbers.size())});
    for (std::size_t i = 0; i < view.numbers.size(); ++i)
        write_unit(unit_gmsh, "(i10, 1pe13.4)", {view.numbers[i], view.values[i]});
    write_line("$End" + kind);
}

bool gmsh_is_target(std::span<const std::string_view> flags) {
    std::istringstream words{std::string(record_text())};
    for (std::string word; words >> word;)
        if (word.starts_with('-') && std::ranges::find(flags, word) == flags.end()) return false;
    return true;
}

bool gmsh_steps_in_range(std::int32_t steps) {
    if (1 <= steps && steps <= 100'000) return true;
    print_both(" \n\tNumber of steps must be in the range 1 to 100000\n");
    return false;
}

std::vector<double> gmsh_step_times(std::string_view name, int count, std::string_view wrong_size) {
    std::vector<double> times;
    if (name.empty()) {
        for (int i = 1; i <= count; ++i)
            times.push_back(i);
        return times;
    }
    const ArrayRef ref = find_array_2d(name);
    if (!ref.is(type_real)) return print_both(" \n\tVector with \"times\" not found\n"), times;
    if (ref.size() != count) return print_both(wrong_size), times;
    const auto values = as_span<const double>(ref);
    times.assign(values.begin(), values.end());
    return times;
}

Complex8 phase_of_turn(std::int64_t k, std::int64_t n) {
    return {cosine_of_turn(k, n), cosine_of_turn(4 * k + 3 * n, 4 * n)}; // sin x = cos(x + 3 pi/2)
}

} // namespace quelor
