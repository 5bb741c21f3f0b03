#include "support/Command.h"
#include "support/EdfFile.h"
#include "tool/CountStream.h"
#include "tool/RowStream.h"

#include <optional>

namespace kvsig::tool {
namespace {

using test::EdfFile;
using test::TempDir;

std::int32_t countOf(int signal, std::int64_t index) {
    return static_cast<std::int32_t>((index * 37 + signal * 1000) % 30011 - 15000);
}

EdfFile recordingOf(const char* name, int samplesPerRecord, int records) {
    return EdfFile()
        .signal(std::string(name) + "3", samplesPerRecord)
        .physical("-3000", "3553.5")
        .signal(std::string(name) + "4", samplesPerRecord)
        .physical("-3000", "3553.5")
        .samples(countOf)
        .records(records);
}

// Samples in a record of `seconds`, so that rates need not be whole.
struct Rate {
    int samples;
    int seconds;
};

class PairWindows : public testing::TestWithParam<std::pair<Rate, Rate>> {
  protected:
    static constexpr int duration = 126; // whole records of all

    PairWindows() {
        const auto& [first, second] = GetParam();
        const auto make = [this](const char* name, Rate rate) {
            recordingOf(name, rate.samples, duration / rate.seconds)
                .duration(std::to_string(rate.seconds))
                .writeTo(dir.file(std::string(name) + ".edf"));
        };
        make("C", first);
        make("P", second);
    }

    // The rows' values from windows of as many pages.
    std::vector<std::vector<float>> streamed(const SignalOptions& options, SampleRange range,
                                             int pages, bool kernelValues = false) {
        auto recording = openUsableRecording(dir.file("C.edf") + "*" + dir.file("P.edf"), 0);
        recording->reader->setMaxPages(static_cast<short>(pages));
        all = {0, recording->storedSamples() - 1};
        Rows rows(*recording);
        EXPECT_TRUE(rows.select(options, false));
        RowStream stream(rows.rows(), range.last < 0 ? all : range);
        stream.setKernelValues(kernelValues);
        std::vector<std::vector<float>> values(rows.rows().size());
        for (windows = 0; stream.next(); ++windows)
            for (std::size_t row = 0; row < values.size(); ++row)
                values[row].insert(values[row].end(), stream.values(row),
                                   stream.values(row) + stream.window().length());
        return values;
    }

    const TempDir dir;
    SampleRange all;
    int windows = 0;
};

TEST_P(PairWindows, EverySampleHasOneValueWhereverARangeBegins) {
    const auto& [first, second] = GetParam();
    const auto perSecond = [](Rate rate) { return 1.0 * rate.samples / rate.seconds; };
    const Rate common = perSecond(first) > perSecond(second) ? first : second;
    SignalOptions options;
    for (const bool filtered : {false, true})
        for (const bool kernelValues : {false, true}) {
            options.channels = "C3,P4,C3-C4,P3-P4,C3-P4,C3+C4+P3+P4";
            options.highFilter = filtered ? 2.0 : 0.0;
            const auto whole = streamed(options, {}, 15, kernelValues);
            ASSERT_EQ(std::ssize(whole[0]), duration / common.seconds * common.samples);
            EXPECT_EQ(whole, streamed(options, {}, 2, kernelValues)) << "in shorter windows";
            EXPECT_GT(windows, 10);
            if (filtered)
                continue;
            for (const SampleRange range : {SampleRange{1, 1}, {2, 2}, {701, 1300}}) {
                const auto part = streamed(options, range, 2, kernelValues);
                for (std::size_t row = 0; row < part.size(); ++row)
                    for (long i = range.first; i <= range.last; ++i)
                        ASSERT_EQ(part[row][static_cast<std::size_t>(i - range.first)],
                                  whole[row][static_cast<std::size_t>(i)])
                            << row << " " << i;
            }
            // Sample floor(i * r / R) of the file.
            const double constant = kernelValues ? 0.0 : 276.8;
            for (std::size_t i = 0; i < whole[0].size(); ++i)
                for (const auto& [row, rate] : {std::pair(0U, first), std::pair(1U, second)}) {
                    const auto own = static_cast<std::int64_t>(i) * rate.samples * common.seconds /
                                     (std::int64_t{rate.seconds} * common.samples);
                    ASSERT_NEAR(whole[row][i], countOf(static_cast<int>(row), own) * 0.1 + constant,
                                1e-3)
                        << row << " " << i;
                }
            for (std::size_t i = 0; i < whole[0].size(); ++i)
                ASSERT_NEAR(whole[4][i], whole[0][i] - whole[1][i], 2e-3) << i;
        }
}

INSTANTIATE_TEST_SUITE_P(Rates, PairWindows,
                         testing::Values(std::pair(Rate{512, 1}, Rate{100, 1}),
                                         std::pair(Rate{100, 1}, Rate{256, 1}),
                                         std::pair(Rate{300, 1}, Rate{100, 1}),
                                         std::pair(Rate{100, 7}, Rate{1000, 9})));

class PairExports : public test::CommandTest {};

// Ten hertz beside twenty: a ramp of one count a sample.
TEST_F(PairExports, ARangeAsShortAsASampleHasItsValue) {
    const auto ramp = [](int, std::int64_t index) { return static_cast<std::int32_t>(index); };
    EdfFile().signal("C3", 10).samples(ramp).records(5).writeTo(dir.file("a.edf"));
    EdfFile().signal("P3", 20).samples(ramp).records(5).writeTo(dir.file("b.edf"));
    const auto exported = [this](const std::string& options) {
        return command("export 'a.edf*b.edf' --channels C3 " + options).out;
    };
    EXPECT_EQ(exported("--from 0.1 --to 0.15 --values raw"), "time,C3\n0.1,1\n");
    EXPECT_EQ(exported("--from 0.15 --to 0.3 --values raw"), "time,C3\n0.15,1\n0.2,2\n0.25,2\n");
    EXPECT_EQ(exported("--from 0.15 --to 0.2 --values kernel"), "time,C3\n0.15,0.1\n");
    // The counts of both survive in raw data.
    EXPECT_EQ(command("export 'a.edf*b.edf' -o pair.raw").err, "");
    EXPECT_EQ(command("export pair.lay --values raw --from 0.15 --to 0.2").out,
              "time,C3-Ref,P3-Ref\n0.15,1,3\n");
}

} // namespace
} // namespace kvsig::tool
