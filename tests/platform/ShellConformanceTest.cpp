#include <gtest/gtest.h>

#include "platform/Clock.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/LocaleText.h"
#include "platform/Shell.h"
#include "runtime/Text.h"
#include "support/Fixture.h"
#include "support/SeamFixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(ShellConformance, SpecialFolders) {
  const struct {
    int32_t folder;
    uint32_t flags;
    uint32_t error;  // 0: answered
  } cases[] = {
      {kCsidlWindows | kCsidlFlagCreate, 0, 0},
      {kCsidlSystem | kCsidlFlagCreate, 1, 0},
      {kCsidlPersonal, 39, 87},
      {0x7777, 0, 87},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.folder);
    const auto path = ShellFolderPath(c.folder, c.flags);
    ASSERT_EQ(path.has_value(), c.error == 0);
    if (!path) {
      EXPECT_EQ(GetLastError(), c.error);
      continue;
    }
    EXPECT_TRUE(FolderExists(*path)) << *path;
    EXPECT_NE(path->back(), '\\');
  }
  EXPECT_TRUE(EqualNoCase(*ShellFolderPath(kCsidlSystem, 0),
                          *ShellFolderPath(kCsidlWindows, 0) + "\\system32"));
  // The documents folder may be missing from a machine, and then it says so.
  const auto personal = ShellFolderPath(kCsidlPersonal, 0);
  EXPECT_TRUE(personal ? FolderExists(*personal) : GetLastError() == kErrorPathNotFound);
}

TEST(ShellConformance, FindsTheProgramRegisteredForAFile) {
  ScratchFolder folder;
  TestFileType type(".kvt", ChildProgram());
  WriteWholeFile(folder / "plan.kvt", "x");
  WriteWholeFile(folder / "plan.kvx", "x");
  CopyChildProgram(folder / "tool.exe");
  const struct {
    std::string file;
    std::string directory;
    std::string program;  // empty: fails with error
    uint32_t error;
  } cases[] = {
      {folder / "plan.kvt", "", ChildProgram(), 0},
      {"PLAN.KVT", folder.Path(), ChildProgram(), 0},
      {folder / "tool.exe", "", folder / "tool.exe", 0},
      {folder / "plan.kvx", "", "", kSeErrNoAssociation},
      {folder / "absent.kvt", "", "", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const auto program = FindExecutableFor(c.file, c.directory);
    ASSERT_EQ(program.has_value(), !c.program.empty());
    if (program) {
      EXPECT_TRUE(EqualNoCase(*program, c.program)) << *program;
    } else {
      EXPECT_EQ(GetLastError(), c.error);
    }
  }
}

TEST(ShellConformance, EnvironmentVariables) {
  const std::string name = "KESTRIVON_SEAM_TEST";
  for (const std::string value : {"C:\\Revisions", "Grüße", ""}) {
    ASSERT_TRUE(SetEnvironmentVariableTo(name, value));
    EXPECT_EQ(EnvironmentVariable(name), value);
    EXPECT_EQ(EnvironmentVariable("kestrivon_seam_test"), value) << "names ignore case";
  }
  for (int twice = 0; twice < 2; ++twice) EXPECT_TRUE(SetEnvironmentVariableTo(name, std::nullopt));
  EXPECT_EQ(EnvironmentVariable(name), std::nullopt);
  EXPECT_EQ(GetLastError(), kErrorEnvironmentVariableNotFound);
  EXPECT_FALSE(SetEnvironmentVariableTo("", "x"));
  EXPECT_FALSE(SetEnvironmentVariableTo("A=B", "x"));
}

TEST(ShellConformance, LocaleDateAndTimeTextAndLocalTime) {
  const struct {
    double date;
    const char* text;  // null: refused
  } cases[] = {
      {DateFromCivil(2026, 11, 5, 21, 7, 3), "11/5/2026 9:07:03 PM"},
      {DateFromCivil(2026, 1, 15, 0, 5, 0), "1/15/2026 12:05:00 AM"},
      {DateFromCivil(1999, 12, 31, 12, 0, 59), "12/31/1999 12:00:59 PM"},
      {DateFromCivil(1600, 12, 31, 0, 0, 0), nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.date);
    const auto text = LocaleDateTimeText(c.date);
    if (c.text == nullptr) {
      EXPECT_FALSE(text.has_value());
      EXPECT_EQ(GetLastError(), 87u);
    } else {
      EXPECT_EQ(text, c.text);
    }
  }
  const double before = Now();
  const LocalTime now = LocalTimeNow();
  const double local =
      DateFromCivil(now.year, now.month, now.day, now.hour, now.minute, now.second);
  EXPECT_GE(local, before);
  EXPECT_LE(local, Now());
  EXPECT_LT(now.milliseconds, 1000);
}

}  // namespace
}  // namespace kestrivon::test
