#include "kvsig/montage/SourceSettings.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace kvsig {
namespace {

struct All {
    SourceSettings settings;
    PolyScale scale;
    friend bool operator==(const All& a, const All& b) {
        return a.settings == b.settings && a.scale.showScaling == b.scale.showScaling &&
               a.scale.transparentScale == b.scale.transparentScale &&
               a.scale.minimum == b.scale.minimum && a.scale.maximum == b.scale.maximum;
    }
    friend std::ostream& operator<<(std::ostream& out, const All& all) {
        return out << formatSettings(all.settings, all.scale);
    }
};

bool scan(const std::string& text, All& all) {
    return scanSettings(text.c_str(), all.settings, all.scale);
}

All scanned(const std::string& text) {
    All all;
    EXPECT_TRUE(scan(text, all)) << text;
    return all;
}

// Values that no text of the tests below holds.
All unusual() {
    return {{.displayValue = 77,
             .flag = true,
             .followMontage = true,
             .intValue = 88,
             .lowPass = {.use = true, .cutoff = 9.5, .second = 1.0, .third = 40.0},
             .highPass = {.use = false, .cutoff = 0.25}},
            {.showScaling = true, .transparentScale = true, .minimum = -9.0, .maximum = 9.0}};
}

TEST(SourceSettings, AreTenFieldsThatReadBack) {
    EXPECT_EQ(formatSettings({}, {}), "0,0,1,0,(off),(off),0,0,0.000000,0.000000");
    const All all = {{.displayValue = -5,
                      .flag = true,
                      .followMontage = false,
                      .intValue = 12,
                      .lowPass = {.use = true, .cutoff = 35.0},
                      .highPass = {.use = true, .cutoff = 0.16 / 0.3}},
                     {.showScaling = true, .minimum = -0.125, .maximum = 1e9}};
    const char* written = "-5,1,0,12,0.3 sec,35 Hz,1,0,-0.125000,1000000000.000000";
    EXPECT_EQ(formatSettings(all.settings, all.scale), written);
    EXPECT_EQ(scanned(written), all);
    for (const auto* text : {"2147483647,1,1,-2147483648,(off),70 Hz,0,1,0.500000,0.750000",
                             "-2147483648,0,0,0,10 sec,(off),1,1,-1.000000,-0.500000"}) {
        const All back = scanned(text);
        EXPECT_EQ(formatSettings(back.settings, back.scale), text);
    }
    EXPECT_EQ(double{scanned("0,0,1,0,2,30,0,0,0,0").settings.highPass.cutoff}, 0.08);
    EXPECT_EQ(scanned(" 1,0,+1,0,(off),(off),0,0, -.5,+2e1 uV").scale.maximum, 20.0);
    EXPECT_TRUE(scanned("0,-3,2,0,(off),(off),7,-1,0,0").scale.transparentScale);
}

TEST(SourceSettings, TheOlderFormLeavesTheScale) {
    for (const auto* text :
         {"5,0,0,6,0.1,(OFF)", "5,0,0,6,0.1,(OFF),0,0,1.0", "5,0,0,6,0.1,(OFF),x,0,1.0,2.0",
          "5,0,0,6,0.1,(OFF),0,0,1x,2.0", "5,0,0,6,0.1,(OFF),0,0,1.0,nan"}) {
        All all = unusual();
        ASSERT_TRUE(scan(text, all)) << text;
        All expected = unusual();
        expected.settings.displayValue = 5;
        expected.settings.flag = expected.settings.followMontage = false;
        expected.settings.intValue = 6;
        expected.settings.highPass = {.use = true, .cutoff = 0.16 / 0.1};
        expected.settings.lowPass.use = false; // the cutoff stays, as the widths do
        EXPECT_EQ(all, expected) << text;
    }
}

// Otherwise such a limit would take the flags beside it along.
TEST(SourceSettings, ALimitThatIsNoNumberIsWrittenAsZero) {
    All all = unusual();
    all.scale.minimum = std::numeric_limits<double>::quiet_NaN();
    all.scale.maximum = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(formatSettings(all.settings, all.scale).ends_with(",1,1,0.000000,0.000000"));
}

TEST(SourceSettings, OtherTextsChangeNothing) {
    for (const auto* text : {"", "x", "1,0,1,0,(off)", "1,0,1,0,(off),", "1,0,1,0,,(off)",
                             "1,,1,0,(off),(off)", "1,0,1,-,(off),(off)", "+-1,0,1,0,(off),(off)",
                             "1.5,0,1,0,(off),(off)", "1 ,0,1,0,(off),(off)"}) {
        All all = unusual();
        EXPECT_FALSE(scan(text, all)) << text;
        EXPECT_EQ(all, unusual()) << text;
    }
    All all = unusual();
    EXPECT_FALSE(scanSettings(nullptr, all.settings, all.scale));
    EXPECT_EQ(all, unusual());
}

TEST(SourceSettings, HostileNumbersSaturate) {
    const All huge = scanned("99999999999999999999,1,1,-99999999999,1e-999,1e999,1,1,-1e9,1e9,7");
    EXPECT_EQ(huge.settings.displayValue, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(huge.settings.intValue, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(double{huge.settings.lowPass.cutoff}, std::numeric_limits<double>::infinity());
    EXPECT_EQ(double{huge.settings.highPass.cutoff}, std::numeric_limits<double>::infinity());
    EXPECT_EQ(huge.scale.maximum, 1e9);
    All all;
    EXPECT_FALSE(scan(std::string(1 << 20, ','), all));
    EXPECT_TRUE(scan("1,0,1,0," + std::string(1 << 20, '9') + ",(off)", all));
    EXPECT_EQ(double{all.settings.highPass.cutoff}, 0.0);
}

} // namespace
} // namespace kvsig
