#include <gtest/gtest.h>

#include <cstring>

#include "platform/Registry.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

constexpr const char* kBase = "Software\\KestrivonConformance";
constexpr uint32_t kRead = 0x19;
constexpr uint32_t kWrite = 0x3F;

std::string Sz(const std::string& text) { return text + '\0'; }

std::string Dword(uint32_t value) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &value, 4);
  return bytes;
}

class RegistryConformance : public ::testing::Test {
 protected:
  void SetUp() override { Clean(); }
  void TearDown() override { Clean(); }
  static void Clean() {
    for (View view : {View::k32, View::k64}) {
      DeleteTestKey(view, kHKeyCurrentUser, kBase);
      DeleteTestKey(view, kHKeyLocalMachine, kBase);
    }
  }
  static std::string Path(const std::string& sub) { return std::string(kBase) + "\\" + sub; }
  static View ProcessView() { return Is64BitProcess() ? View::k64 : View::k32; }

  // Opens, runs the check and closes again.
  static int32_t OpenResult(HKey hive, const std::string& path, uint32_t access) {
    HKey key = 12345;
    const int32_t result = RegOpenKeyExA(hive, path, 0, access, &key);
    if (result == kErrorSuccess) {
      EXPECT_NE(key, 0);
      EXPECT_EQ(RegCloseKey(key), kErrorSuccess);
    } else {
      EXPECT_EQ(key, 0) << "a failed open leaves no handle";
    }
    return result;
  }
};

TEST_F(RegistryConformance, OpensExistingKeysAndNeverCreatesMissingOnes) {
  CreateTestKey(ProcessView(), kHKeyCurrentUser, Path("Present"));
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Present"), kRead), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("PRESENT"), kRead), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Missing"), kRead), kErrorFileNotFound);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Missing"), kWrite), kErrorFileNotFound);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Missing"), kRead), kErrorFileNotFound);
}

TEST_F(RegistryConformance, KeyPathSyntax) {
  CreateTestKey(ProcessView(), kHKeyCurrentUser, Path("A\\B"));
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("A\\B\\"), kRead), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, std::string(kBase) + "\\A\\\\B", kRead), kErrorSuccess);
  const std::string leading = std::string("\\").append(Path("A"));
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, leading, kRead), 161);

  HKey parent = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("A"), 0, kRead, &parent), kErrorSuccess);
  EXPECT_EQ(OpenResult(parent, "B", kRead), kErrorSuccess);
  EXPECT_EQ(OpenResult(parent, "", kRead), kErrorSuccess);
  EXPECT_EQ(RegCloseKey(parent), kErrorSuccess);
}

TEST_F(RegistryConformance, ClosingAnswersByHandle) {
  EXPECT_EQ(RegCloseKey(0), kErrorInvalidHandle);
  EXPECT_EQ(RegCloseKey(kHKeyCurrentUser), kErrorSuccess);
  CreateTestKey(ProcessView(), kHKeyCurrentUser, Path("Close"));
  HKey key = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("Close"), 0, kRead, &key), kErrorSuccess);
  EXPECT_EQ(RegCloseKey(key), kErrorSuccess);
}

TEST_F(RegistryConformance, QueryGivesTypeAndSizeWithoutABuffer) {
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Text", kRegSz, Sz("abc"));
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Number", kRegDword, Dword(70000));
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Bytes", kRegBinary,
               std::string("\x07\x08\x09", 3));
  HKey key = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("Q"), 0, kRead, &key), kErrorSuccess);
  struct Expected {
    const char* name;
    uint32_t type;
    uint32_t size;
  };
  for (const Expected& e : {Expected{"Text", kRegSz, 4}, Expected{"Number", kRegDword, 4},
                            Expected{"Bytes", kRegBinary, 3}, Expected{"TEXT", kRegSz, 4}}) {
    uint32_t type = 0;
    uint32_t size = 0;
    EXPECT_EQ(RegQueryValueExA(key, e.name, &type, nullptr, &size), kErrorSuccess) << e.name;
    EXPECT_EQ(type, e.type) << e.name;
    EXPECT_EQ(size, e.size) << e.name;
  }
  uint32_t type = 0;
  uint32_t size = 0;
  EXPECT_EQ(RegQueryValueExA(key, "Absent", &type, nullptr, &size), kErrorFileNotFound);
  RegCloseKey(key);
}

TEST_F(RegistryConformance, StringIntoABufferOneLargerKeepsTheSpareByte) {
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Text", kRegSz, Sz("abc"));
  HKey key = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("Q"), 0, kRead, &key), kErrorSuccess);
  uint32_t size = 0;
  ASSERT_EQ(RegQueryValueExA(key, "Text", nullptr, nullptr, &size), kErrorSuccess);
  std::string buffer(size + 1, ' ');
  EXPECT_EQ(RegQueryValueExA(key, "Text", nullptr, buffer.data(), &size), kErrorSuccess);
  EXPECT_EQ(buffer, std::string("abc\0 ", 5));
  EXPECT_EQ(size, 4u);
  RegCloseKey(key);
}

TEST_F(RegistryConformance, NumbersAndBytesIntoSmallBuffers) {
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Number", kRegDword, Dword(70000));
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "One", kRegBinary, "\x2A");
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Three", kRegBinary,
               std::string("\x07\x08\x09", 3));
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Text", kRegSz, Sz("abc"));
  HKey key = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("Q"), 0, kRead, &key), kErrorSuccess);

  int32_t number = 0;
  uint32_t size = 4;
  EXPECT_EQ(RegQueryValueExA(key, "Number", nullptr, &number, &size), kErrorSuccess);
  EXPECT_EQ(number, 70000);

  number = 0;
  size = 1;
  EXPECT_EQ(RegQueryValueExA(key, "One", nullptr, &number, &size), kErrorSuccess);
  EXPECT_EQ(number, 42);
  EXPECT_EQ(size, 1u);

  size = 1;
  EXPECT_EQ(RegQueryValueExA(key, "Three", nullptr, &number, &size), kErrorMoreData);
  EXPECT_EQ(size, 3u);

  char small[2];
  size = 2;
  EXPECT_EQ(RegQueryValueExA(key, "Text", nullptr, small, &size), kErrorMoreData);
  EXPECT_EQ(size, 4u);
  RegCloseKey(key);
}

TEST_F(RegistryConformance, WritingNeedsTheWriteRights) {
  CreateTestKey(ProcessView(), kHKeyCurrentUser, Path("W"));
  HKey key = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("W"), 0, kRead, &key), kErrorSuccess);
  const std::string text = Sz("value");
  EXPECT_EQ(RegSetValueExA(key, "Name", kRegSz, text.data(), 6), kErrorAccessDenied);
  RegCloseKey(key);

  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("W"), 0, kWrite, &key), kErrorSuccess);
  EXPECT_EQ(RegSetValueExA(key, "Name", kRegSz, text.data(), 6), kErrorSuccess);
  const int32_t number = -7;
  EXPECT_EQ(RegSetValueExA(key, "Number", kRegDword, &number, 4), kErrorSuccess);
  char buffer[16] = {};
  uint32_t size = sizeof buffer;
  uint32_t type = 0;
  EXPECT_EQ(RegQueryValueExA(key, "Name", &type, buffer, &size), kErrorSuccess);
  EXPECT_EQ(type, kRegSz);
  EXPECT_EQ(std::string(buffer, size), text);
  int32_t readBack = 0;
  size = 4;
  EXPECT_EQ(RegQueryValueExA(key, "Number", &type, &readBack, &size), kErrorSuccess);
  EXPECT_EQ(type, kRegDword);
  EXPECT_EQ(readBack, -7);
  RegCloseKey(key);
}

TEST_F(RegistryConformance, MachineSoftwareHasTwoViews) {
  CreateTestKey(View::k64, kHKeyLocalMachine, Path("Only64"));
  CreateTestKey(View::k32, kHKeyLocalMachine, Path("Only32"));
  const bool is64 = Is64BitProcess();
  EXPECT_EQ(OpenResult(kHKeyLocalMachine, Path("Only64"), kRead) == kErrorSuccess, is64);
  EXPECT_EQ(OpenResult(kHKeyLocalMachine, Path("Only64"), 0x119), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyLocalMachine, Path("Only64"), 0x219), kErrorFileNotFound);
  EXPECT_EQ(OpenResult(kHKeyLocalMachine, Path("Only32"), kRead) == kErrorSuccess, !is64);
  EXPECT_EQ(OpenResult(kHKeyLocalMachine, Path("Only32"), 0x219), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyLocalMachine, Path("Only32"), 0x119), kErrorFileNotFound);
}

TEST_F(RegistryConformance, UserSoftwareIsSharedByBothViews) {
  CreateTestKey(View::k64, kHKeyCurrentUser, Path("Shared"));
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Shared"), kRead), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Shared"), 0x119), kErrorSuccess);
  EXPECT_EQ(OpenResult(kHKeyCurrentUser, Path("Shared"), 0x219), kErrorSuccess);
}

}  // namespace
}  // namespace kestrivon::test
