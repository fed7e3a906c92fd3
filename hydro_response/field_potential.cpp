#include "hydro_response/field_potential.hpp"

namespace quelor {

void incoming_field(const IncomingWave& wave, double grav, Matrix<const double> points,
                    std::span<Complex8> phi) {
    incoming_potential(wave, 0, points, {phi.data(), points.rows, 1});
    for (Complex8& value : phi)
        value *= Complex8(0, grav / wave.omega);
}

void add_radiation_sources(double omega, Matrix<const Complex4> src, std::span<const Complex8> q,
                           std::span<Complex8> sigma) {
    for (int m = 1; m <= src.cols; ++m) {
        const Complex8 velocity = Complex8(0, omega) * q[nth(m)];
        for (int p = 1; p <= src.rows; ++p)
            sigma[nth(p)] += velocity * Complex8(src(p, m));
    }
}

void elevation_from_potential(double omega, double grav, std::span<Complex8> phi) {
    for (Complex8& value : phi)
        value *= Complex8(0, -omega / grav);
}

int six_points(Matrix<const double> nodes, const Vec3& del, double depth, Matrix<double> six) {
    int coincident = 0;
    for (int n = 1; n <= nodes.cols; ++n)
        for (int axis = 1; axis <= 3; ++axis) {
            const int up = 6 * (n - 1) + 2 * axis - 1, down = up + 1;
            for (int i = 1; i <= 3; ++i)
                six(i, up) = six(i, down) = nodes(i, n);
            const double above = nodes(axis, n) + del[nth(axis)];
            const double below = nodes(axis, n) - del[nth(axis)];
            if (axis != 3 || above <= 0) six(axis, up) = above;
            if (axis != 3 || below >= -depth) six(axis, down) = below;
            if (coincident == 0 && !(six(axis, up) > six(axis, down))) coincident = n;
        }
    return coincident;
}

void velocity_from_potentials(Matrix<const double> six, std::span<const Complex8> phi,
                              Matrix<Complex8> velocity) {
    for (int n = 1; n <= velocity.cols; ++n)
        for (int axis = 1; axis <= 3; ++axis) {
            const int up = 6 * (n - 1) + 2 * axis - 1, down = up + 1;
            velocity(axis, n) = (phi[nth(up)] - phi[nth(down)]) / (six(axis, up) - six(axis, down));
        }
}

} // namespace quelor
