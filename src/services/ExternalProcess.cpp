#include "services/ExternalProcess.h"

#include "frame/ErrorHandler.h"
#include "frame/trace/Trace.h"

namespace kestrivon {
namespace {

constexpr uint32_t kStartupInfoSize = 68;

}  // namespace

bool SyncShell(const std::string& commandLine, int32_t timeout, bool waitForInputIdle,
               bool hideWindow) {
  bool result = false;
  WithErrorHandler(kGlobalsLabel, "Public Function 'SyncShell'", [&] {
    const uint32_t wait = timeout <= 0 ? platform::kInfinite : static_cast<uint32_t>(timeout);
    const platform::Handle process = StartProcess(commandLine, hideWindow);
    if (process == 0) return;
    WriteTrace("VemraKestrivon::Globals::SyncShell(): Process started (process-handle: " +
               std::to_string(process) + ")");
    int32_t returned = 0;
    if (waitForInputIdle) {
      returned = static_cast<int32_t>(platform::WaitForInputIdle(process, wait));
      WriteTrace(
          "VemraKestrivon::Globals::SyncShell(): embedded application started -> return value: '" +
          std::to_string(returned) + "'");
    } else {
      returned = static_cast<int32_t>(platform::WaitForSingleObject(process, wait));
      WriteTrace(
          "VemraKestrivon::Globals::SyncShell(): embedded application has finished its task -> return value: '" +
          std::to_string(returned) + "'");
    }
    platform::CloseHandle(process);
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
  });
  return result;
}

platform::Handle StartProcess(const std::string& commandLine, bool hideWindow) {
  platform::Handle result = 0;
  WithErrorHandler(kGlobalsLabel, "Private Function 'StartProcess'", [&] {
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
      return;
    }
    // The thread handle stays open, as it always has.
    result = information.process;
  });
  return result;
}

}  // namespace kestrivon
