#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

#include <string>

namespace kvsig {

/// Blackrock recordings ("Blackrock (*.ns*)"): NEURALSG (2.1), NEURALCD (2.2, 2.3) and BRSMPGRP
/// (3.0), with the events of the .nev beside them. "Cyberkinetics (*.toc)" shares the class and is
/// refused.
class KVSIG_API CyberkineticsReader : public FlatReader {
  public:
    /// True when the file's first 8 bytes are one of the three ids; by its name alone for *.toc.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    bool describeBare(FlatRecording& recording);
    bool describeBlocks(FlatRecording& recording);
    bool findBlocks(FlatRecording& recording, std::int64_t dataOffset, bool wideStamps);
    void findCompanion(const FlatRecording& recording);

    std::string m_events;       ///< path of the .nev that belongs to the recording; empty without
    double m_clockOrigin = 0.0; ///< seconds by the recorder's clock at the start of the recording
};

} // namespace kvsig
