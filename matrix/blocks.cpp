// The copy of blocks of elements.
#include "matrix/blocks.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace quelor {

namespace {

/// A tile of 32 x 32 elements stays in the first-level cache.
constexpr std::int64_t tile = 32;

/// Copies n elements at constant distances.
template <std::size_t element>
void copy_run(std::int64_t n, const std::byte* from, std::ptrdiff_t from_step, std::byte* to,
              std::ptrdiff_t to_step) {
    for (std::int64_t i = 0; i < n; ++i, from += from_step, to += to_step)
        std::memcpy(to, from, element);
}

/// For a source that lies in memory row by row and a target that lies column by column: tile by
/// tile, read along the rows into a buffer and written along the columns, so that no dimension
/// makes the columns of a tile compete for the same cache lines.
template <std::size_t element>
void copy_turned(std::int64_t rows, std::int64_t cols, SourceBlock from, TargetBlock to) {
    constexpr std::ptrdiff_t step = element;
    std::array<std::byte, element * tile * tile> buffer;
    for (std::int64_t i = 0; i < rows; i += tile) {
        const std::int64_t n = std::min(tile, rows - i);
        for (std::int64_t j = 0; j < cols; j += tile) {
            const std::int64_t m = std::min(tile, cols - j);
            for (std::int64_t k = 0; k < n; ++k)
                copy_run<element>(m, from.at(i + k, j).data, step, buffer.data() + k * step,
                                  tile * step);
            for (std::int64_t k = 0; k < m; ++k)
                std::memcpy(to.at(i, j + k).data, buffer.data() + k * tile * step,
                            as_size(n) * element);
        }
    }
}

template <std::size_t element>
void copy_strided(std::int64_t rows, std::int64_t cols, SourceBlock from, TargetBlock to) {
    constexpr std::ptrdiff_t step = element;
    if (from.col_step == step && to.row_step == step)
        return copy_turned<element>(rows, cols, from, to);
    for (std::int64_t j = 0; j < cols; ++j)
        copy_run<element>(rows, from.at(0, j).data, from.row_step, to.at(0, j).data, to.row_step);
}

} // namespace

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
        const auto bytes = as_size(rows * element);
        for (std::int64_t j = 0; j < cols; ++j)
            std::memcpy(to.data + j * to.col_step, from.data + j * from.col_step, bytes);
        return;
    }
    switch (element) {
    case 1:
        return copy_strided<1>(rows, cols, from, to);
    case 4:
        return copy_strided<4>(rows, cols, from, to);
    case 8:
        return copy_strided<8>(rows, cols, from, to);
    default:
        return copy_strided<16>(rows, cols, from, to);
    }
}

} // namespace quelor
