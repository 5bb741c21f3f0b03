#pragma once

#include "kvsig/readers/FlatReader.h"
#include "kvsig/util/Export.h"

#include <memory>
#include <string>

namespace kvsig {

class HeaderBlock;

/// Nihon Kohden recordings of the EEG-1100 / 2100 family ("NihonKohden 2100 (*.pnt)"): opened by
/// the patient page (.PNT) or the samples (.EEG), with the names of the .21E and the events of the
/// .LOG beside them. EEG-1200A is refused.
class KVSIG_API NK2100Reader : public FlatReader {
  public:
    NK2100Reader();
    ~NK2100Reader() override;

    /// True when the file begins with the signature of one of the devices: every file of such a
    /// recording but the .21E does.
    static bool isFileType(const char* path);

  protected:
    bool describe(FlatRecording& recording) override;
    void listEvents(std::vector<FlatEvent>& events) override;

  private:
    struct State;

    bool fail(int code, const std::string& what);
    bool readOpenedPage();
    bool readCompanionPage(const HeaderBlock& head);
    bool describeBlocks(const HeaderBlock& head, FlatRecording& recording);
    void setStart(const HeaderBlock& head, FlatRecording& recording);
    bool nameChannels(FlatRecording& recording);
    void describePatient(const HeaderBlock& head, FlatRecording& recording);
    void readEventFile(const FlatRecording& recording);

    std::unique_ptr<State> m_state; ///< of the latest describe()
};

} // namespace kvsig
