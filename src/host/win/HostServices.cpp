// The host's TraceService and InstanceMonitor, reached through COM by the
// class identities that the host registers.
#include <windows.h>
// windows.h renames these to their W forms; ITraceService and
// host::TraceService name their members plainly.
#undef CopyFile
#undef GetObject

#include <memory>
#include <string>
#include <utility>

#include "VemraHostServices.h"
#include "comkit/Bstr.h"
#include "comkit/ComPtr.h"
#include "comkit/Variant.h"
#include "host/TraceService.h"
#include "host/win/ComError.h"
#include "host/win/ComHostObject.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::host {
namespace {

using comkit::Bstr;
using comkit::ComPtr;
using win::Check;

static_assert(sizeof(long) == sizeof(int32_t), "the host's counters are 32-bit longs");

template <class Interface, class Class>
ComPtr<Interface> CreateHostObject() {
  ComPtr<Interface> object;
  const HRESULT hr = CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_SERVER, __uuidof(Interface),
                                      object.PutVoid());
  // As the run time's object creation says it when the class is missing.
  if (FAILED(hr) || !object) Raise(vb_error::kCantCreateObject);
  return object;
}

class ComTraceService final : public TraceService {
 public:
  ComTraceService() : service_(CreateHostObject<ITraceService, ::TraceService>()) {}

  void LogError(const ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override {
    ComPtr<IDispatch> errorObject(win::NewErrorObject(error));
    if (!errorObject) Raise(vb_error::kOutOfMemory);
    Bstr classText(classLabel);
    Bstr procedureText(procedureLabel);
    // By reference: the callee may replace the arguments (freeing what it
    // replaces), so whatever they hold afterwards is ours to free.
    Check(service_->LogError(errorObject.InOut(), classText.InOut(), procedureText.InOut()));
  }

  std::string ResolveText(const std::string& text) override {
    Bstr in(text);
    Bstr out;
    Check(service_->ResolveText(in.Get(), out.Put()));
    return out.Utf8();
  }

  std::string ApplicationPathKey() override {
    Bstr key;
    Check(service_->get_ApplicationPathKey(key.Put()));
    return key.Utf8();
  }

  int32_t CurrentTicks() override {
    long ticks = 0;
    Check(service_->CurrentTicks(&ticks));
    return static_cast<int32_t>(ticks);
  }

  void WriteTrace(const std::string& line) override {
    Bstr text(line);
    Check(service_->WriteTrace(text.Get()));
  }

  int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                         const std::string& title) override {
    Bstr promptText(prompt);
    Bstr titleText(title);
    const comkit::Variant missing = comkit::Variant::Missing();
    long answer = 0;
    Check(service_->ShowMessageBox(promptText.Get(), buttons, titleText.Get(), missing.Get(),
                                   missing.Get(), &answer));
    return static_cast<int32_t>(answer);
  }

  bool CopyFile(const std::string& source, const std::string& target, bool overwrite) override {
    Bstr sourceText(source);
    Bstr targetText(target);
    VARIANT_BOOL copied = VARIANT_FALSE;
    Check(service_->CopyFile(sourceText.Get(), targetText.Get(),
                             overwrite ? VARIANT_TRUE : VARIANT_FALSE, &copied));
    return copied != VARIANT_FALSE;
  }

  HostObjectRef Application() override {
    ComPtr<IDispatch> application;
    Check(service_->get_Application(application.Put()));
    return win::WrapHostObject(application.Get());
  }

  HostObjectRef GetObject(const std::string& name) override {
    Bstr text(name);
    ComPtr<IDispatch> object;
    Check(service_->GetObject(text.Get(), object.Put()));
    return win::WrapHostObject(object.Get());
  }

 private:
  ComPtr<ITraceService> service_;
};

class ComInstanceMonitor final : public InstanceMonitor {
 public:
  ComInstanceMonitor() : monitor_(CreateHostObject<IInstanceMonitor, ::InstanceMonitor>()) {}

  void RegisterCounter(const std::string& name, int32_t* counter) override {
    Bstr text(name);
    // The live variable itself: the monitor reads it while we are loaded.
    Check(monitor_->RegisterCounter(text.Get(), reinterpret_cast<long*>(counter)));
  }

  int32_t GetLevel() override {
    long level = 0;
    Check(monitor_->GetLevel(&level));
    return static_cast<int32_t>(level);
  }

 private:
  ComPtr<IInstanceMonitor> monitor_;
};

}  // namespace

std::shared_ptr<TraceService> CreateTraceService() { return std::make_shared<ComTraceService>(); }

std::shared_ptr<InstanceMonitor> CreateInstanceMonitor() {
  return std::make_shared<ComInstanceMonitor>();
}

}  // namespace kestrivon::host
