// Appends to the nodes, to the arrays of beam3d.hpp and to the nodal constraints.
#include "elements/cylinder.hpp"

#include "elements/beam3d.hpp"
#include "elements/element_family.hpp"
#include "elements/frame.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

#include <numbers>

namespace quelor {

Vec3 Cylinder::center(int ring) const {
    return add_scaled(p1, static_cast<double>(ring) / along(), difference(p2, p1));
}

Cylinder read_cylinder() {
    Cylinder c;
    get_real_par(" p1=", c.p1);
    get_real_par(" p2=", c.p2);
    get_real_par(" R=", c.radius);
    get_int_par(" CxL=", c.segments);
    return c;
}

bool cylinder_is_possible(const Cylinder& c, bool spine, std::int64_t others) {
    if (c.around() < 3 || c.along() < 1 || c.around() > 100'000 || c.along() > 100'000 ||
        std::int64_t{c.around()} * c.along() > most_elements)
        return print_both(" \n\tNumber of segments of cylinder not possible\n"), false;
    if (!(c.radius[0] > 0) || !(c.radius[1] > 0) || !std::isfinite(c.radius[0] + c.radius[1]) ||
        !is_finite(c.p1) || !is_finite(c.p2))
        return print_both(" \n\tRadii, points or tensions of cylinder not possible\n"), false;
    if (spine && !array_exists(bcid)) return print_both(" \n\tArray .bcid not found\n"), false;
    const NodeSet set = open_nodes(fe_nodes);
    if (!set) return false;
    if (set.count < 1) return print_both(" \n\tNumber of nodes < 1\n"), false;
    std::int64_t wanted = std::int64_t{c.around()} * c.rings() + others;
    for (int k = 0; spine && k < c.rings(); ++k)
        if (node_find(c.center(k), 1e-8) == 0) ++wanted;
    if (wanted > set.total - set.count)
        return print_both(" \n\tNot enough node numbers for the cylinder; see # of nodes\n"), false;
    return true;
}

LocalAxes cylinder_axes(const Cylinder& c, std::int32_t node3) {
    Vec3 toward3{};
    if (node3 >= 1)
        toward3 = difference(node_coordinates(node3), c.p1);
    else if (node3 >= -3 && node3 <= -1)
        toward3[nth(-node3)] = -1;
    const LocalAxes axes = frame_axes(difference(c.p2, c.p1), toward3);
    if (vector_length(axes[0]) == 0)
        print_both(" \n\tAxis and node3 of cylinder do not give local axes\n");
    return axes;
}

/// Cosine or sine of a quarter turn as 0, so that nodes meant for the water line lie on it.
static double without_rounding(double x) {
    return std::abs(x) < 1e-15 ? 0 : x;
}

Rings::Rings(const Cylinder& c, const LocalAxes& axes) : around_(as_size(c.around())) {
    const Vec3 across = cross_product(axes[0], axes[2]).vector;
    for (int k = 0; k < c.rings(); ++k) {
        const double part = static_cast<double>(k) / c.along();
        const double r = c.radius[0] + part * (c.radius[1] - c.radius[0]);
        for (int j = 0; j < c.around(); ++j) {
            const double angle = 2 * std::numbers::pi * j / c.around();
            const Vec3 p = add_scaled(c.center(k), r * without_rounding(std::cos(angle)), axes[2]);
            nodes_.push_back(
                node_add(add_scaled(p, r * without_rounding(std::sin(angle)), across), -1));
        }
    }
}

void require_beam_material(std::int32_t mat) {
    const ArrayRef mp = find_array(beam3d_mp);
    if (!mp.is(type_real) || mp.cols() != beam3d_columns) shutdown_with(beam3d_none);
    require_number(mat, mp.rows(), beam3d_bad_material);
}

std::vector<std::int32_t> spine_nodes(const Cylinder& c) {
    std::vector<std::int32_t> spine(as_size(c.rings()));
    node_line_chain(c.p1, c.p2, c.along(), spine);
    return spine;
}

void append_spine(const Cylinder& c, std::span<const std::int32_t> spine, const Rings& rings,
                  const CylinderBeams& beams) {
    const double step = c.along() > 1 ? (beams.tension_last - beams.tension) / (c.along() - 1) : 0;
    std::vector<BeamElement> elements;
    for (int k = 0; k < c.along(); ++k)
        elements.push_back({{spine[as_size(k)], spine[as_size(k) + 1]},
                            beams.mat,
                            beams.print,
                            beams.node3,
                            beams.tension + k * step});
    append_beams(elements);
    std::vector<RigidLink> links;
    for (int k = 0; k < c.rings(); ++k)
        for (int j = 0; j < c.around(); ++j)
            links.push_back({rings.node(k, j), spine[as_size(k)]});
    link_rigidly(links);
}

void append_ring_beams(const Cylinder& c, const Rings& rings, int step,
                       const CylinderBeams& beams) {
    std::vector<BeamElement> elements;
    for (int k = 0; k < c.rings(); k += step)
        for (int j = 0; j < c.around(); ++j)
            elements.push_back(
                {{rings.node(k, j), rings.node(k, j + 1)}, beams.mat, beams.print, beams.node3, 0});
    append_beams(elements);
}

} // namespace quelor
