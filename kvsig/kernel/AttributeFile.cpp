#include "kvsig/kernel/AttributeFile.h"

#include "kvsig/kernel/ChannelMap.h"
#include "kvsig/kernel/PatientFields.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/ProfileLines.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace kvsig {
namespace {

constexpr const char* patientSection = "Patient";
constexpr const char* sampleTimesSection = "SampleTimes";

void writeLine(std::ostream& stream, std::string_view key, std::string_view value) {
    std::string line = std::string(key).append("=").append(value);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
    writeText(stream, line.append("\n"));
}

void writeHeading(std::ostream& stream, std::string_view name) {
    writeText(stream, std::string("[").append(name).append("]\n"));
}

// An infinite value, which is what an attribute file with too many digits gives, reads back as one.
std::string numberText(double value) {
    if (std::isinf(value))
        return value > 0 ? "1e999" : "-1e999";
    return shortestText(value);
}

// As scanf's "%i"; takes the number off `text`.
bool takeInteger(std::string_view& text, std::int32_t& value) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    } else if (text.starts_with('0')) {
        base = 8;
    }
    std::uint32_t magnitude = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (error == std::errc::invalid_argument)
        return false;
    if (error == std::errc::result_out_of_range)
        magnitude = std::numeric_limits<std::uint32_t>::max();
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    value = saturate<std::int32_t>(negative ? -std::int64_t{magnitude} : std::int64_t{magnitude});
    return true;
}

// As "%i=%lf".
bool scanSampleTime(const ProfileLine& line, SampleTime& anchor) {
    std::string_view index = line.name;
    return line.kind == ProfileLine::Kind::entry && takeInteger(index, anchor.sample) &&
           index.empty() && leadingDouble(line.value, anchor.time);
}

// Lines of which the same is to be told: the first, and how many.
struct TimeLines {
    void add(const std::string& line) {
        constexpr std::size_t longest = 80;
        if (count++ == 0)
            first = line.substr(0, longest);
    }
    [[nodiscard]] std::string words() const {
        return "'" + first + "'" +
               (count > 1 ? " and " + std::to_string(count - 1) + " more lines are" : " is");
    }
    std::string first;
    std::size_t count = 0;
};

} // namespace

void writeFileInfo(std::ostream& stream, const FileInfo& info) {
    writeHeading(stream, pszINIFileInfo);
    writeLine(stream, "File", info.file);
    writeLine(stream, "FileType", info.typeName);
    if (info.layout) {
        writeLine(stream, "SamplingRate", numberText(info.layout->samplingRate));
        writeLine(stream, "HeaderLength", std::to_string(info.layout->headerLength));
        writeLine(stream, "Calibration", numberText(info.layout->calibration));
        writeLine(stream, "WaveformCount", std::to_string(info.layout->waveformCount));
        writeLine(stream, "DataType", std::to_string(info.layout->dataType));
    }
    if (info.sampleLag)
        writeLine(stream, "SampleLag", std::to_string(*info.sampleLag));
    if (!info.channelMap.empty())
        writeLine(stream, "ChannelMap", info.channelMap);
}

void writeChannelNames(std::ostream& stream, std::string_view heading,
                       const std::vector<std::string>& names, std::string_view reference) {
    writeHeading(stream, heading);
    int number = 0;
    for (const std::string& key : channelMapKeys(names, reference))
        writeLine(stream, key, std::to_string(++number));
}

void writePatientSection(std::ostream& stream, const PatientRec& patient) {
    writeHeading(stream, patientSection);
    if (patient.fullName) {
        writeLine(stream, "FullName", patient.name());
    } else {
        writeLine(stream, "First", fieldView(patient.first));
        writeLine(stream, "MI", fieldView(patient.mi));
        writeLine(stream, "Last", fieldView(patient.last));
    }
    forEachPatientField(patient, [&stream](const char* label, const auto& field) {
        writeLine(stream, label, fieldView(field));
    });
}

void readPatientSection(std::istream& stream, PatientRec& patient) {
    forEachProfileEntry(stream, patientSection, [&patient](const ProfileLine& line) {
        const auto take = [&line](const char* label, auto& field) {
            if (equalNoCase(line.name, label))
                copyText(field, line.value);
        };
        if (equalNoCase(line.name, "FullName"))
            patient.setName(line.value);
        take("First", patient.first);
        take("MI", patient.mi);
        take("Last", patient.last);
        forEachPatientField(patient, take);
        return true;
    });
}

void writeSampleTimes(std::ostream& stream, const std::vector<SampleTime>& anchors) {
    writeHeading(stream, sampleTimesSection);
    for (const SampleTime& anchor : anchors)
        writeLine(stream, std::to_string(anchor.sample), fixedText(anchor.time, 3));
}

std::vector<std::string> takeSampleTimes(std::istream& stream,
                                         const std::function<bool(SampleTime& anchor)>& take) {
    TimeLines ignored;
    TimeLines cut;
    std::string text;
    if (findProfileSection(stream, sampleTimesSection))
        while (readProfileLine(stream, text)) {
            const ProfileLine line = splitProfileLine(text);
            if (line.kind == ProfileLine::Kind::section)
                break;
            if (line.kind == ProfileLine::Kind::blank || line.kind == ProfileLine::Kind::comment)
                continue;
            SampleTime anchor;
            double whole = 0.0;
            const bool scanned = scanSampleTime(line, anchor);
            const double stored = anchor.time;
            if (!scanned || !take(anchor))
                ignored.add(text);
            else if (!wholeDouble(line.value, whole))
                cut.add(text + "', read as '" + shortestText(stored));
        }
    std::vector<std::string> sentences;
    if (ignored.count > 0)
        sentences.push_back("SampleTimes: " + ignored.words() +
                            " ignored: not 'sample=seconds' in rising order");
    if (cut.count > 0)
        sentences.push_back("SampleTimes: " + cut.words() + " taken by the number in front");
    return sentences;
}

std::vector<SampleTime> readSampleTimes(std::istream& stream) {
    std::vector<SampleTime> anchors;
    (void)takeSampleTimes(stream, [&anchors](const SampleTime& anchor) {
        anchors.push_back(anchor);
        return true;
    });
    return anchors;
}

} // namespace kvsig
