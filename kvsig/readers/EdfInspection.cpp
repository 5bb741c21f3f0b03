#include "kvsig/readers/EdfInspection.h"

#include "kvsig/readers/EdfOddities.h"

#include <algorithm>

namespace kvsig::edf {

std::vector<OpenFinding> inspect(const std::string& path, int sampleBytes) {
    File file;
    if (!file.open(path.c_str()))
        return {};
    const Header fixedPart(HeaderBlock::readFrom(file, fixedLength));
    const std::int64_t signals = std::max<std::int64_t>(fixedPart.fileSignals(), 0);
    const Header header(HeaderBlock::readFrom(file, fullLength(signals)));
    std::vector<OpenFinding> findings = headerOddities(file, header, sampleBytes);
    const std::vector<OpenFinding> ofRecords = recordOddities(file, header, sampleBytes);
    findings.insert(findings.end(), ofRecords.begin(), ofRecords.end());
    return findings;
}

} // namespace kvsig::edf
