#include "hydro_model/panel_motion.hpp"

namespace quelor {

Corners rotation_weights(const Corners& corners, const Vec3& normal) {
    Corners r;
    for (std::size_t k = 0; k < 4; ++k) {
        const Vec3 &before = corners[(k + 3) % 4], &here = corners[k];
        const Vec3& after = corners[(k + 1) % 4];
        Vec3 a; // both sides at the node: a . (n x theta) = (a x n) . theta
        for (std::size_t i = 0; i < 3; ++i)
            a[i] = (after[i] - here[i] + (before[i] - here[i])) / 16.0;
        r[k] = cross_product(a, normal).vector;
    }
    return r;
}

Vec3 panel_displacement(const Vec3& normal, const Corners& r, const Corners& u,
                        const Corners& theta) {
    double bent = 0.0;
    Vec3 d{};
    for (std::size_t k = 0; k < 4; ++k)
        for (std::size_t i = 0; i < 3; ++i) {
            d[i] += 0.25 * u[k][i];
            bent += r[k][i] * theta[k][i];
        }
    return add_scaled(d, bent, normal);
}

} // namespace quelor
