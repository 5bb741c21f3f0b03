#include "kvsig/readers/NeuroscanReader.h"

#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/NeuroscanEvents.h"
#include "kvsig/readers/NeuroscanHeader.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace kvsig {
namespace {

using namespace neuroscan;
using Severity = OpenFinding::Severity;

constexpr std::int64_t longBlock = std::int64_t{1} << 20; // bytes of all channels

bool isRiff(const std::string& id) { return id.starts_with("RIFF") || id.starts_with("RF64"); }

bool hasEnding(const char* path, std::string_view ending) {
    return equalNoCase(nameEnding(viewOf(path)), ending);
}

constexpr const char* averages =
    ": averages and epochs have this header too and are a variant that is not read";

// A number of `digits` digits at `at`, which moves behind it and the separator.
std::optional<int> numberAt(const std::string& text, std::size_t& at, std::size_t least,
                            std::size_t most) {
    int number = 0;
    std::size_t digits = 0;
    for (; at < text.size() && isDigit(text[at]) && digits < most; ++at, ++digits)
        number = 10 * number + (text[at] - '0');
    if (digits < least || (at < text.size() && isDigit(text[at])))
        return std::nullopt;
    ++at;
    return number;
}

} // namespace

/// Where everything stands in the file.
struct NeuroscanReader::Places {
    std::int64_t channels = 0;
    std::int64_t data = 0;      ///< offset of the first sample
    std::int64_t announced = 0; ///< offset of the event table as the header gives it
    std::int64_t end = 0;       ///< of the samples
    bool hasEvents = false;     ///< `end` is an event table's offset
    int bytes = 2;              ///< of a sample
    std::int64_t room = 0;      ///< frames up to `end`
    std::int64_t frames = 0;    ///< of these that are samples

    [[nodiscard]] std::int64_t frameBytes() const {
        return std::max<std::int64_t>(channels * bytes, 1);
    }
    /// Whether an event table can stand at an offset of the file of `size` bytes.
    [[nodiscard]] bool isInside(std::int64_t offset, std::int64_t size) const {
        return offset > data && offset <= size;
    }
    /// Bytes behind the last whole frame before `end`.
    [[nodiscard]] std::int64_t rest() const { return (end - data) % frameBytes(); }
};

NeuroscanReader::NeuroscanReader() = default;
NeuroscanReader::~NeuroscanReader() = default;

bool NeuroscanReader::isFileType(const char* path) {
    File file;
    if (!file.open(path))
        return false;
    const std::string id = valueOf(HeaderBlock::readFrom(file, version.width), version);
    return id == "Version 3.0" || (isRiff(id) && hasEnding(path, ".cnt"));
}

bool NeuroscanReader::describe(FlatRecording& recording) {
    m_events.clear();
    std::string reason;
    if (!recording.samples.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    Places places;
    const HeaderBlock header = recording.samples.read("header", 0, headerBytes);
    if (!isReadVariant(header, recording.samples.size()) ||
        !findPlaces(header, recording.samples, places))
        return false;
    recording.rate = valueOf(header, commonRate);
    describeChannels(recording, places);
    describePatient(header, recording);
    describeTracks(header, recording, places);
    recording.segments.push_back({places.frames, recording.start.secondOfDay()});
    if (places.hasEvents && recording.samples.fault().empty())
        readEventTable(recording, places);
    return true;
}

bool NeuroscanReader::isReadVariant(const HeaderBlock& header, std::int64_t size) {
    const std::string id = valueOf(header, version);
    if (isRiff(id))
        return refuse(3,
                      "this .cnt is a RIFF container, another maker's format, which is not read");
    if (size < headerBytes)
        return refuse(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of " + std::to_string(headerBytes));
    if (id != "Version 3.0")
        return refuse(3,
                      sentenceOf(header, version) + ", not \"Version 3.0\", the one that is read");
    if (valueOf(header, acquisition) == 2)
        return refuse(3, sentenceOf(header, acquisition) +
                             ": recordings of the DC amplifier are a variant that is not read");
    if (valueOf(header, acquisition) != 1)
        report(Severity::warning, sentenceOf(header, acquisition) + ", usual is 1");
    const bool elsewhere =
        hasEnding(filePath().c_str(), ".avg") || hasEnding(filePath().c_str(), ".eeg");
    return (!elsewhere && (valueOf(header, eventTable) != 0 || size > fourGiB)) ||
           refuse(3, sentenceOf(header, eventTable) + averages);
}

bool NeuroscanReader::findPlaces(const HeaderBlock& header, const HeaderFile& file,
                                 Places& places) {
    const std::int64_t size = file.size();
    places.channels = valueOf(header, numberOfChannels);
    places.data = headerBytes + channelBytes * places.channels;
    if (places.channels == 0)
        return refuse(2, sentenceOf(header, numberOfChannels) + ", at least 1 is needed");
    if (valueOf(header, commonRate) == 0)
        return refuse(2, sentenceOf(header, commonRate));
    if (places.data > size)
        return refuse(2, sentenceOf(header, numberOfChannels) +
                             ", whose records leave the file of " + std::to_string(size) +
                             " bytes");
    const std::int64_t count = valueOf(header, numberOfSamples);
    places.announced = offsetOf({valueOf(header, eventTable), valueOf(header, previousFile),
                                 places.data, places.channels * count},
                                size);
    places.bytes = sampleBytes(header, file, places);
    if (size > fourGiB && !places.isInside(places.announced, size))
        places.announced = places.data + places.frameBytes() * count;
    places.hasEvents = places.isInside(places.announced, size);
    places.end = places.hasEvents ? places.announced : size;
    const std::string outside = "the event table (offset " + std::to_string(places.announced) +
                                ") is not between the first sample (offset " +
                                std::to_string(places.data) + ") and the end of the file of " +
                                std::to_string(size) + " bytes";
    // Of a continuous recording it was cut off; averages have none.
    if (!places.hasEvents && valueOf(header, acquisition) != 1)
        return refuse(3, sentenceOf(header, acquisition) + " and " + outside + averages);
    if (!places.hasEvents)
        report(Severity::warning, outside + ": samples are read to its end, without events");
    if (places.hasEvents && size - places.announced >= fourGiB)
        report(Severity::warning, "more than 4 GiB follow its event table (offset " +
                                      std::to_string(places.announced) +
                                      "): the upper bits of that offset may be missing");
    places.room = wholeFrames(places.data, places.end, places.frameBytes());
    places.frames = count > 0 ? std::min(count, places.room) : places.room;
    if (places.frames < places.room)
        report(Severity::note, sentenceOf(header, numberOfSamples) + ", there is room for " +
                                   std::to_string(places.room) + ": the first are shown");
    if (count > places.room)
        report(Severity::note, sentenceOf(header, numberOfSamples) + ", " +
                                   std::to_string(places.room) + " are there");
    if (places.rest() > 0)
        report(Severity::note, "the " + std::to_string(places.rest()) + " bytes before " +
                                   (places.hasEvents ? "its event table" : "its end") +
                                   " are no whole sample of " + std::to_string(places.channels) +
                                   " channels");
    return true;
}

// No plain field tells.
int NeuroscanReader::sampleBytes(const HeaderBlock& header, const HeaderFile& file,
                                 const Places& places) {
    const std::int64_t next = valueOf(header, nextFile);
    int byTrailer = 0;
    bool isMarked = false;
    if (next > 0 && next + trailerWide.offset < file.size()) {
        const HeaderBlock trailer = file.read("trailer", next, trailerWide.offset + 1);
        const int mark = valueOf(trailer, trailerWide);
        isMarked = valueOf(trailer, trailerMark) == "NSI TFF";
        // It stands behind the event table; of a long file its offset has lost the upper bits.
        const bool isBehind = file.size() <= fourGiB &&
                              places.isInside(places.announced, file.size()) &&
                              next > places.announced;
        if (isMarked || isBehind)
            byTrailer = mark == 1 ? 4 : mark == 0 ? 2 : 0;
        else
            report(Severity::note, sentenceOf(header, nextFile) +
                                       ": no trailer is marked there or stands behind the event "
                                       "table");
    }
    const std::int64_t values = places.channels * valueOf(header, numberOfSamples);
    const std::int64_t room = places.announced - places.data;
    const int byCount = values == 0 ? 0 : room == 2 * values ? 2 : room == 4 * values ? 4 : 0;
    if (byTrailer != 0 && byCount != 0 && byTrailer != byCount) {
        const int taken = isMarked ? byTrailer : byCount;
        report(Severity::warning, "its trailer tells of " + std::to_string(8 * byTrailer) +
                                      "-bit samples, its number of samples of " +
                                      std::to_string(8 * byCount) + "-bit ones; taken for " +
                                      std::to_string(8 * taken));
        return taken;
    }
    if (byTrailer == 0 && byCount == 0)
        report(Severity::warning, "nothing tells whether its samples have 16 or 32 bits; taken for "
                                  "16");
    return byTrailer != 0 ? byTrailer : byCount != 0 ? byCount : 2;
}

void NeuroscanReader::describeChannels(FlatRecording& recording, const Places& places) {
    const HeaderBlock records =
        recording.samples.read("list of channels", headerBytes, places.channels * channelBytes);
    for (std::int64_t i = 0; i < places.channels; ++i) {
        const std::int64_t base = i * channelBytes;
        FlatChannel channel;
        channel.place = i * places.bytes;
        channel.integer.bytes = places.bytes;
        channel.grid1 = valueOf(records, label, base);
        channel.grid2 = "Ref";
        const double microvolts = static_cast<double>(valueOf(records, sensitivity, base)) *
                                  static_cast<double>(valueOf(records, calibrationFactor, base)) /
                                  unitsPerMicrovolt;
        calibrateMicrovolts(channel, microvolts, valueOf(records, baseline, base));
        if (valueOf(records, bad, base) == 1)
            report(Severity::note, "channel " + std::to_string(i + 1) + " is marked as bad");
        recording.channels.push_back(std::move(channel));
    }
}

// Only the recording's own last block may be shorter, and then each channel's part of it is. That
// block is known where the number of samples agrees with the place of the event table, or of the
// file's end, or where without a number something stands there that may be a table.
void NeuroscanReader::describeTracks(const HeaderBlock& header, FlatRecording& recording,
                                     Places& places) {
    const bool blocks = standsInBlocks(header, recording, places);
    const std::int64_t together =
        blocks ? std::max<std::int64_t>(valueOf(header, channelOffset) / places.bytes, 1) : 1;
    const std::int64_t said = valueOf(header, numberOfSamples);
    const auto isEndSure = [&] {
        if (places.hasEvents && places.rest() > 0)
            return false;
        return said == places.room ||
               (said == 0 && places.hasEvents && isTableAt(recording.samples, places.end));
    };
    if (const std::int64_t rest = places.frames % together; rest > 0 && !isEndSure()) {
        places.frames -= rest;
        report(Severity::warning,
               "what follows its first " + std::to_string(places.frames) +
                   " samples is left out (" + std::to_string(rest) + "): their block of " +
                   std::to_string(together) +
                   " may have been cut or may be a shorter last one, in which channels stand "
                   "elsewhere");
    }
    places.room = places.frames;
    const std::int64_t blockCount = places.room / together + 1;
    if (together <= std::max(longBlock / places.frameBytes(), std::int64_t{1}) ||
        std::cmp_greater(blockCount * places.channels, mostSegmentStarts)) {
        recording.tracks.push_back(
            {places.frameBytes(), together, 0.0, {{places.data, places.room}}, {}});
        return;
    }
    // Of long blocks each channel's run is read alone, unless there are too many runs.
    for (std::int64_t c = 0; c < places.channels; ++c) {
        FlatTrack& track = recording.tracks.emplace_back();
        track.frameBytes = places.bytes;
        recording.channels[static_cast<std::size_t>(c)].track = static_cast<int>(c);
        recording.channels[static_cast<std::size_t>(c)].place = 0;
        for (std::int64_t first = 0; first < places.room; first += together) {
            const std::int64_t count = std::min(together, places.room - first);
            track.pieces.push_back(
                {places.data + first * places.frameBytes() + c * count * places.bytes, count});
        }
    }
}

// The channel offset says so, but not always rightly. A signal changes little from sample to
// sample: the order of samples in which it does is the true one.
bool NeuroscanReader::standsInBlocks(const HeaderBlock& header, const FlatRecording& recording,
                                     const Places& places) {
    constexpr std::int64_t most = std::int64_t{1} << 18, enough = 4096;
    const std::int64_t offset = valueOf(header, channelOffset);
    if (offset <= 1 || places.channels < 2)
        return false;
    if (offset % places.bytes != 0) {
        report(Severity::note, sentenceOf(header, channelOffset) +
                                   ", no whole number of samples of " +
                                   std::to_string(places.bytes) + " bytes: read as frames");
        return false;
    }
    const std::int64_t together = offset / places.bytes;
    if (together < 2)
        return false;
    const std::int64_t count =
        std::min({places.frames * places.channels, enough * places.channels, most});
    const HeaderBlock block =
        recording.samples.read("first samples", places.data, count * places.bytes);
    std::vector<std::int32_t> values(static_cast<std::size_t>(count));
    FlatInteger integer;
    integer.bytes = places.bytes;
    const auto held = static_cast<std::int64_t>(block.bytes().size()) / places.bytes;
    decode({integer, block.bytes().data(), places.bytes, held, 0}, values.data(), 1);
    // The mean step from value i to value i + apart, at the borders of runs left out; without any
    // there is nothing that speaks for that order.
    const auto meanStep = [&](std::int64_t apart, std::int64_t run) {
        double sum = 0.0;
        std::int64_t steps = 0;
        for (std::int64_t i = 0; i + apart < held; ++i) {
            if (run > 0 && (i + apart) % run == 0)
                continue;
            sum += std::abs(static_cast<double>(values[static_cast<std::size_t>(i + apart)]) -
                            values[static_cast<std::size_t>(i)]);
            ++steps;
        }
        return steps > 0 ? sum / static_cast<double>(steps)
                         : std::numeric_limits<double>::infinity();
    };
    const double asFrames = meanStep(places.channels, 0);
    const double asBlocks = meanStep(1, together);
    constexpr double clearly = 0.8;
    const bool blocks = asBlocks < clearly * asFrames;
    report(blocks || asFrames >= clearly * asBlocks ? Severity::warning : Severity::note,
           sentenceOf(header, channelOffset) + ", the mean step from sample to sample is " +
               generalText(asFrames, 4) + " in frames and " + generalText(asBlocks, 4) +
               " in blocks of it: read as " + (blocks ? "blocks" : "frames"));
    return blocks;
}

void NeuroscanReader::describePatient(const HeaderBlock& header, FlatRecording& recording) {
    PatientRec& patient = recording.patient;
    if (const std::string name = valueOf(header, patientName);
        !name.empty() && name != "Unspecified")
        patient.setName(name);
    copyText(patient.id, valueOf(header, subjectId));
    copyText(patient.sex, valueOf(header, sex));
    copyText(patient.hand, valueOf(header, handedness));
    copyText(patient.physician, valueOf(header, doctor));
    copyText(patient.technician, valueOf(header, operatorName));
    copyText(patient.medications, valueOf(header, medication));
    copyText(patient.comments1, valueOf(header, sessionLabel));
    copyText(patient.testDate, valueOf(header, date));
    copyText(patient.testTime, valueOf(header, time));

    CalendarTime& start = recording.start;
    std::size_t at = 0;
    const std::string clock = valueOf(header, time);
    const auto hour = numberAt(clock, at, 1, 2), minute = numberAt(clock, at, 1, 2),
               second = numberAt(clock, at, 1, 2);
    if (hour && minute && second)
        start.hour = *hour, start.minute = *minute, start.second = *second;
    else
        start.hour = -1;
    if (!start.hasTime())
        report(Severity::warning, "its time (offset 235) is no time as hh:mm:ss: the clock begins "
                                  "at midnight");
    // Month and day stand in the order of the recorder's country; only some dates tell which.
    at = 0;
    const std::string day = valueOf(header, date);
    const auto first = numberAt(day, at, 1, 2), other = numberAt(day, at, 1, 2),
               year = numberAt(day, at, 2, 4);
    constexpr int pivot = 80; // two-digit years from here on are of the last century
    constexpr int mostMonths = 12;
    if (first && other && year && (*year < 100 || *year >= 1900)) {
        const bool dayFirst = *first > mostMonths;
        start.year = *year + (*year >= 100 ? 0 : *year < pivot ? 2000 : 1900);
        start.month = dayFirst ? *other : *first;
        start.day = dayFirst ? *first : *other;
        if (*first <= mostMonths && *other <= mostMonths && *first != *other)
            report(Severity::note, "its date (offset 225) is taken for month/day/year");
    }
    if (!start.hasDate())
        report(Severity::note, "its date (offset 225) is not whole, so the day is not known");
}

void NeuroscanReader::readEventTable(FlatRecording& recording, const Places& places) {
    EventTable table =
        readTable(recording.samples, {places.end, places.data, places.frameBytes(), places.frames});
    if (const std::string fault = recording.samples.takeFault(); !fault.empty())
        table = {{}, {"its events are left out: " + fault}};
    for (const std::string& oddity : table.oddities)
        report(Severity::warning, oddity);
    m_events = std::move(table.events);
}

void NeuroscanReader::listEvents(std::vector<FlatEvent>& events) { events = m_events; }

} // namespace kvsig
