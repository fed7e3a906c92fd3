// Command hyd_tf. Reads `.hyd_gencor`, `.hyd_freq`, `.hyd_beta` and a modal matrix; writes a
// complex array of transfer functions and a text file.
#include "hydro_response/hyd_tf.hpp"

#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr int unit_tf = 91;

struct TableOptions {
    bool radians = false, period = false, rao = false;
};

/// Name of the modal matrix: argument 1, or the default, which is made the identity when absent.
std::string modal_matrix_name(int nmode) {
    const auto argument = get_arg(1);
    if (!is_blank(argument)) return std::string(argument);
    if (!array_exists(hyd_modemat)) {
        const auto identity = create_matrix<double>(hyd_modemat, nmode, nmode);
        for (int i = 1; i <= nmode; ++i)
            identity(i, i) = 1;
    }
    return std::string(hyd_modemat);
}

/// The values of the modal matrix (ncomp,nmode); empty after a message when it does not serve. An
/// array of another type is read as real, which users are warned of; bytes it lacks read as zero.
std::vector<double> read_modal_matrix(int nmode) {
    const ArrayRef ref = find_array_2d(modal_matrix_name(nmode));
    if (!ref) {
        print_both(" \nModal matrix not found\n");
        return {};
    }
    if (ref.cols() != nmode) {
        print_both(" \n\t\tModal matrix does not have nmode columns");
        return {};
    }
    if (ref.type != type_real) print_both(" \n\t\tModal matrix is not type real");
    std::vector<double> values(as_size(ref.rows()) * as_size(nmode));
    const std::size_t held = array_byte_size(ref.type, ref.dims);
    std::memcpy(values.data(), ref.data, std::min(held, values.size() * sizeof(double)));
    return values;
}

/// Real array of at least n values; the not-found line when it is absent.
std::span<const double> find_list(std::string_view name, int n) {
    const ArrayRef ref = find_array(name);
    if (!ref)
        not_found(name);
    else if (!ref.is(type_real) || ref.size() < n)
        print_both(" \n\tArray " + std::string(name) +
                   " does not fit the generalized coordinates\n");
    else
        return as_span<const double>(ref);
    return {};
}

void write_title(const TableOptions& options) {
    if (options.rao)
        write_unit(unit_tf, "(1x, 8('*'), ' TRANSFER FUNCTIONS: RAOs ONLY ', 8('*'))");
    else if (options.radians)
        write_unit(unit_tf,
                   "(1x, 8('*'), ' TRANSFER FUNCTIONS: MAGNITUDE AND PHASE (RADIANS) ', 8('*'))");
    else
        write_unit(unit_tf,
                   "(1x, 8('*'), ' TRANSFER FUNCTIONS: MAGNITUDE AND PHASE (DEGREES) ', 8('*'))");
}

void write_tables(const TableOptions& options, std::span<const double> abscissa,
                  std::span<const double> beta, Array3<const Complex8> tf) {
    const int columns = options.rao ? 1 : 2;
    const std::string width = std::to_string(columns * tf.n2);
    const std::string label = options.period ? "    Period" : " Frequency";
    const std::string head = "(//,'Component =', i5, //, '" + label + "',1x," + width + "f14.2)";
    const std::string row = "(f10.6,1x,1p," + width + "e14.5)";
    const Format head_format = Format::from_text(head), row_format = Format::from_text(row);
    const double phase_unit = options.radians ? 1.0 : degrees;
    for (int c = 1; c <= tf.n3; ++c) {
        FormatItems items;
        items.add(c);
        for (int b = 1; b <= tf.n2; ++b)
            for (int i = 1; i <= columns; ++i)
                items.add(beta[nth(b)] * degrees);
        write_unit(unit_tf, head_format, items);
        for (int f = 1; f <= tf.n1; ++f) {
            FormatItems values;
            values.add(abscissa[nth(f)]);
            for (int b = 1; b <= tf.n2; ++b) {
                const Complex8 h = tf(f, b, c);
                values.add(complex_modulus(h));
                if (!options.rao) values.add(std::atan2(h.imag(), h.real()) * phase_unit);
            }
            write_unit(unit_tf, row_format, values);
        }
    }
}

void cmd_hyd_tf(std::string_view) {
    const ArrayRef coordinates = find_array(hyd_gencor);
    if (!coordinates.is(type_complex8))
        return print_both(" \nGeneralized coordinate array hyd_gencor not found\n");
    const auto gencor = as_array3<const Complex8>(coordinates);
    const std::vector<double> values = read_modal_matrix(gencor.n1);
    if (values.empty()) return;
    const Matrix<const double> modemat{values.data(), static_cast<int>(values.size()) / gencor.n1,
                                       gencor.n1};
    const TableOptions options{has_flag(" -radians"), has_flag(" -period"), has_flag(" -RAO")};
    const auto beta = find_list(hyd_beta, gencor.n3);
    if (beta.empty()) return;
    const auto freq = find_list(hyd_freq, gencor.n2);
    if (freq.empty()) return;
    std::vector<double> abscissa(freq.begin(), freq.end());
    if (options.period)
        for (double& a : abscissa)
            a = 2 * std::numbers::pi / a;
    const auto second = get_arg(2);
    const std::string target(is_blank(second) ? hyd_tf : second);
    Result result(target, "$hyd_tf");
    const auto tf = result.array3<Complex8>(gencor.n2, gencor.n3, modemat.rows);
    transfer_functions(modemat, gencor, tf);
    result.place();
    if (open_table_file(unit_tf, ".tf") != TableFile::opened) return;
    write_title(options);
    write_tables(options, abscissa, beta, {tf.data, tf.n1, tf.n2, tf.n3});
    close_unit(unit_tf);
}

constexpr Command rows[] = {
    {.words = {"hyd_tf"},
     .run = cmd_hyd_tf,
     .summary = "transfer functions",
     .help =
         "Command Syntax\n\thyd_tf [arg1  arg2]  [ext=extension  file=filename]  [-radians]   &\n\t       [-period]  [-RAO]\n\n"
         "Command to determine transfer functions from the generalized coordinates of "
         "hyd_analysis_response.\n\n"
         "arg1\n\tName of the modal matrix (ncomp,nmode), real: row i holds the response of "
         "component i in each mode. The default is hyd_modemat; if that does not exist it is "
         "created as the identity matrix, and the transfer functions are those of the generalized "
         "coordinates.\n"
         "arg2\n\tName of the result, complex (nfreq,nbeta,ncomp). The default is hyd_tf.\n"
         "ext=\n\tThe table goes to the file project_name.extension. The default is tf.\n"
         "file=\n\tThe table goes to this file; looked at only if ext is not given.\n"
         "-radians\n\tPhases in radians instead of degrees.\n"
         "-period\n\tThe table is against the wave period instead of the frequency.\n"
         "-RAO\n\tMagnitudes only.\n\n"
         "Example\n\thyd_tf hyd_modemat heave_tf ext=hv -RAO -period\n\n"
         "See Also\n\thyd_analysis_response, hyd_genmodes\n"},
};

} // namespace

void transfer_functions(Matrix<const double> modemat, Array3<const Complex8> gencor,
                        Array3<Complex8> tf) {
    for (int c = 1; c <= tf.n3; ++c)
        for (int b = 1; b <= tf.n2; ++b)
            for (int f = 1; f <= tf.n1; ++f) {
                Complex8 sum = 0;
                for (int m = 1; m <= gencor.n1; ++m)
                    sum += modemat(c, m) * gencor(m, f, b);
                tf(f, b, c) = sum;
            }
}

TableFile open_table_file(int unit, std::string_view default_extension) {
    std::string extension, file;
    get_char_par(" ext=", extension, 128);
    get_char_par(" file=", file, 128);
    int status = 0;
    if (!is_blank(extension))
        status = fortopen_ext(unit, "." + extension, "UNKNOWN", "FORMATTED");
    else if (!is_blank(file))
        status = fortopen_name(unit, file, "UNKNOWN", "FORMATTED");
    else if (!default_extension.empty())
        status = fortopen_ext(unit, default_extension, "UNKNOWN", "FORMATTED");
    else
        return TableFile::not_named;
    return status == 0 ? TableFile::opened : TableFile::failed;
}

std::span<const Command> hyd_tf_rows() {
    return rows;
}

} // namespace quelor
