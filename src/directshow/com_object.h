// Reference counting, aggregation and interface queries of every COM object in the module.
#pragma once
#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <initializer_list>

namespace tervan::directshow {

struct InterfaceEntry {
  const IID& iid;
  IUnknown* pointer;  // an interface pointer; its first slots are those of IUnknown
};
// The first entry with this IID, or null. No reference is added.
IUnknown* FindIn(REFIID iid, std::initializer_list<InterfaceEntry> entries) noexcept;
// Answers a query with what was found, or with E_NOINTERFACE and null; E_POINTER without a place for it.
HRESULT HandOut(IUnknown* found, void** out) noexcept;

// An object that can be aggregated. Its own IUnknown (Inner) counts references and answers queries; the IUnknown slots
// of all other interfaces go to the outer unknown, which is Inner itself when nobody aggregates the object.
//
// A new object has no reference yet: hold one on Inner() while querying, so that a failed query destroys it:
//   auto* object = new (std::nothrow) Thing(outer);
//   ComPtr<IUnknown> inner(object->Inner());
//   return inner->QueryInterface(iid, out);
class ComObject {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  // The unknown that a class factory hands to the one who aggregates. Not referenced.
  IUnknown* Inner() noexcept { return &inner_; }
  // The unknown that owns this object's identity and lifetime. Not referenced.
  IUnknown* Outer() const noexcept { return outer_; }

  // Number of objects alive; the module must stay loaded while it is above zero.
  static long LiveCount() noexcept { return live_count_.load(); }

 protected:
  explicit ComObject(IUnknown* outer) noexcept;
  virtual ~ComObject();

  // Names the interface, or null; the query adds the reference through the outer unknown. A derived class tests its
  // own table first and then asks its base.
  virtual IUnknown* FindInterface(REFIID iid) noexcept;

  // The last reference is gone and the destructors come next: what still needs the whole object.
  virtual void OnLastRelease() noexcept {}

 private:
  struct InnerUnknown final : IUnknown {
    explicit InnerUnknown(ComObject& owner) noexcept : owner_(owner) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    ComObject& owner_;
  };

  inline static std::atomic<long> live_count_{0};

  InnerUnknown inner_{*this};
  IUnknown* const outer_;  // not referenced: it owns this object
  std::atomic<ULONG> references_{0};
};

// Adds interfaces to a class and sends their IUnknown slots to the outer unknown.
//   class Shell : public Implements<InPlaceTransformFilter, ISpecifyPropertyPages, IPersistStream> { ... };
template <class Base, class... Interfaces>
class Implements : public Base, public Interfaces... {
 public:
  using Base::Base;
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override { return this->Outer()->QueryInterface(iid, out); }
  STDMETHODIMP_(ULONG) AddRef() override { return this->Outer()->AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return this->Outer()->Release(); }
};

}  // namespace tervan::directshow
