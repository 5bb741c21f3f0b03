#pragma once

#include "kvsig/readers/HeaderFile.h"

#include <map>
#include <string>

namespace kvsig::nk {

/// Whether the input of the code is recorded in millivolts: DC and mark inputs.
[[nodiscard]] bool isMillivoltCode(int code);

/// The names of the inputs, by their codes.
class InputNames {
  public:
    /// Takes the names of an electrode file (.21E), which override the device's own. False when it
    /// holds no names of electrodes.
    bool read(const HeaderFile& file);

    [[nodiscard]] std::string nameOf(int code) const;

  private:
    std::map<int, std::string> m_electrodes;
    std::map<int, std::string> m_references;
};

} // namespace kvsig::nk
