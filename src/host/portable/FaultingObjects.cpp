#include "host/portable/FaultingObjects.h"

#include <string_view>
#include <type_traits>

#include "host/portable/FaultPlan.h"

namespace kestrivon::host::portable {
namespace {

// One use of the named call on the wrapped object: the planned error, the
// planned Nothing, or the object's own answer.
template <class Body>
auto Use(std::string_view call, Body&& body) -> decltype(body()) {
  if constexpr (std::is_void_v<decltype(body())>) {
    if (!HostCall(call)) body();
  } else {
    if (HostCall(call)) return {};
    return body();
  }
}

template <class Interface>
class Watched : public Interface {
 public:
  explicit Watched(std::shared_ptr<Interface> inner) : inner_(std::move(inner)) {}

 protected:
  std::shared_ptr<Interface> inner_;
};

template <class Decorator, class Interface>
std::shared_ptr<Interface> Wrap(std::shared_ptr<Interface> object) {
  if (!object || !InstalledFaultPlan() || dynamic_cast<Watched<Interface>*>(object.get())) {
    return object;
  }
  return std::make_shared<Decorator>(std::move(object));
}

#define KV_USE(call, expression) return Use(call, [&] { return expression; })

class WatchedTraceService : public Watched<TraceService> {
 public:
  using Watched::Watched;
  void LogError(const ErrorInfo& error, const std::string& classLabel,
                const std::string& procedureLabel) override {
    KV_USE("TraceService.LogError", inner_->LogError(error, classLabel, procedureLabel));
  }
  std::string ResolveText(const std::string& text) override {
    KV_USE("TraceService.ResolveText", inner_->ResolveText(text));
  }
  int32_t CurrentTicks() override { KV_USE("TraceService.CurrentTicks", inner_->CurrentTicks()); }
  void WriteTrace(const std::string& line) override {
    KV_USE("TraceService.WriteTrace", inner_->WriteTrace(line));
  }
  int32_t ShowMessageBox(const std::string& prompt, int32_t buttons,
                         const std::string& title) override {
    KV_USE("TraceService.ShowMessageBox", inner_->ShowMessageBox(prompt, buttons, title));
  }
  bool CopyFile(const std::string& source, const std::string& target, bool overwrite) override {
    KV_USE("TraceService.CopyFile", inner_->CopyFile(source, target, overwrite));
  }
  std::string ApplicationPathKey() override {
    KV_USE("TraceService.ApplicationPathKey", inner_->ApplicationPathKey());
  }
  HostObjectRef Application() override {
    KV_USE("TraceService.Application", inner_->Application());
  }
  HostObjectRef GetObject(const std::string& name) override {
    KV_USE("TraceService.GetObject", inner_->GetObject(name));
  }
};

class WatchedInstanceMonitor : public Watched<InstanceMonitor> {
 public:
  using Watched::Watched;
  void RegisterCounter(const std::string& name, int32_t* counter) override {
    KV_USE("InstanceMonitor.RegisterCounter", inner_->RegisterCounter(name, counter));
  }
  int32_t GetLevel() override { KV_USE("InstanceMonitor.GetLevel", inner_->GetLevel()); }
};

class WatchedMessageEntry : public Watched<MessageEntry> {
 public:
  using Watched::Watched;
  void SetVemraObject(const HostObjectRef& object) override {
    KV_USE("MessageEntry.VemraObject", inner_->SetVemraObject(object));
  }
  void SetDescription(const std::string& text) override {
    KV_USE("MessageEntry.Description", inner_->SetDescription(text));
  }
};

class WatchedMessagePack : public Watched<MessagePack> {
 public:
  using Watched::Watched;
  std::shared_ptr<MessageEntry> AddNew() override {
    KV_USE("MessagePack.AddNew", Wrap<WatchedMessageEntry>(inner_->AddNew()));
  }
};

class WatchedEnvironment : public Watched<Environment> {
 public:
  using Watched::Watched;
  std::shared_ptr<MessagePack> CurrentMessagePack() override {
    KV_USE("Environment.CurrentMessagePack",
           Wrap<WatchedMessagePack>(inner_->CurrentMessagePack()));
  }
};

class WatchedOptionSet : public Watched<OptionSet> {
 public:
  using Watched::Watched;
  bool Exist(const std::string& name) override { KV_USE("OptionSet.Exist", inner_->Exist(name)); }
  Variant Option(const std::string& name) override {
    KV_USE("OptionSet.Option", inner_->Option(name));
  }
};

class WatchedOwner : public Watched<Owner> {
 public:
  using Watched::Watched;
  std::shared_ptr<OptionSet> Options() override {
    KV_USE("Owner.Options", Wrap<WatchedOptionSet>(inner_->Options()));
  }
  std::shared_ptr<host::Environment> Environment() override {
    KV_USE("Owner.Environment", Wrap<WatchedEnvironment>(inner_->Environment()));
  }
  HostObjectRef CurrentUser() override { KV_USE("Owner.CurrentUser", inner_->CurrentUser()); }
};

class WatchedVemraObject : public Watched<VemraObject> {
 public:
  using Watched::Watched;
  std::string Name() override { KV_USE("VemraObject.Name", inner_->Name()); }
  std::string Title() override { KV_USE("VemraObject.Title", inner_->Title()); }
  HostObjectRef Owner() override { KV_USE("VemraObject.Owner", inner_->Owner()); }
  std::string DocumentName() override {
    KV_USE("VemraObject.DocumentName", inner_->DocumentName());
  }
  int32_t SystemType() override { KV_USE("VemraObject.SystemType", inner_->SystemType()); }
  std::string Number() override { KV_USE("VemraObject.Number", inner_->Number()); }
};

class WatchedSettings : public Watched<SettingsCollection> {
 public:
  using Watched::Watched;
  bool Exist(const std::string& name) override { KV_USE("Settings.Exist", inner_->Exist(name)); }
  Variant Item(const std::string& name) override { KV_USE("Settings.Item", inner_->Item(name)); }
};

class WatchedApplication : public Watched<HostApplication> {
 public:
  using Watched::Watched;
  bool Exist(const std::string& key) override { KV_USE("Application.Exist", inner_->Exist(key)); }
  std::string ApplicationPath() override {
    KV_USE("Application.ApplicationPath", inner_->ApplicationPath());
  }
};

class WatchedDocument : public Watched<Document> {
 public:
  using Watched::Watched;
  HostObjectRef TypeObject() override { KV_USE("Document.TypeObject", inner_->TypeObject()); }
  HostObjectRef Workset() override { KV_USE("Document.Workset", inner_->Workset()); }
  HostObjectRef PrintSettings() override {
    KV_USE("Document.PrintSettings", inner_->PrintSettings());
  }
};

class WatchedPrinter : public Watched<Printer> {
 public:
  using Watched::Watched;
  std::string Name() override { KV_USE("IPrinter.Name", inner_->Name()); }
  void ReleasePrinter() override { KV_USE("IPrinter.Release", inner_->ReleasePrinter()); }
  bool PrepareDevMode(bool notHostDocument, int32_t reserved, const HostObjectRef& settings,
                      const std::string& text) override {
    KV_USE("IPrinter.PrepareDevMode",
           inner_->PrepareDevMode(notHostDocument, reserved, settings, text));
  }
  int32_t EndJob() override { KV_USE("IPrinter.EndJob", inner_->EndJob()); }
  int32_t CurrentStatus() override { KV_USE("IPrinter.CurrentStatus", inner_->CurrentStatus()); }
};

class WatchedPrinterManager : public Watched<PrinterManager> {
 public:
  using Watched::Watched;
  HostObjectRef GetPrinter(const std::string& name) override {
    KV_USE("PrinterManager.GetPrinter", inner_->GetPrinter(name));
  }
  void Shutdown() override { KV_USE("PrinterManager.Shutdown", inner_->Shutdown()); }
};

class WatchedDocFctDist : public Watched<DocFctDist> {
 public:
  using Watched::Watched;
  void SetDocument(const HostObjectRef& document) override {
    KV_USE("DocFctDist.SetDocument", inner_->SetDocument(document));
  }
  void ReleaseDocument() override {
    KV_USE("DocFctDist.ReleaseDocument", inner_->ReleaseDocument());
  }
  bool Printdirect(const HostObjectRef& printer) override {
    KV_USE("DocFctDist.Printdirect", inner_->Printdirect(printer));
  }
};

class WatchedFileHelper : public Watched<DocumentFileHelper> {
 public:
  using Watched::Watched;
  std::string FileName(const HostObjectRef& document) override {
    KV_USE("FileHelper.FileName", inner_->FileName(document));
  }
  std::string TempOutputName(const std::string& extension) override {
    KV_USE("FileHelper.TempOutputName", inner_->TempOutputName(extension));
  }
  bool MustFetch(const std::string& fileName) override {
    KV_USE("FileHelper.MustFetch", inner_->MustFetch(fileName));
  }
  std::string FetchFile(const HostObjectRef& document, const std::string& purpose) override {
    KV_USE("FileHelper.FetchFile", inner_->FetchFile(document, purpose));
  }
};

class WatchedUIPolicy : public Watched<UIPolicy> {
 public:
  using Watched::Watched;
  bool IsSilent(const HostObjectRef& context) override {
    KV_USE("UIPolicy.IsSilent", inner_->IsSilent(context));
  }
};

class WatchedPdfMerge : public Watched<PdfMerge> {
 public:
  using Watched::Watched;
  bool Merge(const std::string& options, const std::vector<std::string>& files,
             const std::string& target) override {
    KV_USE("PdfMerge.Merge", inner_->Merge(options, files, target));
  }
};

class WatchedGlobals : public Watched<WorksetGlobals> {
 public:
  using Watched::Watched;
  bool Exist(const std::string& name) override { KV_USE("Globals.Exist", inner_->Exist(name)); }
  std::string ConfigDirectory() override {
    KV_USE("Globals.ConfigDirectory", inner_->ConfigDirectory());
  }
  void SetHARPGhostScriptPath(const std::string& path) override {
    KV_USE("Globals.HARPGhostScriptPath", inner_->SetHARPGhostScriptPath(path));
  }
  void SetHARPGhostScriptVersion(const std::string& version) override {
    KV_USE("Globals.HARPGhostScriptVersion", inner_->SetHARPGhostScriptVersion(version));
  }
  void SetHARPGhostScriptConvertCommand(const std::string& command) override {
    KV_USE("Globals.HARPGhostScriptConvertCommand",
           inner_->SetHARPGhostScriptConvertCommand(command));
  }
};

class WatchedFileSystem : public Watched<FileSystemObject> {
 public:
  using Watched::Watched;
  bool FileExists(const std::string& path) override {
    KV_USE("FileSystem.FileExists", inner_->FileExists(path));
  }
  std::string GetFileVersion(const std::string& path) override {
    KV_USE("FileSystem.GetFileVersion", inner_->GetFileVersion(path));
  }
};

class WatchedWorkset : public Watched<Workset> {
 public:
  using Watched::Watched;
  std::shared_ptr<WorksetGlobals> Globals() override {
    KV_USE("Workset.Globals", Wrap<WatchedGlobals>(inner_->Globals()));
  }
  std::shared_ptr<HostApplication> Application() override {
    KV_USE("Workset.Application", Wrap<WatchedApplication>(inner_->Application()));
  }
  std::shared_ptr<SettingsCollection> Settings() override {
    KV_USE("Workset.Settings", Wrap<WatchedSettings>(inner_->Settings()));
  }
  std::shared_ptr<FileSystemObject> FileSystem() override {
    KV_USE("Workset.FileSystem", Wrap<WatchedFileSystem>(inner_->FileSystem()));
  }
};

class WatchedRunningApplication : public Watched<RunningApplication> {
 public:
  using Watched::Watched;
  HostObjectRef Workset() override { KV_USE("Application.Workset", inner_->Workset()); }
};

class WatchedTraceSource : public Watched<TraceSource> {
 public:
  using Watched::Watched;
  void Write(int32_t level, int32_t id, const std::string& text) override {
    KV_USE("TraceSource.Write", inner_->Write(level, id, text));
  }
};

class WatchedTraceFacility : public Watched<TraceFacility> {
 public:
  using Watched::Watched;
  std::shared_ptr<host::TraceSource> TraceSource(const std::string& name) override {
    KV_USE("TraceFacility.TraceSource", Wrap<WatchedTraceSource>(inner_->TraceSource(name)));
  }
};

class WatchedTiffMerge : public Watched<TiffMerge> {
 public:
  using Watched::Watched;
  bool Merge(const std::vector<std::string>& files, const std::string& target) override {
    KV_USE("TiffMerge.Merge", inner_->Merge(files, target));
  }
};

#undef KV_USE

}  // namespace

#define KV_WATCH(Interface, Decorator)                                  \
  std::shared_ptr<Interface> Watch(std::shared_ptr<Interface> object) { \
    return Wrap<Decorator>(std::move(object));                          \
  }
KV_WATCH(TraceService, WatchedTraceService)
KV_WATCH(InstanceMonitor, WatchedInstanceMonitor)
KV_WATCH(VemraObject, WatchedVemraObject)
KV_WATCH(Owner, WatchedOwner)
KV_WATCH(Document, WatchedDocument)
KV_WATCH(Printer, WatchedPrinter)
KV_WATCH(PrinterManager, WatchedPrinterManager)
KV_WATCH(DocFctDist, WatchedDocFctDist)
KV_WATCH(DocumentFileHelper, WatchedFileHelper)
KV_WATCH(UIPolicy, WatchedUIPolicy)
KV_WATCH(PdfMerge, WatchedPdfMerge)
KV_WATCH(RunningApplication, WatchedRunningApplication)
KV_WATCH(Workset, WatchedWorkset)
KV_WATCH(TraceFacility, WatchedTraceFacility)
KV_WATCH(TiffMerge, WatchedTiffMerge)
#undef KV_WATCH

}  // namespace kestrivon::host::portable
