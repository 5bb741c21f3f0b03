#pragma once

#include "kvsig/readers/EDF90Reader.h"

namespace kvsig {

/// EDF recordings whose channel names are the first word of the label ("TelefactorEDF (*.edf)").
class KVSIG_API TelefactorEDFReader : public EDF90Reader {
  protected:
    const char* _channelName(int channel) override;
};

} // namespace kvsig
