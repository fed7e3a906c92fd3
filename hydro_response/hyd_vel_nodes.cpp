// Commands of the velocity nodes, hyd_velocity and phyd_velocity. Read what wave_field.hpp reads;
// write the arrays of hyd_vel_nodes.hpp. Workspace `$hyd_vel6pot`.
#include "hydro_response/hyd_vel_nodes.hpp"

#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_response/field_potential.hpp"
#include "hydro_response/wave_field.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <numbers>
#include <string>
#include <vector>

namespace quelor {

namespace {

/// Where a panel's exact integral gives way to a source in its middle the potential jumps by some
/// (s/L)^2/24 of the panel's part, with its side s and the distance L, and a difference divides the
/// jump by del. At 40 sides it is below what single precision leaves of the coefficients.
constexpr FieldKind kind{
    .gauge = 16,
    .points_per_node = 6,
    .incoming = "    Calculating velocity from incoming potential",
    .diffraction = "    Calculating velocity from diffraction potential",
    .radiation = "    Calculating velocity from radiation potential",
    .diffraction_size = " \n\tDimensions do not match in hyd_velpot_diff_sp\n",
    .radiation_size = " \n\tDimensions do not match in hyd_velpot_rad_sp\n",
};

/// The key del=, three distances above 0; not finite numbers, after a message, when it does not
/// serve.
Vec3 read_del() {
    Vec3 del{};
    get_real_par(" del=", del);
    if (!(del[0] > 0)) {
        print_both(" \n\tdelx must be greater than 0; command terminated\n");
        return {NAN, NAN, NAN};
    }
    for (double& d : del)
        if (d == 0) d = del[0];
    if (is_finite(del) && del[1] > 0 && del[2] > 0) return del;
    print_both(" \n\tdely and delz must be greater than 0 if they are given; command terminated\n");
    return {NAN, NAN, NAN};
}

/// False, after a message, when a node does not lie in the water.
bool all_in_water(const NodeSet& nodes, double depth) {
    for (int n = 1; n <= nodes.count; ++n)
        if (!(nodes.xyz(3, n) <= 0 && nodes.xyz(3, n) >= -depth)) {
            print_both(" \n\tVelocity node " + std::to_string(n) +
                       " lies outside the water; hyd_velocity_node_tolerance moves it in\n");
            return false;
        }
    return true;
}

/// The points about the nodes; empty after a message.
std::vector<Vec3> points_about(const NodeSet& nodes, const Vec3& del, double depth) {
    std::vector<Vec3> at, six(6 * as_size(nodes.count));
    for (int n = 1; n <= nodes.count; ++n)
        at.push_back(nodes.at(n));
    const int coincident = six_points(at, del, depth, six);
    if (coincident == 0) return six;
    if (2 * del[2] > depth)
        print_both(" \n\tdelz is larger than the water is deep; command terminated\n");
    else
        print_both(" \n\tdel is too small for the coordinates of node " +
                   std::to_string(coincident) + "; command terminated\n");
    return {};
}

void cmd_hyd_velocity(std::string_view) {
    if (!has_no_symmetry()) return;
    const Vec3 del = read_del();
    if (!is_finite(del)) return;
    const bool keep = has_flag(" -keep_pot");
    const FieldParts parts = read_field_parts();
    const NodeSet nodes = open_nodes(hyd_velocity_points);
    if (!nodes) return;
    if (nodes.count < 1) return print_both(" \n\tNumber nodes < 1\n");
    WaveField field(parts, kind);
    if (!field || !all_in_water(nodes, field.size().depth)) return;
    const std::vector<Vec3> six = points_about(nodes, del, field.size().depth);
    if (six.empty()) return;

    print_both(" \n\n                    Fluid Velocitites\n");
    const int points = 6 * nodes.count, nfreq = field.size().nfreq, nbeta = field.size().nbeta;
    Result potentials(hyd_vel6pot, "$hyd_vel6pot");
    const auto phi = potentials.array3<Complex8>(points, nfreq, nbeta);
    if (!field.potentials(six, phi)) return;
    std::ranges::copy(del, create_matrix<double>(hyd_vel_del, 3, 0).data);
    const auto xyz = create_matrix<double>(hyd_vel6_xyz, 3, points);
    for (int k = 1; k <= points; ++k)
        std::ranges::copy(six[nth(k)], xyz.col(k).begin());
    Complex8* v = static_cast<Complex8*>(
        create_array(type_complex8, hyd_vel_nodes, {3, nodes.count, nfreq, nbeta}));
    for (int b = 1; b <= nbeta; ++b)
        for (int f = 1; f <= nfreq; ++f, v += std::ptrdiff_t{3} * nodes.count)
            velocity_from_potentials(six, {&phi(1, f, b), as_size(points)}, {v, 3, nodes.count});
    delete_array(hyd_vel6pot);
    if (keep) potentials.place();
}

void cmd_phyd_velocity(std::string_view) {
    const bool period = has_flag(" -period");
    Inputs inputs;
    const auto freq = inputs.vector<double>(hyd_freq);
    const auto beta = inputs.vector<double>(hyd_beta);
    const int nfreq = static_cast<int>(freq.size()), nbeta = static_cast<int>(beta.size());
    const int nodes = inputs.integer(hyd_num_vel_nodes);
    if (!inputs) return;
    const ArrayRef ref = inputs.array(hyd_vel_nodes, type_complex8, {3, nodes, nfreq, nbeta});
    if (!inputs) return;
    const std::string head = std::string("(/, ' Wave Angle ', f6.1, //, '  Node',2x, '") +
                             (period ? "    Period" : " Frequency") +
                             "', 24x, 'Vel_x', 24x, 'Vel_y', 24x, 'Vel_z')";
    const Format head_format = Format::from_text(head);
    const auto* data = static_cast<const Complex8*>(ref.data);
    for (int b = 1; b <= nbeta; ++b) {
        write_both(head_format, {beta[nth(b)] * degrees});
        for (int n = 1; n <= nodes; ++n)
            for (int f = 1; f <= nfreq; ++f) {
                const Matrix<const Complex8> v{data + std::ptrdiff_t{3} * nodes *
                                                          (f - 1 + std::ptrdiff_t{nfreq} * (b - 1)),
                                               3, nodes};
                const double omega = freq[nth(f)];
                write_both(
                    "(i6, 1x, 1pe11.3, 1x, 3(2e14.5, 1x))",
                    {n, period ? 2 * std::numbers::pi / omega : omega, v(1, n), v(2, n), v(3, n)});
            }
    }
}

// --- help ---------------------------------------------------------------------------------------

constexpr std::string_view tolerance_help =
    "Command Syntax\n\thyd_velocity_node_tolerance  [z_tol=?]  [x_tol=?]  [y_tol=?]\n\n"
    "Puts velocity nodes above the still-water plane z = 0 on it and those below the sea bed on "
    "the bed, and likewise those within z_tol of either. With single or double symmetry "
    "(hyd_parameters) nodes within y_tol of the plane y = 0 are put on it, and with double symmetry "
    "those within x_tol of the plane x = 0. Each node that is changed is listed.\n\n"
    "z_tol, x_tol, y_tol\n\tTolerances. Defaults, also for negative values, are 0.001.\n\n"
    "Example:\n\thyd_velocity_node_tolerance z_tol=0.01\n\n"
    "Array changed: .hyd_vel_xyz.\n\n"
    "See Also\n\thyd_velocity_nodes\n\thyd_velocity\n";

constexpr std::string_view velocity_help =
    "Command Syntax\n\thyd_velocity  del=delx,dely,delz  [incoming=?]  [diffraction=?]  "
    "[radiation=?]  [dif=difname]  [rad=radname]  [-keep_pot]\n\n"
    "Command to determine the velocity of the water at the nodes of hyd_velocity_nodes, for waves "
    "of unit amplitude, at all frequencies and headings of hyd_analysis, by central differences of "
    "the potential. It serves models without symmetry only.\n\n"
    "del\n\tDistances from a node to the points of the differences in x, y and z. Where a point "
    "would lie above the water or below the bed the node takes its place. dely and delz default to "
    "delx. Nodes must be further than del away from the structure; this is not tested. A distance "
    "far below a thousandth of the size of a panel loses digits.\n\n"
    "incoming, diffraction, radiation\n\t1 to include the part (default), 0 not to: the incoming "
    "wave, the wave that the structure held fixed scatters, and the waves that its motion makes.\n\n"
    "dif, rad\n\tNames of the files of source strengths that hyd_analysis -source has written. "
    "Defaults are the project's name with extensions dif and rad. A file is opened only if its part "
    "is included.\n\n"
    "-keep_pot\n\tKeep the potentials of the six points about each node, "
    ".hyd_vel6pot(6*nodes,nfreq,nbeta).\n\n"
    "Needs\n\t.hyd_gencor of hyd_analysis_response, if radiation is included.\n\n"
    "Created\n\t.hyd_vel_nodes(3,nodes,nfreq,nbeta), complex: at time t the velocity is the real "
    "part of .hyd_vel_nodes exp(i omega t); .hyd_vel_del(3), the distances; "
    ".hyd_vel6_xyz(3,6*nodes), the points, +x, -x, +y, -y, +z, -z of each node.\n\n"
    "Example\n\thyd_velocity del=0.1 radiation=0\n\tphyd_velocity -period\n\n"
    "See Also\n\thyd_velocity_nodes\n\tphyd_velocity\n\thyd_surf_elevation\n";

constexpr std::string_view print_help =
    "Command Syntax\n\tphyd_velocity  [-period]\n\n"
    "Prints the velocities of hyd_velocity: a table for each heading, with the real and imaginary "
    "parts of the three components for each node and frequency.\n\n"
    "-period\n\tThe table is against the wave period instead of the frequency.\n\n"
    "Example\n\tphyd_velocity -period\n\n"
    "See Also\n\thyd_velocity\n";

/// The help of the list's input, which must speak of nodes that are never entered.
NodeHelp velocity_node_help() {
    NodeHelp help = node_help(hyd_velocity_points);
    help.nodes.insert(help.nodes.rfind("See Also"),
                      "All nodes up to the highest number count: one that is never entered lies at "
                      "the origin, as phyd_velocity_nodes shows.\n\n");
    return help;
}

} // namespace

std::span<const Command> hyd_vel_nodes_rows() {
    static const NodeHelp help = velocity_node_help();
    static const std::array rows{
        Command{.words = {"hyd_velocity_nodes"},
                .run = [](std::string_view) { read_nodes(hyd_velocity_points); },
                .summary = "input of points for the water velocity",
                .help = help.nodes},
        Command{.words = {"hyd_velocity_node_gen"},
                .run = [](std::string_view) { generate_nodes(hyd_velocity_points); },
                .summary = "generation of points for the water velocity",
                .help = help.node_gen},
        Command{.words = {"phyd_velocity_nodes"},
                .run = [](std::string_view) { print_nodes(hyd_velocity_points); },
                .summary = "print the points for the water velocity",
                .help = help.print},
        Command{.words = {"hyd_velocity_node_tolerance"},
                .run =
                    [](std::string_view) {
                        set_nodes_on_planes(hyd_velocity_points, HeightRule::in_water);
                    },
                .summary = "put velocity points into the water",
                .help = tolerance_help},
        Command{.words = {"hyd_velocity"},
                .run = cmd_hyd_velocity,
                .summary = "velocity of the water at points",
                .help = velocity_help},
        Command{.words = {"phyd_velocity"},
                .run = cmd_phyd_velocity,
                .summary = "print the velocity of the water",
                .help = print_help},
    };
    return rows;
}

} // namespace quelor
