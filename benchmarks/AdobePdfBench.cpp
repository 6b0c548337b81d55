// The component's own cost of one AdobePDF DoPrint with a driver that
// writes its file at once, on virtual time: the sleeps that the procedures
// must make (the sleeper's intervals, the wait's 500 ms slice) cost nothing,
// so what is measured is the component's work, the portable seams and the
// file system. AdobePdfDoPrint traces, logs and copies through the host
// kit's real trace service and log, as a revision does (32 trace entries);
// AdobePdfDoPrintQuietHost, for comparison, through a host whose services
// do nothing but copy.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "BenchSupport.h"
#include "core/SimTraceService.h"
#include "core/TraceLog.h"
#include "host/portable/Documents.h"
#include "host/portable/HostActivation.h"
#include "host/portable/Printing.h"
#include "platform/FileSystem.h"
#include "platform/Registry.h"
#include "platform/portable/Clock.h"
#include "platform/portable/FileSystem.h"
#include "platform/portable/Registry.h"
#include "platform/portable/Spooler.h"
#include "printers/pdf/AdobePDF.h"

namespace kestrivon::bench {
namespace {

namespace fs = std::filesystem;
namespace hp = host::portable;
namespace pp = platform::portable;

class QuietHost : public host::TraceService, public host::InstanceMonitor {
 public:
  void LogError(const ErrorInfo&, const std::string&, const std::string&) override { ++errors; }
  std::string ResolveText(const std::string& text) override { return text; }
  int32_t CurrentTicks() override { return 0; }
  void WriteTrace(const std::string& line) override { benchmark::DoNotOptimize(line.data()); }
  int32_t ShowMessageBox(const std::string&, int32_t, const std::string&) override { return 1; }
  bool CopyFile(const std::string& source, const std::string& target, bool) override {
    std::error_code error;
    return fs::copy_file(pp::HostPath(source), pp::HostPath(target),
                         fs::copy_options::overwrite_existing, error);
  }
  host::HostObjectRef Application() override { return nullptr; }
  host::HostObjectRef GetObject(const std::string&) override { return nullptr; }
  void RegisterCounter(const std::string&, int32_t*) override {}
  int32_t GetLevel() override { return 0; }
  int errors = 0;
};

// Whether the host kit's log holds an error report.
bool LoggedErrors(const fs::path& log) {
  std::ifstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("\tERROR\t") != std::string::npos) return true;
  }
  return false;
}

void WriteOnePagePdf(const fs::path& path) {
  QPDF pdf;
  pdf.emptyPDF();
  QPDFPageDocumentHelper(pdf).addPage(
      QPDFPageObjectHelper(pdf.makeIndirectObject(
          QPDFObjectHandle::parse("<< /Type /Page /MediaBox [0 0 612 792] >>"))),
      false);
  QPDFWriter(pdf, path.c_str()).write();
}

void DoPrints(benchmark::State& state, bool hostKitTrace) {
  const fs::path scratch = ScratchFolder();
  fs::create_directories(scratch / "out");
  fs::create_directories(scratch / "rev");
  WriteOnePagePdf(scratch / "driver.pdf");
  const std::string out = WindowsPath(scratch / "out");

  auto host = std::make_shared<QuietHost>();
  const auto log = std::make_shared<hostkit::TraceLog>(scratch / "vemra-trace.log");
  const std::shared_ptr<host::TraceService> trace =
      hostKitTrace ? std::shared_ptr<host::TraceService>(std::make_shared<hostkit::SimTraceService>(
                         log, std::nullopt, std::nullopt))
                   : host;
  auto manager = std::make_shared<hp::PrinterManagerObject>();
  manager->printers.push_back(std::make_shared<hp::PrinterObject>("Adobe PDF"));
  auto print = std::make_shared<hp::DocFctDistObject>();
  // The driver: its PDF is in the port's folder as soon as the job is out.
  print->print = [&](const host::HostObjectRef&, const host::HostObjectRef&) {
    fs::copy_file(scratch / "driver.pdf", scratch / "out" / "job.pdf",
                  fs::copy_options::overwrite_existing);
    return true;
  };
  auto helper = std::make_shared<hp::DocumentFileHelperObject>();
  hp::InstallHostFactories({.traceService = [&] { return trace; },
                            .instanceMonitor = [&] { return host; },
                            .docFctDist = [&] { return print; },
                            .printerManager = [&] { return manager; },
                            .uiPolicy = [] { return std::make_shared<hp::UIPolicyObject>(); },
                            .documentFileHelper = [&] { return helper; }});
  pp::DefinePrinter("Adobe PDF", {});
  const std::string key =
      "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers\\Adobe PDF";
  const auto view = pp::ProcessRegistryView();
  for (const char* flag : {"ViewPrintOutput", "PromptForFileName", "AskToReplacePDF"}) {
    pp::SetRegistryDword(view, platform::kHKeyLocalMachine, key + "\\PrinterDriverData", flag, 0);
  }
  pp::SetRegistryString(view, platform::kHKeyLocalMachine, key + "\\PrinterDriverData", "Port",
                        out + "\\*.pdf");
  pp::SetRegistryValue(view, platform::kHKeyLocalMachine, key + "\\DsSpooler",
                       "printKeepPrintedJobs", platform::kRegBinary, std::string(1, '\0'));
  auto owner = std::make_shared<hp::OwnerObject>();
  owner->currentUser = std::make_shared<hp::DocumentObject>("jdoe");
  auto document = std::make_shared<hp::DocumentObject>("A-100", owner);
  document->documentName = "A-100";
  document->typeObject = std::make_shared<hp::DocumentObject>("Drawing");

  pp::VirtualClock clock;
  const std::string revision = WindowsPath(scratch / "rev");
  for (auto _ : state) {
    AdobePDF printer;
    if (!printer.DoPrint(document, owner, revision, "A1")) {
      state.SkipWithError("DoPrint answered False");
      break;
    }
  }
  if (host->errors != 0 || LoggedErrors(scratch / "vemra-trace.log")) {
    state.SkipWithError("errors were reported");
  }
  hp::InstallHostFactories({});
  pp::ClearPrinters();
  pp::ClearRegistry();
}

void AdobePdfDoPrint(benchmark::State& state) { DoPrints(state, true); }
void AdobePdfDoPrintQuietHost(benchmark::State& state) { DoPrints(state, false); }

BENCHMARK(AdobePdfDoPrint)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(AdobePdfDoPrintQuietHost)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrivon::bench

BENCHMARK_MAIN();
