#include "kvsig/readers/NihonKohdenNames.h"

#include "kvsig/util/Limits.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace kvsig::nk {
namespace {

constexpr int lastCode = 255;

constexpr std::array headNames = {"FP1", "FP2", "F3",  "F4",  "C3", "C4", "P3", "P4", "O1",
                                  "O2",  "F7",  "F8",  "T3",  "T4", "T5", "T6", "FZ", "CZ",
                                  "PZ",  "E",   "PG1", "PG2", "A1", "A2", "T1", "T2"};
constexpr std::array unusedNames = {"BN", "AV", "SD", "Aav", "0V"}; // 37 to 41
constexpr std::array lateNames = {"BN1", "BN2", "Mark1", "Mark2"};  // 74 to 77

struct CodeRange {
    int first, last;
};
constexpr CodeRange extraInputs{26, 36}, unusedInputs{37, 41}, dcInputs{42, 73}, lateInputs{74, 77},
    farInputs{100, 253}, markInputs{76, 77};
constexpr int averageCode = 254;

bool within(int code, CodeRange range) { return code >= range.first && code <= range.last; }

std::string deviceName(int code) {
    const auto ofTable = [code](const auto& table, int first) {
        return std::string(table[static_cast<std::size_t>(code - first)]);
    };
    if (within(code, {0, static_cast<int>(headNames.size()) - 1}))
        return ofTable(headNames, 0);
    if (within(code, extraInputs))
        return "X" + std::to_string(code - extraInputs.first + 1);
    if (within(code, unusedInputs))
        return ofTable(unusedNames, unusedInputs.first);
    if (within(code, dcInputs))
        return "DC" + paddedText(code - dcInputs.first + 1, 2);
    if (within(code, lateInputs))
        return ofTable(lateNames, lateInputs.first);
    if (within(code, farInputs))
        return "X" + std::to_string(code - farInputs.first + 12);
    if (code == averageCode)
        return "AVG";
    return code == lastCode ? "Z" : "In" + std::to_string(code);
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

} // namespace

bool isMillivoltCode(int code) { return within(code, dcInputs) || within(code, markInputs); }

// Lines "NNNN=name", NNNN the decimal code; of several for a code the first counts.
bool InputNames::read(const HeaderFile& file) {
    const HeaderBlock block = file.read("text", 0, mostElectrodeFileBytes);
    std::string text;
    for (const std::byte byte : block.bytes())
        text.push_back(static_cast<char>(byte));
    std::map<int, std::string>* names = nullptr;
    for (const std::string& word : splitWords(text, '\n')) {
        const std::string_view line = trimmed(word);
        if (line.starts_with('[')) {
            names = equalNoCase(line, "[ELECTRODE]")   ? &m_electrodes
                    : equalNoCase(line, "[REFERENCE]") ? &m_references
                                                       : nullptr;
            continue;
        }
        const std::size_t equals = line.find('=');
        const std::string_view code = trimmed(line.substr(0, equals));
        if (!names || equals == std::string_view::npos || code.empty() ||
            !std::all_of(code.begin(), code.end(), isDigit))
            continue;
        const std::string_view name = trimmed(line.substr(equals + 1));
        if (const std::int64_t number = leadingInteger(code); number <= lastCode && !name.empty())
            names->emplace(static_cast<int>(number), name);
    }
    return !m_electrodes.empty();
}

// The name of a reference loses its "$", but not where that would make it the name of an electrode:
// the mark inputs are often called "$A1" and "$A2", and a montage must not find them as A1 and A2.
std::string InputNames::nameOf(int code) const {
    if (const auto found = m_electrodes.find(code); found != m_electrodes.end())
        return found->second;
    const auto reference = m_references.find(code);
    if (reference == m_references.end())
        return deviceName(code);
    const std::string& whole = reference->second;
    if (!whole.starts_with('$') || whole.size() == 1)
        return whole;
    std::string bare = whole.substr(1);
    for (int other = 0; other <= lastCode; ++other) {
        const auto found = m_electrodes.find(other);
        if (equalNoCase(found == m_electrodes.end() ? deviceName(other) : found->second, bare))
            return whole;
    }
    return bare;
}

} // namespace kvsig::nk
