// Commands hyd_postresponse and hyd_postresponse_P. They read `.hyd_gencor`, the modes, the
// potentials and the panel numbers; all results go to files. hyd_postresponse_P deletes
// `.hyd_potincm` and `.hyd_potdiff`. Workspaces `$totpot`, `$hpr`, `$hyd_zdisp`.
#include "hydro_response/hyd_response_post.hpp"

#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/panel_tables.hpp"
#include "hydro_response/response_values.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace quelor {

namespace {

// --- options and files

constexpr int unit_pot = 61, unit_prs = 62, unit_hpr = 63, unit_dis = 64, unit_res = 65;

struct PostOptions {
    bool displacements, potential, pressure;
};

/// The files of the flags that are on, with their titles; closed at the end of the command.
class PostFiles {
public:
    explicit PostFiles(const PostOptions& options);
    ~PostFiles() {
        for (const int unit : {unit_pot, unit_prs, unit_hpr, unit_dis, unit_res})
            close_unit(unit);
    }
    PostFiles(const PostFiles&) = delete;
    PostFiles& operator=(const PostFiles&) = delete;
};

PostFiles::PostFiles(const PostOptions& options) {
    const ArrayRef ref = find_array(hyd_symmetry);
    const int symmetry = ref.is(type_integer) ? as_span<const std::int32_t>(ref)[0] : 0;
    const auto open_table = [&](int unit, std::string_view extension, const Format& title) {
        fortopen_ext(unit, extension, "UNKNOWN", "FORMATTED");
        write_unit(unit, title);
        write_prefix_explanation(unit, symmetry);
    };
    if (options.potential)
        open_table(
            unit_pot, ".pot",
            "(15x,'****** VELOCITY POTENTIAL ******', //, 5x, 'The real and imaginary parts of the potential at the panel centers.')");
    if (options.pressure) {
        open_table(
            unit_prs, ".prs",
            "(15x,'****** HYDRODYNAMIC PRESSURE ******', //, 5x, 'The real and imaginary parts of the pressures at the panel centers.')");
        open_table(
            unit_hpr, ".hpr",
            "(15x,'****** CHANGE IN HYDROSTATIC PRESSURE ******', //, 5x, 'The real and imaginary parts of the pressures at the panel centers.')");
    }
    if (options.displacements) {
        fortopen_ext(unit_dis, ".dis", "UNKNOWN", "FORMATTED");
        write_unit(unit_dis, "(//, 10x, 8('*'),' NODAL DISPLACEMENTS ', 8('*'), //)");
        fortopen_ext(unit_res, ".res", "UNKNOWN", "BINARY");
    }
}

/// What every step reads.
struct PostInputs {
    HydSize size; ///< nbeta is that of the generalised coordinates
    std::span<const double> freq, beta;
    Array3<const Complex8> gencor; ///< (nmode,nfreq,nbeta)
};

/// Nothing, after a message, when an array does not serve. The coordinates of a given load are for
/// one heading, 0; those with two dimensions are for the first.
std::optional<PostInputs> find_inputs(bool given_load) {
    static constexpr std::array no_heading{0.0};
    PostInputs in{.size = hyd_get_problem_size(), .freq = {}, .beta = {}, .gencor = {}};
    Inputs inputs;
    in.freq = inputs.vector<double>(hyd_freq, in.size.nfreq);
    in.beta = given_load ? std::span<const double>(no_heading)
                         : inputs.vector<double>(hyd_beta, in.size.nbeta);
    if (given_load || find_array(hyd_gencor).ndim() == 2) in.size.nbeta = 1;
    in.gencor = inputs.array3<Complex8>(hyd_gencor, in.size.nmode, in.size.nfreq, in.size.nbeta);
    if (!inputs) return {};
    in.beta = in.beta.first(as_size(in.size.nbeta));
    return in;
}

// --- steps

void hyd_post_displacements(const PostInputs& in) {
    Inputs inputs;
    std::array<Matrix<const double>, 6> modes;
    for (std::size_t i = 0; i < modes.size(); ++i)
        modes[i] = inputs.matrix<double>(nodal_mode_arrays[i], in.size.nnodes, in.size.nmode);
    if (!inputs) return;
    std::vector<Complex8> disp(6 * as_size(in.size.nnodes));
    for (int f = 1; f <= in.size.nfreq; ++f)
        for (int b = 1; b <= in.size.nbeta; ++b) {
            write_unit(
                unit_dis,
                "(//,2x,'Wave frequency =',t35,f10.4, ' rad/sec', /,2x,'Wave heading =',t35,f10.4, ' degrees',//)",
                {in.freq[nth(f)], in.beta[nth(b)] * degrees});
            write_unit(
                unit_dis,
                "('**** Nodal Displacements ***',//, '  Node', 10x, 'Ux', 10x, 'Uy', 10x, 'Uz', 9x, 'Uxx', 9x, 'Uyy', 9x, 'Uzz')");
            nodal_displacements(modes, in.gencor.slice(b).col(f), disp);
            for (int n = 1; n <= in.size.nnodes; ++n) {
                const auto u = std::span(disp).subspan(6 * nth(n), 6);
                FormatItems items;
                items.add(n);
                for (const Complex8 component : u)
                    items.add(component.real());
                for (const Complex8 component : u)
                    items.add(component.imag());
                write_unit(unit_dis, "(i6, 1p6e12.4, /, 6x, 6e12.4)", items);
            }
            stream_write(unit_res, in.freq.subspan(nth(f), 1));
            stream_write(unit_res, in.beta.subspan(nth(b), 1));
            stream_write(unit_res, std::span<const Complex8>(disp));
        }
}

void write_wave_table(int unit, const PostInputs& in, int ifreq, const PanelRows& rows,
                      Matrix<const Complex8> table) {
    write_unit(
        unit,
        "(//, 3x, 'Wave Frequency =', f10.4, ' rad/sec', //, '    Panel', 11x, 'Wave Headings')",
        {in.freq[nth(ifreq)]});
    write_heading_row(unit, rows, in.beta);
    write_panel_rows(unit, rows, table);
}

/// The symmetry classes of the modes; empty, after a message, when they do not serve.
std::span<const std::int32_t> find_classes(Inputs& inputs, const HydSize& size) {
    const auto modesym = inputs.vector<std::int32_t>(hyd_modesym, size.nmode);
    for (const int k : modesym)
        if (k < 1 || k > image_count(size.symmetry)) {
            print_both(" \n\tA symmetry code in .hyd_modesym is out of range\n");
            return {};
        }
    return modesym;
}

void hyd_post_hydrostatic(const PostInputs& in, const PanelRows& rows) {
    write_both("(/, 'Calculating hydrostatic pressure')");
    const int np = static_cast<int>(rows.rmap.size()), images = image_count(in.size.symmetry);
    Inputs inputs;
    auto uz = inputs.matrix<double>(hyd_uz, in.size.nmode, np);
    const bool reflected = in.size.symmetry != 0;
    const auto modesym =
        reflected ? find_classes(inputs, in.size) : std::span<const std::int32_t>{};
    if (!inputs || (reflected && modesym.empty()))
        return print_both(" \nHydrostatic pressures cannot be calculated\n");
    std::optional<Temporary<double>> expanded;
    if (reflected) {
        expanded.emplace("$hyd_zdisp", in.size.nmode, np * images);
        expand_vertical_displacement(in.size.symmetry, modesym, uz, expanded->view);
        uz = expanded->view;
    }
    std::vector<double> weights(as_size(in.size.nmode) * 2 * as_size(in.size.nbeta));
    const Temporary<Complex8> hpr("$hpr", in.size.nbeta, np * images);
    for (int f = 1; f <= in.size.nfreq; ++f) {
        hydrostatic_change(in.size.rho * in.size.grav, uz, in.gencor, f,
                           {weights.data(), in.size.nmode, 2 * in.size.nbeta}, hpr.view);
        write_wave_table(unit_hpr, in, f, rows, hpr.view);
    }
}

struct Potentials {
    Array3<const Complex8> incoming, diffraction, radiation;
};

/// Those that exist; nothing, after a message, when there is none or one does not serve.
std::optional<Potentials> find_potentials(const PostInputs& in, int npanels) {
    Inputs inputs;
    const auto find = [&](std::string_view name, int n, std::string_view found) {
        if (!array_exists(name)) return Array3<const Complex8>{};
        const auto potential = inputs.array3<Complex8>(name, npanels, in.size.nfreq, n);
        if (potential) print_both(found);
        return potential;
    };
    const Potentials potentials{
        find(hyd_potincm, in.size.nbeta, " \n\t\tIncoming potential found."),
        find(hyd_potdiff, in.size.nbeta, " \n\t\tDiffraction potential found. "),
        find(hyd_potrad, in.size.nmode, " \n\t\tRadiation potential found.")};
    if (!inputs)
        print_both(
            " \n\tPotentials and pressures will not be printed; they need the potentials of one hyd_analysis.\n");
    else if (!potentials.incoming && !potentials.diffraction && !potentials.radiation)
        print_both(
            " \n\tWarning: No potential arrays could not be found; potentials and pressures will not be printed.\n");
    else
        return potentials;
    return {};
}

void hyd_post_potentials(const PostInputs& in, const PanelRows& rows, const PostOptions& options) {
    const int npanels = static_cast<int>(rows.rmap.size()) * image_count(in.size.symmetry);
    const auto potentials = find_potentials(in, npanels);
    if (!potentials) return;
    const Temporary<Complex8> totpot("$totpot", in.size.nbeta, npanels);
    for (int f = 1; f <= in.size.nfreq; ++f) {
        std::ranges::fill(totpot.view.all(), Complex8{});
        if (potentials->radiation)
            radiation_potential(potentials->radiation, in.gencor, f, totpot.view);
        if (potentials->incoming) add_potential(potentials->incoming, f, totpot.view);
        if (potentials->diffraction) add_potential(potentials->diffraction, f, totpot.view);
        if (options.potential) write_wave_table(unit_pot, in, f, rows, totpot.view);
        if (!options.pressure) continue;
        potential_to_pressure(in.freq[nth(f)], in.size.rho, totpot.view.all());
        write_wave_table(unit_prs, in, f, rows, totpot.view);
    }
    print_both(" \nPotentials and/or pressures written to file");
}

// --- the commands

/// With a given load there are neither incoming nor diffracted waves.
void post_response(bool given_load) {
    const PostOptions options{has_flag(" -disp"), has_flag(" -potential"), has_flag(" -pressure")};
    const PostFiles files(options);
    if (!array_exists(hyd_gencor)) {
        print_both(" \nGeneralized coordinates not found\n");
        if (given_load) return;
        shutdown();
    }
    const auto in = find_inputs(given_load);
    if (!in) return;
    if (options.displacements) hyd_post_displacements(*in);
    if (!options.pressure && !options.potential) return;
    make_panel_rmap();
    const PanelRows rows{in->size.symmetry,
                         as_span<const std::int32_t>(find_array(hyd_panel_rmap))};
    if (options.pressure) hyd_post_hydrostatic(*in, rows);
    if (given_load)
        for (const auto name : {hyd_potincm, hyd_potdiff})
            delete_array(name);
    hyd_post_potentials(*in, rows, options);
}

void cmd_hyd_postresponse(std::string_view) {
    if (hyd_check_green_function()) post_response(false);
}

void cmd_hyd_postresponse_P(std::string_view) {
    post_response(true);
}

constexpr Command rows[] = {
    {.words = {"hyd_postresponse"},
     .run = cmd_hyd_postresponse,
     .summary = "displacements, potentials and pressures",
     .help =
         "Command Syntax\n\thyd_postresponse [-disp] [-potential] [-pressure]\n\n"
         "Command to determine nodal displacements, velocity potentials and pressures from the "
         "generalized coordinates of hyd_analysis_response or hyd_analysis_response_drag. The "
         "results are written to files; without a flag nothing is written.\n\n"
         "-disp\n\tDisplacements and rotations of the nodes of hyd_nodes, real and imaginary "
         "parts, to project_name.dis, and to the binary file project_name.res, which holds for "
         "each frequency, and within it for each heading: the frequency (rad/sec) and the heading "
         "(radians) as 8-byte reals, and 6 complex numbers of 16 bytes for each node.\n"
         "-potential\n\tTotal velocity potential at the panel centers, to project_name.pot.\n"
         "-pressure\n\tTotal hydrodynamic pressure at the panel centers, to project_name.prs, and "
         "the change of the hydrostatic pressure by the vertical displacement of the panels, to "
         "project_name.hpr.\n\n"
         "The time factor is exp(i omega t). With symmetry the tables list the panels of the mesh "
         "and their reflections. Potentials are those that hyd_analysis has stored: it must not "
         "be run with -no_pot for -potential and -pressure.\n\n"
         "Example\n\thyd_postresponse -disp -pressure\n\n"
         "See Also\n\thyd_analysis, hyd_analysis_response, hyd_modal_pressure, "
         "hyd_postresponse_P\n"},
    {.words = {"hyd_postresponse_P"},
     .run = cmd_hyd_postresponse_P,
     .summary = "the same after hyd_analysis_response_P",
     .help =
         "Command Syntax\n\thyd_postresponse_P [-disp] [-potential] [-pressure]\n\n"
         "Command to determine nodal displacements, velocity potentials and pressures from the "
         "generalized coordinates of hyd_analysis_response_P. Flags and files are those of "
         "hyd_postresponse, with one heading of 0 degrees.\n\n"
         "Only the radiation potential counts. With -potential or -pressure the potentials of the "
         "waves, .hyd_potincm and .hyd_potdiff, are deleted from the database for good; if they "
         "are still needed, save the database or copy the arrays first.\n\n"
         "Example\n\thyd_postresponse_P -disp -pressure\n\n"
         "See Also\n\thyd_analysis_response_P, hyd_postresponse\n"},
};

} // namespace

std::span<const Command> hyd_response_post_rows() {
    return rows;
}

} // namespace quelor
