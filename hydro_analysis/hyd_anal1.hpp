// The radiation and diffraction problems of one frequency: influence matrices, source strengths and
// class potentials, and what they add to the results.
#pragma once

#include "green/finred_f.hpp"
#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_analysis/hyd_reports.hpp"

#include <vector>

namespace quelor {

/// Work arrays of one symmetry class; src and prad have a column for each of its modes.
struct ClassArrays {
    Matrix<Complex4> alpha, beta; ///< (np,np) potential, normal derivative; beta holds its factors
    Matrix<std::int32_t> pivot;   ///< (np,1)
    Matrix<Complex4> src;         ///< (np,modes) source strengths
    Matrix<Complex8> prad;        ///< (np,modes) potentials for unit normal velocity
    Matrix<Complex8> pd;          ///< (np,1) diffraction potential
    int modes = 0;
};

/// Results of all frequencies.
struct AnalysisResults {
    Array3<double> addm, damp; ///< (nmode,nmode,nfreq)
    Array3<Complex8> fi, fd;   ///< (nmode,nbeta,nfreq)
    /// (np*ns,nfreq,...), empty with -no_pot; by class until hyd_build_potentials
    Array3<Complex8> potincm, potdiff, potrad;
};

struct Analysis {
    HydModel model;
    std::vector<ClassArrays> classes;
    std::vector<std::int32_t> modeloc; ///< column of each mode within its class
    Matrix<Complex8> pic;              ///< (np,ns) class sums of the incoming wave
    Matrix<Complex8> ph;               ///< (np,ns) normal velocity at each image
    AnalysisResults results;
    double iter_tol = 0; ///< above 0: iterative solver
    bool write_sources = false;
    DepthCache depth_cache; ///< finite depth: what depends on K depth alone
    AnalysisTimers timers;
};

/// Bytes of the arrays that create_analysis makes.
double analysis_array_bytes(const HydSize& size, bool keep_potentials);
/// Creates the work and result arrays. Stops when the classes do not hold every mode once.
Analysis create_analysis(const HydModel& model, bool keep_potentials);
/// Deletes the work arrays; with `keep_class_potentials` those of the last frequency stay.
void delete_analysis_arrays(bool keep_class_potentials);

/// One frequency of the list: k and K = omega^2/g.
struct WaveOfFrequency {
    int index; ///< 1-based
    double omega, k, knu;
};
/// Forms and factors the influence matrices.
void hyd_form_coefficients(Analysis& analysis, const WaveOfFrequency& wave);
/// Radiation sources and potentials of all modes, added mass and damping.
void hyd_solve_radiation(Analysis& analysis, const WaveOfFrequency& wave);
/// Incoming wave and Froude-Krylov forces; diffraction potential and forces, heading ibeta.
void hyd_incoming_forces(Analysis& analysis, const WaveOfFrequency& wave, int ibeta);
void hyd_diffraction_forces(Analysis& analysis, const WaveOfFrequency& wave, int ibeta);
/// The potentials on all images from those of the classes, which the steps before have left in
/// their places, from frequency `first` on.
void hyd_build_potentials(Analysis& analysis, int first);

} // namespace quelor
