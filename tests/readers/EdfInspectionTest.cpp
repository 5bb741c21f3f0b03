#include "kvsig/readers/EdfInspection.h"

#include "kvsig/readers/EdfOnset.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig {
namespace {

using test::EdfFile;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class EdfInspection : public testing::Test {
  protected:
    std::vector<std::string> oddities(const EdfFile& file, int sampleBytes = 2) {
        const std::string path = dir.write("x", file.bytes());
        std::vector<std::string> texts;
        for (const OpenFinding& finding : edf::inspect(path, sampleBytes))
            texts.push_back(finding.text);
        return texts;
    }
    test::TempDir dir;
    EdfFile clean = EdfFile().signal("EEG C3-A2", 4).signal("Temp", 2).records(3);
};

TEST_F(EdfInspection, IsQuietOnCleanFiles) {
    EXPECT_THAT(oddities(clean), IsEmpty());
    EXPECT_THAT(oddities(EdfFile().bdf().signal("a", 4).records(3), 3), IsEmpty());
    EXPECT_THAT(edf::inspect(dir.file("absent"), 2), IsEmpty());
}

TEST_F(EdfInspection, TellsCountsAndLengthsThatDisagree) {
    EXPECT_THAT(oddities(EdfFile(clean).poke(236, "-1      ")),
                ElementsAre(AllOf(HasSubstr("(offset 236) is \"-1\""), HasSubstr("not closed"),
                                  HasSubstr("holds 3"))));
    EXPECT_THAT(oddities(EdfFile(clean).poke(236, "5       ")),
                ElementsAre(HasSubstr("is \"5\", but the data holds 3: the end is missing")));
    EXPECT_THAT(oddities(EdfFile(clean).truncate(clean.bytes().size() - 1)),
                ElementsAre(HasSubstr("holds 2 and 11 bytes of a record of 12")));
    EXPECT_THAT(oddities(EdfFile(clean).poke(236, "2       ")),
                ElementsAre(HasSubstr("is \"2\", but the data holds 3")));
}

TEST_F(EdfInspection, ToleratesHeadersThatEndAnywhere) {
    const std::size_t size = clean.bytes().size();
    for (std::size_t length = 0; length < size; length += 13)
        for (const OpenFinding& finding :
             edf::inspect(dir.write("x", EdfFile(clean).truncate(length).bytes()), 2))
            EXPECT_FALSE(finding.text.empty());
}

TEST_F(EdfInspection, TellsRangesAndSamplesOutsideThem) {
    EdfFile file = EdfFile().signal("A", 4).physical("100", "-100").signal("B", 4);
    file.digital("5", "5").signal("C", 4).physical("175921", "175946").records(2);
    EXPECT_THAT(oddities(file),
                AllOf(Contains(HasSubstr("physical range of signal 1 (\"A\") is 100 to -100, "
                                         "reversed")),
                      Contains(HasSubstr("digital range of signal 2 (\"B\") is 5 to 5, empty")),
                      Contains(HasSubstr("175921 to 175946, far from zero")),
                      Contains(HasSubstr("of 1 signals lie outside their digital range, the "
                                         "first in \"B\""))));
}

TEST_F(EdfInspection, TellsAnEarlyWriter) {
    EdfFile file(clean);
    std::string bytes = file.bytes();
    bytes.erase(87, 1); // the patient identification has lost a byte
    const std::string path = dir.write("x", bytes);
    std::vector<std::string> texts;
    for (const OpenFinding& finding : edf::inspect(path, 2))
        texts.push_back(finding.text);
    EXPECT_THAT(texts, Contains(HasSubstr("stand one byte early: read so, header length 768 and 2 "
                                          "signals agree")));
}

TEST(EdfOnset, IsASignedNumberBeforeTheFirstMark) {
    using namespace std::string_view_literals;
    EXPECT_EQ(edf::recordOnset("+0\x14\x14\0"sv), 0.0);
    EXPECT_EQ(edf::recordOnset("-1.5\x14\x14"sv), -1.5);
    EXPECT_EQ(edf::recordOnset("+149.3296875\x14"sv), 149.3296875);
    for (const std::string_view none : {""sv, "0\x14"sv, "+1"sv, "+x\x14"sv,
                                        "+1\x15"
                                        "2\x14"sv,
                                        "\0+1\x14"sv})
        EXPECT_EQ(edf::recordOnset(none), std::nullopt) << none;
}

} // namespace
} // namespace kvsig
