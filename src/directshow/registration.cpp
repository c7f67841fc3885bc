#include "directshow/registration.h"

#include <memory>
#include <new>

namespace tervan::directshow {
namespace {

constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002);  // the mapper's "was not registered"

HRESULT SucceedWhenAbsent(HRESULT result) { return result == kFileNotFound ? S_OK : result; }

// The mapper's records name texts and GUIDs through pointers to non-const, though it only reads them.
LPWSTR Mutable(const wchar_t* text) { return const_cast<LPWSTR>(text); }

// The mapper's form of a filter's pins. It points into the setup data, which outlives it.
class PinRecords {
 public:
  HRESULT Build(std::span<const PinSetup> pins) noexcept {
    size_t type_count = 0;
    for (const PinSetup& pin : pins) type_count += pin.types.size();
    pins_.reset(new (std::nothrow) REGFILTERPINS[pins.size()]{});
    types_.reset(new (std::nothrow) REGPINTYPES[type_count]{});
    if (!pins_ || !types_) return E_OUTOFMEMORY;

    REGPINTYPES* type = types_.get();
    REGFILTERPINS* record = pins_.get();
    for (const PinSetup& pin : pins) {
      *record++ = {.strName = Mutable(pin.name),
                   .bRendered = pin.is_rendered,
                   .bOutput = pin.is_output,
                   .bZero = pin.may_be_absent,
                   .bMany = pin.may_be_many,
                   .clsConnectsToFilter = &GUID_NULL,
                   .strConnectsToPin = Mutable(pin.connects_to_pin),
                   .nMediaTypes = static_cast<UINT>(pin.types.size()),
                   .lpMediaType = type};
      for (const PinTypeSetup& wanted : pin.types) *type++ = {wanted.major_type, wanted.subtype};
    }
    return S_OK;
  }

  const REGFILTERPINS* Get() const noexcept { return pins_.get(); }

 private:
  std::unique_ptr<REGFILTERPINS[]> pins_;
  std::unique_ptr<REGPINTYPES[]> types_;
};

}  // namespace

FilterMapper::~FilterMapper() {
  mapper_.Reset();
  old_mapper_.Reset();
  CoFreeUnusedLibraries();
}

HRESULT FilterMapper::Open() noexcept {
  const HRESULT result =
      CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper2, mapper_.PutVoid());
  if (SUCCEEDED(result)) return result;
  return CoCreateInstance(CLSID_FilterMapper, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper, old_mapper_.PutVoid());
}

HRESULT FilterMapper::Register(const FilterSetup& setup) noexcept {
  HRESULT result = Unregister(setup);
  if (FAILED(result)) return result;
  if (!mapper_) return RegisterWithOldMapper(setup);

  PinRecords pins;
  result = pins.Build(setup.pins);
  if (FAILED(result)) return result;
  REGFILTER2 filter{};
  filter.dwVersion = 1;
  filter.dwMerit = setup.merit;
  filter.cPins = static_cast<ULONG>(setup.pins.size());
  filter.rgPins = pins.Get();
  return mapper_->RegisterFilter(*setup.clsid, setup.name, nullptr, nullptr, nullptr, &filter);
}

HRESULT FilterMapper::Unregister(const FilterSetup& setup) noexcept {
  if (mapper_) return SucceedWhenAbsent(mapper_->UnregisterFilter(nullptr, nullptr, *setup.clsid));
  if (old_mapper_) return SucceedWhenAbsent(old_mapper_->UnregisterFilter(*setup.clsid));
  return E_UNEXPECTED;
}

HRESULT FilterMapper::RegisterWithOldMapper(const FilterSetup& setup) noexcept {
  HRESULT result = old_mapper_->RegisterFilter(*setup.clsid, setup.name, setup.merit);
  for (const PinSetup& pin : setup.pins) {
    if (FAILED(result)) return result;
    result = old_mapper_->RegisterPin(*setup.clsid, pin.name, pin.is_rendered, pin.is_output, pin.may_be_absent,
                                      pin.may_be_many, GUID_NULL, pin.connects_to_pin);
    for (const PinTypeSetup& type : pin.types) {
      if (FAILED(result)) return result;
      result = old_mapper_->RegisterPinType(*setup.clsid, pin.name, *type.major_type, *type.subtype);
    }
  }
  return result;
}

}  // namespace tervan::directshow
