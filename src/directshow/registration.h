// What a filter tells the filter mapper, as constant tables, and the calls that enter and remove it.
#pragma once
#include <windows.h>

#include <dshow.h>

#include <span>

#include "directshow/com_ptr.h"

namespace tervan::directshow {

struct PinTypeSetup {
  const GUID* major_type;
  const GUID* subtype;  // GUID_NULL: any
};

struct PinSetup {
  const wchar_t* name;
  bool is_rendered;
  bool is_output;
  bool may_be_absent;
  bool may_be_many;
  const wchar_t* connects_to_pin;  // pin of another filter; the filter itself is left open
  std::span<const PinTypeSetup> types;
};

struct FilterSetup {
  const CLSID* clsid;
  const wchar_t* name;
  DWORD merit;
  std::span<const PinSetup> pins;
};

// Balances CoInitialize. A thread that already chose another apartment keeps it.
class ComScope {
 public:
  ComScope() noexcept : result_(CoInitialize(nullptr)) {}
  ~ComScope() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;

 private:
  HRESULT result_;
};

// The platform's filter mapper, or the older one where only that exists. Initialises COM for its lifetime.
class FilterMapper {
 public:
  FilterMapper() noexcept = default;
  ~FilterMapper();

  HRESULT Open() noexcept;
  // Removes an earlier entry of this filter first, so that registering twice leaves one. E_UNEXPECTED before Open.
  HRESULT Register(const FilterSetup& setup) noexcept;
  // S_OK also when the filter was not registered.
  HRESULT Unregister(const FilterSetup& setup) noexcept;

 private:
  HRESULT RegisterWithOldMapper(const FilterSetup& setup) noexcept;

  ComScope com_;  // first: outlives the mappers
  ComPtr<IFilterMapper2> mapper_;
  ComPtr<IFilterMapper> old_mapper_;
};

}  // namespace tervan::directshow
