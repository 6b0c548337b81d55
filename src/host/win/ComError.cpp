#include "host/win/ComError.h"

#include <windows.h>

#include <atomic>
#include <cwchar>
#include <string>

#include "host/win/ComPtr.h"
#include "platform/win/Text.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host::win {
namespace {

using platform::win::FromWide;
using platform::win::ToWide;

std::string SystemMessage(HRESULT hr) {
  wchar_t* text = nullptr;
  const DWORD n = ::FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(hr), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string message;
  if (n > 0 && text != nullptr) {
    message = FromWide(text, static_cast<int>(n));
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
      message.pop_back();
    }
  }
  if (text != nullptr) ::LocalFree(text);
  return message;
}

// The read-only error object handed to LogError.
class ErrorObject final : public IDispatch {
 public:
  explicit ErrorObject(const ErrorInfo& error) : error_(error) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch)) {
      *ppv = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) delete this;
    return n;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*lcid*/, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*riid*/, LPOLESTR* names, UINT count,
                                          LCID /*lcid*/, DISPID* ids) override {
    if (names == nullptr || ids == nullptr) return E_POINTER;
    HRESULT hr = S_OK;
    for (UINT i = 0; i < count; ++i) {
      ids[i] = DISPID_UNKNOWN;
      if (i == 0) {
        for (DISPID id = kNumber; id <= kSource; ++id) {
          if (names[0] != nullptr && _wcsicmp(names[0], kNames[id]) == 0) ids[0] = id;
        }
      }
      if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*riid*/, LCID /*lcid*/, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* /*excepInfo*/,
                                   UINT* /*argErr*/) override {
    if ((flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
    if (params != nullptr && params->cArgs != 0) return DISP_E_BADPARAMCOUNT;
    if (id == DISPID_VALUE) id = kNumber;
    if (id < kNumber || id > kSource) return DISP_E_MEMBERNOTFOUND;
    if (result == nullptr) return S_OK;
    VariantInit(result);
    if (id == kNumber) {
      V_VT(result) = VT_I4;
      V_I4(result) = error_.number;
      return S_OK;
    }
    const std::wstring text = ToWide(id == kDescription ? error_.description : error_.source);
    V_VT(result) = VT_BSTR;
    V_BSTR(result) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return V_BSTR(result) != nullptr ? S_OK : E_OUTOFMEMORY;
  }

 private:
  static constexpr DISPID kNumber = 1;
  static constexpr DISPID kDescription = 2;
  static constexpr DISPID kSource = 3;
  static constexpr const wchar_t* kNames[] = {L"", L"Number", L"Description", L"Source"};

  ~ErrorObject() = default;

  std::atomic<ULONG> refs_{1};
  ErrorInfo error_;
};

}  // namespace

void Check(HRESULT hr) {
  if (SUCCEEDED(hr)) return;
  std::string description;
  std::string source = kErrorSource;
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Put()) == S_OK && info) {
    BSTR text = nullptr;
    if (SUCCEEDED(info->GetDescription(&text)) && text != nullptr) {
      description = FromWide(text, static_cast<int>(SysStringLen(text)));
    }
    SysFreeString(text);
    text = nullptr;
    if (SUCCEEDED(info->GetSource(&text)) && text != nullptr && SysStringLen(text) > 0) {
      source = FromWide(text, static_cast<int>(SysStringLen(text)));
    }
    SysFreeString(text);
  }
  if (description.empty()) description = SystemMessage(hr);
  if (description.empty()) description = "Automation error";
  throw RunTimeError(static_cast<int32_t>(hr), description, source);
}

IDispatch* NewErrorObject(const ErrorInfo& error) {
  try {
    return new ErrorObject(error);
  } catch (...) {
    return nullptr;
  }
}

}  // namespace kestrivon::host::win
