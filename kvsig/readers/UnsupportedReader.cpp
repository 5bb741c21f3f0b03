#include "kvsig/readers/UnsupportedReader.h"

#include <utility>

namespace kvsig {

UnsupportedReader::UnsupportedReader(std::string formatName)
    : m_formatName(std::move(formatName)) {}

bool UnsupportedReader::openFile() {
    return refuse(3, "recordings of the format " + m_formatName + " are not read by this build");
}

void UnsupportedReader::close() {}
bool UnsupportedReader::readSampleInfo() { return false; }
const char* UnsupportedReader::_grid1(int) { return ""; }
const char* UnsupportedReader::_grid2(int) { return ""; }
double UnsupportedReader::_calibration(int) { return 0.0; }
double UnsupportedReader::_dcOffset(int) { return 0.0; }

} // namespace kvsig
