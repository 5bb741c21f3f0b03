#include "kvsig/kernel/ChannelMap.h"

#include "kvsig/kernel/AttributeFile.h"
#include "kvsig/util/ProfileFile.h"
#include "support/FakeReader.h"
#include "support/InDirectory.h"
#include "support/TempDir.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace kvsig {
namespace {

using test::FakeReader;
using testing::ElementsAre;

std::vector<std::string> namesOf(DataReader& reader) {
    std::vector<std::string> names;
    for (int i = 0; i < reader.channelCount(); ++i)
        names.push_back(std::string(reader.channelName(i)) + "|" + reader.grid1(i) + "|" +
                        reader.grid2(i));
    return names;
}

bool readMap(DataReader& reader, const std::string& lines, const char* section = "M") {
    std::istringstream stream("[m]\n" + lines);
    return reader.readChannelMap(stream, section);
}

const std::vector<std::string> ownNames = {"Fp1-Ref|Fp1|Ref", "Fp2-Ref|Fp2|Ref", "Cz-Ref|Cz|Ref"};

TEST(ChannelMap, NamesTheChannelsOfItsNumbers) {
    FakeReader reader;
    ASSERT_TRUE(reader.open("a"));
    EXPECT_FALSE(readMap(reader, "C3-A2=1\n", "other"));
    EXPECT_FALSE(readMap(reader, "; no keys\nC3-A2\n"));
    EXPECT_EQ(reader.hasChannelMap(), 0);
    EXPECT_EQ(namesOf(reader), ownNames);
    EXPECT_TRUE(readMap(reader, "T7-A1-x=3\r\nEKG=1\nC3-A2=2\nc3-a2=1\nO1-A1=0\nO2-A1=-1\n"
                                "P3-A1=4\nP4-A1=32768\nPz-A1=2147483648\nFz-A1=2x\n"));
    EXPECT_EQ(reader.hasChannelMap(), 1);
    EXPECT_THAT(namesOf(reader), ElementsAre("Fp1-Ref|Fp1|Ref", "C3-A2|C3|A2", "T7-A1-x|T7|A1-x"))
        << "one name is none; a key counts once; numbers without a channel are ignored";
    EXPECT_TRUE(reader.isMap1010());
    EXPECT_EQ(reader.isMapReferential(), 0);
    EXPECT_TRUE(readMap(reader, "T3-Ref=3\nC3-Ref=2\n"));
    EXPECT_FALSE(reader.isMap1010());
    EXPECT_EQ(reader.isMapReferential(), 1);
    EXPECT_STREQ(reader.refGrid(), "Ref");
}

TEST(ChannelMap, ReadBeforeTheFileItWaitsForItsChannels) {
    FakeReader reader;
    EXPECT_TRUE(readMap(reader, "T8-A1=2\nO1-A1=32767\n"));
    EXPECT_STREQ(reader.channelName(1), "") << "no channels yet";
    EXPECT_FALSE(reader.isMap1010());
    ASSERT_TRUE(reader.open("a"));
    EXPECT_THAT(namesOf(reader), ElementsAre("Ch1||", "T8-A1|T8|A1", "Ch3||"));
    EXPECT_TRUE(reader.isMap1010());
    EXPECT_STREQ(reader.refGrid(), "A1");

    std::istringstream none;
    EXPECT_TRUE(reader.applyChannelMapDefn("(default)", none));
    EXPECT_EQ(namesOf(reader), ownNames);
    EXPECT_FALSE(reader.isMap1010());
    EXPECT_STREQ(reader.getChannelMapName(), "(Default)");
}

TEST(ChannelMap, IgnoredEntriesAreNotedWhenTheRecordingOpens) {
    FakeReader reader;
    std::string many;
    for (int i = 0; i < 10; ++i)
        many += "E" + std::to_string(i) + "=1\n";
    EXPECT_TRUE(readMap(reader, "C3-A2=3\nc3-a2=1\nC4-A2=x\nCh2=2\nO1-A2=4\n" + many));
    ASSERT_TRUE(reader.open("a"));
    std::vector<std::string> notes;
    for (const OpenFinding& finding : reader.openFindings())
        notes.push_back(finding.text);
    ASSERT_EQ(notes.size(), 11U)
        << "eight, how many more, the channel that is none, and those without a name";
    EXPECT_EQ(notes[0], "channel map: 'c3-a2=1' is ignored, the name comes a second time");
    EXPECT_THAT(notes[1], testing::StartsWith("channel map: 'C4-A2=x' is ignored, not a channel"));
    EXPECT_THAT(notes[2], testing::HasSubstr("'E0=1' is ignored, a name has two parts"));
    EXPECT_EQ(notes[8], "channel map: 4 more entries are ignored");
    EXPECT_EQ(notes[9], "channel map: it names channel 4, the recording has 3");
    EXPECT_THAT(notes[10], testing::HasSubstr("it names 1 of 3 channels"));
    reader.setChannelMapName("(Default)");
    ASSERT_TRUE(reader.open("a"));
    EXPECT_TRUE(reader.openFindings().empty());
}

TEST(ChannelMap, EveryNameIsWrittenUnderAKeyThatReadsBack) {
    const std::string single(40, 'n');
    const std::vector<std::string> names = {"[x]",   ";z",  "x=y",      "X=Y", "a|b",  "C3-A2",
                                            "c3-a2", "Ch8", "C3-A2\n[", "Fz",  single, ""};
    EXPECT_THAT(channelMapKeys(names, "A=1"),
                ElementsAre("_x]-Ref", "_z-Ref", "x_y-Ref", "2_X_Y-Ref", "a_b-Ref", "C3-A2",
                            "2_c3-a2", "Ch8", "C3-A2_[", "Fz-A_1", single.substr(0, 15) + "-Ref",
                            "Ch12"));
    std::ostringstream text;
    writeChannelNames(text, "M", names, "");
    std::istringstream stream(text.str());
    const auto map = parseChannelMap(stream, "M");
    ASSERT_TRUE(map);
    EXPECT_EQ(map->channels.size(), names.size() - 2) << "all but the unnamed";
    EXPECT_THAT(map->ignored, testing::IsEmpty());
    EXPECT_STREQ(map->channels.back().grid2, "Ref");
    const std::vector<std::string> equal(32767, "C3-A2"); // quick
    EXPECT_EQ(channelMapKeys(equal, "").back(), "32767_C3-A2");
}

class StoredChannelMaps : public testing::Test {
  protected:
    static bool add(DataReader& reader, const char* name, const std::string& defn) {
        std::istringstream stream(defn);
        stream.ignore(1000); // it is rewound
        return reader.addChannelMapDefn(name, stream);
    }
    static std::vector<std::string> listed(DataReader& reader) {
        std::vector<std::string> names;
        for (int i = 0; i < reader.getChannelMapCount(); ++i)
            names.emplace_back(reader.getChannelMapNames(i));
        return names;
    }
    static std::string defnOf(DataReader& reader, const char* name) {
        std::ostringstream stream;
        return reader.getChannelMapDefn(name, stream) ? stream.str() : "none";
    }

    const test::TempDir dir;
    const test::InDirectory in{dir.path()};
    FakeReader reader;
};

TEST_F(StoredChannelMaps, AreListedAppliedAndDeleted) {
    ASSERT_TRUE(reader.open("a"));
    EXPECT_THAT(listed(reader), ElementsAre("(Default)", "(Private)"));
    EXPECT_TRUE(add(reader, "Sleep", "[x]\nC3-A2= 2 second\r\n=1\nO1-A1=\nO1-A1=3\n"));
    EXPECT_TRUE(add(reader, "Lab 2", "C4-A1=1"));
    EXPECT_EQ(dir.read("kvunkdat.ini"), "[ChannelMap]\nSleep=\nLab 2=\n[Sleep]\nC3-A2=2\nO1-A1=3\n"
                                        "[Lab 2]\nC4-A1=1\n");
    EXPECT_THAT(listed(reader), ElementsAre("(Default)", "(Private)", "Sleep", "Lab 2"));
    EXPECT_EQ(defnOf(reader, "SLEEP"), "[SLEEP]\nC3-A2=2\nO1-A1=3\n");

    const std::string stored = dir.read("kvunkdat.ini");
    dir.write("kvunkdat.ini", "");
    EXPECT_STREQ(reader.getChannelMapNames(3), "Lab 2") << "the file is read by the count alone";
    EXPECT_EQ(reader.getChannelMapCount(), 2);
    for (const int outside : {-1, 3, 1 << 30})
        EXPECT_STREQ(reader.getChannelMapNames(outside), "");
    dir.write("kvunkdat.ini", stored);

    reader.setChannelMapName("sleep");
    EXPECT_STREQ(reader.getChannelMapName(), "sleep");
    EXPECT_THAT(namesOf(reader), ElementsAre("Fp1-Ref|Fp1|Ref", "C3-A2|C3|A2", "O1-A1|O1|A1"));
    reader.setChannelMapName("(Default)");
    EXPECT_EQ(namesOf(reader), ownNames);

    EXPECT_TRUE(add(reader, "sleep", "O2-A1=1")) << "in place of the old one";
    EXPECT_TRUE(reader.deleteChannelMapDefn("LAB 2"));
    EXPECT_TRUE(reader.deleteChannelMapDefn("never there"));
    EXPECT_EQ(dir.read("kvunkdat.ini"), "[ChannelMap]\nSleep=\n[Sleep]\nO2-A1=1\n");
    reader.setChannelMapName("Lab 2");
    EXPECT_EQ(namesOf(reader), ownNames) << "a missing map leaves the names";
    EXPECT_STREQ(reader.getChannelMapName(), "(Default)");
}

TEST_F(StoredChannelMaps, NamesThatWouldHarmTheFileAreRefused) {
    ASSERT_TRUE(add(reader, "Good", "C4-A1=1"));
    const std::string before = dir.read("kvunkdat.ini");
    const std::string tooLong(32, 'n');
    for (const char* name : {"(default)", "(PRIVATE)", "channelmap", "", "a]b", "a=b", "[a", ";a",
                             "a\nb", tooLong.c_str(), static_cast<const char*>(nullptr)})
        EXPECT_FALSE(add(reader, name, "C3-A2=1\n")) << name;
    for (const char* name : {"channelmap", "", static_cast<const char*>(nullptr)})
        EXPECT_TRUE(reader.deleteChannelMapDefn(name)) << "no map of that name";
    EXPECT_EQ(dir.read("kvunkdat.ini"), before);
    EXPECT_EQ(defnOf(reader, "ChannelMap"), "none");
    EXPECT_TRUE(add(reader, "Long",
                    "[k=1\n;x=1\n" + std::string(1030, 'k') +
                        "=1\nC3-A2=" + std::string(2000, '1') + "\n"));
    EXPECT_EQ(defnOf(reader, "Long"), "[Long]\nC3-A2=" + std::string(1024 - 6, '1') + "\n");

    dir.write("kvunkdat.ini", "[ChannelMap]\n" + tooLong + "=\n[" + tooLong + "]\nC3-A2=1\n");
    EXPECT_EQ(defnOf(reader, tooLong.c_str()), "[" + tooLong + "]\nC3-A2=1\n");
    EXPECT_TRUE(reader.deleteChannelMapDefn(tooLong.c_str()));
    EXPECT_EQ(dir.read("kvunkdat.ini"), "[ChannelMap]\n") << "others may store what we do not";
    class Endless : public std::streambuf {
        pos_type seekpos(pos_type to, std::ios::openmode) override { return to; }
        int_type underflow() override {
            setg(&c, &c, &c + 1);
            return c;
        }
        char c = 'k';
    } endless;
    std::istream stream(&endless);
    EXPECT_FALSE(reader.addChannelMapDefn("Endless", stream));

    std::filesystem::remove("kvunkdat.ini");
    std::filesystem::create_directory("kvunkdat.ini");
    EXPECT_FALSE(add(reader, "Good", "C3-A2=1"));
    EXPECT_FALSE(reader.deleteChannelMapDefn("Good"));
}

TEST_F(StoredChannelMaps, DefinitionsAreThoseInForce) {
    ASSERT_TRUE(reader.open("a"));
    EXPECT_EQ(defnOf(reader, "(Default)"), "[(Default)]\nFp1-Ref=1\nFp2-Ref=2\nCz-Ref=3\n");
    EXPECT_EQ(defnOf(reader, "(Private)"), "none") << "none is in force";
    EXPECT_EQ(defnOf(reader, "Lab"), "none");

    std::istringstream lab("[Lab]\nC3-A1=3\nO1-A1=1\n");
    EXPECT_FALSE(reader.applyChannelMapDefn("Other", lab));
    EXPECT_TRUE(reader.applyChannelMapDefn("lab", lab));
    EXPECT_STREQ(reader.channelMapName(), "lab");
    std::istringstream own("[ChannelMap]\nC4-A1=3\n");
    EXPECT_TRUE(reader.applyChannelMapDefn("(Private)", own));
    EXPECT_STREQ(reader.getChannelMapName(), "(Private)");
    EXPECT_EQ(defnOf(reader, "(private)"), "[(Private)]\nO1-A1=1\nFp2-Ref=2\nC4-A1=3\n");
}

// A process that rewrites the file is killed again and again; whoever looks finds a whole file.
TEST_F(StoredChannelMaps, AKilledWriterLeavesTheOldOrTheNewFile) {
    using Clock = std::chrono::steady_clock;
    const std::string shortest = "[ChannelMap]\nMap=\n[Map]\nCz-Ref=1\n";
    std::string longest = "[ChannelMap]\nMap=\n[Map]\n";
    for (int i = 1; i <= 4000; ++i)
        longest += "E" + std::to_string(i) + "-Ref=" + std::to_string(i) + "\n";
    std::mt19937 random(4711);
    std::string program = KVSIG_MAP_WRITER;
    std::string folder = dir.path().string();
    const std::array<char*, 3> arguments{program.data(), folder.data(), nullptr};
    for (int round = 0; round < 25; ++round) {
        const std::string before = readProfileFile("kvunkdat.ini").value_or("");
        pid_t writer = 0;
        ASSERT_EQ(
            posix_spawn(&writer, program.c_str(), nullptr, nullptr, arguments.data(), environ), 0);
        bool works = true;
        for (const auto end = Clock::now() + std::chrono::seconds(20);
             works && readProfileFile("kvunkdat.ini").value_or("") == before;)
            works = waitpid(writer, nullptr, WNOHANG) == 0 && Clock::now() < end;
        for (auto looks = random() % 8; looks > 0; --looks) {
            const std::string text = readProfileFile("kvunkdat.ini").value_or("");
            EXPECT_TRUE(text == shortest || text == longest) << round;
        }
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        ASSERT_TRUE(works) << "the writer failed or wrote nothing new";
        const std::string text = dir.read("kvunkdat.ini");
        EXPECT_TRUE(text == shortest || text == longest) << round;
    }
}

} // namespace
} // namespace kvsig
