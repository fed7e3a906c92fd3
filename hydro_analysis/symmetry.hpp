// Composite source symmetry: the mesh covers a half or a quarter of the structure, and every
// quantity splits into classes that are even or odd under the reflections.
//
// Images of a point of the mesh: single symmetry 1 (x, y), 2 (x, -y); double symmetry 1 (x, y),
// 2 (-x, y), 3 (-x, -y), 4 (x, -y). A class sum is the sum over the images m of
// class_sign(symmetry, k, m) times the image's value; the number of classes is that of the images,
// and the inverse is image m = sum over k of class_sign(symmetry, k, m) class k / number of images.
#pragma once

#include "numeric/panel_geometry.hpp"

namespace quelor {

/// Number of images of a panel, itself included, and of symmetry classes.
constexpr int image_count(int symmetry) {
    return symmetry == 0 ? 1 : symmetry == 1 ? 2 : 4;
}

/// The reflection that makes image m of a point.
constexpr Reflection reflection_of(int symmetry, int m) {
    const bool in_x = symmetry == 2 && (m == 2 || m == 3);
    const bool in_y = (symmetry == 1 && m == 2) || (symmetry == 2 && m >= 3);
    return {in_x ? -1.0 : 1.0, in_y ? -1.0 : 1.0};
}

/// Sign of image m in the sum of class k. Classes of double symmetry (parity in y, in x):
/// 1 even odd, 2 odd even, 3 even even, 4 odd odd; of single symmetry: 1 even, 2 odd in y.
constexpr double class_sign(int symmetry, int k, int m) {
    const auto [x, y] = reflection_of(symmetry, m);
    if (symmetry == 0) return 1.0;
    if (symmetry == 1) return k == 2 ? y : 1.0;
    const double in_x = k == 1 || k == 4 ? x : 1.0;
    const double in_y = k == 2 || k == 4 ? y : 1.0;
    return in_x * in_y;
}

} // namespace quelor
