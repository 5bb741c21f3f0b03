#include "Input.h"
#include "ReaderLife.h"
#include "Target.h"
#include "compliance/ReaderRow.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <map>

// The compliance kit's recordings are the seeds: a format that has its row there is fuzzed.
namespace kvsig::fuzz {
namespace {

// A header with little behind it leaves more of the fuzzer's changes to the header.
constexpr std::size_t bytesBehindHeader = 600;

std::string inputOf(const test::SampleRecording& file, std::size_t length,
                    const std::string& opened = {}) {
    std::vector<InputFile> files{{"", file.bytes.substr(0, length)}};
    for (const auto& [name, bytes] : file.companions)
        files.push_back({name, bytes});
    if (!file.attributes.empty())
        files.push_back({std::string(attributesName), file.attributes});
    if (!opened.empty())
        files.push_back({std::string(openedName), opened});
    return joinInput(files);
}

void addSeeds(Target& target, const test::SampleRecording& file) {
    target.seeds.push_back(inputOf(file, file.bytes.size()));
    const std::size_t header = file.boundaries.empty() ? 0 : file.boundaries.back();
    target.seeds.push_back(inputOf(file, header + bytesBehindHeader));
    if (!file.otherDoor.empty())
        target.seeds.push_back(inputOf(file, header + bytesBehindHeader, file.otherDoor));
}

} // namespace

std::string formatTargetName(int type) {
    std::string name = typeNameOf(type);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isLetterOrDigit(c); }, '_');
    return name;
}

std::vector<Target> readerTargets() {
    std::vector<Target> all;
    std::map<int, std::size_t> places;
    const auto add = [&](const test::ReaderRow& row, const std::string& dictionary) {
        const test::SampleRecording file = row.sample();
        const auto [place, isNew] = places.try_emplace(row.type, all.size());
        if (isNew)
            all.push_back({formatTargetName(row.type),
                           dictionary,
                           [row, name = file.fileName](std::string_view input) {
                               readerLife(row, name, input);
                           },
                           {}});
        addSeeds(all[place->second], file);
    };
    for (const test::ReaderRow& row : test::edfRows())
        add(row, "header");
    for (const test::ReaderRow& row : test::rawRows())
        add(row, "attributes");
    for (const test::ReaderRow& row : test::flatRows())
        add(row, formatTargetName(row.type));
    return all;
}

} // namespace kvsig::fuzz
