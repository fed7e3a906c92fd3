// Reads `.xyz`, `.node_active`, `.node_eqs`, `.#eqs`; writes the user's array.
#include "fem/rigid_modes.hpp"

#include "fem/nodes.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <array>

namespace quelor {

void rigid_shape(int k, const NodeSet& nodes, Matrix<const std::int32_t> eqs, const Vec3& c,
                 RigidRange range, std::span<double> shape) {
    if (range.first == 0 && range.last == 0) range = {1, nodes.count};
    const int b = k % 3 + 1; // for a rotation the axes after its own, in cyclic order
    const int d = b % 3 + 1;
    const int last = std::min({range.last, nodes.count, eqs.cols});
    for (int n = std::max(range.first, 1); n <= last; ++n) {
        const auto put = [&](int dof, double value) {
            const std::int32_t q = eqs(dof, n);
            if (q > 0 && as_size(q) <= shape.size()) shape[nth(q)] = value;
        };
        if (k > 3) {
            put(b, -(nodes.xyz(d, n) - c[nth(d)]));
            put(d, nodes.xyz(b, n) - c[nth(b)]);
        }
        put(k, 1.0);
    }
}

static void cmd_rigid_modes(std::string_view) {
    const int neq = get_int(num_eqs);
    if (neq < 1) return print_both(" \n\tSet .#eqs to the number of equations\n");
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tName of matrix required - command failed\n");
    Vec3 cg{};
    std::array<std::int32_t, 6> keep{1, 1, 1, 1, 1, 1};
    std::array<std::int32_t, 2> range{};
    get_real_par(" cg=", cg);
    get_int_par(" rigid=", keep);
    get_int_par(" node_range=", range);

    const ArrayRef ref = find_array(node_eqs);
    if (!array_exists(xyz) || !ref.is(type_integer) || ref.rows() < 6)
        return print_both(" \n\tArrays .xyz and .node_eqs required for rigid body modes\n");
    const NodeSet nodes = open_nodes(fe_nodes);
    if (!nodes) return;
    const auto modes = std::ranges::count_if(keep, [](int flag) { return flag != 0; });
    if (modes == 0) return print_both(" \n\t\tNumber of rigid modes to create is 0\n");
    if (range[0] > range[1]) return print_both(" \n\t\tNodal range out of sequence\n");

    Result result(target, "$rigid_modes");
    const auto shapes = result.matrix<double>(neq, static_cast<int>(modes));
    int column = 0;
    for (int k = 1; k <= 6; ++k)
        if (keep[nth(k)] != 0)
            rigid_shape(k, nodes, as_matrix<const std::int32_t>(ref), cg, {range[0], range[1]},
                        shapes.col(++column));
    result.place();
}

static constexpr Command rows[] = {
    {.words = {"rigid_modes"},
     .run = cmd_rigid_modes,
     .summary = "matrix of rigid body modes",
     .help =
         "Command Syntax\n\trigid_modes  arg  [cg=?,?,?]  [rigid=?,?,?,?,?,?]  "
         "[node_range=first,last]\n\n"
         "Rigid body shapes of the finite-element model, for display or as starting vectors. The "
         "equations must have been numbered (num_eqs or form_k).\n\n"
         "arg\n\tName of the matrix to be created.\n\n"
         "cg\n\tPoint about which the rotations are taken. Default is the origin.\n\n"
         "rigid\n\tWhich shapes to make, 1 or 0 for each of surge, sway, heave, roll, pitch and yaw: "
         "unit translations along x, y, z and unit rotations about them. Default is all six.\n\n"
         "node_range\n\tNodes that move; the others have zero displacement. Default is all nodes.\n\n"
         "Example (heave and pitch about a point on the z-axis):\n\trigid_modes psi cg=0,0,2.5 "
         "rigid=0,0,1,0,1,0\n\n"
         "Array created: arg(.#eqs, number of shapes), real. To see the shapes, copy arg to .disp and "
         "use export_graphics.\n\n"
         "See Also\n\texport_graphics\n\tnum_eqs\n"},
};

std::span<const Command> rigid_modes_rows() {
    return rows;
}

} // namespace quelor
