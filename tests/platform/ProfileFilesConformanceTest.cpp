#include <gtest/gtest.h>

#include <cstring>

#include "platform/ProfileFiles.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

constexpr const char* kSample =
    "  [ Sec ]  \r\n"
    "Key=value\r\n"
    "  Spaced  =  some value  \r\n"
    ";x=y\r\n"
    "# hash=1\r\n"
    "Multi=a=b\r\n"
    "Empty=\r\n"
    "Lonely\r\n"
    "Quoted=\"q v\"\r\n"
    "SQ='s'\r\n"
    "Half=\"h\r\n"
    "key=dup\r\n"
    "\r\n"
    "[Other]\r\n"
    "A=1\r\n"
    "[sec]\r\n"
    "Second=2\r\n";

// Buffer contents with the bytes past the answer shown too: '#' for a byte
// the call left alone.
std::string Shown(const char* buffer, size_t count) {
  std::string shown;
  for (size_t i = 0; i < count; ++i) {
    if (buffer[i] == '\0') {
      shown += "\\0";
    } else if (buffer[i] == '\x01') {
      shown += '#';
    } else {
      shown += buffer[i];
    }
  }
  return shown;
}

class ProfileConformance : public ::testing::Test {
 protected:
  ScratchFolder folder;
  std::string file = folder / "sample.ini";
  void SetUp() override { WriteWholeFile(file, kSample); }

  std::string Read(const std::string& section, const std::string& key, const std::string& def,
                   uint32_t size, uint32_t* count) {
    char buffer[64];
    std::memset(buffer, 1, sizeof buffer);
    *count = GetPrivateProfileStringA(section, key, def, buffer, size, file);
    return Shown(buffer, *count + 2);
  }
};

TEST_F(ProfileConformance, ValuesAreTrimmedMatchedWithoutCaseAndUnquoted) {
  struct Case {
    const char* key;
    const char* shown;
    uint32_t count;
  };
  for (const Case& c :
       {Case{"Key", "value\\0#", 5}, Case{"KEY", "value\\0#", 5},
        Case{"Spaced", "some value\\0#", 10}, Case{" spaced ", "some value\\0#", 10},
        Case{";x", "y\\0#", 1}, Case{"# hash", "1\\0#", 1}, Case{"Multi", "a=b\\0#", 3},
        Case{"Empty", "\\0#", 0}, Case{"Lonely", "def\\0#", 3}, Case{"Quoted", "q v\\0#", 3},
        Case{"SQ", "s\\0#", 1}, Case{"Half", "\"h\\0#", 2}, Case{"Second", "def\\0#", 3},
        Case{"Missing", "def\\0#", 3}}) {
    uint32_t count = 0;
    EXPECT_EQ(Read("sec", c.key, "def  ", 20, &count), c.shown) << c.key;
    EXPECT_EQ(count, c.count) << c.key;
  }
}

TEST_F(ProfileConformance, LongValuesAndDefaultsAreCutToTheBuffer) {
  uint32_t count = 0;
  EXPECT_EQ(Read("Sec", "Spaced", "", 5, &count), "some\\0#");
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(Read("Sec", "Key", "", 1, &count), "\\0#");
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(Read("Sec", "Missing", "a long default", 5, &count), "a lo\\0#");
  EXPECT_EQ(count, 4u);
}

TEST_F(ProfileConformance, AMissingFileOrADeviceGivesTheDefault) {
  // Z: is the host's root under Wine: a device reads as empty there.
  for (const std::string& name : {folder / "absent.ini", std::string("Z:\\dev\\zero")}) {
    char buffer[16];
    std::memset(buffer, 1, sizeof buffer);
    EXPECT_EQ(GetPrivateProfileStringA("Sec", "Key", "d", buffer, 16, name), 1u);
    EXPECT_EQ(Shown(buffer, 3), "d\\0#") << name;
  }
}

TEST_F(ProfileConformance, SectionListsItsLinesButNotComments) {
  char buffer[200];
  std::memset(buffer, 1, sizeof buffer);
  const uint32_t count = GetPrivateProfileSectionA("Sec", buffer, 200, file);
  EXPECT_EQ(count, 97u);
  EXPECT_EQ(Shown(buffer, count + 2),
            "Key=value\\0Spaced=some value\\0# hash=1\\0Multi=a=b\\0Empty=\\0Lonely\\0"
            "Quoted=\"q v\"\\0SQ='s'\\0Half=\"h\\0key=dup\\0\\0#");
}

TEST_F(ProfileConformance, ALoneCarriageReturnEndsALine) {
  WriteWholeFile(file, "[S]\rA=1\nB=2\r\rC=3\r[T]\rD=4");
  char buffer[32];
  std::memset(buffer, 1, sizeof buffer);
  EXPECT_EQ(GetPrivateProfileSectionA("S", buffer, 32, file), 12u);
  EXPECT_EQ(Shown(buffer, 14), "A=1\\0B=2\\0C=3\\0\\0#");
}

TEST_F(ProfileConformance, MissingSectionOrFileGivesTwoNuls) {
  for (const auto& [section, name] : {std::pair{"None", file}, {"Sec", folder / "absent.ini"}}) {
    char buffer[50];
    std::memset(buffer, 1, sizeof buffer);
    EXPECT_EQ(GetPrivateProfileSectionA(section, buffer, 50, name), 0u) << section;
    EXPECT_EQ(Shown(buffer, 3), "\\0\\0#") << section;
  }
}

TEST_F(ProfileConformance, ASectionThatFillsTheBufferAnswersSizeLessTwo) {
  const std::string small = folder / "small.ini";
  WriteWholeFile(small, "[S]\r\nab=cd\r\nef=gh\r\n");
  // Cut to the buffer less two bytes, always ending in two NULs.
  const std::string whole = "ab=cd\\0ef=gh\\0\\0";
  for (uint32_t size = 2; size <= 15; ++size) {
    char buffer[32];
    std::memset(buffer, 1, sizeof buffer);
    const uint32_t count = GetPrivateProfileSectionA("S", buffer, size, small);
    EXPECT_EQ(count, size <= 13 ? size - 2 : 12u) << "size " << size;
    const std::string expected = size <= 13 ? Shown("ab=cd\0ef=gh", size - 2) + "\\0\\0#"
                                            : whole + std::string(size - 12, '#');
    EXPECT_EQ(Shown(buffer, size + 1), expected) << "size " << size;
  }
}

TEST_F(ProfileConformance, ABareFileNameLivesInTheWindowsDirectory) {
  const std::string bare = "kestrivon-conformance.ini";
  const std::string full = WindowsDirectory() + "\\" + bare;
  WriteWholeFile(full, "[S]\r\nK=found\r\n");
  char buffer[16] = {};
  EXPECT_EQ(GetPrivateProfileStringA("S", "K", "", buffer, 16, bare), 5u);
  EXPECT_STREQ(buffer, "found");
  EXPECT_TRUE(WritePrivateProfileStringA("S", "K", "again", bare));
  EXPECT_EQ(ReadWholeFile(full), "[S]\r\nK=again\r\n");
  RemoveFile(full);
}

TEST_F(ProfileConformance, WritingCreatesAddsAndReplaces) {
  const std::string target = folder / "w.ini";
  EXPECT_TRUE(WritePrivateProfileStringA("New Section", "K", "v", target));
  EXPECT_TRUE(WritePrivateProfileStringA("New Section", "K2", "x", target));
  EXPECT_TRUE(WritePrivateProfileStringA("Sec2", "K", "y", target));
  EXPECT_TRUE(WritePrivateProfileStringA("new section", "k", "replaced", target));
  EXPECT_EQ(ReadWholeFile(target), "[New Section]\r\nK=replaced\r\nK2=x\r\n[Sec2]\r\nK=y\r\n");
  EXPECT_FALSE(WritePrivateProfileStringA("S", "K", "v", folder / "nodir\\w.ini"));
  EXPECT_FALSE(PathExists(folder / "nodir"));
}

TEST_F(ProfileConformance, WritingRewritesTheFileInKeyValueForm) {
  const std::string target = folder / "e.ini";
  WriteWholeFile(
      target,
      "; top comment\r\n[A]\r\n  k1 = 1  ; trailing\r\n\r\n; mid\r\nk2=2\r\n[B]\r\nz=9\r\n");
  EXPECT_TRUE(WritePrivateProfileStringA("A", "k2", "22", target));
  EXPECT_TRUE(WritePrivateProfileStringA("A", "k3", "3", target));
  EXPECT_EQ(ReadWholeFile(target),
            "; top comment\r\n[A]\r\nk1=1  ; trailing\r\n; mid\r\nk2=22\r\nk3=3\r\n[B]\r\nz=9\r\n");
  char buffer[32] = {};
  EXPECT_EQ(GetPrivateProfileStringA("A", "k1", "", buffer, 32, target), 13u);
  EXPECT_STREQ(buffer, "1  ; trailing");
}

}  // namespace
}  // namespace kestrivon::test
