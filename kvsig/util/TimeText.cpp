#include "kvsig/util/TimeText.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <string>

namespace kvsig {
namespace {

std::atomic<bool> plainSeconds{false};

struct ClockParts {
    std::int64_t whole = 0;
    std::int64_t hundredths = 0;
};

ClockParts splitSeconds(double t) {
    ClockParts parts{saturate<std::int64_t>(t), 0};
    const double fraction = t - static_cast<double>(parts.whole);
    if (fraction > 0.995 && fraction < 1.0)
        ++parts.whole;
    else if (fraction >= 0.0 && fraction < 1.0)
        parts.hundredths = saturate<std::int64_t>(fraction * 100.0);
    return parts;
}

} // namespace

void SetPlainSeconds(bool plain) { plainSeconds = plain; }

double TimeToReal(const char* text) {
    const std::string_view all = viewOf(text).substr(0, 32);
    const std::string_view clock = all.substr(0, all.find('.'));
    if (clock.find(':') == std::string_view::npos)
        return leadingDouble(all);

    double seconds = leadingDouble(all.substr(clock.size()));
    std::string_view fields = clock;
    for (const double unit : {1.0, 60.0, 3600.0, 86400.0}) {
        const std::size_t colon = fields.rfind(':');
        const bool last = colon == std::string_view::npos;
        seconds += unit * static_cast<double>(leadingInteger(fields.substr(last ? 0 : colon + 1)));
        if (last)
            break;
        fields = fields.substr(0, colon);
    }
    return seconds;
}

char* RealToTime(double seconds, char* buf, bool withSeconds, bool withHundredths, bool withDays) {
    if (plainSeconds) {
        copyText(buf, realToTimeSize, fixedText(seconds, 2));
        return buf;
    }
    const ClockParts parts = splitSeconds(std::fabs(seconds));
    const std::int64_t minutes = parts.whole / 60 % 60;
    std::int64_t hours = parts.whole / 3600;
    std::string text = seconds < 0 ? "-" : "";
    if (withDays) {
        text += std::to_string(hours / 24) + ":";
        hours %= 24;
    }
    text += paddedText(hours, 2) + ":" + paddedText(minutes, 2);
    if (withSeconds) {
        text += ":" + paddedText(parts.whole % 60, 2);
        if (withHundredths)
            text += "." + paddedText(parts.hundredths, 2);
    }
    copyText(buf, realToTimeSize, text);
    return buf;
}

} // namespace kvsig
