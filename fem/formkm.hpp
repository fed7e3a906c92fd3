// The global matrices and load patterns of the model, formed by a walk over the elements.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

// Matrices are profile vectors of length `.kstr_size` over `.kdiag_loc`, or, when their type is 1,
// diagonal vectors of length `.#eqs`. Written by `form_k`, `form_m`, `form_c` and the solvers.
/// real (.kstr_size): stiffness.
inline constexpr std::string_view kstr = ".kstr";
/// integer: 0 when `.kstr` is the stiffness, 1 when it is its factors.
inline constexpr std::string_view k_status = ".k_status";
/// real: mass; integer: 0 profile, 1 diagonal.
inline constexpr std::string_view mstr = ".mstr";
inline constexpr std::string_view mstr_type = ".mstr_type";
/// real: damping; integer: 0 profile, 1 diagonal.
inline constexpr std::string_view cstr = ".cstr";
inline constexpr std::string_view cstr_type = ".cstr_type";
/// real (.#eqs, patterns): load patterns. Written by `form_k`.
inline constexpr std::string_view load_pat = ".load_pat";
/// real (.#eqs, cases): displacements. Written by `lsolve`, `nsolve`.
inline constexpr std::string_view disp = ".disp";
/// real (.#eqs): displacement increment within a nonlinear step.
inline constexpr std::string_view ddisp = "$ddisp";
/// real (.#eqs): internal forces of the last state pass. Written by `state` and the solvers.
inline constexpr std::string_view f_internal = ".f_internal";

/// Who asks for a matrix: the user's command, which makes the arrays, or a solver, which refills
/// them and takes the fatal path where one is missing.
enum class FormMode { command = 0, group_codes = 1, linear = 2 };

/// Stiffness and load patterns. As a command it takes -#eqs, -stiff, -loads from the record;
/// group_codes gives each element type its group code, linear the linear stiffness of all types.
void form_stiffness(FormMode mode);
/// Mass; as a command it takes -diag from the record, otherwise `.mstr` is refilled as it is.
void form_mass(FormMode mode);
/// Damping; likewise.
void form_damping(FormMode mode);

std::span<const Command> formkm_rows();

} // namespace quelor
