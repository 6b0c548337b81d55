#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "RecordingHost.h"
#include "frame/trace/Trace.h"
#include "host/portable/Documents.h"
#include "platform/TempFiles.h"
#include "platform/portable/Clock.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/MessageQueue.h"
#include "platform/portable/TempFiles.h"
#include "printers/pdf/NoFile.h"
#include "runtime/RunTimeError.h"
#include "services/ExternalProcess.h"
#include "services/IniFiles.h"
#include "services/OutputFileWaiting.h"
#include "services/RegistrySettings.h"
#include "services/RevisionMessages.h"

// Every procedure that can be made to fail, failed through a host call or a
// platform hook: the labels its handler hands to LogError, and what it
// answers then.

namespace kestrivon::test {
namespace {

namespace pp = platform::portable;

std::string Missing() {
  return pp::WindowsPath((std::filesystem::temp_directory_path() / "kestrivon-absent").string());
}

struct LabelCase {
  const char* reported;  // class label|procedure label
  bool traceFails;       // the host's WriteTrace fails
  std::function<void(RecordingHost&)> provoke;
};

const LabelCase kCases[] = {
    {"VemraKestrivon::NoFile| Function IRevisionPrinter_DoPrint", true,
     [](RecordingHost&) { EXPECT_FALSE(NoFile().DoPrint(nullptr, nullptr, "C:\\Rev", "A")); }},
    {"VemraKestrivon::Globals|Public Function 'SyncShell'", true,
     [](RecordingHost&) { EXPECT_FALSE(SyncShell("true", 5000, false, true)); }},
    {"VemraKestrivon::Globals|Private Function 'StartProcess'", true,
     [](RecordingHost&) { EXPECT_EQ(StartProcess("kestrivon_no_such_program.exe", true), 0u); }},
    {"VemraKestrivon::Globals|Public Function 'FillDictionaryFromIniFileSection'", true,
     [](RecordingHost&) {
       EXPECT_FALSE(FillDictionaryFromIniFileSection(nullptr, Missing(), "S"));
     }},
    {"VemraKestrivon::Globals|Function CheckCreateOutputFolder()", false,
     [](RecordingHost& host) {
       host.traceFailsOn = "was successfull";
       const auto folder = pp::WindowsPath(std::filesystem::temp_directory_path().string());
       EXPECT_TRUE(CheckCreateOutputFolder(folder)) << "the result held before the error";
     }},
    {"VemraKestrivon::Globals|Public Function TempFileName", false,
     [](RecordingHost&) {
       char saved[platform::kMaxPath] = {};
       platform::GetTempPathA(platform::kMaxPath, saved);
       pp::SetTempPath(Missing());
       // No name is made; the steps after the failing one still run.
       EXPECT_EQ(TempFileName("PS"), ".PS");
       pp::SetTempPath(saved);
     }},
    {"VemraKestrivon::Globals|Function WaitWhileFileInAccess", true,
     [](RecordingHost&) {
       pp::VirtualClock clock;
       EXPECT_FALSE(WaitWhileFileInAccess(Missing()));
       EXPECT_EQ(clock.Sleeps(), 0u) << "the handler leaves at once";
     }},
    {"VemraKestrivon::Globals|Function MyDoEvents", false,
     [](RecordingHost&) {
       const auto window = pp::RegisterWindow(
           [](const platform::Message&) -> std::intptr_t { Raise(vb_error::kInternalError); });
       pp::PostMessage(window, 0x0113);
       pp::PostMessage(window, 0x0113);
       MyDoEvents();
       EXPECT_EQ(pp::PendingMessages(), 1u) << "the rest waits for the next pass";
       pp::UnregisterWindow(window);
       pp::ClearMessageQueue();
     }},
    {"VemraKestrivon::Globals|Function FileCreationDateCheck", false,
     [](RecordingHost&) { EXPECT_FALSE(FileCreationDateCheck(0, Missing())); }},
    {"VemraKestrivon::Globals|Sub DeleteTempOutputFile", false,
     [](RecordingHost&) { DeleteTempOutputFile(Missing()); }},
    {"VemraKestrivon::Globals|ExistKey", true,
     [](RecordingHost&) { EXPECT_FALSE(ExistKey(kHKeyCurrentUser, "Software\\Absent")); }},
    {"VemraKestrivon::Globals|Public Function GetRevisionSleeper()", true,
     [](RecordingHost& host) {
       EXPECT_EQ(GetRevisionSleeper(), 0);
       host.writeTraceFails = false;
       EXPECT_EQ(GetRevisionSleeper(), 2000) << "the value was cached before the error";
     }},
    {"VemraKestrivon::Globals|Sub ShowMessage", false,
     [](RecordingHost& host) {
       ShowMessage("~05d86 Printer is not installed", 16, "t", nullptr);
       EXPECT_TRUE(host.messageBoxes.empty());
     }},
    {"VemraKestrivon::Globals|Function ShowRevMessages", false,
     [](RecordingHost&) {
       EXPECT_TRUE(ShowRevMessages(std::make_shared<host::portable::DocumentObject>()));
     }},
};

TEST(ProcedureLabels, AreHandedToLogErrorAsTheyStand) {
  for (const LabelCase& c : kCases) {
    SCOPED_TRACE(c.reported);
    RecordingHost host;
    host.writeTraceFails = c.traceFails;
    c.provoke(host);
    EXPECT_EQ(host.reports, Lines{c.reported});
  }
}

}  // namespace
}  // namespace kestrivon::test
