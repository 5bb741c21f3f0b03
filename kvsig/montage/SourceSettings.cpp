#include "kvsig/montage/SourceSettings.h"

#include "kvsig/filters/DisplayText.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <vector>

namespace kvsig {
namespace {

constexpr std::size_t allFields = 10;
constexpr std::size_t olderFields = 6;

std::vector<std::string> fieldsOf(std::string_view text) {
    std::vector<std::string> fields(1);
    for (const char c : text.substr(0, text.find('\0'))) {
        if (c == ',' && fields.size() <= allFields)
            fields.emplace_back();
        else
            fields.back().push_back(c);
    }
    return fields;
}

bool isNumber(const std::string& field) {
    const std::size_t start = field.find_first_not_of(" \t");
    return start != std::string::npos && field.find_first_of("0123456789", start) <= start + 2 &&
           (isDigit(field[start]) || field[start] == '-' || field[start] == '+' ||
            field[start] == '.');
}

bool areNumbers(const std::vector<std::string>& fields, std::size_t first, std::size_t last) {
    for (std::size_t i = first; i <= last; ++i)
        if (i >= fields.size() || !isNumber(fields[i]))
            return false;
    return true;
}

std::int32_t number(const std::string& field) {
    return saturate<std::int32_t>(leadingInteger(field));
}

bool flagOf(const std::string& field) { return leadingInteger(field) != 0; }

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
           flag(scale.transparentScale) + "," + fixedText(scale.minimum, 6) + "," +
           fixedText(scale.maximum, 6);
}

bool scanSettings(const char* text, SourceSettings& settings, PolyScale& scale) {
    const std::vector<std::string> fields = fieldsOf(viewOf(text));
    const bool filterTexts =
        fields.size() >= olderFields && !fields[4].empty() && !fields[5].empty();
    if (!filterTexts || !areNumbers(fields, 0, 3))
        return false;
    settings.displayValue = number(fields[0]);
    settings.flag = flagOf(fields[1]);
    settings.followMontage = flagOf(fields[2]);
    settings.intValue = number(fields[3]);
    settings.highPass.setTimeConstantAsText(fields[4].c_str());
    settings.lowPass.setCutFreqAsText(fields[5].c_str());
    if (areNumbers(fields, olderFields, allFields - 1)) {
        scale.showScaling = flagOf(fields[6]);
        scale.transparentScale = flagOf(fields[7]);
        scale.minimum = leadingDouble(fields[8]);
        scale.maximum = leadingDouble(fields[9]);
    }
    return true;
}

} // namespace kvsig
