// Linearised drag on the degrees of freedom of a structure. A numeric kernel.
//
// The drag force on equation k is cd |w| w, w = v - i omega u the amplitude of the velocity of the
// water relative to the structure. With c(k) = cd |w| of the last iteration it is c (v - i omega
// u): a load c v and a damping c, which the modes T see as T^T c v and T^T diag(c) T.
// Source: [Morison 1950]
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// The velocity whose amplitude multiplies the coefficients: v - i omega u, v alone, i omega u
/// alone.
enum class DragVelocity { relative, wave, structure };

/// c(k) = cd(k) |velocity(k)|
/// cd  in  n coefficients;  v  in  n velocities of the water;  u  in  n displacements;  c  out  n
void drag_damping(DragVelocity velocity, double omega, std::span<const double> cd,
                  std::span<const Complex8> v, std::span<const Complex8> u, std::span<double> c);

/// B += T^T diag(c) T
/// T  in  (n,nmode);  c  in  n;  scaled  out  (n,nmode) diag(c) T;  product  out  (nmode,nmode)
void add_modal_damping(Matrix<const double> T, std::span<const double> c, Matrix<double> scaled,
                       Matrix<double> product, Matrix<double> B);

/// f += T^T p
/// T  in  (n,nmode);  p  in  n loads;  f  in/out  nmode
void add_modal_load(Matrix<const double> T, std::span<const Complex8> p, std::span<Complex8> f);

/// u := T q
void physical_displacements(Matrix<const double> T, std::span<const Complex8> q,
                            std::span<Complex8> u);

/// Largest |a - b|; not a number when one of the differences is none.
double largest_change(std::span<const Complex8> a, std::span<const Complex8> b);

} // namespace quelor
