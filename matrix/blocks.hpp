// What the commands that move or compute elements share: the array that a command makes, and the
// copy of a block of elements between two arrays.
#pragma once

#include "kernel/dbfgen.hpp"

#include <cstddef>
#include <initializer_list>
#include <string>

namespace quelor {

/// The array that a command makes: created under its own name or, when an input bears that name,
/// beside it under the name of a work array, to be moved at the end.
class Result {
public:
    Result(std::string_view target, std::string_view work,
           std::initializer_list<std::string_view> inputs);
    /// Zero-filled. The type is one that can be created.
    void* create(std::int32_t type, std::span<const std::int32_t> dims) const;
    void* create(std::int32_t type, std::initializer_list<std::int32_t> dims) const;
    /// The block just created, as an array.
    ArrayRef array() const { return find_array(name_); }
    /// Gives the array its name; what bore it goes.
    void place() const;

private:
    std::string target_, name_;
};

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
