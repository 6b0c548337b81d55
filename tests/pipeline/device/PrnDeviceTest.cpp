#include <gtest/gtest.h>

#include "RecordingHost.h"
#include "frame/ModuleState.h"
#include "host/portable/Documents.h"
#include "host/portable/Printing.h"
#include "host/portable/Workset.h"
#include "pipeline/PrnDevice.h"
#include "platform/portable/Clock.h"
#include "platform/portable/Spooler.h"
#include "services/MessageTexts.h"

// The printer device on the portable print world: printers of the host's
// print library, the spooler's queues and the UI policy, on virtual time.

namespace kestrivon::test {
namespace {

namespace hp = host::portable;
namespace pp = platform::portable;

const std::string kL = "VemmraKestrivon.PrnDevice";
const std::string kAvail = kL + ".IsPrinterAvailable: ";
const std::string kAborting = kAvail + "revision printer is not ready --> aborting.";
const std::string kPriv = kL + "::IsPrinterQueueEmptyPriv('PDF'): printer queue ";
std::string Framed(int count) {
  return "-----\r\n\t" + kL +
         "::GetNumberOfPrintJobs()\r\n\treturn value = " + std::to_string(count) + "\r\n-----";
}

class Device : public ::testing::Test {
 protected:
  Device() {
    host.InstallHostClasses({.printerManager = [this] { return manager; },
                             .uiPolicy = [this] { return ++policiesMade, policy; }});
    manager->printers = {pdf, std::make_shared<hp::PrinterObject>("Other")};
  }
  ~Device() override {
    ResetModule(ModuleReset::kUnload);
    pp::ClearPrinters();
  }
  bool Select() { return device.SetFilePrinterByName("PDF"); }
  void Forget() {
    host.traceLines.clear();
    host.messageBoxes.clear();
    host.reports.clear();
  }

  pp::VirtualClock clock{1000};
  RecordingHost host;
  std::shared_ptr<hp::PrinterObject> pdf = std::make_shared<hp::PrinterObject>("PDF");
  std::shared_ptr<hp::PrinterManagerObject> manager = std::make_shared<hp::PrinterManagerObject>();
  std::shared_ptr<hp::UIPolicyObject> policy = std::make_shared<hp::UIPolicyObject>();
  // The printer checks' context is the document's workset.
  std::shared_ptr<hp::WorksetObject> context = std::make_shared<hp::WorksetObject>();
  int policiesMade = 0;
  PrnDevice device;
};

TEST_F(Device, StatusBitsDecideAvailableAndReady) {
  struct Row {
    int32_t status;
    bool available, ready;
  };
  ASSERT_TRUE(Select());
  for (const Row& row : {Row{0, true, true}, Row{0x400, true, false}, Row{0x1, false, false},
                         Row{0x80, false, false}, Row{0x1000, false, false}, Row{0x2, true, false},
                         Row{0x8000, true, false}, Row{0x200000, true, false}}) {
    SCOPED_TRACE(row.status);
    Forget();
    pdf->status = row.status;
    const std::string s = std::to_string(row.status);
    const bool overflows = row.status >= 0x8000;
    EXPECT_EQ(device.IsPrinterAvailable(nullptr), row.available);
    EXPECT_EQ(device.IsPrinterReady(), row.ready);
    Lines trace{kAvail + "vemra_printlib.IPrinter.CurrentStatus: '" + s + "'",
                kAvail + (row.available ? "True" : "False") + "(status: " + s + ")"};
    if (!row.available) trace.push_back(kAborting);
    if (!overflows) trace.push_back(kL + ".IsPrinterReady(): queue.QueueStatus = '" + s + "'");
    EXPECT_EQ(host.traceLines, trace);
    EXPECT_EQ(host.reports, overflows ? Lines{kL + "|Public Function 'IsPrinterReady'"} : Lines{});
  }
  EXPECT_EQ(policiesMade, 0) << "no context: nobody is asked";
}

TEST_F(Device, TheUserIsToldOrAskedOnlyWhenInteractionIsAllowed) {
  const std::string notReady = "MsgBox: Printer is not ready. Du you still want to do a revision? ";
  struct Row {
    bool selected, silent;
    int32_t answer;
    bool result;
    std::string last;
  };
  pdf->status = 0x1;
  for (const Row& row :
       {Row{false, false, 1, false,
            kL + ".IsPrinterAvailable(): MsgBox: Revision printer is not installed. Revision "
                 "printing is not possible."},
        Row{false, true, 1, false, kL + ".IsPrinterAvailable(): not ready (= not found)"},
        Row{true, false, 6, true, kAvail + notReady + "answer: yes"},
        Row{true, false, 7, false, kAvail + notReady + "answer: no"},
        Row{true, true, 6, false, kAborting}}) {
    SCOPED_TRACE(row.last);
    Forget();
    host.boxAnswers = {row.answer};
    policy->silent = row.silent;
    if (row.selected) Select();
    EXPECT_EQ(device.IsPrinterAvailable(context), row.result);
    EXPECT_EQ(host.traceLines.back(), row.last);
    ASSERT_EQ(host.messageBoxes.size(), row.silent ? 0u : 1u);
    if (row.silent) continue;
    const auto& box = host.messageBoxes[0];
    EXPECT_EQ(box.buttons, row.selected ? 36 : 80);
    EXPECT_EQ(box.prompt, row.selected ? messages::kPrinterNotReadyGoOn
                                       : messages::kRevisionPrinterNotInstalled);
    EXPECT_EQ(box.title, row.selected ? messages::kRevisionPrinterTitle : "");
  }
  EXPECT_EQ(policiesMade, 1) << "kept for the process";
  EXPECT_EQ(policy->asked.size(), 5u);
}

TEST_F(Device, SelectingReleasesTheFormerPrinterAndShutdownEndsEverything) {
  EXPECT_TRUE(Select() && Select());
  EXPECT_EQ(manager->lookups.size(), 1u) << "the same name is not looked up again";
  EXPECT_FALSE(device.SetFilePrinterByName("Nope"));
  EXPECT_EQ(pdf->releases, 1);
  EXPECT_TRUE(device.Name().empty() && !device.IPrinter());
  EXPECT_EQ(host.traceLines,
            Lines{kL + "::PrnDevice::SetFilePrinterByName(Nope): printer does not exist\r\n"});
  EXPECT_TRUE(device.SetFilePrinterByName("Other"));
  device.Shutdown();
  EXPECT_EQ(manager->printers[1]->releases, 1);
  EXPECT_EQ(manager->shutdowns, 1);
  host.InstallHostClasses({});
  EXPECT_FALSE(Select()) << "no print library";
  EXPECT_EQ(host.reports,
            (Lines{kL + "|PrinterManager [PropertyGet]", kL + "|SetFilePrinterByName"}));
  EXPECT_EQ(host.Numbers(), (std::vector<int32_t>{429, 91}));
}

TEST_F(Device, ASingleQueuedJobFailsAfterHalfASecondWhateverTheRecountFinds) {
  struct Row {
    int jobs, afterPause;  // -1: the spooler does not know the printer
    Lines trace;
  };
  const std::string waiting = kPriv + "holds 1 print job waiting 5 seconds for job to finish...";
  const std::string held = kPriv + "holds 1 print job(s). -> Revision will be aborted!";
  const std::string many = kPriv + "holds print jobs. -> Revision will be aborted!";
  const std::string still = kPriv + "still holds print jobs. -> Revision will be aborted!";
  const Lines unknown{kL + "::GetNumberOfPrintJobs(): unable to open printer!", Framed(-1),
                      kL + "::IsPrinterQueueEmptyPriv('PDF'): unable to retrieve number of print "
                           "jobs in printer queue! The printer queue has to be empty to do "
                           "revisions.  We cannot grant that the printer queue is empty. -> "
                           "Revision aborted!"};
  for (const Row& row :
       {Row{0, 0, {Framed(0)}}, Row{2, 2, {Framed(2), many}}, Row{7, 7, {Framed(5), many}},
        Row{-1, -1, unknown}, Row{1, 0, {Framed(1), waiting, Framed(0), held}},
        Row{1, 1, {Framed(1), waiting, Framed(1), still, held}}}) {
    SCOPED_TRACE(row.jobs);
    pp::ClearPrinters();
    if (row.jobs >= 0) pp::DefinePrinter("pdf", {0, static_cast<uint32_t>(row.jobs)});
    const uint64_t start = clock.Elapsed();
    if (row.afterPause != row.jobs) {
      clock.At(start + 250, [&row] { pp::DefinePrinter("pdf", {0, uint32_t(row.afterPause)}); });
    }
    Select();
    Forget();
    EXPECT_EQ(device.IsPrinterQueueEmptyPriv(false), row.jobs == 0);
    EXPECT_EQ(clock.Elapsed() - start, row.jobs == 1 ? 500u : 0u);
    EXPECT_EQ(host.traceLines, row.trace);
  }
}

TEST_F(Device, AFullQueueIsShownOnlyWhenTheWorksetAsksForMessages) {
  const std::string traced = kL + "::IsPrinterQueueEmpty(): printer queue is not empty.";
  host.translations = {{messages::kQueueNotEmpty, "once"},
                       {"once", "twice"},
                       {messages::kRevisionPrinterCaption, "title"}};
  pp::DefinePrinter("PDF", {0, 2});
  Select();
  for (const auto& [setting, shown] : std::vector<std::pair<Variant, bool>>{
           {Variant(), false}, {int32_t{0}, false}, {std::string("False"), false}, {true, true}}) {
    Forget();
    context->settings->values.clear();
    if (!IsEmpty(setting)) context->settings->values["ShowRevisionMessages"] = setting;
    EXPECT_FALSE(device.IsPrinterQueueEmpty(context));
    EXPECT_EQ(host.Count(traced), !IsEmpty(setting) && !shown ? 1u : 0u);
    ASSERT_EQ(host.messageBoxes.size(), shown ? 1u : 0u);
    if (!shown) continue;
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
  EXPECT_FALSE(device.InitializeDevMode(nullptr, "x"));
  EXPECT_TRUE(host.traceLines.empty());
  const auto document = std::make_shared<hp::DocumentObject>("Doc");
  EXPECT_FALSE(device.InitializeDevMode(document, "x"));
  EXPECT_EQ(host.traceLines, Lines{kL + ".InitializeDevMode(): printer is null. Aborting..."});
  Select();
  auto type = std::make_shared<hp::DocumentObject>();
  document->typeObject = type;
  document->printSettings = type;
  for (const char* name : {"Reference", "VemraMasterReport", "GeneralDocument", "vemrareport"}) {
    type->name = name;
    pdf->jobStarted = type->name == "Reference";
    Forget();
    EXPECT_TRUE(device.InitializeDevMode(document, "text"));
    const auto& call = pdf->devModeCalls.back();
    EXPECT_EQ(call.notHostDocument, type->name == "GeneralDocument" || type->name == "vemrareport");
    EXPECT_TRUE(call.reserved == 0 && call.documentSettings == type && call.text == "text");
    Lines trace{kL +
                "::InitializeDevMode(): starting to initialize the VemraPrinter.Printer's "
                "DEVMODE..."};
    if (pdf->jobStarted) trace.push_back(kL + "::InitializeDevMode(): print job started.");
    EXPECT_EQ(host.traceLines, trace);
  }
}

}  // namespace
}  // namespace kestrivon::test
