// Paragraphs of help that the types of shells share.
#pragma once

#include "elements/element_family.hpp"

namespace quelor {

/// The paragraphs as one text, with the type's name for "@" and its default of C_s for "%".
inline std::string shell_text(std::initializer_list<std::string_view> parts, std::string_view name,
                              std::string_view c_s = "0.5") {
    std::string all;
    for (const auto part : parts)
        all += part;
    return replaced(replaced(all, "@", name), "%", c_s);
}

inline constexpr std::string_view shell_axes_text =
    "Local axes, which are also those of the material: x from node 1 to node 2, y in the plane of the "
    "vertices toward node 3, z by the right hand.\n\n";

inline constexpr std::string_view shell_material_syntax =
    "m=matl  e=E1,E2,E3  g=G12,G23,G13  nu=nu12,nu23,nu13  t=thickness  [mass=mass]";

inline constexpr std::string_view shell_materials_text =
    "m\n\tOn the command line the number of materials, each of which takes one material record; on "
    "such a record, where it must come first, its number, 1 to m.\n\n"
    "e, g, nu\n\tYoung's moduli, shear moduli and Poisson's ratios of an orthotropic material; nu12 "
    "is the contraction along 2 under tension along 1, and so on. Axes 1 and 2 lie in the surface. A "
    "material that is not elastic ends the program; the database is saved first.\n\n"
    "t\n\tThickness.\n\n"
    "mass\n\tMass per unit of volume, for form_m and for gravity. Default is 0. There is no rotary "
    "inertia.\n\n";

inline constexpr std::string_view shell_c_s_text =
    "C_s\n\tRelaxation of the shear stiffness, by which thin shells do not lock: the factor is "
    "1 / (C_s S / B + 1), with S and B the sums of the diagonal terms of shear and bending for the "
    "rotations. 0 leaves it out. Default is %; a negative value stands for it.\n\n";

inline constexpr std::string_view shell_c_m_text =
    "C_m\n\tThe same for the membrane stiffness of curved elements; flat ones have none. Default is "
    "1; a negative value stands for it.\n\n";

inline constexpr std::string_view shell_tbending_text =
    "tbending\n\tThickness of the bending stiffness. Default is t.\n\n";

inline constexpr std::string_view shell_drill_text =
    "drill\n\tStiffness of the rotations about the normal, which the element does not have, as a part "
    "of its least other diagonal term. Default is 1.e-5. They are springs to the ground: a part that "
    "may turn freely about its normal is held by them. See that a tenth of drill gives the same "
    "result, or restrain the rotation where all elements at a node lie in one plane. As they carry no "
    "moment from element to element, a thick shell that is twisted becomes too soft with elements smaller "
    "than its thickness: there min4t with gamma of 0.01 G12 is better.\n\n";

inline constexpr std::string_view shell_fdensity_text =
    "fdensity\n\tWeight of a unit of volume of the water, for -kf. Default is 0, which gives no "
    "hydrostatic stiffness.\n\n";

inline constexpr std::string_view shell_flags_text =
    "-pressure\n\tThe pressures of nodal_pressure, in all their patterns, load the wet faces.\n\n"
    "-kg\n\tWith the geometric stiffness of Nx, Ny, Nxy in the state, which is zero until state or a "
    "solution has filled it: form_k, lsolve, state, then form_k again. lsolve with k=0 leaves it "
    "out.\n\n"
    "-kf\n\tWith the geometric and the hydrostatic stiffness of the wet faces, by the pressures of "
    "column 1 of .nodal_pressure. Needs -pressure. A face whose pressures are all 0 has none. "
    "nodal_pressure must come before form_k.\n\n";

inline constexpr std::string_view shell_gravity_text =
    "Where a real array gravity(4) exists (load pattern, gx, gy, gz), form_k adds the weight of all "
    "elements with mass to that pattern.\n\n";

inline constexpr std::string_view shell_weak_text =
    "In its surface the element has constant strain, so bending in the plane and curved shells need "
    "fine meshes: compare with a mesh of half the size. The family forms no internal forces, so it "
    "takes no part in nsolve.\n\n";

inline constexpr std::string_view shell_results_text =
    "Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy per unit length: tension is positive, and a positive moment "
    "pulls the +z face.";

inline constexpr std::string_view shell_iso_text =
    "iso\n\t0 (the default): the same in all directions, by E1, G12 (as typed) and nu12; otherwise "
    "orthotropic along the local axes.\n\n";

inline constexpr std::string_view shell_local_text =
    "local\n\tAxes of the results: 0 (the default) those of the element, 1 those of each "
    "triangle.\n\n";

inline constexpr std::string_view shell_n_text =
    "n\n\tOn the command line the number of elements; on a record the number of its element. A "
    "number out of range, or one that is never entered, ends the program; the database is saved "
    "first. A blank line ends the input.\n\n";

inline constexpr std::string_view shell_mat_text =
    "mat, print\n\tMaterial number; print code of the results: 0 printed (the default), otherwise "
    "not.\n\n";

inline constexpr std::string_view shell_q_text =
    "q, pat\n\tOn the command line q names a real vector of pressures by node number; on a record it "
    "holds the pressures at the nodes of its elements, which win over the vector. They are positive "
    "along local +z and loads of the pattern pat (default 1).\n\n";

inline constexpr std::string_view shell_generation_text =
    "gen, inc\n\tNumber of further elements, n+1, n+2, ..., and the increments of their nodes from "
    "one to the next; a node that is 0 stays 0. Defaults are 0.\n\n"
    "gen_2d, inc_2d, inc_el\n\tNumber of further such sequences, the increments of nodes from one to "
    "the next, and that of the element numbers (default gen+1).\n\n";

inline constexpr std::string_view shell_face_text =
    "face\n\t0 dry (the default), 1 wet on the side of +z, -1 on the other. Pressure pushes against "
    "the wet face.\n\n";

inline constexpr std::string_view shell_print_text =
    "Command Syntax\n\tp@\n\nPrints the materials and elements of @: nodes, material, print code and "
    "what else the input gives.\n\nExample:\n\tp@\n\n"
    "The resultants of a solution are printed by pstate and presponse on the output file; "
    "presponse -file writes no file of them.\n\n";

} // namespace quelor
