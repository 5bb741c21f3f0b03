#pragma once

#include "kvsig/util/Export.h"

#include <functional>
#include <string>

namespace kvsig {

/// Severities of diagnostics.
inline constexpr int logInfo = 1;    ///< insight into what the kernel does
inline constexpr int logWarning = 2; ///< a refusal or a fault that the user must know of

/// Installs the receiver of the library's diagnostics; an empty function silences them (the
/// default). The sink is called on the thread that caused the message, from any number of threads.
/// Patient data never goes to it.
KVSIG_API void SetLogSink(std::function<void(int level, const char* text)> sink);

/// Hands a message to the sink.
KVSIG_API void logMessage(int level, const std::string& text);

} // namespace kvsig
