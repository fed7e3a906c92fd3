// The family of Mindlin shells and plates: what all its types share. A type is a row of names and
// differences, a ShellKind.
#pragma once

#include "elements/element_family.hpp"
#include "elements/grid_input.hpp"
#include "elements/shell_quad.hpp"

#include <optional>
#include <vector>

namespace quelor {

// --- types --------------------------------------------------------------------------------------

/// Columns of a type's material table behind E1 E2 E3 G12 G23 G13 nu12 nu23 nu13 (1 to 9),
/// thickness (10) and mass per volume (11); 0 where a type has no such property.
struct ShellColumns {
    int axes = 12; ///< `axes_key`
    int c_s = 0, c_m = 0, iso = 0, tbending = 0, drill = 0, fdensity = 0;
    int count = 0;
};

/// One type: n elements of m materials.
struct ShellKind {
    int slot;
    std::string_view name;  ///< "min3s"
    std::string_view title; ///< of the messages: "MIN3S"
    std::string_view el;    ///< integer (rows, n): nodes, material, print code, ...
    std::string_view mp;    ///< real (m, columns.count)
    std::string_view st;    ///< real: committed state
    std::string_view trial; ///< real: trial state
    std::string_view rlx;   ///< real: factors of relaxation
    std::span<const std::string_view> others; ///< further arrays that the input deletes
    std::string_view missing;                 ///< message of missing arrays
    std::string_view out_of_range;            ///< message of an element number
    int rows;                                 ///< of the table of elements
    int nodes;                                ///< first rows, node numbers
    std::span<const int> increments;          ///< 1 to 3: that each node goes by in a generation
    ShellColumns columns;
    std::string_view axes_key; ///< " global=" or " local="
    double c_s;                ///< default of C_s
    bool drill_key;            ///< drill= is read
    int id_row = 0;            ///< row of the element's own number, 0: the column's

    int material_row() const { return nodes + 1; }
    int print_row() const { return nodes + 2; }
    int face_row() const { return nodes + 3; } ///< of the types that have faces
};

// --- input --------------------------------------------------------------------------------------

/// " m=" and " n=" are possible, n from `fewest` on; otherwise a message.
bool shell_counts_are_possible(const ShellKind& kind, const ElementCounts& counts, int fewest);
/// Deletes all arrays of the type.
void delete_shells(const ShellKind& kind);
/// Makes the table of m materials and reads their records; a material that is not elastic gives the
/// fatal path. `more` takes what else the type has of the record of a material; it may be null.
void read_shell_materials(const ShellKind& kind, int m, void (*more)(int number));

/// A record of elements with what all of its grid share.
struct ShellRecord {
    GridRecord grid;
    std::int32_t mat = 0, print = 0, face = 0;
};
std::optional<ShellRecord> next_shell_record(const ShellKind& kind, int materials);
/// Stores the elements of a record, each in the column of its number; visit(e) takes what else
/// there is of each.
template <class Visit>
void store_shells(const ShellKind& kind, const ShellRecord& r, Matrix<std::int32_t> el,
                  Visit visit) {
    generate_grid(r.grid, kind.increments, el.cols, kind.out_of_range,
                  [&](int e, std::span<const std::int32_t> nodes) {
                      const auto column = el.col(e);
                      std::ranges::copy(nodes, column.begin());
                      column[nth(kind.material_row())] = r.mat;
                      column[nth(kind.print_row())] = r.print;
                      visit(e);
                  });
}
/// Every column has been entered and none of its first `vertices` nodes is 0; then all nodes pass
/// the check of nodes. Otherwise each bad element is named, and the fatal path taken.
void check_shell_nodes(const ShellKind& kind, Matrix<const std::int32_t> el, int vertices);
/// After a loop in which name_flat_shell named elements: the fatal path when there were any.
void name_flat_shell(const ShellKind& kind, int e);
void end_of_shell_check(bool good);
/// The fatal path for an element whose nodes have been moved since its input.
[[noreturn]] void refuse_flat_shell(const ShellKind& kind, int e);

// --- model --------------------------------------------------------------------------------------

/// What a material gives each of its elements.
struct ShellProperties {
    ShellSection section;
    bool own_axes = false;   ///< the section is not isotropic: it stands in the element's axes
    bool other_axes = false; ///< the key of the axes is not 0
    double thickness = 0, mass_per_area = 0;
    double c_s = 0, c_m = 0, drill = 0, fdensity = 0;
};

/// The arrays of a type, checked against each other: material numbers are safe to use.
struct ShellModel {
    Matrix<const std::int32_t> el;
    Matrix<const double> x; ///< coordinates of the model's nodes
    std::vector<ShellProperties> materials;
    int material_row = 0;

    const ShellProperties& properties(int e) const { return materials[nth(el(material_row, e))]; }
};
Matrix<const std::int32_t> open_shell_table(const ShellKind& kind);
ShellModel open_shells(const ShellKind& kind);

/// `gravity`, a real array (4) of the user: load pattern, acceleration along X, Y, Z.
struct ShellGravity {
    int pattern;
    Vec3 acceleration;
};
std::optional<ShellGravity> find_gravity();

/// The pressures of the command's vector ` q=` by node, empty without one; nothing after a message.
std::optional<std::vector<double>> find_node_pressures();
/// The keys pat and q of a record, q with as many values as the element has nodes.
struct PressureKeys {
    bool given = false;
    std::int32_t pattern = 1;
    std::array<double, 6> values{};
};
PressureKeys read_pressure_keys(const ShellKind& kind);
/// Column e of the type's table of pressures: pattern, then a value a node. Those of the record win
/// over those of the nodes; without either the pattern is 0.
void store_pressure(const ShellKind& kind, const PressureKeys& keys,
                    std::span<const double> at_nodes, std::span<const std::int32_t> nodes,
                    std::span<double> out);

// --- elements -----------------------------------------------------------------------------------

/// The section in the axes of a triangle of an element whose axis 1 has a direction near its plane.
ShellSection section_in(const ShellProperties& p, const LocalAxes& triangle, const Vec3& axis1);
/// Row `row` of a table of results: place, then resultants.
void store_shell_result(Matrix<double> out, int row, const Vec3& place, std::span<const double> r);
/// Says that a quadrilateral has no area or a dent.
void name_bad_quad(const ShellKind& kind, const ShellQuad& q, int number);
/// Names the columns of a whole state.
inline constexpr std::string_view shell_columns[] = {"X",  "Y",  "Z",   "NX", "NY", "NXY",
                                                     "MX", "MY", "MXY", "QX", "QY"};

// --- printing and requests ----------------------------------------------------------------------

/// Materials and elements, on both units.
void print_shells(const ShellKind& kind);
/// A table of results on the output file: as many rows for each element with print code 0 as the
/// table has for each of all.
void print_shell_results(const ShellKind& kind, std::string_view what,
                         std::span<const std::string_view> columns, Matrix<const double> table);
/// The tasks that are the same for all types; false when it was another.
bool serve_shell(const ShellKind& kind, Task task);

} // namespace quelor
