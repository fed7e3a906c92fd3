// What command routines call of the array store: the core operations with their messages.
#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>

namespace quelor {

namespace {

bool is_creatable(std::int32_t type) {
    switch (type) {
    case type_void:
    case type_character:
    case type_integer:
    case type_real:
    case type_real16:
    case type_complex4:
    case type_complex8:
        return true;
    default:
        return false;
    }
}

/// The report of an array that cannot be made, and the end of the program. Nothing is saved: a
/// database that ran out of memory must not replace a good file.
[[noreturn]] void creation_failed(std::string_view name, std::span<const std::int32_t> dims) {
    const std::string head =
        "\n      **** Fatal Error ****\n      Unable to create " + std::string(name) + "\n";
    write_chars(unit_screen, head);
    write_chars(unit_output, head);
    write_both("10(6x, 'Dimensions:', 8i10)", {dims});
    write_both("20(/, 6x, 'The problem may be insufficient memory.', //)");
    list_database();
    exit_unsaved(true);
}

} // namespace

ArrayRef find_array(std::string_view name) {
    return db_find(name);
}

ArrayRef find_array_2d(std::string_view name) {
    const ArrayRef ref = db_find(name);
    if (ref.ndim() > 2)
        print_both(" \n\tWARNING *** ATTEMPT TO FIND 2-D ARRAY; FOUND ARRAY WITH DIMENSIONS > 2\n");
    return ref;
}

bool array_exists(std::string_view name) {
    return static_cast<bool>(db_find(name));
}

void* create_array(std::int32_t type, std::string_view name, std::span<const std::int32_t> dims) {
    if (!is_creatable(type)) {
        print_both(" \n\tDon't know how to create type\n");
        return nullptr;
    }
    // Both may lie in the array that the creation replaces.
    const std::string own_name(name);
    const std::vector<std::int32_t> own_dims(dims.begin(), dims.end());
    void* const data = db_create(type, own_name, own_dims);
    if (!data) creation_failed(own_name, own_dims);
    return data;
}

void* create_array(std::int32_t type, std::string_view name,
                   std::initializer_list<std::int32_t> dims) {
    return create_array(type, name, std::span(dims.begin(), dims.size()));
}

void* create_array_2d(std::int32_t type, std::string_view name, std::int32_t rows,
                      std::int32_t cols) {
    if (cols == 0) return create_array(type, name, {rows});
    return create_array(type, name, {rows, cols});
}

void create_int_scalar(std::string_view name, std::int32_t value) {
    *static_cast<std::int32_t*>(create_array(type_integer, name, {1, 1})) = value;
}

void create_real_scalar(std::string_view name, double value) {
    *static_cast<double*>(create_array(type_real, name, {1, 1})) = value;
}

void delete_array(std::string_view name) {
    db_delete(name);
}

void move_array(std::string_view from, std::string_view to) {
    if (!db_rename(from, to)) print_both(" Move failed - old name probably doesn't exist\n");
}

void copy_array(std::string_view from, std::string_view to) {
    if (!db_copy(from, to)) print_both(" Copy failed\n");
}

void make_vector(std::string_view name, std::int32_t length) {
    if (!db_make_vector(name, length)) print_both(" \n\tConversion failed");
}

std::string unused_name(std::string_view name) {
    std::string result(name);
    while (array_exists(result))
        result += '$';
    return result;
}

Result::Result(std::string_view target, std::string_view work)
    : target_(target), name_(unused_name(work)) {}

Result::Result(std::string_view target, std::string_view work,
               std::initializer_list<std::string_view> inputs)
    : target_(target), name_(std::ranges::count(inputs, target) > 0 ? unused_name(work) : target_) {
}

Result::~Result() {
    if (!placed_ && (created_ || name_ != target_)) delete_array(name_);
}

void* Result::create(std::int32_t type, std::span<const std::int32_t> dims) {
    created_ = true;
    return create_array(type, name_, dims);
}

void* Result::create(std::int32_t type, std::initializer_list<std::int32_t> dims) {
    return create(type, std::span(dims.begin(), dims.size()));
}

void Result::place() {
    if (name_ != target_) move_array(name_, target_);
    placed_ = true;
}

} // namespace quelor
