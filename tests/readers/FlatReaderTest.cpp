#include "kvsig/readers/FlatReader.h"

#include "kvsig/readers/FlatRecording.h"
#include "support/Bytes.h"
#include "support/LogCapture.h"
#include "support/Opened.h"
#include "support/ReadAround.h"
#include "support/SameSamples.h"

#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace kvsig::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Counts = std::vector<std::int32_t>;

// A format that is described by the test.
class ScriptedFlatReader : public FlatReader {
  public:
    ScriptedFlatReader(const std::string& bytes, std::function<void(FlatRecording&)> script)
        : m_script(std::move(script)) {
        path = m_dir.write("flat", bytes);
        isOpen = open(path.c_str());
    }
    using FlatReader::sampleAt;
    using FlatReader::setMaxDataIndex;

    std::vector<FlatEvent> events;
    std::string path;
    bool isOpen = false;

  protected:
    bool describe(FlatRecording& recording) override {
        EXPECT_TRUE(recording.samples.open(filePath().c_str()));
        recording.rate = 10.0;
        m_script(recording);
        return true;
    }
    void listEvents(std::vector<FlatEvent>& listed) override { listed = events; }

  private:
    TempDir m_dir;
    std::function<void(FlatRecording&)> m_script;
};

FlatChannel channelOf(FlatInteger integer, std::int64_t place, int track = 0) {
    FlatChannel channel;
    channel.integer = integer;
    channel.place = place;
    channel.track = track;
    channel.grid1 = "A" + std::to_string(place);
    return channel;
}

// One channel of these stored values, as they stand in the file.
FlatRecording& oneChannel(FlatRecording& recording, FlatInteger integer, std::int64_t count) {
    recording.channels = {channelOf(integer, 0)};
    recording.tracks.push_back({integer.bytes, 1, 0.0, {{0, count}}, {}});
    recording.segments = {{count, 0.0}};
    return recording;
}

TEST(FlatReader, EveryIntegerIsReadInBothOrders) {
    const std::string bytes("\x01\x80\xFF\x7F\x80\x02\xFE\x03", 8);
    const struct {
        FlatInteger integer;
        Counts expected;
    } cases[] = {
        {{1, true, false}, {1, -128, -1, 127, -128, 2, -2, 3}},
        {{1, false, false}, {1, 128, 255, 127, 128, 2, 254, 3}},
        {{2, true, false}, {-32767, 32767, 640, 1022}},
        {{2, true, true}, {384, -129, -32766, -509}},
        {{2, false, false}, {32769, 32767, 640, 1022}},
        {{2, false, true}, {384, 65407, 32770, 65027}},
        {{4, true, false}, {2147450881, 66978432}},
        {{4, true, true}, {25231231, -2147287549}},
    };
    for (const auto& c : cases) {
        const auto count = static_cast<long>(c.expected.size());
        ScriptedFlatReader reader(
            bytes, [&](FlatRecording& recording) { oneChannel(recording, c.integer, count); });
        ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
        EXPECT_EQ(rawOf(reader, 0, 0, count - 1), c.expected) << c.integer.bytes;
    }
}

// The physical value is (stored - zero) * scale whatever the integers are, whether 16 bits carry
// the difference or not, and whether the unit is the microvolt.
TEST(FlatReader, GetDataGivesPhysicalValuesAtGainOne) {
    const std::string bytes("\x00\x00\x00\x00\xFF\xFF\xFF\xFF\x00\x00\x00\x80\xFF\x7F\xFF\x7F", 16);
    const struct {
        FlatInteger integer;
        FlatScale scale;
        short type;
        int bytesPerSample;
    } cases[] = {
        {{2, true, false}, {"uV", 0.25, 0, -32768, 32767}, 1, 2},
        {{2, false, false}, {"uV", 0.5, 32768, 0, 65535}, 1, 2},
        {{2, false, false}, {"\xB5V", 0.5, 100, 0, 65535}, 1, 4},
        {{2, true, false}, {"uV", 0.5, -7, -100, 100}, 1, 4},
        {{2, true, false}, {"uV", 0.5, 0.5, -100, 100}, 100, 2},
        {{2, false, false}, {"mV", 0.366299, 32768, 0, 65535}, 100, 2},
        {{2, false, false}, {"%", 0.1, 0, 0, 1000}, 100, 4},
        {{1, false, false}, {"bpm", 1, 0, 7, 7}, 100, 2},
        {{4, true, false}, {"uV", 0.01, 0, -1000, 1000}, 1, 4},
        {{4, true, false}, {"uV", 0.01, 3, -1000, 1000}, 100, 4},
        {{4, false, false}, {"uV", 0.01, 2147483648.0, 0, 4294967295}, 1, 4},
        {{4, false, false}, {"uV", 0.01, 5, 0, 1000}, 100, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.scale.units + std::to_string(c.integer.bytes) + " " +
                     std::to_string(c.scale.zero));
        const long count = 16 / c.integer.bytes;
        ScriptedFlatReader reader(bytes, [&](FlatRecording& recording) {
            calibrate(oneChannel(recording, c.integer, count).channels[0], c.scale);
        });
        ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
        EXPECT_EQ(reader.channelType(0), c.type);
        EXPECT_EQ(reader.bytesPerSample(), c.bytesPerSample);
        const std::vector<float> values = valuesOf(reader, 0, 0, count - 1);
        for (long i = 0; i < count; ++i) {
            std::int64_t stored = 0;
            for (int b = c.integer.bytes - 1; b >= 0; --b)
                stored =
                    stored * 256 + static_cast<unsigned char>(
                                       bytes[static_cast<std::size_t>(i * c.integer.bytes + b)]);
            if (stored > c.integer.greatest())
                stored -= std::int64_t{1} << (8 * c.integer.bytes);
            const double physical = (static_cast<double>(stored) - c.scale.zero) * c.scale.scale;
            EXPECT_NEAR(values[static_cast<std::size_t>(i)], physical,
                        1e-9 + std::abs(physical) * 1e-7)
                << i;
        }
    }
}

// Groups of 8 frames in two pieces with rubbish before them, a short group at the end of each.
// Frames and runs of channels are those of the compliance kit.
TEST(FlatReader, GroupsOfFramesAreReadAcrossPieces) {
    constexpr std::int64_t count = 100, together = 8;
    FlatTrack track{6, together, 0.0, {}, {}};
    Bytes bytes;
    for (const auto& [from, to] : {std::pair(std::int64_t{0}, std::int64_t{37}), {37, count}}) {
        bytes.add("rubbish");
        track.pieces.push_back({static_cast<std::int64_t>(bytes.size()), to - from});
        for (std::int64_t group = from; group < to; group += together)
            for (int c = 0; c < 3; ++c)
                for (std::int64_t i = group; i < std::min(group + together, to); ++i)
                    bytes.add(static_cast<std::int16_t>(rampCount(c, i)));
    }
    ScriptedFlatReader reader(bytes.str(), [&](FlatRecording& recording) {
        recording.tracks = {track};
        for (int c = 0; c < 3; ++c)
            recording.channels.push_back(channelOf({}, 2 * c));
        recording.segments = {{37, 100.0}, {count - 37, 200.0}};
    });
    ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
    for (int c = 0; c < 3; ++c)
        for (const long first : {0L, 5L, 36L, 37L, 95L}) {
            Counts expected;
            for (std::int64_t i = first; i < count; ++i)
                expected.push_back(rampCount(c, i));
            reader.flushPages(false);
            EXPECT_EQ(rawOf(reader, c, first, count - 1), expected) << c << " from " << first;
        }
    reader.setChannelCount(2); // a host's own idea
    reader.flushPages(false);
    EXPECT_EQ(rawOf(reader, 1, 99, 99), Counts{rampCount(1, 99)});
}

// Frames of two channels, runs of single ones, one of them slow, and groups, in pieces and
// segments.
TEST(FlatReader, ChannelsThatStandApartAreReadAloneWithTheSamplesOfFrames) {
    std::minstd_rand next(3);
    std::string bytes;
    for (int i = 0; i < 12000; ++i)
        bytes += static_cast<char>(next() >> 8);
    for (const std::int64_t zero : {0, 40000}) { // 16 bits carry it, or not
        const auto script = [zero](FlatRecording& recording) {
            recording.tracks = {{5, 1, 0.0, {{7, 250}, {2000, 350}}, {}},
                                {2, 1, 0.0, {{4000, 600}}, {}},
                                {2, 1, 3.0, {{6000, 60}, {6200, 120}}, {0, 60}},
                                {3, 8, 0.0, {{8000, 301}, {9500, 299}}, {}}};
            recording.channels = {
                channelOf({}, 0, 0), channelOf({}, 0, 1), channelOf({2, true, true}, 0, 3),
                channelOf({}, 2, 0), channelOf({}, 0, 2), channelOf({1, false, false}, 2, 3)};
            recording.channels[5].zero = zero;
            recording.segments = {{200, 0.0}, {400, 60.0}};
        };
        ScriptedFlatReader planes(bytes, script);
        FramesOnly<ScriptedFlatReader> framed(bytes, script);
        ASSERT_TRUE(planes.isOpen) << planes.lastErrorText();
        ASSERT_EQ(planes.bytesPerSample(), zero == 0 ? 2 : 4);
        expectSameSamples(planes, framed, 1000);
        for (const int count : {4, 1, 7, 3, 6}) { // a host's own idea
            planes.setChannelCount(count);
            framed.setChannelCount(count);
            expectSameSamples(planes, framed, 60);
        }
    }
}

// 10 Hz and 3 Hz: in a segment, sample j shows the slow channel's floor(j * 3 / 10).
TEST(FlatReader, SlowChannelsAreRepeatedSegmentBySegment) {
    Bytes bytes;
    for (std::int64_t i = 0; i < 45; ++i)
        bytes.add(static_cast<std::int16_t>(i));
    for (std::int64_t i = 0; i < 13; ++i) // 6 of the first 20 samples, 7 of the other 25
        bytes.add(static_cast<std::int16_t>(100 + i));
    ScriptedFlatReader reader(bytes.str(), [](FlatRecording& recording) {
        recording.tracks.push_back({2, 1, 0.0, {{0, 45}}, {}});
        recording.tracks.push_back({2, 1, 3.0, {{90, 4}, {98, 9}}, {0, 6}});
        recording.channels = {channelOf({}, 0), channelOf({}, 0, 1)};
        recording.segments = {{20, 0.0}, {25, 60.0}};
    });
    ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
    EXPECT_EQ(reader.storedSamplingRate(0), 10.0);
    EXPECT_EQ(reader.storedSamplingRate(1), 3.0);
    Counts expected;
    for (int j = 0; j < 20; ++j)
        expected.push_back(100 + j * 3 / 10);
    for (int j = 0; j < 25; ++j) // the 8th sample of 2.5 s would begin at 2.33 s; it was not stored
        expected.push_back(106 + std::min(j * 3 / 10, 6));
    EXPECT_EQ(rawOf(reader, 1, 0, 44), expected);
    expected.resize(80, 0);
    reader.setMaxDataIndex(79); // a host's own idea
    reader.flushPages(false);
    EXPECT_EQ(rawOf(reader, 1, 0, 79), expected);
    for (long i = 0; i < 45; ++i)
        EXPECT_EQ(rawOf(reader, 0, i, i), Counts{static_cast<std::int32_t>(i)});
}

// 29 of 100 Hz: 0.29 * 100 is a little less than 29.
TEST(FlatReader, SlowChannelsTurnOverWhereWholeRatesSay) {
    Bytes bytes;
    for (int i = 0; i < 1000; ++i)
        bytes.add(static_cast<std::int16_t>(i));
    for (const double rate : {100.0, 200.0, 400.0}) {
        ScriptedFlatReader reader(bytes.str(), [rate](FlatRecording& recording) {
            recording.rate = rate;
            recording.tracks = {{2, 1, 0.0, {{0, 1000}}, {}}, {2, 1, 29.0, {{0, 290}}, {}}};
            recording.channels = {channelOf({}, 0), channelOf({}, 0, 1)};
            recording.segments = {{1000, 0.0}};
        });
        const Counts shown = rawOf(reader, 1, 0, 999);
        for (int i = 0; i < 1000; ++i)
            ASSERT_EQ(shown[static_cast<std::size_t>(i)], i * 29 / static_cast<int>(rate));
    }
}

TEST(FlatReader, PausesAreAnchorsAndEventsKeepTheirSamples) {
    ScriptedFlatReader reader(std::string(200, '\1'), [](FlatRecording& recording) {
        oneChannel(recording, {}, 100);
        recording.start = {2019, 12, 31, 23, 59, 50.5};
        recording.segments = {{30, 86390.5}, {30, 86400 + 5.0}, {40, 3 * 86400.0}};
    });
    ASSERT_EQ(reader.sampleTimeCount(), 3);
    EXPECT_EQ(reader.getClockTime(3.0), 86405.0);
    EXPECT_EQ(reader.getElapsedTime(86400 + 7.0), 5.0);
    EXPECT_EQ(reader.getElapsedTime(2 * 86400.0), 6.0); // in the pause
    EXPECT_STREQ(reader.patientRec()->testDate, "2019.12.31");
    EXPECT_STREQ(reader.patientRec()->testTime, "23:59:50");
    EXPECT_EQ(reader.sampleAt(86390.44), std::nullopt);
    EXPECT_EQ(reader.sampleAt(86390.46), 0) << "less than half a sample early";
    EXPECT_EQ(reader.sampleAt(86391.0), 5);
    EXPECT_EQ(reader.sampleAt(86400.0), 30);
    EXPECT_EQ(reader.sampleAt(3 * 86400.0 + 4.0), 100);
    EXPECT_EQ(reader.sampleAt(3 * 86400.0 + 4.2), std::nullopt);

    reader.events = {{101, "behind", "", 0}, {100, "end", "", 0},
                     {-1, "before", "", 0},  {7, "b", "Fp1", 2.5},
                     {7, "c", "", 0},        {0, std::string(126, 'x') + "\xC3\xB6", "", 0}};
    std::deque<ClientEvent> events(1);
    LogCapture log;
    ASSERT_EQ(reader.readEvents(events), 4);
    EXPECT_THAT(log.take(),
                ElementsAre(reader.path + ": events outside the recording are left out (2)"));
    ASSERT_EQ(events.size(), 5U);
    EXPECT_EQ(std::string(events[1].stateText), std::string(126, 'x')) << "no half character";
    EXPECT_STREQ(events[2].stateText, "b");
    EXPECT_STREQ(events[2].label, "Fp1");
    EXPECT_EQ(events[2].duration, 2.5);
    EXPECT_EQ(events[2].kind, 0);
    EXPECT_STREQ(events[3].stateText, "c");
    EXPECT_EQ(events[4].sample, 100);
}

// Days are counted in a description, so a clock that runs backwards has not passed midnight.
TEST(FlatReader, AClockThatWasSetBackAddsNoDay) {
    ScriptedFlatReader reader(std::string(200, '\1'), [](FlatRecording& recording) {
        oneChannel(recording, {}, 100);
        recording.segments = {{50, 1000.0}, {50, 900.0}};
    });
    EXPECT_EQ(reader.sampleTimeCount(), 1);
    EXPECT_EQ(reader.getClockTime(10.0), 1010.0);
    ASSERT_EQ(reader.openFindings().size(), 1U);
    EXPECT_THAT(reader.openFindings()[0].text, HasSubstr("begins 100 s before"));
}

// Samples of 0.1 s; segments follow each other in the samples.
TEST(FlatReader, ClockTimesAreFoundInWhateverOrderSegmentsStand) {
    using Times = std::vector<std::pair<double, std::int64_t>>;
    constexpr std::int64_t none = -1;
    const struct {
        const char* name;
        std::vector<FlatSegment> segments;
        Times samples;
    } cases[] = {
        {"set back",
         {{50, 1000.0}, {50, 900.0}},
         {{1002, 20},
          {902, 70},
          {905, 100},
          {905.1, none},
          {950, none},
          {999.96, 0},
          {std::nan(""), none},
          {1006, none}}},
        {"contained",
         {{200, 0.0}, {20, 10.0}, {10, 40.0}},
         {{5, 50}, {11, 210}, {12, 120}, {15, 150}, {20, 200}, {30, 220}, {41, 230}, {41.1, none}}},
        {"contained twice, the last one",
         {{200, 0.0}, {80, 5.0}, {20, 6.0}},
         {{5.5, 205}, {7, 290}, {9, 240}, {13, 130}, {19, 190}, {20.1, none}}},
        {"overlapping", {{100, 0.0}, {100, 5.0}}, {{4, 40}, {6, 110}, {12, 170}, {15, 200}}},
        {"empty ones, inside, in the pause and set back",
         {{100, 0.0}, {0, 5.0}, {0, 15.0}, {0, -50.0}, {100, 20.0}},
         {{-1, none}, {4, 40}, {8, 80}, {12, 100}, {16, 100}, {21, 110}, {30.1, none}}},
        {"set back, then a pause",
         {{20, 100.0}, {20, 90.0}, {10, 110.0}, {10, 95.0}},
         {{91, 30}, {93, 50}, {97, none}, {101, 10}, {105, 40}, {110.5, 45}, {95.5, 55}}},
        {"a pause behind one set back",
         {{120, 5.0}, {30, 24.0}, {120, 5.0}},
         {{4, none}, {6, 160}, {18, 120}, {25, 130}, {28, none}}},
        {"of the same start", {{100, 0.0}, {50, 0.0}}, {{2, 120}, {6, 60}}},
    };
    for (const auto& c : cases) {
        ScriptedFlatReader reader(std::string(600, '\1'), [&](FlatRecording& recording) {
            oneChannel(recording, {}, 300).segments = c.segments;
        });
        ASSERT_TRUE(reader.isOpen) << reader.lastErrorText();
        for (const auto& [clock, sample] : c.samples)
            EXPECT_EQ(reader.sampleAt(clock).value_or(none), sample) << c.name << " " << clock;
    }
}

// What the clock's step and drift explain is no overlap; and of many the first one is told.
TEST(FlatReader, OddClocksAreToldOnceAsFarAsTheyAreKnown) {
    const struct {
        double step;
        bool drifts;
        std::vector<FlatSegment> segments;
        std::vector<const char*> findings;
    } cases[] = {
        {0, false, {{30, 1000.0}, {30, 1002.96}}, {}}, // less than half a sample
        {0, false, {{30, 1000.0}, {30, 1002.94}}, {"segment 2 of 2 begins 0.060 s before what"}},
        {0, true, {{30, 1000.0}, {30, 1002.86}}, {}},
        {0, true, {{30, 1000.0}, {30, 1002.8}}, {"begins 0.200 s before what"}},
        {1, true, {{30, 1000.0}, {30, 1002.0}}, {}},
        {0,
         false,
         {{30, 0.0}, {30, 1.0}, {30, 2.0}},
         {"segment 2 of 3 begins 2.000 s before what "
          "is before it ends, and so do 1 more: cl"}},
        {0,
         false,
         {{30, 100.0}, {30, 0.0}, {10, 105.0}, {30, 50.0}},
         {"segment 2 of 4 begins 100 s before an earlier one, and so do 1 more: samples there",
          "segment 3 of 4 begins 1.000 s before what is before it ends: clock"}},
        {0, false, {{30, 0.0}, {0, 1.0}, {0, -1.0}, {30, 3.0}}, {}},
        {0, // set back behind a contained one: shown from 6 s on, not from 10 s
         false,
         {{100, 0.0}, {10, 5.0}, {30, 2.0}, {10, 11.0}},
         {"segment 3 of 4 begins 3 s before an earlier one: samples",
          "segment 2 of 4 begins 5.000 s before what is before it ends: clock"}},
    };
    for (const auto& c : cases) {
        ScriptedFlatReader reader(std::string(300, '\1'), [&](FlatRecording& recording) {
            oneChannel(recording, {}, 150).segments = c.segments;
            recording.clockStep = c.step;
            recording.clockDrifts = c.drifts;
        });
        ASSERT_EQ(reader.openFindings().size(), c.findings.size()) << &c - cases;
        for (std::size_t i = 0; i < c.findings.size(); ++i)
            EXPECT_THAT(reader.openFindings()[i].text, HasSubstr(c.findings[i]));
    }
}

// A few bytes of a header claim any rate.
TEST(FlatReader, PagesAndChunksAreNoLongerThanTheRecording) {
    const struct {
        double rate;
        long count;
        int chunk, page;
    } cases[] = {{10, 100, 10, 50}, {10, 31, 10, 40},  {10, 20, 10, 20},
                 {10, 7, 7, 7},     {1e7, 50, 50, 50}, {1e300, 50, 50, 50}};
    for (const auto& c : cases) {
        ScriptedFlatReader reader(std::string(200, '\1'), [&](FlatRecording& recording) {
            oneChannel(recording, {}, c.count);
            recording.rate = c.rate;
        });
        EXPECT_EQ(reader.chunkPts(), c.chunk) << c.rate;
        EXPECT_EQ(reader.getPagePts(), c.page) << c.rate;
        EXPECT_EQ(rawOf(reader, 0, 0, c.count - 1),
                  Counts(static_cast<std::size_t>(c.count), 0x0101));
        reader.setPageDuration(std::nan(""));
        EXPECT_EQ(reader.getPagePts(), c.chunk);
    }
}

TEST(FlatReader, DescriptionsThatLieAreRefused) {
    const struct {
        std::function<void(FlatRecording&)> lie;
        const char* sentence;
    } cases[] = {
        {[](FlatRecording& r) { r.tracks[0].pieces[0].count = 11; }, "11 samples at offset 0"},
        {[](FlatRecording& r) { r.tracks[0].pieces[0].offset = -2; }, "at offset -2"},
        {[](FlatRecording& r) { r.tracks[0].pieces[0].offset = INT64_MAX; }, "leave the file"},
        {[](FlatRecording& r) { r.tracks[0].frameBytes = 0; }, "of 0 bytes"},
        {[](FlatRecording& r) { r.tracks[0].together = INT64_MAX; }, "stand together"},
        {[](FlatRecording& r) { r.tracks[0].rate = 11; }, "is 11 Hz, above the 10 Hz"},
        {[](FlatRecording& r) { r.tracks[0].rate = std::nan(""); }, "sampling rate is nan"},
        {[](FlatRecording& r) { r.channels[0].place = 1; }, "no place in a sample of 2 bytes"},
        {[](FlatRecording& r) { r.channels.clear(); }, "0 channels"},
        {[](FlatRecording& r) { r.rate = HUGE_VAL; }, "sampling rate is inf"},
        {[](FlatRecording& r) { r.rate = 0; }, "sampling rate is 0"},
        {[](FlatRecording& r) { r.segments[0].count = 11; }, "of 11 samples it holds 10"},
        {[](FlatRecording& r) { r.segments[0].count = 0; }, "no samples"},
        {[](FlatRecording& r) { r.segments[0].start = std::nan(""); }, "a segment begins at nan s"},
        {[](FlatRecording& r) {
             r.segments.resize(3, {INT64_MAX, 0.0});
         },
         "a segment of"},
    };
    for (const auto& c : cases) {
        ScriptedFlatReader reader(std::string(20, 'x'), [&](FlatRecording& recording) {
            oneChannel(recording, {}, 10);
            c.lie(recording);
        });
        EXPECT_FALSE(reader.isOpen) << c.sentence;
        EXPECT_EQ(reader.getLastError(), 2);
        EXPECT_THAT(reader.lastErrorText(), HasSubstr(c.sentence));
        readAround(reader);
    }
}

} // namespace
} // namespace kvsig::test
