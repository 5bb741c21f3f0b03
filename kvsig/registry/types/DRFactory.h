#pragma once

#include "kvsig/util/Com.h"
#include "kvsig/util/Export.h"

#include <cstdint>

namespace kvsig {

class IDataReader;

/// Static flags of a factory record.
inline constexpr std::uint32_t factoryEnabled = 1; ///< allocatable under the current mode
inline constexpr std::uint32_t factoryListed = 2;  ///< in the type lists and the type look-ups

/// A recording format as the registry knows it. The texts are constants that outlive the record.
struct KVSIG_API DRFactory {
    std::int32_t owned = 0;           ///< nonzero: the registry deletes the record
    std::int32_t type = 0;            ///< the format's number
    const char* name = "";            ///< "Micromed (*.trc)"; its first word is the type name
    const char* pattern = "";         ///< of file names; several are separated by ';'
    const char* partnerTag = nullptr; ///< what GetPartnerTag() answers; null for none
    std::int32_t sortKey = 0;         ///< the registry's, from the order of its records
    std::uint32_t flags = factoryEnabled | factoryListed; ///< factoryEnabled and factoryListed
    GUID classId{};                                       ///< the host's own

    /// A new, unopened reader with reference count 0, or null: then the registry's own table of
    /// built-in formats is asked.
    virtual IDataReader* create(const char* fileName);
    virtual ~DRFactory() = default;

    /// Whether readers of it can be allocated under the current mode.
    [[nodiscard]] bool isEnabled() const { return (flags & factoryEnabled) != 0; }
    /// Whether type lists and look-ups show it.
    [[nodiscard]] bool isListed() const { return (flags & factoryListed) != 0; }
};

} // namespace kvsig
