// Exact integrals of 1/distance and its gradient over a flat panel and over the panel's images, and
// the sum of the three Rankine terms of the free-surface Green function.
//
// All lengths are in one unit; the Green functions use K times the dimensional length.
#pragma once

#include <array>

namespace quelor {

struct GreenPoint {
    double x, y, z;
};

/// A flat panel with what its integrals need of each edge. Edge k runs from corner k to corner k+1,
/// cyclic over `edges` corners (0-based).
struct FlatPanel {
    int edges = 0;                       ///< 4, or 3 for a triangle
    double size = 0;                     ///< longest edge; thresholds are relative to it
    GreenPoint centre = {};              ///< mean of the corners
    GreenPoint normal = {};              ///< (C3 - C1) x (C4 - C2), unit length
    std::array<double, 4> x{}, y{}, z{}; ///< corners
    std::array<double, 4> mx{}, my{},
        mz{};                  ///< unit vector in the plane, out of the panel; 0 if s = 0
    std::array<double, 4> s{}; ///< edge length; 0 below 1e-8 of the longest
};

/// Panel from its four coplanar corners. A triangle has corner 4 equal to corner 3. The corners go
/// clockwise as seen from the fluid, so that the normal points out of the fluid.
FlatPanel flat_panel(const std::array<GreenPoint, 4>& corners, bool triangle);

/// Reflection of a panel: x and y times their signs, z to sign * z - shift. The image in the still
/// water has sign -1, shift 0; the image in the bottom sign -1, shift twice the depth.
struct PanelImage {
    double sign_x = 1, sign_y = 1, sign = 1, shift = 0;
};

/// The integral of 1/distance over a panel and its gradient at the field point.
struct RankineIntegral {
    double value = 0, x = 0, y = 0, z = 0;
};

/// Integral of 1/distance over an image of a flat panel, and its gradient with respect to the field
/// point p.
///
/// A point in the plane of the panel, nearer than 1e-8 of its longest edge, takes the limit from
/// the side that the normal points away from, the fluid: the normal derivative is 2 pi inside,
/// borders included, and 0 outside. A panel that lies in its own mirror plane has the same limit
/// for the image. On an edge the gradient is infinite; the logarithm is then cut off at 1e-14 of
/// the size. Relative accuracy 1e-10 or better up to 1e4 panel sizes.   Source: [Hess 1967],
/// [Newman 1986], [Wilton 1984]; angle of an edge after [Van Oosterom 1983]
RankineIntegral ggnsing(const GreenPoint& p, const FlatPanel& panel, const PanelImage& image = {});

/// A source panel, all lengths times K.
struct SourcePanel {
    FlatPanel flat;
    GreenPoint centroid; ///< as stored, not reflected
    double area;
    double L; ///< the Rankine terms are exact within this distance of a centroid, else concentrated
};

/// Sum of the three Rankine terms 1/r, 1/r1 (image in z = 0) and 1/r2 (image in z = -depth) of a
/// source panel reflected by sign_x, sign_y. Each term is exact if the distance of the field point
/// from the centroid of its image is not above L. The bottom term is there in any depth.
RankineIntegral rankine_terms(const GreenPoint& p, const SourcePanel& source, double sign_x,
                              double sign_y, double depth);

} // namespace quelor
