#pragma once

#include <unknwn.h>

#include <utility>

namespace kestrivon::comkit {

// Set by DllMain when the DLL is being unloaded. The objects of other
// modules may be gone by then (COM frees its in-process servers in no fixed
// order), so references still held are dropped without calling Release.
void MarkUnloading() noexcept;
[[nodiscard]] bool Unloading() noexcept;

// Owns one reference to a COM interface.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  // Takes over a reference that the caller already holds.
  explicit ComPtr(T* p) noexcept : p_(p) {}
  ~ComPtr() { Reset(); }
  ComPtr(const ComPtr& other) noexcept : p_(other.p_) {
    if (p_ != nullptr) p_->AddRef();
  }
  ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }

  // Adds a reference of its own.
  static ComPtr Share(T* p) noexcept {
    if (p != nullptr) p->AddRef();
    return ComPtr(p);
  }

  void Reset() noexcept {
    T* p = std::exchange(p_, nullptr);
    if (p != nullptr && !Unloading()) p->Release();
  }
  // For out-parameters: drops the current reference first.
  T** Put() noexcept {
    Reset();
    return &p_;
  }
  // For in/out parameters: the callee may replace the reference, releasing
  // the one it replaces; what it leaves is still owned here.
  T** InOut() noexcept { return &p_; }
  void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }
  // The object's interface U, or the failure of QueryInterface.
  template <class U>
  HRESULT As(ComPtr<U>& other, REFIID iid = __uuidof(U)) const noexcept {
    return p_ == nullptr ? E_POINTER : p_->QueryInterface(iid, other.PutVoid());
  }
  [[nodiscard]] T* Get() const noexcept { return p_; }
  // Hands the reference to the caller.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(p_, nullptr); }
  T* operator->() const noexcept { return p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

}  // namespace kestrivon::comkit
