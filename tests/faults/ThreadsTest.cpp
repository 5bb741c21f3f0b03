#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/LogSink.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

#include <atomic>
#include <thread>

// One reader per thread: nothing that readers share may show. Run under ThreadSanitizer too.
namespace kvsig::test {
namespace {

constexpr int threads = 8;
constexpr int rounds = 12;

struct Facts {
    std::string names;
    std::vector<float> values;
    friend bool operator==(const Facts&, const Facts&) = default;
};

Facts useReader(const std::string& path) {
    Facts facts;
    const ReaderPtr reader = openReader(path.c_str());
    if (!reader)
        return facts;
    for (int channel = 0; channel < reader->channelCount(); ++channel)
        facts.names += std::string(reader->channelName(channel)) + reader->grid1(channel) +
                       reader->grid2(channel) + reader->channelUnits(channel);
    facts.values.resize(2 * 256);
    reader->getData(0, 0, 255, facts.values.data(), 1.0, 0);
    SourceMontage montage;
    montage.setReader(reader.get());
    montage.setHighPass({true, 0.5, 0.0, 0.0});
    montage.createMontage("Recorded");
    montage.source(1)->getData(0, 255, facts.values.data() + 256, 1.0);
    std::stringstream attributes;
    reader->writeAttributeFile(attributes);
    facts.names += attributes.str() + typeNameOf(reader->fileType());
    return facts;
}

TEST(Threads, OneReaderPerThreadOnEightThreads) {
    const TempDir dir;
    std::vector<std::string> paths;
    std::vector<Facts> expected;
    for (int i = 0; i < threads; ++i) {
        EdfFile file;
        file.signal("EEG C" + std::to_string(i) + "-Ref", 32)
            .signal("EEG P" + std::to_string(i), 32)
            .records(20)
            .samples([i](int signal, std::int64_t k) {
                return static_cast<std::int32_t>((k * 7 + i * 100 + signal) % 2001);
            });
        const std::string path = dir.write("t" + std::to_string(i) + ".edf", file.bytes());
        // Every second one with the file before it, as a pair.
        paths.push_back(i % 2 == 0 ? path : paths.back() + "*" + path);
        expected.push_back(useReader(paths.back()));
        ASSERT_FALSE(expected.back().names.empty());
    }
    std::atomic<int> messages{0};
    SetLogSink([&messages](int, const char*) { ++messages; });
    std::atomic<int> wrong{0};
    std::vector<std::thread> workers;
    for (int i = 0; i < threads; ++i)
        workers.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                // Own files and those of the others.
                const auto which = static_cast<std::size_t>((i + round % 3) % threads);
                if (!(useReader(paths[which]) == expected[which]))
                    ++wrong;
            }
        });
    for (std::thread& worker : workers)
        worker.join();
    SetLogSink({});
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(messages, 0);
}

} // namespace
} // namespace kvsig::test
