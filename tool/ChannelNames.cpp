#include "tool/ChannelNames.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"
#include "tool/Nearest.h"
#include "tool/Words.h"

#include <algorithm>
#include <utility>

namespace kvsig::tool {
namespace {

std::vector<int> placesOf(const std::string& name, const std::vector<std::string>& names) {
    std::vector<int> places;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (equalNoCase(names[i], name))
            places.push_back(static_cast<int>(i));
    return places;
}

bool isIndex(const std::string& name) {
    return name.size() > 1 && name.front() == '#' &&
           std::all_of(name.begin() + 1, name.end(), isDigit);
}

std::string orIndex(const std::string& name, int channel) {
    return name.empty() ? "#" + std::to_string(channel) : name;
}

} // namespace

std::string channelLabel(IDataReader& reader, int channel) {
    return orIndex(toUtf8(reader.channelName(channel)), channel);
}

ChannelNames::ChannelNames(IDataReader& reader) {
    for (int i = 0; i < reader.channelCount(); ++i) {
        m_names.push_back(toUtf8(reader.channelName(i)));
        m_electrodes.push_back(toUtf8(reader.grid1(i)));
    }
}

std::string ChannelNames::label(int channel) const {
    return orIndex(m_names[static_cast<std::size_t>(channel)], channel);
}

std::vector<int> ChannelNames::all(const std::string& name) const {
    if (name.empty())
        return {};
    if (isIndex(name)) {
        const std::int64_t index = leadingInteger(name.substr(1));
        if (std::cmp_less(index, m_names.size()))
            return {static_cast<int>(index)};
        return {};
    }
    const std::vector<int> places = placesOf(name, m_names);
    return places.empty() ? placesOf(name, m_electrodes) : places;
}

int ChannelNames::find(const std::string& name) const {
    const std::vector<int> places = all(name);
    return places.empty() ? -1 : places.front();
}

bool ChannelNames::isElectrode(const std::string& name) const {
    return !isIndex(name) && placesOf(name, m_names).empty() &&
           !placesOf(name, m_electrodes).empty();
}

std::string ChannelNames::hint(const std::string& unknown) const {
    if (isIndex(unknown))
        return "; the last is #" + std::to_string(m_names.size() - 1);
    std::vector<std::string> known = m_names;
    known.insert(known.end(), m_electrodes.begin(), m_electrodes.end());
    std::string text;
    for (const std::string& name : nearestNames(unknown, known))
        text += (text.empty() ? "; the nearest are " : ", ") + name;
    return text;
}

} // namespace kvsig::tool
