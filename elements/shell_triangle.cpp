#include "elements/shell_triangle.hpp"

#include "numeric/quadrature.hpp"

#include <algorithm>

namespace quelor {

// --- geometry -----------------------------------------------------------------------------------

ShellTriangle shell_triangle(const std::array<Vec3, 3>& vertices) {
    constexpr double flat = 1e-12; // of the square of the longest side: vertices on one line
    const Vec3 d2 = difference(vertices[1], vertices[0]), d3 = difference(vertices[2], vertices[0]);
    const auto [normal, twice_area] = cross_product(d2, d3);
    const double longest = std::max({dot_product(d2, d2), dot_product(d3, d3),
                                     dot_product(difference(d3, d2), difference(d3, d2))});
    ShellTriangle t{};
    t.area = twice_area / 2;
    t.valid = twice_area > flat * longest && std::isfinite(longest);
    if (!t.valid) return t;
    const auto [e1, length] = direction_cosines({0, 0, 0}, d2);
    const Vec3 e3 = scale_to_length(normal, 1);
    t.axes = {e1, cross_product(e3, e1).vector, e3};
    t.x = {0, length, dot_product(d3, e1)};
    t.y = {0, 0, dot_product(d3, t.axes[1])};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
        t.lx[i] = (t.y[j] - t.y[k]) / twice_area;
        t.ly[i] = (t.x[k] - t.x[j]) / twice_area;
    }
    return t;
}

std::array<double, 3> min3s_rises(const std::array<Vec3, 3>& vertices,
                                  const std::array<Vec3, 3>& between) {
    std::array<double, 3> rise{};
    for (std::size_t e = 0; e < 3; ++e) {
        const auto [i, j] = shell_edges[e];
        const Vec3 middle = add_scaled(vertices[i], 0.5, difference(vertices[j], vertices[i]));
        rise[e] = vector_length(difference(between[e], middle));
    }
    return rise;
}

Vec3 place_of(const std::array<Vec3, 3>& vertices, const ShellPoint& l) {
    Vec3 p{};
    for (std::size_t i = 0; i < 3; ++i)
        p = add_scaled(p, l[i], vertices[i]);
    return p;
}

// --- interpolation ------------------------------------------------------------------------------

namespace {

/// L_i L_j of an edge and its derivatives, and the vector from i to j.
struct EdgeBubble {
    std::size_t i, j;
    double q, qx, qy, x, y;
};

EdgeBubble edge_bubble(const ShellTriangle& t, std::size_t edge, const ShellPoint& l) {
    const auto [i, j] = shell_edges[edge];
    return {i,
            j,
            l[i] * l[j],
            t.lx[i] * l[j] + l[i] * t.lx[j],
            t.ly[i] * l[j] + l[i] * t.ly[j],
            t.x[j] - t.x[i],
            t.y[j] - t.y[i]};
}

constexpr ShellPoint centroid{1.0 / 3, 1.0 / 3, 1.0 / 3};

} // namespace

ShellDeflection deflection_at(const ShellTriangle& t, const ShellPoint& l) {
    ShellDeflection w{};
    for (std::size_t i = 0; i < 3; ++i) {
        w.value[i] = l[i];
        w.dx[i] = t.lx[i];
        w.dy[i] = t.ly[i];
    }
    for (std::size_t e = 0; e < 3; ++e) {
        const EdgeBubble b = edge_bubble(t, e, l);
        const auto add = [&](std::array<double, 9>& f, double half) {
            f[3 + b.j] -= half * b.y; // thx
            f[3 + b.i] += half * b.y;
            f[6 + b.j] += half * b.x; // thy
            f[6 + b.i] -= half * b.x;
        };
        add(w.value, b.q / 2);
        add(w.dx, b.qx / 2);
        add(w.dy, b.qy / 2);
    }
    return w;
}

// --- strains ------------------------------------------------------------------------------------

namespace {

constexpr int with_bubbles = 17; ///< u, v, w, thx, thy of the vertices and the bubbles of u and v

/// Curvatures thy,x; -thx,y; thy,y - thx,x by thx1 to thx3, thy1 to thy3.
SmallMatrix<3, 6> curvature(const ShellTriangle& t) {
    SmallMatrix<3, 6> b;
    for (int i = 1; i <= 3; ++i) {
        const double lx = t.lx[nth(i)], ly = t.ly[nth(i)];
        b(1, 3 + i) = lx;
        b(2, i) = -ly;
        b(3, i) = -lx;
        b(3, 3 + i) = ly;
    }
    return b;
}

/// Shear strains w,x + thy; w,y - thx by w, thx, thy.
SmallMatrix<2, 9> shear_strain(const ShellTriangle& t, const ShellPoint& l) {
    const ShellDeflection w = deflection_at(t, l);
    SmallMatrix<2, 9> b;
    for (int k = 1; k <= 9; ++k) {
        b(1, k) = w.dx[nth(k)];
        b(2, k) = w.dy[nth(k)];
    }
    for (int i = 1; i <= 3; ++i) {
        b(1, 6 + i) += l[nth(i)];
        b(2, 3 + i) -= l[nth(i)];
    }
    return b;
}

/// Strains of the flat element, u,x; v,y; u,y + v,x by u and v.
SmallMatrix<3, 6> flat_strain(const ShellTriangle& t) {
    SmallMatrix<3, 6> b;
    for (int i = 1; i <= 3; ++i) {
        b(1, i) = b(3, 3 + i) = t.lx[nth(i)];
        b(2, 3 + i) = b(3, i) = t.ly[nth(i)];
    }
    return b;
}

/// Adds to the strains what the displacement (fu, fv) f of one degree of freedom gives.
void add_in_plane(SmallMatrix<3, with_bubbles>& b, int column, double fu, double fv, double fx,
                  double fy) {
    b(1, column) += fu * fx;
    b(2, column) += fv * fy;
    b(3, column) += fu * fy + fv * fx;
}

/// The in-plane displacements of one curved edge of length l, rise r, direction s and normal n,
/// with q = L_i L_j, d = L_i - L_j and th the vector (thy, -thx):
///     -4 r / l q (w_j - w_i) s - 4 r / 3 q d (th_j - th_i) + 2 r q n n . (th_i + th_j).
/// The first makes the strain along the edge constant, the last a turn of the edge free of strain.
void add_curved_edge(SmallMatrix<3, with_bubbles>& b, const ShellTriangle& t, std::size_t edge,
                     const ShellPoint& l) {
    const EdgeBubble e = edge_bubble(t, edge, l);
    const double r = t.rise[edge], length = std::hypot(e.x, e.y);
    const double sx = e.x / length, sy = e.y / length;
    const double d = l[e.i] - l[e.j];
    const double qdx = e.qx * d + e.q * (t.lx[e.i] - t.lx[e.j]);
    const double qdy = e.qy * d + e.q * (t.ly[e.i] - t.ly[e.j]);
    const double slope = -4 * r / length, turn = -4 * r / 3, side = 2 * r;
    for (const double sign : {-1.0, 1.0}) { // of i, of j
        const int i = static_cast<int>(sign < 0 ? e.i : e.j) + 1;
        add_in_plane(b, shell_w + i, sign * slope * sx, sign * slope * sy, e.qx, e.qy);
        add_in_plane(b, shell_thy + i, sign * turn, 0, qdx, qdy);
        add_in_plane(b, shell_thx + i, 0, -sign * turn, qdx, qdy);
        // n = (-sy, sx); n . th = -sy thy - sx thx
        add_in_plane(b, shell_thy + i, side * sy * sy, -side * sx * sy, e.qx, e.qy);
        add_in_plane(b, shell_thx + i, side * sx * sy, -side * sx * sx, e.qx, e.qy);
    }
}

/// Strains of the shallow shell of height h = sum over edges 4 r L_i L_j: u,x + h,x w,x and so on.
SmallMatrix<3, with_bubbles> curved_strain(const ShellTriangle& t, const ShellPoint& l) {
    SmallMatrix<3, with_bubbles> b;
    double hx = 0, hy = 0, bubble_x = 0, bubble_y = 0;
    for (std::size_t e = 0; e < 3; ++e) {
        const EdgeBubble edge = edge_bubble(t, e, l);
        hx += 4 * t.rise[e] * edge.qx;
        hy += 4 * t.rise[e] * edge.qy;
        const std::size_t k = 3 - edge.i - edge.j;
        bubble_x += 27 * edge.q * t.lx[k];
        bubble_y += 27 * edge.q * t.ly[k];
        if (t.rise[e] != 0) add_curved_edge(b, t, e, l);
    }
    for (int i = 1; i <= 3; ++i) {
        add_in_plane(b, shell_u + i, 1, 0, t.lx[nth(i)], t.ly[nth(i)]);
        add_in_plane(b, shell_v + i, 0, 1, t.lx[nth(i)], t.ly[nth(i)]);
    }
    add_in_plane(b, 16, 1, 0, bubble_x, bubble_y);
    add_in_plane(b, 17, 0, 1, bubble_x, bubble_y);
    const ShellDeflection w = deflection_at(t, l);
    for (int k = 1; k <= 9; ++k) {
        const double wx = w.dx[nth(k)], wy = w.dy[nth(k)];
        b(1, shell_w + k) += hx * wx;
        b(2, shell_w + k) += hy * wy;
        b(3, shell_w + k) += hx * wy + hy * wx;
    }
    return b;
}

/// The seven points are exact: the strains are quadratic.
SmallMatrix<with_bubbles> curved_membrane(const ShellTriangle& t, const SmallMatrix<3>& d) {
    static const auto points = triangle_rule(7);
    SmallMatrix<with_bubbles> k;
    for (const TrianglePoint& p : points) {
        const auto part = congruent(d, curved_strain(t, {p.l1, p.l2, p.l3}));
        for (std::size_t i = 0; i < k.a.size(); ++i)
            k.a[i] += p.weight * t.area * part.a[i];
    }
    return k;
}

/// Amplitudes of the bubbles by the other degrees of freedom: those that need no force.
SmallMatrix<2, 15> bubble_amplitudes(const SmallMatrix<with_bubbles>& k) {
    const double a = k(16, 16), b = k(16, 17), c = k(17, 17), determinant = a * c - b * b;
    SmallMatrix<2, 15> amplitude;
    for (int j = 1; j <= 15; ++j) {
        amplitude(1, j) = -(c * k(16, j) - b * k(17, j)) / determinant;
        amplitude(2, j) = -(a * k(17, j) - b * k(16, j)) / determinant;
    }
    return amplitude;
}

SmallMatrix<15> condensed_membrane(const ShellTriangle& t, const SmallMatrix<3>& d) {
    const auto full = curved_membrane(t, d);
    const auto amplitude = bubble_amplitudes(full);
    SmallMatrix<15> k;
    for (int j = 1; j <= 15; ++j)
        for (int i = 1; i <= 15; ++i)
            k(i, j) = full(i, j) + full(i, 16) * amplitude(1, j) + full(i, 17) * amplitude(2, j);
    return k;
}

template <int M, int N> void add_times(SmallMatrix<M>& k, double f, const SmallMatrix<N>& part) {
    static_assert(M >= N);
    for (std::size_t i = 0; i < part.a.size(); ++i)
        k.a[i] += f * part.a[i];
}

Vec3 membrane_strain(const ShellTriangle& t, const ShellSection& s, const ShellVector& u,
                     const ShellPoint& l) {
    if (!t.curved()) return product(flat_strain(t), std::span(u).first(6));
    std::array<double, with_bubbles> full{};
    const auto amplitude =
        product(bubble_amplitudes(curved_membrane(t, s.membrane)), std::span(u).first(15));
    std::copy_n(u.begin(), 15, full.begin());
    std::ranges::copy(amplitude, full.begin() + 15);
    return product(curved_strain(t, l), full);
}

} // namespace

// --- stiffness ----------------------------------------------------------------------------------

ShellParts shell_parts(const ShellTriangle& t, const ShellSection& s) {
    // Exact for the square of the shear strains, which are linear.
    static const auto points = triangle_rule(3);
    ShellParts parts;
    add_times(parts.bending, t.area, congruent(s.bending, curvature(t)));
    for (const TrianglePoint& p : points)
        add_times(parts.shear, p.weight * t.area,
                  congruent(s.shear, shear_strain(t, {p.l1, p.l2, p.l3})));
    if (t.curved()) {
        parts.membrane = condensed_membrane(t, s.membrane);
    } else {
        parts.membrane.rows = parts.membrane.cols = 6;
        add_times(parts.membrane, t.area, congruent(s.membrane, flat_strain(t)));
    }
    return parts;
}

ShellRelaxation shell_relaxation(const ShellParts& parts, double c_s, double c_m) {
    const auto sum = [](const auto& k, int first) {
        double total = 0;
        for (int i = first + 1; i <= k.rows; ++i)
            total += k(i, i);
        return total;
    };
    const double bending = sum(parts.bending, 0);
    return {relaxation(c_s, sum(parts.shear, shell_thx - shell_w), bending),
            relaxation(c_m, sum(parts.membrane, shell_thx), bending)};
}

ShellMatrix shell_stiffness(const ShellParts& parts, const ShellRelaxation& phi, double drill) {
    ShellMatrix k;
    add_part(k, shell_thx, 1, parts.bending);
    add_part(k, shell_w, phi.shear, parts.shear);
    add_part(k, shell_u, phi.membrane, parts.membrane);
    double least = k(1, 1);
    for (int i = 2; i <= shell_thz; ++i)
        least = std::min(least, k(i, i));
    for (int i = shell_thz + 1; i <= shell_dofs; ++i)
        k(i, i) = drill * least;
    return k;
}

// --- transformation -----------------------------------------------------------------------------

namespace {

/// Place, node by node, of degree of freedom i counted by component; both from 0.
constexpr std::size_t by_node(std::size_t i) {
    return i % 3 * 6 + i / 3;
}

} // namespace

ShellMatrix min3s_transform(const ShellMatrix& k, const LocalAxes& axes) {
    ShellMatrix nodes;
    for (std::size_t j = 0; j < shell_dofs; ++j)
        for (std::size_t i = 0; i < shell_dofs; ++i)
            nodes.a[by_node(i) + shell_dofs * by_node(j)] = k.a[i + shell_dofs * j];
    return to_global(nodes, axes);
}

ShellVector min3s_transform(const ShellVector& f, const LocalAxes& axes) {
    ShellVector nodes;
    for (std::size_t i = 0; i < shell_dofs; ++i)
        nodes[by_node(i)] = f[i];
    return to_global(nodes, axes);
}

ShellVector shell_to_local(const ShellVector& u, const LocalAxes& axes) {
    const ShellVector nodes = to_local(u, axes);
    ShellVector local;
    for (std::size_t i = 0; i < shell_dofs; ++i)
        local[i] = nodes[by_node(i)];
    return local;
}

// --- resultants ---------------------------------------------------------------------------------

ShellResultants shell_resultants(const ShellTriangle& t, const ShellSection& s,
                                 const ShellRelaxation& phi, const ShellVector& u,
                                 const ShellPoint& l) {
    const std::span<const double> all(u);
    const auto n = product(s.membrane, membrane_strain(t, s, u, l));
    const auto m = product(s.bending, product(curvature(t), all.subspan(shell_thx, 6)));
    const auto q = product(s.shear, product(shear_strain(t, l), all.subspan(shell_w, 9)));
    return {phi.membrane * n[0], phi.membrane * n[1], phi.membrane * n[2], m[0], m[1], m[2],
            phi.shear * q[0],    phi.shear * q[1]};
}

ShellResultants turned_resultants(const ShellResultants& r, double cosine, double sine) {
    const double c = cosine, s = sine;
    const auto tensor = [&](double xx, double yy, double xy) {
        return Vec3{c * c * xx + s * s * yy + 2 * c * s * xy,
                    s * s * xx + c * c * yy - 2 * c * s * xy,
                    c * s * (yy - xx) + (c * c - s * s) * xy};
    };
    const Vec3 n = tensor(r[0], r[1], r[2]), m = tensor(r[3], r[4], r[5]);
    return {n[0], n[1], n[2], m[0], m[1], m[2], c * r[6] + s * r[7], c * r[7] - s * r[6]};
}

ShellResultants global_resultants(const ShellResultants& r, const LocalAxes& axes) {
    const auto [c, s] = turn_of(axes, {1, 0, 0});
    ShellResultants g = turned_resultants(r, c, s);
    if (axes[2][2] >= 0) return g;
    // Upside down: y and z point the other way. Nxy, Mx, My and Qx have one of them.
    for (const std::size_t i : {2u, 3u, 4u, 6u})
        g[i] = -g[i];
    return g;
}

Turn turn_of(const LocalAxes& axes, const Vec3& direction) {
    const double c = dot_product(direction, axes[0]), s = dot_product(direction, axes[1]);
    const double length = std::hypot(c, s);
    if (!(length > 0)) return {1, 0};
    return {c / length, s / length};
}

} // namespace quelor
