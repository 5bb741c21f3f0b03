#include "kvsig/readers/NK2100Reader.h"

#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/NihonKohdenLayout.h"
#include "kvsig/readers/NihonKohdenLog.h"
#include "kvsig/readers/NihonKohdenNames.h"
#include "kvsig/readers/NihonKohdenWaves.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace kvsig {
namespace {

using Severity = OpenFinding::Severity;

constexpr std::int64_t sampleBytes = 2;
constexpr FlatInteger storedWord{sampleBytes, false, false};
constexpr double zeroWord = 0x8000;
constexpr double microvoltsPerBit = 3200.0 / 32768.0;
constexpr double millivoltsLow = -12002.9; // of the words 0 and 65535
constexpr double millivoltsHigh = 12002.56;
constexpr double secondsPerDay = 86400.0;

bool hasEnding(std::string_view name, std::string_view ending) {
    return equalNoCase(nameEnding(name), ending);
}

// The file of the same name with the ending, else the one of the name that the recorder stored.
std::string companion(const std::string& path, std::string_view ending,
                      const std::string& storedName) {
    const std::string found = companionFile(path, ending);
    return found.empty() && hasEnding(storedName, ending) ? neighbourFile(path, storedName) : found;
}

// A patient page and a sample file name each other. Copies are renamed together, which leaves the
// stored names as they were; without them the day must do.
bool belongTogether(const HeaderBlock& page, const HeaderBlock& samples) {
    const std::string named = valueOf(page, nk::pnt::samples);
    const std::string naming = valueOf(samples, nk::eeg::patientPage);
    const auto stem = [](std::string_view name) {
        return name.substr(0, name.size() - nameEnding(name).size());
    };
    const bool comparable = hasEnding(named, ".eeg") && hasEnding(naming, ".pnt") &&
                            !stem(named).empty() && !stem(naming).empty();
    if (comparable && equalNoCase(stem(named), stem(naming)))
        return true;
    const CalendarTime exam = nk::dateOf(valueOf(page, nk::pnt::examDate));
    const std::string start = valueOf(samples, nk::eeg::start);
    const CalendarTime day{nk::digitsAt(start, 0, 4), nk::digitsAt(start, 4, 2),
                           nk::digitsAt(start, 6, 2)};
    const bool dated = exam.hasDate() && day.hasDate();
    if (comparable)
        return dated && exam.dayNumber() == day.dayNumber();
    return !dated || std::abs(exam.dayNumber() - day.dayNumber()) <= 1;
}

FlatChannel channelOf(std::int64_t index, int code, std::string name) {
    FlatChannel channel;
    channel.place = sampleBytes * index;
    channel.integer = storedWord;
    channel.grid1 = std::move(name);
    channel.grid2 = "Ref"; // all inputs are recorded against one electrode
    calibrateMicrovolts(channel, microvoltsPerBit, zeroWord);
    if (nk::isMillivoltCode(code)) {
        const double scale =
            (millivoltsHigh - millivoltsLow) / static_cast<double>(storedWord.greatest());
        calibrate(channel,
                  {"mV", scale, -millivoltsLow / scale, storedWord.least(), storedWord.greatest()});
    }
    return channel;
}

} // namespace

struct NK2100Reader::State {
    std::string samples; ///< path of the .EEG
    HeaderBlock page;    ///< the patient page when it belongs to the recording, else empty
    std::string logName; ///< as the patient page gives it
    std::vector<nk::WaveBlock> blocks;
    std::vector<nk::LogEntry> log;
};

NK2100Reader::NK2100Reader() : m_state(std::make_unique<State>()) {}
NK2100Reader::~NK2100Reader() = default;

bool NK2100Reader::isFileType(const char* path) {
    File file;
    return file.open(path) && nk::deviceOf(valueOf(HeaderBlock::readFrom(file, nk::signature.width),
                                                   nk::signature)) != nk::Device::none;
}

// Of a recording that was opened by its patient page, the samples are in another file.
bool NK2100Reader::fail(int code, const std::string& what) {
    const bool own = m_state->samples.empty() || m_state->samples == filePath();
    return refuse(code, own ? what : "its samples (.EEG): " + what);
}

bool NK2100Reader::describe(FlatRecording& recording) {
    *m_state = State();
    m_state->samples = filePath();
    if (hasEnding(filePath(), ".pnt") && !readOpenedPage())
        return false;
    std::string reason;
    if (!recording.samples.open(m_state->samples.c_str(), &reason))
        return fail(1, reason);
    const HeaderBlock head =
        recording.samples.read("header of the .EEG", 0, nk::headBytes + nk::mostTableBytes);
    const std::string device = valueOf(head, nk::signature);
    const std::int64_t size = recording.samples.size();
    switch (nk::deviceOf(device)) {
    case nk::Device::none:
        return size < nk::signature.width
                   ? fail(2, "the file ends after " + std::to_string(size) +
                                 " bytes, inside the device signature")
                   : fail(3, "its first 16 bytes are no signature of a device of the EEG-1100 / "
                             "2100 family");
    case nk::Device::extended:
        return fail(3, "EEG-1200A recordings are a variant whose layout is not known well enough; "
                       "those of EEG-1100, EEG-2100, QI-403A and DAE-2100D are read");
    case nk::Device::unknownVersion:
        report(Severity::warning, "its signature (offset 0) has the unknown version " +
                                      device.substr(device.find_last_of('V')) +
                                      ": it is read like the known ones");
        break;
    case nk::Device::known:
        break;
    }
    if (size < nk::headBytes)
        return fail(2, "the file ends after " + std::to_string(size) +
                           " bytes, inside the header of at least " +
                           std::to_string(nk::headBytes));
    if (valueOf(head, nk::secondSignature) != device)
        return fail(2, sentenceOf(head, nk::secondSignature) + ", not the first one");
    if (!describeBlocks(head, recording) || !readCompanionPage(head) || !nameChannels(recording))
        return false;
    describePatient(head, recording);
    readEventFile(recording);
    return true;
}

// The patient page that was opened leads to the samples.
bool NK2100Reader::readOpenedPage() {
    HeaderFile file;
    std::string reason;
    if (!file.open(filePath().c_str(), &reason))
        return refuse(1, reason);
    HeaderBlock& page = m_state->page;
    page = file.read("patient page", 0, nk::pnt::readBytes);
    if (!file.fault().empty())
        return refuse(2, file.fault());
    if (nk::deviceOf(valueOf(page, nk::signature)) == nk::Device::none)
        return refuse(3, "its first 16 bytes are no signature of a device of the EEG-1100 / 2100 "
                         "family");
    m_state->samples = companion(filePath(), ".EEG", valueOf(page, nk::pnt::samples));
    return !m_state->samples.empty() ||
           refuse(1, "there is no .EEG beside this patient page, so there are no samples");
}

// The one beside the samples. False when the recording was opened by the page of another one.
bool NK2100Reader::readCompanionPage(const HeaderBlock& head) {
    HeaderBlock& page = m_state->page;
    const bool opened = m_state->samples != filePath();
    const auto leaveOut = [&](const std::string& why) {
        report(Severity::warning, "the .PNT beside it is left out: " + why);
        page = {};
        return true;
    };
    if (!opened) {
        const std::string path = companion(filePath(), ".PNT", valueOf(head, nk::eeg::patientPage));
        HeaderFile file;
        std::string reason;
        if (path.empty() || path == m_state->samples)
            return true;
        if (!file.open(path.c_str(), &reason))
            return leaveOut(reason);
        page = file.read("patient page", 0, nk::pnt::readBytes);
        if (!file.fault().empty())
            return leaveOut(file.fault());
        if (nk::deviceOf(valueOf(page, nk::signature)) == nk::Device::none)
            return leaveOut("it is no patient page");
    }
    if (belongTogether(page, head))
        return true;
    const std::string other = "it is the patient page of another recording";
    return opened ? refuse(2, other + " than the .EEG beside it") : leaveOut(other);
}

bool NK2100Reader::describeBlocks(const HeaderBlock& head, FlatRecording& recording) {
    const std::int64_t size = recording.samples.size();
    nk::WaveBlocks found = nk::findWaveBlocks(head, recording.samples);
    if (!found.fault.empty()) {
        const auto mark =
            valueOf(recording.samples.read("waveform block of the .EEG", nk::eeg::usualBlock, 1),
                    nk::eeg::mark);
        return mark == 1 || size <= nk::eeg::usualBlock
                   ? fail(2, found.fault)
                   : fail(3, "the byte at offset 6142 is " + std::to_string(mark) +
                                 ", where the first waveform block begins with 1, and " +
                                 found.fault + "; samples are in the .EEG of a recording");
    }
    const nk::WaveBlock& first = found.blocks.front();
    FlatTrack track{first.frameBytes(), 1, 0.0, {}, {}};
    if (found.controlBlocks > 1)
        report(Severity::warning, "it has " + std::to_string(found.controlBlocks) +
                                      " control blocks: what they list is shown one after another");
    for (std::size_t i = 0; i < found.blocks.size(); ++i) {
        const nk::WaveBlock& block = found.blocks[i];
        const std::string place = "waveform block " + std::to_string(i + 1) + " (offset " +
                                  std::to_string(block.offset) + ")";
        if (block.rate != first.rate)
            return fail(3, place + " has " + std::to_string(block.rate) + " Hz, the first has " +
                               std::to_string(first.rate) + ": such a variant is not read");
        if (block.codes != first.codes)
            return fail(3,
                        place + " has other channels than the first: such a variant is not read");
        const std::int64_t there = wholeFrames(block.dataOffset, block.end, block.frameBytes());
        std::int64_t frames = std::min(block.saidFrames(), there);
        if (block.tenths == 0 && found.blocks.size() == 1) {
            frames = there;
            report(Severity::warning, place + " was not closed, its length is 0: all " +
                                          std::to_string(there) + " samples behind it are shown");
        } else if (block.tenths == 0) {
            report(Severity::warning, place + " was not closed, its length is 0: none of the " +
                                          std::to_string(there) + " samples behind it are shown");
        } else if (block.saidFrames() > there) {
            report(Severity::warning, place + " says " + std::to_string(block.saidFrames()) +
                                          " samples, " + std::to_string(there) + " are there");
        } else if (block.end == size && there > frames) {
            report(Severity::note, place + " says " + std::to_string(frames) + " samples, " +
                                       std::to_string(there - frames) +
                                       " more would have room and are not shown");
        }
        track.pieces.push_back({block.dataOffset, frames});
        recording.segments.push_back({frames, 0.0});
    }
    for (std::size_t i = 0; i < first.codes.size(); ++i)
        recording.channels.push_back(channelOf(static_cast<std::int64_t>(i), first.codes[i], {}));
    recording.rate = first.rate;
    recording.tracks.push_back(std::move(track));
    m_state->blocks = std::move(found.blocks);
    setStart(head, recording);
    return true;
}

void NK2100Reader::setStart(const HeaderBlock& head, FlatRecording& recording) {
    const std::string text = valueOf(head, nk::eeg::start);
    const auto part = [&](std::size_t position) { return nk::digitsAt(text, position, 2); };
    CalendarTime& start = recording.start;
    start = {nk::digitsAt(text, 0, 4),     part(4), part(6), part(8), part(10),
             static_cast<double>(part(12))};
    const CalendarTime& block = m_state->blocks.front().start;
    if (!start.hasDate() || !start.hasTime()) {
        report(Severity::warning,
               "its start (offset 64) is no date and time: " +
                   std::string(block.hasDate() ? "that of its first block counts"
                                               : "the clock begins at midnight"));
        start = block;
    } else if (block.hasDate() && block.secondsFromDayOf(start) != start.secondOfDay()) {
        report(Severity::warning,
               "its first block begins " +
                   shortestText(block.secondsFromDayOf(start) - start.secondOfDay()) +
                   " s after the start in the header (offset 64)");
    }
    recording.clockStep = 1.0;
    recording.clockDrifts = true;
    double next = start.secondOfDay();
    for (std::size_t i = 0; i < recording.segments.size(); ++i) {
        FlatSegment& segment = recording.segments[i];
        const CalendarTime& time = m_state->blocks[i].start;
        if (!time.hasDate())
            report(Severity::warning, "waveform block " + std::to_string(i + 1) +
                                          " has no date and time: it is shown as if it followed "
                                          "without a pause");
        segment.start = time.hasDate() ? time.secondsFromDayOf(start) : next;
        next = segment.start + static_cast<double>(segment.count) / recording.rate;
    }
}

void NK2100Reader::describePatient(const HeaderBlock& head, FlatRecording& recording) {
    const HeaderBlock& page = m_state->page;
    PatientRec& patient = recording.patient;
    if (const std::string name = valueOf(head, nk::eeg::patientName); !name.empty())
        patient.setName(name);
    if (page.bytes().empty())
        return;
    m_state->logName = valueOf(page, nk::pnt::log);
    if (page.bytes().size() < static_cast<std::size_t>(nk::pnt::leastBytes)) {
        report(Severity::warning, "the patient page is left out: it ends after " +
                                      std::to_string(page.bytes().size()) + " bytes");
        return;
    }
    if (const std::string name = valueOf(page, nk::pnt::name); !name.empty())
        patient.setName(name);
    copyText(patient.id, valueOf(page, nk::pnt::id));
    copyText(patient.physician, valueOf(page, nk::pnt::physician));
    copyText(patient.rawRecording, valueOf(page, nk::pnt::number));
    const std::string birth = valueOf(page, nk::pnt::birth);
    copyText(patient.birthDate, nk::dateOf(birth).hasDate() ? nk::dateOf(birth).dateText() : birth);
    // In the language of the installation: "Male", "weibl." ...
    const std::string sex = valueOf(page, nk::pnt::sex);
    const char first = sex.empty() ? '\0' : lowerCase(sex.front());
    copyText(patient.sex, first == 'm' ? "M" : first == 'f' || first == 'w' ? "F" : "");
}

bool NK2100Reader::nameChannels(FlatRecording& recording) {
    nk::InputNames names;
    HeaderFile file;
    const std::string path = companionFile(m_state->samples, ".21E");
    std::string reason;
    if (!path.empty() && !file.open(path.c_str(), &reason))
        return refuse(1, "of the .21E beside it: " + reason);
    const bool named = !path.empty() && names.read(file);
    if (!file.fault().empty())
        return refuse(2, "of the .21E beside it: " + file.fault());
    if (file.size() > mostElectrodeFileBytes)
        report(Severity::warning, "of the .21E beside it the first " +
                                      std::to_string(mostElectrodeFileBytes) + " bytes of " +
                                      std::to_string(file.size()) + " are read");
    if (!named)
        report(Severity::warning,
               std::string(path.empty() ? "there is no .21E with the names of electrodes beside it"
                                        : "the .21E beside it holds no names of electrodes") +
                   ": the device's own are shown, which may have left and right exchanged");
    const std::vector<int>& codes = m_state->blocks.front().codes;
    for (std::size_t i = 0; i < codes.size(); ++i)
        recording.channels[i].grid1 = names.nameOf(codes[i]);
    return true;
}

void NK2100Reader::readEventFile(const FlatRecording& recording) {
    const std::string path = companion(m_state->samples, ".LOG", m_state->logName);
    if (path.empty())
        return;
    std::vector<std::string> faults;
    std::vector<nk::LogEntry> entries = nk::readLog(path.c_str(), faults);
    for (const std::string& fault : faults)
        report(Severity::warning, "of the .LOG beside it something is left out: " + fault);
    const FlatSegment& last = recording.segments.back();
    const double end = last.start + static_cast<double>(last.count) / recording.rate;
    bool dated = false, near = false;
    for (const nk::LogEntry& entry : entries)
        if (entry.clock.hasDate() && recording.start.hasDate()) {
            const double clock = entry.clock.secondsFromDayOf(recording.start);
            dated = true;
            near = near || (clock >= recording.segments.front().start - secondsPerDay &&
                            clock <= end + secondsPerDay);
        }
    if (dated && !near)
        report(Severity::warning, "the .LOG beside it is left out: all its events are of other "
                                  "days, so it is of another recording");
    else
        m_state->log = std::move(entries);
}

// The elapsed time counts what was recorded. With pauses the clock time must agree, or else counts:
// whether the elapsed time leaves pauses out is not sure.
void NK2100Reader::listEvents(std::vector<FlatEvent>& events) {
    const FlatRecording& made = recording();
    for (const nk::LogEntry& entry : m_state->log) {
        auto sample = saturate<std::int64_t>(std::round(entry.elapsed * made.rate));
        if (made.segments.size() > 1 && entry.clock.hasDate() && made.start.hasDate()) {
            const double clock = entry.clock.secondsFromDayOf(made.start) + entry.fraction;
            const auto byClock = sampleAt(clock);
            // A clock that was set back shows such a time twice.
            const bool agree = std::abs(clockAt(sample) - clock) <= 1.0;
            if (byClock && !agree && std::abs(static_cast<double>(*byClock - sample)) > made.rate)
                sample = *byClock;
        }
        events.push_back({sample, entry.text, {}, 0.0});
    }
}

} // namespace kvsig
