#include "support/Command.h"
#include "support/EdfFile.h"
#include "tool/plot/PageCaption.h"
#include "tool/plot/PageLayout.h"
#include "tool/plot/TraceReducer.h"

#include <locale>

namespace kvsig::test {
namespace {

class Plot : public CommandTest {};

// A channel of equal digital limits calibrates to infinities; the others must still be drawn.
TEST_F(Plot, WritesThreeKindsOfPicture) {
    EdfFile file = EdfFile().signal("EEG C3-Ref", 64).signal("Temp", 1).units("DegC");
    file.signal("dummy", 64).digital("5", "5").records(10).writeTo(dir.file("a.edf"));
    const std::string png("\x89PNG\r\n\x1A\n", 8);
    for (const auto& [name, start] : {std::pair<const char*, std::string>("a.svg", "<?xml"),
                                      {"a.PNG", png},
                                      {"a.pdf", "%PDF-"}}) {
        const CommandResult run =
            command(std::string("plot a.edf --low-filter 0.5 --notch 20 -o ") + name);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(dir.read(name), StartsWith(start)) << name;
    }
    EXPECT_EQ(command("plot a.edf -o out/ --format svg").exitCode, 0);
    EXPECT_THAT(dir.read("out/a.svg"), StartsWith("<?xml"));
}

TEST_F(Plot, RefusalsLeaveNoPicture) {
    EdfFile().signal("C3", 64).records(2).writeTo(dir.file("a.edf"));
    for (const char* wrong : {"-o a.gif", "", "--sensitivity 0 -o a.svg"})
        EXPECT_EQ(command(std::string("plot a.edf ") + wrong).exitCode, 2) << wrong;
    EXPECT_EQ(command("plot a.edf --channels Cz -o a.svg").exitCode, 1);
    EXPECT_EQ(dir.read("a.svg"), "");
}

TEST(TraceReducer, KeepsEverySampleOfAShortTrace) {
    tool::TraceReducer trace(4, 10);
    const float values[] = {1, 5, std::numeric_limits<float>::quiet_NaN(), -2};
    trace.add(values, 4);
    trace.finish();
    ASSERT_EQ(trace.line().size(), 3U);
    EXPECT_EQ(trace.line()[2].position, 0.75F);
    EXPECT_EQ(trace.lowest(), -2.0F);
    EXPECT_EQ(trace.highest(), 5.0F);
    EXPECT_EQ(trace.centre(), 1.0) << "the median";
    EXPECT_TRUE(trace.columns().empty());
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
    const auto line = whole.line();
    EXPECT_LE(line.size(), 200U);
    ASSERT_EQ(line.size(), parts.line().size()) << "blocks must not matter";
    const auto spike = std::find_if(line.begin(), line.end(),
                                    [](const auto& point) { return point.value == 9.0F; });
    ASSERT_NE(spike, line.end());
    EXPECT_EQ((spike + 1)->value, -7.0F) << "in their order";
}

TEST(TraceReducer, ColumnsTellWhereMostSamplesLie) {
    constexpr std::int64_t count = 100000;
    tool::TraceReducer trace(count, 100);
    std::vector<float> values(count);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i % 2 == 0 ? 10003.0F : 9997.0F;
    std::fill_n(values.begin(), 20000, 1e9F); // an artefact of a fifth of the page
    trace.add(values.data(), count);
    trace.finish();
    ASSERT_EQ(trace.columns().size(), 100U);
    const tool::TraceColumn& column = trace.columns()[70];
    EXPECT_FLOAT_EQ(column.position, 0.705F);
    EXPECT_EQ(column.low, 9997.0F);
    EXPECT_EQ(column.high, 10003.0F);
    EXPECT_NEAR(column.mean, 10000.0, 1e-2);
    EXPECT_NEAR(column.deviation, 3.0, 1e-4);
    EXPECT_NEAR(trace.centre(), 10000.0, 1e-2) << "an artefact does not move the row";
}

using Points = std::vector<std::pair<double, double>>;

// The lines of an SVG that have more points than the grid's, in millimetres, in drawing order.
std::vector<Points> tracesOf(const std::string& svg) {
    std::vector<Points> traces;
    for (std::size_t at = svg.find(" d=\"M "); at != std::string::npos;
         at = svg.find(" d=\"M ", at + 1)) {
        std::istringstream path(svg.substr(at + 4, svg.find('"', at + 4) - at - 4));
        path.imbue(std::locale::classic());
        Points points;
        char command = 0;
        double x = 0.0;
        double y = 0.0;
        while (path >> command >> x >> y && (command == 'M' || command == 'L'))
            points.emplace_back(x, y);
        if (points.size() > 100)
            traces.push_back(points);
    }
    return traces;
}

// Each row has one pulse of its own time and sign; the areas of the page are those of its layout.
TEST_F(Plot, NegativeIsUpAndRowsFollowTheSelection) {
    EdfFile file = EdfFile().signal("EEG C3-Ref", 64).signal("EEG C4-Ref", 64).signal("ECG", 64);
    file.samples([](int signal, std::int64_t i) { // 0.1 uV a count
        const int second[] = {2, 6, 8};
        const int counts[] = {1000, -1000, 10000};
        const int wiggle = i % 2 == 0 ? 1 : -1; // of a straight line no points are left
        return wiggle + (i / 64 == second[signal] ? counts[signal] : 50);
    });
    file.records(10).writeTo(dir.file("a.edf"));
    const CommandResult run = command("plot a.edf --channels C4,ECG,C3 --sensitivity 10 -o a.svg");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const std::vector<Points> traces = tracesOf(dir.read("a.svg"));
    ASSERT_EQ(traces.size(), 3U);
    const tool::PageLayout layout(3);
    const auto belowCentre = [&](std::size_t row, double seconds) {
        const double x = layout.left + seconds / 10 * layout.traceWidth();
        const auto point = std::find_if(traces[row].begin(), traces[row].end(),
                                        [x](const auto& p) { return p.first >= x; });
        return point->second - layout.rowCentre(row);
    };
    EXPECT_NEAR(belowCentre(0, 1.5), 0.0, 0.03) << "C4: its constant is taken off";
    EXPECT_NEAR(belowCentre(0, 6.5), -10.5, 0.03) << "105 uV to the negative at 10 uV/mm: up";
    EXPECT_LT(belowCentre(1, 8.5), -5.0) << "ECG: positive up, on a scale of its own";
    EXPECT_NEAR(belowCentre(2, 6.5), 0.0, 0.03) << "C3";
    EXPECT_NEAR(belowCentre(2, 2.5), 9.5, 0.03) << "95 uV to the positive: down";
}

TEST_F(Plot, LongPagesAreNoSolidInk) {
    EdfFile().signal("C3", 64).records(200).writeTo(dir.file("a.edf"));
    const auto shades = [this](const std::string& range) {
        EXPECT_EQ(command("plot a.edf -o a.svg " + range).exitCode, 0);
        return dir.read("a.svg").find("fill-opacity:0.22") != std::string::npos;
    };
    EXPECT_TRUE(shades(""));
    EXPECT_FALSE(shades("--to 30")) << "a usual page is a line";
}

TEST(PageCaption, NamesSensitivitySpeedAndFilters) {
    tool::SignalOptions signals;
    EXPECT_EQ(tool::captionText(7, 26, signals),
              "7 uV/mm, negative up   26 mm/s   low filter off   high filter off   notch off");
    signals.lowFilter = 0.5;
    signals.highFilter = 70;
    signals.notch = 60;
    EXPECT_EQ(tool::captionText(0, 0.00903, signals),
              "0.00903 mm/s   low filter 0.5 Hz   high filter 70 Hz   notch 60 Hz (2 Hz wide at "
              "-3 dB)");
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
        EXPECT_NEAR(layout.rowCentre(rows - 1) + layout.rowSpacing / 2, layout.bottom - 3.5, 1e-6);
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
