// Generation of cylinders and cones: rings of nodes around an axis, and the beams along the axis or
// around the rings.
#pragma once

#include "elements/local_axes.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace quelor {

/// The keys p1, p2, R and CxL of a cylinder.
struct Cylinder {
    Vec3 p1{}, p2{};
    std::array<double, 2> radius{};         ///< at p1, at p2
    std::array<std::int32_t, 2> segments{}; ///< around, along

    int around() const { return segments[0]; }
    int along() const { return segments[1]; }
    int rings() const { return segments[1] + 1; }
    Vec3 center(int ring) const; ///< ring 0 to along()
};
Cylinder read_cylinder();
/// True when the cylinder can be made; otherwise a message. spine: with nodes on its axis; others:
/// how many nodes are wanted beside those of rings and axis.
bool cylinder_is_possible(const Cylinder& c, bool spine, std::int64_t others);
/// x along the axis, z toward node 3 as for a beam; a zero matrix, after a message, when node3 does
/// not give it.
LocalAxes cylinder_axes(const Cylinder& c, std::int32_t node3);

/// Nodes of all rings, ring after ring; each starts on local z and turns by the right hand about x.
class Rings {
public:
    Rings(const Cylinder& c, const LocalAxes& axes);
    std::int32_t node(int ring, int j) const {
        return nodes_[static_cast<std::size_t>(ring) * around_ +
                      static_cast<std::size_t>(j) % around_];
    }
    /// Corners of the quadrilateral at segment j behind ring k: node 1 to node 2 in the direction
    /// of the axis, z to the inside.
    std::array<std::int32_t, 4> quad(int k, int j) const {
        return {node(k, j), node(k + 1, j), node(k + 1, j + 1), node(k, j + 1)};
    }

private:
    std::size_t around_;
    std::vector<std::int32_t> nodes_;
};

/// What beams along the axis, or around the rings, have in common.
struct CylinderBeams {
    std::int32_t mat = 0, node3 = 0, print = 0;
    double tension = 0, tension_last = 0;
};
/// The fatal path, with its message, when `beam3d` has not been set up with such a material.
void require_beam_material(std::int32_t mat);
/// Nodes along the axis, found or made.
std::vector<std::int32_t> spine_nodes(const Cylinder& c);
/// Beams along the axis and rigid links of the rings to their nodes. The tension goes from
/// `tension` to `tension_last` by linear steps.
void append_spine(const Cylinder& c, std::span<const std::int32_t> spine, const Rings& rings,
                  const CylinderBeams& beams);
/// Beams around every `step`-th ring.
void append_ring_beams(const Cylinder& c, const Rings& rings, int step, const CylinderBeams& beams);

} // namespace quelor
