#include "kvsig/kernel/ChannelMap.h"

#include "kvsig/util/ProfileFile.h"
#include "support/FakeReader.h"
#include "support/InDirectory.h"
#include "support/TempDir.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
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
    EXPECT_EQ(reader.calibration(1), 1.0);

    std::istringstream none;
    EXPECT_TRUE(reader.applyChannelMapDefn("(default)", none));
    EXPECT_EQ(namesOf(reader), ownNames);
    EXPECT_FALSE(reader.isMap1010());
    EXPECT_STREQ(reader.getChannelMapName(), "(Default)");
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
    for (const int outside : {-1, 4, 1 << 30})
        EXPECT_STREQ(reader.getChannelMapNames(outside), "");
    EXPECT_EQ(defnOf(reader, "SLEEP"), "[SLEEP]\nC3-A2=2\nO1-A1=3\n");

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

    std::filesystem::remove("kvunkdat.ini");
    std::filesystem::create_directory("kvunkdat.ini");
    EXPECT_FALSE(add(reader, "Good", "C3-A2=1"));
    EXPECT_FALSE(reader.deleteChannelMapDefn("Good"));
}

TEST_F(StoredChannelMaps, DefinitionsRoundTrip) {
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
    const std::string text = defnOf(reader, "(private)");
    EXPECT_EQ(text, "[(Private)]\nO1-A1=1\nFp2-Ref=2\nC4-A1=3\n");

    FakeReader other;
    ASSERT_TRUE(other.open("a"));
    std::istringstream back(text);
    EXPECT_TRUE(other.applyChannelMapDefn("(Private)", back));
    EXPECT_EQ(namesOf(other), namesOf(reader));
}

// A process that rewrites the file is killed again and again; whoever looks finds a whole file.
TEST_F(StoredChannelMaps, AKilledWriterLeavesTheOldOrTheNewFile) {
    constexpr std::size_t shortest =
        std::string_view("[ChannelMap]\nMap=\n[Map]\nCz-Ref=1\n").size();
    std::mt19937 random(4711);
    std::string program = KVSIG_MAP_WRITER;
    std::string folder = dir.path().string();
    const std::array<char*, 3> arguments{program.data(), folder.data(), nullptr};
    std::size_t longest = 0;
    std::set<std::size_t> sizes;
    for (int round = 0; round < 25; ++round) {
        const auto before = std::filesystem::exists("kvunkdat.ini")
                                ? std::filesystem::last_write_time("kvunkdat.ini")
                                : std::filesystem::file_time_type();
        pid_t writer = 0;
        ASSERT_EQ(
            posix_spawn(&writer, program.c_str(), nullptr, nullptr, arguments.data(), environ), 0);
        std::error_code missing;
        while (std::filesystem::last_write_time("kvunkdat.ini", missing) == before || missing)
            ASSERT_EQ(waitpid(writer, nullptr, WNOHANG), 0) << "the writer failed";
        for (auto looks = random() % 8; looks > 0; --looks)
            sizes.insert(readProfileFile("kvunkdat.ini").value_or("").size());
        kill(writer, SIGKILL);
        ASSERT_EQ(waitpid(writer, nullptr, 0), writer);
        const std::string text = dir.read("kvunkdat.ini");
        sizes.insert(text.size());
        longest = std::max(longest, text.size());
        EXPECT_TRUE(text.ends_with("-Ref=4000\n") || text.ends_with("[Map]\nCz-Ref=1\n")) << round;
    }
    EXPECT_THAT(sizes, ElementsAre(shortest, longest)) << "both were seen, and nothing else";
}

} // namespace
} // namespace kvsig
