#include "kvsig/filters/FilterAttr.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

namespace kvsig {
namespace {

constexpr const char* offText = "(off)";

// Time constant in seconds times cutoff in hertz, either way round.
constexpr double timeConstantRule = 0.16;

char* writeOff(char* buf) {
    copyText(buf, filterTextSize, offText);
    return buf;
}

} // namespace

char* FilterAttr::getCutFreqAsText(char* buf) const {
    return use ? FreqAsText(buf, cutoff) : writeOff(buf);
}

void FilterAttr::setCutFreqAsText(const char* text) {
    use = !equalNoCase(viewOf(text), offText);
    if (use)
        cutoff = leadingDouble(viewOf(text));
}

char* FilterAttr::getTimeConstantAsText(char* buf) const {
    return use ? TimeConstantAsText(buf, timeConstantRule / cutoff) : writeOff(buf);
}

void FilterAttr::setTimeConstantAsText(const char* text) {
    use = !equalNoCase(viewOf(text), offText);
    if (use)
        cutoff = timeConstantRule / leadingDouble(viewOf(text));
}

} // namespace kvsig
