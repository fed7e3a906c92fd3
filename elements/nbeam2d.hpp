// `nbeam2d`, the plane beam with large displacements (slot 4).
#pragma once

#include "fem/elemutil.hpp"

namespace quelor {

inline constexpr int nbeam2d_slot = 4;

// n elements of m materials. Written by the input.
/// real (m, 13): columns as in Nbeam2dColumn.
inline constexpr std::string_view nbeam2d_mp = ".nbeam2d_mp";
/// integer (n, 4): node1, node2, material, print code.
inline constexpr std::string_view nbeam2d_el = ".nbeam2d_el";
/// real (n): original length.
inline constexpr std::string_view nbeam2d_len = ".nbeam2d_len";
/// real (n, 4): committed axial force, shear force, moment at node 1, moment at node 2. Also
/// written by the commit of the state.
inline constexpr std::string_view nbeam2d_st = ".nbeam2d_st";
/// real (n, 4): trial state.
inline constexpr std::string_view nbeam2d_trial = "$nbeam2d_st";
/// integer (n): plane: 1 X-Y, 2 X-Z, 3 Y-Z.
inline constexpr std::string_view nbeam2d_dir = ".nbeam2d_dir";

/// Columns of `.nbeam2d_mp`.
enum Nbeam2dColumn {
    nbeam_e = 1,
    nbeam_g,
    nbeam_weight, ///< wbar: weight per unit length
    nbeam_area,
    nbeam_moi,
    nbeam_as,
    nbeam_mx, ///< mass per unit length along the chord and across it
    nbeam_my,
    nbeam_rotary, ///< mI
    nbeam_cmx,    ///< added mass and drag per unit length, kept for wave loads
    nbeam_cmy,
    nbeam_cdx,
    nbeam_cdy
};
inline constexpr int nbeam2d_columns = 13;

void nbeam2d_element(Request request);
std::string_view nbeam2d_help();
std::string_view pnbeam2d_help();

} // namespace quelor
