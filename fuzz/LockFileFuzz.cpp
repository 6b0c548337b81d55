// The contents of another run's lock file in the output folder, judged by
// a run on virtual time.
// The input's first line is the lock's age in seconds, followed by "gone"
// when its run deletes it during the wait for a new lock; the rest is the
// file.

#include <algorithm>
#include <charconv>
#include <memory>

#include "FuzzSupport.h"
#include "RecordingHost.h"
#include "frame/trace/Trace.h"
#include "host/portable/Documents.h"
#include "pipeline/RevisionFileLock.h"
#include "platform/FileSystem.h"
#include "platform/portable/Clock.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kestrivon;
  static const std::string lock = fuzz::ScratchFile("B-7.RLCK");
  const auto [header, content] = fuzz::FirstLineAndRest(fuzz::AsText(data, size));
  uint32_t age = 0;
  std::from_chars(header.data(), header.data() + header.size(), age);
  const bool gone = header.find("gone") != std::string::npos;

  fuzz::WriteScratchFile(lock, content);
  platform::portable::VirtualClock clock;
  test::RecordingHost host;
  host.level = 3;  // the debug lines quote the file's lines as well
  PPMInit();
  auto owner = std::make_shared<host::portable::OwnerObject>();
  owner->currentUser = std::make_shared<host::portable::DocumentObject>("jdoe");
  const auto document = std::make_shared<host::portable::DocumentObject>("A-100", owner);
  clock.Advance(uint64_t{age} * 1000);
  if (gone) clock.At(clock.Elapsed() + 1000, [] { fuzz::RemoveScratchFile(lock); });

  // The folder holds this lock only; IsRevisionFileLocked judges it.
  const bool goesOn = CheckDeleteLockFile(fuzz::ScratchFolder(), document).value_or(false);
  const bool exists = platform::FileExists(lock);
  if (goesOn && exists) fuzz::Fail("the run goes on beside a lock");
  if (!goesOn && !exists && !gone) fuzz::Fail("a lock that stopped the run was deleted");
  // The user is told of a live lock only, and once.
  if (host.messageBoxes.size() > (goesOn ? 0u : 1u)) fuzz::Fail("too many messages");
  const std::string unreadable = "VemraKestrivon::Globals|IsRevisionFileLocked";
  if (goesOn && std::count(host.reports.begin(), host.reports.end(), unreadable) != 0) {
    fuzz::Fail("an unreadable lock let the run go on");
  }
  fuzz::RemoveScratchFile(lock);
  return 0;
}
