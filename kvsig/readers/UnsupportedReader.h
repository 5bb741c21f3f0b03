#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/util/Export.h"

#include <string>

namespace kvsig {

/// Stands for a format that is listed and not built: it can be allocated, named and paired like any
/// other, and openFile() fails with error 3 and a sentence that names the format.
class KVSIG_API UnsupportedReader : public DataReader {
  public:
    /// `formatName` is what the refusal calls the format.
    explicit UnsupportedReader(std::string formatName);

    bool openFile() override;
    void close() override;
    bool readSampleInfo() override;

  protected:
    const char* _grid1(int channel) override;
    const char* _grid2(int channel) override;
    double _calibration(int channel) override;
    double _dcOffset(int channel) override;

  private:
    std::string m_formatName;
};

} // namespace kvsig
