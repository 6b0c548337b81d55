#include <gtest/gtest.h>

#include <cstring>

#include "ServiceHost.h"
#include "platform/Registry.h"
#include "services/IniFiles.h"
#include "services/RegistrySettings.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

constexpr const char* kBase = "Software\\KestrivonServicesTest";
constexpr const char* kVemra = "Software\\HALDRIM\\VEMRA";

std::string Dword(uint32_t value) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &value, 4);
  return bytes;
}

View ProcessView() { return Is64BitProcess() ? View::k64 : View::k32; }

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override { Clean(); }
  void TearDown() override { Clean(); }
  static void Clean() {
    for (View view : {View::k32, View::k64}) {
      for (platform::HKey hive : {platform::kHKeyCurrentUser, platform::kHKeyLocalMachine}) {
        DeleteTestKey(view, hive, kBase);
        DeleteTestKey(view, hive, "Software\\HALDRIM");
      }
    }
  }
  static std::string Path(const std::string& sub) { return std::string(kBase) + "\\" + sub; }
  static void Put(platform::HKey hive, const std::string& path, const std::string& name,
                  uint32_t type, const std::string& bytes) {
    SetTestValue(ProcessView(), hive, path, name, type, bytes);
  }
  ServiceHost host;
};

std::string FallbackLine(const std::string& path) {
  return "VemraKestrivon::Globals.ExistKey: '" + path +
         "' not found trying other registry branch...";
}

TEST_F(RegistryTest, ExistKeyTriesTheSixtyFourBitViewSecond) {
  CreateTestKey(ProcessView(), platform::kHKeyLocalMachine, Path("Here"));
  EXPECT_TRUE(ExistKey(kHKeyLocalMachine, Path("Here")));
  EXPECT_TRUE(host.traceLines.empty());

  EXPECT_FALSE(ExistKey(kHKeyLocalMachine, Path("Nowhere")));
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{FallbackLine(Path("Nowhere"))}));
  host.traceLines.clear();

  CreateTestKey(View::k64, platform::kHKeyLocalMachine, Path("Only64"));
  EXPECT_TRUE(ExistKey(kHKeyLocalMachine, Path("Only64")));
  Variant value;
  if (Is64BitProcess()) {
    EXPECT_TRUE(host.traceLines.empty());
  } else {
    EXPECT_EQ(host.traceLines, (std::vector<std::string>{FallbackLine(Path("Only64"))}));
    EXPECT_FALSE(GetValue(kHKeyLocalMachine, Path("Only64"), "", value))
        << "GetValue has no second view";
    EXPECT_FALSE(SetValue(kHKeyLocalMachine, Path("Only64"), "V", Variant{int32_t{1}}));
  }
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(RegistryTest, GetValueGivesStringsUntrimmedAndNumbersAsLongs) {
  Put(platform::kHKeyCurrentUser, Path("V"), "Text", platform::kRegSz, std::string("abc\0", 4));
  Put(platform::kHKeyCurrentUser, Path("V"), "Blank", platform::kRegSz, std::string("\0", 1));
  Put(platform::kHKeyCurrentUser, Path("V"), "Number", platform::kRegDword, Dword(70000));
  Put(platform::kHKeyCurrentUser, Path("V"), "Negative", platform::kRegDword, Dword(0xFFFFFFFEu));
  Put(platform::kHKeyCurrentUser, Path("V"), "Byte", platform::kRegBinary, "\x2A");
  Variant value;
  ASSERT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Text", value));
  EXPECT_EQ(value, Variant{std::string("abc\0 ", 5)});
  ASSERT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Blank", value));
  EXPECT_EQ(value, Variant{std::string("\0 ", 2)});
  ASSERT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Number", value));
  EXPECT_EQ(value, Variant{int32_t{70000}});
  ASSERT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Negative", value));
  EXPECT_EQ(value, Variant{int32_t{-2}});
  ASSERT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Byte", value));
  EXPECT_EQ(value, Variant{int32_t{42}});
}

TEST_F(RegistryTest, GetValueAnswersTrueWithoutReadingLongBinaryAndOtherTypes) {
  Put(platform::kHKeyCurrentUser, Path("V"), "Bytes", platform::kRegBinary, "\x2A\x01");
  Put(platform::kHKeyCurrentUser, Path("V"), "Expand", platform::kRegExpandSz,
      std::string("%TEMP%\0", 7));
  Variant value{std::string("kept")};
  EXPECT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Bytes", value));
  EXPECT_EQ(value, Variant{std::string("kept")});
  EXPECT_TRUE(GetValue(kHKeyCurrentUser, Path("V"), "Expand", value));
  EXPECT_EQ(value, Variant{std::string("kept")});
  EXPECT_FALSE(GetValue(kHKeyCurrentUser, Path("V"), "Absent", value));
  EXPECT_FALSE(GetValue(kHKeyCurrentUser, Path("Absent"), "Bytes", value));
  EXPECT_EQ(value, Variant{std::string("kept")});
  EXPECT_TRUE(host.errors.empty());
  EXPECT_TRUE(host.traceLines.empty());
}

TEST_F(RegistryTest, SetValueWritesNumbersAndStringsIntoExistingKeysOnly) {
  CreateTestKey(ProcessView(), platform::kHKeyCurrentUser, Path("W"));
  EXPECT_TRUE(SetValue(kHKeyCurrentUser, Path("W"), "Long", Variant{int32_t{123456}}));
  EXPECT_TRUE(SetValue(kHKeyCurrentUser, Path("W"), "Integer", Variant{int16_t{-2}}));
  EXPECT_TRUE(SetValue(kHKeyCurrentUser, Path("W"), "Text", Variant{std::string("xyz")}));
  EXPECT_TRUE(SetValue(kHKeyCurrentUser, Path("W"), "Flag", Variant{true}));
  EXPECT_TRUE(SetValue(kHKeyCurrentUser, Path("W"), "When", Variant{VbDate{45000.5}}));

  platform::HKey key = 0;
  ASSERT_EQ(platform::RegOpenKeyExA(platform::kHKeyCurrentUser, Path("W"), 0, 0x19, &key), 0);
  auto raw = [key](const std::string& name, uint32_t* type) {
    char buffer[16] = {};
    uint32_t size = sizeof buffer;
    if (platform::RegQueryValueExA(key, name, type, buffer, &size) != 0) return std::string("-");
    return std::string(buffer, size);
  };
  uint32_t type = 0;
  EXPECT_EQ(raw("Long", &type), Dword(123456));
  EXPECT_EQ(type, platform::kRegDword);
  EXPECT_EQ(raw("Integer", &type), Dword(0xFFFFFFFEu));
  EXPECT_EQ(raw("Text", &type), std::string("xyz\0", 4));
  EXPECT_EQ(type, platform::kRegSz);
  EXPECT_EQ(raw("Flag", &type), "-");
  EXPECT_EQ(raw("When", &type), "-");
  platform::RegCloseKey(key);

  EXPECT_FALSE(SetValue(kHKeyCurrentUser, Path("Missing"), "Long", Variant{int32_t{1}}));
  EXPECT_EQ(platform::RegOpenKeyExA(platform::kHKeyCurrentUser, Path("Missing"), 0, 0x19, &key),
            platform::kErrorFileNotFound);
  EXPECT_TRUE(host.errors.empty());
}

class RevisionSleeperTest : public RegistryTest {
 protected:
  static void Machine(uint32_t type, const std::string& bytes) {
    Put(platform::kHKeyLocalMachine, kVemra, "RevisionSleeper", type, bytes);
  }
  static void User(uint32_t type, const std::string& bytes) {
    Put(platform::kHKeyCurrentUser, kVemra, "RevisionSleeper", type, bytes);
  }
  static std::string Sz(const std::string& text) { return text + '\0'; }
  [[nodiscard]] size_t InvalidLines() const {
    return host.Count(
        "VemraKestrivon::Globals::GetRevisionSleeper(): RevisionSleeper is invalid -> using "
        "default value (2)...");
  }
  static std::string CurrentLine(int32_t ms) {
    return "VemraKestrivon::Globals::GetRevisionSleeper(): Current RevisionSleeper: " +
           std::to_string(ms);
  }
};

TEST_F(RevisionSleeperTest, TwoSecondsWhenNothingIsConfigured) {
  EXPECT_EQ(GetRevisionSleeper(), 2000);
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{CurrentLine(2000)}));
}

TEST_F(RevisionSleeperTest, MachineStringsGiveSeconds) {
  Machine(platform::kRegSz, Sz("10"));
  EXPECT_EQ(GetRevisionSleeper(), 10000);
  EXPECT_EQ(InvalidLines(), 0u);
}

TEST_F(RevisionSleeperTest, ThreeOrMoreDigitsLoseTheirLastTwo) {
  Machine(platform::kRegSz, Sz("100"));
  EXPECT_EQ(GetRevisionSleeper(), 1000);
  ResetRevisionSleeperForReload();
  Machine(platform::kRegSz, Sz("12345"));
  EXPECT_EQ(GetRevisionSleeper(), 123000);
}

TEST_F(RevisionSleeperTest, ZeroIsStoredAndReadAgainAtEveryCall) {
  Machine(platform::kRegSz, Sz("0"));
  EXPECT_EQ(GetRevisionSleeper(), 0);
  EXPECT_EQ(GetRevisionSleeper(), 0);
  Machine(platform::kRegSz, Sz("7"));
  EXPECT_EQ(GetRevisionSleeper(), 7000) << "a cache below 1 is read again";
}

TEST_F(RevisionSleeperTest, TheFirstGoodValueIsKeptForTheProcess) {
  Machine(platform::kRegSz, Sz("5"));
  EXPECT_EQ(GetRevisionSleeper(), 5000);
  Machine(platform::kRegSz, Sz("9"));
  EXPECT_EQ(GetRevisionSleeper(), 5000);
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{CurrentLine(5000), CurrentLine(5000)}));
}

TEST_F(RevisionSleeperTest, AMachineNumberHasNoNulAndCountsAsInvalid) {
  Machine(platform::kRegDword, Dword(5));
  EXPECT_EQ(GetRevisionSleeper(), 2000);
  EXPECT_EQ(InvalidLines(), 1u);
}

TEST_F(RevisionSleeperTest, UserNumbersAreUsedAsTheyAre) {
  User(platform::kRegDword, Dword(7));
  EXPECT_EQ(GetRevisionSleeper(), 7000);
  ResetRevisionSleeperForReload();
  User(platform::kRegDword, Dword(100));
  EXPECT_EQ(GetRevisionSleeper(), 1000) << "the length rule cuts numbers too";
  ResetRevisionSleeperForReload();
  User(platform::kRegDword, Dword(static_cast<uint32_t>(-5)));
  EXPECT_EQ(GetRevisionSleeper(), -5000) << "the range test lets every number through";
  EXPECT_EQ(InvalidLines(), 0u);
}

TEST_F(RevisionSleeperTest, UserStringsKeepTheirNulAndCountAsInvalid) {
  User(platform::kRegSz, Sz("5"));
  EXPECT_EQ(GetRevisionSleeper(), 2000);
  EXPECT_EQ(InvalidLines(), 1u);
}

TEST_F(RevisionSleeperTest, TextIsInvalid) {
  Machine(platform::kRegSz, Sz("abc"));
  EXPECT_EQ(GetRevisionSleeper(), 2000);
  EXPECT_EQ(InvalidLines(), 1u);
}

TEST_F(RevisionSleeperTest, AnOverflowingProductGivesZeroAndAReport) {
  User(platform::kRegDword, Dword(2147483647u));
  EXPECT_EQ(GetRevisionSleeper(), 0);
  ASSERT_EQ(host.errors.size(), 1u);
  EXPECT_EQ(host.errors[0].procedureLabel, "Public Function GetRevisionSleeper()");
  EXPECT_EQ(host.errors[0].error.number, 6);
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
