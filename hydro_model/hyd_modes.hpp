// Modes of motion: rigid modes of each body, flexible modes, and the hydrostatic stiffness.
//
// A mode enters the fluid problem through its normal and vertical displacement at the wet panels.
// Modes 1 to 6 belong to body 1, 7 to 12 to body 2, and so on: surge, sway, heave, roll, pitch,
// yaw of the body-fixed axes; the flexible modes follow the nmoder rigid ones.
#pragma once

#include "kernel/command.hpp"
#include "numeric/types.hpp"

#include <array>

namespace quelor {

// Written by `hyd_rigid_modes`, `hyd_flex_modes` and `hyd_genmodes`; nmode = nmoder + nmodef.
/// integer (nmode): symmetry class. Single symmetry: 1 symmetric, 2 antisymmetric. Double symmetry,
/// x-z plane / y-z plane: 1 S/A, 2 A/S, 3 S/S, 4 A/A. Zero without symmetry.
inline constexpr std::string_view hyd_modesym = ".hyd_modesym";
/// real (nmode,nmode): hydrostatic stiffness of the entire structure.
inline constexpr std::string_view hyd_kf = ".hyd_kf";
/// real (.hyd_#nodes,nmode): translations and rotations of the nodes, inertial axes.
inline constexpr std::string_view hyd_umx = ".hyd_umx";
inline constexpr std::string_view hyd_umy = ".hyd_umy";
inline constexpr std::string_view hyd_umz = ".hyd_umz";
inline constexpr std::string_view hyd_thx = ".hyd_thx";
inline constexpr std::string_view hyd_thy = ".hyd_thy";
inline constexpr std::string_view hyd_thz = ".hyd_thz";
inline constexpr std::array nodal_mode_arrays = {hyd_umx, hyd_umy, hyd_umz,
                                                 hyd_thx, hyd_thy, hyd_thz};
/// real (nmode,np): displacement of each wet panel along its normal (out of the fluid), and upward.
inline constexpr std::string_view hyd_un = ".hyd_un";
inline constexpr std::string_view hyd_uz = ".hyd_uz";

/// real (nmode,nmode): structural mass. Written by `hyd_rmass`, the user, `hyd_genmodes`.
inline constexpr std::string_view hyd_mstr = "hyd_mstr";
/// real (nmode,nmode): structural stiffness and viscous damping, made by the user.
inline constexpr std::string_view hyd_kstr = "hyd_kstr";
inline constexpr std::string_view hyd_cstr = "hyd_cstr";
/// real (nmode,nmode): input displacements from the generalised ones; made by the user.
inline constexpr std::string_view hyd_psi = "hyd_psi";

/// Views of the arrays of all modes.
struct ModeArrays {
    std::array<Matrix<double>, 6> nodal; ///< in the order of nodal_mode_arrays
    Matrix<double> un, uz, kf;
    std::span<std::int32_t> modesym;
};
struct ModeSizes {
    int nnodes, nmode, np;
};
void hyd_create_modes(const ModeSizes& sizes);
/// Finds them; an absent or misshapen one takes the fatal path.
ModeArrays hyd_find_modes(const ModeSizes& sizes);

/// Unit of `<project>.kf`, the stiffness matrices.
inline constexpr int unit_kf = 10;

std::span<const Command> hyd_rigid_modes_rows();
std::span<const Command> hyd_rmass_rows();
std::span<const Command> hyd_flex_modes_rows();
std::span<const Command> hyd_genmodes_rows();

} // namespace quelor
