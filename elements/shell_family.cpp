// What the types of Mindlin shells share. Reads `.xyz`, `gravity`; writes the table of elements and
// of materials of a ShellKind.
#include "elements/shell_family.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "numeric/finite.hpp"

namespace quelor {

namespace {

enum MaterialColumn { modulus = 1, shear_modulus = 4, poisson = 7, thickness = 10, density = 11 };
constexpr std::string_view bad_material = " \n\n\tMaterial number not possible\n";
constexpr double default_drill = 1e-5;

} // namespace

// --- input --------------------------------------------------------------------------------------

bool shell_counts_are_possible(const ShellKind& kind, const ElementCounts& counts, int fewest) {
    return count_is_possible(kind.title, counts.materials, 1) &&
           count_is_possible(kind.title, counts.elements, fewest);
}

void delete_shells(const ShellKind& kind) {
    for (const auto name : {kind.el, kind.mp, kind.st, kind.trial, kind.rlx})
        delete_array(name);
    for (const auto name : kind.others)
        delete_array(name);
}

namespace {

/// A key that a type may be without.
struct OptionalKey {
    std::string_view key;
    int column;
    double standard;
    bool zero_is_standard; ///< otherwise only a negative value is
};

void read_shell_material(const ShellKind& kind, Matrix<double> mp, int number) {
    const auto get = [&](std::string_view key, int column) {
        get_real_par(key, mp(number, column));
    };
    const auto get_three = [&](std::string_view key, int column) {
        Vec3 v{};
        get_real_par(key, v);
        for (int i = 0; i < 3; ++i)
            mp(number, column + i) = v[as_size(i)];
    };
    get_three(" e=", modulus);
    get_three(" g=", shear_modulus);
    get_three(" nu=", poisson);
    get(" t=", thickness);
    get(" mass=", density);
    const ShellColumns& c = kind.columns;
    get(kind.axes_key, c.axes);
    if (c.iso > 0) get(" iso=", c.iso);
    if (c.fdensity > 0) get(" fdensity=", c.fdensity);
    for (const auto& [key, column, standard, zero_is_standard] : {
             OptionalKey{" C_s=", c.c_s, kind.c_s, false},
             OptionalKey{" C_m=", c.c_m, 1, false},
             OptionalKey{" tbending=", c.tbending, mp(number, thickness), true},
             OptionalKey{kind.drill_key ? " drill=" : "", c.drill, default_drill, true},
         }) {
        if (column == 0) continue;
        double& value = mp(number, column);
        value = standard;
        if (!key.empty()) get(key, column);
        if (value < 0 || (zero_is_standard && value == 0)) value = standard;
    }
}

/// Material `number` along its own axes.
ShellMaterial material_of(const ShellKind& kind, Matrix<const double> mp, int number) {
    const auto three = [&](int column) {
        return Vec3{mp(number, column), mp(number, column + 1), mp(number, column + 2)};
    };
    const double t = mp(number, thickness);
    const int tb = kind.columns.tbending;
    const ShellMaterial m{three(modulus), three(shear_modulus), three(poisson), t,
                          tb > 0 ? mp(number, tb) : t};
    const int iso = kind.columns.iso;
    return iso > 0 && mp(number, iso) == 0 ? isotropic(m) : m;
}

void require_elastic(const ShellKind& kind, Matrix<const double> mp, int number) {
    const ShellMaterial m = material_of(kind, mp, number);
    const ShellSection s = is_elastic(m) ? min3s_material(m) : ShellSection{};
    if (s.membrane(1, 1) > 0 && all_finite(s.membrane.a) && all_finite(s.bending.a)) return;
    shutdown_with(
        " \n\tMaterial " + std::to_string(number) + " of " + std::string(kind.title) +
        " is not elastic: moduli and thickness must be above 0, and Poisson's ratios such "
        "that every strain takes work\n");
}

} // namespace

void read_shell_materials(const ShellKind& kind, int m, void (*more)(int number)) {
    const auto mp = create_matrix<double>(kind.mp, m, kind.columns.count);
    read_materials(mp, "Enter material data\n", bad_material, [&](int number) {
        read_shell_material(kind, mp, number);
        if (more) more(number);
    });
    for (int number = 1; number <= m; ++number)
        require_elastic(kind, mp, number);
}

std::optional<ShellRecord> next_shell_record(const ShellKind& kind, int materials) {
    const auto grid = next_grid_record("Enter element data\n", kind.nodes);
    if (!grid) return std::nullopt;
    ShellRecord r{.grid = *grid};
    get_int_par(" mat=", r.mat);
    get_int_par(" print=", r.print);
    get_int_par(" face=", r.face);
    if (r.face < -1 || r.face > 1) shutdown_with(" \n\tThe face of a shell must be -1, 0 or 1\n");
    require_number(r.mat, materials, bad_material);
    return r;
}

void check_shell_nodes(const ShellKind& kind, Matrix<const std::int32_t> el, int vertices) {
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        const auto corners = el.col(e).first(as_size(vertices));
        if (el(kind.material_row(), e) == 0)
            write_both("(/, 4x, a, ' element number', i5, ' has not been entered')",
                       {kind.title, e});
        else if (std::ranges::find(corners, 0) != corners.end())
            write_both("(/, 4x, 'A vertex of ', a, ' element number', i5, ' = 0')",
                       {kind.title, e});
        else
            continue;
        good = false;
    }
    end_of_shell_check(good);
    check_element_nodes(kind.title, el, kind.nodes);
}

void name_flat_shell(const ShellKind& kind, int e) {
    write_both("(/, 4x, 'Area of ', a, ' element number', i5, ' = 0')", {kind.title, e});
}

void end_of_shell_check(bool good) {
    if (!good) shutdown_with(" \nSave database and quit\n");
}

void refuse_flat_shell(const ShellKind& kind, int e) {
    name_flat_shell(kind, e);
    shutdown_with(" \nSave database and quit\n");
}

// --- model --------------------------------------------------------------------------------------

Matrix<const std::int32_t> open_shell_table(const ShellKind& kind) {
    return element_matrix<std::int32_t>(kind.missing, kind.el, kind.rows, any_size);
}

namespace {

ShellProperties properties_of(const ShellKind& kind, Matrix<const double> mp, int number) {
    const ShellColumns& c = kind.columns;
    const auto value = [&](int column, double otherwise) {
        return column > 0 ? mp(number, column) : otherwise;
    };
    return {.section = min3s_material(material_of(kind, mp, number)),
            .own_axes = value(c.iso, 1) != 0,
            .other_axes = mp(number, c.axes) != 0,
            .thickness = mp(number, thickness),
            .mass_per_area = mp(number, density) * mp(number, thickness),
            .c_s = value(c.c_s, 0),
            .c_m = value(c.c_m, 0),
            .drill = value(c.drill, 0),
            .fdensity = value(c.fdensity, 0)};
}

} // namespace

ShellModel open_shells(const ShellKind& kind) {
    ShellModel m;
    m.el = open_shell_table(kind);
    m.x = require_coordinates();
    const auto mp = element_matrix<double>(kind.missing, kind.mp, any_size, kind.columns.count);
    for (int number = 1; number <= mp.rows; ++number) {
        require_elastic(kind, mp, number); // the table may have been changed by hand
        m.materials.push_back(properties_of(kind, mp, number));
    }
    m.material_row = kind.material_row();
    for (int e = 1; e <= m.el.cols; ++e)
        require_number(m.el(m.material_row, e), mp.rows, bad_material);
    return m;
}

std::optional<ShellGravity> find_gravity() {
    const ArrayRef ref = find_array("gravity");
    if (!ref) return std::nullopt;
    if (!ref.is(type_real) || ref.size() != 4 || !all_finite(as_span<const double>(ref)))
        shutdown_with(" \n\tArray gravity must be real, with four finite values: load pattern, "
                      "gx, gy, gz\n");
    const auto g = as_span<const double>(ref);
    return ShellGravity{nearest_int(g[0]), {g[1], g[2], g[3]}};
}

std::optional<std::vector<double>> find_node_pressures() {
    std::string name;
    get_char_par(" q=", name, word_length + 1);
    if (name.empty()) return std::vector<double>{};
    const ArrayRef ref = find_array(name);
    if (!ref.is(type_real) || !all_finite(as_span<const double>(ref)))
        return print_both(" \n\tVector of pressures " + name +
                          " must be real, with a finite value for each node\n"),
               std::nullopt;
    const auto values = as_span<const double>(ref);
    return std::vector<double>(values.begin(), values.end());
}

PressureKeys read_pressure_keys(const ShellKind& kind) {
    PressureKeys keys;
    keys.values[0] = std::numeric_limits<double>::infinity(); // stays when there is no key
    get_int_par(" pat=", keys.pattern);
    const auto values = std::span(keys.values).first(as_size(kind.nodes));
    get_real_par(" q=", values);
    keys.given = !std::isinf(keys.values[0]);
    if (keys.given) require_finite(values, "a pressure of an element");
    return keys;
}

void store_pressure(const ShellKind& kind, const PressureKeys& keys,
                    std::span<const double> at_nodes, std::span<const std::int32_t> nodes,
                    std::span<double> out) {
    if (!keys.given && at_nodes.empty()) return;
    out[0] = keys.pattern;
    for (std::size_t i = 0; i < as_size(kind.nodes); ++i) {
        const bool known = nodes[i] >= 1 && as_size(nodes[i]) <= at_nodes.size();
        out[i + 1] = keys.given ? keys.values[i] : known ? at_nodes[nth(nodes[i])] : 0;
    }
}

// --- elements -----------------------------------------------------------------------------------

ShellSection section_in(const ShellProperties& p, const LocalAxes& triangle, const Vec3& axis1) {
    if (!p.own_axes) return p.section;
    const auto [cosine, sine] = turn_of(triangle, axis1);
    return turned_section(p.section, cosine, sine);
}

void store_shell_result(Matrix<double> out, int row, const Vec3& place, std::span<const double> r) {
    for (int i = 1; i <= 3; ++i)
        out(row, i) = place[nth(i)];
    for (int i = 4; i <= out.cols; ++i)
        out(row, i) = r[nth(i - 3)] + 0.0; // no negative zeros
}

void name_bad_quad(const ShellKind& kind, const ShellQuad& q, int number) {
    if (q.normal == Vec3{}) return name_flat_shell(kind, number);
    write_both("(/, 4x, a, ' element number', i5, ' is not convex')", {kind.title, number});
}

// --- printing and requests ----------------------------------------------------------------------

namespace {

void print_shell_materials(const ShellKind& kind, Matrix<const double> mp) {
    write_both(
        "(' MAT', /, ' NO.', 10x, 'E1', 10x, 'E2', 10x, 'E3', 9x, 'G12', 9x, 'G23', 9x, 'G13', 8x, 'NU12', 8x, 'NU23', 8x, 'NU13')");
    const auto row = [&](int i, std::span<const int> columns) {
        FormatItems items{i};
        for (const int c : columns)
            items.add(mp(i, c));
        write_both("(i4, 1p9e12.4)", items);
    };
    constexpr std::array elastic{1, 2, 3, 4, 5, 6, 7, 8, 9};
    for (int i = 1; i <= mp.rows; ++i)
        row(i, elastic);
    const ShellColumns& c = kind.columns;
    const std::string_view axes = kind.axes_key == " global=" ? "GLOBAL" : "LOCAL";
    FormatItems heading;
    std::vector<int> columns;
    for (const auto& [name, column] :
         std::initializer_list<std::pair<std::string_view, int>>{{"THICKNESS", thickness},
                                                                 {"MASS", density},
                                                                 {axes, c.axes},
                                                                 {"C_S", c.c_s},
                                                                 {"C_M", c.c_m},
                                                                 {"ISO", c.iso},
                                                                 {"T-BENDING", c.tbending},
                                                                 {"DRILL", c.drill},
                                                                 {"FDENSITY", c.fdensity}}) {
        if (column == 0) continue;
        heading.add(name);
        columns.push_back(column);
    }
    write_both("(/, ' MAT', /, ' NO.', 9a12)", heading);
    for (int i = 1; i <= mp.rows; ++i)
        row(i, columns);
}

} // namespace

void print_shells(const ShellKind& kind) {
    const auto el = open_shell_table(kind);
    print_shell_materials(
        kind, element_matrix<double>(kind.missing, kind.mp, any_size, kind.columns.count));
    constexpr std::string_view nodes[] = {"NODE-1", "NODE-2", "NODE-3",
                                          "NODE-4", "NODE-5", "NODE-6"};
    constexpr std::string_view rest[] = {"MATL", "PRINT", "FACE", "ID#"};
    FormatItems heading;
    for (int row = 1; row <= kind.rows; ++row)
        heading.add(row <= kind.nodes ? nodes[nth(row)] : rest[nth(row - kind.nodes)]);
    write_both("(/, ' ELEMENT', 9a8)", heading);
    for (int e = 1; e <= el.cols; ++e)
        write_both("(i6, 2x, 9(i6, 2x))", {e, el.col(e)});
}

void print_shell_results(const ShellKind& kind, std::string_view what,
                         std::span<const std::string_view> columns, Matrix<const double> table) {
    const auto el = open_shell_table(kind);
    write_unit(unit_output, "(/, 5x, a, ' ELEMENT ', a)", {kind.title, what});
    FormatItems heading;
    for (const auto name : columns)
        heading.add(name);
    write_unit(unit_output, "(' ELEMENT  PART', 11a11)", heading);
    const int parts = el.cols > 0 ? table.rows / el.cols : 0;
    for (int row = 1; row <= parts * el.cols; ++row) {
        const int e = (row - 1) / parts + 1;
        if (el(kind.print_row(), e) != 0) continue;
        FormatItems items{kind.id_row > 0 ? el(kind.id_row, e) : e, (row - 1) % parts + 1};
        for (int c = 1; c <= table.cols; ++c)
            items.add(table(row, c));
        write_unit(unit_output, "(i6, 2x, i6, 1p11e11.3)", items);
    }
}

bool serve_shell(const ShellKind& kind, Task task) {
    switch (task) {
    case Task::connectivity:
        return elem_conn0(open_shell_table(kind), kind.nodes), true;
    case Task::print_input:
        return print_shells(kind), true;
    case Task::error:
        print_both(" \n\tError estimation of " + std::string(kind.title) +
                   " is not available in this version\n");
        return true;
    default:
        return false;
    }
}

} // namespace quelor
