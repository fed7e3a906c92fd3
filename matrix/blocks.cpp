// The array that a command makes, and the copy of blocks of elements.
#include "matrix/blocks.hpp"

#include "kernel/utilities.hpp"

#include <algorithm>
#include <cstring>

namespace quelor {

namespace {

/// 32 x 32 elements of source and target stay in the first-level cache together.
constexpr std::int64_t tile = 32;

/// Rows and columns in tiles, so that neither side is walked across its columns for long.
template <std::size_t element>
void copy_tiles(std::int64_t rows, std::int64_t cols, SourceBlock from, TargetBlock to) {
    for (std::int64_t j0 = 0; j0 < cols; j0 += tile) {
        const std::int64_t j1 = std::min(j0 + tile, cols);
        for (std::int64_t i0 = 0; i0 < rows; i0 += tile) {
            const std::int64_t i1 = std::min(i0 + tile, rows);
            for (std::int64_t j = j0; j < j1; ++j) {
                const std::byte* source = from.data + i0 * from.row_step + j * from.col_step;
                std::byte* target = to.data + i0 * to.row_step + j * to.col_step;
                for (std::int64_t i = i0; i < i1; ++i) {
                    std::memcpy(target, source, element);
                    source += from.row_step;
                    target += to.row_step;
                }
            }
        }
    }
}

} // namespace

Result::Result(std::string_view target, std::string_view work,
               std::initializer_list<std::string_view> inputs)
    : target_(target), name_(std::ranges::count(inputs, target) > 0 ? unused_name(work) : target_) {
}

void* Result::create(std::int32_t type, std::span<const std::int32_t> dims) const {
    return create_array(type, name_, dims);
}

void* Result::create(std::int32_t type, std::initializer_list<std::int32_t> dims) const {
    return create_array(type, name_, dims);
}

void Result::place() const {
    if (name_ != target_) move_array(name_, target_);
}

bool is_movable(std::int32_t type) {
    return element_size(type) > 0 && type != type_pointer && type != type_unnamed;
}

SourceBlock source_block(const ArrayRef& array) {
    const std::ptrdiff_t element = element_size(array.type);
    return {static_cast<const std::byte*>(array.data), element, element * array.rows()};
}

TargetBlock target_block(const ArrayRef& array) {
    const std::ptrdiff_t element = element_size(array.type);
    return {static_cast<std::byte*>(array.data), element, element * array.rows()};
}

void copy_block(int element, std::int64_t rows, std::int64_t cols, SourceBlock from,
                TargetBlock to) {
    if (from.row_step == element && to.row_step == element) {
        const auto bytes = static_cast<std::size_t>(rows * element);
        for (std::int64_t j = 0; j < cols; ++j)
            std::memcpy(to.data + j * to.col_step, from.data + j * from.col_step, bytes);
        return;
    }
    switch (element) {
    case 1:
        return copy_tiles<1>(rows, cols, from, to);
    case 4:
        return copy_tiles<4>(rows, cols, from, to);
    case 8:
        return copy_tiles<8>(rows, cols, from, to);
    default:
        return copy_tiles<16>(rows, cols, from, to);
    }
}

} // namespace quelor
