// Simple panelled bodies and their radiation and diffraction solutions, for the tests of the
// analysis.
#pragma once

#include "hydro_analysis/hyd_anal1.hpp"
#include "hydro_analysis/hyd_anal_main.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/waven.hpp"
#include "kernel/dbfgen.hpp"
#include "tests/support/panel_arrays.hpp"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace quelor::test {

/// Bodies of plane panels with six rigid modes each about its origin.
struct Body {
    int symmetry = 0;
    std::vector<Corners> corners;
    std::vector<int> body_of;      ///< of each panel, 0-based
    std::vector<Vec3> origins{{}}; ///< of each body
    std::vector<double> freq{1.0}, beta{0.0};
    PanelArrays panels{0};
    std::vector<double> un;
    std::vector<std::int32_t> modesym;

    int nmode() const { return 6 * static_cast<int>(origins.size()); }
    void add(const std::vector<Corners>& more, int body = 0) {
        corners.insert(corners.end(), more.begin(), more.end());
        body_of.resize(corners.size(), body);
    }
    HydModel model(double depth);
};

/// Normal displacement of the panels in the six rigid modes of their body.
inline std::vector<double> rigid_normals(const Body& body) {
    const auto modes = static_cast<std::size_t>(body.nmode());
    const std::size_t n = body.corners.size();
    std::vector<double> un(modes * n);
    for (std::size_t p = 0; p < n; ++p) {
        const auto b = static_cast<std::size_t>(body.body_of[p]);
        const Vec3 o = body.origins[b];
        const auto& c = body.panels.xyzc;
        const double x = c[p] - o[0], y = c[p + n] - o[1], z = c[p + 2 * n] - o[2];
        const double* v = &body.panels.n[3 * p];
        const std::array<double, 6> row{
            v[0], v[1], v[2], y * v[2] - z * v[1], z * v[0] - x * v[2], x * v[1] - y * v[0]};
        std::copy(row.begin(), row.end(), &un[p * modes + 6 * b]);
    }
    return un;
}

inline HydModel Body::model(double depth) {
    panels = panel_arrays(corners);
    un = rigid_normals(*this);
    constexpr std::array<std::int32_t, 6> single{1, 2, 1, 2, 1, 2}, twofold{1, 2, 3, 2, 1, 4};
    modesym.clear();
    for (std::size_t j = 0; j < static_cast<std::size_t>(nmode()); ++j)
        modesym.push_back(symmetry == 1 ? single[j % 6] : twofold[j % 6]);
    const int np = panels.np;
    HydModel m{};
    m.size = {symmetry,
              0,
              np,
              np,
              nmode(),
              0,
              nmode(),
              static_cast<int>(beta.size()),
              static_cast<int>(freq.size()),
              2.5,
              depth,
              10.0,
              9.80665,
              1025.0};
    m.freq = freq;
    m.beta = beta;
    m.panels = panels.view();
    m.un = {un.data(), nmode(), np};
    m.modesym = modesym;
    return m;
}

inline Body hemisphere(double a, int rows, int columns, int symmetry) {
    Body body;
    body.symmetry = symmetry;
    body.add(hemisphere_panels(a, rows, columns, symmetry));
    return body;
}

/// Plane face of na x nb panels, corners A B C D clockwise as seen from the fluid.
inline void add_face(Body& body, const Corners& c, int na, int nb) {
    const auto point = [&](int i, int j) {
        const double s = double(i) / na, t = double(j) / nb;
        Vec3 p;
        for (std::size_t x = 0; x < 3; ++x)
            p[x] = (1 - s) * (1 - t) * c[0][x] + s * (1 - t) * c[1][x] + s * t * c[2][x] +
                   (1 - s) * t * c[3][x];
        return p;
    };
    for (int j = 0; j < nb; ++j)
        for (int i = 0; i < na; ++i)
            body.add({{point(i, j), point(i + 1, j), point(i + 1, j + 1), point(i, j + 1)}});
}

/// Box 2a x 2b x draft, n panels along its half length, the other sides in proportion; symmetry as
/// above.
inline Body box(double a, double b, double draft, int n, int symmetry) {
    Body body;
    body.symmetry = symmetry;
    const double x0 = symmetry == 2 ? 0 : -a, y0 = symmetry == 0 ? -b : 0;
    const auto count = [&](double side) {
        return std::max(1, static_cast<int>(std::lround(n * side / a)));
    };
    const int nx = count(a - x0), ny = count(b - y0), nz = count(draft);
    const double z = -draft;
    add_face(body, {{{x0, b, 0}, {x0, b, z}, {a, b, z}, {a, b, 0}}}, nz, nx);
    add_face(body, {{{x0, b, z}, {x0, y0, z}, {a, y0, z}, {a, b, z}}}, ny, nx);
    add_face(body, {{{a, y0, 0}, {a, b, 0}, {a, b, z}, {a, y0, z}}}, ny, nz);
    if (symmetry < 2) add_face(body, {{{x0, y0, 0}, {x0, y0, z}, {x0, b, z}, {x0, b, 0}}}, nz, ny);
    if (symmetry == 0) add_face(body, {{{a, y0, 0}, {a, y0, z}, {x0, y0, z}, {x0, y0, 0}}}, nz, nx);
    return body;
}

/// All frequencies and headings of the body's lists; the results stay in the store.
inline Analysis solve(Body& body, double depth) {
    db_clear();
    Analysis analysis = create_analysis(body.model(depth), true);
    const HydSize& size = analysis.model.size;
    for (int i = 1; i <= size.nfreq; ++i) {
        const double omega = body.freq[static_cast<std::size_t>(i - 1)];
        const WaveNumber w = waven(omega, depth, size.grav);
        const WaveOfFrequency wave{i, omega, w.k, w.knu};
        hyd_form_coefficients(analysis, wave);
        hyd_solve_radiation(analysis, wave);
        for (int b = 1; b <= size.nbeta; ++b) {
            hyd_incoming_forces(analysis, wave, b);
            hyd_diffraction_forces(analysis, wave, b);
        }
    }
    hyd_build_potentials(analysis, 1);
    return analysis;
}

} // namespace quelor::test
