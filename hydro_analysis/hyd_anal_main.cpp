// Command hyd_analysis: for every wave frequency the radiation problem of all modes, for every
// heading the diffraction problem; coefficients, forces and potentials go to the store and the
// report files.
//
// Reads the model arrays of hyd_problem.hpp; writes `.hyd_addm`, `.hyd_damp`, `.hyd_fi`, `.hyd_fd`,
// `.hyd_potincm`, `.hyd_potdiff`, `.hyd_potrad`, `.hyd_twnk`, `.hyd_debug`, `.hyd_iter_tol`,
// `.grnfun`.
#include "hydro_analysis/hyd_anal_main.hpp"

#include "hydro_analysis/hyd_anal1.hpp"
#include "hydro_analysis/hyd_merge.hpp"
#include "hydro_analysis/hyd_reports.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/waven.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/memory.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace quelor {

namespace {

constexpr int most_added = 1000;

struct AnalysisOptions {
    std::int32_t added = 0;
    bool periods = false, no_pot = false, source = false, debug = false;
};

AnalysisOptions read_options() {
    AnalysisOptions o;
    get_int_par("#added_freqs=", o.added);
    o.periods = has_flag(" -periods");
    o.no_pot = has_flag(" -no_pot");
    o.debug = has_flag(" -debug");
    create_int_scalar(".hyd_debug", o.debug ? 1 : 0);
    if (has_flag(" -double_p")) {
        print_both(
            " \n\tERROR: DOUBLE PRECISION OPTION IS NO LONGER SUPPORTED.\n\tTHE PARAMETER IS KEPT IN CASE SUPPORT IS ADDED IN THE FUTURE.\n");
        return o;
    }
    double tol = 0;
    get_real_par(" tol=", tol);
    create_real_scalar(hyd_iter_tol, tol);
    o.source = has_flag(" -source");
    return o;
}

/// The added frequencies in rad/s; empty when none are asked for.
std::vector<double> read_added_frequencies(const AnalysisOptions& options) {
    if (options.added > most_added) {
        print_both(" \n\tA maximum of 1000 frequencies can be added at one time\n");
        shutdown_with(" \n\tExecution terminating.\n");
    }
    std::vector<double> values(as_size(std::max(options.added, 0)));
    if (values.empty()) return values;
    read_real_record(options.periods ? "Enter wave periods (sec)\n"
                                     : "Enter wave frequencies, rad/sec\n",
                     values);
    for (double& v : values) {
        if (!(v > 0) || !std::isfinite(v)) {
            print_both(" \n\tPeriods and frequencies must be greater than 0\n");
            shutdown_with(" \n\tProgram is shutting down\n");
        }
        if (options.periods) v = 2 * std::numbers::pi / v;
    }
    return values;
}

double held_bytes(std::span<const FrequencyResult> results) {
    double sum = 0;
    for (const auto& result : results)
        if (const ArrayRef ref = find_array(result.name))
            sum += static_cast<double>(array_byte_size(ref.type, ref.dims));
    return sum;
}

/// Bytes of the results of an earlier analysis whose place new ones take.
double replaced_bytes(const AnalysisOptions& options) {
    if (options.added > 0) return 0; // they stay until the merge
    return held_bytes(analysis_coefficients) +
           (options.no_pot ? 0 : held_bytes(analysis_potentials));
}

/// Whether all arrays of the analysis fit into the memory that is left; a message when they do not.
bool memory_suffices(HydSize size, const AnalysisOptions& options) {
    constexpr double bytes_beside = 1e6, bytes_a_panel = 400; // for the influence matrices
    size.nfreq += std::max(options.added, 0);
    const double wanted = analysis_array_bytes(size, !options.no_pot) + bytes_beside +
                          bytes_a_panel * size.np - replaced_bytes(options);
    const auto left = static_cast<double>(available_memory());
    if (wanted <= left) return true;
    write_both(
        "(/, '      The analysis of', i9, ' wet panels needs', f12.2, ' GB of memory;', f10.2, ' GB are left')",
        {size.np, wanted / 1e9, left / 1e9});
    print_both(" \n\tCommand terminating; symmetry, fewer panels or -no_pot take less memory\n");
    return false;
}

void check_model(const HydSize& size) {
    if (size.symmetry < 0 || size.symmetry > 2)
        shutdown_with(" \n\tsymmetry should be 0, 1 or 2\n");
    if (size.gauge < 2 || size.gauge > 4)
        print_both(" \n\tWARNING: a reasonable value for gauge is between 2 and 4\n");
}

WaveOfFrequency wave_of_frequency(const HydModel& model, int ifreq) {
    const double omega = model.freq[nth(ifreq)];
    const WaveNumber wave = waven(omega, model.size.depth, model.size.grav);
    if (!wave.converged) print_both(" \n\tWARNING: dispersion relation failed-WAVEN\n");
    write_both(
        "10(/, '    Wave frequency ', i6, /, '        Omega = ', f8.4,' rad/sec', 4x, 'Period = ', f6.2,' sec', /, '        Wave number k =', 1pe12.4,  4x, 'k * depth =', 0pf10.3)",
        {ifreq, omega, 2 * std::numbers::pi / omega, wave.k, wave.k * model.size.depth});
    return {ifreq, omega, wave.k, wave.knu};
}

void analyse_frequency(Analysis& analysis, const WaveOfFrequency& wave) {
    write_both("('    Calculating potential and influence coefficients')");
    hyd_form_coefficients(analysis, wave);
    write_both("('    Calculating radiation potential')");
    hyd_solve_radiation(analysis, wave);
    for (int ibeta = 1; ibeta <= analysis.model.size.nbeta; ++ibeta) {
        const double beta = analysis.model.beta[nth(ibeta)];
        write_both("15(/, 6x, 'Wave heading', i3, ' at ', f7.2,' degrees')",
                   {ibeta, beta * 180 / std::numbers::pi});
        write_both("('    Calculating incoming potential and forces')");
        hyd_incoming_forces(analysis, wave, ibeta);
        write_both("('    Calculating diffraction potential and forces')");
        hyd_diffraction_forces(analysis, wave, ibeta);
    }
}

void open_source_files() {
    fortopen_ext(unit_rad, ".rad", "UNKNOWN", "UNFORMATTED");
    fortopen_ext(unit_dif, ".dif", "UNKNOWN", "UNFORMATTED");
}

/// The frequency loop from `first` on, and the finishing step.
void run_analysis(const HydModel& model, const AnalysisOptions& options, int first) {
    const double start = cpu_seconds();
    const auto twnk = as_matrix<double>(require_array(hyd_twnk, type_real, {model.size.nfreq, 2}));
    for (int i = 1; i <= model.size.nfreq; ++i)
        twnk(i, 1) = 2 * std::numbers::pi / model.freq[nth(i)];
    print_trace_title();
    if (options.source) open_source_files();
    Analysis analysis = create_analysis(model, !options.no_pot);
    analysis.write_sources = options.source;
    for (int ifreq = first; ifreq <= model.size.nfreq; ++ifreq) {
        const WaveOfFrequency wave = wave_of_frequency(model, ifreq);
        twnk(ifreq, 2) = wave.k;
        analyse_frequency(analysis, wave);
        checkpoint();
    }
    close_unit(unit_rad);
    close_unit(unit_dif);
    delete_analysis_arrays(options.debug);
    if (options.no_pot && !options.debug) // those of an earlier analysis no longer fit
        for (const auto& potential : analysis_potentials)
            delete_array(potential.name);
    if (!options.no_pot) {
        print_both(" \n\tCalculating velocity potential\n");
        hyd_build_potentials(analysis, first);
    }
    write_times(analysis.timers, cpu_seconds() - start);
}

void cmd_hyd_analysis(std::string_view) {
    create_int_scalar(grnfun, 0);
    const AnalysisOptions options = read_options();
    const std::vector<double> added = read_added_frequencies(options);
    if (array_exists(hyd_coordaxs) && !memory_suffices(hyd_get_problem_size(), options)) return;
    if (!prepare_source_files(options.source, !added.empty())) return;
    open_coefficient_files();
    if (!array_exists(hyd_coordaxs)) {
        close_coefficient_files();
        return not_found(hyd_coordaxs);
    }
    const int first = added.empty() ? 1 : add_frequencies(added, !options.no_pot);
    const HydModel model = hyd_get_model();
    check_model(model.size);
    hyd_problem_summary(model.size, first, model.freq, model.beta);
    run_analysis(model, options, first);
    if (!added.empty()) {
        merge_frequencies(first - 1);
        const int classes = image_count(model.size.symmetry);
        if (options.source)
            merge_source_files(require_vector<double>(hyd_freq), classes,
                               classes * model.size.nbeta);
    }
    if (!options.no_pot) make_panel_rmap();
    write_coefficient_reports(model.size, model.beta);
    close_coefficient_files();
}

constexpr Command rows[] = {
    {.words = {"hyd_analysis"},
     .run = cmd_hyd_analysis,
     .summary = "added mass, damping and wave exciting forces",
     .help =
         "Command Syntax\n\thyd_analysis [#added_freqs=? -periods] [-no_pot] [-source]\n\n"
         "Command to determine the added mass, damping, and wave excitation forces for the "
         "frequencies and headings of hyd_wave.\n\n"
         "The hydrodynamic analysis is based on linear potential theory. The Green function method "
         "with constant source strengths over each fluid panel is used to solve for the "
         "hydrodynamic variables. All calculations are carried out in double precision, except the "
         "Green functions are evaluated to single precision accuracy and the solutions of the "
         "equations to obtain the radiation and diffraction potentials are carried out in single "
         "precision arithmetic. Different integration techniques are used to compute the surface "
         "integrals involving the Green function and its derivative, depending on whether the "
         "distance between the field point and the source point is less than or greater than the "
         "characteristic length of the panel.\n\n"
         "#added_freqs=n\n\tn frequencies (at most 1000) are added to a previous analysis. Their "
         "values follow on the next record, in rad/sec. The default is 0: a new analysis.\n"
         "-periods\n\tThe added values are wave periods in seconds.\n"
         "-no_pot\n\tThe velocity potentials are not stored.\n"
         "-source\n\tThe source strengths are written to the files project_name.rad and "
         "project_name.dif. The option must be given on all hyd_analysis commands or on none.\n\n"
         "Created\n\t.hyd_addm, .hyd_damp (nmode,nmode,nfreq), .hyd_fi, .hyd_fd "
         "(nmode,nbeta,nfreq), and, unless -no_pot is given, the potentials .hyd_potincm, "
         ".hyd_potdiff, .hyd_potrad of the entire structure. The reports are in the files "
         "project_name.adm, .adp, .exf and .ot2. Additional, temporary, arrays are also created "
         "and deleted. They all begin with either \".hyd_\" or \"$\". To avoid a collision in array "
         "names, the user should not create any other array with these prefixes.\n\n"
         "Example\n\thyd_analysis #added_freqs=2 -periods\n\t8.5 9.5\n\n"
         "See Also\n\thyd_parameters, hyd_wave, hyd_panel, hyd_rigid_modes, "
         "hyd_analysis_response\n"},
};

} // namespace

std::span<const Command> hyd_analysis_rows() {
    return rows;
}

} // namespace quelor
