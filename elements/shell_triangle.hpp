// The three-node Mindlin shell triangle, flat or shallow: interpolation, stiffness with relaxed
// shear and membrane parts, resultants. A numeric kernel.
//
// Local axes: x from vertex 1 to vertex 2, y in the plane of the vertices toward vertex 3, z by the
// right hand. Degrees of freedom by component, vertices 1 to 3 of each: u, v, w along x, y, z and
// the right-handed rotations thx, thy, thz about them; a point at height z moves by z thy in x and
// -z thx in y. Outside the element they go node by node, six a node, in global axes.
//
// The deflection is interpolated one order higher than the rotations,
//     w = sum L_i w_i + sum over edges ij 1/2 L_i L_j [(thy_j - thy_i)(x_j - x_i)
//                                                    - (thx_j - thx_i)(y_j - y_i)],
// so that the shear strain along each edge is constant and a constant curvature has none.
// Source: [Tessler 1985]; of the shallow shell [Tessler 1990].
#pragma once

#include "elements/local_axes.hpp"
#include "elements/shell_section.hpp"

namespace quelor {

// --- geometry -----------------------------------------------------------------------------------

/// Vertices at the ends of each edge.
inline constexpr std::array<std::array<std::size_t, 2>, 3> shell_edges{{{0, 1}, {1, 2}, {0, 2}}};

struct ShellTriangle {
    LocalAxes axes;
    std::array<double, 3> x, y;   ///< of the vertices
    std::array<double, 3> lx, ly; ///< derivatives of the area coordinates
    std::array<double, 3> rise{}; ///< of the surface over the middle of each edge, toward +z
    double area;
    bool valid; ///< false: the vertices lie on one line, and nothing else is defined

    bool curved() const { return rise[0] != 0 || rise[1] != 0 || rise[2] != 0; }
};
/// A flat triangle.
ShellTriangle shell_triangle(const std::array<Vec3, 3>& vertices);
/// Distances of the nodes between the vertices from the middles of their edges.
std::array<double, 3> min3s_rises(const std::array<Vec3, 3>& vertices,
                                  const std::array<Vec3, 3>& between);

/// A point in area coordinates.
using ShellPoint = std::array<double, 3>;
Vec3 place_of(const std::array<Vec3, 3>& vertices, const ShellPoint& l);

// --- interpolation ------------------------------------------------------------------------------

inline constexpr int shell_dofs = 18;
using ShellMatrix = SmallMatrix<shell_dofs>;
using ShellVector = std::array<double, shell_dofs>;

/// Numbers of the first degree of freedom of each component, less 1.
enum ShellComponent {
    shell_u = 0,
    shell_v = 3,
    shell_w = 6,
    shell_thx = 9,
    shell_thy = 12,
    shell_thz = 15
};

/// The deflection and its derivatives by w1 to w3, thx1 to thx3, thy1 to thy3.
struct ShellDeflection {
    std::array<double, 9> value, dx, dy;
};
ShellDeflection deflection_at(const ShellTriangle& t, const ShellPoint& l);

// --- stiffness ----------------------------------------------------------------------------------

/// The three parts, not relaxed: bending by thx and thy, shear by w, thx and thy, membrane by u and
/// v or, of a curved element, by u, v, w, thx and thy.
struct ShellParts {
    SmallMatrix<6> bending;
    SmallMatrix<9> shear;
    SmallMatrix<15> membrane;
};
/// k += f part, at the degrees of freedom behind `first`.
template <int N> void add_part(ShellMatrix& k, int first, double f, const SmallMatrix<N>& part) {
    for (int j = 1; j <= part.cols; ++j)
        for (int i = 1; i <= part.rows; ++i)
            k(first + i, first + j) += f * part(i, j);
}
ShellParts shell_parts(const ShellTriangle& t, const ShellSection& s);

/// Factors of the shear and the membrane part.
struct ShellRelaxation {
    double shear = 1, membrane = 1;
};
/// The sums are those of the rotations thx and thy. A flat element has no membrane part there.
ShellRelaxation shell_relaxation(const ShellParts& parts, double c_s, double c_m);

/// bending + shear and membrane by their factors; the terms of thz alone are `drill` times the
/// least diagonal term of the others.
ShellMatrix shell_stiffness(const ShellParts& parts, const ShellRelaxation& phi, double drill);

// --- transformation -----------------------------------------------------------------------------

/// From local axes by component to global axes node by node.
ShellMatrix min3s_transform(const ShellMatrix& k, const LocalAxes& axes);
ShellVector min3s_transform(const ShellVector& f, const LocalAxes& axes);
/// The other way.
ShellVector shell_to_local(const ShellVector& u, const LocalAxes& axes);

// --- resultants ---------------------------------------------------------------------------------

/// Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy: N = phi_m Dm strain, M = Db curvature, Q = phi_s Ds shear.
using ShellResultants = std::array<double, 8>;
/// u  in  local, by component
ShellResultants shell_resultants(const ShellTriangle& t, const ShellSection& s,
                                 const ShellRelaxation& phi, const ShellVector& u,
                                 const ShellPoint& l);
/// The same in axes that lie at an angle from x, y: the first at (cosine, sine) of them.
ShellResultants turned_resultants(const ShellResultants& r, double cosine, double sine);
/// The same along global X and Y, for a triangle in their plane, whichever side of it is up.
ShellResultants global_resultants(const ShellResultants& r, const LocalAxes& axes);
/// How a triangle is turned against a direction in its surface: cosine and sine of the angle from
/// its x-axis.
struct Turn {
    double cosine, sine;
};
Turn turn_of(const LocalAxes& axes, const Vec3& direction);

} // namespace quelor
