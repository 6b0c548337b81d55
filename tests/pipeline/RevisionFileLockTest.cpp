#include <vector>

#include "PipelineFixture.h"
#include "pipeline/RevisionFileLock.h"

namespace kestrivon::test {
namespace {

constexpr const char* kLocked =
    "VemraKestrivon::Globals::CheckDeleteLockFile(): output directory is locked -> aborting...";
constexpr const char* kDeletingOld =
    "VemraKestrivon::Globals.CheckDeleteLockFile(): deleting old lock-file...";

using LockTest = PipelineTest;

// What a run finds in its output folder and what the check makes of it.
TEST_F(LockTest, TheFirstLockFileIsJudgedByItsAgeAndContent) {
  // A lock that does not let the run go on is left in place; the others
  // after the first are never looked at.
  struct Case {
    const char* what;
    Lines locks;  // written in this order, three lines each
    int64_t age;  // seconds, by creation time
    bool vanishesDuringWait;
    bool twoLines;
    bool goesOn;
  };
  const Case cases[] = {
      {"empty folder", {}, 0, false, false, true},
      {"new lock that its run deletes", {"B-7.RLCK"}, 1, true, false, true},
      {"new lock that remains", {"B-7.RLCK"}, 1, false, false, false},
      {"lock just under 1000 hours", {"B-7.RLCK"}, 3599999, false, false, false},
      {"lock of 1000 hours", {"B-7.RLCK"}, 3600000, false, false, true},
      {"lock of two lines", {"B-7.RLCK"}, 10, false, true, false},
      {"stale lock before a live one", {"a.RLCK", "b.rlck"}, 3600000, false, false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    clock.reset();
    clock.emplace();
    ScratchFolder output;
    for (const std::string& name : c.locks) {
      const std::vector<std::string> lines = {"11/15/2026 9:12:40 AM", "PC042", "mmeier"};
      platform::WriteAnsiTextLines(output / name,
                                   c.twoLines ? Lines(lines.begin(), lines.begin() + 2) : lines);
    }
    if (!c.locks.empty()) AgeTo(output / c.locks.front(), c.age);
    if (c.vanishesDuringWait) {
      clock->At(clock->Elapsed() + 1999, [&] { RemoveFile(output / c.locks.front()); });
    }
    host.messageBoxes.clear();
    host.reports.clear();
    host.traceLines.clear();
    host.debugLines.clear();
    EXPECT_EQ(CheckDeleteLockFile(output.Path(), document), c.goesOn);
    for (const std::string& line : host.debugLines) {
      EXPECT_EQ(line.find("b.rlck"), std::string::npos) << "only the first lock is judged";
    }
    EXPECT_EQ(host.messageBoxes.size(), !c.goesOn && !c.twoLines ? 1u : 0u);
    Lines reports;  // an unreadable lock; a lock gone before its deletion
    if (c.twoLines) reports.push_back("VemraKestrivon::Globals|IsRevisionFileLocked");
    if (c.vanishesDuringWait) reports.push_back("VemraKestrivon::Globals|Sub DeleteTempOutputFile");
    EXPECT_EQ(host.reports, reports);
    EXPECT_EQ(host.Count(kLocked), c.goesOn ? 0u : 1u);
    EXPECT_EQ(host.Count(kDeletingOld), c.goesOn && !c.locks.empty() ? 1u : 0u);
    for (size_t i = 0; i < c.locks.size(); ++i) {
      EXPECT_EQ(platform::FileExists(output / c.locks[i]), i > 0 || !c.goesOn) << c.locks[i];
    }
  }
  // What the cases above cannot tell apart: a lock dated in the future is
  // as new as one just written (live once the wait is over); new ends at two
  // seconds.
  for (const auto& [age, judged] :
       {std::pair{-3600, LockAge::kNew}, {1, LockAge::kNew}, {2, LockAge::kLive}}) {
    EXPECT_EQ(JudgeLockAge(age), judged) << age;
  }
}

TEST_F(LockTest, ALiveLockTellsTheUserWhoPrintsAfterTheTwoSecondWait) {
  const std::string path = folder / "B-7.RLCK";
  platform::WriteAnsiTextLines(path, {"11/15/2026 9:12:40 AM", "PC042", "mmeier"});
  AgeTo(path, 1);
  const uint64_t before = clock->Elapsed();
  host.debugLines.clear();
  EXPECT_FALSE(CheckDeleteLockFile(folder.Path(), document).value_or(true));
  EXPECT_EQ(clock->Elapsed() - before, 2000u);
  const std::string created = pipeline::DateText(platform::FileDateCreated(path));
  ASSERT_EQ(host.messageBoxes.size(), 1u);
  EXPECT_EQ(host.messageBoxes[0].prompt,
            "Ein anderer Revisionsvorgang druckt zur Zeit in Ihr Ausgabeverzeichnis.\r\n"
            "Benutzer: mmeier\r\nComputer: PC042\r\nStartzeit: " +
                created + "\r\nDer aktuelle Revisionsvorgang wird abgebrochen.");
  EXPECT_EQ(host.messageBoxes[0].buttons, 16);
  EXPECT_EQ(host.messageBoxes[0].title, "Revision");
  EXPECT_EQ(host.debugLines,
            (Lines{"VemraKestrivon::Globals::IsRevisionFileLocked(): Lock-file is newly created "
                   "-> waiting for 2 seconds...",
                   "VemraKestrivon::GlobalsIsRevisionFileLocked(): Revision file is locked!\r\n\t- "
                   "Filename: '" +
                       path +
                       "'\r\n\t- User: 'mmeier\r\n\t- Computer: 'PC042\r\n\t- "
                       "Date: '11/15/2026 9:12:40 AM' / Creation Date: '" +
                       created + "'\r\n--> aborting!!..."}));
}

// Callers test for "not true": an empty answer stops the print as well.
TEST_F(LockTest, AFailingCheckAnswersNeitherTrueNorFalse) {
  platform::WriteAnsiTextLines(folder / "B-7.RLCK", {"11/15/2026 9:12:40 AM", "PC042", "mmeier"});
  AgeTo(folder / "B-7.RLCK", 3600000);
  host.traceFailsOn = "deleting old lock-file";
  EXPECT_EQ(CheckDeleteLockFile(folder.Path(), document), std::nullopt);
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|CheckDeleteLockFile"});
}

// A run in an empty folder: the check lets it print, its lock names the
// document, the computer and the user, and goes again when it is done.
TEST_F(LockTest, ARunWritesAndDeletesItsOwnLock) {
  ASSERT_EQ(CheckDeleteLockFile(folder.Path(), document), true);
  const std::string path = folder / "A-100.RLCK";
  {
    RevisionFileLock lock;
    lock.SetOutputDirectory("  " + folder.Path() + " ");
    lock.SetOutputDirectory("   ");
    EXPECT_EQ(lock.OutputDirectory(), folder.Path() + "\\");
    lock.WriteLock(document);
    EXPECT_EQ(ReadWholeFile(path),
              pipeline::DateText(platform::Now()) + "\r\n" + lock.ComputerName() + "\r\njdoe\r\n");
    EXPECT_FALSE(lock.ComputerName().empty());
    lock.DeleteLock(document);
    EXPECT_FALSE(platform::FileExists(path));
    lock.DeleteLock(document);
    lock.DeleteLock(nullptr);
    lock.WriteLock(nullptr);
    owner->currentUser = nullptr;  // the user cannot be named: two lines stay
    lock.WriteLock(document);
    EXPECT_EQ(ReadWholeFile(path),
              pipeline::DateText(platform::Now()) + "\r\n" + lock.ComputerName() + "\r\n");
    SetReadOnly(path, true);  // deleted without force: it stays
    lock.DeleteLock(document);
  }
  EXPECT_TRUE(platform::FileExists(path)) << "the release leaves the lock file";
  EXPECT_EQ(host.reports, (Lines{"Kestrivon::DocumentLock|Public Sub WriteLock",
                                 "Kestrivon::DocumentLock|Public Sub DeleteLock"}));
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{91, 70}));
  EXPECT_EQ(
      host.traceLines,
      (Lines{"Kestrivon::DocumentLock::DeleteLock(): deleting lock-file ('" + path + "')...",
             "Kestrivon::DocumentLock::DeleteLock(): lock-file ('" + path + "') deleted",
             "Kestrivon::DocumentLock::DeleteLock(): deleting lock-file ('" + path + "')...",
             "Kestrivon::DocumentLock::DeleteLock(): lock-file does not exist anymore -> no "
             "neet to delete it",
             "Kestrivon::DocumentLock::DeleteLock(): document is Nothing -> leaving sub...",
             "Kestrivon::DocumentLock::WriteLock(): Document is nothing -> leaving sub...",
             "Kestrivon::DocumentLock::DeleteLock(): deleting lock-file ('" + path + "')..."}));
  EXPECT_EQ(host.debugLines.front(), "### Kestrivon::DocumentLock::Class_Initialize()...");
  EXPECT_EQ(host.debugLines.back(), "### Kestrivon::DocumentLock::Class_Terminate()...");
  EXPECT_EQ(host.debugLines[2],
            "### Kestrivon::DocumentLock::LockFileName(): lock-file name is '" + path + "'");
}

}  // namespace
}  // namespace kestrivon::test
