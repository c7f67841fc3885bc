// Owners of COM references and task memory.
#pragma once
#include <windows.h>

#include <objbase.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace tervan::directshow {

// Owns one reference.
template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}
  explicit ComPtr(T* pointer) noexcept : pointer_(pointer) {
    if (pointer_) pointer_->AddRef();
  }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.pointer_) {}
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPtr() {
    if (pointer_) pointer_->Release();
  }

  // Takes over a reference that the caller already owns.
  static ComPtr Adopt(T* pointer) noexcept {
    ComPtr owner;
    owner.pointer_ = pointer;
    return owner;
  }

  T* Get() const noexcept { return pointer_; }
  T* operator->() const noexcept { return pointer_; }
  T& operator*() const noexcept { return *pointer_; }
  explicit operator bool() const noexcept { return pointer_ != nullptr; }

  void Reset() noexcept { *this = ComPtr(); }
  // Gives the reference to the caller.
  T* Detach() noexcept { return std::exchange(pointer_, nullptr); }
  // For a call that writes a reference: drops the present one first.
  T** Put() noexcept {
    Reset();
    return &pointer_;
  }
  void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

  // Writes a further reference for a caller, as an out parameter wants it.
  void CopyTo(T** out) const noexcept {
    *out = pointer_;
    if (pointer_) pointer_->AddRef();
  }

 private:
  T* pointer_ = nullptr;
};

// The object's interface U, or an empty pointer when it has none.
template <class U>
ComPtr<U> Query(IUnknown* object) noexcept {
  ComPtr<U> result;
  if (!object || FAILED(object->QueryInterface(__uuidof(U), result.PutVoid()))) return {};
  return result;
}

struct CoTaskMemDeleter {
  void operator()(void* memory) const noexcept { CoTaskMemFree(memory); }
};
template <class T>
using CoTaskMemPtr = std::unique_ptr<T, CoTaskMemDeleter>;

// A copy of the text in task memory. S_OK, E_POINTER or E_OUTOFMEMORY (*out is null then).
inline HRESULT CopyToTaskMemory(const wchar_t* text, LPWSTR* out) noexcept {
  if (!text || !out) return E_POINTER;
  const size_t bytes = (lstrlenW(text) + size_t{1}) * sizeof(wchar_t);
  *out = static_cast<LPWSTR>(CoTaskMemAlloc(bytes));
  if (!*out) return E_OUTOFMEMORY;
  CopyMemory(*out, text, bytes);
  return S_OK;
}

}  // namespace tervan::directshow
