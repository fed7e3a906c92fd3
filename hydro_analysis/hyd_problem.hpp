// What the analysis and the response commands read of the model: sizes, control values, and views
// of the panel and mode arrays. A missing array is named and the program takes the fatal path.
#pragma once

#include "hydro_analysis/coefficients.hpp"
#include "hydro_analysis/incoming_wave.hpp"
#include "numeric/panel_geometry.hpp"

#include <numbers>

namespace quelor {

/// Degrees in a radian.
inline constexpr double degrees = 180.0 / std::numbers::pi;

/// The control values that several commands fetch together.
struct HydSize {
    int symmetry, nnodes, npanels, np; ///< npanels: defined panels; np: wet panels
    int nmoder, nmodef, nmode;
    int nbeta, nfreq;
    double gauge, depth, deep_water, grav, rho;
};

/// Reads the sizes; np is counted from `.hyd_panel_#map`. Stops when `.hyd_wave` or the map is
/// missing.
HydSize hyd_get_problem_size();

/// Views of the model for one analysis; valid until one of the arrays is created again.
struct HydModel {
    HydSize size;
    std::span<const double> freq, beta; ///< rad/s; radians
    PanelMesh panels;
    Matrix<const double> un; ///< (nmode,np)
    std::span<const std::int32_t> modesym;
};
HydModel hyd_get_model();

} // namespace quelor
