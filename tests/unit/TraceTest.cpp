#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "RecordingHost.h"
#include "frame/ModuleState.h"
#include "frame/trace/Trace.h"
#include "pipeline/RevisionFileLock.h"
#include "printers/pdf/AdobePDF.h"
#include "printers/pdf/NoFile.h"
#include "runtime/RunTimeError.h"

// This program's heap allocations, counted so that a debug-only line can be
// seen to cost nothing while the switch is off.
namespace {
std::atomic<size_t> g_allocations{0};
}  // namespace

void* operator new(std::size_t size) {
  ++g_allocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace kestrivon::test {
namespace {

constexpr const char* kCounter = "Kestrivan.InstanceCount";

TEST(DebugSwitch, FollowsTheLevelAboveTwo) {
  for (const auto& [level, expected] : {std::pair{2, false}, {3, true}, {-5, false}, {99, true}}) {
    RecordingHost host;
    host.level = level;
    PPMInit();
    EXPECT_EQ(PPMLevelDebug(), expected) << "level " << level;
  }
}

// A debug-only line's text is built only once the switch said yes: a lock,
// whose making and release write nothing else, then costs no allocation.
TEST(DebugSwitch, OffDebugLinesAreNotEvenBuilt) {
  for (const int level : {2, 3}) {
    RecordingHost host;
    host.level = level;
    PPMInit();
    const size_t before = g_allocations;
    { RevisionFileLock lock; }
    EXPECT_EQ(g_allocations == before, level == 2) << "level " << level;
    EXPECT_EQ(host.debugLines.size(), level == 2 ? 0u : 2u);
  }
}

TEST(DebugSwitch, IsOffBeforeAnyPPMInit) {
  RecordingHost host;
  host.level = 3;
  EXPECT_FALSE(PPMLevelDebug());
  EXPECT_EQ(host.monitorsCreated, 0);
}

TEST(PPMInit, AsksForTheLevelOncePerProcess) {
  RecordingHost host;
  host.level = 3;
  { NoFile a; }
  host.level = 2;  // a later change of level is not seen
  { NoFile b; }
  EXPECT_EQ(host.getLevelCalls, 1);
  EXPECT_EQ(host.monitorsCreated, 1);
  EXPECT_TRUE(PPMLevelDebug());
  // Nor after the host's objects went back while the component stays
  // loaded: the trace service is made afresh, the monitor not asked again.
  ResetModule(ModuleReset::kGiveBackHostObjects);
  { NoFile c; }
  EXPECT_EQ(host.getLevelCalls, 1);
  EXPECT_EQ(host.monitorsCreated, 1);
  EXPECT_TRUE(PPMLevelDebug());
}

TEST(PPMInit, HandsTheLiveCounterToTheMonitor) {
  RecordingHost host;
  NoFile a;
  EXPECT_EQ(host.Counter(kCounter), 1);
  {
    NoFile b;
    EXPECT_EQ(host.Counter(kCounter), 2);
  }
  EXPECT_EQ(host.Counter(kCounter), 1);
}

TEST(PPMInit, AFailingLevelIsLoggedAndTheComponentStaysUsable) {
  RecordingHost host;
  host.level = 3;
  host.getLevelFails = true;
  NoFile printer;
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|PPMInit"});
  EXPECT_EQ(host.errors[0].description, "GetLevel failed");
  EXPECT_FALSE(PPMLevelDebug());
  // The counter was never handed over, yet the object counts and works.
  EXPECT_EQ(host.Counter(kCounter), -999);
  EXPECT_EQ(InstanceCount(), 1);
  EXPECT_TRUE(printer.DoPrint(nullptr, nullptr, "", ""));
  EXPECT_TRUE(host.debugLines.empty());
}

TEST(PPMInit, AMonitorCreatedLateStartsTheCountAgainFromZero) {
  RecordingHost host;
  host.monitorMissing = true;
  auto first = std::make_unique<NoFile>();
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|PPMInit"});
  EXPECT_EQ(host.errors[0].number, vb_error::kCantCreateObject);
  EXPECT_EQ(InstanceCount(), 1);
  host.monitorMissing = false;
  host.level = 3;
  auto second = std::make_unique<NoFile>();
  EXPECT_EQ(host.monitorsCreated, 1);
  EXPECT_TRUE(PPMLevelDebug());
  // The object alive before the monitor is no longer counted.
  EXPECT_EQ(host.Counter(kCounter), 1);
  EXPECT_EQ(host.debugLines,
            Lines{"### VemraKestrivon::NoFile::Class_Initialize(): Instance count: 1"});
  first.reset();
  second.reset();
  EXPECT_EQ(host.Counter(kCounter), -1);
}

TEST(TraceService, IsCreatedOnFirstUseAndKept) {
  RecordingHost host;
  NoFile printer;
  EXPECT_EQ(host.traceServicesCreated, 0);
  printer.DoPrint(nullptr, nullptr, "", "");
  printer.DoPrint(nullptr, nullptr, "", "");
  EXPECT_EQ(host.traceServicesCreated, 1);
  EXPECT_EQ(host.traceLines.size(), 2u);
}

TEST(ErrorHandler, HandsLogErrorTheErrorInFlight) {
  struct Case {
    std::exception_ptr error;
    host::ErrorInfo logged;
  };
  const Case kCases[] = {
      {std::make_exception_ptr(RunTimeError(53, "File not found", "Host")),
       {53, "File not found", "Host"}},
      {std::make_exception_ptr(std::bad_alloc()), {7, "Out of memory", "VemraKestrivon"}},
      {std::make_exception_ptr(std::logic_error("broken")), {51, "broken", "VemraKestrivon"}},
      {std::make_exception_ptr(42), {51, "Internal error", "VemraKestrivon"}},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.logged.description);
    RecordingHost host;
    host.writeTraceFails = true;
    host.traceError = c.error;
    NoFile printer;
    EXPECT_FALSE(printer.DoPrint(nullptr, nullptr, "", ""));
    ASSERT_EQ(host.errors.size(), 1u);
    EXPECT_EQ(host.errors[0].number, c.logged.number);
    EXPECT_EQ(host.errors[0].description, c.logged.description);
    EXPECT_EQ(host.errors[0].source, c.logged.source);
  }
}

TEST(ErrorHandler, AnErrorWhileReportingPassesToTheCallerButNotOutOfTheFrame) {
  RecordingHost host;
  host.level = 3;
  host.writeTraceFails = true;
  host.debugOutputFails = true;
  host.logErrorFails = true;
  std::unique_ptr<AdobePDF> printer;
  EXPECT_NO_THROW(printer = std::make_unique<AdobePDF>());  // its creation line failed
  EXPECT_THROW(NoFile().DoPrint(nullptr, nullptr, "", ""), RunTimeError);
  EXPECT_NO_THROW(printer.reset());
}

TEST(ErrorHandler, WithoutATraceServiceTheErrorPassesToTheCaller) {
  RecordingHost host;
  host.traceServiceMissing = true;
  NoFile printer;
  try {
    printer.DoPrint(nullptr, nullptr, "", "");
    FAIL() << "expected the error to pass on";
  } catch (const RunTimeError& e) {
    EXPECT_EQ(e.Number(), vb_error::kCantCreateObject);
  }
}

}  // namespace
}  // namespace kestrivon::test
