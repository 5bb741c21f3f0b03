#pragma once

#include <string>
#include <vector>

namespace kvsig::tool {

/// Hears the library's warnings while it lives: what it says of files that it reads along the way
/// is the user's business too. One at a time.
class HeardWarnings {
  public:
    HeardWarnings();
    ~HeardWarnings();
    HeardWarnings(const HeardWarnings&) = delete;
    HeardWarnings& operator=(const HeardWarnings&) = delete;

    [[nodiscard]] const std::vector<std::string>& texts() const { return m_texts; }

  private:
    std::vector<std::string> m_texts;
};

} // namespace kvsig::tool
