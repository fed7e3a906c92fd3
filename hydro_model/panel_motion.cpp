#include "hydro_model/panel_motion.hpp"

namespace quelor {

PanelShape panel_shape(const Corners& corners, const Vector3& n) {
    PanelShape shape{n, {}};
    for (std::size_t k = 0; k < 4; ++k) {
        const Vector3 &before = corners[(k + 3) % 4], &here = corners[k];
        const Vector3& after = corners[(k + 1) % 4];
        Vector3 a; // both sides at the node: a . (n x theta) = (a x n) . theta
        for (std::size_t i = 0; i < 3; ++i)
            a[i] = (after[i] - here[i] + (before[i] - here[i])) / 16.0;
        shape.rotation[k] = {a[1] * n[2] - a[2] * n[1], a[2] * n[0] - a[0] * n[2],
                             a[0] * n[1] - a[1] * n[0]};
    }
    return shape;
}

Vector3 panel_displacement(const PanelShape& shape, const Corners& u, const Corners& theta) {
    double bent = 0.0;
    Vector3 d{};
    for (std::size_t k = 0; k < 4; ++k)
        for (std::size_t i = 0; i < 3; ++i) {
            d[i] += 0.25 * u[k][i];
            bent += shape.rotation[k][i] * theta[k][i];
        }
    for (std::size_t i = 0; i < 3; ++i)
        d[i] += bent * shape.normal[i];
    return d;
}

} // namespace quelor
