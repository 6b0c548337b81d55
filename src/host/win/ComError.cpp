#include "host/win/ComError.h"

#include <windows.h>

#include <string>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "platform/win/Text.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host::win {
namespace {

std::string SystemMessage(HRESULT hr) {
  wchar_t* text = nullptr;
  const DWORD n = ::FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(hr), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string message;
  if (n > 0 && text != nullptr) {
    message = platform::win::FromWide(text, static_cast<int>(n));
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) {
      message.pop_back();
    }
  }
  if (text != nullptr) ::LocalFree(text);
  return message;
}

// The read-only error object handed to LogError; Number is its value.
class ErrorObject final : public comkit::NamedObject {
 public:
  explicit ErrorObject(const ErrorInfo& error)
      : NamedObject({L"Number", L"Description", L"Source"}, kNumber), error_(error) {}

 protected:
  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result) override {
    if ((flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
    if (params.cArgs != 0) return DISP_E_BADPARAMCOUNT;
    if (result == nullptr) return S_OK;
    if (id == kNumber) {
      V_VT(result) = VT_I4;
      V_I4(result) = error_.number;
      return S_OK;
    }
    return comkit::Answered([&] {
      V_BSTR(result) = comkit::NewBstr(id == kDescription ? error_.description : error_.source);
      V_VT(result) = VT_BSTR;
      return S_OK;
    });
  }

 private:
  static constexpr DISPID kNumber = 1;
  static constexpr DISPID kDescription = 2;

  ErrorInfo error_;
};

}  // namespace

void Check(HRESULT hr) {
  if (SUCCEEDED(hr)) return;
  std::string description;
  std::string source = kErrorSource;
  comkit::ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Put()) == S_OK && info) {
    comkit::Bstr text;
    if (SUCCEEDED(info->GetDescription(text.Put()))) description = text.Utf8();
    if (SUCCEEDED(info->GetSource(text.Put())) && !text.Utf8().empty()) source = text.Utf8();
  }
  if (description.empty()) description = SystemMessage(hr);
  if (description.empty()) description = "Automation error";
  throw RunTimeError(static_cast<int32_t>(hr), description, source);
}

IDispatch* NewErrorObject(const ErrorInfo& error) {
  IDispatch* object = nullptr;
  return SUCCEEDED(comkit::CreateObject<ErrorObject>(IID_IDispatch,
                                                     reinterpret_cast<void**>(&object), error))
             ? object
             : nullptr;
}

}  // namespace kestrivon::host::win
