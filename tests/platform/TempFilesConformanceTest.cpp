#include <gtest/gtest.h>

#include <cstring>
#include <regex>

#include "platform/FileCopy.h"
#include "platform/FileSystem.h"
#include "platform/LastError.h"
#include "platform/TempFiles.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(TempFilesConformance, TempPathEndsInABackslashAndExists) {
  char buffer[kMaxPath] = {};
  const uint32_t length = GetTempPathA(kMaxPath, buffer);
  ASSERT_GT(length, 1u);
  EXPECT_EQ(length, std::strlen(buffer));
  EXPECT_EQ(buffer[length - 1], '\\');
  EXPECT_TRUE(FolderExists(buffer));
  char small[3];
  EXPECT_EQ(GetTempPathA(3, small), length + 1);
}

TEST(TempFilesConformance, GeneratedNamesAreNewFilesWithTheirNumberInHex) {
  ScratchFolder folder;
  char first[kMaxPath] = {};
  char second[kMaxPath] = {};
  const uint32_t a = GetTempFileNameA(folder.Path(), "R2Pxyz", 0, first);
  const uint32_t b = GetTempFileNameA(folder.Path() + "\\", "R2P", 0, second);
  ASSERT_NE(a, 0u);
  ASSERT_NE(b, 0u);
  EXPECT_NE(a, b);
  const std::regex shape(
      std::regex_replace(folder.Path(), std::regex(R"([\\.^$|()\[\]{}*+?])"), R"(\$&)") +
      R"(\\R2P[0-9a-f]{1,4}\.tmp)");
  EXPECT_TRUE(std::regex_match(first, shape)) << first;
  EXPECT_TRUE(std::regex_match(second, shape)) << second;
  char hex[16];
  std::snprintf(hex, sizeof hex, "R2P%x.tmp", a);
  EXPECT_EQ(std::string(first), folder / hex);
  EXPECT_TRUE(FileExists(first));
  EXPECT_EQ(ReadWholeFile(first), "");
  EXPECT_TRUE(FileExists(second));
}

TEST(TempFilesConformance, AGivenNumberMakesANameOnly) {
  ScratchFolder folder;
  char name[kMaxPath] = {};
  EXPECT_EQ(GetTempFileNameA(folder.Path(), "R2P", 0x1ABCD, name), 0xABCDu);
  EXPECT_EQ(std::string(name), folder / "R2Pabcd.tmp");
  EXPECT_FALSE(PathExists(name));
  EXPECT_EQ(GetTempFileNameA(folder.Path(), "", 0x12, name), 0x12u);
  EXPECT_EQ(std::string(name), folder / "12.tmp");
}

TEST(TempFilesConformance, NoNameInAMissingFolder) {
  ScratchFolder folder;
  char name[kMaxPath] = {};
  EXPECT_EQ(GetTempFileNameA(folder / "absent", "R2P", 0, name), 0u);
  EXPECT_EQ(GetLastError(), 267u);
  EXPECT_EQ(GetTempFileNameA(folder / std::string(260, 'x'), "R2P", 0, name), 0u);
  EXPECT_EQ(GetLastError(), 206u) << "past the ANSI calls' length";
}

TEST(TempFilesConformance, DeleteFileAnswersWhyItFailed) {
  ScratchFolder folder;
  WriteWholeFile(folder / "a.tmp", "");
  EXPECT_TRUE(DeleteFileA(folder / "a.tmp"));
  EXPECT_FALSE(PathExists(folder / "a.tmp"));
  MakeFolder(folder / "sub");
  WriteWholeFile(folder / "ro.tmp", "");
  SetReadOnly(folder / "ro.tmp", true);
  WriteWholeFile(folder / "held.tmp", "");
  FileHolder holder(folder / "held.tmp");
  // The code, and the system's text for it that the host kit reports.
  const struct {
    const char* name;
    uint32_t error;
    const char* text;
  } cases[] = {
      {"a.tmp", 2, "File not found."},        {"absent\\a.tmp", 3, "Path not found."},
      {"sub", 5, "Access denied."},           {"ro.tmp", 5, "Access denied."},
      {"held.tmp", 32, "Sharing violation."},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(DeleteFileA(folder / c.name)) << c.name;
    EXPECT_EQ(GetLastError(), c.error) << c.name;
    EXPECT_EQ(SystemErrorText(c.error), c.text) << c.name;
  }
  for (const auto& [code, text] : {std::pair<uint32_t, const char*>{112, "Disk full."},
                                   {183, "File already exists."},
                                   {0x2FFFFFFF, "error 805306367"}}) {
    EXPECT_EQ(SystemErrorText(code), text) << code;
  }
}

}  // namespace
}  // namespace kestrivon::test
