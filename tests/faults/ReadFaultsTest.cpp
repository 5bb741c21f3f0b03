#include "compliance/RowFixture.h"
#include "faults/Faults.h"
#include "kvsig/kernel/ClientEvent.h"
#include "support/ChannelFacts.h"
#include "support/LogCapture.h"
#include "support/ReadAround.h"

#include <deque>

namespace kvsig::test {
namespace {

std::vector<ReaderRow> fileRows() {
    std::vector<ReaderRow> all;
    for (const auto& rows : {edfRows(), rawRows(), flatRows()})
        std::copy_if(rows.begin(), rows.end(), std::back_inserter(all), [](const auto& row) {
            return !dynamic_cast<PushableReader*>(row.reader().get());
        });
    return all;
}

class ReadFaultsOf : public RowFixture {
  protected:
    [[nodiscard]] Counts all(DataReader& reader, int channel = 0) const {
        return rawOf(reader, channel, 0, file.storedSampleCount - 1);
    }
};

TEST_P(ReadFaultsOf, InterruptedAndShortReadsGiveTheSameSamples) {
    for (const FaultPlan& plan : {FaultPlan{.interrupts = true}, FaultPlan{.longestTransfer = 7},
                                  FaultPlan{.longestTransfer = 1, .interrupts = true}}) {
        const ReadFaults faults(plan);
        EXPECT_EQ(all(*openedReader()), expected(0, 0, file.storedSampleCount - 1));
    }
}

// Whichever read of the header fails, alone or with all behind it: the recording is refused in a
// sentence, or nothing else than what the file says is shown.
TEST_P(ReadFaultsOf, AHeaderThatCannotBeReadIsRefusedInWords) {
    int reads = 0;
    {
        const ReadFaults faults({});
        EXPECT_TRUE(newReader()->open(path.c_str()));
        reads = ReadFaults::calls();
    }
    const auto sound = openedReader();
    for (int i = 0; i < 2 * reads; ++i) {
        const int call = i / 2;
        SCOPED_TRACE(call);
        const auto reader = newReader();
        bool opened = false;
        {
            const ReadFaults faults({.failFrom = call, .failures = i % 2 == 0 ? 1 : 1 << 30});
            opened = reader->open(path.c_str());
            readAround(*reader);
        }
        if (!opened) {
            EXPECT_GT(std::string(reader->lastErrorText()).size(), path.size() + 2);
            continue;
        }
        reader->flushPages(false);
        ASSERT_EQ(reader->sampleCount(), sound->sampleCount());
        ASSERT_EQ(reader->samplingRate(), sound->samplingRate());
        for (const double time : {0.0, sound->duration()})
            ASSERT_EQ(reader->getClockTime(time), sound->getClockTime(time));
        for (int c = 0; c < file.channels; ++c) {
            ASSERT_EQ(factsOf(*reader, c), factsOf(*sound, c));
            ASSERT_EQ(all(*reader, c), all(*sound, c));
        }
    }
}

TEST_P(ReadFaultsOf, EventsThatCannotBeReadAreLogged) {
    const auto reader = openedReader();
    int sound = 0;
    for (int call = -1, reads = 0; call < reads; ++call) {
        const ReadFaults faults({.failFrom = call, .failures = 1});
        LogCapture log;
        std::deque<ClientEvent> events;
        const int count = reader->readEvents(events);
        if (call < 0) {
            reads = ReadFaults::calls();
            sound = count;
        }
        EXPECT_EQ(count != sound, !log.take(logWarning).empty()) << call;
    }
}

TEST_P(ReadFaultsOf, SamplesThatCannotBeReadAreZerosUntilTheyCan) {
    const auto reader = openedReader();
    const Counts sound = all(*reader);
    for (const int first : {0, 1, 3}) {
        reader->flushPages(false);
        const ReadFaults faults({.failFrom = first});
        const Counts damaged = all(*reader);
        for (std::size_t i = 0; i < damaged.size(); ++i)
            ASSERT_TRUE(damaged[i] == sound[i] || damaged[i] == 0) << i << " is a stale value";
    }
    reader->flushPages(false);
    EXPECT_EQ(all(*reader), sound);
}

INSTANTIATE_TEST_SUITE_P(Formats, ReadFaultsOf, testing::ValuesIn(fileRows()), rowName);

} // namespace
} // namespace kvsig::test
