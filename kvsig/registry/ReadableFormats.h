#pragma once

#include "kvsig/kernel/DataReader.h"
#include "kvsig/registry/types/ReaderType.h"

#include <memory>
#include <span>

namespace kvsig {

/// A format that this build reads.
struct ReadableFormat {
    ReaderType type;
    std::unique_ptr<DataReader> (*make)();
    /// Whether the file's content is of this format; null when the content does not tell.
    bool (*isFileType)(const char* path);
};

[[nodiscard]] std::span<const ReadableFormat> readableFormats();

} // namespace kvsig
