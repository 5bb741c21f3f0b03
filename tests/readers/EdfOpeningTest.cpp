#include "kvsig/readers/EDF90Reader.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

using Severity = OpenFinding::Severity;
using test::EdfFile;
using testing::HasSubstr;

class EdfOpening : public testing::Test {
  protected:
    std::string findings(const EdfFile& file, Severity severity) {
        EXPECT_TRUE(reader.open(file.writeTo(dir.file("a.edf")).c_str()));
        std::string all;
        for (const OpenFinding& finding : reader.openFindings())
            if (finding.severity == severity)
                all += finding.text + "\n";
        return all;
    }
    const test::TempDir dir;
    EDF90Reader reader;
};

// A decimal comma ends the number: all times, or all values, have another scale then.
TEST_F(EdfOpening, TellsNumbersThatAreReadInPart) {
    for (const char* text : {"1,5", "1x"})
        EXPECT_THAT(findings(EdfFile().signal("Fp1", 9).duration(text), Severity::unusable),
                    HasSubstr("duration of a data record (offset 244) is \"" + std::string(text) +
                              "\", read as 1: all times would be wrong"));
    EXPECT_THAT(findings(EdfFile()
                             .signal("Fp1", 9)
                             .signal("F7", 9)
                             .physical("-3276,8", "3276.7")
                             .digital("-2048", "2047 x"),
                         Severity::warning),
                testing::AllOf(HasSubstr("physical minimum of signal 2"),
                               HasSubstr("\"-3276,8\", read as -3276\n"),
                               HasSubstr("digital maximum of signal 2"),
                               HasSubstr("\"2047 x\", read as 2047\n")));
    EXPECT_EQ(findings(EdfFile().signal("Fp1", 9).duration("1.5"), Severity::warning), "");
}

TEST_F(EdfOpening, TellsOnceHoweverOftenTheLengthIsTakenAnew) {
    findings(EdfFile().signal("Fp1", 9).digital("5", "5"), Severity::warning);
    const auto count = reader.openFindings().size();
    ASSERT_GT(count, 0U);
    EXPECT_TRUE(reader.readSampleInfo());
    EXPECT_EQ(reader.openFindings().size(), count);
}

} // namespace
} // namespace kvsig
