#include "kvsig/util/ClockSeconds.h"

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>

namespace kvsig {
namespace {

// Runs under another time zone and puts the old one back.
class Zone {
  public:
    explicit Zone(const char* name) {
        if (const char* old = std::getenv("TZ"))
            m_old = old;
        set(name);
    }
    ~Zone() { set(m_old ? m_old->c_str() : nullptr); }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

  private:
    static void set(const char* name) {
        if (name)
            ::setenv("TZ", name, 1);
        else
            ::unsetenv("TZ");
        ::tzset();
    }
    std::optional<std::string> m_old;
};

constexpr long clock(int hours, int minutes, int seconds = 0) {
    return hours * 3600L + minutes * 60L + seconds;
}

// 2024-01-15 and 2024-07-15, both 12:34:56 UTC.
constexpr long winter = 1705322096;
constexpr long summer = 1721046896;

TEST(ClockSeconds, LocalTimeIsNeverDaylightSavingCalendarTimeIs) {
    const struct {
        const char* zone;
        long standard; ///< at both stamps
        long inWinter; ///< northern winter, daylight saving included
        long inSummer;
    } zones[] = {
        // Berlin, Kolkata, then south of the equator Auckland and Lord Howe, which moves by half an
        // hour.
        {"CET-1CEST,M3.5.0,M10.5.0/3", clock(13, 34, 56), clock(13, 34, 56), clock(14, 34, 56)},
        {"IST-5:30", clock(18, 4, 56), clock(18, 4, 56), clock(18, 4, 56)},
        {"NZST-12NZDT,M9.5.0,M4.1.0/3", clock(0, 34, 56), clock(1, 34, 56), clock(0, 34, 56)},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", clock(23, 4, 56), clock(23, 34, 56),
         clock(23, 4, 56)},
        // Dublin: winter is the season that the zone's rules flag.
        {"IST-1GMT0,M10.5.0,M3.5.0/1", clock(12, 34, 56), clock(12, 34, 56), clock(13, 34, 56)},
    };
    for (const auto& expected : zones) {
        SCOPED_TRACE(expected.zone);
        const Zone zone(expected.zone);
        EXPECT_EQ(LocalTimeToSec(winter), expected.standard);
        EXPECT_EQ(LocalTimeToSec(summer), expected.standard);
        EXPECT_EQ(CRTLocalTimeToSec(winter), expected.inWinter);
        EXPECT_EQ(CRTLocalTimeToSec(summer), expected.inSummer);
    }
}

TEST(ClockSeconds, TheUtcClockKnowsNoZoneAndAStampBeyondTheCalendarIsZero) {
    const Zone zone("IST-5:30");
    EXPECT_EQ(GMTimeToSec(winter), clock(12, 34, 56));
    EXPECT_EQ(GMTimeToSec(0), 0);
    EXPECT_EQ(GMTimeToSec(-1), clock(23, 59, 59));
    for (const long stamp : {std::numeric_limits<long>::max(), std::numeric_limits<long>::min()})
        for (const auto toSeconds : {GMTimeToSec, LocalTimeToSec, CRTLocalTimeToSec})
            EXPECT_EQ(toSeconds(stamp), 0);
}

TEST(ClockSeconds, DateAndTimeAreTheLocalOnes) {
    const Zone zone("XYZ-5:30");
    const auto expected = [] {
        const std::time_t shifted = std::time(nullptr) + clock(5, 30);
        char text[32];
        std::strftime(text, sizeof text, "%Y.%m.%d %H:%M:%S", std::gmtime(&shifted));
        return std::string(text);
    };
    const std::string before = expected();
    char buf[dateAndTimeSize];
    EXPECT_EQ(GetDateAndTime(buf), buf);
    EXPECT_THAT(std::string(buf), testing::AllOf(testing::Ge(before), testing::Le(expected())));
    EXPECT_EQ(GetDateAndTime(nullptr), nullptr);
}

} // namespace
} // namespace kvsig
