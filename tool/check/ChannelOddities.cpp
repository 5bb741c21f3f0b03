#include "tool/check/ChannelOddities.h"

#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/util/NumberText.h"
#include "tool/PhysicalValues.h"
#include "tool/Words.h"
#include "tool/check/Units.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace kvsig::tool {
namespace {

using Severity = OpenFinding::Severity;

// Full scale of an electrode's input: below, the potentials of the brain would not fit; above, no
// amplifier is built so.
constexpr double leastScalpSpan = 10e-6; // volts
constexpr double mostScalpSpan = 2.0;
constexpr short microvoltType = 1;

struct Channel {
    int index;
    std::string name;
    std::string label; ///< as findings call it
};

/// One finding for all channels that have the same thing odd.
class Findings {
  public:
    /// `kind` is what makes findings the same, `words` follow the first such channel's label.
    void add(Severity severity, const std::string& kind, const Channel& channel,
             const std::string& words) {
        const auto [at, isNew] = m_groups.try_emplace(kind, m_all.size());
        if (isNew)
            m_all.push_back({{severity, channel.label + words}, 0});
        else
            ++m_all[at->second].more;
    }
    [[nodiscard]] std::vector<OpenFinding> take() {
        std::vector<OpenFinding> out;
        for (auto& [finding, more] : m_all) {
            if (more > 0)
                finding.text += "; so in " + std::to_string(more) + " more channels";
            out.push_back(std::move(finding));
        }
        return out;
    }

  private:
    struct Entry {
        OpenFinding finding;
        int more;
    };
    std::vector<Entry> m_all;
    std::map<std::string, std::size_t> m_groups;
};

void checkTexts(IDataReader& reader, const Channel& channel, Findings& out) {
    if (channel.name.empty())
        out.add(Severity::note, "no name", channel, " has no name");
    const std::string units = reader.channelUnits(channel.index);
    for (const std::string& text : {channel.name, units})
        if (toUtf8(text) != text)
            out.add(Severity::note, "latin " + text, channel,
                    ": \"" + toUtf8(text) + "\" is not UTF-8 in the file, read as Latin-1");
}

void checkRange(IDataReader& reader, const Channel& channel, Findings& out) {
    const std::string units = reader.channelUnits(channel.index);
    const std::optional<Unit> unit = knownUnit(units);
    if (!unit) {
        out.add(Severity::warning, "unit " + units, channel,
                ": unit \"" + toUtf8(units) + "\" is unknown; its values are shown as they are");
        return;
    }
    if (unit->name == "uv" && reader.channelType(channel.index) != microvoltType)
        out.add(
            Severity::warning, "microvolts " + units, channel,
            ": unit \"" + toUtf8(units) +
                "\" is microvolts to a reader, but the kernel takes it for another unit (type " +
                std::to_string(reader.channelType(channel.index)) + ")");
    // A format without physical limits of its own has the kernel's defaults: nothing to judge.
    if (!rangeIsStated(reader, channel.index))
        return;
    const double low = reader.physioLow(channel.index);
    const double high = reader.physioHigh(channel.index);
    const double span = std::abs(high - low) * unit->volts;
    const bool scalp = unit->volts > 0 && IndexOf1020(reader.grid1(channel.index)) >= 0;
    const bool tooFar = std::max(std::abs(low), std::abs(high)) > unit->farthest;
    const bool badSpan = scalp && span > 0 && (span < leastScalpSpan || span > mostScalpSpan);
    if (tooFar || badSpan)
        out.add(Severity::warning, "range", channel,
                ": a physical range of " + shortestText(low) + " to " + shortestText(high) + " " +
                    toUtf8(units) + " is not plausible; the unit may be wrong");
}

Channel channelOf(IDataReader& reader, int index) {
    const std::string name = reader.channelName(index);
    const std::string label = "channel #" + std::to_string(index);
    return {index, name, name.empty() ? label : label + " " + toUtf8(name)};
}

} // namespace

std::vector<OpenFinding> channelOddities(const Recording& recording, DataReader* member) {
    IDataReader& reader = *recording.reader;
    Findings findings;
    for (int i = 0; i < reader.channelCount(); ++i) {
        if (recording.placeOf(i).reader != member)
            continue;
        const Channel channel = channelOf(reader, i);
        checkTexts(reader, channel, findings);
        checkRange(reader, channel, findings);
    }
    return findings.take();
}

std::vector<OpenFinding> twinOddities(const Recording& recording) {
    std::map<std::string, int> uses;
    for (int i = 0; i < recording.reader->channelCount(); ++i)
        ++uses[recording.reader->channelName(i)];
    std::vector<OpenFinding> found;
    for (const auto& [name, count] : uses)
        if (count > 1 && !name.empty())
            found.push_back({Severity::warning, std::to_string(count) + " channels are named \"" +
                                                    toUtf8(name) + "\""});
    return found;
}

} // namespace kvsig::tool
