#include "kvsig/registry/XmlLayout.h"

#include "kvsig/util/XmlReader.h"

namespace kvsig {
namespace {

// A line end inside a value would start a line of its own in the attribute text.
std::string oneLine(std::string text) {
    for (char& c : text)
        if (c == '\n' || c == '\r' || c == '\0')
            c = ' ';
    return text;
}

class AttributeText {
  public:
    void section(const char* name) { m_text += std::string("[") + name + "]\n"; }
    void line(const std::string& key, const std::string& value) {
        m_text += oneLine(key) + "=" + oneLine(value) + "\n";
    }
    [[nodiscard]] const std::string& text() const { return m_text; }

  private:
    std::string m_text;
};

bool canBeKey(const std::string& name) {
    return !name.empty() && name.front() != ';' && name.front() != '[' &&
           name.find('=') == std::string::npos;
}

void copyKeys(XmlReader& xml, const char* element, AttributeText& out) {
    xml.resetPosition();
    if (!xml.findElement(element))
        return;
    out.section(element);
    for (const auto& [key, value] : xml.attributes())
        out.line(key, value);
}

bool copyChannels(XmlReader& xml, AttributeText& out, std::string& reason) {
    xml.resetPosition();
    if (!xml.findElement("ChannelMap") || !xml.intoElement())
        return true;
    out.section("ChannelMap");
    while (xml.findElement("Channel")) {
        const std::string name = xml.attribute("Name");
        if (!canBeKey(name)) {
            reason = "Channel Name '" + name + "' is empty, holds '=' or begins with ';' or '['";
            return false;
        }
        out.line(name, xml.attribute("Number"));
    }
    xml.outOfElement();
    return true;
}

bool copySampleTimes(XmlReader& xml, AttributeText& out, std::string& reason) {
    xml.resetPosition();
    if (!xml.findElement("SampleTimes") || !xml.intoElement())
        return true;
    out.section("SampleTimes");
    while (xml.findElement("SampleTime")) {
        const std::string sample = xml.attribute("Sample");
        if (!canBeKey(sample)) {
            reason = "SampleTime Sample '" + sample + "' is no sample index";
            return false;
        }
        out.line(sample, xml.attribute("Time"));
    }
    xml.outOfElement();
    return true;
}

} // namespace

std::optional<std::string> readXmlLayout(const char* path, std::string& reason) {
    XmlReader xml;
    if (!xml.loadFile(path, &reason))
        return std::nullopt;
    if (!xml.findElement("Layout") || !xml.intoElement()) {
        reason = "not an XML layout: its root element is not Layout";
        return std::nullopt;
    }
    AttributeText out;
    copyKeys(xml, "FileInfo", out);
    if (!copyChannels(xml, out, reason))
        return std::nullopt;
    copyKeys(xml, "Patient", out);
    if (!copySampleTimes(xml, out, reason))
        return std::nullopt;
    return out.text();
}

bool isXmlLayoutFile(const char* path) {
    XmlReader xml;
    return xml.loadFile(path) && xml.findElement("Layout");
}

} // namespace kvsig
