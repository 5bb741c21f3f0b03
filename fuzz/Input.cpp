#include "Input.h"

#include <algorithm>

namespace kvsig::fuzz {
namespace {

constexpr std::string_view mark = "\n--- file: ";
constexpr std::size_t mostFiles = 8;
constexpr std::size_t longestName = 64;

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("._-, ").find(c) != std::string_view::npos;
}

bool isFileName(std::string_view name) {
    return !name.empty() && name.size() <= longestName && name.front() != '.' &&
           std::all_of(name.begin(), name.end(), isPlain);
}

} // namespace

std::string joinInput(const std::vector<InputFile>& files) {
    std::string input;
    for (const InputFile& file : files) {
        if (&file != &files.front())
            input.append(mark).append(file.name).append("\n");
        input += file.bytes;
    }
    return input;
}

std::vector<InputFile> splitInput(std::string_view input) {
    std::vector<InputFile> files;
    std::string name;
    for (;;) {
        const std::size_t next =
            files.size() + 1 < mostFiles ? input.find(mark) : std::string_view::npos;
        files.push_back({name, std::string(input.substr(0, next))});
        if (next == std::string_view::npos)
            return files;
        input.remove_prefix(next + mark.size());
        const std::string_view line = input.substr(0, input.find('\n'));
        name = isFileName(line) ? std::string(line) : "part";
        input.remove_prefix(std::min(line.size() + 1, input.size()));
    }
}

} // namespace kvsig::fuzz
