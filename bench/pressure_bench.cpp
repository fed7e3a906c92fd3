// Pressures on all panels from stored potentials, beside a plain pass over the same memory. One
// iteration is all frequencies of a structure of 4,000 panels and 20 modes; the figure is the
// potentials read a second.
#include "hydro_response/response_values.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <vector>

namespace quelor {

namespace {

constexpr int panels = 4000, modes = 20, frequencies = 30;

struct Stored {
    explicit Stored(int headings)
        : radiation(size(panels, modes)), incoming(size(panels, headings)), diffraction(incoming),
          q(size(modes, headings)), table(static_cast<std::size_t>(panels * headings)) {}
    static std::vector<Complex8> size(int n, int m) {
        return std::vector<Complex8>(static_cast<std::size_t>(n * m * frequencies), {1.0, 0.5});
    }
    std::int64_t bytes() const {
        return static_cast<std::int64_t>((radiation.size() + 2 * incoming.size()) *
                                         sizeof(Complex8));
    }
    std::vector<Complex8> radiation, incoming, diffraction, q, table;
};

void pressures(benchmark::State& state) {
    const int headings = static_cast<int>(state.range(0));
    Stored s(headings);
    const Matrix<Complex8> table{s.table.data(), headings, panels};
    for (auto _ : state) {
        for (int f = 1; f <= frequencies; ++f) {
            radiation_potential({s.radiation.data(), panels, frequencies, modes},
                                {s.q.data(), modes, frequencies, headings}, f, table);
            add_potential({s.incoming.data(), panels, frequencies, headings}, f, table);
            add_potential({s.diffraction.data(), panels, frequencies, headings}, f, table);
            potential_to_pressure(1.0, 1025.0, table.all());
        }
        benchmark::DoNotOptimize(s.table.data());
    }
    state.SetBytesProcessed(state.iterations() * s.bytes());
}
BENCHMARK(pressures)->Arg(1)->Arg(4)->Arg(12)->Unit(benchmark::kMillisecond);

/// Four running sums, so that the additions do not wait for one another.
void plain_pass(benchmark::State& state) {
    const Stored s(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::array<Complex8, 4> sum{};
        for (const auto* values : {&s.radiation, &s.incoming, &s.diffraction})
            for (std::size_t i = 0; i + 4 <= values->size(); i += 4)
                for (std::size_t k = 0; k < 4; ++k)
                    sum[k] += (*values)[i + k];
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * s.bytes());
}
BENCHMARK(plain_pass)->Arg(1)->Arg(4)->Arg(12)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace quelor
