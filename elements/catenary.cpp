#include "elements/catenary.hpp"

#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quelor {

namespace {

constexpr double no_force = 1e-12;   // a force or weight not above it is none
constexpr double along_load = 1e-12; // of |T| |w|: T x w not above it has no direction
constexpr int most_halvings = 30;

Vec3 row(const SmallMatrix<3>& m, int i) {
    return {m(i, 1), m(i, 2), m(i, 3)};
}
void set_row(SmallMatrix<3>& m, int i, const Vec3& v) {
    for (int j = 1; j <= 3; ++j)
        m(i, j) = v[nth(j)];
}

/// The global axis least aligned with the unit vector z, made normal to it; y before x before z of
/// equal ones.
Vec3 perpendicular(const Vec3& z) {
    std::size_t axis = 1;
    for (const std::size_t i : {std::size_t{0}, std::size_t{2}})
        if (std::abs(z[i]) < std::abs(z[axis])) axis = i;
    Vec3 y{};
    y[axis] = 1;
    y = add_scaled(y, -dot_product(y, z), z);
    return scale_to_length(y, 1);
}

/// Sine and cosine components of a segment in its local axes: H along x, V along z at the start, Vb
/// = V + wl L below the end, so that V2 = -Vb; Ta and Tb are the tensions at start and end.
struct LocalForces {
    double H, V, Vb, Ta, Tb, wl;
};

/// Differences that cancel where the weight is small beside the tension are taken by V^2 - Vb^2 =
/// -(Vb - V)(Vb + V), with Vb - V = wl L.
struct CatenaryDifferences {
    double angle;   ///< (asinh(Vb/|H|) - asinh(V/|H|)) / wl: angle |H| is the span
    double cosine;  ///< (V/Ta - Vb/Tb) / wl
    double inverse; ///< (1/Tb - 1/Ta) / wl
};

CatenaryDifferences differences(const LocalForces& f, double L) {
    const double h = std::abs(f.H), sum = f.V + f.Vb;
    const bool same_side = f.V * f.Vb > 0;
    // asinh(b) - asinh(a) = asinh(b sqrt(1 + a^2) - a sqrt(1 + b^2))
    const double cross = f.Vb * f.Ta - f.V * f.Tb, plus = f.Vb * f.Ta + f.V * f.Tb;
    const double argument = same_side ? (f.wl * L) * sum / plus : cross / (h * h);
    const double by_weight = same_side ? h * (h * L * sum / plus) : cross / f.wl;
    // For a small argument asinh(x)/wl is taken from x/wl, since wl itself may vanish.
    const double ratio = argument == 0 ? 1 : std::asinh(argument) / argument;
    const double slope = same_side ? L * sum / plus : cross / (h * h) / f.wl;
    return {slope * ratio, -by_weight / (f.Ta * f.Tb), -L * sum / ((f.Ta + f.Tb) * f.Ta * f.Tb)};
}

void set_local(CatenaryState& state, const SmallMatrix<3>& R, double x, double z,
               const SmallMatrix<3>& F) {
    state.delta = transposed_product(R, std::array{x, 0.0, z});
    state.F = congruent(F, R);
}

/// F of a segment whose force lies in the direction of the load.
SmallMatrix<3> vertical_flexibility(const LocalForces& f, double z, double L, double a) {
    const double V2 = -f.Vb;
    SmallMatrix<3> F;
    F(3, 3) = -a;
    if (f.wl != 0) F(3, 3) += (V2 / f.Tb + f.V / f.Ta) / f.wl;
    F(1, 1) = z != 0 ? z / ((f.V - V2) * 0.5) : (L * 0.5) / ((f.V + V2) * 0.5);
    F(2, 2) = F(1, 1);
    return F;
}

} // namespace

CatenaryFrame cable_transf(const Vec3& w, const Vec3& T) {
    const double load = vector_length(w), tension = vector_length(T);
    const bool has_load = load > no_force, has_tension = tension > no_force;
    CatenaryFrame frame;
    if (!has_load && !has_tension) {
        frame.lack = CatenaryLack::both;
        return frame;
    }
    if (!has_load)
        frame.lack = CatenaryLack::load;
    else if (!has_tension)
        frame.lack = CatenaryLack::tension;
    const Vec3 z = has_load ? scale_to_length(w, 1) : scale_to_length(T, -1);
    const auto [c, length] = cross_product(T, w);
    const Vec3 y = has_load && has_tension && length > tension * load * along_load
                       ? scale_to_length(c, 1)
                       : perpendicular(z);
    set_row(frame.R, 1, cross_product(y, z).vector);
    set_row(frame.R, 2, y);
    set_row(frame.R, 3, z);
    return frame;
}

// With H, V and V2 the components of T and T2 along x and z, and e = E A:
//   x = (H/wl) ln((|T| + V)/(|T2| - V2)) - L H/e
//   s = -(H^2 ln((|T| + V)/(|T2| - V2)) + |T2| V2 + |T| V)/(2 wl e)
//   z = ((V2 - V)/(2 e) + (V2 - V)/(|T| + |T2|)) L
// where (|T| + V)/|H| = exp(asinh(V/|H|)). Vertical: x = 0.
CatenaryState cable_segment(const CatenarySegment& segment, const Vec3& T) {
    const double L = segment.length, a = L / segment.ea;
    CatenaryState state;
    for (std::size_t i = 0; i < 3; ++i)
        state.T2[i] = 0.0 - (T[i] + L * segment.w[i]); // 0 and not -0 for 0
    const auto [R, lack] = cable_transf(segment.w, T);
    state.lack = lack;
    if (lack == CatenaryLack::both) return state;
    const double V = dot_product(T, row(R, 3)), wl = dot_product(segment.w, row(R, 3));
    const LocalForces f{.H = dot_product(T, row(R, 1)),
                        .V = V,
                        .Vb = -dot_product(state.T2, row(R, 3)),
                        .Ta = vector_length(T),
                        .Tb = vector_length(state.T2),
                        .wl = wl};
    const double rise = -(f.V + f.Vb); // V2 - V
    const double z = (rise / (2 * segment.ea) + rise / (f.Ta + f.Tb)) * L;
    if (!(std::abs(f.H / f.Ta) >= 1e-12)) {
        state.elongation = f.V * -f.Vb > 0 ? (f.Tb * f.Tb + f.Ta * f.Ta) / (2 * segment.ea * wl)
                                           : (f.Ta + f.Tb) * L / (2 * segment.ea);
        set_local(state, R, 0, z, vertical_flexibility(f, z, L, a));
        return state;
    }
    const CatenaryDifferences d = differences(f, L);
    const double x = -f.H * (d.angle + a);
    state.elongation =
        (f.H * f.H * d.angle + L * (f.Ta + f.Vb * (f.V + f.Vb) / (f.Ta + f.Tb))) / (2 * segment.ea);
    SmallMatrix<3> F;
    F(3, 3) = d.cosine - a;
    F(2, 2) = -(d.angle + a); // x / H
    F(1, 1) = F(2, 2) - d.cosine;
    F(1, 3) = F(3, 1) = -d.inverse * f.H;
    set_local(state, R, x, z, F);
    return state;
}

CatenaryChain cable_chain(std::span<const CatenarySegment> segments, const Vec3& x1,
                          const Vec3& T) {
    CatenaryChain chain{.end = x1, .T2 = {-T[0], -T[1], -T[2]}, .F = {}};
    for (const CatenarySegment& segment : segments) {
        const CatenaryState state =
            cable_segment(segment, {-chain.T2[0], -chain.T2[1], -chain.T2[2]});
        chain.end = add_scaled(chain.end, 1, state.delta);
        chain.T2 = state.T2;
        for (std::size_t i = 0; i < chain.F.a.size(); ++i)
            chain.F.a[i] += state.F.a[i];
        if (chain.lack == CatenaryLack::nothing) chain.lack = state.lack;
    }
    return chain;
}

CatenaryLine cable_shoot(std::span<const CatenarySegment> segments, const Vec3& x1, const Vec3& x2,
                         const Vec3& start, double tolerance, int maxiter) {
    CatenaryLine accepted, trial;
    accepted.T = trial.T = start;
    Vec3 step{}, last = start;
    double error = std::numeric_limits<double>::infinity();
    for (int i = 1; i <= maxiter && !accepted.converged; ++i) {
        double distance = 0;
        for (int k = 1;; ++k) {
            trial.chain = cable_chain(segments, x1, trial.T);
            distance = vector_length(difference(x2, trial.chain.end));
            if (distance < error || k > most_halvings) break;
            trial.T = add_scaled(last, std::ldexp(1.0, -k), step);
        }
        const auto stiffness = inverse(trial.chain.F);
        if (!std::isfinite(distance) || !stiffness) break;
        error = distance;
        accepted = trial;
        accepted.converged = distance <= tolerance;
        last = trial.T;
        step = product(*stiffness, difference(x2, trial.chain.end));
        trial.T = add_scaled(last, 1, step);
    }
    return accepted;
}

Vec3 cable_estimate(std::span<const CatenarySegment> segments, const Vec3& x1, const Vec3& x2) {
    double weight = 0, length = 0, compliance = 0;
    Vec3 against{};
    for (const CatenarySegment& segment : segments) {
        weight += vector_length(segment.w) * segment.length;
        length += segment.length;
        compliance += segment.length / segment.ea;
        against = add_scaled(against, -segment.length, segment.w);
    }
    const Vec3 direction = difference(x1, x2);
    const double distance = vector_length(direction);
    if (weight == 0)
        return scale_to_length(direction, std::max(distance - length, 1e-6 * length) / compliance);
    return scale_to_length(distance > 0 ? direction : against, weight / 2);
}

std::optional<SmallMatrix<3>> inverse(const SmallMatrix<3>& m) {
    const Vec3 a = row(m, 1), b = row(m, 2), c = row(m, 3);
    const Vec3 bc = cross_product(b, c).vector, ca = cross_product(c, a).vector,
               ab = cross_product(a, b).vector;
    const double determinant = dot_product(a, bc);
    SmallMatrix<3> result;
    for (int i = 1; i <= 3; ++i) {
        result(i, 1) = bc[nth(i)] / determinant;
        result(i, 2) = ca[nth(i)] / determinant;
        result(i, 3) = ab[nth(i)] / determinant;
    }
    if (!all_finite(result.a)) return {};
    return result;
}

} // namespace quelor
