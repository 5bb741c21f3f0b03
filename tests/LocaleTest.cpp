#include "kvsig/filters/FilterAttr.h"
#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/montage/SourceSettings.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/ProfileText.h"
#include "kvsig/util/TimeText.h"
#include "support/FakeReader.h"
#include "support/Testing.h"

#include <clocale>
#include <iomanip>
#include <locale>

namespace kvsig::test {
namespace {

class CommaDecimal : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

// A program that embeds the library may run under any locale, of C and of C++.
class Locale : public testing::Test {
  protected:
    void SetUp() override {
        std::setlocale(LC_ALL, "de_DE.UTF-8"); // where it is installed
        std::locale::global(std::locale(std::locale(), new CommaDecimal));
    }
    void TearDown() override {
        std::locale::global(std::locale::classic());
        std::setlocale(LC_ALL, "C");
    }
};

TEST_F(Locale, NumbersKeepTheirPoint) {
    EXPECT_EQ(leadingDouble("1.5"), 1.5);
    EXPECT_EQ(leadingDouble("1,5"), 1.0);
    EXPECT_EQ(shortestText(1234.5), "1234.5");
    EXPECT_EQ(fixedText(1234.5, 2), "1234.50");
    EXPECT_EQ(TimeToReal("0:01.5"), 1.5);
    char text[realToTimeSize];
    EXPECT_STREQ(RealToTime(1.25, text, true, true, false), "00:00:01.25");
}

TEST_F(Locale, SettingsAndDefinitionsKeepTheirPoint) {
    SourceSettings settings;
    PolyScale scale;
    settings.displayValue = 1234567;
    settings.highPass.setTimeConstantAsText("0.3");
    settings.lowPass.setCutFreqAsText("70.5 Hz");
    scale.maximum = 1234.5;
    EXPECT_EQ(formatSettings(settings, scale),
              "1234567,0,1,0,0.3 sec,70.5 Hz,0,0,0.000000,1234.500000");
    double weight = 0.0;
    char term[] = "F3:0.25";
    EXPECT_TRUE(YankAvgWgt(term, weight));
    EXPECT_EQ(weight, 0.25);
    ClientEvent event;
    event.kind = 4;
    event.hasValue = 1;
    event.value = 1234.5;
    SetDefStateText(event);
    EXPECT_STREQ(event.stateText, "LowFilter MC 1234.5");
}

// A host's stream keeps its own flags, and they do not reach the texts.
TEST_F(Locale, StreamsKeepTheirFlagsAndTheTextsTheirForm) {
    FakeRecording recording;
    recording.rate = 1000.5;
    FakeReader reader(recording);
    ASSERT_TRUE(reader.open("night.edf"));
    std::ostringstream stream;
    stream << std::hex << std::showbase << std::setw(12) << std::setfill('*');
    reader.testInfo(stream);
    EXPECT_NE(stream.str().find("SamplingRate: 1000.5\n"), std::string::npos) << stream.str();
    EXPECT_NE(stream.str().find("Channels: 3\n"), std::string::npos) << stream.str();
    EXPECT_EQ(stream.width(), 12);
    EXPECT_TRUE(stream.flags() & std::ios::hex);
}

TEST_F(Locale, AttributeFilesKeepTheirPoint) {
    const std::string text = "[FileInfo]\nFile=a\nFileType=Interleaved\nSamplingRate=1000.5\n"
                             "HeaderLength=1234567\nCalibration=0.125\nWaveformCount=1\n"
                             "DataType=0\n";
    std::istringstream in(text + "[SampleTimes]\n1000=86400.5\n");
    InterleavedReader reader;
    ASSERT_TRUE(reader.readAttributeFile(in));
    std::ostringstream out;
    reader.writeAttributeFile(out);
    EXPECT_TRUE(out.str().starts_with(text)) << out.str();
    EXPECT_TRUE(out.str().ends_with("[SampleTimes]\n1000=86400.500\n")) << out.str();
    EXPECT_EQ(GetLocalProfileDouble("FileInfo", "SamplingRate", 0.0, in), 1000.5);
}

} // namespace
} // namespace kvsig::test
