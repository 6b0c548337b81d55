#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <gtest/gtest.h>
#include <oleauto.h>

#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Object.h"
#include "comkit/SelfRegistration.h"
#include "comkit/Variant.h"

// The COM tests under Wine use the component's own COM toolkit; GUIDs are
// written down as text.
namespace kestrivon::wine_test {

using comkit::Bstr;
using comkit::CallByName;
using comkit::ComPtr;
using comkit::GuidText;
using comkit::Variant;

inline GUID Guid(const wchar_t* text) {
  GUID guid{};
  EXPECT_EQ(::IIDFromString(text, &guid), S_OK) << "bad GUID text";
  return guid;
}

}  // namespace kestrivon::wine_test
