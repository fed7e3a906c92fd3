// Two-node trusses: `ntruss` with large displacements (slot 1) and the linear `truss` (slot 29).
// They differ by a row: names, and the kinematics of their state.
#pragma once

#include "fem/export_to_gmsh.hpp"

namespace quelor {

/// One type of truss, n elements of m materials.
struct TrussKind {
    int slot;
    std::string_view title; ///< upper-case name of the messages
    /// integer (4, n): node1, node2, material, print code. Written by input.
    std::string_view el;
    /// real (m, 4): modulus, area, density (mass per length), compression code: not 0 tension-only.
    std::string_view mp;
    /// real (n): unstretched length.
    std::string_view len;
    /// real (n): committed force, tension positive. Written by input and the commit of the state.
    std::string_view st;
    /// real (n): trial force.
    std::string_view trial;
    /// integer (n): 0 no offset, 1 at the start, 2 at the end, 3 at both.
    std::string_view ecc;
    /// real (6, n): offsets x, y, z of the start, then of the end.
    std::string_view ecc2;
    std::string_view missing;   ///< message of missing arrays
    std::string_view extension; ///< of the response file
    bool large_displacement;
};

inline constexpr TrussKind ntruss_kind{1,
                                       "NTRUSS",
                                       ".ntruss_el",
                                       ".ntruss_mp",
                                       ".ntruss_len",
                                       ".ntruss_st",
                                       "$ntruss_st",
                                       ".ntruss_ecc",
                                       ".ntruss_ecc2",
                                       " \n\tNTRUSS element information not found\n",
                                       ".ntr",
                                       true};
inline constexpr TrussKind truss_kind{29,
                                      "TRUSS",
                                      ".truss_el",
                                      ".truss_mp",
                                      ".truss_len",
                                      ".truss_st",
                                      "$truss_st",
                                      ".truss_ecc",
                                      ".truss_ecc2",
                                      " \n\tTRUSS element information not found\n",
                                      ".tr",
                                      false};

constexpr ElementTable drawn_truss(const TrussKind& kind) {
    return {.name = kind.el, .missing = kind.missing, .nodes = 2, .gmsh_type = gmsh_line};
}

void ntruss_element(Request request);
std::string_view ntruss_help();
std::string_view pntruss_help();
void truss_element(Request request);
std::string_view truss_help();
std::string_view ptruss_help();

} // namespace quelor
