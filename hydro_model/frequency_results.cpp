#include "hydro_model/frequency_results.hpp"

#include <cstring>
#include <vector>

namespace quelor {

namespace {

/// An array as blocks of bytes: block (axis index, outer index), the inner dimensions in one.
struct AxisBlocks {
    char* data;
    std::size_t bytes, held, outer;
    char* block(std::size_t i, std::size_t o) const { return data + bytes * (i + held * o); }
};

AxisBlocks blocks_of(const ArrayRef& ref, int axis) {
    AxisBlocks b{static_cast<char*>(ref.data), as_size(element_size(ref.type)),
                 as_size(ref.dim(axis)), 1};
    for (int i = 1; i < axis; ++i)
        b.bytes *= as_size(ref.dim(i));
    for (int i = axis + 1; i <= ref.ndim(); ++i)
        b.outer *= as_size(ref.dim(i));
    return b;
}

} // namespace

void select_frequencies(std::string_view name, int axis, std::span<const std::size_t> indices,
                        std::string_view work) {
    const ArrayRef ref = find_array(name);
    const AxisBlocks from = blocks_of(ref, axis);
    std::vector<std::int32_t> dims(ref.dims.begin(), ref.dims.end());
    dims[nth(axis)] = static_cast<std::int32_t>(indices.size());
    Result result(name, work);
    auto* to = static_cast<char*>(result.create(ref.type, dims));
    for (std::size_t o = 0; o < from.outer; ++o)
        for (const std::size_t i : indices) {
            std::memcpy(to, from.block(i, o), from.bytes);
            to += from.bytes;
        }
    result.place();
}

bool copy_leading_frequencies(const ArrayRef& from, const ArrayRef& to, int axis) {
    if (from.type != to.type || from.ndim() != to.ndim() || from.dim(axis) > to.dim(axis))
        return false;
    for (int i = 1; i <= from.ndim(); ++i)
        if (i != axis && from.dim(i) != to.dim(i)) return false;
    const AxisBlocks a = blocks_of(from, axis), b = blocks_of(to, axis);
    for (std::size_t o = 0; o < a.outer; ++o)
        std::memcpy(b.block(0, o), a.block(0, o), a.bytes * a.held);
    return true;
}

} // namespace quelor
