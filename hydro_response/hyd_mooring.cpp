// Commands hyd_mooring_stiffness, phyd_mooring_stiffness, hyd_assign_mooring. Reads
// `.hyd_mooring_K`, `.hyd_nmoder`, `.hyd_nmodef`, `.hyd_nbodies`; writes `.hyd_mooring_K` and
// `hyd_kstr`.
#include "hydro_response/hyd_mooring.hpp"

#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <string>

namespace quelor {

namespace {

constexpr std::int32_t most_stiffnesses = 1'000'000; // more is a slip of the pen

/// The message, then the end of the program; the file of the project stays as it is.
[[noreturn]] void end_program(std::string_view message) {
    print_both(std::string(message) + "\nProgram is shutting down\n");
    exit_unsaved(false);
}

// --- stiffnesses --------------------------------------------------------------------------------

void cmd_hyd_mooring_stiffness(std::string_view) {
    std::int32_t count = 0;
    get_int_par(" #=", count);
    if (count < 1 || count > most_stiffnesses)
        return print_both(" \nInvalid number of stiffness\n");
    const auto k = create_array3<double>(hyd_mooring_k, 3, 3, count);
    while (true) {
        std::int32_t n = 0;
        next_record("Enter mooring stiffness: n=?\n");
        get_int_par("n=", n);
        if (n == 0) return;
        if (n < 1 || n > count) return print_both(" \nInvalid stiffness number\n");
        for (int i = 1; i <= 3; ++i) {
            Vec3 row{};
            read_real_record("Enter row " + std::to_string(i) + "\n", row);
            for (int j = 1; j <= 3; ++j)
                k(i, j, n) = row[nth(j)];
        }
    }
}

/// The array of the stiffnesses; otherwise what is wrong with it.
struct Stiffnesses {
    Array3<const double> k;
    std::string_view fault;
};
Stiffnesses find_stiffnesses(std::string_view absent, std::string_view not_three,
                             std::string_view not_square) {
    const ArrayRef ref = find_array(hyd_mooring_k);
    if (!ref) return {{}, absent};
    if (ref.ndim() != 3) return {{}, not_three};
    if (ref.rows() != 3 || ref.cols() != 3 || !ref.is(type_real)) return {{}, not_square};
    return {as_array3<const double>(ref), {}};
}

void cmd_phyd_mooring_stiffness(std::string_view) {
    const auto [k, fault] = find_stiffnesses(" \nMooring stiffnesses do not exist\n",
                                             " \nArray .hyd_mooring_K should be 3 dimensional\n",
                                             " \nMooring stiffnesses should be 3x3 matrices\n");
    if (!k) return print_both(fault);
    write_both("(//, 13x, 'Mooring Stiffness Matrices')");
    for (int n = 1; n <= k.n3; ++n) {
        write_both("(/, 'Mooring stiffness', i5)", {n});
        for (int i = 1; i <= 3; ++i)
            write_both("(1p3e12.4)", {k(i, 1, n), k(i, 2, n), k(i, 3, n)});
    }
}

// --- assignment ---------------------------------------------------------------------------------

struct Assignment {
    std::int32_t body = 0, mooring = 0;
    Vec3 attachment{};
    std::optional<double> theta; ///< degrees
    SmallMatrix<3> T;
};

/// The next record; nothing when it names no body.
std::optional<Assignment> next_assignment() {
    constexpr double not_given = -50000;
    Assignment a;
    double theta = not_given;
    next_record("Assign mooring stiffness: body=?  mooring=?  attach=?,?,?  [theta=?]  "
                "[T=?,?,?,?,?,?,?,?,?]\n");
    get_int_par("body=", a.body);
    if (a.body == 0) return std::nullopt;
    get_int_par("mooring=", a.mooring);
    get_real_par(" attach=", a.attachment);
    get_real_par(" theta=", theta);
    if (theta != not_given)
        a.theta = theta;
    else
        get_real_par(" T=", a.T.a);
    if (std::ranges::all_of(a.T.a, [](double t) { return t == 0; })) a.theta = a.theta.value_or(0);
    if (a.theta) a.T = mooring_rotation(*a.theta * (std::numbers::pi / 4) / 45);
    return a;
}

void print_assignment(const Assignment& a) {
    if (a.theta)
        return write_both(
            "(5x, 'Mooring stiffness', i3, ' assigned to body', i3, ' at attachment point: ', /, 10x, 3(f10.3, ','), ' with an angle of', f8.3, ' degrees.')",
            {a.mooring, a.body, std::span<const double>(a.attachment), *a.theta});
    FormatItems items{a.mooring, a.body, std::span<const double>(a.attachment)};
    for (int i = 1; i <= 3; ++i)
        items.add(a.T(i, 1)).add(a.T(i, 2)).add(a.T(i, 3));
    write_both(
        "(5x, 'Mooring stiffness', i3, ' assigned to body', i3, ' at attachment point: ', /, 10x, 3(f10.3, ','), ' with a transformation matrix of', /, 3(10x, 3f8.3, /))",
        items);
}

void assign(const Assignment& a, Array3<const double> stiffnesses, Matrix<double> kstr) {
    SmallMatrix<3> k;
    std::ranges::copy(stiffnesses.slice(a.mooring).all(), k.a.begin());
    const SmallMatrix<6> on_body = mooring_on_body(k, a.T, a.attachment);
    const int first = 6 * (a.body - 1);
    for (int j = 1; j <= 6; ++j)
        for (int i = 1; i <= 6; ++i)
            kstr(first + i, first + j) += on_body(i, j);
}

int count_modes() {
    std::int64_t modes = 0;
    for (const auto name : {hyd_nmoder, hyd_nmodef})
        if (find_array(name).is(type_integer)) modes += std::max(get_int(name), 0);
    if (modes < 1 || modes > std::numeric_limits<std::int32_t>::max())
        end_program(" \nNumber of modes are not been defined");
    return static_cast<int>(modes);
}

/// `hyd_kstr`, made anew with zeros when it is absent or of another shape.
Matrix<double> structural_stiffness(int nmode) {
    const ArrayRef ref = find_array(hyd_kstr);
    if (ref.is(type_real) && ref.ndim() <= 2 && ref.rows() == nmode && ref.cols() == nmode)
        return as_matrix<double>(ref);
    print_both(ref ? " \nStiffness matrix hyd_kstr has the wrong dimensions. It will be created.\n"
                   : " \nStiffness matrix hyd_kstr does not exist. It will be created.\n");
    return create_matrix<double>(hyd_kstr, nmode, nmode);
}

void cmd_hyd_assign_mooring(std::string_view) {
    const int nmode = count_modes();
    const Matrix<double> kstr = structural_stiffness(nmode);
    const auto [k, fault] = find_stiffnesses(" \nMooring stiffness data not found",
                                             " \nMooring stiffness array should be 3 dimensional",
                                             " \nMooring stiffnesses should be 3x3 matrices");
    if (!k) end_program(fault);
    const int bodies =
        find_array(hyd_nbodies).is(type_integer) ? std::max(get_int(hyd_nbodies), 1) : 1;
    while (const auto a = next_assignment()) {
        if (a->body < 1 || a->body > bodies || std::int64_t{6} * a->body > nmode)
            end_program(" \nbody is out of range");
        if (a->mooring < 1 || a->mooring > k.n3) end_program(" \nStiffness number is out of range");
        if (!all_finite(a->attachment) || !all_finite(a->T.a))
            end_program(" \nA value of the assignment is not a finite number");
        print_assignment(*a);
        assign(*a, k, kstr);
    }
}

constexpr Command rows[] = {
    {.words = {"hyd_mooring_stiffness"},
     .run = cmd_hyd_mooring_stiffness,
     .summary = "input of mooring stiffnesses",
     .help =
         "Command Syntax\n\thyd_mooring_stiffness  #=nstiff\n\t   n=?\n\t   three records, each a "
         "row of the matrix\n\n"
         "Input of 3 by 3 stiffness matrices of mooring lines. A matrix relates displacements "
         "and forces at the connection to the body, in the axes of the line: typically 1 is "
         "horizontal in the plane of the line, 2 horizontal across it, 3 vertical.\n\n"
         "#\n\tNumber of stiffnesses.\n\n"
         "n\n\tNumber of a stiffness, 1 to nstiff; three records with three numbers each must "
         "follow, without blank or comment lines between them. A blank line ends the input.\n\n"
         "Example:\n\thyd_mooring_stiffness #=1\n\tn=1\n\t1.e5 0 2.e4\n\t0 3.e3 0\n\t2.e4 0 "
         "4.e4\n\t(blank line)\n\n"
         "Array created: .hyd_mooring_K(3,3,nstiff).\n\n"
         "See Also\n\tphyd_mooring_stiffness\n\thyd_mooring_line\n\thyd_assign_mooring\n"},
    {.words = {"phyd_mooring_stiffness"},
     .run = cmd_phyd_mooring_stiffness,
     .summary = "prints the mooring stiffnesses",
     .help = "Command Syntax\n\tphyd_mooring_stiffness\n\n"
             "Prints the mooring stiffnesses, typed or computed from catenaries.\n\n"
             "Example:\n\thyd_mooring_stiffness #=1\n\tn=1\n\t1.e5 0 0\n\t0 3.e3 0\n\t0 0 4.e4\n\t"
             "(blank line)\n\tphyd_mooring_stiffness\n\n"
             "See Also\n\thyd_mooring_stiffness\n\thyd_mooring_line\n"},
    {.words = {"hyd_assign_mooring"},
     .run = cmd_hyd_assign_mooring,
     .summary = "adds mooring stiffnesses to hyd_kstr",
     .help =
         "Command Syntax\n\thyd_assign_mooring\n\t   body=?  mooring=?  attach=?,?,?  [theta=?]  "
         "[T=?,?,?,?,?,?,?,?,?]\n\t   (blank line)\n\n"
         "Transforms mooring stiffnesses to the rigid-body modes of a body and adds them to "
         "hyd_kstr, which is made when it does not exist. Each line must be assigned; assignments "
         "add up. It comes before hyd_genmodes, since it is written in the rigid-body modes; what "
         "moorings do to flexible modes is for the user to add.\n\n"
         "body\n\tBody, 1 to the number of bodies; 0 ends the input.\n\n"
         "mooring\n\tNumber of the stiffness in .hyd_mooring_K.\n\n"
         "attach\n\tPoint of attachment, in body axes.\n\n"
         "theta\n\tAngle in degrees about the z axis from the mooring x axis to the body x axis. "
         "The mooring x axis of hyd_mooring_line runs from the anchor to the end.\n\n"
         "T\n\tMatrix that turns a vector from body axes to mooring axes, column by column; looked "
         "at only without theta. Without both the axes are parallel.\n\n"
         "The tension of the line adds no geometric stiffness at the attachment: rotations of the "
         "body see the stiffness matrix only.\n\n"
         "Example:\n\thyd_parameters nmoder=6\n\thyd_mooring_stiffness #=1\n\tn=1\n\t1.e5 0 0\n\t0 "
         "3.e3 0\n\t0 0 4.e4\n\t(blank line)\n\thyd_assign_mooring\n\tbody=1 mooring=1 "
         "attach=20,0,-1 theta=180\n\t(blank line)\n\n"
         "Array changed: hyd_kstr(nmode,nmode).\n\n"
         "See Also\n\thyd_mooring_stiffness\n\thyd_mooring_line\n\thyd_analysis_response\n"},
};

} // namespace

SmallMatrix<3> mooring_rotation(double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    SmallMatrix<3> T;
    T.a = {c, s, 0, -s, c, 0, 0, 0, 1};
    return T;
}

SmallMatrix<6> mooring_on_body(const SmallMatrix<3>& k, const SmallMatrix<3>& T,
                               const Vec3& attachment) {
    const auto [x, y, z] = attachment;
    SmallMatrix<3, 6> G;
    G.a = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, -z, y, z, 0, -x, -y, x, 0};
    return congruent(congruent(k, T), G);
}

std::span<const Command> hyd_mooring_rows() {
    return rows;
}

} // namespace quelor
