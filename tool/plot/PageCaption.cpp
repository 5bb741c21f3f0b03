#include "tool/plot/PageCaption.h"

#include "kvsig/filters/DisplayText.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"
#include "tool/Words.h"

namespace kvsig::tool {
namespace {

std::string hertz(double value) {
    char text[filterTextSize];
    return value > 0 ? FreqAsText(text, value) : "off";
}

} // namespace

std::string titleText(const Recording& recording, const MontageChoice& montage,
                      const std::string& reference) {
    std::string title;
    if (recording.isPair())
        for (const DataReader* member : recording.members())
            title += (title.empty() ? "" : " + ") + std::string(baseName(member->filePath()));
    else
        title = baseName(recording.path);
    if (!montage.name.empty())
        title += ", " + montage.name;
    if (!montage.reference.empty() && equalNoCase(montage.reference, reference))
        title += ", against " + montage.reference;
    return toUtf8(title);
}

std::string captionText(double sensitivity, double speed, const SignalOptions& signals) {
    const std::string scale =
        sensitivity > 0 ? shortestText(sensitivity) + " uV/mm, negative up   " : std::string();
    return scale + generalText(speed, 3) + " mm/s   low filter " + hertz(signals.lowFilter) +
           "   high filter " + hertz(signals.highFilter) + "   notch " + hertz(signals.notch) +
           (signals.notch > 0 ? " (2 Hz wide at -3 dB)" : "");
}

} // namespace kvsig::tool
