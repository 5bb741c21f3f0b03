#pragma once

#include "kvsig/util/Export.h"

#include <iosfwd>

namespace kvsig {

class IDataReader;

/// Writes the attribute file of a reader's samples exported as 16-bit little-endian frames without
/// a header (all channels of a sample together, sample after sample) into the file `file`: rate,
/// calibration of channel 0 (which must then hold for all), the stored channel
/// names (numbers shown in their place play no part) and patient. True unless
/// there is no reader or the stream has failed.
KVSIG_API bool WriteExportAttributeFile(std::ostream& stream, IDataReader* reader,
                                        const char* file);

} // namespace kvsig
