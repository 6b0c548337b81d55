#pragma once

#include <string>
#include <vector>

#include "host/HostObject.h"

namespace kestrivon::hostkit {

// The strict host: the host kit uses every right the host contract gives
// it and checks every duty of the component. On unless VEMRA_HOSTKIT_STRICT
// is 0, off or false (an administrator's interactive runs); read once.
inline constexpr const char* kStrictVariable = "VEMRA_HOSTKIT_STRICT";
[[nodiscard]] bool StrictMode();

// A duty the component broke, named by object and member; the run fails
// on any (vemra-revise exit status 4).
void RecordViolation(const std::string& what);
[[nodiscard]] std::vector<std::string> Violations();

// The kinds of object that members take.
// kHostObject: any object of the host's base interface (a document, a
// document type, a user).
enum class ObjectKind { kDocument, kHostObject, kPrinter, kWorkset };

// Strict mode: raises a type mismatch (13; DISP_E_TYPEMISMATCH on
// Windows, as the host's COM members answer it) and records the violation
// when `object` is not Nothing and not of `kind`.
void RequireKind(const host::HostObjectRef& object, ObjectKind kind, const char* member);

}  // namespace kestrivon::hostkit
