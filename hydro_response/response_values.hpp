// Physical values from generalised coordinates: displacements of nodes; potentials, pressures and
// hydrostatic change at all panels of the structure, one frequency at a time. A numeric kernel.
//
// A table has a column for each panel of the full set, block m of np columns being image m of
// symmetry.hpp, and a row for each heading or mode.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// Displacements of all nodes, a component a table of modes: disp(c (n - 1) + i) = sum over m of
/// modes[i](n,m) q(m), m rising, for c tables: translations and rotations, or translations alone.
/// modes  in  c of (nnode,nmode);  q  in  nmode;  disp  out  c nnode
void nodal_displacements(std::span<const Matrix<const double>> modes, std::span<const Complex8> q,
                         std::span<Complex8> disp);

/// The copies of a panel in the order in which reports list them: itself; single symmetry y < 0;
/// double symmetry x > 0 y < 0, x < 0 y > 0, x < 0 y < 0. Their images in potential arrays.
constexpr int image_of_copy(int symmetry, int copy) {
    constexpr int twofold[]{1, 4, 2, 3};
    return symmetry == 2 ? twofold[copy - 1] : copy;
}

/// table(j,p) += phi(p,ifreq,j)
/// phi  in  (np*ns,nfreq,n);  table  in/out  (n,np*ns)
void add_potential(Array3<const Complex8> phi, int ifreq, Matrix<Complex8> table);

/// Radiation potential of the motion: table(b,p) := sum over m of potrad(p,ifreq,m) q(m,ifreq,b).
/// potrad  in  (np*ns,nfreq,nmode);  q  in  (nmode,nfreq,nbeta);  table  out  (nbeta,np*ns)
void radiation_potential(Array3<const Complex8> potrad, Array3<const Complex8> q, int ifreq,
                         Matrix<Complex8> table);

/// p = -i omega rho phi, in place. Source: [Newman 1977]
void potential_to_pressure(double omega, double rho, std::span<Complex8> phi);

/// Vertical displacement of the full panel set.
/// uz       in   (nmode,np);  modesym  in  (nmode) symmetry class of each mode
/// uz_full  out  (nmode,np*ns)
void expand_vertical_displacement(int symmetry, std::span<const std::int32_t> modesym,
                                  Matrix<const double> uz, Matrix<double> uz_full);

/// Change of the hydrostatic pressure: table(b,p) := -rhog sum over m of uz(m,p) q(m,ifreq,b).
/// uz  in  (nmode,np*ns);  weights  out  (nmode,2 nbeta) work space;  table  out  (nbeta,np*ns)
void hydrostatic_change(double rhog, Matrix<const double> uz, Array3<const Complex8> q, int ifreq,
                        Matrix<double> weights, Matrix<Complex8> table);

} // namespace quelor
