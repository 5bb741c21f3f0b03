#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "tool/Command.h"
#include "tool/FactsOfFiles.h"
#include "tool/Recording.h"
#include "tool/Table.h"
#include "tool/Words.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <sstream>
#include <utility>

namespace kvsig::tool {
namespace {

constexpr int anchorsInText = 20;

struct InfoOptions {
    FactsOptions files;
    bool showPatient = false;
};

Json channelFacts(const Recording& recording, int channel) {
    IDataReader& reader = *recording.reader;
    const Recording::Place place = recording.placeOf(channel);
    return {{"index", channel},
            {"name", toUtf8(reader.channelName(channel))},
            {"grid1", toUtf8(reader.grid1(channel))},
            {"grid2", toUtf8(reader.grid2(channel))},
            {"type", reader.channelType(channel)},
            {"units", toUtf8(reader.channelUnits(channel))},
            {"calibration", reader.calibration(channel)},
            {"dcOffset", place.reader->dcOffset(place.channel)},
            {"physioLow", reader.physioLow(channel)},
            {"physioHigh", reader.physioHigh(channel)},
            {"digitalLow", reader.digitalLow(channel)},
            {"digitalHigh", reader.digitalHigh(channel)},
            {"samplingRate", place.reader->storedSamplingRate(place.channel)}};
}

Json patientFacts(const PatientRec& patient) {
    Json facts;
    const auto add = [&facts](const char* key, const std::string& value) {
        facts[key] = toUtf8(value);
    };
    add("name", displayName(patient));
    add("sex", patient.sex);
    add("hand", patient.hand);
    add("birthDate", patient.birthDate);
    add("id", patient.id);
    add("testDate", patient.testDate);
    add("testTime", patient.testTime);
    add("physician", patient.physician);
    add("technician", patient.technician);
    add("medications", patient.medications);
    add("history", patient.history);
    add("comments1", patient.comments1);
    add("comments2", patient.comments2);
    return facts;
}

std::string typeName(const Recording& recording) {
    std::string names;
    for (DataReader* member : recording.members())
        names += (names.empty() ? "" : "+") + typeNameOf(member->fileType());
    return names;
}

Json anchorFacts(const Recording& recording, int most) {
    Json anchors = Json::array();
    for (int i = 0; i < std::min(recording.reader->sampleTimeCount(), most); ++i) {
        SampleTime anchor;
        recording.reader->getSampleTime(i, anchor);
        anchors.push_back(
            {{"sample", recording.atCommonRate(anchor.sample)}, {"time", anchor.time}});
    }
    return anchors;
}

Json facts(const Recording& recording, bool showPatient, int mostAnchors) {
    IDataReader& reader = *recording.reader;
    Json all;
    all["file"] = toUtf8(recording.path);
    all["type"] = {{"number", reader.fileType()}, {"name", typeName(recording)}};
    all["samplingRate"] = reader.samplingRate();
    all["sampleCount"] = recording.atCommonRate(reader.sampleCount());
    all["storedSampleCount"] = recording.storedSamples();
    all["duration"] = reader.duration();
    all["startClock"] = reader.getClockTime(0.0);
    all["sampleTimes"] = anchorFacts(recording, mostAnchors);
    all["referential"] = reader.isMapReferential() != 0;
    all["refGrid"] = toUtf8(reader.refGrid());
    all["channels"] = Json::array();
    for (int i = 0; i < reader.channelCount(); ++i)
        all["channels"].push_back(channelFacts(recording, i));
    if (showPatient)
        all["patient"] = patientFacts(*reader.patientRec());
    all["montages"] = Json::array();
    for (int i = 0; i < reader.montageCount(); ++i)
        all["montages"].push_back(toUtf8(reader.montageName(i)));
    return all;
}

std::string numberText(const Json& value) { return generalText(value.get<double>(), 7); }

std::string channelTable(const Json& channels) {
    std::vector<std::vector<std::string>> rows{{"#", "name", "grid 1", "grid 2", "type", "units",
                                                "calibration", "dc offset", "physical", "digital",
                                                "rate/Hz"}};
    for (const Json& c : channels)
        rows.push_back({std::to_string(c["index"].get<int>()), c["name"], c["grid1"], c["grid2"],
                        std::to_string(c["type"].get<int>()), c["units"],
                        numberText(c["calibration"]), numberText(c["dcOffset"]),
                        numberText(c["physioLow"]) + " .. " + numberText(c["physioHigh"]),
                        std::to_string(c["digitalLow"].get<int>()) + " .. " +
                            std::to_string(c["digitalHigh"].get<int>()),
                        numberText(c["samplingRate"])});
    return tableText(rows,
                     {true, false, false, false, true, false, true, true, false, false, true});
}

std::string summary(const Json& all, int anchors) {
    std::vector<std::vector<std::string>> rows;
    const auto add = [&rows](const std::string& label, const std::string& value) {
        rows.push_back({label, value});
    };
    const auto samples = all["sampleCount"].get<long>();
    const auto stored = all["storedSampleCount"].get<long>();
    const double rate = all["samplingRate"];
    add("type", all["type"]["name"].get<std::string>() + " (" +
                    std::to_string(all["type"]["number"].get<int>()) + ")");
    add("channels", std::to_string(all["channels"].size()) + " at " + shortestText(rate) + " Hz");
    add("samples", std::to_string(samples) + ", " + clockText(all["duration"]));
    if (stored < samples)
        add("stored", std::to_string(stored) + ", " +
                          clockText(rate > 0 ? static_cast<double>(stored) / rate : 0.0) +
                          " (what lies beyond reads as zeros)");
    add("start", clockText(all["startClock"]));
    for (const Json& anchor : all["sampleTimes"])
        add("anchor", "sample " + std::to_string(anchor["sample"].get<long>()) + " at " +
                          clockText(anchor["time"]));
    if (const std::size_t shown = all["sampleTimes"].size(); std::cmp_less(shown, anchors))
        add("anchor",
            "and " + std::to_string(anchors - saturate<int>(shown)) + " more; --json lists all");
    const bool referential = all["referential"];
    const std::string reference = all["refGrid"];
    add("reference", !referential        ? "none in common (recorded pairs)"
                     : reference.empty() ? "common, without a name"
                                         : "common, " + reference);
    for (const Json& montage : all["montages"])
        add("montage", montage);
    if (all.contains("patient"))
        for (const auto& [key, value] : all["patient"].items())
            if (!value.get<std::string>().empty())
                add("patient " + key, value);
    return tableText(rows, {false, false});
}

FileFacts infoOf(const std::string& file, int type, const InfoOptions& options) {
    const std::optional<Recording> recording = openRecording(file, type);
    if (!recording)
        return {nullptr, "", exitFailed};
    const int anchors = options.files.json ? std::numeric_limits<int>::max() : anchorsInText;
    FileFacts info{facts(*recording, options.showPatient, anchors), "", exitWell};
    if (!options.files.json)
        info.text = printable(file) + "\n" +
                    summary(info.json, recording->reader->sampleTimeCount()) + "\n" +
                    channelTable(info.json["channels"]) + "\n";
    if (const OpenFinding* finding = recording->unusable()) {
        complain(file + ": " + finding->text);
        info.exitCode = exitFailed;
    }
    return info;
}

} // namespace

void addInfoCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<InfoOptions>();
    CLI::App* command = app.add_subcommand("info", "Show what is in recordings");
    command->footer("Examples:\n"
                    "  kvsig info night.edf\n"
                    "  kvsig info --json night.edf");
    addFactsOptions(*command, options->files);
    command->add_flag("--show-patient", options->showPatient, "Show who was recorded");
    command->callback([options, &exitCode] {
        exitCode = printFacts(options->files, [&options](const std::string& file, int type) {
            return infoOf(file, type, *options);
        });
    });
}

} // namespace kvsig::tool
