#pragma once

#include "kvsig/kernel/ClientEvent.h"
#include "support/Bytes.h"
#include "support/Opened.h"
#include "support/TempDir.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <initializer_list>

namespace kvsig::test {

/// Among findings: one with this part.
inline auto tells(const char* part) { return testing::Contains(testing::HasSubstr(part)); }

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

    struct Reading {
        std::string bytes;
        long samples;
        const char* finding; ///< a part of one; empty: there is none
        int anchors = 0;     ///< 0: not looked at
    };
    /// Each opens and holds `ramp` in all channels.
    void reads(std::initializer_list<Reading> cases) {
        for (const Reading& c : cases) {
            SCOPED_TRACE(std::to_string(&c - cases.begin()) + " " + c.finding);
            ASSERT_TRUE(opens(c.bytes)) << reader.lastErrorText();
            ASSERT_EQ(reader.sampleCount(), c.samples);
            holds(ramp);
            if (*c.finding)
                EXPECT_THAT(findings(), tells(c.finding));
            else
                EXPECT_THAT(findings(), testing::IsEmpty());
            if (c.anchors > 0) {
                EXPECT_EQ(reader.sampleTimeCount(), c.anchors);
            }
        }
    }
    /// Every sample of every channel is value(channel, index).
    template <typename Value>
    void holds(Value value) {
        std::vector<std::int32_t> expected(static_cast<std::size_t>(reader.sampleCount()));
        for (int c = 0; c < reader.channelCount(); ++c) {
            for (std::size_t i = 0; i < expected.size(); ++i)
                expected[i] = value(c, static_cast<long>(i));
            ASSERT_EQ(rawOf(reader, c, 0, reader.sampleCount() - 1), expected) << c;
        }
    }
    std::function<std::int32_t(int channel, long index)> ramp = [](int channel, long index) {
        return rampCount(channel, index);
    };

    TempDir dir;
    Reader reader;

  private:
    const char* m_name;
};

} // namespace kvsig::test
