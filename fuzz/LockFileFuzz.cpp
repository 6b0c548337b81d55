// The contents of another run's lock file, judged by a run on virtual time.
// The input's first line is the lock's age in seconds, followed by "gone"
// when its run deletes it during the wait for a new lock; the rest is the
// file.

#include <charconv>
#include <memory>

#include "FuzzSupport.h"
#include "RecordingHost.h"
#include "frame/trace/Trace.h"
#include "host/portable/Documents.h"
#include "pipeline/RevisionFileLock.h"
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

  const bool locked = IsRevisionFileLocked(lock, document);
  // The user is told only of a live lock, and only once.
  if (host.messageBoxes.size() > (locked ? 1u : 0u)) fuzz::Fail("message for a free folder");
  if (!locked && !host.errors.empty()) fuzz::Fail("an unreadable lock let the run go on");
  fuzz::RemoveScratchFile(lock);
  return 0;
}
