#include "kvsig/registry/FrontDoor.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace kvsig {
namespace {

constexpr int perRecord = 8;

std::string recordingOf(int number) {
    return test::EdfFile()
        .signal("EEG C3", perRecord)
        .physical("-32768", "32767")
        .records(8)
        .samples(
            [number](int, std::int64_t i) { return static_cast<std::int32_t>(number * 64 + i); })
        .bytes();
}

std::vector<float> blockOf(IDataReader& reader) {
    std::vector<float> values(64);
    reader.getData(0, 0, 63, values.data(), 1.0, 0);
    return values;
}

TEST(ManyReaders, ThreeHundredAtOnceKeepApart) {
    constexpr int count = 300;
    const test::TempDir dir;
    std::vector<ReaderPtr> readers;
    for (int i = 0; i < count; ++i) {
        std::string error;
        // Every third recording is open twice.
        readers.push_back(openReader(
            dir.write(std::to_string(i - i % 3) + ".edf", recordingOf(i - i % 3)).c_str(), 0,
            &error));
        ASSERT_TRUE(readers.back()) << error;
    }
    for (int round = 0; round < 3; ++round)
        for (int step = 0; step < count; ++step) {
            const int i = step * 101 % count;
            const auto values = blockOf(*readers[static_cast<std::size_t>(i)]);
            ASSERT_EQ(values[0], static_cast<float>((i - i % 3) * 64)) << i;
            ASSERT_EQ(values[63], static_cast<float>((i - i % 3) * 64 + 63)) << i;
        }
}

class FewDescriptors {
  public:
    FewDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit few = m_before;
        few.rlim_cur = 40;
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

  private:
    rlimit m_before{};
};

// Not under UndefinedBehaviorSanitizer, which needs descriptors of its own to look at memory.
TEST(ManyReaders, WithoutDescriptorsAReaderIsRefusedAndTheOthersReadOn) {
    const test::TempDir dir;
    const std::string path = dir.write("a.edf", recordingOf(7));
    std::vector<ReaderPtr> readers;
    {
        const FewDescriptors few;
        std::string error;
        while (readers.size() < 100) {
            ReaderPtr reader = openReader(path.c_str(), 6, &error);
            if (!reader)
                break;
            readers.push_back(reader);
        }
        ASSERT_GT(readers.size(), 10U);
        ASSERT_LT(readers.size(), 40U);
        EXPECT_EQ(error, path + ": Too many open files");
        EXPECT_FALSE(openReader(path.c_str())) << "nor is its type told";
        for (const ReaderPtr& reader : readers)
            EXPECT_EQ(blockOf(*reader)[3], 7.0F * 64 + 3);
        readers.pop_back();
        readers.push_back(openReader(path.c_str(), 6, &error));
        ASSERT_TRUE(readers.back()) << "a closed one makes room: " << error;
    }
    EXPECT_TRUE(openReader(path.c_str()));
}

} // namespace
} // namespace kvsig
