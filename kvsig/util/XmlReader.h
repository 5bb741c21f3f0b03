#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvsig {

/// Walks the elements of an XML document one level at a time.
///
/// The position is a level (the document, or an element that was entered) and a current element on
/// it, none at first. Names are compared as they stand. Texts come out as UTF-8. External entities,
/// document types and entity definitions are never read; documents of more than mostXmlBytes or
/// nested deeper than mostXmlDepth (Limits.h) are refused. One object is used from one thread at a
/// time.
class XmlReader {
  public:
    XmlReader();
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    /// Takes a document; one without a single root (an inner document) is accepted. On failure the
    /// reader is empty and `reason`, if given, says why in words.
    bool setDocument(std::string_view text, std::string* reason = nullptr);
    bool loadFile(const char* path, std::string* reason = nullptr);

    /// Moves to the next element of that name behind the current one on this level. On failure the
    /// current element stays.
    bool findElement(const char* name);
    /// Makes the current element the level, with no current element on it yet.
    bool intoElement();
    /// Back to the level above, on the element that was entered.
    bool outOfElement();
    /// Back to the start of this level.
    void resetPosition();

    /// An attribute of the current element; empty when it has none of that name.
    [[nodiscard]] std::string attribute(const char* name) const;
    /// All attributes of the current element, in document order.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> attributes() const;
    /// What stands between the tags of the current element: markup where it holds elements, the
    /// text itself where it holds none.
    [[nodiscard]] std::string innerDocument() const;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace kvsig
