// Text reports of hyd_analysis: problem summary, coefficient files, times.
#pragma once

#include "hydro_analysis/hyd_problem.hpp"

#include <array>

namespace quelor {

inline constexpr int unit_ot2 = 7, unit_adm = 11, unit_adp = 12, unit_exf = 13;

/// Opens `.adm`, `.adp`, `.exf` and `.ot2` with their head lines.
void open_coefficient_files();
void close_coefficient_files();

/// The lines on nodes, panels, coordinates, headings and the frequencies from `first` on.
void hyd_problem_summary(const HydSize& size, int first, std::span<const double> freq,
                         std::span<const double> beta);

/// The headings in degrees and the frequencies from `first` on, as every summary prints them.
void write_wave_lists(const HydSize& size, int first, std::span<const double> freq,
                      std::span<const double> beta);
/// The frequencies from `first` on alone.
void write_wave_frequencies(int first, std::span<const double> freq);

/// Added mass, damping and forces of all frequencies to the four files, and the warnings of
/// negative diagonals to the output file.
void write_coefficient_reports(const HydSize& size, std::span<const double> beta);

/// Heading of the lines that follow the course of an analysis.
void print_trace_title();

/// CPU seconds of the steps of an analysis.
enum class Timer {
    allocate,
    influence,
    factor,
    radiation,
    potentials,
    coefficients,
    incoming,
    diffraction
};
inline constexpr int timer_count = 8;

/// Adds the CPU time of a block of code to one slot.
class TimedStep {
public:
    explicit TimedStep(double& slot);
    ~TimedStep();
    TimedStep(const TimedStep&) = delete;
    TimedStep& operator=(const TimedStep&) = delete;

private:
    double& slot_;
    double start_;
};

struct AnalysisTimers {
    std::array<double, timer_count> seconds{};
    double& operator[](Timer t) { return seconds[static_cast<std::size_t>(t)]; }
};
/// `elapsed`: CPU seconds of the whole run.
void write_times(const AnalysisTimers& timers, double elapsed);

} // namespace quelor
