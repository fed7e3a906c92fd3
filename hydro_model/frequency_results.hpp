// The results that depend on the list of wave frequencies: their names, which of their dimensions
// counts frequencies, and taking a selection of frequencies out of them.
#pragma once

#include "kernel/dbfgen.hpp"

namespace quelor {

/// real (nmode,nmode,nfreq): added mass and hydrodynamic damping. Written by `hyd_analysis`.
inline constexpr std::string_view hyd_addm = ".hyd_addm";
inline constexpr std::string_view hyd_damp = ".hyd_damp";
/// complex (nmode,nbeta,nfreq): Froude-Krylov and diffraction forces for unit wave amplitude.
inline constexpr std::string_view hyd_fi = ".hyd_fi";
inline constexpr std::string_view hyd_fd = ".hyd_fd";
/// complex (np*ns,nfreq,nbeta): incoming and diffraction potentials of all images of the panels.
inline constexpr std::string_view hyd_potincm = ".hyd_potincm";
inline constexpr std::string_view hyd_potdiff = ".hyd_potdiff";
/// complex (np*ns,nfreq,nmode): radiation potentials for unit modal displacement.
inline constexpr std::string_view hyd_potrad = ".hyd_potrad";
/// complex (nmode,nfreq,nbeta): generalised coordinates for unit wave amplitude. Written by the
/// response commands.
inline constexpr std::string_view hyd_gencor = ".hyd_gencor";

/// A result and the dimension (1 to 3) that counts frequencies.
struct FrequencyResult {
    std::string_view name;
    int axis;
};
inline constexpr FrequencyResult analysis_coefficients[] = {
    {hyd_addm, 3}, {hyd_damp, 3}, {hyd_fd, 3}, {hyd_fi, 3}};
inline constexpr FrequencyResult analysis_potentials[] = {
    {hyd_potrad, 2}, {hyd_potincm, 2}, {hyd_potdiff, 2}};
inline constexpr FrequencyResult response_results[] = {{hyd_gencor, 2}, {".hyd_surf_disp", 2}};

/// Rebuilds an array so that entry i of dimension `axis` is entry indices[i] (0-based) of before,
/// by way of the array `work`.
void select_frequencies(std::string_view name, int axis, std::span<const std::size_t> indices,
                        std::string_view work);

/// Copies all entries of dimension `axis` of `from` over the first ones of `to`. False, and nothing
/// is copied, when the arrays differ in type or in another dimension, or `to` is shorter.
bool copy_leading_frequencies(const ArrayRef& from, const ArrayRef& to, int axis);

} // namespace quelor
