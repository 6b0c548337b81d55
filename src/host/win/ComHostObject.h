#pragma once

#include <oaidl.h>

#include <string>
#include <vector>

#include "comkit/ComPtr.h"
#include "comkit/Variant.h"
#include "host/Documents.h"
#include "host/HostObject.h"

namespace kestrivon::host::win {

using comkit::ComPtr;

// A host object that the host handed in as an IDispatch: holds a reference
// for as long as the component keeps the object.
class ComHostObject : public HostObject {
 public:
  explicit ComHostObject(IDispatch* dispatch) : dispatch_(ComPtr<IDispatch>::Share(dispatch)) {}
  [[nodiscard]] IDispatch* Dispatch() const noexcept { return dispatch_.Get(); }

 private:
  ComPtr<IDispatch> dispatch_;
};

// nullptr for a missing object (NULL), as the host passes Nothing.
HostObjectRef WrapHostObject(IDispatch* dispatch);

// The object a member answered: null for Nothing (Empty, Null, a null
// object); raises 13 for a value that is no object.
ComPtr<IDispatch> ObjectOf(VARIANT& value);

// A Variant holding an array of strings, as the run time passes a String
// array.
comkit::Variant StringArray(const std::vector<std::string>& items);

// Workset.Settings of a late-bound workset; null for Nothing.
std::shared_ptr<SettingsCollection> WrapSettings(IDispatch* settings);
// Workset.Application of a late-bound workset; null for Nothing.
std::shared_ptr<HostApplication> WrapApplication(IDispatch* application);

// Calls a member by name, the arguments in call order; raises the callee's
// error (91 for a missing object).
void Invoke(IDispatch* object, const wchar_t* name, WORD flags, std::vector<VARIANT> arguments,
            VARIANT* result);

// A value the host handed out to be handed back unchanged (a document's
// print settings): whatever VARIANT it was.
class ComHostValue : public HostObject {
 public:
  explicit ComHostValue(comkit::Variant value) : value_(std::move(value)) {}
  [[nodiscard]] const VARIANT& Value() const noexcept { return value_.Get(); }

 private:
  comkit::Variant value_;
};

}  // namespace kestrivon::host::win
