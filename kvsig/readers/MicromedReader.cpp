#include "kvsig/readers/MicromedReader.h"

#include "kvsig/readers/ClockEvents.h"
#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/MicromedEvents.h"
#include "kvsig/readers/MicromedHeader.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using namespace micromed;
using Severity = OpenFinding::Severity;

// The record of an electrode.
constexpr std::int64_t electrodeBytes = 128;
constexpr TextField positiveInput{"name of the positive input", 2, 6};
constexpr TextField negativeInput{"name of the negative input", 8, 6};
constexpr NumberField<std::int32_t> logicalMinimum{"logical minimum", 14};
constexpr NumberField<std::int32_t> logicalMaximum{"logical maximum", 18};
constexpr NumberField<std::int32_t> logicalGround{"logical ground", 22};
constexpr NumberField<std::int32_t> physicalMinimum{"physical minimum", 26};
constexpr NumberField<std::int32_t> physicalMaximum{"physical maximum", 30};
constexpr NumberField<std::int16_t> unit{"unit", 34};
constexpr NumberField<std::uint16_t> rateCoefficient{"rate coefficient", 44};

// A piece of a cut recording.
constexpr std::int64_t pieceBytes = 8, mostPieces = 100;
constexpr NumberField<std::uint32_t> originalSample{"original sample of a piece", 0};
constexpr NumberField<std::uint32_t> ownSample{"sample of a piece", 4};

constexpr NumberField<std::uint16_t> orderEntry{"electrode of a channel", 0};
constexpr int readHeaderType = 4, earlyHeaderType = 3; // which has its zones too
constexpr std::string_view usualTitle = "* MICROMED";
constexpr std::string_view galileoTitle = "GALILEO EEG TRACE FILE";

const char* unitText(std::int16_t code) {
    switch (code) {
    case -1:
        return "nV";
    case 1:
        return "mV";
    case 2:
        return "V";
    case 100:
        return "%";
    case 101:
        return "bpm";
    case 102:
        return "";
    default:
        return "uV";
    }
}

bool hasZones(const HeaderBlock& header) {
    return textOf(header, zoneName, zonesOffset) == "ORDER" &&
           textOf(header, zoneName, zonesOffset + zoneBytes) == "LABCOD";
}

bool hasTitle(const HeaderBlock& header, std::string_view text) {
    return startsWithNoCase(textOf(header, title), text);
}

int fullYear(std::uint8_t sinceNineteenHundred) { return 1900 + sinceNineteenHundred; }

// Unsigned; of 32 bits there are signed ones too, which have no ground and go below 0.
FlatInteger integerOf(std::int64_t bytes, const HeaderBlock& record) {
    const bool isSigned =
        bytes == 4 && valueOf(record, logicalGround) == 0 && valueOf(record, logicalMinimum) < 0;
    return {static_cast<int>(bytes), isSigned, false};
}

} // namespace

Zone micromed::findZone(const HeaderBlock& header, std::string_view name) {
    for (int i = 0; i < zoneCount; ++i) {
        const std::int64_t base = zonesOffset + i * zoneBytes;
        if (textOf(header, zoneName, base) == name)
            return {valueOf(header, zoneStart, base), valueOf(header, zoneLength, base)};
    }
    return {};
}

std::string micromed::whyOutside(const HeaderBlock& header, std::string_view name,
                                 std::int64_t fileSize) {
    const Zone zone = findZone(header, name);
    return zone.start + zone.length <= fileSize
               ? std::string()
               : "its zone " + std::string(name) + " (offset " + std::to_string(zone.start) + ", " +
                     std::to_string(zone.length) + " bytes) leaves the file of " +
                     std::to_string(fileSize) + " bytes";
}

bool micromed::holdsMore(const HeaderFile& file, Zone zone, std::int64_t recordBytes,
                         std::int64_t most) {
    if (zone.length < (most + 1) * recordBytes)
        return false;
    const HeaderBlock next =
        file.read("end of a zone", zone.start + most * recordBytes, recordBytes);
    return std::any_of(next.bytes().begin(), next.bytes().end(), [](std::byte byte) {
        return byte != std::byte{0} && byte != std::byte{0xFF};
    });
}

std::string micromed::textOf(const HeaderBlock& block, TextField field, std::int64_t base) {
    std::string text = valueOf(block, field, base);
    text.erase(text.find_last_not_of(" \1") + 1);
    return text;
}

struct MicromedReader::State {
    std::vector<FlatEvent> events; ///< of the file's own zones
};

MicromedReader::MicromedReader() : m_state(std::make_unique<State>()) {}
MicromedReader::~MicromedReader() = default;

bool MicromedReader::isFileType(const char* path) {
    File file;
    if (!file.open(path))
        return false;
    const HeaderBlock header = HeaderBlock::readFrom(file, headerBytes);
    return hasTitle(header, usualTitle) || hasTitle(header, galileoTitle) ||
           (hasZones(header) && (valueOf(header, headerType) == readHeaderType ||
                                 valueOf(header, headerType) == earlyHeaderType));
}

bool MicromedReader::describe(FlatRecording& recording) {
    *m_state = State();
    std::string reason;
    if (!recording.samples.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    // Read once: of a file that changes meanwhile, a second look would tell other numbers than
    // those that were found sound.
    const HeaderBlock header = recording.samples.read("header", 0, headerBytes);
    const std::int64_t size = recording.samples.size();
    if (!isReadVariant(header, size) || !isSoundHeader(header, size) ||
        !describeChannels(header, recording))
        return false;
    recording.start = {fullYear(valueOf(header, year)),
                       valueOf(header, month),
                       valueOf(header, day),
                       valueOf(header, hour),
                       valueOf(header, minute),
                       static_cast<double>(valueOf(header, second))};
    if (!recording.start.hasDate() || !recording.start.hasTime())
        report(Severity::warning, "its start (offset 128) is no date and time");
    PatientRec& patient = recording.patient;
    copyText(patient.last, textOf(header, surname));
    copyText(patient.first, textOf(header, firstName));
    const CalendarTime birth{fullYear(valueOf(header, birthYear)), valueOf(header, birthMonth),
                             valueOf(header, birthDay)};
    copyText(patient.birthDate, birth.dateText());

    const std::int64_t offset = valueOf(header, dataOffset);
    const std::int64_t frameBytes = std::max<std::int64_t>(
        std::int64_t{valueOf(header, numberOfChannels)} * valueOf(header, sampleBytes), 1);
    const std::int64_t frames = wholeFrames(offset, size, frameBytes);
    if (const std::int64_t rest = offset < size ? (size - offset) % frameBytes : 0; rest > 0)
        report(Severity::note, "its last " + std::to_string(rest) +
                                   " bytes are no whole sample of " +
                                   std::to_string(recording.channels.size()) + " channels");
    recording.tracks.push_back({frameBytes, 1, 0.0, {{offset, frames}}, {}});
    describePieces(header, recording, frames);
    if (recording.samples.fault().empty())
        readZones(header, recording, frames);
    return true;
}

bool MicromedReader::isReadVariant(const HeaderBlock& header, std::int64_t size) {
    if (hasTitle(header, galileoTitle))
        return refuse(3, "this is a Galileo trace file, an older format of the same ending, which "
                         "is not read");
    if (size < headerBytes)
        return refuse(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of " + std::to_string(headerBytes));
    const int type = valueOf(header, headerType);
    const std::string typeText = sentenceOf(header, headerType);
    if (type == 0 || type == 1)
        return refuse(3, typeText + ": a System 1 recording, a variant that is not read; 4 is");
    if (type == 2)
        return refuse(3, typeText + ": a System 2 recording, a variant that is not read; 4 is");
    if (type == earlyHeaderType)
        return refuse(3, typeText + ": an early System 98 recording, a variant that is not read; "
                                    "4 is");
    if (type != readHeaderType)
        return refuse(3, typeText + ", which is none of a Micromed recording that is read; 4 is");
    if (!hasZones(header))
        return refuse(2, "of its first two zones the " + sentenceOf(header, zoneName, zonesOffset) +
                             " and the " + sentenceOf(header, zoneName, zonesOffset + zoneBytes) +
                             ", not ORDER and LABCOD");
    if (valueOf(header, compression) != 0)
        return refuse(3, sentenceOf(header, compression) +
                             ": compressed recordings are a variant that is not read");
    return true;
}

bool MicromedReader::isSoundHeader(const HeaderBlock& header, std::int64_t size) {
    const std::int64_t channels = valueOf(header, numberOfChannels);
    const int bytes = valueOf(header, sampleBytes);
    if (channels == 0)
        return refuse(2, sentenceOf(header, numberOfChannels) + ", at least 1 is needed");
    if (bytes != 1 && bytes != 2 && bytes != 4)
        return refuse(2, sentenceOf(header, sampleBytes) + ", 1, 2 or 4 can be read");
    if (valueOf(header, basicRate) == 0)
        return refuse(2, sentenceOf(header, basicRate));
    if (valueOf(header, dataOffset) < headerBytes || valueOf(header, dataOffset) >= size)
        return refuse(2, sentenceOf(header, dataOffset) + ", the header takes " +
                             std::to_string(headerBytes) + " bytes and the file has " +
                             std::to_string(size));
    // The field is too narrow for what many channels of 4 bytes need.
    const auto apart = static_cast<std::uint16_t>(channels * bytes);
    if (valueOf(header, multiplexer) != apart && valueOf(header, multiplexer) != 0)
        return refuse(3, sentenceOf(header, multiplexer) + ", but " + std::to_string(channels) +
                             " channels of " + std::to_string(bytes) + " bytes take " +
                             std::to_string(channels * bytes) + ": a variant that is not read");
    return true;
}

bool MicromedReader::describeChannels(const HeaderBlock& header, FlatRecording& recording) {
    const std::int64_t size = recording.samples.size();
    const std::int64_t channels = valueOf(header, numberOfChannels);
    const std::int64_t bytes = valueOf(header, sampleBytes);
    const Zone orderZone = findZone(header, "ORDER").within(size);
    const Zone electrodes = findZone(header, "LABCOD"); // its length does not count
    if (orderZone.length < 2 * channels)
        return refuse(2, "its zone ORDER of " + std::to_string(orderZone.length) +
                             " bytes inside the file has no place for " + std::to_string(channels) +
                             " channels");
    if (electrodes.start < headerBytes || electrodes.start >= size)
        return refuse(2, "its zone LABCOD (offset " + std::to_string(electrodes.start) +
                             ") is not between the header and the end of the file of " +
                             std::to_string(size) + " bytes");
    const HeaderBlock order = recording.samples.read("zone ORDER", orderZone.start, 2 * channels);
    std::uint16_t coefficient = 0;
    for (std::int64_t i = 0; i < channels; ++i) {
        const std::int64_t start =
            electrodes.start + electrodeBytes * valueOf(order, orderEntry, 2 * i);
        if (start + electrodeBytes > size)
            return refuse(2, sentenceOf(order, orderEntry, 2 * i, orderZone.start) +
                                 ", whose record leaves the file of " + std::to_string(size) +
                                 " bytes");
        const HeaderBlock record =
            recording.samples.read("record of an electrode", start, electrodeBytes);
        const auto told = [&](const auto& field) { return sentenceOf(record, field, 0, start); };
        const std::uint16_t own = valueOf(record, rateCoefficient);
        if (i == 0)
            coefficient = own;
        if (own != coefficient)
            return refuse(3, told(rateCoefficient) + ", that of channel 1 is " +
                                 std::to_string(coefficient) +
                                 ": channels of several rates are a variant that is not read");
        if (own == 0)
            return refuse(2, told(rateCoefficient));
        const std::int64_t low = valueOf(record, logicalMinimum);
        const std::int64_t high = valueOf(record, logicalMaximum);
        const std::int64_t steps = high - low + 1;
        if (steps == 0)
            return refuse(2, told(logicalMaximum) + ", one below the minimum");

        FlatChannel channel;
        channel.place = bytes * i;
        channel.integer = integerOf(bytes, record);
        channel.grid1 = textOf(record, positiveInput);
        channel.grid2 = textOf(record, negativeInput);
        if (low < 0 && !channel.integer.isSigned)
            report(Severity::warning,
                   told(logicalMinimum) + ", but the samples are taken for unsigned ones");
        else if (bytes == 4)
            report(Severity::warning, "channel " + std::to_string(i + 1) +
                                          " has samples of 4 "
                                          "bytes, which are taken for " +
                                          (channel.integer.isSigned ? "signed" : "unsigned") +
                                          " ones");
        const std::int64_t span =
            std::int64_t{valueOf(record, physicalMaximum)} - valueOf(record, physicalMinimum);
        calibrate(channel, {unitText(valueOf(record, unit)),
                            static_cast<double>(span) / static_cast<double>(steps),
                            static_cast<double>(valueOf(record, logicalGround)), low, high});
        recording.channels.push_back(std::move(channel));
    }
    recording.rate = static_cast<double>(valueOf(header, basicRate)) * coefficient;
    return true;
}

// A recording from which pieces were cut says where each of them began: the first may be later than
// the start of the whole.
void MicromedReader::describePieces(const HeaderBlock& header, FlatRecording& recording,
                                    std::int64_t frames) {
    const std::int64_t size = recording.samples.size();
    if (const std::string outside = whyOutside(header, "TRONCA", size); !outside.empty())
        report(Severity::warning, outside + ": pauses are not shown");
    const Zone zone = findZone(header, "TRONCA").within(size);
    const std::int64_t most = std::min(zone.length / pieceBytes, mostPieces);
    const HeaderBlock list = recording.samples.read("zone TRONCA", zone.start, most * pieceBytes);
    std::vector<std::int64_t> begins;
    for (std::int64_t i = 0; i < most; ++i) {
        const std::int64_t begin = valueOf(list, ownSample, i * pieceBytes);
        const std::int64_t original = valueOf(list, originalSample, i * pieceBytes);
        if (begin == 0 && original == 0)
            break;
        if (begins.empty() ? begin != 0 : begin <= begins.back()) {
            report(Severity::warning, "piece " + std::to_string(i + 1) + " begins at sample " +
                                          std::to_string(begin) +
                                          ", out of order: pauses are not shown");
            begins.clear();
            recording.segments.clear();
            break;
        }
        if (begin >= frames) {
            report(Severity::warning, "piece " + std::to_string(i + 1) + " begins at sample " +
                                          std::to_string(begin) + ", " + std::to_string(frames) +
                                          " are in the file: it was cut");
            break;
        }
        begins.push_back(begin);
        recording.segments.push_back({0, static_cast<double>(original) / recording.rate});
    }
    if (std::cmp_equal(begins.size(), mostPieces) &&
        holdsMore(recording.samples, zone, pieceBytes, mostPieces))
        report(Severity::warning, "its zone TRONCA holds more than " + std::to_string(mostPieces) +
                                      " pieces: later pauses are not shown");
    if (begins.empty()) {
        begins = {0};
        recording.segments.push_back({0, 0.0});
        if (most > 1 && valueOf(list, originalSample) == 0 && valueOf(list, ownSample) == 0 &&
            valueOf(list, ownSample, pieceBytes) != 0)
            report(Severity::warning, "its list of pieces begins with an empty entry, which ends "
                                      "it: pauses are not shown");
    }
    const double skipped = recording.segments.front().start;
    recording.start = recording.start.after(skipped);
    for (std::size_t i = 0; i < begins.size(); ++i) {
        FlatSegment& segment = recording.segments[i];
        segment.count = (i + 1 < begins.size() ? begins[i + 1] : frames) - begins[i];
        segment.start += recording.start.secondOfDay() - skipped;
    }
}

void MicromedReader::readZones(const HeaderBlock& header, FlatRecording& recording,
                               std::int64_t frames) {
    std::vector<std::string> oddities;
    listZoneEvents(header, recording, frames, m_state->events, oddities);
    if (const std::string fault = recording.samples.takeFault(); !fault.empty())
        oddities.push_back(fault + ": its events are left out");
    for (const std::string& oddity : oddities)
        report(Severity::warning, oddity);
}

void MicromedReader::listEvents(std::vector<FlatEvent>& events) {
    events = m_state->events;
    const std::string path = companionFile(filePath(), ".evt");
    if (path.empty())
        return;
    std::vector<std::string> oddities;
    const CalendarTime& start = recording().start;
    const std::vector<ClockEvent> listed = readEventFile(path.c_str(), oddities);
    ClockEvents placed(events);
    for (const ClockEvent& event : listed) {
        const double begin = event.begin.secondsFromDayOf(start);
        const double length = event.end.hasTime() ? event.end.secondsFromDayOf(start) - begin : 0.0;
        placed.add(sampleAt(begin), {0, event.text, {}, std::max(length, 0.0)});
    }
    if (!start.hasDate() && placed.listed() > 0)
        oddities.emplace_back("the recording has no date: events are placed by the time of day "
                              "alone, whatever their day");
    if (const std::string outside = placed.outside(": it may be of another"); !outside.empty())
        oddities.push_back(outside);
    for (const std::string& oddity : oddities)
        logMessage(logWarning, std::string(path).append(": ").append(oddity));
}

} // namespace kvsig
