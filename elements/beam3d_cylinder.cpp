// `beam3d -cylinder`: a spine of beams in a skin of interface elements. Appends to the nodes, to
// the arrays of beam3d.hpp and interface_elem.hpp, and to the nodal constraints.
#include "elements/beam3d.hpp"
#include "elements/cylinder.hpp"
#include "elements/interface_elem.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

namespace quelor {

/// Around, then along.
static void append_skin(const Cylinder& c, const Rings& rings, std::int32_t print,
                        std::int32_t face) {
    std::vector<InterfaceElement> skin;
    for (int k = 0; k < c.along(); ++k)
        for (int j = 0; j < c.around(); ++j)
            skin.push_back({rings.quad(k, j), print, face});
    append_interfaces(skin);
}

void generate_cylinder() {
    const Cylinder c = read_cylinder();
    CylinderBeams beams;
    std::int32_t face = 0;
    get_int_par(" mat=", beams.mat);
    get_int_par(" node3=", beams.node3);
    get_int_par(" print=", beams.print);
    get_int_par(" face=", face);
    get_real_par(" tension=", beams.tension);
    beams.tension_last = beams.tension;
    get_real_par(" tension_last=", beams.tension_last);
    require_beam_material(beams.mat);
    if (!std::isfinite(beams.tension + beams.tension_last))
        return print_both(" \n\tRadii, points or tensions of cylinder not possible\n");
    if (!cylinder_is_possible(c, true, 0)) return;
    const LocalAxes axes = cylinder_axes(c, beams.node3);
    if (vector_length(axes[0]) == 0) return;
    const auto spine = spine_nodes(c); // numbered before the rings
    const Rings rings(c, axes);
    append_spine(c, spine, rings, beams);
    append_skin(c, rings, beams.print, face);
}

} // namespace quelor
