#include "kvsig/kernel/ClientEvent.h"

#include "kvsig/util/Text.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <string>

namespace kvsig {
namespace {

std::string stateText(int kind, const char* label, bool hasValue = false, double value = 0.0) {
    ClientEvent event;
    event.kind = static_cast<std::int16_t>(kind);
    event.hasValue = hasValue;
    event.value = value;
    copyText(event.label, label);
    copyText(event.stateText, "as it was");
    SetDefStateText(event);
    return event.stateText;
}

TEST(ClientEvent, StateTextNamesSettingTargetAndValue) {
    EXPECT_EQ(stateText(3, "Fp1-F7", true, 7.0), "Sensitivity Fp1-F7 7.0");
    EXPECT_EQ(stateText(4, "", true, 0.53), "LowFilter MC 0.5");
    EXPECT_EQ(stateText(5, "EKG", true, 70.25), "HighFilter EKG 70.2") << "ties go to even";
    EXPECT_EQ(stateText(6, "", true, -60.0), "NotchFilter MC -60.0");
    EXPECT_EQ(stateText(6, "C3-C4"), "NotchFilter C3-C4 off");
    EXPECT_EQ(stateText(4, "C3-C4", false, 1.0), "LowFilter C3-C4 off") << "no value, no number";
    EXPECT_EQ(stateText(7, ""), "Reset all");
    EXPECT_EQ(stateText(7, "C3", true, 5.0), "Reset C3");
    for (const int kind : {-1, 0, 2, 8})
        EXPECT_EQ(stateText(kind, "C3", true, 1.0), "as it was") << kind;
}

TEST(ClientEvent, TextsEndWithTheirFields) {
    const std::string label(31, 'x');
    const std::string text = stateText(3, label.c_str(), true, std::numeric_limits<double>::max());
    EXPECT_EQ(text.size(), sizeof(ClientEvent::stateText) - 1);
    EXPECT_TRUE(text.starts_with("Sensitivity " + label + " 17976931348623157"));
    ClientEvent event;
    event.kind = 7;
    std::fill(std::begin(event.label), std::end(event.label), 'x');
    SetDefStateText(event);
    EXPECT_EQ(event.stateText, "Reset " + std::string(32, 'x'));
}

} // namespace
} // namespace kvsig
