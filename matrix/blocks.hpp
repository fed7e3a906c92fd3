// What the commands that move elements share: the copy of a block of elements between two arrays.
#pragma once

#include "kernel/dbfgen.hpp"

#include <cstddef>

namespace quelor {

/// True for the types whose elements can be moved: all that a user can create.
bool is_movable(std::int32_t type);

/// Elements at constant distances, in bytes, from row to row and from column to column.
template <class Byte> struct Block {
    Byte* data;
    std::ptrdiff_t row_step, col_step;

    /// The block that begins i rows and j columns further on.
    Block at(std::ptrdiff_t i, std::ptrdiff_t j) const {
        return {data + i * row_step + j * col_step, row_step, col_step};
    }
};
using SourceBlock = Block<const std::byte>;
using TargetBlock = Block<std::byte>;

/// All of an array, seen as rows() by the rest of its dimensions.
SourceBlock source_block(const ArrayRef& array);
TargetBlock target_block(const ArrayRef& array);

/// Copies rows x cols elements of `element` bytes (1, 4, 8 or 16). The blocks do not overlap.
void copy_block(int element, std::int64_t rows, std::int64_t cols, SourceBlock from,
                TargetBlock to);

} // namespace quelor
