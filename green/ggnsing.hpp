// Exact integrals of 1/distance and its gradient over a panel and over the panel's images, and the
// sum of the three Rankine terms of the free-surface Green function.
//
// All lengths are in one unit; the Green functions use K times the dimensional length.
#pragma once

#include "numeric/panel_geometry.hpp"

namespace quelor {

/// A panel as a source, with what its integrals need of each edge. Edge k runs from corner k to
/// corner k+1, cyclic over `edges` corners (0-based).
struct SourcePanel {
    int edges = 0;   ///< 4, or 3 for a triangle
    double size = 0; ///< longest edge; thresholds are relative to it
    Vec3 middle{};   ///< mean of the corners
    Vec3 normal{};   ///< (C3 - C1) x (C4 - C2), unit length, out of the fluid
    Corners corners{};
    Corners outward{}; ///< unit vector of each edge in the plane, out of the panel; 0 if s = 0
    std::array<double, 4> length{}; ///< of each edge; 0 below 1e-8 of the longest
    Vec3 centroid{};
    double area = 0;
    double L =
        0; ///< the Rankine terms are exact within this distance of a centroid, else concentrated
};

/// The panel with its lengths times K; L = gauge sqrt(area).
SourcePanel source_panel(const Panel& panel, double K, double gauge);

/// The integral of 1/distance over a panel and its gradient at the field point.
struct RankineIntegral {
    double value = 0;
    Vec3 gradient{};
};

/// Integral of 1/distance over an image of a panel, and its gradient with respect to the field
/// point p. The image has its x and y times those of the reflection, and z at sign z - shift: sign
/// -1, shift 0 is the image in the still water, sign -1, shift twice the depth that in the bottom.
///
/// A point in the plane of the panel, nearer than 1e-8 of its longest edge, takes the limit from
/// the side that the normal points away from, the fluid: the normal derivative is 2 pi inside,
/// borders included, and 0 outside. A panel that lies in its own mirror plane has the same limit
/// for the image. On an edge the gradient is infinite; the logarithm is then cut off at 1e-14 of
/// the size. Relative accuracy 1e-10 or better up to 1e4 panel sizes.   Source: [Hess 1967],
/// [Newman 1986], [Wilton 1984]; angle of an edge after [Van Oosterom 1983]
RankineIntegral ggnsing(const Vec3& p, const SourcePanel& panel, Reflection reflection = {},
                        double sign = 1, double shift = 0);

/// Sum of the three Rankine terms 1/r, 1/r1 (image in z = 0) and 1/r2 (image in z = -depth) of a
/// reflected source panel. Each term is exact if the distance of the field point from the centroid
/// of its image is not above L. The bottom term is there in any depth.
RankineIntegral rankine_terms(const Vec3& p, const SourcePanel& source, Reflection reflection,
                              double depth);

} // namespace quelor
