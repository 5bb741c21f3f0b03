#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace kvsig {

class HeaderBlock;

/// Blackrock recordings ("Blackrock (*.ns*)"): NEURALSG (2.1), NEURALCD (2.2, 2.3) and BRSMPGRP
/// (3.0), with the events of the .nev beside them. "Cyberkinetics (*.toc)" shares the class and is
/// refused.
class KVSIG_API CyberkineticsReader : public FlatReader {
  public:
    CyberkineticsReader();
    ~CyberkineticsReader() override;

    /// True when the file's first 8 bytes are one of the three ids; by its name alone for *.toc.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    struct State;

    bool describeBare(const HeaderBlock& head, FlatRecording& recording);
    bool describeBlocks(const HeaderBlock& head, FlatRecording& recording);
    bool findBlocks(const HeaderBlock& head, FlatRecording& recording);
    bool findCompanion(const FlatRecording& recording, bool isNeeded);
    void reportClock(std::uint32_t ticks, bool wideStamps, double rate);
    std::optional<std::int64_t> placeOf(double seconds, bool& isSure) const;

    std::unique_ptr<State> m_state; ///< of the latest describe()
};

} // namespace kvsig
