// Command hyd_analysis_response, and the routines that the other response commands share with it.
//
// Equation of motion in generalised coordinates, time factor exp(+i omega t):
//     [-omega^2 (Ms + A) + i omega (Cs + B) + Ks (1 + i loss) + Kf] q = F
// with the structural loss factor twice the hysteretic damping ratio.
// Source: [Newman 1994]
#pragma once

#include "hydro_analysis/hyd_problem.hpp"
#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"

#include <optional>

namespace quelor {

/// complex (nmode,nmode) and (nmode): factors and solution of the last solve.
inline constexpr std::string_view hyd_dynk = ".hyd_dynk";
inline constexpr std::string_view hyd_rhs = ".hyd_rhs";

/// False, after a message, when `.grnfun` selects a Green function other than 0; absent, it becomes
/// 0.
bool hyd_check_green_function();

/// False, after a message, when the mass, damping or stiffness of the structure holds other than
/// numbers.
bool check_finite_structure();

struct ResponseOptions {
    bool residual = false, symmetrize = false, eq = false;
};
ResponseOptions hyd_response_options();

inline constexpr int unit_cor = 90;
/// `<project>.cor`, open while the object lives; it begins with its title.
class CorFile {
public:
    CorFile();
    ~CorFile();
    CorFile(const CorFile&) = delete;
    CorFile& operator=(const CorFile&) = delete;
};

/// The summary of a response command: its title, the counts of nodes and modes, the damping; and,
/// behind the lists of headings and frequencies, whether the coefficients are symmetrised.
void write_summary_head(const HydSize& size, double hdamp);
void write_symmetrize_line(bool symmetrize);
/// The lines that follow the course of a response.
void write_frequency_line(int ifreq, double omega);
void write_heading_line(int ibeta, double beta);

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

/// What the fluid adds to the equations of motion, as it is stored.
struct FluidMatrices {
    Array3<const double> added_mass, damping; ///< (nmode,nmode,nfreq)
    Matrix<const double> hydrostatic;         ///< (nmode,nmode)
    double hdamp;                             ///< hysteretic damping ratio of the structure
};
/// Exciting forces for unit wave amplitude, (nmode,nbeta,nfreq).
struct WaveForces {
    Array3<const Complex8> froude_krylov, diffraction;
};
/// load := amplitude (Froude-Krylov + diffraction force)
void wave_load(const WaveForces& forces, int ibeta, int ifreq, double amplitude,
               std::span<Complex8> load);

/// The equations of motion in the arrays of the store, one frequency after the other. Made when
/// `.hyd_dynk`, `.hyd_rhs`, `.hyd_gencor` and the structural matrices stand; none of them may be
/// created again while it lives. Workspaces `$add_mass`, `$add_damp`, `$hyd_rindx`, and with
/// -residual `$hyd_dynkcp`, `$hyd_rhscp`.
class MotionEquations {
public:
    MotionEquations(const FluidMatrices& fluid, const ResponseOptions& options);

    /// Copies added mass and damping of a frequency, symmetrised when that is asked for. The
    /// copies may be changed before they are used.
    void take_frequency(int ifreq);
    Matrix<double> added_mass() const { return mass_.view; }
    Matrix<double> damping() const { return damping_.view; }
    /// Assembles the dynamic stiffness and factors it. A singular matrix is not reported.
    void factor(double omega);

    /// The load, and behind `solve` the solution: `.hyd_rhs`.
    std::span<Complex8> rhs() const { return rhs_; }
    /// Solves for the load in place, reports the residual when that is asked for, and stores the
    /// solution at (ifreq, ibeta) of `.hyd_gencor`.
    void solve(int ifreq, int ibeta);

private:
    FluidMatrices fluid_;
    bool symmetrize_;
    Temporary<double> mass_, damping_;
    Temporary<std::int32_t> pivot_;
    std::optional<Temporary<Complex8>> unfactored_, load_;
    MotionMatrices motion_;
    Matrix<Complex8> dynk_;
    std::span<Complex8> rhs_;
    Array3<Complex8> gencor_;
};

/// Table of generalised coordinates to the `.cor` file.
void hyd_write_cor(std::span<const double> freq, std::span<const double> beta,
                   Array3<const Complex8> gencor);

std::span<const Command> hyd_response_rows();

} // namespace quelor
