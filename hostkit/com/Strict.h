#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/com/WindowsHeaders.h"
#include "hostkit/core/Strict.h"

namespace kestrivon::hostkit::com {

// See HostObjects.h: a member's planned fault, if any.
std::optional<HRESULT> Injected(std::string_view call);
std::optional<HRESULT> Injected(std::string_view call, IDispatch** object);
std::optional<HRESULT> Injected(std::string_view call, VARIANT* object);

// Every COM object of the host kit, known by name to the strict checks:
// its class, what it stands for (a document's or printer's name) and the
// host call that was being served when it was made.
class Tracked {
 public:
  Tracked(const Tracked&) = delete;
  Tracked& operator=(const Tracked&) = delete;
  [[nodiscard]] std::string Describe() const;
  // Frees a zombie (below) for good.
  virtual void Bury() noexcept = 0;

 protected:
  Tracked();
  virtual ~Tracked();
  [[nodiscard]] virtual std::string Label() const { return {}; }
  // A last release in strict mode: kept (a zombie) until the host kit is
  // asked whether it may unload, so that what comes after is caught.
  void Zombify() noexcept;
  // An AddRef, Release or call on a zombie.
  void Misused(std::string_view what) const;
  void ReservedCalled(int slot) const;
  void UnlistedCalled(std::string_view member) const;

 private:
  std::string madeIn_;
};

// The host call being served on this thread (what objects made now are
// made in): a name of static storage.
void NoteCall(std::string_view call);

// Strict mode: a string handed to the component, entered with the call
// that hands it out; the component must free it exactly once (SysFreeString
// or VariantClear). Answers the string.
BSTR HandedOut(BSTR text);
// A handed-out string that came back by reference and was freed by the
// host kit itself.
void TakenBack(BSTR text) noexcept;
// Strict mode: routes the SysFreeString and VariantClear imports of every
// module loaded from outside the system's folders (the component, the
// programs that host it) through the ledger of handed-out strings. Each
// module is looked at on every class object asked for, so a component
// loaded again is watched again.
void WatchClients() noexcept;

// Strict mode: frees the zombies (which may release others) until none is
// left; then the objects still alive are the leaks.
void BuryZombies() noexcept;
// The strict host's findings: the violations recorded, then each object
// of the host kit still alive (after burying) and each handed-out string
// not freed, by name.
std::vector<std::string> StrictFindings();

// The host kit's objects count their references themselves: a release
// past the last one, and any use after it, is recorded as an over-release
// instead of freeing memory still in use.
template <class Base>
class Watched : public Base, public Tracked {
 public:
  using Base::Base;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (zombie_) {
      Misused("QueryInterface");
      if (object != nullptr) *object = nullptr;
      return E_UNEXPECTED;
    }
    return Base::QueryInterface(riid, object);
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    if (zombie_) return Misused("AddRef"), 0;
    return ++refs_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    if (zombie_) return Misused("Release"), 0;
    const ULONG n = --refs_;
    if (n != 0) return n;
    if (StrictMode()) {
      zombie_ = true;
      Zombify();
    } else {
      Base::Release();
    }
    return 0;
  }
  // IDispatch: the host kit's objects are all late-bound or dual.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (zombie_) return Misused("GetTypeInfoCount"), E_UNEXPECTED;
    return Base::GetTypeInfoCount(count);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override {
    if (zombie_) return Misused("GetTypeInfo"), E_UNEXPECTED;
    return Base::GetTypeInfo(index, lcid, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override {
    if (zombie_) return Misused("GetIDsOfNames"), E_UNEXPECTED;
    return Base::GetIDsOfNames(riid, names, count, lcid, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override {
    if (zombie_) return Misused("Invoke"), E_UNEXPECTED;
    return Base::Invoke(id, riid, lcid, flags, params, result, exception, argError);
  }
  void Bury() noexcept override {
    zombie_ = false;
    Base::Release();
  }

 protected:
  // The members' first step: a use after the last release is refused and
  // recorded, then the fault plan is asked.
  template <class... Out>
  std::optional<HRESULT> Injected(std::string_view call, Out... out) {
    if (zombie_) {
      Misused(call);
      return E_UNEXPECTED;
    }
    return com::Injected(call, out...);
  }
  // A ReservedN slot: the component never uses it.
  HRESULT Reserved(int slot) const {
    if (zombie_) Misused("Reserved" + std::to_string(slot));
    ReservedCalled(slot);
    return E_NOTIMPL;
  }
  // A member of the host kit's own that the contract does not give the
  // component; it still answers, for an administrator's scripts.
  void Unlisted(std::string_view member) const { UnlistedCalled(member); }

 private:
  std::atomic<ULONG> refs_{1};
  bool zombie_ = false;  // objects of one apartment
};

}  // namespace kestrivon::hostkit::com
