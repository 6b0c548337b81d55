#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "RecordingHost.h"
#include "platform/Clock.h"
#include "platform/portable/Clock.h"
#include "platform/portable/MessageQueue.h"
#include "services/OutputFileWaiting.h"
#include "support/Fixture.h"

// The waits on virtual time: minutes of waiting in no time.

namespace kestrivon::test {
namespace {

namespace pp = platform::portable;

constexpr const char* kPrinted = "VemraKestrivon::Globals::TestForFileAccess(): File was printed";
constexpr const char* kGrowing = "VemraKestrivon::Globals::TestForFileAccess(): File is growing...";
constexpr const char* kMissing =
    "VemraKestrivon::Globals::WaitWhileFileInAccess(): File does not exist. Waiting for file...";
constexpr const char* kExceeded =
    "VemraKestrivon::Globals::WaitWhileFileInAccess(): Waiting time exceeded";

class VirtualWait : public ::testing::Test {
 protected:
  void TearDown() override { pp::ClearMessageQueue(); }
  pp::VirtualClock clock{1000};
  RecordingHost host;
  ScratchFolder folder;
  std::string path = folder / "out.pdf";
};

TEST_F(VirtualWait, AFileThatNeverAppearsGivesUpAfterTwoMinutes) {
  EXPECT_FALSE(WaitWhileFileInAccess(path));
  EXPECT_EQ(clock.Elapsed(), 120500u) << "passes at 0, 0.5, ..., 120 s; the one at 120.5 s stops";
  EXPECT_EQ(host.Count(kMissing), 241u);
  ASSERT_EQ(host.traceLines.size(), 242u);
  EXPECT_EQ(host.traceLines.back(), kExceeded);
  EXPECT_TRUE(host.errors.empty());
}

TEST_F(VirtualWait, AFileSeenLateIsWaitedForWithoutLimit) {
  std::optional<FileHolder> writer;  // another process, for ten virtual minutes
  clock.At(119000, [&] {
    WriteWholeFile(path, "%PDF");
    writer.emplace(path);
  });
  clock.At(119000 + 600000, [&] { writer.reset(); });
  EXPECT_TRUE(WaitWhileFileInAccess(path));
  EXPECT_EQ(host.Count(kMissing), 238u);
  EXPECT_EQ(host.Count(kGrowing), 1200u);
  EXPECT_EQ(host.Count(kPrinted), 1u);
  EXPECT_EQ(host.Count(kExceeded), 0u);
  EXPECT_EQ(clock.Elapsed(), 719500u) << "one more slice after the file was free";
}

TEST_F(VirtualWait, AFreeFileTakesOnePassAndOneSlice) {
  WriteWholeFile(path, "%PDF");
  EXPECT_TRUE(WaitWhileFileInAccess(path));
  EXPECT_EQ(clock.Elapsed(), 500u);
  EXPECT_EQ(clock.Sleeps(), 1u);
  EXPECT_EQ(host.traceLines, (std::vector<std::string>{kPrinted}));
}

TEST_F(VirtualWait, MessagesArePumpedOnEveryPass) {
  RecordingWindow window;
  window.Post(0x0113);
  clock.At(1000, [&window] {
    window.Post(0x0010);
    window.Post(0x0113);
  });
  clock.At(2000, [this] { WriteWholeFile(path, "%PDF"); });
  EXPECT_TRUE(WaitWhileFileInAccess(path));
  ASSERT_EQ(window.received.size(), 2u);
  EXPECT_EQ(window.received[0].message, 0x0113u);
  EXPECT_EQ(window.received[1].message, 0x0113u);
  EXPECT_EQ(pp::PendingMessages(), 0u);
}

TEST_F(VirtualWait, ATickCountThatWrapsOverflowsTheSubtraction) {
  pp::VirtualClock wrapping(static_cast<uint32_t>(std::numeric_limits<int32_t>::max()) - 700);
  EXPECT_FALSE(WaitWhileFileInAccess(path));
  EXPECT_EQ(host.reports, Lines{"VemraKestrivon::Globals|Function WaitWhileFileInAccess"});
  EXPECT_EQ(host.Numbers(), std::vector<int32_t>{6});
  EXPECT_EQ(host.Count(kMissing), 2u);
}

}  // namespace
}  // namespace kestrivon::test
