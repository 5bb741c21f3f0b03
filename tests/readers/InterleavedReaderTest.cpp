#include "kvsig/readers/InterleavedReader.h"

#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/readers/SnapshotReader.h"
#include "kvsig/util/Text.h"
#include "support/Opened.h"
#include "support/RawFile.h"
#include "support/ReadAround.h"

namespace kvsig::test {
namespace {

std::string written(DataReader& reader) {
    std::ostringstream stream;
    EXPECT_TRUE(reader.writeAttributeFile(stream));
    return stream.str();
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class Interleaved : public testing::Test {
  protected:
    bool opens(DataReader& opened, const std::string& attributes, const std::string& bytes) {
        EXPECT_TRUE(readAttributes(opened, attributes));
        return opened.open(dir.write("x.raw", bytes).c_str());
    }

    const TempDir dir;
    InterleavedReader reader;
};

const std::string sections = "\n[ChannelMap]\nFp1-A1=1\nT7-A1=3\n[Patient]\nFirst=Ada\nMI=K\n"
                             "Last=Doe\nSex=F\nHand=\nBirthDate=\nID=7\nTestDate=\nTestTime=\n"
                             "Physician=\nTechnician=\nMedications=\nHistory=\nComments1=\n"
                             "Comments2=a = b\n[SampleTimes]\n0=82800.125\n512=60.500\n";

TEST_F(Interleaved, AttributesAndSamplesRoundTrip) {
    const RawFile file = RawFile().rate("256.5").sections(sections);
    ASSERT_TRUE(opens(reader, file.attributes(), file.bytes())) << reader.lastErrorText();
    EXPECT_STREQ(reader.channelName(0), "Fp1-A1");
    EXPECT_STREQ(reader.channelName(1), "Ch2");
    EXPECT_STREQ(reader.grid1(2), "T7");
    EXPECT_TRUE(reader.isMap1010());
    EXPECT_STREQ(reader.refGrid(), "A1");
    EXPECT_STREQ(reader.patientRec()->comments2, "a = b");
    ASSERT_EQ(reader.sampleTimeCount(), 2);
    SampleTime anchor;
    reader.getSampleTime(1, anchor);
    EXPECT_EQ(anchor.sample, 512);
    EXPECT_EQ(anchor.time, 86460.5);

    const std::string text = written(reader);
    EXPECT_EQ(text, replaced(replaced(file.attributes(), "stored.raw\n",
                                      std::string(reader.fileName()) + "\nFileType=Interleaved\n"),
                             "T7", "Ch2=2\nT7")
                        .replace(text.find("512=") + 4, 100, "86460.500\n"));
    InterleavedReader fresh;
    ASSERT_TRUE(readAttributes(fresh, text));
    EXPECT_EQ(written(fresh), text) << "before it is opened";
    ASSERT_TRUE(fresh.open(fresh.fileName()));
    EXPECT_EQ(written(fresh), text);
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_EQ(valuesOf(fresh, channel, 0, 751), valuesOf(reader, channel, 0, 751));
    EXPECT_EQ(valuesOf(fresh, 2, 700, 700)[0], 0.25F * static_cast<float>(file.count(2, 700)));

    // Other names, or numbers, on the screen are none of the recording's.
    fresh.setGridNamesAsNumbers(true);
    ASSERT_TRUE(fresh.open(fresh.fileName()));
    EXPECT_EQ(written(fresh), text);
    fresh.setGridNamesAsNumbers(false);
    std::istringstream map("[X]\nO1-A2=1\nO2-A2=2\n");
    ASSERT_TRUE(fresh.applyChannelMapDefn("X", map));
    EXPECT_STREQ(fresh.channelName(1), "O2-A2");
    fresh.setChannelMapName("(Default)");
    EXPECT_STREQ(fresh.getChannelMapName(), "(Default)");
    EXPECT_STREQ(fresh.channelName(0), "Fp1-A1");
    EXPECT_STREQ(fresh.channelName(1), "Ch2");
    EXPECT_EQ(written(fresh), text);
}

TEST_F(Interleaved, EncodingsAreTakenFromTheirBytes) {
    const auto of = [this](int dataType, const std::string& bytes) {
        const RawFile file = RawFile().channels(1).headerLength(1).dataType(dataType);
        EXPECT_TRUE(opens(reader, file.attributes(), "h" + bytes + "123456"));
        return rawOf(reader, 0, 0, 1);
    };
    EXPECT_THAT(of(0, "\x01\x02\xFF\x7F"), ElementsAre(513, 32767));
    EXPECT_THAT(of(4, "\x01\x02\x80\x01"), ElementsAre(258, -32767));
    EXPECT_THAT(of(6, std::string("\0\xFF", 2)), ElementsAre(-128, 127));
    EXPECT_THAT(of(5, "\x01\x02\xFF\x7F"), ElementsAre(0, 0));
    ASSERT_EQ(reader.openFindings().size(), 1U);
    EXPECT_THAT(reader.openFindings()[0].text, HasSubstr("DataType is 5"));
}

TEST_F(Interleaved, TheLengthCountsTwoBytesAValue) {
    for (const int dataType : {0, 6}) {
        const RawFile file = RawFile().channels(2).headerLength(0).dataType(dataType);
        ASSERT_TRUE(opens(reader, file.attributes(), std::string(1000, 'x')));
        EXPECT_EQ(reader.maxDataIndex(), 249) << dataType;
    }
    ASSERT_EQ(reader.openFindings().size(), 1U);
    EXPECT_THAT(reader.openFindings()[0].text, HasSubstr("the first half"));
    const RawFile file = RawFile().channels(2).headerLength(10);
    EXPECT_TRUE(opens(reader, file.attributes(), std::string(10 + 12, 'x')));
    EXPECT_FALSE(opens(reader, file.attributes(), std::string(10 + 11, 'x')));
    EXPECT_EQ(reader.getLastError(), 2);
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("it holds 2 samples of 2 channels behind 10"));
    EXPECT_EQ(reader.sampleCount(), 0);
    ASSERT_TRUE(opens(reader, file.attributes(), std::string(10 + 12 + 3, 'x')));
    ASSERT_EQ(reader.openFindings().size(), 1U);
    EXPECT_EQ(reader.openFindings()[0].text, "its last 3 bytes are no whole sample of 2 channels");
    EXPECT_EQ(reader.openFindings()[0].severity, OpenFinding::Severity::note);
}

TEST_F(Interleaved, RefusalsSayWhy) {
    EXPECT_FALSE(reader.open(dir.write("x.raw", "123456").c_str()));
    EXPECT_EQ(reader.getLastError(), 2);
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("WaveformCount is 0"));
    EXPECT_TRUE(readAttributes(reader, RawFile().attributes()));
    EXPECT_FALSE(reader.open(dir.file("missing").c_str()));
    EXPECT_EQ(reader.getLastError(), 1);
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("no such file"));
}

TEST_F(Interleaved, EveryKeyIsNeeded) {
    const RawFile file = RawFile().sections(sections);
    ASSERT_TRUE(opens(reader, file.attributes(), file.bytes()));
    for (const std::string key :
         {"File", "SamplingRate", "HeaderLength", "Calibration", "WaveformCount", "DataType"}) {
        for (const std::string& gap : {std::string("Other="), key + "=\nOther="}) {
            EXPECT_FALSE(readAttributes(reader, replaced(file.attributes(), key + "=", gap)))
                << key;
            EXPECT_EQ(reader.lastErrorText(),
                      "the attribute file has no " + key + " in its section FileInfo");
        }
        EXPECT_FALSE(readAttributes(reader, replaced(file.attributes(), key + "=", key + " =")));
        EXPECT_THAT(reader.lastErrorText(), HasSubstr("blanks in front of its '='"));
    }
    // What is not complete takes no anchors and no patient away; without a file, no names either.
    const std::string renamed = replaced(file.attributes(), "Fp1-A1=", "T3-A1=");
    EXPECT_FALSE(readAttributes(reader, replaced(renamed, "File=", "Other=")));
    EXPECT_STREQ(reader.channelName(0), "Fp1-A1");
    EXPECT_FALSE(readAttributes(reader, replaced(renamed, "DataType=", "Other=")));
    EXPECT_STREQ(reader.channelName(0), "T3-A1");
    rawOf(reader, 0, 0, 5); // a page of the old header
    EXPECT_FALSE(
        readAttributes(reader, replaced(replaced(renamed, "HeaderLength=16", "HeaderLength=22"),
                                        "DataType=", "Other=")));
    EXPECT_EQ(reader.calibration(1), 0.25);
    EXPECT_EQ(rawOf(reader, 0, 0, 0)[0], file.count(0, 1)) << "behind the new header";
    EXPECT_STREQ(reader.patientRec()->last, "Doe");
    EXPECT_EQ(reader.sampleTimeCount(), 2);
    EXPECT_FALSE(readAttributes(
        reader, replaced(replaced(renamed, "[ChannelMap]", "[Other]"), "DataType=", "Other=")));
    EXPECT_STREQ(reader.channelName(0), "Ch1") << "the new file gives it no name";
    InterleavedReader fresh;
    EXPECT_FALSE(readAttributes(fresh, replaced(file.attributes(), "WaveformCount=3", "")));
    EXPECT_EQ(fresh.headerLength(), 16) << "what stood before the gap is kept";
    EXPECT_EQ(fresh.channelCount(), 0);
}

TEST_F(Interleaved, TheNextAttributeFileLeavesNothingOfTheLast) {
    const RawFile file = RawFile().sections(sections + "[Montage]\nOne=\n");
    ASSERT_TRUE(opens(reader, file.attributes(), file.bytes()));
    EXPECT_EQ(rawOf(reader, 0, 0, 0)[0], file.count(0, 0));
    ASSERT_TRUE(readAttributes(reader, replaced(file.attributes(), "DataType=0", "DataType=4")));
    const auto bits = static_cast<std::uint16_t>(file.count(0, 0));
    EXPECT_EQ(rawOf(reader, 0, 0, 0)[0], static_cast<std::int16_t>(bits << 8U | bits >> 8U))
        << "without opening again";
    ASSERT_TRUE(opens(reader, RawFile().attributes(), file.bytes()));
    EXPECT_STREQ(reader.channelName(0), "Ch1");
    EXPECT_EQ(reader.hasChannelMap(), 0);
    EXPECT_EQ(reader.montageCount(), 0);
    EXPECT_STREQ(reader.patientRec()->last, "");
    EXPECT_EQ(reader.getClockTime(1.0), 1.0) << "the default anchor";
    EXPECT_EQ(reader.sampleTimeCount(), 1);
}

TEST_F(Interleaved, MontagesAreKeptByName) {
    ASSERT_TRUE(readAttributes(
        reader, RawFile().attributes() +
                    "[long]\nFp1-F7=\nF7-T3=left\n;x=\n[Montage]\nLong=\n=\nEmpty=1\n"
                    "LONG=\n[Long]\nC3=second\n"));
    EXPECT_EQ(reader.montageCount(), 3) << "one for each name";
    EXPECT_EQ(reader.montageIndex("EMPTY"), 1);
    EXPECT_STREQ(reader.montageName(0), "Long");
    std::ostringstream stream;
    for (const int outside : {-1, 3}) {
        EXPECT_EQ(reader.montageName(outside), nullptr);
        EXPECT_FALSE(reader.montageDefn(outside, stream));
    }
    EXPECT_TRUE(reader.montageDefn(0, stream));
    EXPECT_TRUE(reader.montageDefn(1, stream));
    EXPECT_TRUE(reader.montageDefn(2, stream));
    const std::string lines = "]\nFp1-F7=\nF7-T3=left\n";
    EXPECT_EQ(stream.str(), "[Long" + lines + "[Empty]\n[LONG" + lines);
}

TEST_F(Interleaved, AStoredMontageFillsAMontage) {
    const RawFile file =
        RawFile().sections("[ChannelMap]\nFp1-A1=1\nF7-A1=2\nT7-A1=3\n[Montage]\nLong=\n"
                           "[Long]\nF7-Both=\nFp1-F7=\nF7-T3 = left\nF7-C3=\nFp1+T3=Both\n");
    ASSERT_TRUE(opens(reader, file.attributes(), file.bytes()));
    SourceMontage montage;
    montage.setReader(&reader);
    ASSERT_EQ(montage.createMontage("LONG"), 1);
    ASSERT_EQ(montage.sourceCount(), 3);
    EXPECT_STREQ(montage.source(0)->name(), "F7-Both");
    EXPECT_STREQ(montage.source(1)->name(), "Fp1-F7");
    EXPECT_STREQ(montage.source(2)->name(), "left");
    EXPECT_STREQ(montage.source(2)->grid2(), "T7");
    EXPECT_THAT(montage.unresolved(), ElementsAre("F7-C3"));
    reader.montageApply(montage, "none");
    EXPECT_EQ(montage.sourceCount(), 3);
}

TEST_F(Interleaved, HostileAttributesDoNoHarm) {
    const std::string good = RawFile().attributes();
    const struct {
        std::string key;
        std::vector<const char*> harmless, refused;
    } cases[] = {
        {"SamplingRate=", {"0", "-1", "nan", "1e300", "1e999", "-1e999", "1e-300", "x"}, {}},
        {"WaveformCount=", {}, {"0", "-3", "32768", "99999999999999999999"}},
        {"HeaderLength=", {"-1", "-99999999999"}, {"4528", "99999999999999999999"}},
        {"Calibration=", {"0", "nan", "1e999"}, {}},
        {"DataType=", {"-1", "3", "99999999999"}, {}},
    };
    for (const auto& c : cases)
        for (const bool expected : {true, false})
            for (const char* value : expected ? c.harmless : c.refused) {
                const std::size_t at = good.find(c.key);
                std::string text = good;
                text.replace(at, good.find('\n', at) - at, c.key + value);
                EXPECT_EQ(opens(reader, text, RawFile().bytes()), expected) << c.key << value;
                EXPECT_EQ(reader.getLastError(), expected ? 0 : 2);
                EXPECT_EQ(reader.sampleCount() > 0, expected);
                EXPECT_GE(reader.chunkPts(), 1);
                readAround(reader);
            }
    ASSERT_TRUE(readAttributes(reader, replaced(good, "Rate=32", "Rate=1e999")));
    EXPECT_THAT(written(reader), HasSubstr("SamplingRate=1e999\n")) << "it reads back";
    std::string names;
    for (int i = 0; i < 5000; ++i)
        names += "M" + std::to_string(i % 4000) + "=\n";
    EXPECT_TRUE(readAttributes(reader, good + "[Montage]\n" + names));
    EXPECT_EQ(reader.montageCount(), 4096);
}

TEST_F(Interleaved, BelowOneHertzThereAreSamples) {
    const RawFile file = RawFile().rate("0.25");
    ASSERT_TRUE(opens(reader, file.attributes(), file.bytes()));
    EXPECT_EQ(reader.chunkPts(), 1);
    EXPECT_EQ(rawOf(reader, 1, 500, 500)[0], file.count(1, 500));
}

TEST_F(Interleaved, SnapshotsDifferInTheirTypeName) {
    SnapshotReader snapshot;
    ASSERT_TRUE(readAttributes(snapshot, RawFile().sections(sections).attributes()));
    EXPECT_EQ(snapshot.fileType(), 39);
    const std::string text = written(snapshot);
    EXPECT_THAT(text, HasSubstr("FileType=SnapshotData\nSamplingRate=32\n"));
    ASSERT_TRUE(readAttributes(reader, text));
    EXPECT_EQ(written(reader), replaced(text, "SnapshotData", "Interleaved"));
}

} // namespace
} // namespace kvsig::test
