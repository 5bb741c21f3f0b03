#include "faults/Faults.h"
#include "kvsig/kernel/ChannelMap.h"
#include "kvsig/util/OutputFile.h"
#include "support/InDirectory.h"
#include "support/TempDir.h"
#include "support/Testing.h"

#include <iterator>

namespace kvsig::test {
namespace {

// One way of writing over an old file.
struct Writer {
    const char* name;
    const char* file;
    bool (*write)(const std::string& path);
};

bool storeMap(const std::string&) {
    std::istringstream defn("Cz-Ref=1\n");
    return storeChannelMap("New", defn);
}

bool exportBytes(const std::string& path) {
    OutputFile file;
    return file.open(path.c_str()) && file.write(std::string(700000, 'n')) &&
           file.writeAt(0, "header", 6) && file.write("end") && file.commit();
}

class WriteFaultsOf : public testing::TestWithParam<Writer> {
  protected:
    void rewind() const { dir.write(GetParam().file, old); }
    [[nodiscard]] bool write() const { return GetParam().write(dir.file(GetParam().file)); }
    [[nodiscard]] std::string content() const { return dir.read(GetParam().file); }
    [[nodiscard]] auto entries() const {
        return std::distance(fs::directory_iterator(dir.path()), {});
    }

    const std::string old = "[ChannelMap]\nOld=\n[Old]\nFp1-Ref=1\n";
    const TempDir dir;
    const InDirectory here{dir.path()};
};

// Disk full or broken at any call, the renaming included: false is returned and nothing else is
// left than the old file, whole.
TEST_P(WriteFaultsOf, AFailureAtAnyCallKeepsTheOldFile) {
    rewind();
    int calls = 0;
    std::string fresh;
    {
        const WriteFaults faults({});
        ASSERT_TRUE(write());
        calls = WriteFaults::calls();
        fresh = content();
    }
    ASSERT_NE(fresh, old);
    ASSERT_GE(calls, 3) << "a write, a flush to the disk and a renaming";
    for (const int code : {ENOSPC, EIO, EDQUOT})
        for (int call = 0; call < calls; ++call) {
            rewind();
            const WriteFaults faults({.failFrom = call, .code = code});
            EXPECT_FALSE(write()) << call;
            EXPECT_EQ(content(), old) << call;
            EXPECT_EQ(entries(), 1) << "no temporary stays behind";
        }
}

TEST_P(WriteFaultsOf, InterruptedAndShortWritesAreCompleted) {
    rewind();
    ASSERT_TRUE(write());
    const std::string whole = content();
    rewind();
    const WriteFaults faults({.longestTransfer = 4096, .interrupts = true});
    EXPECT_TRUE(write());
    EXPECT_EQ(content(), whole);
}

INSTANTIATE_TEST_SUITE_P(Files, WriteFaultsOf,
                         testing::Values(Writer{"ChannelMaps", "kvunkdat.ini", storeMap},
                                         Writer{"Exports", "export.csv", exportBytes}),
                         [](const auto& writer) { return std::string(writer.param.name); });

} // namespace
} // namespace kvsig::test
