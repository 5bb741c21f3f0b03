#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

namespace kvsig {

/// Micromed recordings ("Micromed (*.trc)") of header type 4, with the events of the file itself
/// and of the .EVT beside it. Older header types, compressed recordings and the Galileo files of
/// the same ending are refused.
class KVSIG_API MicromedReader : public FlatReader {
  public:
    /// True for header type 4 with its zones, and for what is refused by name: the older types and
    /// Galileo files, by their titles.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    bool isReadVariant(const FlatRecording& recording);
    bool isSoundHeader(const FlatRecording& recording);
    bool describeChannels(FlatRecording& recording);
    void describePieces(FlatRecording& recording, std::int64_t frames);
};

} // namespace kvsig
