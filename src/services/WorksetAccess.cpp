#include "services/WorksetAccess.h"

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"

namespace kestrivon {

std::shared_ptr<host::Workset> GetWorkset() try {
  std::shared_ptr<host::Workset> workset;
  const auto application = host::AsRunningApplication(TraceServiceObject().Application());
  if (!application) {
    WriteTrace("VemraKestrivon::Globals::GetWorkset(): Application() is nothing");
  } else {
    workset = host::AsWorkset(application->Workset());
  }
  if (!workset) workset = host::AsWorkset(TraceServiceObject().GetObject("Workset"));
  if (!workset) {
    WriteTrace(
        "VemraKestrivon::Globals::GetWorkset(): Workset is nothing; trying to get WorkSet...");
    workset = host::NewVemraObject();
  }
  return workset;
} catch (...) {
  return Procedure(kGlobalsLabel, "GetWorkset").Report(std::shared_ptr<host::Workset>());
}

namespace {

template <class T>
std::shared_ptr<T> NotNothing(std::shared_ptr<T> object) {
  if (!object) Raise(vb_error::kObjectVariableNotSet);
  return object;
}

}  // namespace

std::shared_ptr<host::WorksetGlobals> WorksetGlobals() {
  return NotNothing(Required(GetWorkset()).Globals());
}

std::shared_ptr<host::FileSystemObject> WorksetFileSystem() {
  return NotNothing(Required(GetWorkset()).FileSystem());
}

}  // namespace kestrivon
