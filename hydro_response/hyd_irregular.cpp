// Command hyd_irregular. Reads `.hyd_wave_spectra`, `.hyd_freq`, `.hyd_beta`, `.hyd_grav` and an
// array of transfer functions; writes an array of extreme responses and a text file. Workspaces
// `$domega`, `$Hspectrum`, `$rpec`.
#include "hydro_response/hyd_irregular.hpp"

#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_response/hyd_tf.hpp"
#include "hydro_response/hyd_wave_spectra.hpp"
#include "hydro_response/wave_spectra.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <string>

namespace quelor {

namespace {

constexpr int unit_extremes = 92;

/// What the sums go over; the views stay valid as the result is built beside every array.
struct SeaStates {
    Matrix<const double> spectra;
    std::span<const double> omega, beta;
    Array3<const Complex8> tf; ///< (nfreq,nbeta,ncomp)
};

/// False after a message when an input is absent or does not fit the transfer functions.
bool find_inputs(const ArrayRef& tf, std::string_view name, SeaStates& sea) {
    Inputs inputs;
    sea.beta = inputs.vector<double>(hyd_beta);
    sea.omega = inputs.vector<double>(hyd_freq);
    if (!inputs) return false;
    if (!tf.is(type_complex8) || tf.rows() != static_cast<int>(sea.omega.size()) ||
        tf.cols() != static_cast<int>(sea.beta.size()) || tf.ndim() > 3) {
        print_both(
            " \n\tArray " + std::string(name) +
            " must be complex, frequencies by headings by components (.hyd_freq, .hyd_beta)\n");
        return false;
    }
    sea.tf = as_array3<const Complex8>(tf);
    return check_frequency_order(sea.omega);
}

void calculate_extremes(const SeaStates& sea, Array3<double> result) {
    const int n = static_cast<int>(sea.omega.size());
    const Temporary<double> domega("$domega", n, 0), spectrum("$Hspectrum", n, 0),
        work("$rpec", n, 0);
    const auto steps = domega.view.all(), s = spectrum.view.all();
    frequency_steps(sea.omega, steps);
    for (int i = 1; i <= result.n1; ++i) {
        evaluate_wave_spectrum(sea.spectra, i, sea.omega, s);
        if (!all_finite(s)) write_both("(4x, 'Spectrum is not finite: sea state', i6)", {i});
        for (int c = 1; c <= result.n3; ++c)
            for (int b = 1; b <= result.n2; ++b)
                result(i, b, c) =
                    extreme_response(sea.tf.slice(c).col(b), s, steps, work.view.all());
    }
}

void write_extremes(std::span<const double> beta, Array3<const double> result) {
    const std::string width = std::to_string(result.n2);
    const std::string head = "(//,'Component =', i5, //, ' Sea State',1x," + width + "f14.2)";
    const std::string row = "(i6,5x,1p," + width + "e14.5)";
    const Format head_format = Format::from_text(head), row_format = Format::from_text(row);
    for (int c = 1; c <= result.n3; ++c) {
        FormatItems items;
        items.add(c);
        for (const double angle : beta)
            items.add(angle * degrees);
        write_unit(unit_extremes, head_format, items);
        for (int s = 1; s <= result.n1; ++s) {
            FormatItems values;
            values.add(s);
            for (int b = 1; b <= result.n2; ++b)
                values.add(result(s, b, c));
            write_unit(unit_extremes, row_format, values);
        }
    }
}

/// From the creation of the result, zeroed, to its table; true when it has been computed.
bool respond_to_seas(SeaStates& sea, const ArrayRef& tf, std::string_view source,
                     std::string_view work) {
    const auto result = create_array3<double>(work, sea.spectra.cols, tf.cols(), tf.dim(3));
    if (!find_inputs(tf, source, sea)) return false;
    const TableFile file = open_table_file(unit_extremes);
    if (file == TableFile::not_named)
        print_both(" \nEither extension or filename must be specified\n");
    if (file != TableFile::opened) return false;
    write_unit(unit_extremes, "(1x, 8('*'), ' SHORT-TERM EXTREME RESPONSE ', 8('*'))");
    calculate_extremes(sea, result);
    write_extremes(sea.beta, {result.data, result.n1, result.n2, result.n3});
    close_unit(unit_extremes);
    return true;
}

void cmd_hyd_irregular(std::string_view) {
    SeaStates sea;
    sea.spectra = find_wave_spectra(" \nWave spectra array .hyd_wave_spectra not found\n");
    if (!sea.spectra) return;
    const std::string source(get_arg(1)), target(get_arg(2));
    if (is_blank(source)) return print_both(" \nName of transfer function array not specified\n");
    const ArrayRef tf = find_array(source);
    if (!tf) return not_found(source);
    if (is_blank(target))
        return print_both(" \nName of extreme response array (arg2) not specified\n");
    // The target may be one of the inputs, which then stays when the command ends early.
    const std::string inputs[] = {source, std::string(hyd_wave_spectra), std::string(hyd_freq),
                                  std::string(hyd_beta), std::string(hyd_grav)};
    const bool is_input = std::ranges::find(inputs, target) != std::end(inputs);
    Result result(target, target);
    if (!respond_to_seas(sea, tf, source, result.name()) && is_input) return;
    result.place();
}

constexpr Command rows[] = {
    {.words = {"hyd_irregular"},
     .run = cmd_hyd_irregular,
     .summary = "short-term extreme responses",
     .help =
         "Command Syntax\n\thyd_irregular arg1  arg2  [ext=extension]  [file=filename]\n\n"
         "Command to determine the extreme responses in irregular seas from transfer functions "
         "and the spectra of hyd_wave_spectra. The extreme is 3.72 times the root mean square of "
         "the response, the most probable largest amplitude of 1000 waves; the mean square is the "
         "integral over the frequencies of |tf|^2 S by the trapezoidal rule, so that it is as good "
         "as the list of frequencies is fine and wide. The frequencies must rise or fall "
         "throughout. Waves of a sea state have one heading.\n\n"
         "arg1\n\tName of the transfer functions, complex (nfreq,nbeta,ncomp), as hyd_tf makes "
         "them.\n"
         "arg2\n\tName of the result, real (nspectra,nbeta,ncomp), which is created. It may be "
         "arg1.\n"
         "ext=\n\tThe table goes to the file project_name.extension.\n"
         "file=\n\tThe table goes to this file; looked at only if ext is not given. One of the "
         "two is required.\n\n"
         "Example\n\thyd_tf\n\thyd_irregular hyd_tf extremes ext=ext\n\n"
         "See Also\n\thyd_wave_spectra, phyd_wave_spectra, hyd_tf\n"},
};

} // namespace

double extreme_response(std::span<const Complex8> tf, std::span<const double> s,
                        std::span<const double> domega, std::span<double> work) {
    std::ranges::transform(tf, s, work.begin(),
                           [](const Complex8& h, double S) { return std::norm(h) * S; });
    return maximum_of_thousand * std::sqrt(trapezoid(domega, work));
}

std::span<const Command> hyd_irregular_rows() {
    return rows;
}

} // namespace quelor
