#pragma once

#include "kvsig/kernel/DataReader.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"
#include "support/Testing.h"

#include <cstddef>

namespace kvsig::test {

/// Gives a reader the text of an attribute file.
inline bool readAttributes(DataReader& reader, const std::string& text) {
    std::istringstream stream(text);
    return reader.readAttributeFile(stream);
}

/// Samples `first`..`last` (inclusive) as raw counts, and as getData() gives them.
inline std::vector<std::int32_t> rawOf(DataReader& reader, int channel, long first, long last) {
    std::vector<std::int32_t> out(static_cast<std::size_t>(std::max(last - first + 1, 0L)), -99);
    reader.getRawData(channel, first, last, out.data());
    return out;
}

inline std::vector<float> valuesOf(IDataReader& reader, int channel, long first, long last,
                                   double gain = 1.0) {
    std::vector<float> out(static_cast<std::size_t>(std::max(last - first + 1, 0L)), -99.0F);
    reader.getData(channel, first, last, out.data(), gain, 0);
    return out;
}

/// The physical values of the stored samples as the format defines them, in double precision.
inline std::vector<double> physicalOf(DataReader& reader, int channel) {
    std::vector<double> values;
    const double low = reader.digitalLow(channel), high = reader.digitalHigh(channel);
    const double scale = (reader.physioHigh(channel) - reader.physioLow(channel)) / (high - low);
    for (const std::int32_t raw : rawOf(reader, channel, 0, reader.storedSampleCount() - 1))
        values.push_back((raw - low) * scale + reader.physioLow(channel));
    return values;
}

/// A recording written to a directory of its own, opened by a reader on the stack.
template <typename Reader>
class Opened : public Reader {
  public:
    explicit Opened(const EdfFile& file, const std::string& name = "recording.edf") {
        opens(file, name);
    }

    bool opens(const EdfFile& file, const std::string& name = "recording.edf") {
        path = m_dir.write(name, file.bytes());
        return isOpen = this->open(path.c_str());
    }

    bool isOpen = false;
    std::string path;

  private:
    TempDir m_dir;
};

} // namespace kvsig::test
