#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/RawFile.h"

namespace kvsig::test {
namespace {

class LayoutFindings : public CommandTest {
  protected:
    // What check says of 752 frames of three channels at 32 Hz, with a line of the layout changed.
    std::string check(const std::string& from, const std::string& to,
                      const std::string& sections = "") {
        dir.write("stored.raw", RawFile().bytes());
        std::string text = RawFile().sections("FileType=Interleaved\n" + sections).attributes();
        text.replace(text.find(from), from.size(), to);
        dir.write("a.lay", text);
        return command("check a.lay").out;
    }
    std::string checkTimes(const std::string& lines) {
        return check("", "", "[SampleTimes]\n" + lines);
    }
};

TEST_F(LayoutFindings, NumbersThatAreReadByTheirBeginning) {
    const struct {
        const char *key, *text, *taken;
    } cases[] = {{"Calibration=0.25", "1,5", "1"},  {"HeaderLength=16", "0x10", "0"},
                 {"WaveformCount=3", "1e1", "1"},   {"WaveformCount=3", "70000", "32767"},
                 {"WaveformCount=3", "three", "0"}, {"SamplingRate=32", "abc", "0"},
                 {"HeaderLength=16", "1e99", "1"},  {"DataType=0", "0 ;little-endian", "0"}};
    for (const auto& c : cases) {
        const std::string key(c.key, std::string(c.key).find('='));
        EXPECT_THAT(check(c.key, key + "=" + c.text),
                    HasSubstr("a.lay: warning: " + key + " is \"" + c.text + "\", read as " +
                              c.taken + "\n"));
    }
    for (const char* same : {"+16", " 16 ", "16.0"})
        EXPECT_EQ(check("HeaderLength=16", std::string("HeaderLength=") + same), "");
    EXPECT_EQ(check("Calibration=0.25", "Calibration=2.5e-1"), "");
}

TEST_F(LayoutFindings, GapsAndOverlapsBetweenAnchors) {
    EXPECT_EQ(checkTimes("0=82800\n32=82801.0004\n64=82804\n96=82804.5\n128=5\n"),
              "a.lay: warning: a gap of 1.9996 s at 2.0004 s, before sample 64\n"
              "a.lay: warning: sample 96 overlaps by 0.5 s with what ends at 5 s\n"
              "a.lay: warning: a gap of 3599.5 s at 5.5 s, before sample 128\n");
    std::string many;
    for (int i = 0; i < 30; ++i)
        many += std::to_string(i) + "=" + std::to_string(i) + "\n";
    EXPECT_THAT(checkTimes(many),
                HasSubstr("warning: 9 more gaps and 0 more overlaps between anchors\n"));
}

TEST_F(LayoutFindings, LinesOfSampleTimesThatDoNotCount) {
    EXPECT_EQ(checkTimes("0=200\n; 1=2\n\n32=x\n32 201\n32=201\n30=202\n0=203\n"),
              "a.lay: warning: SampleTimes: '32=x' and 3 more lines are ignored: not "
              "'sample=seconds' in rising order\n");
    EXPECT_THAT(checkTimes("0=23:00:00\n"),
                AllOf(HasSubstr("warning: SampleTimes: '0=23:00:00', read as '23' is taken by the "
                                "number in front\n"),
                      Not(HasSubstr("ignored"))));
}

TEST_F(LayoutFindings, NamesThatAMapTakesAway) {
    EdfFile file = EdfFile().signal("C3", 4).signal("P8-Cz", 4).signal("ECG", 4);
    file.records(3).writeTo(dir.file("a.edf"));
    const auto checkMap = [this](const std::string& map) {
        dir.write("a.lay", "[FileInfo]\nFile=a.edf\nFileType=EDF90\n[ChannelMap]\n" + map);
        return command("check a.lay").out;
    };
    EXPECT_EQ(checkMap("Fz-A1=2\n"),
              "a.lay: note: channel map: it names 1 of 3 channels; the others are called by their "
              "numbers, not by their own names\n");
    EXPECT_EQ(checkMap("Fz-A1=2\nPz-A1=1\nECG-Ref=3\n"), "");
    EXPECT_EQ(check("", "", "[ChannelMap]\nFz-A1=2\n"), "") << "raw data has no names to lose";
}

} // namespace
} // namespace kvsig::test
