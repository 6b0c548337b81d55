#include "comkit/Object.h"

#include <cwchar>

#include "comkit/ComPtr.h"
#include "platform/win/Text.h"

namespace kestrivon::comkit {

HRESULT DualTypeInfoAt(int resource, REFIID iid, UINT index, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  DualTypeInfo dual;
  const HRESULT hr = OwnDualTypeInfo(resource, iid, dual);
  if (FAILED(hr)) return hr;
  dual.dispatch->AddRef();
  *info = dual.dispatch;
  return S_OK;
}

HRESULT DualIDsOfNames(int resource, REFIID iid, REFIID riid, LPOLESTR* names, UINT count,
                       DISPID* ids) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  DualTypeInfo dual;
  const HRESULT hr = OwnDualTypeInfo(resource, iid, dual);
  return FAILED(hr) ? hr : ::DispGetIDsOfNames(dual.vtable, names, count, ids);
}

HRESULT DualInvoke(int resource, REFIID iid, void* object, DISPID id, REFIID riid, WORD flags,
                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argError) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  DualTypeInfo dual;
  const HRESULT hr = OwnDualTypeInfo(resource, iid, dual);
  if (FAILED(hr)) return hr;
  return ::DispInvoke(object, dual.vtable, id, flags, params, result, exception, argError);
}

HRESULT NamedObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT NamedObject::GetTypeInfo(UINT /*index*/, LCID /*lcid*/, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT NamedObject::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID /*lcid*/,
                                   DISPID* ids) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr) return E_POINTER;
  HRESULT hr = S_OK;
  // The first name is the member, the others would be its parameters,
  // which have no names here.
  for (UINT i = 0; i < count; ++i) {
    ids[i] = DISPID_UNKNOWN;
    for (size_t n = 0; i == 0 && names[0] != nullptr && n < names_.size(); ++n) {
      if (_wcsicmp(names[0], names_[n]) == 0) ids[0] = static_cast<DISPID>(n + 1);
    }
    if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
  }
  return hr;
}

HRESULT NamedObject::Invoke(DISPID id, REFIID riid, LCID /*lcid*/, WORD flags, DISPPARAMS* params,
                            VARIANT* result, EXCEPINFO* /*exception*/, UINT* /*argError*/) {
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (id == DISPID_VALUE) id = defaultMember_;
  if (id < 1 || static_cast<size_t>(id) > names_.size()) return DISP_E_MEMBERNOTFOUND;
  if (result != nullptr) ::VariantInit(result);
  static const DISPPARAMS kNone{nullptr, nullptr, 0, 0};
  return Call(id, flags, params != nullptr ? *params : kNone, result);
}

void SetErrorInfo(REFIID iid, const ErrorInfo& error, std::wstring_view source) noexcept {
  IgnoreErrors([&] {
    ComPtr<ICreateErrorInfo> create;
    if (FAILED(::CreateErrorInfo(create.Put()))) return;
    const std::wstring description = platform::win::ToWide(error.description);
    const std::wstring from =
        source.empty() ? platform::win::ToWide(error.source) : std::wstring(source);
    create->SetGUID(iid);
    create->SetSource(const_cast<LPOLESTR>(from.c_str()));
    create->SetDescription(const_cast<LPOLESTR>(description.c_str()));
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(create.As(info))) ::SetErrorInfo(0, info.Get());
  });
}

HRESULT CallByName(IDispatch* object, const wchar_t* name, WORD flags,
                   std::vector<VARIANT> arguments, VARIANT* result, EXCEPINFO* exception) {
  if (object == nullptr) return E_POINTER;
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  const HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) return hr;
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
    params.rgdispidNamedArgs = &put;
    params.cNamedArgs = 1;
  }
  UINT argumentError = 0;
  return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, exception,
                        &argumentError);
}

}  // namespace kestrivon::comkit
