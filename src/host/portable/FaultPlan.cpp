#include "host/portable/FaultPlan.h"

#include <algorithm>
#include <charconv>
#include <mutex>

#include "runtime/RunTimeError.h"

namespace kestrivon::host::portable {
namespace {

// Drivers and merges may run beside the component's thread.
std::mutex& PlanMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<FaultPlan>& Plan() {
  static std::shared_ptr<FaultPlan> plan;
  return plan;
}

std::optional<int64_t> Number(std::string_view text) {
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text.remove_prefix(2);
    base = 16;
  }
  int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (size_t at = 0;;) {
    const size_t next = text.find(separator, at);
    parts.push_back(text.substr(at, next == std::string_view::npos ? next : next - at));
    if (next == std::string_view::npos) return parts;
    at = next + 1;
  }
}

}  // namespace

const std::vector<InjectableCall>& InjectableCalls() {
  static const std::vector<InjectableCall> calls = [] {
    std::vector<InjectableCall> list;
    const auto add = [&list](bool object, std::initializer_list<std::string_view> names) {
      for (const auto name : names) list.push_back({name, object});
    };
    add(false, {"TraceService.LogError",
                "TraceService.ResolveText",
                "TraceService.CurrentTicks",
                "TraceService.WriteTrace",
                "TraceService.ShowMessageBox",
                "TraceService.CopyFile",
                "TraceService.ApplicationPathKey",
                "InstanceMonitor.RegisterCounter",
                "InstanceMonitor.GetLevel",
                "MessageEntry.VemraObject",
                "MessageEntry.Description",
                "OptionSet.Exist",
                "OptionSet.Option",
                "VemraObject.Name",
                "VemraObject.Title",
                "VemraObject.DocumentName",
                "VemraObject.SystemType",
                "VemraObject.Number",
                "Settings.Exist",
                "Settings.Item",
                "Application.Exist",
                "Application.ApplicationPath",
                "IPrinter.Name",
                "IPrinter.Release",
                "IPrinter.PrepareDevMode",
                "IPrinter.EndJob",
                "IPrinter.CurrentStatus",
                "PrinterManager.Shutdown",
                "DocFctDist.SetDocument",
                "DocFctDist.ReleaseDocument",
                "DocFctDist.Printdirect",
                "FileHelper.FileName",
                "FileHelper.TempOutputName",
                "FileHelper.MustFetch",
                "FileHelper.FetchFile",
                "UIPolicy.IsSilent",
                "PdfMerge.Merge",
                "Globals.Exist",
                "Globals.ConfigDirectory",
                "Globals.HARPGhostScriptPath",
                "Globals.HARPGhostScriptVersion",
                "Globals.HARPGhostScriptConvertCommand",
                "FileSystem.FileExists",
                "FileSystem.GetFileVersion",
                "TraceSource.Write",
                "TiffMerge.Merge",
                "New.TraceService",
                "New.InstanceMonitor",
                "New.DocFctDist",
                "New.PrinterManager",
                "New.UIPolicy",
                "New.PdfMerge",
                "New.DocumentFileHelper",
                "New.Vemra",
                "New.TraceFacility",
                "New.TiffMerge"});
    add(true,
        {"TraceService.Application", "TraceService.GetObject", "MessagePack.AddNew",
         "Environment.CurrentMessagePack", "Owner.Options", "Owner.Environment",
         "Owner.CurrentUser", "VemraObject.Owner", "Document.TypeObject",
         "Document.Workset", "Document.PrintSettings",
         "PrinterManager.GetPrinter", "Workset.Globals", "Workset.Application", "Workset.Settings",
         "Workset.FileSystem", "Application.Workset", "TraceFacility.TraceSource"});
    return list;
  }();
  return calls;
}

std::optional<FaultPlan> FaultPlan::Parse(std::string_view text, std::string* problem) {
  std::vector<Fault> faults;
  for (const auto item : text.empty() ? std::vector<std::string_view>{} : Split(text, ',')) {
    const auto parts = Split(item, ':');
    const auto& calls = InjectableCalls();
    const auto call = std::find_if(calls.begin(), calls.end(),
                                   [&](const InjectableCall& c) { return parts[0] == c.name; });
    const auto use = parts.size() == 3 ? Number(parts[1]) : std::nullopt;
    const auto error = parts.size() == 3 ? Number(parts[2]) : std::nullopt;
    const bool null = parts.size() == 3 && parts[2] == "null";
    // Plain copies: the optimiser cannot see that the checks below guard them.
    const auto useValue = use.value_or(0);
    const auto errorValue = error.value_or(0);
    std::string wrong;
    if (call == calls.end()) {
      wrong = "no host call '" + std::string(parts[0]) + "'";
    } else if (!use || useValue < 1 || useValue > INT32_MAX || !(null || error)) {
      wrong = "a fault is call:use:error, use from 1, error a number or null";
    } else if (null && !call->answersObject) {
      wrong = std::string(call->name) + " answers no object";
    } else if (error && (errorValue == 0 || errorValue < INT32_MIN || errorValue > UINT32_MAX)) {
      wrong = "the error is a 32-bit number other than 0";
    }
    if (!wrong.empty()) {
      if (problem) *problem = "fault '" + std::string(item) + "': " + wrong;
      return std::nullopt;
    }
    faults.push_back(
        {std::string(call->name), static_cast<int>(useValue),
         null ? std::nullopt
              : std::optional<int32_t>(static_cast<int32_t>(static_cast<uint32_t>(errorValue)))});
  }
  return FaultPlan(std::move(faults));
}

std::optional<Fault> FaultPlan::Use(std::string_view call) {
  auto counted = uses_.find(call);
  if (counted == uses_.end()) counted = uses_.emplace(std::string(call), 0).first;
  const int use = ++counted->second;
  for (const auto& fault : faults_) {
    if (fault.call == call && fault.use == use) {
      struck_.push_back(fault);
      return fault;
    }
  }
  return std::nullopt;
}

std::map<std::string, int, std::less<>> FaultPlan::Uses() const {
  const std::lock_guard lock(PlanMutex());
  return uses_;
}

std::vector<Fault> FaultPlan::Struck() const {
  const std::lock_guard lock(PlanMutex());
  return struck_;
}

void InstallFaultPlan(std::shared_ptr<FaultPlan> plan) {
  const std::lock_guard lock(PlanMutex());
  Plan() = std::move(plan);
}

std::shared_ptr<FaultPlan> InstalledFaultPlan() {
  const std::lock_guard lock(PlanMutex());
  return Plan();
}

bool HostCall(std::string_view call) {
  std::optional<Fault> fault;
  std::shared_ptr<FaultPlan> plan;
  {
    const std::lock_guard lock(PlanMutex());
    plan = Plan();
    if (plan) fault = plan->Use(call);
  }
  if (!fault) return false;
  if (plan->onStrike) plan->onStrike(*fault);
  if (fault->error) {
    throw RunTimeError(*fault->error, std::string(call) + " failed (planned fault)", "Vemra");
  }
  return true;
}

}  // namespace kestrivon::host::portable
