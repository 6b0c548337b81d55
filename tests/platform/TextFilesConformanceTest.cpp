#include <gtest/gtest.h>

#include "platform/AnsiText.h"
#include "platform/FileSystem.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

TEST(TextFilesConformance, LinesAreWrittenWithCrLfAndReadBackUpToTheEnd) {
  ScratchFolder folder;
  const std::string path = folder / "lock.RLCK";
  WriteWholeFile(path, "old content that is replaced");
  WriteAnsiTextLines(path, {"11/5/2026 9:07:03 PM", "PC042", "jdoe"});
  EXPECT_EQ(ReadWholeFile(path), "11/5/2026 9:07:03 PM\r\nPC042\r\njdoe\r\n");
  EXPECT_EQ(ReadAnsiTextLines(path, 3),
            (std::vector<std::string>{"11/5/2026 9:07:03 PM", "PC042", "jdoe"}));
  EXPECT_EQ(ReadAnsiTextLines(path, 0), std::vector<std::string>{});

  struct Case {
    const char* bytes;
    size_t count;
    std::vector<std::string> lines;  // empty with error 62
  };
  const Case cases[] = {
      {"a\nb\r\nc", 3, {"a", "b", "c"}},  // a last line without its end counts
      {"a\r\n\r\nc\r\n", 3, {"a", "", "c"}},
      {"a\r\nb\r\n", 3, {}},
      {"", 1, {}},
  };
  for (const Case& c : cases) {
    WriteWholeFile(path, c.bytes);
    if (c.lines.empty()) {
      EXPECT_EQ(ErrorOf([&] { ReadAnsiTextLines(path, c.count); }), 62) << c.bytes;
    } else {
      EXPECT_EQ(ReadAnsiTextLines(path, c.count), c.lines) << c.bytes;
    }
  }
  EXPECT_EQ(ErrorOf([&] { ReadAnsiTextLines(folder / "absent.RLCK", 1); }), 53);
  EXPECT_EQ(ErrorOf([&] { ReadAnsiTextLines(folder / "absent\\x.RLCK", 1); }), 76);
  EXPECT_EQ(ErrorOf([&] { WriteAnsiTextLines(folder / "absent\\x.RLCK", {"x"}); }), 76);
  SetReadOnly(path, true);
  EXPECT_EQ(ErrorOf([&] { WriteAnsiTextLines(path, {"x"}); }), 70);
  SetReadOnly(path, false);
}

// Case as the code page has it: its letters fold, each at its length, and
// what it lacks stays.
TEST(TextFilesConformance, TheCodePagesLettersFoldToLowerCase) {
  EXPECT_EQ(LowerAnsiLetters("GRÖSSE Äb ÀÉÞ Š x€ 1-Z"), "grösse äb àéþ š x€ 1-z");
}

}  // namespace
}  // namespace kestrivon::test
