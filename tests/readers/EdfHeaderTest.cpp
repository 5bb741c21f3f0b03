#include "kvsig/readers/EdfHeader.h"

#include "kvsig/readers/HeaderBlock.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

namespace kvsig::test {
namespace {

HeaderBlock blockOf(const std::string& text) {
    std::vector<std::byte> bytes;
    for (const char c : text)
        bytes.push_back(static_cast<std::byte>(c));
    return HeaderBlock(bytes);
}

edf::Header headerOf(const EdfFile& file) { return edf::Header(blockOf(file.bytes())); }

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
    const TempDir dir;
    File file;
    ASSERT_TRUE(file.open(dir.write("short", "0123456789").c_str()));
    EXPECT_EQ(HeaderBlock::readFrom(file, 4).bytes().size(), 4U);
    EXPECT_EQ(HeaderBlock::readFrom(file, std::int64_t{1} << 60).bytes().size(), 10U);
    EXPECT_EQ(HeaderBlock::readFrom(file, -1).bytes().size(), 0U);
}

TEST(EdfHeader, AnnotationSignalsAreNoChannelsInEdfPlusOnly) {
    EdfFile file;
    file.signal("EDF Annotations", 7).signal("a", 2).signal("edf annotations", 3);
    file.signal("EDF Annotations", 5).signal("EDF Annotations2", 2);
    using Signals = std::vector<std::int64_t>;
    for (const char* reserved : {"", "edf+c", "BDF+C"})
        EXPECT_EQ(headerOf(file.reserved(reserved)).channels(), (Signals{0, 1, 2, 3, 4}));
    const edf::Header plus = headerOf(file.reserved("EDF+C"));
    EXPECT_EQ(plus.channels(), (Signals{1, 2, 4}));
    EXPECT_EQ(plus.fileSignals(), 5);
    EXPECT_EQ(plus.signalSamples(), (Signals{7, 2, 3, 5, 2}));
    EXPECT_EQ(plus.recordSamples(), 19);
}

} // namespace
} // namespace kvsig::test
