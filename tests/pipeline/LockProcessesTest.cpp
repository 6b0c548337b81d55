#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "PipelineFixture.h"
#include "pipeline/RevisionFileLock.h"
#include "platform/FileSearch.h"

// Runs in separate processes on one real output folder, on real time.

namespace kestrivon::test {
namespace {

using std::chrono::milliseconds;

class LockProcessesTest : public PipelineTest {
 protected:
  LockProcessesTest() { clock.reset(); }

  // A run in a child process: after the delay it checks the folder; when
  // checkers other runs must also have checked before it writes its lock
  // (the instant of the check, stretched). Exits 0 when it printed.
  pid_t Run(const std::string& name, int delay, int hold, size_t checkers = 1) {
    const pid_t pid = ::fork();
    if (pid != 0) return pid;
    std::this_thread::sleep_for(milliseconds(delay));
    document->documentName = name;
    const bool printing = CheckDeleteLockFile(output.Path(), document) == true;
    WriteWholeFile(checks / name, "");
    while (platform::FindFiles(checks / "*")->size() < checkers) {
      std::this_thread::sleep_for(milliseconds(10));
    }
    if (printing) {
      RevisionFileLock lock;
      lock.SetOutputDirectory(output.Path());
      lock.WriteLock(document);
      std::this_thread::sleep_for(milliseconds(hold));
      lock.DeleteLock(document);
    }
    ::_exit(printing ? 0 : 1);
  }

  static bool Printed(pid_t pid) {
    int status = 0;
    return ::waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  ScratchFolder output;
  ScratchFolder checks;
};

TEST_F(LockProcessesTest, ARunThatFindsAnotherRunsLockIsRefused) {
  const pid_t first = Run("A-1", 0, 4000);
  const pid_t second = Run("A-2", 500, 0);  // waits 2 s for the new lock, which stays
  EXPECT_FALSE(Printed(second));
  EXPECT_TRUE(Printed(first));
  EXPECT_TRUE(platform::FindFiles(output / "*")->empty()) << "the first run deleted its lock";
  EXPECT_TRUE(Printed(Run("A-3", 0, 0))) << "the folder is free again";
}

// The check and the write are apart: runs that all check before any
// writes all print into the same folder at once.
TEST_F(LockProcessesTest, RunsThatCheckInTheSameInstantAllPrint) {
  const pid_t runs[] = {Run("B-1", 0, 500, 3), Run("B-2", 0, 500, 3), Run("B-3", 0, 500, 3)};
  for (const pid_t run : runs) EXPECT_TRUE(Printed(run));
  EXPECT_TRUE(platform::FindFiles(output / "*")->empty());
}

// A lock is written whole in one step: a run reading it while another
// writes it finds three lines every time, never a part.
TEST_F(LockProcessesTest, AReaderNeverFindsAPartOfALockBeingWritten) {
  document->documentName = "C-1";
  RevisionFileLock lock;
  lock.SetOutputDirectory(output.Path());
  lock.WriteLock(document);
  const pid_t writer = ::fork();
  if (writer == 0) {
    for (int i = 0; i < 300; ++i) lock.WriteLock(document);
    ::_exit(0);
  }
  size_t reads = 0;
  int status = 0;
  while (::waitpid(writer, &status, WNOHANG) == 0) {
    ++reads;
    ASSERT_NO_THROW(EXPECT_EQ(ReadRevisionLock(output / "C-1.RLCK").user, "jdoe"));
  }
  EXPECT_GT(reads, 10u);
  EXPECT_TRUE(host.reports.empty());
  EXPECT_EQ(platform::FindFiles(output / "*")->size(), 1u) << "nothing left beside it";
}

}  // namespace
}  // namespace kestrivon::test
