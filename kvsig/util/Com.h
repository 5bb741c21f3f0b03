#pragma once

#include "kvsig/util/Export.h"

/// The few COM types that the reader interface needs: the system's own on Windows, ours elsewhere.
#if defined(_WIN32)
#include <unknwn.h>
#else
#include <cstdint>

namespace kvsig {

/// @{
/// Results of QueryInterface(), and reference counts.
using HRESULT = std::int32_t;
using ULONG = std::uint32_t;
/// @}

/// A name that is unique in the world, in its usual four parts.
struct GUID {
    std::uint32_t Data1;   ///< first part
    std::uint16_t Data2;   ///< second part
    std::uint16_t Data3;   ///< third part
    std::uint8_t Data4[8]; ///< fourth and fifth part

    /// The same 16 bytes.
    friend bool operator==(const GUID&, const GUID&) = default;
};
static_assert(sizeof(GUID) == 16);

/// @{
/// The name of an interface.
using IID = GUID;
using REFIID = const IID&;
/// @}

/// @{
/// The answers of QueryInterface(): the interface is there, or it is not.
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
/// @}

/// {00000000-0000-0000-C000-000000000046}
inline constexpr IID IID_IUnknown{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

/// The root of COM interfaces. Objects are counted by AddRef() and Release(), never deleted.
class IUnknown {
  public:
    /// Gives the object by another of its interfaces, counted once more. E_NOINTERFACE, and `*ppv`
    /// stays as it is, when it has none such.
    virtual HRESULT QueryInterface(REFIID riid, void** ppv) = 0;
    /// @{
    /// Counts references up and down; the object destroys itself with the last one.
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
    /// @}

  protected:
    ~IUnknown() = default;
};

} // namespace kvsig
#endif
