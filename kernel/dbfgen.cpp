// The array store: named, typed, column-major blocks, ordered by name as strcmp orders them.
// Knows nothing of commands or the console; the wrappers that print are in arrays.cpp.
#include "kernel/dbfgen.hpp"

#include "kernel/memory.hpp"
#include "kernel/process_state.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <new>
#include <sys/mman.h>
#include <utility>
#include <vector>

namespace quelor {

namespace {

constexpr std::size_t block_alignment = 64;         // a cache line, and the widest vector register
constexpr std::uint64_t mapped_from = 1u << 20;     // larger blocks are fresh pages of their own
constexpr std::uint64_t huge_pages_from = 1u << 24; // from here the kernel is asked for big pages
constexpr std::uint64_t size_overflow = std::numeric_limits<std::uint64_t>::max();

/// The elements of one array; never moves. Zero-filled; `data` is null when there is no memory.
class Block {
public:
    Block() = default;
    explicit Block(std::uint64_t bytes);
    Block(Block&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), bytes_(std::exchange(other.bytes_, 0)) {}
    Block& operator=(Block&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(bytes_, other.bytes_);
        return *this;
    }
    ~Block();
    void* data() const { return data_; }

private:
    bool is_mapped() const { return bytes_ >= mapped_from; }
    void* data_ = nullptr;
    std::uint64_t bytes_ = 0;
};

Block::Block(std::uint64_t bytes) : bytes_(bytes) {
    if (bytes == 0 || bytes > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) return;
    if (is_mapped()) { // fresh pages read as zero and cost nothing until they are touched
        void* pages =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED) return;
        if (bytes >= huge_pages_from) madvise(pages, bytes, MADV_HUGEPAGE);
        data_ = pages;
    } else {
        data_ = ::operator new (bytes, std::align_val_t{block_alignment}, std::nothrow);
        if (data_) std::memset(data_, 0, bytes);
    }
}

Block::~Block() {
    if (!data_) return;
    if (is_mapped()) {
        munmap(data_, bytes_);
    } else {
        ::operator delete (data_, std::align_val_t{block_alignment});
    }
}

struct ArrayNode {
    Block block;
    std::int32_t type = type_void;
    std::vector<std::int32_t> dims;

    ArrayRef ref() const { return {block.data(), dims, type}; }
};

// std::string compares bytes as unsigned characters: the order of strcmp.
using Store = std::map<std::string, ArrayNode, std::less<>>;

Store& store() {
    return process_state<Store>();
}

/// Byte size of a block to be made; `size_overflow` for a negative dimension or a product beyond
/// 64 bits, which no allocation can satisfy.
std::uint64_t checked_byte_size(std::int32_t type, std::span<const std::int32_t> dims) {
    auto bytes = static_cast<std::uint64_t>(element_size(type));
    for (const std::int32_t dim : dims) {
        if (dim < 0 || __builtin_mul_overflow(bytes, static_cast<std::uint64_t>(dim), &bytes))
            return size_overflow;
    }
    return bytes;
}

/// Whether a block would take more memory than there is. The system grants pages before it has them
/// and ends a program that then uses them; a creation that fails is told.
bool exceeds_memory(std::uint64_t bytes) {
    return bytes >= checked_memory_from && bytes > available_memory();
}

} // namespace

std::int64_t ArrayRef::size() const {
    std::int64_t product = 1;
    for (const std::int32_t d : dims)
        product *= d;
    return product;
}

int element_size(std::int32_t type) {
    switch (type) {
    case type_void:
    case type_character:
        return 1;
    case type_integer:
    case type_unnamed:
        return 4;
    case type_pointer:
    case type_real:
    case type_complex4:
        return 8;
    case type_real16:
    case type_complex8:
        return 16;
    default:
        return 0;
    }
}

std::string_view type_label(std::int32_t type) {
    switch (type) {
    case type_void:
        return "void";
    case type_character:
        return "character";
    case type_pointer:
        return "pointer";
    case type_integer:
        return "integer(4)";
    case type_real:
        return "real(8)";
    case type_real16:
        return "real(16)";
    case type_complex4:
        return "complex(4)";
    case type_complex8:
        return "complex(8)";
    default:
        return "type ?";
    }
}

std::uint64_t array_byte_size(std::int32_t type, std::span<const std::int32_t> dims) {
    auto bytes = static_cast<std::uint64_t>(element_size(type));
    for (const std::int32_t dim : dims)
        bytes *= static_cast<std::uint64_t>(std::int64_t{dim});
    return bytes;
}

ArrayRef db_find(std::string_view name) {
    const auto found = store().find(name);
    return found == store().end() ? ArrayRef{} : found->second.ref();
}

void* db_create(std::int32_t type, std::string_view name, std::span<const std::int32_t> dims) {
    if (name.empty()) return nullptr; // the empty name means "the first array" to db_next
    std::vector<std::int32_t> own_dims(dims.begin(), dims.end()); // may be those of the old array
    auto node = store().find(name);
    if (node == store().end()) node = store().try_emplace(std::string(name)).first;
    // The old block goes before the new one is made, so that both never stand in memory together.
    node->second.block = Block();
    node->second.dims.assign(1, 0);
    const std::uint64_t bytes = checked_byte_size(type, own_dims);
    if (!exceeds_memory(bytes)) node->second.block = Block(bytes);
    void* const data = node->second.block.data();
    if (!data) {
        store().erase(node);
        return nullptr;
    }
    node->second.type = type;
    node->second.dims = std::move(own_dims);
    return data;
}

bool db_copy(std::string_view from, std::string_view to) {
    const auto source = store().find(from);
    if (source == store().end()) return false;
    const std::uint64_t bytes = array_byte_size(source->second.type, source->second.dims);
    void* const data = db_create(source->second.type, to, source->second.dims);
    if (!data) return false;
    const void* const old = source->second.block.data();
    if (data != old) std::memcpy(data, old, bytes);
    return true;
}

bool db_rename(std::string_view from, std::string_view to) {
    const auto node = store().find(from);
    if (node == store().end() || to.empty()) return false;
    std::string new_name(to); // the view may lie in the array that is deleted
    if (node->first == new_name) {
        store().erase(node);
        return true;
    }
    db_delete(new_name);
    auto handle = store().extract(node);
    handle.key() = std::move(new_name);
    store().insert(std::move(handle));
    return true;
}

void db_delete(std::string_view name) {
    const auto node = store().find(name);
    if (node != store().end()) store().erase(node);
}

void db_delete_prefix(std::string_view wild) {
    if (wild.empty()) return;
    const std::string prefix(wild.substr(0, wild.size() - 1));
    auto node = store().lower_bound(prefix);
    while (node != store().end() && node->first.starts_with(prefix))
        node = store().erase(node);
}

void db_clear() {
    store().clear();
}

std::uint64_t db_memory() {
    std::uint64_t bytes = 0;
    for (const auto& [name, node] : store())
        bytes += array_byte_size(node.type, node.dims);
    return bytes;
}

bool db_make_vector(std::string_view name, std::int32_t length) {
    const auto node = store().find(name);
    if (node == store().end()) return false;
    node->second.dims.assign(1, length);
    return true;
}

NamedArray db_next(std::string_view name) {
    auto node = store().begin();
    if (!name.empty()) {
        node = store().find(name);
        if (node != store().end()) ++node;
    }
    if (node == store().end()) return {};
    return {node->first, node->second.ref()};
}

} // namespace quelor
