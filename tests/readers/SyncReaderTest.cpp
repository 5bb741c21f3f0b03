#include "kvsig/readers/SyncReader.h"

#include "kvsig/kernel/ReaderPtr.h"
#include "support/ChannelFacts.h"
#include "support/FakeReader.h"
#include "support/Opened.h"

namespace kvsig::test {
namespace {

constexpr float untouched = -99.0F;
constexpr long top = std::numeric_limits<long>::max();
constexpr long bottom = std::numeric_limits<long>::min();

FakeRecording recordingOf(std::vector<FakeChannel> channels, double rate) {
    FakeRecording recording;
    recording.channels = std::move(channels);
    recording.rate = rate;
    recording.samples = 4000;
    return recording;
}

// Three channels joined to two. Members live on the stack of the test.
struct Pair {
    Pair(double firstRate, double secondRate)
        : first(recordingOf({{"Fp1"}, {"Fp2"}, {"Cz"}}, firstRate)),
          second(recordingOf({{"Resp", "", 0.5}, {"fp2", "M1", 2.0}}, secondRate)) {
        first.setFileName("eeg.a");
        second.setFileName("sleep.b");
    }
    std::vector<float> values(int channel, long from, long to, double gain = 1.0) {
        std::vector<float> out(static_cast<std::size_t>(std::max(to - from + 1, 0L)), untouched);
        produced = sync.getData(channel, from, to, out.data(), gain, 0);
        return out;
    }
    FakeReader first, second;
    SyncReader sync{&first, &second};
    int produced = -1;
};

struct OpenPair : Pair {
    OpenPair(double firstRate, double secondRate) : Pair(firstRate, secondRate) {
        opened = sync.open("eeg.a");
    }
    bool opened = false;
};

// Sample and hold in whole numbers: output i of n shows value i * count / n.
std::vector<float> held(const std::vector<float>& slow, std::size_t n) {
    std::vector<float> out(n);
    for (std::size_t i = 0; i < n; ++i)
        out[i] = slow[i * slow.size() / n];
    return out;
}

TEST(SyncReader, ChannelsOfTheSecondReaderFollowThoseOfTheFirst) {
    OpenPair pair(256, 500);
    ASSERT_TRUE(pair.opened);
    pair.second.setZeroChannel(1, true);
    pair.second.setSamples(77);
    EXPECT_EQ(pair.sync.channelCount(), 5);
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(factsOf(pair.sync, c), factsOf(pair.first, c));
    for (int c = 3; c < 5; ++c)
        EXPECT_EQ(factsOf(pair.sync, c), factsOf(pair.second, c - 3));
    EXPECT_STREQ(pair.sync.grid1(3), "Resp");
    for (const int outside :
         {-1, 5, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(factsOf(pair.sync, outside),
                  "|||0|0||0|0|0|0|0|0|" + std::string(outside < 0 ? "4000" : "77"));
}

TEST(SyncReader, GridsAreLookedUpInTheFirstReaderThenInTheSecond) {
    OpenPair pair(256, 256);
    EXPECT_EQ(pair.sync.indexOfG1("FP2"), 1);
    EXPECT_EQ(pair.sync.indexOfG1("resp"), 0) << "the second reader's own number";
    EXPECT_EQ(pair.sync.indexOfG2("M1"), 1);
    EXPECT_EQ(pair.sync.indexOfG2("nobody"), -1);
}

TEST(SyncReader, TheHigherRateIsCommon) {
    for (const auto& [first, second] : {std::pair{256.0, 500.0}, {500.0, 256.0}, {500.0, 500.0}}) {
        OpenPair pair(first, second);
        EXPECT_EQ(pair.sync.samplingRate(), 500.0);
        for (const int channel : {0, 4})
            EXPECT_EQ(pair.sync.channelSamplingRate(channel), 500.0);
        EXPECT_EQ(pair.sync.sampleCount(), 4000) << "of the first reader, at its own rate";
        EXPECT_EQ(pair.sync.duration(), 4000 / first);
    }
}

TEST(SyncReader, SamplesOfTheSlowerReaderAreHeld) {
    OpenPair slowFirst(256, 500);
    EXPECT_EQ(slowFirst.values(1, 0, 499, 2.0),
              held(valuesOf(slowFirst.first, 1, 0, 255, 2.0), 500));
    EXPECT_EQ(slowFirst.produced, 500);
    // 101 * 256 / 500 is 51.7, 50 * 256 / 500 is 25.6: both cut.
    EXPECT_EQ(slowFirst.values(2, 101, 150), held(valuesOf(slowFirst.first, 2, 51, 75), 50));
    // Toward zero: -101 gives -51, so the last of these 25 samples is number -27.
    EXPECT_EQ(slowFirst.values(2, -101, -52), held(valuesOf(slowFirst.first, 2, -51, -27), 50));
    EXPECT_EQ(slowFirst.values(4, 101, 150), valuesOf(slowFirst.second, 1, 101, 150))
        << "the faster one is not stretched";

    OpenPair slowSecond(1000, 300);
    EXPECT_EQ(slowSecond.values(3, 10, 19), held(valuesOf(slowSecond.second, 0, 3, 5), 10));
    EXPECT_EQ(slowSecond.values(0, 10, 19), valuesOf(slowSecond.first, 0, 10, 19));
}

TEST(SyncReader, EqualRatesForwardEveryRead) {
    OpenPair pair(256, 256);
    for (int c = 0; c < 5; ++c)
        EXPECT_EQ(pair.values(c, -3, 500, -0.5),
                  valuesOf(c < 3 ? pair.first : pair.second, c % 3, -3, 500, -0.5));
    std::vector<float> sum = pair.values(3, 0, 9);
    EXPECT_EQ(pair.sync.getData(4, 0, 9, sum.data(), -1.0, 1), 10);
    const auto a = valuesOf(pair.second, 0, 0, 9);
    const auto b = valuesOf(pair.second, 1, 0, 9);
    for (std::size_t i = 0; i < 10; ++i)
        EXPECT_EQ(sum[i], a[i] - b[i]) << "added to what the caller has";
}

TEST(SyncReader, TheLagShiftsTheSecondReaderAlone) {
    OpenPair pair(500, 500);
    EXPECT_EQ(pair.sync.getItem(1, 0, 0), 1);
    EXPECT_EQ(pair.sync.getItem(1001, 0, 0), 0);
    pair.sync.setItem(2, 0, 0, 100);
    pair.sync.setItem(1, 0, 0, 7);
    EXPECT_EQ(pair.sync.getItem(2, 0, 0), 100);
    EXPECT_EQ(pair.values(3, 100, 199), valuesOf(pair.second, 0, 0, 99));
    EXPECT_EQ(pair.values(0, 100, 199), valuesOf(pair.first, 0, 100, 199));
    pair.sync.setItem(2, 0, 0, static_cast<std::uintptr_t>(-100));
    EXPECT_EQ(pair.sync.getItem(2, 0, 0), -100);
    EXPECT_EQ(pair.values(3, 0, 9), valuesOf(pair.second, 0, 100, 109));

    OpenPair slow(1000, 500);
    slow.sync.setItem(2, 0, 0, 100);
    EXPECT_EQ(slow.values(3, 200, 219), held(valuesOf(slow.second, 0, 50, 59), 20))
        << "the lag counts samples of the common rate";
}

TEST(SyncReader, ADifferenceWithinTheSlowerReaderIsStretchedWhole) {
    OpenPair pair(100, 1000);
    std::vector<float> out = pair.values(0, 50, 149);
    std::fill(out.begin(), out.end(), untouched);
    EXPECT_EQ(pair.sync.getData(1, 50, 149, out.data(), -1.0, 1), 100);
    const auto a = valuesOf(pair.first, 0, 5, 14);
    const auto b = valuesOf(pair.first, 1, 5, 14);
    std::vector<float> difference;
    for (std::size_t i = 0; i < 10; ++i)
        difference.push_back(a[i] - b[i]);
    EXPECT_EQ(out, held(difference, 100)) << "stored, not added to what the caller has";
}

TEST(SyncReader, RangesOfNoSamplesTouchNothing) {
    for (const double rate : {500.0, 1000.0}) {
        OpenPair pair(500, rate);
        pair.sync.setItem(2, 0, 0, static_cast<std::uintptr_t>(-5));
        float value = untouched;
        for (const int channel : {0, 3, 99, -1})
            for (const auto& [from, to] :
                 {std::pair{5L, 4L}, {top, bottom}, {bottom, top}, {0L, 0x7FFFFFFFL}})
                EXPECT_EQ(pair.sync.getData(channel, from, to, &value, 1.0, 0), 0);
        EXPECT_EQ(value, untouched);
        EXPECT_EQ(pair.values(0, 1, 1),
                  rate == 500.0 ? valuesOf(pair.first, 0, 1, 1) : std::vector{untouched})
            << "too short for a sample of the slower reader";
        EXPECT_EQ(pair.produced, 1);
    }
}

TEST(SyncReader, RangesBeyondTheRecordingAreZeros) {
    for (const double rate : {500.0, 499.99999999999994, 1000.0})
        for (const long lag : {0L, 2147483647L, -2147483648L}) {
            OpenPair pair(rate, 500);
            pair.sync.setItem(2, 0, 0, static_cast<std::uintptr_t>(lag));
            for (const int channel : {0, 3})
                for (const long from : {bottom, bottom + 9, -5000000000L, 5000000000L, top - 9}) {
                    EXPECT_THAT(pair.values(channel, from, from + 9), Each(0.0F));
                    EXPECT_EQ(pair.produced, 10);
                }
        }
}

TEST(SyncReader, OddRatesNeitherHangNorOverflow) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const double rates[] = {0.0,   -256.0, 1e-300, 256.0,
                            1e300, inf,    -inf,   std::numeric_limits<double>::quiet_NaN()};
    for (const double first : rates)
        for (const double second : rates) {
            OpenPair pair(first, second);
            ASSERT_TRUE(pair.opened);
            for (const int channel : {0, 3})
                for (const long from : {0L, -1000L, 1000000000000L}) {
                    pair.values(channel, from, from + 99);
                    EXPECT_EQ(pair.produced, 100) << first << ' ' << second;
                }
        }
    // A member that became the faster one after the pair was opened.
    OpenPair pair(100, 200);
    pair.first.setSamplingRate(1e9);
    pair.values(0, 1000, 1099);
    EXPECT_EQ(pair.produced, 100);
}

TEST(SyncReader, SettingsReachBothReaders) {
    OpenPair pair(10, 20);
    pair.sync.setZeroChannel(1, true);
    EXPECT_TRUE(pair.first.zeroChannel(1));
    EXPECT_FALSE(pair.second.zeroChannel(1));
    pair.sync.setZeroChannel(4, true);
    EXPECT_TRUE(pair.second.zeroChannel(1));
    pair.sync.setZeroChannel(std::numeric_limits<int>::min(), true);
    pair.sync.setGridNamesAsNumbers(true);
    EXPECT_TRUE(pair.sync.gridNamesAsNumbers());
    EXPECT_STREQ(pair.sync.grid1(3), "1");
    pair.sync.setMaxPages(7);
    pair.sync.setPageDuration(3.0);
    EXPECT_EQ(pair.sync.getMaxPages(), 7);
    EXPECT_EQ(pair.sync.getPagePts(), 30);
    EXPECT_EQ(pair.second.getMaxPages(), 7);
    EXPECT_EQ(pair.second.getPagePts(), 60);
    for (const char* read : {"from the file", "again after the flush"}) {
        pair.values(0, 0, 1);
        pair.values(3, 0, 1);
        EXPECT_THAT(pair.first.takeCalls("getSampleChunk"), Not(IsEmpty())) << read;
        EXPECT_THAT(pair.second.takeCalls("getSampleChunk"), Not(IsEmpty())) << read;
        pair.sync.flushPages(false);
    }
}

TEST(SyncReader, TimePatientAndFilesAreTheFirstReaders) {
    Pair pair(256, 500);
    pair.first.file.anchors = {{0, 3600.0}};
    pair.second.file.anchors = {{0, 7200.0}, {10, 7300.0}};
    ASSERT_TRUE(pair.sync.open("night"));
    EXPECT_STREQ(pair.sync.fileName(), "night");
    EXPECT_EQ(pair.sync.sampleTimeCount(), 1);
    EXPECT_EQ(pair.sync.getClockTime(10.0), 3610.0);
    EXPECT_EQ(pair.sync.getElapsedTime(3610.0), 10.0);
    EXPECT_EQ(pair.sync.patientRec(), pair.first.patientRec());
    EXPECT_STREQ(pair.sync.partFileName(0), "eeg.a");
    EXPECT_EQ(pair.sync.partSampleCount(0), 4000);
    EXPECT_EQ(pair.sync.chunkPts(), 256);
    std::ostringstream summary;
    EXPECT_TRUE(pair.sync.testInfo(summary));
    EXPECT_THAT(summary.str(), HasSubstr("FileName: eeg.a\n"));
}

TEST(SyncReader, ChunksFitABufferMadeForThePair) {
    for (const int bytes : {2, 4}) {
        Pair pair(10, 10);
        pair.first.file.sampleBytes = bytes;
        std::vector<short> frames(10 * 5, -1);
        ASSERT_TRUE(pair.first.open("eeg.a"));
        EXPECT_EQ(pair.sync.getSampleChunk(0, frames.data()), 0) << "the pair is not open";
        ASSERT_TRUE(pair.sync.open(""));
        EXPECT_EQ(pair.sync.getSampleChunk(0, frames.data()), bytes == 2 ? 10 : 0);
        EXPECT_EQ(frames[3], bytes == 2 ? pair.first.rawAt(0, 1) : -1);
    }
}

TEST(SyncReader, WhatAPairHasNoneOfIsAnsweredLikeABareReader) {
    OpenPair pair(256, 500);
    SyncReader& sync = pair.sync;
    sync.setFileType(6);
    EXPECT_EQ(sync.fileType(), 0x20000000);
    EXPECT_STREQ(sync.getChannelMapNames(1), "(Default)");
    EXPECT_STREQ(sync.builtinChannelMapName(1), "(Private)");
    std::stringstream stream("[FileInfo]\n");
    EXPECT_FALSE(sync.readAttributeFile(stream) || sync.writeAttributeFile(stream));
    EXPECT_FALSE(sync.addChannelMapDefn("x", stream) || sync.deleteChannelMapDefn("x"));
    EXPECT_EQ(sync.montageIndex(""), -1);
    EXPECT_EQ(sync.hostFlag(), 1);
}

TEST(SyncReader, OpeningTellsWhichFileFailed) {
    Pair pair(256, 500);
    pair.second.file.openFails = true;
    EXPECT_FALSE(pair.sync.open("eeg.a"));
    EXPECT_EQ(pair.sync.getLastError(), 1);
    EXPECT_STREQ(pair.sync.fileName(), "sleep.b");
    EXPECT_STREQ(pair.sync.lastErrorText(), "sleep.b: the file cannot be opened");

    pair.first.file.sampleInfoFails = true;
    pair.second.takeCalls();
    EXPECT_FALSE(pair.sync.open("eeg.a"));
    EXPECT_EQ(pair.sync.getLastError(), 1) << "whatever the member's own code";
    EXPECT_STREQ(pair.sync.fileName(), "eeg.a");
    EXPECT_STREQ(pair.sync.lastErrorText(), "eeg.a: no usable channels or samples");
    EXPECT_THAT(pair.second.takeCalls(), IsEmpty()) << "the second one is not tried";

    SyncReader outer(&pair.sync, &pair.second);
    EXPECT_FALSE(outer.open("x"));
    EXPECT_STREQ(outer.lastErrorText(), "eeg.a: no usable channels or samples");

    pair.first.file.sampleInfoFails = pair.second.file.openFails = false;
    EXPECT_TRUE(pair.sync.open("eeg.a"));
    EXPECT_EQ(pair.sync.getLastError(), 0);
    EXPECT_STREQ(pair.sync.lastErrorText(), "");
}

TEST(SyncReader, AMissingMemberAnswersLikeAReaderWithoutARecording) {
    FakeReader reader;
    FakeReader* none = nullptr;
    for (const auto& [first, second] : {std::pair{none, &reader}, {&reader, none}, {none, none}}) {
        const auto sync = std::make_unique<SyncReader>(first, second);
        EXPECT_FALSE(sync->open("a"));
        EXPECT_EQ(sync->getLastError(), 1);
        EXPECT_STREQ(sync->fileName(), "a");
        EXPECT_THAT(sync->lastErrorText(), StartsWith("a: the pair has no "));
        EXPECT_STREQ(sync->refGrid(), "Ref");
        EXPECT_EQ(sync->sampleCount(), 0);
        EXPECT_EQ(sync->duration(), 0.0);
        EXPECT_EQ(sync->indexOfG1("Cz"), -1);
        EXPECT_FALSE(sync->getPatientName(nullptr));
        EXPECT_NE(sync->patientRec(), nullptr);
        for (const int channel : {-1, 0}) {
            EXPECT_EQ(factsOf(*sync, channel), "|||0|0||0|0|0|0|0|0|0");
            EXPECT_THAT(valuesOf(*sync, channel, 0, 9), Each(0.0F));
            sync->setZeroChannel(channel, true);
        }
        sync->setMaxPages(3);
        sync->flushPages(true);
        sync->close();
    }
    EXPECT_THAT(reader.takeCalls("openFile"), IsEmpty());
}

TEST(SyncReader, ThePairClosesItsMembersAndLeavesThemAlive) {
    bool destroyed = false;
    auto made = std::make_unique<FakeReader>();
    FakeReader* member = made.get();
    member->destroyed = &destroyed;
    ReaderPtr first(made.release());
    FakeReader second;
    {
        const ReaderPtr pair(std::make_unique<SyncReader>(first.get(), &second).release());
        void* found = nullptr;
        EXPECT_EQ(pair->QueryInterface(IID_IDataReader, &found), S_OK);
        EXPECT_EQ(found, pair.get());
        EXPECT_EQ(pair->QueryInterface(IID_IUnknown, nullptr), E_NOINTERFACE);
        ASSERT_TRUE(pair->open("a"));
        member->takeCalls();
        second.takeCalls();
    }
    EXPECT_THAT(member->takeCalls(), ElementsAre("close"));
    EXPECT_THAT(second.takeCalls(), ElementsAre("close"));
    EXPECT_FALSE(destroyed);
    EXPECT_TRUE(first->open("a")) << "a host goes on with the member";
    first = ReaderPtr();
    EXPECT_TRUE(destroyed);
}

} // namespace
} // namespace kvsig::test
