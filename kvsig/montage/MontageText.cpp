#include "kvsig/montage/MontageText.h"

#include "kvsig/util/Limits.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/XmlReader.h"

#include <istream>

namespace kvsig {
namespace {

bool openTemplates(XmlReader& xml, std::string_view text, std::string* reason) {
    if (!xml.setDocument(text, reason))
        return false;
    if (xml.findElement("Templates"))
        return xml.intoElement();
    if (reason)
        *reason = "no root element \"Templates\"";
    return false;
}

} // namespace

std::optional<std::string> templateContent(std::string_view text, const std::string& name,
                                           std::string* reason) {
    XmlReader xml;
    if (!openTemplates(xml, text, reason))
        return std::nullopt;
    while (xml.findElement("Template")) {
        if (xml.attribute("Name") != name)
            continue;
        xml.intoElement();
        return xml.findElement("Defn") ? xml.innerDocument() : std::string();
    }
    return std::nullopt;
}

std::vector<std::string> templateNames(std::string_view text) {
    std::vector<std::string> names;
    XmlReader xml;
    if (openTemplates(xml, text, nullptr))
        while (xml.findElement("Template"))
            names.push_back(xml.attribute("Name"));
    return names;
}

std::optional<std::vector<ProfileEntry>> sectionEntries(std::istream& stream,
                                                        const std::string& name) {
    std::vector<ProfileEntry> entries;
    const bool found = forEachProfileEntry(stream, name, [&entries](const ProfileLine& line) {
        if (const std::string_view key = trimmed(line.name); !key.empty())
            entries.push_back({std::string(key), std::string(trimmed(line.value))});
        return entries.size() < mostMontageEntries;
    });
    return found ? std::optional(std::move(entries)) : std::nullopt;
}

std::vector<std::string> sectionNames(std::istream& stream) {
    std::vector<std::string> names;
    std::string text;
    if (!rewindStream(stream))
        return names;
    while (names.size() < mostMontageEntries && readProfileLine(stream, text))
        if (const ProfileLine line = splitProfileLine(text);
            line.kind == ProfileLine::Kind::section)
            names.emplace_back(line.name);
    return names;
}

bool isXML(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    return first != std::string_view::npos && text[first] == '<';
}

} // namespace kvsig
