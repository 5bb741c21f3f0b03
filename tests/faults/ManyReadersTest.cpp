#include "kvsig/registry/FrontDoor.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

#include <sys/resource.h>

namespace kvsig::test {
namespace {

TEST(ManyReaders, ThreeHundredAtOnceKeepApart) {
    constexpr int count = 300;
    const TempDir dir;
    const auto firstOf = [](int i) { return (i - i % 3) * 64; }; // every third is open three times
    std::vector<ReaderPtr> readers;
    for (int i = 0; i < count; ++i) {
        const EdfFile file = EdfFile()
                                 .signal("EEG C3", 64)
                                 .physical("-32768", "32767")
                                 .samples([i, &firstOf](int, std::int64_t at) {
                                     return firstOf(i) + static_cast<int>(at);
                                 });
        readers.push_back(
            openReader(dir.write(std::to_string(firstOf(i)) + ".edf", file.bytes()).c_str()));
        ASSERT_TRUE(readers.back());
    }
    for (int step = 0; step < 3 * count; ++step) {
        const int i = step * 101 % count;
        float value = 0.0F;
        readers[static_cast<std::size_t>(i)]->getData(0, 63, 63, &value, 1.0, 0);
        ASSERT_EQ(value, static_cast<float>(firstOf(i) + 63)) << i;
    }
}

// The process may have no more than 40 while it lives.
struct FewDescriptors {
    FewDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit few{40, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before); }
    rlimit before{};
};

// Not under UndefinedBehaviorSanitizer, which needs descriptors of its own to look at memory.
TEST(ManyReaders, WithoutDescriptorsOneIsRefusedAndTheOthersReadOn) {
    const TempDir dir;
    const EdfFile recording = EdfFile().signal("EEG C3", 8).physical("-32768", "32767");
    const std::string path = dir.write("a.edf", recording.bytes());
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
        for (const ReaderPtr& reader : readers) {
            float value = 0.0F;
            EXPECT_EQ(reader->getData(0, 3, 3, &value, 1.0, 0), 1);
            EXPECT_EQ(value, static_cast<float>(recording.sample(0, 3)));
        }
        readers.pop_back();
        readers.push_back(openReader(path.c_str(), 6, &error));
        ASSERT_TRUE(readers.back()) << "a closed one makes room: " << error;
    }
    EXPECT_TRUE(openReader(path.c_str()));
}

} // namespace
} // namespace kvsig::test
