#include <gtest/gtest.h>

#include <set>

#include "platform/Clock.h"
#include "platform/FileCopy.h"
#include "platform/FileSearch.h"
#include "platform/FileSystem.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

using namespace kestrivon::platform;

std::set<std::string> Names(const std::vector<FoundEntry>& entries) {
  std::set<std::string> names;
  for (const auto& entry : entries) names.insert(entry.name);
  return names;
}

TEST(FileSearchConformance, SearchesGiveAttributesAndCreationTimes) {
  ScratchFolder folder;
  for (const char* name : {"a.pdf", "b.PDF", "r.pdf", "x.RLCK", "y.rlck.bak"}) {
    WriteWholeFile(folder / name, "x");
  }
  MakeFolder(folder / "sub.pdf");
  SetReadOnly(folder / "r.pdf", true);

  // The search itself: every entry, folders and the dot entries included.
  std::vector<FoundEntry> all;
  {
    OwnedFind search;
    FoundEntry entry;
    ASSERT_TRUE(FindFirstEntry(folder / "*", search.Put(), &entry));
    do all.push_back(entry);
    while (FindNextEntry(search.Get(), &entry));
    EXPECT_EQ(GetLastError(), kErrorNoMoreFiles);
  }
  EXPECT_EQ(Names(all), (std::set<std::string>{".", "..", "a.pdf", "b.PDF", "r.pdf", "sub.pdf",
                                               "x.RLCK", "y.rlck.bak"}));
  for (const auto& entry : all) {
    SCOPED_TRACE(entry.name);
    const bool isFolder = entry.name == "sub.pdf" || entry.name.front() == '.';
    EXPECT_EQ((entry.attributes & kFileAttributeDirectory) != 0, isFolder);
    EXPECT_EQ((entry.attributes & kFileAttributeReadOnly) != 0, entry.name == "r.pdf");
    if (!isFolder) {
      EXPECT_EQ(entry.created, FileDateCreated(folder / entry.name));
    }
  }
  const double created = FileDateCreated(folder / "a.pdf");
  EXPECT_LE(created, Now());
  EXPECT_GT(created, Now() - 60.0 / 86400);

  // The files of a pattern, folders left out.
  const struct {
    const char* pattern;
    std::set<std::string> files;
  } cases[] = {
      {"*.RLCK", {"x.RLCK"}},
      {"*.PdF", {"a.pdf", "b.PDF", "r.pdf"}},
      {"?.rlck*", {"x.RLCK", "y.rlck.bak"}},
      {"*.zzz", {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.pattern);
    const auto files = FindFiles(folder / c.pattern);
    ASSERT_TRUE(files.has_value());
    EXPECT_EQ(Names(*files), c.files);
  }
  FindHandle none = 0;
  EXPECT_FALSE(FindFirstEntry(folder / "*.zzz", &none, nullptr));
  EXPECT_EQ(none, kInvalidFind);
  EXPECT_EQ(GetLastError(), 2u);
  EXPECT_FALSE(FindFiles(folder / "missing\\*").has_value());
  EXPECT_EQ(GetLastError(), kErrorPathNotFound);
}

// The order of a folder's entries decides which output file a search
// takes: "." and ".." first, then by name without regard to case, also past
// a long common prefix; a search that wants names and kinds only gives the
// same entries in the same order.
TEST(FileSearchConformance, EntriesComeInNameOrderWithoutRegardToCase) {
  ScratchFolder folder;
  for (const char* name : {"b.pdf", "A.pdf", "a-common-prefix-2.pdf", "A-COMMON-prefix-10.pdf",
                           "a-common-prefix-1.pdf", "Z9.txt", "c", "c.d"}) {
    WriteWholeFile(folder / name, "x");
  }
  MakeFolder(folder / "B-dir");
  const std::vector<std::string> expected = {".",
                                             "..",
                                             "a-common-prefix-1.pdf",
                                             "A-COMMON-prefix-10.pdf",
                                             "a-common-prefix-2.pdf",
                                             "A.pdf",
                                             "B-dir",
                                             "b.pdf",
                                             "c",
                                             "c.d",
                                             "Z9.txt"};
  for (const EntryDetail detail : {EntryDetail::kFull, EntryDetail::kNameAndKind}) {
    SCOPED_TRACE(detail == EntryDetail::kFull ? "full" : "names and kinds");
    std::vector<std::string> names;
    OwnedFind search;
    FoundEntry entry;
    ASSERT_TRUE(FindFirstEntry(folder / "*", search.Put(), &entry, detail));
    do {
      names.push_back(entry.name);
      const bool isFolder = entry.name == "B-dir" || entry.name.front() == '.';
      EXPECT_EQ((entry.attributes & kFileAttributeDirectory) != 0, isFolder) << entry.name;
    } while (FindNextEntry(search.Get(), &entry));
    EXPECT_EQ(names, expected);
  }
}

TEST(FileSearchConformance, CopiesAsCopyFileDoes) {
  ScratchFolder folder;
  WriteWholeFile(folder / "source.pdf", "%PDF-1");
  WriteWholeFile(folder / "existing.pdf", "old");
  WriteWholeFile(folder / "held.pdf", "held");
  MakeFolder(folder / "sub");
  FileHolder holder(folder / "held.pdf");
  const struct {
    const char* source;
    const char* target;
    bool overwrite;
    uint32_t error;  // 0: copied
  } cases[] = {
      {"source.pdf", "new.pdf", false, 0},
      {"source.pdf", "existing.pdf", false, kErrorFileExists},
      {"source.pdf", "existing.pdf", true, 0},
      {"absent.pdf", "other.pdf", true, 2},
      {"source.pdf", "missing\\new.pdf", true, kErrorPathNotFound},
      {"sub", "other.pdf", true, 5},
      {"source.pdf", "sub", true, 5},
      {"held.pdf", "other.pdf", true, kErrorSharingViolation},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.source) + " -> " + c.target);
    const std::string before = ReadWholeFile(folder / c.target);
    EXPECT_EQ(CopyFileTo(folder / c.source, folder / c.target, c.overwrite), c.error == 0);
    if (c.error == 0) {
      EXPECT_EQ(ReadWholeFile(folder / c.target), "%PDF-1");
    } else {
      EXPECT_EQ(GetLastError(), c.error);
      EXPECT_EQ(ReadWholeFile(folder / c.target), before);
    }
  }
  SetReadOnly(folder / "source.pdf", true);
  ASSERT_TRUE(CopyFileTo(folder / "source.pdf", folder / "copy.pdf", false));
  const auto copy = FindFiles(folder / "copy.pdf");
  ASSERT_TRUE(copy && copy->size() == 1);
  EXPECT_NE(copy->front().attributes & kFileAttributeReadOnly, 0u) << "attributes are copied";
  EXPECT_EQ(SystemErrorText(kErrorFileExists), "File exists.");
}

TEST(FileSearchConformance, MovesPutAFileInPlaceOfAnotherOrRefuseWholly) {
  ScratchFolder folder;
  MakeFolder(folder / "sub");
  const struct {
    const char* target;
    bool replace;
    uint32_t error;  // 0: moved
  } cases[] = {
      {"new.pdf", false, 0},     {"existing.pdf", false, kErrorAlreadyExists},
      {"existing.pdf", true, 0}, {"missing\\new.pdf", true, kErrorPathNotFound},
      {"sub", true, 5},          {"readonly.pdf", true, 5},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.target) + (c.replace ? " replaced" : " kept"));
    WriteWholeFile(folder / "moving.pdf", "new");
    WriteWholeFile(folder / "existing.pdf", "old");
    if (!FileExists(folder / "readonly.pdf")) {
      WriteWholeFile(folder / "readonly.pdf", "old");
      SetReadOnly(folder / "readonly.pdf", true);
    }
    const std::string before = ReadWholeFile(folder / c.target);
    EXPECT_EQ(MoveFileTo(folder / "moving.pdf", folder / c.target, c.replace), c.error == 0);
    if (c.error == 0) {
      EXPECT_EQ(ReadWholeFile(folder / c.target), "new");
      EXPECT_FALSE(FileExists(folder / "moving.pdf"));
    } else {
      EXPECT_EQ(GetLastError(), c.error);
      EXPECT_EQ(ReadWholeFile(folder / c.target), before);
      EXPECT_EQ(ReadWholeFile(folder / "moving.pdf"), "new");
    }
  }
  EXPECT_FALSE(MoveFileTo(folder / "absent.pdf", folder / "other.pdf", true));
  EXPECT_EQ(GetLastError(), 2u);
}

}  // namespace
}  // namespace kestrivon::test
