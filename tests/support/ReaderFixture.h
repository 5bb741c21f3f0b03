#pragma once

#include "kvsig/kernel/ClientEvent.h"
#include "support/Bytes.h"
#include "support/TempDir.h"

#include <cmath>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

namespace kvsig::test {

/// A reader of files that are written into a folder of its own.
template <typename Reader>
class ReaderFixture : public testing::Test {
  public:
    explicit ReaderFixture(const char* name) : m_name(name) {}

  protected:
    bool opens(const std::string& bytes) { return reader.open(dir.write(m_name, bytes).c_str()); }
    /// Of a file maker.
    template <typename File>
    requires requires(const File& file) { file.bytes(); }
    bool opens(const File& file) { return opens(file.bytes()); }

    std::vector<std::string> findings() {
        std::vector<std::string> texts;
        for (const OpenFinding& finding : reader.openFindings())
            texts.push_back(finding.text);
        return texts;
    }
    /// "10 text", with a duration of milliseconds "10+250 text".
    std::vector<std::string> events() {
        std::deque<ClientEvent> read;
        reader.readEvents(read);
        std::vector<std::string> texts;
        for (const ClientEvent& event : read)
            texts.push_back(std::to_string(event.sample) +
                            (event.duration > 0
                                 ? "+" + std::to_string(std::lround(event.duration * 1000))
                                 : "") +
                            " " + event.stateText);
        return texts;
    }

    struct Refusal {
        std::string bytes;
        int error;
        const char* sentence; ///< a part of it
    };
    void refuses(std::initializer_list<Refusal> cases) {
        for (const Refusal& c : cases) {
            EXPECT_FALSE(opens(c.bytes)) << c.sentence;
            EXPECT_EQ(reader.getLastError(), c.error) << c.sentence;
            EXPECT_THAT(reader.lastErrorText(), testing::HasSubstr(c.sentence));
        }
    }

    TempDir dir;
    Reader reader;

  private:
    const char* m_name;
};

/// Among findings: one with this part.
inline auto tells(const char* part) { return testing::Contains(testing::HasSubstr(part)); }

} // namespace kvsig::test
