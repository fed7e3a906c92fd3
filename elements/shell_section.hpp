// Stiffness of a shell's section from its material: orthotropic, plane stress, in the axes of the
// material or turned from them. A numeric kernel.
#pragma once

#include "numeric/small_matrix.hpp"

namespace quelor {

/// A material along its axes 1, 2 (in the surface) and 3 (normal to it).
struct ShellMaterial {
    Vec3 e;  ///< E1, E2, E3
    Vec3 g;  ///< G12, G23, G13
    Vec3 nu; ///< nu12, nu23, nu13: contraction along the second axis under tension along the first
    double thickness, bending_thickness;
};
/// The same in all directions, by E1, G12 and nu12; G12 need not be E1 / (2 (1 + nu12)).
ShellMaterial isotropic(const ShellMaterial& m);
/// True when moduli and thicknesses are above 0 and any strain takes work: the compliance
/// [1/E1, -nu12/E1, -nu13/E1; ., 1/E2, -nu23/E2; ., ., 1/E3] is positive definite.
bool is_elastic(const ShellMaterial& m);

/// Per unit length of section: membrane forces by strains (xx, yy, and the full shear strain xy),
/// moments by curvatures, transverse shear forces by shear strains (xz, yz).
struct ShellSection {
    SmallMatrix<3> membrane, bending;
    SmallMatrix<2> shear;
};
/// Dm = t Q, Db = tb^3 / 12 Q, Ds = 5/6 t diag(G13, G23), with Q the inverse of the compliance's
/// rows and columns 1, 2, 12, which is the stiffness without stress along axis 3.
ShellSection min3s_material(const ShellMaterial& m);
/// Factor of a part of an element's stiffness, 1 / (c S / B + 1), with S and B sums of diagonal
/// terms of that part and of the bending stiffness; 0 when B is 0.   Source: [Tessler 1985]
double relaxation(double c, double part, double bending);
/// The section in axes x, y; axis 1 lies at an angle from x toward y.
ShellSection turned_section(const ShellSection& s, double cosine, double sine);

} // namespace quelor
