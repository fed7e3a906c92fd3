// Added mass, damping and exciting forces from solved potentials, and potentials of the full panel
// set from those of the classes. Sums run over the panels of the mesh in rising order.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// What the sums over the wet panels need. Normals point out of the fluid into the body.
struct PanelModes {
    std::span<const double> area;          ///< (np)
    Matrix<const double> un;               ///< (nmode,np) normal displacement of each mode
    int symmetry;                          ///< 0, 1, 2
    std::span<const std::int32_t> modesym; ///< (nmode) class of each mode; unused for symmetry 0
    std::span<const std::int32_t>
        modeloc; ///< (nmode) column of each mode within its class, 1-based

    int class_of(int mode) const { return symmetry == 0 ? 1 : modesym[nth(mode)]; }
    int column_of(int mode) const { return symmetry == 0 ? mode : modeloc[nth(mode)]; }
};

/// Added mass rho Re(S) and damping -rho omega Im(S), S = ns * sum over p of area un(i,p)
/// prad(p,j), for modes i, j of one class; pairs of different class stay as they are (zero). prad
/// in   one matrix (np, modes of the class) a class addm, damp  out  (nmode,nmode)
void added_mass_and_damping(const PanelModes& modes, std::span<const Matrix<Complex8>> prad,
                            double rho, double omega, Matrix<double> addm, Matrix<double> damp);

/// f(i) = factor * sum over p of area un(i,p) phi(p, class of i).
/// phi  in  one span of np values a class
void generalised_force(const PanelModes& modes, std::span<const std::span<const Complex8>> phi,
                       Complex8 factor, std::span<Complex8> f);

/// Class sums, the np of class k in block k, become the values on all images, those of image m in
/// block m: factor / ns * sum over k of sign(k, m) phi_k(p).
void expand_classes(int symmetry, Complex8 factor, std::span<Complex8> blocks);

/// A quantity of class k, in block 1, becomes that on all images: factor sign(k, m) phi(p).
void reflect_class(int symmetry, int k, Complex8 factor, std::span<Complex8> blocks);

} // namespace quelor
