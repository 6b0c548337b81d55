#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oaidl.h>

#include <atomic>
#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "comkit/Server.h"
#include "runtime/ErrorHandler.h"

// The IUnknown and IDispatch of the project's COM objects, and how their
// methods turn errors into HRESULTs.
namespace kestrivon::comkit {

// Whether an object keeps the DLL loaded (class factories do not).
enum class Counting { kModule, kNone };

// IUnknown for an object that implements Primary (answered for IUnknown,
// for IDispatch when Primary is dual, and for PrimaryAnswers) and Others.
template <class Primary, class... Others>
class Object : public Primary, public Others... {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = Find(riid);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) delete this;
    return n;
  }

 protected:
  explicit Object(Counting counting = Counting::kModule) : counted_(counting == Counting::kModule) {
    if (counted_) ObjectCreated();
  }
  virtual ~Object() {
    if (counted_) ObjectDestroyed();
  }
  // Further interfaces that Primary's vtable serves (a class's member-less
  // default interfaces).
  [[nodiscard]] virtual bool PrimaryAnswers(REFIID /*riid*/) const { return false; }

 private:
  void* Find(REFIID riid) {
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, __uuidof(Primary)) ||
        (std::is_base_of_v<IDispatch, Primary> && IsEqualIID(riid, IID_IDispatch)) ||
        PrimaryAnswers(riid)) {
      return static_cast<Primary*>(this);
    }
    void* found = nullptr;
    // The first of Others whose IID it is.
    static_cast<void>(
        ((IsEqualIID(riid, __uuidof(Others)) && (found = static_cast<Others*>(this))) || ...));
    return found;
  }

  std::atomic<ULONG> refs_{1};
  bool counted_;
};

// IDispatch of a dual interface through its type information in the DLL's
// type library resource number Resource (loaded once per DLL).
HRESULT DualTypeInfoAt(int resource, REFIID iid, UINT index, ITypeInfo** info);
HRESULT DualIDsOfNames(int resource, REFIID iid, REFIID riid, LPOLESTR* names, UINT count,
                       DISPID* ids);
HRESULT DualInvoke(int resource, REFIID iid, void* object, DISPID id, REFIID riid, WORD flags,
                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argError);

template <class Interface, int Resource, class... Others>
class DualObject : public Object<Interface, Others...> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID /*lcid*/, ITypeInfo** info) override {
    return DualTypeInfoAt(Resource, __uuidof(Interface), index, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID /*lcid*/,
                                          DISPID* ids) override {
    return DualIDsOfNames(Resource, __uuidof(Interface), riid, names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID /*lcid*/, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override {
    return DualInvoke(Resource, __uuidof(Interface), static_cast<Interface*>(this), id, riid, flags,
                      params, result, exception, argError);
  }
};

// IDispatch without type information: the members are a table of names
// (found regardless of case); member n of the table has DISPID n + 1.
class NamedObject : public Object<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* argError) override;

 protected:
  // defaultMember: the DISPID that DISPID_VALUE stands for (none when 0).
  explicit NamedObject(std::initializer_list<const wchar_t*> names, DISPID defaultMember = 0)
      : names_(names), defaultMember_(defaultMember) {}
  // Called with a DISPID of the table, an initialised result (or null) and
  // the arguments (none when the caller gave no DISPPARAMS).
  virtual HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) = 0;

  static bool Getting(WORD flags) {
    return (flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) != 0;
  }
  static bool Putting(WORD flags) {
    return (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  }

 private:
  std::vector<const wchar_t*> names_;
  DISPID defaultMember_;
};

// Makes a T and hands out its interface riid; E_OUTOFMEMORY (or the
// HRESULT of what else left T's constructor) when it cannot be made.
template <class T, class... Args>
HRESULT CreateObject(REFIID riid, void** object, Args&&... args) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  T* created = nullptr;
  if (const auto error = Attempt([&] { created = new T(std::forward<Args>(args)...); })) {
    return HResultOf(*error);
  }
  const HRESULT hr = created->QueryInterface(riid, object);
  created->Release();
  return hr;
}

// Hands the error to the caller as the thread's error information, from
// `source` when given, else from the error's own source.
void SetErrorInfo(REFIID iid, const ErrorInfo& error, std::wstring_view source = {}) noexcept;

// A COM method's body: S_OK when it runs through, else the HRESULT of the
// error that left it, described by the thread's error information.
template <class Body>
HRESULT Answer(REFIID iid, std::wstring_view source, Body&& body) noexcept {
  const auto error = Attempt(std::forward<Body>(body));
  if (!error) return S_OK;
  SetErrorInfo(iid, *error, source);
  return HResultOf(*error);
}

// The HRESULT that the body answers, or that of the error that left it.
template <class Body>
HRESULT Answered(Body&& body) noexcept {
  HRESULT hr = E_UNEXPECTED;
  const auto error = Attempt([&] { hr = std::forward<Body>(body)(); });
  return error ? HResultOf(*error) : hr;
}

// Calls a member by name; the arguments are given in call order. A put
// passes its value as the named DISPID_PROPERTYPUT argument.
HRESULT CallByName(IDispatch* object, const wchar_t* name, WORD flags,
                   std::vector<VARIANT> arguments, VARIANT* result, EXCEPINFO* exception = nullptr);

}  // namespace kestrivon::comkit
