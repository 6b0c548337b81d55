// The revision pipeline under Wine against the host kit registered in the
// prefix: every host object (trace service, documents, print function,
// print library, file helper, UI policy, PDF merge) is the host kit's COM
// class, over a print world that this program writes before the first one
// is made. Only what needs Wine is here (COM, real files, the prefix's
// registry and spooler); the pipeline's rules are tested natively.
#include <windows.h>
// after windows.h
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "WineComTest.h"
#include "comkit/ComPtr.h"
#include "core/DriverFamilies.h"
#include "core/Environment.h"
#include "core/PdfMerge.h"
#include "core/PrintWorldHost.h"
#include "core/QpdfTool.h"
#include "core/TraceLog.h"
#include "host/Documents.h"
#include "host/win/ComHostObject.h"
#include "pipeline/PdfMerging.h"
#include "pipeline/PrintJobDriver.h"
#include "pipeline/PrnDevice.h"
#include "pipeline/RevisionFileLock.h"
#include "runtime/RunTimeError.h"

namespace kestrivon::test {
namespace {

namespace fs = std::filesystem;

std::string Folder() {
  static const std::string folder = [] {
    wchar_t temp[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, temp);
    const fs::path path =
        fs::path(temp) / ("kestrivon-pipeline-" + std::to_string(GetCurrentProcessId()));
    fs::remove_all(path);
    fs::create_directories(path / "out");
    return hostkit::PathToUtf8(path);
  }();
  return folder;
}

std::string In(const std::string& name) { return Folder() + "\\" + name; }

std::string ReadText(const std::string& file) {
  std::ifstream in(hostkit::PathFromUtf8(file), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteText(const std::string& file, const std::string& text) {
  std::ofstream(hostkit::PathFromUtf8(file), std::ios::binary) << text;
}

bool Exists(const std::string& file) { return fs::exists(hostkit::PathFromUtf8(file)); }

// The host kit's log entries of one kind, fields after the kind.
std::vector<std::vector<std::string>> Logged(const std::string& kind) {
  std::vector<std::vector<std::string>> entries;
  std::ifstream in(hostkit::PathFromUtf8(In("trace.log")));
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const auto fields = hostkit::SplitEntry(line);
    if (fields.size() >= 2 && fields[1] == kind)
      entries.emplace_back(fields.begin() + 2, fields.end());
  }
  return entries;
}

bool Traced(const std::string& text) {
  for (const auto& entry : Logged("TRACE")) {
    if (!entry.empty() && entry[0] == text) return true;
  }
  return false;
}

// Two one-page PDFs merged by qpdf: the file behind document A-100.
void WriteWorld() {
  const std::string one = In("one.pdf");
  WriteText(one, hostkit::MakeDriverPdf("", "first page"));
  WriteText(In("two.pdf"), hostkit::MakeDriverPdf("", "second page"));
  hostkit::PdfMerge().Merge("", {one, In("two.pdf")}, In("A-100 source.pdf"));
  WriteText(In("printworld.ini"),
            "[World]\nUIPolicy = silent\nUser = jdoe\n"
            "[Printer Vemra Adobe PDF]\nOutput = out\nDelay = 200\nGrowth = 300\nBusyReadings = 1\n"
            "[Printer Paused]\nStatus = 0x1\nOutput = out\n"
            "[Printer Refuser]\nOutput = out\nMode = fail\n"
            "[Printer Adobe Family]\nOutput = adobe\nFamily = adobe-pdf\n"
            "[Document A-100]\nFile = A-100 source.pdf\nSetting.ShowRevisionMessages = 0\n"
            "[Document B-200]\n");
}

host::HostObjectRef NewDocument(const char* name) {
  hostkit::SetEnvironment("VEMRA_DOCUMENT_NAME", name);
  CLSID clsid{};
  comkit::ComPtr<IDispatch> document;
  if (FAILED(CLSIDFromProgID(L"VemraHostKit.Document", &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              document.PutVoid()))) {
    return nullptr;
  }
  return host::win::WrapHostObject(document.Get());
}

// Lock, print, wait for the printer and search, merge: the steps of one
// DoPrint and one AppendFile, on real files and the registered classes.
TEST(PipelineAgainstHostKit, LockPrintFindAndMergeARealRevision) {
  const auto document = NewDocument("A-100");
  ASSERT_TRUE(document);
  const std::string out = In("out");
  ASSERT_EQ(CheckDeleteLockFile(out, document), std::optional<bool>(true));
  RevisionFileLock lock;
  lock.SetOutputDirectory(out);
  lock.WriteLock(document);
  const std::string lockText = ReadText(In("out\\A-100.RLCK"));
  EXPECT_NE(lockText.find("\r\n" + lock.ComputerName() + "\r\njdoe\r\n"), std::string::npos)
      << lockText;

  PrnDevice device;
  ASSERT_TRUE(device.SetFilePrinterByName("Vemra Adobe PDF"));
  ASSERT_TRUE(IRevisionPrinterDoPrint(document, device.Name(), device.IPrinter()));
  const std::string found = GetAdobeRevisionFile(out + "\\", device.IPrinter());
  EXPECT_EQ(found, out + "\\A-100.pdf");
  EXPECT_EQ(hostkit::PdfPageCount(found), 2);
  lock.DeleteLock(document);
  EXPECT_FALSE(Exists(In("out\\A-100.RLCK")));

  // AppendFile: B's one page after A's two.
  const std::string archive = In("archive.pdf");
  EXPECT_FALSE(MergePDFFiles(archive, found));  // first file: copied, answers False
  EXPECT_EQ(hostkit::PdfPageCount(archive), 2);
  EXPECT_FALSE(Exists(found));
  EXPECT_TRUE(MergePDFFiles(archive, In("one.pdf")));
  EXPECT_EQ(hostkit::PdfPageCount(archive), 3);
  EXPECT_FALSE(Exists(In("one.pdf")));
  const auto merges = Logged("MERGE");
  ASSERT_FALSE(merges.empty());
  EXPECT_EQ(merges.back()[2], "True");
  EXPECT_EQ(merges.back()[3], archive);
  EXPECT_EQ(Logged("PRINT").size(), 3u);  // SetDocument, Printdirect, ReleaseDocument

  // The print function's False comes through COM as a refusal.
  PrnDevice refuser;
  ASSERT_TRUE(refuser.SetFilePrinterByName("Refuser"));
  EXPECT_FALSE(IRevisionPrinterDoPrint(document, refuser.Name(), refuser.IPrinter()));
}

// The printers of the world as the printer device sees them; the spooler
// is Wine's, which knows none of them. The document's workset is the
// context; its option asks for no box.
TEST(PipelineAgainstHostKit, ThePrinterDeviceReadsTheWorldsPrinters) {
  const auto workset = Required(host::AsDocument(NewDocument("A-100"))).Workset();
  const size_t boxes = Logged("MSGBOX").size();
  struct Case {
    const char* name;
    bool found;
    bool available;  // the world is silent: no question asked
  };
  for (const Case& c : {Case{"Vemra Adobe PDF", true, true}, Case{"paused", true, false},
                        Case{"Nobody", false, false}}) {
    PrnDevice device;
    EXPECT_EQ(device.SetFilePrinterByName(c.name), c.found) << c.name;
    EXPECT_EQ(device.IsPrinterAvailable(workset), c.available) << c.name;
    EXPECT_EQ(device.GetNumberOfPrintJobs(c.name), -1) << c.name;
    EXPECT_FALSE(device.IsPrinterQueueEmpty(workset)) << c.name;
  }
  EXPECT_TRUE(
      Traced("VemmraKestrivon.PrnDevice.IsPrinterAvailable: revision printer is not ready "
             "--> aborting."));
  EXPECT_TRUE(
      Traced("VemmraKestrivon.PrnDevice::IsPrinterQueueEmpty(): printer queue is not empty."));
  EXPECT_EQ(Logged("MSGBOX").size(), boxes);
}

// An Adobe PDF driver set up in the prefix's registry writes into the
// folder its port names, and refuses when it would ask for a file name.
TEST(PipelineAgainstHostKit, AFamilyDriverFollowsItsRegistrySettings) {
  const auto document = NewDocument("B-200");
  PrnDevice device;
  ASSERT_TRUE(device.SetFilePrinterByName("Adobe Family"));
  for (const bool prompt : {false, true}) {
    const std::set<std::string> wrong =
        prompt ? std::set<std::string>{"PromptForFileName"} : std::set<std::string>{};
    ASSERT_TRUE(hostkit::SetUpDriver(hostkit::SystemDriverSettings(),
                                     hostkit::DriverFamily::kAdobePdf, "Adobe Family", In("adobe"),
                                     wrong)
                    .empty());
    ASSERT_TRUE(IRevisionPrinterDoPrint(document, device.Name(), device.IPrinter()));
  }
  const std::string written = In("adobe\\B-200.pdf");
  for (int i = 0; i < 100 && !Exists(written); ++i) Sleep(50);
  EXPECT_EQ(hostkit::PdfPageCount(written), 1);
  const auto drivers = Logged("DRIVER");
  EXPECT_NE(std::find_if(drivers.begin(), drivers.end(),
                         [](const auto& entry) {
                           return entry[1] ==
                                  "refuses: PromptForFileName: it would ask for the file name";
                         }),
            drivers.end());
}

}  // namespace
}  // namespace kestrivon::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  using kestrivon::test::In;
  kestrivon::hostkit::SetEnvironment("VEMRA_TRACE_LOG", In("trace.log"));
  kestrivon::hostkit::SetEnvironment("VEMRA_PRINT_WORLD", In("printworld.ini"));
  kestrivon::hostkit::SetEnvironment("VEMRA_SHOW_REVISION_MESSAGES", std::nullopt);
  kestrivon::test::WriteWorld();
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int result = RUN_ALL_TESTS();
  if (kestrivon::wine_test::StrictHostFindings() != 0) result = 1;
  CoUninitialize();
  return result;
}
