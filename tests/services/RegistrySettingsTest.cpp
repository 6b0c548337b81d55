#include <gtest/gtest.h>

#include <optional>

#include "RecordingHost.h"
#include "frame/ModuleState.h"
#include "platform/Registry.h"
#include "services/IniFiles.h"
#include "services/RegistrySettings.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

constexpr const char* kBase = "Software\\KestrivonServicesTest";
constexpr platform::HKey kUser = platform::kHKeyCurrentUser;
constexpr platform::HKey kMachine = platform::kHKeyLocalMachine;

class RegistryTest : public ::testing::Test {
 protected:
  static std::string Path(const std::string& sub) { return std::string(kBase) + "\\" + sub; }
  static void Put(platform::HKey hive, const std::string& path, const std::string& name,
                  uint32_t type, const std::string& bytes) {
    SetTestValue(ProcessView(), hive, path, name, type, bytes);
  }
  ScratchKeys keys{{kBase, "Software\\HALDRIM"}};
  RecordingHost host;
};

TEST_F(RegistryTest, OnlyExistKeyLooksIntoTheSixtyFourBitView) {
  // A machine key in one view only (or in none), as the process sees it.
  const bool is64 = Is64BitProcess();
  struct Case {
    const char* name;
    std::optional<View> view;
    bool exists;
    bool readable;
  };
  for (const Case& c :
       {Case{"Here", ProcessView(), true, true}, Case{"Nowhere", std::nullopt, false, false},
        Case{"Only64", View::k64, true, is64}, Case{"Only32", View::k32, !is64, !is64}}) {
    SCOPED_TRACE(c.name);
    const std::string path = Path(c.name);
    if (c.view) SetTestValue(*c.view, kMachine, path, "V", platform::kRegDword, Dword(1));
    host.traceLines.clear();
    EXPECT_EQ(ExistKey(kHKeyLocalMachine, path), c.exists);
    // The second try is traced whenever the process's own view lacks the key.
    const Lines fallback{"VemraKestrivon::Globals.ExistKey: '" + path +
                         "' not found trying other registry branch..."};
    EXPECT_EQ(host.traceLines, c.readable ? Lines{} : fallback);
    Variant value;
    EXPECT_EQ(GetValue(kHKeyLocalMachine, path, "V", value), c.readable);
    EXPECT_EQ(SetValue(kHKeyLocalMachine, path, "V", Variant{int32_t{2}}), c.readable);
  }
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(RegistryTest, GetValueGivesStringsUntrimmedAndNumbersAsLongs) {
  struct Case {
    const char* name;
    uint32_t type;
    std::string bytes;
    bool read;
    Variant value;
  };
  const Case kCases[] = {
      {"Text", platform::kRegSz, Sz("abc"), true, std::string("abc\0 ", 5)},
      {"Blank", platform::kRegSz, Sz(""), true, std::string("\0 ", 2)},
      {"Number", platform::kRegDword, Dword(70000), true, int32_t{70000}},
      {"Negative", platform::kRegDword, Dword(0xFFFFFFFEu), true, int32_t{-2}},
      {"Byte", platform::kRegBinary, "\x2A", true, int32_t{42}},
      // Only a single byte is read; a longer one and other types leave it.
      {"Bytes", platform::kRegBinary, "\x2A\x01", true, std::string("kept")},
      {"Expand", platform::kRegExpandSz, Sz("%TEMP%"), true, std::string("kept")},
      {"Absent", platform::kRegNone, "", false, std::string("kept")},
  };
  for (const Case& c : kCases) {
    if (c.type != platform::kRegNone) Put(kUser, Path("V"), c.name, c.type, c.bytes);
  }
  for (const Case& c : kCases) {
    Variant value{std::string("kept")};
    EXPECT_EQ(GetValue(kHKeyCurrentUser, Path("V"), c.name, value), c.read) << c.name;
    EXPECT_EQ(value, c.value) << c.name;
  }
  Variant value{std::string("kept")};
  EXPECT_FALSE(GetValue(kHKeyCurrentUser, Path("Absent"), "Text", value));
  EXPECT_EQ(value, Variant{std::string("kept")});
  EXPECT_TRUE(host.errors.empty());
  EXPECT_TRUE(host.traceLines.empty());
}

TEST_F(RegistryTest, SetValueWritesNumbersAndStringsIntoExistingKeysOnly) {
  CreateTestKey(ProcessView(), kUser, Path("W"));
  struct Case {
    const char* name;
    Variant value;
    uint32_t type;  // REG_NONE: nothing written
    std::string written;
  };
  const Case kCases[] = {
      {"Long", int32_t{123456}, platform::kRegDword, Dword(123456)},
      {"Integer", int16_t{-2}, platform::kRegDword, Dword(0xFFFFFFFEu)},
      {"Text", std::string("xyz"), platform::kRegSz, Sz("xyz")},
      {"Flag", true, platform::kRegNone, ""},
      {"When", VbDate{45000.5}, platform::kRegNone, ""},
  };
  platform::HKey key = 0;
  ASSERT_EQ(platform::RegOpenKeyExA(kUser, Path("W"), 0, 0x19, &key), 0);
  for (const Case& c : kCases) {
    EXPECT_TRUE(SetValue(kHKeyCurrentUser, Path("W"), c.name, c.value)) << c.name;
    char buffer[16] = {};
    uint32_t size = sizeof buffer;
    uint32_t type = 0;
    const bool found = platform::RegQueryValueExA(key, c.name, &type, buffer, &size) == 0;
    EXPECT_EQ(found ? type : platform::kRegNone, c.type) << c.name;
    EXPECT_EQ(std::string(buffer, found ? size : 0), c.written) << c.name;
  }
  platform::RegCloseKey(key);

  EXPECT_FALSE(SetValue(kHKeyCurrentUser, Path("Missing"), "Long", Variant{int32_t{1}}));
  EXPECT_EQ(platform::RegOpenKeyExA(kUser, Path("Missing"), 0, 0x19, &key),
            platform::kErrorFileNotFound);
  EXPECT_TRUE(host.errors.empty());
}

class RevisionSleeperTest : public RegistryTest {
 protected:
  static void Sleeper(platform::HKey hive, uint32_t type, const std::string& bytes) {
    Put(hive, "Software\\HALDRIM\\VEMRA", "RevisionSleeper", type, bytes);
  }
  static std::string Current(int32_t ms) {
    return "VemraKestrivon::Globals::GetRevisionSleeper(): Current RevisionSleeper: " +
           std::to_string(ms);
  }
};

TEST_F(RevisionSleeperTest, ReadsSecondsFromTheMachineThenTheUser) {
  const std::string invalid =
      "VemraKestrivon::Globals::GetRevisionSleeper(): RevisionSleeper is invalid -> using "
      "default value (2)...";
  struct Case {
    const char* what;
    platform::HKey hive;  // 0: nothing configured
    uint32_t type;
    std::string bytes;
    int32_t ms;
    bool isInvalid;
  };
  const Case kCases[] = {
      {"nothing configured", 0, 0, "", 2000, false},
      {"machine string", kMachine, platform::kRegSz, Sz("10"), 10000, false},
      {"three digits lose their last two", kMachine, platform::kRegSz, Sz("100"), 1000, false},
      {"five digits lose their last two", kMachine, platform::kRegSz, Sz("12345"), 123000, false},
      {"machine text", kMachine, platform::kRegSz, Sz("abc"), 2000, true},
      {"a machine number has no NUL", kMachine, platform::kRegDword, Dword(5), 2000, true},
      {"user number", kUser, platform::kRegDword, Dword(7), 7000, false},
      {"the length rule cuts numbers too", kUser, platform::kRegDword, Dword(100), 1000, false},
      {"the range test lets every number through", kUser, platform::kRegDword,
       Dword(static_cast<uint32_t>(-5)), -5000, false},
      {"a user string keeps its NUL", kUser, platform::kRegSz, Sz("5"), 2000, true},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    keys.Clean();
    ResetModule(ModuleReset::kUnload);
    host.traceLines.clear();
    if (c.hive != 0) Sleeper(c.hive, c.type, c.bytes);
    EXPECT_EQ(GetRevisionSleeper(), c.ms);
    const Lines traced = c.isInvalid ? Lines{invalid, Current(c.ms)} : Lines{Current(c.ms)};
    EXPECT_EQ(host.traceLines, traced);
  }
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(RevisionSleeperTest, AnOverflowingProductGivesZeroAndAReport) {
  Sleeper(kUser, platform::kRegDword, Dword(2147483647u));
  EXPECT_EQ(GetRevisionSleeper(), 0);
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|Public Function GetRevisionSleeper()"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{6});
  EXPECT_TRUE(host.traceLines.empty());
}

TEST_F(RevisionSleeperTest, ZeroIsReadAgainAtEveryCallTheFirstGoodValueIsKept) {
  Sleeper(kMachine, platform::kRegSz, Sz("0"));
  EXPECT_EQ(GetRevisionSleeper(), 0);
  EXPECT_EQ(GetRevisionSleeper(), 0);
  Sleeper(kMachine, platform::kRegSz, Sz("5"));
  EXPECT_EQ(GetRevisionSleeper(), 5000) << "a cache below 1 is read again";
  Sleeper(kMachine, platform::kRegSz, Sz("9"));
  EXPECT_EQ(GetRevisionSleeper(), 5000);
  EXPECT_EQ(host.Count(Current(5000)), 2u);
}

TEST_F(RegistryTest, SetIniSettingWritesTheKey) {
  ScratchFolder folder;
  const std::string ini = folder / "__pdf.ini";
  SetIniSetting(ini, "Acrobat PDFWriter", "PDFFileName", "C:\\Out\\a.pdf");
  EXPECT_EQ(ReadIniString(ini, "Acrobat PDFWriter", "PDFFileName", ""), "C:\\Out\\a.pdf");
  SetIniSetting(folder / "nodir\\x.ini", "S", "K", "V");
  EXPECT_TRUE(host.errors.empty()) << "the profile function's answer is ignored";
}

TEST(TrimNull, KeepsTheTextBeforeTheFirstNul) {
  EXPECT_EQ(TrimNull(std::string("abc\0 ", 5)), "abc");
  EXPECT_EQ(TrimNull(std::string("\0x", 2)), "");
  EXPECT_EQ(TrimNull("no nul"), "");
  EXPECT_EQ(TrimNull(""), "");
}

}  // namespace
}  // namespace kestrivon::test
