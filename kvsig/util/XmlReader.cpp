#include "kvsig/util/XmlReader.h"

#include "kvsig/util/File.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/TextFile.h"

#include <pugixml.hpp>

namespace kvsig {
namespace {

bool isDeeperThan(const pugi::xml_node& top, int depth) {
    struct Walker : pugi::xml_tree_walker {
        explicit Walker(int limit) : most(limit) {}
        bool for_each(pugi::xml_node&) override { return depth() < most; }
        int most;
    };
    Walker walker(depth);
    return !pugi::xml_node(top).traverse(walker);
}

struct StringWriter : pugi::xml_writer {
    void write(const void* data, std::size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
    std::string text;
};

} // namespace

struct XmlReader::State {
    pugi::xml_document document;
    pugi::xml_node level;
    pugi::xml_node current;

    void clear() {
        document.reset();
        level = document.root();
        current = {};
    }
};

XmlReader::XmlReader() : m_state(std::make_unique<State>()) { m_state->clear(); }
XmlReader::~XmlReader() = default;

bool XmlReader::setDocument(std::string_view text, std::string* reason) {
    const auto refuse = [&](const std::string& why) {
        m_state->clear();
        if (reason)
            *reason = why;
        return false;
    };
    if (text.size() > mostXmlBytes)
        return refuse("an XML document of more than 16 MiB");
    m_state->clear();
    // Fragments: an inner document may have several roots, or text alone.
    const pugi::xml_parse_result result = m_state->document.load_buffer(
        text.data(), text.size(), pugi::parse_default | pugi::parse_fragment);
    if (!result)
        return refuse(std::string("not well-formed XML at byte ") + std::to_string(result.offset) +
                      ": " + result.description());
    if (isDeeperThan(m_state->document, mostXmlDepth))
        return refuse("XML elements nested deeper than " + std::to_string(mostXmlDepth));
    m_state->level = m_state->document.root();
    return true;
}

bool XmlReader::loadFile(const char* path, std::string* reason) {
    const std::optional<std::string> text = readTextFile(path, mostXmlBytes, reason);
    if (!text) {
        m_state->clear();
        return false;
    }
    return setDocument(*text, reason);
}

bool XmlReader::findElement(const char* name) {
    const pugi::xml_node found = m_state->current ? m_state->current.next_sibling(name ? name : "")
                                                  : m_state->level.child(name ? name : "");
    if (!found)
        return false;
    m_state->current = found;
    return true;
}

bool XmlReader::intoElement() {
    if (!m_state->current)
        return false;
    m_state->level = m_state->current;
    m_state->current = {};
    return true;
}

bool XmlReader::outOfElement() {
    if (m_state->level == m_state->document)
        return false;
    m_state->current = m_state->level;
    m_state->level = m_state->level.parent();
    return true;
}

void XmlReader::resetPosition() { m_state->current = {}; }

std::string XmlReader::attribute(const char* name) const {
    return m_state->current.attribute(name ? name : "").value();
}

std::vector<std::pair<std::string, std::string>> XmlReader::attributes() const {
    std::vector<std::pair<std::string, std::string>> all;
    for (const pugi::xml_attribute& attribute : m_state->current.attributes())
        all.emplace_back(attribute.name(), attribute.value());
    return all;
}

std::string XmlReader::innerDocument() const {
    const pugi::xml_node element = m_state->current;
    if (!element.find_child([](const pugi::xml_node& n) { return n.type() == pugi::node_element; }))
        return element.text().get();
    StringWriter writer;
    for (const pugi::xml_node& child : element.children())
        child.print(writer, "", pugi::format_raw);
    return writer.text;
}

} // namespace kvsig
