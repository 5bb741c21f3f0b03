#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

#include <memory>

namespace kvsig {

/// Nervus and NicoletOne containers ("Nervus (*.e)", "NicoletOne nEEG/LTM/Monitor (*.e)"). Those of
/// the older generation, before about 2012, are refused.
class KVSIG_API NervusReader : public FlatReader {
  public:
    NervusReader();
    ~NervusReader() override;

    /// True when the file's tags are those of such a container, or when it is a *.e of the older
    /// generation.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    struct State;

    bool describeSegments(FlatRecording& recording);
    bool describeChannels(FlatRecording& recording);
    bool countSamples(FlatRecording& recording);

    std::unique_ptr<State> m_state; ///< of the latest describe()
};

} // namespace kvsig
