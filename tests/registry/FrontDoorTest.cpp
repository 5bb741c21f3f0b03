#include "kvsig/registry/FrontDoor.h"

#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/LifelinesReader.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/ReadableFormats.h"
#include "support/LogCapture.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <random>
#include <sys/stat.h>
#include <typeindex>
#include <unistd.h>

namespace kvsig::test {
namespace {

class FrontDoor : public testing::Test {
  protected:
    std::string write(const char* name, const EdfFile& file) const {
        return dir.write(name, file.bytes());
    }
    TempDir dir;
    EdfFile edf = EdfFile().signal("EEG C3-A2", 4).records(3);
    std::string error = "untouched";
};

TEST_F(FrontDoor, TellsFormatsByContentNotByName) {
    const struct {
        const char* name;
        EdfFile file;
        int type;
    } cases[] = {
        {"a.edf", edf, 6},
        {"a.bdf", edf, 6},
        {"b.edf", EdfFile().bdf().signal("a", 4).records(3), 48},
        {"g.bdf", EdfFile().bdf().signal("a", 4).records(3).poke(0, "\x7F"), 0},
        {"c.edf", EdfFile(edf).poke(0, "1"), 0},
        {"d.edf", EdfFile(edf).poke(0, "0       0"), 6},
        {"f.edf", EdfFile(edf).truncate(0), 0},
    };
    for (const auto& c : cases) {
        const std::string path = write(c.name, c.file);
        EXPECT_EQ(DetectFileType(path.c_str()), c.type) << c.name;
        const ReaderPtr reader = openReader(path.c_str(), 0, &error);
        ASSERT_EQ(static_cast<bool>(reader), c.type != 0) << c.name;
        if (reader) {
            EXPECT_EQ(reader->fileType(), c.type);
            EXPECT_EQ(reader->fileName(), path);
            EXPECT_EQ(reader->sampleCount(), c.type == 48 ? 16 : 12);
        } else {
            EXPECT_THAT(error, StartsWith(path + ": not a recording of a known format"));
        }
    }
}

TEST_F(FrontDoor, TheHostsOrderChoosesAmongReadersOfOneContent) {
    const std::string path = write("a.edf", edf);
    const std::vector<const char*> before = GetDataReaderSortOrder();
    for (const auto& [name, type] : {std::pair("Lifelines (*.edf)", 41),
                                     {"TelefactorEDF (*.edf)", 47},
                                     {"EDF90 (*.edf)", 6}}) {
        SetDataReaderSortOrder({name});
        EXPECT_EQ(DetectFileType(path.c_str()), type);
    }
    SetDataReaderSortOrder(before);
    EXPECT_EQ(DetectFileType(path.c_str()), 6);
}

TEST_F(FrontDoor, AGivenTypeChoosesTheReader) {
    const std::string path = write("a.edf", edf);
    const auto readerOf = [&](int type) {
        const ReaderPtr opened = openReader(path.c_str(), type, &error);
        EXPECT_TRUE(opened) << error;
        const IDataReader& reader = *opened;
        return std::type_index(typeid(reader));
    };
    EXPECT_EQ(readerOf(6), typeid(EDF90Reader));
    EXPECT_EQ(readerOf(41), typeid(LifelinesReader));
    EXPECT_EQ(readerOf(47), typeid(TelefactorEDFReader));
    EXPECT_EQ(readerOf(48), typeid(BDFReader));
    EXPECT_TRUE(KrnlIsReadable(13) && KrnlIsReadable(pairType(6, 48)));
    EXPECT_TRUE(KrnlIsReadable(pairType(13, 6))) << "a layout may be half of a pair";
    EXPECT_FALSE(KrnlIsReadable(0) || KrnlIsReadable(7) || KrnlIsReadable(pairType(6, 7)));
    const struct {
        int type;
        const char* words;
    } refusals[] = {
        {7, "recordings of the format PLEEG (*.wg1) are not read by this build"},
        {-1, "-1 is the number of no recording type"},
        {45, "switched off by the file-type mode 1"},
        {pairType(6, 6), "a pair is named by both its paths"},
        {13, "not a layout"},
    };
    for (const auto& c : refusals) {
        EXPECT_FALSE(openReader(path.c_str(), c.type, &error));
        EXPECT_THAT(error, AllOf(StartsWith(path + ": "), HasSubstr(c.words)));
    }
}

TEST_F(FrontDoor, NamesTellFormatsThatAreNotBuilt) {
    EXPECT_EQ(DetectFileType(dir.write("a.msr", "x").c_str()), 57);
    EXPECT_EQ(DetectFileType(dir.write("a.sig", "x").c_str()), 0);
    EXPECT_FALSE(openReader(dir.file("a.sig").c_str(), 0, &error));
    EXPECT_THAT(error, HasSubstr("by its name it may be BrainLab, Harmonie"));
    EXPECT_EQ(DetectFileType(dir.write("b.dat2", "x").c_str()), 0);
    // A layout beside raw data is pointed at.
    dir.write("rec.lay", "[FileInfo]\n");
    for (const char* raw : {"rec.raw", "rec.bin"}) {
        EXPECT_FALSE(openReader(dir.write(raw, "x").c_str(), 0, &error));
        EXPECT_THAT(error, HasSubstr("the layout " + dir.file("rec.lay") + " describes"));
    }
}

TEST_F(FrontDoor, ManyStarsAreNoDepth) {
    const std::string stars(200000, '*');
    EXPECT_EQ(DetectFileType(stars.c_str()), 0);
    EXPECT_EQ(DetectFileType(nullptr), 0);
    EXPECT_FALSE(openReader(stars.c_str(), 0, &error));
}

TEST_F(FrontDoor, TheLicenceCheckGuardsEveryAllocation) {
    const std::string path = write("a.edf", edf);
    LogCapture log;
    KrnlSetLicenceCheck([] { return false; });
    CString name = path;
    EXPECT_EQ(_KrnlAllocReaderEx(6, name), nullptr);
    EXPECT_EQ(_KrnlAllocReaderEx(pairType(6, 6), (path + "*" + path).c_str()), nullptr);
    EXPECT_FALSE(openReader(path.c_str(), 0, &error));
    int asked = 0;
    KrnlSetLicenceCheck([&asked] { return ++asked > 0; });
    EXPECT_EQ(_KrnlAllocReaderEx(-1, name), nullptr);
    EXPECT_EQ(asked, 1) << "without a reader too";
    KrnlSetLicenceCheck({});
    EXPECT_THAT(error, HasSubstr("licence"));
    EXPECT_THAT(log.take(), Contains(HasSubstr("licence check refuses")));
    EXPECT_TRUE(openReader(path.c_str()));
}

TEST_F(FrontDoor, OnlyRegularFilesOpen) {
    const std::string fifo = dir.file("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string target = write("target.edf", edf);
    fs::create_symlink(target, dir.file("link.edf"));
    const struct {
        std::string path;
        const char* words;
    } cases[] = {
        {dir.file("missing.edf"), "no such file"},
        {dir.path().string(), "is a directory, not a recording"},
        {fifo, "is not a regular file"}, // and it blocks nobody
        {"/dev/null", "is not a regular file"},
        {"", "no such file"},
        {target + "/below", "ot a directory"},
    };
    for (const auto& c : cases)
        for (const int type : {0, 6, 48}) {
            EXPECT_EQ(DetectFileType(c.path.c_str()), 0);
            EXPECT_FALSE(openReader(c.path.c_str(), type, &error));
            EXPECT_THAT(error, StartsWith(c.path + ": "));
            EXPECT_THAT(error, HasSubstr(c.words));
            EDF90Reader reader;
            EXPECT_FALSE(reader.open(c.path.c_str()));
            EXPECT_EQ(reader.getLastError(), 1);
        }
    EXPECT_FALSE(openReader(nullptr));
    EXPECT_EQ(DetectFileType(nullptr), 0);
    EXPECT_TRUE(openReader(dir.file("link.edf").c_str()));
}

TEST_F(FrontDoor, AFileWithoutPermissionSaysSo) {
    const std::string path = write("a.edf", edf);
    fs::permissions(path, fs::perms::none);
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads everything";
    EXPECT_FALSE(openReader(path.c_str(), 0, &error));
    EXPECT_THAT(error, HasSubstr("permission denied"));
}

TEST_F(FrontDoor, WhatFailsToOpenHandsOutTheReadersSentence) {
    const std::string cut = write("cut.edf", EdfFile(edf).truncate(400));
    EXPECT_FALSE(openReader(cut.c_str(), 0, &error));
    EXPECT_EQ(error,
              cut + ": header length (offset 184) is \"512\", but the file ends after 400 bytes");
    EXPECT_FALSE(openReader(cut.c_str())); // nobody asks why
}

// The wrong reader by force reads nonsense, but safely.
TEST_F(FrontDoor, AnyBytesByAnyReaderAreSurvived) {
    std::string noise;
    std::minstd_rand next(1);
    while (noise.size() < 4000)
        noise.push_back(static_cast<char>(next() >> 8U));
    const std::string paths[] = {write("a.edf", edf), dir.write("noise", noise),
                                 write("b.bdf", EdfFile().bdf().signal("a", 5).records(3)),
                                 dir.write("digits", std::string(3000, '9')),
                                 dir.write("nuls", std::string(3000, '\0'))};
    for (const std::string& path : paths)
        for (const ReadableFormat& row : readableFormats())
            if (const ReaderPtr reader = openReader(path.c_str(), row.type, &error))
                readAround(dynamic_cast<DataReader&>(*reader));
}

struct Counted : EDF90Reader {
    explicit Counted(int& balance) : count(balance) { ++count; }
    ~Counted() override { --count; }
    ULONG AddRef() override { return ++references, EDF90Reader::AddRef(); }
    ULONG Release() override { return --references, EDF90Reader::Release(); }
    int& count;
    int references = 0;
};

TEST(ReaderPtr, HoldsExactlyOneReferenceEach) {
    int alive = 0;
    {
        auto* reader = new Counted(alive);
        ReaderPtr first(reader);
        ReaderPtr second = first;
        EXPECT_EQ(reader->references, 2);
        const ReaderPtr moved = std::move(first);
        const ReaderPtr& itself = second;
        second = itself;
        EXPECT_EQ(reader->references, 2);
        second = ReaderPtr(new Counted(alive));
        EXPECT_EQ(reader->references, 1);
        EXPECT_EQ(alive, 2);
        second = ReaderPtr();
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

} // namespace
} // namespace kvsig::test
