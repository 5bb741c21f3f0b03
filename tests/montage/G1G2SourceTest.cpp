#include "kvsig/montage/G1G2Source.h"

#include "kvsig/filters/IIRLowPass.h"
#include "montage/MontageFixture.h"

#include <algorithm>
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

// Sample i is 100 + i of Fp1, 100 + i / 2 of Fp2, 300 + i of Cz and 400 + i of T3.
test::FakeRecording steps() {
    test::FakeRecording file;
    file.channels = {{"Fp1"}, {"Fp2"}, {"Cz"}, {"T3", "A1"}};
    file.channels[1].calibration = 0.5;
    file.raw = [](int channel, long i) { return 100 * (channel + 1) + static_cast<int>(i); };
    return file;
}

class G1G2SourceTest : public testing::Test {
  protected:
    // The mean of Fp1 and Cz: 200 + i.
    AvgSource& newAverage() {
        std::vector<int> channels{0, 2};
        return *montage.createSource(channels);
    }

    test::TestMontage montage{steps()};
    test::FakeReader& reader = montage.recording;
};

TEST_F(G1G2SourceTest, IsGrid1MinusGrid2) {
    G1G2Source source(reader, 0, 1);
    EXPECT_EQ(read(source, 48, 51, 2.0), (Samples{48, 49, 50, 51})) << "across two pages";
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
    newAverage();
    AvgSource& average = newAverage();
    montage.deleteSource(montage.avgRef(0));
    G1G2Source& source = *montage.createSource(3, averageBit | 1);
    EXPECT_EQ(read(source, 10, 12, 0.5), (Samples{100, 100, 100}));
    EXPECT_EQ(average.cache()->nFirst, 10) << "read through its cache";
    EXPECT_EQ(average.cache()->dScale, -0.5);
    EXPECT_STREQ(source.grid2(), "Fp1Cz");
    average.setName("Av2");
    EXPECT_EQ(definition(source), "T3-Av2");
    for (const int channel2 : {averageBit, averageBit | 2, 0x7FFFFFFF}) { // there are none
        G1G2Source alone(reader, 3, channel2);
        for (G1G2Source* row : {&alone, montage.createSource(3, channel2)}) {
            EXPECT_EQ(read(*row, 10, 11), (Samples{410, 411}));
            EXPECT_STREQ(row->name(), "T3-A1");
        }
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
    AvgSource& average = newAverage();
    average.filters()->addNext(&filter);
    G1G2Source& source = *montage.createSource(3, averageBit);
    EXPECT_EQ(read(source, 10, 11), (Samples{-10, -11})); // 400 + i - 2 (200 + i)
    average.setUseFilter(false);
    source.flushCache();
    EXPECT_EQ(read(source, 10, 11), (Samples{200, 200}));
}

TEST_F(G1G2SourceTest, AReaderChannelComesBeforeTheAverageOfItsNumber) {
    newAverage();
    reader.file.channels.resize(averageBit + 1, {"X"});
    reader.file.raw = [](int channel, long) { return channel; };
    reader.open("wide");
    G1G2Source& source = *montage.createSource(3, averageBit);
    EXPECT_EQ(read(source, 0, 0), (Samples{3 - averageBit}));
    EXPECT_STREQ(source.grid2(), "X");
}

TEST_F(G1G2SourceTest, GapRowsAreBlankAndNumberedByTheirPlace) {
    montage.createSource(0, 1);
    G1G2Source& gap = *montage.createSource(0, 0);
    gap.setKind(1);
    gap.setShowScaling(true);
    EXPECT_STREQ(gap.name(), "        ");
    EXPECT_EQ(definition(gap), "Gap2") << "a gap has no settings";
    gap.setKind(2);
    EXPECT_FALSE(gap.isGap());
}

TEST_F(G1G2SourceTest, SettingsAreWrittenWhenTheyDifferAndCopiedAsAttributes) {
    G1G2Source source(reader, 0, 1);
    SourceSettings settings;
    settings.intValue = 9; // neither this nor the filters, unless they are the source's own
    settings.lowPass = test::on(70.0);
    settings.highPass = test::on(1.6);
    source.setSettings(settings);
    source.setTransparentScale(true);
    EXPECT_EQ(definition(source), "Fp1-Fp2");
    source.setShowScaling(true);
    source.setPolyMinimum(-12.5);
    source.setPolyMaximum(1e6);
    EXPECT_EQ(definition(source), "Fp1-Fp2|0,0,1,9,0.1 sec,70 Hz,1,1,-12.500000,1000000.000000");
    source.setName("mine");
    EXPECT_STREQ(source.name(), "mine");
    EXPECT_EQ(definition(source, false), "Fp1-Fp2");
    G1G2Source other(reader, 2, 3);
    other.copyAttributes(source);
    EXPECT_EQ(definition(other), "Cz-T3|0,0,1,9,0.1 sec,70 Hz,1,1,-12.500000,1000000.000000");
    EXPECT_STREQ(other.name(), "Cz-T3") << "neither channels nor the name";
    source.setName(nullptr);
    EXPECT_STREQ(source.name(), "Fp1-Fp2");

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

} // namespace
} // namespace kvsig
