#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <map>
#include <random>
#include <set>
#include <sstream>

#include "TestSupport.h"
#include "core/TraceLog.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::hostkit::test {
namespace {

using Fields = std::vector<std::string>;

TEST(EscapeField, KeepsPathsReadableAndLineBreaksOut) {
  const std::pair<std::string, std::string> cases[] = {
      {R"(C:\Revisions\A-100.PDF)", R"(C:\Revisions\A-100.PDF)"},
      {"line one\r\nline two", R"(line one\r\nline two)"},
      {"a\tb", R"(a\tb)"},
      {R"(C:\new\xfer\temp)", R"(C:\\new\\xfer\\temp)"},
      {R"(\\server\share)", R"(\\\server\share)"},
      {"ends with \\", "ends with \\"},
      {std::string("bell\x07", 5), R"(bell\x07)"},
      {"", ""},
  };
  for (const auto& [text, escaped] : cases) {
    EXPECT_EQ(EscapeField(text), escaped) << text;
    EXPECT_EQ(UnescapeField(escaped), text) << escaped;
  }
}

TEST(EscapeField, EveryTextComesBackUnchanged) {
  std::mt19937 random(4711);
  const std::string alphabet = "\\rntx0aF \r\n\t\x01\x7F~:";
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    const int length = static_cast<int>(random() % 12);
    for (int i = 0; i < length; ++i) text += alphabet[random() % alphabet.size()];
    const std::string escaped = EscapeField(text);
    EXPECT_EQ(escaped.find_first_of("\r\n\t"), std::string::npos) << escaped;
    EXPECT_EQ(UnescapeField(escaped), text) << escaped;
  }
}

TEST(TraceLog, WritesOneStampedLinePerEntry) {
  TempDir dir;
  const auto path = dir / "logs" / "trace.log";  // the folder does not exist yet
  TraceLog log(path);
  log.Append("TRACE", {"first\r\nsecond"});
  log.Append("ERROR", {"91", "Object variable not set", "src", "Class", " Function X"});
  TraceLog(path).Append("TRACE", {"after reopening"});

  EXPECT_EQ(Entries(path),
            (std::vector<Fields>{
                {"TRACE", "first\r\nsecond"},
                {"ERROR", "91", "Object variable not set", "src", "Class", " Function X"},
                {"TRACE", "after reopening"},
            }));
#ifndef _WIN32
  // The log is kept open: one removed meanwhile is made again. (Wine removes
  // a file only when its last handle closes; see docs/hostkit.md.)
  std::filesystem::remove(path);
  log.Append("TRACE", {"removed meanwhile"});
  EXPECT_EQ(Entries(path), (std::vector<Fields>{{"TRACE", "removed meanwhile"}}));
#endif
}

// At its cap the log becomes <log>.1 and a new one begins: the newest
// entries are kept whole and in order, at most two generations on disk.
TEST(TraceLog, RotatesAtItsCapKeepingTheNewestEntries) {
  TempDir dir;
  const auto path = dir / "trace.log";
  constexpr uint64_t kCap = 1000;
  TraceLog log(path, kCap);
  for (int i = 0; i < 100; ++i) log.Append("TRACE", {std::to_string(i)});
  const auto older = dir / "trace.log.1";
  ASSERT_TRUE(std::filesystem::exists(older));
  EXPECT_LE(std::filesystem::file_size(path), kCap);
  EXPECT_LE(std::filesystem::file_size(older), kCap);
  std::vector<Fields> kept = Entries(older);
  for (auto& entry : Entries(path)) kept.push_back(std::move(entry));
  ASSERT_GT(kept.size(), 10u);
  for (size_t i = 0; i < kept.size(); ++i) {
    EXPECT_EQ(kept[i], (Fields{"TRACE", std::to_string(100 - kept.size() + i)}));
  }
  EXPECT_FALSE(std::filesystem::exists(dir / "trace.log.2"));
}

#ifndef _WIN32
// Natively: two writer processes forked from this one.
TEST(TraceLog, ProcessesSharingTheLogLoseNoEntryAndMixNone) {
  TempDir dir;
  const auto path = dir / "trace.log";
  constexpr int kEntries = 400;
  std::vector<pid_t> writers;
  for (const char writer : {'a', 'b'}) {
    const pid_t child = ::fork();
    if (child == 0) {
      TraceLog log(path);
      for (int i = 0; i < kEntries; ++i) {
        log.Append("TRACE", {std::to_string(i), std::string(5000, writer)});
      }
      ::_exit(0);
    }
    writers.push_back(child);
  }
  for (const pid_t child : writers) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  std::map<char, int> next;
  for (const Fields& fields : Entries(path)) {
    ASSERT_EQ(fields.size(), 3u);
    const char writer = fields[2].front();
    ASSERT_EQ(fields[2], std::string(5000, writer));
    EXPECT_EQ(fields[1], std::to_string(next[writer]++)) << writer;
  }
  EXPECT_EQ(next, (std::map<char, int>{{'a', kEntries}, {'b', kEntries}}));
  // Each process's lines carry its own run identifier.
  std::map<char, std::set<std::string>> runs;
  std::istringstream lines(ReadFile(path));
  for (std::string line; std::getline(lines, line);) {
    const Fields fields = SplitEntry(line);
    runs[fields[3].front()].insert(fields[0].substr(fields[0].find('#')));
  }
  ASSERT_EQ(runs['a'].size(), 1u);
  ASSERT_EQ(runs['b'].size(), 1u);
  EXPECT_NE(*runs['a'].begin(), *runs['b'].begin());
}
#endif

TEST(TraceLog, SplitEntryTakesCrLfLines) {
  EXPECT_EQ(SplitEntry("2024-01-02 03:04:05.678\tTRACE\tC:\\\\new\r\n"),
            (Fields{"2024-01-02 03:04:05.678", "TRACE", "C:\\new"}));
  EXPECT_EQ(SplitEntry("x\t\ty"), (Fields{"x", "", "y"}));
}

TEST(TraceLog, AnUnwritableLogRaisesAWriteFault) {
  TempDir dir;
  WriteFile(dir / "plain-file", "x");
  TraceLog log(dir / "plain-file" / "trace.log");
  std::string why;
  EXPECT_FALSE(log.Writable(&why));
  EXPECT_FALSE(why.empty());
  try {
    log.Append("TRACE", {"lost?"});
    FAIL() << "no error raised";
  } catch (const RunTimeError& e) {
    EXPECT_EQ(e.Number(), kLogWriteFault);
    EXPECT_NE(e.Description().find("plain-file"), std::string::npos) << e.Description();
  }
  EXPECT_TRUE(TraceLog(dir / "ok.log").Writable());
}

}  // namespace
}  // namespace kestrivon::hostkit::test
