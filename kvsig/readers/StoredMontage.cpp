#include "kvsig/readers/StoredMontage.h"

#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/Text.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace kvsig {

std::vector<StoredMontage> readStoredMontages(std::istream& stream) {
    std::vector<StoredMontage> montages;
    std::unordered_map<std::string, std::size_t> awaited; // those whose section is still to come
    forEachProfileEntry(stream, pszINIMontage, [&](const ProfileLine& line) {
        if (!line.name.empty() && awaited.try_emplace(lowerCase(line.name), montages.size()).second)
            montages.push_back({std::string(line.name), {}});
        return true;
    });
    // One pass for all sections, however many names there are.
    rewindStream(stream);
    StoredMontage* current = nullptr;
    std::string text;
    while (!montages.empty() && readProfileLine(stream, text)) {
        const ProfileLine line = splitProfileLine(text);
        if (line.kind == ProfileLine::Kind::section) {
            const auto found = awaited.find(lowerCase(line.name));
            current = found == awaited.end() ? nullptr : &montages[found->second];
            if (current)
                awaited.erase(found);
        } else if (current && line.kind == ProfileLine::Kind::entry) {
            current->lines.push_back({std::string(line.name), std::string(line.value)});
        }
    }
    return montages;
}

void writeStoredMontage(std::ostream& stream, const StoredMontage& montage) {
    std::string text = "[" + montage.name + "]\n";
    for (const ProfileEntry& line : montage.lines)
        text.append(line.key).append("=").append(line.value).append("\n");
    writeText(stream, text);
}

} // namespace kvsig
