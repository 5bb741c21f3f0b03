#include "kvsig/readers/EdfHeader.h"

#include "kvsig/readers/HeaderBlock.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace kvsig {
namespace {

HeaderBlock blockOf(const std::string& text) {
    std::vector<std::byte> bytes;
    for (const char c : text)
        bytes.push_back(static_cast<std::byte>(c));
    return HeaderBlock(bytes);
}

edf::Header headerOf(const test::EdfFile& file) { return edf::Header(blockOf(file.bytes())); }

TEST(HeaderBlock, FieldsEndAtTheirWidthAtANulAndWithoutTrailingBlanks) {
    constexpr std::int64_t far = std::numeric_limits<std::int64_t>::max();
    const HeaderBlock block = blockOf(std::string("  a b   |x\0y   |tail ", 21));
    const struct {
        std::int64_t offset;
        int width;
        const char* text;
    } cases[] = {
        {0, 8, "  a b"}, {0, 9, "  a b   |"}, {3, 4, " b"}, {0, 2, ""},    {9, 6, "x"},
        {16, 4, "tail"}, {16, 99, "tail"},    {20, 8, ""},  {21, 8, ""},   {far, 8, ""},
        {-1, 8, ""},     {0, 0, ""},          {0, -5, ""},  {-far, 8, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(readHeaderField(block, c.offset, c.width), c.text) << c.offset << "," << c.width;
}

TEST(HeaderBlock, HoldsNoMoreThanTheFileDoes) {
    const test::TempDir dir;
    File file;
    ASSERT_TRUE(file.open(dir.write("short", "0123456789").c_str()));
    EXPECT_EQ(HeaderBlock::readFrom(file, 4).bytes().size(), 4U);
    EXPECT_EQ(HeaderBlock::readFrom(file, std::int64_t{1} << 60).bytes().size(), 10U);
    EXPECT_EQ(HeaderBlock::readFrom(file, -1).bytes().size(), 0U);
}

// Every byte of a field's place is marked; the neighbours are not.
TEST(EdfHeader, FieldsStandWhereTheFormatPutsThem) {
    const struct {
        edf::Field field;
        std::size_t offset, width;
    } fixed[] = {
        {edf::version, 0, 8},       {edf::patientId, 8, 80},       {edf::recordingId, 88, 80},
        {edf::startDate, 168, 8},   {edf::startTime, 176, 8},      {edf::headerLength, 184, 8},
        {edf::recordCount, 236, 8}, {edf::recordDuration, 244, 8},
    };
    test::EdfFile three;
    three.signal("a", 2).signal("b", 2).signal("c", 2);
    for (const auto& c : fixed) {
        const std::string mark(c.width, '7');
        EXPECT_EQ(headerOf(test::EdfFile(three).poke(c.offset, mark)).text(c.field), mark)
            << c.offset;
    }
    const struct {
        edf::SignalField field;
        std::size_t column, width; // the column's offset for three signals
    } perSignal[] = {
        {edf::label, 256, 16},
        {edf::units, 256 + 96 * 3, 8},
        {edf::physicalMin, 256 + 104 * 3, 8},
        {edf::physicalMax, 256 + 112 * 3, 8},
        {edf::digitalMin, 256 + 120 * 3, 8},
        {edf::digitalMax, 256 + 128 * 3, 8},
        {edf::samplesPerRecord, 256 + 216 * 3, 8},
    };
    for (const auto& c : perSignal) {
        const std::size_t offset = c.column + 2 * c.width;
        const std::string mark(c.width, '7');
        const edf::Header header = headerOf(test::EdfFile(three).poke(offset, mark));
        EXPECT_EQ(header.text(c.field, 2), mark) << c.column;
        EXPECT_NE(header.text(c.field, 1), mark) << c.column;
        EXPECT_EQ(header.offsetOf(c.field, 2), static_cast<std::int64_t>(offset));
    }
    EXPECT_EQ(edf::fullLength(3), 1024);
}

TEST(EdfHeader, TheReservedFieldTellsTheKind) {
    const struct {
        const char* reserved;
        edf::Kind kind;
    } cases[] = {
        {"", edf::Kind::plain},
        {"EDF+C", edf::Kind::continuous},
        {"EDF+D", edf::Kind::interrupted},
        {"edf+c", edf::Kind::plain},
        {"BDF+C", edf::Kind::plain},
    };
    for (const auto& c : cases)
        EXPECT_EQ(headerOf(test::EdfFile().signal("a", 2).reserved(c.reserved)).kind(), c.kind)
            << c.reserved;
}

TEST(EdfHeader, AnnotationSignalsAreNoChannelsInEdfPlusOnly) {
    test::EdfFile file;
    file.signal("EDF Annotations", 7).signal("a", 2).signal("edf annotations", 3);
    file.signal("EDF Annotations", 5).signal("EDF Annotations2", 2);
    using Signals = std::vector<std::int64_t>;
    const edf::Header plain = headerOf(file);
    EXPECT_EQ(plain.channels(), (Signals{0, 1, 2, 3, 4}));
    const edf::Header plus = headerOf(file.reserved("EDF+C"));
    EXPECT_EQ(plus.channels(), (Signals{1, 2, 4}));
    EXPECT_EQ(plus.fileSignals(), 5);
    EXPECT_EQ(plus.signalSamples(), (Signals{7, 2, 3, 5, 2}));
    EXPECT_EQ(plus.recordSamples(), 19);
}

TEST(EdfHeader, NumbersAreReadAsFarAsTheyGo) {
    const struct {
        const char* text; // 8 characters
        std::int64_t number;
        double real;
    } cases[] = {
        {"  +7 9  ", 7, 7},
        {"        ", 0, 0},
        {"1.5e3   ", 1, 1500},
        {"99999999", 99999999, 99999999},
        {"0x10    ", 0, 0},
        {"nan     ", 0, 0},
        {"9e999   ", 9, std::numeric_limits<double>::infinity()},
    };
    for (const auto& c : cases) {
        const edf::Header header = headerOf(test::EdfFile()
                                                .signal("a", 2)
                                                .poke(184, c.text)
                                                .poke(244, c.text)
                                                .poke(256 + 216, c.text));
        EXPECT_EQ(header.dataOffset(), c.number) << c.text;
        EXPECT_EQ(header.recordSamples(), c.number) << c.text;
        EXPECT_EQ(header.duration(), c.real) << c.text;
    }
}

} // namespace
} // namespace kvsig
