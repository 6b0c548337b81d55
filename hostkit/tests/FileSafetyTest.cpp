// What the host kit's file operations leave when they cannot finish: a full
// disk (a file size limit), a kill right before the replacing step, and
// processes asking for temporary names at once.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <set>

#include "TestSupport.h"
#include "core/FileCopy.h"
#include "core/HostKit.h"
#include "core/PdfMerge.h"
#include "core/PrintWorldHost.h"
#include "core/Settings.h"
#include "pipeline/PrintJobDriver.h"

namespace kestrivon::hostkit::test {
namespace {

using Names = std::set<std::string>;

// Runs body in a child process whose files may not grow beyond limit bytes
// (0: no limit); answers the child's wait status.
int InChild(rlim_t limit, const std::function<bool()>& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit size{limit, limit};
    if (limit != 0) ::setrlimit(RLIMIT_FSIZE, &size);
    ::_exit(body() ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return status;
}

Names FilesIn(const std::filesystem::path& folder) {
  Names names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

size_t Abandoned(const std::filesystem::path& folder) {
  size_t count = 0;
  for (const auto& name : FilesIn(folder)) count += name.rfind("~vhk", 0) == 0 ? 1 : 0;
  return count;
}

TEST(FileSafety, ACopyOrMergeThatCannotFinishLeavesTheOldFileWhole) {
  TempDir dir;
  { std::ofstream(dir / "page.pdf") << MakeDriverPdf("", "page"); }
  // A source far beyond the size limit: 300 pages.
  const std::vector<std::string> pages(300, (dir / "page.pdf").string());
  ASSERT_TRUE(PdfMerge().Merge("", pages, (dir / "big.pdf").string()));
  const std::string archive = (dir / "archive.pdf").string();
  const std::string big = (dir / "big.pdf").string();
  const auto copy = [&] {
    std::string why;
    const bool copied = CopyOneFile(big, archive, true, why);
    std::ofstream(dir / "why") << why;
    return copied;
  };
  const auto merge = [&] { return PdfMerge().Merge("", {archive, big}, archive); };
  const struct {
    const char* what;
    std::function<bool()> body;
    rlim_t limit;
    bool killed;
    const char* why;
  } cases[] = {
      {"copy onto a full disk", copy, 16384, false, "File too large."},
      {"merge onto a full disk", merge, 16384, false, nullptr},
      {"copy killed before replacing", copy, 0, true, nullptr},
      {"merge killed before replacing", merge, 0, true, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_TRUE(PdfMerge().Merge("", {(dir / "page.pdf").string()}, archive));
    const std::string before = ReadFile(archive);
    std::filesystem::remove(dir / "why");
    const Names files = FilesIn(dir.Path());
    std::optional<ScopedVariable> kill;
    if (c.killed) kill.emplace(kKillBeforeReplaceVariable, "archive.pdf");
    const int status = InChild(c.limit, c.body);
    kill.reset();
    if (c.killed) {
      EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    } else {
      EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
    }
    if (c.why) {
      EXPECT_EQ(ReadFile(dir / "why"), c.why);
    }
    EXPECT_EQ(ReadFile(archive), before);
    // A killed writer leaves its finished file beside the archive; the
    // next copy there removes it.
    EXPECT_EQ(Abandoned(dir.Path()), c.killed ? 1u : 0u);
    std::string why;
    ASSERT_TRUE(CopyOneFile((dir / "page.pdf").string(), (dir / "second.pdf").string(), true, why));
    std::filesystem::remove(dir / "second.pdf");
    EXPECT_EQ(Abandoned(dir.Path()), 0u);
    Names now = FilesIn(dir.Path());
    now.erase("why");
    EXPECT_EQ(now, files);
  }
  // Unhindered, both replace the archive: a merge onto itself adds pages.
  ASSERT_TRUE(merge());
  EXPECT_EQ(PdfPageCount(archive), 301);
  ASSERT_TRUE(copy());
  EXPECT_EQ(ReadFile(archive), ReadFile(dir / "big.pdf"));
}

TEST(FileSafety, ProcessesAskingAtOnceGetTemporaryNamesOfTheirOwn) {
  TempDir dir;
  ScopedVariable tmp("TMPDIR", (dir / "").string());
  Settings settings;
  settings.traceLog = dir / "trace.log";
  constexpr int kProcesses = 6;
  constexpr int kNames = 40;
  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {
    const pid_t child = ::fork();
    if (child == 0) {
      HostKit kit = HostKit::Create(settings);
      InstalledPrintWorld installed(PrintWorld{}, kit.log);
      host::portable::HostFactories factories;
      installed.AddFactories(factories);
      host::portable::InstallHostFactories(factories);
      {
        std::ofstream names(dir / ("names-" + std::to_string(p)));
        for (int n = 0; n < kNames; ++n) {
          names << DocumentFileHelperObject().TempOutputName(".PDF") << '\n';
        }
      }
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) ::waitpid(child, nullptr, 0);
  Names all;
  for (int p = 0; p < kProcesses; ++p) {
    std::ifstream names(dir / ("names-" + std::to_string(p)));
    for (std::string name; std::getline(names, name);) {
      EXPECT_TRUE(name.size() > 4 && name.substr(name.size() - 4) == ".PDF" &&
                  name.find("..") == std::string::npos)
          << name;
      all.insert(name.substr(name.find_last_of("\\/") + 1));
    }
  }
  EXPECT_EQ(all.size(), static_cast<size_t>(kProcesses * kNames));
  // Each name was created, empty, as the system's temporary names are.
  for (const auto& name : all) EXPECT_EQ(ReadFile(dir / name), "") << name;
}

}  // namespace
}  // namespace kestrivon::hostkit::test
