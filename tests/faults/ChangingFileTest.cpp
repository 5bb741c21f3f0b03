#include "compliance/ReaderRow.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/InterleavedReader.h"
#include "support/EdfFile.h"
#include "support/Opened.h"
#include "support/RawFile.h"
#include "support/ReadAround.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

// Files that change while they are open.
namespace kvsig {
namespace {

namespace fs = std::filesystem;
using test::rawOf;

constexpr int perRecord = 16;

// Two channels at 16 Hz, as EDF or as raw data.
struct Kind {
    const char* name;
    std::string bytes;
    std::size_t header;
    std::string attributes;
    std::unique_ptr<DataReader> (*make)();
};

std::int32_t value(int channel, std::int64_t index) {
    return static_cast<std::int32_t>(1 + channel + 2 * index % 3001);
}

Kind edf() {
    test::EdfFile file;
    file.signal("EEG C3", perRecord).signal("EEG C4", perRecord).records(40).samples(value);
    return {"Edf", file.bytes(), file.headerLength(), "",
            []() -> std::unique_ptr<DataReader> { return std::make_unique<EDF90Reader>(); }};
}

Kind raw() {
    test::RawFile file;
    file.channels(2).frames(40L * perRecord).headerLength(16).rate("16");
    return {"Raw", file.bytes(), 16, file.attributes(),
            []() -> std::unique_ptr<DataReader> { return std::make_unique<InterleavedReader>(); }};
}

void PrintTo(const Kind& kind, std::ostream* stream) { *stream << kind.name; }

class ChangingFile : public testing::TestWithParam<Kind> {
  protected:
    static constexpr std::size_t secondBytes = 2 * 2 * perRecord;

    void resize(std::size_t seconds) const {
        std::ofstream(path, std::ios::binary | std::ios::trunc)
            << GetParam().bytes.substr(0, GetParam().header + seconds * secondBytes);
    }
    static void describe(DataReader& reader) {
        std::istringstream attributes(GetParam().attributes);
        EXPECT_EQ(reader.readAttributeFile(attributes), !GetParam().attributes.empty());
    }
    void openWith(std::size_t seconds) {
        resize(seconds);
        describe(*reader);
        ASSERT_TRUE(reader->open(path.c_str())) << reader->lastErrorText();
        ASSERT_EQ(reader->sampleCount(), static_cast<long>(seconds) * perRecord);
    }
    // The counts of both channels from second `from` up to second `to`.
    [[nodiscard]] std::vector<std::int32_t> seconds(DataReader& which, long from, long to) const {
        auto counts = rawOf(which, 0, from * perRecord, to * perRecord - 1);
        const auto second = rawOf(which, 1, from * perRecord, to * perRecord - 1);
        counts.insert(counts.end(), second.begin(), second.end());
        return counts;
    }
    // A reader of the whole recording, to compare with.
    [[nodiscard]] std::vector<std::int32_t> written(long from, long to) const {
        const test::TempDir other;
        const auto whole = GetParam().make();
        describe(*whole);
        EXPECT_TRUE(whole->open(other.write("whole", GetParam().bytes).c_str()));
        return seconds(*whole, from, to);
    }
    [[nodiscard]] static std::vector<std::int32_t> zeros(long from, long to) {
        return std::vector<std::int32_t>(static_cast<std::size_t>(2 * (to - from) * perRecord), 0);
    }

    const test::TempDir dir;
    const std::string path = dir.file("changing");
    const std::unique_ptr<DataReader> reader = GetParam().make();
};

TEST_P(ChangingFile, WhatIsCutOffReadsAsZeros) {
    openWith(40);
    EXPECT_EQ(seconds(*reader, 5, 10), written(5, 10));
    resize(12);
    EXPECT_EQ(seconds(*reader, 5, 10), written(5, 10)) << "kept";
    EXPECT_EQ(seconds(*reader, 20, 40), zeros(20, 40));
    reader->flushPages(false);
    EXPECT_EQ(seconds(*reader, 0, 12), written(0, 12));
    resize(0);
    reader->flushPages(false);
    EXPECT_EQ(seconds(*reader, 0, 40), zeros(0, 40));
    test::readAround(*reader);
    EXPECT_FALSE(reader->open(path.c_str()));
    EXPECT_EQ(reader->getLastError(), 2);
}

// The way to follow a recording that is still being written: readSampleInfo() takes its length
// anew, flushPages(true) lets go of the page that ended with the old one.
TEST_P(ChangingFile, AGrownRecordingIsFollowed) {
    openWith(12);
    EXPECT_EQ(seconds(*reader, 10, 15), [&] {
        auto counts = written(10, 12);
        auto expected = zeros(10, 15);
        for (std::size_t c = 0; c < 2; ++c)
            std::copy_n(counts.begin() + static_cast<long>(c) * 2 * perRecord, 2 * perRecord,
                        expected.begin() + static_cast<long>(c) * 5 * perRecord);
        return expected;
    }());
    resize(33);
    EXPECT_EQ(reader->sampleCount(), 12 * perRecord) << "not before it is asked to";
    reader->flushPages(true);
    EXPECT_EQ(seconds(*reader, 10, 15), written(10, 15)) << "the page that was not full";
    EXPECT_EQ(seconds(*reader, 15, 33), zeros(15, 33)) << "behind the known length";
    for (const std::size_t length : {33U, 34U, 40U}) {
        resize(length);
        ASSERT_TRUE(reader->readSampleInfo());
        reader->flushPages(true);
        EXPECT_EQ(reader->sampleCount(), static_cast<long>(length) * perRecord);
        EXPECT_EQ(seconds(*reader, 0, static_cast<long>(length)),
                  written(0, static_cast<long>(length)));
    }
    EXPECT_EQ(reader->sampleTimeCount(), 1);
}

TEST_P(ChangingFile, ADisappearedFileIsReadOnAndDoesNotOpenAgain) {
    openWith(40);
    fs::remove(path);
    EXPECT_EQ(seconds(*reader, 0, 40), written(0, 40));
    EXPECT_FALSE(reader->open(path.c_str()));
    EXPECT_EQ(reader->getLastError(), 1);
    EXPECT_STREQ(reader->lastErrorText(), (path + ": no such file").c_str());
    EXPECT_EQ(seconds(*reader, 0, 40), zeros(0, 40));
    resize(40);
    ASSERT_TRUE(reader->open(path.c_str()));
    EXPECT_EQ(seconds(*reader, 0, 40), written(0, 40));
}

// Writers that replace a file leave the old one to those who have it open.
TEST_P(ChangingFile, AReplacedFileIsReadOnAsItWas) {
    openWith(40);
    const std::string other = dir.write("new", std::string(GetParam().bytes.size(), '1'));
    fs::rename(other, path);
    EXPECT_EQ(seconds(*reader, 0, 40), written(0, 40));
}

class ShrinkingRecording : public testing::TestWithParam<test::ReaderRow> {};

TEST_P(ShrinkingRecording, ShowsWhatIsThereAndZeros) {
    const test::TempDir dir;
    const test::SampleRecording file = GetParam().sample();
    const std::string path = file.writeTo(dir);
    const auto reader = GetParam().reader();
    ASSERT_TRUE(reader->open(path.c_str()));
    const auto all = [&] {
        reader->flushPages(false);
        return rawOf(*reader, file.channels - 1, 0, file.sampleCount - 1);
    };
    const auto sound = all();
    const std::size_t header = file.boundaries.back();
    const std::vector<std::int32_t> zeros(sound.size(), 0);
    fs::resize_file(path, header + (file.bytes.size() - header) * 3 / 4);
    const auto cut = all();
    for (std::size_t i = 0; i < sound.size(); ++i)
        ASSERT_TRUE(cut[i] == sound[i] || (i > sound.size() / 2 && cut[i] == 0)) << i;
    EXPECT_NE(cut, sound);
    fs::resize_file(path, header);
    EXPECT_EQ(all(), zeros);
    fs::resize_file(path, 0);
    EXPECT_EQ(all(), zeros);
    test::readAround(*reader);
    static_cast<void>(file.writeTo(dir));
    EXPECT_EQ(all(), sound) << "it is back";
    fs::resize_file(path, 0);
    EXPECT_FALSE(reader->open(path.c_str()));
}

INSTANTIATE_TEST_SUITE_P(Formats, ShrinkingRecording, testing::ValuesIn(test::flatRows()),
                         [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(Kinds, ChangingFile, testing::Values(edf(), raw()),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
} // namespace kvsig
