#include "host/win/ComHostObject.h"

#include <windows.h>

#include <string>
#include <utility>

#include "comkit/Bstr.h"
#include "comkit/Object.h"
#include "host/win/ComError.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host::win {

HostObjectRef WrapHostObject(IDispatch* dispatch) {
  if (dispatch == nullptr) return nullptr;
  return std::make_shared<ComHostObject>(dispatch);
}

void Invoke(IDispatch* object, const wchar_t* name, WORD flags, std::vector<VARIANT> arguments,
            VARIANT* result) {
  if (object == nullptr) Raise(vb_error::kObjectVariableNotSet);
  EXCEPINFO exception{};
  const HRESULT hr =
      comkit::CallByName(object, name, flags, std::move(arguments), result, &exception);
  if (hr == DISP_E_EXCEPTION) {
    if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
    const auto source = comkit::Bstr::Attach(exception.bstrSource);
    const auto description = comkit::Bstr::Attach(exception.bstrDescription);
    const auto helpFile = comkit::Bstr::Attach(exception.bstrHelpFile);
    const HRESULT code =
        exception.scode != 0 ? exception.scode : MAKE_HRESULT(1, 4, exception.wCode);
    throw RunTimeError(static_cast<int32_t>(code), description.Get() != nullptr
                                                       ? description.Utf8()
                                                       : std::string("Automation error"));
  }
  win::Check(hr);
}

}  // namespace kestrivon::host::win
