#include "elements/cable_records.hpp"

#include "elements/element_family.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <numeric>

namespace quelor {

namespace {

constexpr std::string_view bad_material = " \n\n\tMaterial number not possible\n";
constexpr std::string_view bad_line = " \n\n\tElement number not possible\n";
constexpr std::string_view bad_segment = " \n\n\tSegment number not possible\n";
constexpr std::string_view bad_property = " \n\n\tSegment property number out of range\n";
constexpr std::string_view bad_length = " \n\n\tSegment length must be > 0\n";

void read_segments(int materials, CableLineInput& line) {
    const std::size_t count = line.lengths.size();
    for (std::size_t i = 0; i < count; ++i) {
        std::int32_t segment = 0, material = 0;
        double length = 0;
        next_record("Enter segment data: seg  mat  L\n");
        get_int_par("seg=", segment);
        get_int_par("mat=", material);
        get_real_par("L=", length);
        require_number(segment, static_cast<int>(count), bad_segment);
        require_number(material, materials, bad_property);
        if (!(length > 0) || !is_finite(length)) shutdown_with(bad_length);
        line.materials[nth(segment)] = material;
        line.lengths[nth(segment)] = length;
    }
    // A segment that no record names has no length.
    if (std::ranges::find(line.lengths, 0.0) != line.lengths.end()) shutdown_with(bad_length);
}

void require_properties(Matrix<const double> mp, int m) {
    const bool stiff = mp(cable_area, m) * mp(cable_modulus, m) > 0;
    if (!stiff || !all_finite(mp.col(m)))
        shutdown_with(" \n\n\tModulus times area of cable material " + std::to_string(m) +
                      " must be above 0\n");
}

/// View of an array with the type and the dimensions given; an empty one when it has others.
template <class T> Matrix<T> find_matrix(std::string_view name, int rows, int cols) {
    const ArrayRef ref = find_array(name);
    const bool fits = ref.is(type_code<std::remove_const_t<T>>) && ref.rows() == rows &&
                      ref.size() == std::int64_t{rows} * cols;
    return fits ? Matrix<T>{static_cast<T*>(ref.data), rows, cols} : Matrix<T>{};
}

/// Positions of the first segment of each line; empty when a count or material cannot be.
std::vector<std::size_t> first_segments(const CableModel& m) {
    std::vector<std::size_t> first{0};
    for (int e = 1; e <= m.lines(); ++e) {
        if (m.el(3, e) < 0) return {};
        first.push_back(first.back() + as_size(m.el(3, e)));
    }
    const auto possible = [&](std::int32_t mat) { return mat >= 1 && mat <= m.mp.cols; };
    if (first.back() != m.segment_length.size() ||
        !std::ranges::all_of(m.segment_material, possible))
        return {};
    return first;
}

void report(CatenaryLack lack) {
    if (lack == CatenaryLack::both)
        write_both("('cable_transf: warning/error: no tension or load !!')");
    else if (lack == CatenaryLack::load)
        write_both("('cable_transf: warning: no load !!')");
    else if (lack == CatenaryLack::tension)
        write_both("('cable_transf: warning: no tension !!')");
}

} // namespace

// --- input --------------------------------------------------------------------------------------

std::optional<CableInput> read_cable_counts(std::string_view title) {
    CableInput input;
    std::int32_t lines = 1;
    get_int_par(" m=", input.materials);
    get_int_par(" n=", lines);
    get_int_par(" maxiter=", input.maxiter);
    get_real_par(" tol=", input.tolerance);
    input.materials = std::max(input.materials, 1);
    lines = std::max(lines, 1);
    if (input.maxiter < 1) input.maxiter = 30;
    if (!(input.tolerance > 0) || !is_finite(input.tolerance)) input.tolerance = 1e-5;
    if (!count_is_possible(title, input.materials, 1) || !count_is_possible(title, lines, 1))
        return std::nullopt;
    input.lines.resize(as_size(lines));
    return input;
}

void read_cable_materials(const CableInput& input) {
    const auto mp = create_matrix<double>(cable_mp, 5, input.materials);
    for (int record = 1; record <= mp.cols; ++record) {
        std::int32_t m = 0;
        next_record("Enter material data: m  e  a  weight\n");
        get_int_par("m=", m);
        require_number(m, mp.cols, bad_material);
        get_real_par("e=", mp(cable_modulus, m));
        get_real_par("a=", mp(cable_area, m));
        get_real_par("w=", {&mp(cable_weight, m), 3});
        require_properties(mp, m);
    }
    for (int m = 1; m <= mp.cols; ++m)
        require_properties(mp, m);
}

void read_cable_lines(CableInput& input, std::string_view prompt,
                      const std::function<void(CableLineInput&)>& get_ends) {
    const int count = static_cast<int>(input.lines.size());
    for (int record = 1; record <= count; ++record) {
        std::int32_t n = 0, segments = 1;
        next_record(prompt);
        get_int_par("n=", n);
        if (n == 0) return;
        require_number(n, count, bad_line);
        CableLineInput line;
        line.entered = true;
        get_ends(line);
        get_int_par(" #segs=", segments);
        get_real_par(" tension=", line.tension);
        require_finite(line.tension, "element " + std::to_string(n));
        if (segments > most_elements) shutdown_with(bad_segment);
        line.materials.resize(as_size(std::max(segments, 1)));
        line.lengths.resize(line.materials.size());
        read_segments(input.materials, line);
        input.lines[nth(n)] = std::move(line);
    }
}

void store_cable_lines(const CableInput& input) {
    const int n = static_cast<int>(input.lines.size());
    const std::array parameters{n, input.materials, input.maxiter};
    std::ranges::copy(parameters, create_matrix<std::int32_t>(cable_parm, 3, 0).data);
    create_real_scalar(cable_tolerance, input.tolerance);
    const auto el = create_matrix<std::int32_t>(cable_el, 3, n);
    const auto length = create_matrix<double>(cable_len, n, 0);
    const auto st = create_matrix<double>(cable_st, 6, n);
    create_array3<double>(cable_flx12, 3, 3, n);
    create_array3<double>(cable_flx21, 3, 3, n);
    std::vector<std::int32_t> materials;
    std::vector<double> lengths;
    for (int e = 1; e <= n; ++e) {
        const CableLineInput& line = input.lines[nth(e)];
        const std::array row{line.nodes[0], line.nodes[1],
                             static_cast<std::int32_t>(line.lengths.size())};
        std::ranges::copy(row, el.col(e).begin());
        std::ranges::copy(line.tension, st.col(e).begin());
        length(e) = std::accumulate(line.lengths.begin(), line.lengths.end(), 0.0);
        materials.insert(materials.end(), line.materials.begin(), line.materials.end());
        lengths.insert(lengths.end(), line.lengths.begin(), line.lengths.end());
    }
    const int total = static_cast<int>(lengths.size());
    if (total == 0) return; // an array of size zero cannot be
    std::ranges::copy(materials, create_matrix<std::int32_t>(cable_seg_mat, total, 0).data);
    std::ranges::copy(lengths, create_matrix<double>(cable_seg_len, total, 0).data);
}

void delete_cables() {
    for (const auto name : {cable_parm, cable_tolerance, cable_el, cable_len, cable_mp,
                            cable_seg_mat, cable_seg_len, cable_st, cable_flx12, cable_flx21})
        delete_array(name);
}

// --- model --------------------------------------------------------------------------------------

std::vector<CatenarySegment> CableModel::segments(int e) const {
    std::vector<CatenarySegment> list;
    for (std::size_t i = first_segment[nth(e)]; i < first_segment[as_size(e)]; ++i) {
        const auto p = mp.col(segment_material[i]);
        list.push_back({segment_length[i], p[0] * p[1], {p[2], p[3], p[4]}});
    }
    return list;
}

Vec3 CableModel::start_force(int e, const Vec3& x1, const Vec3& x2) const {
    const Vec3 known{st(1, e), st(2, e), st(3, e)};
    return vector_length(known) > 1e-12 ? known : cable_estimate(segments(e), x1, x2);
}

std::optional<CableModel> find_cables() {
    const auto parameters = find_matrix<const std::int32_t>(cable_parm, 3, 1);
    const auto tolerance = find_matrix<const double>(cable_tolerance, 1, 1);
    if (!parameters || !tolerance || parameters(1) < 1 || parameters(2) < 1) return std::nullopt;
    const int n = parameters(1);
    CableModel m;
    m.maxiter = parameters(3);
    m.tolerance = tolerance(1);
    m.el = find_matrix<const std::int32_t>(cable_el, 3, n);
    m.mp = find_matrix<const double>(cable_mp, 5, parameters(2));
    m.length = find_matrix<const double>(cable_len, n, 1).all();
    m.st = find_matrix<double>(cable_st, 6, n);
    const auto flx12 = find_matrix<double>(cable_flx12, 3, 3 * n);
    const auto flx21 = find_matrix<double>(cable_flx21, 3, 3 * n);
    const ArrayRef materials = find_array(cable_seg_mat), lengths = find_array(cable_seg_len);
    if (!m.el || !m.mp || m.length.empty() || !m.st || !flx12 || !flx21) return std::nullopt;
    if (materials.is(type_integer) && lengths.is(type_real) && materials.size() == lengths.size()) {
        m.segment_material = as_span<const std::int32_t>(materials);
        m.segment_length = as_span<const double>(lengths);
    }
    m.flx12 = {flx12.data, 3, 3, n};
    m.flx21 = {flx21.data, 3, 3, n};
    m.first_segment = first_segments(m);
    if (m.first_segment.empty()) return std::nullopt;
    return m;
}

CatenaryLine solve_cable(const CableModel& model, int e, const Vec3& x1, const Vec3& x2,
                         const Vec3& start) {
    const CatenaryLine line = cable_shoot(model.segments(e), x1, x2, start,
                                          model.tolerance * model.length[nth(e)], model.maxiter);
    report(line.chain.lack);
    if (!line.converged) print_both(" \nWARNING: CABLE element not converged!\n");
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            model.flx12(i, j, e) = model.flx21(j, i, e) = line.chain.F(i, j);
    return line;
}

SmallMatrix<3> cable_flexibility(const CableModel& model, int e) {
    SmallMatrix<3> F;
    std::ranges::copy(model.flx12.slice(e).all(), F.a.begin());
    return F;
}

// --- printing -----------------------------------------------------------------------------------

void print_cable_materials(const CableModel& model) {
    write_both(
        "(/, ' CONTROL PARAMETERS', /, '   Maximum iterations    :', i4, /, '   Displacement tolerance:', 1pe10.3)",
        {model.maxiter, model.tolerance});
    write_both("(/, ' MAT', /, ' NO.', 5x, 'MODULUS', 8x, 'AREA', 3x,'GLOBAL WEIGHT VECTOR')");
    for (int m = 1; m <= model.mp.cols; ++m)
        write_both(
            "(i4, 1p2e12.4, 3x, '(', e9.2, 2(',', e9.2), ')')",
            {m, model.mp(cable_modulus, m), model.mp(cable_area, m), model.mp.col(m).last(3)});
}

void print_cable_segments(const CableModel& model) {
    write_both("(/, ' ELEMENT  SEGMENT     MATL', 7x, 'LENGTH')");
    for (int e = 1; e <= model.lines(); ++e) {
        FormatItems items{e};
        const std::size_t first = model.first_segment[nth(e)];
        for (std::size_t i = first; i < model.first_segment[as_size(e)]; ++i)
            items.add(static_cast<int>(i - first) + 1)
                .add(model.segment_material[i])
                .add(model.segment_length[i]);
        write_both("(3(i6,3x), 1pe12.4, /, (9x, 2(i6,3x), e12.4))", items);
    }
}

std::string_view cable_records_help() {
    return "m\n\tOn the command line the number of line properties, each of which takes one "
           "material record; on such a record its number. Default is 1.\n\n"
           "e, a\n\tModulus of elasticity and area; their product must be above 0.\n\n"
           "w\n\tWeight per unit unstretched length, a vector in global axes: a heavy line in an "
           "upward z has a negative third component. Less the buoyancy in water.\n\n"
           "n\n\tOn the command line the number of lines, on a record the number of its line. "
           "Default is 1. The input ends after n lines, at a blank record or at n=0.\n\n"
           "maxiter\n\tMost iterations on the force at the first end. Default is 30.\n\n"
           "tol\n\tTolerance of the position of the other end, as a part of the line's length. "
           "Default is 1e-5.\n\n"
           "#segs\n\tNumber of segments, each of which takes one segment record. Default is 1.\n\n"
           "tension\n\tEstimate of the force that the line receives at its first end. By default "
           "half the weight of the line, from the other end to the first.\n\n"
           "seg, mat, L\n\tNumber of the segment, counted from the first end, its property and its "
           "unstretched length.\n\n"
           "Theory: elastic catenaries of small strain, integrated from the first end to the "
           "other; Newton's iteration on the force at the first end. There is no fluid drag and no "
           "sea bed: a line that would lie on the bottom hangs below it.\n\n";
}

} // namespace quelor
