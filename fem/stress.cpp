// Reads `.xyz`, `.node_active`, `.#nodes` and the user's table of points; writes the user's arrays;
// `$arg2`, `$arg3`, `$node_str` are workspace.
#include "fem/stress.hpp"

#include "fem/nodes.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/point_index.hpp"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace quelor {

namespace {

struct ListRecord {
    std::int32_t node = 0, inc = 0, gen = 0;
};

/// The next record, three numbers or keys; nothing at the blank line that ends the list.
std::optional<ListRecord> next_list_record() {
    std::array<std::int32_t, 3> v{};
    read_int_record("Enter nodal data: node  inc  gen\n", v);
    ListRecord record{v[0], v[1], v[2]};
    if (record.node != 0) return record;
    constexpr std::int32_t absent = -1;
    record.node = absent;
    get_int_par("node=", record.node);
    get_int_par("inc=", record.inc);
    get_int_par("gen=", record.gen);
    if (record.node == absent) return std::nullopt;
    return record;
}

/// The nodes of the records, at most n; a node that does not exist, or more than n, take the fatal
/// path.
std::vector<std::int32_t> read_node_list(std::int32_t n, int highest) {
    std::vector<std::int32_t> list;
    while (const auto record = next_list_record()) {
        const std::int64_t last = record->node + std::int64_t{record->inc} * record->gen;
        const std::int64_t count = std::int64_t{1} + std::max(record->gen, 0);
        const auto room = static_cast<std::int64_t>(n) - static_cast<std::int64_t>(list.size());
        if (count > room || std::min<std::int64_t>(record->node, last) < 1 ||
            std::max<std::int64_t>(record->node, last) > highest)
            shutdown_with(" \n\tNode out of range\n");
        for (std::int32_t k = 0; k < count; ++k)
            list.push_back(record->node + k * record->inc);
    }
    return list;
}

std::vector<std::int32_t> all_nodes(int highest) {
    std::vector<std::int32_t> list(as_size(highest));
    std::iota(list.begin(), list.end(), 1);
    return list;
}

/// Which coordinates the points have, in their first columns.
struct PointAxes {
    std::array<bool, 3> given{};
    int count() const { return static_cast<int>(std::ranges::count(given, true)); }
};

Vec3 point_of(Matrix<const double> points, int row, const PointAxes& axes) {
    Vec3 p{};
    int column = 0;
    for (std::size_t i = 0; i < 3; ++i)
        if (axes.given[i]) p[i] = points(row, ++column);
    return p;
}

/// Sums over the points at each listed node, and their count; the coordinate columns of a node hold
/// those of its first point.
void add_points(Matrix<const double> points, const PointAxes& axes, const NodeSet& nodes,
                std::span<const std::int32_t> list, double tol, Matrix<double> sums,
                Matrix<std::int32_t> hits) {
    PointIndex index;
    for (std::size_t i = 0; i < list.size(); ++i)
        if (nodes.is_active(list[i])) index.add(static_cast<int>(i + 1), nodes.at(list[i]));
    const Vec3 tolerance{tol, tol, tol};
    for (int row = 1; row <= points.rows; ++row) {
        const Vec3 p = point_of(points, row, axes);
        index.visit_candidates(p, tolerance, [&](int i) {
            if (!within(nodes.at(list[nth(i)]), p, tolerance)) return;
            if (++hits(i) == 1)
                for (int j = 1; j <= axes.count(); ++j)
                    sums(i, j) = points(row, j);
            for (int j = axes.count() + 1; j <= points.cols; ++j)
                sums(i, j) += points(row, j);
        });
    }
}

/// The averages of the nodes that have points, under the names of the user.
void store_averages(Matrix<const double> sums, Matrix<const std::int32_t> hits,
                    std::span<const std::int32_t> list, int coordinates,
                    std::string_view stress_name, std::string_view node_name) {
    const auto matched =
        static_cast<int>(std::ranges::count_if(hits.all(), [](int h) { return h > 0; }));
    if (matched == 0) {
        delete_array(stress_name);
        delete_array(node_name);
        return print_both(" \n\tData points did not match any nodes.\n");
    }
    Result stress_result(stress_name, "$arg2"), node_result(node_name, "$arg3");
    const auto stress = stress_result.matrix<double>(matched, sums.cols);
    const auto node = node_result.matrix<std::int32_t>(matched, 0);
    int k = 0;
    for (int i = 1; i <= sums.rows; ++i) {
        if (hits(i) == 0) continue;
        node(++k) = list[nth(i)];
        for (int j = 1; j <= sums.cols; ++j)
            stress(k, j) = j <= coordinates ? sums(i, j) : sums(i, j) / hits(i);
    }
    stress_result.place();
    node_result.place();
}

void cmd_node_str(std::string_view) {
    const std::string point_name(get_arg(1));
    const std::string stress_name(get_arg(2));
    const std::string node_name(get_arg(3));
    if (is_blank(node_name)) return print_both(" \n\tThree arguments required\n");
    std::int32_t n = 0;
    double tol = 0;
    get_int_par(" n=", n);
    get_real_par(" tol=", tol);
    if (!(tol > 0)) tol = 1e-8;
    const PointAxes axes{{has_flag(" -x"), has_flag(" -y"), has_flag(" -z")}};

    if (!array_exists(xyz)) return not_found(xyz);
    const ArrayRef ref = find_array_2d(point_name);
    if (!ref.is(type_real)) return not_found(point_name);
    if (get_int(num_nodes) < 1) return print_both(" \nNumber of nodes in .#nodes invalid\n");
    const NodeSet nodes = open_nodes(fe_nodes);
    if (!nodes) return;

    const auto list = n < 1 ? all_nodes(nodes.count) : read_node_list(n, nodes.count);
    if (list.empty()) return print_both(" \n\tNo nodes listed\n");
    if (axes.count() == 0) return print_both(" \nAt least one coordinate must be specified\n");
    if (ref.cols() < axes.count())
        return print_both(" \n\tFewer columns of data than coordinates\n");
    const auto points = as_matrix<const double>(ref);
    const auto size = static_cast<int>(list.size());
    const Temporary<double> sums("$node_sum", size, points.cols);
    const Temporary<std::int32_t> hits("$node_str", size, 0);
    add_points(points, axes, nodes, list, tol, sums.view, hits.view);
    store_averages(sums.view, hits.view, list, axes.count(), stress_name, node_name);
}

constexpr Command rows[] = {
    {.words = {"node_str"},
     .run = cmd_node_str,
     .summary = "average stresses at nodes",
     .help =
         "Command Syntax\n\tnode_str  arg1  arg2  arg3  [n=?]  [-x]  [-y]  [-z]  [tol=?]\n\t"
         "   node=node  [inc=inc  gen=gen]\n\t   (blank line)\n\n"
         "Averages stresses that are given at points, such as the corners of elements, over the points "
         "that lie at the same node.\n\n"
         "arg1\n\tMatrix with a row for each point: its coordinates, then the stresses.\n\n"
         "arg2\n\tName of the matrix of averages to be created, with the columns of arg1.\n\n"
         "arg3\n\tName of the vector of node numbers to be created.\n\n"
         "n\n\tNumber of nodes listed on the records that follow. Without it all nodes are taken, and "
         "there are no records.\n\n"
         "-x, -y, -z\n\tWhich coordinates the first columns of arg1 are, at least one of them. A "
         "coordinate that is not named is 0.\n\n"
         "tol\n\tLargest difference of each coordinate between a point and its node. Default is "
         "1e-8.\n\n"
         "node, inc, gen\n\tA node, and gen more nodes in steps of inc (defaults 0). The record may also be "
         "the three numbers. More than n nodes, or a node that does not exist, end the program; the "
         "database is saved first. A blank line ends the records.\n\n"
         "Example (points in the plane z = 0):\n\tnode_str points stress numbers -x -y\n\n"
         "Arrays created: arg2(k, columns of arg1), real, and arg3(k), integer, for the k nodes that have "
         "points. Without any such node both are deleted.\n\n"
         "See Also\n\tresponse\n\tpresponse\n"},
};

} // namespace

std::span<const Command> stress_rows() {
    return rows;
}

} // namespace quelor
