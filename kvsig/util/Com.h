#pragma once

#include "kvsig/util/Export.h"

/// The few COM types that the reader interface needs: the system's own on Windows, ours elsewhere.
#if defined(_WIN32)
#include <unknwn.h>
#else
#include <cstdint>

namespace kvsig {

using HRESULT = std::int32_t;
using ULONG = std::uint32_t;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend bool operator==(const GUID&, const GUID&) = default;
};
static_assert(sizeof(GUID) == 16);

using IID = GUID;
using REFIID = const IID&;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);

/// {00000000-0000-0000-C000-000000000046}
inline constexpr IID IID_IUnknown{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

/// The root of COM interfaces. Objects are counted by AddRef() and Release(), never deleted.
class IUnknown {
  public:
    virtual HRESULT QueryInterface(REFIID riid, void** ppv) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

  protected:
    ~IUnknown() = default;
};

} // namespace kvsig
#endif
