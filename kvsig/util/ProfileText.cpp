#include "kvsig/util/ProfileText.h"

#include "kvsig/util/ProfileLines.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

namespace kvsig {
namespace {

int copyKeys(const char* section, char* out, std::size_t size, std::istream& stream) {
    std::size_t used = 0;
    forEachProfileEntry(stream, viewOf(section), [&](const ProfileLine& line) {
        const std::string_view key = line.name.substr(0, line.name.find('\0'));
        if (key.empty())
            return true;
        if (used + key.size() + 2 > size)
            return false;
        copyText(out + used, size - used, key);
        used += key.size() + 1;
        return true;
    });
    out[used] = '\0';
    return saturate<int>(used);
}

} // namespace

int FindAppName(std::istream& stream, const char* section) {
    return findProfileSection(stream, viewOf(section)) ? 1 : 0;
}

int GetLocalProfileString(const char* section, const char* key, const char* def, char* out,
                          int size, std::istream& stream) {
    if (!out || size < 1)
        return 0;
    const auto room = static_cast<std::size_t>(size);
    if (!key)
        return copyKeys(section, out, room, stream);
    const std::optional<std::string> value = profileValue(stream, viewOf(section), viewOf(key));
    copyText(out, room, value ? std::string_view(*value) : viewOf(def));
    return value ? saturate<int>(viewOf(out).size()) : 0;
}

int GetLocalProfileInt(const char* section, const char* key, int def, std::istream& stream) {
    const std::optional<std::string> value = profileValue(stream, viewOf(section), viewOf(key));
    return value ? profileInt(*value, def) : def;
}

double GetLocalProfileDouble(const char* section, const char* key, double def,
                             std::istream& stream) {
    const std::optional<std::string> value = profileValue(stream, viewOf(section), viewOf(key));
    return value ? profileDouble(*value, def) : def;
}

} // namespace kvsig
