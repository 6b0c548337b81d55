#include <gtest/gtest.h>

#include <regex>

#include "RecordingHost.h"
#include "platform/FileSystem.h"
#include "platform/TempFiles.h"
#include "services/IniFiles.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

constexpr const char* kPrefix = "VemraKestrivon::Globals::FillDictionaryFromIniFileSection(): ";

using Entries = std::vector<std::pair<std::string, std::string>>;

class IniTest : public ::testing::Test {
 protected:
  RecordingHost host;
  ScratchFolder folder;
  std::string ini = folder / "HARP.ini";
};

TEST_F(IniTest, ReadIniStringGivesTheValueOrTheDefault) {
  WriteWholeFile(ini, "[Printer]\r\nName = HARP PS \r\nLong=" + std::string(1500, 'x') + "\r\n");
  EXPECT_EQ(ReadIniString(ini, "Printer", "Name", "dflt"), "HARP PS");
  EXPECT_EQ(ReadIniString(ini, "Printer", "Missing", "dflt"), "dflt");
  EXPECT_EQ(ReadIniString(folder / "absent.ini", "Printer", "Name", "dflt"), "dflt");
  EXPECT_EQ(ReadIniString(ini, "Printer", "Long", ""), std::string(1023, 'x'));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(IniTest, SectionLinesBecomeEntriesAsTheyStand) {
  WriteWholeFile(ini,
                 "[Archives]\r\nPDF=pdfwrite\r\nKey=a=b\r\nEmpty=\r\nLonely\r\n# c=1\r\n;x=y\r\n"
                 "  Spaced  =  v  \r\n[Other]\r\nPDF=no\r\n");
  StringDictionary dictionary;
  dictionary.Add("old", "entry");
  ASSERT_TRUE(FillDictionaryFromIniFileSection(&dictionary, ini, "archives"));
  // The profile function trims and leaves ';' comments out; what it gives is
  // stored unchanged, a value cut at its first '='.
  EXPECT_EQ(
      dictionary.Entries(),
      (Entries{{"PDF", "pdfwrite"}, {"Key", "a"}, {"Empty", ""}, {"# c", "1"}, {"Spaced", "v"}}));
  EXPECT_TRUE(host.traceLines.empty());
}

TEST_F(IniTest, NoDictionaryNoSectionNoFile) {
  WriteWholeFile(ini, "[Empty]\r\n[Full]\r\nA=1\r\n");
  EXPECT_FALSE(FillDictionaryFromIniFileSection(nullptr, ini, "Full"));
  StringDictionary dictionary;
  dictionary.Add("kept", "1");
  EXPECT_FALSE(FillDictionaryFromIniFileSection(&dictionary, ini, "Missing"));
  EXPECT_FALSE(FillDictionaryFromIniFileSection(&dictionary, ini, "Empty"));
  EXPECT_FALSE(FillDictionaryFromIniFileSection(&dictionary, folder / "absent.ini", "Full"));
  EXPECT_EQ(dictionary.Entries(), (Entries{{"kept", "1"}}));
  const std::string noBytes = std::string(kPrefix) + "No bytes were written to 'sRet'.";
  EXPECT_EQ(host.traceLines,
            (std::vector<std::string>{std::string(kPrefix) + "Parameter 'oDict' is nothing.",
                                      noBytes, noBytes, noBytes}));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(IniTest, ADuplicateKeyIsReportedAndLeavesTheEntriesBeforeIt) {
  WriteWholeFile(ini, "[S]\r\nA=1\r\nB=2\r\nA=3\r\nC=4\r\n");
  StringDictionary dictionary;
  EXPECT_FALSE(FillDictionaryFromIniFileSection(&dictionary, ini, "S"));
  EXPECT_EQ(dictionary.Entries(), (Entries{{"A", "1"}, {"B", "2"}}));
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{457});
}

// A section whose listing (each line with its NUL, then the final NUL)
// takes `total` characters.
std::string SectionOf(size_t total) { return "[S]\r\nK=" + std::string(total - 4, 'v') + "\r\n"; }

TEST_F(IniTest, ASectionThatFillsTheBufferIsTakenForTooLarge) {
  const std::string tooLarge = std::string(kPrefix) + "Size of section exceeds 32k bytes.";
  for (size_t total : {size_t{32766}, size_t{32767}, size_t{40000}}) {
    WriteWholeFile(ini, SectionOf(total));
    StringDictionary dictionary;
    dictionary.Add("kept", "1");
    EXPECT_FALSE(FillDictionaryFromIniFileSection(&dictionary, ini, "S")) << total;
    EXPECT_EQ(dictionary.Count(), 1u) << total;
    EXPECT_EQ(host.traceLines, std::vector<std::string>{tooLarge}) << total;
    host.traceLines.clear();
  }
  WriteWholeFile(ini, SectionOf(32765));
  StringDictionary dictionary;
  EXPECT_TRUE(FillDictionaryFromIniFileSection(&dictionary, ini, "S"));
  EXPECT_EQ(dictionary.Item("K").size(), 32761u);
}

TEST_F(IniTest, TempFileNamesAreNewNamesInTheTempFolder) {
  const std::string temp = TempFolder();
  ASSERT_FALSE(temp.empty());
  EXPECT_NE(temp.back(), '\\');
  char path[platform::kMaxPath] = {};
  platform::GetTempPathA(platform::kMaxPath, path);
  EXPECT_EQ(temp + "\\", path);

  const std::string escaped =
      std::regex_replace(temp, std::regex(R"([\\.^$|()\[\]{}*+?])"), R"(\$&)");
  const std::string plain = TempFileName("");
  const std::string ps = TempFileName("PS");
  const std::string other = TempFileName("PS");
  EXPECT_TRUE(std::regex_match(plain, std::regex(escaped + R"(\\R2P[0-9a-fA-F]+\.tmp)"))) << plain;
  EXPECT_TRUE(std::regex_match(ps, std::regex(escaped + R"(\\R2P[0-9a-fA-F]+\.PS)"))) << ps;
  EXPECT_NE(ps, other);
  for (const auto& name : {plain, ps, other}) EXPECT_FALSE(PathExists(name)) << name;
  const std::string tmpOfPs = ps.substr(0, ps.size() - 2) + "tmp";
  EXPECT_FALSE(PathExists(tmpOfPs)) << "the file that made the name unique is gone";
  EXPECT_TRUE(host.errors.empty());
}

class OutputFolderTest : public IniTest {
 protected:
  static std::string Line(const std::string& text) {
    return "VemraKestrivon::Globals::CheckCreateOutputFolder(): " + text;
  }
};

TEST_F(OutputFolderTest, CreatesEveryMissingLevelOfTheFolder) {
  const std::string base = folder.Path();
  // A dot after the last backslash marks a file name, whose folder is meant.
  for (const auto& [path, made] : {std::pair{"\\out\\a\\b\\file.pdf", "\\out\\a\\b"},
                                   {"\\out\\rev1.2", "\\out"},
                                   {"\\out.d\\file", "\\out.d\\file"}}) {
    EXPECT_TRUE(CheckCreateOutputFolder(base + path)) << path;
    EXPECT_TRUE(platform::FolderExists(base + made)) << path;
  }
  EXPECT_FALSE(PathExists(base + "\\out\\a\\b\\file.pdf"));
  EXPECT_FALSE(PathExists(base + "\\out\\rev1.2"));
  EXPECT_EQ(host.traceLines.back(), Line("was successfull: 'True'"));
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(OutputFolderTest, ATrailingBackslashIsDoubled) {
  const std::string base = folder.Path();
  EXPECT_TRUE(CheckCreateOutputFolder(base + "\\x\\"));
  EXPECT_TRUE(platform::FolderExists(base + "\\x"));
  ASSERT_FALSE(host.traceLines.empty());
  EXPECT_EQ(host.traceLines.front(), Line("checking whether '" + base + "\\x\\\\' exists..."));
  EXPECT_EQ(host.Count(Line("checking '" + base + "\\x\\'")), 1u);
}

TEST_F(OutputFolderTest, AFolderThatCannotBeMadeIsReported) {
  WriteWholeFile(folder / "blocker", "a file, not a folder");
  EXPECT_FALSE(CheckCreateOutputFolder(folder / "blocker\\sub\\f.pdf"));
  host.traceLines.clear();
  EXPECT_FALSE(CheckCreateOutputFolder("file.pdf")) << "a file name without a folder";
  EXPECT_TRUE(host.traceLines.empty());
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{58, 5}));
}

TEST_F(OutputFolderTest, ADeepPathStopsAtOnceAtTheLengthLimit) {
  std::string deep = folder.Path();
  for (int level = 0; level < 2000; ++level) deep += "\\d";
  EXPECT_FALSE(CheckCreateOutputFolder(deep + "\\f.pdf"));
  EXPECT_TRUE(platform::FolderExists(deep.substr(0, deep.rfind('\\', 260))));
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{76}));
}

}  // namespace
}  // namespace kestrivon::test
