#pragma once

#include "compliance/ReaderRow.h"
#include "kvsig/readers/PushableReader.h"
#include "support/Opened.h"

namespace kvsig::test {

using Counts = std::vector<std::int32_t>;

/// Tests of a format by its row: the recording of the row lies in a folder of its own.
class RowFixture : public testing::TestWithParam<ReaderRow> {
  protected:
    /// Makes a reader ready to open recordings of this kind.
    [[nodiscard]] std::unique_ptr<DataReader> prepared(std::unique_ptr<DataReader> made) const {
        EXPECT_EQ(readAttributes(*made, file.attributes), !file.attributes.empty());
        if (auto* pushed = dynamic_cast<PushableReader*>(made.get()))
            pushed->addPart(path.c_str(), 1.0);
        return made;
    }
    [[nodiscard]] std::unique_ptr<DataReader> newReader() const {
        return prepared(GetParam().reader());
    }
    [[nodiscard]] std::unique_ptr<DataReader> openedReader() const {
        auto reader = newReader();
        EXPECT_TRUE(reader->open(path.c_str())) << reader->lastErrorText();
        return reader;
    }
    /// What the maker put there, by the rule of getData(): 0 where nothing is stored.
    [[nodiscard]] Counts expected(int channel, long first, long last) const {
        return expected(channel, first, last, file.storedSampleCount);
    }
    [[nodiscard]] Counts expected(int channel, long first, long last, long end) const {
        Counts counts;
        for (long i = first; i <= last; ++i)
            counts.push_back(i >= 0 && i < end ? file.raw(channel, i) : 0);
        return counts;
    }

    const TempDir dir;
    const SampleRecording file = GetParam().sample();
    const std::string path = file.writeTo(dir);
};

inline std::string rowName(const testing::TestParamInfo<ReaderRow>& row) { return row.param.name; }

} // namespace kvsig::test
