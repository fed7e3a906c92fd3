// Commands hyd_export_graphics and hyd_export_graphics_th. Read the nodes and panels of the
// structure and of the free surface, `.hyd_umx` to `.hyd_umz`, `.hyd_gencor`, `.hyd_freq`,
// `.hyd_surf_disp`; write a mesh file. Workspaces `$nodal_disp`, `$Gmsh_periods`.
#include "hydro_response/hyd_export_to_graphics.hpp"

#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/frequency_results.hpp"
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "hydro_model/hyd_surf_panel.hpp"
#include "hydro_response/hyd_export_to_gmsh.hpp"
#include "hydro_response/response_values.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr std::int32_t not_given = std::numeric_limits<std::int32_t>::min();
constexpr std::size_t file_capacity = 133;

// --- mesh and file ------------------------------------------------------------------------------

bool open_picture(bool sea, DrawnPart part, PictureMesh& picture) {
    if (!add_mesh(hyd_structure_panels, part, picture, picture.hull)) return false;
    picture.hull_nodes = picture.nodes();
    return !sea || add_mesh(hyd_surface_panels, DrawnPart::all, picture, picture.sea);
}

/// Opens the file of the key file= and writes the mesh; false when it cannot be opened.
bool begin_file(std::string name, PictureMesh& picture) {
    if (name.empty()) name = std::string(project_name()) + ".msh";
    if (fortopen_name(unit_gmsh, name, "REPLACE", "FORMATTED") != 0) return false;
    const ArrayRef symmetry = find_array(hyd_symmetry);
    if (symmetry.is(type_integer) && as_span<const std::int32_t>(symmetry)[0] != 0)
        write_both("('    Only the part of the symmetric structure that was entered is exported')");
    write_picture_mesh(picture);
    return true;
}

// --- modes --------------------------------------------------------------------------------------

using ModeShapes = std::array<Matrix<const double>, 3>;

/// `.hyd_umx`, `.hyd_umy`, `.hyd_umz`, a row a node; false after a message.
bool open_modes(int nodes, ModeShapes& um) {
    std::array<ArrayRef, 3> refs;
    for (std::size_t i = 0; i < 3; ++i) {
        refs[i] = find_array(nodal_mode_arrays[i]);
        if (!refs[i].is(type_real))
            return print_both(" \n\tModal displacement arrays not found\n"), false;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (!std::ranges::equal(refs[i].dims, refs[0].dims) || refs[i].ndim() > 2)
            return print_both(" \n\tModal displacement arrays are not of same size\n"), false;
        um[i] = as_matrix<const double>(refs[i]);
    }
    if (um[0].rows == nodes) return true;
    print_both(" \n\tModal displacement arrays do not fit the nodes; make the modes again\n");
    return false;
}

/// One frame a mode; the sea stays flat.
void write_modes(PictureMesh& picture, const ModeShapes& um, std::span<const double> times) {
    std::vector<double> storage(3 * as_size(picture.nodes()));
    const Matrix<double> u{storage.data(), 3, picture.nodes()};
    for (int m = 1; m <= um[0].cols; ++m) {
        for (int n = 1; n <= picture.hull_nodes; ++n)
            for (int i = 1; i <= 3; ++i)
                u(i, n) = um[nth(i)](n, m) + 0.0; // no negative zeros
        write_picture_frame(picture, m, times[nth(m)], u);
    }
}

// --- motion in a wave ---------------------------------------------------------------------------

/// The wave of the keys freq= and angle=, and what moves in it.
struct WaveMotion {
    double period;
    int steps;
    std::span<const Complex8> gencor;    ///< nmode generalised coordinates
    std::span<const Complex8> elevation; ///< of the nodes of the sea; empty: it stays flat
    std::vector<std::int32_t> panels;    ///< drawn panels of the hull
    std::vector<double> pressure;        ///< and the amplitudes of the pressure on them
};

struct ExportRequest {
    bool modes = has_flag(" -modes"), displ = has_flag(" -displ");
    bool sea = has_flag(" -freesurface"), wet_only = has_flag(" -wetonly");
    bool views = has_flag(" -views");
    std::int32_t freq = not_given, angle = not_given, steps = 12;
    std::string times{}, file{};
};

ExportRequest read_request() {
    ExportRequest request;
    get_int_par(" freq=", request.freq);
    get_int_par(" angle=", request.angle);
    get_int_par(" steps=", request.steps);
    get_char_par("T=", request.times, word_length + 1);
    get_char_par(" file=", request.file, file_capacity);
    return request;
}

/// The elevations of one wave; none, after a message, when they are not there.
std::span<const Complex8> find_elevation(const ExportRequest& request, int nodes,
                                         Array3<const Complex8> gencor) {
    const ArrayRef ref = find_array(hyd_surf_disp);
    if (ref.is(type_complex8) && ref.ndim() <= 3) {
        const auto eta = as_array3<const Complex8>(ref);
        if (eta.n1 == nodes && eta.n2 == gencor.n2 && eta.n3 == gencor.n3)
            return {&eta(1, request.freq, request.angle), as_size(nodes)};
    }
    print_both(
        " \n\tArray .hyd_surf_disp not found or of the wrong size; the free surface stays flat\n");
    return {};
}

/// The potentials of all headings at the images of the wet panels.
struct PanelPotentials {
    Array3<const Complex8> incoming, diffraction, radiation;
};

/// Pressures (nbeta, images of the panels) of one frequency.
std::vector<Complex8> pressures_of(const PanelPotentials& phi, Array3<const Complex8> gencor,
                                   int ifreq, double omega, double rho) {
    std::vector<Complex8> values(as_size(gencor.n3) * as_size(phi.radiation.n1));
    const Matrix<Complex8> table{values.data(), gencor.n3, phi.radiation.n1};
    radiation_potential(phi.radiation, gencor, ifreq, table);
    add_potential(phi.incoming, ifreq, table);
    add_potential(phi.diffraction, ifreq, table);
    potential_to_pressure(omega, rho, values);
    return values;
}

/// Pressures of the drawn panels, 0 on those that are dry; none, after a message, when the
/// potentials do not serve.
void find_pressures(const ExportRequest& request, const DrawnPanels& hull, double omega,
                    Array3<const Complex8> gencor, WaveMotion& wave) {
    Inputs inputs;
    const int nfreq = gencor.n2, nbeta = gencor.n3;
    const int images =
        inputs.integer(hyd_num_wetpanels) * image_count(inputs.integer(hyd_symmetry));
    const PanelPotentials phi{
        inputs.array3<Complex8>(hyd_potincm, images, nfreq, nbeta),
        inputs.array3<Complex8>(hyd_potdiff, images, nfreq, nbeta),
        inputs.array3<Complex8>(hyd_potrad, images, nfreq, gencor.n1),
    };
    const auto map = inputs.vector<std::int32_t>(hyd_panel_map, hull.last);
    const double rho = inputs.real(hyd_fluid_rho);
    if (!inputs)
        return print_both(
            " \n\tThere are no potentials of these panels; the pressure is left out\n");
    const auto pressures = pressures_of(phi, gencor, request.freq, omega, rho);
    const Matrix<const Complex8> table{pressures.data(), nbeta, phi.radiation.n1};
    const auto panels = hull.table();
    for (int i = 1; i <= panels.cols; ++i) {
        const int p = map[nth(panels(5, i))];
        const bool wet = 1 <= p && p <= table.cols;
        wave.panels.push_back(panels(5, i));
        wave.pressure.push_back(wet ? complex_modulus(table(request.angle, p)) : 0.0);
    }
}

/// What -displ asks for, checked; false after a message.
bool open_wave(const ExportRequest& request, const PictureMesh& picture, int nmode,
               WaveMotion& wave) {
    if (request.freq == not_given || request.angle == not_given)
        return print_both(" \n\tFrequency and angle must be specified\n"), false;
    if (!gmsh_steps_in_range(request.steps)) return false;
    Inputs inputs;
    const auto gencor = inputs.array3<Complex8>(hyd_gencor, nmode);
    const auto freq = inputs.vector<double>(hyd_freq, gencor ? gencor.n2 : any_size);
    if (!inputs) return false;
    if (request.freq < 1 || request.freq > gencor.n2)
        return print_both(" \n\tFrequency number is out of range\n"), false;
    if (request.angle < 1 || request.angle > gencor.n3)
        return print_both(" \n\tAngle number is out of range\n"), false;
    const double omega = freq[nth(request.freq)];
    wave.period = 2 * std::numbers::pi / omega;
    wave.steps = request.steps;
    wave.gencor = {&gencor(1, request.freq, request.angle), as_size(nmode)};
    if (request.sea) wave.elevation = find_elevation(request, picture.sea_nodes(), gencor);
    if (request.views) find_pressures(request, picture.hull, omega, gencor, wave);
    return true;
}

/// Frames over one wave period, counted from `first`.
void write_wave(PictureMesh& picture, const ModeShapes& um, const WaveMotion& wave, int first) {
    const int nodes = picture.nodes();
    const Temporary<Complex8> moved("$nodal_disp", 3, nodes);
    const Temporary<double> times("$Gmsh_periods", wave.steps, 0);
    const Matrix<Complex8>& u = moved.view;
    nodal_displacements(um, wave.gencor, u.all().first(3 * as_size(picture.hull_nodes)));
    for (int n = 1; n <= static_cast<int>(wave.elevation.size()); ++n)
        u(3, picture.hull_nodes + n) = wave.elevation[nth(n)];
    std::vector<double> frame(3 * as_size(nodes));
    for (int i = 1; i <= wave.steps; ++i) {
        times.view(i) = (i - 1) * wave.period / wave.steps;
        real_parts_at(phase_of_turn(i - 1, wave.steps), u.all(), frame);
        write_picture_frame(picture, first + i - 1, times.view(i), {frame.data(), 3, nodes});
    }
}

/// The frames in colour: the pressure amplitude of the panels, the same in all, and the elevation.
void write_views(const PictureMesh& picture, const WaveMotion& wave, int first) {
    std::vector<std::int32_t> nodes;
    std::vector<Complex8> elevation;
    for (int n = 1; n <= static_cast<int>(wave.elevation.size()); ++n) {
        if (picture.active[nth(picture.hull_nodes + n)] != 'A') continue;
        nodes.push_back(picture.hull_nodes + n);
        elevation.push_back(wave.elevation[nth(n)]);
    }
    std::vector<double> now(nodes.size());
    const auto time = [&](int i) { return i * wave.period / wave.steps; };
    for (int i = 0; i < wave.steps && !wave.panels.empty(); ++i)
        gmsh_write_scalars(first + i, time(i),
                           {"ElementData", "Pressure amplitude", wave.panels, wave.pressure});
    for (int i = 0; i < wave.steps && !nodes.empty(); ++i) {
        real_parts_at(phase_of_turn(i, wave.steps), elevation, now);
        gmsh_write_scalars(first + i, time(i), {"NodeData", "Elevation", nodes, now});
    }
}

void cmd_hyd_export_graphics(std::string_view) {
    if (!has_flag(" -Gmsh")) return print_both(" \n\t\tExport to target not supported");
    const ExportRequest request = read_request();
    PictureMesh picture;
    if (!open_picture(request.sea, request.wet_only ? DrawnPart::wet : DrawnPart::all, picture))
        return;
    ModeShapes um;
    WaveMotion wave{};
    std::vector<double> labels;
    if ((request.modes || request.displ) && !open_modes(picture.hull_nodes, um)) return;
    if (request.modes) {
        labels =
            gmsh_step_times(request.times, um[0].cols,
                            " \n\tSize of times vector must be equal to the number of modes\n");
        if (labels.empty()) return;
    }
    if (request.displ && !open_wave(request, picture, um[0].cols, wave)) return;
    if (!begin_file(request.file, picture)) return;
    if (request.modes) write_modes(picture, um, labels);
    const int first = static_cast<int>(labels.size()) + 1;
    if (request.displ) write_wave(picture, um, wave, first);
    if (request.views) write_views(picture, wave, first);
    close_unit(unit_gmsh);
}

// --- time histories -----------------------------------------------------------------------------

/// Displacements by row of the time vector: x, y, z of the hull's nodes (N,nodes), z of the sea's.
struct TimeHistory {
    std::span<const double> time;
    ModeShapes hull;
    Matrix<const double> sea;
};

bool open_history(const std::array<std::string, 5>& names, const PictureMesh& picture,
                  TimeHistory& history) {
    Inputs inputs;
    const ArrayRef time = inputs.array(names[0], type_real, {any_size, any_size});
    const int rows = time ? static_cast<int>(time.size()) : any_size;
    for (std::size_t i = 0; i < 3; ++i)
        history.hull[i] = inputs.matrix<double>(names[i + 1], rows, picture.hull_nodes);
    if (!is_blank(names[4]))
        history.sea = inputs.matrix<double>(names[4], rows, picture.sea_nodes());
    if (!inputs) return false;
    history.time = as_span<const double>(time);
    return true;
}

/// Every `step`-th row from t1 to t2.
void write_history(PictureMesh& picture, const TimeHistory& history, int t1, int t2, int step) {
    std::vector<double> storage(3 * as_size(picture.nodes()));
    const Matrix<double> u{storage.data(), 3, picture.nodes()};
    int frame = 0;
    for (std::int64_t t = t1; t <= t2; t += step) {
        const int row = static_cast<int>(t);
        for (int i = 1; i <= 3; ++i)
            for (int n = 1; n <= picture.hull_nodes; ++n)
                u(i, n) = history.hull[nth(i)](row, n) + 0.0; // no negative zeros
        for (int n = 1; n <= history.sea.cols; ++n)
            u(3, picture.hull_nodes + n) = history.sea(row, n) + 0.0;
        write_picture_frame(picture, ++frame, history.time[nth(row)], u);
    }
}

void cmd_hyd_export_graphics_th(std::string_view) {
    constexpr std::string_view flags[] = {"-Gmsh"};
    if (!gmsh_is_target(flags)) return print_both(" \n\t\tExport to target not supported");
    std::array<std::string, 5> names;
    for (int i = 1; i <= 5; ++i)
        names[nth(i)] = get_arg(i);
    if (is_blank(names[3]))
        return print_both(" \n\tNames of time, xdisp, ydisp and zdisp are required\n");
    std::int32_t t1 = 1, t2 = std::numeric_limits<std::int32_t>::max(), step = 1;
    std::string file;
    get_int_par(" t1=", t1);
    get_int_par(" t2=", t2);
    get_int_par(" step=", step);
    get_char_par(" file=", file, file_capacity);

    PictureMesh picture;
    TimeHistory history;
    if (!open_picture(!is_blank(names[4]), DrawnPart::all, picture)) return;
    if (!open_history(names, picture, history)) return;
    const int rows = static_cast<int>(history.time.size());
    t1 = std::clamp(t1, 1, rows);
    t2 = std::clamp(t2, 1, rows);
    if (t1 > t2) return print_both(" \n\tThere is no time step to export: t1 is above t2\n");
    if (!begin_file(file, picture)) return;
    write_history(picture, history, t1, t2, std::max(step, 1));
    close_unit(unit_gmsh);
}

constexpr Command rows[] = {
    {.words = {"hyd_export_graphics"},
     .run = cmd_hyd_export_graphics,
     .summary = "export hull and sea to a graphics program",
     .help =
         "Command Syntax\n\thyd_export_graphics  -target  [-modes T=?]  [-displ  freq=?  angle=?  "
         "steps=?]  [-freesurface]  [-wetonly]  [-views]  [file=filename]\n\n"
         "Writes the panels of the structure, and if asked for its modes, its motion in a wave and "
         "the free surface, to a mesh file. Of a symmetric structure it is the part that was "
         "entered. Without -modes and -displ the mesh is undeformed.\n\n"
         "-target\n\t-Gmsh, the only target: a text file in Gmsh's format 2.2. The structure is "
         "physical entity 1, the free surface entity 2, its nodes and panels numbered behind those "
         "of the structure.\n\n"
         "-modes\n\tWrite every mode as a displaced shape; the free surface is flat.\n\n"
         "T\n\tName of a real vector with a value for each mode that labels the shapes: frequencies "
         "or periods. Default is 1, 2, 3, ...\n\n"
         "-displ\n\tWrite the motion over one wave period, from the generalized coordinates of "
         "hyd_analysis_response, and with -freesurface the elevation of hyd_surf_elevation. The "
         "wave has unit amplitude. Frame i is at the time (i-1) period/steps. After -modes the "
         "frames count on.\n\n"
         "freq, angle\n\tNumbers of the wave frequency and the wave angle; both are required with "
         "-displ.\n\n"
         "steps\n\tNumber of frames. Default is 12.\n\n"
         "-freesurface\n\tWrite the panels of hyd_surf_panel as well.\n\n"
         "-wetonly\n\tOf the structure, only wet panels (codes W and V).\n\n"
         "-views\n\tWith -displ, views for colours as well: \"Pressure amplitude\", the modulus of "
         "the hydrodynamic pressure -i omega rho phi on the panels of the structure (0 on dry ones), "
         "from the potentials of hyd_analysis, the same in all frames; and with -freesurface \"Elevation\" "
         "at the nodes of the free surface.\n\n"
         "file\n\tName of the file. Default is the project's name with extension msh.\n\n"
         "Example\n\thyd_export_graphics -Gmsh -displ freq=3 angle=1 steps=24 -freesurface\n\n"
         "See Also\n\thyd_export_graphics_th\n\thyd_surf_panel\n\thyd_surf_elevation\n"},
    {.words = {"hyd_export_graphics_th"},
     .run = cmd_hyd_export_graphics_th,
     .summary = "export a time history to a graphics program",
     .help =
         "Command Syntax\n\thyd_export_graphics_th  [-target]  time  xdisp  ydisp  zdisp  "
         "[surfzdisp]  [t1=?]  [t2=?]  [step=?]  [file=filename]\n\n"
         "Writes the panels of the structure and a time history of their displacements, computed "
         "elsewhere, to a mesh file.\n\n"
         "-target\n\t-Gmsh, the only target and the default.\n\n"
         "time\n\tName of a real vector of N times.\n\n"
         "xdisp, ydisp, zdisp\n\tNames of real matrices (N,#nodes): displacements of the nodes of "
         "hyd_nodes, a row a time.\n\n"
         "surfzdisp\n\tName of a real matrix (N,#surfnodes): elevations of the nodes of "
         "hyd_surf_nodes. The free surface is exported if it is given.\n\n"
         "t1, t2\n\tNumbers of the first and the last time. Defaults are 1 and N.\n\n"
         "step\n\tEvery step-th time is exported. Default is 1.\n\n"
         "file\n\tName of the file. Default is the project's name with extension msh.\n\n"
         "Example\n\thyd_export_graphics_th t ux uy uz t1=101 step=5 file=storm.msh\n\n"
         "See Also\n\thyd_export_graphics\n"},
};

} // namespace

std::span<const Command> hyd_export_to_graphics_rows() {
    return rows;
}

} // namespace quelor
