#pragma once

#include "kvsig/readers/HeaderFile.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kvsig::nervus {

/// A section's pieces, which follow each other as one stream of bytes.
struct Section {
    struct Piece {
        std::int64_t offset = 0; ///< in the file
        std::int64_t length = 0;
    };
    std::string name; ///< of its tag
    std::vector<Piece> pieces;
    std::vector<std::int64_t> starts; ///< of each piece in the stream
    std::int64_t length = 0;
    bool cut = false; ///< a piece left the file: what follows it is not in `pieces`

    void add(Piece piece);
    /// Bytes of the stream, as many of them as there are.
    [[nodiscard]] HeaderBlock read(const HeaderFile& file, std::int64_t offset,
                                   std::int64_t bytes) const;
};

/// The sections of a file by the names of their tags, as far as a recording needs them.
struct Container {
    std::map<std::string, Section> sections;
    std::vector<std::string> oddities;
    std::string fault; ///< why it cannot be read; empty when it can
    int error = 0;     ///< the code for it

    /// An empty one when there is none of the name.
    [[nodiscard]] const Section& section(const std::string& name) const;
};

/// Whether the file has the tags of such a container.
[[nodiscard]] bool isContainer(const File& file);

[[nodiscard]] Container readContainer(const HeaderFile& file);

} // namespace kvsig::nervus
