#include "kvsig/util/ProfileFile.h"

#include "kvsig/util/File.h"
#include "kvsig/util/OutputFile.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace kvsig {
namespace {

using Kind = ProfileLine::Kind;

bool isOneLine(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

std::string_view withoutLineEnd(std::string_view line) {
    if (line.ends_with('\n'))
        line.remove_suffix(1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

ProfileLine splitLine(const std::string& line) { return splitProfileLine(withoutLineEnd(line)); }

template <typename Lines>
auto at(Lines& lines, std::size_t index) {
    return lines.begin() + static_cast<std::ptrdiff_t>(index);
}

bool exists(const char* path) {
    std::error_code error;
    return std::filesystem::exists(path, error) || error;
}

} // namespace

bool isProfileSection(std::string_view name) {
    return !name.empty() && isOneLine(name) && name.find(']') == std::string_view::npos;
}

bool isProfileKey(std::string_view key) {
    return !key.empty() && isOneLine(key) && key.find('=') == std::string_view::npos &&
           key.front() != '[' && key.front() != ';';
}

ProfileDocument::ProfileDocument(std::string_view text) {
    if (text.starts_with(byteOrderMark)) {
        m_mark = byteOrderMark;
        text.remove_prefix(byteOrderMark.size());
    }
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        m_lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    if (!m_lines.empty() && m_lines.front().ends_with("\r\n"))
        m_lineEnd = "\r\n";
}

std::optional<ProfileDocument::Range> ProfileDocument::find(std::string_view section,
                                                            std::size_t from) const {
    const auto isHeading = [](const std::string& line) {
        return splitLine(line).kind == Kind::section;
    };
    const auto begin = std::find_if(at(m_lines, from), m_lines.end(), [&](const auto& line) {
        return isHeading(line) && equalNoCase(splitLine(line).name, section);
    });
    if (begin == m_lines.end())
        return std::nullopt;
    const auto end = std::find_if(begin + 1, m_lines.end(), isHeading);
    return Range{static_cast<std::size_t>(begin - m_lines.begin()),
                 static_cast<std::size_t>(end - m_lines.begin())};
}

std::size_t ProfileDocument::bodyEnd(Range range) const {
    std::size_t end = range.end;
    while (end > range.begin + 1) {
        const Kind kind = splitLine(m_lines[end - 1]).kind;
        if (kind != Kind::blank && kind != Kind::comment)
            break;
        --end;
    }
    return end;
}

ProfileDocument::Range ProfileDocument::findOrAppend(std::string_view section) {
    if (const auto found = find(section))
        return *found;
    insert(m_lines.size(), {"[" + std::string(section) + "]" + m_lineEnd});
    return {m_lines.size() - 1, m_lines.size()};
}

void ProfileDocument::insert(std::size_t position, std::vector<std::string> lines) {
    // A last line without its end may already have the first half of one.
    if (position > 0 && !m_lines[position - 1].ends_with('\n'))
        m_lines[position - 1] += m_lines[position - 1].ends_with('\r') ? "\n" : m_lineEnd;
    m_lines.insert(at(m_lines, position), std::make_move_iterator(lines.begin()),
                   std::make_move_iterator(lines.end()));
}

std::string ProfileDocument::entryText(std::string_view key, std::string_view value) const {
    return std::string(key).append("=").append(value).append(m_lineEnd);
}

bool ProfileDocument::setKey(std::string_view section, std::string_view key,
                             std::string_view value) {
    if (!isProfileSection(section) || !isProfileKey(key) || !isOneLine(value))
        return false;
    const Range range = findOrAppend(section);
    for (std::size_t i = range.begin + 1; i < range.end; ++i) {
        const ProfileLine line = splitLine(m_lines[i]);
        if (line.kind != Kind::entry || !equalNoCase(line.name, key))
            continue;
        if (line.value != value)
            m_lines[i] = entryText(line.name, value);
        return true;
    }
    insert(bodyEnd(range), {entryText(key, value)});
    return true;
}

bool ProfileDocument::setSection(std::string_view section,
                                 const std::vector<ProfileEntry>& entries) {
    if (!isProfileSection(section))
        return false;
    std::vector<std::string> lines;
    for (const ProfileEntry& entry : entries) {
        if (!isProfileKey(entry.key) || !isOneLine(entry.value))
            return false;
        lines.push_back(entryText(entry.key, entry.value));
    }
    const Range range = findOrAppend(section);
    m_lines.erase(at(m_lines, range.begin + 1), at(m_lines, bodyEnd(range)));
    insert(range.begin + 1, std::move(lines));
    return true;
}

// Each is one pass, however often the key or the section stands there.
void ProfileDocument::deleteKey(std::string_view section, std::string_view key) {
    std::vector<std::string> kept;
    bool inside = false;
    for (std::string& text : m_lines) {
        const ProfileLine line = splitLine(text);
        if (line.kind == Kind::section)
            inside = equalNoCase(line.name, section);
        if (!inside || line.kind != Kind::entry || !equalNoCase(line.name, key))
            kept.push_back(std::move(text));
    }
    m_lines = std::move(kept);
}

void ProfileDocument::deleteSection(std::string_view section) {
    std::vector<std::string> kept;
    std::size_t done = 0;
    const auto keepUpTo = [&](std::size_t end) {
        std::move(at(m_lines, done), at(m_lines, end), std::back_inserter(kept));
    };
    for (auto range = find(section); range; range = find(section, range->end)) {
        const std::size_t body = bodyEnd(*range);
        keepUpTo(range->begin);
        done = body;
    }
    keepUpTo(m_lines.size());
    m_lines = std::move(kept);
}

std::string ProfileDocument::text() const {
    std::string text = m_mark;
    for (const std::string& line : m_lines)
        text += line;
    return text;
}

std::optional<std::string> readProfileFile(const char* path) {
    File file;
    if (!file.open(path))
        return std::nullopt;
    const std::int64_t length = file.size();
    if (length > longestProfileFile)
        return std::nullopt;
    std::string text(static_cast<std::size_t>(length), '\0');
    if (file.readAt(0, text.data(), length) < length)
        return std::nullopt;
    return text;
}

bool editProfileFile(const char* path, const std::function<bool(ProfileDocument&)>& edit) {
    const std::optional<std::string> old = readProfileFile(path);
    if (!old && exists(path))
        return false;
    ProfileDocument document(old.value_or(""));
    if (!edit(document))
        return false;
    const std::string text = document.text();
    if (text == old.value_or(""))
        return true;
    if (std::cmp_greater(text.size(), longestProfileFile))
        return false;
    OutputFile file;
    return file.open(path) && file.write(text) && file.commit();
}

} // namespace kvsig
