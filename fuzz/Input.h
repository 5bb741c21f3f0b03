#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A fuzz input may stand for several files. The first one's bytes come as they are; each further
/// one follows behind a line "--- file: NAME" of its own. A recording alone is thus an input as it
/// stands, and a fuzzer's changes mostly keep the parts apart.
namespace kvsig::fuzz {

struct InputFile {
    std::string name; ///< empty for the first
    std::string bytes;
};

/// Text that is handed to readAttributeFile() instead of being written to a file.
inline constexpr std::string_view attributesName = "attributes";
/// Holds the name of the part that is opened in place of the first one.
inline constexpr std::string_view openedName = "opened";

[[nodiscard]] std::string joinInput(const std::vector<InputFile>& files);
/// At least one file. A name that could leave the folder becomes "part".
[[nodiscard]] std::vector<InputFile> splitInput(std::string_view input);

} // namespace kvsig::fuzz
