#include "kvsig/readers/EdfOpening.h"

#include "kvsig/readers/EdfOnset.h"
#include "kvsig/readers/EdfSentences.h"
#include "kvsig/readers/EdfStart.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace kvsig::edf {
namespace {

using Severity = OpenFinding::Severity;
using Findings = std::vector<OpenFinding>;

constexpr std::int64_t mostTold = 20; ///< findings of one kind

// A cut header makes thousands of signals odd in the same way.
void tellMore(Findings& findings, Severity severity, std::int64_t found, const char* what,
              const char* field = "samples per record") {
    if (found > mostTold)
        findings.push_back({severity, std::string(field) + " of " +
                                          std::to_string(found - mostTold) + " more signals " +
                                          what});
}

// Numbers are read as far as they go, as in "31 E" or "1e3"; what was made of them is told.
void findOddNumbers(const Header& header, Findings& findings) {
    const auto isRead = [](std::string_view text, std::int64_t taken) {
        double whole = 0.0;
        return (!text.empty() && std::all_of(text.begin(), text.end(), isDigit)) ||
               (wholeDouble(text, whole) && whole == static_cast<double>(taken));
    };
    const auto tell = [&findings](const std::string& field, std::int64_t taken) {
        findings.push_back({Severity::warning, field + ", read as " + std::to_string(taken)});
    };
    if (!isRead(header.view(signalCount), header.fileSignals()))
        tell(fieldText("number of signals", signalCount.offset, header.text(signalCount)),
             header.fileSignals());
    if (!isRead(header.view(headerLength), header.dataOffset()))
        tell(headerLengthText(header), header.dataOffset());
    std::int64_t odd = 0;
    for (std::int64_t i = 0; i < header.fileSignals(); ++i) {
        const std::int64_t samples = header.signalSamples()[static_cast<std::size_t>(i)];
        if (!isRead(header.view(samplesPerRecord, i), samples) && ++odd <= mostTold)
            tell(samplesText(header, i), samples);
    }
    tellMore(findings, Severity::warning, odd, "are no numbers");
}

// "-3276,8" is read as -3276: every value has another scale then. "?" and the like are for
// inspect().
void findOddLimits(const Opened& opened, Findings& findings) {
    struct Limit {
        const char* name;
        SignalField field;
    };
    constexpr Limit limits[] = {{"physical minimum", physicalMin},
                                {"physical maximum", physicalMax},
                                {"digital minimum", digitalMin},
                                {"digital maximum", digitalMax}};
    const Header& header = opened.header;
    std::int64_t odd = 0;
    for (std::size_t i = 0; i < opened.channels.size(); ++i) {
        if (!opened.channels[i].oddLimits)
            continue;
        const std::int64_t signal = header.channels()[i];
        for (const Limit& limit : limits) {
            const std::string_view text = header.view(limit.field, signal);
            double whole = 0.0;
            if (text.find_first_of("0123456789") == std::string_view::npos ||
                wholeDouble(text, whole) || ++odd > mostTold)
                continue;
            findings.push_back(
                {Severity::warning,
                 fieldText(limit.name + (" of signal " + std::to_string(signal + 1)),
                           header.offsetOf(limit.field, signal), header.text(limit.field, signal)) +
                     ", read as " + shortestText(leadingDouble(text))});
        }
    }
    tellMore(findings, Severity::warning, odd, "are no numbers", "limits");
}

// What is no time still counts as one, overflowing hours and minutes included; clock times and the
// patient record's date then mean nothing.
void findOddStart(const Header& header, Findings& findings) {
    if (!hasCalendarDate(header))
        findings.push_back(
            {Severity::warning, fieldText("start date", startDate.offset, header.text(startDate)) +
                                    ", no date as dd.mm.yy"});
    if (!hasTimeOfDay(header))
        findings.push_back(
            {Severity::warning, fieldText("start time", startTime.offset, header.text(startTime)) +
                                    ", no time as hh.mm.ss"});
}

void findOddTiming(const Opened& opened, Findings& findings) {
    constexpr double secondsPerYear = 31557600.0;
    const Header& header = opened.header;
    const double rate = opened.samplingRate;
    const auto tell = [&](const std::string& what) {
        findings.push_back(
            {Severity::unusable, fieldText("duration of a data record", recordDuration.offset,
                                           header.text(recordDuration)) +
                                     what});
    };
    double whole = 0.0;
    if (!(header.duration() > 0) || !std::isfinite(rate))
        tell(", which gives no sampling rate");
    else if (!wholeDouble(header.view(recordDuration), whole))
        tell(", read as " + shortestText(header.duration()) + ": all times would be wrong");
    else if (header.duration() > secondsPerYear)
        tell(" seconds, more than a year");
    else if (rate > fastestSamplingRate)
        tell(", which gives a sampling rate of " + shortestText(rate) + " Hz");
}

// One fast signal among many slow ones makes frames far larger than the record that they come
// from: a small file must not cost the memory of a huge one.
void findOddRecordSize(const Opened& opened, Findings& findings) {
    constexpr std::int64_t harmless = std::int64_t{64} << 20;
    constexpr std::int64_t usualGrowth = 8;
    const Header& header = opened.header;
    const std::int64_t recordBytes = header.recordSamples() * opened.sampleBytes;
    if (std::max(recordBytes, opened.frameBytes) > maxPageBytes ||
        opened.frameBytes > std::max(harmless, usualGrowth * recordBytes))
        findings.push_back({Severity::unusable,
                            "a data record of " + std::to_string(recordBytes) + " bytes gives " +
                                std::to_string(opened.frameBytes) + " bytes at the common rate: " +
                                samplesText(header, largestSignal(header))});
}

void findOddSizes(const Opened& opened, Findings& findings) {
    const Header& header = opened.header;
    if (const std::string fault = headerLengthFault(header); !fault.empty())
        findings.push_back({Severity::unusable, fault});
    findOddRecordSize(opened, findings);
    std::int64_t empty = 0;
    for (std::int64_t i = 0; i < header.fileSignals(); ++i)
        if (header.signalSamples()[static_cast<std::size_t>(i)] < 1 && ++empty <= mostTold)
            findings.push_back(
                {Severity::unusable, samplesText(header, i) + ", at least 1 is needed"});
    tellMore(findings, Severity::unusable, empty, "are below 1");
}

// What was recorded with gaps is shown without them. The ends of the file tell; where the gaps are
// takes a look at all of it, see inspect().
void findOddOnsets(const Opened& opened, Findings& findings) {
    if (!declaresPlus(opened.header))
        return;
    const double shift = lastOnsetShift(opened.file, opened.header, opened.sampleBytes);
    if (shift == 0.0)
        return;
    const std::string seconds = secondsText(std::abs(shift));
    findings.push_back(
        {Severity::warning,
         shift > 0 ? "its data records leave gaps of " + seconds +
                         " in all and are shown as if there were none: times behind a gap are "
                         "wrong"
                   : "its data records overlap by " + seconds +
                         " in all and are shown one after the other: times behind an overlap "
                         "are wrong"});
}

} // namespace

std::vector<OpenFinding> openingFindings(const Opened& opened) {
    Findings findings;
    findOddNumbers(opened.header, findings);
    findOddLimits(opened, findings);
    findOddStart(opened.header, findings);
    findOddTiming(opened, findings);
    findOddSizes(opened, findings);
    findOddOnsets(opened, findings);
    return findings;
}

} // namespace kvsig::edf
