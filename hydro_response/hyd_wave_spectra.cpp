// Commands hyd_wave_spectra, phyd_wave_spectra. Write and read `.hyd_wave_spectra`; the print
// command reads `.hyd_freq` and `.hyd_grav`. Workspaces `$domega`, `$Hspectrum`, `$work`.
#include "hydro_response/hyd_wave_spectra.hpp"

#include "hydro_model/hyd_input.hpp"
#include "hydro_response/wave_spectra.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace quelor {

namespace {

// --- input

/// Code of the type of this name; 0 when there is none.
int spectrum_type(std::string_view name) {
    const auto found = std::ranges::find(spectrum_names, name);
    return found == spectrum_names.end() ? 0 : static_cast<int>(found - spectrum_names.begin()) + 1;
}

/// The parameters of JONSWAP from the record: alpha follows from the fetch, or is that of a fully
/// developed sea.   Source: [Hasselmann 1973]
void read_jonswap(std::span<double> column) {
    double Xo = 0;
    column[2] = 3.3;
    get_real_par(" To=", column[1]);
    get_real_par(" gamma=", column[2]);
    get_real_par(" Xo=", Xo);
    column[3] = 0.07;
    column[4] = 0.09;
    column[5] = Xo != 0 ? 0.076 * std::pow(Xo, -0.22) : 0.0081;
}

/// Rows 2 to 6 of a column from the record.
void read_parameters(int type, std::span<double> column) {
    switch (type) {
    case 1:
        get_real_par(" Hs=", column[1]);
        return get_real_par(" To=", column[2]);
    case 2:
        get_real_par(" Hs=", column[1]);
        return get_real_par(" Tv=", column[2]);
    case 3:
        return read_jonswap(column);
    case 4:
        column[2] = 1;
        get_real_par(" Hs=", column[1]);
        return get_real_par(" k=", column[2]);
    case 5:
        return get_real_par(" U=", column[1]);
    case 6:
        return get_real_par(" Hs=", column[1]);
    default:
        get_real_par(" Xo=", column[1]);
        get_real_par(" U*=", column[2]);
        return get_real_par(" To=", column[3]);
    }
}

void cmd_hyd_wave_spectra(std::string_view) {
    std::int32_t nspectra = 0;
    get_int_par(" #=", nspectra);
    if (nspectra < 1) return print_both(" \nInvalid number of spectra\n");
    const auto spectra = create_matrix<double>(hyd_wave_spectra, spectrum_rows, nspectra);
    for (;;) {
        std::int32_t n = 0;
        std::string name;
        next_record("Enter wave spectra: n=?  name=?\n");
        get_int_par("n=", n);
        if (n == 0) return;
        if (n < 0 || n > nspectra) return print_both(" \nInvalid sprectrum number\n");
        get_char_par(" name=", name, 21);
        const int type = spectrum_type(name);
        if (type == 0) return print_both(" \nInvalid sprectrum name\n");
        const auto column = spectra.col(n);
        std::ranges::fill(column, 0.0);
        column[0] = type;
        read_parameters(type, column);
    }
}

// --- print

/// The 20 characters of a type's name.
std::string padded_name(int type) {
    std::string name(spectrum_names[nth(type)]);
    name.resize(20, ' ');
    return name;
}

void list_spectrum(int type, std::span<const double> p) {
    const std::string name = padded_name(type);
    switch (type) {
    case 1:
        return write_both("(a, 3x, 'Hs =', f8.3, 4x, 'To =', f8.3)", {name, p[0], p[1]});
    case 2:
        return write_both("(a, 4x, 'Hs =', f8.3, 4x, 'Tv =', f8.3)", {name, p[0], p[1]});
    case 3:
        return write_both(
            "(a, 4x, 'To =', f8.3, 4x, 'gamma =', f5.2, 4x, 'tao_a =', f5.2, 4x, 'tao_b =', f5.2, 4x, 'alpha =', f7.4)",
            {name, p[0], p[1], p[2], p[3], p[4]});
    case 4:
        return write_both("(a, 4x, 'Hs =', f8.3, 4x, 'k =', f8.3)", {name, p[0], p[1]});
    case 5:
        return write_both("(a, 4x, 'U =', f8.3)", {name, p[0]});
    case 6:
        return write_both("(a, 4x, 'Hs =', f8.3)", {name, p[0]});
    default:
        return write_both("(a, 4x, 'Xo =', f8.3, 4x, 'U* =', f8.3, 4x, 'To =', f8.3)",
                          {name, p[0], p[1], p[2]});
    }
}

/// One line a column, up to the first whose type is none of the seven.
void list_spectra(Matrix<const double> spectra) {
    write_both("(//, 'Wave Spectra')");
    for (int i = 1; i <= spectra.cols; ++i) {
        const int type = nearest_int(spectra(1, i));
        if (!is_spectrum_type(type))
            return write_both("(/, 'Spectrum type is out of range:', i5)", {type});
        list_spectrum(type, spectra.col(i).subspan(1));
    }
}

void write_statistics(const SeaStatistics& s) {
    write_both("(4x, 'Mean square, mo        =', f7.3)", {s.mean_square});
    write_both("(4x, 'RMS                    =', f7.3)", {s.rms});
    write_both("(4x, 'Average value          =', f7.3)", {s.average});
    write_both("(4x, 'Signficant amplitude   =', f7.3)", {s.significant});
    write_both("(4x, 'Avg 1/1000 (max value) =', f7.3)", {s.maximum});
    write_both("(4x, 'Average period         =', f7.3)", {s.average_period});
    write_both("(4x, 'Energy avg. period     =', f7.3)", {s.energy_period});
    write_both("(4x, 'Zero crossing period   =', f7.3, /)", {s.zero_crossing_period});
}

void write_spectrum(std::span<const double> omega, std::span<const double> s) {
    write_unit(unit_output, "(4x, 'PERIOD (SEC)', 6x, 'FREQ (RAD/SEC)', 5x, 'WAVE SPECTRUM')");
    for (std::size_t i = 0; i < omega.size(); ++i)
        write_unit(unit_output, "(4x, 0pf10.5, 10x, f10.5, 1pe20.4)",
                   {2 * std::numbers::pi / omega[i], omega[i], s[i]});
    write_unit(unit_output, "()");
}

void calculate_statistics(Matrix<const double> spectra, std::span<const double> omega,
                          bool with_spectrum) {
    write_both("(//, 'Calculated Wave Spectra Statistics')");
    const int n = static_cast<int>(omega.size());
    const Temporary<double> domega("$domega", n, 0), spectrum("$Hspectrum", n, 0),
        work("$work", n, 0);
    const auto steps = domega.view.all(), s = spectrum.view.all();
    frequency_steps(omega, steps);
    for (int i = 1; i <= spectra.cols; ++i) {
        const int type = evaluate_wave_spectrum(spectra, i, omega, s);
        write_both("(a)", {is_spectrum_type(type) ? spectrum_names[nth(type)] : ""});
        if (!all_finite(s)) write_both("(4x, 'Spectrum is not finite')");
        write_statistics(sea_statistics(hyd_spectrum_moments(s, omega, steps, work.view.all())));
        if (with_spectrum) write_spectrum(omega, s);
    }
    write_both("()");
}

void cmd_phyd_wave_spectra(std::string_view) {
    const bool with_spectrum = has_flag(" -spectrum");
    const auto spectra = find_wave_spectra(" \nWave spectra data does not exist\n");
    if (!spectra) return;
    list_spectra(spectra);
    if (!array_exists(hyd_freq)) return;
    Inputs inputs;
    const auto omega = inputs.vector<double>(hyd_freq);
    if (inputs && check_frequency_order(omega)) calculate_statistics(spectra, omega, with_spectrum);
}

/// `.hyd_grav`, which must be above 0.
double hyd_spectrum_gravity() {
    const double g = get_real(hyd_grav);
    if (!(g > 0))
        shutdown_with(" \nSpectrum requires gravity as specifed by the hyd_parameters command\n");
    return g;
}

constexpr Command rows[] = {
    {.words = {"hyd_wave_spectra"},
     .run = cmd_hyd_wave_spectra,
     .summary = "input of wave spectra",
     .help =
         "Command Syntax\n\thyd_wave_spectra #=nspectra\n\t   n=?  name=?  [parameters]\n\t   (blank "
         "line)\n\n"
         "Stores a list of nspectra wave spectra for hyd_irregular. A record for each spectrum "
         "follows, with its number n from 1 to nspectra, its name and its parameters; a blank "
         "line, or n=0, ends the list. A parameter that is not given is 0 or its default.\n\n"
         "Names and parameters\n"
         "\tname=Bretschneider  Hs=?  To=?\n"
         "\tname=ISSC  Hs=?  Tv=?\n"
         "\tname=JONSWAP  To=?  [gamma=?]  [Xo=?]\n"
         "\tname=ITTC  Hs=?  [k=?]\n"
         "\tname=P-M-Wind  U=?\n"
         "\tname=P-M-Hs  Hs=?\n"
         "\tname=Mitsuyasu  Xo=?  U*=?  To=?\n\n"
         "Hs\n\tsignificant wave height\n"
         "To\n\tperiod of the peak (sec); Tv, the visually observed period\n"
         "gamma\n\theight of the peak of JONSWAP over that of a fully developed sea; default 3.3. "
         "Its widths are 0.07 below and 0.09 above the peak.\n"
         "Xo\n\tfetch made dimensionless, g x/U^2. JONSWAP: alpha is 0.076 Xo^(-0.22); without Xo, "
         "or with 0, it is 0.0081. Mitsuyasu: made with the friction velocity U*.\n"
         "k\n\tfactor of ITTC; default 1\n"
         "U, U*\n\twind speed, friction velocity\n\n"
         "The spectra are one-sided functions of the circular frequency omega in rad/sec, so that "
         "the mean square of the wave is their integral. All but Bretschneider and ISSC need the "
         "gravity of hyd_parameters. With parameters of a real sea the Mitsuyasu spectrum is "
         "infinite below the peak; this is printed and reported.\n\n"
         "Created\n\t.hyd_wave_spectra (6,nspectra), real; an earlier one is replaced.\n\n"
         "Example\n"
         "\thyd_wave_spectra #=2\n\tn=1 name=Bretschneider Hs=4 To=10\n\tn=2 name=JONSWAP To=12 "
         "gamma=2\n\n\tphyd_wave_spectra\n\n"
         "See Also\n\tphyd_wave_spectra, hyd_irregular, hyd_wave\n"},
    {.words = {"phyd_wave_spectra"},
     .run = cmd_phyd_wave_spectra,
     .summary = "print wave spectra and their statistics",
     .help =
         "Command Syntax\n\tphyd_wave_spectra [-spectrum]\n\n"
         "Prints the list of hyd_wave_spectra and, if there are wave frequencies, statistics of "
         "each spectrum. They are computed on these frequencies by the trapezoidal rule, so they "
         "are as good as the list of frequencies is fine and wide. The frequencies must rise or "
         "fall throughout.\n\n"
         "With mn the integral of omega^n S(omega) and RMS the root of mo, the wave amplitudes "
         "are: average 1.25 RMS, significant 2 RMS (half the significant wave height), and 3.72 "
         "RMS, the most probable largest amplitude of 1000 waves. The periods are 2 pi mo/m1, the "
         "average; 2 pi m-1/mo, that of the energy; 2 pi (mo/m2)^(1/2), zero crossing.\n\n"
         "-spectrum\n\tThe values of each spectrum are also written to the output file.\n\n"
         "Example\n"
         "\thyd_wave_spectra #=1\n\tn=1 name=Bretschneider Hs=4 To=10\n\n\thyd_wave nfreq=5 "
         "-freq\n\t0\n\t.4 .6 .8 1 1.5\n\tphyd_wave_spectra -spectrum\n\n"
         "See Also\n\thyd_wave_spectra, hyd_irregular, hyd_wave\n"},
};

} // namespace

Matrix<const double> find_wave_spectra(std::string_view missing) {
    if (!array_exists(hyd_wave_spectra)) return print_both(missing), Matrix<const double>{};
    return Inputs().matrix<double>(hyd_wave_spectra, spectrum_rows);
}

int evaluate_wave_spectrum(Matrix<const double> spectra, int i, std::span<const double> omega,
                           std::span<double> s) {
    const int type = nearest_int(spectra(1, i));
    const double g = needs_gravity(type) ? hyd_spectrum_gravity() : 0;
    hyd_spectrum(type, spectra.col(i), g, omega, s);
    return type;
}

bool check_frequency_order(std::span<const double> omega) {
    if (is_monotone(omega)) return true;
    print_both(" \n\tWave frequencies (.hyd_freq) must rise or fall throughout\n");
    return false;
}

std::span<const Command> hyd_wave_spectra_rows() {
    return rows;
}

} // namespace quelor
