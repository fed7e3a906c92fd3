// Input of nodal constraints, and their expansion into equations. Reads `.bcid`, `.xyz`,
// `.node_active`, `.node_eqs`; writes `.const_nodes`, `.const_dofs`, `.const_factor` and the codes
// 2 of `.bcid`; deletes `.node_eqs`, `.#eqs`.
#include "fem/constraint.hpp"

#include "fem/nodes.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <tuple>

namespace quelor {

// --- services -----------------------------------------------------------------------------------

namespace {

constexpr int most_rows = 10000; // of a constraint; more is a slip of the pen

/// The three arrays; false when they are absent or do not agree in shape.
struct ConstraintArrays {
    Matrix<const std::int32_t> nodes, dofs;
    Matrix<const double> factor;
    explicit operator bool() const { return static_cast<bool>(factor); }
};

ConstraintArrays find_constraints() {
    const ArrayRef nodes = find_array(const_nodes);
    const ArrayRef dofs = find_array(const_dofs);
    const ArrayRef factor = find_array(const_factor);
    if (!nodes.is(type_integer) || !dofs.is(type_integer) || !factor.is(type_real)) return {};
    const auto fits = [&](const ArrayRef& ref) {
        return ref.ndim() <= 2 && ref.rows() == nodes.rows() && ref.cols() == nodes.cols();
    };
    if (!fits(nodes) || !fits(dofs) || !fits(factor)) return {};
    return {as_matrix<const std::int32_t>(nodes), as_matrix<const std::int32_t>(dofs),
            as_matrix<const double>(factor)};
}

/// Equation of an independent degree of freedom: 0 for none, -1 when there is no such equation.
int independent_equation(Matrix<const std::int32_t> eqs, int equations, int node, int dof) {
    if (node == 0) return 0;
    if (node < 1 || node > eqs.cols || dof < 1 || dof > eqs.rows) return -1;
    const int e = std::max(eqs(dof, node), 0);
    return e <= equations ? e : -1;
}

} // namespace

std::span<const ConstraintTerm> Constraints::of(int k) const {
    const std::size_t last = as_size(k) - 1;
    const std::size_t begin = last == 0 ? 0 : end[last - 1];
    return {terms.data() + begin, end[last] - begin};
}

Constraints read_constraints(Matrix<const std::int32_t> eqs, int equations) {
    const ConstraintArrays in = find_constraints();
    if (!in) return {};
    Constraints out;
    for (int k = 1; k <= in.nodes.cols; ++k) {
        const auto begin = static_cast<std::ptrdiff_t>(out.terms.size());
        bool valid = true;
        for (int row = 2; row <= in.nodes.rows; ++row) {
            const double factor = in.factor(row, k);
            const int e = independent_equation(eqs, equations, in.nodes(row, k), in.dofs(row, k));
            if (e < 0) valid = false;
            if (e <= 0 || factor == 0) continue;
            const auto same = std::find_if(out.terms.begin() + begin, out.terms.end(),
                                           [&](const auto& term) { return term.equation == e; });
            if (same != out.terms.end())
                same->factor += factor;
            else
                out.terms.push_back({e, factor});
        }
        out.end.push_back(out.terms.size());
        out.valid.push_back(valid);
    }
    return out;
}

ConstraintNumbers::ConstraintNumbers() {
    const ConstraintArrays in = find_constraints();
    if (!in) print_both(" \n\tConstraint info not found\n");
    for (int k = 1; k <= in.nodes.cols; ++k)
        entries_.push_back({in.nodes(1, k), in.dofs(1, k), k});
    std::ranges::sort(entries_, {},
                      [](const Entry& e) { return std::tuple(e.node, e.dof, e.number); });
}

int ConstraintNumbers::find(int node, int dof) const {
    const auto key = [](const Entry& e) { return std::pair(e.node, e.dof); };
    const auto at = std::ranges::lower_bound(entries_, std::pair(node, dof), {}, key);
    return at != entries_.end() && key(*at) == std::pair(node, dof) ? at->number : 0;
}

// --- nodal_constraint ---------------------------------------------------------------------------

namespace {

/// The constraints as they are read, `rows` numbers a constraint.
struct Input {
    explicit Input(int maxnodes) : rows(as_size(maxnodes)) {}

    std::size_t rows;
    std::vector<std::int32_t> nodes, dofs;
    std::vector<double> factors;

    std::size_t count() const { return nodes.size() / rows; }
    /// Begins a constraint, its unused rows 0.
    void begin(std::int32_t node, std::int32_t dof) {
        used_ = nodes.size();
        nodes.resize(used_ + rows);
        dofs.resize(used_ + rows);
        factors.resize(used_ + rows);
        add(node, dof, 1);
    }
    void add(std::int32_t node, std::int32_t dof, double factor) {
        nodes[used_] = node;
        dofs[used_] = dof;
        factors[used_++] = factor;
    }

private:
    std::size_t used_ = 0;
};

/// A constraint as it is typed.
void read_general(Input& in) {
    std::int32_t node = 0, dof = 0;
    std::vector<std::int32_t> nodes(in.rows), dofs(in.rows); // one more than fits
    std::vector<double> factors(in.rows, 1.0);
    get_int_par("c=", node);
    get_int_par("cdof=", dof);
    get_int_par(" r=", nodes);
    get_int_par("rdof=", dofs);
    get_real_par("factor=", factors);
    if (nodes.back() != 0) shutdown_with(" \n\tConstraint has more nodes than maxnodes\n");
    if (!all_finite(factors)) shutdown_with(" \n\tFactor of constraint is not a finite number\n");
    in.begin(node, dof);
    for (std::size_t i = 0; i + 1 < in.rows; ++i)
        in.add(nodes[i], nodes[i] == 0 ? 0 : dofs[i], nodes[i] == 0 ? 0 : factors[i]);
}

/// Rigid link: with d from the master to the constrained node and rotations w of the master,
/// u(c) = u(m) + w x d, w(c) = w(m).
void add_link(Input& in, const NodeSet& set, std::int32_t node, std::int32_t master,
              bool with_rotations) {
    if (in.rows < 4) shutdown_with(" \n\tmaxnodes must be at least 4 for a rigid link\n");
    const auto defined = [&](int n) { return 1 <= n && n <= set.count && set.is_active(n); };
    const Vec3 d = defined(node) && defined(master) ? difference(set.at(node), set.at(master))
                                                    : Vec3{0, 0, 0}; // refused below
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int k = (i + 2) % 3;
        in.begin(node, i + 1);
        in.add(master, i + 1, 1);
        in.add(master, 4 + j, d[as_size(k)]);
        in.add(master, 4 + k, -d[as_size(j)]);
    }
    for (int dof = 4; dof <= 6 && with_rotations; ++dof) {
        in.begin(node, dof);
        in.add(master, dof, 1);
    }
}

void read_link(Input& in, const NodeSet& set, bool with_rotations) {
    std::int32_t node = 0, master = 0;
    get_int_par("c=", node);
    get_int_par(" r=", master);
    add_link(in, set, node, master, with_rotations);
}

/// One record; false at the end of the input.
bool read_constraint(Input& in, const NodeSet& set) {
    next_record("Enter line of data\n");
    if (record_text().empty()) return false;
    std::string type;
    get_char_par("type=", type, 33);
    if (type == "general")
        read_general(in);
    else if (type == "body" || type == "body_trans")
        read_link(in, set, type == "body");
    else
        shutdown_with(" \nConstraint type not recognized\n \nProgram shutting down\n");
    return true;
}

using NodeDof = std::pair<std::int32_t, std::int32_t>;

/// Checks one constraint, rows of nodes and degrees of freedom; each fault takes the fatal path.
void check_constraint(std::span<const std::int32_t> nodes, std::span<const std::int32_t> dofs,
                      const NodeSet& set, const std::set<NodeDof>& constrained) {
    const auto defined = [&](int n) { return 1 <= n && n <= set.count && set.is_active(n); };
    if (!defined(nodes[0])) shutdown_with("\n\tCannot constrain an undefined node\n");
    if (std::ranges::all_of(nodes.subspan(1), [](int n) { return n == 0; }))
        shutdown_with("\n\tError:number of nodes for constraint less than 2\n");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i] == 0) continue;
        if (!defined(nodes[i]))
            shutdown_with("\n\tAn undefined node cannot be used to constrain a node\n");
        if (dofs[i] < 1 || dofs[i] > 6) shutdown_with("\n\tDOF of constraint is not 1 to 6\n");
        if (i > 0 && constrained.contains({nodes[i], dofs[i]}))
            shutdown_with("\n\tError:master node is node with dependent DOF\n");
    }
}

void check_input(const Input& in, const NodeSet& set) {
    std::set<NodeDof> constrained;
    for (std::size_t at = 0; at < in.nodes.size(); at += in.rows)
        constrained.emplace(in.nodes[at], in.dofs[at]);
    for (std::size_t at = 0; at < in.nodes.size(); at += in.rows)
        check_constraint(std::span(in.nodes).subspan(at, in.rows),
                         std::span(in.dofs).subspan(at, in.rows), set, constrained);
}

/// Adds the earlier constraints that still hold: their degree of freedom has code 2, and none of
/// those read before is on it.
void keep_earlier(Input& in, Matrix<const std::int32_t> codes) {
    const ConstraintArrays old = find_constraints();
    std::set<NodeDof> anew;
    for (std::size_t at = 0; at < in.nodes.size(); at += in.rows)
        anew.emplace(in.nodes[at], in.dofs[at]);
    for (int k = 1; old && k <= old.nodes.cols; ++k) {
        const int node = old.nodes(1, k);
        const int dof = old.dofs(1, k);
        const bool exists = 1 <= node && node <= codes.cols && 1 <= dof && dof <= codes.rows;
        if (!exists || codes(dof, node) != 2 || anew.contains({node, dof})) continue;
        in.begin(node, dof);
        for (int row = 2; row <= old.nodes.rows; ++row)
            in.add(old.nodes(row, k), old.dofs(row, k), old.factor(row, k));
    }
}

/// Sets code 2, except where a degree of freedom is fixed.
void mark_constraints(const Input& in, Matrix<std::int32_t> codes) {
    for (std::size_t at = 0; at < in.nodes.size(); at += in.rows) {
        std::int32_t& code = codes(in.dofs[at], in.nodes[at]);
        if (code < 0) shutdown_with("\n\tError:constrained node is restrained node\n");
        if (code != 1) code = 2;
    }
}

void store_constraints(const Input& in) {
    const int rows = static_cast<int>(in.rows);
    const int count = static_cast<int>(in.count());
    std::ranges::copy(in.nodes, create_matrix<std::int32_t>(const_nodes, rows, count).data);
    std::ranges::copy(in.dofs, create_matrix<std::int32_t>(const_dofs, rows, count).data);
    std::ranges::copy(in.factors, create_matrix<double>(const_factor, rows, count).data);
}

/// What constraints need of the nodes; false after a message. Without `.bcid` the fatal path.
struct ConstrainedNodes {
    NodeSet set;
    Matrix<std::int32_t> codes;
    explicit operator bool() const { return static_cast<bool>(codes); }
};

ConstrainedNodes open_constrained_nodes() {
    const ArrayRef codes = find_array(bcid);
    if (!codes.is(type_integer) || codes.rows() < 6)
        shutdown_with(
            " \nArray .bcid not found; see command bcid - saving database and quitting\n");
    const NodeSet set = open_nodes(fe_nodes);
    if (!set) return {};
    if (codes.cols() < set.count)
        return print_both(" \n\tNodal arrays do not agree in size\n"), ConstrainedNodes{};
    return {set, as_matrix<std::int32_t>(codes)};
}

void take_constraints(Input& in, const ConstrainedNodes& nodes) {
    if (in.count() == 0) return;
    keep_earlier(in, nodes.codes);
    check_input(in, nodes.set);
    mark_constraints(in, nodes.codes);
    store_constraints(in);
    delete_array(node_eqs);
    delete_array(num_eqs);
}

/// Rows of the constraints at hand, at least `least`: they are kept.
int rows_with_earlier(int least) {
    const ConstraintArrays old = find_constraints();
    return old ? std::max(least, old.nodes.rows) : least;
}

void cmd_nodal_constraint(std::string_view) {
    std::int32_t maxnodes = 4;
    get_int_par("maxnodes=", maxnodes);
    if (maxnodes < 2) return print_both("\n\tmaxnodes must be greater than or equal to 2\n");
    if (maxnodes > most_rows) return print_both("\n\tmaxnodes must not be above 10000\n");
    const ConstrainedNodes nodes = open_constrained_nodes();
    if (!nodes) return;
    Input in(rows_with_earlier(maxnodes));
    while (read_constraint(in, nodes.set)) {
    }
    take_constraints(in, nodes);
}

constexpr Command rows[] = {
    {.words = {"nodal_constraint"},
     .run = cmd_nodal_constraint,
     .summary = "make nodal DOFs depend on others",
     .help =
         "Command Syntax\n\tnodal_constraint  [maxnodes=?]\n\t"
         "   type=general  c=n  cdof=cdof  r=n1,n2,...  rdof=r1,r2,...  factor=f1,f2,...\n\t"
         "   type=body  c=n  r=n1\n\t   type=body_trans  c=n  r=n1\n\t   (blank line)\n\n"
         "Makes degrees of freedom (DOFs) depend linearly on others. A constrained DOF gets no "
         "equation of its own; its stiffness, mass and loads go to the DOFs that it depends on. A "
         "DOF that is fixed stays fixed. An error in the records ends the program; the database is "
         "saved first.\n\n"
         "maxnodes\n\tLargest number of nodes in a constraint, the constrained node included. "
         "Default is 4, which a rigid link needs.\n\n"
         "type=general\n\tDOF cdof of node n = f1 times DOF r1 of node n1 + f2 times DOF r2 of node "
         "n2 ... DOFs are 1 to 6; a factor that is not given is 1 when the key is absent and 0 when "
         "the list is short.\n\n"
         "type=body\n\tRigid link: node n moves as a rigid body with node n1 (six constraints).\n\n"
         "type=body_trans\n\tThe same for the translations of node n only (three constraints).\n\n"
         "A DOF on which others depend must not itself be constrained, and a constrained DOF must "
         "not share the equation of another node (merge_nodes). Constraints of an earlier "
         "nodal_constraint stay, except on DOFs that are constrained anew; bcid removes all.\n\n"
         "Example (node 3 linked to node 1; node 2 slides along the line x = y):\n\t"
         "nodal_constraint\n\ttype=body c=3 r=1\n\t"
         "type=general c=2 cdof=2 r=2 rdof=1 factor=1.0\n\t(blank line)\n\n"
         "Must follow bcid. Arrays created: .const_nodes, .const_dofs, .const_factor, one column a "
         "constraint. In .bcid the constrained DOFs get code 2; .node_eqs and .#eqs are deleted, so "
         "equations are numbered anew.\n\n"
         "See Also\n\tbcid\n\tmerge_nodes\n\tform_k\n"},
};

} // namespace

void link_rigidly(std::span<const RigidLink> links) {
    const ConstrainedNodes nodes = open_constrained_nodes();
    if (!nodes) return;
    Input in(rows_with_earlier(4));
    for (const RigidLink& link : links)
        add_link(in, nodes.set, link.node, link.master, true);
    take_constraints(in, nodes);
}

std::span<const Command> constraint_rows() {
    return rows;
}

} // namespace quelor
