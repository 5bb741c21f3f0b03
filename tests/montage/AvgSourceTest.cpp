#include "kvsig/montage/AvgSource.h"

#include "montage/ScriptedSource.h"
#include "support/FakeReader.h"

#include <gtest/gtest.h>
#include <string>

namespace kvsig {
namespace {

using test::definition;
using test::read;
using Samples = std::vector<float>;
using Channels = std::vector<int>;
using Weights = std::vector<double>;

// Sample i of channel c is 100 (c + 1) + i.
class AvgSourceTest : public testing::Test {
  protected:
    AvgSourceTest() {
        reader.file.channels = {{"F3"}, {"F4"}, {"C3"}, {"C4"}};
        reader.file.channels[1].type = 100;
        reader.file.raw = [](int channel, long i) {
            return 100 * (channel + 1) + static_cast<int>(i);
        };
        reader.open("scripted");
    }

    test::FakeReader reader;
};

TEST_F(AvgSourceTest, IsThePlainAverageAtFirst) {
    AvgSource source(reader, {0, 2, 3});
    EXPECT_EQ(source.getAvgChannels(), (Channels{0, 2, 3}));
    EXPECT_EQ(source.getWeights(), Weights(3, 1.0 / 3.0));
    AvgSource four(reader, {0, 1, 2, 3});
    four.setAvgChannels({0, 2, 2, 3}); // (100 + 300 + 300 + 400) / 4 + i
    EXPECT_EQ(read(four, 48, 51, 2.0), (Samples{646, 648, 650, 652})) << "across two pages";
    EXPECT_EQ(definition(four), "F3+C3+C3+C4");
}

TEST_F(AvgSourceTest, SumsWithItsWeights) {
    AvgSource source(reader, {0, 2});
    read(source, 10, 11);
    source.setWeights({0.5, -1.0}); // 50 + i / 2 - 300 - i
    EXPECT_EQ(read(source, 10, 11), (Samples{-255, -255.5F}));
    EXPECT_EQ(definition(source), "F3:0.500+C3:-1.000");
    source.setAvgChannels({3, 2});
    EXPECT_EQ(read(source, 10, 10), (Samples{205 - 310}));
}

TEST_F(AvgSourceTest, AMissingWeightCountsAsZero) {
    AvgSource source(reader, {0, 2});
    source.setWeights({1.0});
    EXPECT_EQ(read(source, 5, 6), (Samples{105, 106}));
    EXPECT_EQ(definition(source), "F3:1.000+C3:0.000");
    source.setWeights({0.5, 0.5, 9.0});
    EXPECT_EQ(read(source, 5, 6), (Samples{205, 206})) << "one too many is not looked at";
    EXPECT_EQ(definition(source), "F3+C3");
    source.setWeights({});
    EXPECT_EQ(read(source, 5, 6), (Samples{0, 0}));
}

TEST_F(AvgSourceTest, EqualWeightsThatAddUpToAboutOneAreNotWritten) {
    AvgSource source(reader, {0, 2});
    for (const double plain : {0.495, 0.5, 0.505}) {
        source.setWeights({plain, plain});
        EXPECT_EQ(definition(source), "F3+C3") << plain;
    }
    source.setWeights({0.494, 0.494});
    EXPECT_EQ(definition(source), "F3:0.494+C3:0.494");
    source.setWeights({0.506, 0.506});
    EXPECT_EQ(definition(source), "F3:0.506+C3:0.506");
    source.setAvgChannels({0, 1, 2, 3});
    source.setWeights({0.5, 0.25, 0.25, 0.0});
    EXPECT_EQ(definition(source), "F3:0.500+F4:0.250+C3:0.250+C4:0.000");
}

TEST_F(AvgSourceTest, WithoutChannelsThereIsNothing) {
    for (AvgSource source : {AvgSource(reader), AvgSource(reader, {})}) {
        float sample = -7.0F;
        EXPECT_EQ(source._getData(0, 0, &sample, 1.0), 0);
        EXPECT_EQ(sample, -7.0F) << "left as it was";
        EXPECT_EQ(definition(source), "");
        EXPECT_STREQ(source.name(), "");
        EXPECT_EQ(source.type(), 0);
    }
}

TEST_F(AvgSourceTest, IsNamedByItsChannelsUntilItHasAName) {
    AvgSource source(reader, {1, 3});
    EXPECT_STREQ(source.name(), "F4C4");
    EXPECT_EQ(source.type(), 100) << "the first channel's";
    source.setName("Av2");
    EXPECT_STREQ(source.name(), "Av2");
    EXPECT_EQ(definition(source), "F4+C4");
    source.setName(nullptr);
    EXPECT_STREQ(source.grid1(), "F4C4");
}

TEST_F(AvgSourceTest, ADefinitionIsCutToItsBuffer) {
    AvgSource source(reader, Channels(3000, 0));
    EXPECT_EQ(definition(source).size(), std::size_t{DataSource::definitionSize - 1});
    source.constructDefn(nullptr, false);
}

TEST_F(AvgSourceTest, AttributesAreSettingsChannelsAndWeights) {
    AvgSource source(reader, {0, 1});
    source.setWeights({0.25, 0.75});
    source.setName("mine");
    AvgSource other(reader, {2});
    read(other, 0, 9);
    other.copyAttributes(source);
    EXPECT_EQ(other.getAvgChannels(), (Channels{0, 1}));
    EXPECT_EQ(other.getWeights(), (Weights{0.25, 0.75}));
    EXPECT_STREQ(other.name(), "F3F4");
    EXPECT_EQ(other.cache()->length(), 0) << "samples of the other channels are of no use";
}

} // namespace
} // namespace kvsig
