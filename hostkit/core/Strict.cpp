#include "core/Strict.h"

#include <mutex>

#include "core/Environment.h"
#include "host/portable/Documents.h"
#include "host/portable/Printing.h"
#include "host/portable/Workset.h"
#include "runtime/RunTimeError.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit {
namespace {

struct Record {
  std::mutex mutex;
  std::vector<std::string> violations;
};

Record& Recorded() {
  static auto* record = new Record;  // outlives the objects that still report
  return *record;
}

const char* KindName(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::kDocument:
      return "a document";
    case ObjectKind::kHostObject:
      return "a host object";
    case ObjectKind::kPrinter:
      return "a printer";
    case ObjectKind::kWorkset:
      return "a workset";
  }
  return "?";
}

bool IsKind(const host::HostObjectRef& object, ObjectKind kind) {
  switch (kind) {
    case ObjectKind::kDocument: {
      // Type objects and users share the class: a document says so.
      const auto document = std::dynamic_pointer_cast<host::portable::DocumentObject>(object);
      return document && document->systemType == 29;
    }
    case ObjectKind::kHostObject:
      return std::dynamic_pointer_cast<host::portable::DocumentObject>(object) != nullptr;
    case ObjectKind::kPrinter:
      return std::dynamic_pointer_cast<host::portable::PrinterObject>(object) != nullptr;
    case ObjectKind::kWorkset:
      return std::dynamic_pointer_cast<host::portable::WorksetObject>(object) != nullptr;
  }
  return false;
}

std::string Describe(const host::HostObjectRef& object) {
  if (const auto document = std::dynamic_pointer_cast<host::portable::DocumentObject>(object)) {
    return "the host object '" + document->name + "' of system type " +
           std::to_string(document->systemType);
  }
  if (const auto printer = std::dynamic_pointer_cast<host::portable::PrinterObject>(object)) {
    return "the printer '" + printer->name + "'";
  }
  if (std::dynamic_pointer_cast<host::portable::WorksetObject>(object)) return "a workset";
  return "an object that is no host kit object of that kind";
}

}  // namespace

bool StrictMode() {
  static const bool strict = [] {
    const auto value = GetEnvironment(kStrictVariable);
    if (!value) return true;
    const std::string lower = LowerAscii(*value);
    return lower != "0" && lower != "off" && lower != "false";
  }();
  return strict;
}

void RecordViolation(const std::string& what) {
  Record& record = Recorded();
  std::lock_guard lock(record.mutex);
  record.violations.push_back(what);
}

std::vector<std::string> Violations() {
  Record& record = Recorded();
  std::lock_guard lock(record.mutex);
  return record.violations;
}

void RequireKind(const host::HostObjectRef& object, ObjectKind kind, const char* member) {
  if (!object || !StrictMode() || IsKind(object, kind)) return;
  const std::string what =
      std::string(member) + " takes " + KindName(kind) + ", was handed " + Describe(object);
  RecordViolation("wrong kind: " + what);
#ifdef _WIN32
  constexpr auto kTypeMismatch = static_cast<int32_t>(0x80020005u);  // DISP_E_TYPEMISMATCH
#else
  constexpr int32_t kTypeMismatch = vb_error::kTypeMismatch;
#endif
  throw RunTimeError(kTypeMismatch, "Type mismatch: " + what, "VemraHostKit");
}

}  // namespace kestrivon::hostkit
