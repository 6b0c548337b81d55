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

ComPtr<IDispatch> ObjectOf(VARIANT& value) {
  if (V_VT(&value) == VT_DISPATCH) return ComPtr<IDispatch>::Share(V_DISPATCH(&value));
  if (V_VT(&value) == VT_UNKNOWN && V_UNKNOWN(&value) != nullptr) {
    ComPtr<IDispatch> dispatch;
    Check(V_UNKNOWN(&value)->QueryInterface(IID_IDispatch, dispatch.PutVoid()));
    return dispatch;
  }
  if (V_VT(&value) == VT_EMPTY || V_VT(&value) == VT_NULL || V_VT(&value) == VT_UNKNOWN) return {};
  Raise(vb_error::kTypeMismatch);
}

comkit::Variant StringArray(const std::vector<std::string>& items) {
  comkit::Variant list;
  SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(items.size()));
  if (array == nullptr) Raise(vb_error::kOutOfMemory);
  V_VT(list.Put()) = VT_ARRAY | VT_BSTR;
  V_ARRAY(&list.Get()) = array;
  for (LONG i = 0; i < static_cast<LONG>(items.size()); ++i) {
    comkit::Bstr item(items[static_cast<size_t>(i)]);
    Check(SafeArrayPutElement(array, &i, item.Get()));
  }
  return list;
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
