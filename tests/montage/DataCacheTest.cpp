#include "kvsig/montage/DataCache.h"

#include <gtest/gtest.h>

namespace kvsig {
namespace {

// Samples `first`, `first` + 1, ... of value 0, 1, ...
DataCache cacheOf(std::int32_t first, std::int32_t count) {
    DataCache cache;
    cache.reserve(count);
    cache.nFirst = first;
    cache.nLast = first + count - 1;
    for (std::int32_t i = 0; i < count; ++i)
        cache.pData[i] = static_cast<float>(i);
    return cache;
}

TEST(DataCache, HoldsItsRangeWithBothEnds) {
    const DataCache cache = cacheOf(-3, 6);
    EXPECT_EQ(cache.length(), 6);
    for (const long sample : {-3L, -1L, 2L})
        EXPECT_TRUE(cache.holds(sample)) << sample;
    for (const long sample : {-4L, 3L})
        EXPECT_FALSE(cache.holds(sample)) << sample;
    EXPECT_EQ(DataCache().length(), 0);
    EXPECT_FALSE(DataCache().holds(-1)) << "-1 says empty, it is no sample";
    DataCache reversed = cacheOf(5, 2);
    reversed.nLast = 3;
    EXPECT_EQ(reversed.length(), 0);
}

TEST(DataCache, CopiesHaveABlockOfTheirOwn) {
    DataCache cache = cacheOf(10, 4);
    cache.dScale = 2.5;
    DataCache copy(cache);
    cache.pData[1] = -1.0F;
    EXPECT_EQ(copy.nFirst, 10);
    EXPECT_EQ(copy.nLast, 13);
    EXPECT_EQ(copy.dScale, 2.5);
    EXPECT_EQ(copy.pData[1], 1.0F);

    DataCache larger = cacheOf(0, 9);
    const float* block = larger.pData;
    larger = cache;
    EXPECT_EQ(larger.pData, block) << "a block that is large enough stays";
    EXPECT_EQ(larger.length(), 4);
    EXPECT_EQ(larger.pData[1], -1.0F);
    const DataCache& itself = larger;
    larger = itself;
    EXPECT_EQ(larger.pData[3], 3.0F);
    larger = DataCache();
    EXPECT_EQ(larger.length(), 0);
}

} // namespace
} // namespace kvsig
