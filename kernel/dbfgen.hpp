// The array store: one process-wide database of named, typed, column-major arrays, ordered by name.
//
// The core operations (db_...) know nothing of the console; the wrappers below them print the
// system's messages and are what command routines call. An array's block never moves while the
// array lives; creating it again, moving or deleting it ends every view of it.
#pragma once

#include "numeric/types.hpp"

#include <initializer_list>
#include <string>
#include <string_view>

namespace quelor {

/// What a look-up returns; false when the array is absent.
struct ArrayRef {
    void* data = nullptr;
    std::span<const std::int32_t> dims;
    std::int32_t type = type_void;

    int ndim() const { return static_cast<int>(dims.size()); }
    int dim(int i) const { return i <= ndim() ? dims[nth(i)] : 1; }
    int rows() const { return dim(1); } ///< first dimension
    int cols() const { return dim(2); } ///< second dimension, 1 for a vector
    std::int64_t size() const;          ///< number of elements
    bool is(TypeCode code) const { return data && type == code; }
    explicit operator bool() const { return data != nullptr; }
};

/// Views after the type check; the caller has tested `ref.type`.
template <class T> Matrix<T> as_matrix(const ArrayRef& ref) {
    assert(ref.data && ref.type == type_code<std::remove_const_t<T>>);
    return {static_cast<T*>(ref.data), ref.rows(), ref.cols()};
}
template <class T> Array3<T> as_array3(const ArrayRef& ref) {
    assert(ref.data && ref.type == type_code<std::remove_const_t<T>>);
    return {static_cast<T*>(ref.data), ref.rows(), ref.cols(), ref.dim(3)};
}
/// All elements of an array of any number of dimensions, in storage order.
template <class T> std::span<T> as_span(const ArrayRef& ref) {
    assert(ref.data && ref.type == type_code<std::remove_const_t<T>>);
    return {static_cast<T*>(ref.data), as_size(ref.size())};
}

/// Bytes of one element; 0 for an unknown code.
int element_size(std::int32_t type);
/// Listing label of a type code: "integer(4)", "type ?".
std::string_view type_label(std::int32_t type);
/// Element size times the product of the dims (1 when there are none); wraps as unsigned 64-bit.
std::uint64_t array_byte_size(std::int32_t type, std::span<const std::int32_t> dims);

// --- core ---------------------------------------------------------------------------------------

ArrayRef db_find(std::string_view name);
/// Creates or replaces; the block is zero-filled. Null on failure, and then no array of that name
/// remains (a size of zero, a negative dimension, no memory).
void* db_create(std::int32_t type, std::string_view name, std::span<const std::int32_t> dims);
/// Copying a name onto itself leaves zeros: the target is made anew before the bytes are copied.
bool db_copy(std::string_view from, std::string_view to);
/// An array already at `to` is deleted first, also when it is `from` itself.
bool db_rename(std::string_view from, std::string_view to);
void db_delete(std::string_view name);
/// Deletes every array whose name begins with the argument less its last character.
void db_delete_prefix(std::string_view wild);
void db_clear();
/// Sum of the data sizes in bytes.
std::uint64_t db_memory();
bool db_make_vector(std::string_view name, std::int32_t length);
/// The array after `name` in name order (the first for an empty name); an empty name when there is
/// none or `name` is absent.
struct NamedArray {
    std::string_view name;
    ArrayRef array;
};
NamedArray db_next(std::string_view name);

// --- wrappers for command routines --------------------------------------------------------------

ArrayRef find_array(std::string_view name);
/// As find_array; warns on both units when the array has more than two dimensions.
ArrayRef find_array_2d(std::string_view name);
bool array_exists(std::string_view name);

/// Creates or replaces a zero-filled array. A type that cannot be created prints a message and
/// returns null; any other failure is fatal: a report, a listing, and the end of the program
/// without saving.
void* create_array(std::int32_t type, std::string_view name, std::span<const std::int32_t> dims);
void* create_array(std::int32_t type, std::string_view name,
                   std::initializer_list<std::int32_t> dims);
/// dims (rows, cols); cols = 0 makes a vector of length rows.
void* create_array_2d(std::int32_t type, std::string_view name, std::int32_t rows,
                      std::int32_t cols);
template <class T> Matrix<T> create_matrix(std::string_view name, int rows, int cols) {
    return {static_cast<T*>(create_array_2d(type_code<T>, name, rows, cols)), rows,
            cols == 0 ? 1 : cols};
}
template <class T> Array3<T> create_array3(std::string_view name, int n1, int n2, int n3) {
    return {static_cast<T*>(create_array(type_code<T>, name, {n1, n2, n3})), n1, n2, n3};
}
void create_int_scalar(std::string_view name, std::int32_t value);
void create_real_scalar(std::string_view name, double value);
void delete_array(std::string_view name);
void move_array(std::string_view from, std::string_view to);
void copy_array(std::string_view from, std::string_view to);
void make_vector(std::string_view name, std::int32_t length);

/// The name, or the name with `$` behind it as often as it takes that no array bears it.
std::string unused_name(std::string_view name);

/// A `$` work array that lives as long as its block of code.
/// Its name belongs to one routine: a second one under the same name would replace the first.
template <class T> class Temporary {
public:
    Temporary(std::string_view name, int rows, int cols)
        : view(create_matrix<T>(name, rows, cols)), name_(name) {}
    ~Temporary() { delete_array(name_); }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    Matrix<T> view;

private:
    std::string name_;
};

/// The array that a command makes: built aside and given its name when it is complete, so that it
/// may take the name of an input. A command that is given up leaves nothing of it.
///     Result product(target, "$matmult", {a_name, b_name});
///     multiply(a, b, product.matrix<double>(a.rows, b.cols));
///     product.place();
class Result {
public:
    /// `work` is its name until it is placed, with `$` behind it where an array bears that.
    Result(std::string_view target, std::string_view work);
    /// As above when the target is one of the inputs. Otherwise it has its own name from the start,
    /// so that what bore it and the new array are never in memory together.
    Result(std::string_view target, std::string_view work,
           std::initializer_list<std::string_view> inputs);
    ~Result();
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;

    /// Zero-filled, as by create_array; null for a type that cannot be created.
    void* create(std::int32_t type, std::span<const std::int32_t> dims);
    void* create(std::int32_t type, std::initializer_list<std::int32_t> dims);
    template <class T> Matrix<T> matrix(int rows, int cols) {
        created_ = true;
        return create_matrix<T>(name_, rows, cols);
    }
    template <class T> Array3<T> array3(int n1, int n2, int n3) {
        created_ = true;
        return create_array3<T>(name_, n1, n2, n3);
    }
    /// The array just created, and its name for routines that create it themselves.
    ArrayRef array() const { return find_array(name_); }
    const std::string& name() const { return name_; }
    /// Gives the array its name; what bore it goes.
    void place();

private:
    std::string target_, name_;
    bool created_ = false, placed_ = false;
};

} // namespace quelor
