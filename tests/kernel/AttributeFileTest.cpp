#include "kvsig/kernel/AttributeFile.h"

#include "kvsig/kernel/ExportAttributes.h"
#include "kvsig/util/Text.h"
#include "support/FakeReader.h"
#include "support/InDirectory.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using test::FakeReader;
using testing::HasSubstr;

std::vector<std::pair<int, double>> timesIn(const std::string& lines) {
    std::istringstream stream("[sampletimes]\n" + lines);
    std::vector<std::pair<int, double>> times;
    for (const SampleTime& anchor : readSampleTimes(stream))
        times.emplace_back(anchor.sample, anchor.time);
    return times;
}

TEST(AttributeFile, SampleTimesAreScannedLikeNumbersOfC) {
    using Times = std::vector<std::pair<int, double>>;
    EXPECT_EQ(
        timesIn("0=3600.5\n;1=2\n\nword\n 256=  3601.25 seconds\n0x10=1e2\n010=-.5\r\n+7=1\n"),
        (Times{{0, 3600.5}, {256, 3601.25}, {16, 100.0}, {8, -0.5}, {7, 1.0}}));
    EXPECT_EQ(timesIn("=1\n1=\n1=x\n1 =1\n1.5=1\n08=1\n-=1\n0x=1\n[next]\n5=5\n"), Times());
    EXPECT_EQ(timesIn("99999999999=1\n-2147483648=1\n-99999999999=1\n"),
              (Times{{2147483647, 1.0}, {-2147483647 - 1, 1.0}, {-2147483647 - 1, 1.0}}));
}

TEST(AttributeFile, ThePatientRoundTrips) {
    PatientRec patient{};
    copyText(patient.first, "Ada=1");
    copyText(patient.mi, "K.");
    copyText(patient.last, " Lovelace ");
    copyText(patient.id, "007");
    copyText(patient.comments2, "two\r\nlines");
    std::ostringstream out;
    writePatientSection(out, patient);
    EXPECT_EQ(out.str(), "[Patient]\nFirst=Ada=1\nMI=K.\nLast= Lovelace \nSex=\nHand=\nBirthDate=\n"
                         "ID=007\nTestDate=\nTestTime=\nPhysician=\nTechnician=\nMedications=\n"
                         "History=\nComments1=\nComments2=two  lines\n");
    PatientRec back{};
    std::istringstream in(out.str());
    readPatientSection(in, back);
    EXPECT_STREQ(back.first, "Ada=1");
    EXPECT_STREQ(back.mi, "K.");
    EXPECT_STREQ(back.last, " Lovelace ");
    EXPECT_STREQ(back.id, "007");
    EXPECT_STREQ(back.comments2, "two  lines");
    EXPECT_EQ(back.fullName, 0);

    const std::string whole = "Augusta Ada King, Countess of Lovelace, of Ockham Park in Surrey";
    patient.setName(whole);
    out.str("");
    writePatientSection(out, patient);
    EXPECT_THAT(out.str(), HasSubstr("[Patient]\nFullName=" + whole + "\nSex=\n"));
    in.str(out.str());
    readPatientSection(in, back);
    EXPECT_EQ(back.name(), whole);
}

class AttributesOfAReader : public testing::Test {
  protected:
    static std::string written(DataReader& reader) {
        std::ostringstream stream;
        stream << std::hex << std::showpos << std::setw(20) << std::setprecision(2);
        EXPECT_TRUE(reader.writeAttributeFile(stream));
        EXPECT_EQ(stream.width(), 20);
        return stream.str();
    }
    static bool reads(DataReader& reader, const std::string& text) {
        std::istringstream stream(text);
        return reader.readAttributeFile(stream);
    }

    const test::TempDir dir;
    const test::InDirectory in{dir.path()};
    FakeReader reader;
};

TEST_F(AttributesOfAReader, AreWrittenByTheKindOfFile) {
    reader.file.rate = 1000.0 / 3;
    reader.file.anchors = {{0, 82800.0}, {1000, 86460.00051}};
    reader.file.channels[0].calibration = 0.1;
    ASSERT_TRUE(reader.open("night.edf"));
    reader.setHeaderLength(512);
    EXPECT_EQ(written(reader), "[FileInfo]\nFile=night.edf\nFileType=\n") << "no known type";
    reader.setFileType(48);
    reader.lag = -12;
    EXPECT_EQ(written(reader), "[FileInfo]\nFile=night.edf\nFileType=BDF\nSampleLag=-12\n");

    reader.setFileType(1);
    EXPECT_THAT(written(reader),
                testing::AllOf(HasSubstr("\nFileType=Interleaved\nSamplingRate=333.3333333333333\n"
                                         "HeaderLength=512\nCalibration=0.1\nWaveformCount=3\n"
                                         "DataType=0\nSampleLag=-12\n[Patient]\nFirst=\n"),
                               testing::EndsWith("\nComments2=\n[SampleTimes]\n0=82800.000\n"
                                                 "1000=86460.001\n")));
    std::ostringstream failed;
    failed.setstate(std::ios::failbit);
    EXPECT_FALSE(reader.writeAttributeFile(failed));
}

TEST_F(AttributesOfAReader, CarryTheChannelMapOrItsName) {
    dir.write("kvunkdat.ini", "[ChannelMap]\nLab=\n[Lab]\nC3-A1=1\nC4-A1=2\n");
    ASSERT_TRUE(reader.open("n"));
    reader.setFileType(6);
    reader.setGridNamesAsNumbers(true);
    reader.setChannelMapName("Lab");
    EXPECT_EQ(written(reader), "[FileInfo]\nFile=n\nFileType=EDF90\nChannelMap=Lab\n");
    reader.setChannelMapName("ChannelMap"); // the list of maps names no channels
    const std::string text = written(reader);
    EXPECT_EQ(text, "[FileInfo]\nFile=n\nFileType=EDF90\n\n[ChannelMap]\nC3-A1=1\nC4-A1=2\n"
                    "Cz-Ref=3\n");

    FakeReader fresh;
    EXPECT_TRUE(reads(fresh, text));
    ASSERT_TRUE(fresh.open(fresh.fileName()));
    EXPECT_STREQ(fresh.channelName(1), "C4-A1");
    EXPECT_STREQ(fresh.getChannelMapName(), "(Private)");
    fresh.lag.reset();
    fresh.setFileType(6);
    EXPECT_EQ(written(fresh), text);
    fresh.setChannelMapName("(Private)");
    EXPECT_EQ(written(fresh), text);
    const std::string names = "\n\n[ChannelMap]\nC3-A1=1\n";
    fresh.setChannelMapName("Gone");
    EXPECT_THAT(written(fresh), HasSubstr("\nChannelMap=Gone" + names)) << "stored nowhere";
    fresh.setChannelMapName("Lab");
    EXPECT_THAT(written(fresh), testing::EndsWith("\nChannelMap=Lab\n"));
    EXPECT_TRUE(fresh.deleteChannelMapDefn("lab"));
    EXPECT_THAT(written(fresh), HasSubstr("\nChannelMap=Lab" + names)) << "stored no more";
    dir.write("kvunkdat.ini", "[ChannelMap]\nLab=\n[Lab]\nC3-A1=1\nC4-A1=2\n");
    FakeReader named;
    EXPECT_TRUE(reads(named, "[FileInfo]\nFile=n\nChannelMap=lab\n"));
    ASSERT_TRUE(named.open("n"));
    EXPECT_STREQ(named.channelName(0), "C3-A1");
    EXPECT_STREQ(named.getChannelMapName(), "lab");
    EXPECT_TRUE(reads(named, "[FileInfo]\nFile=n\nChannelMap=Gone\n"));
    EXPECT_STREQ(named.getChannelMapName(), "Gone");
    ASSERT_TRUE(named.open("n"));
    ASSERT_FALSE(named.openFindings().empty());
    EXPECT_THAT(named.openFindings()[0].text,
                HasSubstr("none called 'Gone' names channels in kvunkdat.ini"));
    EXPECT_STREQ(named.channelName(0), "C3-A1") << "a missing map changes no names";
    named.setChannelMapName("Also gone");
    ASSERT_TRUE(named.open("n"));
    EXPECT_THAT(named.openFindings().at(0).text, HasSubstr("none called 'Also gone'"));
    named.setChannelMapName("(Default)");
    ASSERT_TRUE(named.open("n"));
    EXPECT_THAT(named.openFindings(), testing::IsEmpty()) << "it is not asked for any more";
    EXPECT_TRUE(reads(named, "[FileInfo]\nFile=n\nChannelMap=Lab\n[ChannelMap]\nO1-A1=1\n"));
    EXPECT_STREQ(named.channelName(0), "O1-A1") << "the own map is applied last";
    EXPECT_STREQ(named.getChannelMapName(), "(Private)");
}

TEST_F(AttributesOfAReader, NeedAFileName) {
    reader.lag = 7;
    const std::string path = "/rec dir/" + std::string(300, 'n') + ".eeg ";
    for (const char* text : {"", "[FileInfo]\n", "[FileInfo]\nFile=\n", "[Other]\nFile=x\n"})
        EXPECT_FALSE(reads(reader, text)) << text;
    EXPECT_TRUE(reads(reader, "[fileinfo]\r\nFile=" + path + "\r\nSampleLag=-3\r\n"));
    EXPECT_EQ(reader.filePath(), path);
    EXPECT_EQ(reader.lag, 7) << "negative numbers are not accepted";
    EXPECT_TRUE(reads(reader, "[FileInfo]\nFile=x\nSampleLag=3\n"));
    EXPECT_EQ(reader.lag, 3);
    EXPECT_EQ(reader.hasChannelMap(), 0);

    std::istringstream stream("[FileInfo]\nFileType=SnapshotData\n");
    char type[9];
    EXPECT_TRUE(DataReader::readFileType(stream, type, sizeof type));
    EXPECT_STREQ(type, "Snapshot");
    stream.str("[FileInfo]\nFileType=\n");
    EXPECT_FALSE(DataReader::readFileType(stream, type, sizeof type));
}

TEST_F(AttributesOfAReader, OfAnExportDescribeRawFrames) {
    FakeReader other;
    other.file.channels[0].calibration = 0.25;
    other.file.rate = 512.5;
    ASSERT_TRUE(other.open("a"));
    copyText(other.patientRec()->last, "Doe");
    std::ostringstream stream;
    stream << std::setw(9) << std::hex;
    other.setGridNamesAsNumbers(true); // on the screen
    EXPECT_TRUE(WriteExportAttributeFile(stream, &other, "out.raw"));
    EXPECT_TRUE(other.gridNamesAsNumbers());
    EXPECT_THAT(stream.str(),
                testing::StartsWith(
                    "[FileInfo]\nFile=out.raw\nFileType=Interleaved\nSamplingRate=512.5\n"
                    "HeaderLength=0\nCalibration=0.25\nWaveformCount=3\nDataType=0\n\n"
                    "[ChannelMap]\nFp1-Ref=1\nFp2-Ref=2\nCz-Ref=3\n\n[Patient]\nFirst=\nMI=\n"
                    "Last=Doe\n"));
    EXPECT_FALSE(WriteExportAttributeFile(stream, nullptr, nullptr));
}

// What one recording said must not answer for the next, but what an attribute file said beforehand
// must.
TEST_F(AttributesOfAReader, BelongToOneRecording) {
    class Keeping : public FakeReader {
        // Forgets no anchors by itself.
        bool readSampleInfo() override { return !file.sampleInfoFails; }
    };
    Keeping kept;
    SampleTime anchor{0, 3600.0};
    kept.addSampleTime(anchor);
    copyText(kept.patientRec()->last, "Doe");
    kept.file.sampleInfoFails = true;
    EXPECT_FALSE(kept.open("empty"));
    kept.file.sampleInfoFails = false;
    ASSERT_TRUE(kept.open("a"));
    EXPECT_EQ(kept.sampleTimeCount(), 1) << "an attempt that failed takes nothing away";
    ASSERT_TRUE(kept.open("a"));
    kept.file.openFails = true;
    EXPECT_FALSE(kept.open("b"));
    kept.file.openFails = false;
    EXPECT_STREQ(kept.patientRec()->last, "Doe") << "what failed to open changes nothing";
    kept.file.channels = {{"EKG", "X"}};
    ASSERT_TRUE(kept.open("b"));
    EXPECT_EQ(kept.sampleTimeCount(), 0);
    EXPECT_STREQ(kept.patientRec()->last, "");
    EXPECT_STREQ(kept.refGrid(), "Ref");
    kept.file.channels = {{"Fz", "A1"}};
    ASSERT_TRUE(kept.open("c"));
    kept.file.channels = {{"EKG", "X"}};
    ASSERT_TRUE(kept.open("d"));
    EXPECT_STREQ(kept.refGrid(), "A1") << "no scalp channel tells of another";
}

} // namespace
} // namespace kvsig
