#include "Trial.h"
#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/ReadAround.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

// Mutants for this library.
namespace {

using namespace kvsig;

// What a layout would say of raw data; what is refused otherwise is read by it too.
constexpr const char* layout = "[FileInfo]\nFile=x\nSamplingRate=500\nHeaderLength=0\n"
                               "Calibration=0.1\nWaveformCount=16\nDataType=0\n";

// As an export does: all channels, second by second, and a row of the recorded montage.
void readToTheEnd(DataReader& reader) {
    constexpr long mostBlocks = 200;
    const long step =
        std::clamp(static_cast<long>(std::min(reader.samplingRate(), 65536.0)), 1L, 65536L);
    const int channels = std::min<int>(reader.channelCount(), 64);
    std::vector<float> block(static_cast<std::size_t>(step));
    for (long i = 0; i < mostBlocks && i * step < reader.storedSampleCount(); ++i)
        for (int channel = 0; channel < channels; ++channel)
            reader.getData(channel, i * step, (i + 1) * step - 1, block.data(), 1.0, 0);
    SourceMontage montage;
    montage.setReader(&reader);
    montage.createRecordedMontage();
    if (DataSource* row = montage.source(0))
        row->getData(0, step - 1, block.data(), 1.0);
}

void useReader(DataReader& reader) {
    test::readAround(reader);
    readToTheEnd(reader);
    static_cast<void>(reader.inspectFile());
    std::ostringstream stream;
    static_cast<void>(reader.writeAttributeFile(stream));
}

bool opensAndReads(const std::string& path) {
    std::string error;
    if (const ReaderPtr reader = openReader(path.c_str(), 0, &error)) {
        useReader(dynamic_cast<DataReader&>(*reader));
        return true;
    }
    std::cerr << error << '\n';
    InterleavedReader raw;
    std::istringstream attributes(layout);
    if (raw.readAttributeFile(attributes) && raw.open(path.c_str()))
        useReader(raw);
    return false;
}

} // namespace

int main(int count, char** arguments) {
    return kvsig::mutants::runMutants({"kvsig", opensAndReads}, count, arguments);
}
