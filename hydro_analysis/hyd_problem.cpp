#include "hydro_analysis/hyd_problem.hpp"

#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "hydro_model/hyd_nodes.hpp"
#include "hydro_model/hyd_panel.hpp"
#include "kernel/require.hpp"

#include <algorithm>

namespace quelor {

HydSize hyd_get_problem_size() {
    HydSize s{};
    const auto wave = require_vector<std::int32_t>(hyd_wave, 2);
    const auto map = require_vector<std::int32_t>(hyd_panel_map);
    s.nbeta = wave[0];
    s.nfreq = wave[1];
    s.npanels = static_cast<int>(map.size());
    s.np = static_cast<int>(std::ranges::count_if(map, [](int wet) { return wet > 0; }));
    s.symmetry = require_int(hyd_symmetry);
    s.nnodes = require_int(hyd_num_nodes);
    s.nmoder = require_int(hyd_nmoder);
    s.nmodef = require_int(hyd_nmodef);
    s.nmode = s.nmoder + s.nmodef;
    s.gauge = require_real(hyd_gauge);
    s.depth = require_real(hyd_depth);
    s.deep_water = require_real(hyd_deep_water);
    s.grav = require_real(hyd_grav);
    s.rho = require_real(hyd_fluid_rho);
    return s;
}

HydModel hyd_get_model() {
    HydModel m{};
    m.size = hyd_get_problem_size();
    const int np = m.size.np, nmode = m.size.nmode;
    m.freq = require_vector<double>(hyd_freq, m.size.nfreq);
    m.beta = require_vector<double>(hyd_beta, m.size.nbeta);
    m.panels = require_panel_mesh(np);
    m.un = require_matrix<double>(hyd_un, nmode, np);
    if (m.size.symmetry != 0) m.modesym = require_vector<std::int32_t>(hyd_modesym, nmode);
    return m;
}

} // namespace quelor
