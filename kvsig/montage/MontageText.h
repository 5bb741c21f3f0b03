#pragma once

#include "kvsig/util/ProfileLines.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The two forms in which montage files hold montages.
namespace kvsig {

/// The content of the first template of exactly that name in an XML template file (root
/// "Templates", elements "Template" with the attribute "Name" and a child "Defn"). Nothing without
/// one, and for a text that cannot be read; `reason`, if given, then says why.
[[nodiscard]] std::optional<std::string>
templateContent(std::string_view text, const std::string& name, std::string* reason = nullptr);
[[nodiscard]] std::vector<std::string> templateNames(std::string_view text);

/// The lines of the section of that name, blanks around keys and values taken off; nothing without
/// such a section.
[[nodiscard]] std::optional<std::vector<ProfileEntry>> sectionEntries(std::istream& stream,
                                                                      const std::string& name);
[[nodiscard]] std::vector<std::string> sectionNames(std::istream& stream);

/// Whether a text looks like XML: it begins with "<", blanks before it aside.
[[nodiscard]] bool isXML(std::string_view text);

} // namespace kvsig
