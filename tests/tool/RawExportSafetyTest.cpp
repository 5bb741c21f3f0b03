#include "kvsig/kvsig.h"
#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/RawFile.h"

namespace kvsig::test {
namespace {

class RawExportSafety : public CommandTest {
  protected:
    RawExportSafety() { recording.signal("Cz", 4).records(3).writeTo(dir.file("a.edf")); }

    CommandResult run(const std::string& arguments) {
        return command("export --format raw " + arguments);
    }
    EdfFile recording;
};

TEST_F(RawExportSafety, ALayoutNeverTakesThePlaceOfItsData) {
    fs::create_symlink("out.lay", dir.file("link.raw"));
    fs::create_symlink("link.raw", dir.file("link.lay"));
    for (const char* output : {"out.lay", "OUT.LAY", "./sub.d/../out.lay"}) {
        const CommandResult refused = run(std::string("a.edf -o ") + output);
        EXPECT_EQ(refused.exitCode, 2) << output;
        EXPECT_THAT(refused.err, HasSubstr("would take the place of the data")) << output;
    }
    EXPECT_FALSE(fs::exists(dir.file("out.lay")));
    dir.write("out.lay", "kept");
    EXPECT_EQ(run("a.edf -o link.raw").exitCode, 2) << "both lead to out.lay";
    EXPECT_EQ(dir.read("out.lay"), "kept");
    fs::remove(dir.file("link.raw"));
    EXPECT_EQ(run("a.edf -o link.raw").exitCode, 1) << "a layout that leads to the data";
    EXPECT_EQ(dir.read("link.raw").size(), 24U);
}

// A file may hold more than its digital limits say.
TEST_F(RawExportSafety, CountsBeyondTheDigitalLimitsAreNeverClippedUnsaid) {
    const auto exported = [this](int most) {
        EdfFile()
            .signal("A-R", 4)
            .physical("-100", "100")
            .digital("-100", "100")
            .signal("B-R", 4)
            .physical("300", "-300")
            .digital("-100", "100")
            .samples([most](int, std::int64_t i) { return most - static_cast<int>(i); })
            .records(3)
            .writeTo(dir.file("b.edf"));
        CommandResult made = run("b.edf -o b.raw");
        const ReaderPtr from = openReader(dir.file("b.edf").c_str());
        const ReaderPtr to = openReader(dir.file("b.lay").c_str());
        float ours[12];
        float theirs[12];
        from->getData(1, 0, 11, theirs, 1.0, 0);
        to->getData(1, 0, 11, ours, 1.0, 0);
        for (int i = 0; i < 12; ++i)
            EXPECT_NEAR(ours[i], theirs[i], to->calibration(1) / 2);
        return made.err;
    };
    EXPECT_EQ(exported(10922), "") << "-3 * 10922 is a 16-bit count, the limits notwithstanding";
    EXPECT_THAT(exported(20000), HasSubstr("values are rounded to steps of 1.831"));
}

TEST_F(RawExportSafety, AnchorsStandWhereTheCommonRateHasThem) {
    const auto anchorOf = [this](const char* lay, int index) {
        SampleTime anchor;
        openReader(dir.file(lay).c_str())->getSampleTime(index, anchor);
        return anchor;
    };
    dir.write("stored.raw", RawFile().bytes());
    const char* anchors = "FileType=Interleaved\n[SampleTimes]\n0=0\n57=1000\n";
    dir.write("slow.lay", RawFile().rate("10").sections(anchors).attributes());
    EdfFile().signal("Oz", 20).records(75).writeTo(dir.file("fast.edf"));
    ASSERT_EQ(run("'slow.lay*fast.edf' -o pair.raw").exitCode, 0);
    EXPECT_EQ(anchorOf("pair.lay", 1).sample, 114);
    EXPECT_EQ(anchorOf("pair.lay", 1).time, 1000.0);
    // As doubles, 57 / 100 * 100 is a little less, and before a gap the clock is another.
    dir.write("odd.lay", RawFile().rate("100").sections(anchors).attributes());
    ASSERT_EQ(run("odd.lay --from 0.57 -o tail.raw").exitCode, 0);
    EXPECT_EQ(anchorOf("tail.lay", 0).time, 1000.0);
}

} // namespace
} // namespace kvsig::test
