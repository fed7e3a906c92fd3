// Assembly of element matrices, and the ordering of nodes: time by the size of the mesh; a space
// frame of 20,000 equations from its elements to its displacements.
#include "elements/beam3d.hpp"
#include "fem/assembly.hpp"
#include "fem/elemutil.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/node_ordering.hpp"
#include "solvers/matrix.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <numeric>
#include <random>

namespace {

using namespace quelor;

/// A chain of n two-node elements with six free degrees of freedom a node, in a full profile for
/// nodes three apart; with `linked` every other node is a rigid link of the one before it.
void make_chain(int n, bool linked) {
    db_clear();
    const int nodes = n + 1;
    const auto eqs = create_matrix<std::int32_t>(node_eqs, 6, nodes);
    std::int32_t counter = 0;
    int links = 0;
    for (int node = 1; node <= nodes; ++node)
        for (int d = 1; d <= 6; ++d)
            eqs(d, node) = linked && node % 2 == 0 ? -++links : ++counter;
    create_int_scalar(num_eqs, counter);
    if (linked) {
        const auto const_node = create_matrix<std::int32_t>(const_nodes, 4, links);
        const auto const_dof = create_matrix<std::int32_t>(const_dofs, 4, links);
        const auto factor = create_matrix<double>(const_factor, 4, links);
        for (int k = 1; k <= links; ++k)
            for (int row = 1; row <= 4; ++row) {
                const int d = (k - 1) % 6 + 1;
                const_node(row, k) = 2 * ((k - 1) / 6) + (row == 1 ? 2 : 1);
                const_dof(row, k) = row <= 2 ? d : (d + row) % 6 + 1;
                factor(row, k) = row <= 2 ? 1 : 0.5;
            }
    }
    const auto loc = create_matrix<std::int32_t>(kdiag_loc, counter + 1, 0);
    loc(1) = 1;
    for (int j = 1; j <= counter; ++j)
        loc(j + 1) = loc(j) + std::min(j, 24);
    const auto values = create_matrix<double>(kstr, loc(counter + 1) - 1, 0);
    std::ranges::fill(values.all(), 1.0); // the pages are there before the clock runs
}

void assemble(benchmark::State& state, bool linked) {
    const int n = static_cast<int>(state.range(0));
    make_chain(n, linked);
    const std::vector<double> k(144, 1.0);
    std::array<std::int32_t, 12> list{};
    for (auto _ : state) {
        const Equations equations = open_equations();
        GlobalMatrix stiffness = open_stiffness(equations);
        for (int e = 1; e <= n; ++e) {
            element_equations(equations, std::array{e, e + 1}, all_six, list);
            add_stiffness(stiffness, list, {k.data(), 12, 12});
        }
    }
    state.SetItemsProcessed(state.iterations() * n);
    state.SetComplexityN(n);
    db_clear();
}

void assembly(benchmark::State& state) {
    assemble(state, false);
}
void assembly_with_rigid_links(benchmark::State& state) {
    assemble(state, true);
}

/// A square grid of quadrilaterals; shuffled node numbers cost a cache miss a connection.
void order_grid(benchmark::State& state, bool shuffled) {
    const int side = static_cast<int>(state.range(0));
    std::vector<std::int32_t> number(static_cast<std::size_t>((side + 1) * (side + 1)));
    std::iota(number.begin(), number.end(), 1);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    const auto at = [&](int i, int j) {
        return number[static_cast<std::size_t>(i * (side + 1) + j)];
    };
    std::vector<std::int32_t> end, nodes;
    for (int i = 0; i < side; ++i)
        for (int j = 0; j < side; ++j) {
            nodes.insert(nodes.end(), {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)});
            end.push_back(static_cast<std::int32_t>(nodes.size()));
        }
    for (auto _ : state)
        benchmark::DoNotOptimize(order_nodes(end, nodes, static_cast<int>(number.size()), true));
    state.SetItemsProcessed(state.iterations() * std::ssize(nodes));
    state.SetComplexityN(std::ssize(nodes));
}

void order_grid_by_rows(benchmark::State& state) {
    order_grid(state, false);
}
void order_grid_shuffled(benchmark::State& state) {
    order_grid(state, true);
}

/// One node joined to all others, which have degrees of 1 to 3 in turn.
void order_hub(benchmark::State& state) {
    const auto n = static_cast<std::int32_t>(state.range(0));
    std::vector<std::int32_t> end, nodes;
    const auto join = [&](std::int32_t a, std::int32_t b) {
        nodes.insert(nodes.end(), {a, b});
        end.push_back(static_cast<std::int32_t>(nodes.size()));
    };
    for (std::int32_t m = 2; m <= n; ++m)
        join(1, m);
    for (std::int32_t m = 4; m <= n; m += 4) {
        join(m - 2, m - 1);
        join(m - 1, m);
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(order_nodes(end, nodes, n, true));
    state.SetItemsProcessed(state.iterations() * std::ssize(nodes));
    state.SetComplexityN(std::ssize(nodes));
}

// --- a space frame

constexpr int frame_side = 10, frame_height = 34; ///< nodes; 20,400 degrees of freedom

/// Beams of unit length along the lines of a grid of nodes whose lowest layer is fixed.
void make_frame() {
    db_clear();
    constexpr int layer = frame_side * frame_side, nodes = layer * frame_height;
    new_nodes(fe_nodes, nodes);
    NodeSet set = open_nodes(fe_nodes);
    const auto codes = create_matrix<std::int32_t>(bcid, 6, nodes);
    std::vector<std::array<int, 2>> beams;
    for (int n = 1; n <= nodes; ++n) {
        const int i = (n - 1) % frame_side, j = (n - 1) / frame_side % frame_side;
        set.define(n, {1.0 * i, 1.0 * j, static_cast<double>((n - 1) / layer)});
        if (n <= layer) std::ranges::fill(codes.col(n), 1);
        if (i + 1 < frame_side) beams.push_back({n, n + 1});
        if (j + 1 < frame_side) beams.push_back({n, n + frame_side});
        if (n + layer <= nodes) beams.push_back({n, n + layer});
    }
    create_int_scalar(num_nodes, nodes);
    const int count = static_cast<int>(beams.size());
    const auto el = create_matrix<std::int32_t>(beam3d_el, 6, count);
    for (int e = 1; e <= count; ++e) {
        const auto [a, b] = beams[static_cast<std::size_t>(e - 1)];
        el(1, e) = a;
        el(2, e) = b;
        el(3, e) = 1;
        el(5, e) = b == a + 1 ? -2 : -1; // an axis that the beam does not follow
    }
    std::ranges::fill(create_matrix<double>(beam3d_mp, 1, beam3d_columns).all(), 1.0);
    std::ranges::fill(create_matrix<double>(beam3d_len, count, 0).all(), 1.0);
    create_matrix<double>(beam3d_st, 12, count);
    create_int_scalar(beam3d_kg, 0);
    set_element_group(beam3d_slot, 1);
    number_equations(true);
    create_matrix<double>(kstr, *static_cast<std::int32_t*>(find_array(kstr_size).data), 0);
}

void frame_stiffness(benchmark::State& state) {
    make_frame();
    for (auto _ : state)
        form_stiffness(FormMode::linear);
    state.SetItemsProcessed(state.iterations() * find_array(beam3d_len).size());
    db_clear();
}

void frame_factor_and_solve(benchmark::State& state) {
    make_frame();
    const auto u = create_matrix<double>(disp, find_array(kdiag_loc).rows() - 1, 1);
    std::ranges::fill(u.all(), 1.0);
    for (auto _ : state) {
        state.PauseTiming();
        form_stiffness(FormMode::linear);
        state.ResumeTiming();
        profile_op(kstr, kdiag_loc, {}, 0, default_digits);
        profile_op(kstr, kdiag_loc, u, 1, default_digits);
    }
    db_clear();
}

} // namespace

BENCHMARK(frame_stiffness)->Unit(benchmark::kMillisecond);
BENCHMARK(frame_factor_and_solve)->Unit(benchmark::kMillisecond);
BENCHMARK(assembly)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);
BENCHMARK(assembly_with_rigid_links)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity(benchmark::oN);
BENCHMARK(order_grid_by_rows)->RangeMultiplier(4)->Range(16, 1024)->Complexity(benchmark::oN);
BENCHMARK(order_grid_shuffled)->RangeMultiplier(4)->Range(16, 1024)->Complexity(benchmark::oN);
BENCHMARK(order_hub)->RangeMultiplier(8)->Range(1024, 524288)->Complexity(benchmark::oN);
