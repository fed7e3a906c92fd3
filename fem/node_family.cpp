#include "fem/node_family.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <limits>
#include <optional>

namespace quelor {

namespace {

constexpr std::int32_t not_given = std::numeric_limits<std::int32_t>::min();
constexpr int bad_number = -1; // a node number that no list holds

/// Number of nodes strictly between a and b in steps of inc; below 1 when there are none.
std::int64_t nodes_between(int a, int b, int inc) {
    const std::int64_t count = (std::int64_t{b} - a) / inc;
    return a + count * inc == b ? count - 1 : count;
}

/// A typed number rounded to the nearest integer, halves away from zero.
int rounded(double x) {
    if (!(std::abs(x) < 2e9)) return bad_number;
    return static_cast<int>(std::lround(x));
}

struct NodeRecord {
    int n;
    Vec3 x;
    int lgen;
};

/// The next record of node input: plain numbers, or keys; nothing at the end of the input.
std::optional<NodeRecord> next_node_record() {
    std::array<double, 5> v{};
    read_real_record("Enter nodal data: n  x  y  z  lgen\n", v);
    if (const int n = rounded(v[0]); n != 0)
        return NodeRecord{n, {v[1], v[2], v[3]}, rounded(v[4])};

    NodeRecord record{not_given, {0, 0, 0}, 0};
    get_int_par("n=", record.n);
    get_real_par("x=", record.x[0]);
    get_real_par("y=", record.x[1]);
    get_real_par("z=", record.x[2]);
    get_int_par("lgen=", record.lgen);
    if (record.n == not_given) return std::nullopt;
    return record;
}

void check_record(const NodeRecord& record, int total) {
    if (!node_in_range(record.n, total)) shutdown_with(" \n\t\tInvalid node number\n");
    if (!is_finite(record.x))
        shutdown_with(" \n\tCoordinates of node " + std::to_string(record.n) +
                      " are not finite numbers\n");
}

bool all_in_range(std::span<const std::int32_t> nodes, int limit) {
    return std::all_of(nodes.begin(), nodes.end(),
                       [&](std::int32_t n) { return node_in_range(n, limit); });
}

} // namespace

void NodeSet::define(int n, const Vec3& p) {
    for (int i = 1; i <= 3; ++i)
        xyz(i, n) = p[nth(i)];
    if (!active.empty()) active[nth(n)] = 'A';
    count = std::max(count, n);
}

NodeSet open_nodes(const NodeKind& kind) {
    const int total = get_int(kind.total);
    if (total < 1) return print_both(" \n\tNumber nodes < 1\n"), NodeSet{};
    const ArrayRef xyz = find_array(kind.xyz);
    if (!xyz.is(type_real)) return print_both(" \n\tCoordinate array not found\n"), NodeSet{};
    std::span<char> active;
    if (!kind.active.empty()) {
        const ArrayRef ref = find_array(kind.active);
        if (!ref.is(type_character))
            return print_both(" \n\tActive node array not found\n"), NodeSet{};
        active = as_span<char>(ref);
    }
    const int count = std::max(get_int(kind.count), 0);
    const bool marks_missing = !kind.active.empty() && active.size() < as_size(total);
    if (xyz.rows() != 3 || xyz.cols() < total || marks_missing || count > total)
        return print_both(" \n\tNodal arrays do not agree in size\n"), NodeSet{};
    return {as_matrix<double>(xyz), active, count, total};
}

void new_nodes(const NodeKind& kind, int total) {
    for (const auto name : kind.stale)
        delete_array(name);
    create_int_scalar(kind.total, total);
    create_int_scalar(kind.count, 0);
    create_matrix<double>(kind.xyz, 3, total);
    if (!kind.active.empty())
        std::ranges::fill(create_matrix<char>(kind.active, total, 0).all(), ' ');
}

bool node_in_range(int n, int limit) {
    if (1 <= n && n <= limit) return true;
    print_both(" \n\tNode number out of range\n");
    return false;
}

void generate_line(NodeSet& set, int a, int b, int inc, double w) {
    if (inc == 0) inc = 1;
    const std::int64_t count = nodes_between(a, b, inc);
    if (count < 1) return;
    const bool weighted = w > 0 && w != 1;
    double s = 1; // 1 + w + ... + w^count, the line's length over its first step
    for (std::int64_t k = 1; k <= count && weighted; ++k)
        s = s * w + 1;
    if (!weighted) s = static_cast<double>(count + 1);
    Vec3 x = set.at(a);
    Vec3 d = difference(set.at(b), x);
    for (double& di : d)
        di /= s;
    if (!std::isfinite(s) || !is_finite(d))
        return print_both(
            " \n\tCoordinates or spacing weight are too large; nodes not generated\n");
    for (std::int64_t k = 1; k <= count; ++k) {
        for (std::size_t i = 0; i < 3; ++i)
            x[i] += d[i];
        set.define(static_cast<int>(a + k * inc), x);
        if (weighted)
            for (double& di : d)
                di *= w;
    }
}

bool generate_quad(NodeSet& set, std::span<const std::int32_t> corners,
                   std::span<const std::int32_t> inc, std::span<const double> w) {
    const int n1 = corners[0], n2 = corners[1], n3 = corners[2], n4 = corners[3];
    const int inc1 = inc[0] == 0 ? 1 : inc[0];
    const int inc2 = inc[1] == 0 ? 1 : inc[1];
    const double w1 = w[0] > 0 ? w[0] : 1;
    const double w2 = w[1] > 0 ? w[1] : 1;
    if (inc2 < 0 && n1 < n3 && n2 < n4) // the lines would run away from n3 n4, out of the list
        return print_both(" \n\tNode number out of range\n"), false;

    generate_line(set, n1, n2, inc1, w1);
    generate_line(set, n3, n4, inc1, w1);
    generate_line(set, n1, n3, inc2, w2);
    generate_line(set, n2, n4, inc2, w2);
    // The shorter of the sides n1 n3 and n2 n4 sets the number of lines, so that n3 n4 stays as it
    // is.
    std::int64_t p = std::int64_t{n1} + inc2, q = std::int64_t{n2} + inc2;
    for (; p < n3 && q < n4; p += inc2, q += inc2)
        generate_line(set, static_cast<int>(p), static_cast<int>(q), inc1, w1);
    return true;
}

void read_nodes(const NodeKind& kind) {
    std::int32_t limit = 0;
    get_int_par("#=", limit);
    if (limit > most_nodes) return print_both(" \n\tToo many nodes: # is above 10000000\n");
    if (limit > 0) new_nodes(kind, limit);
    NodeSet set = open_nodes(kind);
    if (!set) return;

    int previous = 0;
    while (const auto record = next_node_record()) {
        check_record(*record, set.total);
        set.define(record->n, record->x);
        if (previous != 0 && record->lgen != 0)
            generate_line(set, previous, record->n, record->lgen, 1);
        previous = record->n;
    }
    create_int_scalar(kind.count, set.count);
}

void generate_nodes(const NodeKind& kind) {
    NodeSet set = open_nodes(kind);
    if (!set) return;
    if (set.count < 1) return print_both(" \n\tNumber nodes < 1\n");
    for (;;) {
        std::array<std::int32_t, 2> line{not_given, 0}, inc{};
        std::array<std::int32_t, 4> quad{not_given, 0, 0, 0};
        std::array<double, 2> w{};
        next_record("Enter record for node generation\n");
        get_int_par("linear=", line);
        get_int_par("quad=", quad);
        get_int_par("inc=", inc);
        get_real_par("w=", w);
        if (line[0] != not_given) {
            if (!all_in_range(line, set.count)) return;
            generate_line(set, line[0], line[1], inc[0], w[0]);
        } else if (quad[0] != not_given) {
            if (!all_in_range(quad, set.count) || !generate_quad(set, quad, inc, w)) return;
        } else {
            break;
        }
    }
    create_int_scalar(kind.count, set.count);
}

NodeRange read_node_range(int count) {
    std::array<std::int32_t, 2> range{1, count};
    get_int_par("nodes=", range);
    const int first = std::max(range[0], 1);
    return {first, std::max(std::min(range[1], count), first)};
}

void print_nodes(const NodeKind& kind) {
    const ArrayRef xyz = find_array(kind.xyz);
    if (!xyz.is(type_real)) return print_both(" \n\tCoordinate array not found\n");
    if (!kind.active.empty() && !find_array(kind.active).is(type_character))
        return print_both(" \n\tActive node array not found\n");
    const NodeSet set = open_nodes(kind);
    if (!set) return;

    const auto [first, last] = read_node_range(set.count);
    if (first > set.count) return;
    const bool screen = has_flag("-screen");
    const auto put = [&](const Format& format, const FormatItems& items) {
        if (screen) write_unit(unit_screen, format, items);
        write_unit(unit_output, format, items);
    };
    put("10(/,'   NODE                NODAL COORDINATES',/,            ' NUMBER',12x,'X', 12x, 'Y', 12x,'Z')",
        {});
    for (int n = first; n <= last; ++n)
        if (set.is_active(n))
            put("20(i5, 2x, 3f13.3)", {n, set.xyz(1, n), set.xyz(2, n), set.xyz(3, n)});
}

// --- help ---------------------------------------------------------------------------------------

namespace {

constexpr std::string_view nodes_text =
    "Command Syntax\n\t@nodes  #=?\n\t   n=node_no  x=x-coor  y=y-coor  z=z-coor  [lgen=lgen]\n\t"
    "   (blank line)\n\n"
    "Input of %, by number and coordinates.\n\n"
    "#\n\tHighest node number that will ever be used. A value above 0 starts a new list of nodes; "
    "without it the nodes at hand are changed or added to.\n\n"
    "The records may also be five plain numbers: n x y z lgen. A blank line ends the input.\n\n"
    "n\n\tNode number, 1 to #. A number out of this range ends the program; the database is saved "
    "first.\n\n"
    "x, y, z\n\tCoordinates. Defaults are 0.\n\n"
    "lgen\n\tNode increment of generation (default 0: none). Nodes between this record's node and the "
    "one before it are put at equal spacing on the straight line between them; a negative value "
    "serves descending numbers.\n\n"
    "Example (nodes 1 to 5 along the x-axis):\n\t@nodes #=5\n\tn=1\n\tn=5 x=8.0 lgen=1\n\t(blank "
    "line)\n\n"
    "Arrays created: $xyz(3,#) coordinates, $active(#) with A for a defined node, $count the highest "
    "number defined, $total the value of #.\n\n"
    "See Also\n\t@node_gen\n\tp@nodes\n";

constexpr std::string_view gen_text =
    "Command Syntax\n\t@node_gen\n\t   linear=node1,node2  [inc=?]  [w=?]\n\t"
    "   quad=node1,node2,node3,node4  [inc=inc1,inc2]  [w=w1,w2]\n\t   (blank line)\n\n"
    "Generates % between nodes that are already defined. Each record generates a line or a "
    "quadrilateral; a blank line ends the input.\n\n"
    "linear\n\tNodes between node1 and node2, on a straight line.\n\n"
    "quad\n\tNodes of the quadrilateral with sides node1-node2, node3-node4 (increment inc1, weight "
    "w1) and node1-node3, node2-node4 (inc2, w2), and within it along lines parallel to "
    "node1-node2. The corners need not lie in one plane; node3 = node4 gives a triangle.\n\n"
    "inc\n\tIncrement of node numbers. Default is 1.\n\n"
    "w\n\tPositive weight: each spacing is w times the one before it. Default is 1, equal spacing.\n\n"
    "Example (a grid of 3 by 5 nodes between the corners 1, 5, 11, 15):\n\t@node_gen\n\t"
    "quad=1,5,11,15 inc=1,5\n\t(blank line)\n\n"
    "Arrays changed: $xyz, $active, $count.\n\n"
    "See Also\n\t@nodes\n\tp@nodes\n";

constexpr std::string_view print_text =
    "Command Syntax\n\tp@nodes  [nodes=first,last]  [-screen]\n\n"
    "Prints coordinates of % to the output file.\n\n"
    "nodes\n\tRange of node numbers. Default is all nodes.\n\n"
    "-screen\n\tPrint on the screen as well.\n\n"
    "Example:\n\tp@nodes nodes=1,10 -screen\n\n"
    "See Also\n\t@nodes\n\t@node_gen\n";

void replace_all(std::string& text, std::string_view mark, std::string_view by) {
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size()))
        text.replace(at, mark.size(), by);
}

} // namespace

std::string family_text(std::string_view text, const NodeKind& kind) {
    std::string result(text);
    if (kind.active.empty()) {
        replace_all(result, ", $active(#) with A for a defined node", "");
        replace_all(result, ", $active", "");
    }
    replace_all(result, "@", kind.prefix);
    replace_all(result, "%", kind.meaning);
    replace_all(result, "$xyz", kind.xyz);
    replace_all(result, "$active", kind.active);
    replace_all(result, "$count", kind.count);
    replace_all(result, "$total", kind.total);
    return result;
}

NodeHelp node_help(const NodeKind& kind) {
    return {family_text(nodes_text, kind), family_text(gen_text, kind),
            family_text(print_text, kind)};
}

} // namespace quelor
