#include "support/Command.h"
#include "support/EdfFile.h"
#include "tool/plot/PageLayout.h"
#include "tool/plot/TraceReducer.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace kvsig::test {
namespace {

using testing::StartsWith;

TEST(Plot, WritesThreeKindsOfPicture) {
    const TempDir dir;
    EdfFile()
        .signal("EEG C3-Ref", 64)
        .signal("Temp", 1)
        .units("DegC")
        .records(10)
        .writeTo(dir.file("a.edf"));
    const std::string png("\x89PNG\r\n\x1A\n", 8);
    for (const auto& [name, start] : {std::pair<const char*, std::string>("a.svg", "<?xml"),
                                      {"a.PNG", png},
                                      {"a.pdf", "%PDF-"}}) {
        const CommandResult run =
            runCommand(dir, std::string("plot a.edf --low-filter 0.5 --notch 20 -o ") + name);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(dir.read(name), StartsWith(start)) << name;
    }
}

TEST(Plot, RefusalsLeaveNoPicture) {
    const TempDir dir;
    EdfFile().signal("C3", 64).records(2).writeTo(dir.file("a.edf"));
    EXPECT_EQ(runCommand(dir, "plot a.edf -o a.gif").exitCode, 2);
    EXPECT_EQ(runCommand(dir, "plot a.edf").exitCode, 2);
    EXPECT_EQ(runCommand(dir, "plot a.edf --channels Cz -o a.svg").exitCode, 1);
    EXPECT_EQ(runCommand(dir, "plot a.edf --sensitivity 0 -o a.svg").exitCode, 2);
    EXPECT_EQ(dir.read("a.svg"), "");
}

// A channel of equal digital limits calibrates to infinities; the others must still be drawn.
TEST(Plot, DrawsWhatIsNotFiniteAsNothing) {
    const TempDir dir;
    EdfFile()
        .signal("C3", 64)
        .signal("dummy", 64)
        .digital("5", "5")
        .records(2)
        .writeTo(dir.file("a.edf"));
    const CommandResult run = runCommand(dir, "plot a.edf -o a.svg");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(dir.read("a.svg"), StartsWith("<?xml"));
}

TEST(TraceReducer, KeepsEverySampleOfAShortTrace) {
    tool::TraceReducer trace(4, 10);
    const float values[] = {1, 5, std::numeric_limits<float>::quiet_NaN(), -2};
    trace.add(values, 4);
    trace.finish();
    ASSERT_EQ(trace.points().size(), 3U);
    EXPECT_EQ(trace.points()[2].position, 0.75F);
    EXPECT_EQ(trace.lowest(), -2.0F);
    EXPECT_EQ(trace.highest(), 5.0F);
    EXPECT_NEAR(trace.mean(), 4.0 / 3, 1e-12);
}

TEST(TraceReducer, KeepsTheExtremesOfALongOne) {
    constexpr std::int64_t count = 100000;
    tool::TraceReducer whole(count, 100), parts(count, 100);
    std::vector<float> values(count, 0.0F);
    values[31234] = 9.0F;
    values[31235] = -7.0F;
    whole.add(values.data(), count);
    whole.finish();
    for (std::int64_t at = 0; at < count; at += 777)
        parts.add(values.data() + at, std::min<std::int64_t>(777, count - at));
    parts.finish();
    EXPECT_LE(whole.points().size(), 200U);
    ASSERT_EQ(whole.points().size(), parts.points().size()) << "blocks must not matter";
    const auto spike = std::find_if(whole.points().begin(), whole.points().end(),
                                    [](const auto& point) { return point.value == 9.0F; });
    ASSERT_NE(spike, whole.points().end());
    EXPECT_EQ((spike + 1)->value, -7.0F) << "in their order";
}

TEST(PageLayout, GridsSuitThePagesDuration) {
    const tool::TimeGrid page(10, 260);
    EXPECT_EQ(page.major, 1.0);
    EXPECT_EQ(page.minor, 0.2);
    EXPECT_EQ(page.labelEvery, 1.0);
    const tool::TimeGrid glimpse(0.8, 260);
    EXPECT_LE(glimpse.labelEvery, 0.4) << "a page of less than a second has clock texts too";
    const tool::TimeGrid night(86400, 260);
    EXPECT_EQ(night.minor, 0.0);
    EXPECT_EQ(night.labelEvery, 7200.0);
    EXPECT_GE(260 / (86400 / night.labelEvery), 17.0) << "clock texts do not run together";
}

TEST(PageLayout, ManyRowsStayOnTheirPage) {
    for (const std::size_t rows : {1U, 19U, 64U, 139U, 9999U}) {
        const tool::PageLayout layout(rows);
        EXPECT_LE(layout.height, 1001.0) << rows;
        EXPECT_NEAR(layout.rowCentre(rows - 1) + layout.rowSpacing / 2, layout.bottom, 1e-6);
    }
}

TEST(PageLayout, SensitivitiesComeFromTheUsualList) {
    EXPECT_EQ(tool::fittingSensitivity(80, 10), 10.0);
    EXPECT_EQ(tool::fittingSensitivity(70, 10), 7.0);
    EXPECT_EQ(tool::fittingSensitivity(0, 10), 1.0);
    EXPECT_EQ(tool::fittingSensitivity(25000, 10), 3000.0);
    EXPECT_GT(tool::fittingSensitivity(1e30, 10), 1e28);
    EXPECT_EQ(tool::fittingSensitivity(std::nan(""), 10), 1.0);
    EXPECT_EQ(tool::scaleBarLength(10), 100.0);
    EXPECT_EQ(tool::scaleBarLength(7), 50.0);
    EXPECT_EQ(tool::scaleBarLength(30), 200.0);
}

} // namespace
} // namespace kvsig::test
