#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

constexpr const char* kBase = "Software\\KestrivonConformance";
constexpr uint32_t kRead = 0x19;
constexpr uint32_t kWrite = 0x3F;

class RegistryConformance : public ::testing::Test {
 protected:
  ScratchKeys keys{{kBase}};
  static std::string Path(const std::string& sub) { return std::string(kBase) + "\\" + sub; }

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

TEST_F(RegistryConformance, CallsAnswerByHandle) {
  constexpr HKey kNone = 0x7FF0;
  HKey key = 0;
  uint32_t size = 0;
  EXPECT_EQ(RegCloseKey(0), kErrorInvalidHandle);
  EXPECT_EQ(RegCloseKey(kHKeyCurrentUser), kErrorSuccess);
  EXPECT_EQ(RegOpenKeyExA(kNone, "", 0, kRead, &key), kErrorInvalidHandle);
  EXPECT_EQ(RegQueryValueExA(kNone, "V", nullptr, nullptr, &size), kErrorInvalidHandle);
  EXPECT_EQ(RegSetValueExA(kNone, "V", kRegSz, "x", 2), kErrorInvalidHandle);
  // A hive's own values are read without opening it.
  EXPECT_EQ(RegQueryValueExA(kHKeyCurrentUser, "KestrivonNoSuchValue", nullptr, nullptr, &size),
            kErrorFileNotFound);
}

TEST_F(RegistryConformance, QueryAnswersTypeSizeAndData) {
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Text", kRegSz, Sz("abc"));
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Number", kRegDword, Dword(70000));
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "One", kRegBinary, "\x2A");
  SetTestValue(ProcessView(), kHKeyCurrentUser, Path("Q"), "Three", kRegBinary, "\x07\x08\x09");
  HKey key = 0;
  ASSERT_EQ(RegOpenKeyExA(kHKeyCurrentUser, Path("Q"), 0, kRead, &key), kErrorSuccess);
  struct Case {
    const char* name;
    uint32_t given;  // the size passed in; 0: no buffer, type and size only
    int32_t status;
    uint32_t type;
    uint32_t size;
    const char* data;  // the 6-byte buffer of blanks afterwards
  };
  for (const Case& c : {
           Case{"Text", 0, kErrorSuccess, kRegSz, 4, "      "},
           Case{"TEXT", 0, kErrorSuccess, kRegSz, 4, "      "},
           Case{"Number", 0, kErrorSuccess, kRegDword, 4, "      "},
           Case{"Three", 0, kErrorSuccess, kRegBinary, 3, "      "},
           Case{"Absent", 0, kErrorFileNotFound, 0, 0, nullptr},
           // A string's size counts its NUL; the byte past it is left alone.
           Case{"Text", 4, kErrorSuccess, kRegSz, 4, "abc\0  "},
           Case{"Number", 4, kErrorSuccess, kRegDword, 4, "\x70\x11\x01\0  "},
           Case{"One", 1, kErrorSuccess, kRegBinary, 1, "\x2A     "},
           Case{"Three", 1, kErrorMoreData, kRegBinary, 3, nullptr},
           Case{"Text", 2, kErrorMoreData, kRegSz, 4, nullptr},
       }) {
    SCOPED_TRACE(std::string(c.name) + " into " + std::to_string(c.given));
    uint32_t type = 0;
    uint32_t size = c.given;
    std::string buffer(6, ' ');
    EXPECT_EQ(RegQueryValueExA(key, c.name, &type, c.given ? buffer.data() : nullptr, &size),
              c.status);
    if (c.status == kErrorFileNotFound) continue;
    EXPECT_EQ(type, c.type);
    EXPECT_EQ(size, c.size);
    if (c.data != nullptr) {
      EXPECT_EQ(buffer, std::string(c.data, 6));
    }
  }
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
  char buffer[16] = {};
  uint32_t size = sizeof buffer;
  uint32_t type = 0;
  EXPECT_EQ(RegQueryValueExA(key, "Name", &type, buffer, &size), kErrorSuccess);
  EXPECT_EQ(type, kRegSz);
  EXPECT_EQ(std::string(buffer, size), text);
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
