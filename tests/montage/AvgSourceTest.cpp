#include "kvsig/montage/AvgSource.h"

#include "montage/ScriptedSource.h"
#include "support/FakeReader.h"

#include <gtest/gtest.h>

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

TEST_F(AvgSourceTest, SumsWithItsWeightsAtFirstThePlainAverage) {
    AvgSource four(reader, {0, 1, 2, 3});
    four.setAvgChannels({0, 2, 2, 3}); // (100 + 300 + 300 + 400) / 4 + i
    EXPECT_EQ(read(four, 48, 51, 2.0), (Samples{646, 648, 650, 652})) << "across two pages";
    EXPECT_EQ(definition(four), "F3+C3+C3+C4");

    AvgSource source(reader, {0, 2});
    const struct {
        Weights weights;
        Samples samples;
        const char* defn;
    } cases[] = {{{0.5, -1.0}, {-255, -255.5F}, "F3:0.500+C3:-1.000"}, // 50 + i / 2 - 300 - i
                 {{1.0}, {110, 111}, "F3:1.000+C3:0.000"},             // a missing one is zero
                 {{0.5, 0.5, 9.0}, {210, 211}, "F3+C3"}, // one too many is not looked at
                 {{}, {0, 0}, "F3:0.000+C3:0.000"}};
    for (const auto& expected : cases) {
        source.setWeights(expected.weights);
        EXPECT_EQ(read(source, 10, 11), expected.samples);
        EXPECT_EQ(definition(source), expected.defn);
    }
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

TEST_F(AvgSourceTest, ADefinitionIsCutToItsBuffer) {
    AvgSource source(reader, Channels(3000, 0));
    EXPECT_EQ(definition(source).size(), std::size_t{DataSource::definitionSize - 1});
    source.constructDefn(nullptr, false);
}

TEST_F(AvgSourceTest, AttributesAreSettingsChannelsAndWeights) {
    AvgSource source(reader, {0, 1});
    source.setWeights({0.25, 0.75});
    source.setName("mine");
    EXPECT_STREQ(source.grid1(), "mine");
    AvgSource other(reader, {2});
    read(other, 0, 9);
    other.copyAttributes(source);
    EXPECT_EQ(definition(other), "F3:0.250+F4:0.750");
    EXPECT_STREQ(other.name(), "F3F4");
    EXPECT_EQ(other.cache()->length(), 0) << "samples of the other channels are of no use";
}

} // namespace
} // namespace kvsig
