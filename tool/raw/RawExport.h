#pragma once

#include "tool/Selection.h"
#include "tool/raw/RawScale.h"

#include <string>

namespace kvsig::tool {

/// Writes a selection as interleaved 16-bit data and the layout that describes it, for one file
/// after another.
class RawExport {
  public:
    RawExport(bool filtered, bool showPatient) : m_filtered(filtered), m_showPatient(showPatient) {}

    /// The data; false when it failed or was interrupted.
    bool writeData(const Selection& selection, Output& output, LongWork& work);
    /// The layout of the data just written to `dataPath`; says what was lost. False with a
    /// complaint.
    bool writeLayout(const Selection& selection, const std::string& dataPath);

  private:
    bool m_filtered;
    bool m_showPatient;
    RawScale m_scale;
};

/// False with a complaint when raw data of it, written to `dataPath`, would not open: it is too
/// short, no layout can name it, or its layout would take the place of another file.
[[nodiscard]] bool isFitForRaw(const Selection& selection, const std::string& dataPath);

/// Where the layout of a data file stands.
[[nodiscard]] std::string layoutPathFor(const std::string& dataPath);

} // namespace kvsig::tool
