#include "elements/shell_section.hpp"

namespace quelor {

ShellMaterial isotropic(const ShellMaterial& m) {
    const auto same = [](double value) { return Vec3{value, value, value}; };
    return {same(m.e[0]), same(m.g[0]), same(m.nu[0]), m.thickness, m.bending_thickness};
}

bool is_elastic(const ShellMaterial& m) {
    for (const double value :
         {m.e[0], m.e[1], m.e[2], m.g[0], m.g[1], m.g[2], m.thickness, m.bending_thickness})
        if (!(value > 0)) return false;
    // Leading minors of the compliance times E1, E1 E2 and E1 E2 E3.
    const auto [e1, e2, e3] = m.e;
    const auto [nu12, nu23, nu13] = m.nu;
    const double a = nu12 * nu12 * e2 / e1, b = nu23 * nu23 * e3 / e2, c = nu13 * nu13 * e3 / e1;
    return 1 - a > 0 && 1 - a - b - c - 2 * nu12 * nu23 * nu13 * e3 / e1 > 0;
}

ShellSection min3s_material(const ShellMaterial& m) {
    const auto [e1, e2, e3] = m.e;
    const double nu12 = m.nu[0];
    const double minor = 1 - nu12 * nu12 * e2 / e1;
    SmallMatrix<3> q;
    q(1, 1) = e1 / minor;
    q(2, 2) = e2 / minor;
    q(1, 2) = q(2, 1) = nu12 * e2 / minor;
    q(3, 3) = m.g[0];
    const double tb = m.bending_thickness;
    ShellSection s;
    for (std::size_t i = 0; i < q.a.size(); ++i) {
        s.membrane.a[i] = m.thickness * q.a[i];
        s.bending.a[i] = tb * tb * tb / 12 * q.a[i];
    }
    constexpr double shear_factor = 5.0 / 6;
    s.shear(1, 1) = shear_factor * m.thickness * m.g[2];
    s.shear(2, 2) = shear_factor * m.thickness * m.g[1];
    return s;
}

double relaxation(double c, double part, double bending) {
    return bending == 0 ? 0 : 1 / (c * part / bending + 1);
}

ShellSection turned_section(const ShellSection& s, double cosine, double sine) {
    const double c = cosine;
    SmallMatrix<3> strain; // strains along the axes of the material by those along x, y
    strain(1, 1) = strain(2, 2) = c * c;
    strain(1, 2) = strain(2, 1) = sine * sine;
    strain(1, 3) = c * sine;
    strain(2, 3) = -c * sine;
    strain(3, 1) = -2 * c * sine;
    strain(3, 2) = 2 * c * sine;
    strain(3, 3) = c * c - sine * sine;
    SmallMatrix<2> shear;
    shear(1, 1) = shear(2, 2) = c;
    shear(1, 2) = sine;
    shear(2, 1) = -sine;
    return {congruent(s.membrane, strain), congruent(s.bending, strain), congruent(s.shear, shear)};
}

} // namespace quelor
