#include "kvsig/readers/NihonKohdenLayout.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <iterator>

namespace kvsig::nk {
namespace {

// Of the same length up to the version.
constexpr std::string_view knownSignatures[] = {
    "EEG-1100A V01.00", "EEG-1100B V01.00", "EEG-1100C V01.00",
    "QI-403A   V01.00", "QI-403A   V02.00", "EEG-2100  V01.00",
    "EEG-2100  V02.00", "DAE-2100D V01.30", "DAE-2100D V02.00"};
constexpr std::string_view extendedDevice = "EEG-1200A";
constexpr std::size_t deviceLength = 11; // up to the V, with it

} // namespace

int digitsAt(std::string_view text, std::size_t position, std::size_t count) {
    if (position + count > text.size())
        return -1;
    const std::string_view digits = text.substr(position, count);
    return std::all_of(digits.begin(), digits.end(), isDigit)
               ? static_cast<int>(leadingInteger(digits))
               : -1;
}

CalendarTime dateOf(std::string_view text) {
    CalendarTime date{digitsAt(text, 0, 4), digitsAt(text, 5, 2), digitsAt(text, 8, 2)};
    return date.hasDate() ? date : CalendarTime();
}

Device deviceOf(std::string_view text) {
    if (text.starts_with(extendedDevice))
        return Device::extended;
    Device device = Device::none;
    for (const std::string_view known : knownSignatures) {
        if (text == known)
            return Device::known;
        if (text.substr(0, deviceLength) == known.substr(0, deviceLength))
            device = Device::unknownVersion;
    }
    return device;
}

} // namespace kvsig::nk
