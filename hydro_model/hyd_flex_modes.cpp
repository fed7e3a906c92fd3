// Flexible modes: nodal displacements from the finite-element model, from mode records or from
// arrays, their generalised normals, and an estimate of their hydrostatic stiffness.
//
// Command: hyd_flex_modes.
// Writes: the flexible modes' part of the arrays of hyd_modes.hpp, the file `<project>.kf`.
// Reads: the control parameters, the panel arrays, `.#eqs`, `.node_eqs`, the nodal constraints.
// Workspace: `$tmp1`.
#include "fem/nodal_values.hpp"
#include "fem/nodes.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/hydrostatics.hpp"
#include "hydro_model/panel_motion.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "matrix/print.hpp"
#include "numeric/finite.hpp"

#include <algorithm>

namespace quelor {

namespace {

struct FlexSizes : ModeSizes {
    int nmoder, nmodef, symmetry;
};

FlexSizes flex_sizes() {
    FlexSizes s{};
    s.nmodef = require_int(hyd_nmodef);
    if (s.nmodef < 1)
        shutdown_with(
            " \n\tNumber of flexible modes must be > 0 to use the command hyd_flex_modes\n");
    s.nmoder = require_int(hyd_nmoder);
    s.nmode = hyd_mode_count();
    s.symmetry = require_int(hyd_symmetry);
    if (s.symmetry < 0 || s.symmetry > 2) shutdown_with(" \n\tsymmetry should be 0, 1 or 2\n");
    s.np = require_count(hyd_num_wetpanels, 1, most_panels);
    s.nnodes = require_count(hyd_num_nodes, 1, most_nodes);
    return s;
}

// --- arrays

/// Where the nodal displacements come from.
enum class Origin { finite_elements, records, arrays };

bool has_size(std::string_view name, int rows, int cols) {
    const ArrayRef ref = find_array(name);
    return ref.is(type_real) && ref.ndim() == 2 && ref.rows() == rows && ref.cols() == cols;
}

/// With rigid modes, or when the user has made them, the arrays must be there; otherwise they are
/// made. The user may have given the symmetry codes before.
ModeArrays flex_arrays(const FlexSizes& s, Origin origin) {
    const bool have_nodal = s.nmoder > 0 || origin == Origin::arrays;
    bool match = true;
    for (const auto name : nodal_mode_arrays) {
        if (!have_nodal) create_matrix<double>(name, s.nnodes, s.nmode);
        match = match && has_size(name, s.nnodes, s.nmode);
    }
    if (s.nmoder == 0) {
        create_matrix<double>(hyd_un, s.nmode, s.np);
        create_matrix<double>(hyd_uz, s.nmode, s.np);
        create_matrix<double>(hyd_kf, s.nmode, s.nmode);
    }
    if (!match || !has_size(hyd_un, s.nmode, s.np) || !has_size(hyd_uz, s.nmode, s.np)) {
        print_both(" \n\tModal displacement arrays are not of same size\n");
        shutdown_with(" \n\tCheck if hyd_rigid_modes command was run.\n");
    }
    const bool codes_needed = s.symmetry != 0 && origin != Origin::records;
    if (!codes_needed && !array_exists(hyd_modesym))
        create_matrix<std::int32_t>(hyd_modesym, s.nmode, 0);
    return hyd_find_modes(s);
}

void warn_of_missing_codes(const FlexSizes& s, std::span<const std::int32_t> modesym) {
    const int classes = 2 * s.symmetry;
    for (int m = s.nmoder + 1; s.symmetry != 0 && m <= s.nmode; ++m) {
        const auto code = modesym[nth(m)];
        if (code < 1 || code > classes)
            write_both("('    WARNING: No symmetry code in .hyd_modesym for mode', i6)", {m});
    }
}

// --- displacements from the finite-element model

/// The equations of the finite-element nodes, checked against mode shapes of neq rows.
NodalValues open_mode_shapes(int neq) {
    if (!find_array(node_eqs).is(type_integer) || !find_array(num_eqs).is(type_integer))
        shutdown_with(" \n\tArray with structural equation numbers, .node_eqs, not found\n");
    auto values = open_nodal_values();
    if (!values || !values->fit(neq)) shutdown();
    return *std::move(values);
}

/// A degree of freedom without an equation does not move; a constrained one follows its constraint.
void take_mode_shapes(const FlexSizes& s, std::string_view name, const ModeArrays& modes) {
    const auto shapes = require_matrix<double>(name);
    const NodalValues values = open_mode_shapes(shapes.rows);
    if (shapes.cols < s.nmode) shutdown_with(" \n\tThe array of mode shapes has too few columns\n");
    const int nodes = std::min(s.nnodes, values.eqs.cols);
    for (int m = s.nmoder + 1; m <= s.nmode; ++m) {
        for (const auto& component : modes.nodal)
            std::ranges::fill(component.col(m), 0.0);
        for (int node = 1; node <= nodes; ++node) {
            const auto displacement = values.six(shapes.col(m), node);
            for (std::size_t i = 0; i < displacement.size(); ++i)
                modes.nodal[i](node, m) = displacement[i];
        }
    }
}

// --- displacements from records

/// An input file that ends gives this record.
bool at_end_of_input() {
    const auto text = record_text();
    return text.substr(0, text.find(' ')) == "return";
}

std::int32_t symmetry_code(int symmetry, int x_z_sym, int y_z_sym) {
    if (symmetry == 1) return 1 + x_z_sym;
    if (x_z_sym == 0) return y_z_sym == 1 ? 1 : 3;
    return y_z_sym == 0 ? 2 : 4;
}

void set_mode_code(const FlexSizes& s, std::span<const std::int32_t> head,
                   std::span<std::int32_t> modesym) {
    if (head[0] <= s.nmoder || head[0] > s.nmode) shutdown_with(" \n\tMode number out of range\n");
    for (const int sym : head.subspan(1))
        if (sym != 0 && sym != 1) shutdown_with(" \n\tSymmetry of a mode should be 0 or 1\n");
    if (s.symmetry != 0) modesym[nth(head[0])] = symmetry_code(s.symmetry, head[1], head[2]);
}

/// Records of one mode up to a blank one or the end of the file; nodes not named do not move.
void read_mode(const FlexSizes& s, int mode, const ModeArrays& modes) {
    for (const auto& component : modes.nodal)
        std::ranges::fill(component.col(mode), 0.0);
    for (;;) {
        std::array<double, 7> record{};
        read_real_record("Enter node  ux  uy  uz  thx  thy  thz\n", record);
        if (record_text().empty() || at_end_of_input()) return;
        if (!all_finite(record)) shutdown_with(" \n\tModal displacements must be numbers\n");
        if (!(record[0] >= 1.0) || record[0] > s.nnodes)
            shutdown_with(" \n\tNode number of a mode out of range\n");
        for (std::size_t i = 0; i < 6; ++i)
            modes.nodal[i](static_cast<int>(record[0]), mode) = record[i + 1];
    }
}

void read_modes(const FlexSizes& s, const ModeArrays& modes) {
    for (int count = 0; count < s.nmodef;) {
        std::array<std::int32_t, 3> head{};
        if (!at_end_of_input()) read_int_record("Enter mode  x_z_sym  y_z_sym\n", head);
        if (at_end_of_input()) {
            write_both("('    WARNING:', i6, ' of', i6, ' flexible modes were input')",
                       {count, s.nmodef});
            return;
        }
        if (record_text().empty()) continue;
        set_mode_code(s, head, modes.modesym);
        read_mode(s, head[0], modes);
        ++count;
    }
}

// --- normals and stiffness

/// A wet panel as the modes see it: its nodes, and the weights of their rotations.
struct MovingPanel {
    int p;
    std::array<int, 4> nodes;
    Vec3 normal;
    Corners weights;
};

std::vector<MovingPanel> moving_panels(const FlexSizes& s) {
    const auto map = require_vector<std::int32_t>(hyd_panel_map);
    const auto el = require_matrix<std::int32_t>(hyd_panel_el, 4, static_cast<int>(map.size()));
    const PanelMesh mesh = require_panel_mesh(s.np);
    std::vector<MovingPanel> panels;
    for (int e = 1; e <= el.cols; ++e) {
        const int p = map[nth(e)];
        if (p < 1) continue;
        if (p > s.np) shutdown_with(" \n\tThe panel map does not fit the number of wet panels\n");
        MovingPanel panel{p, {}, mesh.normal(p), {}};
        for (int i = 1; i <= 4; ++i) {
            const int node = i == 4 && el(4, e) == 0 ? el(3, e) : el(i, e);
            if (node < 1 || node > s.nnodes) shutdown_with(" \n\tNodes of a panel out of range\n");
            panel.nodes[nth(i)] = node;
        }
        panel.weights = rotation_weights(mesh.panel(p).corners, panel.normal);
        panels.push_back(panel);
    }
    return panels;
}

void form_flexible_normals(const FlexSizes& s, const ModeArrays& modes) {
    const auto panels = moving_panels(s);
    for (int m = s.nmoder + 1; m <= s.nmode; ++m)
        for (const auto& [p, nodes, normal, weights] : panels) {
            Corners u{}, theta{};
            for (std::size_t k = 0; k < 4; ++k)
                for (std::size_t i = 0; i < 3; ++i) {
                    u[k][i] = modes.nodal[i](nodes[k], m);
                    theta[k][i] = modes.nodal[i + 3](nodes[k], m);
                }
            const Vec3 d = panel_displacement(normal, weights, u, theta);
            modes.un(m, p) = dot_product(d, normal);
            modes.uz(m, p) = d[2];
        }
    write_both("(a)", {"    Generalized normals calculated"});
}

/// Entries of the flexible modes, with each other and with the rigid ones; modes of different
/// symmetry do not couple.
void form_flexible_stiffness(const FlexSizes& s, const ModeArrays& modes) {
    const auto area = require_vector<double>(hyd_panela, s.np);
    const double scale = (s.symmetry == 2   ? 4.0
                          : s.symmetry == 1 ? 2.0
                                            : 1.0) *
                         require_positive(hyd_fluid_rho) * require_positive(hyd_grav);
    const Temporary<double> fluid("$tmp1", s.nmode, s.nmode);
    pressure_stiffness(modes.un, modes.uz, area, fluid.view);
    const auto code = [&](int m) { return modes.modesym[nth(m)]; };
    for (int j = 1; j <= s.nmode; ++j)
        for (int i = 1; i <= s.nmode; ++i) {
            if (i <= s.nmoder && j <= s.nmoder) continue;
            const bool coupled = s.symmetry == 0 || code(i) == code(j);
            modes.kf(i, j) = coupled ? scale * fluid.view(i, j) : 0.0;
        }
}

void write_stiffness(Matrix<const double> kf) {
    if (fortopen_ext_position(unit_kf, ".kf", "UNKNOWN", "FORMATTED", "APPEND") != 0) return;
    write_unit(unit_kf, "10(10x,'*******    ! HYDROSTATIC STIFFNESS  *************',//)");
    write_matrix(unit_kf, kf);
    close_unit(unit_kf);
}

void cmd_hyd_flex_modes(std::string_view) {
    const FlexSizes s = flex_sizes();
    const std::string shapes(get_arg(1));
    const Origin origin = !is_blank(shapes)      ? Origin::finite_elements
                          : has_flag(" -noread") ? Origin::arrays
                                                 : Origin::records;
    if (origin == Origin::finite_elements && !find_array(shapes).is(type_real))
        return print_both(" \n\tCan't find mode shapes\n");
    const ModeArrays modes = flex_arrays(s, origin);
    if (origin == Origin::finite_elements) take_mode_shapes(s, shapes, modes);
    if (origin == Origin::records) read_modes(s, modes);
    warn_of_missing_codes(s, modes.modesym);
    form_flexible_normals(s, modes);
    form_flexible_stiffness(s, modes);
    write_stiffness(modes.kf);
}

constexpr Command rows[] = {
    {.words = {"hyd_flex_modes"},
     .run = cmd_hyd_flex_modes,
     .summary = "flexible modes and their hydrostatic stiffness",
     .help = "Command Syntax\n\thyd_flex_modes  arg\n\thyd_flex_modes  [-noread]\n\n"
             "Defines the nmodef flexible modes, in inertial coordinates, after the rigid ones of "
             "hyd_rigid_modes.\n\n"
             "Option 1: arg is an array of mode shapes of the finite-element model, (neq,#modes). "
             "Its first nmoder columns are skipped; the next nmodef columns become the flexible "
             "modes. The hydrodynamic nodes must be those of the finite-element model. With "
             "symmetry the codes of the flexible modes must have been put in .hyd_modesym.\n\n"
             "Option 2: mode records follow. For each mode\n"
             "\tmode_j  x_z_sym  y_z_sym\n"
             "\ti  ux  uy  uz  thx  thy  thz     (one record for each node i that moves)\n"
             "\t(a blank line)\n"
             "The input ends after nmodef modes. x_z_sym and y_z_sym are 0 for a mode symmetric, "
             "1 for one antisymmetric about the plane.\n\n"
             "-noread\n\tNo records follow; .hyd_umx, .hyd_umy, .hyd_umz, .hyd_thx, .hyd_thy, "
             ".hyd_thz and .hyd_modesym hold the data.\n\n"
             "This command defines .hyd_un and .hyd_uz for the flexible modes and it forms an "
             "estimate - for the flexible modes - of the hydrostatic stiffness .hyd_kf based on "
             "the fluid term only. If a better hydrostatic stiffness matrix is available, it "
             "should replace the one created by this command (after the command finishes). The "
             "matrix is also written to the project's file kf. Without rigid modes (nmoder=0) the "
             "command creates the arrays.\n\n"
             "Example: mode 7 bends three nodes\n"
             "\thyd_flex_modes\n\t7 0 0\n\t1 0 0 1 0 0.1 0\n\t2 0 0 -1 0 0 0\n"
             "\t3 0 0 1 0 -0.1 0\n\t(a blank line)\n\n"
             "See Also\n\thyd_parameters, hyd_rigid_modes, hyd_genmodes\n"},
};

} // namespace

std::span<const Command> hyd_flex_modes_rows() {
    return rows;
}

} // namespace quelor
