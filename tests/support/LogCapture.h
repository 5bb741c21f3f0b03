#pragma once

#include "kvsig/util/LogSink.h"

#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Collects the library's diagnostics while it lives; afterwards they are silent again. For tests
/// of one thread; one at a time.
class LogCapture {
  public:
    LogCapture() {
        SetLogSink([this](int level, const char* text) { m_lines.emplace_back(level, text); });
    }
    ~LogCapture() { SetLogSink({}); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The texts so far, at or above a level; the capture is empty afterwards.
    std::vector<std::string> take(int level = logInfo) {
        std::vector<std::string> texts;
        for (auto& [lineLevel, text] : std::exchange(m_lines, {}))
            if (lineLevel >= level)
                texts.push_back(text);
        return texts;
    }

  private:
    std::vector<std::pair<int, std::string>> m_lines;
};

} // namespace kvsig::test
