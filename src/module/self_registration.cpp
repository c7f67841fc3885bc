#include "module/self_registration.h"

#include <dshow.h>

#include <algorithm>

#include "directshow/com_ptr.h"
#include "directshow/registration.h"
#include "module/class_table.h"
#include "module/registry_key.h"

namespace tervan {
namespace {

constexpr int kGuidTextLength = 39;  // {8-4-4-4-12} and a terminator

struct ClassKeyPath {
  static constexpr int kPrefixLength = 6;
  wchar_t text[kPrefixLength + kGuidTextLength] = L"CLSID\\";
};

ClassKeyPath PathOf(const CLSID& clsid) {
  ClassKeyPath path;
  StringFromGUID2(clsid, path.text + ClassKeyPath::kPrefixLength, kGuidTextLength);
  return path;
}

HRESULT WriteServerEntry(const ClassTemplate& row, const wchar_t* module_path) {
  RegistryKey class_key;
  HRESULT result = class_key.Create(HKEY_CLASSES_ROOT, PathOf(*row.clsid).text);
  if (SUCCEEDED(result)) result = class_key.SetText(nullptr, row.name);
  RegistryKey server_key;
  if (SUCCEEDED(result)) result = server_key.Create(class_key.Get(), L"InprocServer32");
  if (SUCCEEDED(result)) result = server_key.SetText(nullptr, module_path);
  if (SUCCEEDED(result)) result = server_key.SetText(L"ThreadingModel", L"Both");
  return result;
}

HRESULT DeleteServerEntry(const ClassTemplate& row) {
  return DeleteKeyTree(HKEY_CLASSES_ROOT, PathOf(*row.clsid).text);
}

// Has an object of the class register or unregister itself. Classes that do not offer to are none the worse.
HRESULT SetUpThroughObject(const ClassTemplate& row, bool enter) {
  directshow::ComPtr<IAMovieSetup> setup;
  const HRESULT created = CreateFrom(row, nullptr, __uuidof(IAMovieSetup), setup.PutVoid());
  if (created == E_NOINTERFACE || created == VFW_E_NEED_OWNER) return S_OK;
  if (FAILED(created)) return created;
  const HRESULT removed = setup->Unregister();
  return FAILED(removed) || !enter ? removed : setup->Register();
}

using MapperCall = HRESULT (directshow::FilterMapper::*)(const directshow::FilterSetup&) noexcept;

HRESULT ForEachFilter(MapperCall call) {
  directshow::FilterMapper mapper;
  HRESULT result = mapper.Open();
  for (const ClassTemplate& row : ClassTable()) {
    if (SUCCEEDED(result) && row.setup) result = (mapper.*call)(*row.setup);
  }
  return result;
}

HRESULT ModulePath(HINSTANCE module, wchar_t (&path)[MAX_PATH]) {
  SetLastError(ERROR_SUCCESS);
  const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
  if (length > 0 && length < MAX_PATH) return S_OK;
  const DWORD error = GetLastError();
  return HRESULT_FROM_WIN32(error != ERROR_SUCCESS ? error : ERROR_INSUFFICIENT_BUFFER);
}

HRESULT WriteServerEntries(const wchar_t* module_path) {
  HRESULT result = S_OK;
  for (const ClassTemplate& row : ClassTable()) {
    if (SUCCEEDED(result)) result = WriteServerEntry(row, module_path);
  }
  return result;
}

}  // namespace

// Every class is entered both by the module's table and by its own object: an object may know of set-up that a table
// does not, and one without IAMovieSetup is entered all the same. Entering twice leaves one entry.
HRESULT RegisterModule(HINSTANCE module) {
  const directshow::ComScope com;
  wchar_t path[MAX_PATH];
  HRESULT result = ModulePath(module, path);
  if (SUCCEEDED(result)) result = WriteServerEntries(path);
  if (SUCCEEDED(result)) result = ForEachFilter(&directshow::FilterMapper::Register);
  for (const ClassTemplate& row : ClassTable()) {
    if (SUCCEEDED(result)) result = WriteServerEntry(row, path);
    if (SUCCEEDED(result)) result = SetUpThroughObject(row, true);
  }
  return result;
}

HRESULT UnregisterModule() {
  const directshow::ComScope com;
  const auto table = ClassTable();
  HRESULT result = S_OK;
  for (auto row = table.rbegin(); row != table.rend(); ++row) {
    if (SUCCEEDED(result)) result = SetUpThroughObject(*row, false);
    if (SUCCEEDED(result)) result = DeleteServerEntry(*row);
  }
  if (SUCCEEDED(result)) result = ForEachFilter(&directshow::FilterMapper::Unregister);
  for (const ClassTemplate& row : table) {
    if (SUCCEEDED(result)) result = DeleteServerEntry(row);
  }
  return result;
}

}  // namespace tervan
