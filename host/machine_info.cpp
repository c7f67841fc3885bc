#include "host/machine_info.h"

#include <windows.h>

#include <cpuid.h>

#include <array>
#include <cstring>
#include <vector>

#include "host/text.h"

namespace tervan::host {
namespace {

std::string VersionOf(const std::wstring& path) {
  const DWORD size = GetFileVersionInfoSizeW(path.c_str(), nullptr);
  std::vector<std::byte> info(size);
  VS_FIXEDFILEINFO* version = nullptr;
  UINT version_size = 0;
  if (size == 0 || !GetFileVersionInfoW(path.c_str(), 0, size, info.data()) ||
      !VerQueryValueW(info.data(), L"\\", reinterpret_cast<void**>(&version), &version_size)) {
    return {};
  }
  const DWORD high = version->dwFileVersionMS, low = version->dwFileVersionLS;
  return std::to_string(HIWORD(high)) + '.' + std::to_string(LOWORD(high)) + '.' + std::to_string(HIWORD(low)) + '.' +
         std::to_string(LOWORD(low));
}

}  // namespace

std::string ProcessorName() {
  constexpr unsigned kFirstLeaf = 0x80000002, kLastLeaf = 0x80000004;  // 16 characters each
  std::string name;
  for (unsigned leaf = kFirstLeaf; leaf <= kLastLeaf; ++leaf) {
    std::array<unsigned, 4> registers{};
    if (!__get_cpuid(leaf, &registers[0], &registers[1], &registers[2], &registers[3])) return "unknown";
    std::array<char, sizeof registers> characters;
    std::memcpy(characters.data(), registers.data(), sizeof registers);
    name.append(characters.data(), characters.size());
  }
  return std::string(Trimmed(name.c_str()));  // ends with the first 0
}

LoadedModule ModuleOf(IUnknown& object) {
  constexpr DWORD kMaxPathUnits = 32768;
  const void* const code = *reinterpret_cast<void***>(&object)[0];
  HMODULE module = nullptr;
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (!GetModuleHandleExW(kFlags, static_cast<LPCWSTR>(code), &module)) return {};
  std::wstring path(kMaxPathUnits, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), kMaxPathUnits));
  return {Narrow(path), VersionOf(path)};
}

}  // namespace tervan::host
