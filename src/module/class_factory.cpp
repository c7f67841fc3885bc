#include "module/class_factory.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "directshow/com_object.h"
#include "directshow/com_ptr.h"
#include "module/class_table.h"

namespace tervan {
namespace {

std::atomic<long> server_locks{0};

class ClassFactory final : public directshow::Implements<directshow::ComObject, IClassFactory> {
 public:
  explicit ClassFactory(const ClassTemplate& row) : Implements(nullptr), row_(row) {}

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer && iid != IID_IUnknown) return E_NOINTERFACE;
    return CreateFrom(row_, outer, iid, out);
  }

  STDMETHODIMP LockServer(BOOL lock) override {
    server_locks += lock ? 1 : -1;
    return S_OK;
  }

 protected:
  IUnknown* FindInterface(REFIID iid) noexcept override {
    IUnknown* const found = directshow::FindIn(iid, {{IID_IClassFactory, static_cast<IClassFactory*>(this)}});
    return found ? found : ComObject::FindInterface(iid);
  }

 private:
  const ClassTemplate& row_;
};

}  // namespace

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
  const auto table = ClassTable();
  const auto row =
      std::find_if(table.begin(), table.end(), [&](const auto& candidate) { return *candidate.clsid == clsid; });
  if (row == table.end()) return CLASS_E_CLASSNOTAVAILABLE;
  auto* const factory = new (std::nothrow) ClassFactory(*row);
  if (!factory) return E_OUTOFMEMORY;
  const directshow::ComPtr<IUnknown> inner(factory->Inner());
  return inner->QueryInterface(iid, out);
}

bool CanUnload() { return server_locks <= 0 && directshow::ComObject::LiveCount() == 0; }

}  // namespace tervan
