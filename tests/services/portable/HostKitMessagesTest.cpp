#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "core/HostKit.h"
#include "core/Settings.h"
#include "frame/ModuleState.h"
#include "frame/trace/Trace.h"
#include "host/portable/HostActivation.h"
#include "platform/portable/FileSystem.h"
#include "revise/ReviseRun.h"
#include "revise/native/HostKitDocument.h"
#include "services/RevisionMessages.h"
#include "support/Fixture.h"

// The revision messages as a run of the native vemra-revise meets them: the
// host kit's document, its log and the listing after the run.

namespace kestrivon::test {
namespace {

class HostKitMessages : public ::testing::Test {
 protected:
  void SetUp() override {
    ::setenv(hostkit::kDocumentNameVariable, "A-100", 1);
    ::unsetenv(hostkit::kShowRevisionMessagesVariable);
    hostkit::Settings settings;
    settings.traceLog = std::filesystem::path(platform::portable::HostPath(folder / "trace.log"));
    kit = hostkit::HostKit::Create(settings);
    ResetModule(ModuleReset::kUnload);
    host::portable::InstallHostFactories({
        [this] { return std::shared_ptr<host::TraceService>(kit.traceService); },
        [this] { return std::shared_ptr<host::InstanceMonitor>(kit.instanceMonitor); },
    });
  }
  void TearDown() override {
    ResetModule(ModuleReset::kUnload);
    host::portable::InstallHostFactories({});
    ::unsetenv(hostkit::kDocumentNameVariable);
    ::unsetenv(hostkit::kShowRevisionMessagesVariable);
  }
  std::string Listed() {
    std::ostringstream out;
    hostkit::revise::ListMessages(out, kit.log->Path(), 0);
    return out.str();
  }
  ScratchFolder folder;
  hostkit::HostKit kit;
};

TEST_F(HostKitMessages, WithoutTheOptionTheBoxIsLoggedAndListed) {
  const auto document = hostkit::NewHostKitDocument(kit.log);
  ASSERT_TRUE(document);
  ShowMessage("~05d86 Printer is not installed", 16, "~01d8c Revisionsdrucker", document);
  EXPECT_EQ(Listed(),
            "Message box \"~05d86 Printer is not installed\" title \"~01d8c Revisionsdrucker\" "
            "buttons 16 -> 1\n");
}

TEST_F(HostKitMessages, TheOptionFalseFillsThePackOfTheDocumentsOwner) {
  ::setenv(hostkit::kShowRevisionMessagesVariable, "false", 1);
  const auto document = hostkit::NewHostKitDocument(kit.log);
  ASSERT_TRUE(document);
  ShowMessage("~05d86 Printer is not installed", 16, "~01d8c Revisionsdrucker", document);
  EXPECT_EQ(Listed(), "Message pack entry \"~05d86 Printer is not installed\" for \"A-100\"\n");
}

TEST_F(HostKitMessages, NoDocumentWithoutItsName) {
  ::unsetenv(hostkit::kDocumentNameVariable);
  EXPECT_EQ(hostkit::NewHostKitDocument(kit.log), nullptr);
}

}  // namespace
}  // namespace kestrivon::test
