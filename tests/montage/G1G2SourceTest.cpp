#include "kvsig/montage/G1G2Source.h"

#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/MontageContext.h"
#include "montage/ScriptedSource.h"
#include "support/FakeReader.h"

#include <climits>
#include <gmock/gmock.h>
#include <string>

namespace kvsig {
namespace {

using test::definition;
using test::read;
using testing::Each;
using testing::IsEmpty;
using Samples = std::vector<float>;

constexpr int averageBit = G1G2Source::averageBit;

class ScriptedMontage final : public MontageContext {
  public:
    std::vector<AvgSource*> averages;
    int row = -1;
    AvgSource* averageReference(int index) override {
        return index >= 0 && std::cmp_less(index, averages.size())
                   ? averages[static_cast<std::size_t>(index)]
                   : nullptr;
    }
    int rowOf(const DataSource&) override { return row; }
};

// Sample i is 100 + i of Fp1, 100 + i / 2 of Fp2, 300 + i of Cz and 400 + i of T3.
class G1G2SourceTest : public testing::Test {
  protected:
    G1G2SourceTest() {
        reader.file.channels = {{"Fp1"}, {"Fp2"}, {"Cz"}, {"T3", "A1"}};
        reader.file.channels[1].calibration = 0.5;
        reader.file.raw = [](int channel, long i) {
            return 100 * (channel + 1) + static_cast<int>(i);
        };
        reader.open("scripted");
    }

    test::FakeReader reader;
    ScriptedMontage montage;
};

TEST_F(G1G2SourceTest, IsGrid1MinusGrid2) {
    G1G2Source source(reader, 0, 1);
    EXPECT_EQ(read(source, 48, 51, 2.0), (Samples{48, 49, 50, 51})) << "across two pages";
    EXPECT_EQ(read(source, -2, 1), (Samples{0, 0, 0, 0.5F})) << "nothing before the start";
    int delivered = 0;
    EXPECT_EQ(read(source, 999, 1001, 1.0, &delivered), (Samples{499.5F, 0, 0}));
    EXPECT_EQ(delivered, 3);
    source.setChannel12(1, 0);
    EXPECT_EQ(read(source, 999, 999), (Samples{-499.5F})) << "nothing of the old channels is left";
}

TEST_F(G1G2SourceTest, EqualChannelsAreAFlatLineThatReadsNothing) {
    reader.takeCalls();
    for (const int channel : {0, -1, 99, averageBit}) {
        G1G2Source source(reader, channel, channel);
        int delivered = 0;
        EXPECT_THAT(read(source, 0, 99, 1.0, &delivered), Each(0.0F));
        EXPECT_EQ(delivered, 100);
    }
    EXPECT_THAT(reader.takeCalls("getSampleChunk"), IsEmpty());
    G1G2Source source(reader, 0, 0);
    EXPECT_EQ(source._getData(5, 4, nullptr, 1.0), 0);
    EXPECT_EQ(source._getData(LONG_MIN, LONG_MAX, nullptr, 1.0), 0);
}

TEST_F(G1G2SourceTest, AChannelThatIsNotThereIsLeftOut) {
    for (const int none : {-1, -2, 4, 99}) {
        G1G2Source referential(reader, 0, none);
        EXPECT_EQ(read(referential, 10, 11, -1.0), (Samples{-110, -111})) << none;
        EXPECT_STREQ(referential.grid2(), "Ref");
    }
    G1G2Source inverted(reader, -1, 2);
    EXPECT_EQ(read(inverted, 10, 11), (Samples{-310, -311}));
    G1G2Source nothing(reader, -1, -2);
    int delivered = -1;
    EXPECT_EQ(read(nothing, 10, 11, 1.0, &delivered), (Samples{0, 0}));
    EXPECT_EQ(delivered, 0);
    EXPECT_STREQ(nothing.name(), "-");
}

TEST_F(G1G2SourceTest, Grid2CanBeAnAverageOfTheMontage) {
    AvgSource average(reader, {0, 2}); // 200 + i
    montage.averages = {nullptr, &average};
    G1G2Source source(reader, 3, averageBit | 1);
    source.setMontage(&montage);
    EXPECT_EQ(read(source, 10, 12, 0.5), (Samples{100, 100, 100}));
    EXPECT_EQ(average.cache()->nFirst, 10) << "read through its cache";
    EXPECT_EQ(average.cache()->dScale, -0.5);
    EXPECT_STREQ(source.grid2(), "Fp1Cz");
    average.setName("Av2");
    EXPECT_STREQ(source.name(), "T3-Av2");
    EXPECT_EQ(definition(source), "T3-Av2");
}

TEST_F(G1G2SourceTest, AnAverageThatIsNotThereIsNoGrid2) {
    montage.averages = {nullptr};
    for (const int channel2 : {averageBit, averageBit | 1, 0x7FFFFFFF}) {
        G1G2Source source(reader, 3, channel2);
        EXPECT_EQ(read(source, 10, 11), (Samples{410, 411})) << "without a montage";
        source.flushCache();
        source.setMontage(&montage);
        EXPECT_EQ(read(source, 10, 11), (Samples{410, 411}));
        EXPECT_STREQ(source.grid2(), "A1");
        EXPECT_STREQ(source.name(), "T3-A1");
    }
}

class Doubling : public IIRLowPass {
  public:
    int apply(float* data, int count) override {
        std::transform(data, data + count, data, [](float x) { return 2 * x; });
        return 1;
    }
};

TEST_F(G1G2SourceTest, AnAverageIsFilteredByItsOwnChain) {
    Doubling filter;
    AvgSource average(reader, {0, 2});
    average.filters()->addNext(&filter);
    montage.averages = {&average};
    G1G2Source source(reader, 3, averageBit);
    source.setMontage(&montage);
    EXPECT_EQ(read(source, 10, 11), (Samples{-10, -11})); // 400 + i - 2 (200 + i)
    average.setUseFilter(false);
    source.flushCache();
    EXPECT_EQ(read(source, 10, 11), (Samples{200, 200}));
}

TEST_F(G1G2SourceTest, AReaderChannelComesBeforeTheAverageOfItsNumber) {
    reader.file.channels.resize(averageBit + 1, {"X"});
    reader.file.raw = [](int channel, long) { return channel; };
    reader.open("wide");
    AvgSource average(reader, {0});
    montage.averages = {&average};
    G1G2Source source(reader, 3, averageBit);
    source.setMontage(&montage);
    EXPECT_EQ(read(source, 0, 0), (Samples{3 - averageBit}));
    EXPECT_STREQ(source.grid2(), "X");
}

TEST_F(G1G2SourceTest, ItsOwnNameComesBeforeTheGridNames) {
    G1G2Source source(reader, 0, 1);
    source.setChannel12(2, -1);
    source.setName("vertex");
    EXPECT_STREQ(source.name(), "vertex");
    EXPECT_EQ(definition(source), "Cz-Ref");
    source.setName(nullptr);
    EXPECT_STREQ(source.name(), "Cz-Ref");
}

TEST_F(G1G2SourceTest, GapRowsAreBlankAndNumberedByTheirPlace) {
    G1G2Source gap(reader, 0, 0);
    gap.setKind(1);
    gap.setMontage(&montage);
    EXPECT_TRUE(gap.isGap());
    EXPECT_STREQ(gap.name(), "        ");
    montage.row = 4;
    gap.setShowScaling(true);
    EXPECT_EQ(definition(gap), "Gap5") << "a gap has no settings";
    gap.setKind(2);
    EXPECT_FALSE(gap.isGap());
}

TEST_F(G1G2SourceTest, SettingsAreWrittenOnRequestAndOnlyWhenTheyDiffer) {
    G1G2Source source(reader, 0, 1);
    SourceSettings settings;
    settings.intValue = 9; // neither this nor the filters, unless they are the source's own
    settings.lowPass = {.use = true, .cutoff = 70.0};
    settings.highPass = {.use = true, .cutoff = 1.6};
    source.setSettings(settings);
    source.setTransparentScale(true);
    EXPECT_EQ(definition(source), "Fp1-Fp2");
    source.setShowScaling(true);
    source.setPolyMinimum(-12.5);
    source.setPolyMaximum(1e6);
    EXPECT_EQ(definition(source), "Fp1-Fp2|0,0,1,9,0.1 sec,70 Hz,1,1,-12.500000,1000000.000000");
    EXPECT_EQ(definition(source, false), "Fp1-Fp2");

    const std::pair<SourceSettings, const char*> cases[] = {
        {{-3, false, true, 0, {}, {}}, "-3,0,1"},
        {{0, true, true, 0, {}, {}}, "0,1,1"},
        {{0, false, false, 0, {}, {}}, "0,0,0"},
    };
    for (const auto& [different, fields] : cases) {
        G1G2Source plain(reader, 0, 1);
        plain.setSettings(different);
        EXPECT_EQ(definition(plain),
                  std::string("Fp1-Fp2|") + fields + ",0,(off),(off),0,0,0.000000,0.000000");
    }
}

TEST_F(G1G2SourceTest, AttributesAreSettingsAndScaleNotChannelsOrName) {
    G1G2Source source(reader, 0, 1);
    SourceSettings settings;
    settings.intValue = 6;
    settings.flag = true;
    source.setSettings(settings);
    source.setShowScaling(true);
    source.setTransparentScale(true);
    source.setPolyMinimum(-2.0);
    source.setPolyMaximum(3.0);
    source.setName("mine");
    G1G2Source other(reader, 2, 3);
    other.copyAttributes(source);
    EXPECT_EQ(definition(other), "Cz-T3|0,1,1,6,(off),(off),1,1,-2.000000,3.000000");
    EXPECT_STREQ(other.name(), "Cz-T3");
}

} // namespace
} // namespace kvsig
