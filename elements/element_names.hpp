// The names of the 40 element slots: nothing else in the program spells them.
#pragma once

#include <array>
#include <string_view>

namespace quelor {

inline constexpr int element_slots = 40;

/// User's name of the element of slot i (at index i - 1); empty for an unused slot. The print
/// command has a p in front.
// clang-format off
inline constexpr std::array<std::string_view, element_slots> element_names = {
    "ntruss", "spring", "beam3d", "nbeam2d", "cable", // 1 to 5
    "d2l3to9", "d2ltri", "min3s", "min5s", "min4t", // 6 to 10
    "d1l234", "smth1q", "smth1c", "smth1l", "smth2q", // 11 to 15
    "smth2l", "smthspr", "smthcn", "pbridge", "contact_spring", // 16 to 20
    "cableL", "biot1d234", "d1l234v2", "biot2d3to9", "min6", // 21 to 25
    "isomin6", "iFEM2D", "interface", "truss", "stiff2n", // 26 to 30
    "shell3", "", "", "", "", // 31 to 35
    "hyd_panel", "hyd_mooring_line", "hyd_surf_panel", "", "", // 36 to 40
};
// clang-format on

} // namespace quelor
