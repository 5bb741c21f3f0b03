#include "kvsig/kernel/ChannelMap.h"
#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/readers/NeuroscanReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/InDirectory.h"
#include "support/NeuroscanFile.h"
#include "support/Opened.h"
#include "support/RawFile.h"

#include <ctime>
#include <functional>

// Inputs that are as large as they may be and made to be slow. Work that grows with the square of
// their length would take minutes.
namespace kvsig::test {
namespace {

double processorSeconds(const std::function<void()>& work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

std::string repeated(std::size_t count, const std::function<std::string(std::size_t)>& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text(i);
    return all;
}

std::string electrode(std::size_t number) { return "E" + std::to_string(number); }

class Cost : public testing::Test {
  protected:
    ~Cost() override {
        SetMontageStream(nullptr);
        SetMontageDirectory(nullptr);
    }
    void openChannels(std::size_t count) {
        RawFile file;
        file.channels(static_cast<int>(count)).headerLength(0);
        file.sections("[ChannelMap]\n" + repeated(count, [](std::size_t i) {
                          return electrode(i) + "-Ref=" + std::to_string(i + 1) + "\n";
                      }));
        ASSERT_TRUE(readAttributes(reader, file.attributes()));
        ASSERT_TRUE(reader.open(dir.write("x", std::string(count * 8, '\0')).c_str()));
    }
    double secondsFor(const std::string& montageText) {
        std::istringstream stream(montageText);
        SetMontageDirectory("");
        SetMontageStream(&stream);
        montage.setReader(&reader);
        return processorSeconds([&] { EXPECT_EQ(montage.createMontage("M"), 1); });
    }

    static constexpr double most = 10.0; // under sanitizers too
    const TempDir dir;
    const InDirectory here{dir.path()};
    InterleavedReader reader;
    SourceMontage montage;
};

// Each name was looked for among all channels: 5 s for 77 KB.
TEST_F(Cost, OfRowsOverManyChannels) {
    openChannels(32767);
    const std::string rows = repeated(4000, [](std::size_t i) {
        return electrode(32766 - i) + "-" + electrode(28000 - i) + "=\n";
    });
    EXPECT_LT(secondsFor("[M]\n" + rows), most);
    EXPECT_EQ(montage.sourceCount(), 4000);
}

TEST_F(Cost, OfLongAverages) {
    openChannels(4000);
    const std::string terms = repeated(1000, [](std::size_t) { return "+E3999"; });
    const std::string rows =
        repeated(150, [&](std::size_t i) { return electrode(i) + terms + "=\n"; });
    EXPECT_LT(secondsFor("[M]\n" + rows), most);
    EXPECT_GE(montage.avgRefCount(), 150);
}

TEST_F(Cost, OfMapFilesOfManySections) {
    dir.write("kvunkdat.ini",
              "[ChannelMap]\n" + repeated(150000, [](std::size_t) { return "[M]\na\n"; }));
    EXPECT_LT(processorSeconds([] {
                  std::istringstream defn("Cz-Ref=1\n");
                  EXPECT_TRUE(storeChannelMap("N", defn));
                  EXPECT_TRUE(deleteStoredChannelMap("M"));
              }),
              most);
    EXPECT_EQ(dir.read("kvunkdat.ini").find("[M]"), std::string::npos);
}

TEST_F(Cost, OfLayoutsOfManyNames) {
    const std::string names = repeated(100000, [](std::size_t i) {
        return electrode(i) + "-R=" + std::to_string(i % 32767 + 1) + "\n";
    });
    const std::string path =
        dir.write("a.lay", "[FileInfo]\nFile=none\nFileType=EDF90\n[ChannelMap]\n" + names);
    EXPECT_LT(processorSeconds([&] { EXPECT_FALSE(openReader(path.c_str())); }), most);
}

// A rate is two bytes of a header: five seconds of it were a page of 0.9 GB.
TEST_F(Cost, OfFewSamplesAtHighRates) {
    const std::string honest = NeuroscanFile().channels(1400).frames(2).bytes();
    const auto secondsAt = [&](int rate) {
        const std::string path =
            dir.write("a.cnt", poked(honest, 376, u16(static_cast<std::uint64_t>(rate))));
        return processorSeconds([&] {
            NeuroscanReader recording;
            ASSERT_TRUE(recording.open(path.c_str()));
            for (int channel = 0; channel < 1400; channel += 100)
                EXPECT_EQ(rawOf(recording, channel, 0, 0)[0], rampCount(channel, 0));
        });
    };
    constexpr double ratio = 10.0, startUp = 0.02;
    EXPECT_LT(secondsAt(65535), ratio * secondsAt(1) + startUp);
}

} // namespace
} // namespace kvsig::test
