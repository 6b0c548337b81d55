#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "RecordingHost.h"
#include "frame/ModuleState.h"
#include "frame/trace/Trace.h"
#include "host/portable/Documents.h"
#include "host/portable/Printing.h"
#include "pipeline/PipelineTexts.h"
#include "pipeline/PrintJobDriver.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/portable/Clock.h"
#include "support/Fixture.h"

namespace kestrivon::test {

// The host resolves a default text by dropping its "~xxxxx " key; any other
// text by the translations, so that a text resolved twice shows.
class ResolvingHost : public RecordingHost {
 public:
  std::string ResolveText(const std::string& text) override {
    return text.size() > 7 && text[0] == '~' ? text.substr(7) : RecordingHost::ResolveText(text);
  }
};

// A revision run on virtual time: document A-100 of user jdoe, the host's
// print world, an output folder.
class PipelineTest : public ::testing::Test {
 protected:
  PipelineTest() {
    ResetModule(ModuleReset::kUnload);
    host.level = 3;
    PPMInit();
    owner->currentUser = std::make_shared<host::portable::DocumentObject>("jdoe");
    document->documentName = "A-100";
    document->number = "A-100";
    document->title = "Plan";
    host.InstallHostClasses({
        .docFctDist = [this] { return docFctDist; },
        .documentFileHelper = [this] { return fileHelper; },
    });
  }
  ~PipelineTest() override { ResetModule(ModuleReset::kUnload); }

  // Makes the file's age (by its creation time) the given number of
  // seconds of virtual time.
  void AgeTo(const std::string& path, int64_t seconds) {
    const int64_t now = pipeline::SecondsBetween(platform::FileDateCreated(path), platform::Now());
    clock->Advance(static_cast<uint64_t>((seconds - now) * 1000));
  }

  // Started again by a case that needs fresh virtual time.
  std::optional<platform::portable::VirtualClock> clock{std::in_place};
  ResolvingHost host;
  ScratchFolder folder;
  std::shared_ptr<host::portable::OwnerObject> owner =
      std::make_shared<host::portable::OwnerObject>();
  std::shared_ptr<host::portable::DocumentObject> document =
      std::make_shared<host::portable::DocumentObject>("A-100", owner);
  std::shared_ptr<host::portable::DocFctDistObject> docFctDist =
      std::make_shared<host::portable::DocFctDistObject>();
  std::shared_ptr<host::portable::DocumentFileHelperObject> fileHelper =
      std::make_shared<host::portable::DocumentFileHelperObject>();
};

}  // namespace kestrivon::test
