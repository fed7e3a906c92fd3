// Fixture of tests of the commands that make arrays: results as vectors, lines that say nothing.
#pragma once

#include "session.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace quelor {

using Ints = std::vector<std::int32_t>;
using Reals = std::vector<double>;
using Complexes = std::vector<Complex8>;

/// "message" as it appears on the screen.
inline std::string said(const std::string& message) {
    return "     \n      " + message + "\n";
}

/// Elements in storage order; empty when the array is absent or of another type.
template <class T> std::vector<T> elements(std::string_view name) {
    const ArrayRef ref = find_array(name);
    if (!ref.is(type_code<T>)) return {};
    const auto all = as_span<const T>(ref);
    return {all.begin(), all.end()};
}

inline Ints dims(std::string_view name) {
    const ArrayRef ref = find_array(name);
    return {ref.dims.begin(), ref.dims.end()};
}

class ArraySession : public Session {
protected:
    using Session::Session;

    /// Runs a line that says nothing.
    void quietly(std::string_view line, const std::string& records = {}) {
        EXPECT_EQ(run(line, records), "") << line;
    }
};

} // namespace quelor
