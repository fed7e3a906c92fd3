// Files of tests as strings of bytes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

namespace quelor {

inline std::string file_bytes(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void put_file(const std::string& name, const std::string& bytes) {
    std::filesystem::remove(name); // a new file is not flushed to the disk as an overwritten one is
    std::ofstream(name, std::ios::binary) << bytes;
}

inline std::string int_bytes(std::initializer_list<std::int32_t> values) {
    return {reinterpret_cast<const char*>(values.begin()), 4 * values.size()};
}

} // namespace quelor
