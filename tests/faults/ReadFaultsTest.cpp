#include "compliance/ReaderRow.h"
#include "faults/Faults.h"
#include "kvsig/readers/PushableReader.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace kvsig {
namespace {

using test::FaultPlan;
using test::rawOf;
using test::ReadFaults;

std::vector<test::ReaderRow> fileRows() {
    std::vector<test::ReaderRow> all;
    for (const auto& rows : {test::edfRows(), test::rawRows(), test::flatRows()})
        std::copy_if(rows.begin(), rows.end(), std::back_inserter(all), [](const auto& row) {
            return !dynamic_cast<PushableReader*>(row.reader().get());
        });
    return all;
}

class ReadFaultsOf : public testing::TestWithParam<test::ReaderRow> {
  protected:
    [[nodiscard]] std::unique_ptr<DataReader> newReader() const {
        auto reader = GetParam().reader();
        std::istringstream attributes(file.attributes);
        EXPECT_EQ(reader->readAttributeFile(attributes), !file.attributes.empty());
        return reader;
    }
    [[nodiscard]] std::vector<std::int32_t> all(DataReader& reader) const {
        return rawOf(reader, 0, 0, file.storedSampleCount - 1);
    }

    const test::TempDir dir;
    const test::SampleRecording file = GetParam().sample();
    const std::string path = file.writeTo(dir);
};

TEST_P(ReadFaultsOf, InterruptedAndShortReadsGiveTheSameSamples) {
    const auto undisturbed = newReader();
    ASSERT_TRUE(undisturbed->open(path.c_str()));
    for (const FaultPlan& plan : {FaultPlan{.interrupts = true}, FaultPlan{.longestTransfer = 7},
                                  FaultPlan{.longestTransfer = 1, .interrupts = true}}) {
        const ReadFaults faults(plan);
        const auto reader = newReader();
        ASSERT_TRUE(reader->open(path.c_str())) << reader->lastErrorText();
        EXPECT_EQ(all(*reader), all(*undisturbed));
    }
}

// Whichever read of the header fails: the recording is refused in a sentence, or what it says was
// read before.
TEST_P(ReadFaultsOf, AHeaderThatCannotBeReadIsRefusedInWords) {
    int reads = 0;
    {
        const ReadFaults faults({});
        ASSERT_TRUE(newReader()->open(path.c_str()));
        reads = ReadFaults::calls();
    }
    for (int call = 0; call < reads; ++call) {
        const ReadFaults faults({.failFrom = call});
        const auto reader = newReader();
        if (reader->open(path.c_str()))
            EXPECT_EQ(reader->channelCount(), file.channels) << call;
        else
            EXPECT_GT(std::string(reader->lastErrorText()).size(), path.size() + 2) << call;
        test::readAround(*reader);
    }
}

// One read alone fails: nothing else than what the file says is shown for it.
TEST_P(ReadFaultsOf, AFailureThatPassesShowsNothingElse) {
    const auto facts = [](DataReader& reader) {
        std::ostringstream all;
        all << reader.sampleCount() << ' ' << reader.samplingRate() << ' '
            << reader.getClockTime(0.0) << ' ' << reader.getClockTime(reader.duration());
        for (int c = 0; c < reader.channelCount(); ++c)
            all << '\n'
                << reader.channelName(c) << ',' << reader.channelUnits(c) << ','
                << reader.channelType(c) << ',' << reader.calibration(c) << ','
                << reader.physioLow(c) << ',' << reader.physioHigh(c) << ',' << reader.digitalLow(c)
                << ',' << reader.digitalHigh(c);
        return all.str();
    };
    const auto sound = newReader();
    ASSERT_TRUE(sound->open(path.c_str()));
    int reads = 0;
    {
        const ReadFaults faults({});
        ASSERT_TRUE(newReader()->open(path.c_str()));
        reads = ReadFaults::calls();
    }
    for (int call = 0; call < reads; ++call) {
        SCOPED_TRACE(call);
        const auto reader = newReader();
        {
            const ReadFaults faults({.failFrom = call, .failures = 1});
            if (!reader->open(path.c_str()))
                continue;
        }
        ASSERT_EQ(facts(*reader), facts(*sound));
        for (int c = 0; c < file.channels; ++c)
            ASSERT_EQ(rawOf(*reader, c, 0, file.sampleCount - 1),
                      rawOf(*sound, c, 0, file.sampleCount - 1));
    }
}

TEST_P(ReadFaultsOf, SamplesThatCannotBeReadAreZerosUntilTheyCan) {
    const auto reader = newReader();
    ASSERT_TRUE(reader->open(path.c_str()));
    const auto sound = all(*reader);
    for (const int first : {0, 1, 3}) {
        reader->flushPages(false);
        const ReadFaults faults({.failFrom = first});
        const auto damaged = all(*reader);
        ASSERT_EQ(damaged.size(), sound.size());
        for (std::size_t i = 0; i < damaged.size(); ++i)
            ASSERT_TRUE(damaged[i] == sound[i] || damaged[i] == 0) << i << " is a stale value";
    }
    reader->flushPages(false);
    EXPECT_EQ(all(*reader), sound);
}

INSTANTIATE_TEST_SUITE_P(Formats, ReadFaultsOf, testing::ValuesIn(fileRows()),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace kvsig
