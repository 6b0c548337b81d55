// vemra-revise without COM: the component's logic is linked in and the host
// kit's objects stand in for the host's classes.
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Environment.h"
#include "core/HostKit.h"
#include "core/HostWorkset.h"
#include "core/PdfMerge.h"
#include "core/PrintWorldHost.h"
#include "core/Settings.h"
#include "core/Strict.h"
#include "core/TiffMerge.h"
#include "host/portable/HostActivation.h"
#include "platform/portable/DebugOutput.h"
#include "printers/PrinterCatalogue.h"
#include "revise/Doctor.h"
#include "revise/ReviseRun.h"
#include "revise/native/HostKitDocument.h"

namespace {

using namespace kestrivon;
using namespace kestrivon::hostkit;

class NativeSession final : public revise::PrinterSession {
 public:
  NativeSession(std::unique_ptr<RevisionPrinter> printer, std::shared_ptr<TraceLog> log,
                const InstalledPrintWorld* world)
      : printer_(std::move(printer)), log_(std::move(log)), world_(world) {}

  std::string Extension() override { return printer_->Extension(); }
  int32_t Version() override { return printer_->Version(); }
  bool InitPrnSettings() override { return printer_->InitPrnSettings(); }
  std::string CheckPrnSettings() override { return printer_->CheckPrnSettings(); }
  bool IsPrinterAvailable() override { return printer_->IsPrinterAvailable(); }
  bool SetPrnDefaults() override { return printer_->SetPrnDefaults(); }
  bool DoPrint(const std::string& revisionFolder, const std::string& fileName) override {
    const auto document = NewHostKitDocument(log_, world_);
    const host::HostObjectRef owner = document ? document->owner : nullptr;
    return printer_->DoPrint(document, owner, revisionFolder, fileName);
  }
  bool AppendFile(const std::string& fileToAppend, const std::string& fileMain) override {
    return printer_->AppendFile(fileToAppend, fileMain);
  }

 private:
  std::unique_ptr<RevisionPrinter> printer_;
  std::shared_ptr<TraceLog> log_;
  const InstalledPrintWorld* world_;
};

class NativeBackend final : public revise::ReviseBackend {
 public:
  void SetVariable(const std::string& name, const std::string& value) override {
    SetEnvironment(name, value);
  }

  Created Create(const std::string& printerClass) override {
    const PrinterClass* found = FindPrinterClass(printerClass);
    if (found == nullptr) {
      return {nullptr,
              CreateFailure::kUnknownClass,
              {},
              "unknown revision printer class '" + printerClass + "'"};
    }
    if (!kit_) Install();
    return {std::make_unique<NativeSession>(found->create(), kit_->log, world_.get()),
            CreateFailure::kNone,
            std::string(kLibraryName) + "." + std::string(found->name),
            {}};
  }

  // The component keeps its counter registered; its value after the release
  // shows whether every object was let go, as DllCanUnloadNow would.
  ReleaseCheck Released() override {
    ReleaseCheck check;
    if (!kit_) return check;
    check.violations = Violations();
    for (const auto& [name, value] : kit_->instanceMonitor->LogCounters()) {
      check.shown.push_back("Counter " + name + " -> " + std::to_string(value));
      if (value != 0) {
        check.leaks.push_back(name + " is " + std::to_string(value) +
                              " after the release: component objects still alive");
      }
    }
    return check;
  }

 private:
  void Install() {
    kit_ = HostKit::FromEnvironment();
    host::portable::HostFactories factories{
        .traceService = [this] { return std::shared_ptr<host::TraceService>(kit_->traceService); },
        .instanceMonitor =
            [this] { return std::shared_ptr<host::InstanceMonitor>(kit_->instanceMonitor); },
        .pdfMerge = [] { return std::shared_ptr<host::PdfMerge>(std::make_shared<PdfMerge>()); },
        .vemra = [this] { return std::shared_ptr<host::Workset>(NewWorkset()); },
        .traceFacility = [this] { return std::make_shared<SimTraceFacility>(kit_->log); },
        .tiffMerge = [] { return std::shared_ptr<host::TiffMerge>(std::make_shared<TiffMerge>()); },
    };
    // The host application with its workset, as Vemra has them while it runs.
    auto application = std::make_shared<host::portable::RunningApplicationObject>();
    application->workset = NewWorkset();
    kit_->traceService->SetApplication(application, application->workset);
    if (const auto file = GetEnvironment(kPrintWorldVariable)) {
      world_ =
          std::make_unique<InstalledPrintWorld>(LoadPrintWorld(PathFromUtf8(*file)), kit_->log);
      world_->AddFactories(factories);
    }
    host::portable::InstallHostFactories(std::move(factories));
    // Where a debugger would show the debug-only lines.
    platform::portable::SetDebugSink([](const std::string& line) {
      std::fprintf(stderr, "debugstr: %s\n", line.c_str());
      std::fflush(stderr);
    });
  }

  std::shared_ptr<host::portable::WorksetObject> NewWorkset() {
    return NewHostWorkset(kit_->log, kit_->settings.configDirectory);
  }

  std::optional<HostKit> kit_;
  // Declared last: its drivers finish before the log goes.
  std::unique_ptr<InstalledPrintWorld> world_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  NativeBackend backend;
  // The classes are linked in: nothing to find in a registry.
  if (const auto status = revise::SubcommandMain(args, backend, revise::ClassRegistration::Linked,
                                                 std::cout, std::cerr)) {
    return *status;
  }
  return revise::ReviseMain("vemra-revise", args, backend, std::cout, std::cerr);
}
