#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

#include <cstdint>
#include <vector>

namespace kvsig {

class HeaderBlock;
class HeaderFile;

/// Continuous Neuroscan recordings ("Neuroscan (*.cnt)"), 16-bit or 32-bit, with the events of
/// their event table. Averages and epochs of the same header, and the RIFF files of the same
/// ending, are refused.
class KVSIG_API NeuroscanReader : public FlatReader {
  public:
    NeuroscanReader();
    ~NeuroscanReader() override;

    /// True for the version text of the header; for a RIFF file only when it is named *.cnt, in
    /// order to be refused.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    struct Places;

    bool isReadVariant(const HeaderBlock& header, std::int64_t size);
    bool findPlaces(const HeaderBlock& header, const HeaderFile& file, Places& places);
    int sampleBytes(const HeaderBlock& header, const HeaderFile& file, const Places& places);
    bool standsInBlocks(const HeaderBlock& header, const FlatRecording& recording,
                        const Places& places);
    void describeChannels(FlatRecording& recording, const Places& places);
    void describeTracks(const HeaderBlock& header, FlatRecording& recording, Places& places);
    void describePatient(const HeaderBlock& header, FlatRecording& recording);
    void readEventTable(FlatRecording& recording, const Places& places);

    std::vector<FlatEvent> m_events;
};

} // namespace kvsig
