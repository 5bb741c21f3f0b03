#include "kvsig/readers/NihonKohdenWaves.h"

#include "kvsig/readers/NihonKohdenLayout.h"

#include <algorithm>
#include <set>

namespace kvsig::nk {
namespace {

// Two decimal digits in a byte; -1 when they are none.
int decimalAt(const HeaderBlock& block, std::int64_t offset) {
    const int byte = valueOf(block, NumberField<std::uint8_t>{"", offset});
    return byte / 16 < 10 && byte % 16 < 10 ? byte / 16 * 10 + byte % 16 : -1;
}

CalendarTime timeOf(const HeaderBlock& block) {
    int part[6];
    for (int i = 0; i < 6; ++i)
        part[i] = decimalAt(block, eeg::timeOffset + i);
    const CalendarTime time{fullYear(part[0]), part[1], part[2],
                            part[3],           part[4], static_cast<double>(part[5])};
    return part[0] >= 0 && time.hasDate() && time.hasTime() ? time : CalendarTime();
}

// A block, or the sentence why there is none.
std::string readWaveBlock(const HeaderFile& file, std::int64_t offset, WaveBlock& block) {
    constexpr std::int64_t mostBytes = eeg::waveHeadBytes + 255 * eeg::codeStep;
    const HeaderBlock head = file.read("waveform block of the .EEG", offset, mostBytes);
    const auto held = static_cast<std::int64_t>(head.bytes().size());
    const std::int64_t channels = valueOf(head, eeg::channelCount);
    std::string leaves = "the waveform block at offset " + std::to_string(offset) +
                         " leaves the file of " + std::to_string(file.size()) + " bytes";
    if (held < 1)
        return leaves;
    if (valueOf(head, eeg::mark) != 1)
        return sentenceOf(head, eeg::mark, 0, offset) + ", not 1";
    if (held < eeg::waveHeadBytes + channels * eeg::codeStep)
        return leaves;
    block.rate = valueOf(head, eeg::rate) & eeg::rateMask;
    if (block.rate == 0)
        return sentenceOf(head, eeg::rate, 0, offset) + ", which is 0 Hz";
    if (channels == 0)
        return sentenceOf(head, eeg::channelCount, 0, offset);
    block.offset = offset;
    block.dataOffset = offset + eeg::waveHeadBytes + channels * eeg::codeStep;
    block.tenths = valueOf(head, eeg::tenths);
    block.start = timeOf(head);
    for (std::int64_t i = 0; i < channels; ++i)
        block.codes.push_back(valueOf(head, eeg::code, i * eeg::codeStep));
    return {};
}

} // namespace

WaveBlocks findWaveBlocks(const HeaderBlock& head, const HeaderFile& file) {
    WaveBlocks found;
    const auto failed = [&found](const std::string& fault) {
        found.blocks.clear();
        found.fault = fault;
        return found;
    };
    const std::int64_t size = file.size();
    found.controlBlocks = valueOf(head, blockCount);
    std::set<std::int64_t> starts = {0, size};
    for (std::int64_t i = 0; i < found.controlBlocks; ++i) {
        const std::int64_t address = valueOf(head, blockAddress, i * addressStep);
        const HeaderBlock control = file.read("control block of the .EEG", address,
                                              eeg::waveAddress.offset + mostTableBytes);
        const std::int64_t waves = valueOf(control, eeg::waveCount);
        const std::string place = "control block " + std::to_string(i + 1) + " of " +
                                  std::to_string(found.controlBlocks) + " (offset " +
                                  std::to_string(address) + ")";
        if (headBytes + (i + 1) * addressStep > size || address + eeg::waveAddress.offset > size ||
            address + eeg::waveAddress.offset + waves * addressStep > size)
            return failed(place + " leaves the file of " + std::to_string(size) + " bytes");
        if (!starts.insert(address).second)
            return failed(place + " begins where another block does");
        for (std::int64_t j = 0; j < waves; ++j) {
            WaveBlock& block = found.blocks.emplace_back();
            const std::int64_t offset = valueOf(control, eeg::waveAddress, j * addressStep);
            if (const std::string fault = readWaveBlock(file, offset, block); !fault.empty())
                return failed(fault);
            if (!starts.insert(offset).second)
                return failed("the waveform block at offset " + std::to_string(offset) +
                              " begins where another block does");
        }
    }
    if (found.blocks.empty())
        return failed(sentenceOf(head, blockCount) + ", and there is no waveform block");
    for (WaveBlock& block : found.blocks) {
        block.end = *starts.upper_bound(block.offset);
        if (block.end < block.dataOffset)
            return failed("the waveform block at offset " + std::to_string(block.offset) +
                          " runs into the one at offset " + std::to_string(block.end));
    }
    return found;
}

} // namespace kvsig::nk
