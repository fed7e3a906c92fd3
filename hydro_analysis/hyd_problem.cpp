#include "hydro_analysis/hyd_problem.hpp"

#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/require.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>

namespace quelor {

HydSize hyd_get_problem_size() {
    HydSize s{};
    const auto [nbeta, nfreq] = hyd_wave_counts();
    const auto map = require_vector<std::int32_t>(hyd_panel_map);
    s.nbeta = nbeta;
    s.nfreq = nfreq;
    s.npanels = static_cast<int>(map.size());
    s.np = static_cast<int>(std::ranges::count_if(map, [](int wet) { return wet > 0; }));
    s.symmetry = require_int(hyd_symmetry);
    s.nnodes = require_count(hyd_num_nodes, 1, most_nodes);
    s.nmode = hyd_mode_count();
    s.nmoder = require_int(hyd_nmoder);
    s.nmodef = require_int(hyd_nmodef);
    s.gauge = require_real(hyd_gauge);
    if (!std::isfinite(s.gauge)) shutdown_with(" \n\tArray .hyd_gauge does not hold a number\n");
    s.depth = require_positive(hyd_depth);
    s.deep_water = require_positive(hyd_deep_water);
    s.grav = require_positive(hyd_grav);
    s.rho = require_positive(hyd_fluid_rho);
    return s;
}

namespace {

/// Frequencies and headings as hyd_wave would have stored them.
void check_waves(std::span<const double> freq, std::span<const double> beta) {
    for (const double omega : freq)
        if (!std::isfinite(omega) || !(omega > 0))
            shutdown_with(" \n\tA frequency in .hyd_freq is not a number greater than 0\n");
    if (!all_finite(beta)) shutdown_with(" \n\tA heading in .hyd_beta is not a number\n");
}

} // namespace

HydModel hyd_get_model() {
    HydModel m{};
    m.size = hyd_get_problem_size();
    const int np = m.size.np, nmode = m.size.nmode;
    m.freq = require_vector<double>(hyd_freq, m.size.nfreq);
    m.beta = require_vector<double>(hyd_beta, m.size.nbeta);
    check_waves(m.freq, m.beta);
    m.panels = require_panel_mesh(np);
    m.un = require_matrix<double>(hyd_un, nmode, np);
    if (m.size.symmetry != 0) m.modesym = require_vector<std::int32_t>(hyd_modesym, nmode);
    return m;
}

} // namespace quelor
