// Reads the nodes, the element tables, `.elem_grp`, `.disp`, `.node_eqs` and the nodal constraints;
// writes a mesh file.
#include "fem/export_to_graphics.hpp"
#include "fem/elemutil.hpp"
#include "fem/export_to_gmsh.hpp"
#include "fem/formkm.hpp"
#include "fem/nodal_values.hpp"
#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr std::int32_t most_steps = 100'000; // more is a slip of the pen
constexpr std::int32_t not_given = std::numeric_limits<std::int32_t>::min();

/// Elements that will write their lines: those of the active types.
int count_elements() {
    const ArrayRef groups = find_array(elem_grp);
    if (!groups.is(type_integer) || groups.size() != element_slots) return 0;
    const auto code = as_span<std::int32_t>(groups);
    int count = 0;
    for (const ElementRow& row : element_rows())
        if (code[nth(row.slot)] != 0 && row.table.gmsh_type != 0) {
            const ArrayRef table = find_array(row.table.name);
            if (table.is(type_integer)) count += table.cols();
        }
    return count;
}

// --- displaced shapes ---------------------------------------------------------------------------

struct ShapeRequest {
    bool deformed = has_flag(" -deformed"), autoscale = has_flag(" -autoscale");
    std::int32_t case_number = not_given, steps = not_given;
    double scale = std::numeric_limits<double>::quiet_NaN(); ///< not a number: not given
    std::string times{};
};

/// The shapes to be written: columns first to last of `.disp`, or `steps` frames of the first of
/// them.
struct Shapes {
    Matrix<const double> u; ///< `.disp`
    NodalValues values;
    int first = 1, last = 0, steps = 0;
    double scale = 1;
    std::vector<double> times; ///< by column, or by frame
};

ShapeRequest read_shape_request() {
    ShapeRequest request;
    get_int_par(" case=", request.case_number);
    get_int_par(" steps=", request.steps);
    get_real_par(" scale=", request.scale);
    get_char_par(" T=", request.times, word_length + 1);
    return request;
}

/// Columns and steps of the request; false after a message.
bool choose_cases(ShapeRequest& request, Shapes& shapes) {
    if (request.steps != not_given && (request.steps < 1 || request.steps > most_steps))
        return print_both(" \n\tNumber of steps must be in the range 1 to 100000\n"), false;
    if (request.steps != not_given && request.case_number == not_given) {
        print_both(" \n\tCase to animate is not specified, but steps is specified");
        print_both(" \n\tSetting case to 1");
        request.case_number = 1;
    }
    shapes.steps = std::max(request.steps, 0);
    shapes.last = shapes.u.cols;
    if (request.case_number == not_given) return true;
    if (request.case_number < 1 || request.case_number > shapes.u.cols) {
        print_both(" \n\tCase number is out of range");
        print_both(" \n\tIt must be in the range of the number of columns of .disp");
        return false;
    }
    shapes.first = shapes.last = request.case_number;
    return true;
}

/// Times of the columns or frames, 1, 2, ... by default; false after a message.
bool choose_times(const ShapeRequest& request, Shapes& shapes) {
    const int count = shapes.steps > 0 ? shapes.steps : shapes.u.cols;
    if (request.times.empty()) {
        for (int i = 1; i <= count; ++i)
            shapes.times.push_back(i);
        return true;
    }
    const ArrayRef ref = find_array_2d(request.times);
    if (!ref.is(type_real)) return print_both(" \n\tVector with \"times\" not found\n"), false;
    if (ref.size() != count)
        return print_both(shapes.steps > 0
                              ? " \n\tSize of times vector must be equal to steps\n"
                              : " \n\tSize of times vector must be equal to columns in .disp\n"),
               false;
    const auto times = as_span<const double>(ref);
    shapes.times.assign(times.begin(), times.end());
    return true;
}

double longest_side(const NodeSet& nodes) {
    Vec3 low{};
    Vec3 high{};
    bool any = false;
    for (int n = 1; n <= nodes.count; ++n) {
        if (!nodes.is_active(n)) continue;
        const Vec3 p = nodes.at(n);
        for (std::size_t i = 0; i < 3; ++i) {
            low[i] = any ? std::min(low[i], p[i]) : p[i];
            high[i] = any ? std::max(high[i], p[i]) : p[i];
        }
        any = true;
    }
    return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

Vec3 translation(const Shapes& shapes, int column, int node) {
    const auto vector = shapes.u.col(column);
    return {shapes.values.at(vector, 1, node), shapes.values.at(vector, 2, node),
            shapes.values.at(vector, 3, node)};
}

/// The factor by which the largest displacement of the shapes becomes `percent` of the longest side
/// of the model; false after a message.
bool scale_to_model(const NodeSet& nodes, double percent, Shapes& shapes) {
    const double side = longest_side(nodes);
    if (!(side > 0))
        return print_both(" \n\tBounding box is zero; cannot calculate scale factor\n"), false;
    double largest = 0;
    for (int j = shapes.first; j <= shapes.last; ++j)
        for (int n = 1; n <= nodes.count; ++n)
            if (nodes.is_active(n))
                largest = std::max(largest, vector_length(translation(shapes, j, n)));
    shapes.scale = percent / 100 * side / largest;
    if (!(largest > 0) || !std::isfinite(shapes.scale))
        return print_both(" \n\tDisplacements are zero; cannot calculate scale factor\n"), false;
    write_both("(a, 1pe10.4)", {"           Scaling displacements by ", shapes.scale});
    return true;
}

/// What the command line asks for, checked; false after a message.
bool open_shapes(ShapeRequest request, const NodeSet& nodes, Shapes& shapes) {
    const ArrayRef u = find_array(disp);
    if (!u.is(type_real)) return print_both(" \n\tArray .disp not found\n"), false;
    auto values = open_nodal_values();
    if (!values || !values->fit(u.rows())) return false;
    if (values->dofs() < 3 || values->eqs.cols < nodes.count)
        return print_both(" \n\tNodal arrays do not agree in size\n"), false;
    shapes.u = as_matrix<const double>(u);
    shapes.values = std::move(*values);
    if (!choose_cases(request, shapes) || !choose_times(request, shapes)) return false;
    const bool scaled = !std::isnan(request.scale);
    if (request.autoscale) return scale_to_model(nodes, scaled ? request.scale : 2.0, shapes);
    if (scaled) shapes.scale = request.scale;
    return true;
}

void write_shape(const NodeSet& nodes, const Shapes& shapes, int column, double factor, int step,
                 double time) {
    std::vector<double> storage(3 * as_size(nodes.count));
    const Matrix<double> u{storage.data(), 3, nodes.count};
    for (int n = 1; n <= nodes.count; ++n) {
        if (!nodes.is_active(n)) continue;
        const Vec3 v = translation(shapes, column, n);
        for (int i = 1; i <= 3; ++i)
            u(i, n) = factor * v[nth(i)] + 0.0; // no negative zeros
    }
    gmsh_write_node_data(step, time, nodes, u);
}

/// cos(2 pi k / n), exact at the quarters of a turn.
double cosine_of_turn(std::int64_t k, std::int64_t n) {
    constexpr double quarters[] = {1, 0, -1, 0};
    if (4 * k % n == 0) return quarters[4 * k / n % 4];
    return std::cos(2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(n));
}

/// The frames are one full cycle: frame i is the shape at the phase 2 pi (i - 1) / steps.
void write_shapes(const NodeSet& nodes, const Shapes& shapes) {
    for (int i = 1; i <= shapes.steps; ++i)
        write_shape(nodes, shapes, shapes.first, shapes.scale * cosine_of_turn(i - 1, shapes.steps),
                    i, shapes.times[nth(i)]);
    if (shapes.steps > 0) return;
    for (int j = shapes.first; j <= shapes.last; ++j)
        write_shape(nodes, shapes, j, shapes.scale, j - shapes.first + 1, shapes.times[nth(j)]);
}

// --- the command --------------------------------------------------------------------------------

void write_elements() {
    const int count = count_elements();
    gmsh_begin_elements(count);
    if (count > 0) elem_call({6, 0, 0}, 0);
    gmsh_end_elements();
}

/// True when a flag of the command line names another target than Gmsh.
bool other_target() {
    constexpr std::string_view flags[] = {"-Gmsh", "-deformed", "-autoscale"};
    std::istringstream words{std::string(record_text())};
    for (std::string word; words >> word;)
        if (word.starts_with('-') && std::ranges::find(flags, word) == std::end(flags)) return true;
    return false;
}

void cmd_export_graphics(std::string_view) {
    if (other_target()) return print_both(" \n\t\tExport to target not supported\n");
    const ShapeRequest request = read_shape_request();
    std::string name;
    get_char_par(" file=", name, 133);
    std::int32_t symmetry = not_given;
    get_int_par(" nsymm=", symmetry);
    get_int_par(" reflect=", symmetry);
    if (symmetry != not_given) print_both("\nnsymm and reflect not supported at this time\n");

    const NodeSet nodes = open_nodes(fe_nodes);
    if (!nodes) return;
    if (nodes.count < 1) return print_both(" \n\tNumber nodes < 1\n");
    Shapes shapes;
    if (request.deformed && !open_shapes(request, nodes, shapes)) return;
    if (name.empty()) name = std::string(project_name()) + ".msh";
    if (fortopen_name(unit_gmsh, name, "REPLACE", "FORMATTED") != 0) return;
    gmsh_write_format();
    gmsh_write_nodes(nodes);
    write_elements();
    if (request.deformed) write_shapes(nodes, shapes);
    close_unit(unit_gmsh);
}

constexpr Command rows[] = {
    {.words = {"export_graphics"},
     .run = cmd_export_graphics,
     .summary = "export the model to a graphics program",
     .help =
         "Command Syntax\n\texport_graphics  [-target]  [-deformed  case=?  T=?  -autoscale  scale=?  "
         "steps=?]  [file=?]\n\n"
         "Writes the finite-element mesh, and with -deformed its displaced shapes, to a mesh file. The "
         "mesh is that of the nodes; symmetry is not used.\n\n"
         "-target\n\t-Gmsh, the only target and the default: a text file in Gmsh's format 2.2.\n\n"
         "-deformed\n\tWrite a displaced shape for each column of .disp. To see mode shapes, copy them to "
         ".disp first.\n\n"
         "case\n\tWrite this column of .disp only.\n\n"
         "T\n\tName of a real vector with a value for each column of .disp, or with steps for each step, "
         "that labels the shapes: periods, times, case numbers. Default is 1, 2, 3, ...\n\n"
         "-autoscale\n\tScale the shapes so that the largest displacement is scale percent of the longest "
         "side of the model; scale is then 2 by default.\n\n"
         "scale\n\tWithout -autoscale: factor of the displacements. Default is 1.\n\n"
         "steps\n\tAnimate one case (by default case 1): steps frames over one full cycle.\n\n"
         "file\n\tName of the file. Default is the project's name with extension msh.\n\n"
         "Example (mode shapes of eigval, labelled by their eigenvalues):\n\tcopy .phi .disp\n\texport_graphics "
         "-deformed -autoscale scale=5 T=.omega2\n\n"
         "Of the elements truss, ntruss, beam3d, interface and the types of shells and plane elements are "
         "exported, as far as they are active (elem_grp); the nodes of all are.\n\n"
         "See Also\n\trigid_modes\n\teigval\n\telem_grp\n"},
};

} // namespace

std::span<const Command> export_to_graphics_rows() {
    return rows;
}

} // namespace quelor
