#include "kvsig/readers/SyncReader.h"
#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/ChannelFacts.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

namespace kvsig::test {
namespace {

constexpr const char* fileInfo = "[FileInfo]\r\nFile=C:\\old\\REC.raw\nFileType=Interleaved\n"
                                 "SamplingRate=10.5\nHeaderLength=4\nCalibration=0.5\n"
                                 "WaveformCount=2\nDataType=0\n";

class Layout : public testing::Test {
  protected:
    void SetUp() override {
        std::string raw = "HEAD";
        for (int i = 0; i < 20; ++i)
            raw += {static_cast<char>(i), '\0'};
        dir.write("rec.raw", raw);
    }
    void TearDown() override { KrnlSetFileTypeFlag(1); }

    ReaderPtr open(const std::string& text, const char* name = "x.lay") {
        return openReader(dir.write(name, text).c_str(), 0, &error);
    }
    TempDir dir;
    std::string error;
};

TEST_F(Layout, OpensTheRecordingThatItDescribes) {
    const ReaderPtr reader =
        open(std::string(fileInfo) + "[ChannelMap]\nT7-A1=1\nO2-A1=2\n[SampleTimes]\n0=100.5\n");
    ASSERT_TRUE(reader) << error;
    EXPECT_EQ(reader->fileType(), 1);
    EXPECT_EQ(reader->fileName(), dir.file("rec.raw"));
    EXPECT_EQ(reader->samplingRate(), 10.5);
    EXPECT_EQ(reader->sampleCount(), 10);
    EXPECT_STREQ(reader->channelName(0), "T7-A1");
    EXPECT_TRUE(reader->isMap1010());
    EXPECT_TRUE(reader->isMapReferential());
    EXPECT_STREQ(reader->refGrid(), "A1");
    EXPECT_EQ(reader->getClockTime(0.0), 100.5);
    float values[3];
    EXPECT_EQ(reader->getData(1, 0, 2, values, 1.0, 0), 3);
    EXPECT_EQ(values[2], 2.5F);
}

TEST_F(Layout, TheXmlFormSaysTheSame) {
    const std::string xml =
        "<Layout><FileInfo File='rec.raw' FileType='Interleaved' SamplingRate='10.5' "
        "HeaderLength='4' Calibration='0.5' WaveformCount='2' DataType='0'/><ChannelMap>"
        "<Channel Name='T7-A1' Number='1'/><Channel Name='O2-A1' Number='2'/></ChannelMap>"
        "<Patient FullName='A &#10;[FileInfo]' Sex='F'/>"
        "<SampleTimes><SampleTime Sample='0' Time='100.5'/></SampleTimes></Layout>";
    EXPECT_FALSE(open(xml, "x.kvx"));
    EXPECT_THAT(error, HasSubstr("switched off by the file-type mode 1"));
    KrnlSetFileTypeFlag(4);
    const ReaderPtr reader = open(xml, "x.kvx");
    ASSERT_TRUE(reader) << error;
    EXPECT_EQ(reader->fileName(), dir.file("rec.raw"));
    EXPECT_STREQ(reader->channelName(1), "O2-A1");
    EXPECT_EQ(reader->getClockTime(0.0), 100.5);
    EXPECT_STREQ(reader->patientRec()->sex, "F");
    EXPECT_FALSE(open("<Layout><FileInfo File='rec.raw' FileType='EDF90'/><ChannelMap>"
                      "<Channel Name='a=b' Number='1'/></ChannelMap></Layout>",
                      "y.kvx"));
    EXPECT_THAT(error, HasSubstr("'a=b'"));
    EXPECT_FALSE(open("<Layout><FileInfo File='rec.raw' FileType='EDF90'/><SampleTimes>"
                      "<SampleTime Sample='[x]' Time='1'/></SampleTimes></Layout>",
                      "y.kvx"));
    EXPECT_THAT(error, HasSubstr("'[x]'"));
    EXPECT_FALSE(open("<Layout><FileInfo></Layout>", "y.kvx"));
    EXPECT_THAT(error, HasSubstr("not well-formed XML at byte"));
}

TEST_F(Layout, RenamesTheChannelsOfAnyRecording) {
    EdfFile().signal("a", 4).signal("b", 4).records(3).writeTo(dir.file("rec.edf"));
    const ReaderPtr reader =
        open("[FileInfo]\nFile=rec.edf\nFileType=edf90\n[ChannelMap]\nP8-Cz=2\nX=1\n");
    ASSERT_TRUE(reader) << error;
    EXPECT_EQ(reader->fileType(), 6);
    EXPECT_EQ(namesOf(*reader, 1), "P8-Cz|P8|Cz");
    EXPECT_TRUE(reader->isMap1010());
    EXPECT_STREQ(reader->getChannelMapName(), "(Private)");
}

TEST_F(Layout, ALinkThatLeadsNowhereHidesNoFile) {
    fs::create_directory(dir.file("far"));
    EdfFile().signal("a", 4).records(3).writeTo(dir.file("far/own.edf"));
    fs::create_symlink("nowhere", dir.file("own.edf"));
    const std::string text = "[FileInfo]\nFile=" + dir.file("far/own.edf") + "\nFileType=EDF90\n";
    EXPECT_TRUE(open(text)) << error;
}

TEST_F(Layout, SaysWhatIsWrongWithIt) {
    const struct {
        std::string text;
        const char* words;
    } cases[] = {
        {"[FileInfo]\nFile=rec.raw\n", "no FileType in a section FileInfo"},
        {"[FileInfo]\nFile=x.lay\nFileType=KelvaneLayout\n", "FileType is 'KelvaneLayout'"},
        {"[FileInfo]\nFileType=Nonsense\n", "FileType is 'Nonsense'"},
        {"[FileInfo]\nFileType=EDF90\n", "attributes of a recording of type EDF90"},
        {"[FileInfo]\nFile=rec.raw\nFileType=Interleaved\nSamplingRate=1\n",
         "not complete: the attribute file has no HeaderLength in its section FileInfo"},
        {"[FileInfo]\nFile=gone.edf\nFileType=EDF90\n", "gone.edf: no such file"},
        {"[FileInfo]\nFile=rec.raw\nFileType=Rembrandt\n", "Rembrandt (*.msr)"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(open(c.text)) << c.text;
        EXPECT_THAT(error, testing::StartsWith(dir.file("x.lay") + ": "));
        EXPECT_THAT(error, HasSubstr(c.words));
    }
    EXPECT_EQ(_KrnlAllocReaderEx(13, ""), nullptr);
    EXPECT_EQ(_KrnlAllocReaderEx(13, dir.file("gone.lay").c_str()), nullptr);
}

class Pair : public testing::Test {
  protected:
    void SetUp() override {
        EdfFile().signal("a", 4).signal("b", 4).records(8).writeTo(dir.file("a.edf"));
        EdfFile().bdf().signal("c", 8).records(8).writeTo(dir.file("b.bdf"));
        both = dir.file("a.edf") + "*" + dir.file("b.bdf");
    }
    TempDir dir;
    std::string both;
    std::string error;
};

TEST_F(Pair, OpensByBothNames) {
    EXPECT_EQ(DetectFileType(both.c_str()), pairType(6, 48));
    const ReaderPtr reader = openReader(both.c_str(), 0, &error);
    ASSERT_TRUE(reader) << error;
    EXPECT_EQ(reader->channelCount(), 3);
    EXPECT_EQ(reader->samplingRate(), 8.0);
    EXPECT_EQ(reader->fileName(), dir.file("a.edf"));
    float values[16];
    EXPECT_EQ(reader->getData(2, 0, 15, values, 1.0, 0), 16);
    EXPECT_EQ(reader->getData(0, 0, 15, values, 1.0, 0), 16);
}

TEST_F(Pair, TellsWhichMemberFails) {
    fs::remove(dir.file("b.bdf"));
    EXPECT_FALSE(openReader(both.c_str(), pairType(6, 48), &error));
    EXPECT_THAT(error, StartsWith(dir.file("b.bdf") + ": no such file"));
    EXPECT_FALSE(openReader(both.c_str(), 0, &error));
    EXPECT_THAT(error, StartsWith(dir.file("b.bdf") + ": no such file"));
    EXPECT_FALSE(openReader((dir.file("a.edf") + "*" + dir.write("c", "x")).c_str(), 0, &error));
    EXPECT_THAT(error, StartsWith(dir.file("c") + ": not a recording"));
    EXPECT_EQ(_KrnlAllocReaderEx(pairType(6, 48), dir.file("a.edf").c_str()), nullptr);
    EXPECT_EQ(_KrnlAllocReaderEx(pairType(6, 99), both.c_str()), nullptr);
}

// The names of the interface are cut to 259 characters, the paths are not.
TEST_F(Pair, OpensRecordingsInDeepFolders) {
    fs::path deep = dir.path();
    for (int i = 0; i < 6; ++i)
        deep /= std::string(60, 'd');
    fs::create_directories(deep);
    const std::string a = (deep / "a.edf").string();
    fs::copy_file(dir.file("a.edf"), a);
    EXPECT_TRUE(openReader((a + "*" + a).c_str(), 0, &error)) << error;
    std::ofstream(deep / "a.lay") << "[FileInfo]\nFileType=EDF90\nFile=C:\\"
                                  << std::string(300, 'x') << "\\A.EDF\n";
    EXPECT_TRUE(openReader((deep / "a.lay").c_str(), 0, &error)) << error;
}

TEST_F(Pair, AllocationNamesItAfterTheFirst) {
    CString name = both;
    const UnheldReader pair(_KrnlAllocReaderEx(pairType(6, 48), name));
    ASSERT_TRUE(pair);
    EXPECT_EQ(name, dir.file("a.edf"));
    EXPECT_EQ(pair->fileName(), name);
    EXPECT_EQ(pair->fileType(), pairMarker);
    const auto& members = dynamic_cast<SyncReader&>(*pair);
    EXPECT_EQ(members.first()->fileType(), 6);
    EXPECT_EQ(members.second()->fileName(), dir.file("b.bdf"));
}

} // namespace
} // namespace kvsig::test
