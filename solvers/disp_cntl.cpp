// The generalised displacement of displacement control: a sum of nodal displacements with factors.
// Reads .node_eqs, .#eqs and the nodal constraints; writes .disp_cntl_vec.
#include "solvers/nsolve.hpp"

#include "fem/nodal_values.hpp"
#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

namespace quelor {

namespace {

struct ControlTerm {
    int node = 0, dof = 0;
    double factor = 0;
};

/// The next record, by keys or as three numbers; false at the end.
bool read_term(ControlTerm& term) {
    std::array<double, 3> values{};
    read_real_record("Enter data:\n", values);
    if (record_text().empty()) return false;
    if (record_text().find("n=") != std::string_view::npos) {
        std::int32_t node = 0, dof = 0;
        get_int_par("n=", node);
        get_int_par("dof=", dof);
        term = {node, dof, 0};
        get_real_par(" f=", term.factor); // not the end of "dof="
        return true;
    }
    term = {nearest_int(values[0]), nearest_int(values[1]), values[2]};
    return true;
}

/// Adds factor times the displacement to the vector; false when it has no equation.
bool add_term(const NodalValues& values, const ControlTerm& term, std::span<double> vector) {
    const std::int32_t q = values.eqs(term.dof, term.node);
    if (q > 0) vector[nth(q)] += term.factor;
    if (q < 0)
        for (const ConstraintTerm& part : values.constraints.of(-q))
            vector[nth(part.equation)] += part.factor * term.factor;
    return q != 0;
}

std::vector<ControlTerm> read_terms(const NodalValues& values, std::span<double> vector) {
    std::vector<ControlTerm> terms;
    for (ControlTerm term; read_term(term);) {
        if (term.node < 1 || term.node > values.eqs.cols)
            shutdown_with(" \n\tNode number out of range\n");
        if (!std::isfinite(term.factor)) shutdown_with(" \n\tFactor is not a finite number\n");
        if (term.dof < 1 || term.dof > values.dofs())
            print_both(" \n\tIllegal DOF; data ignored\n");
        else if (!add_term(values, term, vector))
            print_both(" \n\tDOF is fixed; data ignored\n");
        else
            terms.push_back(term);
    }
    return terms;
}

void cmd_disp_cntl(std::string_view) {
    if (!find_array(node_eqs).is(type_integer))
        return print_both(" \n\tArray .node_eqs not found; use command bcid\n");
    const int n = get_int(num_eqs);
    if (n < 1) return print_both(" \n\tSet .#eqs to the number of equations\n");
    auto values = open_nodal_values();
    if (!values || !values->fit(n)) return;
    Result result(disp_cntl_vec, "$disp_cntl");
    const auto vector = result.matrix<double>(n, 0).all();
    const auto terms = read_terms(*values, vector);
    if (std::ranges::all_of(vector, [](double f) { return f == 0; }))
        return print_both(" \n\tThe generalized displacement has no terms\n");
    write_both("10(/,6x, 'NODE    DOF    FACTOR')");
    for (const ControlTerm& term : terms)
        write_both("20(i10, i7, 1pe14.4)", {term.node, term.dof, term.factor});
    result.place();
}

constexpr Command rows[] = {
    {.words = {"disp_cntl"},
     .run = cmd_disp_cntl,
     .summary = "generalized displacement of nsolve",
     .help =
         "Command Syntax\n\tdisp_cntl\n\tn=node  dof=dof  f=factor\n\t...\n\t(blank line)\n\n"
         "Defines the generalized displacement that nsolve prescribes under displacement control "
         "(control=1): the sum of displacements times their factors. The command has no arguments; "
         "its records are\n\n"
         "n\n\tNode.\n\n"
         "dof\n\tDegree of freedom, 1 to 6: x, y, z, xx, yy, zz. It must not be fixed.\n\n"
         "f\n\tFactor. Default is 0.\n\n"
         "A record may also be given as the three numbers alone. The equations must have been "
         "numbered (form_k).\n\n"
         "Example (the deflection of node 2 downward):\n\tdisp_cntl\n\tn=2 dof=3 f=-1\n\t(blank "
         "line)\n\n"
         "Array created: .disp_cntl_vec(.#eqs).\n\n"
         "See Also\n\tnsolve\n\tform_k\n"},
};

} // namespace

std::span<const Command> disp_cntl_rows() {
    return rows;
}

} // namespace quelor
