#include <gtest/gtest.h>

#include <set>

#include "RecordingHost.h"
#include "platform/FileSystem.h"
#include "platform/MessageQueue.h"
#include "services/OutputFileWaiting.h"
#include "support/Fixture.h"

namespace kestrivon::test {
namespace {

constexpr const char* kPrinted = "VemraKestrivon::Globals::TestForFileAccess(): File was printed";
constexpr const char* kGrowing = "VemraKestrivon::Globals::TestForFileAccess(): File is growing...";

TEST(MessageFilter, RefusesClosingAndButtonPressesOnly) {
  const std::set<int32_t> refused{0x0002, 0x0010, 0x0082, 0x00A1, 0x00A2, 0x00A4,
                                  0x00A5, 0x0201, 0x0202, 0x0204, 0x0205};
  for (int32_t id = 0; id < 0x10000; ++id) {
    EXPECT_EQ(IsLegalMessage(id), refused.count(id) == 0) << std::hex << id;
  }
}

class MyDoEventsTest : public ::testing::Test {
 protected:
  void SetUp() override { DrainMessages(); }
  void TearDown() override { DrainMessages(); }
  RecordingHost host;
};

TEST_F(MyDoEventsTest, DispatchesTimersAndDoubleClicksAndDropsCloseAndClicks) {
  RecordingWindow window;
  for (uint32_t id : {0x0113u, 0x0201u, 0x0010u, 0x0203u, 0x00A1u, 0x00A3u, 0x0205u, 0x0401u}) {
    window.Post(id, id);
  }
  window.Post(0x0100, 'A');
  PostThreadMessageToSelf(0x0401, 1);
  MyDoEvents();
  std::vector<uint32_t> received;
  for (const auto& r : window.received) received.push_back(r.message);
  EXPECT_EQ(received, (std::vector<uint32_t>{0x0113, 0x0203, 0x00A3, 0x0401, 0x0100, 0x0102}))
      << "the key-down is translated into a character on the way";
  platform::Message left;
  EXPECT_FALSE(platform::PeekMessageA(&left, 0, 0, 0, platform::kPmRemove))
      << "refused messages are lost, not postponed";
  MyDoEvents();
  EXPECT_EQ(window.received.size(), received.size());
  EXPECT_TRUE(host.errors.empty());
}

class FileAccessTest : public ::testing::Test {
 protected:
  RecordingHost host;
  ScratchFolder folder;
};

TEST_F(FileAccessTest, TestForFileAccessOpensExclusively) {
  const std::string path = folder / "out.pdf";
  EXPECT_TRUE(TestForFileAccess(path)) << "the open creates a missing file, as the run time's does";
  EXPECT_TRUE(PathExists(path));
  WriteWholeFile(path, "%PDF-1.4");
  EXPECT_TRUE(TestForFileAccess(path));
  EXPECT_EQ(ReadWholeFile(path), "%PDF-1.4");
  {
    FileHolder holder(path);
    EXPECT_FALSE(TestForFileAccess(path));
  }
  EXPECT_EQ(host.traceLines, (Lines{kPrinted, kPrinted, kGrowing}));
  EXPECT_TRUE(host.errors.empty()) << "the expected failure is not an error";
}

TEST_F(FileAccessTest, CreationDateCheck) {
  const std::string path = folder / "out.pdf";
  WriteWholeFile(path, "x");
  const double created = platform::FileDateCreated(path);
  EXPECT_TRUE(FileCreationDateCheck(created, path)) << "at the reference counts";
  EXPECT_TRUE(FileCreationDateCheck(created - 1.0 / 86400, path));
  EXPECT_FALSE(FileCreationDateCheck(created + 1.0 / 86400, path));
  EXPECT_FALSE(FileCreationDateCheck(0, ""));
  EXPECT_TRUE(host.errors.empty()) << "an empty path touches nothing";
  EXPECT_FALSE(FileCreationDateCheck(0, folder / "absent.pdf"));
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{53});
}

TEST_F(FileAccessTest, DeleteTempOutputFileForcesAndReports) {
  const std::string readOnly = folder / "ro.pdf";
  WriteWholeFile(readOnly, "x");
  SetReadOnly(readOnly, true);
  DeleteTempOutputFile(readOnly);
  EXPECT_FALSE(PathExists(readOnly));
  DeleteTempOutputFile("");
  EXPECT_TRUE(host.errors.empty());

  DeleteTempOutputFile(folder / "absent.pdf");
  const std::string held = folder / "held.pdf";
  WriteWholeFile(held, "x");
  {
    FileHolder holder(held);
    DeleteTempOutputFile(held);
  }
  EXPECT_TRUE(PathExists(held));
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{53, 70}));
}

}  // namespace
}  // namespace kestrivon::test
