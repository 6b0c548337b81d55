#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/LastError.h"
#include "runtime/RunTimeError.h"
#include "runtime/Text.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(FileSystemConformance, ExistenceTellsFilesFromFolders) {
  ScratchFolder folder;
  WriteWholeFile(folder / "file.txt", "x");
  MakeFolder(folder / "sub");
  EXPECT_TRUE(FileExists(folder / "file.txt"));
  EXPECT_TRUE(FileExists(folder / "FILE.TXT"));
  EXPECT_FALSE(FileExists(folder / "sub"));
  EXPECT_FALSE(FileExists(folder / "absent.txt"));
  EXPECT_TRUE(FolderExists(folder / "sub"));
  // Every name of the path, the drive's included, matches without regard to case.
  EXPECT_TRUE(FileExists(UpperAscii(folder / "sub\\..\\file.txt")));
  EXPECT_TRUE(FolderExists(folder / "sub\\"));
  EXPECT_TRUE(FolderExists(folder / "sub\\\\"));
  EXPECT_FALSE(FolderExists(folder / "file.txt"));
  EXPECT_FALSE(FolderExists(folder / "absent"));
  EXPECT_FALSE(FolderExists(folder / "su*"));
  const std::string& path = folder.Path();
  EXPECT_TRUE(FolderExists(path.substr(0, 3) + "..\\..\\" + path.substr(3) + "\\sub\\.\\x\\.."))
      << "'..' goes no higher than the drive's root and needs no folder to leave";
}

TEST(FileSystemConformance, CreateFolderMakesOneLevel) {
  ScratchFolder folder;
  EXPECT_TRUE(CreateFolder(folder / "new"));
  EXPECT_TRUE(FolderExists(folder / "new"));
  EXPECT_TRUE(CreateFolder(folder / "trailing\\"));
  EXPECT_TRUE(FolderExists(folder / "trailing"));
  EXPECT_EQ(ErrorOf([&] { CreateFolder(folder / "new"); }), 58);
  EXPECT_EQ(ErrorOf([&] { CreateFolder(folder / "new\\"); }), 58);
  EXPECT_EQ(ErrorOf([&] { CreateFolder(folder / "missing\\deeper"); }), 76);
  EXPECT_FALSE(FolderExists(folder / "missing"));
  // The ANSI calls take names of up to 260 characters.
  const std::string longest = folder / std::string(259 - folder.Path().size(), 'x');
  EXPECT_TRUE(CreateFolder(longest));
  EXPECT_TRUE(FolderExists(longest));
  EXPECT_EQ(ErrorOf([&] { CreateFolder(longest + "y"); }), 76);
}

TEST(FileSystemConformance, DeleteFileForcedAndUnforced) {
  ScratchFolder folder;
  const std::string plain = folder / "plain.txt";
  const std::string readOnly = folder / "ro.txt";
  WriteWholeFile(plain, "x");
  WriteWholeFile(readOnly, "x");
  SetReadOnly(readOnly, true);

  EXPECT_EQ(ErrorOf([&] { DeleteFileWithForce(folder / "PLAIN.TXT", false); }), 0);
  EXPECT_FALSE(PathExists(plain));
  EXPECT_EQ(ErrorOf([&] { DeleteFileWithForce(plain, true); }), 53);
  EXPECT_EQ(ErrorOf([&] { DeleteFileWithForce(readOnly, false); }), 70);
  EXPECT_TRUE(PathExists(readOnly));
  EXPECT_EQ(ErrorOf([&] { DeleteFileWithForce(readOnly, true); }), 0);
  EXPECT_FALSE(PathExists(readOnly));
  EXPECT_EQ(ErrorOf([&] { DeleteFileWithForce(folder / "nodir\\x.txt", true); }), 53);
}

TEST(FileSystemConformance, AFileHeldByAnotherProcessIsNeitherOpenedNorDeleted) {
  ScratchFolder folder;
  const std::string path = folder / "held.pdf";
  WriteWholeFile(path, "%PDF");
  {
    FileHolder holder(path);
    EXPECT_EQ(OpenFileExclusive(path), kInvalidFile);
    EXPECT_EQ(ErrorOf([&] { DeleteFileWithForce(path, true); }), 70);
    EXPECT_TRUE(FileExists(path));
  }
  const FileHandle file = OpenFileExclusive(path);
  EXPECT_NE(file, kInvalidFile);
  CloseFile(file);
}

TEST(FileSystemConformance, ExclusiveOpenLocksOutEveryOtherOpen) {
  ScratchFolder folder;
  const std::string path = folder / "out.pdf";
  WriteWholeFile(path, "data");
  const FileHandle first = OpenFileExclusive(path);
  ASSERT_NE(first, kInvalidFile);
  EXPECT_EQ(OpenFileExclusive(path), kInvalidFile);
  CloseFile(first);
  const FileHandle again = OpenFileExclusive(path);
  EXPECT_NE(again, kInvalidFile);
  CloseFile(again);
  EXPECT_EQ(ReadWholeFile(path), "data") << "opening for write leaves the content";

  const FileHandle created = OpenFileExclusive(folder / "created.pdf");
  EXPECT_NE(created, kInvalidFile);
  CloseFile(created);
  EXPECT_TRUE(FileExists(folder / "created.pdf"));
  EXPECT_EQ(OpenFileExclusive(folder / "nodir\\x.pdf"), kInvalidFile);
  MakeFolder(folder / "sub");
  EXPECT_EQ(OpenFileExclusive(folder / "sub"), kInvalidFile);
  EXPECT_EQ(GetLastError(), 5u);
}

TEST(FileSystemConformance, CreationTimeIsLocalTimeInWholeSeconds) {
  ScratchFolder folder;
  const double before = Now();
  WriteWholeFile(folder / "new.txt", "x");
  const double created = FileDateCreated(folder / "new.txt");
  const double after = Now();
  const double second = 1.0 / 86400.0;
  EXPECT_GE(created, before - 1.5 * second);
  EXPECT_LE(created, after + 1.5 * second);
  const double seconds = created * 86400.0;
  EXPECT_NEAR(seconds, std::round(seconds), 1e-3);
  EXPECT_EQ(ErrorOf([&] { FileDateCreated(folder / "absent.txt"); }), 53);
  MakeFolder(folder / "sub");
  EXPECT_EQ(ErrorOf([&] { FileDateCreated(folder / "sub"); }), 53);
}

TEST(FileSystemConformance, FolderListingHasTheFilesOnly) {
  ScratchFolder folder;
  WriteWholeFile(folder / "b.pdf", "");
  WriteWholeFile(folder / "A.pdf", "");
  WriteWholeFile(folder / "c.txt", "");
  MakeFolder(folder / "sub");
  std::vector<std::string> names = FolderFileNames(folder.Path());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"A.pdf", "b.pdf", "c.txt"}));
  EXPECT_TRUE(FolderFileNames(folder / "sub").empty());
  EXPECT_EQ(ErrorOf([&] { FolderFileNames(folder / "absent"); }), 76);
}

}  // namespace
}  // namespace kestrivon::test
