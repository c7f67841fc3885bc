#include "directshow/seeking_pass_through.h"

namespace tervan::directshow {
namespace {

HRESULT CreatePassThrough(IPin* owner, IPin* input_pin, ComPtr<IUnknown>* inner) noexcept {
  HRESULT result = CoCreateInstance(CLSID_SeekingPassThru, owner, CLSCTX_INPROC_SERVER, IID_IUnknown, inner->PutVoid());
  if (FAILED(result)) return result;
  const ComPtr<ISeekingPassThru> setup = Query<ISeekingPassThru>(inner->Get());
  return setup ? setup->Init(FALSE, input_pin) : E_NOINTERFACE;
}

}  // namespace

HRESULT SeekingPassThrough::Query(IPin* owner, IPin* input_pin, REFIID iid, void** out) noexcept {
  if (!out) return E_POINTER;
  *out = nullptr;
  ComPtr<IUnknown> inner;
  {
    const LockGuard guard(lock_);
    inner = inner_;
  }
  if (!inner) {
    ComPtr<IUnknown> created;  // made outside the lock; when two threads do so, the first one's stays
    if (FAILED(CreatePassThrough(owner, input_pin, &created))) return E_NOINTERFACE;
    const LockGuard guard(lock_);
    if (!inner_) inner_ = created;
    inner = inner_;
  }
  return inner->QueryInterface(iid, out);
}

}  // namespace tervan::directshow
