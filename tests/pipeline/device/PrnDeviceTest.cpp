#include <gtest/gtest.h>

#include "RecordingHost.h"
#include "host/portable/Documents.h"
#include "host/portable/Printing.h"
#include "pipeline/PrnDevice.h"
#include "platform/portable/Clock.h"
#include "platform/portable/Spooler.h"
#include "runtime/RunTimeError.h"
#include "services/MessageTexts.h"

// The printer device on the portable print world: printers of the host's
// print library, the spooler's queues and the UI policy, on virtual time.

namespace kestrivon::test {
namespace {

namespace hp = host::portable;
namespace pp = platform::portable;

const std::string kL = "VemmraKestrivon.PrnDevice";
const std::string kAvail = kL + ".IsPrinterAvailable: ";
const std::string kPriv = kL + "::IsPrinterQueueEmptyPriv('PDF'): ";
std::string Framed(int count) {
  return "-----\r\n\t" + kL +
         "::GetNumberOfPrintJobs()\r\n\treturn value = " + std::to_string(count) + "\r\n-----";
}

class Device : public ::testing::Test {
 protected:
  Device() {
    host.InstallWith({.printerManager = [this] { return ++managersMade, manager; },
                      .uiPolicy = [this] { return ++policiesMade, policy; }});
    manager->printers = {pdf, std::make_shared<hp::PrinterObject>("Other")};
    context->settings = std::make_shared<hp::SettingsObject>();
  }
  ~Device() override {
    ResetUIPolicyForReload();
    pp::ClearPrinters();
  }
  bool Select() { return device.SetFilePrinterByName("PDF"); }

  pp::VirtualClock clock{1000};
  RecordingHost host;
  std::shared_ptr<hp::PrinterObject> pdf = std::make_shared<hp::PrinterObject>("PDF");
  std::shared_ptr<hp::PrinterManagerObject> manager = std::make_shared<hp::PrinterManagerObject>();
  std::shared_ptr<hp::UIPolicyObject> policy = std::make_shared<hp::UIPolicyObject>();
  std::shared_ptr<hp::DocumentObject> context = std::make_shared<hp::DocumentObject>("Doc");
  int managersMade = 0;
  int policiesMade = 0;
  PrnDevice device;
};

TEST_F(Device, StatusBitsDecideAvailableAndReady) {
  struct Row {
    int32_t status;
    bool available, ready, overflows;
  };
  for (const Row& row :
       {Row{0, true, true, false}, Row{0x400, true, false, false}, Row{0x1, false, false, false},
        Row{0x80, false, false, false}, Row{0x1000, false, false, false},
        Row{0x2, true, false, false}, Row{0x7FFF, false, false, false},
        Row{0x8000, true, false, true}, Row{0x200000, true, false, true}}) {
    SCOPED_TRACE(row.status);
    host.traceLines.clear();
    host.reports.clear();
    pdf->status = row.status;
    ASSERT_TRUE(Select());
    EXPECT_EQ(device.IsPrinterAvailable(nullptr), row.available);
    const std::string s = std::to_string(row.status);
    EXPECT_EQ(host.traceLines[0], kAvail + "vemra_printlib.IPrinter.CurrentStatus: '" + s + "'");
    EXPECT_EQ(host.traceLines[1],
              kAvail + (row.available ? "True" : "False") + "(status: " + s + ")");
    if (!row.available) {
      EXPECT_EQ(host.traceLines.at(2), kAvail + "revision printer is not ready --> aborting.");
    }
    EXPECT_EQ(device.IsPrinterReady(), row.ready);
    EXPECT_EQ(host.reports,
              row.overflows ? Lines{kL + "|Public Function 'IsPrinterReady'"} : Lines{});
    if (!row.overflows) {
      EXPECT_EQ(host.traceLines.back(), kL + ".IsPrinterReady(): queue.QueueStatus = '" + s + "'");
    }
  }
  EXPECT_TRUE(host.messageBoxes.empty());
  EXPECT_EQ(policiesMade, 0) << "no context: the policy is not asked";
}

TEST_F(Device, TheUserIsToldOrAskedOnlyWhenInteractionIsAllowed) {
  const std::string notInstalled =
      "MsgBox: Revision printer is not installed. Revision printing is not possible.";
  const std::string notReady = "MsgBox: Printer is not ready. Du you still want to do a revision? ";
  struct Row {
    bool selected, silent;
    int32_t answer;
    bool result;
    size_t boxes;
    std::string last;
  };
  for (const Row& row :
       {Row{false, false, 1, false, 1, kL + ".IsPrinterAvailable(): " + notInstalled},
        Row{false, true, 1, false, 0, kL + ".IsPrinterAvailable(): not ready (= not found)"},
        Row{true, false, 6, true, 1, kAvail + notReady + "answer: yes"},
        Row{true, false, 7, false, 1, kAvail + notReady + "answer: no"},
        Row{true, true, 6, false, 0, kAvail + "revision printer is not ready --> aborting."}}) {
    SCOPED_TRACE(row.last);
    host.messageBoxes.clear();
    host.boxAnswers = {row.answer};
    policy->silent = row.silent;
    pdf->status = 0x1;
    if (row.selected) Select();
    EXPECT_EQ(device.IsPrinterAvailable(context), row.result);
    EXPECT_EQ(host.traceLines.back(), row.last);
    ASSERT_EQ(host.messageBoxes.size(), row.boxes);
    if (row.boxes == 0) continue;
    const auto& box = host.messageBoxes[0];
    EXPECT_EQ(box.buttons, row.selected ? 36 : 80);
    EXPECT_EQ(box.prompt, row.selected ? messages::k05d3b : messages::k05d3a);
    EXPECT_EQ(box.title, row.selected ? messages::k01d8c : "");
  }
  EXPECT_EQ(policiesMade, 1) << "kept for the process";
  EXPECT_EQ(policy->asked.size(), 5u);
  EXPECT_TRUE(host.reports.empty());
}

TEST_F(Device, SelectingReleasesTheFormerPrinterAndShutdownEndsEverything) {
  EXPECT_TRUE(Select());
  EXPECT_TRUE(Select());
  EXPECT_EQ(manager->lookups.size(), 1u) << "the same name is not looked up again";
  EXPECT_FALSE(device.SetFilePrinterByName("Nope"));
  EXPECT_EQ(pdf->releases, 1);
  EXPECT_EQ(device.Name(), "");
  EXPECT_EQ(device.IPrinter(), nullptr);
  EXPECT_EQ(host.traceLines,
            Lines{kL + "::PrnDevice::SetFilePrinterByName(Nope): printer does not exist\r\n"});
  EXPECT_TRUE(device.SetFilePrinterByName("Other"));
  EXPECT_EQ(device.Name(), "Other");
  device.Shutdown();
  EXPECT_EQ(manager->printers[1]->releases, 1);
  EXPECT_EQ(manager->shutdowns, 1);
  EXPECT_EQ(device.Name(), "");
  EXPECT_TRUE(Select());
  EXPECT_EQ(managersMade, 2) << "a new manager after the shutdown";
  host.InstallWith({});
  device.Shutdown();
  EXPECT_FALSE(Select()) << "no print library";
  EXPECT_EQ(host.reports,
            (Lines{kL + "|PrinterManager [PropertyGet]", kL + "|SetFilePrinterByName"}));
  EXPECT_EQ(host.Numbers(),
            (std::vector<int32_t>{vb_error::kCantCreateObject, vb_error::kObjectVariableNotSet}));
}

TEST_F(Device, ASingleQueuedJobFailsAfterHalfASecondWhateverTheRecountFinds) {
  struct Row {
    int jobs;  // -1: the spooler does not know the printer
    bool jobEndsDuringPause, empty;
    uint64_t elapsed;
    Lines trace;
  };
  const std::string one = "printer queue holds 1 print job";
  for (const Row& row :
       {Row{0, false, true, 0, {Framed(0)}},
        Row{2,
            false,
            false,
            0,
            {Framed(2), kPriv + "printer queue holds print jobs. -> Revision will be aborted!"}},
        Row{7,
            false,
            false,
            0,
            {Framed(5), kPriv + "printer queue holds print jobs. -> Revision will be aborted!"}},
        Row{1,
            true,
            false,
            500,
            {Framed(1), kPriv + one + " waiting 5 seconds for job to finish...", Framed(0),
             kPriv + one + "(s). -> Revision will be aborted!"}},
        Row{1,
            false,
            false,
            500,
            {Framed(1), kPriv + one + " waiting 5 seconds for job to finish...", Framed(1),
             kPriv + "printer queue still holds print jobs. -> Revision will be aborted!",
             kPriv + one + "(s). -> Revision will be aborted!"}},
        Row{-1,
            false,
            false,
            0,
            {kL + "::GetNumberOfPrintJobs(): unable to open printer!", Framed(-1),
             kPriv + "unable to retrieve number of print jobs in printer queue! The printer queue "
                     "has to be empty to do revisions.  We cannot grant that the printer queue is "
                     "empty. -> Revision aborted!"}}}) {
    SCOPED_TRACE(row.jobs);
    const uint64_t start = clock.Elapsed();
    host.traceLines.clear();
    pp::ClearPrinters();
    if (row.jobs >= 0) pp::DefinePrinter("pdf", {0, static_cast<uint32_t>(row.jobs)});
    if (row.jobEndsDuringPause) clock.At(start + 250, [] { pp::DefinePrinter("pdf", {}); });
    Select();
    host.traceLines.clear();
    EXPECT_EQ(device.IsPrinterQueueEmptyPriv(false), row.empty);
    EXPECT_EQ(clock.Elapsed() - start, row.elapsed);
    EXPECT_EQ(host.traceLines, row.trace);
  }
}

TEST_F(Device, AFullQueueIsShownOnlyWhenTheWorksetAsksForMessages) {
  const std::string trace = kL + "::IsPrinterQueueEmpty(): printer queue is not empty.";
  host.translations = {{messages::k03b09, "once"}, {"once", "twice"}, {messages::k03b0a, "title"}};
  pp::DefinePrinter("PDF", {0, 2});
  Select();
  struct Row {
    std::optional<Variant> setting;
    size_t boxes;
    bool traced;
  };
  for (const Row& row : {Row{std::nullopt, 0, false}, Row{Variant(int32_t{0}), 0, true},
                         Row{Variant(std::string("False")), 0, true}, Row{Variant(true), 1, false},
                         Row{Variant(int32_t{2}), 1, false}}) {
    host.traceLines.clear();
    host.messageBoxes.clear();
    context->settings->values.clear();
    if (row.setting) context->settings->values["ShowRevisionMessages"] = *row.setting;
    EXPECT_FALSE(device.IsPrinterQueueEmpty(context));
    EXPECT_EQ(host.Count(trace), row.traced ? 1u : 0u);
    ASSERT_EQ(host.messageBoxes.size(), row.boxes);
    if (row.boxes == 0) continue;
    EXPECT_EQ(host.messageBoxes[0].prompt, "twice");
    EXPECT_EQ(host.messageBoxes[0].buttons, 16);
    EXPECT_EQ(host.messageBoxes[0].title, "title");
  }
  context->settings.reset();
  EXPECT_FALSE(device.IsPrinterQueueEmpty(context)) << "no workset";
  EXPECT_EQ(host.reports, Lines{kL + "|Function IsPrinterQueueEmpty"});
  pp::DefinePrinter("PDF", {});
  EXPECT_TRUE(device.IsPrinterQueueEmpty(nullptr));
}

TEST_F(Device, TheDeviceModeIsPreparedForTheDocumentAndItsType) {
  const std::string start =
      kL + "::InitializeDevMode(): starting to initialize the VemraPrinter.Printer's DEVMODE...";
  EXPECT_FALSE(device.InitializeDevMode(nullptr, "x"));
  EXPECT_TRUE(host.traceLines.empty());
  EXPECT_FALSE(device.InitializeDevMode(context, "x"));
  EXPECT_EQ(host.traceLines, Lines{kL + ".InitializeDevMode(): printer is null. Aborting..."});
  Select();
  auto type = std::make_shared<hp::DocumentObject>();
  context->typeObject = type;
  context->printSettings = std::make_shared<hp::DocumentObject>("settings");
  for (const char* name : {"Reference", "VemraIReport", "VemraMasterIReport", "VemraReport",
                           "VemraMasterReport", "GeneralDocument", "vemrareport"}) {
    type->name = name;
    pdf->jobStarted = type->name == "Reference";
    host.traceLines.clear();
    EXPECT_TRUE(device.InitializeDevMode(context, "text"));
    const auto& call = pdf->devModeCalls.back();
    EXPECT_EQ(call.notHostDocument, type->name == "GeneralDocument" || type->name == "vemrareport");
    EXPECT_EQ(call.reserved, 0);
    EXPECT_EQ(call.documentSettings, context->printSettings);
    EXPECT_EQ(call.text, "text");
    Lines trace{start};
    if (pdf->jobStarted) trace.push_back(kL + "::InitializeDevMode(): print job started.");
    EXPECT_EQ(host.traceLines, trace);
  }
  EXPECT_TRUE(host.reports.empty());
}

}  // namespace
}  // namespace kestrivon::test
