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
    const std::string_view unit = field(units), low = field(physicalMin), high = field(physicalMax);
    Channel channel;
    channel.label = field(label);
    channel.units = unit;
    channel.microvolts = saysMicrovolts(unit);
    channel.physicalMin = leadingDouble(low);
    channel.physicalMax = leadingDouble(high);
    channel.unknownMin = low == "?";
    channel.unknownMax = high == "?";
    channel.digitalMin = saturate<std::int32_t>(leadingDouble(field(digitalMin)));
    channel.digitalMax = saturate<std::int32_t>(leadingDouble(field(digitalMax)));
    return channel;
}

} // namespace kvsig::edf
