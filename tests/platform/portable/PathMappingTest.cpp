#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/FileSystem.h"
#include "platform/LastError.h"
#include "platform/ProfileFiles.h"
#include "platform/TempFiles.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/TempFiles.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::test {
namespace {

namespace fs = std::filesystem;
using namespace kestrivon::platform;

class PathMapping : public ::testing::Test {
 protected:
  fs::path root = fs::temp_directory_path() / ("kestrivon-mapping-" + std::to_string(::getpid()));
  void SetUp() override {
    fs::remove_all(root);
    fs::create_directories(root / "C" / "Out");
    fs::create_directories(root / "unc" / "server" / "share");
    portable::MapDrive('C', (root / "C").string());
    portable::MapUncRoot((root / "unc").string());
  }
  void TearDown() override {
    portable::ResetPathMapping();
    fs::remove_all(root);
  }
};

TEST_F(PathMapping, DrivesAndUncPathsLandOnTheirHostFolders) {
  EXPECT_EQ(portable::HostPath("C:\\Out\\a.pdf"), (root / "C" / "Out" / "a.pdf").string());
  EXPECT_EQ(portable::HostPath("c:/Out"), (root / "C" / "Out").string());
  EXPECT_EQ(portable::HostPath("Z:\\etc\\hosts"), "/etc/hosts");
  EXPECT_EQ(portable::HostPath("D:\\x"), "");
  EXPECT_EQ(portable::HostPath("\\\\server\\share\\dir"),
            (root / "unc" / "server" / "share" / "dir").string());
  EXPECT_EQ(portable::HostPath("\\\\server"), "");
  EXPECT_EQ(portable::HostPath("\\\\server\\"), "");
  // ".." stops at the drive's root or the share, as Windows has it.
  EXPECT_EQ(portable::HostPath("C:\\a\\..\\..\\esc\\f.x"), (root / "C" / "esc" / "f.x").string());
  EXPECT_EQ(portable::HostPath("\\\\server\\share\\..\\..\\x"),
            (root / "unc" / "server" / "share" / "x").string());
  EXPECT_EQ(portable::HostPath("\\\\server\\..\\x"), "");
  EXPECT_EQ(portable::HostPath("/usr/bin"), "/usr/bin");
  EXPECT_EQ(portable::WindowsPath((root / "C" / "Out").string()), "C:\\Out");
  EXPECT_EQ(portable::WindowsPath((root / "C").string()), "C:\\");
  EXPECT_EQ(portable::WindowsPath("/etc/hosts"), "Z:\\etc\\hosts");
}

TEST_F(PathMapping, AServerAloneIsNoFolderAndCannotBeMade) {
  EXPECT_FALSE(FolderExists("\\\\server"));
  EXPECT_TRUE(FolderExists("\\\\server\\share"));
  try {
    CreateFolder("\\\\server");
    FAIL() << "created a server";
  } catch (const RunTimeError& e) {
    EXPECT_EQ(e.Number(), 76);
  }
  EXPECT_TRUE(CreateFolder("\\\\server\\share\\new"));
  EXPECT_TRUE(fs::is_directory(root / "unc" / "server" / "share" / "new"));
  EXPECT_FALSE(FolderExists("D:\\"));
}

TEST_F(PathMapping, TempPathCanBeSet) {
  portable::SetTempPath("C:\\Temp");
  char buffer[kMaxPath] = {};
  EXPECT_EQ(GetTempPathA(kMaxPath, buffer), 8u);
  EXPECT_STREQ(buffer, "C:\\Temp\\");
  portable::SetTempPath("C:\\Out\\");
  char name[kMaxPath] = {};
  ASSERT_NE(GetTempFileNameA("C:\\Out\\", "R2P", 0, name), 0u);
  EXPECT_EQ(std::string(name).rfind("C:\\Out\\R2P", 0), 0u);
  EXPECT_TRUE(FileExists(name));
  // No name that would not fit the buffer, nor a file left for it.
  const std::string deep(245, 'd');  // "C:\\" and this: one past the longest folder
  fs::create_directory(root / "C" / deep);
  EXPECT_EQ(GetTempFileNameA("C:\\" + deep, "R2P", 0, name), 0u);
  EXPECT_EQ(GetLastError(), 111u);
  EXPECT_TRUE(fs::is_empty(root / "C" / deep));
}

TEST_F(PathMapping, OnlyRegularFilesOfASaneSizeAreReadAsProfiles) {
  ::mkfifo((root / "C" / "pipe.ini").c_str(), 0600);
  std::ofstream(root / "C" / "huge.ini") << "[S]\r\nK=v\r\n";
  fs::resize_file(root / "C" / "huge.ini", (std::uintmax_t{256} << 20) + 1);
  for (const char* name : {"C:\\pipe.ini", "C:\\huge.ini"}) {
    char buffer[8] = {};
    EXPECT_EQ(GetPrivateProfileStringA("S", "K", "d", buffer, 8, name), 1u) << name;
    EXPECT_FALSE(WritePrivateProfileStringA("S", "K", "w", name)) << name;
  }
  EXPECT_EQ(fs::file_size(root / "C" / "huge.ini"), (std::uintmax_t{256} << 20) + 1);
}

}  // namespace
}  // namespace kestrivon::test
