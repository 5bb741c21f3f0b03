#include "tool/RowStream.h"

#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

#include <optional>

namespace kvsig::tool {
namespace {

constexpr int rate = 256;

// Offset, drift, rhythms and hum, another mixture in each signal.
std::int32_t mixture(int signal, std::int64_t index) {
    const double t = static_cast<double>(index) / rate;
    return static_cast<std::int32_t>(std::lround(1000 + 300 * std::sin(0.4 * t) +
                                                 500 * std::sin((40 + 20 * signal) * t + signal) +
                                                 200 * std::sin(2 * 3.14159265 * 60 * t)));
}

class RowStreamTest : public testing::Test {
  protected:
    RowStreamTest() {
        test::EdfFile()
            .signal("C3", rate)
            .signal("A1", rate)
            .signal("A2", rate)
            .physical("-3000", "3553.5")
            .samples(mixture)
            .records(60)
            .writeTo(path);
        options.channels = "C3,A2,C3-A1+A2,A1:0.2+A2:2";
    }

    std::optional<Recording> opened(int pages) const {
        auto recording = openUsableRecording(path, 0);
        recording->reader->setMaxPages(static_cast<short>(pages));
        return recording;
    }

    // All rows, one after the other, from as many windows as fit into so many pages.
    std::vector<float> streamed(int pages, SampleRange range, int& windows) const {
        const auto recording = opened(pages);
        Rows rows(*recording);
        EXPECT_TRUE(rows.select(options, false));
        const auto length = static_cast<std::size_t>(range.length());
        std::vector<float> values(rows.rows().size() * length);
        RowStream stream(rows.rows(), range);
        for (windows = 0; stream.next(); ++windows)
            for (std::size_t row = 0; row < rows.rows().size(); ++row)
                std::copy_n(stream.values(row), stream.window().length(),
                            values.begin() + static_cast<std::ptrdiff_t>(row * length) +
                                (stream.window().first - range.first));
        return values;
    }

    // The same by one request for the recording up to the range's end.
    std::vector<float> inOnePass(SampleRange range) const {
        const auto recording = opened(15);
        Rows rows(*recording);
        EXPECT_TRUE(rows.select(options, false));
        std::vector<float> values;
        for (const Row& row : rows.rows()) {
            std::vector<float> all(static_cast<std::size_t>(range.last) + 1);
            row.source->getData(0, range.last, all.data(), row.gain);
            for (long i = range.first; i <= range.last; ++i)
                values.push_back(
                    static_cast<float>(double{all[static_cast<std::size_t>(i)]} + row.offset));
        }
        return values;
    }

    const test::TempDir dir;
    const std::string path = dir.file("a.edf");
    SignalOptions options;
};

TEST_F(RowStreamTest, WindowsJoinToTheLibrarysOnePass) {
    const SampleRange range{30 * rate + 17, 55 * rate + 3};
    for (const bool filtered : {false, true}) {
        options.lowFilter = filtered ? 1.0 : 0.0;
        options.highFilter = filtered ? 35.0 : 0.0;
        options.notch = filtered ? 60.0 : 0.0;
        int windows = 0;
        const std::vector<float> parts = streamed(2, range, windows);
        EXPECT_GE(windows, 5);
        EXPECT_EQ(parts, streamed(15, range, windows)) << "where windows end does not matter";
        EXPECT_EQ(windows, 1);
        const std::vector<float> whole = inOnePass(range);
        ASSERT_EQ(parts.size(), whole.size());
        for (std::size_t i = 0; i < parts.size(); ++i)
            ASSERT_NEAR(double{parts[i]}, double{whole[i]}, filtered ? 2e-3 : 5e-5)
                << "value " << i << (filtered ? ", filtered" : "");
    }
}

// Microvolts around half a million of them: a float holds steps of 1/32 there, and rounding twice
// would lose one of them in many samples.
TEST_F(RowStreamTest, RecordedChannelsAreRoundedOnce) {
    const auto value = [](int signal, std::int64_t index) {
        return static_cast<std::int32_t>(signal * 100 - 30000 + index * 37 % 60000);
    };
    test::EdfFile()
        .signal("tRigGer", rate)
        .physical("-99.9618", "1000000")
        .signal("Temp", rate)
        .physical("-99.9618", "1000000")
        .units("DegC")
        .signal("flat", rate)
        .digital("5", "5")
        .samples(value)
        .records(20)
        .writeTo(path);
    options.channels = "tRigGer,Temp,flat";
    const SampleRange range{rate + 3, 20 * rate - 1};
    int windows = 0;
    const std::vector<float> values = streamed(2, range, windows);
    const long length = range.length();
    ASSERT_EQ(std::ssize(values), 3 * length);
    for (int signal = 0; signal < 2; ++signal)
        for (long i = 0; i < length; ++i) {
            const int count = value(signal, range.first + i);
            ASSERT_EQ(values[static_cast<std::size_t>(signal * length + i)],
                      static_cast<float>((count + 32768.0) * 1000099.9618 / 65535.0 - 99.9618))
                << signal << " " << i;
        }
}

} // namespace
} // namespace kvsig::tool
