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
    channel.label = field(label);
    channel.units = field(units);
    channel.microvolts = saysMicrovolts(field(units));
    channel.physicalMin = leadingDouble(field(physicalMin));
    channel.physicalMax = leadingDouble(field(physicalMax));
    channel.unknownMin = field(physicalMin) == "?";
    channel.unknownMax = field(physicalMax) == "?";
    channel.digitalMin = saturate<std::int32_t>(leadingDouble(field(digitalMin)));
    channel.digitalMax = saturate<std::int32_t>(leadingDouble(field(digitalMax)));
    return channel;
}

} // namespace kvsig::edf
