// Panels of the wetted surface: from node numbers to the arrays of the analysis, and their reports.
// Reads `.hyd_symmetry` and the nodes of the panel mesh; writes the arrays of hyd_panel.hpp and
// `<project>.pan`.
#include "hydro_model/hyd_panel.hpp"

#include "fem/elemutil.hpp"
#include "hydro_model/hyd_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/point_index.hpp"

#include <algorithm>
#include <optional>

namespace quelor {

namespace {

constexpr int unit_pan = 71;

bool is_wet(char code) {
    return code == 'W' || code == 'V';
}

// --- geometry and codes -------------------------------------------------------------------------

/// The flat panels; one without area takes the fatal path, one whose nodes are out of order is
/// named.
std::vector<Panel> flat_panels(std::span<const TablePanel> panels) {
    std::vector<Panel> flat;
    flat.reserve(panels.size());
    bool good = true;
    for (const TablePanel& panel : panels) {
        flat.push_back(flat_panel(panel.nodes, panel.triangle));
        const std::string_view name = hyd_structure_panels.name;
        const bool valid = has_area(flat.back());
        if (!valid)
            write_both(
                "60(/, 4x, 'Fatal error: The area of ', a, ' number', i5, ' is zero; it has no normal')",
                {name, panel.number});
        else if (!is_convex(flat.back()))
            write_both(
                "70(' WARNING: The nodes of panel', i6, ' are out of order or it is not convex')",
                {panel.number});
        good = good && valid;
    }
    if (!good) quit_after_bad_input();
    return flat;
}

/// W, D, V or E from the corners, blank for a panel outside the part of the mesh that symmetry
/// leaves.
char panel_code(const Panel& panel, int symmetry) {
    const auto& c = panel.corners;
    if (symmetry >= 1 && panel.centroid[1] < 0) return ' ';
    if (symmetry == 2 && panel.centroid[0] < 0) return ' ';
    if (std::ranges::all_of(c, [](const Vec3& p) { return p[2] <= 0; })) return 'W';
    if (std::ranges::all_of(c, [](const Vec3& p) { return p[2] >= 0; })) return 'D';
    return panel.centroid[2] < 0 ? 'V' : 'E';
}

std::vector<char> panel_codes(std::span<const TablePanel> panels, std::span<const Panel> flat,
                              int n) {
    const int symmetry = get_int(hyd_symmetry);
    if (symmetry < 0 || symmetry > 2)
        print_both(
            " \n\tValid symmtry code (.hyd_symmetry) not specified. See command hyd_parameters. Using no symmetry.\n");
    std::vector<char> codes(as_size(n), ' ');
    for (std::size_t i = 0; i < panels.size(); ++i)
        codes[nth(panels[i].number)] = panel_code(flat[i], symmetry);
    return codes;
}

/// Warnings of one kind: the first twenty are printed, then their number.
struct WarningList {
    std::int32_t count = 0;

    bool next() { return ++count <= most_listed; }
    bool more() const { return count > most_listed; }

private:
    static constexpr int most_listed = 20;
};

/// Warns of panels that cross the water line.
void warn_partial(std::span<const char> codes) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const auto e = static_cast<std::int32_t>(i + 1);
        if (codes[i] == 'V')
            write_both("10(' WARNING: Panel', i6, ' is wet but partially dry')", {e});
        if (codes[i] == 'E')
            write_both("20(' WARNING: Panel', i6, ' is dry but partially wet')", {e});
    }
}

/// Warns of wet panels that lie below the sea bottom, wholly or in part: there is no fluid.
void warn_below_bottom(std::span<const TablePanel> panels, std::span<const Panel> flat,
                       std::span<const char> codes) {
    const ArrayRef depth = find_array(hyd_depth);
    if (!depth.is(type_real)) return;
    const double bottom = -get_real(hyd_depth);
    WarningList warnings;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const auto reaches = [&](const Vec3& corner) { return corner[2] < bottom; };
        if (!is_wet(codes[nth(panels[i].number)]) || std::ranges::none_of(flat[i].corners, reaches))
            continue;
        if (warnings.next())
            write_both("(' WARNING: Panel', i6, ' reaches below the sea bottom')",
                       {panels[i].number});
    }
    if (warnings.more())
        write_both("(' WARNING: ', i6, ' panels reach below the sea bottom')", {warnings.count});
}

/// Warns of wet panels whose centroids coincide: their equations are the same, or nearly so.
void warn_coincident(std::span<const TablePanel> panels, std::span<const Panel> flat,
                     std::span<const char> codes) {
    PointIndex index;
    WarningList warnings;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        if (!is_wet(codes[nth(panels[i].number)])) continue;
        const Vec3& c = flat[i].centroid;
        const double tol = 1e-6 * std::sqrt(flat[i].area);
        std::optional<std::size_t> twin;
        index.visit_candidates(c, {tol, tol, tol}, [&](int k) {
            const auto at = as_size(k);
            if (!twin && within(flat[at].centroid, c, {tol, tol, tol})) twin = at;
        });
        if (twin && warnings.next())
            write_both(
                "(' WARNING: Panels', i6, ' and', i6, ' lie at the same place; the analysis will be singular')",
                {panels[*twin].number, panels[i].number});
        if (!twin) index.add(static_cast<int>(i), c);
    }
    if (warnings.more())
        write_both("(' WARNING: ', i6, ' panels lie at the place of another one')",
                   {warnings.count});
}

// --- arrays of the analysis ---------------------------------------------------------------------

void store_geometry(std::span<const TablePanel> panels, std::span<const Panel> flat, int np) {
    const auto map = as_span<std::int32_t>(find_array(hyd_panel_map));
    const auto area = create_matrix<double>(hyd_panela, np, 0);
    const auto normal = create_matrix<double>(hyd_paneln, 3, np);
    const auto centroid = create_matrix<double>(hyd_xyzc, np, 3);
    const std::array corner{create_matrix<double>(hyd_xr, np, 4),
                            create_matrix<double>(hyd_yr, np, 4),
                            create_matrix<double>(hyd_zr, np, 4)};
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const int p = map[nth(panels[i].number)];
        if (p == 0) continue;
        area(p) = flat[i].area;
        for (int axis = 1; axis <= 3; ++axis) {
            const auto k = nth(axis);
            normal(axis, p) = flat[i].normal[k];
            centroid(p, axis) = flat[i].centroid[k];
            for (int j = 1; j <= 4; ++j)
                corner[k](p, j) = flat[i].corners[nth(j)][k];
        }
    }
}

// --- reports ------------------------------------------------------------------------------------

void write_pan(std::span<const TablePanel> panels, std::span<const Panel> flat,
               std::span<const char> codes) {
    write_unit(
        unit_pan,
        "10(/, 3x, 'COORDINATES OF CENTROIDS OF PANELS,', ' COMPONENTS OF N, AND PANEL AREAS',/)");
    write_unit(
        unit_pan,
        "20(/, 3x, 'PANEL', 14x, 'X', 14x, 'Y', 14x, 'Z', 10x, 'NX', 10x, 'NY', 10x, 'NZ', 8x, 'AREA', 2x, 'WET/DRY CODE')");
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const auto& [x, y, z] = flat[i].centroid;
        const auto& [nx, ny, nz] = flat[i].normal;
        const int e = panels[i].number;
        write_unit(unit_pan, "30(i6, 2x, 1p3e15.7, 4e12.4, 8x, a1)",
                   {e, x, y, z, nx, ny, nz, flat[i].area, std::string_view(&codes[nth(e)], 1)});
    }
    write_unit(unit_pan, "40(/,2x,'Panel # & Coordinates of the 4 Panel Corners',/)");
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const auto& c = flat[i].corners;
        for (std::size_t axis = 0; axis < 3; ++axis)
            write_unit(unit_pan, "50(i6, 1p12e15.7)",
                       {panels[i].number, c[0][axis], c[1][axis], c[2][axis], c[3][axis]});
    }
}

void write_summary(std::span<const TablePanel> panels, std::span<const char> codes) {
    const auto total = static_cast<std::int32_t>(panels.size());
    const auto triangles = static_cast<std::int32_t>(
        std::ranges::count_if(panels, [](const TablePanel& panel) { return panel.triangle; }));
    const auto with = [&](char code) {
        return static_cast<std::int32_t>(std::ranges::count(codes, code));
    };
    write_unit(
        unit_output,
        "10(/, '  Panel Summary', /, '    Total number of panels processed      ', i5, /, '      Number of quadrilateral panels      ', i5, /, '      Number of triangular panels         ', i5, /)",
        {total, total - triangles, triangles});
    if (with('W') == total) return;
    write_unit(
        unit_output,
        "20(   '      Number of wet panels                ', i5, /, '      Number of wet but partly dry panels ', i5, /, '      Number of dry panels                ', i5, /, '      Number of dry but partly wet panels ', i5, /)",
        {with('W'), with('V'), with('D'), with('E')});
}

// --- commands -----------------------------------------------------------------------------------

void read_panels() {
    const int n = read_table_size(hyd_structure_panels);
    if (n == 0) return;
    begin_panels();
    read_panel_records(hyd_structure_panels, n);
    finish_panels();
}

/// Means of the four nodes of each panel, left for the caller in `$hyd_panel_centers` (3, n).
void make_panel_centers() {
    const ArrayRef ref = find_array(hyd_panel_el);
    const NodeSet set = open_nodes(hyd_mesh_nodes);
    if (!ref.is(type_integer) || ref.rows() != 4 || !set) return;
    const auto el = as_matrix<std::int32_t>(ref);
    const auto centers = create_matrix<double>("$hyd_panel_centers", 3, el.cols);
    for (int e = 1; e <= el.cols; ++e)
        for (const std::int32_t n : el.col(e))
            for (int axis = 1; axis <= 3 && n >= 1 && n <= set.count; ++axis)
                centers(axis, e) += set.xyz(axis, n) / 4;
}

void cmd_hyd_panel_rmap(std::string_view) {
    make_panel_rmap();
}

} // namespace

void begin_panels() {
    delete_panels(hyd_structure_panels);
    for (const auto name :
         {hyd_panela, hyd_paneln, hyd_panel_rmap, hyd_xr, hyd_yr, hyd_zr, hyd_xyzc})
        delete_array(name);
    fortopen_ext(unit_pan, ".pan", "UNKNOWN", "FORMATTED");
}

void finish_panels() {
    const auto panels = checked_panels(hyd_structure_panels);
    const auto flat = flat_panels(panels);
    const auto codes = panel_codes(panels, flat, get_int(hyd_num_panels));
    warn_partial(codes);
    const int np = number_panels(hyd_structure_panels, codes, is_wet);
    warn_below_bottom(panels, flat, codes);
    warn_coincident(panels, flat, codes);
    write_pan(panels, flat, codes);
    write_summary(panels, codes);
    store_types(hyd_structure_panels, panels);
    store_geometry(panels, flat, np);
    close_unit(unit_pan);
}

PanelMesh require_panel_mesh(int np) {
    return {
        require_matrix<double>(hyd_xyzc, np, 3),        require_matrix<double>(hyd_paneln, 3, np),
        require_vector<double>(hyd_panela, np),         require_matrix<double>(hyd_xr, np, 4),
        require_matrix<double>(hyd_yr, np, 4),          require_matrix<double>(hyd_zr, np, 4),
        require_vector<std::int32_t>(hyd_paneltype, np)};
}

int panel_of_wet(int p) {
    const auto map = require_vector<std::int32_t>(hyd_panel_map);
    const auto found = std::ranges::find(map, p);
    return found == map.end() ? 0 : static_cast<int>(found - map.begin()) + 1;
}

void make_panel_rmap() {
    const ArrayRef ref = find_array(hyd_panel_map);
    if (!ref.is(type_integer)) {
        not_found(hyd_panel_map);
        shutdown_with(" \n\tPanels must be defined before mapping can be created\n");
    }
    const int n = get_int(hyd_num_panels);
    const int np = get_int(hyd_num_wetpanels);
    if (n < 1 || np < 1 || n > ref.size() || np > n) shutdown_with(" \n\tError in panel numbers\n");
    const auto map = as_span<std::int32_t>(ref);
    const auto rmap = create_matrix<std::int32_t>(hyd_panel_rmap, np, 0);
    for (int e = 1; e <= n; ++e)
        if (const int p = map[nth(e)]; p >= 1 && p <= np) rmap(p) = e;
}

void hyd_panel_element(Request request) {
    switch (task_of(request)) {
    case Task::input:
        return read_panels();
    case Task::print_input:
        return print_panels(hyd_structure_panels);
    case Task::print_state:
    case Task::print_response:
        return print_both(hyd_structure_panels.invalid_print);
    case Task::mesh_export:
        return make_panel_centers();
    default:
        return;
    }
}

// --- rows and help ------------------------------------------------------------------------------

std::string_view hyd_panel_help() {
    return "Command Syntax\n\thyd_panel  n=?\n\t"
           "   n=nel  nodes=node1,node2,node3,node4  [gen=gen  inc=inc1,inc2]  [gen_2d=gen_2d  "
           "inc_2d=inc1_2d,inc2_2d  inc_el=inc_el]\n\t   (blank line)\n\n"
           "Input of the panels of the wetted surface, and all that the analysis needs of them: areas, "
           "normals, centroids, and which of them are wet.\n\n"
           "n\n\tOn the command line the largest panel number (required); on a record the number of its "
           "panel. A number out of range ends the program; the database is saved first. A blank line ends "
           "the input.\n\n"
           "nodes\n\tNumbers of the corner nodes (hyd_nodes), clockwise looking from the fluid, so that the "
           "normal points out of the fluid into the body. For a triangle node4 is 0 or equal to node3.\n\n"
           "gen\n\tNumber of further panels in the sequence of the record (default 0), numbered n+1, n+2, "
           "...\n\n"
           "inc\n\tNode increments within the sequence: inc1 of nodes 1 and 2, inc2 of nodes 3 and 4. "
           "Defaults are 0.\n\n"
           "gen_2d\n\tNumber of further sequences (default 0).\n\n"
           "inc_2d\n\tNode increments from sequence to sequence: inc1_2d of nodes 1 and 2, inc2_2d of nodes "
           "3 and 4. Defaults are 0.\n\n"
           "inc_el\n\tIncrement of panel numbers from sequence to sequence. Default is gen+1.\n\n"
           "A record may also be plain numbers, in the order n, node1 to node4, inc1, inc2, gen, inc1_2d, "
           "inc2_2d, gen_2d, inc_el.\n\n"
           "Panels with a corner above z = 0 are wet (V) or dry (E) by the height of their centroid; those "
           "wholly above are dry. With symmetry (hyd_parameters) panels with a centroid at y < 0, or with "
           "double symmetry x < 0, are left out. A panel with area zero ends the program; panels at the "
           "same place give a warning.\n\n"
           "Example (4 by 2 panels on nodes 1 to 15, 5 in a row):\n\thyd_panel n=8\n\t"
           "n=1 nodes=1,2,7,6 inc=1,1 gen=3 inc_2d=5,5 gen_2d=1\n\t(blank line)\n\n"
           "Arrays created: .hyd_panel_el(4,n), .hyd_panel_code(n), .hyd_panel_#map(n), .hyd_#panels, "
           ".hyd_#wetpanels, and for the np wet panels .hyd_paneltype(np), .hyd_panela(np), "
           ".hyd_paneln(3,np), .hyd_xr(np,4), .hyd_yr(np,4), .hyd_zr(np,4), .hyd_xyzc(np,3). The file with "
           "extension pan has a table of the panels. Coordinates are used as they are now: hyd_nodes, "
           "hyd_coord_trans and hyd_node_tolerance come first.\n\n"
           "See Also\n\thyd_nodes\n\tphyd_panel\n\thyd_body_check\n\thyd_convert_fea_mesh\n";
}

std::string_view phyd_panel_help() {
    return "Command Syntax\n\tphyd_panel  [-wet_only]\n\n"
           "Prints the nodes and the code of each panel: W wet, D dry, V wet but partially dry, E dry but "
           "partially wet. Panels left out by symmetry are not printed.\n\n"
           "-wet_only\n\tPrint only the panels of the analysis, W and V.\n\n"
           "Example:\n\tphyd_panel -wet_only\n\n"
           "See Also\n\thyd_panel\n\tphyd_nodes\n";
}

std::span<const Command> hyd_panel_rows() {
    static constexpr Command rows[] = {
        {.words = {"hyd_panel_rmap"},
         .run = cmd_hyd_panel_rmap,
         .summary = "map from wet panels to input panel numbers",
         .help =
             "Command Syntax\n\thyd_panel_rmap\n\n"
             "Makes the map from the numbers of the wet panels, 1 to np in the order of the "
             "analysis, to the panel numbers of hyd_panel. The analysis makes it by itself when "
             "it keeps potentials.\n\n"
             "Example:\n\thyd_panel_rmap\n\n"
             "Array created: .hyd_panel_rmap(np). Must follow hyd_panel.\n\n"
             "See Also\n\thyd_panel\n\thyd_analysis\n"},
    };
    return rows;
}

} // namespace quelor
