// Control parameters and coordinate systems.
//
// Commands: hyd_parameters, hyd_coordaxs, hyd_coord_trans.
// Writes: the scalars of `hyd_parameters`, `.hyd_coordaxs`; changes `.hyd_xyz`.
// Reads: `.hyd_nbodies`, `.hyd_#nodes`.
#include "hydro_model/hyd_input.hpp"

#include "hydro_model/hyd_nodes.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace quelor {

namespace {

// --- hyd_parameters

struct ModelCounts {
    std::int32_t symmetry = 0, nmoder = 6, nmodef = 0, nbodies = 0;
};

ModelCounts read_counts() {
    ModelCounts counts;
    get_int_par(" symmetry=", counts.symmetry);
    get_int_par(" nmoder=", counts.nmoder);
    get_int_par(" nmodef=", counts.nmodef);
    get_int_par(" nbodies=", counts.nbodies);
    return counts;
}

/// Replaces nmoder by that of the bodies; stops when the modes cannot be counted or stored.
void settle_mode_count(ModelCounts& counts) {
    std::int64_t nmoder = counts.nmoder;
    if (counts.nbodies > 0) nmoder = std::int64_t{6} * counts.nbodies;
    if (nmoder < 0 || counts.nmodef < 0) shutdown_with(" \n\tNumber of modes cannot be negative\n");
    const std::int64_t nmode = nmoder + counts.nmodef;
    if (nmode == 0) shutdown_with(" \n\tNumber of modes cannot be zero\n");
    if (nmode > most_modes) shutdown_with(" \n\tToo many modes for matrices of (nmode,nmode)\n");
    counts.nmoder = static_cast<std::int32_t>(nmoder);
}

/// A real parameter with its array; the first of the list has no default.
struct RealParameter {
    std::string_view key, array;
    double value;
};

bool is_positive(double x) {
    return std::isfinite(x) && x > 0.0;
}

void cmd_hyd_parameters(std::string_view) {
    ModelCounts counts = read_counts();
    settle_mode_count(counts);
    create_int_scalar(hyd_symmetry, counts.symmetry);
    create_int_scalar(hyd_nmoder, counts.nmoder);
    create_int_scalar(hyd_nmodef, counts.nmodef);
    create_int_scalar(hyd_nbodies, counts.nbodies);

    RealParameter reals[] = {
        {" h=", hyd_depth, 0.0},          {" grav=", hyd_grav, 9.80665},
        {" rho=", hyd_fluid_rho, 1025.0}, {" kh=", hyd_deep_water, 10.0},
        {" gauge=", hyd_gauge, 2.5},      {" hdamp=", hyd_hysdamp, 0.0},
    };
    for (auto& real : reals)
        get_real_par(real.key, real.value);
    auto& [depth, grav, rho, deep_water, gauge, hdamp] = reals;
    if (!is_positive(depth.value)) shutdown_with(" \n\tA positive water depth must be given\n");
    if (!is_positive(grav.value) || !is_positive(rho.value))
        shutdown_with(" \n\tgrav and rho must be greater than 0\n");
    if (!std::isfinite(gauge.value) || !std::isfinite(hdamp.value))
        shutdown_with(" \n\tgauge and hdamp must be numbers\n");
    if (!is_positive(deep_water.value)) deep_water.value = 10.0;
    for (const auto& real : reals)
        create_real_scalar(real.array, real.value);
}

// --- hyd_coordaxs

/// The array as it stands when it already has a column for each of several bodies; otherwise a
/// new one, zeroed.
Matrix<double> body_columns(int nbodies) {
    const ArrayRef present = find_array(hyd_coordaxs);
    if (nbodies >= 1 && present.is(type_real) && present.ndim() == 2 &&
        present.rows() == axes_rows && present.cols() == nbodies)
        return as_matrix<double>(present);
    return create_matrix<double>(hyd_coordaxs, axes_rows, std::max(nbodies, 1));
}

void cmd_hyd_coordaxs(std::string_view) {
    const int nbodies = hyd_body_count();
    std::int32_t body = 1;
    get_int_par(" body=", body);
    body = std::max(body, 1);
    if (body > nbodies) shutdown_with(" \n\tBody number > number of bodies\n");

    std::array<double, axes_rows> axes{};
    const std::span<double> values(axes);
    get_real_par(" origin=", values.subspan(0, 3));
    get_real_par(" angles=", values.subspan(3, 3));
    get_real_par(" xb=", axes[6]);
    get_real_par(" yb=", axes[7]);
    get_real_par(" zb=", axes[8]);
    get_real_par(" theta=", axes[9]);
    get_real_par(" zcg=", axes[10]);
    if (!all_finite(axes)) shutdown_with(" \n\tCoordinates and angles must be numbers\n");
    std::ranges::copy(axes, body_columns(require_int(hyd_nbodies)).col(body).begin());
}

// --- hyd_coord_trans

using Rotation = std::array<double, 9>; // 3 x 3, column by column

/// Rotation about the x axis, then the once-rotated y axis, then the twice-rotated z axis (Bryant
/// angles, radians).
Rotation bryant_rotation(double a, double b, double c) {
    const double ca = std::cos(a), sa = std::sin(a);
    const double cb = std::cos(b), sb = std::sin(b);
    const double cc = std::cos(c), sc = std::sin(c);
    return {cb * cc,
            ca * sc + sa * sb * cc,
            sa * sc - ca * sb * cc,
            -cb * sc,
            ca * cc - sa * sb * sc,
            sa * cc + ca * sb * sc,
            sb,
            -sa * cb,
            ca * cb};
}

/// x := R x
void rotate(const Rotation& r, std::span<double> x) {
    const double x0 = x[0], x1 = x[1], x2 = x[2];
    for (std::size_t i = 0; i < 3; ++i)
        x[i] = r[i] * x0 + r[3 + i] * x1 + r[6 + i] * x2;
}

bool any_nonzero(const double (&v)[3]) {
    return v[0] != 0.0 || v[1] != 0.0 || v[2] != 0.0;
}

void cmd_hyd_coord_trans(std::string_view) {
    const int nnodes = require_int(hyd_num_nodes);
    std::int32_t body = 1;
    std::array<std::int32_t, 2> nodes{1, nnodes};
    get_int_par(" body=", body);
    get_int_par(" nodes=", nodes);
    if (body < 1 || body > hyd_body_count()) shutdown_with(" \n\tIllegal body number\n");
    const BodyAxes axes = hyd_body_axes(body);
    const auto xyz = as_matrix<double>(require_array(hyd_xyz, type_real, {3, any_size}));
    if (nodes[0] < 1 || nodes[1] < nodes[0] || nodes[1] > std::min(nnodes, xyz.cols))
        shutdown_with(" \n\tIllegal node range\n");

    constexpr double radians = std::numbers::pi / 180.0;
    const Rotation r = bryant_rotation(axes.angles[0] * radians, axes.angles[1] * radians,
                                       axes.angles[2] * radians);
    const bool turned = any_nonzero(axes.angles), shifted = any_nonzero(axes.origin);
    for (int node = nodes[0]; node <= nodes[1]; ++node) {
        if (turned) rotate(r, xyz.col(node));
        for (int i = 1; shifted && i <= 3; ++i)
            xyz(i, node) += axes.origin[i - 1];
    }
}

constexpr Command rows[] = {
    {.words = {"hyd_parameters"},
     .run = cmd_hyd_parameters,
     .summary = "control parameters of the hydrodynamic analysis",
     .help = "Command Syntax\n\thyd_parameters  h=?  [symmetry=?]  [nmoder=?]  [nmodef=?]  "
             "[nbodies=?]  [gauge=?]  [grav=?]  [rho=?]  [kh=?]  [hdamp=?]\n\n"
             "Specifies the control parameters. This must be the first hydrodynamic command.\n\n"
             "h\n\tWater depth; greater than 0. There is no default.\n"
             "symmetry\n\tSymmetry of the structure about the inertial axes: 0 (default) none; 1 "
             "port-starboard symmetry, the mesh covers y > 0; 2 port-starboard and fore-aft "
             "symmetry, the mesh covers x > 0, y > 0.\n"
             "nmoder\n\tNumber of user-defined modes, usually rigid body modes; default 6. It is "
             "replaced by 6*nbodies when nbodies is greater than 0.\n"
             "nmodef\n\tNumber of flexible modes; default 0.\n"
             "nbodies\n\tNumber of bodies; default 0. Both 0 and 1 mean one body.\n"
             "gauge\n\tFactor of the characteristic panel length: closer to a panel than this the "
             "integration over the panel is exact. Default 2.5; a reasonable value is between 2 "
             "and 4.\n"
             "grav\n\tAcceleration of gravity; default 9.80665.\n"
             "rho\n\tMass density of the fluid; default 1025.\n"
             "kh\n\tWave number times depth above which the water is treated as deep; default "
             "10.\n"
             "hdamp\n\tHysteretic damping of the structure; default 0. 0.02 means 2%.\n\n"
             "Dimensional quantities, such as rho and grav, should be specified using consistent "
             "units throughout. Added mass, damping and exciting forces are those of the entire "
             "structure whatever the symmetry, and structural matrices must be, too.\n\n"
             "The parameters are stored in .hyd_depth, .hyd_symmetry, .hyd_nmoder, .hyd_nmodef, "
             ".hyd_nbodies, .hyd_gauge, .hyd_grav, .hyd_fluid_rho, .hyd_deep_water and "
             ".hyd_hysdamp.\n\n"
             "Example: a barge with two flexible modes in 20 m of water\n"
             "\thyd_parameters h=20 symmetry=1 nmodef=2\n\n"
             "See Also\n\thyd_coordaxs, hyd_wave, hyd_nodes, hyd_analysis\n"},
    {.words = {"hyd_coordaxs"},
     .run = cmd_hyd_coordaxs,
     .summary = "input and body-fixed coordinate systems",
     .help = "Command Syntax\n\thyd_coordaxs  [origin=?,?,?]  [angles=?,?,?]  [xb=?]  [yb=?]  "
             "[zb=?]  [theta=?]  [zcg=?]  [body=?]\n\n"
             "Specifies the coordinate systems of a body. The inertial system lies on the "
             "still-water plane with z upward; all hydrodynamic calculation is in it. The command "
             "is required even when all values are 0, once for each body.\n\n"
             "origin\n\tInertial coordinates of the origin of the input coordinate system.\n"
             "angles\n\tEuler (Bryant) angles of the input axes, degrees: about x, then the "
             "rotated y, then the rotated z.\n"
             "xb, yb, zb\n\tInertial coordinates of the origin of the body-fixed system. It must "
             "lie on the vertical line through the center of gravity.\n"
             "theta\n\tAngle from the inertial x-axis to the body x-axis, degrees, "
             "counterclockwise positive. The body z-axis is vertical.\n"
             "zcg\n\tBody-fixed z-coordinate of the center of gravity.\n"
             "body\n\tBody number; default 1.\n\n"
             "All other values default to 0. A second command for a body replaces the first "
             "entirely. The values are stored in a column of .hyd_coordaxs.\n\n"
             "Example: body 2 centered at x = 60, its center of gravity 3 above the keel point "
             "zb\n"
             "\thyd_coordaxs body=2 xb=60 zb=-10 zcg=3\n\n"
             "See Also\n\thyd_parameters, hyd_coord_trans, hyd_rigid_modes\n"},
    {.words = {"hyd_coord_trans"},
     .run = cmd_hyd_coord_trans,
     .summary = "nodes from input to inertial coordinates",
     .help = "Command Syntax\n\thyd_coord_trans  [body=?]  [nodes=?,?]\n\n"
             "Transforms the coordinates of hydrodynamic nodes from the input coordinate system "
             "of a body to inertial coordinates: the rotation by the angles of hyd_coordaxs, then "
             "the shift by its origin. It must follow hyd_nodes and precede hyd_panel, because "
             "panels are stored in inertial coordinates. A second use transforms again.\n\n"
             "body\n\tBody number; default 1.\n"
             "nodes\n\tFirst and last node; default all nodes.\n\n"
             "The command changes .hyd_xyz.\n\n"
             "Example: nodes 101 to 200 belong to body 2\n"
             "\thyd_coord_trans body=2 nodes=101,200\n\n"
             "See Also\n\thyd_coordaxs, hyd_nodes, hyd_panel\n"},
};

} // namespace

int hyd_body_count() {
    return require_int(hyd_nbodies) < 1 ? 1 : require_count(hyd_nbodies, 0, most_modes / 6);
}

int hyd_mode_count() {
    const int nmode =
        require_count(hyd_nmoder, 0, most_modes) + require_count(hyd_nmodef, 0, most_modes);
    if (nmode < 1 || nmode > most_modes)
        shutdown_with(" \n\tThe numbers of modes in .hyd_nmoder and .hyd_nmodef are not valid\n");
    return nmode;
}

WaveCounts hyd_wave_counts() {
    const auto counts = require_vector<std::int32_t>(hyd_wave, 2);
    for (const std::int32_t n : counts)
        if (n < 1 || n > most_waves_held)
            shutdown_with(
                " \n\tThe numbers of headings and frequencies in .hyd_wave are not valid; "
                "see command hyd_wave\n");
    return {counts[0], counts[1]};
}

BodyAxes hyd_body_axes(int body) {
    const auto columns = require_matrix<double>(hyd_coordaxs, axes_rows);
    if (body < 1 || body > columns.cols) {
        shutdown_with(" \n\tCoordinate systems of body " + std::to_string(body) +
                      " not found; see command hyd_coordaxs\n");
    }
    const auto c = columns.col(body);
    return {{c[0], c[1], c[2]}, {c[3], c[4], c[5]}, c[6], c[7], c[8], c[9], c[10]};
}

std::span<const Command> hyd_input_rows() {
    return rows;
}

} // namespace quelor
