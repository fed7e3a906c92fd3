#include "hydro_response/field_potential.hpp"

#include "hydro_analysis/csolve.hpp"

#include <vector>

namespace quelor {

void incoming_field(const IncomingWave& wave, double grav, std::span<const Vec3> points,
                    std::span<Complex8> phi) {
    const double kc = wave.k * std::cos(wave.beta), ks = wave.k * std::sin(wave.beta);
    for (std::size_t n = 0; n < points.size(); ++n) {
        const auto [x, y, z] = points[n];
        phi[n] =
            Complex8(0, grav / wave.omega) * std::polar(depth_decay(wave, z), -(kc * x + ks * y));
    }
}

void add_radiation_sources(double omega, Matrix<const Complex4> src, std::span<const Complex8> q,
                           std::span<Complex8> sigma) {
    for (int m = 1; m <= src.cols; ++m) {
        const Complex8 velocity = Complex8(0, omega) * q[nth(m)];
        for (int p = 1; p <= src.rows; ++p)
            sigma[nth(p)] += velocity * Complex8(src(p, m));
    }
}

InfluenceResult add_source_field(const PanelMesh& mesh, std::span<const Vec3> points,
                                 const InfluenceParameters& parameters, DepthCache& cache,
                                 Matrix<const Complex4> sigma, int ifreq, Array3<Complex8> phi) {
    std::vector<Complex8> block; // potentials of the points of one call
    const auto add_block = [&](int first, std::span<const Matrix<const Complex4>> alpha) {
        const int n = alpha[0].rows;
        block.resize(as_size(n) * as_size(sigma.cols));
        const Matrix<Complex8> part{block.data(), n, sigma.cols};
        multiply_mixed(alpha[0], sigma, part);
        for (int b = 1; b <= sigma.cols; ++b)
            for (int j = 1; j <= n; ++j)
                phi(first + j - 1, ifreq, b) += part(j, b);
    };
    return field_influence(mesh, points, parameters, cache, add_block);
}

void elevation_from_potential(double omega, double grav, std::span<Complex8> phi) {
    for (Complex8& value : phi)
        value *= Complex8(0, -omega / grav);
}

int six_points(std::span<const Vec3> nodes, const Vec3& del, double depth, std::span<Vec3> six) {
    int coincident = 0;
    for (std::size_t n = 0; n < nodes.size(); ++n)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            Vec3 &up = six[6 * n + 2 * axis], &down = six[6 * n + 2 * axis + 1];
            up = down = nodes[n];
            const double above = nodes[n][axis] + del[axis], below = nodes[n][axis] - del[axis];
            if (axis != 2 || above <= 0) up[axis] = above;
            if (axis != 2 || below >= -depth) down[axis] = below;
            if (coincident == 0 && !(up[axis] > down[axis])) coincident = static_cast<int>(n) + 1;
        }
    return coincident;
}

void velocity_from_potentials(std::span<const Vec3> six, std::span<const Complex8> phi,
                              Matrix<Complex8> velocity) {
    for (int n = 1; n <= velocity.cols; ++n)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t up = 6 * nth(n) + 2 * axis, down = up + 1;
            velocity.col(n)[axis] = (phi[up] - phi[down]) / (six[up][axis] - six[down][axis]);
        }
}

} // namespace quelor
