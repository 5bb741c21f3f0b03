#pragma once

#include "kvsig/readers/EDF90Reader.h"

namespace kvsig {

/// EDF recordings of Lifelines systems ("Lifelines (*.edf)"); nothing differs from EDF.
class KVSIG_API LifelinesReader : public EDF90Reader {};

} // namespace kvsig
