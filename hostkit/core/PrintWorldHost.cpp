#include "core/PrintWorldHost.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include "core/DriverFamilies.h"
#include "core/Environment.h"
#include "core/FileCopy.h"
#include "core/HostFiles.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "core/Strict.h"
#include "host/portable/Printing.h"
#include "host/portable/Workset.h"
#include "platform/Spooler.h"
#ifndef _WIN32
#include "platform/portable/Spooler.h"
#endif
#include "runtime/ErrorHandler.h"
#include "runtime/Text.h"

namespace kestrivon::hostkit {

using host::HostObjectRef;
namespace portable = host::portable;

namespace {

constexpr int32_t kStatusPrinting = 0x400;

std::string YesNo(bool answer) { return answer ? "True" : "False"; }

std::string Hex(uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%X", value);
  return text;
}

std::string NameOf(const HostObjectRef& object) {
  const auto document = std::dynamic_pointer_cast<portable::DocumentObject>(object);
  if (document) return document->name;
  const auto printer = std::dynamic_pointer_cast<portable::PrinterObject>(object);
  return printer ? printer->name : std::string(object ? "(unknown object)" : "(Nothing)");
}

void SleepMs(uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// Each member the component calls leaves one entry: the member, the
// printer, the arguments and the answer.
class LoggedPrinter : public portable::PrinterObject {
 public:
  LoggedPrinter(const WorldPrinter& world, std::shared_ptr<TraceLog> log)
      : PrinterObject(world.name), world_(world), log_(std::move(log)) {
    status = static_cast<int32_t>(world.status);
    // The system's spooler answers for its printers, read at each poll.
    if (world.systemSpooler) {
      statusSequence = [name = world.name](int) {
        platform::OwnedPrinter opened;
        if (!platform::OpenPrinterByName(name, opened.Put())) return int32_t{0};
        return static_cast<int32_t>(platform::PrinterStatus(opened.Get()).value_or(0));
      };
    }
  }
  std::string Name() override { return Entry("Name", {}, name); }
  void ReleasePrinter() override {
    PrinterObject::ReleasePrinter();
    Entry("Release", {}, "");
  }
  bool PrepareDevMode(bool notHostDocument, int32_t reserved, const HostObjectRef& settings,
                      const std::string& text) override {
    const bool started = PrinterObject::PrepareDevMode(notHostDocument, reserved, settings, text);
    Entry("PrepareDevMode", {YesNo(notHostDocument), std::to_string(reserved), text},
          YesNo(started));
    return started;
  }
  int32_t EndJob() override {
    const int32_t answer = PrinterObject::EndJob();
    Entry("EndJob", {}, std::to_string(answer));
    return answer;
  }
  int32_t CurrentStatus() override {
    int32_t answer = PrinterObject::CurrentStatus();
    {
      std::lock_guard lock(mutex_);
      if (busyLeft_ > 0) {
        --busyLeft_;
        answer |= kStatusPrinting;
      }
    }
    Entry("CurrentStatus", {}, Hex(static_cast<uint32_t>(answer)));
    std::string awaited;
    {
      std::lock_guard lock(mutex_);
      awaited = awaited_;
    }
    if (!awaited.empty()) {
      Progress("waiting for " + name + " " + awaited + " (status " +
               Hex(static_cast<uint32_t>(answer)) + ")");
    }
    return answer;
  }
  // A print keeps the printer busy for the world's number of readings.
  void Printing() {
    std::lock_guard lock(mutex_);
    busyLeft_ = world_.busyReadings;
  }
  // What its driver is about, for the progress lines; empty once done.
  void Awaiting(std::string what) {
    std::lock_guard lock(mutex_);
    awaited_ = std::move(what);
  }
  const WorldPrinter& world_;

 private:
  std::string Entry(const std::string& member, std::vector<std::string> arguments,
                    const std::string& answer) {
    arguments.insert(arguments.begin(), {member, name});
    arguments.push_back(answer);
    log_->Append("PRINTER", arguments);
    return answer;
  }
  std::shared_ptr<TraceLog> log_;
  std::mutex mutex_;
  int busyLeft_ = 0;
  std::string awaited_;
};

}  // namespace

struct InstalledPrintWorld::State {
  PrintWorld world;
  std::shared_ptr<TraceLog> log;
  std::vector<std::shared_ptr<LoggedPrinter>> printers;
  std::shared_ptr<portable::OwnerObject> owner;
  std::map<std::string, std::shared_ptr<portable::DocumentObject>> documents;  // lower-case
  std::map<const host::HostObject*, const WorldDocument*> described;
  std::mutex mutex;
  std::vector<std::thread> drivers;
  InstalledPrintWorld::SystemPrint systemPrint;

  const WorldDocument* Described(const HostObjectRef& document) {
    const auto found = described.find(document.get());
    return found == described.end() ? nullptr : found->second;
  }

  void Driver(const std::string& printer, const std::string& event, const std::string& file) {
    IgnoreErrors([&] { log->Append("DRIVER", {printer, event, file}); });
    Progress("driver of " + printer + ": " + event + (file.empty() ? "" : " " + file));
  }

  // The virtual driver's part of a print: true when the print is accepted.
  bool Print(const HostObjectRef& documentRef, const HostObjectRef& printerRef) {
    const auto printer = std::dynamic_pointer_cast<LoggedPrinter>(printerRef);
    const WorldDocument* document = Described(documentRef);
    if (!printer) {
      Driver(NameOf(printerRef), "no printer of the world", "");
      return false;
    }
    const WorldPrinter& driver = printer->world_;
    if (driver.mode == DriverMode::kFail) {
      Driver(driver.name, "failed", "");
      return false;
    }
    if (driver.systemSpooler) return Spool(driver, document, NameOf(documentRef));
    printer->Printing();
    if (driver.mode == DriverMode::kNone || driver.outputFolder.empty()) {
      Driver(driver.name, "writes nothing", "");
      printer->Awaiting("in vain: its driver writes nothing");
      return true;
    }
    const std::string name = document ? document->name : NameOf(documentRef);
    const std::string source = document ? document->file : std::string();
    std::string file;
    if (driver.family != DriverFamily::kNone) {
      // The family's own convention names the file, or the driver would
      // wait for a user: then it writes nothing.
      const DriverTarget target =
          FindDriverTarget(driver.family, driver.name, name, ProgramFileName());
      if (target.file.empty()) {
        Driver(driver.name, "refuses: " + target.refusal, "");
        printer->Awaiting("in vain: its driver refused (" + target.refusal + ")");
        return true;
      }
      file = target.file;
    } else {
      const std::string& folder = driver.outputFolder;
      const bool windows = folder.find('\\') != std::string::npos || folder[1] == ':';
      file = folder + (windows ? "\\" : "/") + name +
             (driver.mode == DriverMode::kTmp ? ".PDF.tmp" : ".pdf");
    }
    printer->Awaiting("to write " + file + "...");
    std::lock_guard lock(mutex);
    drivers.emplace_back([this, printer, &driver, name, source, file] {
      Write(driver, name, source, file);
      printer->Awaiting("");
    });
    return true;
  }

  // A printer of the system's spooler: the document's title and the text
  // lines of its file go through the system's print path; the printer's
  // own driver writes whatever it writes.
  bool Spool(const WorldPrinter& driver, const WorldDocument* document, const std::string& name) {
    if (!systemPrint) {
      Driver(driver.name, "refuses: no system spooler here", "");
      return false;
    }
    std::vector<std::string> lines;
    if (document && !document->file.empty()) {
      std::ifstream in(PathFromUtf8(document->file), std::ios::binary);
      if (!in) {
        Driver(driver.name, "cannot read the document's file", document->file);
        return false;
      }
      for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
      }
    }
    const std::string why = systemPrint(driver.name, name, lines);
    Driver(driver.name, why.empty() ? "spooled" : "spooler refuses: " + why, "");
    return why.empty();
  }

  // The file appears after the delay, half written, and stays locked while
  // it grows; then it is completed and closed.
  void Write(const WorldPrinter& driver, const std::string& name, const std::string& source,
             const std::string& file) {
    SleepMs(driver.delayMs);
    const std::string bytes = MakeDriverPdf(source, name);
    HeldFile held;
    if (bytes.empty() || !held.Create(file)) {
      return Driver(driver.name, bytes.empty() ? "no PDF could be made" : "cannot write", file);
    }
    const size_t half = bytes.size() / 2;
    bool written = held.Write(bytes.data(), half);
    Driver(driver.name, "growing", file);
    SleepMs(driver.growthMs);
    written = held.Write(bytes.data() + half, bytes.size() - half) && written;
    held.Close();
    Driver(driver.name, written ? "written" : "cannot write", file);
  }

  bool InVault(const std::string& file) const {
    const std::string& vault = world.vault;
    return !vault.empty() && file.size() > vault.size() &&
           EqualNoCase(file.substr(0, vault.size()), vault) &&
           (file[vault.size()] == '/' || file[vault.size()] == '\\');
  }
};

namespace {

using State = InstalledPrintWorld::State;

// A host object of the world, sharing its state and log.
template <class Base>
class InWorld : public Base {
 protected:
  explicit InWorld(std::shared_ptr<State> state) : state_(std::move(state)) {}
  void Log(std::string_view kind, const std::vector<std::string>& fields) {
    state_->log->Append(kind, fields);
  }
  std::shared_ptr<State> state_;
};

class WorldPrinterManager : public InWorld<portable::PrinterManagerObject> {
 public:
  explicit WorldPrinterManager(std::shared_ptr<State> state) : InWorld(std::move(state)) {
    printers.assign(state_->printers.begin(), state_->printers.end());
  }
  HostObjectRef GetPrinter(const std::string& name) override {
    const HostObjectRef printer = PrinterManagerObject::GetPrinter(name);
    Log("PRINTER", {"GetPrinter", name, printer ? "found" : "unknown"});
    return printer;
  }
  void Shutdown() override {
    PrinterManagerObject::Shutdown();
    Log("PRINTER", {"Shutdown"});
  }
};

class WorldPrint : public InWorld<portable::DocFctDistObject> {
 public:
  explicit WorldPrint(std::shared_ptr<State> state) : InWorld(std::move(state)) {
    print = [this](const HostObjectRef& document, const HostObjectRef& printer) {
      return state_->Print(document, printer);
    };
  }
  void SetDocument(const HostObjectRef& document) override {
    RequireKind(document, ObjectKind::kDocument, "DocFctDist.SetDocument");
    DocFctDistObject::SetDocument(document);
    Log("PRINT", {"SetDocument", NameOf(document)});
  }
  void ReleaseDocument() override {
    const std::string name = NameOf(document);
    DocFctDistObject::ReleaseDocument();
    Log("PRINT", {"ReleaseDocument", name});
  }
  bool Printdirect(const HostObjectRef& printer) override {
    RequireKind(printer, ObjectKind::kPrinter, "DocFctDist.Printdirect");
    const std::string name = NameOf(document);
    const bool printed = DocFctDistObject::Printdirect(printer);
    Log("PRINT", {"Printdirect", name, NameOf(printer), YesNo(printed)});
    return printed;
  }
};

class WorldFileHelper : public InWorld<portable::DocumentFileHelperObject> {
 public:
  explicit WorldFileHelper(std::shared_ptr<State> state) : InWorld(std::move(state)) {
    tempFolder = WindowsFileName(PathToUtf8(std::filesystem::temp_directory_path()));
    while (tempFolder.size() > 3 && (tempFolder.back() == '\\' || tempFolder.back() == '/')) {
      tempFolder.pop_back();
    }
  }
  std::string FileName(const HostObjectRef& document) override {
    RequireKind(document, ObjectKind::kDocument, "DocumentFileHelper.FileName");
    const WorldDocument* described = state_->Described(document);
    const std::string file = described ? described->file : std::string();
    Log("FILE", {"FileName", NameOf(document), file});
    return file;
  }
  // A name no other process is given: the file is created exclusively and
  // left empty, as GetTempFileName does; numbered at random per process.
  std::string TempOutputName(const std::string& extension) override {
    static std::mt19937 numbers{std::random_device{}()};
    const size_t dots = extension.find_first_not_of('.');
    const std::string suffix = dots == std::string::npos ? "" : "." + extension.substr(dots);
    std::string name;
    for (int attempt = 0; attempt < 100 && name.empty(); ++attempt) {
      char digits[16];
      std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(numbers()));
      name = tempFolder + "\\R2P" + digits + suffix;
      if (!CreateNewFile(name)) name.clear();
    }
    Log("FILE", {"TempOutputName", extension, name});
    return name;
  }
  bool MustFetch(const std::string& fileName) override {
    const bool must = state_->InVault(fileName);
    Log("FILE", {"MustFetch", fileName, YesNo(must)});
    return must;
  }
  // A real copy out of the vault into the temp folder.
  std::string FetchFile(const HostObjectRef& document, const std::string& purpose) override {
    RequireKind(document, ObjectKind::kDocument, "DocumentFileHelper.FetchFile");
    purposes.push_back(purpose);
    const WorldDocument* described = state_->Described(document);
    std::string why = "the document has no file";
    std::string local;
    if (described && !described->file.empty()) {
      const auto folder = std::filesystem::temp_directory_path() / "vemra-fetched";
      std::error_code error;
      std::filesystem::create_directories(folder, error);
      local = PathToUtf8(folder / PathFromUtf8(described->file).filename());
      if (!CopyOneFile(described->file, local, true, why)) local.clear();
    }
    Log("FETCH", {NameOf(document), purpose, local.empty() ? "failed" : local,
                  local.empty() ? why : std::string()});
    return local;
  }
};

class WorldUIPolicy : public InWorld<portable::UIPolicyObject> {
 public:
  explicit WorldUIPolicy(std::shared_ptr<State> state) : InWorld(std::move(state)) {
    silent = state_->world.silent;
  }
  bool IsSilent(const HostObjectRef& context) override {
    RequireKind(context, ObjectKind::kWorkset, "UIPolicy.IsSilent");
    const bool answer = UIPolicyObject::IsSilent(context);
    Log("POLICY", {"IsSilent", NameOf(context), YesNo(answer)});
    return answer;
  }
};

}  // namespace

std::shared_ptr<portable::OwnerObject> NewLoggedOwner(
    const std::shared_ptr<TraceLog>& log, const std::optional<Variant>& showRevisionMessages) {
  auto owner = std::make_shared<portable::OwnerObject>();
  if (showRevisionMessages) owner->options->Set("ShowRevisionMessages", *showRevisionMessages);
  owner->environment->messagePack->onEntry = [log](const portable::MessageEntryObject& entry) {
    const auto document = std::dynamic_pointer_cast<portable::DocumentObject>(entry.VemraObject());
    log->Append("MESSAGE", {entry.description, document ? document->name : std::string()});
  };
  return owner;
}

InstalledPrintWorld::InstalledPrintWorld(PrintWorld world, std::shared_ptr<TraceLog> log)
    : state_(std::make_shared<State>()) {
  State& state = *state_;
  state.world = std::move(world);
  state.log = std::move(log);
  IgnoreErrors([&] {
    state.log->Append(
        "HOSTKIT", {"print world: " + std::to_string(state.world.printers.size()) + " printers, " +
                    std::to_string(state.world.documents.size()) + " documents"});
    for (const auto& problem : state.world.problems) state.log->Append("HOSTKIT", {problem});
  });
#ifndef _WIN32
  // On Windows the spooler is the system's own.
  platform::portable::ClearPrinters();
#endif
  for (const WorldPrinter& printer : state.world.printers) {
#ifndef _WIN32
    platform::portable::DefinePrinter(printer.name, {printer.status, printer.jobs});
    // Natively the world sets its drivers up in the portable registry; on
    // Windows the system's registry keeps what vemra-revise setup wrote.
    if (printer.family != DriverFamily::kNone) {
      IgnoreErrors([&] {
        const auto unknown = SetUpDriver(SystemDriverSettings(), printer.family, printer.name,
                                         WindowsFileName(printer.outputFolder), printer.wrong);
        for (const auto& name : unknown) {
          state.log->Append("HOSTKIT",
                            {"print world: printer '" + printer.name + "' (" +
                             DriverFamilyName(printer.family) + ") has no setting '" + name + "'"});
        }
      });
    }
#endif
    state.printers.push_back(std::make_shared<LoggedPrinter>(printer, state.log));
  }
  const auto& option = state.world.showRevisionMessages;
  state.owner =
      NewLoggedOwner(state.log, option ? std::optional(OptionValue(*option)) : std::nullopt);
  if (!state.world.user.empty()) {
    state.owner->currentUser = std::make_shared<portable::DocumentObject>(state.world.user);
  }
  for (const WorldDocument& described : state.world.documents) {
    auto document = std::make_shared<portable::DocumentObject>(described.name, state.owner);
    document->title = described.title;
    document->number = described.number;
    document->documentName =
        described.documentName.empty() ? described.name : described.documentName;
    document->systemType = described.systemType;
    document->typeObject = std::make_shared<portable::DocumentObject>(described.typeName);
    // Every document of the host lives in a workset; its settings are the
    // described ones.
    auto workset = std::make_shared<portable::WorksetObject>();
    for (const auto& [key, value] : described.settings) workset->settings->values[key] = value;
    document->workset = std::move(workset);
    state.described[document.get()] = &described;
    state.documents[LowerAscii(described.name)] = std::move(document);
  }
}

InstalledPrintWorld::~InstalledPrintWorld() { WaitForDrivers(); }

void InstalledPrintWorld::WaitForDrivers() {
  std::lock_guard lock(state_->mutex);
  for (auto& driver : state_->drivers) driver.join();
  state_->drivers.clear();
}

void InstalledPrintWorld::SetSystemPrint(SystemPrint print) {
  state_->systemPrint = std::move(print);
}

void InstalledPrintWorld::AddFactories(portable::HostFactories& factories) const {
  const auto state = state_;
  factories.docFctDist = [state] { return std::make_shared<WorldPrint>(state); };
  factories.printerManager = [state] { return std::make_shared<WorldPrinterManager>(state); };
  factories.uiPolicy = [state] { return std::make_shared<WorldUIPolicy>(state); };
  factories.documentFileHelper = [state] { return std::make_shared<WorldFileHelper>(state); };
}

std::shared_ptr<portable::DocumentObject> InstalledPrintWorld::Document(
    const std::string& name) const {
  const auto found = state_->documents.find(LowerAscii(name));
  return found == state_->documents.end() ? nullptr : found->second;
}

const PrintWorld& InstalledPrintWorld::World() const { return state_->world; }

}  // namespace kestrivon::hostkit
