// The element table: one row a slot. Nothing else in the program spells the names of the elements.
#include "elements/beam3d.hpp"
#include "elements/cable.hpp"
#include "elements/interface_elem.hpp"
#include "elements/nbeam2d.hpp"
#include "elements/truss.hpp"
#include "fem/elemutil.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/hyd_surf_panel.hpp"
#include "hydro_response/mooring_cable.hpp"

#include <algorithm>

namespace quelor {

// Types that are not built yet, but whose tables panels can be made of.
static constexpr ElementTable min3s_table{.name = ".min3s_el",
                                          .nodes = 3,
                                          .face_row = 9,
                                          .found = " \"wet\" min3s elements to convert to panels",
                                          .converted = "     Converted min3s elements"};
static constexpr ElementTable min5s_table{.name = ".min5s_el",
                                          .nodes = 4,
                                          .number_row = 9,
                                          .face_row = 8,
                                          .found = " \"wet\" min5s elements to convert to panels ",
                                          .converted = "     Converted min5s elements"};

/// A slot whose element is not built yet.
static constexpr ElementRow planned(int slot, std::string_view alias, std::string_view kind) {
    return {.slot = slot,
            .alias = alias,
            .kind = kind,
            .routine = nullptr,
            .help = {},
            .print_help = {},
            .table = {}};
}
static constexpr ElementRow unused(int slot) {
    return planned(slot, {}, "unused");
}

std::span<const ElementRow, element_slots> element_rows() {
    static const std::array<ElementRow, element_slots> rows{{
        {1, "ntruss", "large displacement truss", ntruss_element, ntruss_help(), pntruss_help(),
         drawn_truss(ntruss_kind)},
        planned(2, "spring", "nonlinear, elastic spring"),
        {3, "beam3d", "linear, 3-D beam", beam3d_element, beam3d_help(), pbeam3d_help(),
         beam3d_table},
        {4, "nbeam2d", "large displacement, elastic 2D beam", nbeam2d_element, nbeam2d_help(),
         pnbeam2d_help()},
        {5, "cable", "elastic catenary cable", cable_element, cable_help(), pcable_help(),
         cable_table},
        planned(6, "d2l3to9", "2-D, linear elastic"),
        planned(7, "d2ltri", "2-D, linear elastic triangular"),
        {8, "min3s", "Mindlin 3-D triangular, linear shell", nullptr, {}, {}, min3s_table},
        {9, "min5s", "Mindlin 3-D quadrilateral, linear shell", nullptr, {}, {}, min5s_table},
        planned(10, "min4t", "quadrilateral, linear, Mindlin shell"),
        planned(11, "d1l234", "1-D, linear, elastic"),
        planned(12, "smth1q", "1-D quadratic smoothing"),
        planned(13, "smth1c", "1-D cubic smoothing"),
        planned(14, "smth1l", "1-D discrete least squares smoothing"),
        planned(15, "smth2q", "2-D quadratic, triangular smoothing"),
        planned(16, "smth2l", "2-D discrete least squares smoothing"),
        planned(17, "smthspr", "2-D node SPR smoothing"),
        planned(18, "smthcn", "2-D, 3 to 9 node, continuous least squares smoothing"),
        planned(19, "pbridge", "elastic, 3-D pontoon bridge"),
        planned(20, "contact_spring", "nonlinear, contact spring"),
        planned(21, "cableL", "elastic cable for quasi-static analysis of marine cables"),
        planned(22, "biot1d234", "1-D element for linear, elastic consolidation"),
        planned(23, "d1l234v2", "1-D, linear, elastic, v.2"),
        planned(24, "biot2d3to9", "2-D element for linear, elastic consolidation"),
        planned(25, "min6", "linear, triangular Mindlin plate"),
        planned(26, "isomin6", "linear, triangular Mindlin plate"),
        planned(27, "iFEM2D", "2-D, 3 to 9 node element for nonlinear iFEM"),
        {28, "interface", "quadrilateral (and triangular) interface", interface_element,
         interface_help(), pinterface_help(), interface_table},
        {29, "truss", "linear truss", truss_element, truss_help(), ptruss_help(),
         drawn_truss(truss_kind)},
        planned(30, "stiff2n", "linear elastic 2-node stiffness"),
        planned(31, "shell3",
                "Mindlin 3-D triangular, linear shell with membrane and shear relaxations"),
        unused(32),
        unused(33),
        unused(34),
        unused(35),
        {36, "hyd_panel", "hydrodynamic panel", hyd_panel_element, hyd_panel_help(),
         phyd_panel_help()},
        {37, "hyd_mooring_line", "mooring line", hyd_mooring_line_element, hyd_mooring_line_help(),
         phyd_mooring_line_help()},
        {38, "hyd_surf_panel", "free surface panel", hyd_surf_panel_element, hyd_surf_panel_help(),
         phyd_surf_panel_help()},
        unused(39),
        unused(40),
    }};
    return rows;
}

std::span<const std::string_view, element_slots> element_aliases() {
    static const auto names = [] {
        std::array<std::string_view, element_slots> list;
        std::ranges::transform(element_rows(), list.begin(), &ElementRow::alias);
        return list;
    }();
    return names;
}

} // namespace quelor
