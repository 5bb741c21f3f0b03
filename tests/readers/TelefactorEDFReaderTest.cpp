#include "kvsig/readers/TelefactorEDFReader.h"

#include "support/ChannelFacts.h"
#include "support/Opened.h"

namespace kvsig::test {
namespace {

using Telefactor = Opened<TelefactorEDFReader>;

TEST(TelefactorEDFReader, NamesAreTheFirstWordOfTheLabel) {
    for (const auto& [label, names] : {std::pair{"Fp1     EEG", "Fp1|Fp1|"},
                                       {"   C3-A2 x", "C3-A2|C3|A2"},
                                       {"EEG Fp1-Ref", "EEG|EEG|"},
                                       {"", "|1|"},
                                       {"0123456789abcdef", "0123456789abcdef|0123456789abcde|"}}) {
        Telefactor reader(EdfFile().signal(label, 4));
        EXPECT_EQ(namesOf(reader, 0), names);
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
    EXPECT_EQ(rawOf(reader, 1, 3, 3).front(), file.sample(2, 3));
}

} // namespace
} // namespace kvsig::test
