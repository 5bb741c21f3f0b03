#pragma once

#include "kvsig/util/Export.h"

#include <cstdint>
#include <memory>

namespace kvsig {

/// The one block of computed samples that a source keeps. A value: copies copy the block.
class KVSIG_API DataCache {
  public:
    DataCache() = default;
    DataCache(const DataCache& other);            ///< Copies have a block of their own.
    DataCache& operator=(const DataCache& other); ///< The same.
    ~DataCache() = default;

    std::int32_t nFirst = -1; ///< first sample held; -1 together with nLast when empty
    std::int32_t nLast = -1;  ///< last sample held, inclusive
    std::int32_t nAlloc = 0;  ///< floats allocated
    float* pData = nullptr;   ///< the samples, owned by this record
    double dScale = 1.0;      ///< the output scale with which they were computed

    /// Samples held.
    [[nodiscard]] std::int32_t length() const;
    [[nodiscard]] bool holds(long sample) const; ///< Whether the sample is among those held.
    /// Makes room for `count` floats; never shrinks. What is held is lost when the block grows.
    bool reserve(std::int32_t count);

  private:
    std::unique_ptr<float[]> m_block;
};

} // namespace kvsig
