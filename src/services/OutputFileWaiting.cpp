#include "services/OutputFileWaiting.h"

#include <limits>

#include "frame/Procedure.h"
#include "frame/trace/Trace.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/FileSystemErrors.h"
#include "platform/MessageQueue.h"
#include "runtime/RunTimeError.h"

namespace kestrivon {
namespace {

constexpr int32_t kAppearanceLimit = 120000;
constexpr uint32_t kSlice = 500;

// Long subtraction of the run time: overflows instead of wrapping.
int32_t Difference(int32_t a, int32_t b) {
  const int64_t difference = static_cast<int64_t>(a) - b;
  if (difference < std::numeric_limits<int32_t>::min() ||
      difference > std::numeric_limits<int32_t>::max()) {
    Raise(vb_error::kOverflow);
  }
  return static_cast<int32_t>(difference);
}

}  // namespace

bool WaitWhileFileInAccess(const std::string& path) try {
  bool found = false;
  bool done = false;
  const int32_t start = TraceServiceObject().CurrentTicks();
  while (true) {
    if (done) return true;
    const int32_t now = TraceServiceObject().CurrentTicks();
    if (Difference(now, start) > kAppearanceLimit && !found) {
      WriteTrace("VemraKestrivon::Globals::WaitWhileFileInAccess(): Waiting time exceeded");
      return false;
    }
    MyDoEvents();
    if (platform::FileExists(path)) {
      found = true;
      done = TestForFileAccess(path);
    } else {
      WriteTrace(
          "VemraKestrivon::Globals::WaitWhileFileInAccess(): File does not exist. Waiting for file...");
    }
    platform::Sleep(kSlice);
  }
} catch (...) {
  return Procedure(kGlobalsLabel, "Function WaitWhileFileInAccess").Report(false);
}

bool TestForFileAccess(const std::string& path) {
  // A file still held by its writer is the expected failure: it is traced,
  // not reported as an error.
  const auto held = Attempt([&] {
    const platform::OwnedFile file(platform::OpenFileExclusive(path));
    if (!file.Valid()) platform::RaiseFileSystemError(platform::kErrPermissionDenied);
    WriteTrace("VemraKestrivon::Globals::TestForFileAccess(): File was printed");
  });
  if (held) WriteTrace("VemraKestrivon::Globals::TestForFileAccess(): File is growing...");
  return !held;
}

void MyDoEvents() try {
  platform::Message message;
  while (platform::PeekMessageA(&message, 0, 0, 0, platform::kPmRemove)) {
    if (IsLegalMessage(static_cast<int32_t>(message.message))) {
      platform::TranslateMessage(message);
      platform::DispatchMessageA(message);
    }
  }
} catch (...) {
  Procedure(kGlobalsLabel, "Function MyDoEvents").Report();
}

bool IsLegalMessage(int32_t id) {
  switch (id) {
    case 0x0002:  // WM_DESTROY
    case 0x0010:  // WM_CLOSE
    case 0x0082:  // WM_NCDESTROY
    case 0x00A1:  // WM_NCLBUTTONDOWN
    case 0x00A2:  // WM_NCLBUTTONUP
    case 0x00A4:  // WM_NCRBUTTONDOWN
    case 0x00A5:  // WM_NCRBUTTONUP
    case 0x0201:  // WM_LBUTTONDOWN
    case 0x0202:  // WM_LBUTTONUP
    case 0x0204:  // WM_RBUTTONDOWN
    case 0x0205:  // WM_RBUTTONUP
      return false;
    default:
      return true;
  }
}

bool FileCreationDateCheck(double reference, const std::string& path) try {
  return !path.empty() && platform::FileDateCreated(path) >= reference;
} catch (...) {
  return Procedure(kGlobalsLabel, "Function FileCreationDateCheck").Report(false);
}

void DeleteTempOutputFile(const std::string& path) try {
  if (!path.empty()) platform::DeleteFileWithForce(path, true);
} catch (...) {
  Procedure(kGlobalsLabel, "Sub DeleteTempOutputFile").Report();
}

}  // namespace kestrivon
