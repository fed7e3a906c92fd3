// Nodal masses and dampers, initial conditions, summary of the mass. Reads `.node_active`,
// `.node_eqs`, `.#eqs`, `.xyz`, `.mstr`; writes the arrays of masses.hpp.
#include "fem/masses.hpp"

#include "fem/assembly.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/node_records.hpp"
#include "fem/nodes.hpp"
#include "fem/rigid_modes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/profile.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace quelor {

// --- masses and dampers -------------------------------------------------------------------------

namespace {

/// One kind of nodal value that is kept as it is typed.
struct ValueKind {
    std::string_view name, prompt, key, inactive, missing, heading;
};

constexpr ValueKind mass_values{mass_inp,
                                "Enter nodal masses: n  m  inc\n",
                                "m=",
                                " \n\tIllegal assignment of mass to inactive node\n",
                                " \n\tNodal masses not found\n",
                                "I N P U T   N O D A L   M A S S E S"};
constexpr ValueKind damper_values{dampers_inp,
                                  "Enter nodal dampers: n  c  inc\n",
                                  " c=",
                                  " \n\tIllegal assignment of damper to inactive node\n",
                                  " \n\tNodal dampers not found\n",
                                  "I N P U T   N O D A L   D A M P E R S"};

void read_values(const ValueKind& kind) {
    const bool echo = !has_flag(" -noecho");
    if (!array_exists(node_active)) return not_found(node_active);
    const auto all = read_node_values(kind.prompt, kind.key, kind.inactive);
    delete_array(kind.name);
    if (all.empty()) return;
    const auto out = create_matrix<double>(kind.name, 7, static_cast<int>(all.size()));
    for (int k = 1; k <= out.cols; ++k) {
        const NodeValues& one = all[nth(k)];
        out(1, k) = one.node;
        std::ranges::copy(one.values, out.col(k).begin() + 1);
    }
    if (echo) print_node_values(kind.heading, all, false);
}

void print_values(const ValueKind& kind) {
    const ArrayRef ref = find_array(kind.name);
    if (!ref.is(type_real) || ref.rows() != 7) return print_both(kind.missing);
    const auto input = as_matrix<const double>(ref);
    std::vector<NodeValues> all(as_size(input.cols));
    for (int k = 1; k <= input.cols; ++k) {
        NodeValues& one = all[nth(k)];
        one.node = nearest_int(input(1, k));
        std::ranges::copy(input.col(k).subspan(1), one.values.begin());
    }
    print_node_values(kind.heading, all, true);
}

// --- initial conditions

void cmd_initial_conditions(std::string_view) {
    const std::string name(get_arg(1));
    const bool echo = !has_flag(" -noecho");
    if (is_blank(name)) return print_both(" \n\tOne argument required\n");
    if (!array_exists(node_eqs)) return print_both(" \n\tEquation numbers not found\n");
    if (!array_exists(node_active)) return not_found(node_active);
    const Equations equations = open_equations();
    if (equations.count < 1) return print_both(" \n\tNumber of equations (.#eqs) < 1\n");
    const auto all =
        read_node_values("Enter data: n=  v=  inc=\n",
                         "u=", " \n\tIllegal assignment of initial condition to inactive node\n");
    std::vector<double> values(as_size(equations.count));
    for (const NodeValues& one : all) {
        std::array<std::int32_t, 6> list{};
        element_equations(equations, {&one.node, 1}, all_six, list);
        for (std::size_t d = 0; d < 6; ++d) {
            if (list[d] > equations.count) shutdown_with(" \n\tEquation number not possible\n");
            if (list[d] > 0) values[nth(list[d])] = one.values[d];
        }
    }
    std::ranges::copy(values, create_matrix<double>(name, equations.count, 0).data);
    if (echo) print_node_values("I N I T I A L   C O N D I T I O N S", all, false);
}

// --- summary of the mass

/// The mass, and what it makes of displacements.
struct MassOperator {
    std::span<const double> values;
    std::span<const std::int32_t> loc; ///< empty: diagonal

    void multiply(Matrix<const double> u, Matrix<double> mu) const {
        if (!loc.empty()) return profile_multiply(values, u, mu, loc);
        for (int j = 1; j <= u.cols; ++j)
            for (int i = 1; i <= u.rows; ++i)
                mu(i, j) = values[nth(i)] * u(i, j);
    }
};

/// Centre of the mass that moves in direction d: the sum of nodal mass times coordinates over the
/// sum of nodal mass; zeros when nothing moves. An equation that nodes share counts once.
/// mu  (.#eqs)  M times the unit translation in direction d
Vec3 centre_of_mass(const Equations& equations, Matrix<const double> x, int d,
                    std::span<const double> mu) {
    Vec3 moment{};
    double mass = 0;
    std::vector<char> counted(mu.size());
    for (int n = 1; n <= std::min(equations.of_node.cols, x.cols); ++n) {
        const std::int32_t e = equations.of_node(d, n);
        if (e <= 0 || std::exchange(counted[nth(e)], 1)) continue;
        const double m = mu[nth(e)];
        moment = add_scaled(moment, m, {x(1, n), x(2, n), x(3, n)});
        mass += m;
    }
    if (mass == 0) return {0, 0, 0};
    return {moment[0] / mass, moment[1] / mass, moment[2] / mass};
}

void report_mass(const Vec3& c, Matrix<const double> m6, Matrix<const double> cg, bool save) {
    write_both("(/, 5x, 'Mass Summary', /, /, 5x, 'Mass matrix of the rigid body about', 1p3e13.4)",
               {std::span<const double>(c)});
    for (int i = 1; i <= 6; ++i)
        write_both("(5x, 1p6e13.4)", {m6(i, 1), m6(i, 2), m6(i, 3), m6(i, 4), m6(i, 5), m6(i, 6)});
    write_both("(/, 5x, 'Centre of mass', /, 5x, 'Direction', 12x, 'X', 12x, 'Y', 12x, 'Z')");
    for (int d = 1; d <= 3; ++d)
        write_both("(5x, i9, 1p3e13.4)", {d, cg(d, 1), cg(d, 2), cg(d, 3)});
    if (!save) return;
    std::ranges::copy(m6.all(), create_matrix<double>(mass_summary6x6, 6, 6).data);
    std::ranges::copy(cg.all(), create_matrix<double>(mass_summary_cg, 3, 3).data);
}

/// The mass as it stands; without values after a message.
MassOperator find_mass(int equations) {
    const ArrayRef ref = find_array(mstr);
    if (!ref.is(type_real)) return not_found(mstr), MassOperator{};
    const auto values = as_span<const double>(ref);
    if (get_int(mstr_type) == 1 && ref.size() == equations) return {values, {}};
    const ArrayRef loc_ref = find_array(kdiag_loc);
    if (!loc_ref.is(type_integer)) return not_found(kdiag_loc), MassOperator{};
    const auto loc = as_span<const std::int32_t>(loc_ref);
    if (std::ssize(loc) - 1 != equations || !profile_is_valid(loc, ref.size()))
        return print_both(" \n\tIncorrect dimensions for .mstr\n"), MassOperator{};
    return {values, loc};
}

void cmd_mass_summary(std::string_view) {
    Vec3 c{};
    get_real_par("shift=", c);
    const bool save = has_flag(" -save");
    for (const auto name : {node_eqs, xyz})
        if (!array_exists(name)) return not_found(name);
    const Equations equations = open_equations();
    const NodeSet nodes = open_nodes(fe_nodes);
    if (!nodes) return;
    const int n = equations.count;
    if (n < 1) return print_both(" \n\tNumber of equations (.#eqs) < 1\n");
    const MassOperator mass = find_mass(n);
    if (mass.values.empty()) return;

    const Temporary<double> u("$mass_u", n, 6);
    const Temporary<double> mu("$mass_mu", n, 6);
    for (int mode = 1; mode <= 6; ++mode)
        rigid_shape(mode, nodes, equations.of_node, c, {}, u.view.col(mode));
    mass.multiply(u.view, mu.view);
    std::array<double, 36> m6{};
    std::array<double, 9> cg{};
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = 0; j < 6; ++j) {
            const auto ui = u.view.col(static_cast<int>(i) + 1);
            const auto muj = mu.view.col(static_cast<int>(j) + 1);
            for (std::size_t e = 0; e < ui.size(); ++e)
                m6[i + 6 * j] += ui[e] * muj[e];
        }
    for (std::size_t d = 0; d < 3; ++d) {
        const int dof = static_cast<int>(d) + 1;
        const Vec3 centre = centre_of_mass(equations, nodes.xyz, dof, mu.view.col(dof));
        for (std::size_t axis = 0; axis < 3; ++axis)
            cg[d + 3 * axis] = centre[axis];
    }
    report_mass(c, {m6.data(), 6, 6}, {cg.data(), 3, 3}, save);
}

constexpr Command rows[] = {
    {.words = {"mass"},
     .run = [](std::string_view) { read_values(mass_values); },
     .summary = "input of nodal masses",
     .help =
         "Command Syntax\n\tmass  [-noecho]\n\t   n=node_no  m=mx,my,mz,Ixx,Iyy,Izz  [inc=inc]\n\t"
         "   (blank line)\n\n"
         "Masses at nodes, for form_m.\n\n"
         "n\n\tNode number. Masses of repeated nodes add up. A node that is not active ends the "
         "program; the database is saved first.\n\n"
         "m\n\tMass in each direction and moment of inertia about each axis. Defaults are 0.\n\n"
         "inc\n\tNode increment of generation (default 0: none). Nodes between this record's node and "
         "the one before it get the values of this record.\n\n"
         "-noecho\n\tDo not print the masses to the output file.\n\n"
         "Example (nodes 1 to 5):\n\tmass\n\tn=1 m=2,2,2\n\tn=5 m=2,2,2 inc=1\n\t(blank line)\n\n"
         "Array created, replacing that of an earlier mass: .mass_inp(7, records).\n\n"
         "See Also\n\tpmass\n\tform_m\n\tmass_summary\n"},
    {.words = {"pmass"},
     .run = [](std::string_view) { print_values(mass_values); },
     .summary = "print nodal masses",
     .help = "Command Syntax\n\tpmass\n\nPrints the masses given by mass.\n\n"
             "Example:\n\tpmass\n\nSee Also\n\tmass\n"},
    {.words = {"dampers"},
     .run = [](std::string_view) { read_values(damper_values); },
     .summary = "input of nodal dampers",
     .help =
         "Command Syntax\n\tdampers  [-noecho]\n\t   n=node_no  c=cx,cy,cz,cxx,cyy,czz  [inc=inc]\n\t"
         "   (blank line)\n\n"
         "Dampers at nodes, for form_c. n, inc and -noecho are as in mass.\n\n"
         "c\n\tDamping along each axis and about each axis. Defaults are 0.\n\n"
         "Example:\n\tdampers\n\tn=4 c=0,0,150.0\n\t(blank line)\n\n"
         "Array created, replacing that of an earlier dampers: .dampers_inp(7, records).\n\n"
         "See Also\n\tpdampers\n\tmass\n\tform_c\n"},
    {.words = {"pdampers"},
     .run = [](std::string_view) { print_values(damper_values); },
     .summary = "print nodal dampers",
     .help = "Command Syntax\n\tpdampers\n\nPrints the dampers given by dampers.\n\n"
             "Example:\n\tpdampers\n\nSee Also\n\tdampers\n"},
    {.words = {"initial_conditions"},
     .run = cmd_initial_conditions,
     .summary = "input of initial values by node",
     .help =
         "Command Syntax\n\tinitial_conditions  arg  [-noecho]\n\t"
         "   n=node_no  u=x,y,z,xx,yy,zz  [inc=inc]\n\t   (blank line)\n\n"
         "Makes a vector of the equations from values at nodes: initial displacements or "
         "velocities.\n\n"
         "n, inc and -noecho are as in mass, but the last value for a node stands.\n\n"
         "u\n\tValues of the six degrees of freedom. Defaults are 0; a degree of freedom without an "
         "equation of its own takes none.\n\n"
         "Must follow num_eqs or form_k.\n\n"
         "Example:\n\tinitial_conditions velocity\n\tn=2 u=0,0,1.5\n\t(blank line)\n\n"
         "Array created: arg(.#eqs).\n\n"
         "See Also\n\tmass\n\tnum_eqs\n"},
    {.words = {"mass_summary"},
     .run = cmd_mass_summary,
     .summary = "rigid body mass and centre of mass",
     .help =
         "Command Syntax\n\tmass_summary  [shift=?,?,?]  [-save]\n\n"
         "Prints the 6 by 6 mass matrix of the structure as a rigid body, and the centre of the mass "
         "that moves in each direction. Restrained degrees of freedom have no mass.\n\n"
         "shift\n\tPoint about which the body turns. Default is the origin.\n\n"
         "-save\n\tKeep the results in .mass_summary6x6(6,6) and .mass_summaryCG(3,3), the latter "
         "with one row a direction.\n\n"
         "Must follow form_m.\n\n"
         "Example:\n\tmass_summary shift=0,0,-2.5 -save\n\n"
         "See Also\n\tform_m\n\tmass\n"},
};

} // namespace

std::span<const Command> masses_rows() {
    return rows;
}

} // namespace quelor
