#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

#include <cstdint>
#include <memory>

namespace kvsig {

class HeaderBlock;

/// Micromed recordings ("Micromed (*.trc)") of header type 4, with the events of the file itself
/// and of the .EVT beside it. Older header types, compressed recordings and the Galileo files of
/// the same ending are refused.
class KVSIG_API MicromedReader : public FlatReader {
  public:
    MicromedReader();
    ~MicromedReader() override;

    /// True for header type 4 with its zones, and for what is refused by name: the older types and
    /// Galileo files, by their titles.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    struct State;

    bool isReadVariant(const HeaderBlock& header, std::int64_t size);
    bool isSoundHeader(const HeaderBlock& header, std::int64_t size);
    bool describeChannels(const HeaderBlock& header, FlatRecording& recording);
    void describePieces(const HeaderBlock& header, FlatRecording& recording, std::int64_t frames);
    void readZones(const HeaderBlock& header, FlatRecording& recording, std::int64_t frames);

    std::unique_ptr<State> m_state; ///< of the latest describe()
};

} // namespace kvsig
