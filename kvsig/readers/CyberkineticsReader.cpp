#include "kvsig/readers/CyberkineticsReader.h"

#include "kvsig/readers/BlackrockBlocks.h"
#include "kvsig/readers/BlackrockClock.h"
#include "kvsig/readers/BlackrockEvents.h"
#include "kvsig/readers/BlackrockLayout.h"
#include "kvsig/readers/BlackrockStamps.h"
#include "kvsig/readers/ClockEvents.h"
#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/HeaderFields.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using namespace blackrock;
using Severity = OpenFinding::Severity;

constexpr double samplesPerSecond = 30000.0; // of which the period takes every so many
constexpr std::uint32_t usualTicks = 30000;
constexpr std::uint32_t networkTicks = 1'000'000'000; // of a clock that stamps every sample
constexpr double networkJitter = 0.1;                 // seconds by which stamps may be out of order
constexpr std::int64_t sampleBytes = 2;
constexpr double bareMicrovoltsPerBit = 0.25;

std::string idOf(const char* path) {
    File file;
    return file.open(path) ? valueOf(HeaderBlock::readFrom(file, fileId.width), fileId)
                           : std::string();
}

bool isTocName(const char* path) { return equalNoCase(nameEnding(viewOf(path)), ".toc"); }

// (raw - low) * span of analogue / span of digital + least analogue; without a digital span a bit
// is a unit.
void calibrateChannel(FlatChannel& channel, const HeaderBlock& header, std::int64_t base) {
    const double low = valueOf(header, full::digitalLow, base);
    const double high = valueOf(header, full::digitalHigh, base);
    const double analogueLow = valueOf(header, full::analogueLow, base);
    const double analogue = valueOf(header, full::analogueHigh, base) - analogueLow;
    FlatScale scale;
    scale.units = valueOf(header, full::units, base);
    scale.low = valueOf(header, full::digitalLow, base);
    scale.high = valueOf(header, full::digitalHigh, base);
    if (high == low) {
        scale.zero = low - analogueLow;
    } else {
        scale.scale = analogue / (high - low);
        scale.zero = analogue == 0.0 ? low : low - analogueLow * (high - low) / analogue;
    }
    calibrate(channel, scale);
    // No analogue span: the formula gives its one value.
    if (high != low && analogue == 0.0) {
        channel.type = 100;
        channel.calibration = 1.0;
        channel.physioLow = channel.physioHigh = analogueLow;
    }
}

FlatChannel channelAt(std::int64_t index, std::string name, std::uint32_t electrode) {
    FlatChannel channel;
    channel.place = sampleBytes * index;
    channel.name = name.empty() ? "elec" + std::to_string(electrode) : std::move(name);
    channel.grid1 = channel.name;
    return channel;
}

} // namespace

struct CyberkineticsReader::State {
    std::string eventFile;             ///< path of the .nev
    std::optional<EventHeader> events; ///< when the .nev belongs to the recording
    std::vector<ClockPart> clock = {ClockPart()};
    std::optional<StampedRuns> stamps; ///< when every sample has one
};

CyberkineticsReader::CyberkineticsReader() : m_state(std::make_unique<State>()) {}
CyberkineticsReader::~CyberkineticsReader() = default;

bool CyberkineticsReader::isFileType(const char* path) {
    const std::string id = idOf(path);
    // Nothing is known of what a .toc holds; it is taken in order to be refused by its name.
    return id == bareId || id == blockId || id == wideId || isTocName(path);
}

bool CyberkineticsReader::describe(FlatRecording& recording) {
    *m_state = State();
    std::string reason;
    if (!recording.samples.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    const HeaderBlock head = recording.samples.read("header", 0, full::fixedBytes);
    const std::string id = valueOf(head, fileId);
    if (id == bareId)
        return describeBare(head, recording);
    if (id == blockId || id == wideId)
        return describeBlocks(head, recording);
    if (isTocName(filePath().c_str()))
        return refuse(3, "Cyberkinetics recordings with a .toc are a variant whose layout is not "
                         "known; .ns1 to .ns9 are read");
    if (id == eventId || id == wideEventId)
        return refuse(3, "this is the event file (.nev) of a Blackrock recording: open the .ns "
                         "file beside it");
    if (recording.samples.size() < fileId.width)
        return refuse(2, "the file ends after " + std::to_string(recording.samples.size()) +
                             " bytes, inside the file id");
    return refuse(3, sentenceOf(head, fileId) + ", none of NEURALSG, NEURALCD and BRSMPGRP");
}

bool CyberkineticsReader::describeBare(const HeaderBlock& head, FlatRecording& recording) {
    const std::int64_t size = recording.samples.size();
    const std::int64_t channels = valueOf(head, bare::channelCount);
    const std::int64_t dataOffset = bare::fixedBytes + channels * bare::channelBytes;
    if (size < bare::fixedBytes)
        return refuse(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of at least " +
                             std::to_string(bare::fixedBytes));
    if (channels < 1 || channels > mostChannels)
        return refuse(2, sentenceOf(head, bare::channelCount) + ", 1 to " +
                             std::to_string(mostChannels) + " can be read");
    if (dataOffset > size)
        return refuse(2, sentenceOf(head, bare::channelCount) + ", but the file of " +
                             std::to_string(size) + " bytes ends inside their ids");
    if (valueOf(head, bare::period) == 0)
        return refuse(2, sentenceOf(head, bare::period));
    recording.rate = samplesPerSecond / valueOf(head, bare::period);

    if (!findCompanion(recording, true))
        return false;
    const auto& events = m_state->events;
    const HeaderBlock ids =
        recording.samples.read("list of channels", bare::fixedBytes, channels * bare::channelBytes);
    std::int64_t unscaled = 0;
    for (std::int64_t i = 0; i < channels; ++i) {
        const std::uint32_t electrode = valueOf(ids, bare::electrode, i * bare::channelBytes);
        const auto known = [&](const auto& map) {
            return events && map.contains(electrode)
                       ? map.at(electrode)
                       : typename std::decay_t<decltype(map)>::mapped_type();
        };
        FlatChannel channel =
            channelAt(i, events ? known(events->labels) : std::string(), electrode);
        const double nanovolts = events ? known(events->nanovoltsPerBit) : 0.0;
        unscaled += nanovolts > 0 ? 0 : 1;
        calibrateMicrovolts(channel, nanovolts > 0 ? nanovolts / 1000.0 : bareMicrovoltsPerBit);
        recording.channels.push_back(std::move(channel));
    }
    if (unscaled > 0)
        report(Severity::warning,
               "files of version 2.1 hold no scale and the .nev beside it gives none for " +
                   std::to_string(unscaled) + " of " + std::to_string(channels) +
                   " channels: 0.25 uV per bit is assumed");
    if (events)
        recording.start = events->start;
    else
        report(Severity::warning,
               "files of version 2.1 hold no time and no .nev beside it gives one: the clock "
               "begins at midnight");
    const std::int64_t frames = wholeFrames(dataOffset, size, sampleBytes * channels);
    if (const std::int64_t rest = (size - dataOffset) % (sampleBytes * channels); rest > 0)
        report(Severity::note, "its last " + std::to_string(rest) +
                                   " bytes are no whole sample of " + std::to_string(channels) +
                                   " channels");
    recording.tracks.push_back({sampleBytes * channels, 1, 0.0, {{dataOffset, frames}}, {}});
    recording.segments.push_back({frames, recording.start.secondOfDay()});
    return true;
}

bool CyberkineticsReader::describeBlocks(const HeaderBlock& head, FlatRecording& recording) {
    const std::int64_t size = recording.samples.size();
    const bool wideStamps = valueOf(head, fileId) == wideId;
    const int major = valueOf(head, full::major), minor = valueOf(head, full::minor);
    const std::int64_t channels = valueOf(head, full::channelCount);
    const std::int64_t dataOffset = valueOf(head, full::headerBytes);
    const std::int64_t fullHeader = full::fixedBytes + channels * full::channelBytes;
    if (size < full::fixedBytes)
        return refuse(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of at least " +
                             std::to_string(full::fixedBytes));
    if (wideStamps ? major != 3 || minor != 0 : major != 2 || (minor != 2 && minor != 3))
        return refuse(3, "version " + std::to_string(major) + "." + std::to_string(minor) + " of " +
                             valueOf(head, fileId) +
                             " files is a variant that is not read; 2.2, 2.3 and 3.0 are");
    if (channels < 1 || channels > mostChannels)
        return refuse(2, sentenceOf(head, full::channelCount) + ", 1 to " +
                             std::to_string(mostChannels) + " can be read");
    if (dataOffset < fullHeader || dataOffset > size)
        return refuse(2, sentenceOf(head, full::headerBytes) + ", the header of " +
                             std::to_string(channels) + " channels takes " +
                             std::to_string(fullHeader) + " and the file has " +
                             std::to_string(size));
    if (dataOffset > fullHeader)
        report(Severity::warning, sentenceOf(head, full::headerBytes) + ", the header of " +
                                      std::to_string(channels) + " channels takes " +
                                      std::to_string(fullHeader));
    for (const auto& field : {full::period, full::ticks})
        if (valueOf(head, field) == 0)
            return refuse(2, sentenceOf(head, field));
    recording.rate = samplesPerSecond / valueOf(head, full::period);
    recording.start = startAt(head, full::startOffset);
    if (!recording.start.hasDate() || !recording.start.hasTime())
        report(Severity::warning, "its start (offset 294) is no date and time");
    copyText(recording.patient.comments1, valueOf(head, full::comment));

    const HeaderBlock header =
        recording.samples.read("list of channels", full::fixedBytes, channels * full::channelBytes);
    for (std::int64_t i = 0; i < channels; ++i) {
        const std::int64_t base = i * full::channelBytes;
        if (valueOf(header, full::mark, base) != "CC")
            return refuse(2, "the record of channel " + std::to_string(i + 1) + " (offset " +
                                 std::to_string(full::fixedBytes + base) +
                                 ") does not begin with CC");
        FlatChannel channel =
            channelAt(i, valueOf(header, full::name, base), valueOf(header, full::electrode, base));
        calibrateChannel(channel, header, base);
        recording.channels.push_back(std::move(channel));
    }
    return findBlocks(head, recording) && findCompanion(recording, false);
}

bool CyberkineticsReader::findBlocks(const HeaderBlock& head, FlatRecording& recording) {
    const double ticks = valueOf(head, full::ticks);
    BlockLayout layout{valueOf(head, full::headerBytes), valueOf(head, fileId) == wideId,
                       static_cast<std::int64_t>(recording.channels.size()), 0};
    // Such a clock is the network's, not the samples'.
    recording.clockDrifts = layout.wideStamps && valueOf(head, full::ticks) == networkTicks;
    if (recording.clockDrifts)
        layout.longestStep = static_cast<std::uint64_t>(2.0 * ticks / recording.rate);
    const BlockScan scan = scanBlocks(recording.samples, layout);
    if (scan.runs.size() > mostBlockRuns)
        return refuse(3, "more than " + std::to_string(mostBlockRuns) +
                             " data blocks with pauses between them are a variant that is not "
                             "read");
    for (const std::string& oddity : scan.oddities)
        report(Severity::warning, oddity);

    const auto isLong = [](const Run& run) { return run.frames > run.blocks; };
    const auto isStrided = [](const Run& run) { return run.blocks > 1; };
    const bool strided = std::any_of(scan.runs.begin(), scan.runs.end(), isStrided);
    const auto longer = std::find_if(scan.runs.begin(), scan.runs.end(), isLong);
    if (strided && longer != scan.runs.end())
        return refuse(3, "blocks of one sample each and longer ones (that at offset " +
                             std::to_string(longer->offset) + " has " +
                             std::to_string(longer->frames) +
                             ") in one file are a variant that is not read");
    // A sample of a block of its own is as far from the next as the whole block is long.
    FlatTrack track{layout.frameBytes() + (strided ? layout.headBytes() : 0), 1, 0.0, {}, {}};
    if (strided)
        for (FlatChannel& channel : recording.channels)
            channel.place += layout.headBytes();
    const double start = recording.start.secondOfDay();
    const bool areSingle = recording.clockDrifts && longer == scan.runs.end();
    m_state->clock = clockParts(scan.runs, ticks, recording.rate, areSingle ? networkJitter : 0.0);
    auto run = scan.runs.begin();
    for (const ClockPart& part : m_state->clock)
        for (std::size_t i = 0; i < part.runs; ++i, ++run) {
            track.pieces.push_back({run->offset + (strided ? 0 : layout.headBytes()), run->frames});
            recording.segments.push_back(
                {run->frames, start + (static_cast<double>(run->stamp) / ticks + part.shift)});
        }
    recording.tracks.push_back(std::move(track));
    reportClock(valueOf(head, full::ticks), layout.wideStamps, recording.rate);
    if (areSingle)
        m_state->stamps.emplace(scan.runs, recording, ticks);
    if (recording.clockDrifts)
        for (const std::string& oddity :
             {missingSamples(scan.runs, m_state->clock, recording, ticks, layout.longestStep),
              missingSingles(scan.runs), otherLength(scan.runs, m_state->clock, recording, ticks)})
            if (!oddity.empty())
                report(Severity::warning, oddity);
    return true;
}

void CyberkineticsReader::reportClock(std::uint32_t ticks, bool wideStamps, double rate) {
    const auto& parts = m_state->clock;
    if (ticks != usualTicks && !(wideStamps && ticks == networkTicks))
        report(Severity::warning,
               std::string(full::ticks.name) + " (offset " + std::to_string(full::ticks.offset) +
                   ") is " + std::to_string(ticks) + ", not " + std::to_string(usualTicks) +
                   ": the rate of " + shortestText(rate) + " Hz is doubtful");
    if (parts.size() > 1)
        report(Severity::warning,
               "the time stamp of the data block at offset " + std::to_string(parts[1].offset) +
                   " is lower than the one before: the clock started anew" +
                   (parts.size() > 2
                        ? ", and so it did " + std::to_string(parts.size() - 2) + " times more"
                        : ""));
    if (parts.back().shift != 0.0)
        report(Severity::warning, "its first time stamp lies " + fixedText(parts.back().begin, 0) +
                                      " s behind the start in the header: the clock is taken to "
                                      "begin with that sample");
}

// The .nev of the same name, when it is one and belongs to the recording: their starts differ at
// most by a time zone, since older event files hold the local time and newer ones UTC. False when
// it is needed and cannot be read.
bool CyberkineticsReader::findCompanion(const FlatRecording& recording, bool isNeeded) {
    m_state->eventFile = companionFile(filePath(), ".nev");
    if (m_state->eventFile.empty())
        return true;
    HeaderFile file;
    std::string reason;
    auto& events = m_state->events;
    const bool opened = file.open(m_state->eventFile.c_str(), &reason);
    if (!opened && isNeeded)
        return refuse(1, "of the .nev beside it: " + reason);
    if (opened)
        events = readEventHeader(file, reason);
    if (!events) {
        if (isNeeded && !file.fault().empty())
            return refuse(2, "of the .nev beside it: " + reason);
        report(Severity::warning, "the .nev beside it is left out: " + reason);
        return true;
    }
    constexpr double quarterHour = 900.0, widestZone = 14 * 3600.0, nearly = 5.0;
    if (recording.start.hasDate() && events->start.hasDate()) {
        const double apart =
            events->start.secondsFromDayOf(recording.start) - recording.start.secondOfDay();
        if (std::abs(apart) > widestZone + nearly ||
            std::abs(std::remainder(apart, quarterHour)) > nearly) {
            report(Severity::warning, "the .nev beside it is left out: it starts " +
                                          fixedText(apart, 0) +
                                          " s later, so it is of another recording");
            events.reset();
        }
    }
    return true;
}

// A time may have come again where the clock started anew: it stands where it was recorded, and of
// several such places at the last. Nothing where it never came.
std::optional<std::int64_t> CyberkineticsReader::placeOf(double seconds, bool& isSure) const {
    const double start = recording().start.secondOfDay(), sampleSeconds = 1.0 / recording().rate;
    std::optional<std::int64_t> recorded, paused;
    std::size_t recordings = 0, pauses = 0;
    for (const double time : timesOf(seconds, m_state->clock, sampleSeconds / 2)) {
        std::optional<StampedRuns::Place> found;
        if (m_state->stamps)
            found = m_state->stamps->placeOf(start + time);
        else if (const auto sample = sampleAt(start + time))
            found = {*sample, clockAt(*sample) - (start + time) > sampleSeconds};
        if (!found)
            continue;
        auto& place = found->isPause ? paused : recorded;
        place = place ? place : found->sample;
        ++(found->isPause ? pauses : recordings);
    }
    isSure = m_state->clock.size() <= mostPartsOfEvents &&
             (recordings > 0 ? recordings == 1 : pauses <= 1);
    return recorded ? recorded : paused;
}

void CyberkineticsReader::listEvents(std::vector<FlatEvent>& events) {
    if (!m_state->events)
        return;
    HeaderFile file;
    std::string reason;
    std::vector<std::string> oddities;
    ClockEvents listed(events);
    std::size_t unsure = 0;
    if (file.open(m_state->eventFile.c_str(), &reason)) {
        forEachEvent(file, *m_state->events, [&](double seconds, const std::string& text) {
            bool isSure = true;
            listed.add(placeOf(seconds, isSure), {0, text, {}, 0.0});
            unsure += isSure ? 0U : 1U;
            return events.size() < mostEvents;
        });
        const EventHeader& header = *m_state->events;
        if (const std::int64_t rest = (file.size() - header.headerBytes) % header.packetBytes;
            rest > 0)
            reason = "its last " + std::to_string(rest) + " bytes are no whole packet of " +
                     std::to_string(header.packetBytes);
        if (!file.fault().empty())
            reason = file.fault();
    }
    if (!reason.empty())
        oddities.push_back("events are left out: " + reason);
    if (const std::string outside = listed.outside(": it may be of another"); !outside.empty())
        oddities.push_back(outside);
    if (unsure > 0)
        oddities.push_back("the clock started anew: events may belong to an earlier time that it "
                           "showed as well (" +
                           std::to_string(unsure) + ")");
    for (const std::string& oddity : oddities)
        logMessage(logWarning, std::string(m_state->eventFile).append(": ").append(oddity));
}

} // namespace kvsig
