#pragma once

#include "kvsig/kernel/DataReader.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvsig::test {

/// Samples `first`..`last` (inclusive) as raw counts, and as getData() gives them.
inline std::vector<std::int32_t> rawOf(DataReader& reader, int channel, long first, long last) {
    std::vector<std::int32_t> out(static_cast<std::size_t>(std::max(last - first + 1, 0L)), -99);
    reader.getRawData(channel, first, last, out.data());
    return out;
}

inline std::vector<float> valuesOf(DataReader& reader, int channel, long first, long last,
                                   double gain = 1.0) {
    std::vector<float> out(static_cast<std::size_t>(std::max(last - first + 1, 0L)), -99.0F);
    reader.getData(channel, first, last, out.data(), gain, 0);
    return out;
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
