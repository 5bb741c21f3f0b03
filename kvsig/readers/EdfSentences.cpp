#include "kvsig/readers/EdfSentences.h"

#include <algorithm>

namespace kvsig::edf {

std::string fieldText(const std::string& name, std::int64_t offset, const std::string& value) {
    return name + " (offset " + std::to_string(offset) + ") is \"" + value + "\"";
}

std::string headerLengthText(const Header& header) {
    return fieldText("header length", headerLength.offset, header.text(headerLength));
}

std::string samplesText(const Header& header, std::int64_t signal) {
    return fieldText("samples per record of signal " + std::to_string(signal + 1),
                     header.offsetOf(samplesPerRecord, signal),
                     header.text(samplesPerRecord, signal));
}

std::string headerLengthFault(const Header& header) {
    const std::int64_t full = fullLength(header.fileSignals());
    if (header.dataOffset() >= full)
        return {};
    return headerLengthText(header) + ", but the header of " +
           std::to_string(header.fileSignals()) + " signals takes " + std::to_string(full) +
           " bytes";
}

std::int64_t largestSignal(const Header& header) {
    const auto& samples = header.signalSamples();
    return std::max_element(samples.begin(), samples.end()) - samples.begin();
}

} // namespace kvsig::edf
