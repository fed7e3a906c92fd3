// Control parameters, coordinate systems and waves: the commands that open a hydrodynamic project.
#pragma once

#include "hydro_model/waven.hpp"
#include "kernel/command.hpp"

#include <string_view>

namespace quelor {

// Scalars written by `hyd_parameters`.
/// integer: 0 no symmetry; 1 the mesh covers y > 0; 2 it covers x > 0, y > 0.
inline constexpr std::string_view hyd_symmetry = ".hyd_symmetry";
/// integer: number of user-defined modes, 6 a body when bodies are counted; of flexible modes.
inline constexpr std::string_view hyd_nmoder = ".hyd_nmoder";
inline constexpr std::string_view hyd_nmodef = ".hyd_nmodef";
/// integer: number of bodies; below 1 means one body.
inline constexpr std::string_view hyd_nbodies = ".hyd_nbodies";
/// real: water depth.
inline constexpr std::string_view hyd_depth = ".hyd_depth";
/// real: k depth above which water is treated as deep.
inline constexpr std::string_view hyd_deep_water = ".hyd_deep_water";
/// real: factor of the characteristic panel length that bounds the near field.
inline constexpr std::string_view hyd_gauge = ".hyd_gauge";
/// real: acceleration of gravity; mass density of the fluid.
inline constexpr std::string_view hyd_grav = ".hyd_grav";
inline constexpr std::string_view hyd_fluid_rho = ".hyd_fluid_rho";
/// real: structural hysteretic damping as a fraction.
inline constexpr std::string_view hyd_hysdamp = ".hyd_hysdamp";

/// real (11, number of bodies), a column a body; rows as in BodyAxes. Written by `hyd_coordaxs`.
inline constexpr std::string_view hyd_coordaxs = ".hyd_coordaxs";

// Written by `hyd_wave`, extended by `hyd_analysis` when it adds frequencies.
/// integer (2): numbers of wave headings and of wave frequencies.
inline constexpr std::string_view hyd_wave = ".hyd_wave";
/// real (nbeta): headings from the +x axis, radians.
inline constexpr std::string_view hyd_beta = ".hyd_beta";
/// real (nfreq): frequencies, rad/s.
inline constexpr std::string_view hyd_freq = ".hyd_freq";
/// real (nfreq,2): wave period and wave number; zero until `hyd_analysis` fills it.
inline constexpr std::string_view hyd_twnk = ".hyd_twnk";

/// A column of `.hyd_coordaxs`. Lengths in model units, angles in degrees.
struct BodyAxes {
    double origin[3];  ///< origin of the input coordinate system, inertial coordinates
    double angles[3];  ///< its Bryant angles
    double xb, yb, zb; ///< origin of the body-fixed system, inertial coordinates
    double theta;      ///< from the inertial x axis to the body x axis, counterclockwise
    double zcg;        ///< body-fixed z of the centre of gravity
};
inline constexpr int axes_rows = 11;

/// The axes of a body; the fatal path when `.hyd_coordaxs` is absent or has no such column.
BodyAxes hyd_body_axes(int body);
/// Most modes: (nmode,nmode) has less than 2^31 elements. Most headings and frequencies: more than
/// any sequence of hyd_wave and added frequencies gives.
inline constexpr int most_modes = 46340, most_waves_held = 1'000'000;
/// Number of bodies, at least 1. A number that hyd_parameters would not have stored takes the fatal
/// path, here and below.
int hyd_body_count();
/// nmoder + nmodef, at least 1.
int hyd_mode_count();
/// `.hyd_wave`: numbers of headings and of frequencies, at least 1.
struct WaveCounts {
    int nbeta, nfreq;
};
WaveCounts hyd_wave_counts();

/// waven with the warning on both units when the iteration does not converge.
WaveNumber hyd_wave_number(double omega, double depth, double grav);

std::span<const Command> hyd_input_rows(); // hyd_input.cpp
std::span<const Command> hyd_wave_rows();  // hyd_wave.cpp

} // namespace quelor
