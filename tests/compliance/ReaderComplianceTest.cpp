#include "compliance/RowFixture.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/LogSink.h"
#include "support/ChannelFacts.h"
#include "support/LogCapture.h"
#include "support/ReadAround.h"
#include "support/SameSamples.h"

#include <climits>
#include <deque>
#include <random>
#include <set>
#include <string_view>

namespace kvsig::test {
namespace {

class ReaderCompliance : public RowFixture {
  protected:
    const std::unique_ptr<DataReader> reader = openedReader();
};

TEST_P(ReaderCompliance, TellsTheFactsOfTheRecording) {
    EXPECT_EQ(reader->channelCount(), file.channels);
    EXPECT_EQ(reader->samplingRate(), file.samplingRate);
    EXPECT_EQ(reader->sampleCount(), file.sampleCount);
    EXPECT_EQ(reader->maxDataIndex(), file.sampleCount - 1);
    EXPECT_EQ(reader->storedSampleCount(), file.storedSampleCount);
    EXPECT_DOUBLE_EQ(reader->duration(), static_cast<double>(file.sampleCount) / file.samplingRate);
    EXPECT_EQ(reader->fileName(), path);
    EXPECT_EQ(reader->partFileName(0), path);
    EXPECT_EQ(reader->miscFlags(), GetParam().miscFlags);
    EXPECT_EQ(reader->getLastError(), 0);
    EXPECT_STREQ(reader->lastErrorText(), "");
}

TEST_P(ReaderCompliance, TheFrontDoorOpensItByItsType) {
    const int type = GetParam().type;
    std::string door = path;
    if (!file.attributes.empty()) {
        const std::string head = "[FileInfo]\nFile=stored.raw\n";
        ASSERT_TRUE(file.attributes.starts_with(head));
        door = dir.write("a.lay", "[FileInfo]\nFile=" + file.fileName +
                                      "\nFileType=" + typeNameOf(type) + "\n" +
                                      file.attributes.substr(head.size()));
    }
    std::string error;
    const ReaderPtr opened = openReader(door.c_str(), door == path ? type : 0, &error);
    ASSERT_TRUE(opened) << error;
    EXPECT_EQ(opened->fileType(), type);
    EXPECT_EQ(opened->fileName(), path);
    EXPECT_EQ(opened->sampleCount(), file.sampleCount);
    EXPECT_TRUE(openReader(door.c_str())); // and by its content
}

TEST_P(ReaderCompliance, AFreshReaderAnswersEveryCall) {
    const std::unique_ptr<DataReader> fresh = GetParam().reader();
    callEverySlot(*fresh);
    EXPECT_FALSE(fresh->readSampleInfo());
    EXPECT_EQ(fresh->sampleCount(), 0);
}

TEST_P(ReaderCompliance, ClosesTwiceAndReopens) {
    const Counts before = rawOf(*reader, 0, 0, 99);
    for (int round = 0; round < 3; ++round) {
        reader->close();
        reader->close();
        readAround(*reader);
        EXPECT_FALSE(reader->open(dir.file("missing").c_str()));
        EXPECT_EQ(reader->getLastError(), 1);
        ASSERT_TRUE(reader->open(path.c_str()));
        EXPECT_EQ(reader->getLastError(), 0);
        ASSERT_TRUE(reader->open(path.c_str())) << "without closing";
        EXPECT_EQ(rawOf(*reader, 0, 0, 99), before);
        EXPECT_EQ(reader->sampleTimeCount(), file.pause > 0 ? 2 : 1);
    }
}

TEST_P(ReaderCompliance, GettersAnswerNothingOutOfRange) {
    const std::string outside = "|||0|0||0|0|0|0|0|0|" + std::to_string(file.sampleCount);
    for (const int channel : {INT_MIN, -1, file.channels, file.channels + 1, INT_MAX}) {
        EXPECT_EQ(factsOf(*reader, channel), outside);
        EXPECT_EQ(reader->dcOffset(channel), 0.0) << channel;
        EXPECT_EQ(reader->storedSamplingRate(channel), 0.0) << channel;
        EXPECT_EQ(rawOf(*reader, channel, 0, 2), Counts(3, 0)) << channel;
    }
    for (int channel = 0; channel < file.channels; ++channel) {
        EXPECT_STRNE(reader->channelName(channel), "");
        EXPECT_STRNE(reader->grid1(channel), "");
        EXPECT_NE(reader->calibration(channel), 0.0);
        EXPECT_NE(reader->digitalHigh(channel), reader->digitalLow(channel));
        EXPECT_GT(reader->storedSamplingRate(channel), 0.0);
        EXPECT_LE(reader->storedSamplingRate(channel), reader->samplingRate());
    }
}

TEST_P(ReaderCompliance, EveryWayOfReadingGivesTheMakersSamples) {
    const long last = file.sampleCount - 1;
    ASSERT_GT(last, 2 * reader->getPagePts()) << "the sample must span several pages";
    for (const int maxPages : {15, 1, 2, 3}) {
        reader->flushPages(false);
        reader->setMaxPages(static_cast<short>(maxPages));
        for (int channel = 0; channel < file.channels; ++channel) {
            const Counts all = expected(channel, 0, last);
            ASSERT_EQ(rawOf(*reader, channel, 0, last), all) << channel;
            for (long i = last; i >= 0; i -= 7) // single samples, backward
                ASSERT_EQ(rawOf(*reader, channel, i, i), expected(channel, i, i)) << i;
            for (long first = 0; first <= last; first += 61) // blocks that cross chunks and pages
                ASSERT_EQ(rawOf(*reader, channel, first, first + 60),
                          expected(channel, first, first + 60));
            for (const long i : {last, 0L, last / 2, last - 1, 1L}) // far jumps
                ASSERT_EQ(rawOf(*reader, channel, i, i), expected(channel, i, i)) << i;
        }
    }
}

TEST_P(ReaderCompliance, EveryPathToASampleGivesTheSameBits) {
    const std::unique_ptr<DataReader> framed = prepared(GetParam().framedReader());
    ASSERT_TRUE(framed->open(path.c_str()));
    expectSameSamples(*reader, *framed, 1000);

    G1G2Source cached(*reader, 0, -1), plain(*framed, 0, -1);
    plain.setUseCache(false);
    for (long first = -20; first < file.sampleCount; first += 33) {
        std::vector<float> block(60), samePlain(60);
        cached.getData(first, first + 59, block.data(), 1.0);
        plain.getData(first, first + 59, samePlain.data(), 1.0);
        ASSERT_EQ(block, samePlain) << first;
    }
}

TEST_P(ReaderCompliance, RangesAreInclusiveAndOutsideThemAreZeros) {
    const long last = file.sampleCount - 1;
    EXPECT_EQ(rawOf(*reader, 0, -5, 3), expected(0, -5, 3));
    EXPECT_EQ(rawOf(*reader, 0, last - 3, last + 5), expected(0, last - 3, last + 5));
    EXPECT_EQ(rawOf(*reader, 0, -3, last + 3), expected(0, -3, last + 3));
    constexpr long far = std::numeric_limits<long>::max();
    for (const long first : {-9L, last + 1, far - 9, -far})
        EXPECT_EQ(rawOf(*reader, 0, first, first + 8), Counts(9, 0)) << first;

    float untouched = 42.0F;
    const struct {
        long first, last;
    } empty[] = {{1, 0}, {0, -1}, {last + 1, last}, {far, -far}, {5, -5}, {-far, far}};
    for (const auto& range : empty) {
        EXPECT_EQ(reader->getData(0, range.first, range.last, &untouched, 1.0, 0), 0);
        EXPECT_EQ(reader->getRawData(0, range.first, range.last, nullptr), 0);
    }
    EXPECT_EQ(untouched, 42.0F);
    EXPECT_EQ(reader->getData(0, last, last, &untouched, 1.0, 0), 1);
    EXPECT_NE(untouched, 42.0F);
}

TEST_P(ReaderCompliance, ChunksOutsideTheRecordingHoldNothing) {
    const auto values = static_cast<std::size_t>(reader->chunkPts() * file.channels);
    std::vector<short> frames(values * static_cast<std::size_t>(reader->bytesPerSample()) / 2);
    EXPECT_EQ(reader->getSampleChunk(0, frames.data()), reader->chunkPts());
    constexpr long far = std::numeric_limits<long>::max();
    const long end = file.chunkEnd > 0 ? file.chunkEnd : file.sampleCount;
    for (const long first : {end, far, far / 2, -far, -10L * reader->chunkPts()})
        EXPECT_EQ(reader->getSampleChunk(first, frames.data()), 0) << first;
}

TEST_P(ReaderCompliance, ValuesFollowFromCountsAndCalibration) {
    for (int channel = 0; channel < file.channels; ++channel) {
        const Counts raw = rawOf(*reader, channel, 0, file.sampleCount - 1);
        const std::vector<float> values = valuesOf(*reader, channel, 0, file.sampleCount - 1, 0.5);
        const double low = reader->physioLow(channel), high = reader->physioHigh(channel);
        const double first = reader->digitalLow(channel), end = reader->digitalHigh(channel);
        for (std::size_t i = 0; i < raw.size(); ++i) {
            const double linear = (raw[i] - first) / (end - first) * (high - low) + low;
            const double value = reader->channelType(channel) == 100 ? linear : raw[i];
            EXPECT_FLOAT_EQ(values[i],
                            static_cast<float>(value * reader->calibration(channel) / 2));
        }
    }
}

// Whatever is missing: it is told, or what opens can be read to its end.
TEST_P(ReaderCompliance, TruncatedFilesAreToldOrRead) {
    std::set<std::size_t> lengths = {file.bytes.size() - 1};
    for (const std::size_t boundary : file.boundaries)
        lengths.insert({boundary, boundary + 1, boundary - (boundary > 0)});
    const std::size_t header = file.boundaries.back();
    const std::size_t step = std::max<std::size_t>(37, header / 256);
    for (std::size_t length = 0; length < file.bytes.size(); length += length < header ? step : 331)
        lengths.insert(length);
    for (const std::size_t length : lengths) {
        SCOPED_TRACE(length);
        const std::string cut = dir.write("cut", std::string_view(file.bytes).substr(0, length));
        const auto other = newReader();
        const bool opened = other->open(cut.c_str());
        static_cast<void>(other->inspectFile());
        if (!opened) {
            EXPECT_THAT(other->getLastError(), testing::AnyOf(1, 2, 3));
            EXPECT_THAT(other->lastErrorText(), StartsWith(cut + ": "));
            EXPECT_GT(std::string(other->lastErrorText()).size(), cut.size() + 10);
            continue;
        }
        EXPECT_GT(length, header);
        EXPECT_EQ(other->getLastError(), 0);
        EXPECT_LE(other->storedSampleCount(), other->sampleCount());
        for (int channel = 0; channel < file.channels; ++channel) {
            Counts whole = expected(channel, 0, other->storedSampleCount() - 1);
            whole.resize(static_cast<std::size_t>(other->sampleCount()), 0);
            ASSERT_EQ(rawOf(*other, channel, 0, other->sampleCount() - 1), whole);
        }
    }
}

// The recording is the seed of damaged ones: whatever a field says, it is told or read around.
TEST_P(ReaderCompliance, DamagedFilesAreToldOrRead) {
    std::minstd_rand next(1);
    const auto damage = [&next](std::string text, std::size_t length) {
        constexpr std::string_view bytes("\0\xFF\x80 -.09=[\nzE", 14);
        for (int hits = 1 + static_cast<int>(next() % 4); hits > 0 && length > 0; --hits)
            text[next() % length] = bytes[next() % bytes.size()];
        return text;
    };
    const std::size_t header = std::min(file.boundaries.back() + 64, file.bytes.size());
    int opened = 0;
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const auto other = GetParam().reader();
        readAttributes(*other, damage(file.attributes, file.attributes.size()));
        const std::string damaged = dir.write("damaged", damage(file.bytes, header));
        if (other->open(damaged.c_str())) {
            ++opened;
            readAround(*other);
        } else {
            EXPECT_GT(std::string(other->lastErrorText()).size(), damaged.size() + 10);
        }
        static_cast<void>(other->inspectFile());
    }
    EXPECT_GT(opened, 30);
}

// One that is there and does not open may name channels, scale them or place events.
TEST_P(ReaderCompliance, CompanionsThatDoNotOpenAreTold) {
    for (const auto& [name, bytes] : file.companions) {
        fs::remove(dir.file(name));
        fs::create_symlink("nowhere", dir.file(name));
        const auto other = newReader();
        if (other->open(path.c_str()) &&
            other->openFindings().size() == reader->openFindings().size()) {
            LogCapture log;
            std::deque<ClientEvent> events;
            other->readEvents(events);
            EXPECT_THAT(log.take(logWarning), Contains(HasSubstr("no such file"))) << name;
        }
        fs::remove(dir.file(name));
        dir.write(name, bytes);
    }
}

TEST_P(ReaderCompliance, TwoReadersOfOneFileDoNotDisturbEachOther) {
    const auto other = openedReader();
    const std::string name = reader->channelName(0);
    for (long i = 0; i < file.sampleCount; i += 37) {
        const long mirrored = file.sampleCount - 1 - i;
        ASSERT_EQ(rawOf(*reader, 0, i, i), expected(0, i, i));
        ASSERT_EQ(rawOf(*other, file.channels - 1, mirrored, mirrored),
                  expected(file.channels - 1, mirrored, mirrored));
    }
    other->close();
    reader->flushPages(false);
    EXPECT_EQ(rawOf(*reader, 0, 5, 5), expected(0, 5, 5));
    EXPECT_EQ(reader->channelName(0), name);
}

TEST_P(ReaderCompliance, ClockAndElapsedTimeAreInverse) {
    EXPECT_DOUBLE_EQ(reader->getClockTime(0.0), file.startClock);
    for (const double elapsed : {0.0, 0.125, 1.0, 20.0, reader->duration()}) {
        const double clock =
            file.startClock + elapsed + (elapsed >= file.pauseAt ? file.pause : 0.0);
        EXPECT_DOUBLE_EQ(reader->getClockTime(elapsed), clock);
        EXPECT_DOUBLE_EQ(reader->getElapsedTime(clock), elapsed);
    }
}

INSTANTIATE_TEST_SUITE_P(Edf, ReaderCompliance, testing::ValuesIn(edfRows()), rowName);
INSTANTIATE_TEST_SUITE_P(Raw, ReaderCompliance, testing::ValuesIn(rawRows()), rowName);
INSTANTIATE_TEST_SUITE_P(Flat, ReaderCompliance, testing::ValuesIn(flatRows()), rowName);

} // namespace
} // namespace kvsig::test
