// Rigid modes of a body: generalised normals, nodal displacements, hydrostatic stiffness.
//
// Commands: hyd_rigid_modes, hyd_rmass.
// Writes: the arrays of hyd_modes.hpp, `hyd_mstr`, the file `<project>.kf`.
// Reads: the control parameters, `.hyd_coordaxs`, the arrays of mesh_part.cpp.
// Workspace: `$hyd_rmass`.
//
// A body apart from a plane of symmetry has a twin on the other side, the reflected body, which has
// no panels of its own. The mesh does not move in the twin's modes, so their columns in the normals
// and nodal displacements stay 0; only its block of the stiffness is formed here. `hyd_genmodes`
// joins the modes of the twins to symmetric and antisymmetric ones.
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/mesh_part.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "matrix/print.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <set>

namespace quelor {

namespace {

constexpr int body_modes = 6;

// --- reflected bodies

/// A body whose stiffness comes from this mesh, and the copies of the mesh that make it up.
struct BodyCopies {
    int body;
    std::vector<Reflection> copies;
};

struct ReflectionRequest {
    std::int32_t body_sym = -1; ///< absent
    std::array<std::int32_t, 3> bodies{};
};

/// How many reflections a mesh of the whole body, of half or of a quarter of it leaves to be named.
int reflections_wanted(int symmetry, int body_sym) {
    if (symmetry == 1) return body_sym == 0 ? 1 : 0;
    if (symmetry == 2) return body_sym == 0 ? 3 : body_sym == 1 ? 1 : 0;
    return 0;
}

void check_reflected_bodies(const ReflectionRequest& request, int wanted, int body, int nbodies) {
    std::set<std::int32_t> named(request.bodies.begin(), request.bodies.end());
    const auto count = std::ranges::count_if(request.bodies, [](int b) { return b != 0; });
    if (wanted == 0 && count > 0)
        shutdown_with(" \n\tA reflected body number may not be specified\n");
    if (wanted == 1 && count == 0)
        shutdown_with(" \n\tA reflected body number must be specified\n");
    if (wanted == 1 && count > 1)
        shutdown_with(" \n\tOnly one reflected body number may be specified\n");
    if (wanted == 3 && count != 3)
        shutdown_with(" \n\tThree reflected body numbers must be specified\n");
    named.erase(0);
    const bool distinct = std::ssize(named) == count && !named.contains(body);
    if (!distinct || (count > 0 && (*named.begin() < 1 || *named.rbegin() > nbodies)))
        shutdown_with(" \n\tReflected body number out of range\n");
}

/// How far the origin of the other body is from the mirror image of this body's.
double mismatch(const BodyAxes& axes, const BodyAxes& other, Reflection image) {
    return std::abs(image.x * axes.xb - other.xb) + std::abs(image.y * axes.yb - other.yb);
}

/// The image that lies at the origin of the other body; of equally near ones the first.
Reflection image_at(const BodyAxes& axes, int other, std::span<const Reflection> images) {
    const BodyAxes there = hyd_body_axes(other);
    return *std::ranges::min_element(
        images, {}, [&](Reflection image) { return mismatch(axes, there, image); });
}

/// The meshed body first, then its reflections.
/// body_sym 2 (double symmetry): a quarter of a body that both planes cut. 1: half a body that one
/// plane cuts; it is the plane that does not carry this body onto the reflected one. 0: a whole
/// body, with a reflection in each plane and in both.
std::vector<BodyCopies> bodies_of_mesh(const MeshPart& part, const BodyAxes& axes,
                                       const ReflectionRequest& request) {
    constexpr Reflection self{1, 1}, in_y{1, -1}, in_x{-1, 1}, in_both{-1, -1};
    std::vector<BodyCopies> bodies{{part.body, {self}}};
    const int wanted = reflections_wanted(part.symmetry, request.body_sym);
    if (part.symmetry == 1 && wanted == 1) {
        bodies.push_back({request.bodies[0], {in_y}});
    } else if (part.symmetry == 1) {
        bodies[0].copies.push_back(in_y);
    } else if (wanted == 3) {
        std::vector<Reflection> images{in_y, in_x, in_both};
        for (const int reflected : request.bodies) {
            const Reflection image = image_at(axes, reflected, images);
            std::erase(images, image);
            bodies.push_back({reflected, {image}});
        }
    } else if (wanted == 1) {
        const Reflection image = image_at(axes, request.bodies[0], std::array{in_x, in_y});
        bodies[0].copies.push_back(image == in_x ? in_y : in_x);
        bodies.push_back({request.bodies[0], {image, in_both}});
    } else if (part.symmetry == 2) {
        bodies[0].copies = {self, in_y, in_x, in_both};
    }
    return bodies;
}

// --- stiffness

/// Replaces the block of one body in `.hyd_kf` and writes it on the stiffness file.
void form_stiffness(const MeshPart& part, const BodyAxes& mesh_axes, const BodyCopies& body,
                    Matrix<double> kf) {
    const BodyAxes axes = hyd_body_axes(body.body);
    BodyFrame frame = frame_of(axes);
    frame.xb = mesh_axes.xb; // distances are taken on the mesh and then reflected
    frame.yb = mesh_axes.yb;
    frame.zb = mesh_axes.zb;
    const auto sums = waterplane_sums(part.panels, part.list, frame, body.copies);
    auto block = rigid_stiffness(sums, axes.zcg, require_positive(hyd_fluid_rho),
                                 require_positive(hyd_grav));
    const Matrix<const double> k{block.data(), body_modes, body_modes};
    const int first = body_modes * (body.body - 1);
    for (int j = 1; j <= body_modes; ++j)
        for (int i = 1; i <= body_modes; ++i)
            kf(first + i, first + j) = k(i, j);
    write_unit(unit_kf, "10(//, 'Rigid body hydrostatic stiffness for body', i5, /)", {body.body});
    write_matrix(unit_kf, k);
}

/// The bodies from the mesh, each to the stiffness and its file; the whole matrix behind the last.
void form_all_stiffness(const MeshPart& part, const BodyAxes& axes,
                        std::span<const BodyCopies> bodies, Matrix<double> kf) {
    fortopen_ext_position(unit_kf, ".kf", "UNKNOWN", "FORMATTED",
                          part.body == 1 ? "REWIND" : "APPEND");
    form_stiffness(part, axes, bodies[0], kf);
    write_both("(a)", {"    Rigid modes have been calculated"});
    for (const BodyCopies& reflected : bodies.subspan(1))
        form_stiffness(part, axes, reflected, kf);
    write_both("(a)", {"    Hydrostatic stiffness calculated"});
    const int last = hyd_body_count();
    if (require_int(hyd_nmodef) == 0 &&
        std::ranges::any_of(bodies, [&](const BodyCopies& b) { return b.body == last; })) {
        write_unit(unit_kf, "10(10x,'*************  HYDROSTATIC STIFFNESS  *************',//)");
        write_matrix(unit_kf, {kf.data, kf.rows, kf.cols});
    }
    close_unit(unit_kf);
}

// --- modes

void form_normals(const MeshPart& part, const BodyFrame& frame, const ModeArrays& modes) {
    const int first = body_modes * (part.body - 1);
    for (const int p : part.list) {
        const BodyPoint point = body_point(part.panels, p, frame);
        const RigidValues un = rigid_normal(point), uz = rigid_vertical(point);
        for (int m = 1; m <= body_modes; ++m) {
            modes.un(first + m, p) = un[nth(m)] + 0.0; // 0 for -0
            modes.uz(first + m, p) = uz[nth(m)] + 0.0;
        }
    }
}

void form_nodal_displacements(const MeshPart& part, const BodyFrame& frame,
                              const ModeArrays& modes) {
    const int first = body_modes * (part.body - 1);
    for (int node = part.nodes[0]; node <= part.nodes[1]; ++node) {
        if (part.active[nth(node)] != 'A') continue;
        const auto motion =
            rigid_nodal_motion(frame, part.xyz(1, node) - frame.xb, part.xyz(2, node) - frame.yb,
                               part.xyz(3, node) - frame.zb);
        for (std::size_t i = 0; i < motion.size(); ++i)
            for (int m = 1; m <= body_modes; ++m)
                modes.nodal[i](node, first + m) = motion[i][nth(m)] + 0.0; // 0 for -0
    }
}

void set_symmetry_codes(const MeshPart& part, std::span<std::int32_t> modesym) {
    static constexpr std::array<std::array<std::int32_t, body_modes>, 2> codes{
        {{1, 2, 1, 2, 1, 2}, {1, 2, 3, 2, 1, 4}}};
    if (part.symmetry == 0) return;
    const int first = body_modes * (part.body - 1);
    std::ranges::copy(codes[nth(part.symmetry)], modesym.begin() + first);
}

void cmd_hyd_rigid_modes(std::string_view) {
    if (require_int(hyd_nmoder) != body_modes * hyd_body_count())
        shutdown_with(
            " \n\tNumber of user-defined modes must be 6 * number of bodies to use the command hyd_rigid_modes\n");
    const MeshPart part = hyd_mesh_part();
    const BodyAxes axes = hyd_body_axes(part.body);
    ReflectionRequest request;
    get_int_par(" body_sym=", request.body_sym);
    get_int_par(" reflected=", request.bodies);
    check_reflected_bodies(request, reflections_wanted(part.symmetry, request.body_sym), part.body,
                           hyd_body_count());
    const auto bodies = bodies_of_mesh(part, axes, request);
    if (part.symmetry != 0 && axes.theta != 0.0)
        shutdown_with(
            " \n\tA rotated body-fixed coordinate system is not consistent with the symmetry\n");

    const ModeSizes sizes{part.nnodes, hyd_mode_count(), part.np};
    if (part.body == 1) hyd_create_modes(sizes);
    const ModeArrays modes = hyd_find_modes(sizes);
    const BodyFrame frame = frame_of(axes);
    form_normals(part, frame, modes);
    form_all_stiffness(part, axes, bodies, modes.kf);
    form_nodal_displacements(part, frame, modes);
    set_symmetry_codes(part, modes.modesym);
}

// --- mass

/// `hyd_mstr`, made when absent.
Matrix<double> structural_mass(int nmode) {
    if (!array_exists(hyd_mstr)) return create_matrix<double>(hyd_mstr, nmode, nmode);
    const ArrayRef mass = find_array(hyd_mstr);
    if (!mass.is(type_real) || mass.rows() != nmode || mass.cols() != nmode)
        shutdown_with(" \n\thyd_mstr must be (nmode,nmode)\n");
    return as_matrix<double>(mass);
}

void cmd_hyd_rmass(std::string_view) {
    const int nmoder = require_int(hyd_nmoder);
    if (nmoder < 1) shutdown_with(" \n\tNumber of user-defined modes is zero\n");
    const int nmode = hyd_mode_count();
    std::int32_t body = 0;
    get_int_par(" body=", body);
    const int nbodies = hyd_body_count();
    if (body < 0 || body > nbodies) shutdown_with(" \n\tIllegal body number\n");
    const bool one_of_several = body > 0 && nbodies > 1;
    const int n = one_of_several ? body_modes : nmoder;
    const int first = one_of_several ? body_modes * (body - 1) : 0;
    if (first + n > nmoder)
        shutdown_with(" \n\tNumber of user-defined modes must be 6 * number of bodies\n");

    const Temporary<double> rows("$hyd_rmass", n, n); // a record is a column here
    for (int i = 1; i <= n; ++i)
        read_real_record("Enter mass matrix, one row a record\n", rows.view.col(i));
    if (!all_finite(rows.view.all())) shutdown_with(" \n\tMasses must be numbers\n");
    const auto mass = structural_mass(nmode);
    for (int j = 1; j <= n; ++j)
        for (int i = 1; i <= n; ++i)
            mass(first + i, first + j) = rows.view(j, i);
}

constexpr Command rigid_rows[] = {
    {.words = {"hyd_rigid_modes"},
     .run = cmd_hyd_rigid_modes,
     .summary = "rigid modes and their hydrostatic stiffness",
     .help = "Command Syntax\n\thyd_rigid_modes  [body=?]  [nodes=?,?]  [panels=?,?]  "
             "[body_sym=?]  [reflected=?,?,?]\n\n"
             "Defines the six rigid modes of a body, surge, sway, heave, roll, pitch and yaw "
             "relative to its body-fixed coordinate system, and its hydrostatic stiffness. For "
             "several bodies there is one command for each body with a mesh of its own, body 1 "
             "first. The number of user-defined modes must be 6 times the number of bodies.\n\n"
             "body\n\tBody number; default 1. Modes 1 to 6 belong to body 1, 7 to 12 to body 2, "
             "and so on.\n"
             "nodes\n\tFirst and last node of the body; default all nodes.\n"
             "panels\n\tFirst and last panel of the body; default all panels.\n"
             "\tbody_sym: 0 for a mesh of the entire body, 1 for half, 2 for a quarter of it; "
             "default the symmetry of hyd_parameters.\n"
             "reflected\n\tBodies that are reflections of this one and have no mesh: one for "
             "symmetry 1 with body_sym 0 and for symmetry 2 with body_sym 1, three for symmetry 2 "
             "with body_sym 0, otherwise none. Their coordinate systems must be given by "
             "hyd_coordaxs.\n\n"
             "The command for body 1 creates, and all fill, .hyd_un, .hyd_uz, .hyd_umx, .hyd_umy, "
             ".hyd_umz, .hyd_thx, .hyd_thy, .hyd_thz, .hyd_kf and .hyd_modesym. The stiffness is "
             "written to the project's file kf. The command must follow hyd_panel and precede "
             "hyd_rmass and hyd_flex_modes. With reflected bodies the modes must be combined by "
             "hyd_genmodes.\n\n"
             "Example: two boxes\n"
             "\thyd_rigid_modes body=1 nodes=1,100 panels=1,80\n"
             "\thyd_rigid_modes body=2 nodes=101,200 panels=81,160\n\n"
             "See Also\n\thyd_coordaxs, hyd_rmass, hyd_flex_modes, hyd_genmodes\n"},
};

constexpr Command mass_rows[] = {
    {.words = {"hyd_rmass"},
     .run = cmd_hyd_rmass,
     .summary = "mass matrix of the rigid modes",
     .help = "Command Syntax\n\thyd_rmass  [body=?]\n\n"
             "Reads the mass matrix of the user-defined modes, one record for each row: the full "
             "matrix (nmoder,nmoder) without body, six rows of six for one of several bodies. It "
             "is that of the entire structure whatever the symmetry.\n\n"
             "body\n\tNumber of one of several bodies; default all modes.\n\n"
             "The rows go into hyd_mstr(nmode,nmode), which is created if it does not exist; its "
             "other entries are not changed.\n\n"
             "Example: mass 1000, center of gravity at the body origin\n"
             "\thyd_rmass\n"
             "\t1000 0 0 0 0 0\n\t0 1000 0 0 0 0\n\t0 0 1000 0 0 0\n"
             "\t0 0 0 5e4 0 0\n\t0 0 0 0 2e5 0\n\t0 0 0 0 0 2e5\n\n"
             "See Also\n\thyd_rigid_modes, hyd_genmodes, hyd_analysis_response\n"},
};

} // namespace

std::span<const Command> hyd_rigid_modes_rows() {
    return rigid_rows;
}
std::span<const Command> hyd_rmass_rows() {
    return mass_rows;
}

} // namespace quelor
