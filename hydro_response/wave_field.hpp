// What the elevation of the free surface and the velocities of the water have in common: the parts
// of the field that the command line asks for, the model and the source strengths checked against
// each other, and the potentials at free points, frequency by frequency.
#pragma once

#include "hydro_analysis/hyd_problem.hpp"
#include "hydro_analysis/influence_panels.hpp"

#include <string>
#include <vector>

namespace quelor {

/// The words of one command, and how far its exact integrals reach.
struct FieldKind {
    double gauge;        ///< times `.hyd_gauge`
    int points_per_node; ///< leads from the number of a point to its node
    std::string_view incoming, diffraction, radiation; ///< lines of the trace
    std::string_view diffraction_size, radiation_size; ///< messages for files of other sizes
};

/// The keys incoming=, diffraction=, radiation=, each 1 unless given, and dif=, rad=.
struct FieldParts {
    bool incoming = true, diffraction = true, radiation = true;
    std::string dif, rad;

    bool sources() const { return diffraction || radiation; }
};
FieldParts read_field_parts();

/// True for a model without symmetry; otherwise a message.
bool has_no_symmetry();

/// The model of the field. Opens the source files when it is made, and closes them at its end.
class WaveField {
public:
    WaveField(const FieldParts& parts, const FieldKind& kind);
    ~WaveField();
    WaveField(const WaveField&) = delete;
    WaveField& operator=(const WaveField&) = delete;

    /// False, after a message: an array is absent or does not fit, or a source file does not serve.
    explicit operator bool() const { return usable_; }
    const HydSize& size() const { return size_; }
    std::span<const double> freq() const { return freq_; }

    /// Potentials of all frequencies and headings. False, after a message, when a point has none.
    /// points  in   n, in the water
    /// phi     out  (n,nfreq,nbeta), zero on entry
    bool potentials(std::span<const Vec3> points, Array3<Complex8> phi);

private:
    void open_arrays();
    void open_files();
    void add_incoming(int ifreq, std::span<const Vec3> points, Array3<Complex8> phi) const;
    std::vector<Complex4> read_strengths(int ifreq) const;
    bool add_sources(int ifreq, std::span<const Vec3> points, Array3<Complex8> phi);
    void report(const InfluenceResult& result) const;

    FieldParts parts_;
    FieldKind kind_;
    bool usable_ = true;
    HydSize size_{};
    std::span<const double> freq_, beta_;
    PanelMesh mesh_{};
    Array3<const Complex8> gencor_;
    DepthCache cache_;
};

} // namespace quelor
