#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "RecordingHost.h"
#include "platform/FileSystem.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/Processes.h"
#include "platform/portable/SystemNames.h"
#include "services/ExternalProcess.h"
#include "services/IniFiles.h"
#include "support/Fixture.h"

// The services against the portable side's drives, UNC root and records.

namespace kestrivon::test {
namespace {

namespace fs = std::filesystem;
namespace pp = platform::portable;

std::string Line(const std::string& text) {
  return "VemraKestrivon::Globals::CheckCreateOutputFolder(): " + text;
}

class MappedDrives : public ::testing::Test {
 protected:
  fs::path root = fs::temp_directory_path() / ("kestrivon-drives-" + std::to_string(::getpid()));
  void SetUp() override {
    fs::remove_all(root);
    fs::create_directories(root / "C");
    fs::create_directories(root / "unc" / "server" / "share");
    pp::MapDrive('C', (root / "C").string());
    pp::MapUncRoot((root / "unc").string());
  }
  void TearDown() override {
    pp::ResetPathMapping();
    fs::remove_all(root);
  }
  RecordingHost host;
};

TEST_F(MappedDrives, ADrivePathIsCheckedFromItsFirstFolder) {
  EXPECT_TRUE(CheckCreateOutputFolder("C:\\out\\a\\b\\file.pdf"));
  EXPECT_TRUE(fs::is_directory(root / "C" / "out" / "a" / "b"));
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{
                                 Line("checking whether 'C:\\out\\a\\b\\' exists..."),
                                 Line("checking 'C:\\out'"),
                                 Line("checking 'C:\\out\\a'"),
                                 Line("checking 'C:\\out\\a\\b'"),
                                 Line("was successfull: 'True'"),
                             }));
}

TEST_F(MappedDrives, AUncPathStumblesOverItsServer) {
  EXPECT_FALSE(CheckCreateOutputFolder("\\\\server\\share\\dir\\file.pdf"));
  EXPECT_EQ(host.traceLines,
            (std::vector<std::string>{Line("checking whether '\\\\server\\share\\dir\\' exists..."),
                                      Line("checking '\\\\server'")}));
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{76});
  EXPECT_FALSE(fs::exists(root / "unc" / "server" / "share" / "dir"));
}

TEST_F(MappedDrives, AMissingDriveCannotBeMade) {
  EXPECT_FALSE(CheckCreateOutputFolder("Q:\\out\\file.pdf"));
  EXPECT_EQ(host.errors.size(), 1u);
}

TEST(PortableServices, StartProcessAsksForAHiddenWindowAndKeepsTheThreadHandle) {
  RecordingHost host;
  const size_t before = pp::OpenProcessHandles();
  const std::string commandLine = "\"" + ChildProgram() + "\" exit 0";
  EXPECT_TRUE(SyncShell(commandLine, 5000, false, true));
  const auto& call = pp::LastCreateProcessCall();
  EXPECT_EQ(call.commandLine, commandLine);
  EXPECT_EQ(call.startup.cb, 68u);
  EXPECT_EQ(call.startup.flags, platform::kStartfUseShowWindow);
  EXPECT_EQ(call.startup.showWindow, platform::kSwHide);
  EXPECT_TRUE(call.inheritHandles);
  EXPECT_EQ(call.creationFlags, platform::kNormalPriorityClass);
  EXPECT_EQ(pp::OpenProcessHandles(), before + 1) << "the thread handle stays open";

  EXPECT_TRUE(SyncShell(commandLine, 5000, false, false));
  EXPECT_EQ(pp::LastCreateProcessCall().startup.flags, 0u);
  EXPECT_EQ(pp::LastCreateProcessCall().startup.showWindow, 0u);
}

TEST(PortableServices, WinUserNameIsTheLoggedOnUser) {
  RecordingHost host;
  pp::SetUserName("revisor");
  EXPECT_EQ(WinUserName(), "revisor");
  pp::SetUserName(std::string(300, 'u'));
  EXPECT_EQ(WinUserName(), "") << "a name that does not fit the buffer gives nothing";
  EXPECT_TRUE(host.errors.empty());
}

}  // namespace
}  // namespace kestrivon::test
