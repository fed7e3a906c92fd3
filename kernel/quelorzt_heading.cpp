// The title of the program.

#include "kernel/help_print.hpp"
#include "kernel/project.hpp"

namespace quelor {

static constexpr std::string_view rows[] = {
    " \n\n* * * * * * * * * * * * Q U E L O R - Z T  v. 24.0* * * * * * * * * * * * *",
    "*                                                                         *",
    "*                     Hydrodynamic Response Analysis                      *",
    "*                                 with                                    *",
    "*              Integrated Structural Finite Element Analysis              *",
    "*                                                                         *",
    "*                              March 2024                                 *",
    "*                                                                         *",
    "*                          All rights reserved.                           *",
    "*                   Copyright 2024, QUELOR-ZT authors                     *",
    "*                 Hydroelastic analysis of floating structures            *",
    "*                  Questions: see the project's documents                 *",
    "*                                                                         *",
    "*                       Software is provided AS IS.                       *",
    "*                          Use at your own risk.                          *",
    "*                                                                         *",
    "* * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * *\n\n",
};

void print_banner(int unit) {
    constexpr int no_paging = 999999;
    int lines = 0;
    for (const auto row : rows)
        wrap_print(unit, row, lines, no_paging);
}

} // namespace quelor
