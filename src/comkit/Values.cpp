#include <new>

#include "comkit/Bstr.h"
#include "comkit/Variant.h"
#include "platform/win/Text.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::comkit {

std::string Utf8(BSTR text) {
  return text == nullptr ? std::string()
                         : platform::win::FromWide(text, static_cast<int>(::SysStringLen(text)));
}

std::wstring Wide(BSTR text) {
  return text == nullptr ? std::wstring() : std::wstring(text, ::SysStringLen(text));
}

BSTR NewBstr(std::wstring_view text) {
  BSTR b = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (b == nullptr) throw std::bad_alloc();
  return b;
}

BSTR NewBstr(const std::string& utf8) { return NewBstr(platform::win::ToWide(utf8)); }

Variant Variant::Text(const std::string& utf8) {
  Variant v;
  V_BSTR(&v.v_) = NewBstr(utf8);
  V_VT(&v.v_) = VT_BSTR;
  return v;
}

Variant Variant::Text(const wchar_t* text) {
  Variant v;
  V_BSTR(&v.v_) = NewBstr(std::wstring_view(text));
  V_VT(&v.v_) = VT_BSTR;
  return v;
}

Variant Variant::Long(LONG value) noexcept {
  Variant v;
  V_VT(&v.v_) = VT_I4;
  V_I4(&v.v_) = value;
  return v;
}

Variant Variant::Bool(bool value) noexcept {
  Variant v;
  V_VT(&v.v_) = VT_BOOL;
  V_BOOL(&v.v_) = value ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}

Variant Variant::Object(IDispatch* object) noexcept {
  Variant v;
  if (object != nullptr) object->AddRef();
  V_VT(&v.v_) = VT_DISPATCH;
  V_DISPATCH(&v.v_) = object;
  return v;
}

Variant Variant::Missing() noexcept {
  Variant v;
  V_VT(&v.v_) = VT_ERROR;
  V_ERROR(&v.v_) = DISP_E_PARAMNOTFOUND;
  return v;
}

std::vector<std::string> TextsOf(SAFEARRAY* array) {
  if (array == nullptr || ::SafeArrayGetDim(array) != 1) {
    throw RunTimeError(vb_error::kTypeMismatch, "no list of texts");
  }
  LONG low = 0;
  LONG high = -1;
  ::SafeArrayGetLBound(array, 1, &low);
  ::SafeArrayGetUBound(array, 1, &high);
  VARTYPE type = VT_EMPTY;
  ::SafeArrayGetVartype(array, &type);
  std::vector<std::string> texts;
  for (LONG i = low; i <= high; ++i) {
    if (type == VT_BSTR) {
      Bstr text;
      ::SafeArrayGetElement(array, &i, text.Put());
      texts.push_back(text.Utf8());
      continue;
    }
    Variant element;
    Variant converted;
    if (FAILED(::SafeArrayGetElement(array, &i, element.Put())) ||
        FAILED(element.ChangeType(VT_BSTR, converted))) {
      throw RunTimeError(vb_error::kTypeMismatch, "an element is no text");
    }
    texts.push_back(Utf8(V_BSTR(&converted.Get())));
  }
  return texts;
}

}  // namespace kestrivon::comkit
