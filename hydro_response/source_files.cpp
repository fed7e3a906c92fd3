#include "hydro_response/source_files.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace quelor {

namespace {

/// Numbers before the strengths of a record.
std::size_t head_length(const SourceFileKind& kind) {
    return kind.by_heading ? 2 : 1;
}

using Head = std::array<double, 2>; // omega, heading

Head head_of(const SourceFileKind& kind, std::span<const char> record) {
    Head head{};
    const std::size_t bytes = head_length(kind) * sizeof(double);
    if (record.size() >= bytes) std::memcpy(head.data(), record.data(), bytes);
    return head;
}

/// What the records of a file are.
struct Survey {
    std::vector<Head> heads;
    std::vector<std::size_t> strengths; ///< bytes behind the head
};

Survey survey(const SourceFileKind& kind) {
    const std::size_t head = head_length(kind) * sizeof(double);
    Survey found;
    for (std::vector<char> record; read_record_bytes(kind.unit, record);) {
        found.heads.push_back(head_of(kind, record));
        found.strengths.push_back(std::max(record.size(), head) - head);
    }
    return found;
}

/// A symmetric model writes a record for each of its two or four classes, with the same head; their
/// modes together are all. Its mesh is that of the project or the part that makes it by reflection.
bool is_symmetric(const Survey& found, std::size_t records, const SourceModel& model, bool modes) {
    for (const std::size_t classes : {2, 4}) {
        if (records == 0 || found.heads.size() != classes * records) continue;
        bool same_head = true;
        std::size_t bytes = modes ? 0 : found.strengths[0];
        for (std::size_t k = 0; k < classes; ++k) {
            same_head = same_head && found.heads[k] == found.heads[0];
            if (modes) bytes += found.strengths[k];
        }
        const std::size_t project = as_size(model.np) * as_size(model.columns) * sizeof(Complex4);
        if (same_head && (bytes == project || bytes * classes == project)) return true;
    }
    return false;
}

bool heads_agree(const SourceFileKind& kind, const Survey& found, const SourceModel& model) {
    const std::size_t each = kind.by_heading ? model.beta.size() : 1;
    for (std::size_t i = 0; i < found.heads.size(); ++i) {
        const Head wanted{model.freq[i / each], kind.by_heading ? model.beta[i % each] : 0.0};
        if (found.heads[i] != wanted) return false;
    }
    return true;
}

} // namespace

bool open_sources(const SourceFileKind& kind, std::string name, const SourceModel& model,
                  std::string_view other_size) {
    if (name.empty()) name = std::string(project_name()) + std::string(kind.extension);
    if (fortopen_name(kind.unit, name, "OLD", "UNFORMATTED") != 0) {
        print_both(" \n\tSource strength file " + name +
                   " could not be opened; it is written by hyd_analysis -source\n");
        return false;
    }
    const Survey found = survey(kind);
    const std::size_t records = model.freq.size() * (kind.by_heading ? model.beta.size() : 1);
    const std::size_t bytes = as_size(model.np) * as_size(model.columns) * sizeof(Complex4);
    bool usable = false;
    if (is_symmetric(found, records, model, !kind.by_heading))
        shutdown_with(kind.mixed_classes);
    else if (found.heads.size() != records ||
             std::ranges::count(found.strengths, bytes) != std::ssize(found.strengths))
        print_both(other_size);
    else if (!heads_agree(kind, found, model))
        print_both(" \n\tFrequencies or headings of source strength file " + name +
                   " are not those of the project\n");
    else
        usable = true;
    if (usable)
        rewind_unit(kind.unit);
    else
        close_unit(kind.unit);
    return usable;
}

void read_sources(const SourceFileKind& kind, Matrix<Complex4> strengths) {
    std::vector<char> record;
    const int columns = kind.by_heading ? 1 : strengths.cols;
    const std::size_t head = head_length(kind) * sizeof(double);
    const std::size_t bytes = as_size(strengths.rows) * as_size(columns) * sizeof(Complex4);
    for (int j = 1; j <= strengths.cols; j += columns)
        if (read_record_bytes(kind.unit, record) && record.size() == head + bytes)
            std::memcpy(strengths.col(j).data(), record.data() + head, bytes);
}

} // namespace quelor
