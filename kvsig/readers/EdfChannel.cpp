#include "kvsig/readers/EdfChannel.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"

#include <string_view>

namespace kvsig::edf {
namespace {

bool saysMicrovolts(std::string_view units) {
    return units.find("uV") != std::string_view::npos ||
           units.find("\xB5V") != std::string_view::npos;
}

} // namespace

Channel channelOf(const Header& header, std::int64_t fileSignal) {
    const auto field = [&header, fileSignal](SignalField which) {
        return header.view(which, fileSignal);
    };
    Channel channel;
    const auto number = [&channel](std::string_view text) {
        double value = 0.0;
        if (wholeDouble(text, value))
            return value;
        channel.oddLimits = true;
        return leadingDouble(text);
    };
    const std::string_view unit = field(units), low = field(physicalMin), high = field(physicalMax);
    channel.label = field(label);
    channel.units = unit;
    channel.microvolts = saysMicrovolts(unit);
    channel.physicalMin = number(low);
    channel.physicalMax = number(high);
    channel.unknownMin = low == "?";
    channel.unknownMax = high == "?";
    channel.digitalMin = saturate<std::int32_t>(number(field(digitalMin)));
    channel.digitalMax = saturate<std::int32_t>(number(field(digitalMax)));
    return channel;
}

} // namespace kvsig::edf
