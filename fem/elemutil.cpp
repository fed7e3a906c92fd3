// Element groups, the walk over the element slots, and the services of elements that need no global
// matrix. Reads `.xyz`, `.#nodes`, `.node_active`; writes `.elem_grp`, `.fem_error`.
#include "fem/elemutil.hpp"

#include "fem/assembly.hpp"
#include "fem/export_to_gmsh.hpp"
#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

// --- groups and the walk ------------------------------------------------------------------------

void set_element_group(int slot, int code) {
    const auto is_vector = [](const ArrayRef& ref) {
        return ref.is(type_integer) && ref.size() == element_slots;
    };
    if (!is_vector(find_array(elem_grp))) create_matrix<std::int32_t>(elem_grp, element_slots, 0);
    as_span<std::int32_t>(find_array(elem_grp))[nth(slot)] = code;
}

Matrix<const std::int32_t> require_elements(const ElementTable& table) {
    const ArrayRef ref = find_array(table.name);
    const int rows = std::max({table.nodes, table.number_row, table.face_row});
    if (!ref.is(type_integer) || ref.ndim() > 2 || ref.rows() < rows) shutdown_with(table.missing);
    return as_matrix<const std::int32_t>(ref);
}

void call_element(int slot, Request request) {
    const ElementRow& row = element_rows()[nth(slot)];
    if (row.table.gmsh_type != 0 && task_of(request) == Task::mesh_export)
        return gmsh_write_elements(row.table);
    if (row.routine) return row.routine(request);
    // The backslashes of this text are characters of it.
    if (row.alias.empty()) return print_both(" \\nElement is unused.\\n");
    print_both(" \n\tElement " + std::string(row.alias) + " is not available in this version\n");
}

/// The walk over the active slots.
static void walk_elements(Request request, int source) {
    const ArrayRef ref = find_array(elem_grp);
    if (!ref.is(type_integer) || ref.size() != element_slots) {
        not_found(elem_grp);
        return write_both(
            "10(//, 10x, 'Attempt to call active elements but none ',           'is active', //, 10x, 'option     = ', i2, /, 10x,           'modifier 1 = ', i2, /, 10x, 'modifier 2 = ', i2, /)",
            {request.option, request.modifier1, request.modifier2});
    }
    if (source != 0 && source != 1)
        return print_both(" \nIncorrect argument to routine elem_call\n");

    std::array<std::int32_t, element_slots> codes; // a routine may change the array
    std::ranges::copy(as_span<std::int32_t>(ref), codes.begin());
    for (int slot = 1; slot <= element_slots; ++slot) {
        const int code = codes[nth(slot)];
        if (code == 0) continue;
        Request own = request;
        if (source == 1) own.modifier1 = code;
        call_element(slot, own);
    }
}

void elem_call(Request request, int source) {
    walk_elements(request, source);
    if (source == 0 && task_of(request) == Task::column_heights) constraint_column_heights();
}

static void cmd_elem_grp(std::string_view) {
    std::int32_t slot = 0;
    std::int32_t code = 0;
    get_int_par(" e=", slot);
    get_int_par(" code=", code);
    if (slot < 1 || slot > element_slots) return print_both(" \n\tGroup number out of range\n");
    set_element_group(slot, code);
}

// --- nodes of elements --------------------------------------------------------------------------

namespace {

void check_nodes(std::string_view name, Matrix<const std::int32_t> el, int nodes, int lowest) {
    const int highest = get_int(num_nodes);
    const ArrayRef ref = require_array(node_active, type_character, {any_size});
    const auto active = as_span<char>(ref);
    const auto undefined = [&](std::int32_t n) {
        return n > 0 && (n > ref.size() || active[nth(n)] != 'A');
    };
    bool bad = false;
    for (int e = 1; e <= el.cols; ++e) {
        const auto list = el.col(e).first(as_size(nodes));
        const bool out =
            std::ranges::any_of(list, [&](std::int32_t n) { return n < lowest || n > highest; });
        if (!out && std::ranges::none_of(list, undefined)) continue;
        bad = true;
        if (out)
            write_both(
                "20(/, 4x, 'Nodes of ', a, ' element number', i5, ' out of range', i2, ' to', i6)",
                {name, e, lowest, highest});
        else
            write_both(
                "25(/, 4x, 'One or more nodes of ', a, ' element number', i5, ' are undefined')",
                {name, e});
        FormatItems items;
        items.add(list);
        write_both("30(8x, 'Element nodes', (10i6))", items);
    }
    if (!bad) return;
    shutdown_with(" \nSave database and quit\n");
}

} // namespace

void check_element_nodes(std::string_view name, Matrix<const std::int32_t> el, int nodes) {
    check_nodes(name, el, nodes, 0);
}

void check_element_nodes_nonzero(std::string_view name, Matrix<const std::int32_t> el, int nodes) {
    check_nodes(name, el, nodes, 1);
}

void check_element_lengths(std::string_view name, std::span<const double> lengths) {
    bool bad = false;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        if (lengths[i] != 0) continue;
        bad = true;
        write_both("20(/, 4x, 'Length of ',a, ' element number', i5, ' = 0')",
                   {name, static_cast<std::int32_t>(i + 1)});
    }
    if (!bad) return;
    shutdown_with(" \nSave database and quit\n");
}

// --- element matrices and errors ----------------------------------------------------------------

bool elem_tkt(Matrix<const double> k, Matrix<const double> t, Matrix<double> result) {
    const int r = t.rows;
    const int c = t.cols;
    if (r < 1 || k.rows % r != 0) return print_both(" \n\tError 1 in routine elem_tkt\n"), false;
    const int blocks = k.rows / r;
    if (result.rows != c * blocks) return print_both(" \n\tError 2 in routine elem_tkt\n"), false;

    const int n = k.rows;
    std::vector<double> storage(as_size(n) * as_size(result.cols));
    const Matrix<double> kt{storage.data(), n, result.cols};
    for (int block = 0; block < blocks; ++block)
        for (int j = 1; j <= c; ++j)
            for (int q = 1; q <= r; ++q)
                for (int i = 1; i <= n; ++i)
                    kt(i, block * c + j) += k(i, block * r + q) * t(q, j);
    for (int j = 1; j <= result.cols; ++j)
        for (int block = 0; block < blocks; ++block)
            for (int i = 1; i <= c; ++i) {
                double sum = 0;
                for (int p = 1; p <= r; ++p)
                    sum += t(p, i) * kt(block * r + p, j);
                result(block * c + i, j) = sum;
            }
    return true;
}

void add_element_error(double error) {
    if (!(error >= -1e-10))
        shutdown_with(" \n\tAttempt to add negative error to global finite element error\n");
    const double present = get_real(fem_error);
    create_real_scalar(fem_error, (present == -1.0 ? 0.0 : present) + error);
}

void scale_element_errors(std::span<double> errors) {
    const double global = get_real(fem_error);
    if (global == 0) return print_both(" \nGlobal error = 0; relative error not calculated\n");
    for (double& error : errors)
        error /= global;
}

static void cmd_fem_error(std::string_view) {
    const bool user = has_flag(" -user") && !has_flag(" -SE");
    create_real_scalar(fem_error, -1.0);
    elem_call({5, 0, user ? 1 : 0}, 0);
    elem_call({5, 1, 0}, 0);
}

// --- rows ---------------------------------------------------------------------------------------

static constexpr Command rows[] = {
    {.words = {"elem_grp"},
     .run = cmd_elem_grp,
     .summary = "activate or deactivate an element type",
     .help =
         "Command Syntax\n\telem_grp  e=?  code=?\n\n"
         "Sets the group code of an element type.\n\n"
         "e\n\tNumber of the element type, 1 to 40, as listed by elem_alias.\n\n"
         "code\n\tGroup code. 0 (the default) takes the type out of processing and leaves its "
         "arrays as they are; for most types 1 is linear and 2 adds the geometric stiffness.\n\n"
         "Example (take the linear truss out):\n\telem_grp e=29 code=0\n\n"
         "The codes are in the array .elem_grp(40), which is created when it does not "
         "exist.\n\n"
         "See Also\n\telem_alias\n"},
    {.words = {"fem_error"},
     .run = cmd_fem_error,
     .summary = "finite element error estimate",
     .help = "Command Syntax\n\tfem_error  [-SE]  [-user]\n\n"
             "Adds up the error estimates of all active elements, then has each type form the "
             "relative errors of its elements.\n\n"
             "-SE\tError in strain energy (default).\n\n"
             "-user\n\tUser-defined error; -SE wins when both are given.\n\n"
             "Example:\n\tfem_error -SE\n\n"
             "Array created: .fem_error, the global error, -1 when no element has an estimate.\n\n"
             "See Also\n\telem_grp\n"},
};

std::span<const Command> elemutil_rows() {
    return rows;
}

} // namespace quelor
