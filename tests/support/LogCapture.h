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
        SetLogSink([this](int level, const char* text) { m_lines.push_back({level, text}); });
    }
    ~LogCapture() { SetLogSink({}); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    struct Line {
        int level = 0;
        std::string text;
    };

    /// The texts so far, at or above a level; the capture is empty afterwards.
    std::vector<std::string> take(int level = logInfo) {
        std::vector<std::string> texts;
        for (const Line& line : std::exchange(m_lines, {}))
            if (line.level >= level)
                texts.push_back(line.text);
        return texts;
    }

  private:
    std::vector<Line> m_lines;
};

} // namespace kvsig::test
