#include "tool/synth/PlainNumber.h"

#include "kvsig/util/NumberText.h"

namespace kvsig::tool {

int fewestDecimals(double value) {
    int decimals = 0;
    while (decimals < 15 && leadingDouble(fixedText(value, decimals)) != value)
        ++decimals;
    return decimals;
}

std::string plainNumber(double value) { return fixedText(value, fewestDecimals(value)); }

} // namespace kvsig::tool
