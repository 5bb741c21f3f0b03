#include "kvsig/readers/StoredMontage.h"

#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/Text.h"

#include <string_view>
#include <unordered_map>
#include <utility>

namespace kvsig {

std::vector<ProfileEntry> StoredMontage::entries() const {
    std::vector<ProfileEntry> entries;
    for (const std::string& text : splitWords(*lines, '\n')) {
        const ProfileLine line = splitProfileLine(text);
        if (const std::string_view key = trimmed(line.name); !key.empty())
            entries.push_back({std::string(key), std::string(trimmed(line.value))});
    }
    return entries;
}

std::vector<StoredMontage> readStoredMontages(std::istream& stream) {
    using Lines = std::shared_ptr<std::string>;
    std::vector<StoredMontage> montages;
    std::unordered_map<std::string, Lines> linesOf;
    forEachProfileEntry(stream, pszINIMontage, [&](const ProfileLine& line) {
        if (line.name.empty())
            return true;
        if (std::cmp_equal(montages.size(), mostStoredMontages)) {
            logMessage(logWarning, "An attribute file holds more than " +
                                       std::to_string(mostStoredMontages) + " montages");
            return false;
        }
        Lines& lines = linesOf[lowerCase(line.name)];
        if (!lines)
            lines = std::make_shared<std::string>();
        montages.push_back({std::string(line.name), lines});
        return true;
    });
    // One pass for all sections, however many names there are; the first of a name counts.
    rewindStream(stream);
    Lines current;
    std::string text;
    while (!montages.empty() && readProfileLine(stream, text)) {
        const ProfileLine line = splitProfileLine(text);
        if (line.kind == ProfileLine::Kind::section) {
            const auto found = linesOf.find(lowerCase(line.name));
            current = found == linesOf.end() ? nullptr : std::exchange(found->second, nullptr);
        } else if (current && line.kind == ProfileLine::Kind::entry)
            current->append(line.name).append("=").append(line.value).append("\n");
    }
    return montages;
}

void writeStoredMontage(std::ostream& stream, const StoredMontage& montage) {
    writeText(stream, "[" + montage.name + "]\n" + *montage.lines);
}

} // namespace kvsig
