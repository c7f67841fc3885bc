#include "directshow/enumerators.h"

#include <new>

#include "directshow/com_object.h"
#include "directshow/com_ptr.h"

namespace tervan::directshow {
namespace {

// What both enumerators do, over a Source: Item, and Get(index, Item*), which answers S_OK with an item
// that the caller owns, S_FALSE behind the last one, or a failure.
template <class Interface, class Source>
class Enumerator final : public Implements<ComObject, Interface> {
  using Item = typename Source::Item;

 public:
  explicit Enumerator(const Source& source) noexcept : Implements<ComObject, Interface>(nullptr), source_(source) {}

  STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
    if (fetched) *fetched = 0;
    if (!items) return E_POINTER;
    if (!fetched && count > 1) return E_INVALIDARG;
    const LockGuard guard(lock_);
    ULONG done = 0;
    while (done < count) {
      const HRESULT result = source_.Get(position_, &items[done]);
      if (FAILED(result) && done == 0) return result;
      if (result != S_OK) break;
      ++done;
      ++position_;
    }
    if (fetched) *fetched = done;
    return done == count ? S_OK : S_FALSE;
  }

  STDMETHODIMP Skip(ULONG count) override {
    const LockGuard guard(lock_);
    const int start = position_;
    for (ULONG skipped = 0; skipped < count; ++skipped) {
      Item item;
      const HRESULT result = source_.Get(position_, &item);
      if (result != S_OK) {
        position_ = start;
        return FAILED(result) ? result : S_FALSE;
      }
      Source::Free(item);
      ++position_;
    }
    return S_OK;
  }

  STDMETHODIMP Reset() override {
    const LockGuard guard(lock_);
    position_ = 0;
    return S_OK;
  }

  STDMETHODIMP Clone(Interface** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    const LockGuard guard(lock_);
    auto* const clone = new (std::nothrow) Enumerator(source_);
    if (!clone) return E_OUTOFMEMORY;
    clone->position_ = position_;
    clone->AddRef();
    *out = clone;
    return S_OK;
  }

 protected:
  IUnknown* FindInterface(REFIID iid) noexcept override {
    return FindIn(iid, {{__uuidof(Interface), static_cast<Interface*>(this)}});
  }

 private:
  CriticalSection lock_;  // guards all below
  Source source_;
  int position_ = 0;
};

class PinSource {
 public:
  using Item = IPin*;
  explicit PinSource(BaseFilter& filter) noexcept : filter_(&filter) {}
  HRESULT Get(int index, IPin** item) {
    if (index >= filter_->PinCount()) return S_FALSE;
    *item = filter_->PinAt(index);
    (*item)->AddRef();
    return S_OK;
  }
  static void Free(IPin* item) { item->Release(); }

 private:
  ComPtr<BaseFilter> filter_;
};

class MediaTypeSource {
 public:
  using Item = AM_MEDIA_TYPE*;
  explicit MediaTypeSource(BasePin& pin) noexcept : pin_(&pin) {}
  HRESULT Get(int index, AM_MEDIA_TYPE** item) {
    MediaType type;
    const HRESULT result = pin_->GetMediaType(index, &type);
    if (result != S_OK) return FAILED(result) ? result : S_FALSE;
    *item = CreateMediaType(type);
    return *item ? S_OK : E_OUTOFMEMORY;
  }
  static void Free(AM_MEDIA_TYPE* item) { DeleteMediaType(item); }

 private:
  ComPtr<BasePin> pin_;
};

template <class Interface, class Source>
HRESULT Create(Source source, Interface** out) noexcept {
  if (!out) return E_POINTER;
  auto* const enumerator = new (std::nothrow) Enumerator<Interface, Source>(source);
  *out = enumerator;
  if (!enumerator) return E_OUTOFMEMORY;
  enumerator->AddRef();
  return S_OK;
}

}  // namespace

HRESULT CreatePinEnumerator(BaseFilter& filter, IEnumPins** out) noexcept {
  return Create<IEnumPins>(PinSource(filter), out);
}

HRESULT CreateMediaTypeEnumerator(BasePin& pin, IEnumMediaTypes** out) noexcept {
  return Create<IEnumMediaTypes>(MediaTypeSource(pin), out);
}

}  // namespace tervan::directshow
