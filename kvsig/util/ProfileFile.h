#pragma once

#include "kvsig/util/Limits.h"
#include "kvsig/util/ProfileLines.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvsig {

/// An INI-style text (see ProfileText.h) while it is edited. What an edit does not name keeps its
/// bytes and its place: comments, foreign sections, the case of keys, blank lines, a byte-order
/// mark. New lines end as the first line of the text does.
class ProfileDocument {
  public:
    explicit ProfileDocument(std::string_view text = {});

    /// Sets the value of a key; a new key goes behind the section's last entry, a new section to
    /// the end. False, and nothing changes, when the texts would not read back: a name that is
    /// empty, a key with "=" or a leading "[" or ";", a section with "]", a line end anywhere.
    [[nodiscard]] bool setKey(std::string_view section, std::string_view key,
                              std::string_view value);
    /// Gives the section these entries alone, in place of those that it had; entries that would not
    /// read back make it false, as above.
    [[nodiscard]] bool setSection(std::string_view section,
                                  const std::vector<ProfileEntry>& entries);
    /// Removes the key, or the section, wherever it stands. Comments and blank lines behind a
    /// section's last entry stay: they speak of what follows.
    void deleteKey(std::string_view section, std::string_view key);
    void deleteSection(std::string_view section);

    [[nodiscard]] std::string text() const;

  private:
    /// Lines from the section's heading to the next one: first, and one past the last.
    struct Range {
        std::size_t begin, end;
    };

    [[nodiscard]] std::optional<Range> find(std::string_view section, std::size_t from = 0) const;
    [[nodiscard]] std::size_t bodyEnd(Range range) const;
    Range findOrAppend(std::string_view section);
    void insert(std::size_t at, std::vector<std::string> lines);
    [[nodiscard]] std::string entryText(std::string_view key, std::string_view value) const;

    std::string m_mark;               ///< the byte-order mark, if there is one
    std::vector<std::string> m_lines; ///< with their line ends
    std::string m_lineEnd = "\n";
};

/// Whether the text can stand as a section's name, or as a key.
[[nodiscard]] bool isProfileSection(std::string_view name);
[[nodiscard]] bool isProfileKey(std::string_view key);

/// The whole of a profile file; nothing when it does not exist, is no regular file or is too large.
[[nodiscard]] std::optional<std::string> readProfileFile(const char* path);

/// Reads the file (a missing one is empty), lets `edit` change it and puts the result in its place
/// in one step: whatever happens in between, the file is the old or the new one, whole. False when
/// `edit` returns false, when the file could not be read or written or would become too large to be
/// read again; it is then as it was. A file that the edit does not change is not written.
[[nodiscard]] bool editProfileFile(const char* path,
                                   const std::function<bool(ProfileDocument&)>& edit);

} // namespace kvsig
