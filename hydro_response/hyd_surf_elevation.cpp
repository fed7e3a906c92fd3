// Reads the nodes of the free-surface mesh and what wave_field.hpp reads; writes `.hyd_surf_disp`.
// Workspace `$hyd_surf_disp`.
#include "hydro_response/hyd_surf_elevation.hpp"

#include "hydro_model/hyd_surf_nodes.hpp"
#include "hydro_response/field_potential.hpp"
#include "hydro_response/wave_field.hpp"
#include "kernel/utilities.hpp"

#include <vector>

namespace quelor {

namespace {

constexpr FieldKind kind{
    .gauge = 1,
    .points_per_node = 1,
    .incoming = "    Calculating surface elevation from incoming potential",
    .diffraction = "    Calculating surface elevation from diffraction potential",
    .radiation = "    Calculating surface elevation from radiation potential",
    .diffraction_size = " \n\tDimensions do not match in hyd_surf_diff_sp\n",
    .radiation_size = " \n\tDimensions do not match in hyd_surf_rad_sp\n",
};

/// The nodes, all on z = 0, where the conditions of the free surface hold.
std::vector<Vec3> points_of(const NodeSet& nodes) {
    std::vector<Vec3> points;
    for (int n = 1; n <= nodes.count; ++n)
        points.push_back({nodes.xyz(1, n), nodes.xyz(2, n), 0});
    return points;
}

void cmd_hyd_surf_elevation(std::string_view) {
    if (!has_no_symmetry()) return;
    const FieldParts parts = read_field_parts();
    const NodeSet nodes = open_nodes(hyd_surface_nodes);
    if (!nodes) return;
    if (nodes.count < 1) return print_both(" \n\tNumber nodes < 1\n");
    WaveField field(parts, kind);
    if (!field) return;
    print_both(" \n\n                    Free Surface Elevation\n");
    const auto& [nfreq, nbeta] = std::pair(field.size().nfreq, field.size().nbeta);
    Result result(hyd_surf_disp, "$hyd_surf_disp");
    const auto eta = result.array3<Complex8>(nodes.count, nfreq, nbeta);
    if (!field.potentials(points_of(nodes), eta)) return;
    for (int b = 1; b <= nbeta; ++b)
        for (int f = 1; f <= nfreq; ++f)
            elevation_from_potential(field.freq()[nth(f)], field.size().grav,
                                     {&eta(1, f, b), as_size(nodes.count)});
    result.place();
}

constexpr Command rows[] = {
    {.words = {"hyd_surf_elevation"},
     .run = cmd_hyd_surf_elevation,
     .summary = "elevation of the free surface",
     .help =
         "Command Syntax\n\thyd_surf_elevation  [incoming=?]  [diffraction=?]  [radiation=?]  "
         "[dif=difname]  [rad=radname]\n\n"
         "Command to determine the elevation of the free surface at the nodes of hyd_surf_nodes, "
         "for waves of unit amplitude, at all frequencies and headings of hyd_analysis. It serves "
         "models without symmetry only. The result is shown by hyd_export_graphics.\n\n"
         "incoming, diffraction, radiation\n\t1 to include the part (default), 0 not to: the "
         "incoming wave, the wave that the structure held fixed scatters, and the waves that its "
         "motion makes.\n\n"
         "dif, rad\n\tNames of the files of source strengths that hyd_analysis -source has "
         "written. Defaults are the project's name with extensions dif and rad. A file is opened "
         "only if its part is included.\n\n"
         "Needs\n\t.hyd_gencor of hyd_analysis_response, if radiation is included.\n\n"
         "Created\n\t.hyd_surf_disp(.hyd_#surf_nodes,nfreq,nbeta), complex: at time t the "
         "elevation is the real part of .hyd_surf_disp exp(i omega t). It is that of the "
         "still-water plane z = 0 at the x and y of the node; under the structure it has no "
         "meaning.\n\n"
         "Example\n\thyd_analysis -source\n\thyd_analysis_response\n\thyd_surf_elevation\n\n"
         "See Also\n\thyd_analysis\n\thyd_surf_nodes\n\thyd_export_graphics\n\thyd_velocity\n"},
};

} // namespace

std::span<const Command> hyd_surf_elevation_rows() {
    return rows;
}

} // namespace quelor
