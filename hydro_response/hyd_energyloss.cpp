// Command hyd_energy. Reads `.hyd_beta`, `.hyd_freq`, `.hyd_gencor`, `.hyd_damp`, `.hyd_fi`,
// `.hyd_fd`, `hyd_kstr`, `.hyd_hysdamp`, and with -farfield `.hyd_potrad`, the panels, modes and
// control values; writes `.hyd_dissipate`, `.hyd_farfield`. Workspaces `$add_damp`, `$kh`.
//
// Over one period the force F at the displacement q does the work pi Im(q^H F), damping dissipates
// omega pi q^H B q and hysteresis pi q^H (2 hdamp K) q.   Source: [Newman 1977, sec. 6.15, 6.17]
#include "hydro_response/hyd_energyloss.hpp"

#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_response/far_field.hpp"
#include "hydro_response/hyd_response.hpp"
#include "hydro_response/hyd_wet.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <numbers>
#include <optional>
#include <string>

namespace quelor {

namespace {

struct EnergyOptions {
    std::int32_t method = 1;
    bool symmetrize = true, farfield = false;
};

EnergyOptions read_options() {
    EnergyOptions o;
    std::string text;
    get_int_par(" method=", o.method);
    if (o.method != 2) o.method = 1;
    get_char_par(" symmetrize=", text, 5);
    o.symmetrize = text != "off";
    o.farfield = has_flag(" -farfield");
    return o;
}

/// The response and what the balance needs; views stay valid while the results are created.
struct Response {
    std::span<const double> freq, beta;
    Array3<const Complex8> gencor; ///< (nmode,nfreq,nbeta)
    Array3<const double> damp;     ///< (nmode,nmode,nfreq)
    Array3<const Complex8> fi, fd; ///< (nmode,nbeta,nfreq)
    Matrix<const double> kstr;
    double hdamp = 0;

    int nmode() const { return gencor.n1; }
    int nfreq() const { return gencor.n2; }
    int nbeta() const { return gencor.n3; }
    std::span<const Complex8> motion(int f, int b) const {
        return {&gencor(1, f, b), as_size(nmode())};
    }
};

/// False after a message when something is absent or does not fit.
bool find_response(Response& r) {
    Inputs inputs;
    r.beta = inputs.vector<double>(hyd_beta);
    r.freq = inputs.vector<double>(hyd_freq);
    r.gencor = inputs.array3<Complex8>(hyd_gencor);
    if (!inputs) return false;
    if (r.nfreq() != static_cast<int>(r.freq.size()) ||
        r.nbeta() != static_cast<int>(r.beta.size())) {
        print_both(" Error in data");
        return false;
    }
    for (const auto name : {hyd_damp, hyd_fi, hyd_fd})
        if (!array_exists(name)) {
            print_both(" \nHydrodynamic data not found\n");
            return false;
        }
    r.damp = inputs.array3<double>(hyd_damp, r.nmode(), r.nmode(), r.nfreq());
    r.fi = inputs.array3<Complex8>(hyd_fi, r.nmode(), r.nbeta(), r.nfreq());
    r.fd = inputs.array3<Complex8>(hyd_fd, r.nmode(), r.nbeta(), r.nfreq());
    r.kstr = inputs.matrix<double>(hyd_kstr, r.nmode(), r.nmode());
    r.hdamp = std::max(inputs.real(hyd_hysdamp), 0.0);
    return bool(inputs);
}

// --- far field

/// Beyond this k r the headings would be thousands, and no mesh resolves such waves.
constexpr double largest_kr = 2000;

struct FarField {
    RadiatingHull hull;
    double depth = 0, deep_water = 0, radius = 0;
};

bool has_valid_classes(const PanelModes& modes) {
    if (modes.symmetry == 0) return true;
    const int classes = image_count(modes.symmetry);
    return std::ranges::all_of(modes.modesym, [&](int k) { return 1 <= k && k <= classes; });
}

/// The frequencies must be positive and their waves long enough.
bool has_valid_waves(const FarField& far, std::span<const double> freq) {
    for (int f = 1; f <= static_cast<int>(freq.size()); ++f) {
        const double omega = freq[nth(f)], k = waven(omega, far.depth, far.hull.g).k;
        if (omega > 0 && k > 0 && k * far.radius <= largest_kr) continue;
        write_both(
            "(/, 6x, 'No far field: the wave length of frequency', i4, ' is out of range for this structure')",
            {f});
        return false;
    }
    return true;
}

std::optional<FarField> find_far_field(const Response& r) {
    Inputs inputs;
    FarField far;
    RadiatingHull& hull = far.hull;
    const int symmetry = hull.modes.symmetry = inputs.integer(hyd_symmetry);
    far.depth = inputs.real(hyd_depth);
    far.deep_water = inputs.real(hyd_deep_water);
    hull.g = inputs.real(hyd_grav);
    hull.rho = inputs.real(hyd_fluid_rho);
    hull.xyzc = inputs.matrix<double>(hyd_xyzc, any_size, 3);
    if (symmetry < 0 || symmetry > 2)
        return print_both(" \n\tsymmetry should be 0, 1 or 2\n"), std::nullopt;
    const int np = hull.xyzc ? hull.xyzc.rows : any_size, images = image_count(symmetry);
    hull.paneln = inputs.matrix<double>(hyd_paneln, 3, np);
    hull.modes.area = inputs.vector<double>(hyd_panela, np);
    hull.modes.un = inputs.matrix<double>(hyd_un, r.nmode(), np);
    hull.potrad = inputs.array3<Complex8>(hyd_potrad, hull.xyzc ? np * images : any_size, r.nfreq(),
                                          r.nmode());
    if (images > 1) hull.modes.modesym = inputs.vector<std::int32_t>(hyd_modesym, r.nmode());
    if (!inputs) return {};
    if (!has_valid_classes(hull.modes))
        return print_both(" \n\t Symmetry code error in .hyd_modesym array\n"), std::nullopt;
    far.radius = plan_radius(hull);
    if (!has_valid_waves(far, r.freq)) return {};
    return far;
}

void calculate_far_field(const Response& r, const FarField& far, int f, Matrix<double> energy) {
    const double omega = r.freq[nth(f)], k = waven(omega, far.depth, far.hull.g).k;
    const IncomingWave wave{omega, k, far.depth, 0, k * far.depth > far.deep_water};
    const int count = heading_count(k, far.radius);
    const std::vector<Complex8> x = haskind_forces(far.hull, wave, f, count);
    for (int b = 1; b <= r.nbeta(); ++b)
        energy(f, b) =
            far_field_energy(far.hull, wave, {x.data(), r.nmode(), count}, r.motion(f, b));
}

// --- balance

/// A form below 0 is named, and kept.
void report_negative(std::string_view message, int method, Complex8 value, double real) {
    if (!(real < 0)) return;
    print_both(message);
    if (method == 2)
        write_both("(1p2e12.4)", {real});
    else
        write_both("(1p2e12.4)", {value});
}

double dissipation(Matrix<const double> a, std::span<const Complex8> q, int method) {
    const Complex8 value = method == 2 ? real_form(a, q) : complex_form(a, q);
    report_negative(" \nNegative energy dissipation\n", method, value, value.real());
    return value.real();
}

/// Im(q^H F), the work of the exciting forces over pi.
double force_work(const Response& r, int f, int b, int method) {
    const auto q = r.motion(f, b);
    Complex8 sum = 0;
    for (int i = 1; i <= r.nmode(); ++i)
        sum += std::conj(q[nth(i)]) * (r.fi(i, b, f) + r.fd(i, b, f));
    report_negative(" \nNegative energy dissipation - ubar_p\n", method, sum, sum.imag());
    return sum.imag();
}

void calculate_balance(const Response& r, const EnergyOptions& options, Array3<double> dissipate) {
    constexpr double pi = std::numbers::pi;
    const Temporary<double> damping("$add_damp", r.nmode(), r.nmode()),
        hysteresis("$kh", r.nmode(), r.nmode());
    std::ranges::transform(r.kstr.all(), hysteresis.view.data,
                           [&](double k) { return 2 * r.hdamp * k; });
    for (int f = 1; f <= r.nfreq(); ++f) {
        const double omega = r.freq[nth(f)];
        write_wet_frequency_line(f, omega);
        std::ranges::copy(r.damp.slice(f).all(), damping.view.data);
        if (options.symmetrize) symmetrize_matrix(damping.view);
        for (int b = 1; b <= r.nbeta(); ++b) {
            const auto q = r.motion(f, b);
            const double fluid = omega * pi * dissipation(damping.view, q, options.method);
            const double structure = pi * dissipation(hysteresis.view, q, options.method);
            const double sum = fluid + structure;
            dissipate(f, 1, b) = omega;
            dissipate(f, 2, b) = pi * force_work(r, f, b, options.method);
            dissipate(f, 3, b) = sum;
            dissipate(f, 4, b) = fluid / sum * 100;
            dissipate(f, 5, b) = structure / sum * 100;
        }
    }
}

// --- report

void write_heading(int b, double degrees_of_heading, bool far_field) {
    if (far_field)
        write_both(
            "(//, 5x, 'Wave Heading', i4, ' at', f9.3,' degrees', //, 10x, 'Frequency', 11x, 'Total', 1x, 'Fluid+Structure', 5x, 'Fluid', 2x, 'Structure', 7x, 'Far Field', 2x, '% of Fluid')",
            {b, degrees_of_heading});
    else
        write_both(
            "(//, 5x, 'Wave Heading', i4, ' at', f9.3,' degrees', //, 10x, 'Frequency', 11x, 'Total', 1x, 'Fluid+Structure', 5x, 'Fluid', 2x, 'Structure')",
            {b, degrees_of_heading});
}

/// `energy` (nfreq,nbeta) of the far field, if it was asked for, stands beside the table, with its
/// percentage of the energy lost to the fluid.
void write_report(const Response& r, int method, Array3<const double> dissipate,
                  Matrix<const double> energy) {
    write_both("(//, 5x, 'Energy Loss - Method', i2)", {method});
    for (int b = 1; b <= r.nbeta(); ++b) {
        write_heading(b, r.beta[nth(b)] * degrees, bool(energy));
        for (int f = 1; f <= r.nfreq(); ++f) {
            FormatItems items;
            for (int column = 1; column <= 5; ++column)
                items.add(dissipate(f, column, b));
            if (!energy) {
                write_both("(f19.5, 1p2e16.4, 0p, f10.3, f11.3)", items);
                continue;
            }
            const double fluid = dissipate(f, 3, b) * dissipate(f, 4, b) / 100;
            items.add(energy(f, b)).add(energy(f, b) / fluid * 100);
            write_both("(f19.5, 1p2e16.4, 0p, f10.3, f11.3, 1pe16.4, 0pf12.3)", items);
        }
    }
}

void cmd_hyd_energy(std::string_view) {
    const EnergyOptions options = read_options();
    Response r;
    if (!find_response(r)) return;
    std::optional<FarField> far;
    if (options.farfield && !(far = find_far_field(r))) return;
    const auto dissipate = create_array3<double>(hyd_dissipate, r.nfreq(), 5, r.nbeta());
    write_symmetrize_line(options.symmetrize);
    calculate_balance(r, options, dissipate);
    Matrix<double> energy;
    if (far) {
        energy = create_matrix<double>(hyd_farfield, r.nfreq(), r.nbeta());
        for (int f = 1; f <= r.nfreq(); ++f)
            calculate_far_field(r, *far, f, energy);
    }
    write_report(r, options.method, dissipate, energy);
}

constexpr Command rows[] = {
    {.words = {"hyd_energy"},
     .run = cmd_hyd_energy,
     .summary = "energy balance of a response",
     .help =
         "Command Syntax\n\thyd_energy [method=?]  [symmetrize=on|off]  [-farfield]\n\n"
         "Command to check the energy balance of the response of hyd_analysis_response, for a wave "
         "of unit amplitude and one wave period. For each frequency and heading it gives the work "
         "of the exciting forces (\"Total\") and the sum of the energy lost by radiation into the "
         "fluid and by hysteretic dissipation in the structure, with the percentages of the two. "
         "Viscous structural damping is not included.\n\n"
         "method=1|2\n\tHow the quadratic forms of the damping are summed: in complex (1, the "
         "default) or in real arithmetic. The matrices being real, both give the same number to "
         "rounding.\n"
         "symmetrize=on|off\n\tThe hydrodynamic damping is symmetrized before use, unless off is "
         "given. A quadratic form does not change by it.\n\n"
         "The two totals agree to rounding, whatever the mesh, if the response was determined with "
         "symmetrize=on and the structural matrices and .hyd_kf are symmetric, without hyd_cstr. "
         "What the table shows otherwise is the asymmetry of these matrices and of the added mass "
         "and damping.\n\n"
         "-farfield\n\tA check of the mesh itself: beside the table stands the energy that the "
         "radiated wave carries through a distant cylinder in a period, from the radiation "
         "potentials on the hull by Haskind's relation at headings all around, and its percentage "
         "of the energy lost to the fluid, which comes from the damping. In potential theory it is "
         "100; what is missing or too much is the error of the mesh, a few percent for a fair one. "
         "It cannot tell much where next to nothing is radiated. Needs the potentials of "
         "hyd_analysis (no -no_pot) and the mesh and modes of that run; the wave must be longer "
         "than 1/600 of the structure.\n\n"
         "Created\n\t.hyd_dissipate (nfreq,5,nbeta), real: frequency, total, fluid + structure, "
         "percent fluid, percent structure. With -farfield .hyd_farfield (nfreq,nbeta), real.\n\n"
         "Example\n\thyd_analysis_response symmetrize=on\n\thyd_energy -farfield\n\n"
         "See Also\n\thyd_analysis, hyd_analysis_response\n"},
};

} // namespace

Complex8 complex_form(Matrix<const double> a, std::span<const Complex8> q) {
    Complex8 sum = 0;
    for (int i = 1; i <= a.rows; ++i) {
        Complex8 x = 0;
        for (int j = 1; j <= a.cols; ++j)
            x += a(i, j) * q[nth(j)];
        sum += x * std::conj(q[nth(i)]);
    }
    return sum;
}

double real_form(Matrix<const double> a, std::span<const Complex8> q) {
    double sum = 0;
    for (int j = 1; j <= a.cols; ++j)
        for (int i = 1; i <= a.rows; ++i)
            sum += a(i, j) *
                   (q[nth(i)].real() * q[nth(j)].real() + q[nth(i)].imag() * q[nth(j)].imag());
    return sum;
}

std::span<const Command> hyd_energy_rows() {
    return rows;
}

} // namespace quelor
