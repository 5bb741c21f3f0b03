#pragma once

#include <cstddef>
#include <cstdint>

namespace kvsig {

/// How a file stores a sample.
struct FlatInteger {
    int bytes = 2; ///< 1, 2 or 4
    bool isSigned = true;
    bool bigEndian = false;

    [[nodiscard]] std::int64_t least() const;
    [[nodiscard]] std::int64_t greatest() const;
    friend bool operator==(const FlatInteger&, const FlatInteger&) = default;
};

/// Integers in a file's bytes: `count` of them, `step` bytes apart.
struct FlatSpan {
    FlatInteger integer;
    const std::byte* from = nullptr;
    std::int64_t step = 0;
    std::int64_t count = 0;
    std::int64_t zero = 0; ///< subtracted from each; the differences must fit the output
};

/// Stores them `outStep` values apart.
void decode(const FlatSpan& span, std::int16_t* out, std::int64_t outStep);
void decode(const FlatSpan& span, std::int32_t* out, std::int64_t outStep);

} // namespace kvsig
