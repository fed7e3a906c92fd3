// `beam3d -cylinder`: a spine of beams in a skin of interface elements. Appends to the nodes, to
// the arrays of beam3d.hpp and interface_elem.hpp, and to the nodal constraints.
#include "elements/beam3d.hpp"
#include "elements/element_family.hpp"
#include "elements/frame.hpp"
#include "elements/interface_elem.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

#include <numbers>
#include <vector>

namespace quelor {

namespace {

struct Cylinder {
    std::int32_t mat = 0, node3 = 0, print = 0, face = 0;
    Vec3 p1{}, p2{};
    std::array<double, 2> radius{};
    std::array<std::int32_t, 2> segments{}; ///< around, along
    double tension = 0, tension_last = 0;

    int around() const { return segments[0]; }
    int along() const { return segments[1]; }
};

Cylinder read_cylinder() {
    Cylinder c;
    get_int_par(" mat=", c.mat);
    get_int_par(" node3=", c.node3);
    get_int_par(" print=", c.print);
    get_int_par(" face=", c.face);
    get_real_par(" p1=", c.p1);
    get_real_par(" p2=", c.p2);
    get_real_par(" R=", c.radius);
    get_int_par(" CxL=", c.segments);
    get_real_par(" tension=", c.tension);
    c.tension_last = c.tension;
    get_real_par(" tension_last=", c.tension_last);
    return c;
}

/// Number of new nodes: the rings, and the spine where it has no nodes yet.
std::int64_t new_nodes_of(const Cylinder& c) {
    std::int64_t count = std::int64_t{c.around()} * (c.along() + 1);
    for (int k = 0; k <= c.along(); ++k)
        if (node_find(add_scaled(c.p1, static_cast<double>(k) / c.along(), difference(c.p2, c.p1)),
                      1e-8) == 0)
            ++count;
    return count;
}

/// True when the cylinder can be made; otherwise a message.
bool cylinder_is_possible(const Cylinder& c) {
    if (c.around() < 3 || c.along() < 1 || c.around() > 100'000 || c.along() > 100'000 ||
        std::int64_t{c.around()} * c.along() > most_elements)
        return print_both(" \n\tNumber of segments of cylinder not possible\n"), false;
    if (!(c.radius[0] > 0) || !(c.radius[1] > 0) || !std::isfinite(c.radius[0] + c.radius[1]) ||
        !is_finite(c.p1) || !is_finite(c.p2) || !std::isfinite(c.tension + c.tension_last))
        return print_both(" \n\tRadii, points or tensions of cylinder not possible\n"), false;
    if (!array_exists(bcid)) return print_both(" \n\tArray .bcid not found\n"), false;
    const NodeSet set = open_nodes(fe_nodes);
    if (!set) return false;
    if (set.count < 1) return print_both(" \n\tNumber of nodes < 1\n"), false;
    if (new_nodes_of(c) > set.total - set.count)
        return print_both(" \n\tNot enough node numbers for the cylinder; see # of nodes\n"), false;
    return true;
}

FrameAxes cylinder_axes(const Cylinder& c) {
    Vec3 toward3{};
    if (c.node3 >= 1)
        toward3 = difference(node_coordinates(c.node3), c.p1);
    else if (c.node3 >= -3 && c.node3 <= -1)
        toward3[nth(-c.node3)] = -1;
    return frame_axes(difference(c.p2, c.p1), toward3);
}

/// Cosine or sine of a quarter turn as 0, so that nodes meant for the water line lie on it.
double without_rounding(double x) {
    return std::abs(x) < 1e-15 ? 0 : x;
}

/// Nodes of all rings, ring after ring; each starts on local z and turns by the right hand about x.
std::vector<std::int32_t> add_rings(const Cylinder& c, const FrameAxes& axes) {
    std::vector<std::int32_t> rings;
    const Vec3 across = cross_product(axes[0], axes[2]).vector;
    for (int k = 0; k <= c.along(); ++k) {
        const double part = static_cast<double>(k) / c.along();
        const Vec3 center = add_scaled(c.p1, part, difference(c.p2, c.p1));
        const double r = c.radius[0] + part * (c.radius[1] - c.radius[0]);
        for (int j = 0; j < c.around(); ++j) {
            const double angle = 2 * std::numbers::pi * j / c.around();
            const Vec3 p = add_scaled(center, r * without_rounding(std::cos(angle)), axes[2]);
            rings.push_back(
                node_add(add_scaled(p, r * without_rounding(std::sin(angle)), across), -1));
        }
    }
    return rings;
}

void append_spine(const Cylinder& c, std::span<const std::int32_t> spine) {
    const auto el = append_columns<std::int32_t>(beam3d_el, 6, c.along());
    const auto st = append_columns<double>(beam3d_st, 12, c.along());
    create_matrix<double>(beam3d_len, el.cols, 0);
    delete_array(beam3d_trial);
    const int before = el.cols - c.along();
    const std::int32_t last_id = largest_in_row(el, 6);
    const double step = c.along() > 1 ? (c.tension_last - c.tension) / (c.along() - 1) : 0;
    for (int k = 1; k <= c.along(); ++k) {
        const auto at = as_size(k);
        const std::array row{spine[at - 1], spine[at], c.mat, c.print, c.node3, last_id + k};
        std::ranges::copy(row, el.col(before + k).begin());
        set_beam_tension(st, before + k, c.tension + (k - 1) * step);
    }
    finish_beams(1);
}

/// Around, then along: node 1 to node 2 in the direction of the axis, z to the inside.
void append_skin(const Cylinder& c, std::span<const std::int32_t> rings) {
    std::vector<InterfaceElement> skin;
    const auto node = [&](int k, int j) {
        return rings[as_size(k) * as_size(c.around()) + as_size(j % c.around())];
    };
    for (int k = 0; k < c.along(); ++k)
        for (int j = 0; j < c.around(); ++j)
            skin.push_back({{node(k, j), node(k + 1, j), node(k + 1, j + 1), node(k, j + 1)},
                            c.print,
                            c.face});
    append_interfaces(skin);
}

} // namespace

void generate_cylinder() {
    const Cylinder c = read_cylinder();
    const ArrayRef mp = find_array(beam3d_mp);
    if (!mp.is(type_real) || mp.cols() != beam3d_columns) shutdown_with(beam3d_none);
    require_number(c.mat, mp.rows(), beam3d_bad_material);
    if (!cylinder_is_possible(c)) return;
    const FrameAxes axes = cylinder_axes(c);
    if (vector_length(axes[0]) == 0)
        return print_both(" \n\tAxis and node3 of cylinder do not give local axes\n");

    std::vector<std::int32_t> spine(as_size(c.along()) + 1);
    node_line_chain(c.p1, c.p2, c.along(), spine);
    const auto rings = add_rings(c, axes);
    append_spine(c, spine);
    append_skin(c, rings);
    std::vector<RigidLink> links;
    for (std::size_t i = 0; i < rings.size(); ++i)
        links.push_back({rings[i], spine[i / as_size(c.around())]});
    link_rigidly(links);
}

} // namespace quelor
