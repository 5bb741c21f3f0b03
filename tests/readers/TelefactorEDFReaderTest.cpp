#include "kvsig/readers/TelefactorEDFReader.h"

#include "support/Opened.h"

#include <gtest/gtest.h>

namespace kvsig {
namespace {

using test::EdfFile;
using Telefactor = test::Opened<TelefactorEDFReader>;

TEST(TelefactorEDFReader, NamesAreTheFirstWordOfTheLabel) {
    const struct {
        const char *label, *name, *grid1, *grid2;
    } cases[] = {
        {"Fp1     EEG", "Fp1", "Fp1", ""},
        {"   C3-A2 x", "C3-A2", "C3", "A2"},
        {"EEG Fp1-Ref", "EEG", "EEG", ""},
        {"", "", "1", ""},
        {"0123456789abcdef", "0123456789abcdef", "0123456789abcde", ""},
    };
    for (const auto& c : cases) {
        Telefactor reader(EdfFile().signal(c.label, 4));
        ASSERT_TRUE(reader.isOpen);
        EXPECT_STREQ(reader.channelName(0), c.name) << c.label;
        EXPECT_STREQ(reader.grid1(0), c.grid1) << c.label;
        EXPECT_STREQ(reader.grid2(0), c.grid2) << c.label;
    }
}

// Names go by the file signal of the same number, everything else by the channel.
TEST(TelefactorEDFReader, HiddenSignalsAreNotSkippedForNames) {
    EdfFile file = EdfFile().signal("EDF Annotations", 4).signal("Fp1 EEG", 4).units("mV");
    file.signal("Fp2 EEG", 4).reserved("EDF+C");
    Telefactor reader(file);
    ASSERT_EQ(reader.channelCount(), 2);
    EXPECT_STREQ(reader.channelName(0), "EDF");
    EXPECT_STREQ(reader.channelName(1), "Fp1");
    EXPECT_STREQ(reader.channelUnits(0), "mV");
    EXPECT_EQ(test::rawOf(reader, 1, 3, 3).front(), file.sample(2, 3));
}

} // namespace
} // namespace kvsig
