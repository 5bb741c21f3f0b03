#include "kvsig/kernel/ClientEvent.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <string>

namespace kvsig {
namespace {

const char* settingName(int kind) {
    switch (kind) {
    case 3:
        return "Sensitivity";
    case 4:
        return "LowFilter";
    case 5:
        return "HighFilter";
    case 6:
        return "NotchFilter";
    default:
        return nullptr;
    }
}

} // namespace

void SetDefStateText(ClientEvent& event) {
    const std::string label(fieldView(event.label));
    if (event.kind == 7) {
        copyText(event.stateText, "Reset " + (label.empty() ? "all" : label));
        return;
    }
    const char* setting = settingName(event.kind);
    if (!setting)
        return;
    const std::string value = event.hasValue ? fixedText(event.value, 1) : "off";
    copyText(event.stateText,
             std::string(setting) + " " + (label.empty() ? "MC" : label) + " " + value);
}

} // namespace kvsig
