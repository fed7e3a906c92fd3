// Command hyd_analysis_response, and the routines that the other response commands share with it.
//
// Equation of motion in generalised coordinates, time factor exp(+i omega t):
//     [-omega^2 (Ms + A) + i omega (Cs + B) + Ks (1 + i loss) + Kf] q = F
// with the structural loss factor twice the hysteretic damping ratio.
// Source: [Newman 1994]
#pragma once

#include "hydro_analysis/hyd_problem.hpp"
#include "kernel/command.hpp"

namespace quelor {

/// complex (nmode,nmode) and (nmode): factors and solution of the last solve.
inline constexpr std::string_view hyd_dynk = ".hyd_dynk";
inline constexpr std::string_view hyd_rhs = ".hyd_rhs";

/// False, after a message, when `.grnfun` selects a Green function other than 0; absent, it becomes
/// 0.
bool hyd_check_green_function();

struct ResponseOptions {
    bool residual = false, symmetrize = false, eq = false;
};
ResponseOptions hyd_response_options();

inline constexpr int unit_cor = 90;
void open_cor_file();

/// Whether the coefficients are symmetrised, as the summaries say it.
void write_symmetrize_line(bool symmetrize);

/// Deletes and creates `.hyd_dynk`, `.hyd_rhs` and `.hyd_gencor` (nmode,nfreq,nbeta).
void hyd_response_arrays(int nfreq, int nbeta, int nmode);

/// `hyd_mstr` must be (nmode,nmode), and `hyd_kstr` too when there are flexible modes; `hyd_cstr`
/// and a rigid model's `hyd_kstr` are made zero when absent or of the wrong size.
void hyd_check_structure(int nmodef, int nmode);

/// In place: a(i,j) and a(j,i) become their mean.
void symmetrize_matrix(Matrix<double> a);

/// Matrices of one frequency, all (nmode,nmode).
struct MotionMatrices {
    Matrix<const double> added_mass, damping, mass, viscous, stiffness, hydrostatic;
    double loss; ///< structural loss factor, twice the damping ratio
};
/// dynk(i,j) = Ks - (Ms + A) omega^2 + Kf + i ((Cs + B) omega + loss Ks).
void hyd_assemble_dynk(double omega, const MotionMatrices& m, Matrix<Complex8> dynk);

/// Largest residual |rhs - dynk x| of a solution, beside the load, to both units.
void hyd_residual_report(Matrix<const Complex8> dynk, std::span<const Complex8> rhs,
                         std::span<const Complex8> x);

/// Table of generalised coordinates to the `.cor` file.
void hyd_write_cor(std::span<const double> freq, std::span<const double> beta,
                   Array3<const Complex8> gencor);

std::span<const Command> hyd_response_rows();

} // namespace quelor
