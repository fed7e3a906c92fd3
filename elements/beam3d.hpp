// `beam3d`, the linear two-node beam in space (slot 3).
#pragma once

#include "fem/export_to_gmsh.hpp"
#include "numeric/vectors.hpp"

namespace quelor {

inline constexpr int beam3d_slot = 3;

// n elements of m materials; written by the input and by the generation of a cylinder.
/// real (m, 19): columns as in Beam3dColumn.
inline constexpr std::string_view beam3d_mp = ".beam3d_mp";
/// integer (6, n): node1, node2, material, print code, node3 (or -1, -2, -3: parallel to the
/// negative global X, Y, Z axis), ID number.
inline constexpr std::string_view beam3d_el = ".beam3d_el";
/// real (n): length.
inline constexpr std::string_view beam3d_len = ".beam3d_len";
/// real (12, n): committed end forces in local axes: axial force, Vy, Vz, torque, My, Mz at node 1,
/// the same at node 2; row 7 is the tension. Also written by the commit of the state.
inline constexpr std::string_view beam3d_st = ".beam3d_st";
/// real (12, n): trial state.
inline constexpr std::string_view beam3d_trial = "$beam3d_st";
/// integer: 1 with the geometric stiffness, otherwise 0.
inline constexpr std::string_view beam3d_kg = ".beam3d_kg";

/// Columns of `.beam3d_mp`; column 3 is not used.
enum Beam3dColumn {
    beam_e = 1,
    beam_g = 2,
    beam_area = 4,
    beam_j = 5,
    beam_iy = 6,
    beam_iz = 7,
    beam_asy = 8,
    beam_asz = 9,
    beam_mi = 10,     ///< mIxx, mIyy, mIzz: rotary inertia per unit length
    beam_mass = 13,   ///< mx, my, mz: mass per unit length
    beam_cdense = 16, ///< as typed, -1 when it was not
    beam_damping = 17 ///< cx, cy, cz: damping per unit length
};
inline constexpr int beam3d_columns = 19;
inline constexpr std::string_view beam3d_missing = " \n\tBEAM3D element information not found\n";
inline constexpr ElementTable beam3d_table{.name = beam3d_el,
                                           .missing = beam3d_missing,
                                           .nodes = 2,
                                           .gmsh_type = gmsh_line,
                                           .number_row = 6};
inline constexpr std::string_view beam3d_none = " \n\tNo BEAM3D element information found\n";
inline constexpr std::string_view beam3d_bad_material =
    " \n\tBEAM3D material number out of range\n";

/// The input tension fills both ends.
void set_beam_tension(Matrix<double> st, int e, double tension);
/// Checks nodes, lengths and third nodes of the elements from `first` on, sets their lengths, and
/// stores the group code. The fatal path when one is not possible.
void finish_beams(int first);
/// `beam3d -cylinder`: beams along an axis, a skin of `interface` elements around them, and the
/// rigid links between their nodes.
void generate_cylinder();

void beam3d_element(Request request);
std::string_view beam3d_help();
std::string_view pbeam3d_help();

} // namespace quelor
