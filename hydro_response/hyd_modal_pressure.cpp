// Command hyd_modal_pressure. Reads `.hyd_potincm`, `.hyd_potdiff`, `.hyd_potrad`, `.hyd_freq`,
// `.hyd_beta`, the panel numbers; writes a file. Workspaces `$exciting`, `$modal`.
#include "hydro_response/hyd_modal_pressure.hpp"

#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_response/panel_tables.hpp"
#include "hydro_response/response_values.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

#include <algorithm>
#include <string>

namespace quelor {

namespace {

constexpr int unit_prs2 = 66;
constexpr int most_digits = 17; ///< of a double

int read_digits() {
    std::int32_t digits = 5;
    get_int_par(" digits=", digits);
    return digits < 1 ? 5 : std::min(digits, most_digits);
}

/// Rows of the pressures that a sum of potentials makes.
void write_pressures(const PanelRows& rows, int ifreq, double omega, double rho,
                     std::initializer_list<Array3<const Complex8>> potentials,
                     Matrix<Complex8> table) {
    std::ranges::fill(table.all(), Complex8{});
    for (const auto& potential : potentials)
        add_potential(potential, ifreq, table);
    potential_to_pressure(omega, rho, table.all());
    write_panel_rows(unit_prs2, rows, table);
}

void cmd_hyd_modal_pressure(std::string_view) {
    const int digits = read_digits();
    const HydSize s = hyd_get_problem_size();
    Inputs inputs;
    const auto freq = inputs.vector<double>(hyd_freq, s.nfreq);
    if (!inputs) return;
    make_panel_rmap();
    const PanelRows rows{s.symmetry, as_span<const std::int32_t>(find_array(hyd_panel_rmap)),
                         digits};
    const int npanels = static_cast<int>(rows.rmap.size()) * image_count(s.symmetry);
    if (fortopen_ext(unit_prs2, ".prs2", "UNKNOWN", "FORMATTED") != 0) return;
    write_unit(
        unit_prs2,
        "(15x,'****** EXCITING AND MODAL HYDRODYNAMIC PRESSURES ******', //, 5x, 'The real and imaginary parts of the pressures at the panel centers.')");
    write_prefix_explanation(unit_prs2, s.symmetry);
    Inputs waves, motion;
    const auto beta = waves.vector<double>(hyd_beta, s.nbeta);
    const auto incoming = waves.array3<Complex8>(hyd_potincm, npanels, s.nfreq, s.nbeta);
    const auto diffraction = waves.array3<Complex8>(hyd_potdiff, npanels, s.nfreq, s.nbeta);
    const auto radiation = motion.array3<Complex8>(hyd_potrad, npanels, s.nfreq, s.nmode);
    const Temporary<Complex8> exciting("$exciting", s.nbeta, npanels),
        modal("$modal", s.nmode, npanels);
    for (int f = 1; f <= s.nfreq; ++f) {
        const double omega = freq[nth(f)];
        if (waves) {
            write_unit(
                unit_prs2,
                "(//, 3x, 'Wave Frequency =', f10.4, ' rad/sec', //, '    Wave Exciting Pressures (incoming + diffraction)', //, '    Panel', 11x, 'Wave Headings')",
                {omega});
            write_heading_row(unit_prs2, rows, beta);
            write_pressures(rows, f, omega, s.rho, {incoming, diffraction}, exciting.view);
        }
        if (motion) {
            write_unit(
                unit_prs2,
                "(//, '    Modal Pressures (radiation wave)', //, '    Panel', 13x, 'Mode Number')");
            write_mode_row(unit_prs2, rows, s.nmode);
            write_pressures(rows, f, omega, s.rho, {radiation}, modal.view);
        }
    }
    close_unit(unit_prs2);
}

constexpr Command rows[] = {
    {.words = {"hyd_modal_pressure"},
     .run = cmd_hyd_modal_pressure,
     .summary = "pressures of the waves and of each mode",
     .help =
         "Command Syntax\n\thyd_modal_pressure [digits=?]\n\n"
         "Command to write the hydrodynamic pressures at the panel centers to the file "
         "project_name.prs2, for each frequency: those of the incoming and diffracted waves for "
         "each heading, and those of the radiated waves for a unit displacement in each mode. The "
         "potentials of hyd_analysis must have been stored (no -no_pot); a part whose potentials "
         "are missing is left out. No response is needed.\n\n"
         "digits\n\tNumber of significant digits, at most 17; default 5.\n\n"
         "Example\n\thyd_modal_pressure digits=8\n\n"
         "See Also\n\thyd_analysis, hyd_postresponse\n"},
};

} // namespace

std::span<const Command> hyd_modal_pressure_rows() {
    return rows;
}

} // namespace quelor
