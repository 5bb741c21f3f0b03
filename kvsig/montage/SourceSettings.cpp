#include "kvsig/montage/SourceSettings.h"

#include "kvsig/filters/DisplayText.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace kvsig {
namespace {

constexpr std::size_t allFields = 10;
constexpr std::size_t olderFields = 6;

std::vector<std::string_view> fieldsOf(std::string_view text) {
    std::vector<std::string_view> fields;
    while (fields.size() < allFields) {
        const std::size_t comma = std::min(text.find(','), text.size());
        fields.push_back(text.substr(0, comma));
        if (comma == text.size())
            break;
        text.remove_prefix(comma + 1);
    }
    return fields;
}

// Blanks may stand before a whole number, nothing behind it.
bool isInteger(std::string_view field) {
    field.remove_prefix(std::min(field.find_first_not_of(" \t"), field.size()));
    if (!field.empty() && (field.front() == '-' || field.front() == '+'))
        field.remove_prefix(1);
    return !field.empty() && std::all_of(field.begin(), field.end(), isDigit);
}

bool areIntegers(const std::vector<std::string_view>& fields, std::size_t first, std::size_t last) {
    return last < fields.size() && std::all_of(&fields[first], &fields[last] + 1, isInteger);
}

// The last field may be followed by anything.
std::string_view numberAtStart(std::string_view field) {
    return field.substr(0, field.find_first_not_of("+-.0123456789eE \t"));
}

std::int32_t number(std::string_view field) {
    return saturate<std::int32_t>(leadingInteger(field));
}

bool flagOf(std::string_view field) { return leadingInteger(field) != 0; }

std::string limitText(double limit) { return fixedText(std::isfinite(limit) ? limit : 0.0, 6); }

} // namespace

bool settingsDiffer(const SourceSettings& settings, const PolyScale& scale) {
    return settings.displayValue != 0 || settings.flag || !settings.followMontage ||
           scale.showScaling;
}

std::string formatSettings(const SourceSettings& settings, const PolyScale& scale) {
    char timeConstant[filterTextSize];
    char cutoff[filterTextSize];
    settings.highPass.getTimeConstantAsText(timeConstant);
    settings.lowPass.getCutFreqAsText(cutoff);
    const auto flag = [](bool value) { return std::string(value ? "1" : "0"); };
    return std::to_string(settings.displayValue) + "," + flag(settings.flag) + "," +
           flag(settings.followMontage) + "," + std::to_string(settings.intValue) + "," +
           timeConstant + "," + cutoff + "," + flag(scale.showScaling) + "," +
           flag(scale.transparentScale) + "," + limitText(scale.minimum) + "," +
           limitText(scale.maximum);
}

bool scanSettings(const char* text, SourceSettings& settings, PolyScale& scale) {
    const std::vector<std::string_view> fields = fieldsOf(viewOf(text));
    if (!areIntegers(fields, 0, 3) || fields.size() < olderFields || fields[4].empty() ||
        fields[5].empty())
        return false;
    settings.displayValue = number(fields[0]);
    settings.flag = flagOf(fields[1]);
    settings.followMontage = flagOf(fields[2]);
    settings.intValue = number(fields[3]);
    settings.highPass.setTimeConstantAsText(std::string(fields[4]).c_str());
    settings.lowPass.setCutFreqAsText(std::string(fields[5]).c_str());
    double minimum = 0.0;
    double maximum = 0.0;
    if (fields.size() == allFields && areIntegers(fields, 6, 7) &&
        wholeDouble(fields[8], minimum) && wholeDouble(numberAtStart(fields[9]), maximum)) {
        scale.showScaling = flagOf(fields[6]);
        scale.transparentScale = flagOf(fields[7]);
        scale.minimum = minimum;
        scale.maximum = maximum;
    }
    return true;
}

} // namespace kvsig
