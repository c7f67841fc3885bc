// Result codes and GUIDs for code that also builds away from Windows. On Windows the platform's own definitions hold.
#pragma once

#ifdef _WIN32
#include <guiddef.h>
#include <winerror.h>
typedef long HRESULT;
#else
#include <cstdint>
#include <cstring>

using HRESULT = std::int32_t;

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};

inline bool operator==(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }
inline bool operator!=(const GUID& a, const GUID& b) { return !(a == b); }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }
#endif

static_assert(sizeof(GUID) == 16);

namespace tervan {

// DirectShow's code for "there is no connection"; its header does not exist away from Windows.
inline constexpr HRESULT kNotConnected = static_cast<HRESULT>(0x80040209u);

}  // namespace tervan
