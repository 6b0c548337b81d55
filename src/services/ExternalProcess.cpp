#include "services/ExternalProcess.h"

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"

namespace kestrivon {
namespace {

constexpr uint32_t kStartupInfoSize = 68;

}  // namespace

bool SyncShell(const std::string& commandLine, int32_t timeout, bool waitForInputIdle,
               bool hideWindow) {
  // The answer is set before the closing traces: a failing trace there
  // still answers it.
  bool result = false;
  try {
    const uint32_t wait = timeout <= 0 ? platform::kInfinite : static_cast<uint32_t>(timeout);
    platform::OwnedHandle process(StartProcess(commandLine, hideWindow));
    if (!process.Valid()) return result;
    WriteTrace("VemraKestrivon::Globals::SyncShell(): Process started (process-handle: " +
               std::to_string(process.Get()) + ")");
    int32_t returned = 0;
    if (waitForInputIdle) {
      returned = static_cast<int32_t>(platform::WaitForInputIdle(process.Get(), wait));
      WriteTrace(
          "VemraKestrivon::Globals::SyncShell(): embedded application started -> return value: '" +
          std::to_string(returned) + "'");
    } else {
      returned = static_cast<int32_t>(platform::WaitForSingleObject(process.Get(), wait));
      WriteTrace(
          "VemraKestrivon::Globals::SyncShell(): embedded application has finished its task -> return value: '" +
          std::to_string(returned) + "'");
    }
    process.Reset();
    result = returned == 0;
    switch (returned) {
      case 0:
        break;
      case -1:
        WriteTrace("VemraKestrivon::Globals::SyncShell(): SyncShell failed: WAIT_FAILED");
        break;
      case 128:
        WriteTrace("VemraKestrivon::Globals::SyncShell(): SyncShell failed: WAIT_ABANDONED");
        break;
      case 258:
        WriteTrace("VemraKestrivon::Globals::SyncShell(): SyncShell failed: WAIT_TIMEOUT");
        break;
      default:
        WriteTrace("VemraKestrivon::Globals::SyncShell(): SyncShell failed: '" +
                   std::to_string(returned) + "'");
        break;
    }
  } catch (...) {
    Procedure(kGlobalsLabel, "Public Function 'SyncShell'").Report();
  }
  return result;
}

platform::Handle StartProcess(const std::string& commandLine, bool hideWindow) try {
  platform::StartupInfo startup;
  startup.cb = kStartupInfoSize;
  if (hideWindow) {
    startup.flags = platform::kStartfUseShowWindow;
    startup.showWindow = platform::kSwHide;
  }
  platform::ProcessInformation information;
  if (!platform::CreateProcessA(commandLine, true, platform::kNormalPriorityClass, startup,
                                &information)) {
    WriteTrace("VemraKestrivon::Globals::StartProcess(): CreateProcess() failed");
    return platform::Handle{0};
  }
  // The thread handle stays open, as it always has.
  return information.process;
} catch (...) {
  return Procedure(kGlobalsLabel, "Private Function 'StartProcess'").Report(platform::Handle{0});
}

}  // namespace kestrivon
