// Mooring lines as catenaries in a vertical plane. Reads and writes the arrays of the cable records
// and `.hyd_mooring_linexyz`; writes `.hyd_mooring_K`.
#include "hydro_response/mooring_cable.hpp"

#include "elements/cable.hpp"
#include "hydro_response/hyd_mooring.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <string>

namespace quelor {

namespace {

/// True when cable elements are in the model: their records are the same.
bool cables_in_model() {
    const ArrayRef groups = find_array(elem_grp);
    if (!groups.is(type_integer) || groups.size() != element_slots) return false;
    const auto codes = as_span<const std::int32_t>(groups);
    return codes[nth(cable_slot)] != 0 || std::ranges::find(codes, cable_slot) != codes.end();
}

void store_ends(const CableInput& input) {
    const int n = static_cast<int>(input.lines.size());
    const auto ends = create_matrix<double>(hyd_mooring_linexyz, 3, 2 * n);
    for (int e = 1; e <= n; ++e) {
        const CableLineInput& line = input.lines[nth(e)];
        ends(1, 2 * e - 1) = line.anchor[0];
        ends(3, 2 * e - 1) = line.anchor[1];
        ends(1, 2 * e) = line.end[0];
        ends(3, 2 * e) = line.end[1];
    }
}

/// Anchor and end of line e.
struct LineEnds {
    Vec3 anchor, end;
};
LineEnds line_ends(Matrix<const double> xyz, int e) {
    const auto a = xyz.col(2 * e - 1), b = xyz.col(2 * e);
    return {{a[0], a[1], a[2]}, {b[0], b[1], b[2]}};
}

/// K = (-F)^-1, the reaction at the anchor being the force of F.
void store_stiffness(const SmallMatrix<3>& F, Matrix<double> k) {
    SmallMatrix<3> minus;
    std::ranges::transform(F.a, minus.a.begin(), std::negate());
    if (const auto stiffness = inverse(minus)) std::ranges::copy(stiffness->a, k.data);
}

void solve_lines(const CableModel& m, Matrix<const double> xyz) {
    const auto k = create_array3<double>(hyd_mooring_k, 3, 3, m.lines());
    for (int e = 1; e <= m.lines(); ++e) {
        if (m.has_line(e)) {
            const auto [x1, x2] = line_ends(xyz, e);
            const CatenaryLine line = solve_cable(m, e, x1, x2, m.start_force(e, x1, x2));
            std::ranges::copy(line.T, m.st.col(e).begin());
            std::ranges::copy(line.chain.T2, m.st.col(e).subspan(3).begin());
            store_stiffness(line.chain.F, k.slice(e));
        }
        const auto zero = [](double x) { return x == 0; };
        if (std::ranges::all_of(k.slice(e).all(), zero))
            print_both(" \n\tMooring line " + std::to_string(e) +
                       (m.has_line(e) ? " has no stiffness: its flexibility cannot be inverted\n"
                                      : " was not entered; its stiffness is zero\n"));
    }
}

/// Ends of the lines that go with the records.
Matrix<const double> find_ends(int lines) {
    const ArrayRef ref = find_array(hyd_mooring_linexyz);
    if (!ref.is(type_real) || ref.rows() != 3 || ref.size() != std::int64_t{6} * lines) return {};
    return as_matrix<const double>(ref);
}

void read_mooring_lines() {
    if (cables_in_model())
        shutdown_with(" \nMooring line elements and cable elements cannot be used simultaneously");
    if (!has_flag(" -restart")) {
        auto input = read_cable_counts("MOORING LINE");
        if (!input) return;
        delete_cables();
        read_cable_materials(*input);
        read_cable_lines(*input, "Enter element data: n  anchor  end  #segs  tension\n",
                         [](CableLineInput& line) {
                             get_real_par(" anchor=", line.anchor);
                             get_real_par(" end=", line.end);
                             if (!all_finite(line.anchor) || !all_finite(line.end))
                                 shutdown_with(" \n\tEnds of a mooring line are not finite\n");
                         });
        store_ends(*input);
        store_cable_lines(*input);
    }
    const auto model = find_cables();
    const auto ends = model ? find_ends(model->lines()) : Matrix<const double>{};
    if (!model || !ends) return print_both(" \n\tMooring line data not found\n");
    solve_lines(*model, ends);
}

void print_mooring_lines() {
    const auto model = find_cables();
    if (!model) return print_both(" \n\tMooring line data not found\n");
    const auto ends = find_ends(model->lines());
    if (!ends) {
        not_found(hyd_mooring_linexyz);
        shutdown();
    }
    print_cable_materials(*model);
    write_both(
        "(/, ' ELEMENT       ANCHOR (X-Z)          END (X-Z)        SEGMENTS', 5x, 'LENGTH', 4x, 'TENSION AT NODES 1 AND 2')");
    for (int e = 1; e <= model->lines(); ++e) {
        const auto [a, b] = line_ends(ends, e);
        const auto f = model->st.col(e);
        const Vec3 T1{f[0], f[1], f[2]}, T2{f[3], f[4], f[5]};
        write_both(
            "(i6, 2x, 1p4e11.3, i7, 3x, 1pe11.3, 3x, e10.3, ' (', e10.3, 2(',', e10.3), ')', /, 76x, e10.3, ' (', e10.3, 2(',', e10.3), ')')",
            {e, a[0], a[2], b[0], b[2], model->el(3, e), model->length[nth(e)], vector_length(T1),
             std::span<const double>(T1), vector_length(T2), std::span<const double>(T2)});
    }
    print_cable_segments(*model);
}

} // namespace

void hyd_mooring_line_element(Request request) {
    switch (task_of(request)) {
    case Task::input:
        return read_mooring_lines();
    case Task::print_input:
        return print_mooring_lines();
    default:
        return;
    }
}

std::string_view hyd_mooring_line_help() {
    static const std::string text =
        "Command Syntax\n\thyd_mooring_line  m=?  n=?  [maxiter=?]  [tol=?]  [-restart]\n\t"
        "   m=seg_prop  e=emodulus  a=area  w=wx,wy,wz\n\t"
        "   n=nel  anchor=x1,z1  end=x2,z2  [#segs=#segs]  [tension=tenX,tenY,tenZ]\n\t"
        "      seg=seg  mat=seg_prop  L=length\n\n"
        "Solves mooring lines as elastic catenaries, each in a vertical plane of its own, and stores "
        "the stiffness at their ends for hyd_assign_mooring. The mooring x axis is horizontal and "
        "runs from the anchor towards the end, z is upward. Cable elements and mooring lines cannot "
        "be in one model.\n\n"
        "anchor, end\n\tx and z of the anchor and of the end at the body, in the mooring axes.\n\n" +
        std::string(cable_records_help()) +
        "-restart\n\tSolves the lines of an earlier input again, from the arrays of the "
        "database.\n\n"
        "Example:\n\thyd_mooring_line m=1 n=1\n\tm=1 e=1.e11 a=5.e-3 w=0,0,-800\n\tn=1 anchor=0,-60 "
        "end=280,-2\n\tseg=1 mat=1 L=290\n\tphyd_mooring_line\n\n"
        "Arrays created: .hyd_mooring_K(3,3,n), .hyd_mooring_linexyz(3,2n) and those of cable.\n\n"
        "See Also\n\tphyd_mooring_line\n\thyd_assign_mooring\n\thyd_mooring_stiffness\n\tcable\n";
    return text;
}

std::string_view phyd_mooring_line_help() {
    return "Command Syntax\n\tphyd_mooring_line\n\n"
           "Prints the data of the last hyd_mooring_line, and of each line the forces that it "
           "receives at the anchor and at the end: the second is minus the sum of the first and the "
           "weight of the line.\n\n"
           "Example:\n\thyd_mooring_line m=1 n=1\n\tm=1 e=1.e11 a=5.e-3 w=0,0,-800\n\tn=1 "
           "anchor=0,-60 end=280,-2\n\tseg=1 mat=1 L=290\n\tphyd_mooring_line\n\n"
           "See Also\n\thyd_mooring_line\n\tphyd_mooring_stiffness\n";
}

} // namespace quelor
