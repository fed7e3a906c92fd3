// The records of catenary lines, which the element `cable` and the mooring lines share: input,
// arrays, solution, printing. A model has lines of one kind only.
#pragma once

#include "elements/catenary.hpp"
#include "kernel/dbfgen.hpp"

#include <functional>
#include <optional>
#include <vector>

namespace quelor {

/// integer (3): numbers of lines and of materials, greatest number of iterations.
inline constexpr std::string_view cable_parm = ".cable_parm";
/// real: tolerance of the position of the end, as a part of the line's length.
inline constexpr std::string_view cable_tolerance = ".cable_tolerance";
/// integer (3, n): node 1, node 2 (0 for mooring lines), number of segments.
inline constexpr std::string_view cable_el = ".cable_el";
/// real (n): unstretched length of the line.
inline constexpr std::string_view cable_len = ".cable_len";
/// real (5, m): area, modulus, weight vector per unit length.
inline constexpr std::string_view cable_mp = ".cable_mp";
/// integer and real (number of all segments): material and unstretched length, line after line.
inline constexpr std::string_view cable_seg_mat = ".cable_seg_mat";
inline constexpr std::string_view cable_seg_len = ".cable_seg_len";
/// real (6, n): forces that the line receives at its ends 1 and 2.
inline constexpr std::string_view cable_st = ".cable_st";
/// real (3, 3, n): derivative of the position of end 2 to the force at end 1, of the last solution;
/// the second is its transpose.
inline constexpr std::string_view cable_flx12 = ".cable_flx12";
inline constexpr std::string_view cable_flx21 = ".cable_flx21";

enum CableMaterialRow { cable_area = 1, cable_modulus, cable_weight };

// --- input --------------------------------------------------------------------------------------

/// One line as it is typed. The ends are nodes, or points in a vertical plane.
struct CableLineInput {
    bool entered = false;
    std::array<std::int32_t, 2> nodes{};
    std::array<double, 2> anchor{}, end{}; ///< x, z
    Vec3 tension{};                        ///< estimate of the force at end 1
    std::vector<std::int32_t> materials;   ///< of the segments
    std::vector<double> lengths;
};
struct CableInput {
    std::int32_t materials = 1, maxiter = 30;
    double tolerance = 1e-5;
    std::vector<CableLineInput> lines;
};

/// " m=", " n=", " maxiter=" and " tol=" of the command line; values that cannot be stand for the
/// defaults. Nothing after a message when the counts are too large.
std::optional<CableInput> read_cable_counts(std::string_view title);
/// The material records, into `.cable_mp`. What cannot be takes the fatal path.
void read_cable_materials(const CableInput& input);
/// The lines with their segments: until n of them have been read, a blank record or n = 0.
/// get_ends  takes the ends of a line from its record
void read_cable_lines(CableInput& input, std::string_view prompt,
                      const std::function<void(CableLineInput&)>& get_ends);
/// All arrays but `.cable_mp`; a force typed for a line stands in `.cable_st`.
void store_cable_lines(const CableInput& input);
void delete_cables();

// --- model --------------------------------------------------------------------------------------

/// Views of the arrays.
struct CableModel {
    int maxiter = 0;
    double tolerance = 0;
    Matrix<const std::int32_t> el;
    Matrix<const double> mp;
    std::span<const double> length;
    std::span<const std::int32_t> segment_material;
    std::span<const double> segment_length;
    std::vector<std::size_t> first_segment; ///< of each line; one more entry ends the last
    Matrix<double> st;
    Array3<double> flx12, flx21;

    int lines() const { return el.cols; }
    /// False for a line whose record was never read.
    bool has_line(int e) const { return el(3, e) > 0; }
    std::vector<CatenarySegment> segments(int e) const;
    /// The force at end 1, or, where none is known, an estimate for the ends x1 and x2.
    Vec3 start_force(int e, const Vec3& x1, const Vec3& x2) const;
};
/// The arrays, checked against each other; nothing when one is absent or does not fit.
std::optional<CableModel> find_cables();

/// Line e between x1 and x2 from the force `start` on; its flexibility is stored. Tells of missing
/// load or tension and of an iteration that did not converge.
CatenaryLine solve_cable(const CableModel& model, int e, const Vec3& x1, const Vec3& x2,
                         const Vec3& start);
/// The stored flexibility of a line; zero before its first solution.
SmallMatrix<3> cable_flexibility(const CableModel& model, int e);

// --- printing -----------------------------------------------------------------------------------

/// Control parameters and materials.
void print_cable_materials(const CableModel& model);
/// Segments of all lines.
void print_cable_segments(const CableModel& model);

/// Texts of the help of both kinds.
std::string_view cable_records_help();

} // namespace quelor
