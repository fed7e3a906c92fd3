// Two-node trusses. Reads `.xyz`, `.node_eqs`, `.disp`, `$ddisp`; writes the arrays of a TrussKind;
// adds to `.kstr`, `.mstr`, `.f_internal` through the services of assembly.
#include "elements/truss.hpp"

#include "elements/bar.hpp"
#include "elements/element_family.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <optional>

namespace quelor {

namespace {

enum MaterialColumn { modulus = 1, area, density, compression };
constexpr int unit_response = 99;

// --- input --------------------------------------------------------------------------------------

struct TrussRecord {
    std::int32_t n = no_key;
    std::array<std::int32_t, 2> nodes{};
    std::int32_t mat = 0, print = 0, inc = 0, gen = 0;
    double tension = 0, lo = 0;
    int ecc = 0;
    std::array<double, 6> offsets{};
};

/// Takes the three values of an offset; true when its key is on the record.
bool get_offset(std::string_view key, std::span<double> offset) {
    std::int32_t flag = no_key;
    get_int_par(key, flag);
    if (flag == no_key) return false;
    get_real_par(key, offset);
    return true;
}

/// The next record; nothing at the end of the input.
std::optional<TrussRecord> next_truss_record() {
    next_record("Enter element data: n  nodes  mat  print  inc  gen  tension  Lo ecc2\n");
    TrussRecord r;
    get_int_par("n=", r.n);
    if (r.n == no_key) return std::nullopt;
    get_int_par("nodes=", r.nodes);
    get_int_par("mat=", r.mat);
    get_int_par("print=", r.print);
    get_int_par("inc=", r.inc);
    get_int_par("gen=", r.gen);
    get_real_par("tension=", r.tension);
    get_real_par("Lo=", r.lo);
    if (get_offset("ecc1=", std::span(r.offsets).first(3))) r.ecc += 1;
    if (get_offset("ecc2=", std::span(r.offsets).last(3))) r.ecc += 2;
    return r;
}

void read_truss_materials(const TrussKind& kind, int m) {
    const auto mp = create_matrix<double>(kind.mp, m, 4);
    read_materials(mp, "Enter material data: m  e  a  mbar\n",
                   " \n\n\tMaterial number not possible\n", [&](int number) {
                       get_real_par("e=", mp(number, modulus));
                       get_real_par("a=", mp(number, area));
                       get_real_par("mbar=", mp(number, density));
                       mp(number, compression) = has_flag(" -no_compression") ? 1.0 : 0.0;
                   });
}

/// The arrays of the elements while they are read.
struct TrussTables {
    Matrix<std::int32_t> el;
    std::span<double> len, st;
    std::span<std::int32_t> ecc;
    Matrix<double> ecc2;
};

TrussTables create_tables(const TrussKind& kind, int n) {
    return {create_matrix<std::int32_t>(kind.el, 4, n), create_matrix<double>(kind.len, n, 0).all(),
            create_matrix<double>(kind.st, n, 0).all(),
            create_matrix<std::int32_t>(kind.ecc, n, 0).all(),
            create_matrix<double>(kind.ecc2, 6, n)};
}

void store_truss_record(const TrussKind& kind, const TrussRecord& r, int materials,
                        const TrussTables& t) {
    if (r.n < 1 || r.gen < 0 || std::int64_t{r.n} + r.gen > t.el.cols)
        shutdown_with(" \n\tElement number out of range-" + std::string(kind.title) + "\n");
    require_number(r.mat, materials, " \n\n\tMaterial number not possible\n");
    const std::string what = "element " + std::to_string(r.n);
    require_finite(std::array{r.tension, r.lo}, what);
    require_finite(r.offsets, what);
    for (int k = 0; k <= r.gen; ++k) {
        const int e = r.n + k;
        const auto at = nth(e);
        const std::array row{advanced_node(r.nodes[0], r.inc, k),
                             advanced_node(r.nodes[1], r.inc, k), r.mat, r.print};
        std::ranges::copy(row, t.el.col(e).begin());
        t.st[at] = r.tension;
        t.len[at] = std::max(r.lo, 0.0);
        t.ecc[at] = r.ecc;
        std::ranges::copy(r.offsets, t.ecc2.col(e).begin());
    }
}

/// Lo where none was given is the distance of the ends; where one was, it sets the tension.
void set_lengths(const TrussKind& kind, const TrussTables& t) {
    const auto x = as_matrix<const double>(find_array(xyz));
    const auto mp = as_matrix<const double>(find_array(kind.mp));
    for (int e = 1; e <= t.el.cols; ++e) {
        const auto at = nth(e);
        const BarConnection c = connect_bar(t.ecc[at], t.ecc2.col(e));
        const Vec3 p1 = add_scaled(element_node(x, t.el(1, e)), 1, c.offset1);
        const Vec3 p2 = add_scaled(element_node(x, t.el(2, e)), 1, c.offset2);
        const double length = vector_length(difference(p2, p1));
        const int mat = t.el(3, e);
        if (t.len[at] > 0)
            t.st[at] = stretched_tension(mp(mat, modulus) * mp(mat, area), t.len[at], length);
        else
            t.len[at] = length;
        require_finite({&length, 1}, "the length of element " + std::to_string(e));
    }
}

void delete_truss(const TrussKind& kind) {
    for (const auto name : {kind.el, kind.mp, kind.len, kind.st, kind.trial, kind.ecc, kind.ecc2})
        delete_array(name);
}

void read_truss(const TrussKind& kind) {
    const auto [m, n] = read_element_counts();
    if (!count_is_possible(kind.title, m, 1) || !count_is_possible(kind.title, n, 1)) return;
    std::int32_t code = 2;
    if (kind.large_displacement)
        get_int_par(" nl=", code);
    else
        code = has_flag(" -kg") ? 2 : 1;
    if (code != 1 && code != 2) return print_both(" \n\tnl must be 1 or 2\n");
    delete_truss(kind);
    read_truss_materials(kind, m);
    const TrussTables tables = create_tables(kind, n);
    while (const auto record = next_truss_record())
        store_truss_record(kind, *record, m, tables);
    if (!find_array(xyz).is(type_real)) shutdown_with(" \n\tGlobal coordinates not found\n");
    check_element_nodes(kind.title, tables.el, 2);
    set_lengths(kind, tables);
    check_element_lengths(kind.title, tables.len);
    set_element_group(kind.slot, code);
}

// --- model --------------------------------------------------------------------------------------

/// The arrays of a type, checked against each other: material numbers are safe to use.
struct TrussModel {
    Matrix<const std::int32_t> el;
    Matrix<const double> mp;
    std::span<const double> len;
    std::span<const std::int32_t> ecc;
    Matrix<const double> ecc2;

    std::span<const std::int32_t> nodes(int e) const { return el.col(e).first(2); }
};

TrussModel open_truss(const TrussKind& kind) {
    TrussModel m;
    m.el = element_matrix<std::int32_t>(kind.missing, kind.el, 4, any_size);
    m.mp = element_matrix<double>(kind.missing, kind.mp, any_size, 4);
    m.len = element_vector<double>(kind.missing, kind.len, m.el.cols);
    m.ecc = element_vector<std::int32_t>(kind.missing, kind.ecc, m.el.cols);
    m.ecc2 = element_matrix<double>(kind.missing, kind.ecc2, 6, m.el.cols);
    for (int e = 1; e <= m.el.cols; ++e)
        require_number(m.el(3, e), m.mp.rows, " \n\n\tMaterial number not possible\n");
    return m;
}

std::span<const double> truss_forces(const TrussKind& kind, std::string_view array, int n) {
    return element_vector<double>(kind.missing, array, n);
}

struct Properties {
    double ea, lo, mass; ///< mass per length
    double compression_code;
};
Properties properties_of(const TrussModel& m, int e) {
    const int mat = m.el(3, e);
    return {m.mp(mat, modulus) * m.mp(mat, area), m.len[nth(e)], m.mp(mat, density),
            m.mp(mat, compression)};
}

/// One element as it hangs in the model: how its ends hang on the nodes, the equations of their
/// degrees of freedom, and where the ends lie without displacement.
struct TrussElement {
    BarConnection connection;
    std::array<std::int32_t, 12> equations;
    Vec3 p1, p2;

    EquationList list() const { return EquationList(equations).first(as_size(connection.t.cols)); }
};

void set_equations(const TrussModel& m, const Equations& equations, int e, TrussElement& element) {
    const int code = m.ecc[nth(e)];
    const auto dofs = [](bool offset) {
        return offset ? std::span<const int>(all_six) : std::span<const int>(translations);
    };
    const auto first = dofs(code & 1), second = dofs(code & 2);
    element.connection = connect_bar(code, m.ecc2.col(e));
    const std::span list(element.equations);
    const auto nodes = m.nodes(e);
    element_equations(equations, nodes.first(1), first, list.first(first.size()));
    element_equations(equations, nodes.last(1), second, list.subspan(first.size(), second.size()));
}

TrussElement truss_element_of(const TrussModel& m, const Equations& equations,
                              Matrix<const double> x, int e) {
    TrussElement element;
    set_equations(m, equations, e, element);
    element.p1 = add_scaled(element_node(x, m.el(1, e)), 1, element.connection.offset1);
    element.p2 = add_scaled(element_node(x, m.el(2, e)), 1, element.connection.offset2);
    return element;
}

struct EndDisplacements {
    Vec3 u1, u2;
};
EndDisplacements end_displacements(const TrussElement& element, const Displacements& u) {
    std::array<double, 12> nodal{};
    element_displacements(u, element.list(), std::span(nodal).first(element.list().size()));
    const auto ends = product(element.connection.t, nodal);
    return {{ends[0], ends[1], ends[2]}, {ends[3], ends[4], ends[5]}};
}

/// Direction and length of the element where the ends are now.
VectorLength present_chord(const TrussElement& element, const Displacements& u) {
    const auto [u1, u2] = end_displacements(element, u);
    return direction_cosines(add_scaled(element.p1, 1, u1), add_scaled(element.p2, 1, u2));
}

// --- matrices -----------------------------------------------------------------------------------

void truss_column_heights(const TrussKind& kind) {
    const TrussModel m = open_truss(kind);
    const Equations equations = open_equations();
    ColumnHeights heights = open_column_heights(equations);
    TrussElement element;
    for (int e = 1; e <= m.el.cols; ++e) {
        set_equations(m, equations, e, element);
        add_column_heights(heights, element.list());
    }
}

/// code  1 linear, 2 with the geometric stiffness and at the present displacements
void truss_stiffness(const TrussKind& kind, int code) {
    if (code != 1 && code != 2) return;
    const TrussModel m = open_truss(kind);
    const auto x = require_coordinates();
    const Equations equations = open_equations();
    const auto force =
        truss_forces(kind, code == 2 ? trial_or_state(kind.trial, kind.st) : kind.st, m.el.cols);
    const Displacements u = code == 2 ? open_displacements(equations) : Displacements{};
    GlobalMatrix global = open_stiffness(equations);
    for (int e = 1; e <= m.el.cols; ++e) {
        const Properties p = properties_of(m, e);
        const double tension = force[nth(e)];
        if (p.compression_code != 0 && tension < 0) continue; // slack
        const TrussElement element = truss_element_of(m, equations, x, e);
        const auto [c, length] =
            code == 2 ? present_chord(element, u) : direction_cosines(element.p1, element.p2);
        // The name is the same for both types.
        if (!(length > 0)) shutdown_with(" \n\tZero element length-NTRUSS\n");
        SmallMatrix<6> k = bar_stiffness(c, p.ea / p.lo);
        if (code == 2) add_bar_geometric(k, c, tension / length);
        if (element.connection.t.cols == 6)
            add_stiffness(global, element.list(), k.view());
        else
            add_stiffness(global, element.list(), congruent(k, element.connection.t).view());
    }
}

/// Half of the element's mass at each end, in all directions.
void truss_mass(const TrussKind& kind) {
    const TrussModel m = open_truss(kind);
    const Equations equations = open_equations();
    GlobalMatrix global = open_mass(equations);
    TrussElement element;
    for (int e = 1; e <= m.el.cols; ++e) {
        if (m.ecc[nth(e)] != 0)
            shutdown_with(
                " \n    Eccentricity of ntruss element not implemented for mass matrix\n");
        const Properties p = properties_of(m, e);
        set_equations(m, equations, e, element);
        std::array<double, 6> mass;
        mass.fill(p.lo * p.mass / 2);
        add_mass(global, element.list(), mass);
    }
}

// --- state --------------------------------------------------------------------------------------

/// Force to be stored, and the force that acts: a tension-only element that is slack has none.
struct TrussState {
    double stored, acting;
    Vec3 direction;
};

TrussState large_state(const Properties& p, const TrussElement& element, const Displacements& u) {
    const auto [c, length] = present_chord(element, u);
    const double tension = stretched_tension(p.ea, p.lo, length);
    if (p.compression_code == 1.0 && tension < 0) return {slack_force, 0, c};
    return {tension, tension, c};
}

TrussState linear_state(const Properties& p, const TrussElement& element, const Displacements& u) {
    const Vec3 c = direction_cosines(element.p1, element.p2).vector;
    const auto [u1, u2] = end_displacements(element, u);
    const double tension = linear_tension(p.ea, p.lo, c, u1, u2);
    return {tension, tension, c};
}

void truss_trial_state(const TrussKind& kind) {
    const TrussModel m = open_truss(kind);
    const auto x = require_coordinates();
    const Equations equations = open_equations();
    const Displacements u = open_displacements(equations);
    const auto trial = trial_array(kind.trial, m.el.cols, 0);
    GlobalVector internal = open_internal_force(equations);
    for (int e = 1; e <= m.el.cols; ++e) {
        const Properties p = properties_of(m, e);
        const TrussElement element = truss_element_of(m, equations, x, e);
        const TrussState state =
            kind.large_displacement ? large_state(p, element, u) : linear_state(p, element, u);
        trial(e) = state.stored;
        const auto force =
            transposed_product(element.connection.t, bar_force(state.direction, state.acting));
        add_internal_force(internal, element.list(), std::span(force).first(element.list().size()));
    }
}

// --- printing -----------------------------------------------------------------------------------

void print_truss(const TrussKind& kind) {
    const TrussModel m = open_truss(kind);
    const auto force = truss_forces(kind, kind.st, m.el.cols);
    write_both("10(' MAT', /,            ' NO.', 5x, 'MODULUS', 8x, 'AREA', 5x,'DENSITY')");
    for (int i = 1; i <= m.mp.rows; ++i) {
        const FormatItems items{i, m.mp(i, modulus), m.mp(i, area), m.mp(i, density)};
        if (m.mp(i, compression) == 0)
            write_both("20(i4, 1p3e12.4)", items);
        else
            write_both("25(i4, 1p3e12.4, 5x, '(TENSION-ONLY)')", items);
    }
    write_both(
        "30(/, ' ELEMENT  NODE-1  NODE-2    MATL   PRINT',            6x, 'LENGTH', 5x, 'TENSION', 10x, 'END ECCENTRICITIES')");
    for (int e = 1; e <= m.el.cols; ++e) {
        const auto at = nth(e);
        FormatItems items{e, m.el.col(e), m.len[at], force[at]};
        if (m.ecc[at] != 0) items.add(m.ecc2.col(e));
        write_both("45(5(i6,2x), 1p2e12.5, 2x, 6(e12.4,1x))", items);
    }
}

/// On the output file, the elements with print code 0.
void print_truss_state(const TrussKind& kind, std::string_view array) {
    const TrussModel m = open_truss(kind);
    const auto force = truss_forces(kind, array, m.el.cols);
    if (kind.large_displacement)
        write_unit(
            unit_output,
            "50(/,'     NONLINEAR TRUSS ELEMENT STATE',/,            ' ELEMENT  NODE-1  NODE-2', 5x,'TENSION')");
    else
        write_unit(
            unit_output,
            "50(/,'     LINEAR TRUSS ELEMENT STATE',/,            ' ELEMENT  NODE-1  NODE-2', 5x,'TENSION')");
    for (int e = 1; e <= m.el.cols; ++e)
        if (m.el(4, e) == 0)
            write_unit(unit_output, "65(3(i6,2x), 1pe12.5)", {e, m.nodes(e), force[nth(e)]});
}

/// The state, and with -file number and force of all elements on the response file.
void print_truss_response(const TrussKind& kind) {
    const bool file = has_flag(" -file"), append = has_flag(" -append");
    print_truss_state(kind, kind.st);
    if (!file || fortopen_ext_position(unit_response, kind.extension, "UNKNOWN", "BINARY",
                                       append ? "APPEND" : "REWIND") != 0)
        return;
    const auto force = truss_forces(kind, kind.st, open_truss(kind).el.cols);
    for (std::int32_t e = 1; const double value : force) {
        stream_write(unit_response, std::span<const std::int32_t>(&e, 1));
        stream_write(unit_response, std::span<const double>(&value, 1));
        ++e;
    }
    close_unit(unit_response);
}

// --- protocol -----------------------------------------------------------------------------------

void serve(const TrussKind& kind, Request request) {
    switch (task_of(request)) {
    case Task::input:
        return read_truss(kind);
    case Task::column_heights:
        return truss_column_heights(kind);
    case Task::connectivity:
        return elem_conn0(element_matrix<std::int32_t>(kind.missing, kind.el, 4, any_size), 2);
    case Task::stiffness:
        return truss_stiffness(kind, request.modifier1);
    case Task::mass:
    case Task::mass_diagonal:
        return truss_mass(kind);
    case Task::trial_state:
        return truss_trial_state(kind);
    case Task::commit_state:
        return commit_state(kind.trial, kind.st);
    case Task::print_input:
        return print_truss(kind);
    case Task::print_state:
        return print_truss_state(kind, kind.st);
    case Task::print_trial_state:
        return print_truss_state(kind, trial_or_state(kind.trial, kind.st));
    case Task::print_response:
        return print_truss_response(kind);
    default:
        return; // no work for a truss
    }
}

// --- help ---------------------------------------------------------------------------------------

constexpr std::string_view records_text =
    "\n\t   m=matl  e=emodulus  a=area  [mbar=density]  [-no_compression]\n\t"
    "   n=nel  nodes=node1,node2  mat=mat  [print=print]  [inc=inc]  [gen=gen]  [tension=tension]  "
    "[Lo=length]  [ecc1=delta_x,delta_y,delta_z]  [ecc2=delta_x,delta_y,delta_z]\n\t"
    "   (blank line)\n\n";

constexpr std::string_view arguments_text =
    "m\n\tOn the command line the number of materials, each of which takes one material record; on "
    "such a record its number, 1 to m.\n\n"
    "e, a\n\tModulus of elasticity and area of the section. Defaults are 0.\n\n"
    "mbar\n\tMass per unit length. Default is 0.\n\n"
    "-no_compression\n\tThe material takes tension only@1.\n\n"
    "n\n\tOn the command line the number of elements; on a record the number of its element. A "
    "number out of range, here or of a material, ends the program; the database is saved first. A "
    "blank line ends the input.\n\n"
    "nodes\n\tNumbers of the end nodes.\n\n"
    "mat\n\tMaterial number.\n\n"
    "print\n\tPrint code of the results: 0 printed (the default), otherwise not.\n\n"
    "gen, inc\n\tNumber of further elements, numbered n+1, n+2, ..., and the increment of both nodes "
    "from one to the next. Defaults are 0.\n\n"
    "tension\n\tForce in the element, tension positive. Default is 0. It has a meaning only without "
    "Lo.\n\n"
    "Lo\n\tUnstretched length. The force is then E A (L/Lo - 1), with L the distance between the "
    "ends. Default is L.\n\n"
    "ecc1, ecc2\n\tOffsets in global axes from node 1 to the start and from node 2 to the end of the "
    "element, by rigid arms that follow the rotations of the nodes to first order. An element with "
    "an offset has no mass matrix. Default is no offset.\n\n";

constexpr std::string_view arrays_text =
    "Arrays created: .@_mp(m,4) modulus, area, density, 1 for tension only; .@_el(4,n) node1, node2, "
    "material, print code; .@_len(n) unstretched lengths; .@_st(n) forces; .@_ecc(n) 0 no offset, 1 "
    "at the start, 2 at the end, 3 at both; .@_ecc2(6,n) offsets. The group code is in "
    ".elem_grp.\n\n";

constexpr std::string_view print_text =
    "Command Syntax\n\tp@\n\n"
    "Prints the materials and elements of @: node1, node2, material, print code, unstretched length, "
    "force, and the offsets of an element that has any.\n\n"
    "Example:\n\tp@\n\n"
    "The forces of a solution are printed by pstate and presponse; presponse -file also writes "
    "element number (integer, 4 bytes) and force (real, 8 bytes) of each element to the stream file "
    "with extension %; -append adds to a file that is there.\n\n"
    "See Also\n\t@\n\tpstate\n\tpresponse\n";

} // namespace

std::string_view ntruss_help() {
    static const std::string text =
        "Command Syntax\n\tntruss  m=?  n=?  [nl=?]" + std::string(records_text) +
        "Input of two-node trusses with large displacements and small strains.\n\n"
        "nl\n\tGroup code: 1 linear stiffness, 2 (the default) stiffness at the present "
        "displacements, with the geometric stiffness.\n\n" +
        replaced(arguments_text, "@1",
                 ": where it would be in compression it has no force and no stiffness") +
        "Example (three elements on nodes 1 to 4):\n\tntruss m=1 n=3\n\tm=1 e=2.1e11 a=1e-3\n\t"
        "n=1 nodes=1,2 mat=1 gen=2 inc=1 tension=1000\n\t(blank line)\n\n" +
        replaced(arrays_text, "@", "ntruss") +
        "See Also\n\tpntruss\n\ttruss\n\tnodes\n\tbcid\n\telem_grp\n";
    return text;
}

std::string_view truss_help() {
    static const std::string text =
        "Command Syntax\n\ttruss  m=?  n=?  [-kg]" + std::string(records_text) +
        "Input of linear two-node trusses.\n\n"
        "-kg\n\tWith the geometric stiffness of the force in the element, at the present "
        "displacements.\n\n" +
        replaced(
            arguments_text, "@1",
            ", as far as its stiffness goes: an element whose stored force is below 0 has none. "
            "Its state is linear all the same") +
        "Example (three elements on nodes 1 to 4):\n\ttruss m=1 n=3\n\tm=1 e=2.1e11 a=1e-3\n\t"
        "n=1 nodes=1,2 mat=1 gen=2 inc=1\n\t(blank line)\n\n" +
        replaced(arrays_text, "@", "truss") +
        "See Also\n\tptruss\n\tntruss\n\tnodes\n\tbcid\n\telem_grp\n";
    return text;
}

std::string_view pntruss_help() {
    static const std::string text = replaced(replaced(print_text, "@", "ntruss"), "%", "ntr");
    return text;
}

std::string_view ptruss_help() {
    static const std::string text = replaced(replaced(print_text, "@", "truss"), "%", "tr");
    return text;
}

void ntruss_element(Request request) {
    serve(ntruss_kind, request);
}

void truss_element(Request request) {
    serve(truss_kind, request);
}

} // namespace quelor
