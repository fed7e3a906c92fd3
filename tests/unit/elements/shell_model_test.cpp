// Shells in a model: patch tests, closed forms of plates and cylinders, wet faces.
#include "model.hpp"

#include "fem/eqns.hpp"
#include "fem/loads.hpp"

#include <cmath>
#include <functional>
#include <map>
#include <numbers>

using namespace quelor;

namespace {

using Shells = Model;

std::string number(double x) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", x);
    return text;
}

std::string list(std::initializer_list<double> values) {
    std::string text;
    for (const double v : values)
        text += (text.empty() ? "" : ",") + number(v);
    return text;
}

std::string isotropic_record(double e, double nu, double t, const std::string& more = {}) {
    const double g = e / (2 * (1 + nu));
    return "m=1 e=" + list({e, e, e}) + " g=" + list({g, g, g}) + " nu=" + list({nu, nu, nu}) +
           " t=" + number(t) + " " + more + "\n";
}

std::string node_records(const std::vector<Vec3>& points, int room) {
    std::string text = "nodes #=" + std::to_string(room) + "\n";
    for (std::size_t n = 1; n <= points.size(); ++n) {
        const auto [x, y, z] = points[n - 1];
        text += "n=" + std::to_string(n) + " x=" + number(x) + " y=" + number(y) +
                " z=" + number(z) + "\n";
    }
    return text + "\n";
}

using Mesh = std::vector<std::vector<int>>;

std::string element_records(const Mesh& elements, const std::string& more = {}) {
    std::string text;
    for (std::size_t e = 0; e < elements.size(); ++e) {
        text += "n=" + std::to_string(e + 1) + " nodes=";
        for (std::size_t i = 0; i < elements[e].size(); ++i)
            text += (i > 0 ? "," : "") + std::to_string(elements[e][i]);
        text += " mat=1 " + more + "\n";
    }
    return text + "\n";
}

Mesh halved(const Mesh& quads) {
    Mesh triangles;
    for (const auto& q : quads) {
        triangles.push_back({q[0], q[1], q[2]});
        triangles.push_back({q[0], q[2], q[3]});
    }
    return triangles;
}

/// Adds the nodes between the vertices of each triangle, which edges share.
Mesh with_midnodes(const Mesh& triangles, std::vector<Vec3>& points) {
    std::map<std::pair<int, int>, int> middle;
    Mesh six = triangles;
    for (auto& t : six)
        for (const auto& [i, j] : {std::pair{t[0], t[1]}, {t[1], t[2]}, {t[0], t[2]}}) {
            int& node = middle[std::minmax(i, j)];
            if (node == 0) {
                const Vec3 a = points[static_cast<std::size_t>(i - 1)];
                const Vec3 b = points[static_cast<std::size_t>(j - 1)];
                points.push_back(add_scaled(a, 0.5, difference(b, a)));
                node = static_cast<int>(points.size());
            }
            t.push_back(node);
        }
    return six;
}

/// Displacements of every node along and about the global axes.
using Field = std::function<std::array<double, 6>(const Vec3&)>;

/// Imposes a field on nodes `first` to `last`, and restrains the degrees of freedom in `fixed`.
std::string imposed(const std::vector<Vec3>& points, std::size_t first, const Field& field,
                    const std::string& fixed) {
    std::string text = "bcid r=" + fixed + "\n\nnodef\n\nimposed_displ\n";
    for (std::size_t n = first; n <= points.size(); ++n) {
        const auto value = field(points[n - 1]);
        for (int dof = 1; dof <= 6; ++dof)
            if (fixed[static_cast<std::size_t>(2 * dof - 2)] == '0')
                text += "n=" + std::to_string(n) + " dof=" + std::to_string(dof) +
                        " disp=" + number(value[static_cast<std::size_t>(dof - 1)]) + "\n";
    }
    return text + "\n";
}

/// Every row of columns `first` on of a table holds the values.
void expect_rows(std::string_view array, int first, std::initializer_list<double> values) {
    const ArrayRef ref = find_array(array);
    ASSERT_TRUE(ref.is(type_real)) << array;
    const auto table = as_matrix<double>(ref);
    double scale = 0;
    for (const double v : values)
        scale = std::max(scale, std::abs(v));
    for (int row = 1; row <= table.rows; ++row) {
        int column = first;
        for (const double v : values)
            EXPECT_NEAR(table(row, column++), v, 1e-9 * scale) << array << ' ' << row;
    }
}

// --- the patch of [MacNeal 1985]
// ------------------------------------------------------------------

/// The four nodes inside, then the corners of the rectangle.
const std::vector<Vec3> patch_points{{0.04, 0.02, 0}, {0.18, 0.03, 0}, {0.16, 0.08, 0},
                                     {0.08, 0.08, 0}, {0, 0, 0},       {0.24, 0, 0},
                                     {0.24, 0.12, 0}, {0, 0.12, 0}};
const Mesh patch_quads{{1, 2, 3, 4}, {5, 6, 2, 1}, {6, 7, 3, 2}, {7, 8, 4, 3}, {8, 5, 1, 4}};

std::array<double, 6> stretched(const Vec3& p) {
    return {1e-3 * (p[0] + p[1] / 2), 1e-3 * (p[1] + p[0] / 2), 0, 0, 0, 0};
}
std::array<double, 6> bent(const Vec3& p) {
    const double x = p[0], y = p[1];
    return {0, 0, 1e-3 * (x * x + x * y + y * y) / 2, 1e-3 * (y + x / 2), -1e-3 * (x + y / 2), 0};
}

/// Solves the patch of a type with the outer nodes moved by the field.
std::string patch(const std::string& command, const Mesh& mesh, std::vector<Vec3> points,
                  const Field& field, const std::string& more, const std::string& fixed) {
    return node_records(points, 40) + command + " m=1 n=" + std::to_string(mesh.size()) + " " +
           more + "\n" + isotropic_record(1e6, 0.25, 1e-3) + element_records(mesh) +
           imposed(points, 5, field, fixed) + "form_k\nlsolve\nstate\n";
}

} // namespace

TEST_F(Shells, patch_tests_give_constant_stresses_to_rounding) {
    // E t / (1 - nu) 1e-3 and G t 1e-3; D (1 + nu) 1e-3 and D (1 - nu) / 2 1e-3 [MacNeal 1985].
    const double n = 1e6 * 1e-3 / 0.75 * 1e-3, nxy = 0.4e6 * 1e-3 * 1e-3;
    const double d = 1e6 * 1e-9 / 12 / (1 - 0.0625), m = -d * 1.25 * 1e-3, mxy = -d * 0.375 * 1e-3;
    struct Type {
        std::string command, more, membrane, bending;
        Mesh mesh;
    };
    // min3s and shell3 have axes of their own: global=1 turns the results.
    const Mesh triangles = halved(patch_quads);
    std::vector<Type> types{{"min5s", "", ".min5s_op", ".min5s_op", patch_quads}};
    for (const std::string constraint : {"1", "2", "3"})
        for (const std::string version : {"1", "3"})
            types.push_back({"min4t", "constraint=" + constraint + " version=" + version,
                             ".min4t_stm", ".min4t_stb", patch_quads});
    for (const Type& type : types)
        for (const bool bending : {false, true}) {
            db_clear();
            script(patch(type.command, type.mesh, patch_points, bending ? bent : stretched,
                         type.more, "0,0,0,0,0,1"));
            // Each quadrilateral has axes of its own; sums of direct values do not depend on them.
            const auto table =
                as_matrix<double>(find_array(bending ? type.bending : type.membrane));
            const int at = bending && type.command == "min5s" ? 7 : 4;
            const double p = bending ? m : n, q = bending ? mxy : nxy;
            for (int row = 1; row <= table.rows; ++row) {
                const double xx = table(row, at), yy = table(row, at + 1), xy = table(row, at + 2);
                EXPECT_NEAR(xx + yy, 2 * p, 1e-9 * std::abs(p)) << type.command << type.more;
                EXPECT_NEAR(xx * yy - xy * xy, p * p - q * q, 1e-9 * p * p) << type.command;
            }
        }
    for (const std::string type : {"min3s", "shell3"})
        for (const bool bending : {false, true}) {
            db_clear();
            std::string text =
                patch(type, triangles, patch_points, bending ? bent : stretched, "", "0,0,0,0,0,1");
            text.insert(text.find(" t=0.001"), " global=1");
            script(text);
            expect_rows("." + type + "_st", bending ? 7 : 4,
                        {bending ? m : n, bending ? m : n, bending ? mxy : nxy});
        }
    for (const std::string type : {"min6", "isomin6"}) {
        db_clear();
        auto points = patch_points;
        const Mesh six = with_midnodes(triangles, points);
        script(patch(type, six, points, bent, "", "1,1,0,0,0,1"));
        expect_rows("." + type + "_st", 4, {m, m, mxy});
    }
}

TEST_F(Shells, orthotropic_quadrilaterals_keep_their_axes_in_all_triangles) {
    const double e1 = 200, e2 = 50, nu = 0.2, g = 30, t = 0.1;
    const std::vector<Vec3> points{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}};
    const double minor = 1 - nu * nu * e2 / e1;
    for (const std::string type : {"min5s", "min4t"}) {
        db_clear();
        // Stretched by 0.01 along x, sheared by 0.02; turned a right angle with the element.
        script(node_records(points, 9) + type +
               " m=1 n=1\nm=1 e=200,50,40 g=30,20,25 nu=0.2,0.1,0.1 "
               "iso=1 t=0.1\nn=1 nodes=2,3,4,1 mat=1\n\n" +
               imposed(
                   points, 1,
                   [](const Vec3& p) {
                       return std::array{0.01 * p[0] + 0.02 * p[1], 0., 0., 0., 0., -0.01};
                   },
                   "0,0,0,0,0,0") +
               "form_k\nlsolve\nstate\n");
        // Local x along Y: eps_22 = 0.01, and the shear changes its sign.
        expect_rows(type == "min5s" ? ".min5s_st" : ".min4t_stm", 4,
                    {nu * e2 * t * 0.01 / minor, e2 * t * 0.01 / minor, -g * t * 0.02});
        EXPECT_EQ(value("." + type + "_mp", 1, 1), e1);
    }
}

// --- plates -------------------------------------------------------------------------------------

namespace {

/// A quarter of the unit square plate, n by n quadrilaterals, D = 1: restraints of supports or
/// clamps on the edges x = 1/2, y = 1/2, symmetry on the others.
struct QuarterPlate {
    int n;
    std::vector<Vec3> points;
    Mesh quads;

    explicit QuarterPlate(int count) : n(count) {
        for (int j = 0; j <= n; ++j)
            for (int i = 0; i <= n; ++i)
                points.push_back({0.5 * i / n, 0.5 * j / n, 0});
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i) {
                const int a = j * (n + 1) + i + 1;
                quads.push_back({a, a + 1, a + n + 2, a + n + 1});
            }
    }
    std::string restraints(bool clamped) const {
        std::string text = "bcid r=1,1,0,0,0,1\n";
        for (std::size_t k = 0; k < points.size(); ++k) {
            const bool left = points[k][0] == 0, right = points[k][0] == 0.5;
            const bool low = points[k][1] == 0, top = points[k][1] == 0.5, edge = right || top;
            const auto code = [](bool fixed) { return fixed ? ",1" : ",0"; };
            text += "n=" + std::to_string(k + 1) + " r=1,1" + code(edge) +
                    code(low || right || (clamped && top)) +
                    code(left || top || (clamped && right)) + ",1\n";
        }
        return text + "\n";
    }
    std::string material(double t, const std::string& more = {}) const {
        return isotropic_record(10.92 / (t * t * t), 0.3, t, more);
    }
};

} // namespace

TEST_F(Shells, plates_under_pressure_sag_as_published) {
    // [Timoshenko 1959, art. 30, 44]; thick: plus 0.0736713 t^2 / (5 (1 - nu)) on hard supports.
    // What is left is the mesh of four elements a side.
    const QuarterPlate plate(4);
    const double supported = 0.00406235, clamped = 0.00126532, thick = 0.00427284;
    const auto sag = [&](const std::string& type, double t, bool clamps) {
        db_clear();
        const bool quads = type == "min5s" || type == "min4t";
        const std::string flags = type == "min4t" ? "q=pressure" : "-pressure";
        script(node_records(plate.points, 60) + "zero pressure r=25 v=1\n" + type +
               " m=1 n=" + (quads ? "16 " : "32 ") + flags + "\n" + plate.material(t) +
               element_records(quads ? plate.quads : halved(plate.quads), "face=-1") +
               plate.restraints(clamps) + "nodal_pressure\nn=all pat=1 p=1\n\nform_k\nlsolve\n");
        return at(disp, 3, 1);
    };
    EXPECT_NEAR(sag("min5s", 1e-3, false) / supported, 1, 0.006);
    EXPECT_NEAR(sag("min5s", 1e-3, true) / clamped, 1, 0.006);
    EXPECT_NEAR(sag("min5s", 0.1, false) / thick, 1, 0.006);
    EXPECT_NEAR(sag("min4t", 1e-3, false) / supported, 1, 0.006);
    EXPECT_NEAR(sag("min4t", 1e-3, true) / clamped, 1, 0.02);
    EXPECT_NEAR(sag("shell3", 1e-3, false) / supported, 1, 0.015);
    EXPECT_NEAR(sag("min3s", 1e-3, true) / clamped, 1, 0.025);
}

TEST_F(Shells, six_node_plates_sag_as_published) {
    const QuarterPlate plate(4);
    auto points = plate.points;
    const Mesh six = with_midnodes(halved(plate.quads), points);
    QuarterPlate all = plate;
    all.points = points;
    const auto sag = [&](const std::string& type, double t, const std::string& more) {
        db_clear();
        script(node_records(points, 90) + type + " m=1 n=32\n" + plate.material(t, more) +
               element_records(six, "q=1,1,1,1,1,1") + all.restraints(false) + "form_k\nlsolve\n");
        return at(disp, 3, 1);
    };
    EXPECT_NEAR(sag("isomin6", 0.1, "") / 0.00427284, 1, 0.003);
    const double stiff = sag("min6", 1e-3, "");
    EXPECT_LT(stiff, 0.9 * 0.00406235); // thin, and no relaxation unless it is asked for
    EXPECT_NEAR(sag("min6", 1e-3, "C_s=0.3") / 0.00406235, 1, 0.025);
}

TEST_F(Shells, frequency_of_a_supported_plate_with_either_mass) {
    // omega = 2 pi^2 sqrt(D / (rho t)) / a^2; lumped masses lie below, consistent ones above.
    const QuarterPlate plate(4);
    const double exact = 2 * std::numbers::pi * std::numbers::pi;
    for (const std::string type : {"min3s", "min5s", "min4t", "min6"}) {
        db_clear();
        auto all = plate;
        const bool quads = type == "min5s" || type == "min4t";
        const Mesh mesh = type == "min6" ? with_midnodes(halved(plate.quads), all.points)
                          : quads        ? plate.quads
                                         : halved(plate.quads);
        script(node_records(all.points, 90) + type + " m=1 n=" + std::to_string(mesh.size()) +
               "\n" + plate.material(0.01, "mass=100 C_s=0.4") + element_records(mesh) +
               all.restraints(false) + "form_k\nform_m\neigval #=1 -random -freq\n");
        EXPECT_NEAR(value(".omega", 1) / exact, 1, 0.02) << type;
        script("form_k\nform_m -diag\nmass_summary\neigval #=1 -random -freq\n");
        EXPECT_NEAR(value(".omega", 1) / exact, 1, 0.02) << type;
        // All mass, less what hangs on the supports: the quarter weighs 1/4.
        double total = 0;
        for (int node = 1; node <= get_int(num_nodes); ++node)
            total += at(mstr, 3, node);
        EXPECT_GT(total, 0.18) << type;
        EXPECT_LT(total, 0.25) << type;
    }
}

TEST_F(Shells, a_plate_under_compression_buckles_at_its_load) {
    // N = 4 pi^2 D / b^2 [Timoshenko 1961]; whole plate, 4 by 4, within 2 %: the mesh.
    const QuarterPlate half(4);
    auto points = half.points;
    for (Vec3& p : points)
        p = {2 * p[0], 2 * p[1], 0};
    std::string text = node_records(points, 50) + "min5s m=1 n=16 -kg\n" +
                       half.material(0.01, "local=1") + element_records(half.quads) +
                       "bcid r=0,0,0,0,0,1\n";
    std::string loads = "nodef\n";
    for (std::size_t k = 0; k < points.size(); ++k) {
        const auto [x, y, z] = points[k];
        const bool across = x == 0 || x == 1, along = y == 0 || y == 1;
        const std::string n = "n=" + std::to_string(k + 1);
        if (across || along)
            text += n + " r=" + (x == 0 ? "1" : "0") + (k == 0 ? ",1,1," : ",0,1,") +
                    (across ? "1," : "0,") + (along ? "1" : "0") + ",1\n";
        if (x == 1) loads += n + " f=" + (along ? "-0.125" : "-0.25") + "\n";
    }
    script(text + "\n" + loads + "\nform_k\ncopy .kstr linear\ncopy .kstr .mstr\nlsolve\nstate\n");
    const auto st = as_matrix<double>(find_array(".min5s_st")); // each triangle in its own axes
    for (int row = 1; row <= st.rows; ++row) {
        EXPECT_NEAR(st(row, 4) + st(row, 5), -1, 1e-12);
        EXPECT_NEAR(st(row, 4) * st(row, 5) - st(row, 6) * st(row, 6), 0, 1e-12);
    }
    script("form_k\nsub .mstr .kstr\nseti .mstr_type v=0\nmv linear .kstr\n"
           "eigval #=1 -random digits=10 maxit=200\n");
    EXPECT_NEAR(value(".omega2", 1) / (4 * std::numbers::pi * std::numbers::pi), 1, 0.02);
    // lsolve forms the linear stiffness again: the deflection does not know the compression.
    script("lsolve\n");
    EXPECT_NEAR(at(disp, 1, 25), -1 / (10.92e6 * 0.01), 1e-9);
}

// --- cylinders and boxes ------------------------------------------------------------------------

TEST_F(Shells, a_pressurised_cylinder_widens_by_its_hoop_strain) {
    // A quarter of a long ring of radius 2, one element of length along, its ends free to move
    // along the axis but not to turn: p R^2 / (E t) (nu = 0). Flat facets and arcs of midnodes.
    constexpr int around = 8;
    const double p = 3, e = 1e4, t = 0.05, r = 2, length = 0.4;
    const auto ring = [&](bool curved, bool outward, double& widening) {
        std::vector<Vec3> points;
        const auto at_angle = [&](double part, double z) {
            const double angle = std::numbers::pi / 2 * part;
            return Vec3{r * std::cos(angle), r * std::sin(angle), z};
        };
        for (const double z : {0.0, length})
            for (int i = 0; i <= around; ++i)
                points.push_back(at_angle(static_cast<double>(i) / around, z));
        Mesh quads;
        for (int i = 1; i <= around; ++i)
            quads.push_back({i, i + 1, i + around + 2, i + around + 1});
        Mesh mesh = halved(quads);
        const std::size_t vertices = points.size();
        if (curved) {
            mesh = with_midnodes(mesh, points);
            for (std::size_t k = vertices; k < points.size(); ++k) { // onto the cylinder
                const double radius = std::hypot(points[k][0], points[k][1]);
                points[k][0] *= r / radius;
                points[k][1] *= r / radius;
            }
        }
        if (!outward)
            for (auto& m : mesh) {
                std::swap(m[1], m[2]);
                if (curved) std::swap(m[3], m[5]);
            }
        std::string restraints = "bcid r=0,0,1,1,1,0\n";
        for (std::size_t k = 0; k < points.size(); ++k)
            if (const std::string n = "n=" + std::to_string(k + 1); k >= vertices)
                restraints += n + " r=1,1,1,1,1,1\n";
            else if (points[k][1] == 0)
                restraints += n + " r=0,1,1,1,1,1\n";
            else if (points[k][0] < 1e-9)
                restraints += n + " r=1,0,1,1,1,1\n";
        db_clear();
        const std::string said =
            script(node_records(points, 90) + "min3s m=1 n=16 -pressure\n" +
                   isotropic_record(e, 0, t, "C_m=0") +
                   element_records(mesh, outward ? "face=-1" : "face=1") + restraints +
                   "\nnodal_pressure\nn=all pat=1 p=" + number(p) + "\n\nform_k\nlsolve\nstate\n");
        // The mean of the radial displacement: the halves of the quadrilaterals load some nodes
        // more.
        double sum = 0, weights = 0;
        for (std::size_t k = 0; k < vertices; ++k) {
            const int node = static_cast<int>(k) + 1;
            const double weight = k % (around + 1) % around == 0 ? 0.5 : 1;
            sum +=
                weight * (points[k][0] * at(disp, 1, node) + points[k][1] * at(disp, 2, node)) / r;
            weights += weight;
        }
        widening = sum / weights / (p * r * r / (e * t));
        return said;
    };
    double widening = 0;
    // Chords for arcs: their pressure is 1 - cos of half an element less.
    std::string said = ring(false, true, widening);
    EXPECT_NEAR(widening, 1, 0.006);
    EXPECT_EQ(said.find("negative side"), std::string::npos);
    said = ring(true, true, widening);
    EXPECT_NEAR(widening, 1, 0.006);
    EXPECT_EQ(said.find("negative side"), std::string::npos);
    said = ring(true, false, widening); // bulging to the wrong side: a warning, and a wrong result
    EXPECT_GT(widening, 1.02);
    EXPECT_NE(said.find("32 midnodes of MIN3S lie on the negative side"), std::string::npos)
        << said;
}

namespace {

/// A box of length 3, breadth 2 and draft 0.5, z = 0 at the waterline, its normals outward.
const std::vector<Vec3> box_points{{0, -1, -0.5}, {3, -1, -0.5}, {3, 1, -0.5}, {0, 1, -0.5},
                                   {0, -1, 0},    {3, -1, 0},    {3, 1, 0},    {0, 1, 0}};
const Mesh box_quads{{1, 4, 3, 2}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 4, 8, 7}, {4, 1, 5, 8}};

Mesh reversed(Mesh mesh) {
    for (auto& nodes : mesh)
        std::swap(nodes[1], nodes.back());
    return mesh;
}

/// v^T k v of a profile matrix.
double quadratic_form(std::string_view k, std::span<const double> v) {
    const auto loc = as_span<std::int32_t>(find_array(kdiag_loc));
    const auto values = as_span<double>(find_array(k));
    double sum = 0;
    for (std::size_t j = 0; j < v.size(); ++j)
        for (std::int32_t i = loc[j]; i < loc[j + 1]; ++i) {
            const auto off = static_cast<std::size_t>(i - loc[j]);
            sum += (off == 0 ? 1 : 2) * v[j] * v[j - off] * values[static_cast<std::size_t>(i - 1)];
        }
    return sum;
}

} // namespace

TEST_F(Shells, hydrostatic_stiffness_of_a_floating_box_is_that_of_its_waterplane) {
    const double gamma = 10.05, area = 6, volume = 3;
    for (const std::string type : {"min3s", "shell3", "min5s"})
        for (const std::string face : {"1", "-1"}) {
            if (type == "min5s" && face == "-1") continue; // as it is written: face 1 alone
            db_clear();
            const Mesh mesh = type == "min5s" ? box_quads
                              : face == "1"   ? halved(box_quads)
                                              : reversed(halved(box_quads));
            const std::string slot = type == "min3s" ? "8" : type == "shell3" ? "31" : "9";
            // A soft shell, so that nothing is lost when its stiffness is taken off.
            script(node_records(box_points, 20) + type + " m=1 n=" + std::to_string(mesh.size()) +
                   " -pressure -kf\n" +
                   isotropic_record(1, 0.3, 0.01,
                                    "fdensity=" + number(gamma) +
                                        (type == "min5s" ? " local=1" : "")) +
                   element_records(mesh, "face=" + face) +
                   "bcid\n\nnodal_pressure\nn=all pat=1 -hydro density=" + number(gamma) +
                   "\n\nform_k\ncopy .kstr with\nelem_grp e=" + slot +
                   " code=1\nform_k\nrigid_modes rigid cg=1.5,0,0\n");
            const auto rigid = as_matrix<double>(find_array("rigid"));
            const auto stiffness = [&](int mode) {
                return quadratic_form("with", rigid.col(mode)) -
                       quadratic_form(kstr, rigid.col(mode));
            };
            const auto near = [&](int mode, double value) {
                EXPECT_NEAR(stiffness(mode), value, 1e-9 * gamma * area) << type << face << mode;
            };
            near(1, 0);
            near(2, 0);
            near(3, gamma * area);
            near(4, gamma * (3 * 8 / 12. + volume * 0.5)); // L B^3 / 12 + V d
            near(5, gamma * (2 * 27 / 12. + volume * 0.5));
            near(6, gamma * volume * 0.5); // what the membrane forces of the pressure take off
            // The loads carry the weight of the water.
            double lift = 0;
            for (int n = 1; n <= get_int(num_nodes); ++n)
                lift += at(load_pat, 3, n);
            EXPECT_NEAR(lift, gamma * volume, 1e-12 * gamma) << type << face;
        }
}

TEST_F(Shells, weight_of_a_warped_box_hangs_on_its_nodes) {
    for (const std::string type : {"min3s", "min5s", "min4t"}) {
        db_clear();
        auto points = box_points;
        points[6] = {3.2, 1.1, 0.3};
        const Mesh mesh = type == "min3s" ? halved(box_quads) : box_quads;
        script(node_records(points, 20) + type + " m=1 n=" + std::to_string(mesh.size()) + "\n" +
               isotropic_record(1, 0.3, 0.01, "mass=700 drill=1e-14 gamma=0") +
               element_records(mesh) +
               "bcid\n\ninput gravity r=4 c=1\n1\n2\n0\n-10\nform_k\nform_m\nrigid_modes rigid\n");
        const auto rigid = as_matrix<double>(find_array("rigid"));
        const auto load = [&](int mode) {
            double sum = 0;
            for (int i = 1; i <= rigid.rows; ++i)
                sum += rigid(i, mode) * value(load_pat, i);
            return sum;
        };
        const double mass = quadratic_form(mstr, rigid.col(3));
        EXPECT_NEAR(load(3), -10 * mass, 1e-12 * mass) << type;
        EXPECT_NEAR(load(1), 2 * mass, 1e-12 * mass) << type;
        EXPECT_NEAR(load(2), 0, 1e-12 * mass) << type;
        // Rigid motions of the whole, warped quadrilateral and all, take no force.
        for (int mode = 1; mode <= 6; ++mode)
            EXPECT_NEAR(quadratic_form(kstr, rigid.col(mode)), 0, 1e-14) << type << mode;
    }
}
